// Helpers shared by every provider: status and path utilities, and the
// checks that decide whether an association request concerns an
// association and at which of its two ends the source object lies.
//
// An association has a left end (its first reference property, role
// `refLeft`, class `leftClass`) and a right end (`refRight`, `rightClass`).
// The source object of a request (`cop`) lies on the left when its class
// name equals leftClass ignoring case or is a subclass of it; otherwise on
// the right when the same holds for rightClass. The left test comes first,
// so a source that fits both ends counts as left.
#ifndef QRX_PROVIDER_PROVIDERHELPER_H_
#define QRX_PROVIDER_PROVIDERHELPER_H_

#include "cmpidt.h"
#include "provider/StatusUtil.h"

// The text of `ipPath` (CMObjectPathToString), "" when there is none.
const char* objPathText(const CMPIObjectPath* ipPath);

// The namespace of `ipPath`; "root/qrx" when the path has none.
const char* nameSpaceOf(const CMPIObjectPath* ipPath);

// CMNewObjectPath / CMNewInstance for the generated glue, which treats a
// failure of the broker's own factories as a defect: asserts that the
// status is OK and the object (and a path's handle) is not null.
CMPIObjectPath* newObjPathChecked(const CMPIBroker* ipBroker, const char* ipNameSpace,
                                  const char* ipClassName);
CMPIInstance* newInstanceChecked(const CMPIBroker* ipBroker, const CMPIObjectPath* ipPath);

// Whether an association request concerns this association, in order:
// false when the source lies on neither end; true when resultClass, role
// and resultRole are all null; a resultClass must be a superclass of (or
// equal to) the opposite end's class, or a subclass of it; a role must
// equal the source's own role and a resultRole the opposite role, both
// ignoring case. `opRc` is not changed.
bool assocCheckParameterConst(const CMPIBroker* ipBroker, const CMPIObjectPath* ipCop,
                              const char* ipRefLeft, const char* ipRefRight,
                              const char* ipLeftClass, const char* ipRightClass,
                              const char* ipResultClass, const char* ipRole,
                              const char* ipResultRole, CMPIStatus* opRc);

// The role of the end opposite the source: refRight when the source's class
// name equals leftClass exactly or the source is-a leftClass, refLeft when
// the same holds for rightClass. Otherwise NULL with `opRc` set to
// CMPI_RC_ERR_FAILED: "Could not get classname of source object path." when
// the class name cannot be read, "referenced Class is not covered by this
// Association." when it fits neither end.
const char* assocTargetName(const CMPIBroker* ipBroker, const CMPIObjectPath* ipCop,
                            const char* ipLeftClass, const char* ipRefLeft,
                            const char* ipRightClass, const char* ipRefRight, CMPIStatus* opRc);

// The same decision, answering the opposite end's class name.
const char* assocTargetClassName(const CMPIBroker* ipBroker, const CMPIObjectPath* ipCop,
                                 const char* ipLeftClass, const char* ipRightClass,
                                 CMPIStatus* opRc);

#endif  // QRX_PROVIDER_PROVIDERHELPER_H_
