// The fabric model: the built-in model's shape, its JSON form, and the
// errors a bad model file gets.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <set>
#include <string>

#include <nlohmann/json.hpp>

#include "tools/switchsim/FabricModel.h"

namespace {

using switchsim::FabricModel;
using Json = nlohmann::ordered_json;

TEST(FabricModelTest, BuiltInModelIsVariedAndSurvivesJson) {
  const FabricModel model = FabricModel::builtIn();
  std::string error;
  ASSERT_TRUE(model.validate(&error)) << error;

  std::set<unsigned> states, speeds, memberTypes;
  for (const switchsim::SwitchPort& port : model.ports) {
    states.insert(port.info.operational_state);
    speeds.insert(port.info.operational_link_speed);
  }
  std::map<std::string, int> loginsPerPort;
  for (const switchsim::NodePort& port : model.nodePorts) ++loginsPerPort[port.switchPort];
  for (const zone_t& zone : model.zoning.zones) {
    for (const zone_member_data_t& m : zone.member_list) memberTypes.insert(m.member_type);
  }
  for (const alias_t& alias : model.zoning.aliases) {
    for (const zone_member_data_t& m : alias.member_list) memberTypes.insert(m.member_type);
  }
  EXPECT_EQ(16u, model.switchInfo.name.size());
  EXPECT_GE(model.ports.size(), 24u);
  EXPECT_GE(states.size(), 3u);
  EXPECT_GE(speeds.size(), 3u);
  EXPECT_EQ(4, loginsPerPort[model.ports[8].info.name]) << "NPIV logins";
  EXPECT_EQ((std::set<unsigned>{2, 3, 4, 5}), memberTypes);
  EXPECT_FALSE(model.activeZoneSet.name.empty());
  EXPECT_GE(model.zoning.zoneSets.size(), 2u);

  const std::string text = model.toJson();
  FabricModel read;
  ASSERT_TRUE(FabricModel::fromJson(text, &read, &error)) << error;
  EXPECT_EQ(text, read.toJson());
  EXPECT_EQ(model.zoning, read.zoning);
  EXPECT_EQ(model.ports[21].stats, read.ports[21].stats);
  EXPECT_EQ(model.product, read.product);
}

TEST(FabricModelTest, BadModelsAreRejectedNamingTheField) {
  const Json good = Json::parse(FabricModel::builtIn().toJson());
  const std::pair<std::function<void(Json&)>, std::string> cases[] = {
      {[](Json& j) { j["ports"][3]["port_index"] = "3"; }, "ports[3].port_index: expected an unsigned"},
      {[](Json& j) { j["ports"][0]["operational_state"] = -1; }, "ports[0].operational_state"},
      {[](Json& j) { j["switch"]["domain_id"] = 256; }, "switch.domain_id: expected an unsigned integer from 0 to 255"},
      {[](Json& j) { j["switch"].erase("hostname"); }, "switch.hostname: missing"},
      {[](Json& j) { j["ports"][1]["speeed"] = 5; }, "ports[1]: unknown field \"speeed\""},
      {[](Json& j) { j["ports"][2]["stats"]["TotalTxFrames"] = "x"; }, "ports[2].stats.TotalTxFrames"},
      {[](Json& j) { j["ports"][1]["port_index"] = 0; }, "ports[1].port_index: 0 numbers two ports"},
      {[](Json& j) { j["node_ports"][0]["switch_port"] = "2099"; }, "node_ports[0].switch_port: \"2099\" is not a switch port"},
      {[](Json& j) { j["node_ports"][0]["node_name"] = "x"; }, "node_ports[0].node_name"},
      {[](Json& j) { j["zoning"]["zones"][0]["alias_names"][0] = "nope"; }, "zoning.zones[0].alias_names[0]: not-found"},
      {[](Json& j) { j["zoning"]["zones"][0]["name"] = std::string(65, 'z'); }, "zoning.zones[0].name: bad-name"},
      {[](Json& j) { j["zoning"]["aliases"][0]["member_list"][0]["member_type"] = 6; }, "zoning.aliases[0].member_list[0]: bad-member-type"},
      {[](Json& j) { j["zoning"]["zones"][0]["member_list"][0]["member_id"] = "21:00"; }, "zoning.zones[0].member_list[0]: bad-member-id"},
      {[](Json& j) { j["zoning"]["zone_sets"][1]["zone_names"][0] = "z_none"; }, "zoning.zone_sets[1].zone_names[0]: not-found"},
      {[](Json& j) { j["zoning"]["active_zone_set"]["zone_names"][0] = "z_none"; }, "zoning.active_zone_set.zone_names[0]"},
      {[](Json& j) { j["ports"] = Json::array(); }, "ports: a switch has at least one port"},
  };
  for (const auto& c : cases) {
    Json bad = good;
    c.first(bad);
    FabricModel model = FabricModel::builtIn();
    model.switchInfo.owner = "untouched";
    std::string error;
    EXPECT_FALSE(FabricModel::fromJson(bad.dump(), &model, &error)) << c.second;
    EXPECT_NE(std::string::npos, error.find(c.second)) << error;
    EXPECT_EQ("untouched", model.switchInfo.owner);
  }

  FabricModel model;
  std::string error;
  EXPECT_FALSE(FabricModel::fromJson("{\"software\": ", &model, &error));
  EXPECT_NE(std::string::npos, error.find("not valid JSON")) << error;
  EXPECT_FALSE(FabricModel::loadFile("/nonexistent/model.json", &model, &error));
  EXPECT_NE(std::string::npos, error.find("cannot read /nonexistent/model.json")) << error;

  Json noFabric = good;
  noFabric["fabric"] = nullptr;
  ASSERT_TRUE(FabricModel::fromJson(noFabric.dump(), &model, &error)) << error;
  EXPECT_FALSE(model.fabricPresent);
}

}  // namespace
