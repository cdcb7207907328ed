// The switch hosts its web management page.
#include "generated/scimbackend/QRX_SwitchHostedRemoteAccessPoint_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_Switch_Best.h"
#include "generated/scimbackend/QRX_WebGUIRemoteAccessPoint_Best.h"

bool QRX_SwitchHostedRemoteAccessPoint_Best::enumInstances(
    QRX_SwitchHostedRemoteAccessPoint_Array& out) {
  return listed_instances::pairs(
      QRX_Switch_Best::singleton, "Switch", &QRX_SwitchHostedRemoteAccessPoint::Antecedent,
      QRX_WebGUIRemoteAccessPoint_Best::singleton, "WEB GUI RAP",
      &QRX_SwitchHostedRemoteAccessPoint::Dependent, listed_instances::OnLeftSystem(), out);
}
