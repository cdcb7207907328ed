#include "common/backend/BackendInd.h"

#include <sched.h>
#include <time.h>

#include <cassert>
#include <cstdio>
#include <memory>
#include <string>

#include "common/backend/LifecycleIndication.h"
#include "common/base/trace.h"
#include "generated/scimclasses/QRX_AlertIndication.h"
#include "generated/scimclasses/QRX_Fabric.h"
#include "generated/scimclasses/QRX_Switch.h"
#include "generated/scimclasses/QRX_SwitchFCPort.h"

BackendInd* backendInd = nullptr;

namespace {

const char* const kUnit = "common/backend/BackendInd";

// Empty polls before the loop starts sleeping: a burst is taken at full
// speed. Then, with nothing queued, the thread sleeps in the event queue,
// which wakes it as soon as an event comes; it looks for a stop request
// every kIdleWaitMs, so that an idle switch costs next to nothing. Events
// held back while a zoning session closes are looked at every
// kHeldBackSleepNs.
constexpr unsigned kYieldingPolls = 1000;
constexpr unsigned kIdleWaitMs = 50;
constexpr long kHeldBackSleepNs = 2 * 1000 * 1000;

// Values of QRX_AlertIndication (CIM_AlertIndication's value maps).
constexpr cuint16 kAlertTypeOther = 1;
constexpr cuint16 kSeverityInformation = 2;
constexpr cuint16 kProbableCauseUnknown = 0;

bool isPortEvent(std::uint32_t ipCode) {
  return ipCode == kEventPortStateChange || ipCode == kEventPortAttrChange ||
         ipCode == kEventPortTopoChange;
}

// The CIM object `ipConvert` makes of `irRecord`.
template <class Object, class Record>
std::unique_ptr<SCIMSerdesable> converted(const Record& irRecord,
                                          void (*ipConvert)(Object&, const Record&)) {
  std::unique_ptr<Object> object(new Object());
  ipConvert(*object, irRecord);
  return object;
}

void printText(const EventRecord& irEvent) {
  if (irEvent.text.empty()) return;
  std::printf("\n\t%s.\n", irEvent.text.c_str());
  std::fflush(stdout);
}

}  // namespace

BackendInd::BackendInd(FabricCache& irCache) : ivrCache(irCache) {}

BackendInd::~BackendInd() { terminateThread(false); }

bool BackendInd::waitUntilFilled(unsigned ipTimeoutMs) {
  if (!ivFilled.timedWait(fcbb::Time() + ipTimeoutMs)) return false;
  ivFilled.post();  // for the next waiter
  return true;
}

void BackendInd::run() {
  std::unique_ptr<unsigned char[]> recv_buffer(new unsigned char[fcbb::kMaxFrameSize]);
  assert(recv_buffer);
  ivMqServer.connect(std::string(fcbb::queuePrefix()) + fcbb::kEventQueueName, fcbb::kMaxFrameSize,
                     fcbb::kFramePoolSize);
  ivrCache.initCache();
  ivFilled.post();
  unsigned idle = 0;
  while (!isRequestTerminate()) {
    if (step(recv_buffer.get())) {
      idle = 0;
    } else if (++idle < kYieldingPolls) {
      sched_yield();
    } else if (ivVkswEventQ.empty()) {
      ivMqServer.waitReadable(kIdleWaitMs);
    } else {
      const timespec pause = {0, kHeldBackSleepNs};
      nanosleep(&pause, nullptr);
    }
  }
  ivMqServer.close();
}

bool BackendInd::step(unsigned char* ipBuffer) {
  const int received = ivMqServer.recv(ipBuffer, fcbb::kMaxFrameSize);
  if (received > 0) {
    EventRecord event;
    std::string error;
    if (!decodeEventMessage(ipBuffer, static_cast<std::size_t>(received), &event, &error)) {
      TRACE_ERROR(kUnit, "dropped an event message of %d bytes: %s\n", received, error.c_str());
      return true;
    }
    TRACE_DEBUG("Received req_id=%d event=%d chassis=%d blade=%d port=%d text=%s\n", event.reqId,
                static_cast<int>(event.code), static_cast<int>(event.chassis),
                static_cast<int>(event.blade), static_cast<int>(event.port), event.text.c_str());
    if (event.code == kEventZoneChange && closingSession()) return true;
    ivVkswEventQ.push_back(std::move(event));
    return true;
  }
  if (ivVkswEventQ.empty() || closingSession()) return false;
  const EventRecord event = std::move(ivVkswEventQ.front());
  ivVkswEventQ.pop_front();
  handleEvent(event, ivVkswEventQ.empty() ? nullptr : &ivVkswEventQ.front());
  return true;
}

