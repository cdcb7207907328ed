// The Fibre Channel protocol endpoints: one per switch port clients see and
// one per node port logged in (see PortEndpoints.h for their systems).
#include "generated/scimbackend/QRX_SANProtocolEndpoint_Best.h"

#include "common/backend/PortEndpoints.h"

namespace {
const char* const kUnit = "common/backend/QRX_SANProtocolEndpoint_Best";
}  // namespace

bool QRX_SANProtocolEndpoint_Best::enumInstances(QRX_SANProtocolEndpoint_Array& out) {
  protocol_endpoint_info_tA endpoints;
  std::string fabricName;
  if (!readEndpoints(kUnit, endpoints, fabricName)) return false;
  for (const protocol_endpoint_info_t& endpoint : endpoints) {
    const QRX_SANProtocolEndpoint_Key key = endpointKey(endpoint, fabricName);
    QRX_SANProtocolEndpoint object;
    object.SystemCreationClassName = key.SystemCreationClassName;
    object.SystemName = key.SystemName;
    object.CreationClassName = key.CreationClassName;
    object.Name = key.Name;
    object.NameFormat = "WWN";
    object.ElementName = endpoint.name;
    object.ProtocolType = 18;    // Fibre Channel
    object.ProtocolIFType = 56;  // Fibre Channel
    object.OperationalStatus = {2};
    object.EnabledState = 2;
    object.RequestedState = 5;
    object.EnabledDefault = 2;
    out.push_back(object);
  }
  return true;
}
