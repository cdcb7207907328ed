// A change to the simulated switch that the switch announces with an
// event, as the owner (a test, the control channel) asks for it.
//
// Kinds, their words (as the control channel and the command line take
// them) and the event each one sends:
//
//   port-state PORT online|offline|disabled|faulty               code 13
//       online:   operational_state 1, link_state 1, port_status 1, in sync
//       offline:  operational_state 2, link_state 1, no sync, speed 0
//       disabled: operational_state 2, link_state 2, no sync, speed 0
//       faulty:   operational_state 4, port_status 2, no sync, speed 0
//       Node ports on a port that is not online are logged out.
//   port-attr PORT [speed=N] [type=N] [licensed=0|1]               code 14
//   switch-attr [state=N] [location=T] [owner=T] [hostname=T]       code 8
//   ip [ip=A] [ip2=A] [ipv6=A] [ip2v6=A]                           code 68
//       addresses are checked; ip2, ipv6 and ip2v6 may be "" (none)
//   fabric [name=WWN] [vlan=N] [absent|present]                      code 1
//       (code 85 when only the VLAN changes)
//   zone [op=OPCODE:KIND:NAME[:TYPE:ID]]... [activate=NAME|deactivate]
//                                                                    code 3
//       zone operations as a session applies them (ZoningState.h), then
//       the activation, all or nothing; without words it only announces
//   raw CODE [port=N]                             the code given, no change
//
// PORT is a port_index; the event's port number is that index. Every kind
// also takes chassis=N, blade=N and text=T (the event's text; otherwise a
// short description).
#ifndef QRX_TOOLS_SWITCHSIM_EVENTCOMMAND_H_
#define QRX_TOOLS_SWITCHSIM_EVENTCOMMAND_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "generated/smis_ipc/smis_ipc.h"
#include "common/backend/EventRecord.h"
#include "tools/switchsim/FabricModel.h"

namespace switchsim {

enum class EventKind {
  kPortState,
  kPortAttributes,
  kSwitchAttributes,
  kIpAddress,
  kFabric,
  kZoneChange,
  kRaw,
};

enum class PortState { kOnline, kOffline, kDisabled, kFaulty };

struct EventCommand {
  EventKind kind = EventKind::kRaw;
  std::uint32_t port = 0;  // port-state, port-attr, raw
  PortState portState = PortState::kOnline;
  // port-attr
  std::optional<std::uint32_t> speed;
  std::optional<std::uint16_t> portType;
  std::optional<bool> licensed;
  // switch-attr
  std::optional<std::uint32_t> switchState;
  std::optional<std::string> location;
  std::optional<std::string> owner;
  std::optional<std::string> hostname;
  // ip
  std::optional<std::string> ip;
  std::optional<std::string> ip2;
  std::optional<std::string> ipv6;
  std::optional<std::string> ip2v6;
  // fabric
  std::optional<std::string> fabricName;
  std::optional<std::uint16_t> vlan;
  std::optional<bool> fabricPresent;
  // zone
  zone_operation_tA zoneOps;
  std::optional<std::string> activate;
  bool deactivate = false;
  // raw
  std::uint32_t code = 0;
  // every kind
  std::uint32_t chassis = 0;
  std::uint32_t blade = 0;
  std::optional<std::string> text;
};

// Reads the words above (kind first). False, with the reason, on an
// unknown kind or word or a bad value.
bool parseEventCommand(const std::vector<std::string>& irWords, EventCommand* opCommand,
                       std::string* orError);

// Applies `irCommand` to `irModel` and fills the event to send (all but
// its reqId). On failure (no such port, a rejected zone operation, a bad
// address...) the model is unchanged and *orError says why.
bool applyEventCommand(const EventCommand& irCommand, FabricModel& irModel,
                       EventRecord* opEvent, std::string* orError);

}  // namespace switchsim

#endif  // QRX_TOOLS_SWITCHSIM_EVENTCOMMAND_H_
