#include "provider/ElementConformsToProfile_Provider.h"

#include <strings.h>

#include <cstring>
#include <string>
#include <vector>

#include "generated/scimproviders/QRX_Fabric_Provider.h"
#include "generated/scimproviders/QRX_SoftwareIdentity_Provider.h"
#include "generated/scimproviders/QRX_Switch_Provider.h"
#include "provider/AgentSoftware_Providers.h"
#include "provider/CMPISerializer.h"
#include "provider/RegisteredProfile_Providers.h"

namespace {

using P = QRX_ElementConformsToProfile_Provider;

const char kProfileClass[] = "CIM_RegisteredProfile";
const char kElementClass[] = "CIM_ManagedElement";

// The result classes a client may ask for from a profile.
enum ElementKind : unsigned { kSwitches = 1, kFabrics = 2, kSoftware = 4, kObjectManager = 8 };
const struct {
  const char* resultClass;
  ElementKind kind;
} kResultClasses[] = {
    {"CIM_ComputerSystem", kSwitches},
    {"CIM_AdminDomain", kFabrics},
    {"CIM_SoftwareIdentity", kSoftware},
    {"CIM_ObjectManager", kObjectManager},
};

// Appends the paths of every instance of ProviderT's class to `orPaths`.
template <class ProviderT>
bool elementPaths(const CMPIBroker* ipBroker, std::vector<CMPIObjectPath*>& orPaths) {
  typename ProviderT::keyArrayT keys;
  if (!ProviderT::backendT::singleton.enumInstanceNames(keys)) {
    TRACE_ERROR(P::unit, "Could not enumerate %s\n", ProviderT::className);
    return false;
  }
  for (const auto& key : keys)
    orPaths.push_back(makeKeyedObjPath(ipBroker, QRX_NAMESPACE, ProviderT::className, key));
  return true;
}

// Returns the instances (or their paths) of ProviderT's class, in "root/qrx".
template <class ProviderT>
bool returnElements(bool ipWantInstances, const CMPIResult* ipResult, const char** ipProperties,
                    CMPIStatus* opRc) {
  const CMPIBroker* broker = P::assocBroker;
  if (!ipWantInstances) {
    std::vector<CMPIObjectPath*> paths;
    if (!elementPaths<ProviderT>(broker, paths)) {
      setStatus(opRc, broker, CMPI_RC_ERR_FAILED, "backendAssociatorNamesFor() failed");
      return false;
    }
    for (CMPIObjectPath* path : paths) CMReturnObjectPath(ipResult, path);
    return true;
  }
  typename ProviderT::classArrayT objects;
  if (!ProviderT::backendT::singleton.enumInstances(objects)) {
    TRACE_ERROR(P::unit, "Could not enumerate %s\n", ProviderT::className);
    setStatus(opRc, broker, CMPI_RC_ERR_FAILED, "backendAssociatorsFor() failed");
    return false;
  }
  addInstancesToResult<ProviderT>(broker, QRX_NAMESPACE, objects, ipProperties, ipResult, opRc);
  return opRc->rc == CMPI_RC_OK;
}

// The object manager's instances (or paths), asked of the broker.
bool returnObjectManagers(const CMPIContext* ipCtx, bool ipWantInstances,
                          const CMPIResult* ipResult, const char** ipProperties, CMPIStatus* opRc) {
  const CMPIBroker* broker = P::assocBroker;
  CMPIObjectPath* path = newObjPathChecked(broker, INTEROP_NAMESPACE, "CIM_ObjectManager");
  CMPIEnumeration* found = ipWantInstances
                               ? CBEnumInstances(broker, ipCtx, path, ipProperties, opRc)
                               : CBEnumInstanceNames(broker, ipCtx, path, opRc);
  if (opRc->rc != CMPI_RC_OK || found == nullptr) {
    TRACE_ERROR(P::unit, "Could not enumerate CIM_ObjectManager rc=%d\n", opRc->rc);
    if (opRc->rc == CMPI_RC_OK) setStatus(opRc, broker, CMPI_RC_ERR_FAILED, "No CIM_ObjectManager");
    return false;
  }
  while (CMHasNext(found, nullptr)) {
    CMPIData data = CMGetNext(found, nullptr);
    if (ipWantInstances && data.type == CMPI_instance) CMReturnInstance(ipResult, data.value.inst);
    if (!ipWantInstances && data.type == CMPI_ref) CMReturnObjectPath(ipResult, data.value.ref);
  }
  return true;
}

// The kinds of element a result class asks for; 0 for a class the table
// does not have.
unsigned kindsOf(const char* ipResultClass) {
  if (ipResultClass == nullptr) return kSwitches | kFabrics | kSoftware | kObjectManager;
  for (const auto& row : kResultClasses) {
    if (strcasecmp(row.resultClass, ipResultClass) == 0) return row.kind;
  }
  return 0;
}

// The pairs of the association: the Fabric profile with each fabric, the
// Switch profile with each switch. `ipOnlyProfile` (may be NULL) keeps
// those of one profile.
struct Pair {
  std::string profileID;
  CMPIObjectPath* element;
};

bool listPairs(const CMPIBroker* ipBroker, const char* ipOnlyProfile, std::vector<Pair>& orPairs) {
  const auto& profiles = registeredProfiles();
  const std::string& fabricProfile = profiles[0].InstanceID;
  const std::string& switchProfile = profiles[1].InstanceID;
  std::vector<CMPIObjectPath*> fabrics, switches;
  if (ipOnlyProfile == nullptr || fabricProfile == ipOnlyProfile) {
    if (!elementPaths<QRX_Fabric_Provider>(ipBroker, fabrics)) return false;
  }
  if (ipOnlyProfile == nullptr || switchProfile == ipOnlyProfile) {
    if (!elementPaths<QRX_Switch_Provider>(ipBroker, switches)) return false;
  }
  for (CMPIObjectPath* fabric : fabrics) orPairs.push_back({fabricProfile, fabric});
  for (CMPIObjectPath* sw : switches) orPairs.push_back({switchProfile, sw});
  return true;
}

CMPIObjectPath* pairPath(const CMPIBroker* ipBroker, const char* ipNameSpace, const Pair& irPair) {
  CMPIObjectPath* path = newObjPathChecked(ipBroker, ipNameSpace, P::className);
  CMPIObjectPath* profile = profilePath(ipBroker, "QRX_RegisteredProfile", irPair.profileID);
  CMAddKey(path, P::refLeft, &profile, CMPI_ref);
  CMAddKey(path, P::refRight, &irPair.element, CMPI_ref);
  return path;
}

CMPIInstance* pairInstance(const CMPIBroker* ipBroker, const char* ipNameSpace, const Pair& irPair,
                           CMPIStatus* opRc) {
  CMPIInstance* instance =
      newInstanceChecked(ipBroker, newObjPathChecked(ipBroker, ipNameSpace, P::className));
  CMPIObjectPath* profile = profilePath(ipBroker, "QRX_RegisteredProfile", irPair.profileID);
  *opRc = CMSetProperty(instance, P::refLeft, &profile, CMPI_ref);
  if (opRc->rc == CMPI_RC_OK)
    *opRc = CMSetProperty(instance, P::refRight, &irPair.element, CMPI_ref);
  return instance;
}

// The characters of `ipString`; NULL when there is no string.
const char* chars(const CMPIString* ipString) {
  return ipString != nullptr ? CMGetCharPtr(ipString) : nullptr;
}

// The string value of `irData`; NULL when it is no (non-null) string.
const char* stringValue(const CMPIData& irData) {
  return irData.type == CMPI_string && (irData.state & CMPI_nullValue) == 0
             ? chars(irData.value.string)
             : nullptr;
}

// Whether the paths name the same object: the same class (ignoring case)
// and, for every key of `ipOurs`, an equal string key in `ipTheirs`.
bool samePath(const CMPIObjectPath* ipOurs, const CMPIObjectPath* ipTheirs) {
  const char* ours = chars(CMGetClassName(ipOurs, nullptr));
  const char* theirs = chars(CMGetClassName(ipTheirs, nullptr));
  if (ours == nullptr || theirs == nullptr || strcasecmp(ours, theirs) != 0) return false;
  const CMPICount count = CMGetKeyCount(ipOurs, nullptr);
  for (CMPICount i = 0; i < count; ++i) {
    CMPIString* name = nullptr;
    const char* mine = stringValue(CMGetKeyAt(ipOurs, i, &name, nullptr));
    if (mine == nullptr || chars(name) == nullptr) return false;
    CMPIStatus st = okStatus();
    CMPIData other = CMGetKey(ipTheirs, chars(name), &st);
    const char* their = st.rc == CMPI_RC_OK ? stringValue(other) : nullptr;
    if (their == nullptr || strcmp(mine, their) != 0) return false;
  }
  return true;
}

// The checks every association operation starts with. False with `opRc`
// as the client gets it (OK: the request does not concern this
// association); otherwise `orProfileID` is the source profile's.
bool checkRequest(const char* ipOperation, const CMPIObjectPath* ipCop, const char* ipAssocClass,
                  const char* ipRole, const char* ipResultRole, std::string& orProfileID,
                  CMPIStatus* opRc) {
  const CMPIBroker* broker = P::assocBroker;
  *opRc = okStatus();
  if (!assocClassCovers<P>(ipCop, ipAssocClass, ipOperation, opRc)) return false;
  // The result class is checked against the table, not the class tree.
  if (!assocCheckParameterConst(broker, ipCop, P::refLeft, P::refRight, kProfileClass,
                                kElementClass, nullptr, ipRole, ipResultRole, opRc)) {
    TRACE_DEBUG_AT(P::providerName, ipOperation,
                   "Check Params failed cop=%s ac=%s left=%s right=%s\n", objPathText(ipCop),
                   ipAssocClass != nullptr ? ipAssocClass : "", kProfileClass, kElementClass);
    return false;
  }
  const char* target =
      assocTargetName(broker, ipCop, kProfileClass, P::refLeft, kElementClass, P::refRight, opRc);
  if (target == nullptr) return false;
  if (strcmp(target, P::refRight) != 0) {
    TRACE_ERROR_AT(P::unit, P::providerName, ipOperation, "Unsupported targetName=%s\n", target);
    setStatus(opRc, broker, CMPI_RC_ERR_NOT_SUPPORTED, "Invalid result class");
    return false;
  }
  return readProfileID(broker, ipCop, P::unit, P::providerName, ipOperation, orProfileID, opRc);
}

CMPIStatus associatorsFor(const char* ipOperation, const CMPIContext* ipCtx,
                          const CMPIResult* ipResult, const CMPIObjectPath* ipCop,
                          const char* ipAssocClass, const char* ipResultClass, const char* ipRole,
                          const char* ipResultRole, const char** ipProperties,
                          bool ipWantInstances) {
  TRACE_DEBUG_AT(P::providerName, ipOperation, "class=%s cop=%s resultClass=%s\n", P::className,
                 objPathText(ipCop), ipResultClass != nullptr ? ipResultClass : "");
  CMPIStatus rc = okStatus();
  std::string profileID;
  if (!checkRequest(ipOperation, ipCop, ipAssocClass, ipRole, ipResultRole, profileID, &rc)) {
    return rc;
  }
  const unsigned kinds = kindsOf(ipResultClass);
  if (kinds == 0) {
    TRACE_ERROR_AT(P::unit, P::providerName, ipOperation, "Invalid resultClass=%s\n",
                   ipResultClass);
    setStatus(&rc, P::assocBroker, CMPI_RC_ERR_INVALID_PARAMETER, "Invalid resultClass");
    return rc;
  }
  if ((kinds & kSwitches) &&
      !returnElements<QRX_Switch_Provider>(ipWantInstances, ipResult, ipProperties, &rc)) {
    return rc;
  }
  if ((kinds & kFabrics) &&
      !returnElements<QRX_Fabric_Provider>(ipWantInstances, ipResult, ipProperties, &rc)) {
    return rc;
  }
  if ((kinds & kSoftware) && (!returnElements<QRX_SoftwareIdentity_Provider>(
                                  ipWantInstances, ipResult, ipProperties, &rc) ||
                              !returnElements<QRX_AgentSoftwareIdentity_Provider>(
                                  ipWantInstances, ipResult, ipProperties, &rc))) {
    return rc;
  }
  // Without a result class, an object manager that cannot be asked is
  // left out (its error line is written).
  if ((kinds & kObjectManager) &&
      !returnObjectManagers(ipCtx, ipWantInstances, ipResult, ipProperties, &rc)) {
    if (ipResultClass != nullptr) return rc;
    rc = okStatus();
  }
  CMReturnDone(ipResult);
  return rc;
}

CMPIStatus referencesFor(const char* ipOperation, const CMPIResult* ipResult,
                         const CMPIObjectPath* ipCop, const char* ipResultClass, const char* ipRole,
                         bool ipWantInstances) {
  TRACE_DEBUG_AT(P::providerName, ipOperation, "class=%s cop=%s assocClass=%s\n", P::className,
                 objPathText(ipCop), ipResultClass != nullptr ? ipResultClass : "");
  const CMPIBroker* broker = P::assocBroker;
  CMPIStatus rc = okStatus();
  std::string profileID;
  if (!checkRequest(ipOperation, ipCop, ipResultClass, ipRole, nullptr, profileID, &rc)) {
    return rc;
  }
  std::vector<Pair> pairs;
  if (!listPairs(broker, profileID.c_str(), pairs)) {
    setStatus(&rc, broker, CMPI_RC_ERR_FAILED, "backendReferencesFor() failed");
    return rc;
  }
  for (const Pair& pair : pairs) {
    if (ipWantInstances) {
      CMReturnInstance(ipResult, pairInstance(broker, nameSpaceOf(ipCop), pair, &rc));
      if (rc.rc != CMPI_RC_OK) return rc;
    } else {
      CMReturnObjectPath(ipResult, pairPath(broker, nameSpaceOf(ipCop), pair));
    }
  }
  CMReturnDone(ipResult);
  return rc;
}

// The instance operations' end: done, or the error line.
CMPIStatus finish(const char* ipOperation, const CMPIResult* ipResult, const CMPIStatus& irRc) {
  finishInstanceOp<P>(ipResult, irRc, ipOperation);
  return irRc;
}

// The instance and association operations of QRX_ElementConformsToProfile.
struct ConformanceOps : NotOfferedInstanceOps<P> {
  static CMPIStatus enumInstanceNames(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* rslt,
                                      const CMPIObjectPath* ref) {
    static const std::string sampleTag = std::string(P::providerName) + ".enumInstanceNames";
    AutoTimeStat sample(sampleTag);
    TRACE_DEBUG_AT(P::providerName, "enumInstanceNames", "class=%s ref=%s\n", P::className,
                   objPathText(ref));
    CMPIStatus rc = okStatus();
    std::vector<Pair> pairs;
    if (!listPairs(P::broker, nullptr, pairs)) {
      setStatus(&rc, P::broker, CMPI_RC_ERR_FAILED, "backendEnumInstanceNames() failed");
    }
    for (const Pair& pair : pairs)
      CMReturnObjectPath(rslt, pairPath(P::broker, nameSpaceOf(ref), pair));
    return finish("enumInstanceNames", rslt, rc);
  }

