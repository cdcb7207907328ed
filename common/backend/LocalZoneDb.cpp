#include "common/backend/LocalZoneDb.h"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <utility>

#include "common/backend/BackendStart.h"
#include "common/base/trace.h"

namespace {

const char* const kUnit = "common/backend/LocalZoneDb";

zone_member_data_t kindName(cuint16 ipKind, const std::string& irName) {
  zone_member_data_t data;
  data.member_type = ipKind;
  data.member_id = irName;
  return data;
}

zone_operation_t operation(cuint16 ipOpcode, cuint16 ipKind, const std::string& irName,
                           const zone_member_data_t& irMember = zone_member_data_t()) {
  zone_operation_t op;
  op.opcode = ipOpcode;
  op.data1 = kindName(ipKind, irName);
  op.data2 = irMember;
  return op;
}

// Remove operations for what `irFrom` has and `irTo` lacks, add operations
// for the reverse, each element turned into data2 by `irData`.
template <class SetT, class DataT>
void diff(cuint16 ipKind, const std::string& irName, const SetT& irFrom, const SetT& irTo,
          const DataT& irData, zone_operation_tA& orRemove, zone_operation_tA& orAdd) {
  for (const auto& element : irFrom) {
    if (irTo.count(element) == 0)
      orRemove.push_back(operation(ZONE_OP_REMOVE, ipKind, irName, irData(element)));
  }
  for (const auto& element : irTo) {
    if (irFrom.count(element) == 0)
      orAdd.push_back(operation(ZONE_OP_ADD, ipKind, irName, irData(element)));
  }
}

zone_member_data_t memberData(const ZoneDbZoneMember& irMember) { return irMember.toData(); }

// The operations of one kind's records, in name order: `irDiff(old, new,
// remove, add)` appends the member changes of an edited object, and of a
// new one against an empty object.
template <class T, class DiffT>
void collect(const ZoneDbNamedObjectContainer<T>& irContainer, cuint16 ipKind, const DiffT& irDiff,
             zone_operation_tA& orRemove, zone_operation_tA& orDelete, zone_operation_tA& orCreate,
             zone_operation_tA& orAdd) {
  for (const auto& entry : irContainer) {
    const auto& wrapper = entry.second;
    const T* current = wrapper.getCurrent();
    const T* next = wrapper.getNext();
    if (wrapper.isDeletionRequested()) {
      if (current != nullptr) orDelete.push_back(operation(ZONE_OP_DELETE, ipKind, entry.first));
      continue;
    }
    if (current == nullptr) {
      orCreate.push_back(operation(ZONE_OP_CREATE, ipKind, entry.first));
      const T empty(entry.first);
      if (next != nullptr) irDiff(empty, *next, orRemove, orAdd);
      continue;
    }
    if (next != nullptr) irDiff(*current, *next, orRemove, orAdd);
  }
}

template <class Copy>
void assignNames(const ZoneDbNameSet& irNames, Copy& orNames) {
  orNames.assign(irNames.begin(), irNames.end());
}

void assignMembers(const ZoneDbMemberSet& irMembers, zone_member_data_tA& orMembers) {
  orMembers.clear();
  for (const ZoneDbZoneMember& member : irMembers) orMembers.push_back(member.toData());
}

}  // namespace

zone_member_data_t ZoneDbZoneMember::toData() const {
  zone_member_data_t data;
  data.member_type = ivType;
  data.member_id = ivIdentifier;
  return data;
}

// ---- container ----

template <class T>
T* ZoneDbNamedObjectContainer<T>::createObject(const ZoneDbObjectName& irName) {
  auto found = ivObjects.find(irName);
  if (found != ivObjects.end() && !found->second.ivDeletionRequested) {
    TRACE_ERROR(kUnit, "Object %s already in container\n", irName.c_str());
    return nullptr;
  }
  Wrapper& wrapper = ivObjects[irName];
  wrapper.ivDeletionRequested = false;
  wrapper.ivNext.reset(new T(irName));
  return wrapper.ivNext.get();
}

