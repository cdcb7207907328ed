#include "tests/provider/ScriptedBackends.h"

BackendScript& script() {
  static BackendScript current;
  return current;
}

void resetScript() { script() = BackendScript(); }

namespace {

bool answer(const char* ipCall) {
  script().calls.push_back(ipCall);
  return script().answer;
}

cuint32 methodResult(const char* ipCall) {
  script().calls.push_back(ipCall);
  return script().methodResult;
}

}  // namespace

// ---------------------------------------------------------------------------
// QRX_Switch

QRX_Switch_Best QRX_Switch_Best::singleton;

bool QRX_Switch_Best::enumInstanceNames(QRX_Switch_KeyArray& out) {
  for (const auto& object : script().switches) out.push_back(QRX_Switch_Key(object));
  return answer("QRX_Switch.enumInstanceNames");
}

bool QRX_Switch_Best::enumInstances(QRX_Switch_Array& out) {
  out = script().switches;
  return answer("QRX_Switch.enumInstances");
}

bool QRX_Switch_Best::getInstance(const QRX_Switch_Key& key, QRX_Switch& out) {
  script().switchKey = key;
  for (const auto& object : script().switches) {
    if (QRX_Switch_Key(object) == key) {
      out = object;
      return answer("QRX_Switch.getInstance");
    }
  }
  answer("QRX_Switch.getInstance");
  return false;
}

bool QRX_Switch_Best::createInstance(const QRX_Switch& object, QRX_Switch_Key& out) {
  script().created = object;
  out = QRX_Switch_Key(object);
  return answer("QRX_Switch.createInstance");
}

bool QRX_Switch_Best::modifyInstance(const QRX_Switch_Key&, const QRX_Switch&) {
  return answer("QRX_Switch.modifyInstance");
}

bool QRX_Switch_Best::deleteInstance(const QRX_Switch_Key& key) {
  script().switchKey = key;
  return answer("QRX_Switch.deleteInstance");
}

cuint32 QRX_Switch_Best::RequestStateChange(const QRX_Switch_Key& key, cuint16 RequestedState,
                                            CIM_ConcreteJob_Key& Job, cdatetime TimeoutPeriod) {
  script().switchKey = key;
  script().number = RequestedState;
  script().time = TimeoutPeriod;
  Job.InstanceID = script().outputId;
  return methodResult("QRX_Switch.RequestStateChange");
}

cuint32 QRX_Switch_Best::SetPowerState(const QRX_Switch_Key&, cuint32, cdatetime) {
  return methodResult("QRX_Switch.SetPowerState");
}

// ---------------------------------------------------------------------------
// QRX_SwitchInFabric: GroupComponent a QRX_Fabric, PartComponent a QRX_Switch

QRX_SwitchInFabric_Best QRX_SwitchInFabric_Best::singleton;

bool QRX_SwitchInFabric_Best::enumInstanceNames(QRX_SwitchInFabric_KeyArray& out) {
  for (const auto& link : script().links) out.push_back(QRX_SwitchInFabric_Key(link));
  return answer("QRX_SwitchInFabric.enumInstanceNames");
}

bool QRX_SwitchInFabric_Best::enumInstances(QRX_SwitchInFabric_Array& out) {
  out = script().links;
  return answer("QRX_SwitchInFabric.enumInstances");
}

bool QRX_SwitchInFabric_Best::getInstance(const QRX_SwitchInFabric_Key&, QRX_SwitchInFabric&) {
  return answer("QRX_SwitchInFabric.getInstance");
}

bool QRX_SwitchInFabric_Best::createInstance(const QRX_SwitchInFabric&, QRX_SwitchInFabric_Key&) {
  return answer("QRX_SwitchInFabric.createInstance");
}

bool QRX_SwitchInFabric_Best::modifyInstance(const QRX_SwitchInFabric_Key&,
                                             const QRX_SwitchInFabric&) {
  return answer("QRX_SwitchInFabric.modifyInstance");
}

bool QRX_SwitchInFabric_Best::deleteInstance(const QRX_SwitchInFabric_Key&) {
  return answer("QRX_SwitchInFabric.deleteInstance");
}

bool QRX_SwitchInFabric_Best::associatorsForGroupComponent(const QRX_Switch_Key& source,
                                                           QRX_Fabric_Array& out) {
  script().switchKey = source;
  out = script().fabrics;
  return answer("QRX_SwitchInFabric.associatorsForGroupComponent");
}

bool QRX_SwitchInFabric_Best::associatorNamesForGroupComponent(const QRX_Switch_Key& source,
                                                               QRX_Fabric_KeyArray& out) {
  script().switchKey = source;
  for (const auto& fabric : script().fabrics) out.push_back(QRX_Fabric_Key(fabric));
  return answer("QRX_SwitchInFabric.associatorNamesForGroupComponent");
}

