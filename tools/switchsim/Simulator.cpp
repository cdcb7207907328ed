#include "tools/switchsim/Simulator.h"

#include <utility>

#include "generated/smis_ipc/smis_ipc_dispatch.h"
#include "tools/switchsim/EventQueue.h"

namespace switchsim {

namespace {

constexpr unsigned kEventSendTimeoutMs = 1000;

}  // namespace

Simulator::Simulator(FabricModel model) : ivModel(std::move(model)), ivSwitch(ivModel) {}

Simulator::~Simulator() { stop(); }

bool Simulator::start(std::string* error, const std::string& name) {
  {
    std::lock_guard<std::mutex> lock(ivModelLock);
    std::string reason;
    if (!ivModel.validate(&reason)) {
      *error = "the model is inconsistent: " + reason;
      return false;
    }
  }
  if (ivServer && ivServer->running()) {
    *error = "the simulator is already serving " + ivServer->requestQueueName();
    return false;
  }
  ivServer = std::make_unique<SimServer>(
      [this](SCIMDeserializerIf& irRequest, SCIMSerializerIf& irReply, std::string& orFunction,
             std::string& orNote) { return dispatch(irRequest, irReply, orFunction, orNote); },
      ivFaults, ivLog, ivOptions);
  return ivServer->start(name, error);
}

void Simulator::stop() {
  if (ivServer) ivServer->stop();
}

int Simulator::dispatch(SCIMDeserializerIf& irRequest, SCIMSerializerIf& irReply,
                        std::string& orFunction, std::string& orNote) {
  std::lock_guard<std::mutex> lock(ivModelLock);
  const int result = rs_api_dispatch(ivSwitch, irRequest, irReply, orFunction);
  orNote = ivSwitch.takeNote();
  return result;
}

void Simulator::addFault(const Fault& fault) { ivFaults.add(fault); }

void Simulator::clearFaults() { ivFaults.clear(); }

std::vector<Fault> Simulator::faults() const { return ivFaults.list(); }

bool Simulator::applyEvent(const EventCommand& command, std::string* error) {
  EventRecord event;
  {
    std::lock_guard<std::mutex> lock(ivModelLock);
    if (command.kind == EventKind::kZoneChange && !command.zoneOps.empty() &&
        ivSwitch.sessionOpen()) {
      *error = "a zoning session is open; zone operations from outside are refused";
      return false;
    }
    if (!applyEventCommand(command, ivModel, &event, error)) return false;
    event.reqId = ivNextEventId++;
  }
  std::string line = "event req_id=" + std::to_string(event.reqId) + " code=" +
                     std::to_string(event.code) + " port=" + std::to_string(event.port) +
                     " text=\"" + event.text + "\"";
  std::string reason;
  if (!postEvent(event, kEventSendTimeoutMs, &reason)) {
    *error = "the model changed, but no event was sent: " + reason;
    ivLog.add(line + " not sent: " + reason);
    return false;
  }
  ivLog.add(line);
  return true;
}

FabricModel Simulator::snapshot() const {
  std::lock_guard<std::mutex> lock(ivModelLock);
  return ivModel;
}

bool Simulator::sessionOpen() const {
  std::lock_guard<std::mutex> lock(ivModelLock);
  return ivSwitch.sessionOpen();
}

std::vector<std::string> Simulator::requestLog() const { return ivLog.lines(); }

void Simulator::setLogStream(FILE* stream) { ivLog.setStream(stream); }

void Simulator::setServerOptions(const ServerOptions& options) { ivOptions = options; }

std::string Simulator::requestQueueName() const {
  return ivServer ? ivServer->requestQueueName() : std::string();
}

std::string Simulator::replyQueueName() const {
  return ivServer ? ivServer->replyQueueName() : std::string();
}

}  // namespace switchsim
