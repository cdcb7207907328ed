// The fabric cache against the simulated switch, in process: the daemon's
// model is changed between refreshes and the cache must report the kind of
// change and keep the state from before it.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "common/backend/BackendStart.h"
#include "common/backend/FabricCache.h"
#include "generated/scimbackend/QRX_SwitchFCPort_Best.h"
#include "tests/support/InMemoryPipe.h"
#include "tests/support/TraceCapture.h"
#include "tools/switchsim/FabricModel.h"
#include "tools/switchsim/SimulatedSwitch.h"

namespace {

using switchsim::FabricModel;

// The simulated switch, with one alias whose member query fails, and
// calls that fail a given number of times with the daemon's status.
class Daemon : public switchsim::SimulatedSwitch {
 public:
  explicit Daemon(FabricModel& irModel) : SimulatedSwitch(irModel) {}
  std::string failingAlias;
  std::map<std::string, int> failures;  // call -> times still to fail
  bool noPortCount = false;             // the switch record says 0 ports

  int get_zone_members_in_zone_alias(string_t ZoneServiceName, string_t AliasName,
                                     zone_member_data_tA& ZoneMemberData) override {
    if (AliasName == failingAlias) return 0x8101;
    return SimulatedSwitch::get_zone_members_in_zone_alias(ZoneServiceName, AliasName,
                                                           ZoneMemberData);
  }
  int get_switch_info(switch_info_t& o) override {
    if (fails("get_switch_info")) return 0x810a;
    const int rc = SimulatedSwitch::get_switch_info(o);
    if (noPortCount) o.nr_fc_ports = 0;
    return rc;
  }
  int get_switch_fc_port_info(switch_fc_port_info_tA& o) override {
    return fails("get_switch_fc_port_info") ? 0x810a : SimulatedSwitch::get_switch_fc_port_info(o);
  }
  int get_active_zone_set(string_t s, zoneset_t& o) override {
    return fails("get_active_zone_set") ? 0x810a : SimulatedSwitch::get_active_zone_set(s, o);
  }
  int get_fabric_info(fabric_info_t& o) override {
    return fails("get_fabric_info") ? 0x810a : SimulatedSwitch::get_fabric_info(o);
  }

 private:
  bool fails(const std::string& irCall) {
    auto it = failures.find(irCall);
    if (it == failures.end() || it->second == 0) return false;
    --it->second;
    return true;
  }
};

// Cuts the next replies short, as a reply that does not decode: a local
// failure of the request client, not an answer of the daemon.
class CuttingPipe : public qrxtest::DispatchPipe {
 public:
  using DispatchPipe::DispatchPipe;
  int cutNext = 0;

 protected:
  Reply answer(const qrxtest::Bytes& irRequest) override {
    Reply reply = DispatchPipe::answer(irRequest);
    if (cutNext > 0) {
      --cutNext;
      reply.data.resize(6);  // status 0, then two bytes of a result
    }
    return reply;
  }
};

class FabricCacheTest : public ::testing::Test {
 protected:
  FabricCacheTest()
      : ivModel(FabricModel::builtIn()), ivDaemon(ivModel), ivPipe(ivDaemon), ivCache(ivPipe) {}

  switchsim::SwitchPort& port(std::size_t ipAt) { return ivModel.ports.at(ipAt); }

