#include "tools/cimhost/broker/Args.h"

#include "tools/cimhost/broker/Core.h"
#include "tools/cimhost/broker/ValueText.h"

namespace cimhost {

namespace {

CMPIStatus argsRelease(CMPIArgs* as) { return releaseFromC<EncArgs>(as); }

CMPIArgs* argsClone(const CMPIArgs* as, CMPIStatus* rc) { return cloneFromC<EncArgs>(as, rc); }

CMPIStatus argsAddArg(const CMPIArgs* as, const char* name, const CMPIValue* value,
                      const CMPIType type) {
  EncArgs* self = EncArgs::of(as);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->addArg(name, value, type); });
}

CMPIData argsGetArg(const CMPIArgs* as, const char* name, CMPIStatus* rc) {
  EncArgs* self = EncArgs::of(as, rc);
  if (!self) return missingData();
  Core* core = self->core();
  return guard(core, rc, missingData(), [&] {
    return namedValueData(core, self->args(), name, "argument", "", CMPI_RC_ERR_NOT_FOUND, rc);
  });
}

CMPIData argsGetArgAt(const CMPIArgs* as, CMPICount index, CMPIString** name, CMPIStatus* rc) {
  EncArgs* self = EncArgs::of(as, rc);
  if (!self) return missingData();
  Core* core = self->core();
  return guard(core, rc, missingData(), [&] {
    return indexedValueData(core, self->args(), index, name, "argument", rc);
  });
}

CMPICount argsGetArgCount(const CMPIArgs* as, CMPIStatus* rc) {
  EncArgs* self = EncArgs::of(as, rc);
  if (!self) return 0;
  setOk(rc);
  return static_cast<CMPICount>(self->args().size());
}

constexpr CMPIArgsFT makeTable(int ipVersion) {
  return CMPIArgsFT{ipVersion,  argsRelease,  argsClone,      argsAddArg,
                    argsGetArg, argsGetArgAt, argsGetArgCount};
}

const CMPIArgsFT kTable200 = makeTable(CMPIVersion200);
const CMPIArgsFT kTable100 = makeTable(CMPIVersion100);

}  // namespace

std::unique_ptr<EncArgs> EncArgs::make(Core* ipCore) {
  return std::unique_ptr<EncArgs>(new EncArgs(ipCore));
}

Status EncArgs::addArg(const char* ipName, const CMPIValue* ipValue, CMPIType ipType) {
  if (!ipName || !*ipName) {
    return Status(CMPI_RC_ERR_INVALID_PARAMETER, "argument name is NULL or empty");
  }
  Value value;
  Status status = Value::copyFrom(core(), ipValue, ipType, &value);
  if (!status.ok()) {
    return Status(status.rc(), std::string("argument ") + ipName + ": " + status.message());
  }
  ivArgs.set(ipName, std::move(value));
  return Status::OK();
}

std::string EncArgs::toText() const {
  std::string text = "(";
  for (size_t i = 0; i < ivArgs.size(); ++i) {
    if (i) text += ", ";
    text += ivArgs.nameAt(i) + "=" + literalText(ivArgs.valueAt(i).data());
  }
  return text + ")";
}

std::unique_ptr<EncArgs> EncArgs::copy(Core* ipCore) const {
  std::unique_ptr<EncArgs> out = make(ipCore);
  out->ivArgs = ivArgs.copy(ipCore);
  return out;
}

const CMPIArgsFT* EncArgs::table(const Core* ipCore) {
  return ipCore->mode() == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

bool EncArgs::isOwnTable(const CMPIArgsFT* ipFt) {
  return ipFt == &kTable200 || ipFt == &kTable100;
}

}  // namespace cimhost
