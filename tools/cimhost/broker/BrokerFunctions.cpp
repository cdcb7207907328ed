// CMPIBrokerFT: thread attachment, indication delivery, and the up-calls,
// which go to the broker's UpcallHandler.
#include "tools/cimhost/broker/BrokerTables.h"
#include "tools/cimhost/broker/Contexts.h"
#include "tools/cimhost/broker/Core.h"
#include "tools/cimhost/broker/Instances.h"
#include "tools/cimhost/broker/ObjectPaths.h"

namespace cimhost {

namespace {

const char kBrokerName[] = "qrx-cimhost";

const unsigned int kCapabilities100 = CMPI_MB_InstanceManipulation | CMPI_MB_AssociationTraversal |
                                      CMPI_MB_Indications | CMPI_MB_OSEncapsulationSupport;
const unsigned int kCapabilities200 =
    kCapabilities100 | CMPI_MB_Supports_MemEnhancements | CMPI_MB_Supports_Extended_Error;

const Status kNoBroker(CMPI_RC_ERR_INVALID_HANDLE, "");

// What every up-call needs: a context and an object path made by this
// broker, and a handler.
Status checkUpcall(Core* ipCore, const CMPIContext* ipContext, const CMPIObjectPath* ipPath,
                   UpcallHandler** opHandler) {
  if (!EncContext::of(ipContext)) {
    return Status(CMPI_RC_ERR_INVALID_PARAMETER, "context is NULL or not from this broker");
  }
  if (!EncObjectPath::of(ipPath)) {
    return Status(CMPI_RC_ERR_INVALID_PARAMETER, "object path is NULL or not from this broker");
  }
  *opHandler = ipCore->upcallHandler();
  if (!*opHandler) {
    return Status(CMPI_RC_ERR_NOT_SUPPORTED, "this broker has no up-call handler");
  }
  return Status::OK();
}

Status checkNotNull(const void* ipArg, const char* ipWhat) {
  if (ipArg) return Status::OK();
  return Status(CMPI_RC_ERR_INVALID_PARAMETER, std::string(ipWhat) + " is NULL");
}

Status checkInstance(const CMPIInstance* ipInstance) {
  if (EncInstance::of(ipInstance)) return Status::OK();
  return Status(CMPI_RC_ERR_INVALID_PARAMETER, "instance is NULL or not from this broker");
}

// Runs an up-call returning R: checks the common arguments and `irExtra`,
// then `call(handler, rc)` with rc preset to OK; its status reaches *opRc.
template <class R, class Call>
R upcall(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op, CMPIStatus* opRc,
         R ipFallback, const Status& irExtra, Call call) {
  Core* core = Core::of(mb);
  if (!core) {
    setStatus(opRc, nullptr, kNoBroker);
    return ipFallback;
  }
  return guard(core, opRc, ipFallback, [&] {
    UpcallHandler* handler = nullptr;
    Status status = checkUpcall(core, ctx, op, &handler);
    if (status.ok()) status = irExtra;
    if (!status.ok()) {
      setStatus(opRc, core, status);
      return ipFallback;
    }
    CMPIStatus rc = okStatus();
    R out = call(*handler, &rc);
    if (opRc) *opRc = rc;
    return out;
  });
}

// The same for up-calls that return a CMPIStatus.
template <class Call>
CMPIStatus upcallStatus(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                        const Status& irExtra, Call call) {
  CMPIStatus rc = okStatus();
  upcall(mb, ctx, op, &rc, 0, irExtra, [&](UpcallHandler& handler, CMPIStatus* opRc) {
    *opRc = call(handler);
    return 0;
  });
  return rc;
}

CMPIContext* mbPrepareAttachThread(const CMPIBroker* mb, const CMPIContext* ctx) {
  Core* core = Core::of(mb);
  const EncContext* context = EncContext::of(ctx);
  if (!core || !context) return nullptr;
  return guard(core, nullptr, static_cast<CMPIContext*>(nullptr),
               [&] { return core->adopt(context->copy(core)); });
}

CMPIStatus mbAttachThread(const CMPIBroker* mb, const CMPIContext* ctx) {
  Core* core = Core::of(mb);
  if (!core) return toCmpiStatus(nullptr, kNoBroker);
  return guardStatus(core, [&] {
    if (!EncContext::of(ctx)) {
      return Status(CMPI_RC_ERR_INVALID_PARAMETER, "context is NULL or not from this broker");
    }
    core->attach();
    return Status::OK();
  });
}

CMPIStatus mbDetachThread(const CMPIBroker* mb, const CMPIContext* ctx) {
  Core* core = Core::of(mb);
  if (!core) return toCmpiStatus(nullptr, kNoBroker);
  return guardStatus(core, [&] {
    if (!EncContext::of(ctx)) {
      return Status(CMPI_RC_ERR_INVALID_PARAMETER, "context is NULL or not from this broker");
    }
    return core->detach();
  });
}

CMPIStatus mbDeliverIndication(const CMPIBroker* mb, const CMPIContext*, const char* ns,
                               const CMPIInstance* ind) {
  Core* core = Core::of(mb);
  if (!core) return toCmpiStatus(nullptr, kNoBroker);
  return guardStatus(core, [&] {
    if (!ns) return Status(CMPI_RC_ERR_INVALID_PARAMETER, "indication namespace is NULL");
    const EncInstance* indication = EncInstance::of(ind);
    if (!indication) {
      return Status(CMPI_RC_ERR_INVALID_PARAMETER, "indication is NULL or not from this broker");
    }
    core->addIndication(ns, indication->copy(core));
    return Status::OK();
  });
}

CMPIEnumeration* mbEnumerateInstanceNames(const CMPIBroker* mb, const CMPIContext* ctx,
                                          const CMPIObjectPath* op, CMPIStatus* rc) {
  return upcall(mb, ctx, op, rc, static_cast<CMPIEnumeration*>(nullptr), Status::OK(),
                [&](UpcallHandler& h, CMPIStatus* st) {
                  return h.enumerateInstanceNames(ctx, op, st);
                });
}

CMPIInstance* mbGetInstance(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                            const char** properties, CMPIStatus* rc) {
  return upcall(mb, ctx, op, rc, static_cast<CMPIInstance*>(nullptr), Status::OK(),
                [&](UpcallHandler& h, CMPIStatus* st) {
                  return h.getInstance(ctx, op, properties, st);
                });
}

CMPIObjectPath* mbCreateInstance(const CMPIBroker* mb, const CMPIContext* ctx,
                                 const CMPIObjectPath* op, const CMPIInstance* inst,
                                 CMPIStatus* rc) {
  return upcall(mb, ctx, op, rc, static_cast<CMPIObjectPath*>(nullptr), checkInstance(inst),
                [&](UpcallHandler& h, CMPIStatus* st) {
                  return h.createInstance(ctx, op, inst, st);
                });
}

CMPIStatus mbModifyInstance(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                            const CMPIInstance* inst, const char** properties) {
  return upcallStatus(mb, ctx, op, checkInstance(inst), [&](UpcallHandler& h) {
    return h.modifyInstance(ctx, op, inst, properties);
  });
}

CMPIStatus mbDeleteInstance(const CMPIBroker* mb, const CMPIContext* ctx,
                            const CMPIObjectPath* op) {
  return upcallStatus(mb, ctx, op, Status::OK(),
                      [&](UpcallHandler& h) { return h.deleteInstance(ctx, op); });
}

CMPIEnumeration* mbExecQuery(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                             const char* query, const char* lang, CMPIStatus* rc) {
  Status extra = checkNotNull(query, "query");
  if (extra.ok()) extra = checkNotNull(lang, "query language");
  return upcall(mb, ctx, op, rc, static_cast<CMPIEnumeration*>(nullptr), extra,
                [&](UpcallHandler& h, CMPIStatus* st) {
                  return h.execQuery(ctx, op, query, lang, st);
                });
}

CMPIEnumeration* mbEnumerateInstances(const CMPIBroker* mb, const CMPIContext* ctx,
                                      const CMPIObjectPath* op, const char** properties,
                                      CMPIStatus* rc) {
  return upcall(mb, ctx, op, rc, static_cast<CMPIEnumeration*>(nullptr), Status::OK(),
                [&](UpcallHandler& h, CMPIStatus* st) {
                  return h.enumerateInstances(ctx, op, properties, st);
                });
}

CMPIEnumeration* mbAssociators(const CMPIBroker* mb, const CMPIContext* ctx,
                               const CMPIObjectPath* op, const char* assocClass,
                               const char* resultClass, const char* role, const char* resultRole,
                               const char** properties, CMPIStatus* rc) {
  return upcall(mb, ctx, op, rc, static_cast<CMPIEnumeration*>(nullptr), Status::OK(),
                [&](UpcallHandler& h, CMPIStatus* st) {
                  return h.associators(ctx, op, assocClass, resultClass, role, resultRole,
                                       properties, st);
                });
}

CMPIEnumeration* mbAssociatorNames(const CMPIBroker* mb, const CMPIContext* ctx,
                                   const CMPIObjectPath* op, const char* assocClass,
                                   const char* resultClass, const char* role,
                                   const char* resultRole, CMPIStatus* rc) {
  return upcall(mb, ctx, op, rc, static_cast<CMPIEnumeration*>(nullptr), Status::OK(),
                [&](UpcallHandler& h, CMPIStatus* st) {
                  return h.associatorNames(ctx, op, assocClass, resultClass, role, resultRole,
                                           st);
                });
}

CMPIEnumeration* mbReferences(const CMPIBroker* mb, const CMPIContext* ctx,
                              const CMPIObjectPath* op, const char* resultClass, const char* role,
                              const char** properties, CMPIStatus* rc) {
  return upcall(mb, ctx, op, rc, static_cast<CMPIEnumeration*>(nullptr), Status::OK(),
                [&](UpcallHandler& h, CMPIStatus* st) {
                  return h.references(ctx, op, resultClass, role, properties, st);
                });
}

CMPIEnumeration* mbReferenceNames(const CMPIBroker* mb, const CMPIContext* ctx,
                                  const CMPIObjectPath* op, const char* resultClass,
                                  const char* role, CMPIStatus* rc) {
  return upcall(mb, ctx, op, rc, static_cast<CMPIEnumeration*>(nullptr), Status::OK(),
                [&](UpcallHandler& h, CMPIStatus* st) {
                  return h.referenceNames(ctx, op, resultClass, role, st);
                });
}

CMPIData mbInvokeMethod(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                        const char* method, const CMPIArgs* in, CMPIArgs* out, CMPIStatus* rc) {
  return upcall(mb, ctx, op, rc, missingData(), checkNotNull(method, "method name"),
                [&](UpcallHandler& h, CMPIStatus* st) {
                  return h.invokeMethod(ctx, op, method, in, out, st);
                });
}

CMPIStatus mbSetProperty(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                         const char* name, const CMPIValue* value, CMPIType type) {
  return upcallStatus(mb, ctx, op, checkNotNull(name, "property name"), [&](UpcallHandler& h) {
    return h.setProperty(ctx, op, name, value, type);
  });
}

CMPIData mbGetProperty(const CMPIBroker* mb, const CMPIContext* ctx, const CMPIObjectPath* op,
                       const char* name, CMPIStatus* rc) {
  return upcall(mb, ctx, op, rc, missingData(), checkNotNull(name, "property name"),
                [&](UpcallHandler& h, CMPIStatus* st) {
                  return h.getProperty(ctx, op, name, st);
                });
}

constexpr CMPIBrokerFT makeTable(unsigned int ipCapabilities, unsigned int ipVersion) {
  return CMPIBrokerFT{ipCapabilities,
                      ipVersion,
                      kBrokerName,
                      mbPrepareAttachThread,
                      mbAttachThread,
                      mbDetachThread,
                      mbDeliverIndication,
                      mbEnumerateInstanceNames,
                      mbGetInstance,
                      mbCreateInstance,
                      mbModifyInstance,
                      mbDeleteInstance,
                      mbExecQuery,
                      mbEnumerateInstances,
                      mbAssociators,
                      mbAssociatorNames,
                      mbReferences,
                      mbReferenceNames,
                      mbInvokeMethod,
                      mbSetProperty,
                      mbGetProperty};
}

const CMPIBrokerFT kTable200 = makeTable(kCapabilities200, CMPIVersion200);
const CMPIBrokerFT kTable100 = makeTable(kCapabilities100, CMPIVersion100);

}  // namespace

const CMPIBrokerFT* brokerFunctions(BrokerMode ipMode) {
  return ipMode == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

bool isOwnBrokerFunctions(const CMPIBrokerFT* ipFt) {
  return ipFt == &kTable200 || ipFt == &kTable100;
}

}  // namespace cimhost
