#include "tools/cimhost/broker/Status.h"

#include "tools/cimhost/broker/Core.h"

namespace cimhost {

CMPIStatus toCmpiStatus(Core* ipCore, const Status& irStatus) noexcept {
  CMPIStatus out{irStatus.rc(), nullptr};
  if (ipCore && !irStatus.message().empty()) {
    try {
      out.msg = ipCore->newString(irStatus.message());
    } catch (...) {
      out.msg = nullptr;
    }
  }
  return out;
}

void setStatus(CMPIStatus* opRc, Core* ipCore, const Status& irStatus) noexcept {
  if (opRc) *opRc = toCmpiStatus(ipCore, irStatus);
}

}  // namespace cimhost
