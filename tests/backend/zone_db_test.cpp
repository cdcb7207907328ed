// The zone database against the simulated switch in process, over the real
// request encoding: what goes straight to the switch, what a session keeps
// locally, and the exact operation lists and batches of a commit.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "common/backend/LocalZoneDb.h"
#include "tests/support/InMemoryPipe.h"
#include "tests/support/TraceCapture.h"
#include "tools/switchsim/FabricModel.h"
#include "tools/switchsim/SimulatedSwitch.h"

namespace {

using switchsim::FabricModel;

// The simulated switch, remembering the session calls and the batches,
// with session_update and session_end failing on request.
class Daemon : public switchsim::SimulatedSwitch {
 public:
  explicit Daemon(FabricModel& irModel) : SimulatedSwitch(irModel) {}

  std::vector<std::string> calls;
  std::vector<zone_operation_tA> batches;
  int failUpdateAt = -1;  // index of the batch that fails
  int failEnd = 0;
  std::function<void()> onUpdate;

  int session_start(string_t ipService, zone_tA& orZones, alias_tA& orAliases,
                    zoneset_tA& orZoneSets) override {
    calls.push_back("start");
    return SimulatedSwitch::session_start(ipService, orZones, orAliases, orZoneSets);
  }
  int session_update(string_t ipService, zone_operation_tA ipOps) override {
    calls.push_back("update");
    if (onUpdate) onUpdate();
    batches.push_back(ipOps);
    if (static_cast<int>(batches.size()) - 1 == failUpdateAt) return 0x8106;
    return SimulatedSwitch::session_update(ipService, ipOps);
  }
  int session_end(string_t ipService) override {
    calls.push_back("end");
    const int rc = SimulatedSwitch::session_end(ipService);
    return failEnd != 0 ? failEnd : rc;
  }
  int session_terminate(string_t ipService) override {
    calls.push_back("terminate");
    if (onUpdate) onUpdate();
    return SimulatedSwitch::session_terminate(ipService);
  }
};

zone_member_data_t member(cuint16 ipType, const std::string& irId) {
  zone_member_data_t m;
  m.member_type = ipType;
  m.member_id = irId;
  return m;
}

// The i-th of a run of port WWN members.
zone_member_data_t portWwn(int ipIndex) {
  char wwn[17];
  std::snprintf(wwn, sizeof(wwn), "21000e5b7200%04x", ipIndex);
  return member(2, wwn);
}

// An operation as text: "opcode kind:name[ type:id]".
std::string text(const zone_operation_t& irOp) {
  std::string out = std::to_string(irOp.opcode) + " " + std::to_string(irOp.data1.member_type) +
                    ":" + irOp.data1.member_id;
  if (irOp.opcode >= ZONE_OP_ADD) {
    out += " " + std::to_string(irOp.data2.member_type) + ":" + irOp.data2.member_id;
  }
  return out;
}

class ZoneDbTest : public ::testing::Test {
 protected:
  ZoneDbTest()
      : ivModel(FabricModel::builtIn()),
        ivDaemon(ivModel),
        ivPipe(ivDaemon),
        ivClient(ivPipe),
        ivDb([this] { return &ivClient; }),
        ivService(ivModel.switchInfo.name) {}

  // Every operation sent, in order.
  std::vector<std::string> sent() {
    std::vector<std::string> out;
    for (const zone_operation_tA& batch : ivDaemon.batches) {
      for (const zone_operation_t& op : batch) out.push_back(text(op));
    }
    return out;
  }
  std::vector<std::size_t> batchSizes() {
    std::vector<std::size_t> out;
    for (const zone_operation_tA& batch : ivDaemon.batches) out.push_back(batch.size());
    return out;
  }

