// An alias and each of its members (inside a session, as edited there).
// Deleting the association takes the member out of the alias.
#include "generated/scimbackend/QRX_ZoneMembershipSettingDataInZoneAlias_Best.h"

#include "common/backend/LocalZoneDb.h"
#include "common/backend/ZoningObjects.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_ZoneMembershipSettingDataInZoneAlias_Best";
}  // namespace

bool QRX_ZoneMembershipSettingDataInZoneAlias_Best::enumInstances(
    QRX_ZoneMembershipSettingDataInZoneAlias_Array& out) {
  std::vector<std::string> services;
  if (!zoning::serviceNames(kUnit, services)) return false;
  for (const std::string& service : services) {
    string_tA aliases;
    if (!zoning::namesOf(kUnit, "get_zone_alias_names", &ZoneDb::get_zone_alias_names, service,
                         aliases)) {
      return false;
    }
    for (const std::string& alias : aliases) {
      zone_member_data_tA members;
      if (!zoning::listOf(kUnit, "get_zone_members_in_zone_alias",
                          &ZoneDb::get_zone_members_in_zone_alias, service, alias, members)) {
        return false;
      }
      QRX_ZoneMembershipSettingDataInZoneAlias pair;
      if (!zoning::makeId(kUnit, ZONE_ENTITY_ALIAS, service, alias, 0, false,
                          pair.ManagedElement.InstanceID)) {
        continue;
      }
      for (const zone_member_data_t& member : members) {
        if (zoning::makeId(kUnit, ZONE_ENTITY_MEMBER, service, member.member_id, member.member_type,
                           false, pair.SettingData.InstanceID)) {
          out.push_back(pair);
        }
      }
    }
  }
  return true;
}

bool QRX_ZoneMembershipSettingDataInZoneAlias_Best::deleteInstance(
    const QRX_ZoneMembershipSettingDataInZoneAlias_Key& key) {
  ZoneEntityInstanceID alias(ZONE_ENTITY_ALIAS, 0);
  ZoneEntityInstanceID member(ZONE_ENTITY_MEMBER, 0);
  if (!zoning::readEnds(kUnit, key.ManagedElement.InstanceID, ZONE_ENTITY_ALIAS,
                        "Unable to get Zone Alias with Instance ID", key.SettingData.InstanceID,
                        ZONE_ENTITY_MEMBER, "Unable to get ZoneMember with Instance ID", alias,
                        member)) {
    return false;
  }
  const std::string service = alias.getSwitchWwn();
  const zone_member_data_t data = zoning::memberOf(member);
  TRACE_DEBUG("Remove Member %d - %s from Alias %s\n", data.member_type, data.member_id.c_str(),
              alias.getEntityName().c_str());
  const int rc = ZoneDb::getInstance().remove_alias_member(service, alias.getEntityName(), data);
  if (rc != 0) {
    TRACE_ERROR(kUnit, "remove_alias_member(%s, %s, %s) failed with rc %d\n", service.c_str(),
                alias.getEntityName().c_str(), data.member_id.c_str(), rc);
    return false;
  }
  return true;
}
