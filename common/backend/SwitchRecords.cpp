#include "common/backend/SwitchRecords.h"

#include "common/backend/BackendStart.h"
#include "common/base/trace.h"

bool readSwitchName(const char* ipUnit, std::string& orName) {
  FabricCache* cache = get_fabric_cache();
  if (cache == nullptr) return false;
  const int rc = cache->get_switch_name(orName);
  if (rc != 0) {
    TRACE_ERROR(ipUnit, "rs_vk_fc_get_switch_name() failed %d\n", rc);
    return false;
  }
  return true;
}

bool readSwitchInfo(const char* ipUnit, switch_info_t& orSwitch) {
  FabricCache* cache = get_fabric_cache();
  if (cache == nullptr) return false;
  if (cache->get_switch_info(orSwitch) != 0) {
    TRACE_ERROR(ipUnit, "rs_vk_fc_get_switch_info() failed\n");
    return false;
  }
  return true;
}

bool readSwitchProduct(const char* ipUnit, switch_product_info_t& orProduct) {
  FabricCache* cache = get_fabric_cache();
  if (cache == nullptr) return false;
  if (cache->get_switch_product_info(orProduct) != 0) {
    TRACE_ERROR(ipUnit, "rs_vk_fc_get_switch_product_info() failed\n");
    return false;
  }
  return true;
}

bool readFabric(const char* ipUnit, fabric_info_t& orFabric) {
  FabricCache* cache = get_fabric_cache();
  if (cache == nullptr) return false;
  if (cache->get_fabric_info(orFabric) != 0) {
    TRACE_ERROR(ipUnit, "rs_vk_fc_get_fabric_info() failed\n");
    return false;
  }
  return true;
}
