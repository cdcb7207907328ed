#include "tools/switchsim/ZoningState.h"

#include <algorithm>
#include <cassert>
#include <cstddef>
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

const std::size_t kNone = static_cast<std::size_t>(-1);

// The index of the object named `irName` in `irList`, or kNone.
template <typename List>
std::size_t indexOfNamed(const List& irList, const std::string& irName) {
  for (std::size_t i = 0; i < irList.size(); ++i) {
    if (irList[i].name == irName) return i;
  }
  return kNone;
}

// As indexOfNamed(), trying *iopHint first and leaving the index found there.
template <typename List>
std::size_t indexOfNamed(const List& irList, const std::string& irName, std::size_t* iopHint) {
  if (*iopHint < irList.size() && irList[*iopHint].name == irName) return *iopHint;
  const std::size_t index = indexOfNamed(irList, irName);
  if (index != kNone) *iopHint = index;
  return index;
}

// The index of the first entry equal to `irValue`, or kNone.
template <typename List, typename T>
std::size_t indexOfValue(const List& irList, const T& irValue) {
  auto found = std::find(irList.begin(), irList.end(), irValue);
  return found == irList.end() ? kNone : static_cast<std::size_t>(found - irList.begin());
}

// The index of `irMember` in `irMembers`, or kNone. Zones hold up to
// thousands of members and every addition looks for a duplicate, so
// entries are told apart by their cheapest differences first (identifiers
// of one kind differ mostly in their last digits).
std::size_t indexOfMember(const zone_member_data_tA& irMembers,
                          const zone_member_data_t& irMember) {
  const std::string& id = irMember.member_id;
  for (std::size_t i = 0; i < irMembers.size(); ++i) {
    const zone_member_data_t& other = irMembers[i];
    if (other.member_type != irMember.member_type || other.member_id.size() != id.size()) continue;
    if (!id.empty() && other.member_id.back() != id.back()) continue;
    if (other.member_id == id) return i;
  }
  return kNone;
}

