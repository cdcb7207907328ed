#include "provider/InstalledSoftwareOnSystem_Provider.h"

#include "common/backend/ListedInstances.h"

namespace {

using P = QRX_InstalledSoftwareOnSystem_Provider;
using Link = QRX_InstalledSoftwareOnSystem;
using SoftwareBackend = ListBackend<QRX_AgentSoftwareIdentity_Provider>;

}  // namespace

InstalledSoftwareOnSystemBackend InstalledSoftwareOnSystemBackend::singleton;

bool P::list(classArrayT& orOut) {
  return listed_instances::pairs(SoftwareBackend::singleton, "AgentSoftwareIdentity",
                                 &Link::InstalledSoftware, QRX_Switch_Best::singleton, "Switch",
                                 &Link::System, listed_instances::AnyPair(), orOut);
}

bool InstalledSoftwareOnSystemBackend::associatorsForRefRight(
    const QRX_AgentSoftwareIdentity_Key& irSource, QRX_Switch_Array& orOut) {
  return listed_instances::associators<P::classArrayT>(
      *this, QRX_Switch_Best::singleton, &Link::InstalledSoftware, &Link::System, irSource, orOut);
}

bool InstalledSoftwareOnSystemBackend::associatorNamesForRefRight(
    const QRX_AgentSoftwareIdentity_Key& irSource, QRX_Switch_KeyArray& orOut) {
  return listed_instances::associatorNames<P::classArrayT>(*this, &Link::InstalledSoftware,
                                                           &Link::System, irSource, orOut);
}

bool InstalledSoftwareOnSystemBackend::referencesForRefRight(
    const QRX_AgentSoftwareIdentity_Key& irSource, QRX_InstalledSoftwareOnSystem_Array& orOut) {
  return listed_instances::references(*this, &Link::InstalledSoftware, irSource, orOut);
}

bool InstalledSoftwareOnSystemBackend::associatorsForRefLeft(
    const QRX_Switch_Key& irSource, QRX_AgentSoftwareIdentity_Array& orOut) {
  return listed_instances::associators<P::classArrayT>(
      *this, SoftwareBackend::singleton, &Link::System, &Link::InstalledSoftware, irSource, orOut);
}

bool InstalledSoftwareOnSystemBackend::associatorNamesForRefLeft(
    const QRX_Switch_Key& irSource, QRX_AgentSoftwareIdentity_KeyArray& orOut) {
  return listed_instances::associatorNames<P::classArrayT>(
      *this, &Link::System, &Link::InstalledSoftware, irSource, orOut);
}

bool InstalledSoftwareOnSystemBackend::referencesForRefLeft(
    const QRX_Switch_Key& irSource, QRX_InstalledSoftwareOnSystem_Array& orOut) {
  return listed_instances::references(*this, &Link::System, irSource, orOut);
}

namespace {

// The association operations of QRX_InstalledSoftwareOnSystem: the
// generic glue, after the association class check with its error line.
struct InstalledSoftwareAssociation {
  static CMPIStatus associators(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                                const CMPIObjectPath* cop, const char* assocClass,
                                const char* resultClass, const char* role, const char* resultRole,
                                const char** properties) {
    TRACE_DEBUG_AT(P::providerName, "associators", "class=%s cop=%s assocClass=%s\n", P::className,
                   objPathText(cop), assocClass != nullptr ? assocClass : "");
    CMPIStatus rc = okStatus();
    if (!assocClassCovers<P>(cop, assocClass, "associators", &rc)) return rc;
    return associatorsHelper<P>(rslt, cop, assocClass, resultClass, role, resultRole, properties,
                                true);
  }

  static CMPIStatus associatorNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                                    const CMPIObjectPath* cop, const char* assocClass,
                                    const char* resultClass, const char* role,
                                    const char* resultRole) {
    TRACE_DEBUG_AT(P::providerName, "associatorNames", "class=%s cop=%s assocClass=%s\n",
                   P::className, objPathText(cop), assocClass != nullptr ? assocClass : "");
    CMPIStatus rc = okStatus();
    if (!assocClassCovers<P>(cop, assocClass, "associatorNames", &rc)) return rc;
    return associatorsHelper<P>(rslt, cop, assocClass, resultClass, role, resultRole, nullptr,
                                false);
  }

  static CMPIStatus references(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                               const CMPIObjectPath* cop, const char* resultClass, const char* role,
                               const char** properties) {
    TRACE_DEBUG_AT(P::providerName, "references", "class=%s cop=%s assocClass=%s\n", P::className,
                   objPathText(cop), resultClass != nullptr ? resultClass : "");
    CMPIStatus rc = okStatus();
    if (!assocClassCovers<P>(cop, resultClass, "references", &rc)) return rc;
    return referencesHelper<P>(rslt, cop, resultClass, role, properties, true);
  }

  static CMPIStatus referenceNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                                   const CMPIObjectPath* cop, const char* resultClass,
                                   const char* role) {
    TRACE_DEBUG_AT(P::providerName, "referenceNames", "class=%s cop=%s assocClass=%s\n",
                   P::className, objPathText(cop), resultClass != nullptr ? resultClass : "");
    CMPIStatus rc = okStatus();
    if (!assocClassCovers<P>(cop, resultClass, "referenceNames", &rc)) return rc;
    return referencesHelper<P>(rslt, cop, resultClass, role, nullptr, false);
  }
};

}  // namespace

extern "C" {

CMPIInstanceMI* QRX_InstalledSoftwareOnSystem_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                         const CMPIContext*,
                                                                         CMPIStatus*) {
  return handwrittenInstanceMI<P>(broker);
}

CMPIAssociationMI* QRX_InstalledSoftwareOnSystem_Provider_Create_AssociationMI(
    const CMPIBroker* broker, const CMPIContext*, CMPIStatus*) {
  return handwrittenAssociationMI<P, InstalledSoftwareAssociation>(broker);
}

}  // extern "C"
