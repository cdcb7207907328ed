#include "tools/cimhost/broker/Enumerations.h"

#include "tools/cimhost/broker/Core.h"

namespace cimhost {

namespace {

CMPIStatus enumRelease(CMPIEnumeration* en) { return releaseFromC<EncEnumeration>(en); }

CMPIEnumeration* enumClone(const CMPIEnumeration* en, CMPIStatus* rc) {
  return cloneFromC<EncEnumeration>(en, rc);
}

CMPIData enumGetNext(const CMPIEnumeration* en, CMPIStatus* rc) {
  EncEnumeration* self = EncEnumeration::of(en, rc);
  if (!self) return missingData();
  Core* core = self->core();
  return guard(core, rc, missingData(), [&] {
    if (!self->hasNext()) {
      setStatus(rc, core, Status(CMPI_RC_ERR_NOT_FOUND, "enumeration has no more elements"));
      return missingData();
    }
    setOk(rc);
    return self->next().data();
  });
}

CMPIBoolean enumHasNext(const CMPIEnumeration* en, CMPIStatus* rc) {
  EncEnumeration* self = EncEnumeration::of(en, rc);
  if (!self) return 0;
  setOk(rc);
  return self->hasNext() ? 1 : 0;
}

CMPIArray* enumToArray(const CMPIEnumeration* en, CMPIStatus* rc) {
  EncEnumeration* self = EncEnumeration::of(en, rc);
  if (!self) return nullptr;
  Core* core = self->core();
  return guard(core, rc, static_cast<CMPIArray*>(nullptr), [&] {
    CMPIArray* array = core->adopt(self->toArray(core));
    setOk(rc);
    return array;
  });
}

constexpr CMPIEnumerationFT makeTable(int ipVersion) {
  return CMPIEnumerationFT{ipVersion,   enumRelease, enumClone,
                           enumGetNext, enumHasNext, enumToArray};
}

const CMPIEnumerationFT kTable200 = makeTable(CMPIVersion200);
const CMPIEnumerationFT kTable100 = makeTable(CMPIVersion100);

}  // namespace

EncEnumeration::EncEnumeration(Core* ipCore, CMPIType ipType, std::vector<Value> ipItems)
    : Encapsulated(ipCore), ivElementType(ipType), ivItems(std::move(ipItems)) {}

std::unique_ptr<EncEnumeration> EncEnumeration::make(Core* ipCore, const EncArray& irItems) {
  std::vector<Value> items;
  items.reserve(irItems.size());
  for (size_t i = 0; i < irItems.size(); ++i) items.push_back(irItems.at(i).copy(ipCore));
  return std::unique_ptr<EncEnumeration>(
      new EncEnumeration(ipCore, irItems.elementType(), std::move(items)));
}

std::unique_ptr<EncArray> EncEnumeration::toArray(Core* ipCore) const {
  std::vector<Value> items;
  items.reserve(ivItems.size());
  for (const Value& item : ivItems) items.push_back(item.copy(ipCore));
  return EncArray::make(ipCore, ivElementType, std::move(items));
}

std::unique_ptr<EncEnumeration> EncEnumeration::copy(Core* ipCore) const {
  std::vector<Value> items;
  items.reserve(ivItems.size());
  for (const Value& item : ivItems) items.push_back(item.copy(ipCore));
  std::unique_ptr<EncEnumeration> out(
      new EncEnumeration(ipCore, ivElementType, std::move(items)));
  out->ivNext = ivNext;
  return out;
}

const CMPIEnumerationFT* EncEnumeration::table(const Core* ipCore) {
  return ipCore->mode() == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

bool EncEnumeration::isOwnTable(const CMPIEnumerationFT* ipFt) {
  return ipFt == &kTable200 || ipFt == &kTable100;
}

}  // namespace cimhost
