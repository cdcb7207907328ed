// The chassis stands at the switch's location (none while no location is
// configured).
#include "generated/scimbackend/QRX_PhysicalElementLocation_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_Chassis_Best.h"
#include "generated/scimbackend/QRX_Location_Best.h"

bool QRX_PhysicalElementLocation_Best::enumInstances(QRX_PhysicalElementLocation_Array& out) {
  return listed_instances::pairs(
      QRX_Chassis_Best::singleton, "Chassis", &QRX_PhysicalElementLocation::Element,
      QRX_Location_Best::singleton, "Location", &QRX_PhysicalElementLocation::PhysicalLocation,
      listed_instances::AnyPair(), out);
}
