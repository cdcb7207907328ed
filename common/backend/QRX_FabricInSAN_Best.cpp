// The switch's fabric is the one fabric of its SAN.
#include "generated/scimbackend/QRX_FabricInSAN_Best.h"

#include <string>
#include <utility>

#include "common/backend/ListedInstances.h"
#include "common/base/trace.h"
#include "generated/scimbackend/QRX_Fabric_Best.h"
#include "generated/scimbackend/QRX_SAN_Best.h"

bool QRX_FabricInSAN_Best::enumInstances(QRX_FabricInSAN_Array& out) {
  return listed_instances::pairs(QRX_SAN_Best::singleton, "SAN", &QRX_FabricInSAN::GroupComponent,
                                 QRX_Fabric_Best::singleton, "Fabric",
                                 &QRX_FabricInSAN::PartComponent, listed_instances::AnyPair(), out);
}

bool QRX_FabricInSAN_Best::getInstance(const QRX_FabricInSAN_Key& key, QRX_FabricInSAN& out) {
  const char* const unit = "common/backend/QRX_FabricInSAN_Best";
  const std::pair<const std::string*, const char*> ends[] = {
      {&key.GroupComponent.CreationClassName, QRX_SAN_Best::className},
      {&key.PartComponent.CreationClassName, QRX_Fabric_Best::className}};
  for (const auto& end : ends) {
    if (*end.first != end.second) {
      TRACE_ERROR(unit, "Key Missmatch! keyname:%s className:%s || keyName: %s singletonName:%s\n",
                  "CreationClassName", end.first->c_str(), "CreationClassName", end.second);
      return false;
    }
  }
  QRX_FabricInSAN_Array all;
  if (!enumInstances(all) || all.empty()) {
    TRACE_ERROR(unit, "rs_vk_fc_get_fabric_name() failed\n");
    return false;
  }
  if (key.GroupComponent != all.front().GroupComponent) {
    TRACE_ERROR(unit, "Key missmatch!\n");
    return false;
  }
  if (key.PartComponent != all.front().PartComponent) {
    TRACE_ERROR(unit, "Key WWN missmatch!\n");
    return false;
  }
  out = all.front();
  return true;
}
