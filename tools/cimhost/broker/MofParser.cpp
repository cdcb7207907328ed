#include "tools/cimhost/broker/MofParser.h"

#include <strings.h>

#include <map>

#include "tools/cimhost/broker/MofScanner.h"

namespace cimhost {

namespace {

char closerOf(char ipOpen) {
  switch (ipOpen) {
    case '(': return ')';
    case '[': return ']';
    case '{': return '}';
    default: return 0;
  }
}

bool isCloser(const MofToken& irTok) {
  return irTok.isPunct(')') || irTok.isPunct(']') || irTok.isPunct('}');
}

// A recursive-descent reader over the token list; one instance per text.
class Parser {
 public:
  Parser(const std::vector<MofToken>& irTokens, const std::string& irName,
         std::vector<MofClassDecl>* opClasses, std::string* opError)
      : ivTokens(irTokens), ivName(irName), ivClasses(opClasses), ivError(opError) {}

  bool parse() {
    while (!atEnd()) {
      Qualifiers qualifiers;
      if (peek().isPunct('[') && !parseQualifierList(&qualifiers)) return false;
      if (atEnd()) return failHere("qualifier list not followed by a declaration");
      const MofToken& tok = peek();
      if (tok.isKeyword("class")) {
        if (!parseClass(qualifiers)) return false;
      } else if (tok.isKeyword("instance")) {
        if (!skipInstance()) return false;
      } else if (tok.isKeyword("qualifier")) {
        std::vector<MofToken> ignored;
        if (!collectUntilSemicolon(&ignored)) return false;
      } else {
        return failHere("unexpected '" + tok.text + "'");
      }
    }
    return true;
  }

 private:
  // Qualifier names (lower case) mapped to whether they are in effect.
  using Qualifiers = std::map<std::string, bool>;

  bool atEnd() const { return ivPos >= ivTokens.size(); }
  const MofToken& peek() const { return ivTokens[ivPos]; }

  bool fail(int ipLine, const std::string& irReason) {
    *ivError = ivName + ":" + std::to_string(ipLine) + ": " + irReason;
    return false;
  }

  // Fails at the current token, or at the last line when the input ended.
  bool failHere(const std::string& irReason) {
    if (!atEnd()) return fail(peek().line, irReason);
    return fail(ivTokens.empty() ? 1 : ivTokens.back().line, irReason);
  }

  bool expectPunct(char ipC, const char* ipWhat) {
    if (atEnd() || !peek().isPunct(ipC)) {
      return failHere(std::string("expected '") + ipC + "' " + ipWhat);
    }
    ++ivPos;
    return true;
  }

  bool expectIdentifier(std::string* opText, const char* ipWhat) {
    if (atEnd() || peek().kind != MofToken::Kind::Identifier) {
      return failHere(std::string("expected ") + ipWhat);
    }
    *opText = ivTokens[ivPos++].text;
    return true;
  }

  // Consumes the bracketed group that starts at the current opening token,
  // appending its tokens (brackets included) to *opOut.
  bool collectGroup(std::vector<MofToken>* opOut) {
    std::vector<char> open;
    do {
      if (atEnd()) {
        return fail(ivTokens.back().line, std::string("missing '") + closerOf(open.back()) + "'");
      }
      const MofToken& tok = ivTokens[ivPos];
      if (tok.kind == MofToken::Kind::Punct && closerOf(tok.text[0])) {
        open.push_back(tok.text[0]);
      } else if (isCloser(tok)) {
        if (tok.text[0] != closerOf(open.back())) {
          return fail(tok.line, "'" + tok.text + "' does not match '" + open.back() + "'");
        }
        open.pop_back();
      }
      opOut->push_back(tok);
      ++ivPos;
    } while (!open.empty());
    return true;
  }

  // Consumes tokens up to and including the next ';' outside brackets,
  // appending those before it to *opOut.
  bool collectUntilSemicolon(std::vector<MofToken>* opOut) {
    while (true) {
      if (atEnd()) return failHere("missing ';'");
      const MofToken& tok = peek();
      if (tok.isPunct(';')) {
        ++ivPos;
        return true;
      }
      if (isCloser(tok)) return failHere("unexpected '" + tok.text + "' (missing ';'?)");
      if (tok.kind == MofToken::Kind::Punct && closerOf(tok.text[0])) {
        if (!collectGroup(opOut)) return false;
      } else {
        opOut->push_back(tok);
        ++ivPos;
      }
    }
  }

