// The profiles and subprofiles the agent implements, as the interop
// namespace advertises them: QRX_RegisteredProfile (Fabric, Switch,
// Indication, Server) and QRX_RegisteredSubProfile (Enhanced Zoning and
// Enhanced Zoning Control, Zone Control, Access Points, Software,
// Location), all SNIA (11), version 1.2.0, not advertised (2); and
// QRX_SubProfileRequiresProfile, by which every subprofile requires the
// Fabric profile. The instances are constant; nothing is asked of the
// switch. References name the namespace "root/interop".
#ifndef QRX_PROVIDER_REGISTEREDPROFILE_PROVIDERS_H_
#define QRX_PROVIDER_REGISTEREDPROFILE_PROVIDERS_H_

#include <atomic>
#include <string>

#include "cmpift.h"
#include "generated/scimclasses/QRX_RegisteredProfile.h"
#include "generated/scimclasses/QRX_RegisteredSubProfile.h"
#include "generated/scimclasses/QRX_SubProfileRequiresProfile.h"
#include "provider/HandwrittenProvider.h"

// The namespace of the registration classes.
extern const char* const INTEROP_NAMESPACE;  // "root/interop"

// The registered profiles and subprofiles, in table order.
const QRX_RegisteredProfile_Array& registeredProfiles();
const QRX_RegisteredSubProfile_Array& registeredSubProfiles();

// The InstanceID of the profile every subprofile requires ("QRX:Fabric.1.2.0").
const std::string& requiredProfileID();

// Reads the InstanceID key of a profile or subprofile path and checks that
// the table has it. False with an error line and `opRc`
// CMPI_RC_ERR_INVALID_PARAMETER: "Missing CIM_RegisteredProfile.InstanceID"
// when the key is not there, "Illegal value CIM_RegisteredProfile.InstanceID"
// when no row has it. `ipUnit`, `ipOwner`, `ipOperation` name the caller
// in the error line.
bool readProfileID(const CMPIBroker* ipBroker, const CMPIObjectPath* ipPath, const char* ipUnit,
                   const char* ipOwner, const char* ipOperation, std::string& orID,
                   CMPIStatus* opRc);

// The path of the profile or subprofile `irID` of class `ipClassName`,
// in the interop namespace.
CMPIObjectPath* profilePath(const CMPIBroker* ipBroker, const char* ipClassName,
                            const std::string& irID);

struct QRX_RegisteredProfile_Provider
    : HandwrittenProviderBase<QRX_RegisteredProfile_Provider, QRX_RegisteredProfile,
                              QRX_RegisteredProfile_Key, QRX_RegisteredProfile_Array,
                              QRX_RegisteredProfile_KeyArray> {
  static constexpr const char* className = "QRX_RegisteredProfile";
  static constexpr const char* providerName = "QRX_RegisteredProfile_Provider";
  static constexpr const char* unit = "provider/RegisteredProfile_Providers";

  static bool list(classArrayT& orOut);
};

struct QRX_RegisteredSubProfile_Provider
    : HandwrittenProviderBase<QRX_RegisteredSubProfile_Provider, QRX_RegisteredSubProfile,
                              QRX_RegisteredSubProfile_Key, QRX_RegisteredSubProfile_Array,
                              QRX_RegisteredSubProfile_KeyArray> {
  static constexpr const char* className = "QRX_RegisteredSubProfile";
  static constexpr const char* providerName = "QRX_RegisteredSubProfile_Provider";
  static constexpr const char* unit = "provider/RegisteredProfile_Providers";

  static bool list(classArrayT& orOut);
};

// Antecedent: the profile; Dependent: the subprofile. Associators go from a
// profile to its subprofiles and from a subprofile to the profile it
// requires; references from either end.
struct QRX_SubProfileRequiresProfile_Provider
    : HandwrittenProviderBase<QRX_SubProfileRequiresProfile_Provider, QRX_SubProfileRequiresProfile,
                              QRX_SubProfileRequiresProfile_Key,
                              QRX_SubProfileRequiresProfile_Array,
                              QRX_SubProfileRequiresProfile_KeyArray> {
  static constexpr const char* className = "QRX_SubProfileRequiresProfile";
  static constexpr const char* providerName = "QRX_SubProfileRequiresProfile_Provider";
  static constexpr const char* unit = "provider/RegisteredProfile_Providers";
  static constexpr const char* refLeft = "Antecedent";
  static constexpr const char* refRight = "Dependent";
  static inline std::atomic<const CMPIBroker*> assocBroker{nullptr};

  // One instance per subprofile, each requiring the Fabric profile.
  static bool list(classArrayT& orOut);

  // The model conversions, with the references in the interop namespace.
  static void getKeyFromObjPath(const CMPIObjectPath* ipOp, keyT& orKey, CMPIStatus* opRc);
  static void fillProperties(const CMPIBroker* ipBroker, CMPIInstance* ipInst, const classT& irObj,
                             CMPIStatus* opRc);
  static CMPIObjectPath* makeObjPath(const CMPIBroker* ipBroker, const CMPIObjectPath* ipRef,
                                     const keyT& irKey);
};

extern "C" {
CMPIInstanceMI* QRX_RegisteredProfile_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                 const CMPIContext* ctx,
                                                                 CMPIStatus* rc);
CMPIInstanceMI* QRX_RegisteredSubProfile_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                    const CMPIContext* ctx,
                                                                    CMPIStatus* rc);
CMPIInstanceMI* QRX_SubProfileRequiresProfile_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                         const CMPIContext* ctx,
                                                                         CMPIStatus* rc);
CMPIAssociationMI* QRX_SubProfileRequiresProfile_Provider_Create_AssociationMI(
    const CMPIBroker* broker, const CMPIContext* ctx, CMPIStatus* rc);
}

#endif  // QRX_PROVIDER_REGISTEREDPROFILE_PROVIDERS_H_