bool QRX_SwitchInFabric_Best::referencesForGroupComponent(const QRX_Switch_Key& source,
                                                          QRX_SwitchInFabric_Array& out) {
  script().switchKey = source;
  out = script().links;
  return answer("QRX_SwitchInFabric.referencesForGroupComponent");
}

bool QRX_SwitchInFabric_Best::associatorsForPartComponent(const QRX_Fabric_Key& source,
                                                          QRX_Switch_Array& out) {
  script().fabricKey = source;
  out = script().switches;
  return answer("QRX_SwitchInFabric.associatorsForPartComponent");
}

bool QRX_SwitchInFabric_Best::associatorNamesForPartComponent(const QRX_Fabric_Key& source,
                                                              QRX_Switch_KeyArray& out) {
  script().fabricKey = source;
  for (const auto& object : script().switches) out.push_back(QRX_Switch_Key(object));
  return answer("QRX_SwitchInFabric.associatorNamesForPartComponent");
}

bool QRX_SwitchInFabric_Best::referencesForPartComponent(const QRX_Fabric_Key& source,
                                                         QRX_SwitchInFabric_Array& out) {
  script().fabricKey = source;
  out = script().links;
  return answer("QRX_SwitchInFabric.referencesForPartComponent");
}

// ---------------------------------------------------------------------------
// QRX_ZoneService

QRX_ZoneService_Best QRX_ZoneService_Best::singleton;

bool QRX_ZoneService_Best::enumInstanceNames(QRX_ZoneService_KeyArray&) {
  return answer("QRX_ZoneService.enumInstanceNames");
}
bool QRX_ZoneService_Best::enumInstances(QRX_ZoneService_Array&) {
  return answer("QRX_ZoneService.enumInstances");
}
bool QRX_ZoneService_Best::getInstance(const QRX_ZoneService_Key&, QRX_ZoneService&) {
  return answer("QRX_ZoneService.getInstance");
}
bool QRX_ZoneService_Best::createInstance(const QRX_ZoneService&, QRX_ZoneService_Key&) {
  return answer("QRX_ZoneService.createInstance");
}
bool QRX_ZoneService_Best::modifyInstance(const QRX_ZoneService_Key&, const QRX_ZoneService&) {
  return answer("QRX_ZoneService.modifyInstance");
}
bool QRX_ZoneService_Best::deleteInstance(const QRX_ZoneService_Key&) {
  return answer("QRX_ZoneService.deleteInstance");
}

cuint32 QRX_ZoneService_Best::CreateZoneSet(const QRX_ZoneService_Key& key, cstring ZoneSetName,
                                            QRX_ZoneSet_Key& ZoneSet) {
  script().serviceKey = key;
  script().text = ZoneSetName;
  ZoneSet.InstanceID = script().outputId;
  return methodResult("QRX_ZoneService.CreateZoneSet");
}

cuint32 QRX_ZoneService_Best::CreateZone(const QRX_ZoneService_Key&, cstring ZoneName,
                                         cuint16 ZoneType, cuint16, QRX_Zone_Key& Zone) {
  script().text = ZoneName;
  script().number = ZoneType;
  Zone.InstanceID = script().outputId;
  return methodResult("QRX_ZoneService.CreateZone");
}

cuint32 QRX_ZoneService_Best::CreateZoneAlias(const QRX_ZoneService_Key&, cstring,
                                              QRX_ZoneAlias_Key&) {
  return methodResult("QRX_ZoneService.CreateZoneAlias");
}

cuint32 QRX_ZoneService_Best::CreateZoneMembershipSettingData(
    const QRX_ZoneService_Key&, cuint16 ConnectivityMemberType, cstring ConnectivityMemberID,
    const CIM_SystemSpecificCollection_Key& SystemSpecificCollection,
    QRX_ZoneMembershipSettingData_Key&) {
  script().number = ConnectivityMemberType;
  script().text = ConnectivityMemberID;
  script().collection = SystemSpecificCollection;
  return methodResult("QRX_ZoneService.CreateZoneMembershipSettingData");
}

cuint32 QRX_ZoneService_Best::AddZone(const QRX_ZoneService_Key&, const QRX_ZoneSet_Key& ZoneSet,
                                      const QRX_Zone_Key& Zone) {
  script().zoneSet = ZoneSet;
  script().zone = Zone;
  return methodResult("QRX_ZoneService.AddZone");
}

cuint32 QRX_ZoneService_Best::AddZoneMembershipSettingData(
    const QRX_ZoneService_Key&, const CIM_SystemSpecificCollection_Key&,
    const QRX_ZoneMembershipSettingData_Key&) {
  return methodResult("QRX_ZoneService.AddZoneMembershipSettingData");
}

cuint32 QRX_ZoneService_Best::AddZoneAlias(const QRX_ZoneService_Key&, const QRX_Zone_Key&,
                                           const QRX_ZoneAlias_Key&) {
  return methodResult("QRX_ZoneService.AddZoneAlias");
}