  FabricModel ivModel;
  Daemon ivDaemon;
  qrxtest::DispatchPipe ivPipe;
  rs_api_client_mq ivClient;
  ZoneDb ivDb;
  std::string ivService;
  TraceCapture ivTrace;
};

TEST_F(ZoneDbTest, OutsideASessionEverythingGoesToTheSwitch) {
  EXPECT_FALSE(ivDb.isSessionInProgress());
  int changed = 0;
  ivDb.setZoningChangedHook([&] { ++changed; });
  EXPECT_EQ(0, ivDb.create_zone(ivService, "z_direct"));
  EXPECT_EQ(0, ivDb.add_zone_member(ivService, "z_direct", member(2, "21000e5b72000001")));
  EXPECT_EQ(0, ivDb.add_zone(ivService, "cfg_maintenance", "z_direct"));
  ASSERT_NE(nullptr, ivModel.zoning.findZone("z_direct"));
  EXPECT_EQ(1u, ivModel.zoning.findZone("z_direct")->member_list.size());
  EXPECT_EQ(3, changed);

  // The switch's own codes come back unchanged.
  EXPECT_EQ(0x8102, ivDb.create_zone(ivService, "z_direct"));
  EXPECT_EQ(0x8101, ivDb.delete_zone_alias(ivService, "a_none"));
  EXPECT_EQ(3, changed);

  string_tA names;
  ASSERT_EQ(0, ivDb.get_zone_names_in_zone_set(ivService, "cfg_maintenance", names));
  EXPECT_EQ((string_tA{"z_host1_array_a", "z_host10_array_b", "z_direct"}), names);
  zone_member_data_tA members;
  EXPECT_EQ(0x8101, ivDb.get_zone_members_in_zone(ivService, "z_none", members));

  // Active members: the zone's own and its aliases', from the switch.
  zone_member_data_tA active;
  ASSERT_EQ(0, ivDb.get_all_active_zone_members_in_zone(ivService, "z_vmhost_array_a", active));
  EXPECT_EQ(5u, active.size());
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND,
            ivDb.get_all_active_zone_members_in_zone(ivService, "z_test_unused", active));
  EXPECT_EQ(0, ivDb.activate_zone_set(ivService, "cfg_maintenance", 1));
  EXPECT_EQ("cfg_maintenance", ivModel.activeZoneSet.name);
  EXPECT_EQ(4, changed);
  EXPECT_TRUE(ivDaemon.calls.empty());
}

