// Each switch port and its statistics.
#include "generated/scimbackend/QRX_PortStatsForSwitchFCPort_Best.h"

#include <set>

#include "common/backend/PortStatistics.h"
#include "common/base/trace.h"
#include "generated/scimbackend/QRX_SwitchFCPortStats_Best.h"
#include "generated/scimbackend/QRX_SwitchFCPort_Best.h"

namespace {
const char* const kUnit = "common/backend/QRX_PortStatsForSwitchFCPort_Best";
}  // namespace

bool QRX_PortStatsForSwitchFCPort_Best::enumInstances(QRX_PortStatsForSwitchFCPort_Array& out) {
  QRX_SwitchFCPort_KeyArray ports;
  QRX_SwitchFCPortStats_KeyArray stats;
  if (!QRX_SwitchFCPort_Best::singleton.enumInstanceNames(ports) ||
      !QRX_SwitchFCPortStats_Best::singleton.enumInstanceNames(stats)) {
    TRACE_ERROR(kUnit, "Failed to retrieve port or statistics key data\n");
    return false;
  }
  std::set<std::string> withStats;
  for (const QRX_SwitchFCPortStats_Key& key : stats) withStats.insert(key.InstanceID);
  for (const QRX_SwitchFCPort_Key& port : ports) {
    QRX_PortStatsForSwitchFCPort link;
    link.Stats.InstanceID = portStatsInstanceID(port.DeviceID);
    if (withStats.count(link.Stats.InstanceID) == 0) continue;
    link.ManagedElement = port;
    out.push_back(link);
  }
  return true;
}
