// A storm of 10,000 port events over 48 ports through the real event
// queue, with a subscription to port modifications active: the time from
// the first event sent until the event thread has handed over the last
// indication, and a check that the last indication of every port shows the
// port's final state in the simulated switch. The storm ends with port 0
// turning faulty, a state it never sets otherwise; a port event is handled
// by reading the port's state then, so a port-0 event still queued behind
// may show it too. The storm is over once that state was seen and no
// indication came for kQuiet; its time ends at the last indication. Runs
// of events for one port are coalesced, so fewer indications than events
// may be made (counter "indications"); counter "events_per_second" is the
// storm's rate. The sink stands where the indication providers' delivery
// queues stand in the library.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "common/backend/BackendInd.h"
#include "common/mqueue/FramePipeMqTmpl.h"
#include "generated/scimclasses/CIM_InstModification.h"
#include "generated/scimclasses/QRX_SwitchFCPort.h"
#include "tools/switchsim/Simulator.h"

namespace {

const unsigned kPorts = 48;
const int kEvents = 10000;
// OperationalStatus of a port online, offline, faulty.
const cuint16 kOk = 2;
const cuint16 kStopped = 10;
const cuint16 kFaulty = 7;
// No indication for this long after the marker: the storm is over.
const std::chrono::milliseconds kQuiet(500);

// The last OperationalStatus delivered per port number, when the last
// indication came, and whether the final marker (a port turning faulty:
// status 7) came.
class LastStates : public IndicationSink {
 public:
  void deliverIndication(std::unique_ptr<SCIMSerdesable> ipIndication) override {
    const auto* modified = dynamic_cast<const CIM_InstModification*>(ipIndication.get());
    if (modified == nullptr) return;
    const auto* port = dynamic_cast<const QRX_SwitchFCPort*>(modified->SourceInstance.ivpEmbeddedObj);
    if (port == nullptr || port->OperationalStatus.empty()) return;
    std::lock_guard<std::mutex> lock(ivMutex);
    ivStates[port->PortNumber] = port->OperationalStatus[0];
    ++ivCount;
    ivLast = std::chrono::steady_clock::now();
    if (port->OperationalStatus[0] == kFaulty) ivMarked = true;
  }
  // A new storm. The states stay: a port whose events of this storm all
  // find it in the state it already had makes no indication.
  void reset() {
    std::lock_guard<std::mutex> lock(ivMutex);
    ivCount = 0;
    ivMarked = false;
  }
  bool marked() {
    std::lock_guard<std::mutex> lock(ivMutex);
    return ivMarked;
  }
  // The marker came and nothing since `ipQuiet`; *opLast is the time of
  // the last indication.
  bool over(std::chrono::milliseconds ipQuiet, std::chrono::steady_clock::time_point* opLast) {
    std::lock_guard<std::mutex> lock(ivMutex);
    *opLast = ivLast;
    return ivMarked && std::chrono::steady_clock::now() - ivLast >= ipQuiet;
  }
  std::map<cuint32, cuint16> states() {
    std::lock_guard<std::mutex> lock(ivMutex);
    return ivStates;
  }
  long count() {
    std::lock_guard<std::mutex> lock(ivMutex);
    return ivCount;
  }

 private:
  std::mutex ivMutex;
  std::map<cuint32, cuint16> ivStates;
  long ivCount = 0;
  std::chrono::steady_clock::time_point ivLast;
  bool ivMarked = false;
};

bool send(switchsim::Simulator& irSim, const std::vector<std::string>& irWords,
          std::string* opError) {
  switchsim::EventCommand command;
  return switchsim::parseEventCommand(irWords, &command, opError) &&
         irSim.applyEvent(command, opError);
}

void BM_StormOf10000PortEvents(benchmark::State& state) {
  setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxindbench" + std::to_string(getpid())).c_str(), 1);
  switchsim::Simulator sim(switchsim::FabricModel::builtIn(kPorts));
  std::string error;
  if (!sim.start(&error)) {
    state.SkipWithError(error.c_str());
    return;
  }
  fcbb::DaemonPipe pipe;
  if (!pipe.open("smis_ipc")) {
    state.SkipWithError("cannot open the simulated switch's queues");
    return;
  }
  FabricCache cache(pipe);
  BackendInd events(cache);
  LastStates sink;
  events.setIndicationSink(&sink);
  events.addQuery(IND_INSTMODIFICATION,
                  "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_FCPort");
  events.subscriptions().setInstModificationEnabled(true);
  if (!events.startThread() || !events.waitUntilFilled(30000)) {
    state.SkipWithError("the event thread did not fill the cache");
    return;
  }
  std::vector<std::string> portIndex;
  for (const switchsim::SwitchPort& port : sim.snapshot().ports) {
    portIndex.push_back(std::to_string(port.info.port_index));
  }
  for (auto _ : state) {
    sink.reset();
    const auto start = std::chrono::steady_clock::now();
    bool sent = true;
    for (int i = 0; i < kEvents && sent; ++i) {
      const unsigned port = static_cast<unsigned>(i * 7) % kPorts;
      sent = send(sim, {"port-state", portIndex[port], (i / kPorts) % 2 ? "online" : "offline"},
                  &error);
    }
    sent = sent && send(sim, {"port-state", portIndex[0], "faulty"}, &error);
    std::chrono::steady_clock::time_point last;
    while (sent && !sink.over(kQuiet, &last) &&
           std::chrono::steady_clock::now() - start < std::chrono::seconds(120)) {
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    const double seconds = std::chrono::duration<double>(last - start).count();
    state.SetIterationTime(seconds);
    state.counters["events_per_second"] = (kEvents + 1) / seconds;
    if (!sent || !sink.marked()) {
      state.SkipWithError(sent ? "the last indication did not come" : error.c_str());
      break;
    }
    // Every port's last indication shows its final state.
    const std::map<cuint32, cuint16> delivered = sink.states();
    for (const switchsim::SwitchPort& port : sim.snapshot().ports) {
      const cuint16 expected = port.info.operational_state == 1   ? kOk
                               : port.info.operational_state == 2 ? kStopped
                                                                  : kFaulty;
      const auto found = delivered.find(port.info.port_index);
      if (found == delivered.end() || found->second != expected) {
        const std::string got = found == delivered.end() ? "no indication" : std::to_string(found->second);
        state.SkipWithError(("port " + port.info.name + " ends in a wrong state: " + got +
                             ", the switch's is " + std::to_string(expected))
                                .c_str());
        break;
      }
    }
    state.counters["indications"] = static_cast<double>(sink.count());
  }
  events.terminateThread(false);
  pipe.close();
  sim.stop();
}
BENCHMARK(BM_StormOf10000PortEvents)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace
