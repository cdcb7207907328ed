#include "provider/ProviderHelper.h"

#include <strings.h>

#include <cassert>
#include <cstring>

#include "cmpimacs.h"
#include "provider/CMPISerializer.h"

namespace {

// The class name of `ipPath`, or NULL.
const char* classNameOf(const CMPIObjectPath* ipPath) {
  CMPIStatus rc = okStatus();
  CMPIString* name = CMGetClassName(ipPath, &rc);
  if (rc.rc != CMPI_RC_OK || name == nullptr) return nullptr;
  return CMGetCharPtr(name);
}

bool sameName(const char* ipA, const char* ipB) {
  return ipA != nullptr && ipB != nullptr && strcasecmp(ipA, ipB) == 0;
}

// Whether a path of class `ipClass` in `ipNameSpace` is-a `ipAncestor`.
bool classIsA(const CMPIBroker* ipBroker, const char* ipNameSpace, const char* ipClass,
              const char* ipAncestor) {
  CMPIStatus rc = okStatus();
  CMPIObjectPath* path = CMNewObjectPath(ipBroker, ipNameSpace, ipClass, &rc);
  if (rc.rc != CMPI_RC_OK || path == nullptr) return false;
  return CMClassPathIsA(ipBroker, path, ipAncestor, &rc) && rc.rc == CMPI_RC_OK;
}

// Whether the source class `ipSource` lies at the end of class `ipEnd`.
bool atEnd(const CMPIBroker* ipBroker, const char* ipNameSpace, const char* ipSource,
           const char* ipEnd) {
  return sameName(ipSource, ipEnd) || classIsA(ipBroker, ipNameSpace, ipSource, ipEnd);
}

enum class End { Neither, Left, Right };

End sourceEnd(const CMPIBroker* ipBroker, const CMPIObjectPath* ipCop, const char* ipLeftClass,
              const char* ipRightClass) {
  const char* source = classNameOf(ipCop);
  if (source == nullptr) return End::Neither;
  const char* nameSpace = nameSpaceOf(ipCop);
  if (atEnd(ipBroker, nameSpace, source, ipLeftClass)) return End::Left;
  if (atEnd(ipBroker, nameSpace, source, ipRightClass)) return End::Right;
  return End::Neither;
}

// The target decision, which compares names exactly and asks the broker
// about the source path itself.
End targetDecision(const CMPIBroker* ipBroker, const CMPIObjectPath* ipCop,
                   const char* ipLeftClass, const char* ipRightClass, CMPIStatus* opRc) {
  const char* source = classNameOf(ipCop);
  if (source == nullptr) {
    setStatus(opRc, ipBroker, CMPI_RC_ERR_FAILED, "Could not get classname of source object path.");
    return End::Neither;
  }
  CMPIStatus rc = okStatus();
  if (strcmp(source, ipLeftClass) == 0 || CMClassPathIsA(ipBroker, ipCop, ipLeftClass, &rc)) {
    return End::Left;
  }
  if (strcmp(source, ipRightClass) == 0 || CMClassPathIsA(ipBroker, ipCop, ipRightClass, &rc)) {
    return End::Right;
  }
  setStatus(opRc, ipBroker, CMPI_RC_ERR_FAILED,
            "referenced Class is not covered by this Association.");
  return End::Neither;
}

}  // namespace

const char* objPathText(const CMPIObjectPath* ipPath) {
  if (ipPath == nullptr) return "";
  CMPIString* text = CMObjectPathToString(ipPath, nullptr);
  const char* chars = text != nullptr ? CMGetCharPtr(text) : nullptr;
  return chars != nullptr ? chars : "";
}

const char* nameSpaceOf(const CMPIObjectPath* ipPath) {
  CMPIString* name = CMGetNameSpace(ipPath, nullptr);
  const char* chars = name != nullptr ? CMGetCharPtr(name) : nullptr;
  return chars != nullptr && *chars != '\0' ? chars : QRX_NAMESPACE;
}

CMPIObjectPath* newObjPathChecked(const CMPIBroker* ipBroker, const char* ipNameSpace,
                                  const char* ipClassName) {
  CMPIStatus rc = okStatus();
  CMPIObjectPath* path = CMNewObjectPath(ipBroker, ipNameSpace, ipClassName, &rc);
  assert(rc.rc == CMPI_RC_OK);
  assert(path != nullptr);
  assert(path->hdl != nullptr);
  return path;
}

CMPIInstance* newInstanceChecked(const CMPIBroker* ipBroker, const CMPIObjectPath* ipPath) {
  CMPIStatus rc = okStatus();
  CMPIInstance* instance = CMNewInstance(ipBroker, ipPath, &rc);
  assert(rc.rc == CMPI_RC_OK);
  assert(instance != nullptr);
  return instance;
}

bool assocCheckParameterConst(const CMPIBroker* ipBroker, const CMPIObjectPath* ipCop,
                              const char* ipRefLeft, const char* ipRefRight,
                              const char* ipLeftClass, const char* ipRightClass,
                              const char* ipResultClass, const char* ipRole,
                              const char* ipResultRole, CMPIStatus* opRc) {
  (void)opRc;
  End source = sourceEnd(ipBroker, ipCop, ipLeftClass, ipRightClass);
  if (source == End::Neither) return false;
  if (ipResultClass == nullptr && ipRole == nullptr && ipResultRole == nullptr) return true;
  bool left = source == End::Left;
  if (ipResultClass != nullptr) {
    const char* nameSpace = nameSpaceOf(ipCop);
    const char* target = left ? ipRightClass : ipLeftClass;
    if (!classIsA(ipBroker, nameSpace, target, ipResultClass) &&
        !classIsA(ipBroker, nameSpace, ipResultClass, target)) {
      return false;
    }
  }
  if (ipRole != nullptr && !sameName(ipRole, left ? ipRefLeft : ipRefRight)) return false;
  if (ipResultRole != nullptr) return sameName(ipResultRole, left ? ipRefRight : ipRefLeft);
  return true;
}

const char* assocTargetName(const CMPIBroker* ipBroker, const CMPIObjectPath* ipCop,
                            const char* ipLeftClass, const char* ipRefLeft,
                            const char* ipRightClass, const char* ipRefRight, CMPIStatus* opRc) {
  switch (targetDecision(ipBroker, ipCop, ipLeftClass, ipRightClass, opRc)) {
    case End::Left:
      return ipRefRight;
    case End::Right:
      return ipRefLeft;
    case End::Neither:
      break;
  }
  return nullptr;
}

const char* assocTargetClassName(const CMPIBroker* ipBroker, const CMPIObjectPath* ipCop,
                                 const char* ipLeftClass, const char* ipRightClass,
                                 CMPIStatus* opRc) {
  switch (targetDecision(ipBroker, ipCop, ipLeftClass, ipRightClass, opRc)) {
    case End::Left:
      return ipRightClass;
    case End::Right:
      return ipLeftClass;
    case End::Neither:
      break;
  }
  return nullptr;
}
