// cimhost::EncString: CMPIString. Immutable; hdl points to the characters
// (NUL-terminated), as CMGetCharPtr() expects, and the pointer to the
// object is stored just before them (see EncObject.h).
#ifndef QRX_TOOLS_CIMHOST_BROKER_STRINGS_H_
#define QRX_TOOLS_CIMHOST_BROKER_STRINGS_H_

#include <memory>
#include <string>

#include "tools/cimhost/broker/EncObject.h"

namespace cimhost {

class EncString : public Encapsulated<EncString, CMPIString, CMPIStringFT> {
 public:
  static std::unique_ptr<EncString> make(Core* ipCore, const std::string& irText) {
    return make(ipCore, irText.data(), irText.size());
  }
  // The `ipLength` characters at `ipText` (which need no NUL).
  static std::unique_ptr<EncString> make(Core* ipCore, const char* ipText, size_t ipLength);

  const char* chars() const { return ivBuffer.get() + kPrefix; }
  std::string text() const { return std::string(chars(), ivLength); }

  std::unique_ptr<EncString> copy(Core* ipCore) const { return make(ipCore, chars(), ivLength); }
  std::unique_ptr<EncObject> copyTo(Core* ipCore) const override { return copy(ipCore); }

  static EncString* fromHdl(void* ipHdl);
  static const CMPIStringFT* table(const Core* ipCore);
  static bool isOwnTable(const CMPIStringFT* ipFt);

 private:
  static constexpr size_t kPrefix = sizeof(EncString*);

  EncString(Core* ipCore, const char* ipText, size_t ipLength);

  // The object's address, then the characters and a NUL.
  std::unique_ptr<char[]> ivBuffer;
  size_t ivLength;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_STRINGS_H_
