// qrx-cim against the provider library itself, with the simulated switch
// serving in this process under a private queue prefix: the library starts
// only when the switch daemon is there, and every operation kind reaches
// the generated glue through the exported factories, and every fabric and
// switch class answers from the simulated switch's model. Backends that
// fail (here for the switch's faults) answer with the failures the glue
// defines.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "common/backend/AwwpnMap.h"
#include "tests/cimhost/RunTool.h"
#include "tests/support/TraceCapture.h"
#include "tools/switchsim/SimulatedSwitch.h"
#include "tools/switchsim/Simulator.h"

namespace {

using cimhost_test::runQrxCim;
using cimhost_test::ToolRun;

// The library's trace file, private to this test (children inherit it).
class LibraryTrace : public TraceCapture {
 public:
  LibraryTrace() { setenv("QRX_SMIS_TRACE_FILE", path().c_str(), 1); }
};

TEST(QrxCimLibrary, StartsOnlyWhenTheSwitchDaemonIsThere) {
  LibraryTrace trace;
  setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxlibtest" + std::to_string(getpid())).c_str(), 1);
  ToolRun absent = runQrxCim({"classes"});
  EXPECT_EQ(255, absent.exitCode) << absent.err;
  EXPECT_TRUE(trace.contains("ERROR: Could not open mq smis_ipc\n"));
  EXPECT_FALSE(trace.contains("Info: init provider"));

  switchsim::Simulator sim(switchsim::FabricModel::builtIn());
  std::string error;
  ASSERT_TRUE(sim.start(&error)) << error;
  ToolRun present = runQrxCim({"classes"});
  EXPECT_EQ(0, present.exitCode) << present.err;
  EXPECT_TRUE(trace.contains("Info: init provider and backend lib successfully\n"));
  // The event thread filled the fabric cache before the library unloaded.
  bool asked = false;
  for (const std::string& line : sim.requestLog()) {
    asked = asked || line.find("function=rs_api_get_switch_fc_port_info") != std::string::npos;
  }
  EXPECT_TRUE(asked);
}

const char kSwitch[] = "QRX_Switch.CreationClassName=\"QRX_Switch\",Name=\"100000c0dd0c8f1e\"";
const char kFabric[] = "QRX_Fabric.CreationClassName=\"QRX_Fabric\",Name=\"10000e5a71004000\"";
const char kService[] =
    "QRX_ZoneService.SystemCreationClassName=\"QRX_Fabric\",SystemName=\"f1\","
    "CreationClassName=\"QRX_ZoneService\",Name=\"zoning\"";

void expectFailure(const std::vector<std::string>& irArgs, const std::string& irLine) {
  ToolRun run = runQrxCim(irArgs);
  EXPECT_EQ(1, run.exitCode) << irArgs[0] << "\n" << run.err;
  EXPECT_NE(std::string::npos, run.err.find(irLine)) << irArgs[0] << "\n" << run.err;
}

TEST(QrxCimLibrary, EveryOperationKindReachesTheGlue) {
  LibraryTrace trace;
  setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxlibtest" + std::to_string(getpid())).c_str(), 1);
  switchsim::Simulator sim(switchsim::FabricModel::builtIn());
  std::string error;
  ASSERT_TRUE(sim.start(&error)) << error;
  ToolRun classes = runQrxCim({"classes"});
  ASSERT_EQ(0, classes.exitCode) << classes.err;
  EXPECT_NE(std::string::npos, classes.out.find("QRX_SwitchInFabric"));
  EXPECT_NE(std::string::npos, classes.out.find("QRX_ZoneService"));

  // The switch refuses the zoning queries the zoning classes need.
  sim.addFault({"rs_api_get_zone_names", 0x8101});
  sim.addFault({"rs_api_get_zone_set_names", 0x8101});
  sim.addFault({"rs_api_get_zone_alias_names", 0x8101});
  sim.addFault({"rs_api_get_zone_capabilities_data", 0x8101});
  expectFailure({"ei", "QRX_Zone"}, "CMPI_RC_ERR_FAILED (1): backendEnumInstances() failed");
  expectFailure({"ein", "QRX_ZoneSet"}, "CMPI_RC_ERR_FAILED (1): backendEnumInstanceNames() failed");
  EXPECT_TRUE(trace.contains("ERROR: get_zone_set_names(10000e5a71004000) failed with rc 33025\n"));
  // A switch of another name, and a path of another class.
  expectFailure({"gi", kSwitch}, "CMPI_RC_ERR_FAILED (1): backendGetInstance() failed");
  EXPECT_TRUE(trace.contains("ERROR: Key missmatch 100000c0dd0c8f1e vs. "));
  expectFailure({"gi", "QRX_Switch.CreationClassName=\"QRX_Other\",Name=\"100000c0dd0c8f1e\""},
                "CMPI_RC_ERR_FAILED (1): backendGetInstance() failed");
  EXPECT_TRUE(trace.contains("ERROR: Creation Class missmatch QRX_Other\n"));
  expectFailure({"ci", "QRX_Switch", "CreationClassName=QRX_Switch", "Name=new"},
                "CMPI_RC_ERR_FAILED (1): backendCreateInstance() failed");
  expectFailure({"di", kSwitch}, "CMPI_RC_ERR_FAILED (1): QRX_Switch.backendDeleteInstance() failed");
  expectFailure({"a", kFabric, "--assoc-class", "QRX_ZoneSetInFabric"},
                "CMPI_RC_ERR_FAILED (1): backendAssociatorsFor() failed");
  expectFailure({"an", kFabric, "--assoc-class", "QRX_ZoneInFabric"},
                "CMPI_RC_ERR_FAILED (1): backendAssociatorNamesFor() failed");
  expectFailure({"r", kFabric, "--result-class", "QRX_ZoneCapabilitiesInFabric"},
                "CMPI_RC_ERR_FAILED (1): backendReferencesFor() failed");
  expectFailure({"rn", kFabric, "--result-class", "QRX_ZoneAliasInFabric"},
                "CMPI_RC_ERR_FAILED (1): backendReferencesFor() failed");
  // A zone service the switch does not have.
  expectFailure({"im", kService, "CreateZoneSet", "ZoneSetName=fabA"},
                "CMPI_RC_ERR_FAILED (1): CreateZoneSet failed");
  EXPECT_TRUE(trace.contains("ERROR: Unable to get instance with name zoning\n"));
  expectFailure({"di", "QRX_ZoneInFabric.Antecedent=\"QRX_Fabric.CreationClassName=\\\"QRX_Fabric\\\","
                       "Name=\\\"f\\\"\",Dependent=\"QRX_Zone.InstanceID=\\\"z\\\"\""},
                "CMPI_RC_ERR_FAILED (1): QRX_ZoneInFabric.backendDeleteInstance() failed");

  // Requests the glue answers without a backend.
  ToolRun role = runQrxCim({"an", kFabric, "--assoc-class", "QRX_ZoneSetInFabric", "--role",
                            "Dependent"});
  EXPECT_EQ(0, role.exitCode) << role.err;
  EXPECT_EQ("", role.out);
  ToolRun unknown = runQrxCim({"im", kService, "createZoneSet", "ZoneSetName=fabA"});
  EXPECT_EQ(0, unknown.exitCode) << unknown.err;
  EXPECT_NE(std::string::npos, unknown.out.find("ReturnValue = 1"));
  sim.clearFaults();
  ToolRun missing = runQrxCim({"im", kService, "CreateZone", "ZoneName=z"});
  EXPECT_EQ(1, missing.exitCode);
  EXPECT_TRUE(trace.contains("ERROR: Failed to read input var ZoneType"));
  ToolRun stats = runQrxCim({"im", "QRX_SwitchFCPortStats.InstanceID=\"p1\"", "ResetSelectedStats",
                             "SelectedStatistics:string[]=LinkFailures,InvalidCRC"});
  EXPECT_EQ(1, stats.exitCode);
  EXPECT_NE(std::string::npos, stats.err.find("ResetSelectedStats failed"));
}

// The fabric, the switch and its ports, as the simulated switch has them.
TEST(QrxCimLibrary, SwitchFabricAndPortsFromTheSimulatedSwitch) {
  LibraryTrace trace;
  setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxlibtest" + std::to_string(getpid())).c_str(), 1);
  const switchsim::FabricModel model = switchsim::FabricModel::builtIn();
  switchsim::Simulator sim(model);
  std::string error;
  ASSERT_TRUE(sim.start(&error)) << error;

  const std::string name = model.switchInfo.name;
  ToolRun sw = runQrxCim({"ei", "QRX_Switch"});
  ASSERT_EQ(0, sw.exitCode) << sw.err;
  EXPECT_NE(std::string::npos, sw.out.find("Name = \"" + name + "\""));
  ToolRun got = runQrxCim(
      {"gi", "QRX_Switch.CreationClassName=\"QRX_Switch\",Name=\"" + name + "\""});
  EXPECT_EQ(0, got.exitCode) << got.err;
  EXPECT_EQ(sw.out, got.out);

  ToolRun fabric = runQrxCim({"ein", "QRX_Fabric"});
  ASSERT_EQ(0, fabric.exitCode) << fabric.err;
  EXPECT_NE(std::string::npos, fabric.out.find("Name=\"" + model.fabric.name + "\""));

  ToolRun ports = runQrxCim({"ein", "QRX_SwitchFCPort"});
  ASSERT_EQ(0, ports.exitCode) << ports.err;
  std::vector<std::string> paths;
  std::string::size_type at = 0;
  for (std::string::size_type end; (end = ports.out.find('\n', at)) != std::string::npos; at = end + 1) {
    paths.push_back(ports.out.substr(at, end - at));
  }
  ASSERT_EQ(model.ports.size(), paths.size()) << ports.out;
  // In slot order: slot k is named by the first port's address plus k.
  std::uint64_t start = 0;
  ASSERT_TRUE(AwwpnMap::parseWwn(model.ports.front().info.name, start));
  for (std::size_t i = 0; i < paths.size(); ++i) {
    EXPECT_EQ("root/qrx:QRX_SwitchFCPort.SystemCreationClassName=\"QRX_Switch\",SystemName=\"" +
                  name + "\",CreationClassName=\"QRX_SwitchFCPort\",DeviceID=\"" +
                  AwwpnMap::formatWwn(start + i) + "\"",
              paths[i]);
  }
  ToolRun port = runQrxCim({"gi", paths.back()});
  EXPECT_EQ(0, port.exitCode) << port.err;
  EXPECT_NE(std::string::npos, port.out.find("PortNumber = " +
                                             std::to_string(model.ports.back().info.port_index)));
}

std::vector<std::string> lines(const std::string& irText) {
  std::vector<std::string> out;
  std::string::size_type at = 0;
  for (std::string::size_type end; (end = irText.find('\n', at)) != std::string::npos; at = end + 1) {
    out.push_back(irText.substr(at, end - at));
  }
  return out;
}

bool listed(const std::vector<std::string>& irLines, const std::string& irLine) {
  for (const std::string& line : irLines) {
    if (line == irLine) return true;
  }
  return false;
}

// Every class of the fabric and switch side enumerates as many instances as
// the daemon's answers make, gets each first instance back, and every
// association answers all four association operations from both of its
// ends, each end finding the other.
TEST(QrxCimLibrary, EveryFabricAndSwitchClassFromTheSimulatedSwitch) {
  LibraryTrace trace;
  setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxlibtest" + std::to_string(getpid())).c_str(), 1);
  switchsim::FabricModel model = switchsim::FabricModel::builtIn();
  model.switchInfo.location = "Lab A";
  switchsim::Simulator sim(model);
  std::string error;
  ASSERT_TRUE(sim.start(&error)) << error;

  // What the daemon reports, asked directly.
  switchsim::FabricModel copy = model;
  switchsim::SimulatedSwitch daemon(copy);
  string_tA nodes, nodePorts;
  switch_fc_port_stat_tA stats;
  ASSERT_EQ(0, daemon.get_node_names(nodes));
  ASSERT_EQ(0, daemon.get_node_fc_port_names(nodePorts));
  ASSERT_EQ(0, daemon.get_switch_fc_port_stat(stats));
  const std::size_t ports = model.ports.size();
  ASSERT_GT(nodePorts.size(), 0u);
  ASSERT_EQ(ports, stats.size());
  const std::map<std::string, std::size_t> expected = {
      {"QRX_SAN", 1}, {"QRX_Fabric", 1}, {"QRX_FabricInSAN", 1}, {"QRX_SwitchInFabric", 1},
      {"QRX_LogicalNetwork", 1}, {"QRX_LogicalNetworkInFabric", 1},
      {"QRX_InLogicalNetwork", ports + nodePorts.size()}, {"QRX_Switch", 1},
      {"QRX_PhysicalComputerSystem", 1}, {"QRX_FCPort", 0}, {"QRX_SwitchFCPort", ports},
      {"QRX_NodeFCPort", nodePorts.size()}, {"QRX_PortInSwitch", ports},
      {"QRX_Node", nodes.size()}, {"QRX_NodeInFabric", nodes.size()},
      {"QRX_PortInNode", nodePorts.size()}, {"QRX_NodePortInFabric", nodePorts.size()},
      {"QRX_SANProtocolEndpoint", ports + nodePorts.size()},
      {"QRX_FCPortSANProtocolEndpoint", ports + nodePorts.size()},
      {"QRX_SANActiveConnection", nodePorts.size()},
      {"QRX_FabricHostedSANAccessPoint", nodePorts.size()},
      {"QRX_SwitchHostedSANAccessPoint", ports}, {"QRX_WebGUIRemoteAccessPoint", 1},
      {"QRX_SwitchHostedRemoteAccessPoint", 1}, {"QRX_SAPAvailableForSwitch", 1},
      {"QRX_Chassis", 1}, {"QRX_SwitchInChassis", 1}, {"QRX_Product", 1},
      {"QRX_ChassisProduct", 1}, {"QRX_Location", 1}, {"QRX_PhysicalElementLocation", 1},
      {"QRX_SoftwareIdentity", 1}, {"QRX_SwitchFCPortStats", ports},
      {"QRX_PortStatsForSwitchFCPort", ports}, {"QRX_SwitchFCPortStatisticsCollection", 1},
      {"QRX_SwitchFCPortStatsInSwitchFCPortStatisticsCollection", ports},
      {"QRX_SwitchFCPortStatisticsCollectionForSwitch", 1},
  };
  for (const auto& entry : expected) {
    const std::string& cls = entry.first;
    ToolRun names = runQrxCim({"ein", cls});
    ASSERT_EQ(0, names.exitCode) << cls << "\n" << names.err;
    const std::vector<std::string> paths = lines(names.out);
    EXPECT_EQ(entry.second, paths.size()) << cls << "\n" << names.out;
    ToolRun all = runQrxCim({"ei", cls, "--json"});
    ASSERT_EQ(0, all.exitCode) << cls << "\n" << all.err;
    const nlohmann::json instances = nlohmann::json::parse(all.out);
    ASSERT_EQ(paths.size(), instances.size()) << cls;
    if (paths.empty()) continue;
    ToolRun first = runQrxCim({"gi", paths.front(), "--json"});
    ASSERT_EQ(0, first.exitCode) << paths.front() << "\n" << first.err;
    // Equal but for the time of reading, which two calls may see in
    // different seconds.
    nlohmann::json enumerated = instances.front()["properties"];
    nlohmann::json got = nlohmann::json::parse(first.out)["properties"];
    for (const char* readingTime : {"StatisticTime", "TimeLastSampled"}) {
      EXPECT_EQ(enumerated.contains(readingTime), got.contains(readingTime)) << readingTime;
      enumerated.erase(readingTime);
      got.erase(readingTime);
    }
    EXPECT_EQ(enumerated, got) << paths.front();

    // An association: from each end of its first instance, the other end.
    std::vector<std::pair<std::string, std::string>> ends;  // role, path
    for (const auto& property : instances.front()["properties"].items()) {
      if (property.value().is_string() &&
          property.value().get<std::string>().rfind("root/qrx:QRX_", 0) == 0) {
        ends.emplace_back(property.key(), property.value().get<std::string>());
      }
    }
    if (ends.empty()) continue;
    ASSERT_EQ(2u, ends.size()) << cls;
    // (No role is named: the glue tells the ends apart by their classes,
    // and the connection's ends are both endpoints.)
    for (int side = 0; side < 2; ++side) {
      const std::string& source = ends[side].second;
      const std::string& role = ends[side].first;
      const std::string& other = ends[1 - side].second;
      ToolRun an = runQrxCim({"an", source, "--ac", cls});
      ASSERT_EQ(0, an.exitCode) << cls << " " << role << "\n" << an.err;
      EXPECT_TRUE(listed(lines(an.out), other)) << cls << " from " << role << ":\n" << an.out;
      ToolRun a = runQrxCim({"a", source, "--ac", cls, "--json"});
      ASSERT_EQ(0, a.exitCode) << cls << "\n" << a.err;
      EXPECT_EQ(lines(an.out).size(), nlohmann::json::parse(a.out).size()) << cls << " " << role;
      ToolRun rn = runQrxCim({"rn", source, "--rc", cls});
      ASSERT_EQ(0, rn.exitCode) << cls << "\n" << rn.err;
      EXPECT_TRUE(listed(lines(rn.out), paths.front())) << cls << " from " << role << ":\n"
                                                        << rn.out;
      ToolRun r = runQrxCim({"r", source, "--rc", cls, "--json"});
      ASSERT_EQ(0, r.exitCode) << cls << "\n" << r.err;
      EXPECT_EQ(lines(rn.out).size(), nlohmann::json::parse(r.out).size()) << cls << " " << role;
    }
  }
}

}  // namespace

