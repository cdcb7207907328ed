// CIM value types and the serialisation interface of the model objects.
//
// Every CIM property, key and method parameter is held in one of the value
// types below. Every generated model object is a SCIMSerdesable: it writes
// its properties, one call per property, to a SCIMSerializerIf and reads
// them back from a SCIMDeserializerIf. Each call names the property and
// passes the CMPI type code it has in its CIM class; the implementations
// (CMPI instances and object paths, binary IPC frames) decide what the
// value becomes. A model object knows nothing of them.
//
// The interfaces report nothing to the model code: a failed write or read
// sets the implementation's error state, which hasError() reports once the
// whole object has been written or read.
#ifndef QRX_COMMON_BASE_SCIMCOMMON_H_
#define QRX_COMMON_BASE_SCIMCOMMON_H_

#include <string>
#include <vector>

#include "cmpidt.h"

// ---------------------------------------------------------------------------
// Value types. There is deliberately no 64-bit signed integer, no 64-bit
// real, no char16 and no array other than the three below: a CIM property
// of another type has no model representation.
typedef std::string cstring;           // CMPI_string
typedef unsigned char cboolean;        // CMPI_boolean (0 false, other true)
typedef unsigned char cuint8;          // CMPI_uint8, same type as cboolean
typedef unsigned short cuint16;        // CMPI_uint16
typedef unsigned int cuint32;          // CMPI_uint32
typedef unsigned long long cuint64;    // CMPI_uint64
typedef signed char csint8;            // CMPI_sint8
typedef short csint16;                 // CMPI_sint16
typedef int csint32;                   // CMPI_sint32
typedef float creal32;                 // CMPI_real32
typedef std::vector<unsigned short> cuint16_A;      // CMPI_uint16A
typedef std::vector<unsigned long long> cuint64_A;  // CMPI_uint64A
typedef std::vector<std::string> cstring_A;         // CMPI_stringA

// A CIM datetime (CMPI_dateTime): a point in time in whole seconds since
// 1970-01-01 00:00:00 UTC. Sub-second precision is not kept.
class cdatetime {
 public:
  static constexpr unsigned long long USEC_PER_SEC = 1000000ULL;

  cdatetime() : ivTime(0) {}

  // Keeps usec / 1,000,000 seconds, truncated, cut to 32 bits.
  void setTimeUsec(unsigned long long usec) {
    ivTime = static_cast<unsigned int>(usec / USEC_PER_SEC);
  }
  unsigned long long getTimeUsec() const { return ivTime * USEC_PER_SEC; }
  unsigned long long getTimeSec() const { return ivTime; }

  // The CIM text form "yyyymmddhhmmss.000000sooo" (25 characters). The date
  // and time fields are those of UTC; the offset field sooo is the local
  // zone's: (60 if the zone has summer time at all, else 0) minus
  // timezone / 60. Clients rely on exactly this text, mismatch included; on
  // a host whose zone is UTC it ends in "+000".
  std::string toString() const;

  bool operator==(const cdatetime& other) const { return ivTime == other.ivTime; }
  bool operator!=(const cdatetime& other) const { return ivTime != other.ivTime; }

  unsigned int ivTime;
};

class SCIMSerdesable;
class SCIMSerializerIf;
class SCIMDeserializerIf;

// A string property that carries an embedded instance (CMPI_string).
//
// It owns its object: the destructor destroys it. It is move-only; a move
// hands the object over and leaves the source NULL. Model classes holding
// one (the lifecycle indications) are move-only too, which matches their
// use: built once, then handed to the delivery queue.
struct cstring_EO {
  cstring_EO() : ivNull(1), ivpEmbeddedObj(nullptr) {}
  ~cstring_EO();
  cstring_EO(cstring_EO&& other) noexcept;
  cstring_EO& operator=(cstring_EO&& other) noexcept;
  cstring_EO(const cstring_EO&) = delete;
  cstring_EO& operator=(const cstring_EO&) = delete;

  // Takes ownership of `object` (which may be null), destroying any object
  // held before, and sets ivNull to whether `object` is null.
  void reset(SCIMSerdesable* object);

  cstring ivNameSpace;              // namespace of the embedded object
  cstring ivClassName;              // its CIM class name
  cboolean ivNull;                  // true: the property is NULL
  SCIMSerdesable* ivpEmbeddedObj;   // owned; null when ivNull
};

// ---------------------------------------------------------------------------
// Abstract base of every generated class, key, array and key array. The
// virtual table is its only member; copies are member-wise.
class SCIMSerdesable {
 public:
  virtual ~SCIMSerdesable() {}

