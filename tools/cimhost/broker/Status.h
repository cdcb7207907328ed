// cimhost::Status, the outcome of an internal broker operation, and the
// helpers that turn it into the CMPIStatus a C caller receives.
//
// Every function the broker puts into a CMPI function table is called from
// C and must not throw; its body runs inside guard() / guardStatus(), which
// turn any escaping exception (memory exhaustion, a throwing up-call
// handler) into CMPI_RC_ERR_FAILED with the exception's text.
//
// Message strings of returned statuses are made by the broker and, like
// every object it hands out, live until released or until the broker ends.
#ifndef QRX_TOOLS_CIMHOST_BROKER_STATUS_H_
#define QRX_TOOLS_CIMHOST_BROKER_STATUS_H_

#include <exception>
#include <string>
#include <utility>

#include "cmpift.h"

namespace cimhost {

class Core;

class Status {
 public:
  Status() = default;
  Status(CMPIrc ipRc, std::string ipMessage) : ivRc(ipRc), ivMessage(std::move(ipMessage)) {}

  static Status OK() { return Status(); }

  bool ok() const { return ivRc == CMPI_RC_OK; }
  CMPIrc rc() const { return ivRc; }
  const std::string& message() const { return ivMessage; }

 private:
  CMPIrc ivRc = CMPI_RC_OK;
  std::string ivMessage;
};

// {CMPI_RC_OK, NULL}.
inline CMPIStatus okStatus() { return CMPIStatus{CMPI_RC_OK, nullptr}; }

// The CMPIStatus for `irStatus`, its message (when not empty) a string made
// by `ipCore`; without a core, or without memory, the message is NULL.
CMPIStatus toCmpiStatus(Core* ipCore, const Status& irStatus) noexcept;

// Stores toCmpiStatus() in *opRc unless opRc is NULL.
void setStatus(CMPIStatus* opRc, Core* ipCore, const Status& irStatus) noexcept;

// Stores {CMPI_RC_OK, NULL} in *opRc unless opRc is NULL.
inline void setOk(CMPIStatus* opRc) {
  if (opRc) *opRc = okStatus();
}

// Runs `body` (which returns R and sets *opRc itself); if it throws, sets
// *opRc to CMPI_RC_ERR_FAILED and returns `ipFallback`.
template <class R, class F>
R guard(Core* ipCore, CMPIStatus* opRc, R ipFallback, F&& body) noexcept {
  try {
    return body();
  } catch (const std::exception& e) {
    setStatus(opRc, ipCore, Status(CMPI_RC_ERR_FAILED, e.what()));
  } catch (...) {
    setStatus(opRc, ipCore, Status(CMPI_RC_ERR_FAILED, "unknown exception"));
  }
  return ipFallback;
}

// Runs `body` (which returns a Status) and converts its result.
template <class F>
CMPIStatus guardStatus(Core* ipCore, F&& body) noexcept {
  try {
    return toCmpiStatus(ipCore, body());
  } catch (const std::exception& e) {
    return toCmpiStatus(ipCore, Status(CMPI_RC_ERR_FAILED, e.what()));
  } catch (...) {
    return toCmpiStatus(ipCore, Status(CMPI_RC_ERR_FAILED, "unknown exception"));
  }
}

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_STATUS_H_
