// cimhost::EncObjectPath: CMPIObjectPath, a host, namespace, class name
// and ordered keys.
//
// addKey() copies the value as Values.h describes and replaces a key of
// the same name (names compare case-insensitively); keys keep the type
// they were added with and read back as plain good values (state
// CMPI_goodValue), as the switch's object manager delivers them; object
// managers that flag keys with CMPI_keyValue exist, and tests that need one
// wrap getKey().
// getKey() of an unknown name is CMPI_RC_ERR_NOT_FOUND, getKeyAt() past
// the end CMPI_RC_ERR_NO_SUCH_PROPERTY. A NULL namespace or host clears
// it; the class name must not be NULL or empty. The qualifier functions
// are CMPI_RC_ERR_NOT_SUPPORTED (the hierarchy keeps no qualifiers).
//
// Text form (toString()): ["//" host "/"] [namespace ":"] class ["." keys]
// with keys as name=value separated by ',', in key order; strings,
// date-times and char16 quoted with '"' and '\' escaped by '\', nested
// references as their own text quoted the same way, booleans true/false,
// numbers in decimal, a null key NULL. Example:
//   root/qrx:QRX_SwitchInFabric.GroupComponent="root/qrx:QRX_Fabric.Name=\"f1\"",Port=5
#ifndef QRX_TOOLS_CIMHOST_BROKER_OBJECTPATHS_H_
#define QRX_TOOLS_CIMHOST_BROKER_OBJECTPATHS_H_

#include <memory>
#include <string>

#include "tools/cimhost/broker/EncObject.h"
#include "tools/cimhost/broker/Values.h"

namespace cimhost {

class EncObjectPath : public Encapsulated<EncObjectPath, CMPIObjectPath, CMPIObjectPathFT> {
 public:
  static std::unique_ptr<EncObjectPath> make(Core* ipCore, std::string ipNameSpace,
                                             std::string ipClassName);

  const std::string& nameSpace() const { return ivNameSpace; }
  const std::string& host() const { return ivHost; }
  const std::string& className() const { return ivClassName; }
  const NamedValues& keys() const { return ivKeys; }

  void setNameSpace(std::string ipNameSpace) { ivNameSpace = std::move(ipNameSpace); }
  void setHost(std::string ipHost) { ivHost = std::move(ipHost); }
  void setClassName(std::string ipClassName) { ivClassName = std::move(ipClassName); }

  Status addKey(const char* ipName, const CMPIValue* ipValue, CMPIType ipType);
  void setKey(const std::string& irName, Value ipValue) { ivKeys.set(irName, std::move(ipValue)); }

  // The text form described above.
  std::string toText() const;

  std::unique_ptr<EncObjectPath> copy(Core* ipCore) const;
  std::unique_ptr<EncObject> copyTo(Core* ipCore) const override { return copy(ipCore); }

  static const CMPIObjectPathFT* table(const Core* ipCore);
  static bool isOwnTable(const CMPIObjectPathFT* ipFt);

 private:
  EncObjectPath(Core* ipCore, std::string ipNameSpace, std::string ipClassName);

  std::string ivNameSpace;
  std::string ivHost;
  std::string ivClassName;
  NamedValues ivKeys;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_OBJECTPATHS_H_
