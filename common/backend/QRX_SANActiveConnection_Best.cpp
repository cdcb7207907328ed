// The links between the switch and the nodes: one connection from the
// endpoint of each switch port (the ones clients see) to the endpoint of
// each node port logged in through it.
#include "generated/scimbackend/QRX_SANActiveConnection_Best.h"

#include "common/backend/BackendStart.h"
#include "common/backend/ListedInstances.h"
#include "common/backend/PortEndpoints.h"
#include "common/backend/SwitchRecords.h"
#include "common/base/trace.h"
#include "generated/scimbackend/QRX_SANProtocolEndpoint_Best.h"

namespace {
const char* const kUnit = "common/backend/QRX_SANActiveConnection_Best";
}  // namespace

bool QRX_SANActiveConnection_Best::enumInstances(QRX_SANActiveConnection_Array& out) {
  FabricCache* cache = get_fabric_cache();
  if (cache == nullptr) return false;
  std::string switchName;
  int rc = cache->get_switch_name(switchName);
  if (rc != 0) {
    TRACE_ERROR(kUnit, "get_switch_name() failed %d\n", rc);
    return false;
  }
  fabric_info_t fabric;
  if (!readFabric(kUnit, fabric)) return false;
  std::vector<std::string> ports;
  rc = cache->get_artificial_switch_fc_port_names(ports);
  if (rc != 0) {
    TRACE_ERROR(kUnit, "get_switch_fc_port_info() failed %d\n", rc);
    return false;
  }
  for (const std::string& port : ports) {
    string_tA nodePorts;
    rc = cache->get_attached_node_fc_port_names(port, nodePorts);
    if (rc != 0) {
      TRACE_ERROR(kUnit, "get_attached_node_fc_port_names() failed %d\n", rc);
      return false;
    }
    protocol_endpoint_info_t switchSide;
    switchSide.name = port;
    switchSide.is_switch_side = 1;
    switchSide.system_name = switchName;
    for (const std::string& nodePort : nodePorts) {
      protocol_endpoint_info_t nodeSide;
      nodeSide.name = nodePort;
      TRACE_DEBUG("Found Connection %s - %s\n", port.c_str(), nodePort.c_str());
      QRX_SANActiveConnection connection;
      connection.Antecedent = endpointKey(switchSide, fabric.name);
      connection.Dependent = endpointKey(nodeSide, fabric.name);
      connection.TrafficType = 2;  // Unicast
      connection.IsUnidirectional = false;
      out.push_back(connection);
    }
  }
  return true;
}

// Both ends are protocol endpoints, and the glue cannot tell at which end a
// source endpoint stands: each operation answers for the source at either
// end, which for a link that runs both ways is the same question.
namespace {

using Connection = QRX_SANActiveConnection;
using EndpointKey = QRX_SANProtocolEndpoint_Key;

bool referencesAtEitherEnd(const EndpointKey& irSource, QRX_SANActiveConnection_Array& orOut) {
  auto& backend = QRX_SANActiveConnection_Best::singleton;
  return listed_instances::references(backend, &Connection::Antecedent, irSource, orOut) &&
         listed_instances::references(backend, &Connection::Dependent, irSource, orOut);
}

bool namesAtEitherEnd(const EndpointKey& irSource, QRX_SANProtocolEndpoint_KeyArray& orOut) {
  auto& backend = QRX_SANActiveConnection_Best::singleton;
  return listed_instances::associatorNames<QRX_SANActiveConnection_Array>(
             backend, &Connection::Antecedent, &Connection::Dependent, irSource, orOut) &&
         listed_instances::associatorNames<QRX_SANActiveConnection_Array>(
             backend, &Connection::Dependent, &Connection::Antecedent, irSource, orOut);
}

bool objectsAtEitherEnd(const EndpointKey& irSource, QRX_SANProtocolEndpoint_Array& orOut) {
  auto& backend = QRX_SANActiveConnection_Best::singleton;
  auto& endpoints = QRX_SANProtocolEndpoint_Best::singleton;
  return listed_instances::associators<QRX_SANActiveConnection_Array>(
             backend, endpoints, &Connection::Antecedent, &Connection::Dependent, irSource,
             orOut) &&
         listed_instances::associators<QRX_SANActiveConnection_Array>(
             backend, endpoints, &Connection::Dependent, &Connection::Antecedent, irSource, orOut);
}

}  // namespace

bool QRX_SANActiveConnection_Best::associatorsForAntecedent(const EndpointKey& source,
                                                            QRX_SANProtocolEndpoint_Array& out) {
  return objectsAtEitherEnd(source, out);
}
bool QRX_SANActiveConnection_Best::associatorNamesForAntecedent(
    const EndpointKey& source, QRX_SANProtocolEndpoint_KeyArray& out) {
  return namesAtEitherEnd(source, out);
}
bool QRX_SANActiveConnection_Best::referencesForAntecedent(const EndpointKey& source,
                                                           QRX_SANActiveConnection_Array& out) {
  return referencesAtEitherEnd(source, out);
}
bool QRX_SANActiveConnection_Best::associatorsForDependent(const EndpointKey& source,
                                                           QRX_SANProtocolEndpoint_Array& out) {
  return objectsAtEitherEnd(source, out);
}
bool QRX_SANActiveConnection_Best::associatorNamesForDependent(
    const EndpointKey& source, QRX_SANProtocolEndpoint_KeyArray& out) {
  return namesAtEitherEnd(source, out);
}
bool QRX_SANActiveConnection_Best::referencesForDependent(const EndpointKey& source,
                                                          QRX_SANActiveConnection_Array& out) {
  return referencesAtEitherEnd(source, out);
}
