// Scalar values from command-line text: the CIM type names the host
// accepts and the reading of one value of such a type.
//
// Integers are decimal with an optional sign and are range-checked against
// their type; booleans are true or false in any case; reals are decimal or
// exponent notation and must be finite; char16 is one ASCII character; a
// datetime is the 25-character CIM text ("20240131120000.000000+060", or
// the interval form "00000001000000.000000:000"); a string is taken as it
// is. References are not scalars here: their text is an object path
// (PathText.h).
#ifndef QRX_TOOLS_CIMHOST_SCALARTEXT_H_
#define QRX_TOOLS_CIMHOST_SCALARTEXT_H_

#include <string>

#include "cmpift.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace cimhost {

// The type a name stands for: boolean, uint8 ... uint64, sint8 ... sint64,
// real32, real64, string, datetime, char16, or ref (CMPI_ref). Names
// compare case-insensitively. False for anything else.
bool cimTypeFromName(const std::string& irName, CMPIType* opType);

// The names cimTypeFromName() accepts, comma-separated, for messages.
const char* cimTypeNames();

// Whether `ipType` is one of the integer types.
bool isIntegerType(CMPIType ipType);

// Reads `irText` as a value of the scalar type `ipType` (not an array, not
// CMPI_ref) into *opValue. Strings and date-times are made by `irBroker`
// and live as long as it does. `irWhat` names the value in messages, as in
// "uint16 value 70000 out of range for RequestedState". Returns false with
// *opError set on bad text.
bool parseScalar(TestBroker& irBroker, const std::string& irText, CMPIType ipType,
                 const std::string& irWhat, CMPIValue* opValue, std::string* opError);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_SCALARTEXT_H_
