// ZoneDb: the library's own copy of the switch's zoning configuration for
// one zoning session, and the one way the library reads and changes zoning.
//
// Outside a session every query and edit goes straight to the switch (the
// request client call of the same name) and the database stays empty.
// session_start() asks the switch to open its session and copies the whole
// configuration (zone sets, zones, aliases) into versioned containers;
// from then on edits change only the local copy, and the name and member
// queries answer from it, so a client sees its own edits. session_end()
// turns the differences into a list of zone operations and sends it in
// batches of at most MAX_CHANGES_PER_CALL with session_update (removals,
// then deletions, creations and additions), then closes the switch's
// session; session_terminate() discards the edits and the switch's
// session. There is one session per switch: every client of the library
// shares it.
//
// Results: 0 success; ZONEDB_RC_ADD_FAILED (4) the name or member is
// already there; ZONEDB_RC_NOT_FOUND (7) no such object locally or nothing
// to remove; ZONEDB_RC_CREATE_FAILED (9) the name exists; ZONEDB_RC_NO_SESSION
// (32770) no session to end or terminate; ZONEDB_RC_SESSION_OPEN (32772) a
// session is already open; -1 no request client; any other value is the
// switch's.
//
// Thread-safety: every public operation holds the one mutex for its whole
// run, switch calls included; isClosingSession() reads without it.
#ifndef QRX_COMMON_BACKEND_LOCALZONEDB_H_
#define QRX_COMMON_BACKEND_LOCALZONEDB_H_

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "common/base/Mutex.h"
#include "generated/smis_ipc/smis_ipc.h"
#include "generated/smis_ipc/smis_ipc_client.h"

enum : int {
  ZONEDB_RC_OK = 0,
  ZONEDB_RC_ADD_FAILED = 4,
  ZONEDB_RC_NOT_FOUND = 7,
  ZONEDB_RC_CREATE_FAILED = 9,
  ZONEDB_RC_NO_SESSION = 32770,
  ZONEDB_RC_SESSION_OPEN = 32772,
};

// Session states.
enum : cuint16 {
  ZONEDB_SESSION_NONE = 0,
  ZONEDB_SESSION_STARTED = 2,
  ZONEDB_SESSION_ENDING = 3,
  ZONEDB_SESSION_TERMINATING = 4,
};

// zone_operation_t opcodes and the kind markers of data1.member_type (also
// used in data2 for a zone placed in a zone set and an alias placed in a
// zone).
enum : cuint16 {
  ZONE_OP_CREATE = 0,
  ZONE_OP_DELETE = 1,
  ZONE_OP_ADD = 2,
  ZONE_OP_REMOVE = 3,
};
enum : cuint16 {
  ZONE_KIND_ZONESET = 240,
  ZONE_KIND_ZONE = 241,
  ZONE_KIND_ALIAS = 242,
};

const unsigned MAX_CHANGES_PER_CALL = 20;

typedef std::string ZoneDbObjectName;

class ZoneDbObject {
 public:
  virtual ~ZoneDbObject() = default;
};

class ZoneDbNamedObject : public ZoneDbObject {
 public:
  explicit ZoneDbNamedObject(const ZoneDbObjectName& irName) : ivName(irName) {}
  const ZoneDbObjectName& getName() const { return ivName; }

 private:
  ZoneDbObjectName ivName;
};

// One member of a zone or alias, ordered by type, then identifier.
class ZoneDbZoneMember {
 public:
  ZoneDbZoneMember(cuint16 ipType, const std::string& irIdentifier)
      : ivType(ipType), ivIdentifier(irIdentifier) {}
  explicit ZoneDbZoneMember(const zone_member_data_t& irData)
      : ZoneDbZoneMember(irData.member_type, irData.member_id) {}
  cuint16 getType() const { return ivType; }
  const std::string& getIdentifier() const { return ivIdentifier; }
  zone_member_data_t toData() const;
  bool operator<(const ZoneDbZoneMember& irOther) const {
    return ivType != irOther.ivType ? ivType < irOther.ivType : ivIdentifier < irOther.ivIdentifier;
  }

 private:
  cuint16 ivType;
  std::string ivIdentifier;
};

typedef std::set<ZoneDbZoneMember> ZoneDbMemberSet;
typedef std::set<ZoneDbObjectName> ZoneDbNameSet;

class ZoneDbZone : public ZoneDbNamedObject {
 public:
  using ZoneDbNamedObject::ZoneDbNamedObject;
  ZoneDbMemberSet& getAllZoneMembers() { return ivMembers; }
  const ZoneDbMemberSet& getAllZoneMembers() const { return ivMembers; }
  ZoneDbNameSet& getAllZoneAliases() { return ivAliases; }
  const ZoneDbNameSet& getAllZoneAliases() const { return ivAliases; }

