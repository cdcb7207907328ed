#include "tools/switchsim/ZoningState.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <utility>

#include "tools/switchsim/Status.h"

namespace switchsim {

namespace {

template <typename List>
auto findNamed(List& irList, const std::string& irName) -> decltype(&irList[0]) {
  for (auto& item : irList) {
    if (item.name == irName) return &item;
  }
  return nullptr;
}

template <typename List, typename T>
bool eraseValue(List& irList, const T& irValue) {
  auto found = std::find(irList.begin(), irList.end(), irValue);
  if (found == irList.end()) return false;
  irList.erase(found);
  return true;
}

template <typename List>
bool eraseNamed(List& irList, const std::string& irName) {
  for (auto it = irList.begin(); it != irList.end(); ++it) {
    if (it->name == irName) {
      irList.erase(it);
      return true;
    }
  }
  return false;
}

bool isHex(const std::string& irText, std::size_t ipLength) {
  if (irText.size() != ipLength) return false;
  return std::all_of(irText.begin(), irText.end(),
                     [](unsigned char c) { return std::isxdigit(c) != 0; });
}

// A decimal number of 1 to 5 digits within [ipMin, ipMax].
bool isDecimal(const std::string& irText, unsigned long ipMin, unsigned long ipMax) {
  if (irText.empty() || irText.size() > 5) return false;
  if (!std::all_of(irText.begin(), irText.end(),
                   [](unsigned char c) { return std::isdigit(c) != 0; })) {
    return false;
  }
  const unsigned long value = std::strtoul(irText.c_str(), nullptr, 10);
  return value >= ipMin && value <= ipMax;
}

bool isMemberType(std::uint16_t ipType) {
  return ipType >= kMemberPortWwn && ipType <= kMemberNodeWwn;
}

bool isAliasReference(std::uint16_t ipType) {
  return ipType == kMemberCollection || ipType == kKindAlias;
}

// kStatusOk when `irMember` may be added to a zone or alias.
std::uint32_t checkMember(const zone_member_data_t& irMember) {
  if (!isMemberType(irMember.member_type)) return kStatusBadMemberType;
  const std::string& id = irMember.member_id;
  switch (irMember.member_type) {
    case kMemberPortWwn:
    case kMemberNodeWwn:
      return isHex(id, 16) ? kStatusOk : kStatusBadMemberId;
    case kMemberPortAddress:
      return isHex(id, 6) ? kStatusOk : kStatusBadMemberId;
    case kMemberSwitchPort: {
      const std::size_t comma = id.find(',');
      if (comma == std::string::npos) return kStatusBadMemberId;
      return isDecimal(id.substr(0, comma), 1, 239) && isDecimal(id.substr(comma + 1), 0, 65535)
                 ? kStatusOk
                 : kStatusBadMemberId;
    }
  }
  return kStatusBadMemberType;
}

std::string memberText(const zone_member_data_t& irMember) {
  return "(type " + std::to_string(irMember.member_type) + ", id \"" + irMember.member_id + "\")";
}

}  // namespace

zone_t* ZoneConfig::findZone(const std::string& irName) { return findNamed(zones, irName); }
alias_t* ZoneConfig::findAlias(const std::string& irName) { return findNamed(aliases, irName); }
zoneset_t* ZoneConfig::findZoneSet(const std::string& irName) {
  return findNamed(zoneSets, irName);
}
const zone_t* ZoneConfig::findZone(const std::string& irName) const {
  return findNamed(zones, irName);
}
const alias_t* ZoneConfig::findAlias(const std::string& irName) const {
  return findNamed(aliases, irName);
}
const zoneset_t* ZoneConfig::findZoneSet(const std::string& irName) const {
  return findNamed(zoneSets, irName);
}

bool operator==(const ZoneConfig& irA, const ZoneConfig& irB) {
  return irA.zones == irB.zones && irA.aliases == irB.aliases && irA.zoneSets == irB.zoneSets;
}

std::uint32_t ZoneEditor::checkNewName(const std::string& irName, std::size_t ipCount,
                                       std::uint32_t ipLimit, bool ipExists) const {
  if (irName.empty() || irName.size() > ivrLimits.ZoneNameMaxLen) return kStatusBadName;
  for (unsigned char c : irName) {
    if (!std::isalnum(c) && c != '_' && c != '-' && c != '$' && c != '^') return kStatusBadName;
  }
  if (ipExists) return kStatusAlreadyExists;
  if (ipCount >= ipLimit) return kStatusLimitReached;
  return kStatusOk;
}

std::uint32_t ZoneEditor::createZoneSet(const std::string& irName) {
  const std::uint32_t status = checkNewName(irName, ivrConfig.zoneSets.size(),
                                            ivrLimits.MaxNumZoneSets,
                                            ivrConfig.findZoneSet(irName) != nullptr);
  if (status != kStatusOk) return status;
  zoneset_t zoneSet;
  zoneSet.name = irName;
  ivrConfig.zoneSets.push_back(std::move(zoneSet));
  return kStatusOk;
}

std::uint32_t ZoneEditor::createZone(const std::string& irName) {
  const std::uint32_t status = checkNewName(irName, ivrConfig.zones.size(), ivrLimits.MaxNumZone,
                                            ivrConfig.findZone(irName) != nullptr);
  if (status != kStatusOk) return status;
  zone_t zone;
  zone.name = irName;
  ivrConfig.zones.push_back(std::move(zone));
  return kStatusOk;
}

std::uint32_t ZoneEditor::createAlias(const std::string& irName) {
  const std::uint32_t status = checkNewName(irName, ivrConfig.aliases.size(),
                                            ivrLimits.MaxNumZoneAliases,
                                            ivrConfig.findAlias(irName) != nullptr);
  if (status != kStatusOk) return status;
  alias_t alias;
  alias.name = irName;
  ivrConfig.aliases.push_back(std::move(alias));
  return kStatusOk;
}

std::uint32_t ZoneEditor::deleteZoneSet(const std::string& irName) {
  return eraseNamed(ivrConfig.zoneSets, irName) ? kStatusOk : kStatusNotFound;
}

std::uint32_t ZoneEditor::deleteZone(const std::string& irName) {
  if (!eraseNamed(ivrConfig.zones, irName)) return kStatusNotFound;
  for (zoneset_t& zoneSet : ivrConfig.zoneSets) eraseValue(zoneSet.zone_names, irName);
  return kStatusOk;
}

std::uint32_t ZoneEditor::deleteAlias(const std::string& irName) {
  if (!eraseNamed(ivrConfig.aliases, irName)) return kStatusNotFound;
  for (zone_t& zone : ivrConfig.zones) eraseValue(zone.alias_names, irName);
  return kStatusOk;
}

std::uint32_t ZoneEditor::addZone(const std::string& irZoneSet, const std::string& irZone) {
  zoneset_t* zoneSet = ivrConfig.findZoneSet(irZoneSet);
  if (zoneSet == nullptr || ivrConfig.findZone(irZone) == nullptr) return kStatusNotFound;
  std::vector<std::string>& names = zoneSet->zone_names;
  if (std::find(names.begin(), names.end(), irZone) != names.end()) return kStatusAlreadyExists;
  if (names.size() >= ivrLimits.MaxNumZonesPerZoneSet) return kStatusLimitReached;
  names.push_back(irZone);
  return kStatusOk;
}

std::uint32_t ZoneEditor::removeZone(const std::string& irZoneSet, const std::string& irZone) {
  zoneset_t* zoneSet = ivrConfig.findZoneSet(irZoneSet);
  if (zoneSet == nullptr) return kStatusNotFound;
  return eraseValue(zoneSet->zone_names, irZone) ? kStatusOk : kStatusNotFound;
}

std::uint32_t ZoneEditor::addAlias(const std::string& irZone, const std::string& irAlias) {
  zone_t* zone = ivrConfig.findZone(irZone);
  if (zone == nullptr || ivrConfig.findAlias(irAlias) == nullptr) return kStatusNotFound;
  std::vector<std::string>& names = zone->alias_names;
  if (std::find(names.begin(), names.end(), irAlias) != names.end()) return kStatusAlreadyExists;
  if (names.size() + zone->member_list.size() >= ivrLimits.MaxNumZoneMembers) {
    return kStatusLimitReached;
  }
  names.push_back(irAlias);
  return kStatusOk;
}

std::uint32_t ZoneEditor::removeAlias(const std::string& irZone, const std::string& irAlias) {
  zone_t* zone = ivrConfig.findZone(irZone);
  if (zone == nullptr) return kStatusNotFound;
  return eraseValue(zone->alias_names, irAlias) ? kStatusOk : kStatusNotFound;
}

std::uint32_t ZoneEditor::addZoneMember(const std::string& irZone,
                                        const zone_member_data_t& irMember) {
  zone_t* zone = ivrConfig.findZone(irZone);
  if (zone == nullptr) return kStatusNotFound;
  const std::uint32_t status = checkMember(irMember);
  if (status != kStatusOk) return status;
  zone_member_data_tA& members = zone->member_list;
  if (std::find(members.begin(), members.end(), irMember) != members.end()) {
    return kStatusAlreadyExists;
  }
  if (members.size() + zone->alias_names.size() >= ivrLimits.MaxNumZoneMembers) {
    return kStatusLimitReached;
  }
  members.push_back(irMember);
  return kStatusOk;
}

std::uint32_t ZoneEditor::removeZoneMember(const std::string& irZone,
                                           const zone_member_data_t& irMember) {
  zone_t* zone = ivrConfig.findZone(irZone);
  if (zone == nullptr) return kStatusNotFound;
  if (!isMemberType(irMember.member_type)) return kStatusBadMemberType;
  return eraseValue(zone->member_list, irMember) ? kStatusOk : kStatusNotFound;
}

std::uint32_t ZoneEditor::addAliasMember(const std::string& irAlias,
                                         const zone_member_data_t& irMember) {
  alias_t* alias = ivrConfig.findAlias(irAlias);
  if (alias == nullptr) return kStatusNotFound;
  const std::uint32_t status = checkMember(irMember);
  if (status != kStatusOk) return status;
  zone_member_data_tA& members = alias->member_list;
  if (std::find(members.begin(), members.end(), irMember) != members.end()) {
    return kStatusAlreadyExists;
  }
  if (members.size() >= ivrLimits.MaxNumZoneMembers) return kStatusLimitReached;
  members.push_back(irMember);
  return kStatusOk;
}

std::uint32_t ZoneEditor::removeAliasMember(const std::string& irAlias,
                                            const zone_member_data_t& irMember) {
  alias_t* alias = ivrConfig.findAlias(irAlias);
  if (alias == nullptr) return kStatusNotFound;
  if (!isMemberType(irMember.member_type)) return kStatusBadMemberType;
  return eraseValue(alias->member_list, irMember) ? kStatusOk : kStatusNotFound;
}

std::uint32_t ZoneEditor::apply(const zone_operation_t& irOperation) {
  const std::string& name = irOperation.data1.member_id;
  const zone_member_data_t& member = irOperation.data2;
  const std::uint16_t kind = irOperation.data1.member_type;
  if (kind != kKindZoneSet && kind != kKindZone && kind != kKindAlias) return kStatusBadOperation;
  switch (irOperation.opcode) {
    case kOpCreate:
      if (kind == kKindZoneSet) return createZoneSet(name);
      return kind == kKindZone ? createZone(name) : createAlias(name);
    case kOpDelete:
      if (kind == kKindZoneSet) return deleteZoneSet(name);
      return kind == kKindZone ? deleteZone(name) : deleteAlias(name);
    case kOpAdd:
      if (kind == kKindZoneSet) return addZone(name, member.member_id);
      if (kind == kKindAlias) return addAliasMember(name, member);
      return isAliasReference(member.member_type) ? addAlias(name, member.member_id)
                                                  : addZoneMember(name, member);
    case kOpRemove:
      if (kind == kKindZoneSet) return removeZone(name, member.member_id);
      if (kind == kKindAlias) return removeAliasMember(name, member);
      return isAliasReference(member.member_type) ? removeAlias(name, member.member_id)
                                                  : removeZoneMember(name, member);
  }
  return kStatusBadOperation;
}

std::uint32_t ZoneEditor::applyAll(const zone_operation_tA& irOperations, std::size_t* opFailed) {
  ZoneConfig scratch = ivrConfig;
  ZoneEditor editor(scratch, ivrLimits);
  for (std::size_t i = 0; i < irOperations.size(); ++i) {
    const std::uint32_t status = editor.apply(irOperations[i]);
    if (status != kStatusOk) {
      if (opFailed != nullptr) *opFailed = i;
      return status;
    }
  }
  ivrConfig = std::move(scratch);
  return kStatusOk;
}

bool checkZoneConfig(const ZoneConfig& irConfig, const zone_capabilities_data_t& irLimits,
                     const std::string& irPath, std::string* orError) {
  ZoneConfig built;
  ZoneEditor editor(built, irLimits);
  auto fail = [&](const std::string& irWhere, std::uint32_t ipStatus, const std::string& irWhat) {
    *orError = irPath + "." + irWhere + ": " + statusName(ipStatus) + " " + irWhat;
    return false;
  };
  for (std::size_t i = 0; i < irConfig.aliases.size(); ++i) {
    const alias_t& alias = irConfig.aliases[i];
    const std::string where = "aliases[" + std::to_string(i) + "]";
    std::uint32_t status = editor.createAlias(alias.name);
    if (status != kStatusOk) return fail(where + ".name", status, "\"" + alias.name + "\"");
    for (std::size_t j = 0; j < alias.member_list.size(); ++j) {
      status = editor.addAliasMember(alias.name, alias.member_list[j]);
      if (status != kStatusOk) {
        return fail(where + ".member_list[" + std::to_string(j) + "]", status,
                    memberText(alias.member_list[j]));
      }
    }
  }
  for (std::size_t i = 0; i < irConfig.zones.size(); ++i) {
    const zone_t& zone = irConfig.zones[i];
    const std::string where = "zones[" + std::to_string(i) + "]";
    std::uint32_t status = editor.createZone(zone.name);
    if (status != kStatusOk) return fail(where + ".name", status, "\"" + zone.name + "\"");
    for (std::size_t j = 0; j < zone.member_list.size(); ++j) {
      status = editor.addZoneMember(zone.name, zone.member_list[j]);
      if (status != kStatusOk) {
        return fail(where + ".member_list[" + std::to_string(j) + "]", status,
                    memberText(zone.member_list[j]));
      }
    }
    for (std::size_t j = 0; j < zone.alias_names.size(); ++j) {
      status = editor.addAlias(zone.name, zone.alias_names[j]);
      if (status != kStatusOk) {
        return fail(where + ".alias_names[" + std::to_string(j) + "]", status,
                    "\"" + zone.alias_names[j] + "\"");
      }
    }
  }
  for (std::size_t i = 0; i < irConfig.zoneSets.size(); ++i) {
    const zoneset_t& zoneSet = irConfig.zoneSets[i];
    const std::string where = "zone_sets[" + std::to_string(i) + "]";
    std::uint32_t status = editor.createZoneSet(zoneSet.name);
    if (status != kStatusOk) return fail(where + ".name", status, "\"" + zoneSet.name + "\"");
    for (std::size_t j = 0; j < zoneSet.zone_names.size(); ++j) {
      status = editor.addZone(zoneSet.name, zoneSet.zone_names[j]);
      if (status != kStatusOk) {
        return fail(where + ".zone_names[" + std::to_string(j) + "]", status,
                    "\"" + zoneSet.zone_names[j] + "\"");
      }
    }
  }
  return true;
}

}  // namespace switchsim
