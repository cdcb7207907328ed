#include "tools/switchsim/SimulatedSwitch.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include "tools/switchsim/Status.h"

namespace switchsim {

namespace {

enum : std::uint16_t { kSessionStarted = 2, kSessionEnded = 3 };
enum : std::uint16_t { kRequestStart = 2, kRequestEnd = 3, kRequestTerminate = 4 };

void appendDistinct(zone_member_data_tA& irList, const zone_member_data_tA& irMembers) {
  for (const zone_member_data_t& member : irMembers) {
    if (std::find(irList.begin(), irList.end(), member) == irList.end()) irList.push_back(member);
  }
}

}  // namespace

std::string SimulatedSwitch::takeNote() {
  std::string note;
  note.swap(ivNote);
  return note;
}

int SimulatedSwitch::edit(const std::string& irService,
                          const std::function<std::uint32_t(ZoneEditor&)>& irFn) {
  if (!isService(irService)) return kStatusNotFound;
  if (ivSessionOpen) return kStatusSessionOpen;
  ZoneEditor editor(ivrModel.zoning, ivrModel.zoneCapabilities);
  const std::uint32_t status = irFn(editor);
  if (status == kStatusOk) ivrModel.dropMissingActiveZones();
  return static_cast<int>(status);
}

std::vector<const NodePort*> SimulatedSwitch::loggedIn(const std::string* ipSwitchPort) const {
  std::vector<const NodePort*> result;
  for (const NodePort& port : ivrModel.nodePorts) {
    if (ipSwitchPort != nullptr && port.switchPort != *ipSwitchPort) continue;
    if (ivrModel.isLoggedIn(port)) result.push_back(&port);
  }
  return result;
}

// ---- fabric, switch and ports ----

int SimulatedSwitch::get_software_info(software_info_t& Software) {
  Software = ivrModel.software;
  return kStatusOk;
}

int SimulatedSwitch::get_fabric_info(fabric_info_t& Fabric) {
  if (!ivrModel.fabricPresent) return kStatusNotAvailable;
  Fabric = ivrModel.fabric;
  return kStatusOk;
}

int SimulatedSwitch::get_switch_name(string_t& Name) {
  Name = ivrModel.switchInfo.name;
  return kStatusOk;
}

int SimulatedSwitch::get_switch_info(switch_info_t& SwitchInfo) {
  SwitchInfo = ivrModel.switchInfo;
  SwitchInfo.nr_fc_ports = static_cast<cuint16>(ivrModel.ports.size());
  if (SwitchInfo.switch_time.ivTime == 0) {
    SwitchInfo.switch_time.ivTime = static_cast<unsigned int>(std::time(nullptr));
  }
  return kStatusOk;
}

int SimulatedSwitch::get_switch_fc_port_names(string_tA& SwitchFcPortNames) {
  SwitchFcPortNames.clear();
  for (const SwitchPort& port : ivrModel.ports) SwitchFcPortNames.push_back(port.info.name);
  return kStatusOk;
}

int SimulatedSwitch::get_switch_fc_port_info(switch_fc_port_info_tA& SwitchFcPortInfo) {
  SwitchFcPortInfo.clear();
  for (const SwitchPort& port : ivrModel.ports) SwitchFcPortInfo.push_back(port.info);
  return kStatusOk;
}

int SimulatedSwitch::get_switch_fc_port_stat(switch_fc_port_stat_tA& SwitchFcPortStat) {
  SwitchFcPortStat.clear();
  for (const SwitchPort& port : ivrModel.ports) {
    switch_fc_port_stat_t stats = port.stats;
    stats.name = port.info.name;
    stats.port_index = port.info.port_index;
    SwitchFcPortStat.push_back(std::move(stats));
  }
  return kStatusOk;
}

int SimulatedSwitch::get_switch_product_info(switch_product_info_t& SwitchProductInfo) {
  SwitchProductInfo = ivrModel.product;
  return kStatusOk;
}

// ---- nodes and end points ----

int SimulatedSwitch::get_node_names(string_tA& NodeNames) {
  const std::vector<const NodePort*> ports = loggedIn(nullptr);
  NodeNames.clear();
  for (const std::string& node : ivrModel.nodes) {
    if (std::any_of(ports.begin(), ports.end(),
                    [&](const NodePort* p) { return p->info.node_name == node; })) {
      NodeNames.push_back(node);
    }
  }
  return kStatusOk;
}

int SimulatedSwitch::get_node_fc_port_names(string_tA& NodeFcPortNames) {
  NodeFcPortNames.clear();
  for (const NodePort* port : loggedIn(nullptr)) NodeFcPortNames.push_back(port->info.name);
  return kStatusOk;
}

int SimulatedSwitch::get_node_fc_port_info(node_fc_port_info_tA& NodeFcPortInfo) {
  NodeFcPortInfo.clear();
  for (const NodePort* port : loggedIn(nullptr)) NodeFcPortInfo.push_back(port->info);
  return kStatusOk;
}

int SimulatedSwitch::get_protocol_endpoint_info(protocol_endpoint_info_tA& EndPointInfo) {
  EndPointInfo.clear();
  for (const SwitchPort& port : ivrModel.ports) {
    protocol_endpoint_info_t endpoint;
    endpoint.name = port.info.name;
    endpoint.fc_port_name = port.info.name;
    endpoint.fc_port_id = port.info.port_id;
    endpoint.is_switch_side = 1;
    endpoint.system_name = ivrModel.switchInfo.name;
    EndPointInfo.push_back(std::move(endpoint));
  }
  for (const NodePort* port : loggedIn(nullptr)) {
    protocol_endpoint_info_t endpoint;
    endpoint.name = port->info.name;
    endpoint.fc_port_name = port->info.name;
    endpoint.fc_port_id = port->info.port_id;
    endpoint.is_switch_side = 0;
    endpoint.system_name = port->info.node_name;
    EndPointInfo.push_back(std::move(endpoint));
  }
  return kStatusOk;
}

int SimulatedSwitch::get_protocol_endpoint_names(string_tA& EndPointNames) {
  protocol_endpoint_info_tA endpoints;
  get_protocol_endpoint_info(endpoints);
  EndPointNames.clear();
  for (const protocol_endpoint_info_t& endpoint : endpoints) EndPointNames.push_back(endpoint.name);
  return kStatusOk;
}

int SimulatedSwitch::get_attached_node_names(string_t SwitchPortName, string_tA& NodeNames) {
  if (ivrModel.findPort(SwitchPortName) == nullptr) return kStatusNotFound;
  NodeNames.clear();
  for (const NodePort* port : loggedIn(&SwitchPortName)) {
    if (std::find(NodeNames.begin(), NodeNames.end(), port->info.node_name) == NodeNames.end()) {
      NodeNames.push_back(port->info.node_name);
    }
  }
  return kStatusOk;
}

int SimulatedSwitch::get_attached_node_fc_port_names(string_t SwitchPortName,
                                                     string_tA& NodeFcPortNames) {
  if (ivrModel.findPort(SwitchPortName) == nullptr) return kStatusNotFound;
  NodeFcPortNames.clear();
  for (const NodePort* port : loggedIn(&SwitchPortName)) {
    NodeFcPortNames.push_back(port->info.name);
  }
  return kStatusOk;
}

int SimulatedSwitch::get_attached_node_fc_port_info(string_t SwitchPortName,
                                                    node_fc_port_info_tA& NodeFcPortInfo) {
  if (ivrModel.findPort(SwitchPortName) == nullptr) return kStatusNotFound;
  NodeFcPortInfo.clear();
  for (const NodePort* port : loggedIn(&SwitchPortName)) NodeFcPortInfo.push_back(port->info);
  return kStatusOk;
}

// ---- sessions ----

int SimulatedSwitch::session_start(string_t ZoneServiceName, zone_tA& ZoneList,
                                   alias_tA& AliasList, zoneset_tA& ZonesetList) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  if (ivSessionOpen) return kStatusSessionOpen;
  ivSessionOpen = true;
  ivRequestedSessionState = kRequestStart;
  ivStaged = ivrModel.zoning;
  ZoneList = ivStaged.zones;
  AliasList = ivStaged.aliases;
  ZonesetList = ivStaged.zoneSets;
  return kStatusOk;
}