 private:
  ZoneDbMemberSet ivMembers;
  ZoneDbNameSet ivAliases;
};

class ZoneDbZoneAlias : public ZoneDbNamedObject {
 public:
  using ZoneDbNamedObject::ZoneDbNamedObject;
  ZoneDbMemberSet& getAllZoneMembers() { return ivMembers; }
  const ZoneDbMemberSet& getAllZoneMembers() const { return ivMembers; }

 private:
  ZoneDbMemberSet ivMembers;
};

class ZoneDbZoneSet : public ZoneDbNamedObject {
 public:
  using ZoneDbNamedObject::ZoneDbNamedObject;
  ZoneDbNameSet& getAllZones() { return ivZones; }
  const ZoneDbNameSet& getAllZones() const { return ivZones; }

 private:
  ZoneDbNameSet ivZones;
};

// One name's record: the object as the switch had it at the session's
// start (`current`, absent for an object created in the session), the
// edited copy (`next`, absent while unchanged) and the deletion flag.
template <class T>
class ZoneDbVersionizedObjectWrapper {
 public:
  const T* getCurrent() const { return ivCurrent.get(); }
  const T* getNext() const { return ivNext.get(); }
  bool isDeletionRequested() const { return ivDeletionRequested; }
  // The version a client sees: null once deleted.
  const T* getLive() const {
    if (ivDeletionRequested) return nullptr;
    return ivNext ? ivNext.get() : ivCurrent.get();
  }

 private:
  template <class U>
  friend class ZoneDbNamedObjectContainer;
  std::unique_ptr<T> ivCurrent;
  std::unique_ptr<T> ivNext;
  bool ivDeletionRequested = false;
};

// The objects of one kind by name, in name order.
template <class T>
class ZoneDbNamedObjectContainer {
 public:
  typedef ZoneDbVersionizedObjectWrapper<T> Wrapper;
  typedef typename std::map<ZoneDbObjectName, Wrapper>::const_iterator const_iterator;

  // A new object of the session (a `next` version only), or null when a
  // live object has that name ("Object %s already in container"). A name
  // deleted in this session is taken again: its record gets an empty
  // `next`, so the commit empties the switch's object instead of deleting
  // and re-creating it.
  T* createObject(const ZoneDbObjectName& irName);
  // Places the switch's object as `current`; false when the name is taken.
  bool addCurrent(std::unique_ptr<T> ipObject);
  // Requests the deletion of a live object; false when there is none.
  bool deleteObject(const ZoneDbObjectName& irName);
  // The live version of that name, or null.
  const T* getObject(const ZoneDbObjectName& irName) const;
  // The `next` version to edit (copied from `current` when there is none
  // yet), or null when no live object has that name.
  T* copyObject(const ZoneDbObjectName& irName);
  // The names of the live objects, or of every record.
  ZoneDbNameSet names(bool ipLiveOnly) const;

  const_iterator begin() const { return ivObjects.begin(); }
  const_iterator end() const { return ivObjects.end(); }
  void clear() { ivObjects.clear(); }

 private:
  std::map<ZoneDbObjectName, Wrapper> ivObjects;
};

class ZoneDb {
 public:
  typedef std::function<rs_api_client*()> ClientSource;

  // Reaches the switch through the client `ipClient` returns when called
  // (null: no connection, every switch call answers -1).
  explicit ZoneDb(ClientSource ipClient);
  ZoneDb(const ZoneDb&) = delete;
  ZoneDb& operator=(const ZoneDb&) = delete;

  // The process's database, over get_rs_api_client().
  static ZoneDb& getInstance();

  // Called, under the lock, after the switch's zoning changed through this
  // database (a direct edit, an activation, a commit); start-up lets it
  // re-read the fabric cache's active zone set.
  void setZoningChangedHook(std::function<void()> ipHook);

  // Whether a session is being committed or discarded (states 3 and 4):
  // the switch's zone change events of that time are the session's own.
  bool isClosingSession() const;
  cuint16 getSessionState() const { return ivSessionState.load(); }
  bool isSessionInProgress();

