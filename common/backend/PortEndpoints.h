// Node ports and protocol endpoints as clients see them, and their keys.
//
// A switch-side endpoint belongs to the switch (QRX_Switch, switch name) and
// is implemented by a switch port; a node-side endpoint, like the node port
// that implements it, belongs to the fabric (QRX_Fabric, fabric name),
// because the switch reports a node port but not the system behind it.
#ifndef QRX_COMMON_BACKEND_PORTENDPOINTS_H_
#define QRX_COMMON_BACKEND_PORTENDPOINTS_H_

#include <string>

#include "generated/scimclasses/QRX_FCPort.h"
#include "generated/scimclasses/QRX_NodeFCPort.h"
#include "generated/scimclasses/QRX_SANProtocolEndpoint.h"
#include "generated/smis_ipc/smis_ipc.h"

// The endpoints of the fabric cache with each endpoint once; switch-side
// ones only for the ports clients see (the mapped ports), node-side ones
// only for the node ports attached to the switch (AttachedNodes.h). Also reads the
// fabric's name. False after an error line ("Failed to get endpoint info").
bool readEndpoints(const char* ipUnit, protocol_endpoint_info_tA& orEndpoints,
                   std::string& orFabricName);

QRX_SANProtocolEndpoint_Key endpointKey(const protocol_endpoint_info_t& irEndpoint,
                                        const std::string& irFabricName);
// The port that implements the endpoint.
QRX_FCPort_Key endpointPortKey(const protocol_endpoint_info_t& irEndpoint,
                               const std::string& irFabricName);
QRX_NodeFCPort_Key nodePortKey(const std::string& irFabricName, const std::string& irPortName);

#endif  // QRX_COMMON_BACKEND_PORTENDPOINTS_H_
