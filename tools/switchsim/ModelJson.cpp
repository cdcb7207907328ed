// The JSON form of FabricModel (see FabricModel.h). nlohmann-json throws;
// every call that can is either guarded by a type check first or caught
// here, so that no exception leaves this file.
#include <cerrno>
#include <cstring>
#include <exception>
#include <fstream>
#include <initializer_list>
#include <limits>
#include <sstream>
#include <utility>

#include <nlohmann/json.hpp>

#include "tools/switchsim/FabricModel.h"

namespace switchsim {

namespace {

using Json = nlohmann::ordered_json;

// ---- writing ----

Json membersJson(const zone_member_data_tA& irMembers) {
  Json list = Json::array();
  for (const zone_member_data_t& m : irMembers) {
    list.push_back(Json{{"member_type", m.member_type}, {"member_id", m.member_id}});
  }
  return list;
}

Json statsJson(const switch_fc_port_stat_t& s) {
  return Json{{"LinkFailures", s.LinkFailures},
              {"InvalidCRC", s.InvalidCRC},
              {"InvalidTxWords", s.InvalidTxWords},
              {"PrimitiveSequenceProtocolErrors", s.PrimitiveSequenceProtocolErrors},
              {"LossOfSynchronization", s.LossOfSynchronization},
              {"TotalTxFrames", s.TotalTxFrames},
              {"TotalRxFrames", s.TotalRxFrames},
              {"RxLinkResets", s.RxLinkResets},
              {"TxLinkResets", s.TxLinkResets},
              {"FramesTooLong", s.FramesTooLong},
              {"AddressErrors", s.AddressErrors},
              {"DelimiterErrors", s.DelimiterErrors},
              {"TotalTxBytes", s.TotalTxBytes},
              {"TotalRxBytes", s.TotalRxBytes},
              {"FBSYFrames", s.FBSYFrames},
              {"FRJTFrames", s.FRJTFrames},
              {"Class2RxFrames", s.Class2RxFrames},
              {"Class3RxFrames", s.Class3RxFrames},
              {"Class3Discards", s.Class3Discards}};
}

Json modelJson(const FabricModel& m) {
  Json root;
  root["software"] = Json{{"version", m.software.version}};
  root["fabric"] = m.fabricPresent ? Json{{"name", m.fabric.name}, {"vlan", m.fabric.vlan}}
                                   : Json(nullptr);
  const switch_info_t& s = m.switchInfo;
  root["switch"] = Json{{"name", s.name},
                        {"domain_id", s.domain_id},
                        {"switch_id", s.switch_id},
                        {"switch_state", s.switch_state},
                        {"switch_time", s.switch_time.ivTime},
                        {"switch_time_zone_id", s.switch_time_zone_id},
                        {"ntp_address", s.ntp_address},
                        {"community_info_set", s.community_info_set},
                        {"owner", s.owner},
                        {"location", s.location},
                        {"ip_address", s.ip_address},
                        {"ip2_address", s.ip2_address},
                        {"ip_addressv6", s.ip_addressv6},
                        {"ip2_addressv6", s.ip2_addressv6},
                        {"hostname", s.hostname}};
  const switch_product_info_t& p = m.product;
  root["product"] = Json{{"license", p.license},
                         {"fru_nr", p.fru_nr},
                         {"sku", p.sku},
                         {"serial_nr", p.serial_nr},
                         {"manufacturer", p.manufacturer},
                         {"model", p.model},
                         {"part_nr", p.part_nr},
                         {"manufacture_date", p.manufacture_date.ivTime},
                         {"version", p.version}};
  Json ports = Json::array();
  for (const SwitchPort& port : m.ports) {
    const switch_fc_port_info_t& i = port.info;
    ports.push_back(Json{{"name", i.name},
                         {"port_index", i.port_index},
                         {"port_type", i.port_type},
                         {"operational_state", i.operational_state},
                         {"link_state", i.link_state},
                         {"port_status", i.port_status},
                         {"operational_link_speed", i.operational_link_speed},
                         {"port_id", i.port_id},
                         {"is_licensed", i.is_licensed},
                         {"is_sync_acquired", i.is_sync_acquired},
                         {"stats", statsJson(port.stats)}});
  }
  root["ports"] = std::move(ports);
  root["nodes"] = m.nodes;
  Json nodePorts = Json::array();
  for (const NodePort& port : m.nodePorts) {
    nodePorts.push_back(Json{{"name", port.info.name},
                             {"port_id", port.info.port_id},
                             {"node_name", port.info.node_name},
                             {"port_type", port.info.port_type},
                             {"switch_port", port.switchPort}});
  }
  root["node_ports"] = std::move(nodePorts);

  Json zoning;
  zoning["service"] = Json{{"timeout", m.zoneService.timeout},
                           {"default_zoning_state", m.zoneService.default_zoning_state}};
  const zone_capabilities_data_t& c = m.zoneCapabilities;
  zoning["capabilities"] = Json{{"ZoneNameMaxLen", c.ZoneNameMaxLen},
                                {"ZoneNameFormat", c.ZoneNameFormat},
                                {"MaxNumZoneSets", c.MaxNumZoneSets},
                                {"MaxNumZone", c.MaxNumZone},
                                {"MaxNumZoneMembers", c.MaxNumZoneMembers},
                                {"MaxNumZonesPerZoneSet", c.MaxNumZonesPerZoneSet},
                                {"MaxNumZoneAliases", c.MaxNumZoneAliases}};
  Json aliases = Json::array();
  for (const alias_t& a : m.zoning.aliases) {
    aliases.push_back(Json{{"name", a.name}, {"member_list", membersJson(a.member_list)}});
  }
  zoning["aliases"] = std::move(aliases);
  Json zones = Json::array();
  for (const zone_t& z : m.zoning.zones) {
    zones.push_back(Json{{"name", z.name},
                         {"member_list", membersJson(z.member_list)},
                         {"alias_names", z.alias_names}});
  }
  zoning["zones"] = std::move(zones);
  Json zoneSets = Json::array();
  for (const zoneset_t& zs : m.zoning.zoneSets) {
    zoneSets.push_back(Json{{"name", zs.name}, {"zone_names", zs.zone_names}});
  }
  zoning["zone_sets"] = std::move(zoneSets);
  zoning["active_zone_set"] =
      m.activeZoneSet.name.empty()
          ? Json(nullptr)
          : Json{{"name", m.activeZoneSet.name}, {"zone_names", m.activeZoneSet.zone_names}};
  root["zoning"] = std::move(zoning);
  return root;
}

// ---- reading ----

// Reads fields with type and range checks; the first failure is kept in
// the error text, naming the field by its path.
class Reader {
 public:
  explicit Reader(std::string* orError) : ivError(orError) {}