template <class T>
bool ZoneDbNamedObjectContainer<T>::addCurrent(std::unique_ptr<T> ipObject) {
  const ZoneDbObjectName name = ipObject->getName();
  if (ivObjects.count(name) != 0) {
    TRACE_ERROR(kUnit, "Object %s already in container\n", name.c_str());
    return false;
  }
  ivObjects[name].ivCurrent = std::move(ipObject);
  return true;
}

template <class T>
bool ZoneDbNamedObjectContainer<T>::deleteObject(const ZoneDbObjectName& irName) {
  auto found = ivObjects.find(irName);
  if (found == ivObjects.end() || found->second.getLive() == nullptr) return false;
  found->second.ivDeletionRequested = true;
  return true;
}

template <class T>
const T* ZoneDbNamedObjectContainer<T>::getObject(const ZoneDbObjectName& irName) const {
  auto found = ivObjects.find(irName);
  return found == ivObjects.end() ? nullptr : found->second.getLive();
}

template <class T>
T* ZoneDbNamedObjectContainer<T>::copyObject(const ZoneDbObjectName& irName) {
  auto found = ivObjects.find(irName);
  if (found == ivObjects.end() || found->second.getLive() == nullptr) return nullptr;
  Wrapper& wrapper = found->second;
  if (!wrapper.ivNext) wrapper.ivNext.reset(new T(*wrapper.ivCurrent));
  return wrapper.ivNext.get();
}

template <class T>
ZoneDbNameSet ZoneDbNamedObjectContainer<T>::names(bool ipLiveOnly) const {
  ZoneDbNameSet out;
  for (const auto& entry : ivObjects) {
    if (!ipLiveOnly || entry.second.getLive() != nullptr) out.insert(entry.first);
  }
  return out;
}

template class ZoneDbNamedObjectContainer<ZoneDbZoneSet>;
template class ZoneDbNamedObjectContainer<ZoneDbZone>;
template class ZoneDbNamedObjectContainer<ZoneDbZoneAlias>;

// ---- database ----

ZoneDb::ZoneDb(ClientSource ipClient) : ivClient(std::move(ipClient)) {}

ZoneDb& ZoneDb::getInstance() {
  static ZoneDb instance(get_rs_api_client);
  return instance;
}

void ZoneDb::setZoningChangedHook(std::function<void()> ipHook) {
  fcbb::MutexLock lock(ivMutex);
  ivZoningChanged = std::move(ipHook);
}

bool ZoneDb::isClosingSession() const {
  const cuint16 state = ivSessionState.load();
  return state == ZONEDB_SESSION_ENDING || state == ZONEDB_SESSION_TERMINATING;
}

bool ZoneDb::isSessionInProgress() {
  fcbb::MutexLock lock(ivMutex);
  return ivSessionInProgress;
}

rs_api_client* ZoneDb::client() {
  rs_api_client* c = ivClient ? ivClient() : nullptr;
  if (c == nullptr) TRACE_ERROR(kUnit, "no request client\n");
  return c;
}

void ZoneDb::zoningChanged_nl() {
  if (ivZoningChanged) ivZoningChanged();
}

int ZoneDb::switchEdit_nl(int ipRc) {
  if (ipRc == 0) zoningChanged_nl();
  return ipRc;
}

// A switch call of the client, or -1 without one.
#define ZONEDB_CALL(call)               \
  do {                                  \
    rs_api_client* c = client();        \
    return c == nullptr ? -1 : c->call; \
  } while (0)

#define ZONEDB_EDIT(call)                              \
  do {                                                 \
    rs_api_client* c = client();                       \
    return c == nullptr ? -1 : switchEdit_nl(c->call); \
  } while (0)

// ---- queries ----

int ZoneDb::get_zone_service_data(const std::string& irService, zone_service_data_t& orData) {
  fcbb::MutexLock lock(ivMutex);
  ZONEDB_CALL(get_zone_service_data(irService, orData));
}

int ZoneDb::get_zone_capabilities_data(const std::string& irService,
                                       zone_capabilities_data_t& orData) {
  fcbb::MutexLock lock(ivMutex);
  ZONEDB_CALL(get_zone_capabilities_data(irService, orData));
}

