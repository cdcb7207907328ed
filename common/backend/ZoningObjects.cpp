#include "common/backend/ZoningObjects.h"

#include <algorithm>
#include <set>

#include "common/backend/LocalZoneDb.h"
#include "common/base/trace.h"
#include "generated/scimbackend/QRX_ZoneService_Best.h"

namespace zoning {

namespace {

// The zone names of the active zone set, sorted, with its name.
bool activeZones(const char* ipUnit, const std::string& irService, std::string& orZoneSet,
                 std::vector<std::string>& orZones) {
  zoneset_t active;
  if (!activeZoneSet(ipUnit, irService, active)) return false;
  orZoneSet = active.name;
  orZones.assign(active.zone_names.begin(), active.zone_names.end());
  std::sort(orZones.begin(), orZones.end());
  return true;
}

// The ids of the named objects of every service; the names in `active`
// (sorted) get a second, active id.
bool namedIds(const char* ipUnit, char ipType,
              int (ZoneDb::*ipQuery)(const std::string&, string_tA&), const char* ipQueryName,
              bool ipZoneSets, bool ipZones, std::vector<std::string>& orIds) {
  std::vector<std::string> services;
  if (!serviceNames(ipUnit, services)) return false;
  for (const std::string& service : services) {
    std::string activeName;
    std::vector<std::string> active;
    if ((ipZoneSets || ipZones) && !activeZones(ipUnit, service, activeName, active)) return false;
    string_tA names;
    if (!namesOf(ipUnit, ipQueryName, ipQuery, service, names)) return false;
    for (const std::string& name : names) {
      std::string id;
      if (!makeId(ipUnit, ipType, service, name, 0, false, id)) continue;
      orIds.push_back(id);
      const bool isActive = (ipZoneSets && !activeName.empty() && name == activeName) ||
                            (ipZones && sortedHas(active, name));
      if (!isActive) continue;
      makeId(ipUnit, ipType, service, name, 0, true, id);
      if (ipZoneSets) TRACE_DEBUG("Active zsname=%s instanceid=%s\n", name.c_str(), id.c_str());
      orIds.push_back(id);
    }
  }
  return true;
}

void addMembers(const char* ipUnit, const std::string& irService,
                const zone_member_data_tA& irMembers, bool ipActive,
                std::set<std::pair<cuint16, std::string>>& ioSeen,
                std::vector<std::string>& orIds) {
  for (const zone_member_data_t& member : irMembers) {
    if (!ioSeen.insert(std::make_pair(member.member_type, member.member_id)).second) continue;
    std::string id;
    if (makeId(ipUnit, ZONE_ENTITY_MEMBER, irService, member.member_id, member.member_type,
               ipActive, id)) {
      orIds.push_back(id);
    }
  }
}

}  // namespace

bool serviceNames(const char* ipUnit, std::vector<std::string>& orNames) {
  QRX_ZoneService_KeyArray services;
  if (!QRX_ZoneService_Best::singleton.enumInstanceNames(services)) {
    TRACE_ERROR(ipUnit, "Unable to enumerate ZoneService instance names\n");
    return false;
  }
  for (const QRX_ZoneService_Key& service : services) orNames.push_back(service.Name);
  return true;
}

bool makeId(const char* ipUnit, char ipType, const std::string& irService,
            const std::string& irName, unsigned ipMemberType, bool ipActive, std::string& orId) {
  if (irService.length() != WWN_MAX_SIZE) {
    TRACE_ERROR(ipUnit, "Zone service name %s is not a switch WWN\n", irService.c_str());
    return false;
  }
  if (!ZoneEntityInstanceID::fitsEntityName(irName) || ipMemberType > 9) {
    TRACE_ERROR(ipUnit, "Name %s does not fit an InstanceID\n", irName.c_str());
    return false;
  }
  orId = makeZoneInstanceId(ipType, irService, irName, ipMemberType, ipActive);
  return true;
}

bool readId(const std::string& irText, char ipType, ZoneEntityInstanceID& orId) {
  if (!ZoneEntityInstanceID::fitsInstanceId(irText)) return false;
  ZoneEntityInstanceID id(irText.c_str());
  if (!id.validate(ipType)) return false;
  orId = id;
  return true;
}

bool activeZoneSet(const char* ipUnit, const std::string& irService, zoneset_t& orZoneSet) {
  const int rc = ZoneDb::getInstance().get_active_zone_set(irService, orZoneSet);
  if (rc != 0) {
    TRACE_ERROR(ipUnit, "get_active_zone_set(%s) failed with rc %d\n", irService.c_str(), rc);
    return false;
  }
  return true;
}

bool readEnds(const char* ipUnit, const std::string& irLeft, char ipLeftType,
              const char* ipLeftError, const std::string& irRight, char ipRightType,
              const char* ipRightError, ZoneEntityInstanceID& orLeft,
              ZoneEntityInstanceID& orRight) {
  if (!readId(irLeft, ipLeftType, orLeft)) {
    TRACE_ERROR(ipUnit, "%s %s\n", ipLeftError, irLeft.c_str());
    return false;
  }
  if (!readId(irRight, ipRightType, orRight)) {
    TRACE_ERROR(ipUnit, "%s %s\n", ipRightError, irRight.c_str());
    return false;
  }
  // The active zone set is changed by activating another, not member by member.
  if (orLeft.isActive() || orRight.isActive() || orLeft.getSwitchWwn() != orRight.getSwitchWwn()) {
    TRACE_ERROR(ipUnit, "Unable to work with Instance ID %s\n",
                (orLeft.isActive() ? irLeft : irRight).c_str());
    return false;
  }
  return true;
}

zone_member_data_t memberOf(const ZoneEntityInstanceID& irMember) {
  zone_member_data_t data;
  data.member_type = static_cast<cuint16>(irMember.getMemberType());
  data.member_id = irMember.getEntityName();
  return data;
}

bool namesOf(const char* ipUnit, const char* ipQueryName,
             int (ZoneDb::*ipQuery)(const std::string&, string_tA&), const std::string& irService,
             string_tA& orNames) {
  const int rc = (ZoneDb::getInstance().*ipQuery)(irService, orNames);
  if (rc != 0) {
    TRACE_ERROR(ipUnit, "%s(%s) failed with rc %d\n", ipQueryName, irService.c_str(), rc);
    return false;
  }
  return true;
}

bool sortedHas(const std::vector<std::string>& irNames, const std::string& irName) {
  return std::binary_search(irNames.begin(), irNames.end(), irName);
}

bool zoneSetIds(const char* ipUnit, std::vector<std::string>& orIds) {
  return namedIds(ipUnit, ZONE_ENTITY_ZONESET, &ZoneDb::get_zone_set_names, "get_zone_set_names",
                  true, false, orIds);
}

bool zoneIds(const char* ipUnit, std::vector<std::string>& orIds) {
  return namedIds(ipUnit, ZONE_ENTITY_ZONE, &ZoneDb::get_zone_names, "get_zone_names", false, true,
                  orIds);
}

bool aliasIds(const char* ipUnit, std::vector<std::string>& orIds) {
  std::vector<std::string> ids;
  if (!namedIds(ipUnit, ZONE_ENTITY_ALIAS, &ZoneDb::get_zone_alias_names, "get_zone_alias_names",
                false, false, ids)) {
    TRACE_ERROR(ipUnit, "Unable to enumerate ZoneAlias instance names\n");
    return false;
  }
  orIds.insert(orIds.end(), ids.begin(), ids.end());
  return true;
}

bool memberIds(const char* ipUnit, std::vector<std::string>& orIds) {
  std::vector<std::string> services;
  if (!serviceNames(ipUnit, services)) return false;
  ZoneDb& db = ZoneDb::getInstance();
  for (const std::string& service : services) {
    std::set<std::pair<cuint16, std::string>> seen;
    zone_member_data_tA members;
    int rc = db.get_all_zone_members(service, members);
    if (rc != 0) {
      TRACE_ERROR(ipUnit, "Unable to get all zone members ret=%d\n", rc);
      return false;
    }
    addMembers(ipUnit, service, members, false, seen, orIds);
    members.clear();
    rc = db.get_all_alias_members(service, members);
    if (rc != 0) {
      TRACE_ERROR(ipUnit, "Unable to get all alias members ret=%d\n", rc);
      return false;
    }
    addMembers(ipUnit, service, members, false, seen, orIds);

    zoneset_t active;
    if (!activeZoneSet(ipUnit, service, active)) return false;
    std::set<std::pair<cuint16, std::string>> activeSeen;
    for (const std::string& zone : active.zone_names) {
      members.clear();
      rc = db.get_all_active_zone_members_in_zone(service, zone, members);
      if (rc != 0) {
        // The other active zones are still listed.
        TRACE_ERROR(ipUnit, "get_all_active_zone_members_in_zone() zone=%s failed rc=%d\n",
                    zone.c_str(), rc);
        continue;
      }
      addMembers(ipUnit, service, members, true, activeSeen, orIds);
    }
  }
  return true;
}

}  // namespace zoning
