// The fabric hosts the nodes logged in to it.
#include "generated/scimbackend/QRX_NodeInFabric_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_Fabric_Best.h"
#include "generated/scimbackend/QRX_Node_Best.h"

bool QRX_NodeInFabric_Best::enumInstances(QRX_NodeInFabric_Array& out) {
  return listed_instances::pairs(QRX_Fabric_Best::singleton, "Fabric",
                                 &QRX_NodeInFabric::Antecedent, QRX_Node_Best::singleton, "Node",
                                 &QRX_NodeInFabric::Dependent, listed_instances::AnyPair(), out);
}
