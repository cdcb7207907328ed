// QRX_ElementConformsToProfile: which managed elements conform to the
// registered profiles. ConformantStandard is the profile (in
// "root/interop"), ManagedElement the element (in "root/qrx").
//
// Associators and associator names go from a profile to elements, and the
// result class decides which, whatever the profile:
//   CIM_ComputerSystem    the QRX_Switch instances
//   CIM_AdminDomain       the QRX_Fabric instances
//   CIM_SoftwareIdentity  the QRX_SoftwareIdentity instances (the switch
//                         firmware) and the agent's QRX_AgentSoftwareIdentity
//   CIM_ObjectManager     the object manager's instances, asked of the
//                         broker in "root/interop"
//   none                  all of the above (the object manager's only if
//                         the broker answers)
//   any other             CMPI_RC_ERR_INVALID_PARAMETER "Invalid resultClass"
// The association's own instances (enumeration, references) pair the
// Fabric profile with each fabric and the Switch profile with each switch.
// Requests from the element end are refused (CMPI_RC_ERR_NOT_SUPPORTED
// "Invalid result class"); the profile must carry an InstanceID of the
// registration table (RegisteredProfile_Providers.h).
#ifndef QRX_PROVIDER_ELEMENTCONFORMSTOPROFILE_PROVIDER_H_
#define QRX_PROVIDER_ELEMENTCONFORMSTOPROFILE_PROVIDER_H_

#include <atomic>

#include "cmpift.h"
#include "provider/HandwrittenProvider.h"

struct QRX_ElementConformsToProfile_Provider {
  static constexpr const char* className = "QRX_ElementConformsToProfile";
  static constexpr const char* providerName = "QRX_ElementConformsToProfile_Provider";
  static constexpr const char* unit = "provider/ElementConformsToProfile_Provider";
  static constexpr const char* refLeft = "ConformantStandard";
  static constexpr const char* refRight = "ManagedElement";
  static inline std::atomic<const CMPIBroker*> broker{nullptr};
  static inline std::atomic<const CMPIBroker*> assocBroker{nullptr};
};

extern "C" {
CMPIInstanceMI* QRX_ElementConformsToProfile_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                        const CMPIContext* ctx,
                                                                        CMPIStatus* rc);
CMPIAssociationMI* QRX_ElementConformsToProfile_Provider_Create_AssociationMI(
    const CMPIBroker* broker, const CMPIContext* ctx, CMPIStatus* rc);
}

#endif  // QRX_PROVIDER_ELEMENTCONFORMSTOPROFILE_PROVIDER_H_
