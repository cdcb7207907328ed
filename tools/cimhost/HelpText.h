// The help texts of qrx-cim: the whole usage (--help) and one command's
// (qrx-cim help COMMAND, or COMMAND --help). Both are made from the
// command table, so every command and its example appear in both.
#ifndef QRX_TOOLS_CIMHOST_HELPTEXT_H_
#define QRX_TOOLS_CIMHOST_HELPTEXT_H_

#include <string>

#include "tools/cimhost/CommandLine.h"

namespace cimhost {

std::string usageText();
std::string commandHelp(const CommandInfo& irCommand);

// The help an invocation asks for: with --help its command's (the whole
// usage without a command), for `help [COMMAND]` the usage or COMMAND's.
// False with *opError set when COMMAND is unknown.
bool helpFor(const Invocation& irInvocation, std::string* opText, std::string* opError);

// The line that follows a usage error: where to read more.
std::string usageHint(const CommandInfo* ipCommand);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_HELPTEXT_H_
