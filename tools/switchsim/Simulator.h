// The simulated switch daemon in one object: a FabricModel answered by a
// SimulatedSwitch over the daemon's request and reply queues (SimServer),
// with faults, events and a log. The library's tests run it in-process;
// qrx-switchsim runs it as a program.
//
//   switchsim::Simulator sim(switchsim::FabricModel::builtIn());
//   std::string error;
//   if (!sim.start(&error)) ...;           // queues exist from here on
//   sim.addFault({"rs_api_get_switch_info", 0x8101});
//   switchsim::EventCommand event;
//   std::vector<std::string> words = {"port-state", "5", "offline"};
//   switchsim::parseEventCommand(words, &event, &error);
//   sim.applyEvent(event, &error);          // model changed, event sent
//
// Statuses: Status.h. Protocol details: SimServer.h. Answers and zoning
// sessions: SimulatedSwitch.h. Events: EventCommand.h, EventRecord.h.
//
// Thread-safety: every member may be called from any thread; requests are
// served one at a time on the serving thread under the model lock, which
// snapshot() and applyEvent() take too. start() and stop() must not race
// with each other.
#ifndef QRX_TOOLS_SWITCHSIM_SIMULATOR_H_
#define QRX_TOOLS_SWITCHSIM_SIMULATOR_H_

#include <cstdint>
#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tools/switchsim/EventCommand.h"
#include "tools/switchsim/FabricModel.h"
#include "tools/switchsim/Faults.h"
#include "tools/switchsim/RequestLog.h"
#include "tools/switchsim/SimServer.h"
#include "tools/switchsim/SimulatedSwitch.h"

namespace switchsim {

class Simulator {
 public:
  explicit Simulator(FabricModel model);
  ~Simulator();  // stop()
  Simulator(const Simulator&) = delete;
  Simulator& operator=(const Simulator&) = delete;

  // Checks the model, creates queuePrefix()+name+"_stoc" (requests in) and
  // "_ctos" (replies out) and serves on a background thread. False, with
  // the reason, if the model is inconsistent, it is already serving, or a
  // queue cannot be created (one of that name exists already, unless
  // ServerOptions::replaceQueues).
  bool start(std::string* error, const std::string& name = "smis_ipc");
  // Joins the thread, closes AND unlinks both queues. The model, faults
  // and log stay; start() may serve again.
  void stop();

  void addFault(const Fault& fault);
  void clearFaults();
  std::vector<Fault> faults() const;

  // Applies a change to the model and sends the matching event message to
  // queuePrefix()+"smis_ipc_ev", which the library creates. Invalid
  // commands (see applyEventCommand) change nothing; zone operations are
  // refused while a zoning session is open. If the change is applied but
  // the event cannot be sent (no event queue: no library listening; or it
  // stayed full for a second) the change STAYS applied, as on a switch
  // whose listener is away, and the result is false with the reason. The
  // message's req_id numbers the events made, from 0 (one that could not
  // be sent used its number). Works whether or not the simulator is
  // serving.
  bool applyEvent(const EventCommand& command, std::string* error);

  // A copy of the model as it is now (the committed zoning; a session's
  // staged changes are not in it).
  FabricModel snapshot() const;
  bool sessionOpen() const;

  // The newest lines of the log (see SimServer.h), events included.
  std::vector<std::string> requestLog() const;
  // Also writes every log line to `stream` (flushed); null stops that.
  void setLogStream(FILE* stream);

  // Options for the next start().
  void setServerOptions(const ServerOptions& options);
  // The queue names while serving (empty before the first start()).
  std::string requestQueueName() const;
  std::string replyQueueName() const;

 private:
  int dispatch(SCIMDeserializerIf& irRequest, SCIMSerializerIf& irReply, std::string& orFunction,
               std::string& orNote);

  mutable std::mutex ivModelLock;  // guards ivModel, ivSwitch, ivNextEventId
  FabricModel ivModel;
  SimulatedSwitch ivSwitch;
  std::int32_t ivNextEventId = 0;
  FaultTable ivFaults;
  RequestLog ivLog;
  ServerOptions ivOptions;
  std::unique_ptr<SimServer> ivServer;
};

}  // namespace switchsim

#endif  // QRX_TOOLS_SWITCHSIM_SIMULATOR_H_