  bool fail(const std::string& irPath, const std::string& irWhat) {
    *ivError = irPath + ": " + irWhat;
    return false;
  }

  // `irValue` is an object holding no other fields than `irKeys`.
  bool object(const Json& irValue, const std::string& irPath,
              std::initializer_list<const char*> irKeys) {
    if (!irValue.is_object()) return fail(irPath, "expected an object");
    for (auto it = irValue.begin(); it != irValue.end(); ++it) {
      bool known = false;
      for (const char* key : irKeys) known = known || it.key() == key;
      if (!known) return fail(irPath, "unknown field \"" + it.key() + "\"");
    }
    return true;
  }

  // The field `ipKey` of the object, or null (and an error) if missing.
  const Json* field(const Json& irObject, const std::string& irPath, const char* ipKey) {
    auto it = irObject.find(ipKey);
    if (it == irObject.end()) {
      fail(join(irPath, ipKey), "missing");
      return nullptr;
    }
    return &*it;
  }

  bool text(const Json& irObject, const std::string& irPath, const char* ipKey,
            std::string* opValue) {
    const Json* value = field(irObject, irPath, ipKey);
    if (value == nullptr) return false;
    if (!value->is_string()) return fail(join(irPath, ipKey), "expected a string");
    *opValue = value->get<std::string>();
    return true;
  }

