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

// The line that follows a usage error: where to read more.
std::string usageHint(const CommandInfo* ipCommand);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_HELPTEXT_H_
