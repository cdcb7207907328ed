#include "support/DebugFacility_Provider.h"

#include <cstring>
#include <string>

#include "common/base/PerfSamples.h"
#include "common/base/trace.h"

namespace {
using P = QRX_DebugFacility_Provider;
}  // namespace

bool P::list(classArrayT& orOut) {
  QRX_DebugFacility facility;
  facility.InstanceID = "QRX:DebugFacility";
  facility.LogFilePath = trace_file_path();
  orOut.push_back(facility);
  return true;
}

CMPIStatus P::invokeMethod(CMPIMethodMI*, const CMPIContext*, const CMPIResult* rslt,
                           const CMPIObjectPath* op, const char* methodName, const CMPIArgs* in,
                           CMPIArgs*) {
  static const std::string sampleTag = std::string(providerName) + ".invokeMethod";
  AutoTimeStat sample(sampleTag);
  CMPIStatus rc = okStatus();
  keyT key;
  getKeyFromObjPath(op, key, &rc);
  if (rc.rc != CMPI_RC_OK) {
    TRACE_ERROR_AT(unit, providerName, "invokeMethod", "No object key found\n");
    return rc;
  }
  const char* method = methodName != nullptr ? methodName : "";
  TRACE_DEBUG_AT(providerName, "invokeMethod", "Enter Function for method name: %s.%s\n", className,
                 method);
  if (strcmp(method, "SetDebugOn") == 0) {
    cboolean on = 0;
    if (!readMethodArg(in, "DebugOn", CMPI_boolean, on, &rc)) {
      TRACE_ERROR_AT(unit, providerName, "invokeMethod", "Failed to read input var DebugOn\n");
      return rc;
    }
    debug_on = on != 0;
  } else if (strcmp(method, "ClearPerfRecords") == 0) {
    scim_clear_perfdata();
  } else {
    TRACE_ERROR_AT(unit, providerName, "invokeMethod", "Unknown method %s\n", method);
    setStatus(&rc, methodBroker, CMPI_RC_ERR_METHOD_NOT_FOUND, "Unknown method");
    return rc;
  }
  CMPIUint32 returnValue = 0;
  CMReturnData(rslt, &returnValue, CMPI_uint32);
  CMReturnDone(rslt);
  sample.setTag(sampleTag + "." + method);
  return rc;
}

extern "C" {

CMPIInstanceMI* QRX_DebugFacility_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                             const CMPIContext*, CMPIStatus*) {
  return handwrittenInstanceMI<P>(broker);
}

CMPIMethodMI* QRX_DebugFacility_Provider_Create_MethodMI(const CMPIBroker* broker,
                                                         const CMPIContext*, CMPIStatus*) {
  return handwrittenMethodMI<P>(broker);
}

}  // extern "C"
