// The zoning capabilities of each zone service, as the switch reports
// them.
#include "generated/scimbackend/QRX_ZoneCapabilities_Best.h"

#include "common/backend/LocalZoneDb.h"
#include "common/backend/ZoningObjects.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_ZoneCapabilities_Best";
}  // namespace

bool QRX_ZoneCapabilities_Best::enumInstances(QRX_ZoneCapabilities_Array& out) {
  std::vector<std::string> services;
  if (!zoning::serviceNames(kUnit, services)) return false;
  for (const std::string& service : services) {
    QRX_ZoneCapabilities_Key key;
    if (!zoning::makeId(kUnit, ZONE_ENTITY_CAPABILITIES, service, "", 0, false, key.InstanceID)) {
      continue;
    }
    QRX_ZoneCapabilities capabilities;
    if (!getInstance(key, capabilities)) return false;
    out.push_back(capabilities);
  }
  return true;
}

bool QRX_ZoneCapabilities_Best::getInstance(const QRX_ZoneCapabilities_Key& key,
                                            QRX_ZoneCapabilities& out) {
  ZoneEntityInstanceID id(ZONE_ENTITY_CAPABILITIES, 0);
  if (!zoning::readId(key.InstanceID, ZONE_ENTITY_CAPABILITIES, id) || id.isActive() ||
      !id.getEntityName().empty()) {
    TRACE_ERROR(kUnit, "Error, unable to use instance ID %s\n", key.InstanceID.c_str());
    return false;
  }
  const std::string service = id.getSwitchWwn();
  zone_capabilities_data_t data;
  const int rc = ZoneDb::getInstance().get_zone_capabilities_data(service, data);
  if (rc != 0) {
    TRACE_ERROR(kUnit, "error, unable to get capabilities for zone service %s, rc %d\n",
                service.c_str(), rc);
    return false;
  }
  out = QRX_ZoneCapabilities();
  out.InstanceID = key.InstanceID;
  out.ElementName = "Zone Capabilities";
  out.Caption = "ZoneCapabilities:" + service;
  out.Description = "Zoning capabilities of switch " + service;
  out.ZoneNameMaxLen = data.ZoneNameMaxLen;
  out.ZoneNameFormat = data.ZoneNameFormat;
  out.MaxNumZoneSets = data.MaxNumZoneSets;
  out.MaxNumZone = data.MaxNumZone;
  out.MaxNumZoneMembers = data.MaxNumZoneMembers;
  out.MaxNumZonesPerZoneSet = data.MaxNumZonesPerZoneSet;
  out.MaxNumZoneAliases = data.MaxNumZoneAliases;
  out.SupportedConnectivityMemberTypes = {2, 3, 6};
  return true;
}

// The capabilities are the switch's: clients do not create, change or
// delete them.
bool QRX_ZoneCapabilities_Best::createInstance(const QRX_ZoneCapabilities&,
                                               QRX_ZoneCapabilities_Key&) {
  TRACE_ERROR(kUnit, "Not Supported\n");
  return false;
}

bool QRX_ZoneCapabilities_Best::modifyInstance(const QRX_ZoneCapabilities_Key&,
                                               const QRX_ZoneCapabilities&) {
  TRACE_ERROR(kUnit, "Not Supported\n");
  return false;
}

bool QRX_ZoneCapabilities_Best::deleteInstance(const QRX_ZoneCapabilities_Key&) {
  TRACE_ERROR(kUnit, "Not Supported\n");
  return false;
}

cuint32 QRX_ZoneCapabilities_Best::CreateGoalSettings(const QRX_ZoneCapabilities_Key&, cstring_A,
                                                      cstring_A&) {
  TRACE_ERROR(kUnit, "Not Supported\n");
  return 1;
}
