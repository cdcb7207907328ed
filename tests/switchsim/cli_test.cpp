// qrx-switchsim as a program: serving in a child process and driven by its
// own control subcommands.
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

#include <nlohmann/json.hpp>

#include "tests/cimhost/RunTool.h"
#include "tests/switchsim/SimTesting.h"
#include "tools/switchsim/ControlChannel.h"
#include "common/backend/EventRecord.h"
#include "tools/switchsim/FabricModel.h"

extern char** environ;

namespace {

using cimhost_test::runBuiltProgram;
using cimhost_test::ToolRun;
using namespace switchsim_test;

const char kTool[] = QRX_SWITCHSIM_TOOL;

ToolRun tool(const std::vector<std::string>& irArgs) { return runBuiltProgram(kTool, irArgs); }

// qrx-switchsim serving in a child process, with its output discarded;
// stopped with SIGTERM at the latest when the test ends.
struct ServingProgram {
  explicit ServingProgram(const std::vector<std::string>& irArgs) {
    std::vector<std::string> command = cimhost_test::builtProgramCommand(kTool);
    command.insert(command.end(), irArgs.begin(), irArgs.end());
    std::vector<char*> argv;
    for (std::string& word : command) argv.push_back(word.data());
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    if (posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), environ) != 0) pid = -1;
    posix_spawn_file_actions_destroy(&actions);
  }
  ~ServingProgram() { stop(); }
  // The wait status after SIGTERM.
  int stop() {
    int status = -1;
    if (pid > 0 && kill(pid, SIGTERM) == 0) waitpid(pid, &status, 0);
    pid = -1;
    return status;
  }
  pid_t pid = -1;
};

