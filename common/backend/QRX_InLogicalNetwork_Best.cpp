// Every protocol endpoint, of switch and node ports alike, is a member of
// the logical network.
#include "generated/scimbackend/QRX_InLogicalNetwork_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_LogicalNetwork_Best.h"
#include "generated/scimbackend/QRX_SANProtocolEndpoint_Best.h"

bool QRX_InLogicalNetwork_Best::enumInstances(QRX_InLogicalNetwork_Array& out) {
  return listed_instances::pairs(QRX_LogicalNetwork_Best::singleton, "LogicalNetwork",
                                 &QRX_InLogicalNetwork::Collection,
                                 QRX_SANProtocolEndpoint_Best::singleton, "SanProtocolEndpoint",
                                 &QRX_InLogicalNetwork::Member, listed_instances::AnyPair(), out);
}
