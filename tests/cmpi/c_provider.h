// Entry points of the C test provider in c_provider.c.
#ifndef QRX_TESTS_CMPI_C_PROVIDER_H_
#define QRX_TESTS_CMPI_C_PROVIDER_H_

#include "cmpift.h"

extern "C" {
CMPIInstanceMI* QRX_CTest_Create_InstanceMI(const CMPIBroker* brkr, const CMPIContext* ctx,
                                            CMPIStatus* rc);
const CMPIBroker* c_provider_broker(void);
int c_provider_hook_runs(void);
}

#endif  // QRX_TESTS_CMPI_C_PROVIDER_H_
