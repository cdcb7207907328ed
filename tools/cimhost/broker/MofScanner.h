// cimhost::MofScanner: splits MOF text into tokens for the class-hierarchy
// parser.
//
// Comments (// to the end of the line, /* ... */) and preprocessor lines
// (# to the end of the line, e.g. #pragma include ("file.mof"), which is not
// followed) are dropped. What remains becomes:
//   Identifier  a letter, '_' or a non-ASCII byte, then letters, digits, '_'
//               or non-ASCII bytes (class, property and keyword names);
//   Number      a digit, '+', '-' or '.', then letters, digits, '_', '.',
//               '+' or '-' (decimal, real, hex and binary literals alike);
//   String      "..." with backslash escapes; the text keeps the escapes;
//   Char        '...' likewise;
//   Alias       '$' followed by identifier characters;
//   Punct       any other single character ([ ] { } ( ) ; : , = ...).
// Every token carries the line on which it starts.
#ifndef QRX_TOOLS_CIMHOST_BROKER_MOFSCANNER_H_
#define QRX_TOOLS_CIMHOST_BROKER_MOFSCANNER_H_

#include <string>
#include <vector>

namespace cimhost {

struct MofToken {
  enum class Kind { Identifier, Number, String, Char, Alias, Punct };

  Kind kind;
  std::string text;  // the token's characters (without quotes for String/Char)
  int line;          // 1-based

  bool isPunct(char ipC) const { return kind == Kind::Punct && text.size() == 1 && text[0] == ipC; }
  // Case-insensitive comparison with a keyword, for Identifier tokens.
  bool isKeyword(const char* ipWord) const;
};

// Splits `irText`. On an unterminated comment, string or character literal
// returns false with "<name>:<line>: <reason>" in *opError and leaves
// *opTokens unspecified.
bool scanMof(const std::string& irText, const std::string& irName,
             std::vector<MofToken>* opTokens, std::string* opError);

// `irText` with ASCII letters in lower case: MOF names (classes,
// properties, qualifiers) compare case-insensitively.
std::string lowerName(const std::string& irText);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_MOFSCANNER_H_