  FabricModel ivModel;
  Daemon ivDaemon;
  CuttingPipe ivPipe;
  FabricCache ivCache;
  TraceCapture ivTrace;
};

TEST_F(FabricCacheTest, FabricThatVanishesAndReturns) {
  ivCache.initCache();
  EXPECT_EQ(CHANGE_FLAG_NONE, ivCache.cacheAndRefreshFabric());

  ivModel.fabricPresent = false;
  EXPECT_EQ(CHANGE_FLAG_DELETE, ivCache.cacheAndRefreshFabric());
  fabric_info_t previous;
  ivCache.prev_fabric_info(previous);
  EXPECT_EQ(ivModel.fabric, previous);
  EXPECT_NE(std::string::npos, ivTrace.text().find("rs_api_client_mq::get_fabric_info() failed ret="));
  EXPECT_EQ(CHANGE_FLAG_NONE, ivCache.cacheAndRefreshFabric());

  ivModel.fabricPresent = true;
  EXPECT_EQ(CHANGE_FLAG_CREATE, ivCache.cacheAndRefreshFabric());
  ivModel.fabric.vlan = 77;
  EXPECT_EQ(CHANGE_FLAG_MODIFY, ivCache.cacheAndRefreshFabric());
  fabric_info_t now;
  ASSERT_EQ(0, ivCache.get_fabric_info(now));
  EXPECT_EQ(77, now.vlan);
  ivCache.prev_fabric_info(previous);
  EXPECT_NE(77, previous.vlan);
}

TEST_F(FabricCacheTest, PartsTheFirstFillMissedAreReadByTheNextReader) {
  ivDaemon.failures = {{"get_switch_fc_port_info", 1}, {"get_active_zone_set", 1},
                       {"get_fabric_info", 1}};
  ivCache.initCache();
  std::vector<std::string> names;
  ivCache.get_artificial_switch_fc_port_names(names);
  EXPECT_EQ(ivModel.ports.size(), names.size());
  EXPECT_TRUE(ivTrace.contains("read after a failed first fill"));
  zoneset_t active;
  ivCache.get_active_zone_set("", active);
  EXPECT_EQ(ivModel.activeZoneSet, active);
  fabric_info_t fabric;
  ASSERT_EQ(0, ivCache.get_fabric_info(fabric));
  // Now cached: a change is seen by the next fabric event.
  ivModel.fabric.vlan = 4000;
  EXPECT_EQ(CHANGE_FLAG_MODIFY, ivCache.cacheAndRefreshFabric());

  // A switch event after a failed first fill creates the switch, ports and
  // all; so does a port event.
  FabricCache other(ivPipe);
  ivDaemon.failures = {{"get_switch_info", 1}};
  other.initCache();
  EXPECT_EQ(CHANGE_FLAG_CREATE, other.cacheAndRefreshSwitch());
  other.get_artificial_switch_fc_port_names(names);
  EXPECT_EQ(ivModel.ports.size(), names.size());
  FabricCache third(ivPipe);
  ivDaemon.failures = {{"get_switch_info", 1}};
  third.initCache();
  EXPECT_EQ(CHANGE_FLAG_MODIFY, third.cacheAndRefreshSwitchPort(port(2).info.port_index));
  third.get_artificial_switch_fc_port_names(names);
  EXPECT_EQ(ivModel.ports.size(), names.size());
}

TEST_F(FabricCacheTest, FailedRefreshesKeepTheLastGoodState) {
  ivCache.initCache();
  ivModel.switchInfo.switch_state = 3;
  ivDaemon.failures = {{"get_switch_info", 1}};
  EXPECT_EQ(CHANGE_FLAG_NONE, ivCache.cacheAndRefreshSwitch());
  EXPECT_TRUE(ivTrace.contains("the cached switch stays"));
  // Still there: port events are handled, and the change is seen next time.
  EXPECT_EQ(CHANGE_FLAG_MODIFY, ivCache.cacheAndRefreshSwitchPort(port(0).info.port_index));
  EXPECT_FALSE(ivTrace.contains("SwitchMap is empty"));
  EXPECT_EQ(CHANGE_FLAG_MODIFY, ivCache.cacheAndRefreshSwitch());

  // A fabric reply that does not decode says nothing about the fabric.
  ivPipe.cutNext = 1;
  EXPECT_EQ(CHANGE_FLAG_NONE, ivCache.cacheAndRefreshFabric());
  fabric_info_t fabric;
  ASSERT_EQ(0, ivCache.get_fabric_info(fabric));
  EXPECT_EQ(ivModel.fabric, fabric);
  // Nor does a port list that does not decode.
  ivPipe.cutNext = 1;
  EXPECT_EQ(CHANGE_FLAG_NONE, ivCache.cacheAndRefreshSwitchPort(port(0).info.port_index));
  switch_fc_port_info_t cached;
  EXPECT_EQ(0, ivCache.get_switch_fc_port_info(port(0).info.port_index, cached));
}

TEST_F(FabricCacheTest, SwitchChangesAndTheAddressOverlay) {
  ivCache.initCache();
  const std::string oldAddress = ivModel.switchInfo.ip_address;

  // No event announces an address change: a reader's fresh record carries
  // it into the cache, so a later switch refresh sees no modification.
  ivModel.switchInfo.ip_address = "10.99.0.1";
  switch_info_t fresh;
  ASSERT_EQ(0, ivCache.get_switch_info(fresh));
  EXPECT_EQ("10.99.0.1", fresh.ip_address);
  EXPECT_EQ(CHANGE_FLAG_NONE, ivCache.cacheAndRefreshSwitch());
  // Fields outside the comparison never make a modification.
  ivModel.switchInfo.ip2_address = "10.99.0.2";
  ivModel.switchInfo.switch_time.setTimeUsec(12345678000000ULL);
  EXPECT_EQ(CHANGE_FLAG_NONE, ivCache.cacheAndRefreshSwitch());

  ivModel.switchInfo.switch_state = 3;
  EXPECT_EQ(CHANGE_FLAG_MODIFY, ivCache.cacheAndRefreshSwitch());
  switch_info_t previous;
  ivCache.prev_switch_info(previous);
  EXPECT_EQ(1u, previous.switch_state);
  EXPECT_EQ("10.99.0.1", previous.ip_address);  // the overlay reached the record
  EXPECT_NE(oldAddress, previous.ip_address);
}

// The port backend over this cache: a switch record that reports no ports
// is refused with a trace line (the daemon's answer, never an assertion).
TEST_F(FabricCacheTest, PortBackendRefusesASwitchWithoutPorts) {
  ivCache.initCache();
  FabricCache* const kept = fabricCache;
  fabricCache = &ivCache;
  QRX_SwitchFCPort_Array ports;
  QRX_SwitchFCPort_KeyArray keys;
  ASSERT_TRUE(QRX_SwitchFCPort_Best::singleton.enumInstances(ports));
  EXPECT_EQ(ivModel.ports.size(), ports.size());
  ivDaemon.noPortCount = true;
  EXPECT_FALSE(QRX_SwitchFCPort_Best::singleton.enumInstanceNames(keys));
  EXPECT_FALSE(QRX_SwitchFCPort_Best::singleton.getInstance(QRX_SwitchFCPort_Key(ports[0]), ports[0]));
  EXPECT_TRUE(ivTrace.contains("ERROR: the switch reports no Fibre Channel ports (nr_fc_ports 0)\n"));
  fabricCache = kept;
}

TEST_F(FabricCacheTest, PortEvents) {
  ivCache.initCache();
  std::vector<std::string> names;
  ivCache.get_artificial_switch_fc_port_names(names);
  ASSERT_EQ(ivModel.ports.size(), names.size());

  // Unknown on both sides.
  EXPECT_EQ(CHANGE_FLAG_NONE, ivCache.cacheAndRefreshSwitchPort(4000));
  EXPECT_NE(std::string::npos, ivTrace.text().find("Failed to find port_index=4000"));

  // Two events in a row: both modifications, changed or not; the previous
  // record is the one from before each change.
  const int index = port(3).info.port_index;
  const cuint32 before = port(3).info.operational_state;
  port(3).info.operational_state = before == 1 ? 2 : 1;
  EXPECT_EQ(CHANGE_FLAG_MODIFY, ivCache.cacheAndRefreshSwitchPort(index));
  switch_fc_port_info_t cached, previous;
  ASSERT_EQ(0, ivCache.get_switch_fc_port_info(index, cached));
  EXPECT_EQ(port(3).info.operational_state, cached.operational_state);
  ivCache.prev_switch_fc_port_info(index, previous);
  EXPECT_EQ(before, previous.operational_state);
  EXPECT_EQ(CHANGE_FLAG_MODIFY, ivCache.cacheAndRefreshSwitchPort(index));
  ivCache.prev_switch_fc_port_info(index, previous);
  EXPECT_EQ(port(3).info.operational_state, previous.operational_state);

  // A port that goes away and one that comes: the others keep their names,
  // and the new one does not take the freed name.
  const switchsim::SwitchPort gone = port(5);
  ivModel.ports.erase(ivModel.ports.begin() + 5);
  EXPECT_EQ(CHANGE_FLAG_DELETE, ivCache.cacheAndRefreshSwitchPort(gone.info.port_index));
  switchsim::SwitchPort added = gone;
  added.info.port_index = 90;
  added.info.name = "2000000000000090";
  ivModel.ports.push_back(added);
  EXPECT_EQ(CHANGE_FLAG_CREATE, ivCache.cacheAndRefreshSwitchPort(90));
  std::vector<std::string> after;
  ivCache.get_artificial_switch_fc_port_names(after);
  ASSERT_EQ(names.size(), after.size());
  std::vector<std::string> expected = names;
  expected.erase(expected.begin() + 5);
  EXPECT_EQ(expected, std::vector<std::string>(after.begin(), after.end() - 1));
  EXPECT_EQ(0, std::count(names.begin(), names.end(), after.back()));
}

TEST_F(FabricCacheTest, ArtificialNamesStandForPhysicalPorts) {
  // Physical names unlike the first one's address: the client sees the
  // derived names, the daemon is still asked with the physical ones.
  std::string first = ivModel.ports.front().info.name;
  std::uint64_t start = 0;
  ASSERT_TRUE(AwwpnMap::parseWwn(first, start));
  ivModel.ports[1].info.name = "2f00000000000abc";
  for (switchsim::NodePort& nodePort : ivModel.nodePorts) {
    if (nodePort.switchPort == ivModel.ports[1].info.name) nodePort.switchPort = "2f00000000000abc";
  }
  ivCache.initCache();
  switch_fc_port_info_tA objects;
  ivCache.get_artificial_switch_fc_port_info(objects);
  ASSERT_GE(objects.size(), 2u);
  EXPECT_EQ(AwwpnMap::formatWwn(start + 1), objects[1].name);
  EXPECT_EQ(ivModel.ports[1].info.port_id, objects[1].port_id);
  EXPECT_EQ(0x2f00000000000abcULL, ivCache.getITwwpn(start + 1));
  EXPECT_EQ(start + 1, ivCache.getNodewwn(0x2f00000000000abcULL));

  string_tA direct, throughCache;
  const int rc = ivDaemon.get_attached_node_names("2f00000000000abc", direct);
  EXPECT_EQ(rc, ivCache.get_attached_node_names(objects[1].name, throughCache));
  EXPECT_EQ(direct, throughCache);

  // One switch-side endpoint per mapped port follows the daemon's own.
  protocol_endpoint_info_tA endpoints;
  ASSERT_EQ(0, ivCache.get_protocol_endpoint_info(endpoints));
  ASSERT_GE(endpoints.size(), objects.size());
  const protocol_endpoint_info_t& last = endpoints.back();
  EXPECT_EQ(objects.back().name, last.name);
  EXPECT_EQ(objects.back().name, last.fc_port_name);
  EXPECT_EQ(1, last.is_switch_side);
  EXPECT_EQ(ivModel.switchInfo.name, last.system_name);
}

TEST_F(FabricCacheTest, ActiveZoneSetStopsAtTheFirstFailingQuery) {
  ivCache.initCache();
  zoneset_t active;
  ivCache.get_active_zone_set("ignored", active);
  ASSERT_EQ(ivModel.activeZoneSet.name, active.name);
  ASSERT_GE(active.zone_names.size(), 2u);

  // Members through aliases are merged with the direct ones, each once.
  std::size_t aliasZone = active.zone_names.size();
  std::string alias;
  for (std::size_t i = 0; i < active.zone_names.size() && alias.empty(); ++i) {
    string_tA aliases;
    ivDaemon.get_zone_alias_names_in_zone(ivModel.switchInfo.name, active.zone_names[i], aliases);
    if (!aliases.empty()) {
      aliasZone = i;
      alias = aliases.front();
    }
  }
  ASSERT_FALSE(alias.empty()) << "the built-in active zone set has a zone with an alias";
  zone_member_set members;
  ivCache.get_all_active_zone_members_in_zone("", active.zone_names[aliasZone], members);
  zone_member_data_tA viaAlias;
  ivDaemon.get_zone_members_in_zone_alias(ivModel.switchInfo.name, alias, viaAlias);
  for (const zone_member_data_t& member : viaAlias) EXPECT_EQ(1u, members.count(member));

  ivDaemon.failingAlias = alias;
  ivCache.refreshActiveZoneSet();
  EXPECT_NE(std::string::npos, ivTrace.text().find("get_zone_members_in_zone_alias() failed"));
  for (std::size_t i = 0; i < active.zone_names.size(); ++i) {
    zone_member_set found;
    found.insert(zone_member_data_t());  // left as it was when the zone is missing
    ivCache.get_all_active_zone_members_in_zone("", active.zone_names[i], found);
    EXPECT_EQ(i >= aliasZone, found.size() == 1 && found.count(zone_member_data_t()) == 1)
        << active.zone_names[i];
  }
}

TEST(FabricCacheConvertTest, StateSpeedAndAvailabilityTables) {
  switch_fc_port_info_t port;
  port.name = "2000000000000001";
  port.port_id = "010100";
  QRX_SwitchFCPort object;
  const cuint16 operational[] = {0, 2, 10, 11, 7, 11, 1};
  for (cuint32 state = 0; state < 7; ++state) {
    port.operational_state = state;
    FabricCache::convertSwitchFCPort(object, port, "sw");
    EXPECT_EQ(cuint16_A{operational[state]}, object.OperationalStatus) << state;
  }
  const cuint16 enabled[] = {0, 2, 3, 1};
  for (cuint32 state = 0; state < 4; ++state) {
    port.link_state = state;
    FabricCache::convertSwitchFCPort(object, port, "sw");
    EXPECT_EQ(enabled[state], object.EnabledState) << state;
  }
  const cuint64 speed[] = {0, 1073741824ULL, 2147483648ULL, 4294967296ULL, 10737418240ULL,
                           8589934592ULL, 10485760ULL, 104857600ULL, 21474836480ULL, 0};
  for (cuint32 index = 0; index < 10; ++index) {
    port.operational_link_speed = index;
    FabricCache::convertSwitchFCPort(object, port, "sw");
    EXPECT_EQ(speed[index], object.Speed) << index;
  }
  const std::pair<cuint32, cuint16> availability[] = {{0, 2}, {1, 3}, {2, 4}, {3, 11}, {255, 1}, {7, 3}};
  for (const auto& row : availability) {
    port.port_status = row.first;
    FabricCache::convertSwitchFCPort(object, port, "sw");
    EXPECT_EQ(row.second, object.Availability) << row.first;
  }
  EXPECT_EQ("QRX_Switch", object.SystemCreationClassName);
  EXPECT_EQ("sw", object.SystemName);
  EXPECT_EQ(port.name, object.DeviceID);
  EXPECT_EQ(cstring_A{"010100"}, object.NetworkAddresses);
  EXPECT_EQ(cuint16_A{3}, object.PortDiscriminator);

  switch_info_t sw;
  sw.name = "100000051e0a0b0c";
  sw.domain_id = 7;
  sw.ip_address = "";
  sw.ip_addressv6 = "fe80::1";
  QRX_Switch swObject;
  const std::pair<cuint16, cuint16> states[] = {{0, 0}, {2, 2}, {3, 3}, {11, 9}, {6, 4}, {1, 0}};
  for (cuint32 state = 0; state < 6; ++state) {
    sw.switch_state = state;
    FabricCache::convertSwitch(swObject, sw);
    EXPECT_EQ(cuint16_A{states[state].first}, swObject.OperationalStatus) << state;
    EXPECT_EQ(states[state].second, swObject.EnabledState) << state;
  }
  EXPECT_EQ((cstring_A{"7", "None", "", "fe80::1"}), swObject.OtherIdentifyingInfo);
  EXPECT_EQ((cstring_A{"DomainID", "SNIA:DetailedType", "Ipv4 Address", "Ipv6 Address"}),
            swObject.IdentifyingDescriptions);

  fabric_info_t fabric;
  fabric.name = std::string(70, 'f');
  fabric.vlan = 5;
  QRX_Fabric fabricObject;
  FabricCache::convertFabric(fabricObject, fabric);
  EXPECT_EQ(59u, fabricObject.ElementName.size());  // cut to the 60-byte buffer
  fabric.name = "F1";
  FabricCache::convertFabric(fabricObject, fabric);
  EXPECT_EQ("F1[vlan=5]", fabricObject.ElementName);
}

}  // namespace