int ZoneDb::get_active_zone_set(const std::string& irService, zoneset_t& orZoneSet) {
  fcbb::MutexLock lock(ivMutex);
  ZONEDB_CALL(get_active_zone_set(irService, orZoneSet));
}

int ZoneDb::get_zone_set_names(const std::string& irService, string_tA& orNames) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_CALL(get_zone_set_names(irService, orNames));
  assignNames(ivZoneSets.names(true), orNames);
  return ZONEDB_RC_OK;
}

int ZoneDb::get_zone_names(const std::string& irService, string_tA& orNames) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_CALL(get_zone_names(irService, orNames));
  assignNames(ivZones.names(true), orNames);
  return ZONEDB_RC_OK;
}

int ZoneDb::get_zone_alias_names(const std::string& irService, string_tA& orNames) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_CALL(get_zone_alias_names(irService, orNames));
  assignNames(ivAliases.names(true), orNames);
  return ZONEDB_RC_OK;
}

int ZoneDb::get_zone_names_in_zone_set(const std::string& irService, const std::string& irZoneSet,
                                       string_tA& orNames) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_CALL(get_zone_names_in_zone_set(irService, irZoneSet, orNames));
  const ZoneDbZoneSet* zoneSet = ivZoneSets.getObject(irZoneSet);
  if (zoneSet == nullptr) {
    TRACE_ERROR(kUnit, "ZoneSet %s not found\n", irZoneSet.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  assignNames(zoneSet->getAllZones(), orNames);
  return ZONEDB_RC_OK;
}

int ZoneDb::get_zone_alias_names_in_zone(const std::string& irService, const std::string& irZone,
                                         string_tA& orNames) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_CALL(get_zone_alias_names_in_zone(irService, irZone, orNames));
  const ZoneDbZone* zone = ivZones.getObject(irZone);
  if (zone == nullptr) {
    TRACE_ERROR(kUnit, "Zone %s not found\n", irZone.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  assignNames(zone->getAllZoneAliases(), orNames);
  return ZONEDB_RC_OK;
}

int ZoneDb::get_all_zone_members(const std::string& irService, zone_member_data_tA& orMembers) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_CALL(get_all_zone_members(irService, orMembers));
  ZoneDbMemberSet all;
  for (const auto& entry : ivZones) {
    const ZoneDbZone* zone = entry.second.getLive();
    if (zone != nullptr)
      all.insert(zone->getAllZoneMembers().begin(), zone->getAllZoneMembers().end());
  }
  assignMembers(all, orMembers);
  return ZONEDB_RC_OK;
}

int ZoneDb::get_all_alias_members(const std::string& irService, zone_member_data_tA& orMembers) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_CALL(get_all_alias_members(irService, orMembers));
  ZoneDbMemberSet all;
  for (const auto& entry : ivAliases) {
    const ZoneDbZoneAlias* alias = entry.second.getLive();
    if (alias != nullptr)
      all.insert(alias->getAllZoneMembers().begin(), alias->getAllZoneMembers().end());
  }
  assignMembers(all, orMembers);
  return ZONEDB_RC_OK;
}