int SimulatedSwitch::session_update(string_t ZoneServiceName, zone_operation_tA ZoneOpList) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  if (!ivSessionOpen) return kStatusNoSession;
  ZoneEditor editor(ivStaged, ivrModel.zoneCapabilities);
  std::size_t failed = 0;
  const std::uint32_t status = editor.applyAll(ZoneOpList, &failed);
  if (status != kStatusOk) {
    const zone_operation_t& op = ZoneOpList[failed];
    ivNote = "batch rejected at operation " + std::to_string(failed) + " (opcode " +
             std::to_string(op.opcode) + ", kind " + std::to_string(op.data1.member_type) +
             ", \"" + op.data1.member_id + "\")";
  }
  return static_cast<int>(status);
}

int SimulatedSwitch::session_end(string_t ZoneServiceName) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  if (!ivSessionOpen) return kStatusNoSession;
  ivrModel.zoning = std::move(ivStaged);
  ivrModel.dropMissingActiveZones();
  ivStaged = ZoneConfig();
  ivSessionOpen = false;
  ivRequestedSessionState = kRequestEnd;
  return kStatusOk;
}

int SimulatedSwitch::session_terminate(string_t ZoneServiceName) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  if (!ivSessionOpen) return kStatusNoSession;
  ivStaged = ZoneConfig();
  ivSessionOpen = false;
  ivRequestedSessionState = kRequestTerminate;
  return kStatusOk;
}

