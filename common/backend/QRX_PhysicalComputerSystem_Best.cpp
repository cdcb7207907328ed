// The physical system that hosts the switch: one instance, named by the
// product's serial number.
#include "generated/scimbackend/QRX_PhysicalComputerSystem_Best.h"

#include "common/backend/SwitchRecords.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_PhysicalComputerSystem_Best";
}  // namespace

bool QRX_PhysicalComputerSystem_Best::enumInstances(QRX_PhysicalComputerSystem_Array& out) {
  switch_product_info_t product;
  if (!readSwitchProduct(kUnit, product)) {
    TRACE_ERROR(kUnit, "Failed to retrieve PhysicalComputerSystem data\n");
    return false;
  }
  QRX_PhysicalComputerSystem system;
  system.CreationClassName = className;
  system.Name = product.serial_nr;
  system.NameFormat = "Other";
  system.ElementName = product.model;
  system.OtherIdentifyingInfo = {product.serial_nr};
  system.IdentifyingDescriptions = {"Serial Number"};
  system.Dedicated = {0};  // Not Dedicated
  system.OperationalStatus = {2};
  system.EnabledState = 2;
  system.RequestedState = 5;
  system.EnabledDefault = 2;
  out.push_back(system);
  return true;
}
