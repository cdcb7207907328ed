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

namespace {

// A new `Indication` with its identifier and SourceInstance.
template <class Indication>
std::unique_ptr<Indication> withSource(const std::string& irIdent,
                                       std::unique_ptr<SCIMSerdesable> ipSource) {
  std::unique_ptr<Indication> indication(new Indication());
  indication->IndicationIdentifier = irIdent;
  embedInstance(indication->SourceInstance, std::move(ipSource));
  return indication;
}

}  // namespace

std::unique_ptr<SCIMSerdesable> makeLifecycleIndication(IND_TYPE ipType, const std::string& irIdent,
                                                        std::unique_ptr<SCIMSerdesable> ipSource,
                                                        std::unique_ptr<SCIMSerdesable> ipPrevious) {
  switch (ipType) {
    case IND_INSTCREATION:
      return withSource<CIM_InstCreation>(irIdent, std::move(ipSource));
    case IND_INSTMODIFICATION: {
      std::unique_ptr<CIM_InstModification> indication =
          withSource<CIM_InstModification>(irIdent, std::move(ipSource));
      embedInstance(indication->PreviousInstance, std::move(ipPrevious));
      return indication;
    }
    case IND_INSTDELETION:
      return withSource<CIM_InstDeletion>(irIdent, std::move(ipSource));
    case IND_MAX:
      break;
  }
  assert(!"lifecycle indication type");
  return nullptr;
}
