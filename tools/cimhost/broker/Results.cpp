#include "tools/cimhost/broker/Results.h"

#include "tools/cimhost/broker/Core.h"

namespace cimhost {

namespace {

CMPIStatus resRelease(CMPIResult* rslt) {
  return EncResult::of(rslt) ? okStatus() : CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
}

CMPIResult* resClone(const CMPIResult* rslt, CMPIStatus* rc) {
  EncResult* self = EncResult::of(rslt);
  setStatus(rc, self ? self->core() : nullptr,
            Status(CMPI_RC_ERR_NOT_SUPPORTED, "a recording result cannot be cloned"));
  return nullptr;
}

CMPIStatus resReturnData(const CMPIResult* rslt, const CMPIValue* value, const CMPIType type) {
  EncResult* self = EncResult::of(rslt);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->returnData(value, type); });
}

CMPIStatus resReturnInstance(const CMPIResult* rslt, const CMPIInstance* inst) {
  EncResult* self = EncResult::of(rslt);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->returnInstance(inst); });
}

CMPIStatus resReturnObjectPath(const CMPIResult* rslt, const CMPIObjectPath* ref) {
  EncResult* self = EncResult::of(rslt);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->returnObjectPath(ref); });
}

CMPIStatus resReturnDone(const CMPIResult* rslt) {
  EncResult* self = EncResult::of(rslt);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->returnDone(); });
}

CMPIStatus resReturnError(const CMPIResult* rslt, const CMPIError* er) {
  EncResult* self = EncResult::of(rslt);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->returnError(er); });
}

constexpr CMPIResultFT makeTable(int ipVersion, bool ipWithError) {
  return CMPIResultFT{ipVersion,         resRelease,          resClone,
                      resReturnData,     resReturnInstance,   resReturnObjectPath,
                      resReturnDone,     ipWithError ? resReturnError : nullptr};
}

const CMPIResultFT kTable200 = makeTable(CMPIVersion200, true);
const CMPIResultFT kTable100 = makeTable(CMPIVersion100, false);

}  // namespace

std::unique_ptr<EncResult> EncResult::make(Core* ipCore) {
  return std::unique_ptr<EncResult>(new EncResult(ipCore));
}

bool EncResult::refuseAfterDone(Status* opStatus) {
  if (ivDone == 0) return false;
  ++ivAfterDone;
  *opStatus = Status(CMPI_RC_ERR_FAILED, "result already returned done");
  return true;
}

Status EncResult::returnData(const CMPIValue* ipValue, CMPIType ipType) {
  Value value;
  Status status = Value::copyFrom(core(), ipValue, ipType, &value);
  std::lock_guard<std::mutex> lock(ivMutex);
  if (refuseAfterDone(&status) || !status.ok()) return status;
  ivData.push_back(std::move(value));
  return Status::OK();
}

Status EncResult::returnInstance(const CMPIInstance* ipInstance) {
  const EncInstance* instance = EncInstance::of(ipInstance);
  Status status;
  std::unique_ptr<EncInstance> copy;
  if (instance) {
    copy = instance->copy(core());
  } else {
    status = Status(CMPI_RC_ERR_INVALID_PARAMETER, "instance is NULL or not from this broker");
  }
  std::lock_guard<std::mutex> lock(ivMutex);
  if (refuseAfterDone(&status) || !status.ok()) return status;
  ivInstances.push_back(std::move(copy));
  return Status::OK();
}

Status EncResult::returnObjectPath(const CMPIObjectPath* ipPath) {
  const EncObjectPath* path = EncObjectPath::of(ipPath);
  Status status;
  std::unique_ptr<EncObjectPath> copy;
  if (path) {
    copy = path->copy(core());
  } else {
    status = Status(CMPI_RC_ERR_INVALID_PARAMETER, "object path is NULL or not from this broker");
  }
  std::lock_guard<std::mutex> lock(ivMutex);
  if (refuseAfterDone(&status) || !status.ok()) return status;
  ivPaths.push_back(std::move(copy));
  return Status::OK();
}

Status EncResult::returnDone() {
  std::lock_guard<std::mutex> lock(ivMutex);
  Status status;
  if (refuseAfterDone(&status)) return status;
  ++ivDone;
  return Status::OK();
}

Status EncResult::returnError(const CMPIError* ipError) {
  const EncError* error = EncError::of(ipError);
  Status status;
  std::unique_ptr<EncError> copy;
  if (error) {
    copy = error->copy(core());
  } else {
    status = Status(CMPI_RC_ERR_INVALID_PARAMETER, "error is NULL or not from this broker");
  }
  std::lock_guard<std::mutex> lock(ivMutex);
  if (refuseAfterDone(&status) || !status.ok()) return status;
  ivErrors.push_back(std::move(copy));
  return Status::OK();
}

std::vector<const CMPIInstance*> EncResult::instances() const {
  std::lock_guard<std::mutex> lock(ivMutex);
  std::vector<const CMPIInstance*> out;
  for (const auto& instance : ivInstances) out.push_back(instance->cmpi());
  return out;
}

std::vector<const CMPIObjectPath*> EncResult::objectPaths() const {
  std::lock_guard<std::mutex> lock(ivMutex);
  std::vector<const CMPIObjectPath*> out;
  for (const auto& path : ivPaths) out.push_back(path->cmpi());
  return out;
}

std::vector<CMPIData> EncResult::data() const {
  std::lock_guard<std::mutex> lock(ivMutex);
  std::vector<CMPIData> out;
  for (const Value& value : ivData) out.push_back(value.data());
  return out;
}

std::vector<const CMPIError*> EncResult::errors() const {
  std::lock_guard<std::mutex> lock(ivMutex);
  std::vector<const CMPIError*> out;
  for (const auto& error : ivErrors) out.push_back(error->cmpi());
  return out;
}

int EncResult::doneCount() const {
  std::lock_guard<std::mutex> lock(ivMutex);
  return ivDone;
}

int EncResult::callsAfterDone() const {
  std::lock_guard<std::mutex> lock(ivMutex);
  return ivAfterDone;
}

void EncResult::clear() {
  std::vector<std::unique_ptr<EncInstance>> instances;
  std::vector<std::unique_ptr<EncObjectPath>> paths;
  std::vector<Value> data;
  std::vector<std::unique_ptr<EncError>> errors;
  std::lock_guard<std::mutex> lock(ivMutex);
  instances.swap(ivInstances);
  paths.swap(ivPaths);
  data.swap(ivData);
  errors.swap(ivErrors);
  ivDone = 0;
  ivAfterDone = 0;
}

const CMPIResultFT* EncResult::table(const Core* ipCore) {
  return ipCore->mode() == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

bool EncResult::isOwnTable(const CMPIResultFT* ipFt) {
  return ipFt == &kTable200 || ipFt == &kTable100;
}

}  // namespace cimhost
