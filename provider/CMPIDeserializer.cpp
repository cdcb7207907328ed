#include "provider/CMPIDeserializer.h"

#include <cassert>
#include <cstring>
#include <limits>

#include "cmpift.h"
#include "cmpimacs.h"
#include "common/base/trace.h"
#include "provider/StatusUtil.h"
#include "generated/scimclasstree.h"

namespace {

const char kUnit[] = "provider/CMPIDeserializer";

void keep(CMPIStatus* kept, const CMPIStatus& status) {
  if (status.rc != CMPI_RC_OK) *kept = status;
}

// The integer held by `data`, widened; false when it holds no integer.
bool integerOf(const CMPIData& data, bool* negative, unsigned long long* magnitude) {
  long long s = 0;
  switch (data.type) {
    case CMPI_uint8: *negative = false; *magnitude = data.value.uint8; return true;
    case CMPI_uint16: *negative = false; *magnitude = data.value.uint16; return true;
    case CMPI_uint32: *negative = false; *magnitude = data.value.uint32; return true;
    case CMPI_uint64: *negative = false; *magnitude = data.value.uint64; return true;
    case CMPI_sint8: s = data.value.sint8; break;
    case CMPI_sint16: s = data.value.sint16; break;
    case CMPI_sint32: s = data.value.sint32; break;
    case CMPI_sint64: s = data.value.sint64; break;
    default: return false;
  }
  *negative = s < 0;
  *magnitude = s < 0 ? 0ULL - static_cast<unsigned long long>(s) : static_cast<unsigned long long>(s);
  return true;
}

template <typename T>
bool fits(bool negative, unsigned long long magnitude, T* out) {
  typedef std::numeric_limits<T> limits;
  if (negative) {
    if (!limits::is_signed) return false;
    unsigned long long most = 0ULL - static_cast<unsigned long long>(static_cast<long long>(limits::min()));
    if (magnitude > most) return false;
    *out = static_cast<T>(0ULL - magnitude);
    return true;
  }
  if (magnitude > static_cast<unsigned long long>(limits::max())) return false;
  *out = static_cast<T>(magnitude);
  return true;
}

// Every read first checks the name and that the type code is the one of
// the target's value type: a mismatch is a defect of the generated classes.
void checkCode(const char* name, unsigned int type, const float&) {
  assert(name != nullptr);
  assert(type == CMPI_real32);
}
void checkCode(const char* name, unsigned int type, const signed char&) {
  assert(name != nullptr);
  assert(type == CMPI_sint8);
}
void checkCode(const char* name, unsigned int type, const short&) {
  assert(name != nullptr);
  assert(type == CMPI_sint16);
}
void checkCode(const char* name, unsigned int type, const int&) {
  assert(name != nullptr);
  assert(type == CMPI_sint32);
}
void checkCode(const char* name, unsigned int type, const unsigned char&) {
  assert(name != nullptr);
  assert(type == CMPI_boolean || type == CMPI_uint8);
}
void checkCode(const char* name, unsigned int type, const unsigned short&) {
  assert(name != nullptr);
  assert(type == CMPI_uint16);
}
void checkCode(const char* name, unsigned int type, const unsigned int&) {
  assert(name != nullptr);
  assert(type == CMPI_uint32);
}
void checkCode(const char* name, unsigned int type, const unsigned long long&) {
  assert(name != nullptr);
  assert(type == CMPI_uint64);
}
void checkCode(const char* name, unsigned int type, const cdatetime&) {
  assert(name != nullptr);
  assert(type == CMPI_dateTime);
}
void checkCode(const char* name, unsigned int type, const std::string&) {
  assert(name != nullptr);
  assert(type == CMPI_string);
}
void checkCode(const char* name, unsigned int type, const std::vector<unsigned short>&) {
  assert(name != nullptr);
  assert(type == CMPI_uint16A);
}
void checkCode(const char* name, unsigned int type, const std::vector<unsigned long long>&) {
  assert(name != nullptr);
  assert(type == CMPI_uint64A);
}
void checkCode(const char* name, unsigned int type, const std::vector<std::string>&) {
  assert(name != nullptr);
  assert(type == CMPI_stringA);
}
void checkCode(const char* name, unsigned int type, const cstring_EO&) {
  assert(name != nullptr);
  assert(type == CMPI_string);
}

}  // namespace

// ---------------------------------------------------------------------------
// CMPIDataDeserializer

CMPIDataDeserializer::CMPIDataDeserializer(const CMPIData& data)
    : ivStatus(okStatus()), ivData(data) {}