void BackendInd::handleEvent(const EventRecord& irEvent, const EventRecord* ipNext) {
  switch (irEvent.code) {
    case kEventFabricChange:
    case kEventDomainIdChange:
    case kEventFcfConfigChange:
      printText(irEvent);
      handleFabricChange(irEvent);
      break;
    case kEventFcfChange:
    case kEventVlanConfigChange:
      handleFabricChange(irEvent);
      break;
    case kEventZoneChange:
      printText(irEvent);
      ivrCache.refreshActiveZoneSet();
      alert(irEvent);
      break;
    case kEventNameServerChange:
    case kEventSwitchAttrChange:
    case kEventSwitchOperChange:
    case kEventSwitchStateChange:
    case kEventIpAddressChange:
      handleSwitchChange(irEvent);
      break;
    case kEventPortStateChange:
    case kEventPortAttrChange:
    case kEventPortTopoChange:
      // The last event of a run for one port does the work.
      if (ipNext != nullptr && isPortEvent(ipNext->code) && ipNext->port == irEvent.port) break;
      handlePortChange(irEvent);
      break;
    default:
      TRACE_DEBUG("Ignore event=%d\n", static_cast<int>(irEvent.code));
      alert(irEvent);
      break;
  }
}

int BackendInd::handleFabricChange(const EventRecord& irEvent) {
  const int kind = ivrCache.cacheAndRefreshFabric();
  IndicationSink* sink = wanted(kind, "fabric", irEvent, "QRX_Fabric", enabledFor(kind));
  if (sink == nullptr) return kind;
  FabricCache& cache = ivrCache;
  indicate(
      sink, kind, irEvent,
      [&cache]() -> std::unique_ptr<SCIMSerdesable> {
        fabric_info_t record;
        if (cache.get_fabric_info(record) != 0) return nullptr;
        return converted<QRX_Fabric>(record, &FabricCache::convertFabric);
      },
      [&cache]() -> std::unique_ptr<SCIMSerdesable> {
        fabric_info_t record;
        cache.prev_fabric_info(record);
        return converted<QRX_Fabric>(record, &FabricCache::convertFabric);
      });
  return kind;
}

int BackendInd::handleSwitchChange(const EventRecord& irEvent) {
  const int kind = ivrCache.cacheAndRefreshSwitch();
  // Switch modifications and deletions follow the creation flag too.
  IndicationSink* sink =
      wanted(kind, "switch", irEvent, "QRX_Switch", ivSubscriptions.getInstCreationEnabled());
  if (sink == nullptr) return kind;
  FabricCache& cache = ivrCache;
  indicate(
      sink, kind, irEvent,
      [&cache]() -> std::unique_ptr<SCIMSerdesable> {
        switch_info_t record;
        if (cache.cached_switch_info(record) != 0) return nullptr;
        return converted<QRX_Switch>(record, &FabricCache::convertSwitch);
      },
      [&cache]() -> std::unique_ptr<SCIMSerdesable> {
        switch_info_t record;
        cache.prev_switch_info(record);
        return converted<QRX_Switch>(record, &FabricCache::convertSwitch);
      });
  return kind;
}

