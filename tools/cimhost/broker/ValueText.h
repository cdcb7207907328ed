// How values read in text: the key values of an object path's text form,
// instance and argument texts (toString()), and message arguments.
#ifndef QRX_TOOLS_CIMHOST_BROKER_VALUETEXT_H_
#define QRX_TOOLS_CIMHOST_BROKER_VALUETEXT_H_

#include <string>

#include "cmpift.h"

namespace cimhost {

// `irText` in double quotes, with '"' and '\' escaped by '\' and line
// breaks, tabs and carriage returns written as \n, \t and \r.
std::string quoted(const std::string& irText);

// A datum as a literal: NULL for a null value; true/false; integers in
// decimal; reals with enough digits to read back the same value; strings,
// date-times (their CIM text) and char16 quoted; references as their path
// text, quoted; embedded instances as their instance text; arguments as
// their text; arrays as {e1, e2, ...}. `ipIndent` is the indentation of
// the line the literal starts on (used by multi-line instance texts).
std::string literalText(const CMPIData& irData, int ipIndent = 0);

// The datum's plain text, as $n in a message shows it: strings unquoted,
// everything else as literalText().
std::string plainText(const CMPIData& irData);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_VALUETEXT_H_
