// Zone sets: every zone set of the zoning configuration (a session's own
// edits inside a session), and the active zone set a second time as its
// active copy. Deleting a zone set deletes it through ZoneDb.
#include "generated/scimbackend/QRX_ZoneSet_Best.h"

#include "common/backend/LocalZoneDb.h"
#include "common/backend/ZoningObjects.h"
#include "common/base/trace.h"

namespace {

const char* const kUnit = "common/backend/QRX_ZoneSet_Best";

bool fillZoneSet(QRX_ZoneSet& orZoneSet, const QRX_ZoneSet_Key& irKey) {
  ZoneEntityInstanceID id(ZONE_ENTITY_ZONESET, 0);
  if (!zoning::readId(irKey.InstanceID, ZONE_ENTITY_ZONESET, id)) {
    TRACE_ERROR(kUnit, "Error - InstanceID %s is not for a zone set!\n", irKey.InstanceID.c_str());
    return false;
  }
  orZoneSet = QRX_ZoneSet();
  orZoneSet.InstanceID = irKey.InstanceID;
  orZoneSet.ElementName = id.getEntityName();
  orZoneSet.Active = id.isActive();
  orZoneSet.ConnectivityStatus = 0;
  orZoneSet.Caption = "ZoneSet:" + id.getEntityName();
  orZoneSet.Description = orZoneSet.Caption;
  return true;
}

}  // namespace

bool QRX_ZoneSet_Best::enumInstanceNames(QRX_ZoneSet_KeyArray& out) {
  return zoning::keysOf(zoning::zoneSetIds, kUnit, out);
}

bool QRX_ZoneSet_Best::enumInstances(QRX_ZoneSet_Array& out) {
  QRX_ZoneSet_KeyArray keys;
  return enumInstanceNames(keys) && zoning::objectsOf(keys, fillZoneSet, out);
}

bool QRX_ZoneSet_Best::getInstance(const QRX_ZoneSet_Key& key, QRX_ZoneSet& out) {
  QRX_ZoneSet_KeyArray keys;
  if (!enumInstanceNames(keys)) {
    TRACE_ERROR(kUnit, "Error, unable to enumerate zone set instance Names\n");
    return false;
  }
  if (zoning::objectOf(keys, key, fillZoneSet, out)) return true;
  TRACE_ERROR(kUnit, "Error, unable to get instance of zone set with instance id %s\n",
              key.InstanceID.c_str());
  return false;
}

bool QRX_ZoneSet_Best::deleteInstance(const QRX_ZoneSet_Key& key) {
  ZoneEntityInstanceID id(ZONE_ENTITY_ZONESET, 0);
  if (!zoning::readId(key.InstanceID, ZONE_ENTITY_ZONESET, id) || id.isActive()) {
    TRACE_ERROR(kUnit, "Invalid instanceid=%s\n", key.InstanceID.c_str());
    return false;
  }
  TRACE_DEBUG("Deleting ZoneSet Instance %s\n", key.InstanceID.c_str());
  const int rc = ZoneDb::getInstance().delete_zone_set(id.getSwitchWwn(), id.getEntityName());
  if (rc != 0) {
    TRACE_ERROR(kUnit, "delete_zone_set(%s, %s) failed with rc %d\n", id.getSwitchWwn().c_str(),
                id.getEntityName().c_str(), rc);
    return false;
  }
  return true;
}

// Zoning objects are created through the zone service and have no
// properties a client may change.
bool QRX_ZoneSet_Best::createInstance(const QRX_ZoneSet&, QRX_ZoneSet_Key&) {
  TRACE_ERROR(kUnit, "Error, this function is not supported\n");
  return false;
}

bool QRX_ZoneSet_Best::modifyInstance(const QRX_ZoneSet_Key&, const QRX_ZoneSet&) {
  TRACE_ERROR(kUnit, "Error, this function is not supported\n");
  return false;
}
