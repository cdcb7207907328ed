#include "tools/cimhost/broker/Instances.h"

#include <strings.h>

#include "tools/cimhost/broker/Core.h"
#include "tools/cimhost/broker/ValueText.h"

namespace cimhost {

namespace {

CMPIStatus instRelease(CMPIInstance* inst) { return releaseFromC<EncInstance>(inst); }

CMPIInstance* instClone(const CMPIInstance* inst, CMPIStatus* rc) {
  return cloneFromC<EncInstance>(inst, rc);
}

CMPIData instGetProperty(const CMPIInstance* inst, const char* name, CMPIStatus* rc) {
  EncInstance* self = EncInstance::of(inst, rc);
  if (!self) return missingData();
  Core* core = self->core();
  return guard(core, rc, missingData(), [&] {
    return namedValueData(core, self->properties(), name, "property",
                          " in " + self->path().className() + " instance",
                          CMPI_RC_ERR_NO_SUCH_PROPERTY, rc);
  });
}

CMPIData instGetPropertyAt(const CMPIInstance* inst, CMPICount index, CMPIString** name,
                           CMPIStatus* rc) {
  EncInstance* self = EncInstance::of(inst, rc);
  if (!self) return missingData();
  Core* core = self->core();
  return guard(core, rc, missingData(), [&] {
    return indexedValueData(core, self->properties(), index, name, "property", rc);
  });
}

CMPICount instGetPropertyCount(const CMPIInstance* inst, CMPIStatus* rc) {
  EncInstance* self = EncInstance::of(inst, rc);
  if (!self) return 0;
  setOk(rc);
  return static_cast<CMPICount>(self->properties().size());
}

CMPIStatus instSetProperty(const CMPIInstance* inst, const char* name, const CMPIValue* value,
                           CMPIType type) {
  EncInstance* self = EncInstance::of(inst);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->setProperty(name, value, type); });
}

CMPIObjectPath* instGetObjectPath(const CMPIInstance* inst, CMPIStatus* rc) {
  EncInstance* self = EncInstance::of(inst, rc);
  if (!self) return nullptr;
  Core* core = self->core();
  return guard(core, rc, static_cast<CMPIObjectPath*>(nullptr), [&] {
    CMPIObjectPath* path = core->adopt(self->objectPath(core));
    setOk(rc);
    return path;
  });
}

CMPIStatus instSetPropertyFilter(CMPIInstance* inst, const char** propertyList,
                                 const char** keys) {
  EncInstance* self = EncInstance::of(inst);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->setPropertyFilter(propertyList, keys); });
}

CMPIStatus instSetObjectPath(CMPIInstance* inst, const CMPIObjectPath* op) {
  EncInstance* self = EncInstance::of(inst);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] {
    const EncObjectPath* path = EncObjectPath::of(op);
    if (!path) return Status(CMPI_RC_ERR_INVALID_PARAMETER, "path is NULL or not from this broker");
    if (path->className().empty()) {
      return Status(CMPI_RC_ERR_INVALID_PARAMETER, "path has no class");
    }
    self->setObjectPath(*path);
    return Status::OK();
  });
}

CMPIStatus instSetPropertyWithOrigin(const CMPIInstance* inst, const char* name,
                                     const CMPIValue* value, CMPIType type, const char*) {
  return instSetProperty(inst, name, value, type);
}

constexpr CMPIInstanceFT makeTable(int ipVersion, bool ipWithOrigin) {
  return CMPIInstanceFT{ipVersion,
                        instRelease,
                        instClone,
                        instGetProperty,
                        instGetPropertyAt,
                        instGetPropertyCount,
                        instSetProperty,
                        instGetObjectPath,
                        instSetPropertyFilter,
                        instSetObjectPath,
                        ipWithOrigin ? instSetPropertyWithOrigin : nullptr};
}

const CMPIInstanceFT kTable200 = makeTable(CMPIVersion200, true);
const CMPIInstanceFT kTable100 = makeTable(CMPIVersion100, false);

}  // namespace