  // Queries.
  int get_zone_service_data(const std::string& irService, zone_service_data_t& orData);
  int get_zone_capabilities_data(const std::string& irService, zone_capabilities_data_t& orData);
  int get_active_zone_set(const std::string& irService, zoneset_t& orZoneSet);
  int get_zone_set_names(const std::string& irService, string_tA& orNames);
  int get_zone_names(const std::string& irService, string_tA& orNames);
  int get_zone_alias_names(const std::string& irService, string_tA& orNames);
  int get_zone_names_in_zone_set(const std::string& irService, const std::string& irZoneSet,
                                 string_tA& orNames);
  int get_zone_alias_names_in_zone(const std::string& irService, const std::string& irZone,
                                   string_tA& orNames);
  int get_all_zone_members(const std::string& irService, zone_member_data_tA& orMembers);
  int get_all_alias_members(const std::string& irService, zone_member_data_tA& orMembers);
  int get_zone_members_in_zone(const std::string& irService, const std::string& irZone,
                               zone_member_data_tA& orMembers);
  int get_zone_members_in_zone_alias(const std::string& irService, const std::string& irAlias,
                                     zone_member_data_tA& orMembers);
  // The members of a zone of the switch's active zone set, its own and its
  // aliases', each once; always from the switch. 7 when the zone is not
  // in the active zone set.
  int get_all_active_zone_members_in_zone(const std::string& irService, const std::string& irZone,
                                          zone_member_data_tA& orMembers);

  // Edits.
  int create_zone_set(const std::string& irService, const std::string& irName);
  int create_zone(const std::string& irService, const std::string& irName);
  int create_zone_alias(const std::string& irService, const std::string& irName);
  int delete_zone_set(const std::string& irService, const std::string& irName);
  int delete_zone(const std::string& irService, const std::string& irName);
  int delete_zone_alias(const std::string& irService, const std::string& irName);
  int add_zone(const std::string& irService, const std::string& irZoneSet,
               const std::string& irZone);
  int remove_zone(const std::string& irService, const std::string& irZoneSet,
                  const std::string& irZone);
  int add_zone_alias(const std::string& irService, const std::string& irZone,
                     const std::string& irAlias);
  int remove_zone_alias(const std::string& irService, const std::string& irZone,
                        const std::string& irAlias);
  int add_zone_member(const std::string& irService, const std::string& irZone,
                      const zone_member_data_t& irMember);
  int remove_zone_member(const std::string& irService, const std::string& irZone,
                         const zone_member_data_t& irMember);
  int add_alias_member(const std::string& irService, const std::string& irAlias,
                       const zone_member_data_t& irMember);
  int remove_alias_member(const std::string& irService, const std::string& irAlias,
                          const zone_member_data_t& irMember);
  // Always sent to the switch, in a session too.
  int activate_zone_set(const std::string& irService, const std::string& irZoneSet,
                        cuint8 ipActivate);

  // Sessions.
  int session_start(const std::string& irService);
  int session_end(const std::string& irService);
  int session_terminate(const std::string& irService);

  // Fills the database with the switch's configuration as `current`
  // versions; ZONEDB_RC_CREATE_FAILED when a name repeats.
  int init(const zone_tA& irZones, const alias_tA& irAliases, const zoneset_tA& irZoneSets);
  // Empties the database and returns the state to 0; asserts
  // "!ivSessionInProgress".
  void reset();

 private:
  rs_api_client* client();
  bool local() const { return ivSessionInProgress; }
  void zoningChanged_nl();
  int switchEdit_nl(int ipRc);

  int deleteZone_nl(const std::string& irName);

  int commitChanges(const std::string& irService);
  // Sends `iorOperations` in batches; their contents are moved out.
  int commitChangesList(const std::string& irService, const char* ipListName,
                        zone_operation_tA& iorOperations);
  void collectAliasChanges(zone_operation_tA& orRemove, zone_operation_tA& orDelete,
                           zone_operation_tA& orCreate, zone_operation_tA& orAdd) const;
  void collectZoneChanges(zone_operation_tA& orRemove, zone_operation_tA& orDelete,
                          zone_operation_tA& orCreate, zone_operation_tA& orAdd) const;
  void collectZoneSetChanges(zone_operation_tA& orRemove, zone_operation_tA& orDelete,
                             zone_operation_tA& orCreate, zone_operation_tA& orAdd) const;

  bool ivSessionInProgress = false;
  std::atomic<cuint16> ivSessionState{ZONEDB_SESSION_NONE};
  ZoneDbNamedObjectContainer<ZoneDbZoneSet> ivZoneSets;
  ZoneDbNamedObjectContainer<ZoneDbZone> ivZones;
  ZoneDbNamedObjectContainer<ZoneDbZoneAlias> ivAliases;
  fcbb::Mutex ivMutex;

  ClientSource ivClient;
  std::function<void()> ivZoningChanged;
};

#endif  // QRX_COMMON_BACKEND_LOCALZONEDB_H_
