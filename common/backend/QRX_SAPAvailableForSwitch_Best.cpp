// The web management page is available to manage the switch.
#include "generated/scimbackend/QRX_SAPAvailableForSwitch_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_Switch_Best.h"
#include "generated/scimbackend/QRX_WebGUIRemoteAccessPoint_Best.h"

bool QRX_SAPAvailableForSwitch_Best::enumInstances(QRX_SAPAvailableForSwitch_Array& out) {
  return listed_instances::pairs(
      QRX_WebGUIRemoteAccessPoint_Best::singleton, "WEB GUI RAP",
      &QRX_SAPAvailableForSwitch::AvailableSAP, QRX_Switch_Best::singleton, "switch",
      &QRX_SAPAvailableForSwitch::ManagedElement, listed_instances::OnRightSystem(), out);
}
