#include "common/backend/FabricCache.h"

#include <cassert>
#include <cstdio>
#include <new>
#include <utility>

#include "common/base/trace.h"

namespace {

const char* const kUnit = "common/backend/FabricCache";

const switch_fc_port_info_t* findSwitchPort(const switch_fc_port_info_tA& irPorts, int ipIndex) {
  for (const switch_fc_port_info_t& port : irPorts) {
    if (port.port_index == ipIndex) return &port;
  }
  return nullptr;
}

switch_fc_port_info_t* findSwitchPort(switch_fc_port_info_tA& irPorts, int ipIndex) {
  for (switch_fc_port_info_t& port : irPorts) {
    if (port.port_index == ipIndex) return &port;
  }
  return nullptr;
}

}  // namespace

bool zone_member_data_cmp::operator()(const zone_member_data_t& a,
                                      const zone_member_data_t& b) const {
  if (a.member_type != b.member_type) return a.member_type < b.member_type;
  return a.member_id < b.member_id;
}

FabricCache::FabricCache(fcbb::FramePipeIf& irFramePipe) : rs_api_client_mq(irFramePipe) {}

FabricCache::~FabricCache() = default;

// ---------------------------------------------------------------------------
// Filling and refreshing

void FabricCache::initCache() {
  fcbb::MutexLock lock(ivLock);
  ivFabricRead = refreshFabric_nl() == 0;
  refreshSwitchAndPort_nl();
  refreshActiveZoneSet_nl();
  fillDummySwitchFCPort();
  ivASwitchMap.reset(new AwwpnMap(ivDummySwitchFCPort));
  initAwwpnMap();
}

void FabricCache::healSwitch_nl() {
  if (!ivSwitchMap.empty() || !ivASwitchMap) return;
  // The first fill could not read the switch: a reader tries again rather
  // than serve a switch without ports.
  if (!refreshSwitchAndPort_nl()) return;
  TRACE_ERROR(kUnit, "switch %s read after a failed first fill\n",
              currentSwitch_nl()->ivSwitchInfo.name.c_str());
  initAwwpnMap();
  if (!ivActiveZoneSetRead) refreshActiveZoneSet_nl();
}

void FabricCache::healActiveZoneSet_nl() {
  if (ivActiveZoneSetRead) return;
  healSwitch_nl();
  ivActiveZoneSet = zoneset_t();
  ivActiveZone2MemberMap.clear();
  refreshActiveZoneSet_nl();
}

void FabricCache::fillDummySwitchFCPort() {
  ivDummySwitchFCPort = switch_fc_port_info_t();
  ivDummySwitchFCPort.name = "dummy";
  ivDummySwitchFCPort.port_index = 0;
  ivDummySwitchFCPort.port_type = 15;
  ivDummySwitchFCPort.operational_state = 0;
  ivDummySwitchFCPort.link_state = 0;
  ivDummySwitchFCPort.port_status = 0;
  ivDummySwitchFCPort.operational_link_speed = 0;
  ivDummySwitchFCPort.port_id = "dummy";
  ivDummySwitchFCPort.is_licensed = 1;
  ivDummySwitchFCPort.is_sync_acquired = 1;
}

FabricCache::switch_record* FabricCache::currentSwitch_nl() const {
  return ivSwitchMap.empty() ? nullptr : ivSwitchMap.begin()->second.get();
}

void FabricCache::initAwwpnMap() {
  if (!ivASwitchMap) return;
  const switch_record* current = currentSwitch_nl();
  ivASwitchMap->init(current != nullptr ? current->ivSwitchFcPortInfoList : switch_fc_port_info_tA());
}

void FabricCache::updateAwwpnMap() {
  const switch_record* current = currentSwitch_nl();
  ivASwitchMap->update(current != nullptr ? current->ivSwitchFcPortInfoList : switch_fc_port_info_tA());
}

