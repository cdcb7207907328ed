// QRX_InstalledSoftwareOnSystem: the agent's software identity is
// installed on each switch. InstalledSoftware (the left end) is the
// QRX_AgentSoftwareIdentity, System (the right end) a QRX_Switch, both in
// the namespace "root/qrx"; the switches come from the switch backend.
// Associators, associator names, references and reference names answer
// from either end through the generic association glue (ProviderGlue.h).
#ifndef QRX_PROVIDER_INSTALLEDSOFTWAREONSYSTEM_PROVIDER_H_
#define QRX_PROVIDER_INSTALLEDSOFTWAREONSYSTEM_PROVIDER_H_

#include <atomic>

#include "cmpift.h"
#include "generated/scimclasses/QRX_InstalledSoftwareOnSystem.h"
#include "generated/scimproviders/QRX_Switch_Provider.h"
#include "provider/AgentSoftware_Providers.h"
#include "provider/HandwrittenProvider.h"

struct InstalledSoftwareOnSystemBackend;

struct QRX_InstalledSoftwareOnSystem_Provider
    : HandwrittenProviderBase<QRX_InstalledSoftwareOnSystem_Provider, QRX_InstalledSoftwareOnSystem,
                              QRX_InstalledSoftwareOnSystem_Key,
                              QRX_InstalledSoftwareOnSystem_Array,
                              QRX_InstalledSoftwareOnSystem_KeyArray> {
  using backendT = InstalledSoftwareOnSystemBackend;
  static constexpr const char* className = "QRX_InstalledSoftwareOnSystem";
  static constexpr const char* providerName = "QRX_InstalledSoftwareOnSystem_Provider";
  static constexpr const char* unit = "provider/InstalledSoftwareOnSystem_Provider";
  static constexpr const char* refLeft = "InstalledSoftware";
  static constexpr const char* refRight = "System";
  using leftProviderT = QRX_AgentSoftwareIdentity_Provider;
  using rightProviderT = QRX_Switch_Provider;
  static inline std::atomic<const CMPIBroker*> assocBroker{nullptr};

  // The software identity paired with each switch; false when the
  // switches cannot be read.
  static bool list(classArrayT& orOut);
};

// The association's backend: its instances pair the software identity
// with every switch; the per-role operations answer from that list.
struct InstalledSoftwareOnSystemBackend : ListBackend<QRX_InstalledSoftwareOnSystem_Provider> {
  static InstalledSoftwareOnSystemBackend singleton;

  // The switches (System) for the software identity, and the other way.
  bool associatorsForRefRight(const QRX_AgentSoftwareIdentity_Key& irSource,
                              QRX_Switch_Array& orOut);
  bool associatorNamesForRefRight(const QRX_AgentSoftwareIdentity_Key& irSource,
                                  QRX_Switch_KeyArray& orOut);
  bool referencesForRefRight(const QRX_AgentSoftwareIdentity_Key& irSource,
                             QRX_InstalledSoftwareOnSystem_Array& orOut);
  bool associatorsForRefLeft(const QRX_Switch_Key& irSource,
                             QRX_AgentSoftwareIdentity_Array& orOut);
  bool associatorNamesForRefLeft(const QRX_Switch_Key& irSource,
                                 QRX_AgentSoftwareIdentity_KeyArray& orOut);
  bool referencesForRefLeft(const QRX_Switch_Key& irSource,
                            QRX_InstalledSoftwareOnSystem_Array& orOut);
};

extern "C" {
CMPIInstanceMI* QRX_InstalledSoftwareOnSystem_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                         const CMPIContext* ctx,
                                                                         CMPIStatus* rc);
CMPIAssociationMI* QRX_InstalledSoftwareOnSystem_Provider_Create_AssociationMI(
    const CMPIBroker* broker, const CMPIContext* ctx, CMPIStatus* rc);
}

#endif  // QRX_PROVIDER_INSTALLEDSOFTWAREONSYSTEM_PROVIDER_H_
