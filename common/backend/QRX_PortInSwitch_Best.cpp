// The switch's ports (the ones clients see) are devices of the switch.
#include "generated/scimbackend/QRX_PortInSwitch_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_SwitchFCPort_Best.h"
#include "generated/scimbackend/QRX_Switch_Best.h"

bool QRX_PortInSwitch_Best::enumInstances(QRX_PortInSwitch_Array& out) {
  return listed_instances::pairs(
      QRX_Switch_Best::singleton, "Switch", &QRX_PortInSwitch::GroupComponent,
      QRX_SwitchFCPort_Best::singleton, "SwitchFCPort", &QRX_PortInSwitch::PartComponent,
      listed_instances::OnLeftSystem(), out);
}
