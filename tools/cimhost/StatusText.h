// How the host reports a CMPI status: the return code's name and the one
// line printed for a failed operation.
#ifndef QRX_TOOLS_CIMHOST_STATUSTEXT_H_
#define QRX_TOOLS_CIMHOST_STATUSTEXT_H_

#include <optional>
#include <string>

#include "cmpift.h"

namespace cimhost {

// "CMPI_RC_ERR_NOT_FOUND" for 6; "CMPI_RC_UNKNOWN" for a code CMPI does
// not define.
const char* rcName(CMPIrc ipRc);

// The status message's characters; nothing when the status has no message
// (or its string has no characters).
std::optional<std::string> statusMessage(const CMPIStatus& irStatus);

// "<operation> failed: <RC_NAME> (<code>): <message>", the message part
// left out when there is none.
std::string failureText(const std::string& irOperation, CMPIrc ipRc,
                        const std::optional<std::string>& irMessage);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_STATUSTEXT_H_
