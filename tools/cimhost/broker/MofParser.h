// cimhost::parseMof: reads the class declarations of a MOF text, keeping
// only what the in-process broker needs to know about a class.
//
// Kept per class: its name, superclass, whether the class qualifiers
// Association and Indication are present, and the properties and
// references that carry the Key qualifier, in declaration order. A
// qualifier written with the value false (e.g. "Key (false)") counts as
// absent. Everything else is read and dropped: qualifier values, flavors,
// other properties with their array brackets and default values, methods
// with their qualified parameters, qualifier declarations
// ("qualifier ... ;") and instance declarations ("instance of ... { };").
//
// The parser is strict about structure (brackets must balance, a class
// body is "{ features };", each feature ends with ';') and reports the
// first problem as "<name>:<line>: <reason>".
#ifndef QRX_TOOLS_CIMHOST_BROKER_MOFPARSER_H_
#define QRX_TOOLS_CIMHOST_BROKER_MOFPARSER_H_

#include <string>
#include <vector>

#include "tools/cimhost/broker/ClassHierarchy.h"

namespace cimhost {

struct MofClassDecl {
  std::string name;
  std::string superclass;  // empty for a root class
  bool association = false;
  bool indication = false;
  std::vector<KeyProperty> keys;
  int line = 0;  // of the "class" keyword
};

// Appends the class declarations of `irText` (named `irName` in errors) to
// *opClasses in text order. Returns false with *opError set on the first
// syntax error; *opClasses then holds the declarations read before it.
bool parseMof(const std::string& irText, const std::string& irName,
              std::vector<MofClassDecl>* opClasses, std::string* opError);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_MOFPARSER_H_
