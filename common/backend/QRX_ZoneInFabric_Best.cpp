// Every zone (active copies too), paired with the fabric of its switch; not deletable.
#include "generated/scimbackend/QRX_ZoneInFabric_Best.h"

#include "common/backend/ListedInstances.h"
#include "common/base/trace.h"
#include "generated/scimbackend/QRX_Fabric_Best.h"
#include "generated/scimbackend/QRX_Zone_Best.h"

bool QRX_ZoneInFabric_Best::enumInstances(QRX_ZoneInFabric_Array& out) {
  return listed_instances::pairs(QRX_Fabric_Best::singleton, "Fabric",
                                 &QRX_ZoneInFabric::Antecedent, QRX_Zone_Best::singleton, "Zone",
                                 &QRX_ZoneInFabric::Dependent, listed_instances::AnyPair(), out);
}

bool QRX_ZoneInFabric_Best::deleteInstance(const QRX_ZoneInFabric_Key&) {
  TRACE_ERROR("common/backend/QRX_ZoneInFabric_Best", "Not Supported\n");
  return false;
}
