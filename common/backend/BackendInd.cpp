#include "common/backend/BackendInd.h"

#include <sched.h>
#include <time.h>

#include <cassert>
#include <cstdio>
#include <memory>
#include <string>

#include "common/base/trace.h"

BackendInd* backendInd = nullptr;

namespace {

const char* const kUnit = "common/backend/BackendInd";

// Empty polls before the loop starts sleeping, and the longest sleep: a
// burst is taken at full speed, an idle switch costs next to nothing.
constexpr unsigned kYieldingPolls = 1000;
constexpr long kIdleSleepNs = 2 * 1000 * 1000;

bool isPortEvent(std::uint32_t ipCode) {
  return ipCode == kEventPortStateChange || ipCode == kEventPortAttrChange ||
         ipCode == kEventPortTopoChange;
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
    } else {
      const timespec pause = {0, kIdleSleepNs};
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
      break;
  }
}

int BackendInd::handleFabricChange(const EventRecord& irEvent) {
  const int kind = ivrCache.cacheAndRefreshFabric();
  if (ChangeListener* listener = changed(kind, "fabric", irEvent)) listener->fabricChanged(kind);
  return kind;
}

int BackendInd::handleSwitchChange(const EventRecord& irEvent) {
  const int kind = ivrCache.cacheAndRefreshSwitch();
  if (ChangeListener* listener = changed(kind, "switch", irEvent)) listener->switchChanged(kind);
  return kind;
}

int BackendInd::handlePortChange(const EventRecord& irEvent) {
  const int port = static_cast<int>(irEvent.port);
  const int kind = ivrCache.cacheAndRefreshSwitchPort(port);
  if (ChangeListener* listener = changed(kind, "switch port", irEvent)) {
    listener->portChanged(kind, port);
  }
  return kind;
}

BackendInd::ChangeListener* BackendInd::changed(int ipKind, const char* ipWhat,
                                                const EventRecord& irEvent) {
  if (ipKind == CHANGE_FLAG_NONE) {
    TRACE_DEBUG("Ignore %s event=%d\n", ipWhat, static_cast<int>(irEvent.code));
    return nullptr;
  }
  return ivListener.load();
}
