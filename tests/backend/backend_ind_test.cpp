// The event thread: dispatch by event code, coalescing of port events, and
// the thread end to end over a private event queue, with the simulated
// switch answering the fabric cache in process.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "common/backend/BackendInd.h"
#include "common/mqueue/mqCS.h"
#include "tests/support/InMemoryPipe.h"
#include "tests/support/TraceCapture.h"
#include "tools/switchsim/FabricModel.h"
#include "tools/switchsim/SimulatedSwitch.h"

namespace {

using switchsim::FabricModel;

// Remembers what it was told, as "fabric 2", "switch 2", "port 2 5".
class Recorder : public BackendInd::ChangeListener {
 public:
  void fabricChanged(int ipKind) override { add("fabric " + std::to_string(ipKind)); }
  void switchChanged(int ipKind) override { add("switch " + std::to_string(ipKind)); }
  void portChanged(int ipKind, int ipPort) override {
    add("port " + std::to_string(ipKind) + " " + std::to_string(ipPort));
  }
  std::vector<std::string> seen() {
    std::lock_guard<std::mutex> lock(ivMutex);
    return ivSeen;
  }
  // Waits up to five seconds for `ipCount` notifications.
  std::vector<std::string> waitFor(std::size_t ipCount) {
    for (int i = 0; i < 500 && seen().size() < ipCount; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return seen();
  }

 private:
  void add(const std::string& irText) {
    std::lock_guard<std::mutex> lock(ivMutex);
    ivSeen.push_back(irText);
  }
  std::mutex ivMutex;
  std::vector<std::string> ivSeen;
};

EventRecord event(std::uint32_t ipCode, std::uint32_t ipPort = 0) {
  EventRecord record;
  record.code = ipCode;
  record.port = ipPort;
  return record;
}

class BackendIndTest : public ::testing::Test {
 protected:
  BackendIndTest()
      : ivModel(FabricModel::builtIn()), ivDaemon(ivModel), ivPipe(ivDaemon), ivCache(ivPipe),
        ivEvents(ivCache) {
    ivEvents.setChangeListener(&ivRecorder);
  }

  FabricModel ivModel;
  switchsim::SimulatedSwitch ivDaemon;
  qrxtest::DispatchPipe ivPipe;
  FabricCache ivCache;
  TraceCapture ivTrace;
  Recorder ivRecorder;
  BackendInd ivEvents;
};

TEST_F(BackendIndTest, DispatchAndCoalescing) {
  ivCache.initCache();
  const int five = ivModel.ports.at(5).info.port_index;
  const int six = ivModel.ports.at(6).info.port_index;

  // A run of port events for one port does the work once, at its end;
  // another port in between breaks the run.
  const EventRecord runOfFive[] = {event(kEventPortStateChange, five), event(kEventPortAttrChange, five),
                                   event(kEventPortTopoChange, five)};
  ivEvents.handleEvent(runOfFive[0], &runOfFive[1]);
  ivEvents.handleEvent(runOfFive[1], &runOfFive[2]);
  ivEvents.handleEvent(runOfFive[2], nullptr);
  const EventRecord six1 = event(kEventPortStateChange, six);
  const EventRecord five2 = event(kEventPortStateChange, five);
  ivEvents.handleEvent(five2, &six1);
  ivEvents.handleEvent(six1, nullptr);
  const std::string p5 = "port 2 " + std::to_string(five), p6 = "port 2 " + std::to_string(six);
  EXPECT_EQ((std::vector<std::string>{p5, p5, p6}), ivRecorder.seen());

  // Fabric and switch events tell only about real changes; other codes
  // are ignored.
  ivEvents.handleEvent(event(kEventSwitchStateChange), nullptr);
  ivEvents.handleEvent(event(kEventFabricChange), nullptr);
  ivEvents.handleEvent(event(2), nullptr);
  EXPECT_EQ(3u, ivRecorder.seen().size());
  ivModel.fabric.vlan = 4000;
  ivEvents.handleEvent(event(kEventVlanConfigChange), nullptr);
  ivModel.switchInfo.switch_state = 4;
  ivEvents.handleEvent(event(kEventSwitchAttrChange), nullptr);
  EXPECT_EQ((std::vector<std::string>{p5, p5, p6, "fabric 2", "switch 2"}), ivRecorder.seen());

  // A zone change re-reads the active zone set.
  const std::string old = ivModel.activeZoneSet.name;
  ivModel.activeZoneSet = zoneset_t();
  zoneset_t active;
  ivCache.get_active_zone_set("", active);
  EXPECT_EQ(old, active.name);
  ivEvents.handleEvent(event(kEventZoneChange), nullptr);
  ivCache.get_active_zone_set("", active);
  EXPECT_EQ("", active.name);
}

TEST_F(BackendIndTest, ThreadReceivesAndHoldsEventsWhileASessionCloses) {
  setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxindtest" + std::to_string(getpid())).c_str(), 1);
  std::atomic<bool> closing{false};
  ivEvents.setClosingSessionCheck([&closing] { return closing.load(); });
  ASSERT_TRUE(ivEvents.startThread());

  // The queue exists and the cache is filled once ports are mapped.
  fcbb::mqClient sender;
  const std::string queue = std::string(fcbb::queuePrefix()) + fcbb::kEventQueueName;
  std::vector<std::string> names;
  for (int i = 0; i < 500 && names.empty(); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ivCache.get_artificial_switch_fc_port_names(names);
  }
  ASSERT_FALSE(names.empty());
  ASSERT_TRUE(sender.connect(queue));
  auto send = [&sender](const EventRecord& irEvent) {
    unsigned char message[kEventMessageSize];
    encodeEventMessage(irEvent, message);
    ASSERT_EQ(static_cast<int>(kEventMessageSize), sender.send(message, sizeof(message)));
  };

  // While a session closes: the zone change is dropped, the port event waits.
  closing = true;
  const int port = ivModel.ports.at(2).info.port_index;
  ivModel.ports.at(2).info.operational_state = 4;
  const std::string oldZoneSet = ivModel.activeZoneSet.name;
  ivModel.activeZoneSet = zoneset_t();
  send(event(kEventZoneChange));
  send(event(kEventPortStateChange, port));
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_TRUE(ivRecorder.seen().empty());

  closing = false;
  EXPECT_EQ((std::vector<std::string>{"port 2 " + std::to_string(port)}), ivRecorder.waitFor(1));
  switch_fc_port_info_t cached;
  ASSERT_EQ(0, ivCache.get_switch_fc_port_info(port, cached));
  EXPECT_EQ(4u, cached.operational_state);
  zoneset_t active;
  ivCache.get_active_zone_set("", active);
  EXPECT_EQ(oldZoneSet, active.name);  // the zone change was dropped

  // A message too short to be an event is logged and dropped.
  const unsigned char runt[8] = {0};
  EXPECT_EQ(8, sender.send(runt, sizeof(runt)));
  send(event(kEventPortTopoChange, port));
  EXPECT_EQ(2u, ivRecorder.waitFor(2).size());
  ivEvents.terminateThread(false);
  EXPECT_TRUE(ivTrace.contains("too short for its code and source"));
  fcbb::mqClient probe;
  EXPECT_FALSE(probe.connect(queue));  // the thread removed its queue
}

}  // namespace
