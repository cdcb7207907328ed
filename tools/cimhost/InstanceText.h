// How the host prints what providers return: object paths, instances as
// MOF-like text or JSON, and method results.
//
// MOF-like instance text: the instance's path as a comment, then
//   instance of QRX_Switch {
//       Name = "sw1";
//       Ports = {1, 2};
//   };
// with values as ValueText.h writes literals.
//
// JSON: an instance is {"path": "...", "class": "...", "properties":
// {...}} with properties in the order the provider set them; values are
// JSON numbers, booleans, strings (strings, char16, date-times as their CIM
// text, references as their path text), arrays, null for a null value, and
// embedded instances as nested instance objects. A method result is
// {"returnValue": ..., "out": {...}}.
//
// Everything read from the objects is made by the broker they belong to.
#ifndef QRX_TOOLS_CIMHOST_INSTANCETEXT_H_
#define QRX_TOOLS_CIMHOST_INSTANCETEXT_H_

#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "cmpift.h"

namespace cimhost {

using Json = nlohmann::ordered_json;

// The string's characters; "" for NULL.
std::string stringText(const CMPIString* ipString);

// The path's text form; "<bad path>" if the object cannot tell it.
std::string pathText(const CMPIObjectPath* ipPath);

// The properties an instance is printed with: all, or only those a
// property list names (ignoring case), as an object manager hands them to
// its client.
using PropertyFilter = const std::vector<std::string>*;  // NULL: all

// The MOF-like text of an instance, ending with "};\n".
std::string instanceMof(const CMPIInstance* ipInstance, PropertyFilter ipOnly = nullptr);

Json instanceJson(const CMPIInstance* ipInstance, PropertyFilter ipOnly = nullptr);
Json dataJson(const CMPIData& irData);

// "ReturnValue = <literal>" (NULL when the provider returned none), then
// one "<name> = <literal>" line per output argument.
std::string methodResultText(const std::optional<CMPIData>& irReturnValue,
                             const CMPIArgs* ipOut);
Json methodResultJson(const std::optional<CMPIData>& irReturnValue, const CMPIArgs* ipOut);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_INSTANCETEXT_H_
