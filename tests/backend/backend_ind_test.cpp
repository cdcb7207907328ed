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
#include "generated/scimclasses/CIM_InstCreation.h"
#include "generated/scimclasses/CIM_InstDeletion.h"
#include "generated/scimclasses/CIM_InstModification.h"
#include "generated/scimclasses/QRX_AlertIndication.h"
#include "generated/scimclasses/QRX_SwitchFCPort.h"
#include "common/mqueue/mqCS.h"
#include "tests/support/InMemoryPipe.h"
#include "tests/support/TraceCapture.h"
#include "tools/switchsim/FabricModel.h"
#include "tools/switchsim/SimulatedSwitch.h"

namespace {

using switchsim::FabricModel;

// Remembers the indications it was given, as "modify QRX_SwitchFCPort 5"
// (change, class of SourceInstance, port number for ports) or
// "alert <code> <text>", and keeps them.
class Recorder : public IndicationSink {
 public:
  void deliverIndication(std::unique_ptr<SCIMSerdesable> ipIndication) override {
    std::lock_guard<std::mutex> lock(ivMutex);
    ivSeen.push_back(describe(*ipIndication));
    ivKept.push_back(std::move(ipIndication));
  }
  std::vector<std::string> seen() {
    std::lock_guard<std::mutex> lock(ivMutex);
    return ivSeen;
  }
  // Waits up to five seconds for `ipCount` indications.
  std::vector<std::string> waitFor(std::size_t ipCount) {
    for (int i = 0; i < 500 && seen().size() < ipCount; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return seen();
  }
  // The indication made `ipIndex`-th; only once the thread is stopped or
  // when handling on this thread.
  SCIMSerdesable& kept(std::size_t ipIndex) { return *ivKept.at(ipIndex); }

 private:
  static std::string source(const cstring_EO& irInstance) {
    std::string text = irInstance.ivClassName;
    if (const auto* port = dynamic_cast<const QRX_SwitchFCPort*>(irInstance.ivpEmbeddedObj)) {
      text += " " + std::to_string(port->PortNumber);
    }
    return text;
  }
  static std::string describe(const SCIMSerdesable& irIndication) {
    if (const auto* created = dynamic_cast<const CIM_InstCreation*>(&irIndication)) {
      return "create " + source(created->SourceInstance);
    }
    if (const auto* modified = dynamic_cast<const CIM_InstModification*>(&irIndication)) {
      return "modify " + source(modified->SourceInstance);
    }
    if (const auto* deleted = dynamic_cast<const CIM_InstDeletion*>(&irIndication)) {
      return "delete " + source(deleted->SourceInstance);
    }
    if (const auto* alert = dynamic_cast<const QRX_AlertIndication*>(&irIndication)) {
      return "alert " + alert->EventID + " " + alert->Description;
    }
    return "unknown " + irIndication.getCIMClassName();
  }
  std::mutex ivMutex;
  std::vector<std::string> ivSeen;
  std::vector<std::unique_ptr<SCIMSerdesable>> ivKept;
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
    ivEvents.setIndicationSink(&ivRecorder);
  }

