// The zoning capabilities, paired with the fabric of their switch; not deletable.
#include "generated/scimbackend/QRX_ZoneCapabilitiesInFabric_Best.h"

#include "common/backend/ListedInstances.h"
#include "common/base/trace.h"
#include "generated/scimbackend/QRX_Fabric_Best.h"
#include "generated/scimbackend/QRX_ZoneCapabilities_Best.h"

bool QRX_ZoneCapabilitiesInFabric_Best::enumInstances(QRX_ZoneCapabilitiesInFabric_Array& out) {
  return listed_instances::pairs(
      QRX_Fabric_Best::singleton, "Fabric", &QRX_ZoneCapabilitiesInFabric::ManagedElement,
      QRX_ZoneCapabilities_Best::singleton, "ZoneCapabilities",
      &QRX_ZoneCapabilitiesInFabric::Capabilities, listed_instances::AnyPair(), out);
}

bool QRX_ZoneCapabilitiesInFabric_Best::deleteInstance(const QRX_ZoneCapabilitiesInFabric_Key&) {
  TRACE_ERROR("common/backend/QRX_ZoneCapabilitiesInFabric_Best", "Not Supported\n");
  return false;
}