bool isHex(const std::string& irText, std::size_t ipLength) {
  if (irText.size() != ipLength) return false;
  return std::all_of(irText.begin(), irText.end(), [](char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
  });
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

std::size_t ZoneEditor::zoneIndex(const std::string& irName) const {
  return indexOfNamed(ivrConfig.zones, irName, &ivZoneHint);
}

std::size_t ZoneEditor::aliasIndex(const std::string& irName) const {
  return indexOfNamed(ivrConfig.aliases, irName, &ivAliasHint);
}

std::size_t ZoneEditor::zoneSetIndex(const std::string& irName) const {
  return indexOfNamed(ivrConfig.zoneSets, irName, &ivZoneSetHint);
}

template <typename T>
void ZoneEditor::append(Change::Where ipWhere, std::size_t ipOwner, std::vector<T>& irList,
                        T ipValue) {
  irList.push_back(std::move(ipValue));
  if (ivpJournal == nullptr) return;
  ivpJournal->emplace_back();
  Change& change = ivpJournal->back();
  change.where = ipWhere;
  change.owner = ipOwner;
}

template <typename T>
void ZoneEditor::erase(Change::Where ipWhere, std::size_t ipOwner, std::vector<T>& irList,
                       std::size_t ipPosition) {
  if (ivpJournal != nullptr) {
    ivpJournal->emplace_back();
    Change& change = ivpJournal->back();
    change.where = ipWhere;
    change.appended = false;
    change.owner = ipOwner;
    change.position = ipPosition;
    change.erased.template emplace<T>(std::move(irList[ipPosition]));
  }
  irList.erase(irList.begin() + static_cast<std::ptrdiff_t>(ipPosition));
}

namespace {

template <typename T, typename Change>
void reverse(std::vector<T>& irList, Change& irChange) {
  if (irChange.appended) {
    irList.pop_back();
  } else {
    irList.insert(irList.begin() + static_cast<std::ptrdiff_t>(irChange.position),
                  std::move(std::get<T>(irChange.erased)));
  }
}

}  // namespace

void ZoneEditor::undo(Change& irChange) {
  switch (irChange.where) {
    case Change::kZoneSets:
      return reverse(ivrConfig.zoneSets, irChange);
    case Change::kZones:
      return reverse(ivrConfig.zones, irChange);
    case Change::kAliases:
      return reverse(ivrConfig.aliases, irChange);
    case Change::kZoneSetZones:
      return reverse(ivrConfig.zoneSets[irChange.owner].zone_names, irChange);
    case Change::kZoneAliasNames:
      return reverse(ivrConfig.zones[irChange.owner].alias_names, irChange);
    case Change::kZoneMembers:
      return reverse(ivrConfig.zones[irChange.owner].member_list, irChange);
    case Change::kAliasMembers:
      return reverse(ivrConfig.aliases[irChange.owner].member_list, irChange);
  }
}

std::uint32_t ZoneEditor::createZoneSet(const std::string& irName) {
  const std::uint32_t status = checkNewName(irName, ivrConfig.zoneSets.size(),
                                            ivrLimits.MaxNumZoneSets,
                                            ivrConfig.findZoneSet(irName) != nullptr);
  if (status != kStatusOk) return status;
  zoneset_t zoneSet;
  zoneSet.name = irName;
  append(Change::kZoneSets, 0, ivrConfig.zoneSets, std::move(zoneSet));
  return kStatusOk;
}

std::uint32_t ZoneEditor::createZone(const std::string& irName) {
  const std::uint32_t status = checkNewName(irName, ivrConfig.zones.size(), ivrLimits.MaxNumZone,
                                            ivrConfig.findZone(irName) != nullptr);
  if (status != kStatusOk) return status;
  zone_t zone;
  zone.name = irName;
  append(Change::kZones, 0, ivrConfig.zones, std::move(zone));
  return kStatusOk;
}

std::uint32_t ZoneEditor::createAlias(const std::string& irName) {
  const std::uint32_t status = checkNewName(irName, ivrConfig.aliases.size(),
                                            ivrLimits.MaxNumZoneAliases,
                                            ivrConfig.findAlias(irName) != nullptr);
  if (status != kStatusOk) return status;
  alias_t alias;
  alias.name = irName;
  append(Change::kAliases, 0, ivrConfig.aliases, std::move(alias));
  return kStatusOk;
}

std::uint32_t ZoneEditor::deleteZoneSet(const std::string& irName) {
  const std::size_t index = zoneSetIndex(irName);
  if (index == kNone) return kStatusNotFound;
  erase(Change::kZoneSets, 0, ivrConfig.zoneSets, index);
  return kStatusOk;
}

std::uint32_t ZoneEditor::deleteZone(const std::string& irName) {
  const std::size_t index = zoneIndex(irName);
  if (index == kNone) return kStatusNotFound;
  erase(Change::kZones, 0, ivrConfig.zones, index);
  for (std::size_t set = 0; set < ivrConfig.zoneSets.size(); ++set) {
    std::vector<std::string>& names = ivrConfig.zoneSets[set].zone_names;
    const std::size_t position = indexOfValue(names, irName);
    if (position != kNone) erase(Change::kZoneSetZones, set, names, position);
  }
  return kStatusOk;
}

std::uint32_t ZoneEditor::deleteAlias(const std::string& irName) {
  const std::size_t index = aliasIndex(irName);
  if (index == kNone) return kStatusNotFound;
  erase(Change::kAliases, 0, ivrConfig.aliases, index);
  for (std::size_t zone = 0; zone < ivrConfig.zones.size(); ++zone) {
    std::vector<std::string>& names = ivrConfig.zones[zone].alias_names;
    const std::size_t position = indexOfValue(names, irName);
    if (position != kNone) erase(Change::kZoneAliasNames, zone, names, position);
  }
  return kStatusOk;
}

std::uint32_t ZoneEditor::addZone(const std::string& irZoneSet, const std::string& irZone) {
  const std::size_t set = zoneSetIndex(irZoneSet);
  if (set == kNone || zoneIndex(irZone) == kNone) return kStatusNotFound;
  std::vector<std::string>& names = ivrConfig.zoneSets[set].zone_names;
  if (indexOfValue(names, irZone) != kNone) return kStatusAlreadyExists;
  if (names.size() >= ivrLimits.MaxNumZonesPerZoneSet) return kStatusLimitReached;
  append(Change::kZoneSetZones, set, names, irZone);
  return kStatusOk;
}

std::uint32_t ZoneEditor::removeZone(const std::string& irZoneSet, const std::string& irZone) {
  const std::size_t set = zoneSetIndex(irZoneSet);
  if (set == kNone) return kStatusNotFound;
  std::vector<std::string>& names = ivrConfig.zoneSets[set].zone_names;
  const std::size_t position = indexOfValue(names, irZone);
  if (position == kNone) return kStatusNotFound;
  erase(Change::kZoneSetZones, set, names, position);
  return kStatusOk;
}

std::uint32_t ZoneEditor::addAlias(const std::string& irZone, const std::string& irAlias) {
  const std::size_t index = zoneIndex(irZone);
  if (index == kNone || aliasIndex(irAlias) == kNone) return kStatusNotFound;
  zone_t& zone = ivrConfig.zones[index];
  if (indexOfValue(zone.alias_names, irAlias) != kNone) return kStatusAlreadyExists;
  if (zone.alias_names.size() + zone.member_list.size() >= ivrLimits.MaxNumZoneMembers) {
    return kStatusLimitReached;
  }
  append(Change::kZoneAliasNames, index, zone.alias_names, irAlias);
  return kStatusOk;
}

std::uint32_t ZoneEditor::removeAlias(const std::string& irZone, const std::string& irAlias) {
  const std::size_t index = zoneIndex(irZone);
  if (index == kNone) return kStatusNotFound;
  std::vector<std::string>& names = ivrConfig.zones[index].alias_names;
  const std::size_t position = indexOfValue(names, irAlias);
  if (position == kNone) return kStatusNotFound;
  erase(Change::kZoneAliasNames, index, names, position);
  return kStatusOk;
}

std::uint32_t ZoneEditor::addZoneMember(const std::string& irZone,
                                        const zone_member_data_t& irMember) {
  const std::size_t index = zoneIndex(irZone);
  if (index == kNone) return kStatusNotFound;
  const std::uint32_t status = checkMember(irMember);
  if (status != kStatusOk) return status;
  zone_t& zone = ivrConfig.zones[index];
  if (indexOfMember(zone.member_list, irMember) != kNone) return kStatusAlreadyExists;
  if (zone.member_list.size() + zone.alias_names.size() >= ivrLimits.MaxNumZoneMembers) {
    return kStatusLimitReached;
  }
  append(Change::kZoneMembers, index, zone.member_list, irMember);
  return kStatusOk;
}

std::uint32_t ZoneEditor::removeZoneMember(const std::string& irZone,
                                           const zone_member_data_t& irMember) {
  const std::size_t index = zoneIndex(irZone);
  if (index == kNone) return kStatusNotFound;
  if (!isMemberType(irMember.member_type)) return kStatusBadMemberType;
  zone_member_data_tA& members = ivrConfig.zones[index].member_list;
  const std::size_t position = indexOfMember(members, irMember);
  if (position == kNone) return kStatusNotFound;
  erase(Change::kZoneMembers, index, members, position);
  return kStatusOk;
}

std::uint32_t ZoneEditor::addAliasMember(const std::string& irAlias,
                                         const zone_member_data_t& irMember) {
  const std::size_t index = aliasIndex(irAlias);
  if (index == kNone) return kStatusNotFound;
  const std::uint32_t status = checkMember(irMember);
  if (status != kStatusOk) return status;
  zone_member_data_tA& members = ivrConfig.aliases[index].member_list;
  if (indexOfMember(members, irMember) != kNone) return kStatusAlreadyExists;
  if (members.size() >= ivrLimits.MaxNumZoneMembers) return kStatusLimitReached;
  append(Change::kAliasMembers, index, members, irMember);
  return kStatusOk;
}

std::uint32_t ZoneEditor::removeAliasMember(const std::string& irAlias,
                                            const zone_member_data_t& irMember) {
  const std::size_t index = aliasIndex(irAlias);
  if (index == kNone) return kStatusNotFound;
  if (!isMemberType(irMember.member_type)) return kStatusBadMemberType;
  zone_member_data_tA& members = ivrConfig.aliases[index].member_list;
  const std::size_t position = indexOfMember(members, irMember);
  if (position == kNone) return kStatusNotFound;
  erase(Change::kAliasMembers, index, members, position);
  return kStatusOk;
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
  assert(ivpJournal == nullptr);
  std::vector<Change> journal;
  journal.reserve(irOperations.size());
  ivpJournal = &journal;
  for (std::size_t i = 0; i < irOperations.size(); ++i) {
    const std::uint32_t status = apply(irOperations[i]);
    if (status != kStatusOk) {
      for (auto change = journal.rbegin(); change != journal.rend(); ++change) undo(*change);
      ivpJournal = nullptr;
      if (opFailed != nullptr) *opFailed = i;
      return status;
    }
  }
  ivpJournal = nullptr;
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
