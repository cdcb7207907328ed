#include "tools/cimhost/broker/Strings.h"

#include <cstring>

#include "tools/cimhost/broker/Core.h"

namespace cimhost {

namespace {

CMPIStatus stringRelease(CMPIString* st) { return releaseFromC<EncString>(st); }

CMPIString* stringClone(const CMPIString* st, CMPIStatus* rc) {
  return cloneFromC<EncString>(st, rc);
}

const char* stringGetCharPtr(const CMPIString* st, CMPIStatus* rc) {
  EncString* self = EncString::of(st);
  if (!self) {
    setStatus(rc, nullptr, Status(CMPI_RC_ERR_INVALID_HANDLE, ""));
    return nullptr;
  }
  setOk(rc);
  return self->chars();
}

constexpr CMPIStringFT makeTable(int ipVersion) {
  return CMPIStringFT{ipVersion, stringRelease, stringClone, stringGetCharPtr};
}

const CMPIStringFT kTable200 = makeTable(CMPIVersion200);
const CMPIStringFT kTable100 = makeTable(CMPIVersion100);

}  // namespace

EncString::EncString(Core* ipCore, const char* ipText, size_t ipLength)
    : Encapsulated(ipCore), ivBuffer(new char[kPrefix + ipLength + 1]), ivLength(ipLength) {
  const EncString* self = this;
  std::memcpy(ivBuffer.get(), &self, kPrefix);
  std::memcpy(ivBuffer.get() + kPrefix, ipText, ipLength);
  ivBuffer[kPrefix + ipLength] = '\0';
  setHdl(ivBuffer.get() + kPrefix);
}

std::unique_ptr<EncString> EncString::make(Core* ipCore, const char* ipText, size_t ipLength) {
  return std::unique_ptr<EncString>(new EncString(ipCore, ipText, ipLength));
}

EncString* EncString::fromHdl(void* ipHdl) {
  EncString* self;
  std::memcpy(&self, static_cast<char*>(ipHdl) - kPrefix, kPrefix);
  return self;
}

const CMPIStringFT* EncString::table(const Core* ipCore) {
  return ipCore->mode() == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

bool EncString::isOwnTable(const CMPIStringFT* ipFt) {
  return ipFt == &kTable200 || ipFt == &kTable100;
}

}  // namespace cimhost
