// The chassis packages the switch.
#include "generated/scimbackend/QRX_SwitchInChassis_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_Chassis_Best.h"
#include "generated/scimbackend/QRX_Switch_Best.h"

bool QRX_SwitchInChassis_Best::enumInstances(QRX_SwitchInChassis_Array& out) {
  return listed_instances::pairs(QRX_Chassis_Best::singleton, "Chassis",
                                 &QRX_SwitchInChassis::Antecedent, QRX_Switch_Best::singleton,
                                 "Switch", &QRX_SwitchInChassis::Dependent,
                                 listed_instances::AnyPair(), out);
}