int SimulatedSwitch::get_zone_service_data(string_t ZoneServiceName,
                                           zone_service_data_t& ZoneServiceData) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  ZoneServiceData.timeout = ivrModel.zoneService.timeout;
  ZoneServiceData.default_zoning_state = ivrModel.zoneService.default_zoning_state;
  ZoneServiceData.session_state = ivSessionOpen ? kSessionStarted : kSessionEnded;
  ZoneServiceData.requested_session_state = ivRequestedSessionState;
  return kStatusOk;
}

int SimulatedSwitch::get_zone_capabilities_data(string_t ZoneServiceName,
                                                zone_capabilities_data_t& ZoneCapabilitiesData) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  ZoneCapabilitiesData = ivrModel.zoneCapabilities;
  return kStatusOk;
}

// ---- zoning queries ----

int SimulatedSwitch::get_zone_set_names(string_t ZoneServiceName, string_tA& ZoneSetNames) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  ZoneSetNames.clear();
  for (const zoneset_t& zoneSet : ivrModel.zoning.zoneSets) ZoneSetNames.push_back(zoneSet.name);
  return kStatusOk;
}

int SimulatedSwitch::get_zone_names(string_t ZoneServiceName, string_tA& ZoneNames) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  ZoneNames.clear();
  for (const zone_t& zone : ivrModel.zoning.zones) ZoneNames.push_back(zone.name);
  return kStatusOk;
}

int SimulatedSwitch::get_zone_names_in_zone_set(string_t ZoneServiceName, string_t ZoneSetName,
                                                string_tA& ZoneNames) {
  const zoneset_t* zoneSet = ivrModel.zoning.findZoneSet(ZoneSetName);
  if (!isService(ZoneServiceName) || zoneSet == nullptr) return kStatusNotFound;
  ZoneNames = zoneSet->zone_names;
  return kStatusOk;
}

int SimulatedSwitch::get_zone_alias_names(string_t ZoneServiceName, string_tA& ZoneAliasNames) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  ZoneAliasNames.clear();
  for (const alias_t& alias : ivrModel.zoning.aliases) ZoneAliasNames.push_back(alias.name);
  return kStatusOk;
}

int SimulatedSwitch::get_zone_alias_names_in_zone(string_t ZoneServiceName, string_t ZoneName,
                                                  string_tA& ZoneAliasNames) {
  const zone_t* zone = ivrModel.zoning.findZone(ZoneName);
  if (!isService(ZoneServiceName) || zone == nullptr) return kStatusNotFound;
  ZoneAliasNames = zone->alias_names;
  return kStatusOk;
}

int SimulatedSwitch::get_all_zone_members(string_t ZoneServiceName,
                                          zone_member_data_tA& ZoneMemberData) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  ZoneMemberData.clear();
  for (const zone_t& zone : ivrModel.zoning.zones) appendDistinct(ZoneMemberData, zone.member_list);
  return kStatusOk;
}

int SimulatedSwitch::get_all_alias_members(string_t ZoneServiceName,
                                           zone_member_data_tA& ZoneMemberData) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  ZoneMemberData.clear();
  for (const alias_t& alias : ivrModel.zoning.aliases) {
    appendDistinct(ZoneMemberData, alias.member_list);
  }
  return kStatusOk;
}

int SimulatedSwitch::get_zone_members_in_zone(string_t ZoneServiceName, string_t ZoneName,
                                              zone_member_data_tA& ZoneMemberData) {
  const zone_t* zone = ivrModel.zoning.findZone(ZoneName);
  if (!isService(ZoneServiceName) || zone == nullptr) return kStatusNotFound;
  ZoneMemberData = zone->member_list;
  return kStatusOk;
}

int SimulatedSwitch::get_zone_members_in_zone_alias(string_t ZoneServiceName, string_t AliasName,
                                                    zone_member_data_tA& ZoneMemberData) {
  const alias_t* alias = ivrModel.zoning.findAlias(AliasName);
  if (!isService(ZoneServiceName) || alias == nullptr) return kStatusNotFound;
  ZoneMemberData = alias->member_list;
  return kStatusOk;
}

int SimulatedSwitch::get_active_zone_set(string_t ZoneServiceName, zoneset_t& ZoneSet) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  ZoneSet = ivrModel.activeZoneSet;
  return kStatusOk;
}

