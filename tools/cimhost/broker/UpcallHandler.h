// cimhost::UpcallHandler: serves the up-calls a provider makes through the
// broker (CBGetInstance, CBEnumInstances, CBInvokeMethod, ...).
//
// The broker checks the arguments every up-call needs (a context, an
// object path, and where the call has them an instance, a method or a
// property name), then calls the handler with the provider's arguments
// unchanged, minus the broker. `opRc` is never NULL and arrives set to
// {CMPI_RC_OK, NULL}; whatever the handler leaves there reaches the
// provider. Objects a handler returns must be made by the same broker
// (e.g. TestBroker::newEnumeration()), so that the broker frees them; a
// handler never frees what it receives. An exception that escapes a
// handler becomes CMPI_RC_ERR_FAILED for the provider.
//
// Without a handler every up-call fails with CMPI_RC_ERR_NOT_SUPPORTED.
// Handlers may be called from several provider threads at once.
#ifndef QRX_TOOLS_CIMHOST_BROKER_UPCALLHANDLER_H_
#define QRX_TOOLS_CIMHOST_BROKER_UPCALLHANDLER_H_

#include "cmpift.h"

namespace cimhost {

class UpcallHandler {
 public:
  virtual ~UpcallHandler() = default;

  virtual CMPIEnumeration* enumerateInstanceNames(const CMPIContext* ctx, const CMPIObjectPath* op,
                                                  CMPIStatus* opRc) = 0;
  virtual CMPIInstance* getInstance(const CMPIContext* ctx, const CMPIObjectPath* op,
                                    const char** properties, CMPIStatus* opRc) = 0;
  virtual CMPIObjectPath* createInstance(const CMPIContext* ctx, const CMPIObjectPath* op,
                                         const CMPIInstance* inst, CMPIStatus* opRc) = 0;
  virtual CMPIStatus modifyInstance(const CMPIContext* ctx, const CMPIObjectPath* op,
                                    const CMPIInstance* inst, const char** properties) = 0;
  virtual CMPIStatus deleteInstance(const CMPIContext* ctx, const CMPIObjectPath* op) = 0;
  virtual CMPIEnumeration* execQuery(const CMPIContext* ctx, const CMPIObjectPath* op,
                                     const char* query, const char* lang, CMPIStatus* opRc) = 0;
  virtual CMPIEnumeration* enumerateInstances(const CMPIContext* ctx, const CMPIObjectPath* op,
                                              const char** properties, CMPIStatus* opRc) = 0;
  virtual CMPIEnumeration* associators(const CMPIContext* ctx, const CMPIObjectPath* op,
                                       const char* assocClass, const char* resultClass,
                                       const char* role, const char* resultRole,
                                       const char** properties, CMPIStatus* opRc) = 0;
  virtual CMPIEnumeration* associatorNames(const CMPIContext* ctx, const CMPIObjectPath* op,
                                           const char* assocClass, const char* resultClass,
                                           const char* role, const char* resultRole,
                                           CMPIStatus* opRc) = 0;
  virtual CMPIEnumeration* references(const CMPIContext* ctx, const CMPIObjectPath* op,
                                      const char* resultClass, const char* role,
                                      const char** properties, CMPIStatus* opRc) = 0;
  virtual CMPIEnumeration* referenceNames(const CMPIContext* ctx, const CMPIObjectPath* op,
                                          const char* resultClass, const char* role,
                                          CMPIStatus* opRc) = 0;
  virtual CMPIData invokeMethod(const CMPIContext* ctx, const CMPIObjectPath* op,
                                const char* method, const CMPIArgs* in, CMPIArgs* out,
                                CMPIStatus* opRc) = 0;
  virtual CMPIStatus setProperty(const CMPIContext* ctx, const CMPIObjectPath* op,
                                 const char* name, const CMPIValue* value, CMPIType type) = 0;
  virtual CMPIData getProperty(const CMPIContext* ctx, const CMPIObjectPath* op, const char* name,
                               CMPIStatus* opRc) = 0;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_UPCALLHANDLER_H_
