// The switch's Fibre Channel ports as clients see them: one instance per
// entry of the fabric cache's port name mapping (AwwpnMap.h), named by its
// artificial port name.
#include "generated/scimbackend/QRX_SwitchFCPort_Best.h"

#include "common/backend/BackendStart.h"
#include "common/base/trace.h"

namespace {

const char* const kUnit = "common/backend/QRX_SwitchFCPort_Best";

// The switch record, which must report ports: a switch without any is an
// answer the daemon should not give, refused here rather than asserted.
bool readSwitch(FabricCache& irCache, switch_info_t& swiInfo) {
  if (irCache.get_switch_info(swiInfo) != 0) {
    TRACE_ERROR(kUnit, "Failed to get switch info\n");
    return false;
  }
  if (swiInfo.nr_fc_ports == 0) {
    TRACE_ERROR(kUnit, "the switch reports no Fibre Channel ports (nr_fc_ports 0)\n");
    return false;
  }
  return true;
}

}  // namespace

bool QRX_SwitchFCPort_Best::enumInstanceNames(QRX_SwitchFCPort_KeyArray& out) {
  FabricCache* cache = get_fabric_cache();
  switch_info_t swiInfo;
  if (cache == nullptr || !readSwitch(*cache, swiInfo)) return false;
  std::vector<std::string> names;
  if (cache->get_artificial_switch_fc_port_names(names) != 0) {
    TRACE_ERROR(kUnit, "Failed to get switch fc port names\n");
    return false;
  }
  for (const std::string& name : names) {
    QRX_SwitchFCPort_Key key;
    key.SystemCreationClassName = QRX_Switch::ivCIMClassName;
    key.SystemName = swiInfo.name;
    key.CreationClassName = className;
    key.DeviceID = name;
    out.push_back(key);
  }
  return true;
}

bool QRX_SwitchFCPort_Best::enumInstances(QRX_SwitchFCPort_Array& out) {
  FabricCache* cache = get_fabric_cache();
  switch_info_t swiInfo;
  if (cache == nullptr || !readSwitch(*cache, swiInfo)) return false;
  switch_fc_port_info_tA ports;
  if (cache->get_artificial_switch_fc_port_info(ports) != 0) {
    TRACE_ERROR(kUnit, "Failed to get switch fc port info\n");
    return false;
  }
  out.reserve(out.size() + ports.size());
  for (const switch_fc_port_info_t& port : ports) {
    out.emplace_back();
    FabricCache::convertSwitchFCPort(out.back(), port, swiInfo.name);
  }
  return true;
}

bool QRX_SwitchFCPort_Best::getInstance(const QRX_SwitchFCPort_Key& key, QRX_SwitchFCPort& out) {
  if (key.CreationClassName != className || key.SystemCreationClassName != QRX_Switch::ivCIMClassName) {
    TRACE_ERROR(kUnit, "CreationClass or SystemCreationClass missmatch!\n");
    return false;
  }
  QRX_SwitchFCPort_Array all;
  if (!enumInstances(all)) {
    TRACE_ERROR(kUnit, "Enum Instance Failed!\n");
    return false;
  }
  for (const QRX_SwitchFCPort& port : all) {
    if (QRX_SwitchFCPort_Key(port) == key) {
      out = port;
      return true;
    }
  }
  TRACE_ERROR(kUnit, "No Object found! deviceID: %s system: %s\n", key.DeviceID.c_str(),
              key.SystemName.c_str());
  return false;
}