void FabricCache::followPortList_nl() {
  if (!ivASwitchMap) return;
  const switch_record* current = currentSwitch_nl();
  if (current == nullptr || current->ivSwitchFcPortInfoList.empty()) ivASwitchMap->setMapValid(false);
  if (ivASwitchMap->isMapValid()) {
    updateAwwpnMap();
  } else {
    initAwwpnMap();
  }
}

void FabricCache::clearAwwpnMap() {
  fcbb::MutexLock lock(ivLock);
  if (ivASwitchMap) ivASwitchMap->clear();
}

int FabricCache::refreshFabric_nl() {
  std::unique_ptr<fabric_info_t> fab(new (std::nothrow) fabric_info_t());
  assert(fab);
  const int ret = rs_api_client_mq::get_fabric_info(*fab);
  if (ret != 0) {
    TRACE_ERROR(kUnit, "rs_api_client_mq::get_fabric_info() failed ret=%d\n", ret);
    return ret;
  }
  ivpFabricInfo = std::move(fab);
  return 0;
}

int FabricCache::cacheAndRefreshFabric() {
  fcbb::MutexLock lock(ivLock);
  std::unique_ptr<fabric_info_t> old = std::move(ivpFabricInfo);
  const int ret = refreshFabric_nl();
  if (ret < 0) {
    // No answer from the daemon says nothing about the fabric.
    ivpFabricInfo = std::move(old);
    return CHANGE_FLAG_NONE;
  }
  if (ret == 0) ivFabricRead = true;
  if (isEqualFabric(old.get(), ivpFabricInfo.get())) return CHANGE_FLAG_NONE;
  ivpPrevFabricInfo = std::move(old);
  if (!ivpPrevFabricInfo && ivpFabricInfo) return CHANGE_FLAG_CREATE;
  if (ivpPrevFabricInfo && !ivpFabricInfo) return CHANGE_FLAG_DELETE;
  return CHANGE_FLAG_MODIFY;
}

std::unique_ptr<FabricCache::switch_record> FabricCache::readSwitch_nl() {
  std::unique_ptr<switch_record> swirec(new (std::nothrow) switch_record());
  assert(swirec);
  int ret = rs_api_client_mq::get_switch_info(swirec->ivSwitchInfo);
  if (ret != 0) {
    TRACE_ERROR(kUnit, "rs_api_client_mq::get_switch_info() failed ret=%d\n", ret);
    return nullptr;
  }
  ret = rs_api_client_mq::get_switch_product_info(swirec->ivSwitchProductInfo);
  if (ret != 0) {
    TRACE_ERROR(kUnit, "rs_api_client_mq::get_switch_product_info() failed ret=%d\n", ret);
    return nullptr;
  }
  ret = rs_api_client_mq::get_switch_fc_port_info(swirec->ivSwitchFcPortInfoList);
  if (ret != 0) {
    TRACE_ERROR(kUnit, "rs_api_client_mq::get_switch_fc_port_info() failed ret=%d\n", ret);
    return nullptr;
  }
  return swirec;
}

bool FabricCache::refreshSwitchAndPort_nl() {
  std::unique_ptr<switch_record> swirec = readSwitch_nl();
  if (!swirec) return false;
  const std::string name = swirec->ivSwitchInfo.name;
  ivSwitchMap.emplace(name, std::move(swirec));  // an existing entry stays
  return true;
}

int FabricCache::cacheAndRefreshSwitch() {
  fcbb::MutexLock lock(ivLock);
  // A switch whose records cannot be read is not a deleted switch: the
  // daemon that answers runs on it. The last good state stays.
  std::unique_ptr<switch_record> fresh = readSwitch_nl();
  if (!fresh) {
    TRACE_ERROR(kUnit, "switch refresh failed; the cached switch stays\n");
    return CHANGE_FLAG_NONE;
  }
  std::unique_ptr<switch_record> old;
  if (!ivSwitchMap.empty()) old = std::move(ivSwitchMap.begin()->second);
  ivSwitchMap.clear();
  const std::string name = fresh->ivSwitchInfo.name;
  ivSwitchMap.emplace(name, std::move(fresh));
  followPortList_nl();  // the port list came with the switch
  if (isEqualSwitch(old.get(), currentSwitch_nl())) return CHANGE_FLAG_NONE;
  ivPrevSwitchMap.clear();
  if (old) {
    const std::string oldName = old->ivSwitchInfo.name;
    ivPrevSwitchMap.emplace(oldName, std::move(old));
  }
  if (ivPrevSwitchMap.empty() && !ivSwitchMap.empty()) return CHANGE_FLAG_CREATE;
  if (!ivPrevSwitchMap.empty() && ivSwitchMap.empty()) return CHANGE_FLAG_DELETE;
  return CHANGE_FLAG_MODIFY;
}

