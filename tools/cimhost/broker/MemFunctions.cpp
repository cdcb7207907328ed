// CMPIBrokerMemFT (CMPI 2.0 only): marks, broker-tracked memory blocks,
// and explicit freeing of objects.
//
// Blocks from cmpiMalloc/Calloc/Realloc/StrDup are registered like
// objects: freed by cmpiFree(), by releasing a mark set before them, or at
// the broker's end. cmpiFree() and cmpiRealloc() of a pointer the broker
// did not hand out do nothing (cmpiRealloc() then returns NULL). The
// freeX() functions are release(); a select expression cannot exist, so
// freeSelectExp() does nothing.
#include <cstdint>
#include <cstring>

#include "tools/cimhost/broker/Args.h"
#include "tools/cimhost/broker/Arrays.h"
#include "tools/cimhost/broker/BrokerTables.h"
#include "tools/cimhost/broker/Core.h"
#include "tools/cimhost/broker/DateTimes.h"
#include "tools/cimhost/broker/Instances.h"
#include "tools/cimhost/broker/ObjectPaths.h"
#include "tools/cimhost/broker/Strings.h"

namespace cimhost {

namespace {

CMPIGcStat* memMark(const CMPIBroker* mb, CMPIStatus* rc) {
  Core* core = Core::of(mb);
  if (!core) {
    setStatus(rc, nullptr, Status(CMPI_RC_ERR_INVALID_HANDLE, ""));
    return nullptr;
  }
  return guard(core, rc, static_cast<CMPIGcStat*>(nullptr), [&] {
    setOk(rc);
    return const_cast<void*>(core->registry().mark());
  });
}

CMPIStatus memRelease(const CMPIBroker* mb, const CMPIGcStat* gc) {
  Core* core = Core::of(mb);
  if (!core) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(core, [&] {
    if (core->registry().releaseMark(gc)) return Status::OK();
    return Status(CMPI_RC_ERR_INVALID_PARAMETER, "not a live mark of this broker");
  });
}

void* memMalloc(const CMPIBroker* mb, size_t size) {
  Core* core = Core::of(mb);
  return core ? core->registry().allocate(size, false) : nullptr;
}

void* memCalloc(const CMPIBroker* mb, size_t nElems, size_t sizeElem) {
  Core* core = Core::of(mb);
  if (!core || (sizeElem != 0 && nElems > SIZE_MAX / sizeElem)) return nullptr;
  return core->registry().allocate(nElems * sizeElem, true);
}

void* memRealloc(const CMPIBroker* mb, void* ptr, size_t size) {
  Core* core = Core::of(mb);
  if (!core) return nullptr;
  if (!ptr) return core->registry().allocate(size, false);
  return core->registry().reallocate(ptr, size);
}

char* memStrDup(const CMPIBroker* mb, const char* str) {
  Core* core = Core::of(mb);
  if (!core || !str) return nullptr;
  const size_t size = std::strlen(str) + 1;
  char* copy = static_cast<char*>(core->registry().allocate(size, false));
  if (copy) std::memcpy(copy, str, size);
  return copy;
}

void memFree(const CMPIBroker* mb, void* ptr) {
  Core* core = Core::of(mb);
  if (core && ptr) core->registry().freeBlock(ptr);
}

// The freeX() functions: release an object of type T made by this broker.
template <class T, class C>
void freeObject(const CMPIBroker* mb, C* ipObject) {
  Core* core = Core::of(mb);
  const T* object = T::of(ipObject);
  if (core && object && object->core() == core) core->registry().releaseObject(*object);
}

void memFreeInstance(const CMPIBroker* mb, CMPIInstance* inst) {
  freeObject<EncInstance>(mb, inst);
}
void memFreeObjectPath(const CMPIBroker* mb, CMPIObjectPath* obj) {
  freeObject<EncObjectPath>(mb, obj);
}
void memFreeArgs(const CMPIBroker* mb, CMPIArgs* args) { freeObject<EncArgs>(mb, args); }
void memFreeString(const CMPIBroker* mb, CMPIString* str) { freeObject<EncString>(mb, str); }
void memFreeArray(const CMPIBroker* mb, CMPIArray* array) { freeObject<EncArray>(mb, array); }
void memFreeDateTime(const CMPIBroker* mb, CMPIDateTime* date) {
  freeObject<EncDateTime>(mb, date);
}
void memFreeSelectExp(const CMPIBroker*, CMPISelectExp*) {}

const CMPIBrokerMemFT kTable200 = {CMPIVersion200,    memMark,           memRelease,
                                   memMalloc,         memCalloc,         memRealloc,
                                   memStrDup,         memFree,           memFreeInstance,
                                   memFreeObjectPath, memFreeArgs,       memFreeString,
                                   memFreeArray,      memFreeDateTime,   memFreeSelectExp};

}  // namespace

const CMPIBrokerMemFT* memFunctions(BrokerMode ipMode) {
  return ipMode == BrokerMode::Cmpi100 ? nullptr : &kTable200;
}

}  // namespace cimhost
