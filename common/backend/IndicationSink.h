// IndicationSink: where finished indications go.
//
// The event thread hands every indication it built, with its ownership, to
// the sink; the indication providers' sink queues it for the delivery
// thread of its class (getCIMClassName(): CIM_InstCreation,
// CIM_InstModification, CIM_InstDeletion or QRX_AlertIndication).
#ifndef QRX_COMMON_BACKEND_INDICATIONSINK_H_
#define QRX_COMMON_BACKEND_INDICATIONSINK_H_

#include <memory>

#include "common/base/SCIMCommon.h"

class IndicationSink {
 public:
  virtual ~IndicationSink() {}
  // Takes `ipIndication` (never null). Called on the event thread.
  virtual void deliverIndication(std::unique_ptr<SCIMSerdesable> ipIndication) = 0;
};

#endif  // QRX_COMMON_BACKEND_INDICATIONSINK_H_
