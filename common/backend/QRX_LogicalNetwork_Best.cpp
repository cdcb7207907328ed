// The logical network of the fabric: one collection of the protocol
// endpoints that can reach each other, named by the switch.
#include "generated/scimbackend/QRX_LogicalNetwork_Best.h"

#include "common/backend/SwitchRecords.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_LogicalNetwork_Best";
}  // namespace

bool QRX_LogicalNetwork_Best::enumInstances(QRX_LogicalNetwork_Array& out) {
  std::string name;
  if (!readSwitchName(kUnit, name)) return false;
  TRACE_DEBUG("LogicNetwork name=%s\n", name.c_str());
  QRX_LogicalNetwork network;
  network.InstanceID = name;
  network.ElementName = "Logical network of switch " + name;
  network.ConnectivityStatus = 2;  // Connectivity Up
  out.push_back(network);
  return true;
}

bool QRX_LogicalNetwork_Best::getInstance(const QRX_LogicalNetwork_Key& key,
                                          QRX_LogicalNetwork& out) {
  QRX_LogicalNetwork_Array all;
  if (!enumInstances(all)) {
    TRACE_ERROR(kUnit, "Enum Instances failed!\n");
    return false;
  }
  for (const QRX_LogicalNetwork& network : all) {
    if (QRX_LogicalNetwork_Key(network) == key) {
      out = network;
      return true;
    }
  }
  TRACE_ERROR(kUnit, "Key Missmatch for this Instance\n");
  return false;
}
