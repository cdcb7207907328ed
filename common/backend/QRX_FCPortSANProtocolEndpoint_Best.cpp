// Each protocol endpoint is implemented by the switch or node port it is
// named after.
#include "generated/scimbackend/QRX_FCPortSANProtocolEndpoint_Best.h"

#include "common/backend/PortEndpoints.h"

namespace {
const char* const kUnit = "common/backend/QRX_FCPortSANProtocolEndpoint_Best";
}  // namespace

bool QRX_FCPortSANProtocolEndpoint_Best::enumInstances(QRX_FCPortSANProtocolEndpoint_Array& out) {
  protocol_endpoint_info_tA endpoints;
  std::string fabricName;
  if (!readEndpoints(kUnit, endpoints, fabricName)) return false;
  for (const protocol_endpoint_info_t& endpoint : endpoints) {
    QRX_FCPortSANProtocolEndpoint link;
    link.Antecedent = endpointPortKey(endpoint, fabricName);
    link.Dependent = endpointKey(endpoint, fabricName);
    out.push_back(link);
  }
  return true;
}
