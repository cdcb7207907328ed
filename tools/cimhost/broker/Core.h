// cimhost::Core: the state behind one TestBroker, reached from C through
// CMPIBroker::hdl and from every object it made.
//
// It holds the mode, the class hierarchy, the registry of handed-out
// objects, the default context, the log, the delivered indications, the
// up-call handler and the per-thread attach counts, each under its own
// lock where threads share it.
#ifndef QRX_TOOLS_CIMHOST_BROKER_CORE_H_
#define QRX_TOOLS_CIMHOST_BROKER_CORE_H_

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "cmpift.h"
#include "tools/cimhost/broker/ClassHierarchy.h"
#include "tools/cimhost/broker/Registry.h"
#include "tools/cimhost/broker/Status.h"
#include "tools/cimhost/broker/TestBroker.h"
#include "tools/cimhost/broker/UpcallHandler.h"

namespace cimhost {

class EncContext;
class EncInstance;

class Core {
 public:
  Core(const ClassHierarchy* ipHierarchy, BrokerMode ipMode);
  ~Core();

  Core(const Core&) = delete;
  Core& operator=(const Core&) = delete;

  // The core of a broker made here; NULL for NULL or another broker.
  static Core* of(const CMPIBroker* ipBroker);

  const CMPIBroker* broker() const { return &ivBroker; }
  BrokerMode mode() const { return ivMode; }
  bool isCmpi200() const { return ivMode == BrokerMode::Cmpi200; }
  // May be NULL.
  const ClassHierarchy* hierarchy() const { return ivHierarchy; }

  Registry& registry() { return ivRegistry; }

  // Registers `ipObject` and returns its C struct.
  template <class T>
  auto adopt(std::unique_ptr<T> ipObject) -> decltype(ipObject->cmpi()) {
    auto* cmpi = ipObject->cmpi();
    ivRegistry.addObject(std::move(ipObject));
    return cmpi;
  }

  // A registered string.
  CMPIString* newString(const std::string& irText);

  // Frees the registered object `irObject`; CMPI_RC_ERR_INVALID_HANDLE if
  // it is not registered (it belongs to a container).
  Status release(const EncObject& irObject);

  EncContext& defaultContext() { return *ivDefaultContext; }

  void addLogEntry(LogEntry ipEntry);
  std::vector<LogEntry> logEntries() const;
  void clearLog();
  void setLogToStderr(bool ipOn) { ivLogToStderr = ipOn; }

  void addIndication(std::string ipNameSpace, std::unique_ptr<EncInstance> ipInstance);
  std::vector<DeliveredIndication> indications() const;
  void clearIndications();

  void setUpcallHandler(UpcallHandler* ipHandler) { ivHandler = ipHandler; }
  UpcallHandler* upcallHandler() const { return ivHandler; }

  // Counts an attachThread() of the calling thread; detach() fails if the
  // calling thread is not attached.
  void attach();
  Status detach();
  int attachedThreads() const;

 private:
  const ClassHierarchy* ivHierarchy;
  BrokerMode ivMode;
  CMPIBroker ivBroker;
  Registry ivRegistry;
  std::unique_ptr<EncContext> ivDefaultContext;

  mutable std::mutex ivLogMutex;
  std::vector<LogEntry> ivLog;
  std::atomic<bool> ivLogToStderr{false};

  mutable std::mutex ivIndicationMutex;
  std::vector<std::pair<std::string, std::unique_ptr<EncInstance>>> ivIndications;

  std::atomic<UpcallHandler*> ivHandler{nullptr};

  mutable std::mutex ivAttachMutex;
  std::map<std::thread::id, int> ivAttached;
};

// The release() and clone() functions of every function table: free the
// registered object, or register a deep copy of it.
template <class T, class C>
CMPIStatus releaseFromC(C* ipC) {
  T* self = T::of(ipC);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  Core* core = self->core();
  return guardStatus(core, [&] { return core->release(*self); });
}

template <class T, class C>
C* cloneFromC(const C* ipC, CMPIStatus* opRc) {
  T* self = T::of(ipC);
  if (!self) {
    setStatus(opRc, nullptr, Status(CMPI_RC_ERR_INVALID_HANDLE, ""));
    return nullptr;
  }
  Core* core = self->core();
  return guard(core, opRc, static_cast<C*>(nullptr), [&] {
    C* copy = core->adopt(self->copy(core));
    setOk(opRc);
    return copy;
  });
}

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_CORE_H_