bool CMPIDataDeserializer::good() {
  if (ivData.state == 0 || ivData.state == CMPI_nullValue || ivData.state == CMPI_keyValue) {
    return true;
  }
  TRACE_ERROR(kUnit, "CMPIData value was bad\n");
  return false;
}

// For strings, datetimes, arrays and objects: only a value of state 0 is
// taken, and it must have the expected type.
bool CMPIDataDeserializer::present(const char* name, CMPIType type) {
  if (ivData.state != 0) return false;
  if (ivData.type != type) {
    mismatch(name, "another type");
    return false;
  }
  return true;
}

void CMPIDataDeserializer::mismatch(const char* name, const char* expected) {
  TRACE_ERROR(kUnit, "value of %s has CMPI type 0x%04x, expected %s\n", name,
              static_cast<unsigned int>(ivData.type), expected);
  ivStatus.rc = CMPI_RC_ERR_TYPE_MISMATCH;
  ivStatus.msg = nullptr;
}

template <typename T>
void CMPIDataDeserializer::readInteger(const char* name, T& value) {
  if (!good() || ivData.state == CMPI_nullValue) return;
  bool negative = false;
  unsigned long long magnitude = 0;
  if (!integerOf(ivData, &negative, &magnitude)) {
    mismatch(name, "an integer");
    return;
  }
  T converted;
  if (!fits(negative, magnitude, &converted)) {
    mismatch(name, "an integer in range");
    return;
  }
  value = converted;
}

void CMPIDataDeserializer::read(const char* name, unsigned int type, float& value) {
  checkCode(name, type, value);
  if (!good() || ivData.state == CMPI_nullValue) return;
  if (ivData.type == CMPI_real32) {
    value = ivData.value.real32;
  } else if (ivData.type == CMPI_real64) {
    value = static_cast<float>(ivData.value.real64);
  } else {
    mismatch(name, "a real");
  }
}

void CMPIDataDeserializer::read(const char* name, unsigned int type, signed char& value) {
  checkCode(name, type, value);
  readInteger(name, value);
}

void CMPIDataDeserializer::read(const char* name, unsigned int type, short& value) {
  checkCode(name, type, value);
  readInteger(name, value);
}

void CMPIDataDeserializer::read(const char* name, unsigned int type, int& value) {
  checkCode(name, type, value);
  readInteger(name, value);
}

void CMPIDataDeserializer::read(const char* name, unsigned int type, unsigned char& value) {
  checkCode(name, type, value);
  if (type == CMPI_uint8) {
    readInteger(name, value);
    return;
  }
  if (!good() || ivData.state == CMPI_nullValue) return;
  if (ivData.type != CMPI_boolean) {
    mismatch(name, "a boolean");
    return;
  }
  value = ivData.value.boolean;
}

void CMPIDataDeserializer::read(const char* name, unsigned int type, unsigned short& value) {
  checkCode(name, type, value);
  readInteger(name, value);
}

void CMPIDataDeserializer::read(const char* name, unsigned int type, unsigned int& value) {
  checkCode(name, type, value);
  readInteger(name, value);
}

void CMPIDataDeserializer::read(const char* name, unsigned int type, unsigned long long& value) {
  checkCode(name, type, value);
  readInteger(name, value);
}

void CMPIDataDeserializer::read(const char* name, unsigned int type, cdatetime& value) {
  checkCode(name, type, value);
  if (!present(name, CMPI_dateTime) || ivData.value.dateTime == nullptr) return;
  CMPIStatus rc = okStatus();
  CMPIUint64 usec = CMGetBinaryFormat(ivData.value.dateTime, &rc);
  keep(&ivStatus, rc);
  if (rc.rc == CMPI_RC_OK) value.setTimeUsec(usec);
}

void CMPIDataDeserializer::read(const char* name, unsigned int type, std::string& value) {
  checkCode(name, type, value);
  if (ivData.state != 0) return;
  if (ivData.type == CMPI_chars) {
    if (ivData.value.chars != nullptr) value = ivData.value.chars;
    return;
  }
  if (!present(name, CMPI_string) || ivData.value.string == nullptr) return;
  const char* text = CMGetCharPtr(ivData.value.string);
  if (text != nullptr) value = text;
}

