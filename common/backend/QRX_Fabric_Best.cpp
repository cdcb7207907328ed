// The fabric the switch belongs to: one instance, from the fabric cache.
#include "generated/scimbackend/QRX_Fabric_Best.h"

#include "common/backend/BackendStart.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_Fabric_Best";
}  // namespace

bool QRX_Fabric_Best::enumInstances(QRX_Fabric_Array& out) {
  FabricCache* cache = get_fabric_cache();
  if (cache == nullptr) return false;
  fabric_info_t fabric;
  if (cache->get_fabric_info(fabric) != 0) {
    TRACE_ERROR(kUnit, "rs_vk_fc_get_fabric_info() failed\n");
    return false;
  }
  QRX_Fabric object;
  FabricCache::convertFabric(object, fabric);
  TRACE_DEBUG("Fabric name=%s elementName=%s\n", object.Name.c_str(), object.ElementName.c_str());
  out.push_back(object);
  return true;
}

bool QRX_Fabric_Best::enumInstanceNames(QRX_Fabric_KeyArray& out) {
  QRX_Fabric_Array all;
  if (!enumInstances(all)) return false;
  for (const QRX_Fabric& fabric : all) {
    TRACE_DEBUG("Fabric name=%s\n", fabric.Name.c_str());
    out.push_back(QRX_Fabric_Key(fabric));
  }
  return true;
}

bool QRX_Fabric_Best::getInstance(const QRX_Fabric_Key& key, QRX_Fabric& out) {
  QRX_Fabric_Array all;
  if (!enumInstances(all)) return false;
  for (const QRX_Fabric& fabric : all) {
    if (QRX_Fabric_Key(fabric) == key) {
      out = fabric;
      return true;
    }
  }
  TRACE_ERROR(kUnit, "Key missmatch %s\n", key.Name.c_str());
  return false;
}
