// Zones: every zone of the zoning configuration (a session's own edits
// inside a session), and the zones of the active zone set a second time as
// active copies. Deleting a zone deletes it through ZoneDb.
#include "generated/scimbackend/QRX_Zone_Best.h"

#include "common/backend/LocalZoneDb.h"
#include "common/backend/ZoningObjects.h"
#include "common/base/trace.h"

namespace {

const char* const kUnit = "common/backend/QRX_Zone_Best";

// A zone instance from its key alone.
bool fill_zone_data(QRX_Zone& orZone, const QRX_Zone_Key& irKey) {
  ZoneEntityInstanceID id(ZONE_ENTITY_ZONE, 0);
  if (!zoning::readId(irKey.InstanceID, ZONE_ENTITY_ZONE, id)) {
    TRACE_ERROR(kUnit, "Error - InstanceID %s is not for a zone!\n", irKey.InstanceID.c_str());
    return false;
  }
  orZone = QRX_Zone();
  orZone.InstanceID = irKey.InstanceID;
  orZone.ElementName = id.getEntityName();
  orZone.Active = id.isActive();
  orZone.ZoneType = 2;  // Default
  orZone.ZoneSubType = 0;
  orZone.ConnectivityStatus = 0;
  orZone.Caption = "Zone:" + id.getEntityName();
  orZone.Description = orZone.Caption;
  return true;
}

}  // namespace

bool QRX_Zone_Best::enumInstanceNames(QRX_Zone_KeyArray& out) {
  return zoning::keysOf(zoning::zoneIds, kUnit, out);
}

bool QRX_Zone_Best::enumInstances(QRX_Zone_Array& out) {
  QRX_Zone_KeyArray keys;
  return enumInstanceNames(keys) && zoning::objectsOf(keys, fill_zone_data, out);
}

bool QRX_Zone_Best::getInstance(const QRX_Zone_Key& key, QRX_Zone& out) {
  QRX_Zone_KeyArray keys;
  if (!enumInstanceNames(keys)) {
    TRACE_ERROR(kUnit, "Error, unable to enumerate zone instance Names\n");
    return false;
  }
  if (zoning::objectOf(keys, key, fill_zone_data, out)) return true;
  TRACE_ERROR(kUnit, "Error, unable to get instance of zone with instance id %s\n",
              key.InstanceID.c_str());
  return false;
}

bool QRX_Zone_Best::deleteInstance(const QRX_Zone_Key& key) {
  ZoneEntityInstanceID id(ZONE_ENTITY_ZONE, 0);
  if (!zoning::readId(key.InstanceID, ZONE_ENTITY_ZONE, id) || id.isActive()) {
    TRACE_ERROR(kUnit, "Invalid instaneid=%s\n", key.InstanceID.c_str());
    return false;
  }
  TRACE_DEBUG("Delete Zone %s\n", id.getEntityName().c_str());
  const int rc = ZoneDb::getInstance().delete_zone(id.getSwitchWwn(), id.getEntityName());
  if (rc != 0) {
    TRACE_ERROR(kUnit, "delete_zone(%s, %s) failed with rc %d\n", id.getSwitchWwn().c_str(),
                id.getEntityName().c_str(), rc);
    return false;
  }
  return true;
}

// Zoning objects are created through the zone service and have no
// properties a client may change.
bool QRX_Zone_Best::createInstance(const QRX_Zone&, QRX_Zone_Key&) {
  TRACE_ERROR(kUnit, "Error, this function is not supported\n");
  return false;
}

bool QRX_Zone_Best::modifyInstance(const QRX_Zone_Key&, const QRX_Zone&) {
  TRACE_ERROR(kUnit, "Error, this function is not supported\n");
  return false;
}
