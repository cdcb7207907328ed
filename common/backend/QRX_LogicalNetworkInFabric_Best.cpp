// The fabric hosts its logical network.
#include "generated/scimbackend/QRX_LogicalNetworkInFabric_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_Fabric_Best.h"
#include "generated/scimbackend/QRX_LogicalNetwork_Best.h"

bool QRX_LogicalNetworkInFabric_Best::enumInstances(QRX_LogicalNetworkInFabric_Array& out) {
  return listed_instances::pairs(
      QRX_Fabric_Best::singleton, "Fabric", &QRX_LogicalNetworkInFabric::Antecedent,
      QRX_LogicalNetwork_Best::singleton, "LogicalNetwork", &QRX_LogicalNetworkInFabric::Dependent,
      listed_instances::AnyPair(), out);
}
