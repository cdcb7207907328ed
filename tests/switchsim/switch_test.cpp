// The simulated switch's answers, called directly: fabric queries, direct
// zoning edits and zoning sessions.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tools/switchsim/SimulatedSwitch.h"
#include "tools/switchsim/Status.h"
#include "tools/switchsim/ZoningState.h"

namespace {

using namespace switchsim;

zone_member_data_t member(std::uint16_t ipType, const std::string& irId) {
  zone_member_data_t m;
  m.member_type = ipType;
  m.member_id = irId;
  return m;
}

zone_operation_t op(std::uint16_t ipOpcode, std::uint16_t ipKind, const std::string& irName,
                    std::uint16_t ipType = 0, const std::string& irId = "") {
  zone_operation_t o;
  o.opcode = ipOpcode;
  o.data1 = member(ipKind, irName);
  o.data2 = member(ipType, irId);
  return o;
}

class SimulatedSwitchTest : public ::testing::Test {
 protected:
  FabricModel ivModel = FabricModel::builtIn();
  SimulatedSwitch ivSwitch{ivModel};
  const std::string ivService = ivModel.switchInfo.name;
};

TEST_F(SimulatedSwitchTest, FabricQueriesAgreeWithEachOther) {
  switch_info_t info;
  ASSERT_EQ(0, ivSwitch.get_switch_info(info));
  EXPECT_EQ(ivModel.ports.size(), info.nr_fc_ports);
  EXPECT_NE(0u, info.switch_time.ivTime) << "0 in the model reports the clock";

  const std::string npivPort = ivModel.ports[8].info.name;
  string_tA names;
  node_fc_port_info_tA nodePorts;
  ASSERT_EQ(0, ivSwitch.get_attached_node_fc_port_info(npivPort, nodePorts));
  ASSERT_EQ(4u, nodePorts.size());
  ASSERT_EQ(0, ivSwitch.get_attached_node_names(npivPort, names));
  EXPECT_EQ(string_tA{nodePorts[0].node_name}, names) << "one node behind all NPIV logins";
  EXPECT_EQ(static_cast<int>(kStatusNotFound), ivSwitch.get_attached_node_names("2099", names));

  string_tA allNodes, allNodePorts;
  protocol_endpoint_info_tA endpoints;
  ASSERT_EQ(0, ivSwitch.get_node_names(allNodes));
  ASSERT_EQ(0, ivSwitch.get_node_fc_port_names(allNodePorts));
  ASSERT_EQ(0, ivSwitch.get_protocol_endpoint_info(endpoints));
  EXPECT_EQ(ivModel.ports.size() + allNodePorts.size(), endpoints.size());

  // A port that goes offline logs its node ports out everywhere.
  ivModel.ports[8].info.operational_state = 2;
  string_tA fewerNodes, fewerNodePorts;
  ASSERT_EQ(0, ivSwitch.get_attached_node_fc_port_names(npivPort, names));
  EXPECT_TRUE(names.empty());
  ASSERT_EQ(0, ivSwitch.get_node_names(fewerNodes));
  ASSERT_EQ(0, ivSwitch.get_node_fc_port_names(fewerNodePorts));
  EXPECT_EQ(allNodes.size() - 1, fewerNodes.size());
  EXPECT_EQ(allNodePorts.size() - 4, fewerNodePorts.size());

  fabric_info_t fabric;
  ivModel.fabricPresent = false;
  EXPECT_EQ(static_cast<int>(kStatusNotAvailable), ivSwitch.get_fabric_info(fabric));
}

TEST_F(SimulatedSwitchTest, DirectEditsCheckEveryRequest) {
  const std::string wwn = "21000e5b72000001";
  EXPECT_EQ(0, ivSwitch.create_zone(ivService, "z_new"));
  EXPECT_EQ(static_cast<int>(kStatusAlreadyExists), ivSwitch.create_zone(ivService, "z_new"));
  EXPECT_EQ(static_cast<int>(kStatusNotFound), ivSwitch.create_zone("1000000000000000", "z2"));
  EXPECT_EQ(static_cast<int>(kStatusBadName), ivSwitch.create_zone(ivService, std::string(65, 'a')));
  EXPECT_EQ(0, ivSwitch.create_zone(ivService, std::string(64, 'a')));
  EXPECT_EQ(static_cast<int>(kStatusBadName), ivSwitch.create_zone_alias(ivService, "a b"));
  EXPECT_EQ(0, ivSwitch.add_zone_member(ivService, "z_new", member(2, wwn)));
  EXPECT_EQ(static_cast<int>(kStatusAlreadyExists),
            ivSwitch.add_zone_member(ivService, "z_new", member(2, wwn)));
  // A member is its type and its whole identifier: neither the same
  // identifier under another type nor one that ends alike is a duplicate.
  EXPECT_EQ(0, ivSwitch.add_zone_member(ivService, "z_new", member(5, wwn)));
  EXPECT_EQ(0, ivSwitch.add_zone_member(ivService, "z_new", member(2, "21000e5b72000011")));
  EXPECT_EQ(static_cast<int>(kStatusNotFound),
            ivSwitch.remove_zone_member(ivService, "z_new", member(2, "21000e5b72000021")));
  EXPECT_EQ(0, ivSwitch.remove_zone_member(ivService, "z_new", member(5, wwn)));
  EXPECT_EQ(static_cast<int>(kStatusAlreadyExists),
            ivSwitch.add_zone_member(ivService, "z_new", member(2, "21000e5b72000011")));
  EXPECT_EQ(0, ivSwitch.remove_zone_member(ivService, "z_new", member(2, "21000e5b72000011")));
  EXPECT_EQ(static_cast<int>(kStatusBadMemberType),
            ivSwitch.add_zone_member(ivService, "z_new", member(6, "a_tape")));
  EXPECT_EQ(static_cast<int>(kStatusBadMemberId),
            ivSwitch.add_zone_member(ivService, "z_new", member(4, "5;11")));
  EXPECT_EQ(static_cast<int>(kStatusNotFound),
            ivSwitch.add_zone_member(ivService, "z_none", member(2, wwn)));
  EXPECT_EQ(static_cast<int>(kStatusNotFound), ivSwitch.add_zone_alias(ivService, "z_new", "a_none"));
  EXPECT_EQ(0, ivSwitch.add_zone_alias(ivService, "z_new", "a_tape"));
  EXPECT_EQ(0, ivSwitch.add_zone(ivService, "cfg_maintenance", "z_new"));

  ivModel.zoneCapabilities.MaxNumZoneSets = 2;
  EXPECT_EQ(static_cast<int>(kStatusLimitReached), ivSwitch.create_zone_set(ivService, "cfg_3"));

  // Deleting an alias or zone takes it out of zones, zone sets and the
  // active zone set.
  EXPECT_EQ(0, ivSwitch.delete_zone_alias(ivService, "a_array_a"));
  string_tA aliases;
  ASSERT_EQ(0, ivSwitch.get_zone_alias_names_in_zone(ivService, "z_host1_array_a", aliases));
  EXPECT_TRUE(aliases.empty());
  EXPECT_EQ(0, ivSwitch.delete_zone(ivService, "z_host1_array_a"));
  zoneset_t active;
  string_tA inSet;
  ASSERT_EQ(0, ivSwitch.get_active_zone_set(ivService, active));
  ASSERT_EQ(0, ivSwitch.get_zone_names_in_zone_set(ivService, "cfg_maintenance", inSet));
  EXPECT_EQ((string_tA{"z_host2_array_a", "z_vmhost_array_a", "z_host3_array_b", "z_backup"}),
            active.zone_names);
  EXPECT_EQ((string_tA{"z_host10_array_b", "z_new"}), inSet);

  // Activation copies; deactivation must name the active zone set.
  EXPECT_EQ(static_cast<int>(kStatusNotFound), ivSwitch.activate_zone_set(ivService, "cfg_x", 1));
  EXPECT_EQ(static_cast<int>(kStatusNotFound),
            ivSwitch.activate_zone_set(ivService, "cfg_maintenance", 0));
  EXPECT_EQ(0, ivSwitch.activate_zone_set(ivService, "cfg_maintenance", 1));
  EXPECT_EQ(0, ivSwitch.remove_zone(ivService, "cfg_maintenance", "z_new"));
  ASSERT_EQ(0, ivSwitch.get_active_zone_set(ivService, active));
  EXPECT_EQ((string_tA{"z_host10_array_b", "z_new"}), active.zone_names);
  EXPECT_EQ(0, ivSwitch.activate_zone_set(ivService, "cfg_maintenance", 0));
  ASSERT_EQ(0, ivSwitch.get_active_zone_set(ivService, active));
  EXPECT_TRUE(active.name.empty() && active.zone_names.empty());
}

// A failing batch puts everything back where it stood, also what deletes
// took out of the middle of lists and out of other objects; a batch that
// succeeds ends as its operations applied one at a time would.
TEST_F(SimulatedSwitchTest, FailedBatchRestoresOrderAfterDeletesAndRemovals) {
  const ZoneConfig original = ivModel.zoning;
  const zone_operation_tA edits = {
      op(1, 241, "z_host1_array_a"),                  // first of both zone sets
      op(1, 242, "a_array_a"),                        // named by three zones
      op(3, 241, "z_backup", 3, "050000"),            // first member of two
      op(3, 240, "cfg_production", 0, "z_vmhost_array_a"),
      op(3, 242, "a_vmhost_npiv", 2, "28020e5b72000009"),
      op(1, 240, "cfg_maintenance"),
      op(0, 241, "z_new"),
      op(2, 241, "z_new", 2, "21000e5b72000001"),
      op(2, 240, "cfg_production", 0, "z_new"),
      op(1, 241, "z_host10_array_b"),
  };
  zone_operation_tA failing = edits;
  failing.push_back(op(2, 241, "z_missing", 2, "21000e5b72000002"));

  ZoneEditor editor(ivModel.zoning, ivModel.zoneCapabilities);
  std::size_t failedAt = 0;
  EXPECT_EQ(kStatusNotFound, editor.applyAll(failing, &failedAt));
  EXPECT_EQ(edits.size(), failedAt);
  EXPECT_TRUE(ivModel.zoning == original);

  ZoneConfig oneByOne = original;
  ZoneEditor single(oneByOne, ivModel.zoneCapabilities);
  for (const zone_operation_t& edit : edits) ASSERT_EQ(kStatusOk, single.apply(edit));
  ASSERT_EQ(kStatusOk, editor.applyAll(edits, nullptr));
  EXPECT_TRUE(ivModel.zoning == oneByOne);
  EXPECT_FALSE(ivModel.zoning == original);
}

TEST_F(SimulatedSwitchTest, SessionsStageBatchesAllOrNothing) {
  zone_tA zones;
  alias_tA aliases;
  zoneset_tA zoneSets;
  zone_service_data_t service;
  ASSERT_EQ(0, ivSwitch.get_zone_service_data(ivService, service));
  EXPECT_EQ(3, service.session_state);
  EXPECT_EQ(5, service.requested_session_state);
  EXPECT_EQ(static_cast<int>(kStatusNoSession), ivSwitch.session_update(ivService, {}));
  EXPECT_EQ(static_cast<int>(kStatusNoSession), ivSwitch.session_end(ivService));

  ASSERT_EQ(0, ivSwitch.session_start(ivService, zones, aliases, zoneSets));
  EXPECT_EQ(ivModel.zoning.zones, zones);
  EXPECT_EQ(ivModel.zoning.zoneSets, zoneSets);
  string_tA inSet;
  ASSERT_EQ(0, ivSwitch.get_zone_names_in_zone_set(ivService, zoneSets[0].name, inSet));
  EXPECT_EQ(zoneSets[0].zone_names, inSet);
  EXPECT_EQ(static_cast<int>(kStatusSessionOpen),
            ivSwitch.session_start(ivService, zones, aliases, zoneSets));
  EXPECT_EQ(static_cast<int>(kStatusSessionOpen), ivSwitch.create_zone(ivService, "z_direct"));
  ASSERT_EQ(0, ivSwitch.get_zone_service_data(ivService, service));
  EXPECT_EQ(2, service.session_state);

  // The third operation fails: nothing of the batch stays.
  const zone_operation_tA bad = {op(0, 241, "z_a"), op(2, 241, "z_a", 2, "21000e5b72000001"),
                                 op(2, 240, "cfg_production", 0, "z_missing")};
  EXPECT_EQ(static_cast<int>(kStatusNotFound), ivSwitch.session_update(ivService, bad));
  EXPECT_EQ(static_cast<int>(kStatusBadOperation), ivSwitch.session_update(ivService, {op(4, 241, "z")}));
  EXPECT_EQ(static_cast<int>(kStatusBadOperation), ivSwitch.session_update(ivService, {op(0, 239, "z")}));
  EXPECT_EQ(static_cast<int>(kStatusBadMemberType),
            ivSwitch.session_update(ivService, {op(2, 242, "a_tape", 6, "a_array_a")}));

  const zone_operation_tA good = {
      op(3, 241, "z_backup", 6, "a_tape"),   // an alias leaves a zone
      op(1, 242, "a_vmhost_npiv"),           // and one is deleted
      op(0, 242, "a_new"),
      op(2, 242, "a_new", 5, "50e5b72000a10000"),
      op(0, 241, "z_a"),
      op(2, 241, "z_a", 242, "a_new"),
      op(2, 240, "cfg_production", 0, "z_a"),
  };
  ASSERT_EQ(0, ivSwitch.session_update(ivService, good));
  string_tA committed;
  ASSERT_EQ(0, ivSwitch.get_zone_names(ivService, committed));
  EXPECT_EQ(ivModel.zoning.zones.size(), committed.size()) << "staged, not yet committed";
  ASSERT_EQ(0, ivSwitch.session_end(ivService));

  ASSERT_NE(nullptr, ivModel.zoning.findZone("z_a"));
  EXPECT_EQ(string_tA{"a_new"}, ivModel.zoning.findZone("z_a")->alias_names);
  EXPECT_TRUE(ivModel.zoning.findZone("z_a")->member_list.empty());
  EXPECT_EQ(nullptr, ivModel.zoning.findAlias("a_vmhost_npiv"));
  EXPECT_TRUE(ivModel.zoning.findZone("z_backup")->alias_names.empty());
  EXPECT_EQ("z_a", ivModel.zoning.findZoneSet("cfg_production")->zone_names.back());

  // Terminate discards.
  ASSERT_EQ(0, ivSwitch.session_start(ivService, zones, aliases, zoneSets));
  ASSERT_EQ(0, ivSwitch.session_update(ivService, {op(1, 241, "z_a")}));
  ASSERT_EQ(0, ivSwitch.session_terminate(ivService));
  EXPECT_NE(nullptr, ivModel.zoning.findZone("z_a"));
  ASSERT_EQ(0, ivSwitch.get_zone_service_data(ivService, service));
  EXPECT_EQ(3, service.session_state);
  EXPECT_EQ(4, service.requested_session_state);
  EXPECT_EQ(static_cast<int>(kStatusNoSession), ivSwitch.session_terminate(ivService));
}

}  // namespace

