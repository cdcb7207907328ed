// cimhost::EncInstance: CMPIInstance, the object path it was made from and
// its properties in the order they were first set.
//
// setProperty() copies the value as Values.h describes (CMPI_chars becomes
// CMPI_string; strings, arrays, references, date-times and embedded
// instances are deep-copied; a NULL value or CMPI_null stores a null of
// the given type) and replaces a property of the same name (names compare
// case-insensitively), keeping its position. Properties are not checked
// against a class declaration. getProperty() of an unknown name is
// CMPI_RC_ERR_NO_SUCH_PROPERTY, getPropertyAt() past the end likewise.
// setPropertyWithOrigin() is setProperty(); the origin is accepted and not
// kept, as nothing in CMPI reads it back.
//
// getObjectPath() returns a new path with the instance's host, namespace
// and class name. Its keys: for a class the hierarchy knows, the key
// properties keysOf() lists, in that order, each taken from the instance's
// property of that name if set and not null, else from a key of that name
// in the instance's own path, else left out; for an unknown class (or
// without a hierarchy), the keys of the instance's own path.
// setObjectPath() replaces the instance's own path with a copy of the one
// given (properties are left as they are).
//
// Property filter: setPropertyFilter(list, keys) with a NULL list removes
// the filter. Otherwise a property is admitted if its name is in `list`,
// in `keys`, or is a key property of the class per the hierarchy (names
// case-insensitive). Properties already set that are not admitted are
// removed at once; setting one later returns CMPI_RC_OK and stores nothing.
//
// Text form (toString()): MOF-like,
//   instance of QRX_Switch
//   {
//       Name = "sw1";
//       Ports = {1, 2};
//   };
// with embedded instances nested one level deeper.
#ifndef QRX_TOOLS_CIMHOST_BROKER_INSTANCES_H_
#define QRX_TOOLS_CIMHOST_BROKER_INSTANCES_H_

#include <memory>
#include <string>
#include <vector>

#include "tools/cimhost/broker/EncObject.h"
#include "tools/cimhost/broker/ObjectPaths.h"
#include "tools/cimhost/broker/Values.h"

namespace cimhost {

class EncInstance : public Encapsulated<EncInstance, CMPIInstance, CMPIInstanceFT> {
 public:
  // An instance without properties made from a copy of `irPath`.
  static std::unique_ptr<EncInstance> make(Core* ipCore, const EncObjectPath& irPath);

  const EncObjectPath& path() const { return *ivPath; }
  const NamedValues& properties() const { return ivProperties; }

  Status setProperty(const char* ipName, const CMPIValue* ipValue, CMPIType ipType);
  Status setPropertyFilter(const char** ipProperties, const char** ipKeys);
  void setObjectPath(const EncObjectPath& irPath) { ivPath = irPath.copy(core()); }

  // The path getObjectPath() returns (described above), not registered.
  std::unique_ptr<EncObjectPath> objectPath(Core* ipCore) const;

  // The text form; nested lines are indented by `ipIndent` more spaces.
  std::string toText(int ipIndent = 0) const;

  std::unique_ptr<EncInstance> copy(Core* ipCore) const;
  std::unique_ptr<EncObject> copyTo(Core* ipCore) const override { return copy(ipCore); }

  static const CMPIInstanceFT* table(const Core* ipCore);
  static bool isOwnTable(const CMPIInstanceFT* ipFt);

 private:
  EncInstance(Core* ipCore, std::unique_ptr<EncObjectPath> ipPath);

  bool admits(const std::string& irName) const;

  std::unique_ptr<EncObjectPath> ivPath;
  NamedValues ivProperties;
  bool ivFiltered = false;
  std::vector<std::string> ivAdmitted;  // when filtered
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_INSTANCES_H_