int FabricCache::cacheAndRefreshSwitchPort(int port_index) {
  fcbb::MutexLock lock(ivLock);
  healSwitch_nl();
  if (ivSwitchMap.empty()) {
    TRACE_ERROR(kUnit, "SwitchMap is empty\n");
    return CHANGE_FLAG_NONE;
  }
  // The previous state is a copy, so that the port records kept there are
  // the ones from before the change even while the current record changes.
  if (ivPrevSwitchMap.empty()) {
    for (const auto& entry : ivSwitchMap) {
      ivPrevSwitchMap.emplace(entry.first, std::unique_ptr<switch_record>(new switch_record(*entry.second)));
    }
  }
  switch_fc_port_info_tA freshList;
  if (rs_api_client_mq::get_switch_fc_port_info(freshList) != 0) {
    TRACE_ERROR(kUnit, "Could not Read switch fc port info\n");
    return CHANGE_FLAG_NONE;
  }
  switch_record* current = currentSwitch_nl();
  switch_fc_port_info_tA& currentList = current->ivSwitchFcPortInfoList;
  const switch_fc_port_info_t* fresh = findSwitchPort(freshList, port_index);
  switch_fc_port_info_t* cached = findSwitchPort(currentList, port_index);
  switch_fc_port_info_t* previous =
      findSwitchPort(ivPrevSwitchMap.begin()->second->ivSwitchFcPortInfoList, port_index);

  int result;
  if (fresh == nullptr && cached == nullptr) {
    TRACE_ERROR(kUnit, "Failed to find port_index=%d\n", port_index);
    return CHANGE_FLAG_NONE;
  } else if (fresh == nullptr) {
    result = CHANGE_FLAG_DELETE;
    if (previous != nullptr) *previous = *cached;
    currentList.erase(currentList.begin() + (cached - currentList.data()));
  } else if (cached == nullptr) {
    result = CHANGE_FLAG_CREATE;
    currentList.push_back(*fresh);
  } else {
    result = CHANGE_FLAG_MODIFY;
    if (previous != nullptr) *previous = *cached;
    *cached = *fresh;
  }

  followPortList_nl();
  return result;
}

void FabricCache::refreshActiveZoneSet() {
  fcbb::MutexLock lock(ivLock);
  ivActiveZoneSet = zoneset_t();
  ivActiveZone2MemberMap.clear();
  refreshActiveZoneSet_nl();
}

