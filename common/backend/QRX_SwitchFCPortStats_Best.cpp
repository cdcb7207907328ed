// The statistics of the switch's ports: one instance per port clients see,
// from the daemon's counters of the physical port behind it.
#include "generated/scimbackend/QRX_SwitchFCPortStats_Best.h"

#include <map>

#include "common/backend/BackendStart.h"
#include "common/backend/PortStatistics.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_SwitchFCPortStats_Best";
}  // namespace

bool QRX_SwitchFCPortStats_Best::enumInstances(QRX_SwitchFCPortStats_Array& out) {
  FabricCache* cache = get_fabric_cache();
  if (cache == nullptr) return false;
  switch_fc_port_info_tA ports;
  if (cache->get_artificial_switch_fc_port_info(ports) != 0) {
    TRACE_ERROR(kUnit, "Failed to get switch fc port info\n");
    return false;
  }
  switch_fc_port_stat_tA counters;
  const int rc = cache->get_switch_fc_port_stat(counters);
  if (rc != 0) {
    TRACE_ERROR(kUnit, "rs_vk_fc_get_switch_fc_port_stat() failed %d\n", rc);
    return false;
  }
  std::map<int, const switch_fc_port_stat_t*> byIndex;
  for (const switch_fc_port_stat_t& entry : counters) byIndex.emplace(entry.port_index, &entry);
  // In the order of the ports; a port the daemon has no counters for has
  // no statistics.
  for (const switch_fc_port_info_t& port : ports) {
    auto found = byIndex.find(port.port_index);
    if (found == byIndex.end()) continue;
    QRX_SwitchFCPortStats stats;
    convertPortStats(stats, *found->second, port.name);
    out.push_back(stats);
  }
  return true;
}
