// What the simulated switch knows: the fabric, the switch with its ports
// and their counters, the nodes logged in through the ports, and the
// zoning database. All records are the protocol's own (smis_ipc.h), so a
// reply is a copy of model data.
//
// How the names relate (the library relies on it):
//   - the switch's `name` is its WWN (16 hex digits); it also names the
//     zone service of the zoning calls
//   - ports are named by their port WWN and numbered by port_index, the
//     number that port events carry; port_id is the port's FC address
//   - every node port logs in through one switch port (`switchPort`, a
//     port name) and belongs to one node (node_name, listed in `nodes`);
//     an empty `switchPort` means a port of another switch of the fabric
//   - a node port counts as logged in while its switch port is online
//     (operational_state 1), one behind another switch always; nodes, node
//     ports and their protocol end points are reported only while logged
//     in, the fabric-wide calls (get_node_names, ...) report all of them,
//     the attached-node calls of a switch port only those behind it
//   - protocol end points are not stored: there is one per switch port
//     (switch side) and one per logged-in node port, named by the port
//
// JSON form (dump-model prints the built-in one): an object with
// "software", "fabric" (null: no fabric), "switch", "product", "ports",
// "nodes", "node_ports" and "zoning"; record fields carry the protocol's
// field names. Every field is required except the counters inside a port's
// "stats" (0 when left out) and "stats" itself; unknown fields are errors.
// The switch's nr_fc_ports is not part of it: the number of ports is
// reported. A switch_time of 0 reports the current time. Date-times are
// seconds since 1970.
//
// Thread-safety: a plain value; the owner serialises.
#ifndef QRX_TOOLS_SWITCHSIM_FABRICMODEL_H_
#define QRX_TOOLS_SWITCHSIM_FABRICMODEL_H_

#include <cstdint>
#include <string>
#include <vector>

#include "generated/smis_ipc/smis_ipc.h"
#include "tools/switchsim/ZoningState.h"

namespace switchsim {

struct SwitchPort {
  switch_fc_port_info_t info;
  // Counters; its name and port_index are reported as those of `info`.
  switch_fc_port_stat_t stats;
};

struct NodePort {
  node_fc_port_info_t info;
  std::string switchPort;  // the switch port's name
};

class FabricModel {
 public:
  software_info_t software;
  bool fabricPresent = true;
  fabric_info_t fabric;
  switch_info_t switchInfo;  // nr_fc_ports is ignored: ports.size() counts
  switch_product_info_t product;
  std::vector<SwitchPort> ports;
  string_tA nodes;
  std::vector<NodePort> nodePorts;
  ZoneConfig zoning;
  zoneset_t activeZoneSet;  // an empty name: no zone set is active
  // Only timeout and default_zoning_state are kept; the session states
  // are the running switch's.
  zone_service_data_t zoneService;
  zone_capabilities_data_t zoneCapabilities;

  // One 24-port switch in a fabric with one VLAN: ports in mixed states
  // and speeds, hosts, two storage arrays, a tape library, a host with
  // NPIV ports, inter-switch links, aliases and zones with every member
  // type, two zone sets of which one is active.
  static FabricModel builtIn();
  // The same fabric with `ipPorts` switch ports (24 to kMaxPorts): the
  // ports after the 24th repeat the states of the first 24 in turn and
  // have no nodes; they are named 2PPP0e5a71004000 (PPP the port index
  // in hex) with the addresses 05PPPP.
  static FabricModel builtIn(unsigned ipPorts);
  static constexpr unsigned kMaxPorts = 2500;
  // The built-in switch and a second switch of the same fabric behind its
  // inter-switch links, with a host and a storage array of its own: their
  // nodes are in the fabric but not attached to this switch.
  static FabricModel twoSwitchFabric();

  // Checks the relations above, unique names and the zoning rules of
  // ZoningState.h; on failure names the offending field in *orError.
  bool validate(std::string* orError) const;

  // The JSON form, indented by `ipIndent` spaces, or on one line when
  // `ipIndent` is negative; no newline at the end.
  std::string toJson(int ipIndent = 2) const;
  // Reads and validates a model. On failure *orError says what is wrong
  // and where, and *opModel is unchanged.
  static bool fromJson(const std::string& irText, FabricModel* opModel, std::string* orError);
  static bool loadFile(const std::string& irPath, FabricModel* opModel, std::string* orError);

  // The port with that name or number; null if there is none.
  SwitchPort* findPort(const std::string& irName);
  const SwitchPort* findPort(const std::string& irName) const;
  SwitchPort* findPortByIndex(std::uint32_t ipIndex);

  bool isLoggedIn(const NodePort& irNodePort) const;
  // Takes out of the active zone set every zone that is no longer
  // defined (the active set is a copy made at activation).
  void dropMissingActiveZones();
};

}  // namespace switchsim

#endif  // QRX_TOOLS_SWITCHSIM_FABRICMODEL_H_