void FabricCache::refreshActiveZoneSet_nl() {
  // Read again by the next reader until a refresh gets through whole.
  ivActiveZoneSetRead = false;
  const switch_record* current = currentSwitch_nl();
  if (current == nullptr) return;
  const std::string service = current->ivSwitchInfo.name;
  int ret = rs_api_client_mq::get_active_zone_set(service, ivActiveZoneSet);
  if (ret != 0) {
    TRACE_ERROR(kUnit, "rs_api_client_mq::get_active_zone_set() failed ret=%d\n", ret);
    return;
  }
  for (const std::string& zone : ivActiveZoneSet.zone_names) {
    zone_member_set members;
    zone_member_data_tA direct;
    ret = rs_api_client_mq::get_zone_members_in_zone(service, zone, direct);
    if (ret != 0) {
      TRACE_ERROR(kUnit, "rs_api_client_mq::get_zone_members_in_zone() failed ret=%d zone=%s\n",
                  ret, zone.c_str());
      return;
    }
    members.insert(direct.begin(), direct.end());
    string_tA aliases;
    ret = rs_api_client_mq::get_zone_alias_names_in_zone(service, zone, aliases);
    if (ret != 0) {
      TRACE_ERROR(kUnit, "rs_api_client_mq::get_zone_alias_names_in_zone() failed ret=%d zone=%s\n",
                  ret, zone.c_str());
      return;
    }
    for (const std::string& alias : aliases) {
      zone_member_data_tA viaAlias;
      ret = rs_api_client_mq::get_zone_members_in_zone_alias(service, alias, viaAlias);
      if (ret != 0) {
        TRACE_ERROR(kUnit,
                    "rs_api_client_mq::get_zone_members_in_zone_alias() failed ret=%d zone=%s alias=%s\n",
                    ret, zone.c_str(), alias.c_str());
        return;
      }
      members.insert(viaAlias.begin(), viaAlias.end());
    }
    ivActiveZone2MemberMap.emplace(zone, std::move(members));
  }
  ivActiveZoneSetRead = true;
}

// ---------------------------------------------------------------------------
// Readers

int FabricCache::get_fabric_info(fabric_info_t& Fabric) {
  {
    fcbb::MutexLock lock(ivLock);
    if (ivpFabricInfo) {
      Fabric = *ivpFabricInfo;
      return 0;
    }
  }
  const int ret = rs_api_client_mq::get_fabric_info(Fabric);
  fcbb::MutexLock lock(ivLock);
  // Kept when the first fill could not read it; a fabric that an event
  // found gone stays gone until an event brings it back.
  if (ret == 0 && !ivFabricRead && !ivpFabricInfo) {
    ivpFabricInfo.reset(new (std::nothrow) fabric_info_t(Fabric));
    ivFabricRead = ivpFabricInfo != nullptr;
  }
  return ret;
}

int FabricCache::get_switch_info(switch_info_t& SwitchInfo) {
  const int ret = rs_api_client_mq::get_switch_info(SwitchInfo);
  fcbb::MutexLock lock(ivLock);
  switch_record* current = currentSwitch_nl();
  if (ret == 0 && current != nullptr) {
    current->ivSwitchInfo.ip_address = SwitchInfo.ip_address;
    current->ivSwitchInfo.ip_addressv6 = SwitchInfo.ip_addressv6;
    current->ivSwitchInfo.ip2_address = SwitchInfo.ip2_address;
    current->ivSwitchInfo.ip2_addressv6 = SwitchInfo.ip2_addressv6;
  }
  return ret;
}

int FabricCache::get_switch_product_info(switch_product_info_t& SwitchProductInfo) {
  {
    fcbb::MutexLock lock(ivLock);
    healSwitch_nl();
    if (const switch_record* current = currentSwitch_nl()) {
      SwitchProductInfo = current->ivSwitchProductInfo;
      return 0;
    }
  }
  return rs_api_client_mq::get_switch_product_info(SwitchProductInfo);
}

int FabricCache::get_switch_fc_port_info(switch_fc_port_info_tA& SwitchFcPortInfo) {
  fcbb::MutexLock lock(ivLock);
  healSwitch_nl();
  if (const switch_record* current = currentSwitch_nl()) {
    SwitchFcPortInfo = current->ivSwitchFcPortInfoList;
    return 0;
  }
  return rs_api_client_mq::get_switch_fc_port_info(SwitchFcPortInfo);
}

int FabricCache::get_switch_fc_port_info(int port_index, switch_fc_port_info_t& orPort) {
  fcbb::MutexLock lock(ivLock);
  healSwitch_nl();
  const switch_record* current = currentSwitch_nl();
  const switch_fc_port_info_t* port =
      current != nullptr ? findSwitchPort(current->ivSwitchFcPortInfoList, port_index) : nullptr;
  if (port == nullptr) return 7;
  orPort = *port;
  return 0;
}

int FabricCache::getSwitchName_nl(std::string& orName) {
  return rs_api_client_mq::get_switch_name(orName) != 0 ? -1 : 0;
}

