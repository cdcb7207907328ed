// Readers of model objects from CMPI objects.
//
//   CMPIDeserializer         each property from CMGetProperty(instance, ...)
//   CMPIObjPathDeserializer  each property from CMGetKey(path, ...)
//   CMPIDataDeserializer     every read takes the one CMPIData it holds
//
// A read asserts the name and the type code as the writers do (the code is
// the property's declared type, CMPI_string for cstring_EO). A failed
// broker call leaves its status in getStatus() (the last failure wins) and
// the target as it was.
//
// Values:
// - A value counts as good when its state is 0, CMPI_nullValue or
//   CMPI_keyValue. Scalars are copied from good values; a bad one logs
//   "CMPIData value was bad" and is skipped.
// - Strings, datetimes, arrays, references and embedded instances are
//   taken only when the state is exactly 0; a null or key-flagged value is
//   skipped (the object-path reader logs "No good value!!!").
// - Object managers differ in how they hand over the keys of a request's
//   object path: sfcb with state 0, OpenPegasus with every key flagged
//   CMPI_keyValue. CMPIRequestPathDeserializer, which the provider glue
//   reads request paths with, takes a value flagged only as a key as the
//   good value it is.
// - A value whose CMPI type does not fit the target (a client sending a
//   string for a number, say) is not read: the status becomes
//   CMPI_RC_ERR_TYPE_MISMATCH with a message naming the property. Integers
//   of another width are accepted when the value fits the target.
// - A reference (CMPI_ref) is read into the target key object through a
//   CMPIObjPathDeserializer over the referenced path. A nested object read
//   with CMPI_instance from an instance or path is read flat from the same
//   source. The single-value reader cannot read a nested object: that
//   aborts.
// - An embedded instance is materialised through newSerdesable() with the
//   class name of its object path, and read with a CMPIDeserializer.
#ifndef QRX_PROVIDER_CMPIDESERIALIZER_H_
#define QRX_PROVIDER_CMPIDESERIALIZER_H_

#include "cmpidt.h"
#include "common/base/SCIMCommon.h"

class CMPIDataDeserializer : public SCIMDeserializerIf {
 public:
  explicit CMPIDataDeserializer(const CMPIData& data);

  bool hasError() override { return ivStatus.rc != CMPI_RC_OK; }
  const CMPIStatus& getStatus() const { return ivStatus; }

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
  // Unsupported for a single value: aborts.
  void read(const char* name, unsigned int type, SCIMSerdesable& value) override;
  // createCimObject(className).
  SCIMSerdesable* newSerdesable(const std::string& className) override;

 protected:
  CMPIStatus ivStatus;

 private:
  template <typename T>
  void readInteger(const char* name, T& value);
  template <typename T>
  void readArray(const char* name, CMPIType elementType, std::vector<T>& value);
  bool good();
  bool present(const char* name, CMPIType type);
  void mismatch(const char* name, const char* expected);

  CMPIData ivData;
};

// Shared reader of the instance and object-path deserializers: every read
// fetches one CMPIData by name and converts it as CMPIDataDeserializer does.
class CMPINamedDeserializer : public SCIMDeserializerIf {
 public:
  bool hasError() override { return ivStatus.rc != CMPI_RC_OK; }
  const CMPIStatus& getStatus() const { return ivStatus; }

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
  // createCimObject(className).
  SCIMSerdesable* newSerdesable(const std::string& className) override;

 protected:
  CMPINamedDeserializer();

  // Gets the named value; on failure returns false with the broker's status.
  virtual bool fetch(const char* name, CMPIData* data, CMPIStatus* rc) = 0;
  // Whether a value skipped for its state is logged ("No good value!!!").
  virtual bool logsSkippedValues() const = 0;
  // Reads the key of a reference into `orValue`; the status of that read.
  // By default with a CMPIObjPathDeserializer over `ipPath`.
  virtual CMPIStatus readReferenced(const CMPIObjectPath* ipPath, SCIMSerdesable& orValue);

 private:
  template <typename T>
  void readScalar(const char* name, unsigned int type, T& value);
  template <typename T>
  void readNonScalar(const char* name, unsigned int type, T& value);
  bool fetchKept(const char* name, CMPIData* data);

  CMPIStatus ivStatus;
};

// Reads each property from an instance (CMGetProperty); see above. A
// property the instance does not have is skipped without error: clients
// set only the properties they mean.
class CMPIDeserializer : public CMPINamedDeserializer {
 public:
  explicit CMPIDeserializer(const CMPIInstance* instance);

 protected:
  bool fetch(const char* name, CMPIData* data, CMPIStatus* rc) override;
  bool logsSkippedValues() const override { return false; }

 private:
  const CMPIInstance* ivInstance;
};

// Reads each property from the keys of an object path (CMGetKey); see
// above.
class CMPIObjPathDeserializer : public CMPINamedDeserializer {
 public:
  explicit CMPIObjPathDeserializer(const CMPIObjectPath* path);

 protected:
  bool fetch(const char* name, CMPIData* data, CMPIStatus* rc) override;
  bool logsSkippedValues() const override { return true; }

 private:
  const CMPIObjectPath* ivPath;
};

// Reads the keys of an object path a request brings, as every object
// manager delivers them: a value whose state is exactly CMPI_keyValue is
// read as a good value (a flagged null stays null), also in the paths of
// reference keys; otherwise as CMPIObjPathDeserializer.
class CMPIRequestPathDeserializer : public CMPIObjPathDeserializer {
 public:
  explicit CMPIRequestPathDeserializer(const CMPIObjectPath* path);

 protected:
  bool fetch(const char* name, CMPIData* data, CMPIStatus* rc) override;
  CMPIStatus readReferenced(const CMPIObjectPath* ipPath, SCIMSerdesable& orValue) override;
};

#endif  // QRX_PROVIDER_CMPIDESERIALIZER_H_
