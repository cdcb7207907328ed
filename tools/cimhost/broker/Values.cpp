#include "tools/cimhost/broker/Values.h"

#include <strings.h>

#include <cassert>
#include <cstring>

#include "tools/cimhost/broker/Args.h"
#include "tools/cimhost/broker/Arrays.h"
#include "tools/cimhost/broker/Core.h"
#include "tools/cimhost/broker/DateTimes.h"
#include "tools/cimhost/broker/Enumerations.h"
#include "tools/cimhost/broker/Instances.h"
#include "tools/cimhost/broker/ObjectPaths.h"
#include "tools/cimhost/broker/Strings.h"
#include "tools/cimhost/broker/Types.h"

namespace cimhost {

namespace {

bool isScalarValueType(CMPIType ipType) {
  switch (ipType) {
    case CMPI_args:
    case CMPI_enumeration:
    case CMPI_ptr:
      return true;
    default:
      return isArrayElementType(ipType);
  }
}

Status foreign(const char* ipWhat) {
  return Status(CMPI_RC_ERR_INVALID_PARAMETER,
                std::string(ipWhat) + " was not made by this broker and cannot be copied");
}

// A copy of a string some CMPI implementation made; NULL characters make
// a null value (false).
bool copyForeignString(const CMPIString* ipString, std::string* opText) {
  if (!ipString->ft || !ipString->ft->getCharPtr) return false;
  const char* chars = ipString->ft->getCharPtr(ipString, nullptr);
  if (!chars) return false;
  *opText = chars;
  return true;
}

}  // namespace

CMPIType storedType(CMPIType ipType) {
  if (ipType == CMPI_chars) return CMPI_string;
  if (ipType == CMPI_charsA) return CMPI_stringA;
  return ipType;
}

CMPIData missingData() {
  CMPIData data;
  data.type = CMPI_null;
  data.state = CMPI_nullValue | CMPI_notFound;
  data.value.uint64 = 0;
  return data;
}

Value Value::null(CMPIType ipType) {
  Value value;
  value.ivType = storedType(ipType);
  return value;
}

void Value::hold(std::unique_ptr<EncObject> ipObject) {
  void* handle = const_cast<void*>(ipObject->handle());
  switch (ivType & CMPI_ARRAY ? CMPI_ARRAY : ivType) {
    case CMPI_ARRAY: ivValue.array = static_cast<CMPIArray*>(handle); break;
    case CMPI_string: ivValue.string = static_cast<CMPIString*>(handle); break;
    case CMPI_dateTime: ivValue.dateTime = static_cast<CMPIDateTime*>(handle); break;
    case CMPI_ref: ivValue.ref = static_cast<CMPIObjectPath*>(handle); break;
    case CMPI_instance: ivValue.inst = static_cast<CMPIInstance*>(handle); break;
    case CMPI_args: ivValue.args = static_cast<CMPIArgs*>(handle); break;
    case CMPI_enumeration: ivValue.Enum = static_cast<CMPIEnumeration*>(handle); break;
    default: assert(false && "hold() of a type without an object");
  }
  ivObject = std::move(ipObject);
  ivNull = false;
}

Status Value::copyFrom(Core* ipCore, const CMPIValue* ipValue, CMPIType ipType, Value* opOut) {
  if (ipType == CMPI_null) {
    *opOut = Value();
    return Status::OK();
  }
  const bool isArray = (ipType & CMPI_ARRAY) != 0;
  const CMPIType scalar = static_cast<CMPIType>(ipType & ~CMPI_ARRAY);
  if (isArray ? !isArrayElementType(scalar) : !isScalarValueType(ipType)) {
    return Status(CMPI_RC_ERR_INVALID_DATA_TYPE,
                  "values of type " + cimTypeName(ipType) + " cannot be stored");
  }
  Value out = null(ipType);
  if (!ipValue) {
    *opOut = std::move(out);
    return Status::OK();
  }

  if (isArray) {
    if (!ipValue->array) {
      *opOut = std::move(out);
      return Status::OK();
    }
    const EncArray* array = EncArray::of(ipValue->array);
    if (!array) return foreign("array");
    if (array->elementType() != storedType(scalar)) {
      return Status(CMPI_RC_ERR_TYPE_MISMATCH, "an array of " + cimTypeName(array->elementType()) +
                                                   " passed as " + cimTypeName(ipType));
    }
    out.hold(array->copy(ipCore));
    *opOut = std::move(out);
    return Status::OK();
  }

  // From here on a NULL object pointer leaves `out` null.
  const CMPIValue& v = *ipValue;
  switch (ipType) {
    case CMPI_boolean: out.ivValue.boolean = v.boolean; break;
    case CMPI_char16: out.ivValue.char16 = v.char16; break;
    case CMPI_real32: out.ivValue.real32 = v.real32; break;
    case CMPI_real64: out.ivValue.real64 = v.real64; break;
    case CMPI_uint8: out.ivValue.uint8 = v.uint8; break;
    case CMPI_uint16: out.ivValue.uint16 = v.uint16; break;
    case CMPI_uint32: out.ivValue.uint32 = v.uint32; break;
    case CMPI_uint64: out.ivValue.uint64 = v.uint64; break;
    case CMPI_sint8: out.ivValue.sint8 = v.sint8; break;
    case CMPI_sint16: out.ivValue.sint16 = v.sint16; break;
    case CMPI_sint32: out.ivValue.sint32 = v.sint32; break;
    case CMPI_sint64: out.ivValue.sint64 = v.sint64; break;
    case CMPI_ptr: out.ivValue.dataPtr = v.dataPtr; break;
    case CMPI_chars:
      // By CMPI convention the value pointer is the characters themselves.
      out.hold(EncString::make(ipCore, reinterpret_cast<const char*>(ipValue),
                               std::strlen(reinterpret_cast<const char*>(ipValue))));
      *opOut = std::move(out);
      return Status::OK();
    case CMPI_string: {
      std::string text;
      if (const EncString* s = EncString::of(v.string)) {
        out.hold(s->copy(ipCore));
      } else if (v.string && copyForeignString(v.string, &text)) {
        out.hold(EncString::make(ipCore, std::move(text)));
      }
      *opOut = std::move(out);
      return Status::OK();
    }
    case CMPI_dateTime: {
      if (const EncDateTime* dt = EncDateTime::of(v.dateTime)) {
        out.hold(dt->copy(ipCore));
      } else if (v.dateTime) {
        const CMPIDateTimeFT* ft = v.dateTime->ft;
        if (!ft || !ft->getBinaryFormat || !ft->isInterval) return foreign("date-time");
        std::unique_ptr<EncDateTime> copy;
        Status status = EncDateTime::fromBinary(ipCore, ft->getBinaryFormat(v.dateTime, nullptr),
                                                ft->isInterval(v.dateTime, nullptr) != 0, &copy);
        if (!status.ok()) return status;
        out.hold(std::move(copy));
      }
      *opOut = std::move(out);
      return Status::OK();
    }
    case CMPI_ref:
      if (v.ref) {
        const EncObjectPath* path = EncObjectPath::of(v.ref);
        if (!path) return foreign("object path");
        out.hold(path->copy(ipCore));
      }
      *opOut = std::move(out);
      return Status::OK();
    case CMPI_instance:
      if (v.inst) {
        const EncInstance* instance = EncInstance::of(v.inst);
        if (!instance) return foreign("instance");
        out.hold(instance->copy(ipCore));
      }
      *opOut = std::move(out);
      return Status::OK();
    case CMPI_args:
      if (v.args) {
        const EncArgs* args = EncArgs::of(v.args);
        if (!args) return foreign("argument list");
        out.hold(args->copy(ipCore));
      }
      *opOut = std::move(out);
      return Status::OK();
    case CMPI_enumeration:
      if (v.Enum) {
        const EncEnumeration* enumeration = EncEnumeration::of(v.Enum);
        if (!enumeration) return foreign("enumeration");
        out.hold(enumeration->copy(ipCore));
      }
      *opOut = std::move(out);
      return Status::OK();
    default:
      assert(false && "type passed isScalarValueType() but has no copy");
      return Status(CMPI_RC_ERR_INVALID_DATA_TYPE, "unexpected type " + cimTypeName(ipType));
  }
  out.ivNull = false;  // a plain scalar
  *opOut = std::move(out);
  return Status::OK();
}

Value Value::copy(Core* ipCore) const {
  Value out;
  out.ivType = ivType;
  out.ivNull = ivNull;
  if (ivObject) {
    out.hold(ivObject->copyTo(ipCore));
  } else {
    out.ivValue = ivValue;
  }
  return out;
}

CMPIData Value::data(CMPIValueState ipExtraState) const {
  CMPIData data;
  data.type = ivType;
  data.state =
      static_cast<CMPIValueState>((ivNull ? CMPI_nullValue : CMPI_goodValue) | ipExtraState);
  if (ivNull) {
    data.value.uint64 = 0;
  } else {
    data.value = ivValue;
  }
  return data;
}

namespace {

// CIM names compare without regard to case. Names are ASCII, so names of
// different lengths never match and the length check spares most of the
// comparisons while an instance's properties are set one after another.
bool sameName(const std::string& irA, const std::string& irB) {
  return irA.size() == irB.size() && strcasecmp(irA.c_str(), irB.c_str()) == 0;
}

}  // namespace

const Value* NamedValues::find(const std::string& irName) const {
  for (const auto& item : ivItems) {
    if (sameName(item.first, irName)) return &item.second;
  }
  return nullptr;
}

void NamedValues::set(const std::string& irName, Value ipValue) {
  for (auto& item : ivItems) {
    if (sameName(item.first, irName)) {
      item.second = std::move(ipValue);
      return;
    }
  }
  ivItems.emplace_back(irName, std::move(ipValue));
}

bool NamedValues::remove(const std::string& irName) {
  for (auto it = ivItems.begin(); it != ivItems.end(); ++it) {
    if (sameName(it->first, irName)) {
      ivItems.erase(it);
      return true;
    }
  }
  return false;
}

NamedValues NamedValues::copy(Core* ipCore) const {
  NamedValues out;
  out.ivItems.reserve(ivItems.size());
  for (const auto& item : ivItems) out.ivItems.emplace_back(item.first, item.second.copy(ipCore));
  return out;
}

CMPIData namedValueData(Core* ipCore, const NamedValues& irValues, const char* ipName,
                        const char* ipWhat, const std::string& irWhere, CMPIrc ipMissing,
                        CMPIStatus* opRc, CMPIValueState ipState) {
  if (!ipName) {
    setStatus(opRc, ipCore,
              Status(CMPI_RC_ERR_INVALID_PARAMETER, std::string(ipWhat) + " name is NULL"));
    return missingData();
  }
  const Value* value = irValues.find(ipName);
  if (!value) {
    setStatus(opRc, ipCore, Status(ipMissing, std::string("no ") + ipWhat + " " + ipName + irWhere));
    return missingData();
  }
  setOk(opRc);
  return value->data(ipState);
}

CMPIData indexedValueData(Core* ipCore, const NamedValues& irValues, CMPICount ipIndex,
                          CMPIString** opName, const char* ipWhat, CMPIStatus* opRc,
                          CMPIValueState ipState) {
  if (ipIndex >= irValues.size()) {
    setStatus(opRc, ipCore,
              Status(CMPI_RC_ERR_NO_SUCH_PROPERTY,
                     std::string(ipWhat) + " index " + std::to_string(ipIndex) +
                         " out of range (" + std::to_string(irValues.size()) + " in all)"));
    return missingData();
  }
  if (opName) *opName = ipCore->newString(irValues.nameAt(ipIndex));
  setOk(opRc);
  return irValues.valueAt(ipIndex).data(ipState);
}

}  // namespace cimhost
