// The switch's zoning database and the edits it accepts.
//
// A ZoneConfig is the defined configuration: zone sets (lists of zone
// names), zones (members and alias names) and aliases (members), each kind
// with unique names, kept in creation order. ZoneEditor changes one
// ZoneConfig and checks every edit against the switch's zone capabilities.
// Each edit returns kStatusOk or a status of Status.h and leaves the
// configuration unchanged when it fails.
//
// Rules:
//   - names: 1 to ZoneNameMaxLen characters of [A-Za-z0-9_$^-]
//   - members of zones and aliases: member types 2 (port WWN), 3 (port
//     address), 4 (switch port) and 5 (node WWN); aliases are placed in
//     zones separately (never in aliases)
//   - member identifiers: types 2 and 5 sixteen hex digits, type 3 six hex
//     digits, type 4 "<domain>,<port>" (domain 1-239, port 0-65535)
//   - limits: MaxNumZoneSets, MaxNumZone, MaxNumZoneAliases in all;
//     MaxNumZonesPerZoneSet per zone set; MaxNumZoneMembers per zone
//     (members and aliases together) and per alias
//   - deleting a zone takes it out of every zone set; deleting an alias
//     takes it out of every zone; deleting a zone set deletes only the set
//
// Zone operations (the session's batches) name their object in data1 (kind
// marker in member_type, name in member_id) and, for add and remove, the
// member in data2: for a zone set the zone (member_type not looked at), for
// a zone an alias (member_type 6 or 242) or a member, for an alias a
// member.
//
// Thread-safety: none; the owner serialises.
#ifndef QRX_TOOLS_SWITCHSIM_ZONINGSTATE_H_
#define QRX_TOOLS_SWITCHSIM_ZONINGSTATE_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "generated/smis_ipc/smis_ipc.h"

namespace switchsim {

// zone_operation_t opcodes.
enum : std::uint16_t { kOpCreate = 0, kOpDelete = 1, kOpAdd = 2, kOpRemove = 3 };
// Kind markers, in data1.member_type of a zone operation.
enum : std::uint16_t { kKindZoneSet = 240, kKindZone = 241, kKindAlias = 242 };
// Connectivity member types.
enum : std::uint16_t {
  kMemberPortWwn = 2,
  kMemberPortAddress = 3,
  kMemberSwitchPort = 4,
  kMemberNodeWwn = 5,
  kMemberCollection = 6,
};

struct ZoneConfig {
  zone_tA zones;
  alias_tA aliases;
  zoneset_tA zoneSets;

  // The object of that name, or null.
  zone_t* findZone(const std::string& irName);
  alias_t* findAlias(const std::string& irName);
  zoneset_t* findZoneSet(const std::string& irName);
  const zone_t* findZone(const std::string& irName) const;
  const alias_t* findAlias(const std::string& irName) const;
  const zoneset_t* findZoneSet(const std::string& irName) const;
};

bool operator==(const ZoneConfig& irA, const ZoneConfig& irB);

class ZoneEditor {
 public:
  ZoneEditor(ZoneConfig& irConfig, const zone_capabilities_data_t& irLimits)
      : ivrConfig(irConfig), ivrLimits(irLimits) {}

  std::uint32_t createZoneSet(const std::string& irName);
  std::uint32_t createZone(const std::string& irName);
  std::uint32_t createAlias(const std::string& irName);
  std::uint32_t deleteZoneSet(const std::string& irName);
  std::uint32_t deleteZone(const std::string& irName);
  std::uint32_t deleteAlias(const std::string& irName);
  std::uint32_t addZone(const std::string& irZoneSet, const std::string& irZone);
  std::uint32_t removeZone(const std::string& irZoneSet, const std::string& irZone);
  std::uint32_t addAlias(const std::string& irZone, const std::string& irAlias);
  std::uint32_t removeAlias(const std::string& irZone, const std::string& irAlias);
  std::uint32_t addZoneMember(const std::string& irZone, const zone_member_data_t& irMember);
  std::uint32_t removeZoneMember(const std::string& irZone, const zone_member_data_t& irMember);
  std::uint32_t addAliasMember(const std::string& irAlias, const zone_member_data_t& irMember);
  std::uint32_t removeAliasMember(const std::string& irAlias, const zone_member_data_t& irMember);

  // One zone operation.
  std::uint32_t apply(const zone_operation_t& irOperation);
  // All of `irOperations` in order, or none: on the first failure the
  // configuration is left as it was, the status returned and the failing
  // operation's index stored in *opFailed (if given).
  std::uint32_t applyAll(const zone_operation_tA& irOperations, std::size_t* opFailed);

 private:
  // One change an edit made, with what it takes to reverse it. While
  // applyAll runs a batch, the changes are kept and, when an operation
  // fails, reversed newest first: a batch costs what it changes, not a copy
  // of the configuration. Inner lists are named by their owner's index,
  // since owners move when the outer lists grow.
  struct Change {
    enum Where : std::uint8_t {
      kZoneSets,
      kZones,
      kAliases,
      kZoneSetZones,     // zone_names of zoneSets[owner]
      kZoneAliasNames,   // alias_names of zones[owner]
      kZoneMembers,      // member_list of zones[owner]
      kAliasMembers,     // member_list of aliases[owner]
    };
    Where where = kZoneSets;
    bool appended = true;       // else an entry was erased at `position`
    std::size_t owner = 0;
    std::size_t position = 0;
    // The erased entry (nothing for an append, the common case: a change
    // is then cheap to make and to drop).
    std::variant<std::monostate, std::string, zone_member_data_t, zoneset_t, zone_t, alias_t> erased;
  };

  std::uint32_t checkNewName(const std::string& irName, std::size_t ipCount,
                             std::uint32_t ipLimit, bool ipExists) const;

  // The index of the zone, alias or zone set named `irName`, or kNone.
  // Consecutive operations mostly name the same object, so the last one
  // found is tried first.
  std::size_t zoneIndex(const std::string& irName) const;
  std::size_t aliasIndex(const std::string& irName) const;
  std::size_t zoneSetIndex(const std::string& irName) const;

  // The edits' only ways to change the configuration: both journal the
  // change while applyAll runs.
  template <typename T>
  void append(Change::Where ipWhere, std::size_t ipOwner, std::vector<T>& irList, T ipValue);
  template <typename T>
  void erase(Change::Where ipWhere, std::size_t ipOwner, std::vector<T>& irList,
             std::size_t ipPosition);
  void undo(Change& irChange);

  ZoneConfig& ivrConfig;
  const zone_capabilities_data_t& ivrLimits;
  std::vector<Change>* ivpJournal = nullptr;
  mutable std::size_t ivZoneHint = 0;
  mutable std::size_t ivAliasHint = 0;
  mutable std::size_t ivZoneSetHint = 0;
};

// Checks a whole configuration by building it up with a ZoneEditor. On
// failure *orError names the offending field below `irPath` (for example
// "zoning.zones[2].member_list[0]: bad-member-id (type 2, id \"x\")").
bool checkZoneConfig(const ZoneConfig& irConfig, const zone_capabilities_data_t& irLimits,
                     const std::string& irPath, std::string* orError);

}  // namespace switchsim

#endif  // QRX_TOOLS_SWITCHSIM_ZONINGSTATE_H_