template <typename T>
void CMPIDataDeserializer::readArray(const char* name, CMPIType elementType,
                                     std::vector<T>& value) {
  if (!present(name, static_cast<CMPIType>(elementType | CMPI_ARRAY)) ||
      ivData.value.array == nullptr) {
    return;
  }
  CMPIStatus rc = okStatus();
  CMPICount count = CMGetArrayCount(ivData.value.array, &rc);
  if (rc.rc != CMPI_RC_OK) {
    keep(&ivStatus, rc);
    return;
  }
  std::vector<T> elements;
  elements.reserve(count);
  for (CMPICount i = 0; i < count; ++i) {
    CMPIData element = CMGetArrayElementAt(ivData.value.array, i, &rc);
    if (rc.rc != CMPI_RC_OK) {
      keep(&ivStatus, rc);
      return;
    }
    CMPIDataDeserializer reader(element);
    T item = T();
    reader.read(name, elementType, item);
    if (reader.hasError()) {
      keep(&ivStatus, reader.getStatus());
      return;
    }
    elements.push_back(item);
  }
  value.swap(elements);
}

void CMPIDataDeserializer::read(const char* name, unsigned int type,
                                std::vector<unsigned short>& value) {
  checkCode(name, type, value);
  readArray(name, CMPI_uint16, value);
}

void CMPIDataDeserializer::read(const char* name, unsigned int type,
                                std::vector<unsigned long long>& value) {
  checkCode(name, type, value);
  readArray(name, CMPI_uint64, value);
}

void CMPIDataDeserializer::read(const char* name, unsigned int type,
                                std::vector<std::string>& value) {
  checkCode(name, type, value);
  if (ivData.state == 0 && ivData.type == CMPI_stringA && ivData.value.array != nullptr) {
    // An array typed as strings holds string elements only.
    CMPIStatus rc = okStatus();
    CMPICount count = CMGetArrayCount(ivData.value.array, &rc);
    for (CMPICount i = 0; rc.rc == CMPI_RC_OK && i < count; ++i) {
      CMPIData element = CMGetArrayElementAt(ivData.value.array, i, &rc);
      assert(rc.rc != CMPI_RC_OK || element.type == CMPI_string);
    }
  }
  readArray(name, CMPI_string, value);
}

void CMPIDataDeserializer::read(const char* name, unsigned int type, cstring_EO& value) {
  checkCode(name, type, value);
  if (!present(name, CMPI_instance) || ivData.value.inst == nullptr) return;
  const CMPIInstance* instance = ivData.value.inst;
  CMPIStatus rc = okStatus();
  CMPIObjectPath* path = CMGetObjectPath(instance, &rc);
  if (rc.rc != CMPI_RC_OK || path == nullptr) {
    keep(&ivStatus, rc);
    return;
  }
  CMPIString* className = CMGetClassName(path, &rc);
  CMPIString* nameSpace = CMGetNameSpace(path, nullptr);
  if (rc.rc != CMPI_RC_OK || className == nullptr) {
    keep(&ivStatus, rc);
    return;
  }
  const char* classText = CMGetCharPtr(className);
  SCIMSerdesable* object = newSerdesable(classText != nullptr ? classText : "");
  if (object == nullptr) {
    TRACE_ERROR(kUnit, "embedded instance in %s has the unknown class %s\n", name,
                classText != nullptr ? classText : "");
    ivStatus.rc = CMPI_RC_ERR_INVALID_CLASS;
    ivStatus.msg = nullptr;
    return;
  }
  CMPIDeserializer properties(instance);
  object->deserialize(properties);
  if (properties.hasError()) {
    keep(&ivStatus, properties.getStatus());
    delete object;
    return;
  }
  value.reset(object);
  value.ivClassName = classText;
  const char* nsText = nameSpace != nullptr ? CMGetCharPtr(nameSpace) : nullptr;
  value.ivNameSpace = nsText != nullptr ? nsText : "";
}

void CMPIDataDeserializer::read(const char* name, unsigned int type, SCIMSerdesable& value) {
  (void)name;
  (void)type;
  (void)value;
  assert(!"a nested object cannot be read from a single CMPIData");
}

SCIMSerdesable* CMPIDataDeserializer::newSerdesable(const std::string& className) {
  return createCimObject(className);
}

// ---------------------------------------------------------------------------
// CMPINamedDeserializer

CMPINamedDeserializer::CMPINamedDeserializer() : ivStatus(okStatus()) {}

bool CMPINamedDeserializer::fetchKept(const char* name, CMPIData* data) {
  assert(name != nullptr);
  CMPIStatus rc = okStatus();
  bool fetched = fetch(name, data, &rc);
  keep(&ivStatus, rc);
  return fetched && rc.rc == CMPI_RC_OK;
}

template <typename T>
void CMPINamedDeserializer::readScalar(const char* name, unsigned int type, T& value) {
  checkCode(name, type, value);
  CMPIData data;
  if (!fetchKept(name, &data)) return;
  CMPIDataDeserializer reader(data);
  reader.read(name, type, value);
  keep(&ivStatus, reader.getStatus());
}