TEST_F(ZoneDbTest, ASessionShowsItsOwnEditsAndCommitsTheDifference) {
  ASSERT_EQ(0, ivDb.session_start(ivService));
  EXPECT_EQ(ZONEDB_SESSION_STARTED, ivDb.getSessionState());
  EXPECT_TRUE(ivDb.isSessionInProgress());

  ASSERT_EQ(0, ivDb.create_zone(ivService, "z_new"));
  ASSERT_EQ(0, ivDb.add_zone_member(ivService, "z_new", member(2, "21000e5b72000001")));
  ASSERT_EQ(0, ivDb.add_zone_member(ivService, "z_new", member(4, "5,3")));
  ASSERT_EQ(0, ivDb.add_zone_alias(ivService, "z_new", "a_tape"));
  ASSERT_EQ(0, ivDb.add_zone(ivService, "cfg_production", "z_new"));
  ASSERT_EQ(0, ivDb.create_zone_alias(ivService, "a_new"));
  ASSERT_EQ(0, ivDb.add_alias_member(ivService, "a_new", member(5, "50e5b72000b20001")));
  // Removed and added back: nothing to send.
  ASSERT_EQ(0, ivDb.remove_zone_member(ivService, "z_backup", member(3, "050000")));
  ASSERT_EQ(0, ivDb.add_zone_member(ivService, "z_backup", member(3, "050000")));
  // A changed member list and alias list of an existing zone.
  ASSERT_EQ(0, ivDb.remove_zone_alias(ivService, "z_host3_array_b", "a_array_b_node"));
  ASSERT_EQ(0, ivDb.add_zone_member(ivService, "z_host3_array_b", member(5, "50e5b72000b20000")));
  ASSERT_EQ(0, ivDb.remove_alias_member(ivService, "a_array_a", member(2, "50e5b72000a10002")));
  // Deleting a zone takes it out of both zone sets.
  ASSERT_EQ(0, ivDb.delete_zone(ivService, "z_host1_array_a"));
  // Created and deleted in the session: nothing to send.
  ASSERT_EQ(0, ivDb.create_zone_set(ivService, "cfg_scratch"));
  ASSERT_EQ(0, ivDb.delete_zone_set(ivService, "cfg_scratch"));

  // The client sees its edits, the switch does not yet.
  string_tA names;
  ASSERT_EQ(0, ivDb.get_zone_names(ivService, names));
  EXPECT_EQ((string_tA{"z_backup", "z_host10_array_b", "z_host2_array_a", "z_host3_array_b",
                       "z_new", "z_test_unused", "z_vmhost_array_a"}),
            names);
  ASSERT_EQ(0, ivDb.get_zone_set_names(ivService, names));
  EXPECT_EQ((string_tA{"cfg_maintenance", "cfg_production"}), names);
  ASSERT_EQ(0, ivDb.get_zone_names_in_zone_set(ivService, "cfg_maintenance", names));
  EXPECT_EQ((string_tA{"z_host10_array_b"}), names);
  ASSERT_EQ(0, ivDb.get_zone_alias_names_in_zone(ivService, "z_new", names));
  EXPECT_EQ((string_tA{"a_tape"}), names);
  zone_member_data_tA members;
  ASSERT_EQ(0, ivDb.get_zone_members_in_zone(ivService, "z_new", members));
  EXPECT_EQ(2u, members.size());
  ASSERT_EQ(0, ivDb.get_zone_members_in_zone_alias(ivService, "a_array_a", members));
  EXPECT_EQ(1u, members.size());
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND,
            ivDb.get_zone_members_in_zone(ivService, "z_host1_array_a", members));
  EXPECT_TRUE(ivTrace.contains("Zone z_host1_array_a not found"));
  ASSERT_EQ(0, ivDb.get_all_alias_members(ivService, members));
  EXPECT_EQ(7u, members.size());
  ASSERT_NE(nullptr, ivModel.zoning.findZone("z_host1_array_a"));
  EXPECT_EQ(nullptr, ivModel.zoning.findZone("z_new"));
  // Queries of the switch's active zoning stay with the switch.
  zoneset_t active;
  ASSERT_EQ(0, ivDb.get_active_zone_set(ivService, active));
  EXPECT_EQ(5u, active.zone_names.size());

  bool closingSeen = true;
  ivDaemon.onUpdate = [&] { closingSeen = closingSeen && ivDb.isClosingSession(); };
  EXPECT_FALSE(ivDb.isClosingSession());
  ASSERT_EQ(0, ivDb.session_end(ivService));
  EXPECT_TRUE(closingSeen);
  EXPECT_FALSE(ivDb.isClosingSession());
  EXPECT_EQ(ZONEDB_SESSION_NONE, ivDb.getSessionState());
  EXPECT_FALSE(ivDb.isSessionInProgress());

  // Removals, deletions, creations, additions; aliases, zones, zone sets;
  // names in order.
  EXPECT_EQ((std::vector<std::string>{
                "3 242:a_array_a 2:50e5b72000a10002",
                "3 241:z_host3_array_b 242:a_array_b_node",
                "3 240:cfg_maintenance 241:z_host1_array_a",
                "3 240:cfg_production 241:z_host1_array_a",
                "1 241:z_host1_array_a",
                "0 242:a_new",
                "0 241:z_new",
                "2 242:a_new 5:50e5b72000b20001",
                "2 241:z_host3_array_b 5:50e5b72000b20000",
                "2 241:z_new 2:21000e5b72000001",
                "2 241:z_new 4:5,3",
                "2 241:z_new 242:a_tape",
                "2 240:cfg_production 241:z_new",
            }),
            sent());
  EXPECT_EQ((std::vector<std::size_t>{4, 1, 2, 6}), batchSizes());
  EXPECT_EQ((std::vector<std::string>{"start", "update", "update", "update", "update", "end"}),
            ivDaemon.calls);

  // The switch has it now, and the database is empty again.
  EXPECT_EQ(nullptr, ivModel.zoning.findZone("z_host1_array_a"));
  ASSERT_NE(nullptr, ivModel.zoning.findZone("z_new"));
  EXPECT_EQ(3u, ivModel.zoning.findZone("z_new")->member_list.size() +
                    ivModel.zoning.findZone("z_new")->alias_names.size());
  EXPECT_EQ(
      (string_tA{"z_host2_array_a", "z_vmhost_array_a", "z_host3_array_b", "z_backup", "z_new"}),
      ivModel.zoning.findZoneSet("cfg_production")->zone_names);
  ASSERT_EQ(0, ivDb.get_zone_names(ivService, names));
  EXPECT_EQ(7u, names.size());
}

