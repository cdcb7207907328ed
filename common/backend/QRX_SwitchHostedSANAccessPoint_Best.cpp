// The switch hosts the protocol endpoints of its ports.
#include "generated/scimbackend/QRX_SwitchHostedSANAccessPoint_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_SANProtocolEndpoint_Best.h"
#include "generated/scimbackend/QRX_Switch_Best.h"

bool QRX_SwitchHostedSANAccessPoint_Best::enumInstances(QRX_SwitchHostedSANAccessPoint_Array& out) {
  return listed_instances::pairs(
      QRX_Switch_Best::singleton, "Switch", &QRX_SwitchHostedSANAccessPoint::Antecedent,
      QRX_SANProtocolEndpoint_Best::singleton, "SanProtocolEndpoint",
      &QRX_SwitchHostedSANAccessPoint::Dependent, listed_instances::OnLeftSystem(), out);
}