TEST(SwitchsimProgramTest, ControlSubcommandsDriveARunningSimulator) {
  const std::string prefix = usePrivatePrefix();
  const std::string dir = "/tmp/qrxsimtest" + std::to_string(getpid());
  mkdir(dir.c_str(), 0700);
  const std::string control = dir + "/control.sock";
  const std::string log = dir + "/requests.log";
  ServingProgram program({"--control", control, "--log", log});
  ASSERT_GT(program.pid, 0);
  std::string answer, error;
  for (int i = 0; i < 500 && !switchsim::sendControlLine(control, "ping", &answer, &error); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  ASSERT_EQ("ok", answer) << error;
  fcbb::mqServer events;
  ASSERT_TRUE(events.connect(prefix + "smis_ipc_ev", 8192, 10));
  RawClient client;
  ASSERT_TRUE(client.connect());

  ToolRun run = tool({"fault", "--control", control, "--function", "rs_api_get_switch_name",
                      "--status", "33025", "--count", "1"});
  EXPECT_EQ(0, run.exitCode) << run.err;
  EXPECT_EQ("rs_api_get_switch_name status=33025 count=1\n", run.out);
  EXPECT_EQ(33025u, client.call(1, request("rs_api_get_switch_name")).status());
  EXPECT_EQ(0u, client.call(2, request("rs_api_get_switch_name")).status());

  run = tool({"event", "--control", control, "port-state", "3", "offline", "text=cable pulled"});
  EXPECT_EQ(0, run.exitCode) << run.err;
  unsigned char message[8192];
  ASSERT_EQ(static_cast<int>(kEventMessageSize), events.recv(message, sizeof message));
  EventRecord event;
  ASSERT_TRUE(decodeEventMessage(message, kEventMessageSize, &event, &error));
  EXPECT_EQ(13u, event.code);
  EXPECT_EQ(3u, event.port);
  EXPECT_EQ("cable pulled", event.text);

  run = tool({"model", "--control", control});
  ASSERT_EQ(0, run.exitCode) << run.err;
  const auto model = nlohmann::json::parse(run.out, nullptr, false);
  ASSERT_FALSE(model.is_discarded()) << run.out;
  EXPECT_EQ(2, model["ports"][3]["operational_state"]);

  run = tool({"event", "--control", control, "port-state", "99", "offline"});
  EXPECT_EQ(1, run.exitCode);
  EXPECT_NE(std::string::npos, run.err.find("no port with port_index 99")) << run.err;
  EXPECT_EQ(0, tool({"fault", "--control", control, "--clear"}).exitCode);
  EXPECT_EQ(2, tool({"fault", "--control", control, "--status", "1"}).exitCode);
  run = tool({"model", "--control", dir + "/nobody.sock"});
  EXPECT_EQ(1, run.exitCode);
  EXPECT_NE(std::string::npos, run.err.find("no simulator answers")) << run.err;

  const int status = program.stop();
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  EXPECT_NE(0, access(control.c_str(), F_OK)) << "socket removed";
  RawClient gone;
  EXPECT_FALSE(gone.connect()) << "queues removed";
  std::ifstream logFile(log);
  std::stringstream logText;
  logText << logFile.rdbuf();
  EXPECT_NE(std::string::npos,
            logText.str().find("reply req_id=1 function=rs_api_get_switch_name status=33025"))
      << logText.str();
  EXPECT_NE(std::string::npos, logText.str().find("event req_id=0 code=13 port=3"));
  std::remove(log.c_str());
  rmdir(dir.c_str());
}

TEST(SwitchsimProgramTest, ControlLinesAndEventWords) {
  std::vector<std::string> words;
  std::string error;
  const std::vector<std::string> original = {"event", "switch-attr", "location=Lab \"B\", row 2",
                                             "", "owner=a\\b"};
  ASSERT_TRUE(switchsim::splitWords(switchsim::joinWords(original), &words, &error)) << error;
  EXPECT_EQ(original, words);
  EXPECT_FALSE(switchsim::splitWords("event \"open", &words, &error));

  usePrivatePrefix();
  switchsim::Simulator sim(switchsim::FabricModel::builtIn());
  const std::pair<const char*, const char*> answers[] = {
      {"ping", "ok"},
      {"reboot", "error unknown command"},
      {"fault rs_api_get_switch_info", "error a fault needs status=, delay-ms= or wrong-req-id"},
      {"fault rs_api_get_switch_info count=0 status=5", "error bad fault word \"count=0\""},
      {"fault rs_api_get_switch_info status=5 delay-ms=10", "ok rs_api_get_switch_info status=5 delay-ms=10"},
      {"event", "error an event needs a kind"},
      {"event port-attr 2 speed=fast", "error speed: expected a number from 0 to 4294967295"},
      {"event port-attr 2", "error port-attr needs speed=, type= or licensed="},
      {"event port-state 2 sideways", "error port state \"sideways\""},
      {"event fabric vlan=70000", "error vlan: expected a number from 0 to 65535"},
      {"event zone activate=cfg_production deactivate", "error activate= and deactivate exclude"},
      {"event zone op=2:241:z_backup:9:x", "error zone operation 1 rejected: bad-member-type"},
      {"event ip ipv6=::1 location=x", "error \"location=x\" is not a word of a ip event"},
  };
  for (const auto& a : answers) {
    const std::string answer = switchsim::executeControlLine(sim, a.first);
    EXPECT_EQ(0u, answer.find(a.second)) << a.first << " -> " << answer;
  }
  EXPECT_EQ(1u, sim.faults().size());
  EXPECT_EQ(switchsim::FabricModel::builtIn().toJson(), sim.snapshot().toJson());
}

TEST(SwitchsimProgramTest, HelpAndModelCommands) {
  usePrivatePrefix();
  ToolRun run = tool({"--help"});
  EXPECT_EQ(0, run.exitCode);
  EXPECT_NE(std::string::npos, run.out.find("0x8101 (33025)   not-found"));
  EXPECT_NE(std::string::npos, run.out.find("port-state PORT online|offline|disabled|faulty"));
  run = tool({"dump-model"});
  EXPECT_EQ(0, run.exitCode);
  EXPECT_EQ(switchsim::FabricModel::builtIn().toJson() + "\n", run.out);
  EXPECT_EQ(2, tool({"--bogus"}).exitCode);
  EXPECT_EQ(2, tool({"dump-model", "--name", "x"}).exitCode);
  run = tool({"--model", "/nonexistent.json"});
  EXPECT_EQ(1, run.exitCode);
  EXPECT_NE(std::string::npos, run.err.find("cannot read /nonexistent.json")) << run.err;
}

}  // namespace