TEST_F(ZoneDbTest, BatchesOfTwentyAndSessionsWithNothingToSend) {
  // An empty session: no update, then the switch's session_end.
  ASSERT_EQ(0, ivDb.session_start(ivService));
  ASSERT_EQ(0, ivDb.session_end(ivService));
  EXPECT_EQ((std::vector<std::string>{"start", "end"}), ivDaemon.calls);

  // One creation and 45 additions: batches of 1, then 20, 20 and 5.
  ASSERT_EQ(0, ivDb.session_start(ivService));
  ASSERT_EQ(0, ivDb.create_zone(ivService, "z_big"));
  for (int i = 0; i < 45; ++i) {
    ASSERT_EQ(0, ivDb.add_zone_member(ivService, "z_big", portWwn(i)));
  }
  ASSERT_EQ(0, ivDb.session_end(ivService));
  EXPECT_EQ((std::vector<std::size_t>{1, 20, 20, 5}), batchSizes());
  ASSERT_NE(nullptr, ivModel.zoning.findZone("z_big"));
  EXPECT_EQ(45u, ivModel.zoning.findZone("z_big")->member_list.size());

  // A switch that fails to close its session after a good commit: the
  // changes are in, so the client is told 0.
  ivDaemon.calls.clear();
  ivDaemon.failEnd = 0x8108;
  ASSERT_EQ(0, ivDb.session_start(ivService));
  ASSERT_EQ(0, ivDb.delete_zone(ivService, "z_big"));
  EXPECT_EQ(0, ivDb.session_end(ivService));
  EXPECT_TRUE(ivTrace.contains("session_end() failed rc=33032. session reset."));
  EXPECT_EQ((std::vector<std::string>{"start", "update", "end"}), ivDaemon.calls);
  EXPECT_EQ(ZONEDB_SESSION_NONE, ivDb.getSessionState());
  EXPECT_EQ(nullptr, ivModel.zoning.findZone("z_big"));
}

TEST_F(ZoneDbTest, AFailingBatchStopsTheCommitAndTerminates) {
  ASSERT_EQ(0, ivDb.session_start(ivService));
  ASSERT_EQ(0, ivDb.create_zone(ivService, "z_one"));
  for (int i = 0; i < 30; ++i) {
    ASSERT_EQ(0, ivDb.add_zone_member(ivService, "z_one", portWwn(i)));
  }
  const FabricModel before = ivModel;
  ivDaemon.failUpdateAt = 1;  // the first batch of additions
  EXPECT_EQ(0x8106, ivDb.session_end(ivService));
  EXPECT_TRUE(ivTrace.contains("Error, commitChangesList for addOperations failed with rc 33030"));
  EXPECT_EQ((std::vector<std::string>{"start", "update", "update", "terminate"}), ivDaemon.calls);
  EXPECT_EQ(ZONEDB_SESSION_NONE, ivDb.getSessionState());
  EXPECT_FALSE(ivDb.isSessionInProgress());
  EXPECT_TRUE(before.zoning == ivModel.zoning);
  // The switch's session is closed: a new one opens.
  EXPECT_EQ(0, ivDb.session_start(ivService));
  EXPECT_EQ(0, ivDb.session_terminate(ivService));
}

