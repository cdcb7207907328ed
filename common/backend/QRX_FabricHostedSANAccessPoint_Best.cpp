// The fabric hosts the protocol endpoints of the node ports.
#include "generated/scimbackend/QRX_FabricHostedSANAccessPoint_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_Fabric_Best.h"
#include "generated/scimbackend/QRX_SANProtocolEndpoint_Best.h"

bool QRX_FabricHostedSANAccessPoint_Best::enumInstances(QRX_FabricHostedSANAccessPoint_Array& out) {
  return listed_instances::pairs(
      QRX_Fabric_Best::singleton, "Fabric", &QRX_FabricHostedSANAccessPoint::Antecedent,
      QRX_SANProtocolEndpoint_Best::singleton, "SanProtocolEndpoint",
      &QRX_FabricHostedSANAccessPoint::Dependent, listed_instances::OnLeftSystem(), out);
}
