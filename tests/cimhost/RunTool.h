// Runs a program, by default the qrx-cim this build made, as a child
// process and captures what it prints, for end-to-end tests:
//
//   ToolRun run = runQrxCim({"ei", "QRX_Switch", "--json"});
//   EXPECT_EQ(0, run.exitCode) << run.err;
//
// Link qrx_cim_testing to use it.
#ifndef QRX_TESTS_CIMHOST_RUNTOOL_H_
#define QRX_TESTS_CIMHOST_RUNTOOL_H_

#include <map>
#include <string>
#include <vector>

namespace cimhost_test {

struct ToolRun {
  int exitCode = -1;  // 128 + the signal number if a signal ended it
  std::string out;
  std::string err;
};

// Runs the command `irCommand` (a program, looked up in PATH unless it is a
// path, then its arguments) with standard input from /dev/null. The
// child's environment is this process's with each entry of `irEnv` set; an
// empty value removes the variable. A program that cannot be started
// exits 127 with the reason on err (under an emulator, without it).
ToolRun runCommand(const std::vector<std::string>& irCommand,
                   const std::map<std::string, std::string>& irEnv = {});

// runCommand() of `irProgram` (a program of the host) with `irArgs`.
ToolRun runProgram(const std::string& irProgram, const std::vector<std::string>& irArgs,
                   const std::map<std::string, std::string>& irEnv = {});

// The command that starts `irProgram`, a program this build made: the
// program itself, or, when the tests run under an emulator
// (tests/support/Emulation.h), the emulator running it.
std::vector<std::string> builtProgramCommand(const std::string& irProgram);

// runCommand() of builtProgramCommand(irProgram) with `irArgs`.
ToolRun runBuiltProgram(const std::string& irProgram, const std::vector<std::string>& irArgs,
                        const std::map<std::string, std::string>& irEnv = {});

// runBuiltProgram() on the build's qrx-cim.
ToolRun runQrxCim(const std::vector<std::string>& irArgs,
                  const std::map<std::string, std::string>& irEnv = {});

// The path of the build's qrx-cim.
const char* qrxCimPath();

}  // namespace cimhost_test

#endif  // QRX_TESTS_CIMHOST_RUNTOOL_H_
