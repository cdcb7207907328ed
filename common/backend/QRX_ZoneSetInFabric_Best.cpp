// Every zone set (the active copy too), paired with the fabric of its switch; not deletable.
#include "generated/scimbackend/QRX_ZoneSetInFabric_Best.h"

#include "common/backend/ListedInstances.h"
#include "common/base/trace.h"
#include "generated/scimbackend/QRX_Fabric_Best.h"
#include "generated/scimbackend/QRX_ZoneSet_Best.h"

bool QRX_ZoneSetInFabric_Best::enumInstances(QRX_ZoneSetInFabric_Array& out) {
  return listed_instances::pairs(QRX_Fabric_Best::singleton, "Fabric",
                                 &QRX_ZoneSetInFabric::Antecedent, QRX_ZoneSet_Best::singleton,
                                 "ZoneSet", &QRX_ZoneSetInFabric::Dependent,
                                 listed_instances::AnyPair(), out);
}

bool QRX_ZoneSetInFabric_Best::deleteInstance(const QRX_ZoneSetInFabric_Key&) {
  TRACE_ERROR("common/backend/QRX_ZoneSetInFabric_Best", "Not Supported\n");
  return false;
}
