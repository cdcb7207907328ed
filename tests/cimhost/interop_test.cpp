// An SMI-S client's first steps, through qrx-cim against the provider
// library with the simulated switch serving in this process: the
// registered profiles of the interop namespace, from the Switch and Fabric
// profiles to the switch and the fabric, the agent's software on the
// switch, debug tracing switched on through CIM, and the performance
// records of the remote calls made. One qrx-cim run keeps the library
// loaded, so that the debug switch and the records last across the steps.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cimhost/RunTool.h"
#include "tests/support/LogShape.h"
#include "tests/support/TraceCapture.h"
#include "tools/switchsim/Simulator.h"

namespace {

using cimhost_test::runQrxCim;
using cimhost_test::ToolRun;

const char kFabricProfile[] = "root/interop:QRX_RegisteredProfile.InstanceID=\"QRX:Fabric.1.2.0\"";
const char kSwitchProfile[] = "root/interop:QRX_RegisteredProfile.InstanceID=\"QRX:Switch.1.2.0\"";

// The output of a run script, cut at its "== NAME" echo lines.
std::map<std::string, std::string> sections(const std::string& irOut) {
  std::map<std::string, std::string> out;
  std::string current;
  std::istringstream lines(irOut);
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("== ", 0) == 0) {
      current = line.substr(3);
      continue;
    }
    out[current] += line + "\n";
  }
  return out;
}

std::vector<std::string> lines(const std::string& irText) {
  std::vector<std::string> out;
  std::istringstream in(irText);
  for (std::string line; std::getline(in, line);) out.push_back(line);
  return out;
}