  template <typename T>
  bool number(const Json& irValue, const std::string& irPath, T* opValue) {
    const unsigned long long max = std::numeric_limits<T>::max();
    if (!irValue.is_number_unsigned() || irValue.get<unsigned long long>() > max) {
      return fail(irPath, "expected an unsigned integer from 0 to " + std::to_string(max) +
                              ", got " + irValue.dump());
    }
    *opValue = static_cast<T>(irValue.get<unsigned long long>());
    return true;
  }

  template <typename T>
  bool number(const Json& irObject, const std::string& irPath, const char* ipKey, T* opValue) {
    const Json* value = field(irObject, irPath, ipKey);
    return value != nullptr && number(*value, join(irPath, ipKey), opValue);
  }

  bool texts(const Json& irObject, const std::string& irPath, const char* ipKey,
             string_tA* opValue) {
    const Json* value = field(irObject, irPath, ipKey);
    if (value == nullptr) return false;
    const std::string path = join(irPath, ipKey);
    if (!value->is_array()) return fail(path, "expected an array of strings");
    string_tA result;
    for (std::size_t i = 0; i < value->size(); ++i) {
      const Json& item = (*value)[i];
      if (!item.is_string()) return fail(index(path, i), "expected a string");
      result.push_back(item.get<std::string>());
    }
    *opValue = std::move(result);
    return true;
  }

  // The array `ipKey`, each element read by `irRead(element, path)`.
  template <typename Fn>
  bool array(const Json& irObject, const std::string& irPath, const char* ipKey, Fn irRead) {
    const Json* value = field(irObject, irPath, ipKey);
    if (value == nullptr) return false;
    const std::string path = join(irPath, ipKey);
    if (!value->is_array()) return fail(path, "expected an array");
    for (std::size_t i = 0; i < value->size(); ++i) {
      if (!irRead((*value)[i], index(path, i))) return false;
    }
    return true;
  }

  static std::string join(const std::string& irPath, const char* ipKey) {
    return irPath.empty() ? std::string(ipKey) : irPath + "." + ipKey;
  }
  static std::string index(const std::string& irPath, std::size_t ipIndex) {
    return irPath + "[" + std::to_string(ipIndex) + "]";
  }