namespace {

// Nodes behind another switch of the fabric are not this switch's: the
// node classes list only the nodes attached to its ports, which the library
// asks for port by port with the physical port names.
TEST(QrxCimLibrary, OnlyNodesAttachedToTheSwitchAppear) {
  LibraryTrace trace;
  setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxlibtest" + std::to_string(getpid())).c_str(), 1);
  const switchsim::FabricModel builtIn = switchsim::FabricModel::builtIn();
  const switchsim::FabricModel model = switchsim::FabricModel::twoSwitchFabric();
  switchsim::Simulator sim(model);
  std::string error;
  ASSERT_TRUE(sim.start(&error)) << error;

  std::vector<std::string> remote, remoteNodes;
  for (const switchsim::NodePort& port : model.nodePorts) {
    if (!port.switchPort.empty()) continue;
    remote.push_back(port.info.name);
    remoteNodes.push_back(port.info.node_name);
  }
  ASSERT_FALSE(remote.empty());
  switchsim::FabricModel copy = builtIn;
  string_tA attachedNodes;
  ASSERT_EQ(0, switchsim::SimulatedSwitch(copy).get_node_names(attachedNodes));
  const std::map<std::string, std::size_t> expected = {
      {"QRX_Node", attachedNodes.size()},
      {"QRX_NodeInFabric", attachedNodes.size()},
      {"QRX_NodeFCPort", builtIn.nodePorts.size()},
      {"QRX_PortInNode", builtIn.nodePorts.size()},
      {"QRX_NodePortInFabric", builtIn.nodePorts.size()},
      {"QRX_SANProtocolEndpoint", builtIn.ports.size() + builtIn.nodePorts.size()},
      {"QRX_FCPortSANProtocolEndpoint", builtIn.ports.size() + builtIn.nodePorts.size()},
      {"QRX_InLogicalNetwork", builtIn.ports.size() + builtIn.nodePorts.size()},
      {"QRX_FabricHostedSANAccessPoint", builtIn.nodePorts.size()},
      {"QRX_SANActiveConnection", builtIn.nodePorts.size()},
  };
  for (const auto& entry : expected) {
    ToolRun names = runQrxCim({"ein", entry.first});
    ASSERT_EQ(0, names.exitCode) << entry.first << "\n" << names.err;
    EXPECT_EQ(entry.second, lines(names.out).size()) << entry.first << "\n" << names.out;
    for (const std::string& name : remote) {
      EXPECT_EQ(std::string::npos, names.out.find(name)) << entry.first << " lists " << name;
    }
    for (const std::string& name : remoteNodes) {
      EXPECT_EQ(std::string::npos, names.out.find(name)) << entry.first << " lists " << name;
    }
  }
  // Asked port by port, once per enumeration of the nodes.
  std::size_t asked = 0;
  for (const std::string& line : sim.requestLog()) {
    if (line.find("function=rs_api_get_attached_node_names") != std::string::npos) ++asked;
  }
  EXPECT_GT(asked, 0u);
  EXPECT_EQ(0u, asked % builtIn.ports.size()) << asked;
}

}  // namespace
