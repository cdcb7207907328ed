// IndicationDelivery: the delivery queue and thread of one indication
// class.
//
// The event thread queues finished indications (deliverIndication); the
// delivery thread takes them in order, writes each into a new CMPI
// instance in "root/qrx" and hands it to the object manager with
// CBDeliverIndication. The thread runs between start() (the provider's
// enableIndications: the broker prepares a context for it,
// CBPrepareAttachThread, and the thread attaches to it, CBAttachThread)
// and stop() (disableIndications, cleanup, unload: the thread detaches,
// CBDetachThread, and ends; what is still queued is destroyed). While no
// thread runs, queued indications are dropped.
#ifndef QRX_PROVIDER_INDICATIONDELIVERY_H_
#define QRX_PROVIDER_INDICATIONDELIVERY_H_

#include <cstddef>
#include <deque>
#include <memory>
#include <string>

#include "cmpidt.h"
#include "common/base/Mutex.h"
#include "common/base/SCIMCommon.h"
#include "common/base/Semaphore.h"
#include "common/base/Thread.h"

class IndicationDelivery {
 public:
  explicit IndicationDelivery(const char* ipClassName);
  ~IndicationDelivery();
  IndicationDelivery(const IndicationDelivery&) = delete;
  IndicationDelivery& operator=(const IndicationDelivery&) = delete;

  const char* className() const { return ivClassName; }

  // Starts the thread for `ipBroker`, with a context prepared from
  // `ipContext`. True when it runs (already ran: true, nothing changes);
  // false, with a trace line, when the broker gave no context.
  bool start(const CMPIBroker* ipBroker, const CMPIContext* ipContext);
  // Ends the thread and destroys what is queued. Does nothing when no
  // thread runs.
  void stop();
  bool running();

  // Queues `ipIndication` for the thread (dropped when none runs).
  void deliverIndication(std::unique_ptr<SCIMSerdesable> ipIndication);
  // Indications handed to the broker since the start of the process.
  std::size_t delivered();

 private:
  class Worker;
  // The next queued indication, or null when the queue is empty.
  std::unique_ptr<SCIMSerdesable> take();
  // Writes `irIndication` into a CMPI instance and delivers it; false,
  // with a trace line, when the broker refused.
  bool deliver(const CMPIBroker* ipBroker, const CMPIContext* ipContext,
               const SCIMSerdesable& irIndication);

  const char* const ivClassName;
  fcbb::Mutex ivLock;  // guards the queue, the worker and the counter
  std::deque<std::unique_ptr<SCIMSerdesable>> ivQueue;
  fcbb::Semaphore ivWake;  // posted per queued indication and at stop
  std::unique_ptr<Worker> ivWorker;
  std::size_t ivDelivered = 0;
};

#endif  // QRX_PROVIDER_INDICATIONDELIVERY_H_