  // The model class's own name (e.g. "QRX_Switch_Key").
  virtual const cstring& getClassName() const = 0;
  // The CIM class the object stands for (e.g. "QRX_Switch").
  virtual const cstring& getCIMClassName() const = 0;
  // Writes every property in the class's fixed order.
  virtual void serialize(SCIMSerializerIf& serializer) const = 0;
  // Reads them back in the same order.
  virtual void deserialize(SCIMDeserializerIf& deserializer) = 0;

  // Writes the elements of `elements` in order, each as a nested object
  // (CMPI_instance) named after its CIM class. Nothing else is written: no
  // count. Used by the generated array and key-array classes.
  template <typename T>
  static void serialize_A(SCIMSerializerIf& serializer, const std::vector<T>& elements);
};

// The writing side. Every operation is pure virtual; the slot order is
// fixed. `name` is the CIM property or parameter name and must not be null;
// `type` is the CMPI type code of the property as its class declares it.
class SCIMSerializerIf {
 public:
  virtual ~SCIMSerializerIf() {}
  // True once any write has failed.
  virtual bool hasError() = 0;
  virtual void write(const char* name, unsigned int type, float value) = 0;
  virtual void write(const char* name, unsigned int type, signed char value) = 0;
  virtual void write(const char* name, unsigned int type, short value) = 0;
  virtual void write(const char* name, unsigned int type, int value) = 0;
  // Booleans and cuint8: the type code tells them apart.
  virtual void write(const char* name, unsigned int type, unsigned char value) = 0;
  virtual void write(const char* name, unsigned int type, unsigned short value) = 0;
  virtual void write(const char* name, unsigned int type, unsigned int value) = 0;
  virtual void write(const char* name, unsigned int type, unsigned long long value) = 0;
  virtual void write(const char* name, unsigned int type, const cdatetime& value) = 0;
  virtual void write(const char* name, unsigned int type, const std::string& value) = 0;
  virtual void write(const char* name, unsigned int type, const char* value) = 0;
  virtual void write(const char* name, unsigned int type, const std::vector<unsigned short>& value) = 0;
  virtual void write(const char* name, unsigned int type,
                     const std::vector<unsigned long long>& value) = 0;
  virtual void write(const char* name, unsigned int type, const std::vector<std::string>& value) = 0;
  virtual void write(const char* name, unsigned int type, const cstring_EO& value) = 0;
  // A nested object: with CMPI_ref an object reference (a key object,
  // written as an object path), otherwise an embedded instance.
  virtual void write(const char* name, unsigned int type, const SCIMSerdesable& value) = 0;
  // A raw CMPI value, passed through as it stands.
  virtual void write(const char* name, CMPIData& value) = 0;
};

// The reading side; slot order fixed as for the writer. A read that fails
// leaves the target as it was.
class SCIMDeserializerIf {
 public:
  virtual ~SCIMDeserializerIf() {}
  virtual bool hasError() = 0;
  virtual void read(const char* name, unsigned int type, float& value) = 0;
  virtual void read(const char* name, unsigned int type, signed char& value) = 0;
  virtual void read(const char* name, unsigned int type, short& value) = 0;
  virtual void read(const char* name, unsigned int type, int& value) = 0;
  virtual void read(const char* name, unsigned int type, unsigned char& value) = 0;
  virtual void read(const char* name, unsigned int type, unsigned short& value) = 0;
  virtual void read(const char* name, unsigned int type, unsigned int& value) = 0;
  virtual void read(const char* name, unsigned int type, unsigned long long& value) = 0;
  virtual void read(const char* name, unsigned int type, cdatetime& value) = 0;
  virtual void read(const char* name, unsigned int type, std::string& value) = 0;
  virtual void read(const char* name, unsigned int type, std::vector<unsigned short>& value) = 0;
  virtual void read(const char* name, unsigned int type, std::vector<unsigned long long>& value) = 0;
  virtual void read(const char* name, unsigned int type, std::vector<std::string>& value) = 0;
  virtual void read(const char* name, unsigned int type, cstring_EO& value) = 0;
  virtual void read(const char* name, unsigned int type, SCIMSerdesable& value) = 0;
  // A new default object of the named model class, owned by the caller, or
  // null for an unknown class. Used to materialise embedded objects.
  virtual SCIMSerdesable* newSerdesable(const std::string& className) = 0;
};

template <typename T>
void SCIMSerdesable::serialize_A(SCIMSerializerIf& serializer, const std::vector<T>& elements) {
  for (const T& element : elements) {
    serializer.write(element.getCIMClassName().c_str(), CMPI_instance, element);
  }
}

#endif  // QRX_COMMON_BASE_SCIMCOMMON_H_
