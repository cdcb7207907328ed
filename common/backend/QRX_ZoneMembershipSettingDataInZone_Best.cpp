// A zone and each of its own members (inside a session, as edited there);
// an active zone's copy with the members it has in the active zone set,
// its aliases' included. Deleting the association takes the member out of
// the zone.
#include "generated/scimbackend/QRX_ZoneMembershipSettingDataInZone_Best.h"

#include <algorithm>

#include "common/backend/LocalZoneDb.h"
#include "common/backend/ZoningObjects.h"
#include "common/base/trace.h"

namespace {

const char* const kUnit = "common/backend/QRX_ZoneMembershipSettingDataInZone_Best";

void addPairs(const std::string& irService, const std::string& irZone,
              const zone_member_data_tA& irMembers, bool ipActive,
              QRX_ZoneMembershipSettingDataInZone_Array& orOut) {
  QRX_ZoneMembershipSettingDataInZone pair;
  if (!zoning::makeId(kUnit, ZONE_ENTITY_ZONE, irService, irZone, 0, ipActive,
                      pair.ManagedElement.InstanceID)) {
    return;
  }
  for (const zone_member_data_t& member : irMembers) {
    if (zoning::makeId(kUnit, ZONE_ENTITY_MEMBER, irService, member.member_id, member.member_type,
                       ipActive, pair.SettingData.InstanceID)) {
      orOut.push_back(pair);
    }
  }
}

}  // namespace

bool QRX_ZoneMembershipSettingDataInZone_Best::enumInstances(
    QRX_ZoneMembershipSettingDataInZone_Array& out) {
  std::vector<std::string> services;
  if (!zoning::serviceNames(kUnit, services)) return false;
  ZoneDb& db = ZoneDb::getInstance();
  for (const std::string& service : services) {
    string_tA zones;
    if (!zoning::namesOf(kUnit, "get_zone_names", &ZoneDb::get_zone_names, service, zones)) {
      return false;
    }
    for (const std::string& zone : zones) {
      zone_member_data_tA members;
      if (!zoning::listOf(kUnit, "get_zone_members_in_zone", &ZoneDb::get_zone_members_in_zone,
                          service, zone, members)) {
        return false;
      }
      addPairs(service, zone, members, false, out);
    }
    zoneset_t active;
    if (!zoning::activeZoneSet(kUnit, service, active)) return false;
    std::sort(zones.begin(), zones.end());
    for (const std::string& zone : active.zone_names) {
      if (!zoning::sortedHas(zones, zone)) continue;
      zone_member_data_tA members;
      const int rc = db.get_all_active_zone_members_in_zone(service, zone, members);
      if (rc != 0) {
        TRACE_ERROR(kUnit, "get_all_active_zone_members_in_zone() zone=%s failed rc=%d\n",
                    zone.c_str(), rc);
        continue;
      }
      addPairs(service, zone, members, true, out);
    }
  }
  return true;
}

bool QRX_ZoneMembershipSettingDataInZone_Best::deleteInstance(
    const QRX_ZoneMembershipSettingDataInZone_Key& key) {
  ZoneEntityInstanceID zone(ZONE_ENTITY_ZONE, 0);
  ZoneEntityInstanceID member(ZONE_ENTITY_MEMBER, 0);
  if (!zoning::readEnds(kUnit, key.ManagedElement.InstanceID, ZONE_ENTITY_ZONE,
                        "Unable to get Zone with Instance ID", key.SettingData.InstanceID,
                        ZONE_ENTITY_MEMBER, "Unable to get ZoneMember with Instance ID", zone,
                        member)) {
    return false;
  }
  const std::string service = zone.getSwitchWwn();
  const zone_member_data_t data = zoning::memberOf(member);
  TRACE_DEBUG("Remove member %d - %s from zone %s\n", data.member_type, data.member_id.c_str(),
              zone.getEntityName().c_str());
  const int rc = ZoneDb::getInstance().remove_zone_member(service, zone.getEntityName(), data);
  if (rc != 0) {
    TRACE_ERROR(kUnit, "remove_zone_member(%s, %s, %s) failed with rc %d\n", service.c_str(),
                zone.getEntityName().c_str(), data.member_id.c_str(), rc);
    return false;
  }
  return true;
}
