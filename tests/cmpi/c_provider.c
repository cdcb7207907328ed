/*
 * A minimal instance provider written in C with the stub macros, compiled
 * together with the binary-interface pins. The C++ tests load it through
 * its factory, as an object manager would.
 */
#include "cmpimacs.h"
#include "tests/cmpi/cmpi_abi_checks.h"

/* Provider functions ignore most of their parameters, as providers do. */
#pragma GCC diagnostic ignored "-Wunused-parameter"

static const CMPIBroker *_broker;
static int _hookRuns;

static CMPIStatus CTestCleanup(CMPIInstanceMI *mi, const CMPIContext *ctx, CMPIBoolean term) {
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus CTestEnumInstanceNames(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                         const CMPIResult *rslt, const CMPIObjectPath *ref) {
  CMPIStatus st = {CMPI_RC_OK, NULL};
  CMPIObjectPath *op;
  CMPIUint16 key = 7;
  op = CMNewObjectPath(_broker, "root/qrx", "QRX_CTest", &st);
  if (op == NULL || st.rc != CMPI_RC_OK) CMReturnWithChars(_broker, CMPI_RC_ERR_FAILED, "no path");
  CMAddKey(op, "Key", &key, CMPI_uint16);
  CMReturnObjectPath(rslt, op);
  CMReturnDone(rslt);
  CMReturn(CMPI_RC_OK);
}

static CMPIStatus CTestEnumInstances(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                     const CMPIResult *rslt, const CMPIObjectPath *ref,
                                     const char **props) {
  CMReturnWithChars(_broker, CMPI_RC_ERR_NOT_SUPPORTED, "enumerate in C");
}

static CMPIStatus CTestGetInstance(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                   const CMPIResult *rslt, const CMPIObjectPath *ref,
                                   const char **props) {
  return CTestEnumInstances(mi, ctx, rslt, ref, props);
}

static CMPIStatus CTestCreateInstance(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                      const CMPIResult *rslt, const CMPIObjectPath *ref,
                                      const CMPIInstance *inst) {
  return CTestEnumInstances(mi, ctx, rslt, ref, NULL);
}

static CMPIStatus CTestModifyInstance(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                      const CMPIResult *rslt, const CMPIObjectPath *ref,
                                      const CMPIInstance *inst, const char **props) {
  return CTestEnumInstances(mi, ctx, rslt, ref, props);
}

static CMPIStatus CTestDeleteInstance(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                      const CMPIResult *rslt, const CMPIObjectPath *ref) {
  return CTestEnumInstances(mi, ctx, rslt, ref, NULL);
}

static CMPIStatus CTestExecQuery(CMPIInstanceMI *mi, const CMPIContext *ctx,
                                 const CMPIResult *rslt, const CMPIObjectPath *ref,
                                 const char *query, const char *lang) {
  return CTestEnumInstances(mi, ctx, rslt, ref, NULL);
}

CMInstanceMIStub(CTest, QRX_CTest, _broker, _hookRuns++)

const CMPIBroker *c_provider_broker(void) { return _broker; }
int c_provider_hook_runs(void) { return _hookRuns; }
