// Indications end to end: qrx-cim subscribes with a CQL query through the
// library's indication providers while the simulated switch, in this
// process, sends events; what the library delivered to qrx-cim's broker is
// checked in its JSON output.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/cimhost/RunTool.h"
#include "tests/support/TraceCapture.h"
#include "tools/switchsim/Simulator.h"

namespace {

using cimhost_test::runQrxCim;
using cimhost_test::ToolRun;
using Json = nlohmann::json;

const char kPortQuery[] =
    "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA QRX_SwitchFCPort";

class IndicationsTest : public ::testing::Test {
 protected:
  IndicationsTest() : ivSim(switchsim::FabricModel::builtIn()) {
    setenv("QRX_SMIS_TRACE_FILE", ivTrace.path().c_str(), 1);
    setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxindtest" + std::to_string(getpid())).c_str(), 1);
    ivFlag = "/tmp/qrx-indications-test-" + std::to_string(getpid());
    std::remove(ivFlag.c_str());
  }
  ~IndicationsTest() override { std::remove(ivFlag.c_str()); }

  void event(const std::vector<std::string>& irWords) {
    switchsim::EventCommand command;
    std::string error;
    ASSERT_TRUE(switchsim::parseEventCommand(irWords, &command, &error)) << error;
    ASSERT_TRUE(ivSim.applyEvent(command, &error)) << error;
  }

  // Runs `qrx-cim subscribe QUERY --json --wait SECONDS`; once delivery is
  // enabled, `irDuring` runs here (the simulator's events).
  ToolRun subscribe(const std::string& irQuery, const char* ipSeconds,
                    const std::function<void()>& irDuring, const char* ipOutput = "--json") {
    ToolRun run;
    std::thread client([&] {
      run = runQrxCim({"subscribe", irQuery, ipOutput, "--wait", ipSeconds, "--then",
                       "touch " + ivFlag});
    });
    bool enabled = false;
    for (int i = 0; i < 1000 && !enabled; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      enabled = access(ivFlag.c_str(), F_OK) == 0;
    }
    if (enabled) irDuring();
    client.join();
    EXPECT_TRUE(enabled) << run.err;
    std::remove(ivFlag.c_str());
    return run;
  }

  // The indications of a run's output.
  static Json indications(const ToolRun& irRun) {
    EXPECT_EQ(0, irRun.exitCode) << irRun.err;
    return Json::parse(irRun.out, nullptr, false);
  }

  TraceCapture ivTrace;
  switchsim::Simulator ivSim;
  std::string ivFlag;
};

TEST_F(IndicationsTest, PortFailureGivesOneModification) {
  std::string error;
  ASSERT_TRUE(ivSim.start(&error)) << error;
  const Json all =
      indications(subscribe(kPortQuery, "1.5", [this] { event({"port-state", "5", "offline"}); }));
  ASSERT_EQ(1u, all.size()) << all.dump(2);
  EXPECT_EQ("root/qrx", all[0]["nameSpace"]);
  const Json& indication = all[0]["indication"];
  EXPECT_EQ("CIM_InstModification", indication["class"]);
  const Json& properties = indication["properties"];
  EXPECT_EQ("QRX_SwitchFCPort", properties["SourceInstance"]["class"]);
  EXPECT_EQ(Json::array({10}), properties["SourceInstance"]["properties"]["OperationalStatus"]);
  EXPECT_EQ(Json::array({2}), properties["PreviousInstance"]["properties"]["OperationalStatus"]);
  EXPECT_EQ(properties["SourceInstance"]["properties"]["DeviceID"],
            properties["PreviousInstance"]["properties"]["DeviceID"]);

  // Ports 5 and 6 interleaved: one indication each.
  const Json two = indications(subscribe(kPortQuery, "1.5", [this] {
    event({"port-state", "5", "online"});
    event({"port-state", "6", "offline"});
  }));
  ASSERT_EQ(2u, two.size()) << two.dump(2);
  EXPECT_NE(two[0]["indication"]["properties"]["SourceInstance"]["properties"]["DeviceID"],
            two[1]["indication"]["properties"]["SourceInstance"]["properties"]["DeviceID"]);

  // A query for the switch only: a port change delivers nothing.
  const Json none = indications(subscribe(
      "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA QRX_Switch", "1",
      [this] { event({"port-state", "6", "online"}); }));
  EXPECT_EQ(0u, none.size()) << none.dump(2);
}

TEST_F(IndicationsTest, BurstForOnePortGivesOne) {
  std::string error;
  ASSERT_TRUE(ivSim.start(&error)) << error;
  const Json all = indications(subscribe(kPortQuery, "2.5", [this] {
    // While the library reads port 6 slowly, three events for port 5 queue
    // up behind it and are handled as one.
    switchsim::Fault slow;
    slow.function = "rs_api_get_switch_fc_port_info";
    slow.delayMs = 400;
    slow.remaining = 1;
    ivSim.addFault(slow);
    event({"port-state", "6", "offline"});
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    event({"port-state", "5", "offline"});
    event({"port-state", "5", "online"});
    event({"port-state", "5", "offline"});
  }));
  ASSERT_EQ(2u, all.size()) << all.dump(2);
  const Json& last = all[1]["indication"]["properties"];
  EXPECT_EQ(Json::array({10}), last["SourceInstance"]["properties"]["OperationalStatus"]);
}

TEST_F(IndicationsTest, RefusedQueriesAndTextOutput) {
  std::string error;
  ASSERT_TRUE(ivSim.start(&error)) << error;
  ToolRun refused = runQrxCim(
      {"subscribe", "SELECT * FROM CIM_InstModification WHERE SourceInstance.Name = 'x'"});
  EXPECT_EQ(1, refused.exitCode);
  EXPECT_NE(std::string::npos, refused.err.find("CMPI_RC_ERR_INVALID_QUERY")) << refused.err;
  EXPECT_TRUE(ivTrace.contains("ERROR: Unexpected operator 0 instead of ISA\n"));
  ToolRun unknown = runQrxCim({"subscribe", "SELECT * FROM QRX_Switch"});
  EXPECT_EQ(3, unknown.exitCode) << unknown.err;

  // MOF-like text, and fewer indications than --count is a failure.
  ToolRun text = subscribe(kPortQuery, "1", [this] { event({"port-state", "7", "offline"}); },
                           "--verbose");
  EXPECT_EQ(0, text.exitCode) << text.err;
  EXPECT_NE(std::string::npos, text.out.find("instance of CIM_InstModification {")) << text.out;
  ToolRun quiet = runQrxCim({"subscribe", kPortQuery, "--count", "1", "--wait", "0.3"});
  EXPECT_EQ(1, quiet.exitCode);
  EXPECT_NE(std::string::npos, quiet.err.find("0 of 1 indications within 0.3 s")) << quiet.err;
}

}  // namespace
