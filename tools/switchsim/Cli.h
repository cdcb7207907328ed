// The qrx-switchsim command line: serving, dumping the built-in model, and
// the subcommands that talk to a running simulator over its control
// channel. `qrx-switchsim --help` prints the whole usage.
#ifndef QRX_TOOLS_SWITCHSIM_CLI_H_
#define QRX_TOOLS_SWITCHSIM_CLI_H_

#include <iosfwd>
#include <string>
#include <vector>

namespace switchsim {

// Exit codes.
enum : int { kExitOk = 0, kExitFailed = 1, kExitUsage = 2 };

// The usage text.
std::string helpText();

// Runs the command line `irArgs` (without the program name). Serving runs
// until SIGINT or SIGTERM, which the caller must have blocked in every
// thread (serving waits for them with sigwait()).
int runCommandLine(const std::vector<std::string>& irArgs, std::ostream& irOut,
                   std::ostream& irErr);

}  // namespace switchsim

#endif  // QRX_TOOLS_SWITCHSIM_CLI_H_
