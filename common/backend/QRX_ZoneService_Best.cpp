// The zone service of the switch: its instance, and the methods through
// which a client opens and closes zoning sessions and creates, combines and
// activates zoning objects. Every change goes through ZoneDb, which sends
// it to the switch at once outside a session and stages it inside one.
//
// Results: 0 success; 1 an unusable argument (or a method not supported);
// 7 the zone service is unknown; otherwise ZoneDb's or the switch's code.
#include "generated/scimbackend/QRX_ZoneService_Best.h"

#include "common/backend/LocalZoneDb.h"
#include "common/backend/ZoningHelper.h"
#include "common/backend/ZoningObjects.h"
#include "common/base/trace.h"
#include "generated/scimbackend/QRX_Switch_Best.h"

namespace {

const char* const kUnit = "common/backend/QRX_ZoneService_Best";

enum : cuint32 { kUnusable = 1, kNoService = 7 };

enum : cuint16 {
  kSessionStart = 2,
  kSessionEnd = 3,
  kSessionTerminate = 4,
  kSessionNoChange = 5,
};

// The service the key names, or false after an error line.
bool readService(const QRX_ZoneService_Key& irKey, QRX_ZoneService& orService,
                 bool ipForZoneSet = false) {
  if (QRX_ZoneService_Best::singleton.getInstance(irKey, orService)) return true;
  if (ipForZoneSet) {
    TRACE_ERROR(kUnit, "Unable to get instance with name %s\n", irKey.Name.c_str());
  } else {
    TRACE_ERROR(kUnit, "Unable to get zone service instance with name %s\n", irKey.Name.c_str());
  }
  return false;
}

// A name a client gives a new object: it must fit an InstanceID.
bool usableName(const std::string& irName) {
  if (ZoneEntityInstanceID::fitsEntityName(irName) && !irName.empty()) return true;
  TRACE_ERROR(kUnit, "Name \"%s\" is empty or longer than %u characters\n", irName.c_str(),
              ENTITY_NAME_SIZE - 1);
  return false;
}

// Creates the zone set, zone or alias a client names with `ipCreate` (the
// ZoneDb call `ipCall`) and hands out its InstanceID.
cuint32 createNamed(const std::string& irService, char ipType, const std::string& irName,
                    int (ZoneDb::*ipCreate)(const std::string&, const std::string&),
                    const char* ipCall, cstring& orInstanceId) {
  if (!usableName(irName)) return kUnusable;
  const int rc = (ZoneDb::getInstance().*ipCreate)(irService, irName);
  if (rc != 0) {
    TRACE_ERROR(kUnit, "%s(%s, %s) failed with rc %d\n", ipCall, irService.c_str(), irName.c_str(),
                rc);
    return static_cast<cuint32>(rc);
  }
  orInstanceId = makeZoneInstanceId(ipType, irService, irName);
  return 0;
}

// A zone set, zone or alias InstanceID argument (`ipWhat` names it in the
// error line).
bool readArgument(const std::string& irText, char ipType, const char* ipWhat,
                  ZoneEntityInstanceID& orId) {
  if (zoning::readId(irText, ipType, orId)) return true;
  TRACE_ERROR(kUnit, "Error, %s InstanceID %s is not as expected\n", ipWhat, irText.c_str());
  return false;
}

// Adds a member (an alias when its type is ConnectivityCollection) to the
// zone or alias `irCollection` names.
cuint32 addMember(const std::string& irService, const ZoneEntityInstanceID& irCollection,
                  cuint16 ipType, const std::string& irId) {
  ZoneDb& db = ZoneDb::getInstance();
  const std::string name = irCollection.getEntityName();
  zone_member_data_t member;
  member.member_type = ipType;
  member.member_id = irId;
  int rc;
  if (irCollection.getEntityType() == ZONE_ENTITY_ZONE) {
    if (ipType == ConnectivityMember_ConnectivityCollection) {
      TRACE_DEBUG("Adding alias %s to zone %s\n", irId.c_str(), name.c_str());
      rc = db.add_zone_alias(irService, name, irId);
    } else {
      TRACE_DEBUG("Adding member type %d with id %s to zone %s\n", ipType, irId.c_str(),
                  name.c_str());
      rc = db.add_zone_member(irService, name, member);
    }
    if (rc == ZONEDB_RC_NOT_FOUND) {
      TRACE_ERROR(kUnit, "No zone with instance ID %s found\n", irCollection.text().c_str());
    }
    return static_cast<cuint32>(rc);
  }
  if (ipType == ConnectivityMember_ConnectivityCollection) {
    TRACE_ERROR(kUnit, "Error, ALIAS inside ALIAS not allowed!\n");
    return kUnusable;
  }
  TRACE_DEBUG("Adding member type %d with id %s to alias %s\n", ipType, irId.c_str(), name.c_str());
  rc = db.add_alias_member(irService, name, member);
  if (rc == ZONEDB_RC_NOT_FOUND) {
    TRACE_ERROR(kUnit, "No zone alias with instance ID %s found\n", irCollection.text().c_str());
  }
  return static_cast<cuint32>(rc);
}

// The zone or alias a collection reference names, or false.
bool readCollection(const std::string& irText, ZoneEntityInstanceID& orId) {
  if (zoning::readId(irText, ZONE_ENTITY_ZONE, orId) ||
      zoning::readId(irText, ZONE_ENTITY_ALIAS, orId)) {
    return true;
  }
  TRACE_ERROR(kUnit, "Error, collection InstanceID %s is neither a zone nor a zone alias\n",
              irText.c_str());
  return false;
}

}  // namespace