int ZoneDb::get_zone_members_in_zone(const std::string& irService, const std::string& irZone,
                                     zone_member_data_tA& orMembers) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_CALL(get_zone_members_in_zone(irService, irZone, orMembers));
  const ZoneDbZone* zone = ivZones.getObject(irZone);
  if (zone == nullptr) {
    TRACE_ERROR(kUnit, "Zone %s not found\n", irZone.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  assignMembers(zone->getAllZoneMembers(), orMembers);
  return ZONEDB_RC_OK;
}

int ZoneDb::get_zone_members_in_zone_alias(const std::string& irService, const std::string& irAlias,
                                           zone_member_data_tA& orMembers) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_CALL(get_zone_members_in_zone_alias(irService, irAlias, orMembers));
  const ZoneDbZoneAlias* alias = ivAliases.getObject(irAlias);
  if (alias == nullptr) {
    TRACE_ERROR(kUnit, "Zone Alias %s not found\n", irAlias.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  assignMembers(alias->getAllZoneMembers(), orMembers);
  return ZONEDB_RC_OK;
}

int ZoneDb::get_all_active_zone_members_in_zone(const std::string& irService,
                                                const std::string& irZone,
                                                zone_member_data_tA& orMembers) {
  fcbb::MutexLock lock(ivMutex);
  rs_api_client* c = client();
  if (c == nullptr) return -1;
  zoneset_t active;
  int rc = c->get_active_zone_set(irService, active);
  if (rc != 0) return rc;
  bool inActive = false;
  for (const std::string& zone : active.zone_names) inActive = inActive || zone == irZone;
  if (!inActive) {
    TRACE_ERROR(kUnit, "Zone %s not found\n", irZone.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  zone_member_data_tA direct;
  rc = c->get_zone_members_in_zone(irService, irZone, direct);
  if (rc != 0) return rc;
  ZoneDbMemberSet all(direct.begin(), direct.end());
  string_tA aliases;
  rc = c->get_zone_alias_names_in_zone(irService, irZone, aliases);
  if (rc != 0) return rc;
  for (const std::string& alias : aliases) {
    zone_member_data_tA viaAlias;
    rc = c->get_zone_members_in_zone_alias(irService, alias, viaAlias);
    if (rc != 0) return rc;
    all.insert(viaAlias.begin(), viaAlias.end());
  }
  assignMembers(all, orMembers);
  return ZONEDB_RC_OK;
}

// ---- edits ----

int ZoneDb::create_zone_set(const std::string& irService, const std::string& irName) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(create_zone_set(irService, irName));
  if (ivZoneSets.createObject(irName) == nullptr) {
    TRACE_ERROR(kUnit, "Unable to create zone set %s\n", irName.c_str());
    return ZONEDB_RC_CREATE_FAILED;
  }
  return ZONEDB_RC_OK;
}

int ZoneDb::create_zone(const std::string& irService, const std::string& irName) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(create_zone(irService, irName));
  if (ivZones.createObject(irName) == nullptr) {
    TRACE_ERROR(kUnit, "Unable to create zone %s\n", irName.c_str());
    return ZONEDB_RC_CREATE_FAILED;
  }
  return ZONEDB_RC_OK;
}

int ZoneDb::create_zone_alias(const std::string& irService, const std::string& irName) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(create_zone_alias(irService, irName));
  if (ivAliases.createObject(irName) == nullptr) {
    TRACE_ERROR(kUnit, "Unable to create zone alias %s\n", irName.c_str());
    return ZONEDB_RC_CREATE_FAILED;
  }
  return ZONEDB_RC_OK;
}

int ZoneDb::deleteZone_nl(const std::string& irName) {
  if (ivZones.getObject(irName) == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find Zone %s\n", irName.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  for (const ZoneDbObjectName& name : ivZoneSets.names(true)) {
    ZoneDbZoneSet* zoneSet = ivZoneSets.copyObject(name);
    if (zoneSet == nullptr) {
      TRACE_ERROR(kUnit, "Unable to find Zoneset %s\n", name.c_str());
      return ZONEDB_RC_NOT_FOUND;
    }
    zoneSet->getAllZones().erase(irName);
  }
  ivZones.deleteObject(irName);
  return ZONEDB_RC_OK;
}

int ZoneDb::delete_zone(const std::string& irService, const std::string& irName) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(delete_zone(irService, irName));
  return deleteZone_nl(irName);
}

int ZoneDb::delete_zone_alias(const std::string& irService, const std::string& irName) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(delete_zone_alias(irService, irName));
  if (ivAliases.getObject(irName) == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find Zone Alias %s\n", irName.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  for (const ZoneDbObjectName& name : ivZones.names(true)) {
    ZoneDbZone* zone = ivZones.copyObject(name);
    if (zone == nullptr) {
      TRACE_ERROR(kUnit, "Unable to find Zone %s\n", name.c_str());
      return ZONEDB_RC_NOT_FOUND;
    }
    zone->getAllZoneAliases().erase(irName);
  }
  ivAliases.deleteObject(irName);
  return ZONEDB_RC_OK;
}

