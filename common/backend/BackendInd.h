// BackendInd: the thread that receives the switch daemon's change events.
//
// It creates the event queue (queuePrefix() + "smis_ipc_ev"), fills the
// fabric cache (initCache) and then, until asked to stop, receives events
// and handles them one by one. Receiving has priority: an event is handled
// only when no message is waiting, so that a burst is queued first and
// runs of port events can be coalesced. While a zoning session is being
// closed, zone change events are dropped (the session's own commit caused
// them) and handling waits.
//
// Handling an event refreshes the part of the cache it concerns and, when
// that found a change (created, modified, deleted) that a subscription
// wants, builds the lifecycle indication and hands it to the indication
// sink:
//   fabric:  codes 1 fabric change, 49 domain id, 83 FCF, 84 FCF config,
//            85 VLAN config; QRX_Fabric, the flag of the change's type
//   switch:  codes 6 name server, 8 switch attributes, 31 operational
//            change, 32 switch state, 68 IP address; QRX_Switch, the
//            creation flag for every type
//   port:    codes 13 port state, 14 port attributes, 20 port topology;
//            QRX_SwitchFCPort, the flag of the change's type; a port event
//            followed in the queue by another port event for the same port
//            is skipped, so a run does the work once
//   zone:    code 3 re-reads the active zone set; no lifecycle indication
// A subscription wants the change when its type's flag is on and
// isLifecycleIndEnabledFor(class, type) holds (IndSubscriptions).
// Every other code is logged and ignored. For codes 1, 3, 49 and 84 a
// non-empty event text is printed to standard output. The zone change and
// every code outside the table that carries a text become an alert
// (QRX_AlertIndication with the text) while alerts are enabled.
#ifndef QRX_COMMON_BACKEND_BACKENDIND_H_
#define QRX_COMMON_BACKEND_BACKENDIND_H_

#include <atomic>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "common/backend/EventRecord.h"
#include "common/backend/FabricCache.h"
#include "common/backend/IndSubscriptions.h"
#include "common/backend/IndicationSink.h"
#include "common/base/Semaphore.h"
#include "common/base/Thread.h"
#include "common/base/Time.h"
#include "common/mqueue/FramePipeMq.h"
#include "common/mqueue/mqCS.h"

class BackendInd : public fcbb::Thread {
 public:
  explicit BackendInd(FabricCache& irCache);
  ~BackendInd() override;

  // May be set or replaced (null: nothing is built) while the thread
  // runs; the sink must outlive its registration.
  void setIndicationSink(IndicationSink* ipSink) { ivSink = ipSink; }
  // The subscription queries and enable flags.
  IndSubscriptions& subscriptions() { return ivSubscriptions; }
  bool addQuery(IND_TYPE ipType, const std::string& irQuery) {
    return ivSubscriptions.addQuery(ipType, irQuery);
  }
  bool delQuery(IND_TYPE ipType, const std::string& irQuery) {
    return ivSubscriptions.delQuery(ipType, irQuery);
  }
  bool isLifecycleIndEnabledFor(const std::string& irClassName, IND_TYPE ipType) const {
    return ivSubscriptions.isLifecycleIndEnabledFor(irClassName, ipType);
  }
  void generateEventIdent(std::string& orIdent) { ivSubscriptions.generateEventIdent(orIdent); }
  // Whether the zone database is closing a session; set before the start.
  void setClosingSessionCheck(std::function<bool()> ipCheck) { ivIsClosingSession = std::move(ipCheck); }

  // Waits until the thread has filled the cache, at most `ipTimeoutMs`;
  // false on timeout. Any number of threads may wait.
  bool waitUntilFilled(unsigned ipTimeoutMs);

  // Handles `irEvent`; `ipNext` is the event queued behind it, or null.
  void handleEvent(const EventRecord& irEvent, const EventRecord* ipNext);
  // The three refreshes; each returns the change kind it found.
  int handleFabricChange(const EventRecord& irEvent);
  int handleSwitchChange(const EventRecord& irEvent);
  int handlePortChange(const EventRecord& irEvent);

 protected:
  void run() override;

 private:
  bool closingSession() const { return ivIsClosingSession && ivIsClosingSession(); }
  // One turn of the loop: receive a message, else handle an event. False
  // when there was nothing to do.
  bool step(unsigned char* ipBuffer);
  // The sink for a change of `ipKind` to an object of `ipClassName`, or
  // null when nothing changed ("Ignore <what> event=<code>" is logged
  // then), nobody subscribed or there is no sink. `ipEnabled` is the flag
  // the handler checks.
  IndicationSink* wanted(int ipKind, const char* ipWhat, const EventRecord& irEvent,
                         const char* ipClassName, bool ipEnabled);
  // The enable flag of the change kind's type.
  bool enabledFor(int ipKind) const;
  // Builds the indication of `ipKind` from the objects now (`irNow`) and
  // before (`irBefore`) and hands it to `ipSink`; a missing object drops
  // the event with a trace line.
  void indicate(IndicationSink* ipSink, int ipKind, const EventRecord& irEvent,
                const std::function<std::unique_ptr<SCIMSerdesable>()>& irNow,
                const std::function<std::unique_ptr<SCIMSerdesable>()>& irBefore);
  // The alert of an event that made no lifecycle indication.
  void alert(const EventRecord& irEvent);

  FabricCache& ivrCache;
  std::atomic<IndicationSink*> ivSink{nullptr};
  IndSubscriptions ivSubscriptions;
  std::function<bool()> ivIsClosingSession;
  fcbb::mqServer ivMqServer;
  std::deque<EventRecord> ivVkswEventQ;  // only the event thread touches it
  fcbb::Semaphore ivFilled;              // posted once the cache is filled
};

// The event thread of the process, made and started at library start.
extern BackendInd* backendInd;

#endif  // QRX_COMMON_BACKEND_BACKENDIND_H_