cuint32 QRX_ZoneService_Best::ActivateZoneSet(const QRX_ZoneService_Key&,
                                              const QRX_ZoneSet_Key& ZoneSet, cboolean Activate) {
  script().zoneSet = ZoneSet;
  script().flag = Activate;
  return methodResult("QRX_ZoneService.ActivateZoneSet");
}

cuint32 QRX_ZoneService_Best::SessionControl(const QRX_ZoneService_Key&,
                                             cuint16 RequestedSessionState) {
  script().number = RequestedSessionState;
  return methodResult("QRX_ZoneService.SessionControl");
}

cuint32 QRX_ZoneService_Best::StartService(const QRX_ZoneService_Key&) {
  return methodResult("QRX_ZoneService.StartService");
}

cuint32 QRX_ZoneService_Best::StopService(const QRX_ZoneService_Key&) {
  return methodResult("QRX_ZoneService.StopService");
}

cuint32 QRX_ZoneService_Best::RequestStateChange(const QRX_ZoneService_Key&, cuint16,
                                                 CIM_ConcreteJob_Key&, cdatetime) {
  return methodResult("QRX_ZoneService.RequestStateChange");
}

// ---------------------------------------------------------------------------
// QRX_ZoneCapabilities and QRX_SwitchFCPortStats: the array arguments

QRX_ZoneCapabilities_Best QRX_ZoneCapabilities_Best::singleton;

bool QRX_ZoneCapabilities_Best::enumInstanceNames(QRX_ZoneCapabilities_KeyArray&) {
  return answer("QRX_ZoneCapabilities.enumInstanceNames");
}
bool QRX_ZoneCapabilities_Best::enumInstances(QRX_ZoneCapabilities_Array&) {
  return answer("QRX_ZoneCapabilities.enumInstances");
}
bool QRX_ZoneCapabilities_Best::getInstance(const QRX_ZoneCapabilities_Key&,
                                            QRX_ZoneCapabilities&) {
  return answer("QRX_ZoneCapabilities.getInstance");
}
bool QRX_ZoneCapabilities_Best::createInstance(const QRX_ZoneCapabilities&,
                                               QRX_ZoneCapabilities_Key&) {
  return answer("QRX_ZoneCapabilities.createInstance");
}
bool QRX_ZoneCapabilities_Best::modifyInstance(const QRX_ZoneCapabilities_Key&,
                                               const QRX_ZoneCapabilities&) {
  return answer("QRX_ZoneCapabilities.modifyInstance");
}
bool QRX_ZoneCapabilities_Best::deleteInstance(const QRX_ZoneCapabilities_Key&) {
  return answer("QRX_ZoneCapabilities.deleteInstance");
}

cuint32 QRX_ZoneCapabilities_Best::CreateGoalSettings(const QRX_ZoneCapabilities_Key&,
                                                      cstring_A TemplateGoalSettings,
                                                      cstring_A& SupportedGoalSettings) {
  script().strings = TemplateGoalSettings;
  SupportedGoalSettings = script().outputStrings;
  return methodResult("QRX_ZoneCapabilities.CreateGoalSettings");
}

QRX_SwitchFCPortStats_Best QRX_SwitchFCPortStats_Best::singleton;

bool QRX_SwitchFCPortStats_Best::enumInstanceNames(QRX_SwitchFCPortStats_KeyArray&) {
  return answer("QRX_SwitchFCPortStats.enumInstanceNames");
}
bool QRX_SwitchFCPortStats_Best::enumInstances(QRX_SwitchFCPortStats_Array&) {
  return answer("QRX_SwitchFCPortStats.enumInstances");
}
bool QRX_SwitchFCPortStats_Best::getInstance(const QRX_SwitchFCPortStats_Key&,
                                             QRX_SwitchFCPortStats&) {
  return answer("QRX_SwitchFCPortStats.getInstance");
}
bool QRX_SwitchFCPortStats_Best::createInstance(const QRX_SwitchFCPortStats&,
                                                QRX_SwitchFCPortStats_Key&) {
  return answer("QRX_SwitchFCPortStats.createInstance");
}
bool QRX_SwitchFCPortStats_Best::modifyInstance(const QRX_SwitchFCPortStats_Key&,
                                                const QRX_SwitchFCPortStats&) {
  return answer("QRX_SwitchFCPortStats.modifyInstance");
}
bool QRX_SwitchFCPortStats_Best::deleteInstance(const QRX_SwitchFCPortStats_Key&) {
  return answer("QRX_SwitchFCPortStats.deleteInstance");
}

cuint32 QRX_SwitchFCPortStats_Best::ResetSelectedStats(const QRX_SwitchFCPortStats_Key&,
                                                       cstring_A SelectedStatistics) {
  script().strings = SelectedStatistics;
  return methodResult("QRX_SwitchFCPortStats.ResetSelectedStats");
}
