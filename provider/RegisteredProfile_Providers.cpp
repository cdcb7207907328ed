#include "provider/RegisteredProfile_Providers.h"

#include <cstring>

#include "provider/StatusUtil.h"

const char* const INTEROP_NAMESPACE = "root/interop";

namespace {

using Requires = QRX_SubProfileRequiresProfile_Provider;

const char kUnit[] = "provider/RegisteredProfile_Providers";
const char kProfileClass[] = "QRX_RegisteredProfile";
const char kSubProfileClass[] = "QRX_RegisteredSubProfile";
const cuint16 kSNIA = 11;
const cuint16 kNotAdvertised = 2;

template <class T>
T registration(const char* ipInstanceID, const char* ipName) {
  T row;
  row.InstanceID = ipInstanceID;
  row.RegisteredName = ipName;
  row.RegisteredVersion = "1.2.0";
  row.RegisteredOrganization = kSNIA;
  row.AdvertiseTypes = {kNotAdvertised};
  return row;
}

bool knownID(const std::string& irID) {
  for (const auto& row : registeredProfiles()) {
    if (row.InstanceID == irID) return true;
  }
  for (const auto& row : registeredSubProfiles()) {
    if (row.InstanceID == irID) return true;
  }
  return false;
}

// What an association operation returns for each link it finds.
enum class Want { Associators, AssociatorNames, References, ReferenceNames };

// Returns the row `irID` of `irRows` as an instance of `P`'s class in the
// interop namespace.
template <class P, class RowsT>
void returnRow(const CMPIBroker* ipBroker, const RowsT& irRows, const std::string& irID,
               const CMPIResult* ipResult, CMPIStatus* opRc) {
  for (const auto& row : irRows) {
    if (row.InstanceID != irID) continue;
    CMPIInstance* instance =
        newInstanceChecked(ipBroker, newObjPathChecked(ipBroker, INTEROP_NAMESPACE, P::className));
    P::fillProperties(ipBroker, instance, row, opRc);
    CMReturnInstance(ipResult, instance);
  }
}

CMPIStatus traverse(const char* ipOperation, const CMPIResult* ipResult,
                    const CMPIObjectPath* ipCop, const char* ipAssocClass,
                    const char* ipResultClass, const char* ipRole, const char* ipResultRole,
                    Want ipWant) {
  const CMPIBroker* broker = Requires::assocBroker;
  CMPIStatus rc = okStatus();
  if (!assocClassCovers<Requires>(ipCop, ipAssocClass, ipOperation, &rc)) return rc;
  if (!assocCheckParameterConst(broker, ipCop, Requires::refLeft, Requires::refRight, kProfileClass,
                                kSubProfileClass, ipResultClass, ipRole, ipResultRole, &rc)) {
    TRACE_DEBUG_AT(Requires::providerName, ipOperation,
                   "Check Params failed cop=%s ac=%s left=%s right=%s\n", objPathText(ipCop),
                   ipAssocClass != nullptr ? ipAssocClass : "", kProfileClass, kSubProfileClass);
    return okStatus();
  }
  const char* target = assocTargetName(broker, ipCop, kProfileClass, Requires::refLeft,
                                       kSubProfileClass, Requires::refRight, &rc);
  if (target == nullptr) return rc;
  std::string id;
  if (!readProfileID(broker, ipCop, kUnit, Requires::providerName, ipOperation, id, &rc)) return rc;
  const bool fromProfile = strcmp(target, Requires::refRight) == 0;

  QRX_SubProfileRequiresProfile_Array links;
  Requires::list(links);
  for (const QRX_SubProfileRequiresProfile& link : links) {
    const std::string& source =
        fromProfile ? link.Antecedent.InstanceID : link.Dependent.InstanceID;
    const std::string& other = fromProfile ? link.Dependent.InstanceID : link.Antecedent.InstanceID;
    if (source != id) continue;
    switch (ipWant) {
      case Want::AssociatorNames:
        CMReturnObjectPath(
            ipResult, profilePath(broker, fromProfile ? kSubProfileClass : kProfileClass, other));
        break;
      case Want::Associators:
        if (fromProfile) {
          returnRow<QRX_RegisteredSubProfile_Provider>(broker, registeredSubProfiles(), other,
                                                       ipResult, &rc);
        } else {
          returnRow<QRX_RegisteredProfile_Provider>(broker, registeredProfiles(), other, ipResult,
                                                    &rc);
        }
        break;
      case Want::References: {
        CMPIInstance* instance = newInstanceChecked(
            broker, newObjPathChecked(broker, nameSpaceOf(ipCop), Requires::className));
        Requires::fillProperties(broker, instance, link, &rc);
        CMReturnInstance(ipResult, instance);
        break;
      }
      case Want::ReferenceNames:
        CMReturnObjectPath(ipResult, Requires::makeObjPath(
                                         broker, ipCop, QRX_SubProfileRequiresProfile_Key(link)));
        break;
    }
    if (rc.rc != CMPI_RC_OK) return rc;
  }
  CMReturnDone(ipResult);
  return rc;
}

// Reads the reference `ipName` of `ipOp` into the InstanceID `orID`.
void readRefID(const CMPIObjectPath* ipOp, const char* ipName, cstring& orID, CMPIStatus* opRc) {
  CMPIStatus st = okStatus();
  CMPIData data = CMGetKey(ipOp, ipName, &st);
  if (st.rc != CMPI_RC_OK || data.type != CMPI_ref || data.value.ref == nullptr) {
    opRc->rc = CMPI_RC_ERR_INVALID_PARAMETER;
    opRc->msg = nullptr;
    return;
  }
  CMPIData id = CMGetKey(data.value.ref, "InstanceID", &st);
  if (st.rc != CMPI_RC_OK || id.type != CMPI_string || id.value.string == nullptr ||
      CMGetCharPtr(id.value.string) == nullptr) {
    opRc->rc = CMPI_RC_ERR_INVALID_PARAMETER;
    opRc->msg = nullptr;
    return;
  }
  orID = CMGetCharPtr(id.value.string);
}

}  // namespace

