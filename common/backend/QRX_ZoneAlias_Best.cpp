// Zone aliases: every alias of the zoning configuration (a session's own
// edits inside a session). Aliases have no active copies: an active zone
// lists its aliases' members as its own. Deleting an alias deletes it
// through ZoneDb.
#include "generated/scimbackend/QRX_ZoneAlias_Best.h"

#include "common/backend/LocalZoneDb.h"
#include "common/backend/ZoningObjects.h"
#include "common/base/trace.h"

namespace {

const char* const kUnit = "common/backend/QRX_ZoneAlias_Best";

bool fillAlias(QRX_ZoneAlias& orAlias, const QRX_ZoneAlias_Key& irKey) {
  ZoneEntityInstanceID id(ZONE_ENTITY_ALIAS, 0);
  if (!zoning::readId(irKey.InstanceID, ZONE_ENTITY_ALIAS, id)) {
    TRACE_ERROR(kUnit, "Error - InstanceID %s is not for a zone alias!\n",
                irKey.InstanceID.c_str());
    return false;
  }
  orAlias = QRX_ZoneAlias();
  orAlias.InstanceID = irKey.InstanceID;
  orAlias.ElementName = id.getEntityName();
  orAlias.CollectionAlias = id.getEntityName();
  orAlias.Caption = "ZoneAlias:" + id.getEntityName();
  orAlias.Description = orAlias.Caption;
  return true;
}

}  // namespace

bool QRX_ZoneAlias_Best::enumInstanceNames(QRX_ZoneAlias_KeyArray& out) {
  return zoning::keysOf(zoning::aliasIds, kUnit, out);
}

bool QRX_ZoneAlias_Best::enumInstances(QRX_ZoneAlias_Array& out) {
  QRX_ZoneAlias_KeyArray keys;
  return enumInstanceNames(keys) && zoning::objectsOf(keys, fillAlias, out);
}

bool QRX_ZoneAlias_Best::getInstance(const QRX_ZoneAlias_Key& key, QRX_ZoneAlias& out) {
  QRX_ZoneAlias_KeyArray keys;
  if (!enumInstanceNames(keys)) return false;
  if (zoning::objectOf(keys, key, fillAlias, out)) return true;
  TRACE_ERROR(kUnit, "Error, unable to get instance of zone alias with instance id %s\n",
              key.InstanceID.c_str());
  return false;
}

bool QRX_ZoneAlias_Best::deleteInstance(const QRX_ZoneAlias_Key& key) {
  ZoneEntityInstanceID id(ZONE_ENTITY_ALIAS, 0);
  if (!zoning::readId(key.InstanceID, ZONE_ENTITY_ALIAS, id) || id.isActive()) {
    TRACE_ERROR(kUnit, "Invalid instanceid-%s\n", key.InstanceID.c_str());
    return false;
  }
  TRACE_DEBUG("Deleting Zone Alias %s\n", id.getEntityName().c_str());
  const int rc = ZoneDb::getInstance().delete_zone_alias(id.getSwitchWwn(), id.getEntityName());
  if (rc != 0) {
    TRACE_ERROR(kUnit, "delete_zone_alias(%s, %s) failed with rc %d\n", id.getSwitchWwn().c_str(),
                id.getEntityName().c_str(), rc);
    return false;
  }
  return true;
}

// Zoning objects are created through the zone service and have no
// properties a client may change.
bool QRX_ZoneAlias_Best::createInstance(const QRX_ZoneAlias&, QRX_ZoneAlias_Key&) {
  TRACE_ERROR(kUnit, "Not supported\n");
  return false;
}

bool QRX_ZoneAlias_Best::modifyInstance(const QRX_ZoneAlias_Key&, const QRX_ZoneAlias&) {
  TRACE_ERROR(kUnit, "Not supported\n");
  return false;
}
