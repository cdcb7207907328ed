#include "provider/AgentSoftware_Providers.h"

#include <cstdio>

namespace {

QRX_AgentProduct makeProduct() {
  QRX_AgentProduct product;
  product.Name = "QRX:QRX_SMIAgent";
  product.IdentifyingNumber = "QRX SMI Agent 120.9.0";
  product.Vendor = "QRX";
  product.Version = "120.9.0";
  product.ElementName = "QRX SMI Agent";
  return product;
}

QRX_AgentSoftwareIdentity makeSoftware() {
  QRX_AgentSoftwareIdentity software;
  software.InstanceID = "QRX:QRX_SMIAgentSoftware";
  software.Name = "AgentSoftwareIdentity";
  software.MajorVersion = 0;
  software.MinorVersion = 1;
  software.RevisionNumber = 2;
  software.BuildNumber = 123;
  software.Manufacturer = "QRX";
  software.Classifications = {5};  // software bundle of the management agent
  software.SerialNumber = "serial123456";
  // ReleaseDate and InstallDate keep their default value.
  char version[32];
  std::snprintf(version, sizeof version, "%d.%d(%d)", software.MajorVersion, software.MinorVersion,
                software.RevisionNumber);
  software.VersionString = version;
  return software;
}

}  // namespace

const QRX_AgentProduct& agentProduct() {
  static const QRX_AgentProduct product = makeProduct();
  return product;
}

const QRX_AgentSoftwareIdentity& agentSoftwareIdentity() {
  static const QRX_AgentSoftwareIdentity software = makeSoftware();
  return software;
}

bool QRX_AgentProduct_Provider::list(classArrayT& orOut) {
  orOut.push_back(agentProduct());
  return true;
}

bool QRX_AgentSoftwareIdentity_Provider::list(classArrayT& orOut) {
  orOut.push_back(agentSoftwareIdentity());
  return true;
}

extern "C" {

CMPIInstanceMI* QRX_AgentProduct_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                            const CMPIContext*, CMPIStatus*) {
  return handwrittenInstanceMI<QRX_AgentProduct_Provider>(broker);
}

CMPIInstanceMI* QRX_AgentSoftwareIdentity_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                                     const CMPIContext*,
                                                                     CMPIStatus*) {
  return handwrittenInstanceMI<QRX_AgentSoftwareIdentity_Provider>(broker);
}

}  // extern "C"