const QRX_RegisteredProfile_Array& registeredProfiles() {
  static const QRX_RegisteredProfile_Array rows = {
      registration<QRX_RegisteredProfile>("QRX:Fabric.1.2.0", "Fabric"),
      registration<QRX_RegisteredProfile>("QRX:Switch.1.2.0", "Switch"),
      registration<QRX_RegisteredProfile>("QRX:Indication.1.2.0", "Indication"),
      registration<QRX_RegisteredProfile>("QRX:Server.1.2.0", "Server"),
  };
  return rows;
}

const QRX_RegisteredSubProfile_Array& registeredSubProfiles() {
  static const QRX_RegisteredSubProfile_Array rows = {
      registration<QRX_RegisteredSubProfile>("QRX:Enhanced Zoning and Enhanced Zoning Control",
                                             "Enhanced Zoning and Enhanced Zoning Control"),
      registration<QRX_RegisteredSubProfile>("QRX:Zone Control", "Zone Control"),
      registration<QRX_RegisteredSubProfile>("QRX:Access Points", "Access Points"),
      registration<QRX_RegisteredSubProfile>("QRX:Software", "Software"),
      registration<QRX_RegisteredSubProfile>("QRX:Location", "Location"),
  };
  return rows;
}

const std::string& requiredProfileID() { return registeredProfiles().front().InstanceID; }

bool readProfileID(const CMPIBroker* ipBroker, const CMPIObjectPath* ipPath, const char* ipUnit,
                   const char* ipOwner, const char* ipOperation, std::string& orID,
                   CMPIStatus* opRc) {
  CMPIStatus st = okStatus();
  CMPIData data = CMGetKey(ipPath, "InstanceID", &st);
  const char* id = nullptr;
  if (st.rc == CMPI_RC_OK && data.type == CMPI_string && data.value.string != nullptr) {
    id = CMGetCharPtr(data.value.string);
  }
  if (id == nullptr) {
    TRACE_ERROR_AT(ipUnit, ipOwner, ipOperation,
                   "Could not get CIM_RegisteredProfile.InstanceID\n");
    setStatus(opRc, ipBroker, CMPI_RC_ERR_INVALID_PARAMETER,
              "Missing CIM_RegisteredProfile.InstanceID");
    return false;
  }
  if (!knownID(id)) {
    TRACE_ERROR_AT(ipUnit, ipOwner, ipOperation, "Invalid CIM_RegisteredProfile.InstanceID=%s\n",
                   id);
    setStatus(opRc, ipBroker, CMPI_RC_ERR_INVALID_PARAMETER,
              "Illegal value CIM_RegisteredProfile.InstanceID");
    return false;
  }
  orID = id;
  return true;
}

CMPIObjectPath* profilePath(const CMPIBroker* ipBroker, const char* ipClassName,
                            const std::string& irID) {
  CMPIObjectPath* path = newObjPathChecked(ipBroker, INTEROP_NAMESPACE, ipClassName);
  CMAddKey(path, "InstanceID", irID.c_str(), CMPI_chars);
  return path;
}