int FabricCache::get_switch_name(string_t& Name) {
  fcbb::MutexLock lock(ivLock);
  return getSwitchName_nl(Name);
}

int FabricCache::get_protocol_endpoint_info(protocol_endpoint_info_tA& EndPointInfo) {
  fcbb::MutexLock lock(ivLock);
  healSwitch_nl();
  std::string switchName;
  int ret = getSwitchName_nl(switchName);
  if (ret != 0) return ret;
  ret = rs_api_client_mq::get_protocol_endpoint_info(EndPointInfo);
  if (ret != 0) return ret;
  switch_fc_port_info_tA ports;
  if (ivASwitchMap) ivASwitchMap->getPortObjects(ports);
  for (const switch_fc_port_info_t& port : ports) {
    protocol_endpoint_info_t endpoint;
    endpoint.fc_port_id = port.port_id;
    endpoint.fc_port_name = port.name;
    endpoint.name = port.name;
    endpoint.is_switch_side = 1;
    endpoint.system_name = switchName;
    EndPointInfo.push_back(std::move(endpoint));
  }
  return 0;
}

int FabricCache::get_active_zone_set(string_t /*ZoneServiceName*/, zoneset_t& ZoneSet) {
  fcbb::MutexLock lock(ivLock);
  healActiveZoneSet_nl();
  ZoneSet = ivActiveZoneSet;
  return 0;
}

int FabricCache::get_all_active_zone_members_in_zone(const std::string& /*zone_set_name*/,
                                                     const std::string& zone_name,
                                                     zone_member_set& orMembers) {
  fcbb::MutexLock lock(ivLock);
  healActiveZoneSet_nl();
  auto found = ivActiveZone2MemberMap.find(zone_name);
  if (found != ivActiveZone2MemberMap.end()) orMembers = found->second;
  return 0;
}

std::string FabricCache::physicalPortName(const std::string& irName) {
  fcbb::MutexLock lock(ivLock);
  healSwitch_nl();
  std::string physical;
  if (ivASwitchMap && ivASwitchMap->getPhysicalName(irName, physical)) return physical;
  return irName;
}

int FabricCache::get_attached_node_names(string_t SwitchPortName, string_tA& NodeNames) {
  return rs_api_client_mq::get_attached_node_names(physicalPortName(SwitchPortName), NodeNames);
}

int FabricCache::get_attached_node_fc_port_names(string_t SwitchPortName,
                                                 string_tA& NodeFcPortNames) {
  return rs_api_client_mq::get_attached_node_fc_port_names(physicalPortName(SwitchPortName),
                                                           NodeFcPortNames);
}

int FabricCache::get_attached_node_fc_port_info(string_t SwitchPortName,
                                                node_fc_port_info_tA& NodeFcPortInfo) {
  return rs_api_client_mq::get_attached_node_fc_port_info(physicalPortName(SwitchPortName),
                                                          NodeFcPortInfo);
}

int FabricCache::get_artificial_switch_fc_port_info(switch_fc_port_info_tA& orPorts) {
  fcbb::MutexLock lock(ivLock);
  healSwitch_nl();
  if (ivASwitchMap) {
    ivASwitchMap->getPortObjects(orPorts);
  } else {
    orPorts.clear();
  }
  return 0;
}

int FabricCache::get_artificial_switch_fc_port_names(std::vector<std::string>& orNames) {
  fcbb::MutexLock lock(ivLock);
  healSwitch_nl();
  if (ivASwitchMap) {
    ivASwitchMap->getAwwpns(orNames);
  } else {
    orNames.clear();
  }
  return 0;
}

std::uint64_t FabricCache::getNodewwn(std::uint64_t ipWwpn) {
  fcbb::MutexLock lock(ivLock);
  healSwitch_nl();
  return ivASwitchMap ? ivASwitchMap->getNodewwn(ipWwpn) : 0;
}

