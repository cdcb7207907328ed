// Zoning end to end: qrx-cim runs scripts against the provider library with
// the simulated switch serving in this process. A session is opened, filled,
// committed or discarded through the zone service; what the library
// committed is checked in the simulator's model, and read back through
// every zoning class and association.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "tests/cimhost/RunTool.h"
#include "tests/support/TraceCapture.h"
#include "tools/switchsim/Simulator.h"

namespace {

using cimhost_test::runQrxCim;
using cimhost_test::ToolRun;

const std::string kWwn = "10000e5a71004000";
const std::string kService =
    "'QRX_ZoneService.SystemCreationClassName=\"QRX_Switch\",SystemName=\"" + kWwn +
    "\",CreationClassName=\"QRX_ZoneService\",Name=\"" + kWwn + "\"'";
const std::string kFabric = "'QRX_Fabric.CreationClassName=\"QRX_Fabric\",Name=\"" + kWwn + "\"'";

// The InstanceID of a zoning object, e.g. id("0Z0", "z1").
std::string id(const std::string& irHead, const std::string& irName) {
  return irHead + "." + kWwn + "." + irName;
}
// The path of a zoning object as a script word.
std::string path(const std::string& irClass, const std::string& irHead, const std::string& irName) {
  return "'" + irClass + ".InstanceID=\"" + id(irHead, irName) + "\"'";
}
std::string zone(const std::string& irName, const std::string& irHead = "0Z0") {
  return path("QRX_Zone", irHead, irName);
}
std::string zoneSet(const std::string& irName) { return path("QRX_ZoneSet", "0S0", irName); }
std::string alias(const std::string& irName) { return path("QRX_ZoneAlias", "0A0", irName); }
std::string session(int ipState) {
  return "im " + kService +
         " SessionControl RequestedSessionState:uint16=" + std::to_string(ipState);
}
std::string member(int ipType, const std::string& irId, const std::string& irCollection) {
  return "im " + kService + " CreateZoneMembershipSettingData ConnectivityMemberType:uint16=" +
         std::to_string(ipType) + " ConnectivityMemberID=" + irId +
         " SystemSpecificCollection:ref=" + irCollection;
}

std::size_t count(const std::string& irText, const std::string& irPart) {
  std::size_t n = 0;
  for (std::size_t at = irText.find(irPart); at != std::string::npos;
       at = irText.find(irPart, at + 1)) {
    ++n;
  }
  return n;
}

// The text between the lines "== irFrom" and "== irTo" (or the end).
std::string section(const std::string& irOut, const std::string& irFrom,
                    const std::string& irTo = "") {
  const std::size_t from = irOut.find("== " + irFrom + "\n");
  if (from == std::string::npos) return "";
  const std::size_t to = irTo.empty() ? std::string::npos : irOut.find("== " + irTo + "\n", from);
  return irOut.substr(from, to == std::string::npos ? std::string::npos : to - from);
}

class QrxCimZoning : public ::testing::Test {
 protected:
  QrxCimZoning() : ivSim(switchsim::FabricModel::builtIn()) {
    setenv("QRX_SMIS_TRACE_FILE", ivTrace.path().c_str(), 1);
    setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxzonetest" + std::to_string(getpid())).c_str(), 1);
    ivScript = ivTrace.path() + ".script";
  }
  ~QrxCimZoning() override { std::remove(ivScript.c_str()); }

  void SetUp() override {
    std::string error;
    ASSERT_TRUE(ivSim.start(&error)) << error;
  }

  // Runs the lines as one qrx-cim script (the library loaded once).
  ToolRun run(const std::vector<std::string>& irLines) {
    std::ofstream script(ivScript);
    for (const std::string& line : irLines) script << line << "\n";
    script.close();
    return runQrxCim({"run", ivScript});
  }

  const switchsim::ZoneConfig zoning() { return ivSim.snapshot().zoning; }
  std::size_t requests(const std::string& irFunction) {
    std::size_t n = 0;
    for (const std::string& line : ivSim.requestLog()) {
      n += line.rfind("request ", 0) == 0 &&
           line.find("function=" + irFunction + " ") != std::string::npos;
    }
    return n;
  }

