// qrx-cim run: the lines of a script (Script.h) run one after the other in
// this process, against one broker and one loaded library, so that the
// providers and whatever they keep stay alive from one line to the next.
//
// A command line runs as it would alone: its output goes to `out`, its
// errors and warnings to `err`. Errors found before a provider is called
// (the line cannot be read, a bad option or path text) read
// "qrx-cim: line N: reason". A shell line runs with /bin/sh -c, standard
// input /dev/null and this process's standard output and error (`out` and
// `err` are flushed first); an exit status other than 0 is reported.
// With the run's --verbose each line is shown on `err` before it runs.
#ifndef QRX_TOOLS_CIMHOST_SCRIPTRUN_H_
#define QRX_TOOLS_CIMHOST_SCRIPTRUN_H_

#include <istream>
#include <ostream>

#include "tools/cimhost/CommandLine.h"
#include "tools/cimhost/Operations.h"

namespace cimhost {

// Runs the lines of `irIn` up to its end. `irRun` is the run's own
// invocation, whose namespace, --json and --verbose each line starts from.
// Returns kExitOk when every line succeeded, else the exit code of the
// last line that failed: the command's, kExitFailed for a shell command,
// kExitUsage for a line that cannot be read; kExitLoad when reading the
// script fails.
int runScript(std::istream& irIn, const Invocation& irRun, Session& irSession,
              std::ostream& irOut, std::ostream& irErr);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_SCRIPTRUN_H_
