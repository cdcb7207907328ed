#include "tools/switchsim/FabricModel.h"

#include <algorithm>
#include <cstdio>
#include <set>
#include <utility>

namespace switchsim {

namespace {

// Operational states, link states and port statuses as the switch
// reports them.
enum : std::uint32_t { kOperOnline = 1, kOperOffline = 2, kOperFaulty = 4 };
enum : std::uint32_t { kLinkEnabled = 1, kLinkDisabled = 2 };
enum : std::uint32_t { kStatusRunning = 1, kStatusWarning = 2, kStatusNotInstalled = 3 };
// Speed codes: 3 is 4 Gbit/s, 5 is 8 Gbit/s.
enum : std::uint32_t { kSpeed4G = 3, kSpeed8G = 5 };
// Port types (CIM values): N, E, F, G.
enum : std::uint16_t { kTypeN = 10, kTypeE = 14, kTypeF = 15, kTypeG = 18 };

// Identifiers of the built-in fabric. The organisation parts of these
// WWNs have the locally administered bit set, so they name no real maker.
const char kSwitchWwn[] = "10000e5a71004000";
const unsigned kDomain = 5;

std::string hex(const char* ipFormat, unsigned ipA, unsigned ipB = 0) {
  char text[32];
  std::snprintf(text, sizeof text, ipFormat, ipA, ipB);
  return text;
}

std::string portWwn(unsigned ipIndex) { return hex("20%02x0e5a71004000", ipIndex); }
// A port's FC address, or that of the `ipVirtual`th NPIV login on it.
std::string portAddress(unsigned ipIndex, unsigned ipVirtual = 0) {
  return hex("%02x", kDomain) + hex("%02x%02x", ipIndex, ipVirtual);
}
std::string hostWwnn(unsigned ipHost) { return hex("20000e5b7200%04x", ipHost); }
std::string hostWwpn(unsigned ipHost) { return hex("21000e5b7200%04x", ipHost); }

zone_member_data_t member(std::uint16_t ipType, const std::string& irId) {
  zone_member_data_t result;
  result.member_type = ipType;
  result.member_id = irId;
  return result;
}

SwitchPort makePort(unsigned ipIndex, std::uint16_t ipType, std::uint32_t ipOper,
                    std::uint32_t ipLink, std::uint32_t ipStatus, std::uint32_t ipSpeed) {
  SwitchPort port;
  switch_fc_port_info_t& info = port.info;
  info.name = portWwn(ipIndex);
  info.port_index = static_cast<cuint16>(ipIndex);
  info.port_type = ipType;
  info.operational_state = ipOper;
  info.link_state = ipLink;
  info.port_status = ipStatus;
  info.operational_link_speed = ipSpeed;
  info.port_id = portAddress(ipIndex);
  info.is_licensed = ipStatus == kStatusNotInstalled ? 0 : 1;
  info.is_sync_acquired = ipOper == kOperOnline ? 1 : 0;
  port.stats.name = info.name;
  port.stats.port_index = info.port_index;
  if (ipOper == kOperOnline) {
    // Plausible traffic that differs from port to port.
    const cuint64 base = 1000003ULL * (ipIndex + 7);
    switch_fc_port_stat_t& s = port.stats;
    s.TotalTxFrames = base * 31;
    s.TotalRxFrames = base * 29;
    s.TotalTxBytes = s.TotalTxFrames * 1824;
    s.TotalRxBytes = s.TotalRxFrames * 1712;
    s.Class3RxFrames = s.TotalRxFrames;
    s.Class2RxFrames = ipIndex;
    s.LinkFailures = ipIndex % 3;
    s.LossOfSynchronization = ipIndex % 4;
    s.InvalidTxWords = ipIndex * 11;
    s.RxLinkResets = 2;
    s.TxLinkResets = 1;
  }
  return port;
}

void addNodePort(FabricModel& irModel, const std::string& irName, const std::string& irNode,
                 const std::string& irAddress, unsigned ipSwitchPort) {
  if (std::find(irModel.nodes.begin(), irModel.nodes.end(), irNode) == irModel.nodes.end()) {
    irModel.nodes.push_back(irNode);
  }
  NodePort port;
  port.info.name = irName;
  port.info.port_id = irAddress;
  port.info.node_name = irNode;
  port.info.port_type = kTypeN;
  port.switchPort = portWwn(ipSwitchPort);
  irModel.nodePorts.push_back(std::move(port));
}

void buildPorts(FabricModel& irModel) {
  for (unsigned i = 0; i < 24; ++i) {
    SwitchPort port;
    if (i <= 10 || (i >= 14 && i <= 15)) {
      port = makePort(i, kTypeF, kOperOnline, kLinkEnabled, kStatusRunning, kSpeed8G);
    } else if (i <= 13) {
      port = makePort(i, kTypeF, kOperOnline, kLinkEnabled, kStatusRunning, kSpeed4G);
    } else if (i <= 17) {  // inter-switch links
      port = makePort(i, kTypeE, kOperOnline, kLinkEnabled, kStatusRunning, kSpeed8G);
    } else if (i <= 19) {  // no light
      port = makePort(i, kTypeG, kOperOffline, kLinkEnabled, kStatusRunning, 0);
    } else if (i == 20) {  // disabled by the administrator
      port = makePort(i, kTypeG, kOperOffline, kLinkDisabled, kStatusRunning, 0);
    } else if (i == 21) {  // failing transceiver
      port = makePort(i, kTypeG, kOperFaulty, kLinkEnabled, kStatusWarning, 0);
      port.stats.InvalidCRC = 1532;
      port.stats.LinkFailures = 17;
      port.stats.LossOfSynchronization = 240;
    } else {  // not licensed, no transceiver
      port = makePort(i, kTypeG, kOperOffline, kLinkDisabled, kStatusNotInstalled, 0);
    }
    irModel.ports.push_back(std::move(port));
  }
}

void buildNodes(FabricModel& irModel) {
  // Hosts 1-8 on ports 0-7, hosts 10 and 11 on ports 12 and 13.
  for (unsigned host = 1; host <= 11; ++host) {
    if (host == 9) continue;
    const unsigned port = host <= 8 ? host - 1 : host + 2;
    addNodePort(irModel, hostWwpn(host), hostWwnn(host), portAddress(port), port);
  }
  // Host 9 runs virtual machines: its own port and three NPIV logins on
  // port 8.
  addNodePort(irModel, hostWwpn(9), hostWwnn(9), portAddress(8), 8);
  for (unsigned v = 1; v <= 3; ++v) {
    addNodePort(irModel, hex("28%02x0e5b7200%04x", v, 9), hostWwnn(9), portAddress(8, v), 8);
  }
  // Storage array A on ports 9 and 10, array B on 14 and 15, tape on 11.
  addNodePort(irModel, "50e5b72000a10001", "50e5b72000a10000", portAddress(9), 9);
  addNodePort(irModel, "50e5b72000a10002", "50e5b72000a10000", portAddress(10), 10);
  addNodePort(irModel, "50e5b72000b20001", "50e5b72000b20000", portAddress(14), 14);
  addNodePort(irModel, "50e5b72000b20002", "50e5b72000b20000", portAddress(15), 15);
  addNodePort(irModel, "50e5b72000c30001", "50e5b72000c30000", portAddress(11), 11);
}

void buildZoning(FabricModel& irModel) {
  ZoneConfig& z = irModel.zoning;
  auto alias = [&](const char* ipName, zone_member_data_tA irMembers) {
    alias_t a;
    a.name = ipName;
    a.member_list = std::move(irMembers);
    z.aliases.push_back(std::move(a));
  };
  alias("a_array_a", {member(2, "50e5b72000a10001"), member(2, "50e5b72000a10002")});
  alias("a_vmhost_npiv", {member(2, "28010e5b72000009"), member(2, "28020e5b72000009"),
                          member(2, "28030e5b72000009")});
  alias("a_tape", {member(4, std::to_string(kDomain) + ",11")});
  alias("a_array_b_node", {member(5, "50e5b72000b20000")});

  auto zone = [&](const char* ipName, zone_member_data_tA irMembers, string_tA irAliases) {
    zone_t a;
    a.name = ipName;
    a.member_list = std::move(irMembers);
    a.alias_names = std::move(irAliases);
    z.zones.push_back(std::move(a));
  };
  zone("z_host1_array_a", {member(2, hostWwpn(1))}, {"a_array_a"});
  zone("z_host2_array_a", {member(2, hostWwpn(2))}, {"a_array_a"});
  zone("z_vmhost_array_a", {}, {"a_vmhost_npiv", "a_array_a"});
  zone("z_host3_array_b", {member(2, hostWwpn(3))}, {"a_array_b_node"});
  zone("z_backup", {member(3, portAddress(0)), member(3, portAddress(1))}, {"a_tape"});
  zone("z_host10_array_b",
       {member(2, hostWwpn(10)), member(4, std::to_string(kDomain) + ",14")}, {});
  zone("z_test_unused", {member(2, hostWwpn(8))}, {});

  auto zoneSet = [&](const char* ipName, string_tA irZones) {
    zoneset_t a;
    a.name = ipName;
    a.zone_names = std::move(irZones);
    z.zoneSets.push_back(std::move(a));
  };
  zoneSet("cfg_production", {"z_host1_array_a", "z_host2_array_a", "z_vmhost_array_a",
                             "z_host3_array_b", "z_backup"});
  zoneSet("cfg_maintenance", {"z_host1_array_a", "z_host10_array_b"});
  irModel.activeZoneSet = z.zoneSets[0];

  irModel.zoneService.timeout = 300;
  irModel.zoneService.default_zoning_state = 2;
  zone_capabilities_data_t& caps = irModel.zoneCapabilities;
  caps.ZoneNameMaxLen = 64;
  caps.ZoneNameFormat = 3;  // alphanumeric
  caps.MaxNumZoneSets = 16;
  caps.MaxNumZone = 2000;
  caps.MaxNumZoneMembers = 256;
  caps.MaxNumZonesPerZoneSet = 2000;
  caps.MaxNumZoneAliases = 2500;
}

}  // namespace

FabricModel FabricModel::builtIn() {
  FabricModel model;
  model.software.version = "7.4.0.12";
  model.fabric.name = kSwitchWwn;  // the principal switch names the fabric
  model.fabric.vlan = 1002;

  switch_info_t& s = model.switchInfo;
  s.name = kSwitchWwn;
  s.domain_id = kDomain;
  s.switch_id = hex("fffc%02x", kDomain);
  s.switch_state = 1;  // online
  s.switch_time_zone_id = "UTC";
  s.ntp_address = "192.0.2.10";
  s.community_info_set = {"public", "san-monitor"};
  s.owner = "SAN operations";
  s.location = "Lab A, rack 12";
  s.ip_address = "192.0.2.50";
  s.ip_addressv6 = "2001:db8::50";
  s.hostname = "fcsw-a1";

  switch_product_info_t& p = model.product;
  p.license = "full-fabric";
  p.fru_nr = "FRU-2408-01";
  p.sku = "KV24-8G";
  p.serial_nr = "QX24A0001234";
  p.manufacturer = "QRX";
  p.model = "Korvane-FC 24";
  p.part_nr = "KV-24-8G-01";
  p.manufacture_date.ivTime = 1678752000;  // 2023-03-14
  p.version = "A3";

  buildPorts(model);
  buildNodes(model);
  buildZoning(model);
  return model;
}

FabricModel FabricModel::builtIn(unsigned ipPorts) {
  FabricModel model = builtIn();
  const std::size_t pattern = model.ports.size();
  for (unsigned i = static_cast<unsigned>(pattern); i < ipPorts && i < kMaxPorts; ++i) {
    SwitchPort port = model.ports[i % pattern];
    port.info.name = hex("2%03x0e5a71004000", i);
    port.info.port_index = static_cast<cuint16>(i);
    port.info.port_id = hex("%02x", kDomain) + hex("%04x", i);
    port.stats.name = port.info.name;
    port.stats.port_index = port.info.port_index;
    model.ports.push_back(std::move(port));
  }
  return model;
}

FabricModel FabricModel::twoSwitchFabric() {
  FabricModel model = builtIn();
  // Domain 6: a host and a two-port storage array.
  const std::string remote[][3] = {
      {"21000e5c73000001", "20000e5c73000001", "060100"},
      {"50e5c73000d40001", "50e5c73000d40000", "060200"},
      {"50e5c73000d40002", "50e5c73000d40000", "060300"},
  };
  for (const auto& row : remote) {
    if (std::find(model.nodes.begin(), model.nodes.end(), row[1]) == model.nodes.end()) {
      model.nodes.push_back(row[1]);
    }
    NodePort port;
    port.info.name = row[0];
    port.info.node_name = row[1];
    port.info.port_id = row[2];
    port.info.port_type = kTypeN;
    model.nodePorts.push_back(std::move(port));  // no switch port: another switch
  }
  return model;
}

bool FabricModel::validate(std::string* orError) const {
  auto fail = [orError](const std::string& irText) {
    *orError = irText;
    return false;
  };
  if (switchInfo.name.empty()) return fail("switch.name: empty");
  if (fabricPresent && fabric.name.empty()) return fail("fabric.name: empty");
  if (ports.empty()) return fail("ports: a switch has at least one port");
  std::set<std::string> portNames;
  std::set<unsigned> portIndices;
  for (std::size_t i = 0; i < ports.size(); ++i) {
    const std::string where = "ports[" + std::to_string(i) + "]";
    const switch_fc_port_info_t& info = ports[i].info;
    if (info.name.empty()) return fail(where + ".name: empty");
    if (!portNames.insert(info.name).second) {
      return fail(where + ".name: \"" + info.name + "\" names two ports");
    }
    if (!portIndices.insert(info.port_index).second) {
      return fail(where + ".port_index: " + std::to_string(info.port_index) +
                  " numbers two ports");
    }
  }
  std::set<std::string> nodeNames;
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const std::string where = "nodes[" + std::to_string(i) + "]";
    if (nodes[i].empty()) return fail(where + ": empty");
    if (!nodeNames.insert(nodes[i]).second) {
      return fail(where + ": \"" + nodes[i] + "\" is listed twice");
    }
  }
  std::set<std::string> nodePortNames;
  for (std::size_t i = 0; i < nodePorts.size(); ++i) {
    const std::string where = "node_ports[" + std::to_string(i) + "]";
    const NodePort& port = nodePorts[i];
    if (port.info.name.empty()) return fail(where + ".name: empty");
    if (!nodePortNames.insert(port.info.name).second || portNames.count(port.info.name) != 0) {
      return fail(where + ".name: \"" + port.info.name + "\" names two ports");
    }
    if (nodeNames.count(port.info.node_name) == 0) {
      return fail(where + ".node_name: \"" + port.info.node_name + "\" is not in nodes");
    }
    if (!port.switchPort.empty() && portNames.count(port.switchPort) == 0) {
      return fail(where + ".switch_port: \"" + port.switchPort + "\" is not a switch port");
    }
  }
  if (!checkZoneConfig(zoning, zoneCapabilities, "zoning", orError)) return false;
  std::set<std::string> activeZones;
  for (std::size_t i = 0; i < activeZoneSet.zone_names.size(); ++i) {
    const std::string& name = activeZoneSet.zone_names[i];
    const std::string where = "zoning.active_zone_set.zone_names[" + std::to_string(i) + "]";
    if (zoning.findZone(name) == nullptr) {
      return fail(where + ": \"" + name + "\" is not a defined zone");
    }
    if (!activeZones.insert(name).second) return fail(where + ": \"" + name + "\" is listed twice");
  }
  if (activeZoneSet.name.empty() && !activeZoneSet.zone_names.empty()) {
    return fail("zoning.active_zone_set.name: empty");
  }
  return true;
}

SwitchPort* FabricModel::findPort(const std::string& irName) {
  for (SwitchPort& port : ports) {
    if (port.info.name == irName) return &port;
  }
  return nullptr;
}

const SwitchPort* FabricModel::findPort(const std::string& irName) const {
  return const_cast<FabricModel*>(this)->findPort(irName);
}

SwitchPort* FabricModel::findPortByIndex(std::uint32_t ipIndex) {
  for (SwitchPort& port : ports) {
    if (port.info.port_index == ipIndex) return &port;
  }
  return nullptr;
}

bool FabricModel::isLoggedIn(const NodePort& irNodePort) const {
  if (irNodePort.switchPort.empty()) return true;  // behind another switch
  const SwitchPort* port = findPort(irNodePort.switchPort);
  return port != nullptr && port->info.operational_state == kOperOnline;
}

void FabricModel::dropMissingActiveZones() {
  string_tA& names = activeZoneSet.zone_names;
  names.erase(std::remove_if(names.begin(), names.end(),
                             [this](const std::string& irName) {
                               return zoning.findZone(irName) == nullptr;
                             }),
              names.end());
}

}  // namespace switchsim
