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

// Runs `irProgram` with `irArgs` and standard input from /dev/null. The
// child's environment is this process's with each entry of `irEnv` set; an
// empty value removes the variable. A program that cannot be started
// exits 127 with the reason on err.
ToolRun runProgram(const std::string& irProgram, const std::vector<std::string>& irArgs,
                   const std::map<std::string, std::string>& irEnv = {});

// runProgram() on the build's qrx-cim.
ToolRun runQrxCim(const std::vector<std::string>& irArgs,
                  const std::map<std::string, std::string>& irEnv = {});

// The path of the build's qrx-cim.
const char* qrxCimPath();

}  // namespace cimhost_test

#endif  // QRX_TESTS_CIMHOST_RUNTOOL_H_
