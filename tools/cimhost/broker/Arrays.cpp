#include "tools/cimhost/broker/Arrays.h"

#include "tools/cimhost/broker/Core.h"
#include "tools/cimhost/broker/Types.h"

namespace cimhost {

namespace {

CMPIStatus arrayRelease(CMPIArray* ar) { return releaseFromC<EncArray>(ar); }

CMPIArray* arrayClone(const CMPIArray* ar, CMPIStatus* rc) { return cloneFromC<EncArray>(ar, rc); }

CMPICount arrayGetSize(const CMPIArray* ar, CMPIStatus* rc) {
  EncArray* self = EncArray::of(ar);
  if (!self) {
    setStatus(rc, nullptr, Status(CMPI_RC_ERR_INVALID_HANDLE, ""));
    return 0;
  }
  setOk(rc);
  return static_cast<CMPICount>(self->size());
}

CMPIType arrayGetSimpleType(const CMPIArray* ar, CMPIStatus* rc) {
  EncArray* self = EncArray::of(ar);
  if (!self) {
    setStatus(rc, nullptr, Status(CMPI_RC_ERR_INVALID_HANDLE, ""));
    return CMPI_null;
  }
  setOk(rc);
  return self->elementType();
}

CMPIData arrayGetElementAt(const CMPIArray* ar, CMPICount index, CMPIStatus* rc) {
  EncArray* self = EncArray::of(ar);
  if (!self) {
    setStatus(rc, nullptr, Status(CMPI_RC_ERR_INVALID_HANDLE, ""));
    return missingData();
  }
  Core* core = self->core();
  return guard(core, rc, missingData(), [&] {
    if (index >= self->size()) {
      setStatus(rc, core,
                Status(CMPI_RC_ERR_NO_SUCH_PROPERTY, "array index " + std::to_string(index) +
                                                         " out of range (size " +
                                                         std::to_string(self->size()) + ")"));
      return missingData();
    }
    setOk(rc);
    return self->at(index).data();
  });
}

CMPIStatus arraySetElementAt(CMPIArray* ar, CMPICount index, const CMPIValue* value,
                             CMPIType type) {
  EncArray* self = EncArray::of(ar);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->set(index, value, type); });
}

constexpr CMPIArrayFT makeTable(int ipVersion) {
  return CMPIArrayFT{ipVersion,          arrayRelease,      arrayClone,       arrayGetSize,
                     arrayGetSimpleType, arrayGetElementAt, arraySetElementAt};
}

const CMPIArrayFT kTable200 = makeTable(CMPIVersion200);
const CMPIArrayFT kTable100 = makeTable(CMPIVersion100);

}  // namespace

bool isArrayElementType(CMPIType ipType) {
  switch (ipType) {
    case CMPI_boolean:
    case CMPI_char16:
    case CMPI_real32:
    case CMPI_real64:
    case CMPI_uint8:
    case CMPI_uint16:
    case CMPI_uint32:
    case CMPI_uint64:
    case CMPI_sint8:
    case CMPI_sint16:
    case CMPI_sint32:
    case CMPI_sint64:
    case CMPI_string:
    case CMPI_chars:
    case CMPI_dateTime:
    case CMPI_ref:
    case CMPI_instance:
      return true;
    default:
      return false;
  }
}

EncArray::EncArray(Core* ipCore, CMPIType ipType, std::vector<Value> ipElements)
    : Encapsulated(ipCore), ivElementType(ipType), ivElements(std::move(ipElements)) {}

Status EncArray::make(Core* ipCore, CMPICount ipSize, CMPIType ipType,
                      std::unique_ptr<EncArray>* opOut) {
  const CMPIType type = static_cast<CMPIType>(ipType & ~CMPI_ARRAY);
  if (!isArrayElementType(type)) {
    return Status(CMPI_RC_ERR_INVALID_DATA_TYPE,
                  "arrays cannot hold elements of type " + cimTypeName(ipType));
  }
  std::vector<Value> elements;
  elements.reserve(ipSize);
  for (CMPICount i = 0; i < ipSize; ++i) elements.push_back(Value::null(type));
  *opOut = make(ipCore, storedType(type), std::move(elements));
  return Status::OK();
}

std::unique_ptr<EncArray> EncArray::make(Core* ipCore, CMPIType ipType,
                                         std::vector<Value> ipElements) {
  return std::unique_ptr<EncArray>(new EncArray(ipCore, ipType, std::move(ipElements)));
}

Status EncArray::set(CMPICount ipIndex, const CMPIValue* ipValue, CMPIType ipType) {
  if (ipIndex >= ivElements.size()) {
    return Status(CMPI_RC_ERR_NO_SUCH_PROPERTY,
                  "array index " + std::to_string(ipIndex) + " out of range (size " +
                      std::to_string(ivElements.size()) + ")");
  }
  if (ipType == CMPI_null) {
    ivElements[ipIndex] = Value::null(ivElementType);
    return Status::OK();
  }
  if (storedType(ipType) != ivElementType) {
    return Status(CMPI_RC_ERR_TYPE_MISMATCH, "cannot store a " + cimTypeName(ipType) +
                                                 " in an array of " +
                                                 cimTypeName(ivElementType));
  }
  return Value::copyFrom(core(), ipValue, ipType, &ivElements[ipIndex]);
}

std::unique_ptr<EncArray> EncArray::copy(Core* ipCore) const {
  std::vector<Value> elements;
  elements.reserve(ivElements.size());
  for (const Value& element : ivElements) elements.push_back(element.copy(ipCore));
  return make(ipCore, ivElementType, std::move(elements));
}

const CMPIArrayFT* EncArray::table(const Core* ipCore) {
  return ipCore->mode() == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

bool EncArray::isOwnTable(const CMPIArrayFT* ipFt) {
  return ipFt == &kTable200 || ipFt == &kTable100;
}

}  // namespace cimhost
