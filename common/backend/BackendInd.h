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
// that found a change, tells the change listener (the indication side),
// with the kind of change:
//   fabric:  codes 1 fabric change, 49 domain id, 83 FCF, 84 FCF config,
//            85 VLAN config
//   switch:  codes 6 name server, 8 switch attributes, 31 operational
//            change, 32 switch state, 68 IP address
//   port:    codes 13 port state, 14 port attributes, 20 port topology;
//            a port event followed in the queue by another port event for
//            the same port is skipped, so a run does the work once
//   zone:    code 3 re-reads the active zone set; nothing is told
// Every other code is logged and ignored. For codes 1, 3, 49 and 84 a
// non-empty event text is printed to standard output.
#ifndef QRX_COMMON_BACKEND_BACKENDIND_H_
#define QRX_COMMON_BACKEND_BACKENDIND_H_

#include <atomic>
#include <deque>
#include <functional>

#include "common/backend/EventRecord.h"
#include "common/backend/FabricCache.h"
#include "common/base/Semaphore.h"
#include "common/base/Thread.h"
#include "common/base/Time.h"
#include "common/mqueue/FramePipeMq.h"
#include "common/mqueue/mqCS.h"

class BackendInd : public fcbb::Thread {
 public:
  // Told about every change the event thread found, on that thread, after
  // the cache was refreshed (so the cache's prev_ readers give the state
  // from before). `ipKind` is a change_flag other than CHANGE_FLAG_NONE.
  class ChangeListener {
   public:
    virtual ~ChangeListener() {}
    virtual void fabricChanged(int ipKind) = 0;
    virtual void switchChanged(int ipKind) = 0;
    virtual void portChanged(int ipKind, int ipPortIndex) = 0;
  };

  explicit BackendInd(FabricCache& irCache);
  ~BackendInd() override;

  // May be set or replaced (null: nobody listens) while the thread runs;
  // the listener must outlive its registration.
  void setChangeListener(ChangeListener* ipListener) { ivListener = ipListener; }
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
  // The listener to tell about a change of `ipKind`, or null when there is
  // none or nothing changed ("Ignore <what> event=<code>" is logged then).
  ChangeListener* changed(int ipKind, const char* ipWhat, const EventRecord& irEvent);

  FabricCache& ivrCache;
  std::atomic<ChangeListener*> ivListener{nullptr};
  std::function<bool()> ivIsClosingSession;
  fcbb::mqServer ivMqServer;
  std::deque<EventRecord> ivVkswEventQ;  // only the event thread touches it
  fcbb::Semaphore ivFilled;              // posted once the cache is filled
};

// The event thread of the process, made and started at library start.
extern BackendInd* backendInd;

#endif  // QRX_COMMON_BACKEND_BACKENDIND_H_
