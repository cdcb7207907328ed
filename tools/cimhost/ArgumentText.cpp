#include "tools/cimhost/ArgumentText.h"

#include <strings.h>

#include "cmpimacs.h"
#include "tools/cimhost/PathText.h"
#include "tools/cimhost/ScalarText.h"

namespace cimhost {

namespace {

// One element (or scalar) of type `ipType`, references included.
bool parseElement(TestBroker& irBroker, const std::string& irText, CMPIType ipType,
                  const std::string& irWhat, const std::string& irNameSpace, CMPIValue* opValue,
                  std::string* opError) {
  if (ipType != CMPI_ref) {
    return parseScalar(irBroker, irText, ipType, irWhat, opValue, opError);
  }
  std::string reason;
  opValue->ref = parsePath(irBroker, irText, irNameSpace, &reason);
  if (opValue->ref) return true;
  *opError = "bad reference for " + irWhat + ": " + reason;
  return false;
}

bool parseArray(TestBroker& irBroker, const std::string& irText, CMPIType ipType,
                const std::string& irName, const std::string& irNameSpace, CMPIValue* opValue,
                std::string* opError) {
  std::vector<std::string> elements;
  std::string reason;
  if (!splitArrayText(irText, &elements, &reason)) {
    *opError = reason + " in the value of " + irName;
    return false;
  }
  CMPIStatus rc = {CMPI_RC_OK, nullptr};
  CMPIArray* array = CMNewArray(irBroker.broker(), static_cast<CMPICount>(elements.size()),
                                ipType, &rc);
  if (!array || rc.rc != CMPI_RC_OK) {
    *opError = "cannot make an array for " + irName;
    return false;
  }
  for (size_t i = 0; i < elements.size(); ++i) {
    CMPIValue element;
    const std::string what = irName + "[" + std::to_string(i) + "]";
    if (!parseElement(irBroker, elements[i], ipType, what, irNameSpace, &element, opError)) {
      return false;
    }
    rc = CMSetArrayElementAt(array, static_cast<CMPICount>(i), &element, ipType);
    if (rc.rc != CMPI_RC_OK) {
      *opError = "cannot store " + what;
      return false;
    }
  }
  opValue->array = array;
  return true;
}

}  // namespace

bool splitArrayText(const std::string& irText, std::vector<std::string>* opElements,
                    std::string* opError) {
  opElements->clear();
  if (irText.empty()) return true;
  size_t pos = 0;
  while (true) {
    std::string element;
    if (pos < irText.size() && irText[pos] == '"') {
      bool closed = false;
      for (++pos; pos < irText.size() && !closed; ++pos) {
        if (irText[pos] == '"') {
          closed = true;
        } else if (irText[pos] == '\\' && pos + 1 < irText.size()) {
          element += irText[++pos];
        } else {
          element += irText[pos];
        }
      }
      if (!closed) {
        *opError = "unterminated quote in element " + std::to_string(opElements->size());
        return false;
      }
      if (pos < irText.size() && irText[pos] != ',') {
        *opError = "text after the closing quote of element " + std::to_string(opElements->size());
        return false;
      }
    } else {
      const size_t comma = irText.find(',', pos);
      element = irText.substr(pos, comma == std::string::npos ? std::string::npos : comma - pos);
      pos = comma == std::string::npos ? irText.size() : comma;
    }
    opElements->push_back(std::move(element));
    if (pos >= irText.size()) return true;
    ++pos;  // ',' : another element follows, possibly empty
    if (pos == irText.size()) {
      opElements->emplace_back();
      return true;
    }
  }
}

bool parseTypedValue(TestBroker& irBroker, const std::string& irText,
                     const std::string& irNameSpace, TypedValue* opValue, std::string* opError) {
  const size_t eq = irText.find('=');
  if (eq == std::string::npos) {
    *opError = "bad argument '" + irText + "': expected NAME=VALUE or NAME:TYPE=VALUE";
    return false;
  }
  const std::string head = irText.substr(0, eq);
  const std::string valueText = irText.substr(eq + 1);
  const size_t colon = head.find(':');
  const std::string name = head.substr(0, colon);
  if (!isCimName(name)) {
    *opError = "bad argument '" + irText + "': '" + name + "' is not a valid name";
    return false;
  }
  std::string typeText = colon == std::string::npos ? "string" : head.substr(colon + 1);
  const bool isArray = typeText.size() > 2 && typeText.compare(typeText.size() - 2, 2, "[]") == 0;
  if (isArray) typeText.resize(typeText.size() - 2);
  CMPIType type = CMPI_null;
  if (!cimTypeFromName(typeText, &type)) {
    *opError = "unknown type '" + typeText + "' for " + name + " (one of " + cimTypeNames() +
               ", each also as TYPE[])";
    return false;
  }
  opValue->name = name;
  opValue->type = isArray ? static_cast<CMPIType>(type | CMPI_ARRAY) : type;
  if (isArray) return parseArray(irBroker, valueText, type, name, irNameSpace, &opValue->value, opError);
  return parseElement(irBroker, valueText, type, name, irNameSpace, &opValue->value, opError);
}

bool parseTypedValues(TestBroker& irBroker, const std::vector<std::string>& irTexts,
                      const std::string& irNameSpace, std::vector<TypedValue>* opValues,
                      std::string* opError) {
  opValues->clear();
  for (const std::string& text : irTexts) {
    TypedValue value;
    if (!parseTypedValue(irBroker, text, irNameSpace, &value, opError)) return false;
    for (const TypedValue& other : *opValues) {
      if (strcasecmp(other.name.c_str(), value.name.c_str()) == 0) {
        *opError = value.name + " given twice";
        return false;
      }
    }
    opValues->push_back(value);
  }
  return true;
}

}  // namespace cimhost
