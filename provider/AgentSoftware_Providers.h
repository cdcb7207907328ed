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

struct QRX_AgentProduct_Provider
    : HandwrittenProviderBase<QRX_AgentProduct_Provider, QRX_AgentProduct, QRX_AgentProduct_Key,
                              QRX_AgentProduct_Array, QRX_AgentProduct_KeyArray> {
  static constexpr const char* className = "QRX_AgentProduct";
  static constexpr const char* providerName = "QRX_AgentProduct_Provider";
  static constexpr const char* unit = "provider/AgentSoftware_Providers";

  static bool list(classArrayT& orOut);
};

struct QRX_AgentSoftwareIdentity_Provider
    : HandwrittenProviderBase<QRX_AgentSoftwareIdentity_Provider, QRX_AgentSoftwareIdentity,
                              QRX_AgentSoftwareIdentity_Key, QRX_AgentSoftwareIdentity_Array,
                              QRX_AgentSoftwareIdentity_KeyArray> {
  static constexpr const char* className = "QRX_AgentSoftwareIdentity";
  static constexpr const char* providerName = "QRX_AgentSoftwareIdentity_Provider";
  static constexpr const char* unit = "provider/AgentSoftware_Providers";

  static bool list(classArrayT& orOut);
};

extern "C" {
CMPIInstanceMI* QRX_AgentProduct_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                            const CMPIContext* ctx, CMPIStatus* rc);
CMPIInstanceMI* QRX_AgentSoftwareIdentity_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                     const CMPIContext* ctx,
                                                                     CMPIStatus* rc);
}

#endif  // QRX_PROVIDER_AGENTSOFTWARE_PROVIDERS_H_
