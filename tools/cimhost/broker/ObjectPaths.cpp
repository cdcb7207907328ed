#include "tools/cimhost/broker/ObjectPaths.h"

#include "tools/cimhost/broker/Core.h"
#include "tools/cimhost/broker/ValueText.h"

namespace cimhost {

namespace {

std::string orEmpty(const char* ipText) { return ipText ? std::string(ipText) : std::string(); }

CMPIStatus opRelease(CMPIObjectPath* op) { return releaseFromC<EncObjectPath>(op); }

CMPIObjectPath* opClone(const CMPIObjectPath* op, CMPIStatus* rc) {
  return cloneFromC<EncObjectPath>(op, rc);
}

CMPIStatus opSetNameSpace(CMPIObjectPath* op, const char* ns) {
  EncObjectPath* self = EncObjectPath::of(op);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] {
    self->setNameSpace(orEmpty(ns));
    return Status::OK();
  });
}

// A new string holding `irText`, for the getters below.
CMPIString* stringResult(EncObjectPath* ipSelf, const std::string& irText, CMPIStatus* rc) {
  Core* core = ipSelf->core();
  return guard(core, rc, static_cast<CMPIString*>(nullptr), [&] {
    setOk(rc);
    return core->newString(irText);
  });
}

CMPIString* opGetNameSpace(const CMPIObjectPath* op, CMPIStatus* rc) {
  EncObjectPath* self = EncObjectPath::of(op, rc);
  if (!self) return nullptr;
  return stringResult(self, self->nameSpace(), rc);
}

CMPIStatus opSetHostname(CMPIObjectPath* op, const char* hn) {
  EncObjectPath* self = EncObjectPath::of(op);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] {
    self->setHost(orEmpty(hn));
    return Status::OK();
  });
}

CMPIString* opGetHostname(const CMPIObjectPath* op, CMPIStatus* rc) {
  EncObjectPath* self = EncObjectPath::of(op, rc);
  if (!self) return nullptr;
  return stringResult(self, self->host(), rc);
}

CMPIStatus opSetClassName(CMPIObjectPath* op, const char* cn) {
  EncObjectPath* self = EncObjectPath::of(op);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] {
    if (!cn || !*cn) return Status(CMPI_RC_ERR_INVALID_PARAMETER, "class name is NULL or empty");
    self->setClassName(cn);
    return Status::OK();
  });
}

CMPIString* opGetClassName(const CMPIObjectPath* op, CMPIStatus* rc) {
  EncObjectPath* self = EncObjectPath::of(op, rc);
  if (!self) return nullptr;
  return stringResult(self, self->className(), rc);
}

CMPIStatus opAddKey(CMPIObjectPath* op, const char* name, const CMPIValue* value,
                    const CMPIType type) {
  EncObjectPath* self = EncObjectPath::of(op);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->addKey(name, value, type); });
}

CMPIData opGetKey(const CMPIObjectPath* op, const char* name, CMPIStatus* rc) {
  EncObjectPath* self = EncObjectPath::of(op, rc);
  if (!self) return missingData();
  Core* core = self->core();
  return guard(core, rc, missingData(), [&] {
    return namedValueData(core, self->keys(), name, "key", " in " + self->className() + " path",
                          CMPI_RC_ERR_NOT_FOUND, rc);
  });
}

CMPIData opGetKeyAt(const CMPIObjectPath* op, CMPICount index, CMPIString** name,
                    CMPIStatus* rc) {
  EncObjectPath* self = EncObjectPath::of(op, rc);
  if (!self) return missingData();
  Core* core = self->core();
  return guard(core, rc, missingData(), [&] {
    return indexedValueData(core, self->keys(), index, name, "key", rc);
  });
}

CMPICount opGetKeyCount(const CMPIObjectPath* op, CMPIStatus* rc) {
  EncObjectPath* self = EncObjectPath::of(op, rc);
  if (!self) return 0;
  setOk(rc);
  return static_cast<CMPICount>(self->keys().size());
}

CMPIStatus opSetNameSpaceFromObjectPath(CMPIObjectPath* op, const CMPIObjectPath* src) {
  EncObjectPath* self = EncObjectPath::of(op);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] {
    const EncObjectPath* from = EncObjectPath::of(src);
    if (!from) {
      return Status(CMPI_RC_ERR_INVALID_PARAMETER, "source path is NULL or not from this broker");
    }
    self->setNameSpace(from->nameSpace());
    return Status::OK();
  });
}

CMPIStatus opSetHostAndNameSpaceFromObjectPath(CMPIObjectPath* op, const CMPIObjectPath* src) {
  EncObjectPath* self = EncObjectPath::of(op);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] {
    const EncObjectPath* from = EncObjectPath::of(src);
    if (!from) {
      return Status(CMPI_RC_ERR_INVALID_PARAMETER, "source path is NULL or not from this broker");
    }
    self->setNameSpace(from->nameSpace());
    self->setHost(from->host());
    return Status::OK();
  });
}

