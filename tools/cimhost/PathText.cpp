#include "tools/cimhost/PathText.h"

#include <strings.h>

#include <vector>

#include "cmpimacs.h"
#include "tools/cimhost/ScalarText.h"

namespace cimhost {

namespace {

bool sameName(const std::string& irA, const std::string& irB) {
  return strcasecmp(irA.c_str(), irB.c_str()) == 0;
}

bool isDigits(const std::string& irText, size_t ipFrom) {
  if (ipFrom >= irText.size()) return false;
  for (size_t i = ipFrom; i < irText.size(); ++i) {
    if (irText[i] < '0' || irText[i] > '9') return false;
  }
  return true;
}

// One KEY=VALUE of the text, its value unescaped when quoted.
struct KeyText {
  std::string name;
  std::string value;
  bool quoted = false;
};

// Splits "KEY=VALUE,..." into keys. Returns false with *opReason set.
bool splitKeys(const std::string& irText, std::vector<KeyText>* opKeys, std::string* opReason) {
  size_t pos = 0;
  while (true) {
    const size_t eq = irText.find('=', pos);
    KeyText key;
    key.name = irText.substr(pos, eq == std::string::npos ? std::string::npos : eq - pos);
    if (key.name.empty()) {
      *opReason = "key name expected at position " + std::to_string(pos + 1);
      return false;
    }
    if (eq == std::string::npos) {
      *opReason = "expected '=' after key " + key.name;
      return false;
    }
    if (!isCimName(key.name)) {
      *opReason = "bad key name '" + key.name + "'";
      return false;
    }
    for (const KeyText& other : *opKeys) {
      if (sameName(other.name, key.name)) {
        *opReason = "key " + key.name + " given twice";
        return false;
      }
    }
    pos = eq + 1;
    if (pos < irText.size() && irText[pos] == '"') {
      key.quoted = true;
      ++pos;
      bool closed = false;
      while (pos < irText.size() && !closed) {
        char c = irText[pos++];
        if (c == '"') {
          closed = true;
        } else if (c == '\\') {
          if (pos >= irText.size()) break;
          char e = irText[pos++];
          switch (e) {
            case '"': case '\\': key.value += e; break;
            case 'n': key.value += '\n'; break;
            case 't': key.value += '\t'; break;
            case 'r': key.value += '\r'; break;
            default:
              *opReason = std::string("unknown escape '\\") + e + "' in the value of key " +
                          key.name;
              return false;
          }
        } else {
          key.value += c;
        }
      }
      if (!closed) {
        *opReason = "unterminated string in the value of key " + key.name;
        return false;
      }
      if (pos < irText.size() && irText[pos] != ',') {
        *opReason = "expected ',' after the value of key " + key.name;
        return false;
      }
    } else {
      const size_t comma = irText.find(',', pos);
      key.value = irText.substr(pos, comma == std::string::npos ? std::string::npos : comma - pos);
      pos = comma == std::string::npos ? irText.size() : comma;
      if (key.value.empty()) {
        *opReason = "missing value of key " + key.name;
        return false;
      }
    }
    opKeys->push_back(std::move(key));
    if (pos >= irText.size()) return true;
    ++pos;  // ','
    if (pos >= irText.size()) {
      *opReason = "key expected after the last ','";
      return false;
    }
  }
}

// The key as declared by the hierarchy: its spelling and type; false for
// a key the hierarchy does not know.
bool declaredKey(const ClassHierarchy* ipHierarchy, const std::string& irClass,
                 const std::string& irKey, KeyProperty* opKey) {
  if (!ipHierarchy) return false;
  for (const KeyProperty& key : ipHierarchy->keysOf(irClass)) {
    if (sameName(key.name, irKey)) {
      *opKey = key;
      return true;
    }
  }
  return false;
}

bool addKey(CMPIObjectPath* ipPath, const std::string& irName, const CMPIValue& irValue,
            CMPIType ipType, std::string* opReason) {
  CMPIStatus rc = CMAddKey(ipPath, irName.c_str(), &irValue, ipType);
  if (rc.rc == CMPI_RC_OK) return true;
  *opReason = "cannot add key " + irName;
  return false;
}

// Adds a key whose type the text alone tells.
bool addUndeclaredKey(TestBroker& irBroker, CMPIObjectPath* ipPath, const KeyText& irKey,
                      std::string* opReason) {
  CMPIValue value;
  CMPIType type = CMPI_string;  // when quoted
  if (irKey.quoted) {
    // a string
  } else if (sameName(irKey.value, "true") || sameName(irKey.value, "false")) {
    type = CMPI_boolean;
  } else if (irKey.value[0] == '-' && isDigits(irKey.value, 1)) {
    type = CMPI_sint64;
  } else if (isDigits(irKey.value, irKey.value[0] == '+' ? 1 : 0)) {
    type = CMPI_uint64;
  } else {
    *opReason = "bad value '" + irKey.value + "' of key " + irKey.name +
                " (a quoted string, an integer, true or false)";
    return false;
  }
  if (!parseScalar(irBroker, irKey.value, type, "key " + irKey.name, &value, opReason)) {
    return false;
  }
  return addKey(ipPath, irKey.name, value, type, opReason);
}

bool addDeclaredKey(TestBroker& irBroker, CMPIObjectPath* ipPath, const std::string& irClass,
                    const std::string& irNameSpace, const KeyProperty& irDecl,
                    const KeyText& irKey, std::string* opReason) {
  const std::string what = "key " + irDecl.name;
  CMPIType type = CMPI_string;
  if (irDecl.isReference()) {
    type = CMPI_ref;
  } else if (!cimTypeFromName(irDecl.type, &type) || type == CMPI_ref) {
    // A type this host cannot build: let the text decide.
    KeyText renamed = irKey;
    renamed.name = irDecl.name;
    return addUndeclaredKey(irBroker, ipPath, renamed, opReason);
  }
  const bool wantsQuotes =
      type == CMPI_string || type == CMPI_dateTime || type == CMPI_char16 || type == CMPI_ref;
  if (wantsQuotes != irKey.quoted) {
    *opReason = what + " of " + irClass + " is a " + (type == CMPI_ref ? "reference" : irDecl.type) +
                "; write its value " + (wantsQuotes ? "in double quotes" : "without quotes");
    return false;
  }
  CMPIValue value;
  if (type == CMPI_ref) {
    std::string inner;
    value.ref = parsePath(irBroker, irKey.value, irNameSpace, &inner);
    if (!value.ref) {
      *opReason = what + ": " + inner;
      return false;
    }
  } else if (!parseScalar(irBroker, irKey.value, type, what, &value, opReason)) {
    return false;
  }
  return addKey(ipPath, irDecl.name, value, type, opReason);
}

// The parts of a path text, its keys not yet typed.
struct PathParts {
  std::string host;
  std::string nameSpace;
  std::string className;
  std::vector<KeyText> keys;
};

// Splits [//HOST/][NAMESPACE:]CLASS[.KEYS]; *opParts->nameSpace is kept
// when the text names none.
bool splitPath(const std::string& irText, PathParts* opParts, std::string* opReason) {
  std::string rest = irText;
  if (rest.compare(0, 2, "//") == 0) {
    const size_t slash = rest.find('/', 2);
    opParts->host = rest.substr(2, slash == std::string::npos ? std::string::npos : slash - 2);
    rest = slash == std::string::npos ? std::string() : rest.substr(slash + 1);
    if (opParts->host.empty()) {
      *opReason = "empty host name after '//'";
      return false;
    }
  }
  // A namespace ends at the first ':' that comes before any '.'.
  const size_t colon = rest.find(':');
  if (colon != std::string::npos && colon < rest.find('.')) {
    opParts->nameSpace = rest.substr(0, colon);
    rest = rest.substr(colon + 1);
    if (opParts->nameSpace.empty()) {
      *opReason = "empty namespace before ':'";
      return false;
    }
  }
  const size_t dot = rest.find('.');
  opParts->className = rest.substr(0, dot);
  if (opParts->className.empty()) {
    *opReason = "class name missing";
    return false;
  }
  if (!isCimName(opParts->className)) {
    *opReason = "bad class name '" + opParts->className + "'";
    return false;
  }
  if (dot == std::string::npos) return true;
  if (dot + 1 == rest.size()) {
    *opReason = "key expected after '.'";
    return false;
  }
  return splitKeys(rest.substr(dot + 1), &opParts->keys, opReason);
}

}  // namespace

bool isCimName(const std::string& irName) {
  if (irName.empty()) return false;
  for (size_t i = 0; i < irName.size(); ++i) {
    const char c = irName[i];
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
    if (!letter && !(i > 0 && c >= '0' && c <= '9')) return false;
  }
  return true;
}

std::string classSpelling(const ClassHierarchy* ipHierarchy, const std::string& irClass) {
  if (ipHierarchy && ipHierarchy->isKnown(irClass)) {
    for (const std::string& name : ipHierarchy->classNames()) {
      if (sameName(name, irClass)) return name;
    }
  }
  return irClass;
}

CMPIObjectPath* parsePath(TestBroker& irBroker, const std::string& irText,
                          const std::string& irDefaultNameSpace, std::string* opError) {
  PathParts parts;
  parts.nameSpace = irDefaultNameSpace;
  std::string reason;
  CMPIObjectPath* path = nullptr;
  if (splitPath(irText, &parts, &reason)) {
    const ClassHierarchy* hierarchy = irBroker.hierarchy();
    const std::string className = classSpelling(hierarchy, parts.className);
    CMPIStatus rc = {CMPI_RC_OK, nullptr};
    path = irBroker.newObjectPath(parts.nameSpace.c_str(), className.c_str(), &rc);
    if (!path || rc.rc != CMPI_RC_OK) reason = "cannot make the path";
    if (reason.empty() && !parts.host.empty()) CMSetHostname(path, parts.host.c_str());
    for (size_t i = 0; reason.empty() && i < parts.keys.size(); ++i) {
      KeyProperty decl;
      if (declaredKey(hierarchy, className, parts.keys[i].name, &decl)) {
        addDeclaredKey(irBroker, path, className, parts.nameSpace, decl, parts.keys[i], &reason);
      } else {
        addUndeclaredKey(irBroker, path, parts.keys[i], &reason);
      }
    }
  }
  if (reason.empty()) return path;
  *opError = "object path '" + irText + "': " + reason;
  return nullptr;
}

}  // namespace cimhost
