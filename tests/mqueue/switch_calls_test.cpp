// Every remote call through the request client over the real message
// queues, against the simulated switch serving in this process. Each
// answer must equal what the switch's own implementation gives for the
// same call on a copy of its model, so the test checks the encoding of
// every argument and result on the wire both ways.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "common/mqueue/FramePipeMqTmpl.h"
#include "generated/smis_ipc/smis_ipc_client.h"
#include "tools/switchsim/Simulator.h"

namespace {

using switchsim::FabricModel;
using switchsim::SimulatedSwitch;

FabricModel fixedTimeModel() {
  FabricModel model = FabricModel::builtIn();
  model.switchInfo.switch_time.setTimeUsec(1700000000ULL * 1000000ULL);
  return model;
}

class SwitchCallsTest : public ::testing::Test {
 protected:
  SwitchCallsTest() : ivSim(fixedTimeModel()), ivModel(fixedTimeModel()), ivDirect(ivModel), ivClient(ivPipe) {}

  void SetUp() override {
    setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxcalls" + std::to_string(getpid())).c_str(), 1);
    std::string error;
    ASSERT_TRUE(ivSim.start(&error)) << error;
    ASSERT_TRUE(ivPipe.open("smis_ipc"));
  }
  void TearDown() override { ivPipe.close(); }

