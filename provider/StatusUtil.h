// CMPIStatus values as the providers build them.
#ifndef QRX_PROVIDER_STATUSUTIL_H_
#define QRX_PROVIDER_STATUSUTIL_H_

#include "cmpidt.h"
#include "cmpift.h"
#include "cmpimacs.h"

// {CMPI_RC_OK, NULL}.
inline CMPIStatus okStatus() {
  CMPIStatus status = {CMPI_RC_OK, nullptr};
  return status;
}

// Sets `opRc` to `ipCode` with the message `ipText` made by `ipBroker`
// (no message without a broker).
inline void setStatus(CMPIStatus* opRc, const CMPIBroker* ipBroker, CMPIrc ipCode,
                      const char* ipText) {
  opRc->rc = ipCode;
  opRc->msg = ipBroker != nullptr ? CMNewString(ipBroker, ipText, nullptr) : nullptr;
}

#endif  // QRX_PROVIDER_STATUSUTIL_H_
