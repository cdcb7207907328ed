#include "tools/cimhost/broker/TestBroker.h"

#include "tools/cimhost/broker/Arrays.h"
#include "tools/cimhost/broker/Contexts.h"
#include "tools/cimhost/broker/Core.h"
#include "tools/cimhost/broker/Enumerations.h"

namespace cimhost {

TestBroker::TestBroker(const ClassHierarchy* ipHierarchy, BrokerMode ipMode)
    : ivCore(new Core(ipHierarchy, ipMode)) {}

TestBroker::~TestBroker() = default;

const CMPIBroker* TestBroker::broker() const { return ivCore->broker(); }

BrokerMode TestBroker::mode() const { return ivCore->mode(); }

const ClassHierarchy* TestBroker::hierarchy() const { return ivCore->hierarchy(); }

const CMPIContext* TestBroker::context() const { return ivCore->defaultContext().cmpi(); }

CMPIContext* TestBroker::newContext(const char* ipNameSpace, CMPIFlags ipFlags) {
  Core* core = ivCore.get();
  std::unique_ptr<EncContext> context = EncContext::make(core);
  CMPIValue value;
  value.uint32 = ipFlags;
  Status status = context->addEntry(CMPIInvocationFlags, &value, CMPI_uint32);
  if (status.ok()) {
    status = context->addEntry(CMPIInitNameSpace, reinterpret_cast<const CMPIValue*>(ipNameSpace),
                               CMPI_chars);
  }
  return status.ok() ? core->adopt(std::move(context)) : nullptr;
}

CMPIObjectPath* TestBroker::newObjectPath(const char* ipNameSpace, const char* ipClass,
                                          CMPIStatus* opRc) {
  return broker()->eft->newObjectPath(broker(), ipNameSpace, ipClass, opRc);
}

CMPIInstance* TestBroker::newInstance(const CMPIObjectPath* ipPath, CMPIStatus* opRc) {
  return broker()->eft->newInstance(broker(), ipPath, opRc);
}

CMPIArgs* TestBroker::newArgs(CMPIStatus* opRc) { return broker()->eft->newArgs(broker(), opRc); }

CMPIString* TestBroker::newString(const char* ipText, CMPIStatus* opRc) {
  return broker()->eft->newString(broker(), ipText, opRc);
}

CMPIEnumeration* TestBroker::newEnumeration(const CMPIArray* ipItems, CMPIStatus* opRc) {
  Core* core = ivCore.get();
  const EncArray* items = EncArray::of(ipItems);
  if (!items) {
    setStatus(opRc, core,
              Status(CMPI_RC_ERR_INVALID_PARAMETER, "array is NULL or not from this broker"));
    return nullptr;
  }
  setOk(opRc);
  return core->adopt(EncEnumeration::make(core, *items));
}

void TestBroker::setUpcallHandler(UpcallHandler* ipHandler) { ivCore->setUpcallHandler(ipHandler); }

size_t TestBroker::liveObjects() const { return ivCore->registry().objectCount(); }

size_t TestBroker::liveAllocations() const { return ivCore->registry().blockCount(); }

std::vector<LogEntry> TestBroker::logEntries() const { return ivCore->logEntries(); }

void TestBroker::clearLog() { ivCore->clearLog(); }

void TestBroker::setLogToStderr(bool ipOn) { ivCore->setLogToStderr(ipOn); }

std::vector<DeliveredIndication> TestBroker::indications() const { return ivCore->indications(); }

void TestBroker::clearIndications() { ivCore->clearIndications(); }

int TestBroker::attachedThreads() const { return ivCore->attachedThreads(); }

}  // namespace cimhost