std::uint64_t FabricCache::getITwwpn(std::uint64_t ipAwwpn) {
  fcbb::MutexLock lock(ivLock);
  healSwitch_nl();
  return ivASwitchMap ? ivASwitchMap->getITwwpn(ipAwwpn) : 0;
}

int FabricCache::prev_fabric_info(fabric_info_t& orFabric) {
  fcbb::MutexLock lock(ivLock);
  assert(ivpPrevFabricInfo);
  orFabric = *ivpPrevFabricInfo;
  return 0;
}

int FabricCache::cached_switch_info(switch_info_t& orSwitch) {
  fcbb::MutexLock lock(ivLock);
  const switch_record* current = currentSwitch_nl();
  if (current == nullptr) return 7;
  orSwitch = current->ivSwitchInfo;
  return 0;
}

int FabricCache::prev_switch_info(switch_info_t& orSwitch) {
  fcbb::MutexLock lock(ivLock);
  assert(!ivPrevSwitchMap.empty());
  orSwitch = ivPrevSwitchMap.begin()->second->ivSwitchInfo;
  return 0;
}

int FabricCache::prev_switch_fc_port_info(int port_index, switch_fc_port_info_t& orPort) {
  fcbb::MutexLock lock(ivLock);
  assert(!ivPrevSwitchMap.empty());
  const switch_fc_port_info_t* port =
      findSwitchPort(ivPrevSwitchMap.begin()->second->ivSwitchFcPortInfoList, port_index);
  if (port != nullptr) orPort = *port;
  return 0;
}

// ---------------------------------------------------------------------------
// Comparators and converters

bool FabricCache::isEqualFabric(const fabric_info_t* a, const fabric_info_t* b) {
  if (a == nullptr || b == nullptr) return a == b;
  return a->name == b->name && a->vlan == b->vlan;
}

bool FabricCache::isEqualSwitch(const switch_record* a, const switch_record* b) {
  if (a == nullptr || b == nullptr) return a == b;
  const switch_info_t& x = a->ivSwitchInfo;
  const switch_info_t& y = b->ivSwitchInfo;
  return x.name == y.name && x.ip_address == y.ip_address && x.hostname == y.hostname &&
         x.domain_id == y.domain_id && x.location == y.location && x.nr_fc_ports == y.nr_fc_ports &&
         x.owner == y.owner && x.switch_id == y.switch_id && x.switch_state == y.switch_state &&
         x.switch_time_zone_id == y.switch_time_zone_id &&
         x.community_info_set == y.community_info_set;
}

bool FabricCache::isEqualSwitchPort(const switch_fc_port_info_t* a, const switch_fc_port_info_t* b) {
  if (a == nullptr || b == nullptr) return a == b;
  return a->name == b->name && a->operational_state == b->operational_state &&
         a->is_licensed == b->is_licensed && a->is_sync_acquired == b->is_sync_acquired &&
         a->link_state == b->link_state && a->operational_link_speed == b->operational_link_speed &&
         a->port_id == b->port_id && a->port_index == b->port_index &&
         a->port_status == b->port_status;
}

void FabricCache::convertFabric(QRX_Fabric& orFabric, const fabric_info_t& irFabric) {
  orFabric.CreationClassName = QRX_Fabric::ivCIMClassName;
  orFabric.Name = irFabric.name;
  orFabric.NameFormat = "WWN";
  char elementName[60];
  std::snprintf(elementName, sizeof(elementName), "%s[vlan=%d]", irFabric.name.c_str(),
                static_cast<int>(irFabric.vlan));
  orFabric.ElementName = elementName;
  orFabric.OtherIdentifyingInfo = {"Fabric"};
  orFabric.IdentifyingDescriptions = {"SNIA:DetailedType"};
  orFabric.EnabledState = 2;
  orFabric.RequestedState = 5;
  orFabric.EnabledDefault = 2;
  orFabric.OperationalStatus = {2};
  orFabric.HealthState = 0;
}

