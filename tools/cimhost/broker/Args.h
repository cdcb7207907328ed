// cimhost::EncArgs: CMPIArgs, the ordered named arguments of a method
// call.
//
// addArg() copies the value as Values.h describes and replaces an argument
// of the same name (names compare case-insensitively). getArg() of an
// unknown name is CMPI_RC_ERR_NOT_FOUND, getArgAt() past the end
// CMPI_RC_ERR_NO_SUCH_PROPERTY.
//
// Text form (toString()): name=value pairs separated by ", " inside
// parentheses, values as literals: (Name="sw1", Count=5).
#ifndef QRX_TOOLS_CIMHOST_BROKER_ARGS_H_
#define QRX_TOOLS_CIMHOST_BROKER_ARGS_H_

#include <memory>
#include <string>

#include "tools/cimhost/broker/EncObject.h"
#include "tools/cimhost/broker/Values.h"

namespace cimhost {

class EncArgs : public Encapsulated<EncArgs, CMPIArgs, CMPIArgsFT> {
 public:
  static std::unique_ptr<EncArgs> make(Core* ipCore);

  const NamedValues& args() const { return ivArgs; }
  Status addArg(const char* ipName, const CMPIValue* ipValue, CMPIType ipType);

  std::string toText() const;

  std::unique_ptr<EncArgs> copy(Core* ipCore) const;
  std::unique_ptr<EncObject> copyTo(Core* ipCore) const override { return copy(ipCore); }

  static const CMPIArgsFT* table(const Core* ipCore);
  static bool isOwnTable(const CMPIArgsFT* ipFt);

 private:
  explicit EncArgs(Core* ipCore) : Encapsulated(ipCore) {}

  NamedValues ivArgs;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_ARGS_H_