TEST(InteropEndToEnd, AClientFindsTheProfilesTheirElementsAndTheSupportClasses) {
  TraceCapture trace;
  setenv("QRX_SMIS_TRACE_FILE", trace.path().c_str(), 1);
  setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxinterop" + std::to_string(getpid())).c_str(), 1);
  const switchsim::FabricModel model = switchsim::FabricModel::builtIn();
  switchsim::Simulator sim(model);
  std::string error;
  ASSERT_TRUE(sim.start(&error)) << error;
  const std::string sw =
      "root/qrx:QRX_Switch.CreationClassName=\"QRX_Switch\",Name=\"" + model.switchInfo.name + "\"";

  const std::string script = trace.path() + ".script";
  std::ofstream(script)
      << "echo == profiles\n"
      << "ein QRX_RegisteredProfile -n root/interop\n"
      << "echo == switch\n"
      << "an '" << kSwitchProfile << "' --ac QRX_ElementConformsToProfile --rc CIM_ComputerSystem\n"
      << "echo == fabric\n"
      << "an '" << kFabricProfile << "' --ac QRX_ElementConformsToProfile --rc CIM_AdminDomain\n"
      << "echo == software\n"
      << "an '" << kFabricProfile
      << "' --ac QRX_ElementConformsToProfile --rc CIM_SoftwareIdentity\n"
      << "echo == from fabric profile\n"
      << "an '" << kFabricProfile << "'\n"
      << "echo == installed\n"
      << "a '" << sw << "' --ac QRX_InstalledSoftwareOnSystem --json\n"
      << "echo == conformance\n"
      << "rn '" << kSwitchProfile << "' --rc QRX_ElementConformsToProfile\n"
      << "echo == debug\n"
      << "im 'QRX_DebugFacility.InstanceID=\"QRX:DebugFacility\"' SetDebugOn DebugOn:boolean=true\n"
      << "ei QRX_Switch --pl Name\n"
      << "echo == records\n"
      << "ei QRX_EnumPerfRecord --json\n";
  ToolRun run = runQrxCim({"run", script});
  std::remove(script.c_str());
  ASSERT_EQ(0, run.exitCode) << run.err;
  std::map<std::string, std::string> out = sections(run.out);

  EXPECT_EQ((std::vector<std::string>{
                kFabricProfile, kSwitchProfile,
                "root/interop:QRX_RegisteredProfile.InstanceID=\"QRX:Indication.1.2.0\"",
                "root/interop:QRX_RegisteredProfile.InstanceID=\"QRX:Server.1.2.0\""}),
            lines(out["profiles"]));
  EXPECT_EQ(std::vector<std::string>{sw}, lines(out["switch"]));
  EXPECT_EQ(std::vector<std::string>{"root/qrx:QRX_Fabric.Name=\"" + model.fabric.name +
                                     "\",CreationClassName=\"QRX_Fabric\""},
            lines(out["fabric"]));
  EXPECT_EQ((std::vector<std::string>{
                "root/qrx:QRX_SoftwareIdentity.InstanceID=\"QRX:Firmware:" +
                    model.software.version + "\"",
                "root/qrx:QRX_AgentSoftwareIdentity.InstanceID=\"QRX:QRX_SMIAgentSoftware\""}),
            lines(out["software"]))
      << out["software"];
  // Without an association class: the five subprofiles and every element
  // (the host has no object manager instance to offer).
  const std::vector<std::string> fromFabric = lines(out["from fabric profile"]);
  EXPECT_EQ(9u, fromFabric.size()) << out["from fabric profile"];
  EXPECT_NE(fromFabric.end(),
            std::find(fromFabric.begin(), fromFabric.end(),
                      "root/interop:QRX_RegisteredSubProfile.InstanceID=\"QRX:Zone Control\""));
  EXPECT_NE(fromFabric.end(), std::find(fromFabric.begin(), fromFabric.end(), sw));

  const nlohmann::json installed = nlohmann::json::parse(out["installed"]);
  ASSERT_EQ(1u, installed.size());
  EXPECT_EQ("0.1(2)", installed[0]["properties"]["VersionString"]);
  EXPECT_EQ(
      std::vector<std::string>{"root/interop:QRX_ElementConformsToProfile.ConformantStandard=\"" +
                               std::regex_replace(kSwitchProfile, std::regex("\""), "\\\"") +
                               "\",ManagedElement=\"" +
                               std::regex_replace(sw, std::regex("\""), "\\\"") + "\""},
      lines(out["conformance"]));

  // The association object reads back by its path; another switch has none.
  const std::string conformance = lines(out["conformance"]).front();
  ToolRun got = runQrxCim({"gi", conformance, "--json"});
  ASSERT_EQ(0, got.exitCode) << got.err;
  EXPECT_EQ(sw, nlohmann::json::parse(got.out)["properties"]["ManagedElement"]);
  const std::string other = std::regex_replace(conformance, std::regex(model.switchInfo.name), "1");
  EXPECT_EQ(1, runQrxCim({"gi", other}).exitCode);

  // Debug on: the enumeration's lines reach the trace, and every line has
  // one of the two shapes (the glue's naming the provider and operation).
  EXPECT_NE(std::string::npos, out["debug"].find("ReturnValue = 0"));
  EXPECT_NE(std::string::npos,
            out["debug"].find("    Name = \"" + model.switchInfo.name + "\";\n"));
  EXPECT_EQ(std::string::npos, out["debug"].find("ElementName")) << "only the listed property";
  const std::string log = trace.text();
  EXPECT_NE(std::string::npos, log.find("[QRX_Switch_Provider_enumInstances, "));
  EXPECT_NE(std::string::npos, log.find("] class=QRX_Switch ref=root/qrx:QRX_Switch\n"));
  int debugLines = 0;
  for (const std::string& line : lines(log)) {
    if (line.empty()) continue;  // a message may end in two newlines
    const LogShape shape = logShape(line);
    debugLines += shape == LogShape::Debug ? 1 : 0;
    EXPECT_NE(LogShape::None, shape) << line;
  }
  EXPECT_GT(debugLines, 3);

  // The remote calls made so far, each kind under its tag.
  const nlohmann::json records = nlohmann::json::parse(out["records"]);
  std::map<std::string, nlohmann::json> byTag;
  for (const auto& record : records) byTag[record["properties"]["Tag"]] = record["properties"];
  ASSERT_EQ(1u, byTag.count("rs_api_client_mq.get_switch_info")) << out["records"];
  const nlohmann::json& calls = byTag["rs_api_client_mq.get_switch_info"];
  EXPECT_GE(calls["NumSamples"].get<std::uint64_t>(), 1u);
  EXPECT_LE(calls["MinVal"].get<std::uint64_t>(), calls["MedVal"].get<std::uint64_t>());
  EXPECT_LE(calls["MedVal"].get<std::uint64_t>(), calls["MaxVal"].get<std::uint64_t>());
  EXPECT_EQ(1u, byTag.count("QRX_Switch_Provider.enumInstances"));
  EXPECT_EQ(1u, byTag.count("QRX_DebugFacility_Provider.invokeMethod.SetDebugOn"));
}

}  // namespace
