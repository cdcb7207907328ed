#include "common/base/SCIMSerdes.h"

#include <cstring>

namespace {

// Big-endian stores and loads of unsigned values of `size` bytes.
void putBig(unsigned char* opBytes, unsigned long long ipValue, size_t ipSize) {
  for (size_t i = 0; i < ipSize; ++i) {
    opBytes[ipSize - 1 - i] = static_cast<unsigned char>(ipValue >> (8 * i));
  }
}

unsigned long long getBig(const unsigned char* ipBytes, size_t ipSize) {
  unsigned long long value = 0;
  for (size_t i = 0; i < ipSize; ++i) value = (value << 8) | ipBytes[i];
  return value;
}

}  // namespace

unsigned char* SCIMSerdesBase::take(size_t ipSize) {
  if (ivError) return nullptr;
  if (ipSize > ivRemaining) {
    ivError = true;
    return nullptr;
  }
  unsigned char* at = ivPos;
  ivPos += ipSize;
  ivRemaining -= ipSize;
  return at;
}

// ---------------------------------------------------------------------------
// SCIMSerializer

#define QRX_WRITE_NUMBER(T, UT)                                              \
  void SCIMSerializer::write(const char*, unsigned int, T value) {            \
    if (unsigned char* at = take(sizeof(T))) putBig(at, static_cast<UT>(value), sizeof(T)); \
  }
QRX_WRITE_NUMBER(signed char, unsigned char)
QRX_WRITE_NUMBER(short, unsigned short)
QRX_WRITE_NUMBER(int, unsigned int)
QRX_WRITE_NUMBER(unsigned char, unsigned char)
QRX_WRITE_NUMBER(unsigned short, unsigned short)
QRX_WRITE_NUMBER(unsigned int, unsigned int)
QRX_WRITE_NUMBER(unsigned long long, unsigned long long)
#undef QRX_WRITE_NUMBER

void SCIMSerializer::write(const char*, unsigned int, float value) {
  static_assert(sizeof(float) == sizeof(std::uint32_t), "IEEE single");
  std::uint32_t bits;
  memcpy(&bits, &value, sizeof(bits));
  if (unsigned char* at = take(4)) putBig(at, bits, 4);
}

void SCIMSerializer::write(const char*, unsigned int, const cdatetime& value) {
  if (unsigned char* at = take(8)) putBig(at, value.getTimeUsec(), 8);
}

void SCIMSerializer::putString(const char* ipChars, size_t ipLength) {
  if (ipLength > 0xFFFFFFFFu) {
    ivError = true;
    return;
  }
  if (unsigned char* at = take(4 + ipLength + 1)) {
    putBig(at, ipLength, 4);
    memcpy(at + 4, ipChars, ipLength);
    at[4 + ipLength] = 0;
  }
}

void SCIMSerializer::write(const char*, unsigned int, const std::string& value) {
  putString(value.data(), value.size());
}

void SCIMSerializer::write(const char*, unsigned int, const char* value) {
  if (value == nullptr) value = "";
  putString(value, strlen(value));
}

void SCIMSerializer::write(const char* name, unsigned int type,
                           const std::vector<unsigned short>& value) {
  write(name, type, static_cast<unsigned int>(value.size()));
  for (size_t i = 0; i < value.size() && !ivError; ++i) write(name, type, value[i]);
}

void SCIMSerializer::write(const char* name, unsigned int type,
                           const std::vector<unsigned long long>& value) {
  write(name, type, static_cast<unsigned int>(value.size()));
  for (size_t i = 0; i < value.size() && !ivError; ++i) write(name, type, value[i]);
}

void SCIMSerializer::write(const char* name, unsigned int type, const std::vector<std::string>& value) {
  write(name, type, static_cast<unsigned int>(value.size()));
  for (size_t i = 0; i < value.size() && !ivError; ++i) write(name, type, value[i]);
}

void SCIMSerializer::write(const char*, unsigned int, const cstring_EO&) { ivError = true; }

void SCIMSerializer::write(const char*, unsigned int, const SCIMSerdesable& value) {
  if (!ivError) value.serialize(*this);
}

void SCIMSerializer::write(const char*, CMPIData&) { ivError = true; }

// ---------------------------------------------------------------------------
// SCIMDeserializer

#define QRX_READ_NUMBER(T)                                                   \
  void SCIMDeserializer::read(const char*, unsigned int, T& value) {         \
    if (ivError) return;                                                     \
    const unsigned char* at = take(sizeof(T));                               \
    value = at != nullptr ? static_cast<T>(getBig(at, sizeof(T))) : static_cast<T>(0); \
  }
QRX_READ_NUMBER(signed char)
QRX_READ_NUMBER(short)
QRX_READ_NUMBER(int)
QRX_READ_NUMBER(unsigned char)
QRX_READ_NUMBER(unsigned short)
QRX_READ_NUMBER(unsigned int)
QRX_READ_NUMBER(unsigned long long)
#undef QRX_READ_NUMBER

void SCIMDeserializer::read(const char*, unsigned int, float& value) {
  if (ivError) return;
  const unsigned char* at = take(4);
  std::uint32_t bits = at != nullptr ? static_cast<std::uint32_t>(getBig(at, 4)) : 0;
  memcpy(&value, &bits, sizeof(value));
}

void SCIMDeserializer::read(const char*, unsigned int, cdatetime& value) {
  if (ivError) return;
  const unsigned char* at = take(8);
  value.setTimeUsec(at != nullptr ? getBig(at, 8) : 0);
}

void SCIMDeserializer::read(const char*, unsigned int, std::string& value) {
  if (ivError) return;
  const unsigned char* lengthAt = take(4);
  if (lengthAt == nullptr) return;
  unsigned long long length = getBig(lengthAt, 4);
  if (length + 1 > ivRemaining || ivPos[length] != 0) {
    ivError = true;  // runs past the end, or no terminator where it belongs
    return;
  }
  const unsigned char* chars = take(length + 1);
  value.assign(reinterpret_cast<const char*>(chars), length);
}

template <typename T>
void SCIMDeserializer::readList(std::vector<T>& orValue) {
  unsigned int count = 0;
  read("count", 0, count);
  if (ivError) return;
  std::vector<T> elements;
  // The count comes from the wire: room is made ahead for a modest one only.
  elements.reserve(count < kListReserveLimit ? count : kListReserveLimit);
  for (unsigned int i = 0; i < count; ++i) {
    T element{};
    read("element", 0, element);
    if (ivError) return;
    elements.push_back(std::move(element));
  }
  orValue.swap(elements);
}

void SCIMDeserializer::read(const char*, unsigned int, std::vector<unsigned short>& value) {
  if (!ivError) readList(value);
}

void SCIMDeserializer::read(const char*, unsigned int, std::vector<unsigned long long>& value) {
  if (!ivError) readList(value);
}

void SCIMDeserializer::read(const char*, unsigned int, std::vector<std::string>& value) {
  if (!ivError) readList(value);
}

void SCIMDeserializer::read(const char*, unsigned int, cstring_EO&) { ivError = true; }

void SCIMDeserializer::read(const char*, unsigned int, SCIMSerdesable& value) {
  if (!ivError) value.deserialize(*this);
}

SCIMSerdesable* SCIMDeserializer::newSerdesable(const std::string&) { return nullptr; }