void FabricCache::convertSwitch(QRX_Switch& orSwitch, const switch_info_t& irSwitch) {
  orSwitch.CreationClassName = QRX_Switch::ivCIMClassName;
  orSwitch.Name = irSwitch.name;
  orSwitch.NameFormat = "WWN";
  orSwitch.ElementName = "QRX Korvane-FC";
  orSwitch.Dedicated = {5};
  orSwitch.RequestedState = 5;
  orSwitch.PrimaryOwnerName = irSwitch.owner;

  char domain[20];
  std::snprintf(domain, sizeof(domain), "%d", static_cast<int>(irSwitch.domain_id));
  orSwitch.OtherIdentifyingInfo = {domain, "None", irSwitch.ip_address};
  orSwitch.IdentifyingDescriptions = {"DomainID", "SNIA:DetailedType", "Ipv4 Address"};
  const std::pair<const std::string*, const char*> optional[] = {
      {&irSwitch.ip2_address, "Ipv4 Address"},
      {&irSwitch.ip_addressv6, "Ipv6 Address"},
      {&irSwitch.ip2_addressv6, "Ipv6 Address"},
  };
  for (const auto& address : optional) {
    if (address.first->empty()) continue;
    orSwitch.OtherIdentifyingInfo.push_back(*address.first);
    orSwitch.IdentifyingDescriptions.push_back(address.second);
  }

  // switch_state -> OperationalStatus, EnabledState
  static const cuint16 kStates[][2] = {{0, 0}, {2, 2}, {3, 3}, {11, 9}, {6, 4}};
  const bool known = irSwitch.switch_state < sizeof(kStates) / sizeof(kStates[0]);
  orSwitch.OperationalStatus = {known ? kStates[irSwitch.switch_state][0] : cuint16{1}};
  orSwitch.EnabledState = known ? kStates[irSwitch.switch_state][1] : cuint16{0};
}

void FabricCache::convertSwitchFCPort(QRX_SwitchFCPort& orPort, const switch_fc_port_info_t& irPort,
                                      const std::string& irSwitchName) {
  orPort.SystemCreationClassName = QRX_Switch::ivCIMClassName;
  orPort.CreationClassName = QRX_SwitchFCPort::ivCIMClassName;
  orPort.SystemName = irSwitchName;
  orPort.DeviceID = irPort.name;
  orPort.ElementName = irPort.name;
  orPort.PermanentAddress = irPort.name;
  orPort.Name = irPort.name;
  orPort.PortNumber = irPort.port_index;
  orPort.PortType = irPort.port_type;
  orPort.NetworkAddresses = {irPort.port_id};

  static const cuint16 kOperational[] = {0, 2, 10, 11, 7, 11};
  orPort.OperationalStatus = {irPort.operational_state < 6 ? kOperational[irPort.operational_state]
                                                           : cuint16{1}};
  static const cuint16 kEnabled[] = {0, 2, 3};
  orPort.EnabledState = irPort.link_state < 3 ? kEnabled[irPort.link_state] : cuint16{1};
  orPort.RequestedState = 5;
  orPort.EnabledDefault = 5;

  // Bits per second; the binary multiples are what the switch reports.
  static const cuint64 kSpeed[] = {0ULL,          1073741824ULL, 2147483648ULL,
                                   4294967296ULL, 10737418240ULL, 8589934592ULL,
                                   10485760ULL,   104857600ULL,  21474836480ULL};
  orPort.Speed = irPort.operational_link_speed < 9 ? kSpeed[irPort.operational_link_speed] : 0;

  switch (irPort.port_status) {
    case 0: orPort.Availability = 2; break;
    case 1: orPort.Availability = 3; break;
    case 2: orPort.Availability = 4; break;
    case 3: orPort.Availability = 11; break;
    case 255: orPort.Availability = 1; break;
    default: orPort.Availability = 3; break;
  }
  orPort.PortDiscriminator = {3};
  orPort.LinkTechnology = 4;
  orPort.SupportedFC4Types = {32};
  orPort.ActiveFC4Types = {32};
  orPort.FullDuplex = true;
  orPort.AutoSense = false;
  orPort.HealthState = 0;
}
