// AwwpnMap: the switch's Fibre Channel ports under stable port names.
//
// The ports a client sees are not the daemon's port list itself but the
// entries of this map. The map has kEntries slots. Slot k carries the
// artificial port name (AWWPN) start + k, written as 16 lower-case hex
// digits, where `start` is the 64-bit address in the name of the first
// port of the list the map was built from. A physical port (identified by
// its port_index) is bound to a free slot when it first appears and keeps
// that slot, and so its name, for as long as it exists; a slot given up by
// a vanished port is reused only after every other free slot has had its
// turn (round-robin), so a name does not jump from one port to another
// across a quick remove and add.
//
// Each bound slot exposes one port object: the physical port record with
// its name replaced by the slot's AWWPN (port_id and every other field are
// the physical port's). The physical name stays reachable, because the
// daemon knows only physical names.
//
// When the first port name is not a 16-hex-digit address no artificial
// names can be derived: every slot then carries its port's physical name.
//
// Not thread-safe: the fabric cache calls it under its own lock.
#ifndef QRX_COMMON_BACKEND_AWWPNMAP_H_
#define QRX_COMMON_BACKEND_AWWPNMAP_H_

#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "generated/smis_ipc/smis_ipc.h"

class AwwpnMap {
 public:
  static constexpr std::size_t kEntries = 2500;

  // An empty, invalid map; `irDummy` is the record a free slot holds.
  explicit AwwpnMap(const switch_fc_port_info_t& irDummy);

  // Rebuilds the map from `irPorts`: the start address from the first
  // port's name, then the ports bound to slots 0, 1, ... in list order. An
  // empty list leaves the map empty and invalid; otherwise it is valid.
  void init(const switch_fc_port_info_tA& irPorts);

  // Brings a valid map up to `irPorts` without renaming anyone: ports that
  // are gone free their slots, new ports take the next free slot after the
  // last one handed out, and bound ports get their fresh records.
  void update(const switch_fc_port_info_tA& irPorts);

  // Frees every slot and marks the map invalid.
  void clear();

  bool isMapValid() const { return ivValid; }
  void setMapValid(bool ipValid) { ivValid = ipValid; }

  // The port objects of the bound slots, in slot order.
  void getPortObjects(switch_fc_port_info_tA& orPorts) const;
  // The AWWPNs of the bound slots, in slot order.
  void getAwwpns(std::vector<std::string>& orNames) const;

  // The physical port name for an AWWPN; false when no bound slot has it.
  bool getPhysicalName(const std::string& irAwwpn, std::string& orPhysical) const;
  // The AWWPN bound to the physical port address `ipWwpn`, or 0.
  std::uint64_t getNodewwn(std::uint64_t ipWwpn) const;
  // The physical port address behind the AWWPN `ipAwwpn`, or 0 (also when
  // the physical name is not an address).
  std::uint64_t getITwwpn(std::uint64_t ipAwwpn) const;

  // A 16-hex-digit address; false for anything else.
  static bool parseWwn(const std::string& irText, std::uint64_t& orWwn);
  static std::string formatWwn(std::uint64_t ipWwn);

 private:
  struct Slot {
    bool bound = false;
    std::string awwpn;
    switch_fc_port_info_t port;  // the physical record, or the dummy
  };

  void bind(const switch_fc_port_info_t& irPort);
  void release(std::size_t ipSlot);
  const Slot* findByAwwpn(const std::string& irAwwpn) const;

  switch_fc_port_info_t ivDummy;
  std::vector<Slot> ivSlots;
  std::map<std::uint16_t, std::size_t> ivSlotOfPort;  // port_index -> slot
  std::set<std::size_t> ivBoundSlots;  // the bound slots, so that listing them
                                       // does not walk all kEntries
  std::uint64_t ivStart = 0;
  bool ivArtificial = false;  // names derived from ivStart
  std::size_t ivNextSlot = 0;  // where the search for a free slot begins
  bool ivValid = false;
};

#endif  // QRX_COMMON_BACKEND_AWWPNMAP_H_