CMPIData qualifiersNotSupported(const CMPIObjectPath* op, CMPIStatus* rc) {
  EncObjectPath* self = EncObjectPath::of(op);
  setStatus(rc, self ? self->core() : nullptr,
            Status(CMPI_RC_ERR_NOT_SUPPORTED, "this broker keeps no qualifiers"));
  return missingData();
}

CMPIData opGetClassQualifier(const CMPIObjectPath* op, const char*, CMPIStatus* rc) {
  return qualifiersNotSupported(op, rc);
}

CMPIData opGetPropertyQualifier(const CMPIObjectPath* op, const char*, const char*,
                                CMPIStatus* rc) {
  return qualifiersNotSupported(op, rc);
}

CMPIData opGetMethodQualifier(const CMPIObjectPath* op, const char*, const char*,
                              CMPIStatus* rc) {
  return qualifiersNotSupported(op, rc);
}

CMPIData opGetParameterQualifier(const CMPIObjectPath* op, const char*, const char*, const char*,
                                 CMPIStatus* rc) {
  return qualifiersNotSupported(op, rc);
}

CMPIString* opToString(const CMPIObjectPath* op, CMPIStatus* rc) {
  EncObjectPath* self = EncObjectPath::of(op, rc);
  if (!self) return nullptr;
  Core* core = self->core();
  return guard(core, rc, static_cast<CMPIString*>(nullptr), [&] {
    setOk(rc);
    return core->newString(self->toText());
  });
}

constexpr CMPIObjectPathFT makeTable(int ipVersion, bool ipQualifiers) {
  return CMPIObjectPathFT{ipVersion,
                          opRelease,
                          opClone,
                          opSetNameSpace,
                          opGetNameSpace,
                          opSetHostname,
                          opGetHostname,
                          opSetClassName,
                          opGetClassName,
                          opAddKey,
                          opGetKey,
                          opGetKeyAt,
                          opGetKeyCount,
                          opSetNameSpaceFromObjectPath,
                          opSetHostAndNameSpaceFromObjectPath,
                          ipQualifiers ? opGetClassQualifier : nullptr,
                          ipQualifiers ? opGetPropertyQualifier : nullptr,
                          ipQualifiers ? opGetMethodQualifier : nullptr,
                          ipQualifiers ? opGetParameterQualifier : nullptr,
                          opToString};
}

const CMPIObjectPathFT kTable200 = makeTable(CMPIVersion200, true);
const CMPIObjectPathFT kTable100 = makeTable(CMPIVersion100, false);

}  // namespace

EncObjectPath::EncObjectPath(Core* ipCore, std::string ipNameSpace, std::string ipClassName)
    : Encapsulated(ipCore), ivNameSpace(std::move(ipNameSpace)),
      ivClassName(std::move(ipClassName)) {}

std::unique_ptr<EncObjectPath> EncObjectPath::make(Core* ipCore, std::string ipNameSpace,
                                                   std::string ipClassName) {
  return std::unique_ptr<EncObjectPath>(
      new EncObjectPath(ipCore, std::move(ipNameSpace), std::move(ipClassName)));
}

Status EncObjectPath::addKey(const char* ipName, const CMPIValue* ipValue, CMPIType ipType) {
  if (!ipName || !*ipName) {
    return Status(CMPI_RC_ERR_INVALID_PARAMETER, "key name is NULL or empty");
  }
  Value value;
  Status status = Value::copyFrom(core(), ipValue, ipType, &value);
  if (!status.ok()) {
    return Status(status.rc(), std::string("key ") + ipName + ": " + status.message());
  }
  ivKeys.set(ipName, std::move(value));
  return Status::OK();
}

std::string EncObjectPath::toText() const {
  std::string text;
  if (!ivHost.empty()) text += "//" + ivHost + "/";
  if (!ivNameSpace.empty()) text += ivNameSpace + ":";
  text += ivClassName;
  for (size_t i = 0; i < ivKeys.size(); ++i) {
    text += i == 0 ? "." : ",";
    text += ivKeys.nameAt(i) + "=" + literalText(ivKeys.valueAt(i).data());
  }
  return text;
}

std::unique_ptr<EncObjectPath> EncObjectPath::copy(Core* ipCore) const {
  std::unique_ptr<EncObjectPath> out = make(ipCore, ivNameSpace, ivClassName);
  out->ivHost = ivHost;
  out->ivKeys = ivKeys.copy(ipCore);
  return out;
}

const CMPIObjectPathFT* EncObjectPath::table(const Core* ipCore) {
  return ipCore->mode() == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

bool EncObjectPath::isOwnTable(const CMPIObjectPathFT* ipFt) {
  return ipFt == &kTable200 || ipFt == &kTable100;
}

}  // namespace cimhost
