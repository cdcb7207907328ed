// A node collects its ports: each node port attached to the switch is a
// member of the node whose name it reports.
#include "generated/scimbackend/QRX_PortInNode_Best.h"

#include "common/backend/AttachedNodes.h"
#include "common/backend/PortEndpoints.h"
#include "common/backend/SwitchRecords.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_PortInNode_Best";
}  // namespace

bool QRX_PortInNode_Best::enumInstances(QRX_PortInNode_Array& out) {
  fabric_info_t fabric;
  if (!readFabric(kUnit, fabric)) return false;
  node_fc_port_info_tA ports;
  if (!readAttachedNodePorts(ports)) {
    TRACE_ERROR(kUnit, "Failed to get node fc port infos\n");
    return false;
  }
  for (const node_fc_port_info_t& port : ports) {
    QRX_PortInNode member;
    member.Collection.InstanceID = port.node_name;
    member.Member = nodePortKey(fabric.name, port.name);
    out.push_back(member);
  }
  return true;
}
