// The switch is a member of its fabric.
#include "generated/scimbackend/QRX_SwitchInFabric_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_Fabric_Best.h"
#include "generated/scimbackend/QRX_Switch_Best.h"

bool QRX_SwitchInFabric_Best::enumInstances(QRX_SwitchInFabric_Array& out) {
  return listed_instances::pairs(QRX_Fabric_Best::singleton, "Fabric",
                                 &QRX_SwitchInFabric::GroupComponent, QRX_Switch_Best::singleton,
                                 "Switch", &QRX_SwitchInFabric::PartComponent,
                                 listed_instances::AnyPair(), out);
}
