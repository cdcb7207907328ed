// qrx-cim against the provider library itself, with the simulated switch
// serving in this process under a private queue prefix: the library starts
// only when the switch daemon is there, and every operation kind reaches
// the generated glue through the exported factories. Until the backends
// serve a class, its answers are the failures the glue defines.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "tests/cimhost/RunTool.h"
#include "tests/support/TraceCapture.h"
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

  expectFailure({"ei", "QRX_Chassis"}, "CMPI_RC_ERR_FAILED (1): backendEnumInstances() failed");
  expectFailure({"ein", "QRX_Node"}, "CMPI_RC_ERR_FAILED (1): backendEnumInstanceNames() failed");
  expectFailure({"gi", kSwitch}, "CMPI_RC_ERR_FAILED (1): backendGetInstance() failed");
  EXPECT_TRUE(trace.contains("ERROR: Key missmatch 100000c0dd0c8f1e vs. "));
  expectFailure({"ci", "QRX_Switch", "CreationClassName=QRX_Switch", "Name=new"},
                "CMPI_RC_ERR_FAILED (1): backendCreateInstance() failed");
  expectFailure({"di", kSwitch}, "CMPI_RC_ERR_FAILED (1): QRX_Switch.backendDeleteInstance() failed");
  expectFailure({"a", kSwitch, "--assoc-class", "QRX_SwitchInFabric"},
                "CMPI_RC_ERR_FAILED (1): backendAssociatorsFor() failed");
  expectFailure({"an", kSwitch, "--assoc-class", "QRX_PortInSwitch"},
                "CMPI_RC_ERR_FAILED (1): backendAssociatorNamesFor() failed");
  expectFailure({"r", kSwitch, "--result-class", "QRX_SwitchInFabric"},
                "CMPI_RC_ERR_FAILED (1): backendReferencesFor() failed");
  expectFailure({"rn", kSwitch, "--result-class", "QRX_SwitchInChassis"},
                "CMPI_RC_ERR_FAILED (1): backendReferencesFor() failed");
  expectFailure({"im", kService, "CreateZoneSet", "ZoneSetName=fabA"},
                "CMPI_RC_ERR_FAILED (1): CreateZoneSet failed");

  // Requests the glue answers without a backend.
  ToolRun role = runQrxCim({"an", kSwitch, "--assoc-class", "QRX_SwitchInFabric", "--role",
                            "GroupComponent"});
  EXPECT_EQ(0, role.exitCode) << role.err;
  EXPECT_EQ("", role.out);
  ToolRun unknown = runQrxCim({"im", kService, "createZoneSet", "ZoneSetName=fabA"});
  EXPECT_EQ(0, unknown.exitCode) << unknown.err;
  EXPECT_NE(std::string::npos, unknown.out.find("ReturnValue = 1"));
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
  ToolRun port = runQrxCim({"gi", paths.back()});
  EXPECT_EQ(0, port.exitCode) << port.err;
  EXPECT_NE(std::string::npos, port.out.find("PortNumber = " +
                                             std::to_string(model.ports.back().info.port_index)));
}

}  // namespace
