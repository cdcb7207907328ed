// A zone and each alias placed in it (inside a session, as edited there).
// Deleting the association takes the alias out of the zone.
#include "generated/scimbackend/QRX_ZoneAliasInZone_Best.h"

#include "common/backend/LocalZoneDb.h"
#include "common/backend/ZoningObjects.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_ZoneAliasInZone_Best";
}  // namespace

bool QRX_ZoneAliasInZone_Best::enumInstances(QRX_ZoneAliasInZone_Array& out) {
  std::vector<std::string> services;
  if (!zoning::serviceNames(kUnit, services)) return false;
  for (const std::string& service : services) {
    string_tA zones;
    if (!zoning::namesOf(kUnit, "get_zone_names", &ZoneDb::get_zone_names, service, zones)) {
      return false;
    }
    for (const std::string& zone : zones) {
      string_tA aliases;
      if (!zoning::listOf(kUnit, "get_zone_alias_names_in_zone",
                          &ZoneDb::get_zone_alias_names_in_zone, service, zone, aliases)) {
        return false;
      }
      for (const std::string& alias : aliases) {
        QRX_ZoneAliasInZone pair;
        if (zoning::makeId(kUnit, ZONE_ENTITY_ZONE, service, zone, 0, false,
                           pair.Collection.InstanceID) &&
            zoning::makeId(kUnit, ZONE_ENTITY_ALIAS, service, alias, 0, false,
                           pair.Member.InstanceID)) {
          out.push_back(pair);
        }
      }
    }
  }
  return true;
}

bool QRX_ZoneAliasInZone_Best::deleteInstance(const QRX_ZoneAliasInZone_Key& key) {
  ZoneEntityInstanceID zone(ZONE_ENTITY_ZONE, 0);
  ZoneEntityInstanceID alias(ZONE_ENTITY_ALIAS, 0);
  if (!zoning::readEnds(kUnit, key.Collection.InstanceID, ZONE_ENTITY_ZONE,
                        "Unable to get Zone with Instance ID", key.Member.InstanceID,
                        ZONE_ENTITY_ALIAS, "Unable to get Zone Alias with Instance ID", zone,
                        alias)) {
    return false;
  }
  const std::string service = zone.getSwitchWwn();
  TRACE_DEBUG("Removing Zone Alias %s from Zone %s\n", alias.getEntityName().c_str(),
              zone.getEntityName().c_str());
  const int rc =
      ZoneDb::getInstance().remove_zone_alias(service, zone.getEntityName(), alias.getEntityName());
  if (rc != 0) {
    TRACE_ERROR(kUnit, "remove_zone_alias(%s, %s, %s) failed with rc %d\n", service.c_str(),
                zone.getEntityName().c_str(), alias.getEntityName().c_str(), rc);
    return false;
  }
  return true;
}
