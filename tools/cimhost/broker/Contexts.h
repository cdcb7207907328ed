// cimhost::EncContext: CMPIContext, named entries such as
// CMPIInitNameSpace and CMPIInvocationFlags.
//
// addEntry() copies the value as Values.h describes and replaces an entry
// of the same name. getEntry() of an unknown name and getEntryAt() past
// the end are CMPI_RC_ERR_NO_SUCH_PROPERTY. Unlike other objects a context
// is locked, because the broker's default context is shared by every
// provider thread; data read from an entry stays valid until that entry is
// replaced.
#ifndef QRX_TOOLS_CIMHOST_BROKER_CONTEXTS_H_
#define QRX_TOOLS_CIMHOST_BROKER_CONTEXTS_H_

#include <memory>
#include <mutex>
#include <string>

#include "tools/cimhost/broker/EncObject.h"
#include "tools/cimhost/broker/Values.h"

namespace cimhost {

class EncContext : public Encapsulated<EncContext, CMPIContext, CMPIContextFT> {
 public:
  static std::unique_ptr<EncContext> make(Core* ipCore);

  Status addEntry(const char* ipName, const CMPIValue* ipValue, CMPIType ipType);

  // The entry's data; false if there is none.
  bool entry(const std::string& irName, CMPIData* opData) const;
  // The entry's name and data; false if `ipIndex` is past the end.
  bool entryAt(size_t ipIndex, std::string* opName, CMPIData* opData) const;
  size_t size() const;

  std::unique_ptr<EncContext> copy(Core* ipCore) const;
  std::unique_ptr<EncObject> copyTo(Core* ipCore) const override { return copy(ipCore); }

  static const CMPIContextFT* table(const Core* ipCore);
  static bool isOwnTable(const CMPIContextFT* ipFt);

 private:
  explicit EncContext(Core* ipCore) : Encapsulated(ipCore) {}

  mutable std::mutex ivMutex;
  NamedValues ivEntries;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_CONTEXTS_H_