int ZoneDb::delete_zone_set(const std::string& irService, const std::string& irName) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(delete_zone_set(irService, irName));
  const ZoneDbZoneSet* zoneSet = ivZoneSets.getObject(irName);
  if (zoneSet == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find ZoneSet %s\n", irName.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  // Zones that another zone set lists stay.
  ZoneDbNameSet zones = zoneSet->getAllZones();
  for (const ZoneDbObjectName& other : ivZoneSets.names(true)) {
    if (other == irName) continue;
    for (const ZoneDbObjectName& shared : ivZoneSets.getObject(other)->getAllZones())
      zones.erase(shared);
  }
  for (const ZoneDbObjectName& zone : zones) {
    TRACE_DEBUG("Deleting Zone from ZoneDB %s\n", zone.c_str());
    if (!ivZones.deleteObject(zone)) TRACE_ERROR(kUnit, "Unable to delete zone %s\n", zone.c_str());
  }
  ivZoneSets.deleteObject(irName);
  return ZONEDB_RC_OK;
}

int ZoneDb::add_zone(const std::string& irService, const std::string& irZoneSet,
                     const std::string& irZone) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(add_zone(irService, irZoneSet, irZone));
  ZoneDbZoneSet* zoneSet = ivZoneSets.copyObject(irZoneSet);
  if (zoneSet == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find ZoneSet %s\n", irZoneSet.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  if (ivZones.getObject(irZone) == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find Zone %s\n", irZone.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  if (!zoneSet->getAllZones().insert(irZone).second) {
    TRACE_ERROR(kUnit, "Unable to add Zone %s to ZoneSet %s\n", irZone.c_str(), irZoneSet.c_str());
    return ZONEDB_RC_ADD_FAILED;
  }
  return ZONEDB_RC_OK;
}

