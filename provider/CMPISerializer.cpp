#include "provider/CMPISerializer.h"

#include <cassert>
#include <cstring>

#include "cmpift.h"
#include "cmpimacs.h"
#include "common/base/trace.h"
#include "provider/StatusUtil.h"

const char* const QRX_NAMESPACE = "root/qrx";

namespace {

CMPIValue zeroValue() {
  CMPIValue value;
  memset(&value, 0, sizeof(value));
  return value;
}

}  // namespace

// ---------------------------------------------------------------------------
// CMPIPropertySerializer

CMPIPropertySerializer::CMPIPropertySerializer(const CMPIBroker* broker)
    : ivBroker(broker), ivStatus(okStatus()) {}

void CMPIPropertySerializer::keep(const CMPIStatus& status) {
  if (status.rc != CMPI_RC_OK) ivStatus = status;
}

template <typename T>
void CMPIPropertySerializer::storeBuilt(const char* name, unsigned int type, const T& value,
                                        CMPIType storedType) {
  CMPIValue built = zeroValue();
  CMPIValueSerializer builder(ivBroker, &built);
  builder.write(name, type, value);  // checks name and type code
  if (builder.hasError()) {
    keep(builder.getStatus());
    return;
  }
  keep(store(name, &built, storedType));
  releaseBuilt(&built, storedType);
}

// Setting a property copies its value, so the string, datetime or array
// made for it is released at once rather than held by the broker until the
// request ends: a large enumeration then keeps only what it returns.
void CMPIPropertySerializer::releaseBuilt(CMPIValue* value, CMPIType storedType) {
  if (storedType == CMPI_string && value->string != nullptr) {
    CMRelease(value->string);
  } else if (storedType == CMPI_dateTime && value->dateTime != nullptr) {
    CMRelease(value->dateTime);
  } else if ((storedType & CMPI_ARRAY) != 0 && value->array != nullptr) {
    CMRelease(value->array);
  }
}

// Scalars, strings, datetimes and arrays are stored with the type code they
// were written with.
#define QRX_STORE(T)                                                                   \
  void CMPIPropertySerializer::write(const char* name, unsigned int type, T value) {    \
    storeBuilt(name, type, value, static_cast<CMPIType>(type));                       \
  }
QRX_STORE(float)
QRX_STORE(signed char)
QRX_STORE(short)
QRX_STORE(int)
QRX_STORE(unsigned char)
QRX_STORE(unsigned short)
QRX_STORE(unsigned int)
QRX_STORE(unsigned long long)
QRX_STORE(const cdatetime&)
QRX_STORE(const std::string&)
QRX_STORE(const std::vector<unsigned short>&)
QRX_STORE(const std::vector<unsigned long long>&)
QRX_STORE(const std::vector<std::string>&)
#undef QRX_STORE

void CMPIPropertySerializer::write(const char* name, unsigned int type, const char* value) {
  if (value == nullptr) {
    assert(name != nullptr);
    assert(type == CMPI_string);
    keep(store(name, nullptr, CMPI_string));
    return;
  }
  storeBuilt(name, type, value, CMPI_string);
}

void CMPIPropertySerializer::write(const char* name, unsigned int type, const cstring_EO& value) {
  if (value.ivNull) {
    assert(name != nullptr);
    assert(type == CMPI_string);
    keep(store(name, nullptr, CMPI_instance));
    return;
  }
  storeBuilt(name, type, value, CMPI_instance);
}

void CMPIPropertySerializer::write(const char* name, unsigned int type,
                                   const SCIMSerdesable& value) {
  assert(name != nullptr);
  assert(type == CMPI_ref || type == CMPI_instance);
  if (type == CMPI_instance) {
    // Not nested: the object's properties land in this same target.
    value.serialize(*this);
    return;
  }
  storeBuilt(name, type, value, CMPI_ref);
}

void CMPIPropertySerializer::write(const char* name, CMPIData& value) {
  (void)name;
  (void)value;
  ivStatus.rc = CMPI_RC_ERROR;
  ivStatus.msg = nullptr;
}

