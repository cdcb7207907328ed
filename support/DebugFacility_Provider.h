// QRX_DebugFacility: the service staff's switch for the trace log. Its one
// instance ("QRX:DebugFacility") reports the trace log's file in
// LogFilePath. Methods (return value 0):
//   SetDebugOn(DebugOn boolean)  sets debug_on; a missing or unreadable
//                                argument changes nothing and fails the
//                                call ("Failed to read input var DebugOn")
//   ClearPerfRecords()           drops every performance sample
// Another method name fails with CMPI_RC_ERR_METHOD_NOT_FOUND.
#ifndef QRX_SUPPORT_DEBUGFACILITY_PROVIDER_H_
#define QRX_SUPPORT_DEBUGFACILITY_PROVIDER_H_

#include <atomic>

#include "cmpift.h"
#include "generated/scimclasses/QRX_DebugFacility.h"
#include "provider/HandwrittenProvider.h"

struct QRX_DebugFacility_Provider
    : HandwrittenProviderBase<QRX_DebugFacility_Provider, QRX_DebugFacility, QRX_DebugFacility_Key,
                              QRX_DebugFacility_Array, QRX_DebugFacility_KeyArray> {
  static constexpr const char* className = "QRX_DebugFacility";
  static constexpr const char* providerName = "QRX_DebugFacility_Provider";
  static constexpr const char* unit = "support/DebugFacility_Provider";
  static inline std::atomic<const CMPIBroker*> methodBroker{nullptr};

  static bool list(classArrayT& orOut);

  static CMPIStatus invokeMethod(CMPIMethodMI* mi, const CMPIContext* ctx, const CMPIResult* rslt,
                                 const CMPIObjectPath* op, const char* methodName,
                                 const CMPIArgs* in, CMPIArgs* out);
};

extern "C" {
CMPIInstanceMI* QRX_DebugFacility_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                             const CMPIContext* ctx,
                                                             CMPIStatus* rc);
CMPIMethodMI* QRX_DebugFacility_Provider_Create_MethodMI(const CMPIBroker* broker,
                                                         const CMPIContext* ctx, CMPIStatus* rc);
}

#endif  // QRX_SUPPORT_DEBUGFACILITY_PROVIDER_H_
