// The switch hosts the collection of its port statistics.
#include "generated/scimbackend/QRX_SwitchFCPortStatisticsCollectionForSwitch_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_SwitchFCPortStatisticsCollection_Best.h"
#include "generated/scimbackend/QRX_Switch_Best.h"

bool QRX_SwitchFCPortStatisticsCollectionForSwitch_Best::enumInstances(
    QRX_SwitchFCPortStatisticsCollectionForSwitch_Array& out) {
  return listed_instances::pairs(
      QRX_Switch_Best::singleton, "Switch",
      &QRX_SwitchFCPortStatisticsCollectionForSwitch::Antecedent,
      QRX_SwitchFCPortStatisticsCollection_Best::singleton, "SwitchFCPortStatisticsCollection",
      &QRX_SwitchFCPortStatisticsCollectionForSwitch::Dependent, listed_instances::AnyPair(), out);
}