 private:
  std::string* ivError;
};

bool readMembers(Reader& r, const Json& irObject, const std::string& irPath,
                 zone_member_data_tA* opMembers) {
  return r.array(irObject, irPath, "member_list", [&](const Json& irItem, const std::string& p) {
    zone_member_data_t m;
    if (!r.object(irItem, p, {"member_type", "member_id"}) ||
        !r.number(irItem, p, "member_type", &m.member_type) ||
        !r.text(irItem, p, "member_id", &m.member_id)) {
      return false;
    }
    opMembers->push_back(std::move(m));
    return true;
  });
}

bool readStats(Reader& r, const Json& irValue, const std::string& irPath,
               switch_fc_port_stat_t* s) {
  static const std::pair<const char*, cuint64 switch_fc_port_stat_t::*> kCounters[] = {
      {"LinkFailures", &switch_fc_port_stat_t::LinkFailures},
      {"InvalidCRC", &switch_fc_port_stat_t::InvalidCRC},
      {"InvalidTxWords", &switch_fc_port_stat_t::InvalidTxWords},
      {"PrimitiveSequenceProtocolErrors", &switch_fc_port_stat_t::PrimitiveSequenceProtocolErrors},
      {"LossOfSynchronization", &switch_fc_port_stat_t::LossOfSynchronization},
      {"TotalTxFrames", &switch_fc_port_stat_t::TotalTxFrames},
      {"TotalRxFrames", &switch_fc_port_stat_t::TotalRxFrames},
      {"RxLinkResets", &switch_fc_port_stat_t::RxLinkResets},
      {"TxLinkResets", &switch_fc_port_stat_t::TxLinkResets},
      {"FramesTooLong", &switch_fc_port_stat_t::FramesTooLong},
      {"AddressErrors", &switch_fc_port_stat_t::AddressErrors},
      {"DelimiterErrors", &switch_fc_port_stat_t::DelimiterErrors},
      {"TotalTxBytes", &switch_fc_port_stat_t::TotalTxBytes},
      {"TotalRxBytes", &switch_fc_port_stat_t::TotalRxBytes},
      {"FBSYFrames", &switch_fc_port_stat_t::FBSYFrames},
      {"FRJTFrames", &switch_fc_port_stat_t::FRJTFrames},
      {"Class2RxFrames", &switch_fc_port_stat_t::Class2RxFrames},
      {"Class3RxFrames", &switch_fc_port_stat_t::Class3RxFrames},
      {"Class3Discards", &switch_fc_port_stat_t::Class3Discards},
  };
  if (!irValue.is_object()) return r.fail(irPath, "expected an object");
  for (auto it = irValue.begin(); it != irValue.end(); ++it) {
    bool known = false;
    for (const auto& counter : kCounters) {
      if (it.key() != counter.first) continue;
      known = true;
      if (!r.number(it.value(), irPath + "." + it.key(), &(s->*counter.second))) return false;
    }
    if (!known) return r.fail(irPath, "unknown field \"" + it.key() + "\"");
  }
  return true;
}

bool readSwitch(Reader& r, const Json& irRoot, switch_info_t* s) {
  const Json* v = r.field(irRoot, "", "switch");
  const std::string p = "switch";
  return v != nullptr &&
         r.object(*v, p, {"name", "domain_id", "switch_id", "switch_state", "switch_time",
                          "switch_time_zone_id", "ntp_address", "community_info_set", "owner",
                          "location", "ip_address", "ip2_address", "ip_addressv6",
                          "ip2_addressv6", "hostname"}) &&
         r.text(*v, p, "name", &s->name) && r.number(*v, p, "domain_id", &s->domain_id) &&
         r.text(*v, p, "switch_id", &s->switch_id) &&
         r.number(*v, p, "switch_state", &s->switch_state) &&
         r.number(*v, p, "switch_time", &s->switch_time.ivTime) &&
         r.text(*v, p, "switch_time_zone_id", &s->switch_time_zone_id) &&
         r.text(*v, p, "ntp_address", &s->ntp_address) &&
         r.texts(*v, p, "community_info_set", &s->community_info_set) &&
         r.text(*v, p, "owner", &s->owner) && r.text(*v, p, "location", &s->location) &&
         r.text(*v, p, "ip_address", &s->ip_address) &&
         r.text(*v, p, "ip2_address", &s->ip2_address) &&
         r.text(*v, p, "ip_addressv6", &s->ip_addressv6) &&
         r.text(*v, p, "ip2_addressv6", &s->ip2_addressv6) &&
         r.text(*v, p, "hostname", &s->hostname);
}

bool readProduct(Reader& r, const Json& irRoot, switch_product_info_t* s) {
  const Json* v = r.field(irRoot, "", "product");
  const std::string p = "product";
  return v != nullptr &&
         r.object(*v, p, {"license", "fru_nr", "sku", "serial_nr", "manufacturer", "model",
                          "part_nr", "manufacture_date", "version"}) &&
         r.text(*v, p, "license", &s->license) && r.text(*v, p, "fru_nr", &s->fru_nr) &&
         r.text(*v, p, "sku", &s->sku) && r.text(*v, p, "serial_nr", &s->serial_nr) &&
         r.text(*v, p, "manufacturer", &s->manufacturer) && r.text(*v, p, "model", &s->model) &&
         r.text(*v, p, "part_nr", &s->part_nr) &&
         r.number(*v, p, "manufacture_date", &s->manufacture_date.ivTime) &&
         r.text(*v, p, "version", &s->version);
}

bool readPorts(Reader& r, const Json& irRoot, std::vector<SwitchPort>* opPorts) {
  return r.array(irRoot, "", "ports", [&](const Json& v, const std::string& p) {
    SwitchPort port;
    switch_fc_port_info_t& i = port.info;
    if (!r.object(v, p, {"name", "port_index", "port_type", "operational_state", "link_state",
                         "port_status", "operational_link_speed", "port_id", "is_licensed",
                         "is_sync_acquired", "stats"}) ||
        !r.text(v, p, "name", &i.name) || !r.number(v, p, "port_index", &i.port_index) ||
        !r.number(v, p, "port_type", &i.port_type) ||
        !r.number(v, p, "operational_state", &i.operational_state) ||
        !r.number(v, p, "link_state", &i.link_state) ||
        !r.number(v, p, "port_status", &i.port_status) ||
        !r.number(v, p, "operational_link_speed", &i.operational_link_speed) ||
        !r.text(v, p, "port_id", &i.port_id) || !r.number(v, p, "is_licensed", &i.is_licensed) ||
        !r.number(v, p, "is_sync_acquired", &i.is_sync_acquired)) {
      return false;
    }
    auto stats = v.find("stats");
    if (stats != v.end() && !readStats(r, *stats, p + ".stats", &port.stats)) return false;
    port.stats.name = i.name;
    port.stats.port_index = i.port_index;
    opPorts->push_back(std::move(port));
    return true;
  });
}

bool readNodePorts(Reader& r, const Json& irRoot, std::vector<NodePort>* opPorts) {
  return r.array(irRoot, "", "node_ports", [&](const Json& v, const std::string& p) {
    NodePort port;
    if (!r.object(v, p, {"name", "port_id", "node_name", "port_type", "switch_port"}) ||
        !r.text(v, p, "name", &port.info.name) || !r.text(v, p, "port_id", &port.info.port_id) ||
        !r.text(v, p, "node_name", &port.info.node_name) ||
        !r.number(v, p, "port_type", &port.info.port_type) ||
        !r.text(v, p, "switch_port", &port.switchPort)) {
      return false;
    }
    opPorts->push_back(std::move(port));
    return true;
  });
}

bool readZoning(Reader& r, const Json& irRoot, FabricModel* m) {
  const Json* v = r.field(irRoot, "", "zoning");
  const std::string p = "zoning";
  if (v == nullptr || !r.object(*v, p, {"service", "capabilities", "aliases", "zones",
                                         "zone_sets", "active_zone_set"})) {
    return false;
  }
  const Json* service = r.field(*v, p, "service");
  const std::string sp = "zoning.service";
  if (service == nullptr || !r.object(*service, sp, {"timeout", "default_zoning_state"}) ||
      !r.number(*service, sp, "timeout", &m->zoneService.timeout) ||
      !r.number(*service, sp, "default_zoning_state", &m->zoneService.default_zoning_state)) {
    return false;
  }
  const Json* caps = r.field(*v, p, "capabilities");
  const std::string cp = "zoning.capabilities";
  zone_capabilities_data_t& c = m->zoneCapabilities;
  if (caps == nullptr ||
      !r.object(*caps, cp, {"ZoneNameMaxLen", "ZoneNameFormat", "MaxNumZoneSets", "MaxNumZone",
                            "MaxNumZoneMembers", "MaxNumZonesPerZoneSet", "MaxNumZoneAliases"}) ||
      !r.number(*caps, cp, "ZoneNameMaxLen", &c.ZoneNameMaxLen) ||
      !r.number(*caps, cp, "ZoneNameFormat", &c.ZoneNameFormat) ||
      !r.number(*caps, cp, "MaxNumZoneSets", &c.MaxNumZoneSets) ||
      !r.number(*caps, cp, "MaxNumZone", &c.MaxNumZone) ||
      !r.number(*caps, cp, "MaxNumZoneMembers", &c.MaxNumZoneMembers) ||
      !r.number(*caps, cp, "MaxNumZonesPerZoneSet", &c.MaxNumZonesPerZoneSet) ||
      !r.number(*caps, cp, "MaxNumZoneAliases", &c.MaxNumZoneAliases)) {
    return false;
  }
  ZoneConfig& z = m->zoning;
  bool ok = r.array(*v, p, "aliases", [&](const Json& item, const std::string& ip) {
    alias_t a;
    if (!r.object(item, ip, {"name", "member_list"}) || !r.text(item, ip, "name", &a.name) ||
        !readMembers(r, item, ip, &a.member_list)) {
      return false;
    }
    z.aliases.push_back(std::move(a));
    return true;
  });
  ok = ok && r.array(*v, p, "zones", [&](const Json& item, const std::string& ip) {
    zone_t a;
    if (!r.object(item, ip, {"name", "member_list", "alias_names"}) ||
        !r.text(item, ip, "name", &a.name) || !readMembers(r, item, ip, &a.member_list) ||
        !r.texts(item, ip, "alias_names", &a.alias_names)) {
      return false;
    }
    z.zones.push_back(std::move(a));
    return true;
  });
  ok = ok && r.array(*v, p, "zone_sets", [&](const Json& item, const std::string& ip) {
    zoneset_t a;
    if (!r.object(item, ip, {"name", "zone_names"}) || !r.text(item, ip, "name", &a.name) ||
        !r.texts(item, ip, "zone_names", &a.zone_names)) {
      return false;
    }
    z.zoneSets.push_back(std::move(a));
    return true;
  });
  if (!ok) return false;
  const Json* active = r.field(*v, p, "active_zone_set");
  if (active == nullptr) return false;
  if (active->is_null()) return true;
  const std::string ap = "zoning.active_zone_set";
  return r.object(*active, ap, {"name", "zone_names"}) &&
         r.text(*active, ap, "name", &m->activeZoneSet.name) &&
         r.texts(*active, ap, "zone_names", &m->activeZoneSet.zone_names);
}

bool readModel(const Json& irRoot, FabricModel* m, std::string* orError) {
  Reader r(orError);
  if (!r.object(irRoot, "model", {"software", "fabric", "switch", "product", "ports", "nodes",
                                  "node_ports", "zoning"})) {
    return false;
  }
  const Json* software = r.field(irRoot, "", "software");
  if (software == nullptr || !r.object(*software, "software", {"version"}) ||
      !r.text(*software, "software", "version", &m->software.version)) {
    return false;
  }
  const Json* fabric = r.field(irRoot, "", "fabric");
  if (fabric == nullptr) return false;
  m->fabricPresent = !fabric->is_null();
  if (m->fabricPresent &&
      (!r.object(*fabric, "fabric", {"name", "vlan"}) ||
       !r.text(*fabric, "fabric", "name", &m->fabric.name) ||
       !r.number(*fabric, "fabric", "vlan", &m->fabric.vlan))) {
    return false;
  }
  return readSwitch(r, irRoot, &m->switchInfo) && readProduct(r, irRoot, &m->product) &&
         readPorts(r, irRoot, &m->ports) && r.texts(irRoot, "", "nodes", &m->nodes) &&
         readNodePorts(r, irRoot, &m->nodePorts) && readZoning(r, irRoot, m);
}

}  // namespace

std::string FabricModel::toJson(int ipIndent) const {
  try {
    // Strings that are not UTF-8 (names a client sent) are written with
    // replacement characters instead of failing.
    return modelJson(*this).dump(ipIndent, ' ', false, Json::error_handler_t::replace);
  } catch (const std::exception&) {
    return std::string();  // only when memory runs out
  }
}

bool FabricModel::fromJson(const std::string& irText, FabricModel* opModel,
                           std::string* orError) {
  try {
    const Json root = Json::parse(irText);
    FabricModel model;
    if (!readModel(root, &model, orError)) return false;
    if (!model.validate(orError)) return false;
    *opModel = std::move(model);
    return true;
  } catch (const std::exception& e) {
    *orError = std::string("not valid JSON: ") + e.what();
    return false;
  }
}

bool FabricModel::loadFile(const std::string& irPath, FabricModel* opModel,
                           std::string* orError) {
  std::ifstream in(irPath);
  if (!in) {
    *orError = "cannot read " + irPath + ": " + std::strerror(errno);
    return false;
  }
  std::ostringstream text;
  text << in.rdbuf();
  if (!fromJson(text.str(), opModel, orError)) {
    *orError = irPath + ": " + *orError;
    return false;
  }
  return true;
}

}  // namespace switchsim
