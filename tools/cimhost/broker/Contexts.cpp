#include "tools/cimhost/broker/Contexts.h"

#include "tools/cimhost/broker/Core.h"

namespace cimhost {

namespace {

CMPIStatus ctxRelease(CMPIContext* ctx) { return releaseFromC<EncContext>(ctx); }

CMPIContext* ctxClone(const CMPIContext* ctx, CMPIStatus* rc) {
  return cloneFromC<EncContext>(ctx, rc);
}

CMPIData ctxGetEntry(const CMPIContext* ctx, const char* name, CMPIStatus* rc) {
  EncContext* self = EncContext::of(ctx, rc);
  if (!self) return missingData();
  Core* core = self->core();
  return guard(core, rc, missingData(), [&] {
    CMPIData data;
    if (!name) {
      setStatus(rc, core, Status(CMPI_RC_ERR_INVALID_PARAMETER, "entry name is NULL"));
      return missingData();
    }
    if (!self->entry(name, &data)) {
      setStatus(rc, core,
                Status(CMPI_RC_ERR_NO_SUCH_PROPERTY, std::string("no context entry ") + name));
      return missingData();
    }
    setOk(rc);
    return data;
  });
}

CMPIData ctxGetEntryAt(const CMPIContext* ctx, CMPICount index, CMPIString** name,
                       CMPIStatus* rc) {
  EncContext* self = EncContext::of(ctx, rc);
  if (!self) return missingData();
  Core* core = self->core();
  return guard(core, rc, missingData(), [&] {
    std::string entryName;
    CMPIData data;
    if (!self->entryAt(index, &entryName, &data)) {
      setStatus(rc, core,
                Status(CMPI_RC_ERR_NO_SUCH_PROPERTY,
                       "context entry index " + std::to_string(index) + " out of range"));
      return missingData();
    }
    if (name) *name = core->newString(entryName);
    setOk(rc);
    return data;
  });
}

CMPICount ctxGetEntryCount(const CMPIContext* ctx, CMPIStatus* rc) {
  EncContext* self = EncContext::of(ctx, rc);
  if (!self) return 0;
  setOk(rc);
  return static_cast<CMPICount>(self->size());
}

CMPIStatus ctxAddEntry(const CMPIContext* ctx, const char* name, const CMPIValue* value,
                       const CMPIType type) {
  EncContext* self = EncContext::of(ctx);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->addEntry(name, value, type); });
}

constexpr CMPIContextFT makeTable(int ipVersion) {
  return CMPIContextFT{ipVersion,     ctxRelease,       ctxClone,   ctxGetEntry,
                       ctxGetEntryAt, ctxGetEntryCount, ctxAddEntry};
}

const CMPIContextFT kTable200 = makeTable(CMPIVersion200);
const CMPIContextFT kTable100 = makeTable(CMPIVersion100);

}  // namespace

std::unique_ptr<EncContext> EncContext::make(Core* ipCore) {
  return std::unique_ptr<EncContext>(new EncContext(ipCore));
}

Status EncContext::addEntry(const char* ipName, const CMPIValue* ipValue, CMPIType ipType) {
  if (!ipName || !*ipName) {
    return Status(CMPI_RC_ERR_INVALID_PARAMETER, "entry name is NULL or empty");
  }
  Value value;
  Status status = Value::copyFrom(core(), ipValue, ipType, &value);
  if (!status.ok()) {
    return Status(status.rc(), std::string("context entry ") + ipName + ": " + status.message());
  }
  std::lock_guard<std::mutex> lock(ivMutex);
  ivEntries.set(ipName, std::move(value));
  return Status::OK();
}

bool EncContext::entry(const std::string& irName, CMPIData* opData) const {
  std::lock_guard<std::mutex> lock(ivMutex);
  const Value* value = ivEntries.find(irName);
  if (!value) return false;
  *opData = value->data();
  return true;
}

bool EncContext::entryAt(size_t ipIndex, std::string* opName, CMPIData* opData) const {
  std::lock_guard<std::mutex> lock(ivMutex);
  if (ipIndex >= ivEntries.size()) return false;
  *opName = ivEntries.nameAt(ipIndex);
  *opData = ivEntries.valueAt(ipIndex).data();
  return true;
}

size_t EncContext::size() const {
  std::lock_guard<std::mutex> lock(ivMutex);
  return ivEntries.size();
}

std::unique_ptr<EncContext> EncContext::copy(Core* ipCore) const {
  std::unique_ptr<EncContext> out = make(ipCore);
  std::lock_guard<std::mutex> lock(ivMutex);
  out->ivEntries = ivEntries.copy(ipCore);
  return out;
}

const CMPIContextFT* EncContext::table(const Core* ipCore) {
  return ipCore->mode() == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

bool EncContext::isOwnTable(const CMPIContextFT* ipFt) {
  return ipFt == &kTable200 || ipFt == &kTable100;
}

}  // namespace cimhost
