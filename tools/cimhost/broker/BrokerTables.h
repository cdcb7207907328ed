// The broker's own function tables, one set per BrokerMode (see
// TestBroker.h for what Cmpi100 leaves out). Defined in
// BrokerFunctions.cpp, EncFunctions.cpp, ExtFunctions.cpp and
// MemFunctions.cpp.
#ifndef QRX_TOOLS_CIMHOST_BROKER_BROKERTABLES_H_
#define QRX_TOOLS_CIMHOST_BROKER_BROKERTABLES_H_

#include "cmpift.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace cimhost {

const CMPIBrokerFT* brokerFunctions(BrokerMode ipMode);
bool isOwnBrokerFunctions(const CMPIBrokerFT* ipFt);

const CMPIBrokerEncFT* encFunctions(BrokerMode ipMode);
const CMPIBrokerExtFT* extFunctions(BrokerMode ipMode);

// NULL for BrokerMode::Cmpi100.
const CMPIBrokerMemFT* memFunctions(BrokerMode ipMode);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_BROKERTABLES_H_
