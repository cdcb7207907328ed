// Every zone alias, paired with the fabric of its switch; not deletable.
#include "generated/scimbackend/QRX_ZoneAliasInFabric_Best.h"

#include "common/backend/ListedInstances.h"
#include "common/base/trace.h"
#include "generated/scimbackend/QRX_Fabric_Best.h"
#include "generated/scimbackend/QRX_ZoneAlias_Best.h"

bool QRX_ZoneAliasInFabric_Best::enumInstances(QRX_ZoneAliasInFabric_Array& out) {
  return listed_instances::pairs(QRX_Fabric_Best::singleton, "Fabric",
                                 &QRX_ZoneAliasInFabric::Antecedent, QRX_ZoneAlias_Best::singleton,
                                 "ZoneAlias", &QRX_ZoneAliasInFabric::Dependent,
                                 listed_instances::AnyPair(), out);
}

bool QRX_ZoneAliasInFabric_Best::deleteInstance(const QRX_ZoneAliasInFabric_Key&) {
  TRACE_ERROR("common/backend/QRX_ZoneAliasInFabric_Best", "Not Supported\n");
  return false;
}
