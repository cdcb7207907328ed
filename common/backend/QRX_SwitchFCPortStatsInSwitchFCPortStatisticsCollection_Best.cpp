// The statistics of every port are members of the switch's collection.
#include "generated/scimbackend/QRX_SwitchFCPortStatsInSwitchFCPortStatisticsCollection_Best.h"

#include "common/backend/ListedInstances.h"
#include "generated/scimbackend/QRX_SwitchFCPortStatisticsCollection_Best.h"
#include "generated/scimbackend/QRX_SwitchFCPortStats_Best.h"

bool QRX_SwitchFCPortStatsInSwitchFCPortStatisticsCollection_Best::enumInstances(
    QRX_SwitchFCPortStatsInSwitchFCPortStatisticsCollection_Array& out) {
  return listed_instances::pairs(
      QRX_SwitchFCPortStatisticsCollection_Best::singleton, "SwitchFCPortStatisticsCollection",
      &QRX_SwitchFCPortStatsInSwitchFCPortStatisticsCollection::Collection,
      QRX_SwitchFCPortStats_Best::singleton, "SwitchFCPortStats",
      &QRX_SwitchFCPortStatsInSwitchFCPortStatisticsCollection::Member, listed_instances::AnyPair(),
      out);
}
