// The subscribe command: a filter with a CQL query activated at the
// indication provider of the query's FROM class, delivery enabled, the
// indications the provider delivers to the broker collected for a while,
// then delivery disabled, the filter deactivated and what came printed:
// MOF-like text separated by blank lines, or with --json an array of
// {"nameSpace": ..., "indication": <instance JSON>}.
#ifndef QRX_TOOLS_CIMHOST_SUBSCRIPTION_H_
#define QRX_TOOLS_CIMHOST_SUBSCRIPTION_H_

#include <ostream>
#include <string>

#include "tools/cimhost/CommandLine.h"
#include "tools/cimhost/Operations.h"

namespace cimhost {

// The class after FROM in `irQuery` (keywords in any case); "" when there
// is none.
std::string queryFromClass(const std::string& irQuery);

// Runs `irInvocation` (the subscribe command); returns the exit code.
int runSubscription(const Invocation& irInvocation, Session& irSession, std::ostream& irOut,
                    std::ostream& irErr);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_SUBSCRIPTION_H_
