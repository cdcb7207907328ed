// The chassis is the physical component of the product.
#include "generated/scimbackend/QRX_ChassisProduct_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_Chassis_Best.h"
#include "generated/scimbackend/QRX_Product_Best.h"

bool QRX_ChassisProduct_Best::enumInstances(QRX_ChassisProduct_Array& out) {
  return listed_instances::pairs(QRX_Product_Best::singleton, "Product",
                                 &QRX_ChassisProduct::GroupComponent, QRX_Chassis_Best::singleton,
                                 "Chassis", &QRX_ChassisProduct::PartComponent,
                                 listed_instances::AnyPair(), out);
}
