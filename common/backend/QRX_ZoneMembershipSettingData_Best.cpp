// Zone members: every distinct member of the zones and aliases (a
// session's own edits inside a session), and the members of the active
// zones, their aliases' included, a second time as active copies. Members
// are taken out of zones and aliases through the association classes.
#include "generated/scimbackend/QRX_ZoneMembershipSettingData_Best.h"

#include "common/backend/ZoningObjects.h"
#include "common/base/trace.h"

namespace {

const char* const kUnit = "common/backend/QRX_ZoneMembershipSettingData_Best";

bool fillMember(QRX_ZoneMembershipSettingData& orMember,
                const QRX_ZoneMembershipSettingData_Key& irKey) {
  ZoneEntityInstanceID id(ZONE_ENTITY_MEMBER, 0);
  if (!zoning::readId(irKey.InstanceID, ZONE_ENTITY_MEMBER, id)) {
    TRACE_ERROR(kUnit, "Error - InstanceID %s is not for a zone member!\n",
                irKey.InstanceID.c_str());
    return false;
  }
  orMember = QRX_ZoneMembershipSettingData();
  orMember.InstanceID = irKey.InstanceID;
  orMember.ElementName = id.getEntityName();
  orMember.ConnectivityMemberType = static_cast<cuint16>(id.getMemberType());
  orMember.ConnectivityMemberID = id.getEntityName();
  orMember.Caption = "ZoneMember:" + id.getEntityName();
  orMember.Description = orMember.Caption;
  return true;
}

}  // namespace

bool QRX_ZoneMembershipSettingData_Best::enumInstanceNames(
    QRX_ZoneMembershipSettingData_KeyArray& out) {
  return zoning::keysOf(zoning::memberIds, kUnit, out);
}

bool QRX_ZoneMembershipSettingData_Best::enumInstances(QRX_ZoneMembershipSettingData_Array& out) {
  QRX_ZoneMembershipSettingData_KeyArray keys;
  return enumInstanceNames(keys) && zoning::objectsOf(keys, fillMember, out);
}

bool QRX_ZoneMembershipSettingData_Best::getInstance(const QRX_ZoneMembershipSettingData_Key& key,
                                                     QRX_ZoneMembershipSettingData& out) {
  QRX_ZoneMembershipSettingData_KeyArray keys;
  if (!enumInstanceNames(keys)) return false;
  if (zoning::objectOf(keys, key, fillMember, out)) return true;
  TRACE_ERROR(kUnit, "Error, unable to get instance of zone member with instance id %s\n",
              key.InstanceID.c_str());
  return false;
}

// Zoning objects are created through the zone service and have no
// properties a client may change.
bool QRX_ZoneMembershipSettingData_Best::createInstance(const QRX_ZoneMembershipSettingData&,
                                                        QRX_ZoneMembershipSettingData_Key&) {
  TRACE_ERROR(kUnit, "Not supported\n");
  return false;
}

bool QRX_ZoneMembershipSettingData_Best::modifyInstance(const QRX_ZoneMembershipSettingData_Key&,
                                                        const QRX_ZoneMembershipSettingData&) {
  TRACE_ERROR(kUnit, "Not supported\n");
  return false;
}

// Members leave zones and aliases through the association classes.
bool QRX_ZoneMembershipSettingData_Best::deleteInstance(const QRX_ZoneMembershipSettingData_Key&) {
  TRACE_ERROR(kUnit, "Not supported\n");
  return false;
}