  switchsim::Simulator ivSim;
  FabricModel ivModel;       // the copy the direct answers come from
  SimulatedSwitch ivDirect;  // the same implementation, called directly
  fcbb::DaemonPipe ivPipe;
  rs_api_client_mq ivClient;
};

// Calls `irCall` on the client and on the direct switch, each with a fresh
// result; statuses and results must agree. Returns the status.
template <typename T, typename Call>
int same(rs_api_client& irRemote, rs_api_client& irDirect, const char* ipName, Call irCall) {
  T remote{}, direct{};
  const int rcRemote = irCall(irRemote, remote);
  EXPECT_EQ(irCall(irDirect, direct), rcRemote) << ipName;
  EXPECT_TRUE(direct == remote) << ipName;
  return rcRemote;
}

int edit(const char* ipName, int ipRemote, int ipDirect) {
  EXPECT_EQ(ipDirect, ipRemote) << ipName;
  return ipRemote;
}

#define SAME(T, call, ...) \
  same<T>(ivClient, ivDirect, #call, [&](rs_api_client& c, T& o) { return c.call(__VA_ARGS__ o); })
// An edit made on both sides; the statuses must agree.
#define EDIT(call, ...) edit(#call, ivClient.call(__VA_ARGS__), ivDirect.call(__VA_ARGS__))

TEST_F(SwitchCallsTest, EveryCallAnswersAsTheSwitchDoes) {
  EXPECT_EQ(0, SAME(software_info_t, get_software_info));
  EXPECT_EQ(0, SAME(fabric_info_t, get_fabric_info));
  EXPECT_EQ(0, SAME(string_t, get_switch_name));
  EXPECT_EQ(0, SAME(switch_info_t, get_switch_info));
  EXPECT_EQ(0, SAME(string_tA, get_switch_fc_port_names));
  EXPECT_EQ(0, SAME(switch_fc_port_info_tA, get_switch_fc_port_info));
  EXPECT_EQ(0, SAME(switch_fc_port_stat_tA, get_switch_fc_port_stat));
  EXPECT_EQ(0, SAME(string_tA, get_node_names));
  EXPECT_EQ(0, SAME(string_tA, get_node_fc_port_names));
  EXPECT_EQ(0, SAME(node_fc_port_info_tA, get_node_fc_port_info));
  EXPECT_EQ(0, SAME(string_tA, get_protocol_endpoint_names));
  EXPECT_EQ(0, SAME(protocol_endpoint_info_tA, get_protocol_endpoint_info));
  EXPECT_EQ(0, SAME(switch_product_info_t, get_switch_product_info));

  ASSERT_FALSE(ivModel.nodePorts.empty());
  const std::string port = ivModel.nodePorts.front().switchPort;
  EXPECT_EQ(0, SAME(string_tA, get_attached_node_names, port,));
  EXPECT_EQ(0, SAME(string_tA, get_attached_node_fc_port_names, port,));
  EXPECT_EQ(0, SAME(node_fc_port_info_tA, get_attached_node_fc_port_info, port,));
  EXPECT_NE(0, SAME(string_tA, get_attached_node_names, "no-such-port",));

  const std::string svc = ivModel.switchInfo.name;
  ASSERT_FALSE(ivModel.zoning.zoneSets.empty());
  const std::string zoneSet = ivModel.zoning.zoneSets.front().name;
  std::string zone, alias;
  for (const zone_t& z : ivModel.zoning.zones) {
    if (!z.alias_names.empty()) zone = z.name, alias = z.alias_names.front();
  }
  ASSERT_FALSE(alias.empty());
  EXPECT_EQ(0, SAME(zone_service_data_t, get_zone_service_data, svc,));
  EXPECT_EQ(0, SAME(zone_capabilities_data_t, get_zone_capabilities_data, svc,));
  EXPECT_EQ(0, SAME(string_tA, get_zone_set_names, svc,));
  EXPECT_EQ(0, SAME(string_tA, get_zone_names, svc,));
  EXPECT_EQ(0, SAME(string_tA, get_zone_names_in_zone_set, svc, zoneSet,));
  EXPECT_EQ(0, SAME(string_tA, get_zone_alias_names, svc,));
  EXPECT_EQ(0, SAME(string_tA, get_zone_alias_names_in_zone, svc, zone,));
  EXPECT_EQ(0, SAME(zone_member_data_tA, get_all_zone_members, svc,));
  EXPECT_EQ(0, SAME(zone_member_data_tA, get_all_alias_members, svc,));
  EXPECT_EQ(0, SAME(zone_member_data_tA, get_zone_members_in_zone, svc, zone,));
  EXPECT_EQ(0, SAME(zone_member_data_tA, get_zone_members_in_zone_alias, svc, alias,));
  EXPECT_EQ(0, SAME(zoneset_t, get_active_zone_set, svc,));

  // Direct edits: build a zone set, fill it, activate it, take it apart.
  zone_member_data_tA members;
  ASSERT_EQ(0, ivDirect.get_all_zone_members(svc, members));
  ASSERT_FALSE(members.empty());
  const zone_member_data_t member = members.front();
  EXPECT_EQ(0, EDIT(create_zone_set, svc, "zsCalls"));
  EXPECT_EQ(0, EDIT(create_zone, svc, "zCalls"));
  EXPECT_EQ(0, EDIT(create_zone_alias, svc, "aCalls"));
  EXPECT_NE(0, EDIT(create_zone, svc, "zCalls"));
  EXPECT_EQ(0, EDIT(add_alias_member, svc, "aCalls", member));
  EXPECT_EQ(0, EDIT(add_zone_member, svc, "zCalls", member));
  EXPECT_EQ(0, EDIT(add_zone_alias, svc, "zCalls", "aCalls"));
  EXPECT_EQ(0, EDIT(add_zone, svc, "zsCalls", "zCalls"));
  EXPECT_EQ(0, EDIT(activate_zone_set, svc, "zsCalls", 1));
  EXPECT_EQ(0, SAME(zoneset_t, get_active_zone_set, svc,));
  EXPECT_EQ(0, SAME(zone_member_data_tA, get_zone_members_in_zone, svc, "zCalls",));
  EXPECT_EQ(0, EDIT(remove_zone_member, svc, "zCalls", member));
  EXPECT_EQ(0, EDIT(remove_alias_member, svc, "aCalls", member));
  EXPECT_EQ(0, EDIT(remove_zone_alias, svc, "zCalls", "aCalls"));
  EXPECT_EQ(0, EDIT(remove_zone, svc, "zsCalls", "zCalls"));
  EXPECT_EQ(0, EDIT(delete_zone_alias, svc, "aCalls"));
  EXPECT_EQ(0, EDIT(delete_zone, svc, "zCalls"));
  EXPECT_EQ(0, EDIT(delete_zone_set, svc, "zsCalls"));
  EXPECT_EQ(0, SAME(string_tA, get_zone_set_names, svc,));

  // A session: the whole configuration, a batch of operations, the end;
  // then one that is terminated.
  zone_tA zonesRemote, zonesDirect;
  alias_tA aliasesRemote, aliasesDirect;
  zoneset_tA setsRemote, setsDirect;
  ASSERT_EQ(0, ivClient.session_start(svc, zonesRemote, aliasesRemote, setsRemote));
  ASSERT_EQ(0, ivDirect.session_start(svc, zonesDirect, aliasesDirect, setsDirect));
  EXPECT_EQ(zonesDirect, zonesRemote);
  EXPECT_EQ(aliasesDirect, aliasesRemote);
  EXPECT_EQ(setsDirect, setsRemote);
  zone_operation_tA batch(2);
  batch[0].opcode = 0;  // create zone "zSession"
  batch[0].data1.member_type = 241;
  batch[0].data1.member_id = "zSession";
  batch[1].opcode = 2;  // add the member to it
  batch[1].data1 = batch[0].data1;
  batch[1].data2 = member;
  EXPECT_EQ(0, EDIT(session_update, svc, batch));
  EXPECT_EQ(0, EDIT(session_end, svc));
  EXPECT_EQ(0, SAME(zone_member_data_tA, get_zone_members_in_zone, svc, "zSession",));
  ASSERT_EQ(0, ivClient.session_start(svc, zonesRemote, aliasesRemote, setsRemote));
  ASSERT_EQ(0, ivDirect.session_start(svc, zonesDirect, aliasesDirect, setsDirect));
  EXPECT_EQ(0, EDIT(session_terminate, svc));
  EXPECT_NE(0, EDIT(session_end, svc));
}

}  // namespace
