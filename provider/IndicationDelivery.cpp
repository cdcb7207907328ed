#include "provider/IndicationDelivery.h"

#include "cmpift.h"
#include "cmpimacs.h"
#include "common/backend/LifecycleIndication.h"
#include "common/base/Time.h"
#include "common/base/trace.h"
#include "provider/CMPISerializer.h"

namespace {

const char* const kUnit = "provider/IndicationDelivery";

// How often an idle thread looks whether it is asked to stop.
constexpr unsigned kPollMs = 100;

}  // namespace

class IndicationDelivery::Worker : public fcbb::Thread {
 public:
  Worker(IndicationDelivery& irOwner, const CMPIBroker* ipBroker, const CMPIContext* ipContext)
      : ivrOwner(irOwner), ivBroker(ipBroker), ivContext(ipContext) {}
  ~Worker() override { terminateThread(false); }

  // Waits until run() attached to the broker or gave up; whether it attached.
  bool waitAttached() {
    ivAttachDone.wait();
    return ivAttached;
  }

 protected:
  void run() override {
    const CMPIStatus attached = CBAttachThread(ivBroker, ivContext);
    ivAttached = attached.rc == CMPI_RC_OK;
    ivAttachDone.post();
    if (!ivAttached) {
      TRACE_ERROR(kUnit, "%s: attachThread failed rc=%d\n", ivrOwner.ivClassName,
                  static_cast<int>(attached.rc));
      return;
    }
    while (!isRequestTerminate()) {
      if (!ivrOwner.ivWake.timedWait(fcbb::Time() + kPollMs)) continue;
      std::unique_ptr<SCIMSerdesable> indication = ivrOwner.take();
      if (indication && ivrOwner.deliver(ivBroker, ivContext, *indication)) {
        fcbb::MutexLock lock(ivrOwner.ivLock);
        ++ivrOwner.ivDelivered;
      }
    }
    CBDetachThread(ivBroker, ivContext);
  }

 private:
  IndicationDelivery& ivrOwner;
  const CMPIBroker* const ivBroker;
  const CMPIContext* const ivContext;
  fcbb::Semaphore ivAttachDone;
  bool ivAttached = false;  // written before ivAttachDone is posted
};

IndicationDelivery::IndicationDelivery(const char* ipClassName) : ivClassName(ipClassName) {}

IndicationDelivery::~IndicationDelivery() { stop(); }

bool IndicationDelivery::start(const CMPIBroker* ipBroker, const CMPIContext* ipContext) {
  fcbb::MutexLock lock(ivLock);
  if (ivWorker) return true;
  CMPIContext* context = CBPrepareAttachThread(ipBroker, ipContext);
  if (context == nullptr) {
    TRACE_ERROR(kUnit, "%s: prepareAttachThread gave no context\n", ivClassName);
    return false;
  }
  ivWorker.reset(new Worker(*this, ipBroker, context));
  if (!ivWorker->startThread() || !ivWorker->waitAttached()) {
    TRACE_ERROR(kUnit, "%s: could not start the delivery thread\n", ivClassName);
    ivWorker.reset();
    return false;
  }
  TRACE_DEBUG("%s: delivery started\n", ivClassName);
  return true;
}

void IndicationDelivery::stop() {
  std::unique_ptr<Worker> worker;
  std::deque<std::unique_ptr<SCIMSerdesable>> dropped;
  {
    fcbb::MutexLock lock(ivLock);
    worker = std::move(ivWorker);
    dropped.swap(ivQueue);
  }
  if (!worker) return;
  worker->terminateThread(false);
  worker.reset();
  // The semaphore counts what was queued; start the next thread at zero.
  while (ivWake.getValue() > 0) ivWake.wait();
  TRACE_DEBUG("%s: delivery stopped, %d dropped\n", ivClassName, static_cast<int>(dropped.size()));
}

bool IndicationDelivery::running() {
  fcbb::MutexLock lock(ivLock);
  return ivWorker != nullptr;
}

void IndicationDelivery::deliverIndication(std::unique_ptr<SCIMSerdesable> ipIndication) {
  fcbb::MutexLock lock(ivLock);
  if (!ivWorker) {
    TRACE_DEBUG("%s: not enabled, indication dropped\n", ivClassName);
    return;
  }
  ivQueue.push_back(std::move(ipIndication));
  ivWake.post();
}

std::size_t IndicationDelivery::delivered() {
  fcbb::MutexLock lock(ivLock);
  return ivDelivered;
}

std::unique_ptr<SCIMSerdesable> IndicationDelivery::take() {
  fcbb::MutexLock lock(ivLock);
  if (ivQueue.empty()) return nullptr;
  std::unique_ptr<SCIMSerdesable> front = std::move(ivQueue.front());
  ivQueue.pop_front();
  return front;
}

bool IndicationDelivery::deliver(const CMPIBroker* ipBroker, const CMPIContext* ipContext,
                                 const SCIMSerdesable& irIndication) {
  CMPIStatus rc = {CMPI_RC_OK, nullptr};
  CMPIObjectPath* path = CMNewObjectPath(ipBroker, kIndicationNameSpace,
                                         irIndication.getCIMClassName().c_str(), &rc);
  CMPIInstance* instance = path != nullptr ? CMNewInstance(ipBroker, path, &rc) : nullptr;
  bool done = false;
  if (instance == nullptr) {
    TRACE_ERROR(kUnit, "%s: no instance rc=%d\n", ivClassName, static_cast<int>(rc.rc));
  } else {
    CMPISerializer serializer(ipBroker, instance);
    irIndication.serialize(serializer);
    if (serializer.hasError()) {
      TRACE_ERROR(kUnit, "%s: could not write the indication\n", ivClassName);
    } else {
      rc = CBDeliverIndication(ipBroker, ipContext, kIndicationNameSpace, instance);
      done = rc.rc == CMPI_RC_OK;
      if (!done) {
        TRACE_ERROR(kUnit, "%s: deliverIndication failed rc=%d\n", ivClassName,
                    static_cast<int>(rc.rc));
      }
    }
    CMRelease(instance);
  }
  if (path != nullptr) CMRelease(path);
  return done;
}