  TraceCapture ivTrace;
  switchsim::Simulator ivSim;
  std::string ivScript;
};

TEST_F(QrxCimZoning, ASessionCommittedActivatedAndReadBack) {
  const std::string zs = zoneSet("cfg_e2e");
  const std::string z = zone("z_e2e");
  const std::string a = alias("a_e2e");
  ToolRun out = run({
      session(2),
      "im " + kService + " CreateZoneSet ZoneSetName=cfg_e2e",
      "im " + kService + " CreateZone ZoneName=z_e2e ZoneType:uint16=2 ZoneSubType:uint16=1",
      "im " + kService + " CreateZoneAlias CollectionAlias=a_e2e",
      member(2, "21000e5b72000001", z),
      member(3, "050200", z),
      member(4, "5,7", z),
      member(5, "50e5b72000b20000", a),
      member(6, "a_e2e", z),
      "im " + kService + " AddZoneMembershipSettingData SystemSpecificCollection:ref=" + a +
          " ZoneMembershipSettingData:ref=" +
          path("QRX_ZoneMembershipSettingData", "0M2", "50e5b72000a10001"),
      "im " + kService + " AddZoneAlias Zone:ref=" + z + " ZoneAlias:ref=" + alias("a_tape"),
      "im " + kService + " AddZone ZoneSet:ref=" + zs + " Zone:ref=" + z,
      "im " + kService + " AddZone ZoneSet:ref=" + zs + " Zone:ref=" + zone("z_backup"),
      "echo == inside",
      "ei QRX_ZoneService",
      "ein QRX_Zone",
      "an " + z + " --ac QRX_ZoneMembershipSettingDataInZone",
      "echo == commit",
      session(3),
      "im " + kService + " ActivateZoneSet ZoneSet:ref=" + zs + " Activate:boolean=true",
      "echo == after",
      "ein QRX_ZoneSet",
      "gi " + zone("z_e2e", "1Z0"),
      "echo == members",
      "an " + z + " --ac QRX_ZoneMembershipSettingDataInZone",
      "echo == active members",
      "an " + zone("z_e2e", "1Z0") + " --ac QRX_ZoneMembershipSettingDataInZone",
      "echo == aliases",
      "an " + z + " --ac QRX_ZoneAliasInZone",
      "echo == alias members",
      "an " + a + " --ac QRX_ZoneMembershipSettingDataInZoneAlias",
      "echo == zones",
      "an " + path("QRX_ZoneSet", "1S0", "cfg_e2e") + " --ac QRX_ZoneInZoneSet",
      "echo == fabric",
      "an " + kFabric + " --ac QRX_ZoneSetInFabric",
      "an " + kFabric + " --ac QRX_ZoneCapabilitiesInFabric",
      "an " + kFabric + " --ac QRX_ZoneServiceInFabric",
      "echo == end",
  });
  ASSERT_EQ(0, out.exitCode) << out.err << out.out;
  EXPECT_EQ(15u, count(out.out, "ReturnValue = 0")) << out.out;
  EXPECT_NE(std::string::npos, out.out.find("ZoneSet = \"root/qrx:QRX_ZoneSet.InstanceID=\\\"" +
                                            id("0S0", "cfg_e2e") + "\\\"\""))
      << out.out;
  EXPECT_NE(std::string::npos, out.out.find(id("0M6", "a_e2e")));

  // Inside the session the client sees its edits, the switch does not.
  const std::string inside = section(out.out, "inside", "commit");
  EXPECT_NE(std::string::npos, inside.find("SessionState = 2;"));
  EXPECT_NE(std::string::npos, inside.find(id("0Z0", "z_e2e")));
  EXPECT_EQ(3u, count(inside, "QRX_ZoneMembershipSettingData.InstanceID=")) << inside;
  EXPECT_EQ(0u, requests("rs_api_create_zone") + requests("rs_api_add_zone_member") +
                    requests("rs_api_add_zone"));
  EXPECT_EQ(1u, requests("rs_api_session_start"));
  EXPECT_EQ(2u, requests("rs_api_session_update"));  // 3 creations, then 9 additions
  EXPECT_EQ(1u, requests("rs_api_session_end"));

  // The switch has what was committed, and the new zone set is active.
  const switchsim::ZoneConfig config = zoning();
  ASSERT_NE(nullptr, config.findZoneSet("cfg_e2e"));
  EXPECT_EQ((string_tA{"z_backup", "z_e2e"}), config.findZoneSet("cfg_e2e")->zone_names);
  const zone_t* committed = config.findZone("z_e2e");
  ASSERT_NE(nullptr, committed);
  EXPECT_EQ(3u, committed->member_list.size());
  EXPECT_EQ((string_tA{"a_e2e", "a_tape"}), committed->alias_names);
  ASSERT_NE(nullptr, config.findAlias("a_e2e"));
  EXPECT_EQ(2u, config.findAlias("a_e2e")->member_list.size());
  EXPECT_EQ("cfg_e2e", ivSim.snapshot().activeZoneSet.name);

  const std::string after = section(out.out, "after", "members");
  EXPECT_NE(std::string::npos, after.find(id("1S0", "cfg_e2e")));
  EXPECT_EQ(std::string::npos, after.find(id("1S0", "cfg_production")));
  EXPECT_NE(std::string::npos, after.find("Active = true;"));
  EXPECT_NE(std::string::npos, after.find("Caption = \"Zone:z_e2e\";"));
  EXPECT_EQ(3u, count(section(out.out, "members", "active members"), "InstanceID="));
  // The active zone's members: its own and its aliases' (a_e2e: 2, a_tape: 1).
  const std::string active = section(out.out, "active members", "aliases");
  EXPECT_EQ(6u, count(active, "QRX_ZoneMembershipSettingData.InstanceID=\"1M")) << active;
  EXPECT_NE(std::string::npos, active.find(id("1M5", "50e5b72000b20000")));
  EXPECT_NE(std::string::npos, active.find(id("1M4", "5,11")));
  EXPECT_EQ(2u, count(section(out.out, "aliases", "alias members"), "QRX_ZoneAlias.InstanceID="));
  EXPECT_EQ(2u, count(section(out.out, "alias members", "zones"), "InstanceID="));
  const std::string zones = section(out.out, "zones", "fabric");
  EXPECT_NE(std::string::npos, zones.find(id("1Z0", "z_e2e")));
  EXPECT_NE(std::string::npos, zones.find(id("1Z0", "z_backup")));
  const std::string fabric = section(out.out, "fabric", "end");
  EXPECT_EQ(4u, count(fabric, "QRX_ZoneSet.InstanceID="));  // three defined, one active
  EXPECT_NE(std::string::npos, fabric.find(id("0C0", "")));
  EXPECT_NE(std::string::npos, fabric.find("QRX_ZoneService.SystemCreationClassName="));
}

TEST_F(QrxCimZoning, ADiscardedSessionLeavesTheSwitchAsItWas) {
  const switchsim::ZoneConfig before = zoning();
  ToolRun out = run({
      session(2),
      "im " + kService + " CreateZone ZoneName=z_gone ZoneType:uint16=2 ZoneSubType:uint16=1",
      "di " + zone("z_backup"),
      "di " + zoneSet("cfg_maintenance"),
      "echo == inside",
      "ein QRX_Zone",
      "ein QRX_ZoneSet",
      "echo == discard",
      session(4),
      "ein QRX_Zone",
      "ein QRX_ZoneSet",
      // No session any more: ending one is refused.
      session(3),
      session(5),
  });
  EXPECT_EQ(1, out.exitCode) << out.err;
  EXPECT_NE(std::string::npos, out.err.find("SessionControl failed")) << out.err;
  EXPECT_TRUE(ivTrace.contains("SessionControl() fails with rc 32770"));
  const std::string inside = section(out.out, "inside", "discard");
  EXPECT_NE(std::string::npos, inside.find(id("0Z0", "z_gone")));
  EXPECT_EQ(std::string::npos, inside.find(id("0Z0", "z_backup")));
  // cfg_maintenance took z_host10_array_b, which no other zone set lists.
  EXPECT_EQ(std::string::npos, inside.find(id("0Z0", "z_host10_array_b")));
  EXPECT_NE(std::string::npos, inside.find(id("0Z0", "z_host1_array_a")));
  EXPECT_EQ(std::string::npos, inside.find(id("0S0", "cfg_maintenance")));
  const std::string discarded = section(out.out, "discard");
  EXPECT_EQ(std::string::npos, discarded.find(id("0Z0", "z_gone")));
  EXPECT_NE(std::string::npos, discarded.find(id("0Z0", "z_backup")));
  EXPECT_NE(std::string::npos, discarded.find(id("0S0", "cfg_maintenance")));
  EXPECT_EQ(4u, count(out.out, "ReturnValue = 0"));  // 2, CreateZone, 4 and 5
  EXPECT_TRUE(before == zoning());
  EXPECT_EQ(0u, requests("rs_api_session_update"));
  EXPECT_EQ(1u, requests("rs_api_session_terminate"));
}

TEST_F(QrxCimZoning, DeletingThroughTheAssociationClasses) {
  const std::string m = "'QRX_ZoneMembershipSettingDataInZone.ManagedElement=\"" +
                        std::string("QRX_Zone.InstanceID=\\\"") + id("0Z0", "z_backup") +
                        "\\\"\",SettingData=\"QRX_ZoneMembershipSettingData.InstanceID=\\\"" +
                        id("0M3", "050000") + "\\\"\"'";
  const std::string aliasInZone =
      "'QRX_ZoneAliasInZone.Collection=\"QRX_Zone.InstanceID=\\\"" + id("0Z0", "z_backup") +
      "\\\"\",Member=\"QRX_ZoneAlias.InstanceID=\\\"" + id("0A0", "a_tape") + "\\\"\"'";
  const std::string zoneInSet =
      "'QRX_ZoneInZoneSet.Collection=\"QRX_ZoneSet.InstanceID=\\\"" + id("0S0", "cfg_maintenance") +
      "\\\"\",Member=\"QRX_Zone.InstanceID=\\\"" + id("0Z0", "z_host10_array_b") + "\\\"\"'";
  const std::string aliasMember =
      "'QRX_ZoneMembershipSettingDataInZoneAlias.ManagedElement=\"QRX_ZoneAlias.InstanceID=\\\"" +
      id("0A0", "a_vmhost_npiv") +
      "\\\"\",SettingData=\"QRX_ZoneMembershipSettingData.InstanceID=\\\"" +
      id("0M2", "28010e5b72000009") + "\\\"\"'";
  // Directly on the switch, outside a session.
  ToolRun direct = run({"di " + m, "di " + aliasInZone, "di " + zoneInSet, "di " + aliasMember,
                        "di " + alias("a_array_b_node")});
  EXPECT_EQ(0, direct.exitCode) << direct.err;
  switchsim::ZoneConfig config = zoning();
  EXPECT_EQ(1u, config.findZone("z_backup")->member_list.size());
  EXPECT_TRUE(config.findZone("z_backup")->alias_names.empty());
  EXPECT_EQ((string_tA{"z_host1_array_a"}), config.findZoneSet("cfg_maintenance")->zone_names);
  EXPECT_EQ(2u, config.findAlias("a_vmhost_npiv")->member_list.size());
  EXPECT_EQ(nullptr, config.findAlias("a_array_b_node"));
  EXPECT_TRUE(config.findZone("z_host3_array_b")->alias_names.empty());

  // Inside a session, then committed: a zone set and a zone go with it.
  ToolRun staged =
      run({session(2), "di " + zoneSet("cfg_maintenance"), "di " + zone("z_backup"), session(3)});
  EXPECT_EQ(0, staged.exitCode) << staged.err;
  config = zoning();
  EXPECT_EQ(nullptr, config.findZoneSet("cfg_maintenance"));
  EXPECT_EQ(nullptr, config.findZone("z_backup"));
  EXPECT_NE(nullptr, config.findZone("z_host1_array_a"));  // cfg_production lists it
  // The removal of z_backup from cfg_production, then the three deletions.
  EXPECT_EQ(2u, requests("rs_api_session_update"));

  // Keys that do not name what the class deletes change nothing.
  const switchsim::ZoneConfig before = zoning();
  ToolRun refused = run({
      "di " + path("QRX_Zone", "0S0", "cfg_production"),
      "di " + zone("z_host1_array_a", "1Z0"),
      "di " + zone(std::string(80, 'x')),
      "di 'QRX_ZoneInZoneSet.Collection=\"QRX_ZoneSet.InstanceID=\\\"" +
          id("0Z0", "z_host1_array_a") + "\\\"\",Member=\"QRX_Zone.InstanceID=\\\"" +
          id("0Z0", "z_host1_array_a") + "\\\"\"'",
  });
  EXPECT_EQ(1, refused.exitCode);
  EXPECT_EQ(4u, count(refused.err, "backendDeleteInstance() failed")) << refused.err;
  // Members leave through the associations; the fabric associations stay.
  ToolRun unsupported =
      run({"di " + path("QRX_ZoneMembershipSettingData", "0M2", "21000e5b72000001"),
           "di 'QRX_ZoneSetInFabric.Antecedent=\"QRX_Fabric.CreationClassName=\\\"QRX_Fabric\\\","
           "Name=\\\"" +
               kWwn + "\\\"\",Dependent=\"QRX_ZoneSet.InstanceID=\\\"" +
               id("0S0", "cfg_production") + "\\\"\"'"});
  EXPECT_EQ(2u, count(unsupported.err, "backendDeleteInstance() failed")) << unsupported.err;
  EXPECT_TRUE(ivTrace.contains("QRX_ZoneMembershipSettingData_Best, deleteInstance"));
  EXPECT_TRUE(ivTrace.contains("ERROR: Not Supported"));
  EXPECT_TRUE(ivTrace.contains("Invalid instaneid=" + id("0S0", "cfg_production")));
  EXPECT_TRUE(ivTrace.contains("Invalid instaneid=" + id("1Z0", "z_host1_array_a")));
  EXPECT_TRUE(
      ivTrace.contains("Unable to get ZoneSet with Instance ID " + id("0Z0", "z_host1_array_a")));
  EXPECT_TRUE(before == zoning());
  EXPECT_EQ(0u, requests("rs_api_delete_zone"));
}

TEST_F(QrxCimZoning, UnusableArgumentsAreRefusedBeforeAnyChange) {
  const switchsim::ZoneConfig before = zoning();
  ToolRun out = run({
      "im " + kService + " CreateZone ZoneName=" + std::string(65, 'z') +
          " ZoneType:uint16=2 ZoneSubType:uint16=1",
      "im " + kService + " CreateZone ZoneName=z_other ZoneType:uint16=1 ZoneSubType:uint16=1",
      "im " + kService + " CreateZone ZoneName=z_other ZoneType:uint16=3 ZoneSubType:uint16=1",
      "im " + kService + " AddZone ZoneSet:ref=" + zoneSet("cfg_production") +
          " Zone:ref=" + alias("a_tape"),
      member(1, "21000e5b72000001", zone("z_backup")),
      member(6, "a_tape", alias("a_array_a")),
      member(2, "21000e5b72000001", "'QRX_Zone.InstanceID=\"" + std::string(90, 'q') + "\"'"),
      "im " + kService + " AddZoneMembershipSettingData SystemSpecificCollection:ref=" +
          zone("z_backup") + " ZoneMembershipSettingData:ref=" + zone("z_backup"),
      "im " + kService + " ActivateZoneSet ZoneSet:ref=" + zone("z_backup") +
          " Activate:boolean=true",
      "im " + kService + " StartService",
      session(7),
  });
  EXPECT_EQ(1, out.exitCode);
  EXPECT_EQ(11u, count(out.err, "CMPI_RC_ERR_FAILED")) << out.err;
  EXPECT_TRUE(ivTrace.contains("longer than 64 characters"));
  EXPECT_TRUE(
      ivTrace.contains("Other ZoneType than 'Default' is not supported - Provide ZoneType: 1!"));
  EXPECT_TRUE(
      ivTrace.contains("Error, Zone InstanceID " + id("0A0", "a_tape") + " is not as expected"));
  EXPECT_TRUE(ivTrace.contains("Bad ConnectivityMemberType 1"));
  EXPECT_TRUE(ivTrace.contains("Error, ALIAS inside ALIAS not allowed!"));
  EXPECT_TRUE(ivTrace.contains("is neither a zone nor a zone alias"));
  EXPECT_TRUE(ivTrace.contains("Unable to use ZoneMember Instance ID " + id("0Z0", "z_backup")));
  EXPECT_TRUE(ivTrace.contains("Error, ZoneSet InstanceID " + id("0Z0", "z_backup") +
                               " is not as expected"));
  EXPECT_TRUE(ivTrace.contains("Unknown requested state 7"));
  EXPECT_TRUE(before == zoning());
  EXPECT_EQ("cfg_production", ivSim.snapshot().activeZoneSet.name);
}

// A library that ended while its session was open left the switch's
// session behind: the next start fails, closes it, and the one after works.
TEST_F(QrxCimZoning, ASessionLeftOpenOnTheSwitchIsClosedByTheNextStart) {
  ToolRun first = run({session(2)});
  EXPECT_EQ(0, first.exitCode) << first.err;
  ToolRun second = run({session(2), "echo == again", session(2), "ei QRX_ZoneService", session(4)});
  EXPECT_EQ(1, second.exitCode);
  EXPECT_EQ(1u, count(second.err, "SessionControl failed")) << second.err;
  EXPECT_TRUE(ivTrace.contains("SessionControl() fails with rc 33031"));
  EXPECT_NE(std::string::npos, section(second.out, "again").find("SessionState = 2;"));
  EXPECT_EQ(3u, requests("rs_api_session_start"));
  EXPECT_EQ(2u, requests("rs_api_session_terminate"));
}

}  // namespace