// ---------------------------------------------------------------------------
// CMPISerializer, CMPIObjPathSerializer

CMPISerializer::CMPISerializer(const CMPIBroker* broker, CMPIInstance* instance)
    : CMPIPropertySerializer(broker), ivInstance(instance) {
  assert(instance != nullptr);
}

CMPIStatus CMPISerializer::store(const char* name, const CMPIValue* value, CMPIType type) {
  return CMSetProperty(ivInstance, name, value, type);
}

CMPIObjPathSerializer::CMPIObjPathSerializer(const CMPIBroker* broker, CMPIObjectPath* path)
    : CMPIPropertySerializer(broker), ivPath(path) {
  assert(path != nullptr);
}

CMPIStatus CMPIObjPathSerializer::store(const char* name, const CMPIValue* value, CMPIType type) {
  return CMAddKey(ivPath, name, value, type);
}

// ---------------------------------------------------------------------------
// CMPIValueSerializer

CMPIValueSerializer::CMPIValueSerializer(const CMPIBroker* broker, CMPIValue* target)
    : ivBroker(broker), ivTarget(target), ivStatus(okStatus()) {
  assert(broker != nullptr);
  assert(target != nullptr);
}

void CMPIValueSerializer::keep(const CMPIStatus& status) {
  if (status.rc != CMPI_RC_OK) ivStatus = status;
}

void CMPIValueSerializer::write(const char* name, unsigned int type, float value) {
  assert(name != nullptr);
  assert(type == CMPI_real32);
  ivTarget->real32 = value;
}

void CMPIValueSerializer::write(const char* name, unsigned int type, signed char value) {
  assert(name != nullptr);
  assert(type == CMPI_sint8);
  ivTarget->sint8 = value;
}

void CMPIValueSerializer::write(const char* name, unsigned int type, short value) {
  assert(name != nullptr);
  assert(type == CMPI_sint16);
  ivTarget->sint16 = value;
}

void CMPIValueSerializer::write(const char* name, unsigned int type, int value) {
  assert(name != nullptr);
  assert(type == CMPI_sint32);
  ivTarget->sint32 = value;
}

void CMPIValueSerializer::write(const char* name, unsigned int type, unsigned char value) {
  assert(name != nullptr);
  assert(type == CMPI_boolean || type == CMPI_uint8);
  if (type == CMPI_boolean) {
    ivTarget->boolean = value;
  } else {
    ivTarget->uint8 = value;
  }
}

void CMPIValueSerializer::write(const char* name, unsigned int type, unsigned short value) {
  assert(name != nullptr);
  assert(type == CMPI_uint16);
  ivTarget->uint16 = value;
}

void CMPIValueSerializer::write(const char* name, unsigned int type, unsigned int value) {
  assert(name != nullptr);
  assert(type == CMPI_uint32);
  ivTarget->uint32 = value;
}

void CMPIValueSerializer::write(const char* name, unsigned int type, unsigned long long value) {
  assert(name != nullptr);
  assert(type == CMPI_uint64);
  ivTarget->uint64 = value;
}

void CMPIValueSerializer::write(const char* name, unsigned int type, const cdatetime& value) {
  assert(name != nullptr);
  assert(type == CMPI_dateTime);
  CMPIStatus rc = okStatus();
  CMPIDateTime* dateTime = CMNewDateTimeFromChars(ivBroker, value.toString().c_str(), &rc);
  keep(rc);
  if (rc.rc == CMPI_RC_OK) ivTarget->dateTime = dateTime;
}

void CMPIValueSerializer::write(const char* name, unsigned int type, const std::string& value) {
  write(name, type, value.c_str());
}

void CMPIValueSerializer::write(const char* name, unsigned int type, const char* value) {
  assert(name != nullptr);
  assert(type == CMPI_string);
  if (value == nullptr) {
    ivTarget->string = nullptr;
    return;
  }
  CMPIStatus rc = okStatus();
  CMPIString* text = CMNewString(ivBroker, value, &rc);
  keep(rc);
  if (rc.rc == CMPI_RC_OK) ivTarget->string = text;
}