bool QRX_RegisteredProfile_Provider::list(classArrayT& orOut) {
  orOut = registeredProfiles();
  return true;
}

bool QRX_RegisteredSubProfile_Provider::list(classArrayT& orOut) {
  orOut = registeredSubProfiles();
  return true;
}

bool Requires::list(classArrayT& orOut) {
  for (const QRX_RegisteredSubProfile& sub : registeredSubProfiles()) {
    QRX_SubProfileRequiresProfile link;
    link.Antecedent.InstanceID = requiredProfileID();
    link.Dependent.InstanceID = sub.InstanceID;
    orOut.push_back(link);
  }
  return true;
}

void Requires::getKeyFromObjPath(const CMPIObjectPath* ipOp, keyT& orKey, CMPIStatus* opRc) {
  *opRc = okStatus();
  readRefID(ipOp, refLeft, orKey.Antecedent.InstanceID, opRc);
  if (opRc->rc == CMPI_RC_OK) readRefID(ipOp, refRight, orKey.Dependent.InstanceID, opRc);
}

void Requires::fillProperties(const CMPIBroker* ipBroker, CMPIInstance* ipInst, const classT& irObj,
                              CMPIStatus* opRc) {
  CMPIObjectPath* profile = profilePath(ipBroker, kProfileClass, irObj.Antecedent.InstanceID);
  CMPIObjectPath* sub = profilePath(ipBroker, kSubProfileClass, irObj.Dependent.InstanceID);
  *opRc = CMSetProperty(ipInst, refLeft, &profile, CMPI_ref);
  if (opRc->rc == CMPI_RC_OK) *opRc = CMSetProperty(ipInst, refRight, &sub, CMPI_ref);
}

CMPIObjectPath* Requires::makeObjPath(const CMPIBroker* ipBroker, const CMPIObjectPath* ipRef,
                                      const keyT& irKey) {
  CMPIObjectPath* path = newObjPathChecked(ipBroker, nameSpaceOf(ipRef), className);
  CMPIObjectPath* profile = profilePath(ipBroker, kProfileClass, irKey.Antecedent.InstanceID);
  CMPIObjectPath* sub = profilePath(ipBroker, kSubProfileClass, irKey.Dependent.InstanceID);
  CMAddKey(path, refLeft, &profile, CMPI_ref);
  CMAddKey(path, refRight, &sub, CMPI_ref);
  return path;
}

namespace {

// The association operations of QRX_SubProfileRequiresProfile.
struct RequiresAssociation {
  static CMPIStatus associators(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                                const CMPIObjectPath* cop, const char* assocClass,
                                const char* resultClass, const char* role, const char* resultRole,
                                const char**) {
    return traverse("associators", rslt, cop, assocClass, resultClass, role, resultRole,
                    Want::Associators);
  }

  static CMPIStatus associatorNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                                    const CMPIObjectPath* cop, const char* assocClass,
                                    const char* resultClass, const char* role,
                                    const char* resultRole) {
    return traverse("associatorNames", rslt, cop, assocClass, resultClass, role, resultRole,
                    Want::AssociatorNames);
  }

  static CMPIStatus references(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                               const CMPIObjectPath* cop, const char* resultClass, const char* role,
                               const char**) {
    return traverse("references", rslt, cop, resultClass, nullptr, role, nullptr, Want::References);
  }

  static CMPIStatus referenceNames(CMPIAssociationMI*, const CMPIContext*, const CMPIResult* rslt,
                                   const CMPIObjectPath* cop, const char* resultClass,
                                   const char* role) {
    return traverse("referenceNames", rslt, cop, resultClass, nullptr, role, nullptr,
                    Want::ReferenceNames);
  }
};

}  // namespace

extern "C" {

CMPIInstanceMI* QRX_RegisteredProfile_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                 const CMPIContext*, CMPIStatus*) {
  return handwrittenInstanceMI<QRX_RegisteredProfile_Provider>(broker);
}

CMPIInstanceMI* QRX_RegisteredSubProfile_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                    const CMPIContext*,
                                                                    CMPIStatus*) {
  return handwrittenInstanceMI<QRX_RegisteredSubProfile_Provider>(broker);
}

CMPIInstanceMI* QRX_SubProfileRequiresProfile_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                         const CMPIContext*,
                                                                         CMPIStatus*) {
  return handwrittenInstanceMI<Requires>(broker);
}

CMPIAssociationMI* QRX_SubProfileRequiresProfile_Provider_Create_AssociationMI(
    const CMPIBroker* broker, const CMPIContext*, CMPIStatus*) {
  return handwrittenAssociationMI<Requires, RequiresAssociation>(broker);
}

}  // extern "C"
