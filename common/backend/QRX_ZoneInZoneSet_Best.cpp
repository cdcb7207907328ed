// A zone set and each of its zones (inside a session, as edited there);
// the active zone set's copy with the active copies of its zones. Deleting
// the association removes the zone from the zone set.
#include "generated/scimbackend/QRX_ZoneInZoneSet_Best.h"

#include <algorithm>

#include "common/backend/LocalZoneDb.h"
#include "common/backend/ZoningObjects.h"
#include "common/base/trace.h"

namespace {

const char* const kUnit = "common/backend/QRX_ZoneInZoneSet_Best";

void addPair(const std::string& irService, const std::string& irZoneSet, const std::string& irZone,
             bool ipActive, QRX_ZoneInZoneSet_Array& orOut) {
  QRX_ZoneInZoneSet pair;
  if (!zoning::makeId(kUnit, ZONE_ENTITY_ZONESET, irService, irZoneSet, 0, ipActive,
                      pair.Collection.InstanceID) ||
      !zoning::makeId(kUnit, ZONE_ENTITY_ZONE, irService, irZone, 0, ipActive,
                      pair.Member.InstanceID)) {
    return;
  }
  orOut.push_back(pair);
}

}  // namespace

bool QRX_ZoneInZoneSet_Best::enumInstances(QRX_ZoneInZoneSet_Array& out) {
  std::vector<std::string> services;
  if (!zoning::serviceNames(kUnit, services)) return false;
  for (const std::string& service : services) {
    string_tA zoneSets;
    if (!zoning::namesOf(kUnit, "get_zone_set_names", &ZoneDb::get_zone_set_names, service,
                         zoneSets)) {
      return false;
    }
    for (const std::string& zoneSet : zoneSets) {
      string_tA zones;
      if (!zoning::listOf(kUnit, "get_zone_names_in_zone_set", &ZoneDb::get_zone_names_in_zone_set,
                          service, zoneSet, zones)) {
        return false;
      }
      for (const std::string& zone : zones) addPair(service, zoneSet, zone, false, out);
    }
    zoneset_t active;
    if (!zoning::activeZoneSet(kUnit, service, active)) return false;
    if (std::find(zoneSets.begin(), zoneSets.end(), active.name) == zoneSets.end()) continue;
    string_tA defined;
    if (!zoning::namesOf(kUnit, "get_zone_names", &ZoneDb::get_zone_names, service, defined)) {
      return false;
    }
    std::sort(defined.begin(), defined.end());
    for (const std::string& zone : active.zone_names) {
      if (zoning::sortedHas(defined, zone)) addPair(service, active.name, zone, true, out);
    }
  }
  return true;
}

bool QRX_ZoneInZoneSet_Best::deleteInstance(const QRX_ZoneInZoneSet_Key& key) {
  ZoneEntityInstanceID zoneSet(ZONE_ENTITY_ZONESET, 0);
  ZoneEntityInstanceID zone(ZONE_ENTITY_ZONE, 0);
  if (!zoning::readEnds(kUnit, key.Collection.InstanceID, ZONE_ENTITY_ZONESET,
                        "Unable to get ZoneSet with Instance ID", key.Member.InstanceID,
                        ZONE_ENTITY_ZONE, "Unable to get Zone with Instance ID", zoneSet, zone)) {
    return false;
  }
  const std::string service = zoneSet.getSwitchWwn();
  TRACE_DEBUG("Removing Zone %s from ZoneSet %s\n", zone.getEntityName().c_str(),
              zoneSet.getEntityName().c_str());
  const int rc =
      ZoneDb::getInstance().remove_zone(service, zoneSet.getEntityName(), zone.getEntityName());
  if (rc != 0) {
    TRACE_ERROR(kUnit, "remove_zone(%s, %s, %s) failed with rc %d\n", service.c_str(),
                zoneSet.getEntityName().c_str(), zone.getEntityName().c_str(), rc);
    return false;
  }
  return true;
}
