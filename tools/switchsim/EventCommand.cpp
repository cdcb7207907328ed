#include "tools/switchsim/EventCommand.h"

#include <arpa/inet.h>

#include <cctype>
#include <limits>
#include <utility>

#include "tools/switchsim/Status.h"

namespace switchsim {

namespace {

template <typename T>
bool parseNumber(const std::string& irText, const std::string& irWhat, T* opValue,
                 std::string* orError) {
  const unsigned long long max = std::numeric_limits<T>::max();
  unsigned long long value = 0;
  bool ok = !irText.empty() && irText.size() <= 20;
  for (char c : irText) {
    if (!ok || !std::isdigit(static_cast<unsigned char>(c))) {
      ok = false;
      break;
    }
    const unsigned digit = static_cast<unsigned>(c - '0');
    if (value > (max - digit) / 10) {
      ok = false;
      break;
    }
    value = value * 10 + digit;
  }
  if (!ok) {
    *orError = irWhat + ": expected a number from 0 to " + std::to_string(max) + ", got \"" +
               irText + "\"";
    return false;
  }
  *opValue = static_cast<T>(value);
  return true;
}

bool parseZoneOperation(const std::string& irText, zone_operation_t* opOperation,
                        std::string* orError) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  while (parts.size() < 4) {
    const std::size_t colon = irText.find(':', start);
    if (colon == std::string::npos) break;
    parts.push_back(irText.substr(start, colon - start));
    start = colon + 1;
  }
  parts.push_back(irText.substr(start));
  if (parts.size() != 3 && parts.size() != 5) {
    *orError = "op=" + irText + ": expected OPCODE:KIND:NAME or OPCODE:KIND:NAME:TYPE:ID";
    return false;
  }
  zone_operation_t op;
  if (!parseNumber(parts[0], "op opcode", &op.opcode, orError) ||
      !parseNumber(parts[1], "op kind", &op.data1.member_type, orError)) {
    return false;
  }
  op.data1.member_id = parts[2];
  if (parts.size() == 5) {
    if (!parseNumber(parts[3], "op member type", &op.data2.member_type, orError)) return false;
    op.data2.member_id = parts[4];
  }
  *opOperation = std::move(op);
  return true;
}

bool isAddress(int ipFamily, const std::string& irText) {
  unsigned char buffer[16];
  return inet_pton(ipFamily, irText.c_str(), buffer) == 1;
}

const char* portStateName(PortState ipState) {
  switch (ipState) {
    case PortState::kOnline: return "online";
    case PortState::kOffline: return "offline";
    case PortState::kDisabled: return "disabled";
    case PortState::kFaulty: return "faulty";
  }
  return "?";
}

// The changes of each kind, on a copy of the model.
bool applyChange(const EventCommand& c, FabricModel& m, EventRecord* e, std::string* orError) {
  auto fail = [orError](const std::string& irText) {
    *orError = irText;
    return false;
  };
  switch (c.kind) {
    case EventKind::kPortState:
    case EventKind::kPortAttributes: {
      SwitchPort* port = m.findPortByIndex(c.port);
      if (port == nullptr) return fail("no port with port_index " + std::to_string(c.port));
      switch_fc_port_info_t& info = port->info;
      e->port = c.port;
      if (c.kind == EventKind::kPortAttributes) {
        if (!c.speed && !c.portType && !c.licensed) {
          return fail("port-attr needs speed=, type= or licensed=");
        }
        if (c.speed) info.operational_link_speed = *c.speed;
        if (c.portType) info.port_type = *c.portType;
        if (c.licensed) info.is_licensed = *c.licensed ? 1 : 0;
        e->code = kEventPortAttrChange;
        e->text = "Port " + std::to_string(c.port) + " attributes changed";
        return true;
      }
      const bool online = c.portState == PortState::kOnline;
      info.operational_state = online ? 1 : c.portState == PortState::kFaulty ? 4 : 2;
      info.link_state = c.portState == PortState::kDisabled ? 2 : 1;
      info.port_status = c.portState == PortState::kFaulty ? 2 : 1;
      info.is_sync_acquired = online ? 1 : 0;
      if (!online) info.operational_link_speed = 0;
      e->code = kEventPortStateChange;
      e->text = "Port " + std::to_string(c.port) + " is " + portStateName(c.portState);
      return true;
    }
    case EventKind::kSwitchAttributes: {
      if (!c.switchState && !c.location && !c.owner && !c.hostname) {
        return fail("switch-attr needs state=, location=, owner= or hostname=");
      }
      switch_info_t& s = m.switchInfo;
      if (c.switchState) s.switch_state = *c.switchState;
      if (c.location) s.location = *c.location;
      if (c.owner) s.owner = *c.owner;
      if (c.hostname) s.hostname = *c.hostname;
      e->code = kEventSwitchAttrChange;
      e->text = "Switch attributes changed";
      return true;
    }
    case EventKind::kIpAddress: {
      if (!c.ip && !c.ip2 && !c.ipv6 && !c.ip2v6) return fail("ip needs ip=, ip2=, ipv6= or ip2v6=");
      if (c.ip && !isAddress(AF_INET, *c.ip)) return fail("ip=" + *c.ip + ": not an IPv4 address");
      if (c.ip2 && !c.ip2->empty() && !isAddress(AF_INET, *c.ip2)) {
        return fail("ip2=" + *c.ip2 + ": not an IPv4 address");
      }
      if (c.ipv6 && !c.ipv6->empty() && !isAddress(AF_INET6, *c.ipv6)) {
        return fail("ipv6=" + *c.ipv6 + ": not an IPv6 address");
      }
      if (c.ip2v6 && !c.ip2v6->empty() && !isAddress(AF_INET6, *c.ip2v6)) {
        return fail("ip2v6=" + *c.ip2v6 + ": not an IPv6 address");
      }
      switch_info_t& s = m.switchInfo;
      if (c.ip) s.ip_address = *c.ip;
      if (c.ip2) s.ip2_address = *c.ip2;
      if (c.ipv6) s.ip_addressv6 = *c.ipv6;
      if (c.ip2v6) s.ip2_addressv6 = *c.ip2v6;
      e->code = kEventIpAddressChange;
      e->text = "IP address changed";
      return true;
    }
    case EventKind::kFabric: {
      if (!c.fabricName && !c.vlan && !c.fabricPresent) {
        return fail("fabric needs name=, vlan=, absent or present");
      }
      if (c.fabricName) m.fabric.name = *c.fabricName;
      if (c.vlan) m.fabric.vlan = *c.vlan;
      if (c.fabricPresent) m.fabricPresent = *c.fabricPresent;
      if (m.fabricPresent && m.fabric.name.empty()) return fail("the fabric needs a name=");
      const bool onlyVlan = c.vlan && !c.fabricName && !c.fabricPresent;
      e->code = onlyVlan ? kEventVlanConfigChange : kEventFabricChange;
      e->text = onlyVlan ? "VLAN changed to " + std::to_string(*c.vlan) : "Fabric changed";
      return true;
    }
    case EventKind::kZoneChange: {
      std::size_t failed = 0;
      ZoneEditor editor(m.zoning, m.zoneCapabilities);
      const std::uint32_t status = editor.applyAll(c.zoneOps, &failed);
      if (status != kStatusOk) {
        return fail("zone operation " + std::to_string(failed + 1) + " rejected: " +
                    statusName(status));
      }
      if (c.activate) {
        const zoneset_t* zoneSet = m.zoning.findZoneSet(*c.activate);
        if (zoneSet == nullptr) return fail("activate=" + *c.activate + ": no such zone set");
        m.activeZoneSet = *zoneSet;
      } else if (c.deactivate) {
        m.activeZoneSet = zoneset_t();
      }
      m.dropMissingActiveZones();
      e->code = kEventZoneChange;
      e->text = "Zoning changed";
      return true;
    }
    case EventKind::kRaw:
      e->code = c.code;
      e->port = c.port;
      return true;
  }
  return fail("unknown event kind");
}

}  // namespace