int ZoneDb::remove_zone(const std::string& irService, const std::string& irZoneSet,
                        const std::string& irZone) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(remove_zone(irService, irZoneSet, irZone));
  ZoneDbZoneSet* zoneSet = ivZoneSets.copyObject(irZoneSet);
  if (zoneSet == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find ZoneSet %s\n", irZoneSet.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  if (zoneSet->getAllZones().erase(irZone) == 0) {
    TRACE_ERROR(kUnit, "Unable to remove Zone %s from ZoneSet %s\n", irZone.c_str(),
                irZoneSet.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  return ZONEDB_RC_OK;
}

int ZoneDb::add_zone_alias(const std::string& irService, const std::string& irZone,
                           const std::string& irAlias) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(add_zone_alias(irService, irZone, irAlias));
  ZoneDbZone* zone = ivZones.copyObject(irZone);
  if (zone == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find Zone %s\n", irZone.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  if (ivAliases.getObject(irAlias) == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find Zone Alias %s\n", irAlias.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  if (!zone->getAllZoneAliases().insert(irAlias).second) {
    TRACE_ERROR(kUnit, "Unable to add Zone Alias %s to Zone %s\n", irAlias.c_str(), irZone.c_str());
    return ZONEDB_RC_ADD_FAILED;
  }
  return ZONEDB_RC_OK;
}

int ZoneDb::remove_zone_alias(const std::string& irService, const std::string& irZone,
                              const std::string& irAlias) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(remove_zone_alias(irService, irZone, irAlias));
  ZoneDbZone* zone = ivZones.copyObject(irZone);
  if (zone == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find Zone %s\n", irZone.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  if (zone->getAllZoneAliases().erase(irAlias) == 0) {
    TRACE_ERROR(kUnit, "Unable to remove Zone Alias %s from Zone %s\n", irAlias.c_str(),
                irZone.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  return ZONEDB_RC_OK;
}

int ZoneDb::add_zone_member(const std::string& irService, const std::string& irZone,
                            const zone_member_data_t& irMember) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(add_zone_member(irService, irZone, irMember));
  ZoneDbZone* zone = ivZones.copyObject(irZone);
  if (zone == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find Zone %s\n", irZone.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  if (!zone->getAllZoneMembers().insert(ZoneDbZoneMember(irMember)).second) {
    TRACE_ERROR(kUnit, "Unable to add Zone Member %d - %s to Zone %s\n", irMember.member_type,
                irMember.member_id.c_str(), irZone.c_str());
    return ZONEDB_RC_ADD_FAILED;
  }
  return ZONEDB_RC_OK;
}

int ZoneDb::remove_zone_member(const std::string& irService, const std::string& irZone,
                               const zone_member_data_t& irMember) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(remove_zone_member(irService, irZone, irMember));
  ZoneDbZone* zone = ivZones.copyObject(irZone);
  if (zone == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find Zone %s\n", irZone.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  if (zone->getAllZoneMembers().erase(ZoneDbZoneMember(irMember)) == 0) {
    TRACE_ERROR(kUnit, "Unable to remove Zone Member %d - %s from Zone %s\n", irMember.member_type,
                irMember.member_id.c_str(), irZone.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  return ZONEDB_RC_OK;
}

int ZoneDb::add_alias_member(const std::string& irService, const std::string& irAlias,
                             const zone_member_data_t& irMember) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(add_alias_member(irService, irAlias, irMember));
  TRACE_DEBUG("Add Zone Member typ:%i\n", irMember.member_type);
  ZoneDbZoneAlias* alias = ivAliases.copyObject(irAlias);
  if (alias == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find alias %s\n", irAlias.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  if (!alias->getAllZoneMembers().insert(ZoneDbZoneMember(irMember)).second) {
    TRACE_ERROR(kUnit, "Unable to add Alias Member %d - %s to Alias %s\n", irMember.member_type,
                irMember.member_id.c_str(), irAlias.c_str());
    return ZONEDB_RC_ADD_FAILED;
  }
  return ZONEDB_RC_OK;
}

int ZoneDb::remove_alias_member(const std::string& irService, const std::string& irAlias,
                                const zone_member_data_t& irMember) {
  fcbb::MutexLock lock(ivMutex);
  if (!local()) ZONEDB_EDIT(remove_alias_member(irService, irAlias, irMember));
  ZoneDbZoneAlias* alias = ivAliases.copyObject(irAlias);
  if (alias == nullptr) {
    TRACE_ERROR(kUnit, "Unable to find alias %s\n", irAlias.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  if (alias->getAllZoneMembers().erase(ZoneDbZoneMember(irMember)) == 0) {
    TRACE_ERROR(kUnit, "Unable to remove Alias Member %d - %s from Alias %s\n",
                irMember.member_type, irMember.member_id.c_str(), irAlias.c_str());
    return ZONEDB_RC_NOT_FOUND;
  }
  return ZONEDB_RC_OK;
}

int ZoneDb::activate_zone_set(const std::string& irService, const std::string& irZoneSet,
                              cuint8 ipActivate) {
  fcbb::MutexLock lock(ivMutex);
  ZONEDB_EDIT(activate_zone_set(irService, irZoneSet, ipActivate));
}

// ---- sessions ----

int ZoneDb::session_start(const std::string& irService) {
  fcbb::MutexLock lock(ivMutex);
  TRACE_DEBUG("session_start\n");
  if (ivSessionState.load() != ZONEDB_SESSION_NONE) {
    TRACE_ERROR(kUnit, "Error, Transaction already ongoing\n");
    return ZONEDB_RC_SESSION_OPEN;
  }
  rs_api_client* c = client();
  if (c == nullptr) return -1;
  zone_tA zones;
  alias_tA aliases;
  zoneset_tA zoneSets;
  const int rc = c->session_start(irService, zones, aliases, zoneSets);
  if (rc != 0) return rc;
  ivSessionInProgress = true;
  const int initRc = init(zones, aliases, zoneSets);
  if (initRc != 0) {
    ivSessionInProgress = false;
    reset();
    c->session_end(irService);
    return initRc;
  }
  ivSessionState = ZONEDB_SESSION_STARTED;
  return ZONEDB_RC_OK;
}

int ZoneDb::session_end(const std::string& irService) {
  fcbb::MutexLock lock(ivMutex);
  TRACE_DEBUG("session_end\n");
  if (ivSessionState.load() != ZONEDB_SESSION_STARTED) {
    TRACE_ERROR(kUnit, "Error, no transaction to end\n");
    return ZONEDB_RC_NO_SESSION;
  }
  ivSessionState = ZONEDB_SESSION_ENDING;
  const int rc = commitChanges(irService);
  if (rc == 0) {
    rs_api_client* c = client();
    const int endRc = c == nullptr ? -1 : c->session_end(irService);
    if (endRc != 0) TRACE_ERROR(kUnit, "session_end() failed rc=%d. session reset.\n", endRc);
    zoningChanged_nl();
  }
  ivSessionInProgress = false;
  reset();
  return rc;
}

int ZoneDb::session_terminate(const std::string& irService) {
  fcbb::MutexLock lock(ivMutex);
  TRACE_DEBUG("session_terminate\n");
  rs_api_client* c = client();
  if (!ivSessionInProgress) {
    // A session the switch holds for someone else may be ended here too.
    zone_service_data_t service;
    if (c == nullptr || c->get_zone_service_data(irService, service) != 0 ||
        service.session_state != ZONEDB_SESSION_STARTED) {
      TRACE_ERROR(kUnit, "Error, no transaction to terminate\n");
      return ZONEDB_RC_NO_SESSION;
    }
  }
  ivSessionState = ZONEDB_SESSION_TERMINATING;
  const int rc = c == nullptr ? -1 : c->session_terminate(irService);
  ivSessionInProgress = false;
  reset();
  return rc;
}

int ZoneDb::init(const zone_tA& irZones, const alias_tA& irAliases, const zoneset_tA& irZoneSets) {
  TRACE_DEBUG("Initializing ZoneDb\n");
  for (const alias_t& record : irAliases) {
    std::unique_ptr<ZoneDbZoneAlias> alias(new ZoneDbZoneAlias(record.name));
    for (const zone_member_data_t& member : record.member_list) {
      alias->getAllZoneMembers().insert(ZoneDbZoneMember(member));
    }
    if (!ivAliases.addCurrent(std::move(alias))) {
      TRACE_ERROR(kUnit, "Unable to create Zone Alias Object\n");
      return ZONEDB_RC_CREATE_FAILED;
    }
  }
  for (const zone_t& record : irZones) {
    std::unique_ptr<ZoneDbZone> zone(new ZoneDbZone(record.name));
    for (const zone_member_data_t& member : record.member_list) {
      TRACE_DEBUG("read zone: %s with meber: %s\n", record.name.c_str(), member.member_id.c_str());
      zone->getAllZoneMembers().insert(ZoneDbZoneMember(member));
    }
    zone->getAllZoneAliases().insert(record.alias_names.begin(), record.alias_names.end());
    if (!ivZones.addCurrent(std::move(zone))) {
      TRACE_ERROR(kUnit, "Unable to create Zone Object\n");
      return ZONEDB_RC_CREATE_FAILED;
    }
  }
  for (const zoneset_t& record : irZoneSets) {
    std::unique_ptr<ZoneDbZoneSet> zoneSet(new ZoneDbZoneSet(record.name));
    zoneSet->getAllZones().insert(record.zone_names.begin(), record.zone_names.end());
    if (!ivZoneSets.addCurrent(std::move(zoneSet))) {
      TRACE_ERROR(kUnit, "Unable to create Zone Set Object\n");
      return ZONEDB_RC_CREATE_FAILED;
    }
  }
  TRACE_DEBUG("%zd Zone Alias Objects created\n", irAliases.size());
  TRACE_DEBUG("%zd Zone Objects created\n", irZones.size());
  TRACE_DEBUG("%zd Zone Set Objects created\n", irZoneSets.size());
  return ZONEDB_RC_OK;
}

void ZoneDb::reset() {
  TRACE_DEBUG("Resetting ZoneDb\n");
  assert(!ivSessionInProgress);
  ivSessionState = ZONEDB_SESSION_NONE;
  ivAliases.clear();
  ivZones.clear();
  ivZoneSets.clear();
}

// ---- commit ----

void ZoneDb::collectAliasChanges(zone_operation_tA& orRemove, zone_operation_tA& orDelete,
                                 zone_operation_tA& orCreate, zone_operation_tA& orAdd) const {
  collect(
      ivAliases, ZONE_KIND_ALIAS,
      [](const ZoneDbZoneAlias& irOld, const ZoneDbZoneAlias& irNew, zone_operation_tA& orR,
         zone_operation_tA& orA) {
        diff(ZONE_KIND_ALIAS, irNew.getName(), irOld.getAllZoneMembers(), irNew.getAllZoneMembers(),
             memberData, orR, orA);
      },
      orRemove, orDelete, orCreate, orAdd);
}

void ZoneDb::collectZoneChanges(zone_operation_tA& orRemove, zone_operation_tA& orDelete,
                                zone_operation_tA& orCreate, zone_operation_tA& orAdd) const {
  collect(
      ivZones, ZONE_KIND_ZONE,
      [](const ZoneDbZone& irOld, const ZoneDbZone& irNew, zone_operation_tA& orR,
         zone_operation_tA& orA) {
        diff(ZONE_KIND_ZONE, irNew.getName(), irOld.getAllZoneMembers(), irNew.getAllZoneMembers(),
             memberData, orR, orA);
        diff(
            ZONE_KIND_ZONE, irNew.getName(), irOld.getAllZoneAliases(), irNew.getAllZoneAliases(),
            [](const ZoneDbObjectName& irAlias) { return kindName(ZONE_KIND_ALIAS, irAlias); }, orR,
            orA);
      },
      orRemove, orDelete, orCreate, orAdd);
}

void ZoneDb::collectZoneSetChanges(zone_operation_tA& orRemove, zone_operation_tA& orDelete,
                                   zone_operation_tA& orCreate, zone_operation_tA& orAdd) const {
  collect(
      ivZoneSets, ZONE_KIND_ZONESET,
      [](const ZoneDbZoneSet& irOld, const ZoneDbZoneSet& irNew, zone_operation_tA& orR,
         zone_operation_tA& orA) {
        diff(
            ZONE_KIND_ZONESET, irNew.getName(), irOld.getAllZones(), irNew.getAllZones(),
            [](const ZoneDbObjectName& irZone) { return kindName(ZONE_KIND_ZONE, irZone); }, orR,
            orA);
      },
      orRemove, orDelete, orCreate, orAdd);
}

int ZoneDb::commitChangesList(const std::string& irService, const char* ipListName,
                              zone_operation_tA& iorOperations) {
  TRACE_DEBUG("commit changelist %s #changes=%d\n", ipListName,
              static_cast<int>(iorOperations.size()));
  if (iorOperations.empty()) return ZONEDB_RC_OK;
  rs_api_client* c = client();
  if (c == nullptr) return -1;
  for (std::size_t at = 0; at < iorOperations.size(); at += MAX_CHANGES_PER_CALL) {
    const std::size_t end = std::min(iorOperations.size(), at + MAX_CHANGES_PER_CALL);
    zone_operation_tA batch(std::make_move_iterator(iorOperations.begin() + at),
                            std::make_move_iterator(iorOperations.begin() + end));
    const int rc = c->session_update(irService, std::move(batch));
    if (rc != 0) return rc;
  }
  return ZONEDB_RC_OK;
}

int ZoneDb::commitChanges(const std::string& irService) {
  TRACE_DEBUG("Starting commit - ZoneService %s\n", irService.c_str());
  zone_operation_tA removeOps, deleteOps, createOps, addOps;
  collectAliasChanges(removeOps, deleteOps, createOps, addOps);
  collectZoneChanges(removeOps, deleteOps, createOps, addOps);
  collectZoneSetChanges(removeOps, deleteOps, createOps, addOps);
  const struct {
    const char* name;
    zone_operation_tA& list;
  } lists[] = {{"removeOperations", removeOps},
               {"deleteOperations", deleteOps},
               {"createOperations", createOps},
               {"addOperations", addOps}};
  int rc = ZONEDB_RC_OK;
  for (const auto& step : lists) {
    rc = commitChangesList(irService, step.name, step.list);
    if (rc != 0) {
      TRACE_ERROR(kUnit, "Error, commitChangesList for %s failed with rc %d\n", step.name, rc);
      rs_api_client* c = client();
      if (c != nullptr) c->session_terminate(irService);
      break;
    }
  }
  TRACE_DEBUG("Finished commit - ZoneService %s - rc %d\n", irService.c_str(), rc);
  return rc;
}