TEST_F(ZoneDbTest, ResultCodesOfTheSessionAndTheLocalEdits) {
  EXPECT_EQ(ZONEDB_RC_NO_SESSION, ivDb.session_end(ivService));
  EXPECT_TRUE(ivTrace.contains("ERROR: Error, no transaction to end"));
  EXPECT_EQ(ZONEDB_RC_NO_SESSION, ivDb.session_terminate(ivService));
  EXPECT_TRUE(ivTrace.contains("ERROR: Error, no transaction to terminate"));
  EXPECT_TRUE(ivDaemon.calls.empty());
  // The switch refuses a session for an unknown service: nothing changes.
  EXPECT_EQ(0x8101, ivDb.session_start("nosuchservice"));
  EXPECT_EQ(ZONEDB_SESSION_NONE, ivDb.getSessionState());

  ASSERT_EQ(0, ivDb.session_start(ivService));
  EXPECT_EQ(ZONEDB_RC_SESSION_OPEN, ivDb.session_start(ivService));
  EXPECT_TRUE(ivTrace.contains("ERROR: Error, Transaction already ongoing"));

  EXPECT_EQ(ZONEDB_RC_CREATE_FAILED, ivDb.create_zone(ivService, "z_backup"));
  EXPECT_TRUE(ivTrace.contains("Object z_backup already in container"));
  EXPECT_TRUE(ivTrace.contains("Unable to create zone z_backup"));
  EXPECT_EQ(ZONEDB_RC_CREATE_FAILED, ivDb.create_zone_alias(ivService, "a_tape"));
  EXPECT_TRUE(ivTrace.contains("Unable to create zone alias a_tape"));
  EXPECT_EQ(ZONEDB_RC_CREATE_FAILED, ivDb.create_zone_set(ivService, "cfg_production"));
  EXPECT_EQ(ZONEDB_RC_ADD_FAILED, ivDb.add_zone(ivService, "cfg_production", "z_backup"));
  EXPECT_TRUE(ivTrace.contains("Unable to add Zone z_backup to ZoneSet cfg_production"));
  EXPECT_EQ(ZONEDB_RC_ADD_FAILED, ivDb.add_zone_alias(ivService, "z_backup", "a_tape"));
  EXPECT_EQ(ZONEDB_RC_ADD_FAILED, ivDb.add_zone_member(ivService, "z_backup", member(3, "050000")));
  EXPECT_TRUE(ivTrace.contains("Unable to add Zone Member 3 - 050000 to Zone z_backup"));
  EXPECT_EQ(ZONEDB_RC_ADD_FAILED, ivDb.add_alias_member(ivService, "a_tape", member(4, "5,11")));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.add_zone(ivService, "cfg_none", "z_backup"));
  EXPECT_TRUE(ivTrace.contains("Unable to find ZoneSet cfg_none"));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.add_zone(ivService, "cfg_production", "z_none"));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.remove_zone(ivService, "cfg_production", "z_test_unused"));
  EXPECT_TRUE(ivTrace.contains("Unable to remove Zone z_test_unused from ZoneSet cfg_production"));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.add_zone_alias(ivService, "z_backup", "a_none"));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.remove_zone_alias(ivService, "z_backup", "a_array_a"));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.remove_zone_member(ivService, "z_backup", member(2, "x")));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.add_alias_member(ivService, "a_none", member(2, "x")));
  EXPECT_TRUE(ivTrace.contains("Unable to find alias a_none"));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.remove_alias_member(ivService, "a_tape", member(2, "x")));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.delete_zone(ivService, "z_none"));
  EXPECT_TRUE(ivTrace.contains("Unable to find Zone z_none"));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.delete_zone_alias(ivService, "a_none"));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.delete_zone_set(ivService, "cfg_none"));
  string_tA names;
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.get_zone_names_in_zone_set(ivService, "cfg_none", names));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.get_zone_alias_names_in_zone(ivService, "z_none", names));
  zone_member_data_tA members;
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.get_zone_members_in_zone_alias(ivService, "a_none", members));
  EXPECT_TRUE(ivTrace.contains("Zone Alias a_none not found"));

  // Deleted, then created again: the object is emptied, not re-created.
  ASSERT_EQ(0, ivDb.delete_zone_alias(ivService, "a_tape"));
  EXPECT_EQ(ZONEDB_RC_NOT_FOUND, ivDb.delete_zone_alias(ivService, "a_tape"));
  ASSERT_EQ(0, ivDb.create_zone_alias(ivService, "a_tape"));
  ASSERT_EQ(0, ivDb.session_end(ivService));
  EXPECT_EQ((std::vector<std::string>{"3 242:a_tape 4:5,11", "3 241:z_backup 242:a_tape"}), sent());
  EXPECT_EQ(ZONEDB_RC_NO_SESSION, ivDb.session_end(ivService));
}