  static CMPIStatus enumInstances(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* rslt,
                                  const CMPIObjectPath* ref, const char**) {
    static const std::string sampleTag = std::string(P::providerName) + ".enumInstances";
    AutoTimeStat sample(sampleTag);
    TRACE_DEBUG_AT(P::providerName, "enumInstances", "class=%s ref=%s\n", P::className,
                   objPathText(ref));
    CMPIStatus rc = okStatus();
    std::vector<Pair> pairs;
    if (!listPairs(P::broker, nullptr, pairs)) {
      setStatus(&rc, P::broker, CMPI_RC_ERR_FAILED, "backendEnumInstances() failed");
    }
    for (const Pair& pair : pairs) {
      CMReturnInstance(rslt, pairInstance(P::broker, nameSpaceOf(ref), pair, &rc));
      if (rc.rc != CMPI_RC_OK) break;
    }
    return finish("enumInstances", rslt, rc);
  }

  static CMPIStatus getInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* rslt,
                                const CMPIObjectPath* op, const char**) {
    TRACE_DEBUG_AT(P::providerName, "getInstance", "class=%s op=%s\n", P::className,
                   objPathText(op));
    CMPIStatus rc = okStatus();
    CMPIStatus st = okStatus();
    CMPIData profile = CMGetKey(op, P::refLeft, &st);
    CMPIData element = CMGetKey(op, P::refRight, &st);
    std::string profileID;
    if (profile.type != CMPI_ref || element.type != CMPI_ref || profile.value.ref == nullptr ||
        element.value.ref == nullptr) {
      setStatus(&rc, P::broker, CMPI_RC_ERR_INVALID_PARAMETER, "Can not obtain key properties");
      return finish("getInstance", rslt, rc);
    }
    if (!readProfileID(P::broker, profile.value.ref, P::unit, P::providerName, "getInstance",
                       profileID, &rc)) {
      return finish("getInstance", rslt, rc);
    }
    std::vector<Pair> pairs;
    if (listPairs(P::broker, profileID.c_str(), pairs)) {
      for (const Pair& pair : pairs) {
        if (!samePath(pair.element, element.value.ref)) continue;
        CMReturnInstance(rslt, pairInstance(P::broker, nameSpaceOf(op), pair, &rc));
        return finish("getInstance", rslt, rc);
      }
    }
    setStatus(&rc, P::broker, CMPI_RC_ERR_FAILED, "backendGetInstance() failed");
    return finish("getInstance", rslt, rc);
  }

