// What the loaded library costs while the switch is idle, and how soon it
// handles the first event after such a quiet time.
//
// The simulated switch runs in a child process (forked before anything
// else starts a thread), so that this process's CPU time is the library's
// alone. The library is loaded with dlopen into the in-process broker, as
// an object manager does; its start-up fills the cache. Then:
// - Idle: the CPU time (getrusage, user + system, all threads) this
//   process uses over QRX_BENCH_IDLE_SECONDS (default 10) of wall time in
//   which nothing is asked and nothing happens. Counter idle_cpu_percent,
//   of one core.
// - First event: after half a second of quiet, the switch takes a port
//   offline (or online again) and sends the event; the time until
//   getInstance of that port shows the new state (polled every 20 us) is
//   the delay. QRX_BENCH_EVENTS (default 5) events; counters
//   first_event_ms (their mean) and first_event_max_ms.
// The manual time is the idle period.
#include <benchmark/benchmark.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "cmpimacs.h"
#include "bench/LoadedLibrary.h"
#include "tools/cimhost/broker/ResultRecorder.h"
#include "tools/cimhost/broker/TestBroker.h"
#include "tools/switchsim/Simulator.h"

namespace {

const char* const kNameSpace = "root/qrx";
const char* const kPortClass = "QRX_SwitchFCPort";
// The port the events take down and up, online in the built-in switch.
const unsigned kPort = 5;
const cuint16 kOnline = 2;
const cuint32 kOperOnline = 1;

using Clock = std::chrono::steady_clock;

unsigned fromEnvironment(const char* ipName, unsigned ipDefault) {
  const char* value = std::getenv(ipName);
  return value != nullptr && *value != '\0' ? static_cast<unsigned>(std::strtoul(value, nullptr, 10))
                                            : ipDefault;
}

double cpuSeconds() {
  rusage usage;
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
         (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// The simulated switch in a child process, driven over a pipe: a byte 'e'
// toggles the port and sends the event, closing the pipe stops it. The
// child writes one byte back when its queues exist and after each event.
class ChildSwitch {
 public:
  bool start(std::string* opError) {
    int commands[2];
    int answers[2];
    if (pipe(commands) != 0 || pipe(answers) != 0) {
      *opError = "no pipe";
      return false;
    }
    ivChild = fork();
    if (ivChild < 0) {
      *opError = "cannot fork";
      return false;
    }
    if (ivChild == 0) {
      close(commands[1]);
      close(answers[0]);
      _exit(serve(commands[0], answers[1]));
    }
    close(commands[0]);
    close(answers[1]);
    ivCommands = commands[1];
    ivAnswers = answers[0];
    if (!answered()) {
      *opError = "the simulated switch did not start";
      return false;
    }
    return true;
  }

  // Toggles the port; true once the switch sent the event.
  bool sendEvent() {
    const char command = 'e';
    return write(ivCommands, &command, 1) == 1 && answered();
  }

  void stop() {
    if (ivChild <= 0) return;
    close(ivCommands);
    close(ivAnswers);
    int status = 0;
    waitpid(ivChild, &status, 0);
    ivChild = 0;
  }

  ~ChildSwitch() { stop(); }

 private:
  bool answered() {
    char answer = 0;
    return read(ivAnswers, &answer, 1) == 1 && answer == 'y';
  }

  static int serve(int ipCommands, int ipAnswers) {
    switchsim::Simulator sim(switchsim::FabricModel::builtIn());
    std::string error;
    const bool started = sim.start(&error);
    const char yes = 'y';
    const char no = 'n';
    if (!started) std::fprintf(stderr, "idle_bench: %s\n", error.c_str());
    if (write(ipAnswers, started ? &yes : &no, 1) != 1 || !started) return 1;
    bool online = true;
    char command = 0;
    while (read(ipCommands, &command, 1) == 1) {
      online = !online;
      switchsim::EventCommand event;
      const std::vector<std::string> words = {"port-state", std::to_string(kPort),
                                              online ? "online" : "offline"};
      const bool sent = switchsim::parseEventCommand(words, &event, &error) &&
                        sim.applyEvent(event, &error);
      if (write(ipAnswers, sent ? &yes : &no, 1) != 1) break;
    }
    sim.stop();
    return 0;
  }

  pid_t ivChild = 0;
  int ivCommands = -1;
  int ivAnswers = -1;
};

// The port's OperationalStatus as the library answers it, or 0.
cuint16 portStatus(cimhost::TestBroker& irBroker, CMPIInstanceMI* ipMi,
                   const CMPIObjectPath* ipPath) {
  cimhost::ResultRecorder result(irBroker);
  const CMPIStatus rc = ipMi->ft->getInstance(ipMi, irBroker.context(), result.result(), ipPath, nullptr);
  if (rc.rc != CMPI_RC_OK || result.instances().size() != 1) return 0;
  const CMPIData status = CMGetProperty(result.instances()[0], "OperationalStatus", nullptr);
  if (status.type != CMPI_uint16A || (status.state & CMPI_nullValue)) return 0;
  return CMGetArrayElementAt(status.value.array, 0, nullptr).value.uint16;
}

void BM_IdleLibraryAndFirstEvent(benchmark::State& state) {
  const unsigned idleSeconds = fromEnvironment("QRX_BENCH_IDLE_SECONDS", 10);
  const unsigned events = fromEnvironment("QRX_BENCH_EVENTS", 5);
  setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxidlebench" + std::to_string(getpid())).c_str(), 1);
  const std::string trace = "/tmp/qrx-idle-bench-" + std::to_string(getpid()) + ".log";
  setenv("QRX_SMIS_TRACE_FILE", trace.c_str(), 0);
  ChildSwitch daemon;
  std::string error;
  if (!daemon.start(&error)) {
    state.SkipWithError(error.c_str());
    return;
  }
  const switchsim::FabricModel model = switchsim::FabricModel::builtIn();
  bench::LoadedLibrary loaded;
  CMPIInstanceMI* mi = loaded.open(kPortClass, &error);
  if (mi == nullptr) {
    state.SkipWithError(error.c_str());
    return;
  }
  cimhost::TestBroker& broker = loaded.broker;
  CMPIObjectPath* path = broker.newObjectPath(kNameSpace, kPortClass);
  CMAddKey(path, "SystemCreationClassName", "QRX_Switch", CMPI_chars);
  CMAddKey(path, "SystemName", model.switchInfo.name.c_str(), CMPI_chars);
  CMAddKey(path, "CreationClassName", kPortClass, CMPI_chars);
  // Clients see the ports under names counted up from the first port's.
  char deviceId[17];
  std::snprintf(deviceId, sizeof deviceId, "%016" PRIx64,
                static_cast<std::uint64_t>(std::strtoull(model.ports.front().info.name.c_str(), nullptr, 16)) + kPort);
  CMAddKey(path, "DeviceID", deviceId, CMPI_chars);
  if (model.ports[kPort].info.operational_state != kOperOnline ||
      portStatus(broker, mi, path) != kOnline) {
    state.SkipWithError("the port is not online at the start");
    return;
  }

  for (auto _ : state) {
    // Idle: nothing asked, nothing happening.
    const double cpuStart = cpuSeconds();
    const auto start = Clock::now();
    std::this_thread::sleep_for(std::chrono::seconds(idleSeconds));
    const double wall = std::chrono::duration<double>(Clock::now() - start).count();
    const double cpu = cpuSeconds() - cpuStart;
    state.SetIterationTime(wall);
    state.counters["idle_cpu_percent"] = 100.0 * cpu / wall;

    // The first event after a quiet time.
    double sum = 0;
    double longest = 0;
    bool online = true;
    for (unsigned i = 0; i < events; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(500));
      online = !online;
      const auto sent = Clock::now();
      if (!daemon.sendEvent()) {
        state.SkipWithError("the switch did not send the event");
        break;
      }
      const auto deadline = sent + std::chrono::seconds(10);
      while ((portStatus(broker, mi, path) == kOnline) != online && Clock::now() < deadline) {
        std::this_thread::sleep_for(std::chrono::microseconds(20));
      }
      const double ms = std::chrono::duration<double, std::milli>(Clock::now() - sent).count();
      if (Clock::now() >= deadline) {
        state.SkipWithError("the library did not handle the event");
        break;
      }
      sum += ms;
      if (ms > longest) longest = ms;
    }
    if (events > 0) {
      state.counters["first_event_ms"] = sum / events;
      state.counters["first_event_max_ms"] = longest;
    }
  }
  loaded.library.cleanup();
  daemon.stop();
  std::remove(trace.c_str());
}
BENCHMARK(BM_IdleLibraryAndFirstEvent)->UseManualTime()->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace
