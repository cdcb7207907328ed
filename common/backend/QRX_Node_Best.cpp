// The nodes attached to the switch (logged in through one of its ports),
// one instance per node name (its WWN).
#include "generated/scimbackend/QRX_Node_Best.h"

#include "common/backend/AttachedNodes.h"
#include "common/base/trace.h"

namespace {
const char* const kUnit = "common/backend/QRX_Node_Best";
}  // namespace

bool QRX_Node_Best::enumInstances(QRX_Node_Array& out) {
  string_tA names;
  if (!readAttachedNodeNames(names)) {
    TRACE_ERROR(kUnit, "Failed to get node names\n");
    return false;
  }
  for (const std::string& name : names) {
    QRX_Node node;
    node.InstanceID = name;
    node.Name = name;
    node.NameFormat = "WWN";
    node.ElementName = name;
    out.push_back(node);
  }
  return true;
}