bool parseEventCommand(const std::vector<std::string>& irWords, EventCommand* opCommand,
                       std::string* orError) {
  if (irWords.empty()) {
    *orError = "an event needs a kind: port-state, port-attr, switch-attr, ip, fabric, zone or raw";
    return false;
  }
  EventCommand c;
  const std::string& kind = irWords[0];
  std::size_t first = 1;  // the first key=value word
  if (kind == "port-state" || kind == "port-attr") {
    c.kind = kind == "port-state" ? EventKind::kPortState : EventKind::kPortAttributes;
    first = kind == "port-state" ? 3 : 2;
    if (irWords.size() < first) {
      *orError = kind + (kind == "port-state" ? " needs a port index and a state"
                                              : " needs a port index");
      return false;
    }
    if (!parseNumber(irWords[1], "port", &c.port, orError)) return false;
    if (kind == "port-state") {
      const std::string& state = irWords[2];
      if (state == "online") c.portState = PortState::kOnline;
      else if (state == "offline") c.portState = PortState::kOffline;
      else if (state == "disabled") c.portState = PortState::kDisabled;
      else if (state == "faulty") c.portState = PortState::kFaulty;
      else {
        *orError = "port state \"" + state + "\": expected online, offline, disabled or faulty";
        return false;
      }
    }
  } else if (kind == "switch-attr") {
    c.kind = EventKind::kSwitchAttributes;
  } else if (kind == "ip") {
    c.kind = EventKind::kIpAddress;
  } else if (kind == "fabric") {
    c.kind = EventKind::kFabric;
  } else if (kind == "zone") {
    c.kind = EventKind::kZoneChange;
  } else if (kind == "raw") {
    c.kind = EventKind::kRaw;
    first = 2;
    if (irWords.size() < 2) {
      *orError = "raw needs an event code";
      return false;
    }
    if (!parseNumber(irWords[1], "code", &c.code, orError)) return false;
  } else {
    *orError = "unknown event kind \"" + kind +
               "\": expected port-state, port-attr, switch-attr, ip, fabric, zone or raw";
    return false;
  }

  for (std::size_t i = first; i < irWords.size(); ++i) {
    const std::string& word = irWords[i];
    const std::size_t equals = word.find('=');
    const std::string key = word.substr(0, equals);
    const std::string value = equals == std::string::npos ? "" : word.substr(equals + 1);
    const bool hasValue = equals != std::string::npos;
    const EventKind k = c.kind;
    bool ok = true;
    bool known = true;
    if (hasValue && key == "chassis") ok = parseNumber(value, key, &c.chassis, orError);
    else if (hasValue && key == "blade") ok = parseNumber(value, key, &c.blade, orError);
    else if (hasValue && key == "text") c.text = value;
    else if (k == EventKind::kRaw && hasValue && key == "port") {
      ok = parseNumber(value, key, &c.port, orError);
    } else if (k == EventKind::kPortAttributes && hasValue && key == "speed") {
      c.speed.emplace();
      ok = parseNumber(value, key, &*c.speed, orError);
    } else if (k == EventKind::kPortAttributes && hasValue && key == "type") {
      c.portType.emplace();
      ok = parseNumber(value, key, &*c.portType, orError);
    } else if (k == EventKind::kPortAttributes && hasValue && key == "licensed") {
      ok = value == "0" || value == "1";
      if (ok) c.licensed = value == "1";
      else *orError = "licensed: expected 0 or 1, got \"" + value + "\"";
    } else if (k == EventKind::kSwitchAttributes && hasValue && key == "state") {
      c.switchState.emplace();
      ok = parseNumber(value, key, &*c.switchState, orError);
    } else if (k == EventKind::kSwitchAttributes && hasValue && key == "location") {
      c.location = value;
    } else if (k == EventKind::kSwitchAttributes && hasValue && key == "owner") {
      c.owner = value;
    } else if (k == EventKind::kSwitchAttributes && hasValue && key == "hostname") {
      c.hostname = value;
    } else if (k == EventKind::kIpAddress && hasValue && key == "ip") {
      c.ip = value;
    } else if (k == EventKind::kIpAddress && hasValue && key == "ip2") {
      c.ip2 = value;
    } else if (k == EventKind::kIpAddress && hasValue && key == "ipv6") {
      c.ipv6 = value;
    } else if (k == EventKind::kIpAddress && hasValue && key == "ip2v6") {
      c.ip2v6 = value;
    } else if (k == EventKind::kFabric && hasValue && key == "name") {
      c.fabricName = value;
    } else if (k == EventKind::kFabric && hasValue && key == "vlan") {
      c.vlan.emplace();
      ok = parseNumber(value, key, &*c.vlan, orError);
    } else if (k == EventKind::kFabric && !hasValue && (key == "absent" || key == "present")) {
      c.fabricPresent = key == "present";
    } else if (k == EventKind::kZoneChange && hasValue && key == "op") {
      zone_operation_t op;
      ok = parseZoneOperation(value, &op, orError);
      if (ok) c.zoneOps.push_back(std::move(op));
    } else if (k == EventKind::kZoneChange && hasValue && key == "activate") {
      c.activate = value;
    } else if (k == EventKind::kZoneChange && !hasValue && key == "deactivate") {
      c.deactivate = true;
    } else {
      known = false;
    }
    if (!known) {
      *orError = "\"" + word + "\" is not a word of a " + kind + " event";
      return false;
    }
    if (!ok) return false;
  }
  if (c.activate && c.deactivate) {
    *orError = "activate= and deactivate exclude each other";
    return false;
  }
  *opCommand = std::move(c);
  return true;
}

bool applyEventCommand(const EventCommand& irCommand, FabricModel& irModel,
                       EventRecord* opEvent, std::string* orError) {
  FabricModel changed = irModel;
  EventRecord event;
  if (!applyChange(irCommand, changed, &event, orError)) return false;
  event.chassis = irCommand.chassis;
  event.blade = irCommand.blade;
  if (irCommand.text) event.text = *irCommand.text;
  irModel = std::move(changed);
  *opEvent = std::move(event);
  return true;
}

}  // namespace switchsim
