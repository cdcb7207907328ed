// The management agent itself, for the Software profile: one
// QRX_AgentProduct ("QRX SMI Agent", version 120.9.0) and one
// QRX_AgentSoftwareIdentity (version numbers 0.1.2, build 123, so that its
// VersionString reads "0.1(2)"; the two deliberately do not share a
// version). Both are constants built once; nothing is asked of the switch.
#ifndef QRX_PROVIDER_AGENTSOFTWARE_PROVIDERS_H_
#define QRX_PROVIDER_AGENTSOFTWARE_PROVIDERS_H_

#include <atomic>

#include "cmpift.h"
#include "generated/scimclasses/QRX_AgentProduct.h"
#include "generated/scimclasses/QRX_AgentSoftwareIdentity.h"
#include "provider/HandwrittenProvider.h"

// The constant instances.
const QRX_AgentProduct& agentProduct();
const QRX_AgentSoftwareIdentity& agentSoftwareIdentity();

struct QRX_AgentProduct_Provider : ProviderBase<QRX_AgentProduct, QRX_AgentProduct_Key> {
  using classT = QRX_AgentProduct;
  using keyT = QRX_AgentProduct_Key;
  using classArrayT = QRX_AgentProduct_Array;
  using keyArrayT = QRX_AgentProduct_KeyArray;
  using backendT = ListBackend<QRX_AgentProduct_Provider>;
  static constexpr const char* className = "QRX_AgentProduct";
  static constexpr const char* providerName = "QRX_AgentProduct_Provider";
  static constexpr const char* unit = "provider/AgentSoftware_Providers";
  static inline std::atomic<const CMPIBroker*> broker{nullptr};

  static bool list(classArrayT& orOut);
  static CMPIObjectPath* makeObjPath(const CMPIBroker* b, const CMPIObjectPath* ref, const keyT& key) {
    return makeKeyedObjPath(b, ref, className, key);
  }
};

struct QRX_AgentSoftwareIdentity_Provider
    : ProviderBase<QRX_AgentSoftwareIdentity, QRX_AgentSoftwareIdentity_Key> {
  using classT = QRX_AgentSoftwareIdentity;
  using keyT = QRX_AgentSoftwareIdentity_Key;
  using classArrayT = QRX_AgentSoftwareIdentity_Array;
  using keyArrayT = QRX_AgentSoftwareIdentity_KeyArray;
  using backendT = ListBackend<QRX_AgentSoftwareIdentity_Provider>;
  static constexpr const char* className = "QRX_AgentSoftwareIdentity";
  static constexpr const char* providerName = "QRX_AgentSoftwareIdentity_Provider";
  static constexpr const char* unit = "provider/AgentSoftware_Providers";
  static inline std::atomic<const CMPIBroker*> broker{nullptr};

  static bool list(classArrayT& orOut);
  static CMPIObjectPath* makeObjPath(const CMPIBroker* b, const CMPIObjectPath* ref, const keyT& key) {
    return makeKeyedObjPath(b, ref, className, key);
  }
};

extern "C" {
CMPIInstanceMI* QRX_AgentProduct_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                            const CMPIContext* ctx,
                                                            CMPIStatus* rc);
CMPIInstanceMI* QRX_AgentSoftwareIdentity_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                     const CMPIContext* ctx,
                                                                     CMPIStatus* rc);
}

#endif  // QRX_PROVIDER_AGENTSOFTWARE_PROVIDERS_H_