bool QRX_ZoneService_Best::enumInstanceNames(QRX_ZoneService_KeyArray& out) {
  QRX_Switch_KeyArray switches;
  if (!QRX_Switch_Best::singleton.enumInstanceNames(switches)) {
    TRACE_ERROR(kUnit, "Unable to enumerate switch instance names\n");
    return false;
  }
  for (const QRX_Switch_Key& sw : switches) {
    QRX_ZoneService_Key key;
    key.SystemCreationClassName = sw.CreationClassName;
    key.SystemName = sw.Name;
    key.CreationClassName = className;
    key.Name = sw.Name;
    out.push_back(key);
  }
  return true;
}

bool QRX_ZoneService_Best::enumInstances(QRX_ZoneService_Array& out) {
  QRX_ZoneService_KeyArray names;
  if (!enumInstanceNames(names)) {
    TRACE_ERROR(kUnit, "Unable to enumerate zone service instance names\n");
    return false;
  }
  for (const QRX_ZoneService_Key& key : names) {
    QRX_ZoneService service;
    if (!getInstance(key, service)) return false;
    out.push_back(service);
  }
  return true;
}

bool QRX_ZoneService_Best::getInstance(const QRX_ZoneService_Key& key, QRX_ZoneService& out) {
  QRX_Switch_Key switchKey;
  switchKey.CreationClassName = key.SystemCreationClassName;
  switchKey.Name = key.SystemName;
  QRX_Switch sw;
  if (!QRX_Switch_Best::singleton.getInstance(switchKey, sw)) {
    TRACE_ERROR(kUnit, "Unable to get switch with name %s\n", key.SystemName.c_str());
    return false;
  }
  if (key.CreationClassName != className || key.Name != sw.Name) {
    TRACE_ERROR(kUnit, "Unable to get zone service %s\n", key.Name.c_str());
    return false;
  }
  zone_service_data_t data;
  const int rc = ZoneDb::getInstance().get_zone_service_data(key.Name, data);
  if (rc != 0) {
    TRACE_ERROR(kUnit, "Error, unable to get zone service data for zone service %s, rc: %d\n",
                key.Name.c_str(), rc);
    return false;
  }
  out = QRX_ZoneService();
  out.SystemCreationClassName = key.SystemCreationClassName;
  out.SystemName = key.SystemName;
  out.CreationClassName = className;
  out.Name = key.Name;
  out.ElementName = "Zone Service";
  out.Caption = "ZoneService:" + key.Name;
  out.Description = "Zoning of switch " + key.Name;
  out.StartMode = "Automatic";
  out.Started = true;
  out.EnabledState = 2;                // Enabled
  out.RequestedState = 12;             // Not Applicable
  out.EnabledDefault = 2;              // Enabled
  out.OperationalStatus.push_back(2);  // OK
  out.HealthState = 5;                 // OK
  out.SessionState = data.session_state;
  out.RequestedSessionState = data.requested_session_state;
  out.DefaultZoningState = data.default_zoning_state;
  return true;
}

cuint32 QRX_ZoneService_Best::CreateZoneSet(const QRX_ZoneService_Key& key, cstring ZoneSetName,
                                            QRX_ZoneSet_Key& ZoneSet) {
  QRX_ZoneService service;
  if (!readService(key, service, true)) return kNoService;
  TRACE_DEBUG("Creating ZoneSet %s\n", ZoneSetName.c_str());
  return createNamed(service.Name, ZONE_ENTITY_ZONESET, ZoneSetName, &ZoneDb::create_zone_set,
                     "create_zone_set", ZoneSet.InstanceID);
}