  // Every lifecycle change of every class is wanted.
  void subscribeAll() {
    for (IND_TYPE type : {IND_INSTCREATION, IND_INSTMODIFICATION, IND_INSTDELETION}) {
      ASSERT_TRUE(ivEvents.addQuery(type, "SELECT * FROM CIM_InstIndication"));
    }
    ivEvents.subscriptions().setInstCreationEnabled(true);
    ivEvents.subscriptions().setInstModificationEnabled(true);
    ivEvents.subscriptions().setInstDeletionEnabled(true);
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
  subscribeAll();
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
  const std::string p5 = "modify QRX_SwitchFCPort " + std::to_string(five);
  const std::string p6 = "modify QRX_SwitchFCPort " + std::to_string(six);
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
  EXPECT_EQ((std::vector<std::string>{p5, p5, p6, "modify QRX_Fabric", "modify QRX_Switch"}), ivRecorder.seen());

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

TEST_F(BackendIndTest, IndicationsFollowFlagsQueriesAndTheChange) {
  ivCache.initCache();
  const switchsim::SwitchPort five = ivModel.ports.at(5);
  const int port = five.info.port_index;
  auto toggle = [this](std::size_t ipIndex, std::uint32_t ipState) {
    ivModel.ports.at(ipIndex).info.operational_state = ipState;
  };

  // Nothing without a query, nothing while the flag is off.
  toggle(5, 2);
  EXPECT_EQ(CHANGE_FLAG_MODIFY, ivEvents.handlePortChange(event(kEventPortStateChange, port)));
  ASSERT_TRUE(ivEvents.addQuery(IND_INSTMODIFICATION,
                                "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA "
                                "CIM_FCPort OR SourceInstance ISA CIM_ComputerSystem"));
  toggle(5, 1);
  ivEvents.handlePortChange(event(kEventPortStateChange, port));
  EXPECT_TRUE(ivRecorder.seen().empty());

  // A port going offline: SourceInstance stopped, PreviousInstance OK, both
  // embedded in root/qrx; the cache changed whatever was subscribed.
  ivEvents.subscriptions().setInstModificationEnabled(true);
  toggle(5, 2);
  ivEvents.handlePortChange(event(kEventPortStateChange, port));
  ASSERT_EQ(1u, ivRecorder.seen().size());
  const auto& modified = dynamic_cast<const CIM_InstModification&>(ivRecorder.kept(0));
  EXPECT_EQ("root/qrx", modified.SourceInstance.ivNameSpace);
  EXPECT_EQ("root/qrx", modified.PreviousInstance.ivNameSpace);
  EXPECT_EQ("QRX_SwitchFCPort", modified.PreviousInstance.ivClassName);
  const auto* now = dynamic_cast<const QRX_SwitchFCPort*>(modified.SourceInstance.ivpEmbeddedObj);
  const auto* before =
      dynamic_cast<const QRX_SwitchFCPort*>(modified.PreviousInstance.ivpEmbeddedObj);
  ASSERT_TRUE(now != nullptr && before != nullptr);
  EXPECT_EQ(cuint16_A{10}, now->OperationalStatus);
  EXPECT_EQ(cuint16_A{2}, before->OperationalStatus);
  EXPECT_EQ(five.info.name, now->Name);
  EXPECT_EQ(ivModel.switchInfo.name, now->SystemName);
  // "<ctime text with its newline>_<number in 8 hex digits>".
  const std::string& ident = modified.IndicationIdentifier;
  ASSERT_EQ(34u, ident.size());
  EXPECT_EQ('\n', ident[24]);
  EXPECT_EQ("_", ident.substr(25, 1));
  EXPECT_EQ(8u, ident.find_last_of("0123456789ABCDEF") - 25);

  // The fabric is not selected by the query.
  ivModel.fabric.vlan = 4001;
  EXPECT_EQ(CHANGE_FLAG_MODIFY, ivEvents.handleFabricChange(event(kEventVlanConfigChange)));
  EXPECT_EQ(1u, ivRecorder.seen().size());

  // Switch changes of every kind follow the creation flag.
  ivModel.switchInfo.switch_state = 4;
  ivEvents.handleSwitchChange(event(kEventSwitchStateChange));
  EXPECT_EQ(1u, ivRecorder.seen().size());
  ivEvents.subscriptions().setInstModificationEnabled(false);
  ivEvents.subscriptions().setInstCreationEnabled(true);
  ivModel.switchInfo.switch_state = 3;
  ivEvents.handleSwitchChange(event(kEventSwitchStateChange));
  ASSERT_EQ(2u, ivRecorder.seen().size());
  EXPECT_EQ("modify QRX_Switch", ivRecorder.seen()[1]);
  // ... but a port modification needs its own flag.
  toggle(5, 1);
  ivEvents.handlePortChange(event(kEventPortStateChange, port));
  EXPECT_EQ(2u, ivRecorder.seen().size());

  // A removed port gives a deletion with the port as it was.
  ASSERT_TRUE(ivEvents.addQuery(IND_INSTDELETION,
                                "SELECT * FROM CIM_InstDeletion WHERE SourceInstance ISA QRX_FCPort"));
  ivEvents.subscriptions().setInstDeletionEnabled(true);
  ivModel.ports.erase(ivModel.ports.begin() + 5);
  EXPECT_EQ(CHANGE_FLAG_DELETE, ivEvents.handlePortChange(event(kEventPortStateChange, port)));
  ASSERT_EQ(3u, ivRecorder.seen().size());
  EXPECT_EQ("delete QRX_SwitchFCPort " + std::to_string(port), ivRecorder.seen()[2]);

  // After the query is dropped, nothing more.
  EXPECT_TRUE(ivEvents.delQuery(IND_INSTMODIFICATION,
                                "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA "
                                "CIM_FCPort OR SourceInstance ISA CIM_ComputerSystem"));
  ivModel.switchInfo.switch_state = 4;
  ivEvents.handleSwitchChange(event(kEventSwitchStateChange));
  EXPECT_EQ(3u, ivRecorder.seen().size());

  // Events that change nothing subscribable become alerts with their text,
  // while alerts are enabled.
  EventRecord text = event(2);
  text.text = "fabric login storm";
  ivEvents.handleEvent(text, nullptr);
  ivEvents.subscriptions().setAlertEnabled(true);
  ivEvents.handleEvent(text, nullptr);
  ivEvents.handleEvent(event(2), nullptr);  // no text, no alert
  ASSERT_EQ(4u, ivRecorder.seen().size());
  EXPECT_EQ("alert 2 fabric login storm", ivRecorder.seen()[3]);
  EXPECT_EQ(ivModel.switchInfo.name,
            dynamic_cast<const QRX_AlertIndication&>(ivRecorder.kept(3)).SystemName);
}

TEST_F(BackendIndTest, ThreadReceivesAndHoldsEventsWhileASessionCloses) {
  setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxindtest" + std::to_string(getpid())).c_str(), 1);
  std::atomic<bool> closing{false};
  ivEvents.setClosingSessionCheck([&closing] { return closing.load(); });
  subscribeAll();
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
  EXPECT_EQ((std::vector<std::string>{"modify QRX_SwitchFCPort " + std::to_string(port)}),
            ivRecorder.waitFor(1));
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
