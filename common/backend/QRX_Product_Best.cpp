// The switch as a product: one instance, from the product record.
#include "generated/scimbackend/QRX_Product_Best.h"

#include "common/backend/SwitchRecords.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_Product_Best";
}  // namespace

bool QRX_Product_Best::enumInstances(QRX_Product_Array& out) {
  switch_product_info_t product;
  switch_info_t swiInfo;
  if (!readSwitchProduct(kUnit, product) || !readSwitchInfo(kUnit, swiInfo)) {
    TRACE_ERROR(kUnit, "Failed to retrieve Product data\n");
    return false;
  }
  QRX_Product object;
  object.Vendor = product.manufacturer;
  object.Name = product.model;
  object.IdentifyingNumber = product.serial_nr;
  object.Version = product.version;
  object.SKUNumber = product.sku;
  object.ElementName = product.model;
  object.Description = "Fibre Channel switch " + swiInfo.name;
  out.push_back(object);
  return true;
}
