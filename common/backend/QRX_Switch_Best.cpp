// The switch the library runs on: one instance, read through the fabric
// cache (which asks the daemon for the fresh record).
#include "generated/scimbackend/QRX_Switch_Best.h"

#include "common/backend/BackendStart.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_Switch_Best";
}  // namespace

bool QRX_Switch_Best::enumInstanceNames(QRX_Switch_KeyArray& out) {
  FabricCache* cache = get_fabric_cache();
  if (cache == nullptr) return false;
  std::string name;
  const int rc = cache->get_switch_name(name);
  if (rc != 0) {
    TRACE_ERROR(kUnit, "rs_vk_fc_get_switch_name() failed %d\n", rc);
    return false;
  }
  QRX_Switch_Key key;
  key.CreationClassName = className;
  key.Name = name;
  out.push_back(key);
  return true;
}

bool QRX_Switch_Best::enumInstances(QRX_Switch_Array& out) {
  FabricCache* cache = get_fabric_cache();
  if (cache == nullptr) return false;
  switch_info_t info;
  if (cache->get_switch_info(info) != 0) {
    TRACE_ERROR(kUnit, "rs_vk_fc_get_switch_info() failed\n");
    return false;
  }
  QRX_Switch object;
  FabricCache::convertSwitch(object, info);
  out.push_back(object);
  return true;
}

bool QRX_Switch_Best::getInstance(const QRX_Switch_Key& key, QRX_Switch& out) {
  if (key.CreationClassName != className) {
    TRACE_ERROR(kUnit, "Creation Class missmatch %s\n", key.CreationClassName.c_str());
    return false;
  }
  QRX_Switch_Array all;
  if (!enumInstances(all) || all.empty()) {
    TRACE_ERROR(kUnit, "Enum Instance failed!\n");
    return false;
  }
  // There is one switch: only the first element is looked at.
  if (key.Name != all.front().Name) {
    TRACE_ERROR(kUnit, "Key missmatch %s vs. %s\n", key.Name.c_str(), all.front().Name.c_str());
    return false;
  }
  out = all.front();
  return true;
}