cuint32 QRX_ZoneService_Best::CreateZone(const QRX_ZoneService_Key& key, cstring ZoneName,
                                         cuint16 ZoneType, cuint16, QRX_Zone_Key& Zone) {
  QRX_ZoneService service;
  if (!readService(key, service)) return kNoService;
  if (ZoneType != 2) {
    TRACE_ERROR(kUnit, "Other ZoneType than 'Default' is not supported - Provide ZoneType: %d!\n",
                ZoneType);
    return kUnusable;
  }
  TRACE_DEBUG("Creating Zone - ZoneType: %d - ZoneName: %s\n", ZoneType, ZoneName.c_str());
  return createNamed(service.Name, ZONE_ENTITY_ZONE, ZoneName, &ZoneDb::create_zone, "create_zone",
                     Zone.InstanceID);
}

cuint32 QRX_ZoneService_Best::CreateZoneAlias(const QRX_ZoneService_Key& key,
                                              cstring CollectionAlias,
                                              QRX_ZoneAlias_Key& ZoneAlias) {
  QRX_ZoneService service;
  if (!readService(key, service)) return kNoService;
  TRACE_DEBUG("Creating ZoneAlias %s\n", CollectionAlias.c_str());
  return createNamed(service.Name, ZONE_ENTITY_ALIAS, CollectionAlias, &ZoneDb::create_zone_alias,
                     "create_zone_alias", ZoneAlias.InstanceID);
}

cuint32 QRX_ZoneService_Best::AddZone(const QRX_ZoneService_Key& key,
                                      const QRX_ZoneSet_Key& ZoneSet, const QRX_Zone_Key& Zone) {
  QRX_ZoneService service;
  if (!readService(key, service)) return kNoService;
  ZoneEntityInstanceID zoneSet(ZONE_ENTITY_ZONESET, 0);
  if (!readArgument(ZoneSet.InstanceID, ZONE_ENTITY_ZONESET, "ZoneSet", zoneSet)) return kUnusable;
  ZoneEntityInstanceID zone(ZONE_ENTITY_ZONE, 0);
  if (!readArgument(Zone.InstanceID, ZONE_ENTITY_ZONE, "Zone", zone)) return kUnusable;
  TRACE_DEBUG("Add Zone %s to ZoneSet %s\n", zone.getEntityName().c_str(),
              zoneSet.getEntityName().c_str());
  const int rc =
      ZoneDb::getInstance().add_zone(service.Name, zoneSet.getEntityName(), zone.getEntityName());
  if (rc != 0) {
    TRACE_ERROR(kUnit, "add_zone(%s, %s) failed with rc %d\n", zoneSet.getEntityName().c_str(),
                zone.getEntityName().c_str(), rc);
  }
  return static_cast<cuint32>(rc);
}

cuint32 QRX_ZoneService_Best::AddZoneAlias(const QRX_ZoneService_Key& key, const QRX_Zone_Key& Zone,
                                           const QRX_ZoneAlias_Key& ZoneAlias) {
  QRX_ZoneService service;
  if (!readService(key, service)) return kNoService;
  ZoneEntityInstanceID zone(ZONE_ENTITY_ZONE, 0);
  if (!readArgument(Zone.InstanceID, ZONE_ENTITY_ZONE, "Zone", zone)) return kUnusable;
  ZoneEntityInstanceID alias(ZONE_ENTITY_ALIAS, 0);
  if (!readArgument(ZoneAlias.InstanceID, ZONE_ENTITY_ALIAS, "Zone Alias", alias)) return kUnusable;
  TRACE_DEBUG("Add Alias %s to Zone %s\n", alias.getEntityName().c_str(),
              zone.getEntityName().c_str());
  const int rc = ZoneDb::getInstance().add_zone_alias(service.Name, zone.getEntityName(),
                                                      alias.getEntityName());
  if (rc != 0) {
    TRACE_ERROR(kUnit, "add_zone_alias(%s, %s) failed with rc %d\n", zone.getEntityName().c_str(),
                alias.getEntityName().c_str(), rc);
  }
  return static_cast<cuint32>(rc);
}

cuint32 QRX_ZoneService_Best::CreateZoneMembershipSettingData(
    const QRX_ZoneService_Key& key, cuint16 ConnectivityMemberType, cstring ConnectivityMemberID,
    const CIM_SystemSpecificCollection_Key& SystemSpecificCollection,
    QRX_ZoneMembershipSettingData_Key& ZoneMembershipSettingData) {
  QRX_ZoneService service;
  if (!readService(key, service)) return kNoService;
  if (!checkConnectivityMemberType(ConnectivityMemberType)) {
    TRACE_ERROR(kUnit, "Bad ConnectivityMemberType %d\n", ConnectivityMemberType);
    return kUnusable;
  }
  if (!checkConnectivityMemberID(ConnectivityMemberType, ConnectivityMemberID) ||
      !usableName(ConnectivityMemberID)) {
    TRACE_ERROR(kUnit, "Bad ConnectivityMemberId %s to ConnectivityMemberType %d\n",
                ConnectivityMemberID.c_str(), ConnectivityMemberType);
    return kUnusable;
  }
  ZoneEntityInstanceID collection(ZONE_ENTITY_ZONE, 0);
  if (!readCollection(SystemSpecificCollection.InstanceID, collection)) return kUnusable;
  const cuint32 rc =
      addMember(service.Name, collection, ConnectivityMemberType, ConnectivityMemberID);
  if (rc != 0) return rc;
  ZoneMembershipSettingData.InstanceID = makeZoneInstanceId(
      ZONE_ENTITY_MEMBER, service.Name, ConnectivityMemberID, ConnectivityMemberType);
  return 0;
}

