// The switch's chassis: one instance, tagged with the switch's WWN and
// described by the product record.
#include "generated/scimbackend/QRX_Chassis_Best.h"

#include "common/backend/FabricCache.h"
#include "common/backend/SwitchRecords.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_Chassis_Best";
}  // namespace

bool QRX_Chassis_Best::enumInstances(QRX_Chassis_Array& out) {
  switch_product_info_t product;
  switch_info_t swiInfo;
  if (!readSwitchProduct(kUnit, product) || !readSwitchInfo(kUnit, swiInfo)) {
    TRACE_ERROR(kUnit, "Failed to retrieve Chassis data\n");
    return false;
  }
  QRX_Switch asSwitch;
  FabricCache::convertSwitch(asSwitch, swiInfo);

  QRX_Chassis chassis;
  chassis.CreationClassName = className;
  chassis.Tag = swiInfo.name;
  chassis.Name = product.model;
  chassis.ElementName = product.model;
  chassis.Manufacturer = product.manufacturer;
  chassis.Model = product.model;
  chassis.SKU = product.sku;
  chassis.SerialNumber = product.serial_nr;
  chassis.PartNumber = product.part_nr;
  chassis.Version = product.version;
  chassis.ManufactureDate = product.manufacture_date;
  chassis.OperationalStatus = asSwitch.OperationalStatus;
  chassis.PoweredOn = true;
  chassis.ChassisPackageType = 17;  // Main System Chassis
  out.push_back(chassis);
  return true;
}
