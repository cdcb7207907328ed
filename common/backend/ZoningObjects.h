// What the zoning backends share: the zone services they walk, the
// InstanceIDs of the objects each service holds, and the reading of a
// client's InstanceID.
//
// Every zoning object belongs to the zone service of one switch, named by
// the switch's 16-character WWN; the WWN in an object's InstanceID is the
// service name handed to ZoneDb. The listings read through ZoneDb, so
// inside a zoning session they show the session's edits; an object that
// is in the switch's active zone set is listed a second time as its active
// copy (InstanceID starting with "1").
//
// Each function returns false after an error line (with `ipUnit`, the
// calling backend's source unit). A name from the switch that does not fit
// an InstanceID is left out with an error line.
#ifndef QRX_COMMON_BACKEND_ZONINGOBJECTS_H_
#define QRX_COMMON_BACKEND_ZONINGOBJECTS_H_

#include <string>
#include <vector>

#include "common/backend/LocalZoneDb.h"
#include "common/backend/ZoningHelper.h"
#include "common/base/trace.h"
#include "generated/smis_ipc/smis_ipc.h"

namespace zoning {

// The names of the zone services: one per switch.
bool serviceNames(const char* ipUnit, std::vector<std::string>& orNames);

// The InstanceID of an object of `irService`, or false (with an error
// line) when the service or the name does not fit the layout.
bool makeId(const char* ipUnit, char ipType, const std::string& irService,
            const std::string& irName, unsigned ipMemberType, bool ipActive, std::string& orId);

// A client's InstanceID when it fits the layout and is of type `ipType`;
// false without a trace line (the caller names what it expected).
bool readId(const std::string& irText, char ipType, ZoneEntityInstanceID& orId);

// The switch's active zone set of a service (an empty name when none).
bool activeZoneSet(const char* ipUnit, const std::string& irService, zoneset_t& orZoneSet);

// The InstanceIDs of every zone set, zone, alias and zone member of every
// service, active copies included.
bool zoneSetIds(const char* ipUnit, std::vector<std::string>& orIds);
bool zoneIds(const char* ipUnit, std::vector<std::string>& orIds);
bool aliasIds(const char* ipUnit, std::vector<std::string>& orIds);
bool memberIds(const char* ipUnit, std::vector<std::string>& orIds);

// The two ends of a zoning association a client asks to delete: of the
// types given, neither an active copy, both of one switch. False after the
// error line `ipLeftError` or `ipRightError` (with the InstanceID), or
// "Unable to work with Instance ID %s".
bool readEnds(const char* ipUnit, const std::string& irLeft, char ipLeftType,
              const char* ipLeftError, const std::string& irRight, char ipRightType,
              const char* ipRightError, ZoneEntityInstanceID& orLeft,
              ZoneEntityInstanceID& orRight);

// The member a zone member's InstanceID names.
zone_member_data_t memberOf(const ZoneEntityInstanceID& irMember);

// The names a ZoneDb query lists for a service, or false after "%s(%s)
// failed with rc %d" (with `ipQueryName`).
bool namesOf(const char* ipUnit, const char* ipQueryName,
             int (ZoneDb::*ipQuery)(const std::string&, string_tA&), const std::string& irService,
             string_tA& orNames);

// What a ZoneDb query lists for one object `irName` of a service, or
// false after "%s(%s, %s) failed with rc %d" (with `ipQueryName`).
template <class ListT>
bool listOf(const char* ipUnit, const char* ipQueryName,
            int (ZoneDb::*ipQuery)(const std::string&, const std::string&, ListT&),
            const std::string& irService, const std::string& irName, ListT& orList) {
  const int rc = (ZoneDb::getInstance().*ipQuery)(irService, irName, orList);
  if (rc != 0) {
    TRACE_ERROR(ipUnit, "%s(%s, %s) failed with rc %d\n", ipQueryName, irService.c_str(),
                irName.c_str(), rc);
    return false;
  }
  return true;
}

// Whether `irNames` (sorted) holds `irName`.
bool sortedHas(const std::vector<std::string>& irNames, const std::string& irName);

// The keys of the objects an id listing (zoneIds, ...) names.
template <class KeyArrayT>
bool keysOf(bool (*ipIds)(const char*, std::vector<std::string>&), const char* ipUnit,
            KeyArrayT& orKeys) {
  std::vector<std::string> ids;
  if (!ipIds(ipUnit, ids)) return false;
  for (const std::string& id : ids) {
    typename KeyArrayT::value_type key;
    key.InstanceID = id;
    orKeys.push_back(key);
  }
  return true;
}

// The object of each key, built by `irFill(object, key)` from the key alone.
template <class KeyArrayT, class ArrayT, class FillT>
bool objectsOf(const KeyArrayT& irKeys, const FillT& irFill, ArrayT& orObjects) {
  for (const auto& key : irKeys) {
    typename ArrayT::value_type object;
    if (!irFill(object, key)) return false;
    orObjects.push_back(object);
  }
  return true;
}

// The object of `irKey` when `irKeys` lists it.
template <class KeyArrayT, class KeyT, class ObjectT, class FillT>
bool objectOf(const KeyArrayT& irKeys, const KeyT& irKey, const FillT& irFill, ObjectT& orObject) {
  for (const auto& key : irKeys) {
    if (key.InstanceID == irKey.InstanceID) return irFill(orObject, key);
  }
  return false;
}

}  // namespace zoning

#endif  // QRX_COMMON_BACKEND_ZONINGOBJECTS_H_
