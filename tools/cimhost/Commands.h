// Running one qrx-cim command: its argument texts become CMPI objects (a
// Request), the matching operation runs, and its outcome is printed.
//
// Output goes to `out`: instances as MOF-like text separated by blank
// lines, or with --json as JSON (InstanceText.h); paths one per line or a
// JSON array of strings. Errors and warnings go to `err`, each line
// starting "qrx-cim: ".
#ifndef QRX_TOOLS_CIMHOST_COMMANDS_H_
#define QRX_TOOLS_CIMHOST_COMMANDS_H_

#include <ostream>
#include <string>

#include "cmpift.h"
#include "tools/cimhost/CommandLine.h"
#include "tools/cimhost/Operations.h"

namespace cimhost {

// The CMPI inputs of a command, made by the broker.
struct Request {
  CMPIObjectPath* path = nullptr;    // the class or object path argument
  CMPIInstance* instance = nullptr;  // create-instance
  CMPIArgs* in = nullptr;            // invoke-method
  std::string method;                // invoke-method
  PropertyList properties;
};

// Builds the request of `irInvocation`'s command (which must be neither
// help nor run) with `irBroker` and its hierarchy. False with *opError set
// to a one-line reason when an argument text is bad.
bool buildRequest(TestBroker& irBroker, const Invocation& irInvocation, Request* opRequest,
                  std::string* opError);

// Runs the request's operation, prints the outcome, and returns the exit
// code (ExitCode).
int runRequest(const Invocation& irInvocation, const Request& irRequest, Session& irSession,
               std::ostream& irOut, std::ostream& irErr);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_COMMANDS_H_
