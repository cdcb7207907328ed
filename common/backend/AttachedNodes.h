// The nodes and node ports attached to this switch: what the daemon's
// attached-node calls report for each physical port of the switch, asked
// with the port's physical name. Nodes logged in through other switches of
// the fabric are not among them.
//
// Each name or port is listed once, in the order of the physical port list
// and, within a port, of the daemon's answer. The readers write no trace
// line: on false the caller logs its own message, and whatever was
// appended stays in the out-array.
#ifndef QRX_COMMON_BACKEND_ATTACHEDNODES_H_
#define QRX_COMMON_BACKEND_ATTACHEDNODES_H_

#include "generated/smis_ipc/smis_ipc.h"

// The attached nodes' names (WWNs). False when the port list or one of the
// calls fails.
bool readAttachedNodeNames(string_tA& orNames);

// The attached node ports' records. False as above.
bool readAttachedNodePorts(node_fc_port_info_tA& orPorts);

#endif  // QRX_COMMON_BACKEND_ATTACHEDNODES_H_
