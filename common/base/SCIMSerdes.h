// The binary encoding of the records exchanged with the switch daemon:
// SCIMSerializer writes values into a buffer, SCIMDeserializer reads them
// back. Both ignore the names and type codes the interface passes; only the
// values reach the buffer, one after the other, without padding, and every
// number is big-endian whatever the host:
//
//   8-bit numbers          1 byte
//   16/32/64-bit numbers   2/4/8 bytes; float as IEEE single (4 bytes)
//   date-time              8 bytes: microseconds (cdatetime::getTimeUsec)
//   string                 32-bit length n, the n characters, one zero byte
//   list of strings or     32-bit count, then each element
//   of 16/64-bit numbers
//   record                 its members in order (its serialize())
//
// Lists of records write their own count (see the generated records).
//
// Errors are sticky. A value that does not fit the remaining bytes sets
// the error flag, and every later write or read does nothing; a failed read
// leaves its target as it was (a number reads as 0). A string must have its
// terminating zero byte where its length says. Lists are read element by
// element, so a count larger than the data can hold only ends in the error
// flag, never in a large allocation. Embedded instances and raw CMPI
// values have no binary form: writing or reading one sets the error flag.
#ifndef QRX_COMMON_BASE_SCIMSERDES_H_
#define QRX_COMMON_BASE_SCIMSERDES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/base/SCIMCommon.h"

// The cursor both directions share.
class SCIMSerdesBase {
 public:
  SCIMSerdesBase(void* ipBuffer, size_t ipLength)
      : ivStart(static_cast<unsigned char*>(ipBuffer)),
        ivPos(ivStart),
        ivRemaining(ipLength),
        ivError(false) {}

  // True once a value did not fit.
  bool getStatus() const { return ivError; }
  // Bytes written or read since the start.
  size_t getWrittenLen() const { return static_cast<size_t>(ivPos - ivStart); }

 protected:
  // Reserves `ipSize` bytes at the cursor and advances past them; null (and
  // the error flag) when they are not there or an error came before.
  unsigned char* take(size_t ipSize);

  unsigned char* ivStart;
  unsigned char* ivPos;
  size_t ivRemaining;
  bool ivError;
};

class SCIMSerializer : public SCIMSerdesBase, public SCIMSerializerIf {
 public:
  SCIMSerializer(void* ipBuffer, size_t ipLength) : SCIMSerdesBase(ipBuffer, ipLength) {}

  bool hasError() override { return ivError; }
  void write(const char* name, unsigned int type, float value) override;
  void write(const char* name, unsigned int type, signed char value) override;
  void write(const char* name, unsigned int type, short value) override;
  void write(const char* name, unsigned int type, int value) override;
  void write(const char* name, unsigned int type, unsigned char value) override;
  void write(const char* name, unsigned int type, unsigned short value) override;
  void write(const char* name, unsigned int type, unsigned int value) override;
  void write(const char* name, unsigned int type, unsigned long long value) override;
  void write(const char* name, unsigned int type, const cdatetime& value) override;
  void write(const char* name, unsigned int type, const std::string& value) override;
  void write(const char* name, unsigned int type, const char* value) override;
  void write(const char* name, unsigned int type, const std::vector<unsigned short>& value) override;
  void write(const char* name, unsigned int type,
             const std::vector<unsigned long long>& value) override;
  void write(const char* name, unsigned int type, const std::vector<std::string>& value) override;
  void write(const char* name, unsigned int type, const cstring_EO& value) override;
  void write(const char* name, unsigned int type, const SCIMSerdesable& value) override;
  void write(const char* name, CMPIData& value) override;

 private:
  void putString(const char* ipChars, size_t ipLength);
};

class SCIMDeserializer : public SCIMSerdesBase, public SCIMDeserializerIf {
 public:
  SCIMDeserializer(const void* ipBuffer, size_t ipLength)
      : SCIMSerdesBase(const_cast<void*>(ipBuffer), ipLength) {}

  bool hasError() override { return ivError; }
  void read(const char* name, unsigned int type, float& value) override;
  void read(const char* name, unsigned int type, signed char& value) override;
  void read(const char* name, unsigned int type, short& value) override;
  void read(const char* name, unsigned int type, int& value) override;
  void read(const char* name, unsigned int type, unsigned char& value) override;
  void read(const char* name, unsigned int type, unsigned short& value) override;
  void read(const char* name, unsigned int type, unsigned int& value) override;
  void read(const char* name, unsigned int type, unsigned long long& value) override;
  void read(const char* name, unsigned int type, cdatetime& value) override;
  void read(const char* name, unsigned int type, std::string& value) override;
  void read(const char* name, unsigned int type, std::vector<unsigned short>& value) override;
  void read(const char* name, unsigned int type, std::vector<unsigned long long>& value) override;
  void read(const char* name, unsigned int type, std::vector<std::string>& value) override;
  void read(const char* name, unsigned int type, cstring_EO& value) override;
  void read(const char* name, unsigned int type, SCIMSerdesable& value) override;
  // Records are never materialised by name here: null.
  SCIMSerdesable* newSerdesable(const std::string& className) override;

 private:
  template <typename T>
  void readList(std::vector<T>& orValue);

  // At most this many elements of a list are reserved from its count.
  static constexpr unsigned int kListReserveLimit = 256;
};

#endif  // QRX_COMMON_BASE_SCIMSERDES_H_
