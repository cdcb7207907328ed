// Where the switch stands: one instance named by the location configured on
// the switch, none while no location is configured.
#include "generated/scimbackend/QRX_Location_Best.h"

#include "common/backend/SwitchRecords.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_Location_Best";
}  // namespace

bool QRX_Location_Best::enumInstances(QRX_Location_Array& out) {
  switch_info_t swiInfo;
  if (!readSwitchInfo(kUnit, swiInfo)) {
    TRACE_ERROR(kUnit, "Failed to retrieve Location data\n");
    return false;
  }
  if (swiInfo.location.empty()) return true;
  QRX_Location location;
  location.Name = swiInfo.location;
  location.ElementName = swiInfo.location;
  location.PhysicalPosition = swiInfo.location;
  out.push_back(location);
  return true;
}
