#include "common/backend/AwwpnMap.h"

#include <cstdio>
#include <set>

#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/AwwpnMap";
}  // namespace

AwwpnMap::AwwpnMap(const switch_fc_port_info_t& irDummy) : ivDummy(irDummy) { clear(); }

bool AwwpnMap::parseWwn(const std::string& irText, std::uint64_t& orWwn) {
  if (irText.size() != 16) return false;
  std::uint64_t value = 0;
  for (char c : irText) {
    int digit;
    if (c >= '0' && c <= '9') {
      digit = c - '0';
    } else if (c >= 'a' && c <= 'f') {
      digit = c - 'a' + 10;
    } else if (c >= 'A' && c <= 'F') {
      digit = c - 'A' + 10;
    } else {
      return false;
    }
    value = (value << 4) | static_cast<std::uint64_t>(digit);
  }
  orWwn = value;
  return true;
}

std::string AwwpnMap::formatWwn(std::uint64_t ipWwn) {
  char text[17];
  std::snprintf(text, sizeof(text), "%016llx", static_cast<unsigned long long>(ipWwn));
  return text;
}

void AwwpnMap::clear() {
  ivSlots.assign(kEntries, Slot());
  for (Slot& slot : ivSlots) slot.port = ivDummy;
  ivSlotOfPort.clear();
  ivBoundSlots.clear();
  ivNextSlot = 0;
  ivValid = false;
}

void AwwpnMap::init(const switch_fc_port_info_tA& irPorts) {
  clear();
  if (irPorts.empty()) return;
  ivArtificial = parseWwn(irPorts.front().name, ivStart);
  if (!ivArtificial) {
    TRACE_ERROR(kUnit, "port name %s is no address; ports keep their own names\n",
                irPorts.front().name.c_str());
  }
  for (const switch_fc_port_info_t& port : irPorts) bind(port);
  ivValid = true;
}

void AwwpnMap::update(const switch_fc_port_info_tA& irPorts) {
  std::set<std::uint16_t> present;
  for (const switch_fc_port_info_t& port : irPorts) present.insert(port.port_index);
  for (auto it = ivSlotOfPort.begin(); it != ivSlotOfPort.end();) {
    if (present.count(it->first) == 0) {
      release(it->second);
      it = ivSlotOfPort.erase(it);
    } else {
      ++it;
    }
  }
  for (const switch_fc_port_info_t& port : irPorts) {
    auto found = ivSlotOfPort.find(port.port_index);
    if (found == ivSlotOfPort.end()) {
      bind(port);
    } else {
      Slot& slot = ivSlots[found->second];
      if (!ivArtificial) slot.awwpn = port.name;
      slot.port = port;
    }
  }
}

void AwwpnMap::bind(const switch_fc_port_info_t& irPort) {
  if (ivSlotOfPort.count(irPort.port_index) != 0) {
    TRACE_ERROR(kUnit, "port_index %u listed twice; %s ignored\n",
                static_cast<unsigned>(irPort.port_index), irPort.name.c_str());
    return;
  }
  for (std::size_t tried = 0; tried < kEntries; ++tried) {
    const std::size_t index = (ivNextSlot + tried) % kEntries;
    Slot& slot = ivSlots[index];
    if (slot.bound) continue;
    slot.bound = true;
    slot.awwpn = ivArtificial ? formatWwn(ivStart + index) : irPort.name;
    slot.port = irPort;
    ivSlotOfPort[irPort.port_index] = index;
    ivBoundSlots.insert(index);
    ivNextSlot = (index + 1) % kEntries;
    return;
  }
  TRACE_ERROR(kUnit, "all %zu port names are in use; port %s not shown\n", kEntries,
              irPort.name.c_str());
}

void AwwpnMap::release(std::size_t ipSlot) {
  Slot& slot = ivSlots[ipSlot];
  slot.bound = false;
  ivBoundSlots.erase(ipSlot);
  slot.awwpn.clear();
  slot.port = ivDummy;
}

void AwwpnMap::getPortObjects(switch_fc_port_info_tA& orPorts) const {
  orPorts.clear();
  orPorts.reserve(ivBoundSlots.size());
  for (std::size_t index : ivBoundSlots) {
    const Slot& slot = ivSlots[index];
    orPorts.push_back(slot.port);
    orPorts.back().name = slot.awwpn;
  }
}

void AwwpnMap::getAwwpns(std::vector<std::string>& orNames) const {
  orNames.clear();
  orNames.reserve(ivBoundSlots.size());
  for (std::size_t index : ivBoundSlots) orNames.push_back(ivSlots[index].awwpn);
}

const AwwpnMap::Slot* AwwpnMap::findByAwwpn(const std::string& irAwwpn) const {
  for (const auto& entry : ivSlotOfPort) {
    const Slot& slot = ivSlots[entry.second];
    if (slot.awwpn == irAwwpn) return &slot;
  }
  return nullptr;
}

bool AwwpnMap::getPhysicalName(const std::string& irAwwpn, std::string& orPhysical) const {
  const Slot* slot = findByAwwpn(irAwwpn);
  if (slot == nullptr) return false;
  orPhysical = slot->port.name;
  return true;
}

std::uint64_t AwwpnMap::getNodewwn(std::uint64_t ipWwpn) const {
  for (const auto& entry : ivSlotOfPort) {
    const Slot& slot = ivSlots[entry.second];
    std::uint64_t physical = 0;
    std::uint64_t awwpn = 0;
    if (parseWwn(slot.port.name, physical) && physical == ipWwpn && parseWwn(slot.awwpn, awwpn)) {
      return awwpn;
    }
  }
  return 0;
}

std::uint64_t AwwpnMap::getITwwpn(std::uint64_t ipAwwpn) const {
  const Slot* slot = findByAwwpn(formatWwn(ipAwwpn));
  std::uint64_t physical = 0;
  if (slot == nullptr || !parseWwn(slot->port.name, physical)) return 0;
  return physical;
}