  // "[" name [value] [: flavors] {"," ...} "]". A qualifier is in effect
  // unless its value is exactly "(false)".
  bool parseQualifierList(Qualifiers* opQualifiers) {
    ++ivPos;  // '['
    while (true) {
      std::string name;
      if (!expectIdentifier(&name, "a qualifier name")) return false;
      std::vector<MofToken> rest;
      while (!atEnd() && !peek().isPunct(',') && !peek().isPunct(']')) {
        const MofToken& tok = peek();
        if (isCloser(tok) || tok.isPunct(';')) {
          return failHere("unexpected '" + tok.text + "' in qualifier list");
        }
        if (tok.kind == MofToken::Kind::Punct && closerOf(tok.text[0])) {
          if (!collectGroup(&rest)) return false;
        } else {
          rest.push_back(tok);
          ++ivPos;
        }
      }
      if (atEnd()) return failHere("missing ']' after qualifier list");
      const bool isFalse = rest.size() >= 3 && rest[0].isPunct('(') &&
                           rest[1].isKeyword("false") && rest[2].isPunct(')');
      (*opQualifiers)[lowerName(name)] = !isFalse;
      if (peek().isPunct(']')) {
        ++ivPos;
        return true;
      }
      ++ivPos;  // ','
    }
  }

  static bool has(const Qualifiers& irQualifiers, const char* ipName) {
    auto it = irQualifiers.find(ipName);
    return it != irQualifiers.end() && it->second;
  }

  // "instance of" Class ["as" $alias] "{" ... "}" ";"
  bool skipInstance() {
    const int line = peek().line;
    ++ivPos;
    if (atEnd() || !peek().isKeyword("of")) return failHere("expected 'of' after 'instance'");
    ++ivPos;
    while (!atEnd() && !peek().isPunct('{')) {
      if (peek().isPunct(';') || isCloser(peek())) return failHere("expected '{' in instance");
      ++ivPos;
    }
    if (atEnd()) return fail(line, "instance without a body");
    std::vector<MofToken> ignored;
    if (!collectGroup(&ignored)) return false;
    return expectPunct(';', "after instance");
  }

  // "class" Name [":" Super] "{" {feature} "}" ";"
  bool parseClass(const Qualifiers& irQualifiers) {
    MofClassDecl decl;
    decl.line = peek().line;
    decl.association = has(irQualifiers, "association");
    decl.indication = has(irQualifiers, "indication");
    ++ivPos;
    if (!expectIdentifier(&decl.name, "a class name")) return false;
    if (!atEnd() && peek().isPunct(':')) {
      ++ivPos;
      if (!expectIdentifier(&decl.superclass, "a superclass name")) return false;
    }
    if (!expectPunct('{', "to open the class body")) return false;
    while (true) {
      if (atEnd()) return fail(decl.line, "class " + decl.name + " has no closing '}'");
      if (peek().isPunct('}')) {
        ++ivPos;
        break;
      }
      if (!parseFeature(&decl)) return false;
    }
    if (!expectPunct(';', "after the class body")) return false;
    ivClasses->push_back(std::move(decl));
    return true;
  }

  // [qualifiers] Type Name ["[" n "]"] ["=" value] ";"
  // [qualifiers] Class "REF" Name ["=" value] ";"
  // [qualifiers] Type Name "(" parameters ")" ";"       (a method: dropped)
  bool parseFeature(MofClassDecl* opDecl) {
    Qualifiers qualifiers;
    if (peek().isPunct('[') && !parseQualifierList(&qualifiers)) return false;
    if (atEnd()) return failHere("missing feature after qualifier list");
    const int line = peek().line;
    std::vector<MofToken> toks;
    if (!collectUntilSemicolon(&toks)) return false;

    const bool isReference = toks.size() >= 2 && toks[1].isKeyword("ref");
    const size_t nameAt = isReference ? 2 : 1;
    if (toks.size() <= nameAt || toks[0].kind != MofToken::Kind::Identifier ||
        toks[nameAt].kind != MofToken::Kind::Identifier) {
      return fail(line, "malformed property or method declaration");
    }
    if (toks.size() > nameAt + 1) {
      const MofToken& after = toks[nameAt + 1];
      if (after.isPunct('(')) return true;  // a method
      if (!after.isPunct('[') && !after.isPunct('=')) {
        return fail(after.line, "unexpected '" + after.text + "' after " + toks[nameAt].text);
      }
    }
    if (!has(qualifiers, "key")) return true;

    KeyProperty key;
    key.name = toks[nameAt].text;
    key.type = isReference ? toks[0].text + " REF" : toks[0].text;
    for (const KeyProperty& existing : opDecl->keys) {
      if (strcasecmp(existing.name.c_str(), key.name.c_str()) == 0) {
        return fail(line, "key " + key.name + " declared twice in " + opDecl->name);
      }
    }
    opDecl->keys.push_back(std::move(key));
    return true;
  }

  const std::vector<MofToken>& ivTokens;
  const std::string& ivName;
  std::vector<MofClassDecl>* ivClasses;
  std::string* ivError;
  size_t ivPos = 0;
};

}  // namespace

bool parseMof(const std::string& irText, const std::string& irName,
              std::vector<MofClassDecl>* opClasses, std::string* opError) {
  std::vector<MofToken> tokens;
  if (!scanMof(irText, irName, &tokens, opError)) return false;
  return Parser(tokens, irName, opClasses, opError).parse();
}

}  // namespace cimhost
