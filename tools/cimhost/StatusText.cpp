#include "tools/cimhost/StatusText.h"

namespace cimhost {

const char* rcName(CMPIrc ipRc) {
  switch (ipRc) {
    case CMPI_RC_OK: return "CMPI_RC_OK";
    case CMPI_RC_ERR_FAILED: return "CMPI_RC_ERR_FAILED";
    case CMPI_RC_ERR_ACCESS_DENIED: return "CMPI_RC_ERR_ACCESS_DENIED";
    case CMPI_RC_ERR_INVALID_NAMESPACE: return "CMPI_RC_ERR_INVALID_NAMESPACE";
    case CMPI_RC_ERR_INVALID_PARAMETER: return "CMPI_RC_ERR_INVALID_PARAMETER";
    case CMPI_RC_ERR_INVALID_CLASS: return "CMPI_RC_ERR_INVALID_CLASS";
    case CMPI_RC_ERR_NOT_FOUND: return "CMPI_RC_ERR_NOT_FOUND";
    case CMPI_RC_ERR_NOT_SUPPORTED: return "CMPI_RC_ERR_NOT_SUPPORTED";
    case CMPI_RC_ERR_CLASS_HAS_CHILDREN: return "CMPI_RC_ERR_CLASS_HAS_CHILDREN";
    case CMPI_RC_ERR_CLASS_HAS_INSTANCES: return "CMPI_RC_ERR_CLASS_HAS_INSTANCES";
    case CMPI_RC_ERR_INVALID_SUPERCLASS: return "CMPI_RC_ERR_INVALID_SUPERCLASS";
    case CMPI_RC_ERR_ALREADY_EXISTS: return "CMPI_RC_ERR_ALREADY_EXISTS";
    case CMPI_RC_ERR_NO_SUCH_PROPERTY: return "CMPI_RC_ERR_NO_SUCH_PROPERTY";
    case CMPI_RC_ERR_TYPE_MISMATCH: return "CMPI_RC_ERR_TYPE_MISMATCH";
    case CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED: return "CMPI_RC_ERR_QUERY_LANGUAGE_NOT_SUPPORTED";
    case CMPI_RC_ERR_INVALID_QUERY: return "CMPI_RC_ERR_INVALID_QUERY";
    case CMPI_RC_ERR_METHOD_NOT_AVAILABLE: return "CMPI_RC_ERR_METHOD_NOT_AVAILABLE";
    case CMPI_RC_ERR_METHOD_NOT_FOUND: return "CMPI_RC_ERR_METHOD_NOT_FOUND";
    case CMPI_RC_DO_NOT_UNLOAD: return "CMPI_RC_DO_NOT_UNLOAD";
    case CMPI_RC_NEVER_UNLOAD: return "CMPI_RC_NEVER_UNLOAD";
    case CMPI_RC_ERR_INVALID_HANDLE: return "CMPI_RC_ERR_INVALID_HANDLE";
    case CMPI_RC_ERR_INVALID_DATA_TYPE: return "CMPI_RC_ERR_INVALID_DATA_TYPE";
    case CMPI_RC_ERROR_SYSTEM: return "CMPI_RC_ERROR_SYSTEM";
    case CMPI_RC_ERROR: return "CMPI_RC_ERROR";
  }
  return "CMPI_RC_UNKNOWN";
}

std::optional<std::string> statusMessage(const CMPIStatus& irStatus) {
  if (!irStatus.msg || !irStatus.msg->ft || !irStatus.msg->ft->getCharPtr) return std::nullopt;
  const char* chars = irStatus.msg->ft->getCharPtr(irStatus.msg, nullptr);
  if (!chars) return std::nullopt;
  return std::string(chars);
}

std::string failureText(const std::string& irOperation, CMPIrc ipRc,
                        const std::optional<std::string>& irMessage) {
  std::string text = irOperation + " failed: " + rcName(ipRc) + " (" +
                     std::to_string(static_cast<int>(ipRc)) + ")";
  if (irMessage) text += ": " + *irMessage;
  return text;
}

}  // namespace cimhost
