// The lifecycle indications the event thread builds: CIM_InstCreation,
// CIM_InstModification and CIM_InstDeletion carrying the changed object
// as an embedded instance in the namespace "root/qrx".
#ifndef QRX_COMMON_BACKEND_LIFECYCLEINDICATION_H_
#define QRX_COMMON_BACKEND_LIFECYCLEINDICATION_H_

#include <memory>
#include <string>

#include "common/backend/IndSubscriptions.h"
#include "common/base/SCIMCommon.h"

// The namespace of every embedded instance.
extern const char* const kIndicationNameSpace;  // "root/qrx"

// Puts `ipObject` (owned from now on; may be null) into `orProperty` with
// its class name and kIndicationNameSpace.
void embedInstance(cstring_EO& orProperty, std::unique_ptr<SCIMSerdesable> ipObject);

// The indication of `ipType` with IndicationIdentifier `irIdent`:
// SourceInstance is `ipSource`; PreviousInstance is `ipPrevious` for a
// modification (ignored for the other types). Both are owned from now on.
std::unique_ptr<SCIMSerdesable> makeLifecycleIndication(IND_TYPE ipType, const std::string& irIdent,
                                                        std::unique_ptr<SCIMSerdesable> ipSource,
                                                        std::unique_ptr<SCIMSerdesable> ipPrevious);

#endif  // QRX_COMMON_BACKEND_LIFECYCLEINDICATION_H_
