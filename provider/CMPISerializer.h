// Writers of model objects into CMPI objects.
//
//   CMPISerializer         each property becomes CMSetProperty(instance, ...)
//   CMPIObjPathSerializer  each property becomes CMAddKey(path, ...)
//   CMPIValueSerializer    the value fills one CMPIValue
//
// A write first asserts that the name is not null and that the type code is
// the one of the value type (CMPI_uint16 for cuint16, CMPI_stringA for
// cstring_A, CMPI_string for cstring and cstring_EO, CMPI_ref or
// CMPI_instance for a nested object, ...): a mismatch is a defect of the
// generated classes, never a status.
//
// Values that need broker objects (strings, datetimes, arrays, references,
// embedded instances) are built through a CMPIValueSerializer, and the
// property is set only when that succeeded. A failed broker call leaves its
// status in getStatus(); the last failure wins and hasError() reports it.
// Failures while building a reference or an embedded instance abort.
//
// References always name the namespace "root/qrx", whatever the request
// used. A nested object written with CMPI_instance to an instance or path
// writer is not nested: its properties land in the same target.
#ifndef QRX_PROVIDER_CMPISERIALIZER_H_
#define QRX_PROVIDER_CMPISERIALIZER_H_

#include "cmpidt.h"
#include "common/base/SCIMCommon.h"

// The namespace of every reference the library makes.
extern const char* const QRX_NAMESPACE;  // "root/qrx"

// Shared writer of the instance and object-path serializers: every write
// ends in store(name, value, type).
class CMPIPropertySerializer : public SCIMSerializerIf {
 public:
  CMPIPropertySerializer(const CMPIBroker* broker);

  bool hasError() override { return ivStatus.rc != CMPI_RC_OK; }
  const CMPIStatus& getStatus() const { return ivStatus; }

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
  // Not supported: sets the status to CMPI_RC_ERROR (200), no message.
  void write(const char* name, CMPIData& value) override;

 protected:
  // Sets one property or key. `value` may be null for a NULL value.
  virtual CMPIStatus store(const char* name, const CMPIValue* value, CMPIType type) = 0;

  const CMPIBroker* ivBroker;
  CMPIStatus ivStatus;

 private:
  // Builds the value with a CMPIValueSerializer and stores it on success.
  template <typename T>
  void storeBuilt(const char* name, unsigned int type, const T& value, CMPIType storedType);
  static void releaseBuilt(CMPIValue* value, CMPIType storedType);
  void keep(const CMPIStatus& status);
};

class CMPISerializer : public CMPIPropertySerializer {
 public:
  CMPISerializer(const CMPIBroker* broker, CMPIInstance* instance);

 protected:
  CMPIStatus store(const char* name, const CMPIValue* value, CMPIType type) override;

 private:
  CMPIInstance* ivInstance;
};

class CMPIObjPathSerializer : public CMPIPropertySerializer {
 public:
  CMPIObjPathSerializer(const CMPIBroker* broker, CMPIObjectPath* path);

 protected:
  CMPIStatus store(const char* name, const CMPIValue* value, CMPIType type) override;

 private:
  CMPIObjectPath* ivPath;
};

// Fills one CMPIValue. Every write overwrites the target; the last one
// counts. Scalars take the union member of their width; a string becomes a
// CMPIString, a datetime a CMPIDateTime made from its text, an array a
// CMPIArray, a reference (CMPI_ref) a CMPIObjectPath, an embedded object
// (cstring_EO, or a nested object with CMPI_instance) a CMPIInstance.
class CMPIValueSerializer : public SCIMSerializerIf {
 public:
  CMPIValueSerializer(const CMPIBroker* broker, CMPIValue* target);

  bool hasError() override { return ivStatus.rc != CMPI_RC_OK; }
  const CMPIStatus& getStatus() const { return ivStatus; }

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
  // Nothing is written for a NULL embedded object (ivNull true).
  void write(const char* name, unsigned int type, const cstring_EO& value) override;
  void write(const char* name, unsigned int type, const SCIMSerdesable& value) override;
  // Not supported: sets the status to CMPI_RC_ERROR (200), no message.
  void write(const char* name, CMPIData& value) override;

 private:
  template <typename T>
  void writeArray(const std::vector<T>& elements, CMPIType elementType);
  CMPIInstance* newEmbeddedInstance(const char* nameSpace, const char* className,
                                    const SCIMSerdesable& object);
  void keep(const CMPIStatus& status);

  const CMPIBroker* ivBroker;
  CMPIValue* ivTarget;
  CMPIStatus ivStatus;
};

#endif  // QRX_PROVIDER_CMPISERIALIZER_H_