namespace {

// The node ports every switch port of the model reports as attached.
std::vector<std::string> attachedEverywhere(FabricModel& irModel) {
  SimulatedSwitch daemon(irModel);
  std::vector<std::string> out;
  for (const SwitchPort& port : irModel.ports) {
    string_tA names;
    EXPECT_EQ(0, daemon.get_attached_node_fc_port_names(port.info.name, names));
    out.insert(out.end(), names.begin(), names.end());
  }
  return out;
}

}  // namespace

// Node ports behind another switch of the fabric are in the fabric-wide
// answers (and survive the JSON form) but attached to no port of this one.
TEST(SimulatedSwitchTwoSwitchTest, OtherSwitchNodesAreInTheFabricButNotAttached) {
  FabricModel builtIn = FabricModel::builtIn();
  FabricModel model = FabricModel::twoSwitchFabric();
  std::string error;
  ASSERT_TRUE(model.validate(&error)) << error;
  FabricModel reread;
  ASSERT_TRUE(FabricModel::fromJson(model.toJson(), &reread, &error)) << error;
  EXPECT_EQ(model.toJson(), reread.toJson());

  SimulatedSwitch daemon(model);
  string_tA nodes, nodePorts, builtInNodes;
  ASSERT_EQ(0, daemon.get_node_names(nodes));
  ASSERT_EQ(0, daemon.get_node_fc_port_names(nodePorts));
  ASSERT_EQ(0, SimulatedSwitch(builtIn).get_node_names(builtInNodes));
  EXPECT_EQ(builtInNodes.size() + 2, nodes.size());
  EXPECT_EQ(builtIn.nodePorts.size() + 3, nodePorts.size());

  const std::vector<std::string> attached = attachedEverywhere(model);
  EXPECT_EQ(attachedEverywhere(builtIn), attached);
  for (const NodePort& port : model.nodePorts) {
    const bool remote = port.switchPort.empty();
    EXPECT_EQ(!remote, std::find(attached.begin(), attached.end(), port.info.name) != attached.end())
        << port.info.name;
  }
  // The other switch's ports stay logged in when a port of this one goes down.
  model.ports[0].info.operational_state = 2;
  ASSERT_EQ(0, daemon.get_node_fc_port_names(nodePorts));
  EXPECT_EQ(builtIn.nodePorts.size() + 2, nodePorts.size());
}
