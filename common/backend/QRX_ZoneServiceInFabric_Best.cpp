// The zone service, paired with the fabric of its switch; not deletable.
#include "generated/scimbackend/QRX_ZoneServiceInFabric_Best.h"

#include "common/backend/ListedInstances.h"
#include "common/base/trace.h"
#include "generated/scimbackend/QRX_Fabric_Best.h"
#include "generated/scimbackend/QRX_ZoneService_Best.h"

bool QRX_ZoneServiceInFabric_Best::enumInstances(QRX_ZoneServiceInFabric_Array& out) {
  return listed_instances::pairs(
      QRX_Fabric_Best::singleton, "Fabric", &QRX_ZoneServiceInFabric::Antecedent,
      QRX_ZoneService_Best::singleton, "ZoneService", &QRX_ZoneServiceInFabric::Dependent,
      listed_instances::AnyPair(), out);
}

bool QRX_ZoneServiceInFabric_Best::deleteInstance(const QRX_ZoneServiceInFabric_Key&) {
  TRACE_ERROR("common/backend/QRX_ZoneServiceInFabric_Best", "Not Supported\n");
  return false;
}
