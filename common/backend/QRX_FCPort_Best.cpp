// Fibre Channel ports in general. Every port is a switch port or a node
// port, an instance of the subclass whose backend lists it: this class has
// no instances of its own. A path naming a port by this class (as the ends
// of the port-to-endpoint association do) is resolved by the subclass its
// CreationClassName names.
#include "generated/scimbackend/QRX_FCPort_Best.h"

#include "common/base/trace.h"
#include "generated/scimbackend/QRX_NodeFCPort_Best.h"
#include "generated/scimbackend/QRX_SwitchFCPort_Best.h"

namespace {

const char* const kUnit = "common/backend/QRX_FCPort_Best";

// Looks the port up with the backend of its subclass and copies the
// properties this class declares.
template <class BestT, class KeyT, class ObjectT>
bool getFromSubclass(BestT& irBackend, const QRX_FCPort_Key& irKey, QRX_FCPort& orOut) {
  KeyT key;
  key.SystemCreationClassName = irKey.SystemCreationClassName;
  key.SystemName = irKey.SystemName;
  key.CreationClassName = irKey.CreationClassName;
  key.DeviceID = irKey.DeviceID;
  ObjectT object;
  if (!irBackend.getInstance(key, object)) return false;
  copyToSuperclass(object, orOut);
  return true;
}

}  // namespace

bool QRX_FCPort_Best::enumInstanceNames(QRX_FCPort_KeyArray&) { return true; }

bool QRX_FCPort_Best::enumInstances(QRX_FCPort_Array&) { return true; }

bool QRX_FCPort_Best::getInstance(const QRX_FCPort_Key& key, QRX_FCPort& out) {
  if (key.CreationClassName == QRX_SwitchFCPort_Best::className) {
    return getFromSubclass<QRX_SwitchFCPort_Best, QRX_SwitchFCPort_Key, QRX_SwitchFCPort>(
        QRX_SwitchFCPort_Best::singleton, key, out);
  }
  if (key.CreationClassName == QRX_NodeFCPort_Best::className) {
    return getFromSubclass<QRX_NodeFCPort_Best, QRX_NodeFCPort_Key, QRX_NodeFCPort>(
        QRX_NodeFCPort_Best::singleton, key, out);
  }
  TRACE_ERROR(kUnit, "No port class %s\n", key.CreationClassName.c_str());
  return false;
}
