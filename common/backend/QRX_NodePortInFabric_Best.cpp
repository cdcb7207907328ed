// The node ports logged in to the fabric are devices of the fabric.
#include "generated/scimbackend/QRX_NodePortInFabric_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_Fabric_Best.h"
#include "generated/scimbackend/QRX_NodeFCPort_Best.h"

bool QRX_NodePortInFabric_Best::enumInstances(QRX_NodePortInFabric_Array& out) {
  return listed_instances::pairs(
      QRX_Fabric_Best::singleton, "Fabric", &QRX_NodePortInFabric::GroupComponent,
      QRX_NodeFCPort_Best::singleton, "NodeFCPort", &QRX_NodePortInFabric::PartComponent,
      listed_instances::OnLeftSystem(), out);
}