// ---- direct zoning edits ----

int SimulatedSwitch::create_zone_set(string_t ZoneServiceName, string_t ZoneSetName) {
  return edit(ZoneServiceName, [&](ZoneEditor& e) { return e.createZoneSet(ZoneSetName); });
}

int SimulatedSwitch::create_zone(string_t ZoneServiceName, string_t ZoneName) {
  return edit(ZoneServiceName, [&](ZoneEditor& e) { return e.createZone(ZoneName); });
}

int SimulatedSwitch::create_zone_alias(string_t ZoneServiceName, string_t ZoneAliasName) {
  return edit(ZoneServiceName, [&](ZoneEditor& e) { return e.createAlias(ZoneAliasName); });
}

int SimulatedSwitch::delete_zone_set(string_t ZoneServiceName, string_t ZoneSetName) {
  return edit(ZoneServiceName, [&](ZoneEditor& e) { return e.deleteZoneSet(ZoneSetName); });
}

int SimulatedSwitch::delete_zone(string_t ZoneServiceName, string_t ZoneName) {
  return edit(ZoneServiceName, [&](ZoneEditor& e) { return e.deleteZone(ZoneName); });
}

int SimulatedSwitch::delete_zone_alias(string_t ZoneServiceName, string_t ZoneAliasName) {
  return edit(ZoneServiceName, [&](ZoneEditor& e) { return e.deleteAlias(ZoneAliasName); });
}

int SimulatedSwitch::add_zone(string_t ZoneServiceName, string_t ZoneSetName, string_t ZoneName) {
  return edit(ZoneServiceName, [&](ZoneEditor& e) { return e.addZone(ZoneSetName, ZoneName); });
}

int SimulatedSwitch::add_zone_alias(string_t ZoneServiceName, string_t ZoneName,
                                    string_t ZoneAliasName) {
  return edit(ZoneServiceName,
              [&](ZoneEditor& e) { return e.addAlias(ZoneName, ZoneAliasName); });
}

int SimulatedSwitch::add_zone_member(string_t ZoneServiceName, string_t ZoneName,
                                     zone_member_data_t ZoneMemberData) {
  return edit(ZoneServiceName,
              [&](ZoneEditor& e) { return e.addZoneMember(ZoneName, ZoneMemberData); });
}

int SimulatedSwitch::add_alias_member(string_t ZoneServiceName, string_t AliasName,
                                      zone_member_data_t ZoneMemberData) {
  return edit(ZoneServiceName,
              [&](ZoneEditor& e) { return e.addAliasMember(AliasName, ZoneMemberData); });
}

int SimulatedSwitch::remove_zone(string_t ZoneServiceName, string_t ZoneSetName,
                                 string_t ZoneName) {
  return edit(ZoneServiceName,
              [&](ZoneEditor& e) { return e.removeZone(ZoneSetName, ZoneName); });
}

int SimulatedSwitch::remove_zone_alias(string_t ZoneServiceName, string_t ZoneName,
                                       string_t ZoneAliasName) {
  return edit(ZoneServiceName,
              [&](ZoneEditor& e) { return e.removeAlias(ZoneName, ZoneAliasName); });
}

int SimulatedSwitch::remove_zone_member(string_t ZoneServiceName, string_t ZoneName,
                                        zone_member_data_t ZoneMemberData) {
  return edit(ZoneServiceName,
              [&](ZoneEditor& e) { return e.removeZoneMember(ZoneName, ZoneMemberData); });
}

int SimulatedSwitch::remove_alias_member(string_t ZoneServiceName, string_t AliasName,
                                         zone_member_data_t ZoneMemberData) {
  return edit(ZoneServiceName,
              [&](ZoneEditor& e) { return e.removeAliasMember(AliasName, ZoneMemberData); });
}

int SimulatedSwitch::activate_zone_set(string_t ZoneServiceName, string_t ZoneSetName,
                                       cuint8 Activate) {
  if (!isService(ZoneServiceName)) return kStatusNotFound;
  if (Activate != 0) {
    const zoneset_t* zoneSet = ivrModel.zoning.findZoneSet(ZoneSetName);
    if (zoneSet == nullptr) return kStatusNotFound;
    ivrModel.activeZoneSet = *zoneSet;
    return kStatusOk;
  }
  if (ivrModel.activeZoneSet.name.empty() || ivrModel.activeZoneSet.name != ZoneSetName) {
    ivNote = "\"" + ZoneSetName + "\" is not the active zone set";
    return kStatusNotFound;
  }
  ivrModel.activeZoneSet = zoneset_t();
  return kStatusOk;
}

}  // namespace switchsim