template <typename T>
void CMPINamedDeserializer::readNonScalar(const char* name, unsigned int type, T& value) {
  checkCode(name, type, value);
  CMPIData data;
  if (!fetchKept(name, &data)) return;
  if (data.state != 0) {
    if (logsSkippedValues()) TRACE_ERROR(kUnit, "No good value!!!\n");
    return;
  }
  CMPIDataDeserializer reader(data);
  reader.read(name, type, value);
  keep(&ivStatus, reader.getStatus());
}

#define QRX_READ(T, how)                                                          \
  void CMPINamedDeserializer::read(const char* name, unsigned int type, T& value) { \
    how(name, type, value);                                                       \
  }
QRX_READ(float, readScalar)
QRX_READ(signed char, readScalar)
QRX_READ(short, readScalar)
QRX_READ(int, readScalar)
QRX_READ(unsigned char, readScalar)
QRX_READ(unsigned short, readScalar)
QRX_READ(unsigned int, readScalar)
QRX_READ(unsigned long long, readScalar)
QRX_READ(cdatetime, readNonScalar)
QRX_READ(std::string, readNonScalar)
QRX_READ(std::vector<unsigned short>, readNonScalar)
QRX_READ(std::vector<unsigned long long>, readNonScalar)
QRX_READ(std::vector<std::string>, readNonScalar)
QRX_READ(cstring_EO, readNonScalar)
#undef QRX_READ

void CMPINamedDeserializer::read(const char* name, unsigned int type, SCIMSerdesable& value) {
  assert(name != nullptr);
  assert(type == CMPI_ref || type == CMPI_instance);
  if (type == CMPI_instance) {
    value.deserialize(*this);  // flat, as the writers put it
    return;
  }
  CMPIData data;
  if (!fetchKept(name, &data)) return;
  if (data.state != 0) {
    if (logsSkippedValues()) TRACE_ERROR(kUnit, "No good value!!!\n");
    return;
  }
  if (data.type != CMPI_ref || data.value.ref == nullptr) {
    TRACE_ERROR(kUnit, "value of %s is not a reference\n", name);
    ivStatus.rc = CMPI_RC_ERR_TYPE_MISMATCH;
    ivStatus.msg = nullptr;
    return;
  }
  keep(&ivStatus, readReferenced(data.value.ref, value));
}

CMPIStatus CMPINamedDeserializer::readReferenced(const CMPIObjectPath* ipPath,
                                                 SCIMSerdesable& orValue) {
  CMPIObjPathDeserializer keys(ipPath);
  orValue.deserialize(keys);
  return keys.getStatus();
}

SCIMSerdesable* CMPINamedDeserializer::newSerdesable(const std::string& className) {
  return createCimObject(className);
}

// ---------------------------------------------------------------------------
// CMPIDeserializer, CMPIObjPathDeserializer

CMPIDeserializer::CMPIDeserializer(const CMPIInstance* instance) : ivInstance(instance) {
  assert(instance != nullptr);
}

bool CMPIDeserializer::fetch(const char* name, CMPIData* data, CMPIStatus* rc) {
  *data = CMGetProperty(ivInstance, name, rc);
  if (rc->rc == CMPI_RC_ERR_NO_SUCH_PROPERTY) {
    // A client names only the properties it sets; the rest keep their values.
    *rc = okStatus();
    return false;
  }
  return rc->rc == CMPI_RC_OK;
}

CMPIObjPathDeserializer::CMPIObjPathDeserializer(const CMPIObjectPath* path) : ivPath(path) {
  assert(path != nullptr);
}

bool CMPIObjPathDeserializer::fetch(const char* name, CMPIData* data, CMPIStatus* rc) {
  *data = CMGetKey(ivPath, name, rc);
  return rc->rc == CMPI_RC_OK;
}

// ---------------------------------------------------------------------------
// CMPIRequestPathDeserializer

CMPIRequestPathDeserializer::CMPIRequestPathDeserializer(const CMPIObjectPath* path)
    : CMPIObjPathDeserializer(path) {}

bool CMPIRequestPathDeserializer::fetch(const char* name, CMPIData* data, CMPIStatus* rc) {
  if (!CMPIObjPathDeserializer::fetch(name, data, rc)) return false;
  if (data->state == CMPI_keyValue) data->state = 0;
  return true;
}

CMPIStatus CMPIRequestPathDeserializer::readReferenced(const CMPIObjectPath* ipPath,
                                                       SCIMSerdesable& orValue) {
  CMPIRequestPathDeserializer keys(ipPath);
  orValue.deserialize(keys);
  return keys.getStatus();
}