TEST_F(ZoneDbTest, DeletingAZoneSetTakesTheZonesNoOtherSetLists) {
  ASSERT_EQ(0, ivDb.session_start(ivService));
  ASSERT_EQ(0, ivDb.delete_zone_set(ivService, "cfg_maintenance"));
  string_tA names;
  ASSERT_EQ(0, ivDb.get_zone_set_names(ivService, names));
  EXPECT_EQ((string_tA{"cfg_production"}), names);
  ASSERT_EQ(0, ivDb.get_zone_names(ivService, names));
  EXPECT_EQ(6u, names.size());  // z_host10_array_b went, z_host1_array_a stays
  ASSERT_EQ(0, ivDb.session_end(ivService));
  EXPECT_EQ((std::vector<std::string>{"1 241:z_host10_array_b", "1 240:cfg_maintenance"}), sent());
  EXPECT_EQ(nullptr, ivModel.zoning.findZoneSet("cfg_maintenance"));
  EXPECT_EQ(nullptr, ivModel.zoning.findZone("z_host10_array_b"));
  EXPECT_NE(nullptr, ivModel.zoning.findZone("z_host1_array_a"));
}

TEST_F(ZoneDbTest, TerminateDiscardsAlsoASessionOpenedElsewhere) {
  ASSERT_EQ(0, ivDb.session_start(ivService));
  ASSERT_EQ(0, ivDb.delete_zone(ivService, "z_backup"));
  bool closing = false;
  ivDaemon.onUpdate = [&] { closing = ivDb.isClosingSession(); };
  ASSERT_EQ(0, ivDb.session_terminate(ivService));
  EXPECT_TRUE(closing);
  EXPECT_FALSE(ivDb.isClosingSession());
  EXPECT_EQ((std::vector<std::string>{"start", "terminate"}), ivDaemon.calls);
  EXPECT_NE(nullptr, ivModel.zoning.findZone("z_backup"));
  EXPECT_EQ(ZONEDB_SESSION_NONE, ivDb.getSessionState());

  // A session the switch holds for another client of the switch.
  zone_tA zones;
  alias_tA aliases;
  zoneset_tA zoneSets;
  ASSERT_EQ(0, ivDaemon.session_start(ivService, zones, aliases, zoneSets));
  EXPECT_EQ(0x8107, ivDb.session_start(ivService));
  EXPECT_EQ(0, ivDb.session_terminate(ivService));
  EXPECT_EQ(0, ivDb.session_start(ivService));
  EXPECT_EQ(0, ivDb.session_terminate(ivService));
}

}  // namespace
