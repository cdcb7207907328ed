// The node ports attached to the switch (logged in through one of its
// ports), one instance per port name (its WWPN), as devices of the fabric.
#include "generated/scimbackend/QRX_NodeFCPort_Best.h"

#include "common/backend/AttachedNodes.h"
#include "common/backend/PortEndpoints.h"
#include "common/backend/SwitchRecords.h"
#include "common/base/trace.h"
#include "generated/scimclasses/QRX_Fabric.h"

namespace {
const char* const kUnit = "common/backend/QRX_NodeFCPort_Best";
}  // namespace

bool QRX_NodeFCPort_Best::enumInstances(QRX_NodeFCPort_Array& out) {
  fabric_info_t fabric;
  if (!readFabric(kUnit, fabric)) return false;
  node_fc_port_info_tA ports;
  if (!readAttachedNodePorts(ports)) {
    TRACE_ERROR(kUnit, "Failed to get node fc port info\n");
    return false;
  }
  for (const node_fc_port_info_t& port : ports) {
    const QRX_NodeFCPort_Key key = nodePortKey(fabric.name, port.name);
    QRX_NodeFCPort object;
    object.SystemCreationClassName = key.SystemCreationClassName;
    object.SystemName = key.SystemName;
    object.CreationClassName = key.CreationClassName;
    object.DeviceID = key.DeviceID;
    object.Name = port.name;
    object.ElementName = port.name;
    object.PermanentAddress = port.name;
    object.NetworkAddresses = {port.port_id};
    object.PortType = port.port_type;
    object.LinkTechnology = 4;  // FC
    object.OperationalStatus = {2};
    object.EnabledState = 2;
    object.RequestedState = 5;
    object.EnabledDefault = 2;
    out.push_back(object);
  }
  return true;
}

bool QRX_NodeFCPort_Best::getInstance(const QRX_NodeFCPort_Key& key, QRX_NodeFCPort& out) {
  if (key.CreationClassName != className ||
      key.SystemCreationClassName != QRX_Fabric::ivCIMClassName) {
    TRACE_ERROR(kUnit, "CreationClass or SystemCreationClass missmatch!\n");
    return false;
  }
  QRX_NodeFCPort_Array all;
  if (!enumInstances(all)) {
    TRACE_ERROR(kUnit, "Enum Instance Failed!\n");
    return false;
  }
  for (const QRX_NodeFCPort& port : all) {
    if (QRX_NodeFCPort_Key(port) == key) {
      out = port;
      return true;
    }
  }
  TRACE_ERROR(kUnit, "No Object found! deviceID: %s system: %s\n", key.DeviceID.c_str(),
              key.SystemName.c_str());
  return false;
}