  static CMPIStatus associators(CMPIAssociationMI*, const CMPIContext* ctx, const CMPIResult* rslt,
                                const CMPIObjectPath* cop, const char* assocClass,
                                const char* resultClass, const char* role, const char* resultRole,
                                const char** properties) {
    return associatorsFor("associators", ctx, rslt, cop, assocClass, resultClass, role, resultRole,
                          properties, true);
  }

  static CMPIStatus associatorNames(CMPIAssociationMI*, const CMPIContext* ctx,
                                    const CMPIResult* rslt, const CMPIObjectPath* cop,
                                    const char* assocClass, const char* resultClass,
                                    const char* role, const char* resultRole) {
    return associatorsFor("associatorNames", ctx, rslt, cop, assocClass, resultClass, role,
                          resultRole, nullptr, false);
  }

  static CMPIStatus references(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                               const CMPIObjectPath* cop, const char* resultClass, const char* role,
                               const char**) {
    return referencesFor("references", rslt, cop, resultClass, role, true);
  }

  static CMPIStatus referenceNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                                   const CMPIObjectPath* cop, const char* resultClass,
                                   const char* role) {
    return referencesFor("referenceNames", rslt, cop, resultClass, role, false);
  }
};

}  // namespace

extern "C" {

CMPIInstanceMI* QRX_ElementConformsToProfile_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                        const CMPIContext*,
                                                                        CMPIStatus*) {
  return handwrittenInstanceMI<P, ConformanceOps>(broker);
}

CMPIAssociationMI* QRX_ElementConformsToProfile_Provider_Create_AssociationMI(
    const CMPIBroker* broker, const CMPIContext*, CMPIStatus*) {
  return handwrittenAssociationMI<P, ConformanceOps>(broker);
}

}  // extern "C"
