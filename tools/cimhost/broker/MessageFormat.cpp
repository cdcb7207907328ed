#include "tools/cimhost/broker/MessageFormat.h"

#include <cstdio>
#include <vector>

#include "tools/cimhost/broker/Types.h"

namespace cimhost {

Status formatMessage(const char* ipDefault, CMPICount ipCount, va_list ipArgs,
                     std::string* opText) {
  if (!ipDefault) return Status(CMPI_RC_ERR_INVALID_PARAMETER, "default message is NULL");
  std::vector<std::string> args;
  for (CMPICount i = 0; i < ipCount; ++i) {
    const int type = va_arg(ipArgs, int);
    switch (type) {
      case CMPI_sint32: args.push_back(std::to_string(va_arg(ipArgs, long))); break;
      case CMPI_uint32: args.push_back(std::to_string(va_arg(ipArgs, unsigned long))); break;
      case CMPI_sint64: args.push_back(std::to_string(va_arg(ipArgs, long long))); break;
      case CMPI_uint64: args.push_back(std::to_string(va_arg(ipArgs, unsigned long long))); break;
      case CMPI_real64: {
        char buf[40];
        std::snprintf(buf, sizeof(buf), "%g", va_arg(ipArgs, double));
        args.push_back(buf);
        break;
      }
      case CMPI_boolean: args.push_back(va_arg(ipArgs, int) ? "true" : "false"); break;
      case CMPI_chars: {
        const char* chars = va_arg(ipArgs, const char*);
        args.push_back(chars ? chars : "NULL");
        break;
      }
      case CMPI_string: {
        const CMPIString* string = va_arg(ipArgs, const CMPIString*);
        const char* chars = string && string->ft && string->ft->getCharPtr
                                ? string->ft->getCharPtr(string, nullptr)
                                : nullptr;
        args.push_back(chars ? chars : "NULL");
        break;
      }
      default:
        return Status(CMPI_RC_ERR_INVALID_PARAMETER,
                      "message argument " + std::to_string(i) + " has unsupported type " +
                          cimTypeName(static_cast<CMPIType>(type)));
    }
  }

  std::string text;
  for (const char* p = ipDefault; *p; ++p) {
    if (p[0] == '$' && p[1] >= '0' && p[1] <= '9' &&
        static_cast<size_t>(p[1] - '0') < args.size()) {
      text += args[static_cast<size_t>(p[1] - '0')];
      ++p;
    } else {
      text += *p;
    }
  }
  *opText = std::move(text);
  return Status::OK();
}

}  // namespace cimhost