EncInstance::EncInstance(Core* ipCore, std::unique_ptr<EncObjectPath> ipPath)
    : Encapsulated(ipCore), ivPath(std::move(ipPath)) {}

std::unique_ptr<EncInstance> EncInstance::make(Core* ipCore, const EncObjectPath& irPath) {
  return std::unique_ptr<EncInstance>(new EncInstance(ipCore, irPath.copy(ipCore)));
}

bool EncInstance::admits(const std::string& irName) const {
  if (!ivFiltered) return true;
  for (const std::string& name : ivAdmitted) {
    if (strcasecmp(name.c_str(), irName.c_str()) == 0) return true;
  }
  return false;
}

Status EncInstance::setProperty(const char* ipName, const CMPIValue* ipValue, CMPIType ipType) {
  if (!ipName || !*ipName) {
    return Status(CMPI_RC_ERR_INVALID_PARAMETER, "property name is NULL or empty");
  }
  Value value;
  Status status = Value::copyFrom(core(), ipValue, ipType, &value);
  if (!status.ok()) {
    return Status(status.rc(), std::string("property ") + ipName + ": " + status.message());
  }
  if (admits(ipName)) ivProperties.set(ipName, std::move(value));
  return Status::OK();
}

Status EncInstance::setPropertyFilter(const char** ipProperties, const char** ipKeys) {
  if (!ipProperties) {
    ivFiltered = false;
    ivAdmitted.clear();
    return Status::OK();
  }
  std::vector<std::string> admitted;
  for (const char** name = ipProperties; *name; ++name) admitted.push_back(*name);
  if (ipKeys) {
    for (const char** name = ipKeys; *name; ++name) admitted.push_back(*name);
  }
  if (const ClassHierarchy* classes = core()->hierarchy()) {
    for (const KeyProperty& key : classes->keysOf(ivPath->className())) {
      admitted.push_back(key.name);
    }
  }
  ivAdmitted.swap(admitted);
  ivFiltered = true;
  for (size_t i = ivProperties.size(); i-- > 0;) {
    const std::string name = ivProperties.nameAt(i);
    if (!admits(name)) ivProperties.remove(name);
  }
  return Status::OK();
}

std::unique_ptr<EncObjectPath> EncInstance::objectPath(Core* ipCore) const {
  const ClassHierarchy* classes = ipCore->hierarchy();
  if (!classes || !classes->isKnown(ivPath->className())) return ivPath->copy(ipCore);

  std::unique_ptr<EncObjectPath> out =
      EncObjectPath::make(ipCore, ivPath->nameSpace(), ivPath->className());
  out->setHost(ivPath->host());
  for (const KeyProperty& key : classes->keysOf(ivPath->className())) {
    const Value* value = ivProperties.find(key.name);
    if (!value || value->isNull()) value = ivPath->keys().find(key.name);
    if (value) out->setKey(key.name, value->copy(ipCore));
  }
  return out;
}

std::string EncInstance::toText(int ipIndent) const {
  const std::string pad(static_cast<size_t>(ipIndent), ' ');
  std::string text = "instance of " + ivPath->className() + "\n" + pad + "{\n";
  for (size_t i = 0; i < ivProperties.size(); ++i) {
    text += pad + "    " + ivProperties.nameAt(i) + " = " +
            literalText(ivProperties.valueAt(i).data(), ipIndent + 4) + ";\n";
  }
  return text + pad + "}" + (ipIndent == 0 ? ";" : "");
}

std::unique_ptr<EncInstance> EncInstance::copy(Core* ipCore) const {
  std::unique_ptr<EncInstance> out(new EncInstance(ipCore, ivPath->copy(ipCore)));
  out->ivProperties = ivProperties.copy(ipCore);
  out->ivFiltered = ivFiltered;
  out->ivAdmitted = ivAdmitted;
  return out;
}

const CMPIInstanceFT* EncInstance::table(const Core* ipCore) {
  return ipCore->mode() == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

bool EncInstance::isOwnTable(const CMPIInstanceFT* ipFt) {
  return ipFt == &kTable200 || ipFt == &kTable100;
}

}  // namespace cimhost
