#include "common/backend/LifecycleIndication.h"

#include <cassert>

#include "generated/scimclasses/CIM_InstCreation.h"
#include "generated/scimclasses/CIM_InstDeletion.h"
#include "generated/scimclasses/CIM_InstModification.h"

const char* const kIndicationNameSpace = "root/qrx";

void embedInstance(cstring_EO& orProperty, std::unique_ptr<SCIMSerdesable> ipObject) {
  orProperty.ivNameSpace = kIndicationNameSpace;
  orProperty.ivClassName = ipObject ? ipObject->getCIMClassName() : cstring();
  orProperty.reset(ipObject.release());
}

std::unique_ptr<SCIMSerdesable> makeLifecycleIndication(IND_TYPE ipType, const std::string& irIdent,
                                                        std::unique_ptr<SCIMSerdesable> ipSource,
                                                        std::unique_ptr<SCIMSerdesable> ipPrevious) {
  switch (ipType) {
    case IND_INSTCREATION: {
      std::unique_ptr<CIM_InstCreation> indication(new CIM_InstCreation());
      indication->IndicationIdentifier = irIdent;
      embedInstance(indication->SourceInstance, std::move(ipSource));
      return indication;
    }
    case IND_INSTMODIFICATION: {
      std::unique_ptr<CIM_InstModification> indication(new CIM_InstModification());
      indication->IndicationIdentifier = irIdent;
      embedInstance(indication->SourceInstance, std::move(ipSource));
      embedInstance(indication->PreviousInstance, std::move(ipPrevious));
      return indication;
    }
    case IND_INSTDELETION: {
      std::unique_ptr<CIM_InstDeletion> indication(new CIM_InstDeletion());
      indication->IndicationIdentifier = irIdent;
      embedInstance(indication->SourceInstance, std::move(ipSource));
      return indication;
    }
    case IND_MAX:
      break;
  }
  assert(!"lifecycle indication type");
  return nullptr;
}
