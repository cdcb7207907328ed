#include "tools/cimhost/broker/MofScanner.h"

#include <strings.h>

namespace cimhost {

namespace {

bool isIdentStart(unsigned char ipC) {
  return (ipC >= 'a' && ipC <= 'z') || (ipC >= 'A' && ipC <= 'Z') || ipC == '_' || ipC >= 0x80;
}

bool isIdentChar(unsigned char ipC) { return isIdentStart(ipC) || (ipC >= '0' && ipC <= '9'); }

bool isNumberStart(unsigned char ipC) {
  return (ipC >= '0' && ipC <= '9') || ipC == '+' || ipC == '-' || ipC == '.';
}

bool isNumberChar(unsigned char ipC) {
  return isIdentChar(ipC) || ipC == '.' || ipC == '+' || ipC == '-';
}

}  // namespace

bool MofToken::isKeyword(const char* ipWord) const {
  return kind == Kind::Identifier && strcasecmp(text.c_str(), ipWord) == 0;
}

bool scanMof(const std::string& irText, const std::string& irName,
             std::vector<MofToken>* opTokens, std::string* opError) {
  opTokens->clear();
  const size_t n = irText.size();
  size_t i = 0;
  int line = 1;

  auto fail = [&](int ipLine, const std::string& irReason) {
    *opError = irName + ":" + std::to_string(ipLine) + ": " + irReason;
    return false;
  };

  while (i < n) {
    const unsigned char c = irText[i];
    if (c == '\n') {
      ++line;
      ++i;
    } else if (c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v') {
      ++i;
    } else if (c == '/' && i + 1 < n && irText[i + 1] == '/') {
      while (i < n && irText[i] != '\n') ++i;
    } else if (c == '/' && i + 1 < n && irText[i + 1] == '*') {
      const int start = line;
      i += 2;
      while (i < n && !(irText[i] == '*' && i + 1 < n && irText[i + 1] == '/')) {
        if (irText[i] == '\n') ++line;
        ++i;
      }
      if (i >= n) return fail(start, "unterminated comment");
      i += 2;
    } else if (c == '#') {
      while (i < n && irText[i] != '\n') ++i;
    } else if (c == '"' || c == '\'') {
      const int start = line;
      const size_t begin = ++i;
      while (i < n && irText[i] != static_cast<char>(c)) {
        if (irText[i] == '\n') return fail(start, "line break in a literal");
        if (irText[i] == '\\' && i + 1 < n) {
          if (irText[i + 1] == '\n') return fail(start, "line break in a literal");
          ++i;
        }
        ++i;
      }
      if (i >= n) return fail(start, c == '"' ? "unterminated string" : "unterminated character");
      opTokens->push_back({c == '"' ? MofToken::Kind::String : MofToken::Kind::Char,
                           irText.substr(begin, i - begin), start});
      ++i;
    } else if (isIdentStart(c) || c == '$') {
      const size_t begin = i++;
      while (i < n && isIdentChar(irText[i])) ++i;
      opTokens->push_back({c == '$' ? MofToken::Kind::Alias : MofToken::Kind::Identifier,
                           irText.substr(begin, i - begin), line});
    } else if (isNumberStart(c)) {
      const size_t begin = i++;
      while (i < n && isNumberChar(irText[i])) ++i;
      opTokens->push_back({MofToken::Kind::Number, irText.substr(begin, i - begin), line});
    } else {
      opTokens->push_back({MofToken::Kind::Punct, std::string(1, static_cast<char>(c)), line});
      ++i;
    }
  }
  return true;
}

std::string lowerName(const std::string& irText) {
  std::string out = irText;
  for (char& c : out) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return out;
}

}  // namespace cimhost
