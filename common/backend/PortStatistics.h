// The switch ports' statistics as CIM objects: one QRX_SwitchFCPortStats per
// port clients see, gathered in one collection per switch.
#ifndef QRX_COMMON_BACKEND_PORTSTATISTICS_H_
#define QRX_COMMON_BACKEND_PORTSTATISTICS_H_

#include <string>

#include "generated/scimclasses/QRX_SwitchFCPortStats.h"
#include "generated/smis_ipc/smis_ipc.h"

// The InstanceID of the statistics of the port named `irPortName` (its
// DeviceID), and of the collection of the switch named `irSwitchName`.
std::string portStatsInstanceID(const std::string& irPortName);
std::string statsCollectionInstanceID(const std::string& irSwitchName);

// The statistics object of the port named `irPortName`, from the daemon's
// counters of the physical port behind it.
void convertPortStats(QRX_SwitchFCPortStats& orStats, const switch_fc_port_stat_t& irCounters,
                      const std::string& irPortName);

#endif  // QRX_COMMON_BACKEND_PORTSTATISTICS_H_
