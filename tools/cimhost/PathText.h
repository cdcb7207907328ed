// Object paths from text, as they are typed on the command line and as
// the host prints them:
//
//   [//HOST/][NAMESPACE:]CLASS[.KEY=VALUE{,KEY=VALUE}]
//
// e.g. root/qrx:QRX_SwitchInFabric.GroupComponent="QRX_Fabric.Name=\"f1\"",Port=5
//
// A VALUE is a double-quoted string (backslash escapes \" \\ \n \t \r), a
// decimal integer, true or false (any case), or, for a reference key, the
// referenced path's text as a quoted string (its namespace defaults to the
// outer path's). The broker's class hierarchy gives each key its declared
// type: strings, date-times and char16 and references must be quoted,
// numbers and booleans must not, and integers are range-checked. A key the
// hierarchy does not know is typed by its text: quoted -> string, integer
// -> uint64 (sint64 when negative), true/false -> boolean.
//
// A class and its keys that the hierarchy knows are spelled as it spells
// them, so providers that compare names exactly see the declared names.
#ifndef QRX_TOOLS_CIMHOST_PATHTEXT_H_
#define QRX_TOOLS_CIMHOST_PATHTEXT_H_

#include <string>

#include "cmpift.h"
#include "tools/cimhost/broker/ClassHierarchy.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace cimhost {

// The path `irText` names, made by `irBroker` (typed by its hierarchy,
// which may be NULL), in `irDefaultNameSpace` unless the text names one.
// NULL with *opError set ("object path 'X': reason") on bad text.
CMPIObjectPath* parsePath(TestBroker& irBroker, const std::string& irText,
                          const std::string& irDefaultNameSpace, std::string* opError);

// `irClass` as the hierarchy spells it; `irClass` itself if the hierarchy
// is NULL or does not know the class.
std::string classSpelling(const ClassHierarchy* ipHierarchy, const std::string& irClass);

// Whether `irName` is a CIM name: a letter or '_', then letters, digits, '_'.
bool isCimName(const std::string& irName);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_PATHTEXT_H_
