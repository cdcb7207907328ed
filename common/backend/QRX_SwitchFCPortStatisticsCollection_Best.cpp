// The collection of the switch's port statistics: one instance per switch.
#include "generated/scimbackend/QRX_SwitchFCPortStatisticsCollection_Best.h"

#include <ctime>

#include "common/backend/PortStatistics.h"
#include "common/backend/SwitchRecords.h"

namespace {
const char* const kUnit = "common/backend/QRX_SwitchFCPortStatisticsCollection_Best";
}  // namespace

bool QRX_SwitchFCPortStatisticsCollection_Best::enumInstances(
    QRX_SwitchFCPortStatisticsCollection_Array& out) {
  std::string name;
  if (!readSwitchName(kUnit, name)) return false;
  QRX_SwitchFCPortStatisticsCollection collection;
  collection.InstanceID = statsCollectionInstanceID(name);
  collection.ElementName = "Port statistics of switch " + name;
  collection.TimeLastSampled.setTimeUsec(static_cast<unsigned long long>(std::time(nullptr)) *
                                         1000000ULL);
  out.push_back(collection);
  return true;
}