int BackendInd::handlePortChange(const EventRecord& irEvent) {
  const int port = static_cast<int>(irEvent.port);
  const int kind = ivrCache.cacheAndRefreshSwitchPort(port);
  IndicationSink* sink =
      wanted(kind, "switch port", irEvent, "QRX_SwitchFCPort", enabledFor(kind));
  if (sink == nullptr) return kind;
  static const char* const kHandling[] = {"", "Handle Create Event\n", "Handle Modify Event\n",
                                          "Handle Delete Event\n"};
  TRACE_DEBUG("%s", kHandling[kind]);
  FabricCache& cache = ivrCache;
  switch_info_t switchRecord;
  if (cache.cached_switch_info(switchRecord) != 0) cache.prev_switch_info(switchRecord);
  const std::string switchName = switchRecord.name;
  indicate(
      sink, kind, irEvent,
      [&cache, port, &switchName]() -> std::unique_ptr<SCIMSerdesable> {
        switch_fc_port_info_t record;
        if (cache.get_switch_fc_port_info(port, record) != 0) return nullptr;
        std::unique_ptr<QRX_SwitchFCPort> object(new QRX_SwitchFCPort());
        FabricCache::convertSwitchFCPort(*object, record, switchName);
        return object;
      },
      [&cache, port, &switchName, kind]() -> std::unique_ptr<SCIMSerdesable> {
        switch_fc_port_info_t record;
        cache.prev_switch_fc_port_info(port, record);
        std::unique_ptr<QRX_SwitchFCPort> object(new QRX_SwitchFCPort());
        FabricCache::convertSwitchFCPort(*object, record, switchName);
        if (kind == CHANGE_FLAG_DELETE) {
          TRACE_DEBUG("Delete Port %s on switch %s\n", object->DeviceID.c_str(),
                      switchName.c_str());
        }
        return object;
      });
  return kind;
}

IndicationSink* BackendInd::wanted(int ipKind, const char* ipWhat, const EventRecord& irEvent,
                                   const char* ipClassName, bool ipEnabled) {
  if (ipKind == CHANGE_FLAG_NONE) {
    TRACE_DEBUG("Ignore %s event=%d\n", ipWhat, static_cast<int>(irEvent.code));
    return nullptr;
  }
  if (!ipEnabled) return nullptr;
  const IND_TYPE type = static_cast<IND_TYPE>(ipKind - 1);
  if (!ivSubscriptions.isLifecycleIndEnabledFor(ipClassName, type)) return nullptr;
  return ivSink.load();
}

bool BackendInd::enabledFor(int ipKind) const {
  switch (ipKind) {
    case CHANGE_FLAG_CREATE: return ivSubscriptions.getInstCreationEnabled();
    case CHANGE_FLAG_MODIFY: return ivSubscriptions.getInstModificationEnabled();
    case CHANGE_FLAG_DELETE: return ivSubscriptions.getInstDeletionEnabled();
    default: return false;
  }
}

void BackendInd::indicate(IndicationSink* ipSink, int ipKind, const EventRecord& irEvent,
                          const std::function<std::unique_ptr<SCIMSerdesable>()>& irNow,
                          const std::function<std::unique_ptr<SCIMSerdesable>()>& irBefore) {
  std::string ident;
  ivSubscriptions.generateEventIdent(ident);
  // A deletion shows the object as it was; a modification both states.
  std::unique_ptr<SCIMSerdesable> source = ipKind == CHANGE_FLAG_DELETE ? irBefore() : irNow();
  std::unique_ptr<SCIMSerdesable> previous;
  if (ipKind == CHANGE_FLAG_MODIFY) previous = irBefore();
  if (!source) {
    TRACE_ERROR(kUnit, "object of event=%d not in the cache. Ignore event=%d\n",
                static_cast<int>(irEvent.code), static_cast<int>(irEvent.code));
    return;
  }
  ipSink->deliverIndication(makeLifecycleIndication(static_cast<IND_TYPE>(ipKind - 1), ident,
                                                    std::move(source), std::move(previous)));
}

void BackendInd::alert(const EventRecord& irEvent) {
  if (irEvent.text.empty() || !ivSubscriptions.getAlertEnabled()) return;
  IndicationSink* sink = ivSink.load();
  if (sink == nullptr) return;
  std::unique_ptr<QRX_AlertIndication> indication(new QRX_AlertIndication());
  ivSubscriptions.generateEventIdent(indication->IndicationIdentifier);
  indication->Description = irEvent.text;
  indication->EventID = std::to_string(irEvent.code);
  indication->AlertType = kAlertTypeOther;
  indication->OtherAlertType = "Switch event";
  indication->PerceivedSeverity = kSeverityInformation;
  indication->ProbableCause = kProbableCauseUnknown;
  indication->ProviderName = "QRX_AlertIndication_Provider";
  switch_info_t switchRecord;
  if (ivrCache.cached_switch_info(switchRecord) == 0) {
    indication->SystemCreationClassName = "QRX_Switch";
    indication->SystemName = switchRecord.name;
  }
  sink->deliverIndication(std::move(indication));
}
