#include "tools/cimhost/broker/Core.h"

#include <cassert>
#include <cstdio>

#include "tools/cimhost/broker/BrokerTables.h"
#include "tools/cimhost/broker/Contexts.h"
#include "tools/cimhost/broker/Instances.h"
#include "tools/cimhost/broker/Strings.h"

namespace cimhost {

Core::Core(const ClassHierarchy* ipHierarchy, BrokerMode ipMode)
    : ivHierarchy(ipHierarchy), ivMode(ipMode) {
  ivBroker.hdl = this;
  ivBroker.bft = const_cast<CMPIBrokerFT*>(brokerFunctions(ipMode));
  ivBroker.eft = const_cast<CMPIBrokerEncFT*>(encFunctions(ipMode));
  ivBroker.xft = const_cast<CMPIBrokerExtFT*>(extFunctions(ipMode));
  ivBroker.mft = const_cast<CMPIBrokerMemFT*>(memFunctions(ipMode));

  ivDefaultContext = EncContext::make(this);
  CMPIValue flags;
  flags.uint32 = 0;
  const Status status = ivDefaultContext->addEntry(CMPIInvocationFlags, &flags, CMPI_uint32);
  assert(status.ok());
  (void)status;
}

Core::~Core() {
  ivRegistry.clear();
  clearIndications();
  ivDefaultContext.reset();
}

Core* Core::of(const CMPIBroker* ipBroker) {
  if (!ipBroker || !isOwnBrokerFunctions(ipBroker->bft)) return nullptr;
  return static_cast<Core*>(ipBroker->hdl);
}

CMPIString* Core::newString(const std::string& irText) {
  return adopt(EncString::make(this, irText));
}

Status Core::release(const EncObject& irObject) {
  if (ivRegistry.releaseObject(irObject)) return Status::OK();
  return Status(CMPI_RC_ERR_INVALID_HANDLE,
                "object is not the caller's to release (it is part of another object)");
}

void Core::addLogEntry(LogEntry ipEntry) {
  if (ivLogToStderr) {
    std::fprintf(stderr, "[cimhost %s %d %s] %s\n",
                 ipEntry.kind == LogEntry::Kind::Message ? "log" : "trace", ipEntry.level,
                 ipEntry.source.c_str(), ipEntry.text.c_str());
  }
  std::lock_guard<std::mutex> lock(ivLogMutex);
  ivLog.push_back(std::move(ipEntry));
}

std::vector<LogEntry> Core::logEntries() const {
  std::lock_guard<std::mutex> lock(ivLogMutex);
  return ivLog;
}

void Core::clearLog() {
  std::lock_guard<std::mutex> lock(ivLogMutex);
  ivLog.clear();
}

void Core::addIndication(std::string ipNameSpace, std::unique_ptr<EncInstance> ipInstance) {
  std::lock_guard<std::mutex> lock(ivIndicationMutex);
  ivIndications.emplace_back(std::move(ipNameSpace), std::move(ipInstance));
}

std::vector<DeliveredIndication> Core::indications() const {
  std::lock_guard<std::mutex> lock(ivIndicationMutex);
  std::vector<DeliveredIndication> out;
  for (const auto& delivered : ivIndications) {
    out.push_back(DeliveredIndication{delivered.first, delivered.second->cmpi()});
  }
  return out;
}

void Core::clearIndications() {
  std::vector<std::pair<std::string, std::unique_ptr<EncInstance>>> doomed;
  std::lock_guard<std::mutex> lock(ivIndicationMutex);
  doomed.swap(ivIndications);
}

void Core::attach() {
  std::lock_guard<std::mutex> lock(ivAttachMutex);
  ++ivAttached[std::this_thread::get_id()];
}

Status Core::detach() {
  std::lock_guard<std::mutex> lock(ivAttachMutex);
  auto it = ivAttached.find(std::this_thread::get_id());
  if (it == ivAttached.end()) {
    return Status(CMPI_RC_ERR_FAILED, "detachThread() from a thread that is not attached");
  }
  if (--it->second == 0) ivAttached.erase(it);
  return Status::OK();
}

int Core::attachedThreads() const {
  std::lock_guard<std::mutex> lock(ivAttachMutex);
  return static_cast<int>(ivAttached.size());
}

}  // namespace cimhost
