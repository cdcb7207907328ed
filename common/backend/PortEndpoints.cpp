#include "common/backend/PortEndpoints.h"

#include <set>
#include <utility>
#include <vector>

#include "common/backend/AttachedNodes.h"
#include "common/backend/BackendStart.h"
#include "common/backend/SwitchRecords.h"
#include "common/base/trace.h"
#include "generated/scimclasses/QRX_Fabric.h"
#include "generated/scimclasses/QRX_Switch.h"
#include "generated/scimclasses/QRX_SwitchFCPort.h"

bool readEndpoints(const char* ipUnit, protocol_endpoint_info_tA& orEndpoints,
                   std::string& orFabricName) {
  FabricCache* cache = get_fabric_cache();
  if (cache == nullptr) return false;
  fabric_info_t fabric;
  if (!readFabric(ipUnit, fabric)) return false;
  orFabricName = fabric.name;
  protocol_endpoint_info_tA all;
  std::vector<std::string> mapped;
  node_fc_port_info_tA attached;
  if (cache->get_protocol_endpoint_info(all) != 0 ||
      cache->get_artificial_switch_fc_port_names(mapped) != 0 || !readAttachedNodePorts(attached)) {
    TRACE_ERROR(ipUnit, "Failed to get endpoint info\n");
    return false;
  }
  const std::set<std::string> ports(mapped.begin(), mapped.end());
  std::set<std::string> nodePorts;
  for (const node_fc_port_info_t& port : attached) nodePorts.insert(port.name);
  std::set<std::pair<bool, std::string>> seen;
  for (protocol_endpoint_info_t& endpoint : all) {
    const bool switchSide = endpoint.is_switch_side != 0;
    if (switchSide && ports.count(endpoint.fc_port_name) == 0) continue;
    if (!switchSide && nodePorts.count(endpoint.fc_port_name) == 0) continue;
    if (!seen.emplace(switchSide, endpoint.name).second) continue;
    orEndpoints.push_back(std::move(endpoint));
  }
  return true;
}

QRX_SANProtocolEndpoint_Key endpointKey(const protocol_endpoint_info_t& irEndpoint,
                                        const std::string& irFabricName) {
  QRX_SANProtocolEndpoint_Key key;
  if (irEndpoint.is_switch_side != 0) {
    key.SystemCreationClassName = QRX_Switch::ivCIMClassName;
    key.SystemName = irEndpoint.system_name;
  } else {
    key.SystemCreationClassName = QRX_Fabric::ivCIMClassName;
    key.SystemName = irFabricName;
  }
  key.CreationClassName = QRX_SANProtocolEndpoint::ivCIMClassName;
  key.Name = irEndpoint.name;
  return key;
}

QRX_FCPort_Key endpointPortKey(const protocol_endpoint_info_t& irEndpoint,
                               const std::string& irFabricName) {
  QRX_FCPort_Key key;
  if (irEndpoint.is_switch_side != 0) {
    key.SystemCreationClassName = QRX_Switch::ivCIMClassName;
    key.SystemName = irEndpoint.system_name;
    key.CreationClassName = QRX_SwitchFCPort::ivCIMClassName;
  } else {
    key.SystemCreationClassName = QRX_Fabric::ivCIMClassName;
    key.SystemName = irFabricName;
    key.CreationClassName = QRX_NodeFCPort::ivCIMClassName;
  }
  key.DeviceID = irEndpoint.fc_port_name;
  return key;
}

QRX_NodeFCPort_Key nodePortKey(const std::string& irFabricName, const std::string& irPortName) {
  QRX_NodeFCPort_Key key;
  key.SystemCreationClassName = QRX_Fabric::ivCIMClassName;
  key.SystemName = irFabricName;
  key.CreationClassName = QRX_NodeFCPort::ivCIMClassName;
  key.DeviceID = irPortName;
  return key;
}
