// Names of CMPI types: of type codes for messages, and of encapsulated
// objects for the broker's getType() / isOfType().
#ifndef QRX_TOOLS_CIMHOST_BROKER_TYPES_H_
#define QRX_TOOLS_CIMHOST_BROKER_TYPES_H_

#include <string>

#include "cmpift.h"

namespace cimhost {

// "uint16", "string[]", "ref", "null", or "type 0x1234" for an unknown code.
std::string cimTypeName(CMPIType ipType);

// "CMPIInstance", "CMPIObjectPath", "CMPIString", "CMPIArray", "CMPIArgs",
// "CMPIDateTime", "CMPIEnumeration", "CMPIContext", "CMPIResult" or
// "CMPIError" for an object this library made (told by its function
// table); NULL for NULL, a NULL hdl, or anything else.
const char* encTypeName(const void* ipObject);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_TYPES_H_