template <typename T>
void CMPIValueSerializer::writeArray(const std::vector<T>& elements, CMPIType elementType) {
  CMPIStatus rc = okStatus();
  CMPIArray* array = CMNewArray(ivBroker, static_cast<CMPICount>(elements.size()), elementType, &rc);
  keep(rc);
  if (rc.rc != CMPI_RC_OK) return;
  for (size_t i = 0; i < elements.size(); ++i) {
    CMPIValue element = zeroValue();
    CMPIValueSerializer builder(ivBroker, &element);
    builder.write("", elementType, elements[i]);
    if (builder.hasError()) {
      keep(builder.getStatus());
      return;
    }
    keep(CMSetArrayElementAt(array, static_cast<CMPICount>(i), &element, elementType));
    if (hasError()) return;
  }
  ivTarget->array = array;
}

void CMPIValueSerializer::write(const char* name, unsigned int type,
                                const std::vector<unsigned short>& value) {
  assert(name != nullptr);
  assert(type == CMPI_uint16A);
  writeArray(value, CMPI_uint16);
}

void CMPIValueSerializer::write(const char* name, unsigned int type,
                                const std::vector<unsigned long long>& value) {
  assert(name != nullptr);
  assert(type == CMPI_uint64A);
  writeArray(value, CMPI_uint64);
}

void CMPIValueSerializer::write(const char* name, unsigned int type,
                                const std::vector<std::string>& value) {
  assert(name != nullptr);
  assert(type == CMPI_stringA);
  writeArray(value, CMPI_string);
}

CMPIInstance* CMPIValueSerializer::newEmbeddedInstance(const char* nameSpace, const char* className,
                                                       const SCIMSerdesable& object) {
  CMPIStatus rc = okStatus();
  CMPIObjectPath* path = CMNewObjectPath(ivBroker, nameSpace, className, &rc);
  assert(rc.rc == CMPI_RC_OK && path != nullptr);
  CMPIInstance* instance = CMNewInstance(ivBroker, path, &rc);
  assert(rc.rc == CMPI_RC_OK && instance != nullptr);
  CMPISerializer properties(ivBroker, instance);
  object.serialize(properties);
  assert(!properties.hasError());
  return instance;
}

void CMPIValueSerializer::write(const char* name, unsigned int type, const cstring_EO& value) {
  assert(name != nullptr);
  assert(type == CMPI_string);
  if (value.ivNull) return;
  assert(value.ivpEmbeddedObj != nullptr);
  TRACE_DEBUG("namespace=%s classname=%s\n", value.ivNameSpace.c_str(), value.ivClassName.c_str());
  ivTarget->inst = newEmbeddedInstance(value.ivNameSpace.c_str(), value.ivClassName.c_str(),
                                       *value.ivpEmbeddedObj);
}

void CMPIValueSerializer::write(const char* name, unsigned int type, const SCIMSerdesable& value) {
  assert(name != nullptr);
  assert(type == CMPI_ref || type == CMPI_instance);
  if (type == CMPI_instance) {
    ivTarget->inst = newEmbeddedInstance(QRX_NAMESPACE, value.getCIMClassName().c_str(), value);
    return;
  }
  CMPIStatus rc = okStatus();
  CMPIObjectPath* path =
      CMNewObjectPath(ivBroker, QRX_NAMESPACE, value.getCIMClassName().c_str(), &rc);
  assert(rc.rc == CMPI_RC_OK && path != nullptr);
  CMPIObjPathSerializer keys(ivBroker, path);
  value.serialize(keys);
  assert(!keys.hasError());
  ivTarget->ref = path;
}

void CMPIValueSerializer::write(const char* name, CMPIData& value) {
  (void)name;
  (void)value;
  ivStatus.rc = CMPI_RC_ERROR;
  ivStatus.msg = nullptr;
}