cuint32 QRX_ZoneService_Best::AddZoneMembershipSettingData(
    const QRX_ZoneService_Key& key,
    const CIM_SystemSpecificCollection_Key& SystemSpecificCollection,
    const QRX_ZoneMembershipSettingData_Key& ZoneMembershipSettingData) {
  QRX_ZoneService service;
  if (!readService(key, service)) return kNoService;
  const std::string& text = ZoneMembershipSettingData.InstanceID;
  ZoneEntityInstanceID member(ZONE_ENTITY_MEMBER, 0);
  if (!zoning::readId(text, ZONE_ENTITY_MEMBER, member) ||
      !checkConnectivityMemberType(member.getMemberType())) {
    TRACE_ERROR(kUnit, "Unable to use ZoneMember Instance ID %s\n", text.c_str());
    return kUnusable;
  }
  TRACE_DEBUG("Creating ZoneMembershipSettingData inst_id=%s\n", text.c_str());
  ZoneEntityInstanceID collection(ZONE_ENTITY_ZONE, 0);
  if (!readCollection(SystemSpecificCollection.InstanceID, collection)) return kUnusable;
  const cuint32 rc =
      addMember(service.Name, collection, static_cast<cuint16>(member.getMemberType()),
                member.getEntityName());
  if (rc != 0) {
    TRACE_ERROR(kUnit, "CreateZoneMembershipSettingData() failed with rc %d inst_id=%s\n",
                static_cast<int>(rc), text.c_str());
  }
  return rc;
}

cuint32 QRX_ZoneService_Best::ActivateZoneSet(const QRX_ZoneService_Key& key,
                                              const QRX_ZoneSet_Key& ZoneSet, cboolean Activate) {
  QRX_ZoneService service;
  if (!readService(key, service)) return kNoService;
  ZoneEntityInstanceID zoneSet(ZONE_ENTITY_ZONESET, 0);
  if (!readArgument(ZoneSet.InstanceID, ZONE_ENTITY_ZONESET, "ZoneSet", zoneSet)) return kUnusable;
  const std::string name = zoneSet.getEntityName();
  TRACE_DEBUG("Activate Zone Set %s - Activate %d\n", name.c_str(), Activate ? 1 : 0);
  const int rc = ZoneDb::getInstance().activate_zone_set(service.Name, name, Activate ? 1 : 0);
  if (rc != 0) {
    TRACE_ERROR(kUnit, "activate_zone_set(%s, %d) failed with rc %d\n", name.c_str(),
                Activate ? 1 : 0, rc);
  }
  return static_cast<cuint32>(rc);
}

cuint32 QRX_ZoneService_Best::SessionControl(const QRX_ZoneService_Key& key,
                                             cuint16 RequestedSessionState) {
  QRX_ZoneService service;
  if (!readService(key, service)) return kNoService;
  ZoneDb& db = ZoneDb::getInstance();
  int rc = 0;
  switch (RequestedSessionState) {
    case kSessionStart:
      TRACE_DEBUG("Start Session\n");
      rc = db.session_start(service.Name);
      // A start that failed on the switch leaves its session cleaned up;
      // the session this library already holds (shared by every client)
      // stays.
      if (rc != 0 && rc != ZONEDB_RC_SESSION_OPEN) db.session_terminate(service.Name);
      break;
    case kSessionEnd:
      TRACE_DEBUG("End Session\n");
      rc = db.session_end(service.Name);
      break;
    case kSessionTerminate:
      TRACE_DEBUG("Terminate Session\n");
      rc = db.session_terminate(service.Name);
      break;
    case kSessionNoChange:
      return 0;
    default:
      TRACE_ERROR(kUnit, "Unknown requested state %d\n", RequestedSessionState);
      rc = kUnusable;
      break;
  }
  if (rc != 0) TRACE_ERROR(kUnit, "SessionControl() fails with rc %d\n", rc);
  return static_cast<cuint32>(rc);
}

cuint32 QRX_ZoneService_Best::StartService(const QRX_ZoneService_Key&) {
  TRACE_ERROR(kUnit, "Not Supported\n");
  return kUnusable;
}

cuint32 QRX_ZoneService_Best::StopService(const QRX_ZoneService_Key&) {
  TRACE_ERROR(kUnit, "Not Supported\n");
  return kUnusable;
}
