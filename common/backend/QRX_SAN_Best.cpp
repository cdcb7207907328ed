// The storage area network: the switch's fabric seen as a SAN, one instance
// named by the fabric's name.
#include "generated/scimbackend/QRX_SAN_Best.h"

#include "common/backend/SwitchRecords.h"

namespace {
const char* const kUnit = "common/backend/QRX_SAN_Best";
}  // namespace

bool QRX_SAN_Best::enumInstances(QRX_SAN_Array& out) {
  fabric_info_t fabric;
  if (!readFabric(kUnit, fabric)) return false;
  QRX_SAN san;
  san.CreationClassName = className;
  san.Name = fabric.name;
  san.NameFormat = "WWN";
  san.ElementName = "SAN " + fabric.name;
  san.OtherIdentifyingInfo = {"SAN"};
  san.IdentifyingDescriptions = {"SNIA:DetailedType"};
  san.OperationalStatus = {2};
  san.EnabledState = 2;
  san.RequestedState = 5;
  san.EnabledDefault = 2;
  out.push_back(san);
  return true;
}
