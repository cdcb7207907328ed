// qrx-stress: loads the provider library the way an object manager does and
// drives it from many threads at once against the simulated switch, while
// the switch sends port events; every answer is checked against the
// switch's model. See README.md in this directory.
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <set>
#include <shared_mutex>
#include <string>
#include <thread>
#include <vector>

#include "cmpimacs.h"
#include "tools/cimhost/Operations.h"
#include "tools/cimhost/ProviderLibrary.h"
#include "tools/cimhost/broker/ClassHierarchy.h"
#include "tools/cimhost/broker/TestBroker.h"
#include "tools/switchsim/Simulator.h"

namespace {

using cimhost::Outcome;

struct Options {
  std::string library = QRX_STRESS_DEFAULT_LIBRARY;
  unsigned ports = 2500;
  unsigned threads = 16;
  unsigned requests = 2000;  // per thread
  unsigned eventIntervalMs = 5;
  unsigned waitCpuMs = 0;  // measure a request waiting this long on a silent daemon
};

const char kUsage[] =
    "usage: qrx-stress [--library PATH] [--ports 100..2500] [--threads N] [--requests N]\n"
    "                  [--event-interval-ms N] [--wait-cpu-ms N]\n";

bool parse(int argc, char** argv, Options* opOptions) {
  for (int i = 1; i < argc; ++i) {
    const std::string flag = argv[i];
    if (i + 1 >= argc) return false;
    const char* value = argv[++i];
    char* end = nullptr;
    const unsigned long number = std::strtoul(value, &end, 10);
    const bool numeric = *value != '\0' && *end == '\0';
    if (flag == "--library") {
      opOptions->library = value;
    } else if (numeric && flag == "--ports" && number >= 100 && number <= 2500) {
      opOptions->ports = static_cast<unsigned>(number);
    } else if (numeric && flag == "--threads" && number >= 1 && number <= 256) {
      opOptions->threads = static_cast<unsigned>(number);
    } else if (numeric && flag == "--requests" && number >= 1) {
      opOptions->requests = static_cast<unsigned>(number);
    } else if (numeric && flag == "--event-interval-ms" && number >= 1) {
      opOptions->eventIntervalMs = static_cast<unsigned>(number);
    } else if (numeric && flag == "--wait-cpu-ms") {
      opOptions->waitCpuMs = static_cast<unsigned>(number);
    } else {
      return false;
    }
  }
  return true;
}

// OperationalStatus of a port in the switch's operational_state.
cuint16 operationalStatus(cuint32 ipState) {
  static const cuint16 kTable[] = {0, 2, 10, 11, 7, 11};
  return ipState < 6 ? kTable[ipState] : 1;
}

std::string text(const CMPIData& irData) {
  if (irData.type != CMPI_string || irData.value.string == nullptr) return "";
  const char* chars = CMGetCharsPtr(irData.value.string, nullptr);
  return chars != nullptr ? chars : "";
}

// What the answers must be, from the model the simulator starts with.
struct Expected {
  std::string switchName;
  std::string fabricName;
  std::vector<std::string> portNames;  // as clients see them, in port order
  std::vector<cuint16> portStatus;     // OperationalStatus, in port order
  std::set<std::string> portNameSet;
  std::size_t nodes = 0;
  std::size_t endpoints = 0;  // one per switch port and one per node port
};

// Ports that the event thread takes down and up: their state may be either.
// None of them has nodes behind it, so the node counts stay.
constexpr std::size_t kFirstFlapping = 30;
bool flaps(std::size_t ipPort) { return ipPort % 50 == kFirstFlapping; }

Expected expectedFrom(const switchsim::FabricModel& irModel) {
  Expected e;
  e.switchName = irModel.switchInfo.name;
  e.fabricName = irModel.fabric.name;
  // Clients see the ports under names counted up from the first port's.
  const std::uint64_t start = std::strtoull(irModel.ports.front().info.name.c_str(), nullptr, 16);
  for (std::size_t i = 0; i < irModel.ports.size(); ++i) {
    char name[17];
    std::snprintf(name, sizeof name, "%016" PRIx64, start + i);
    e.portNames.push_back(name);
    e.portStatus.push_back(operationalStatus(irModel.ports[i].info.operational_state));
  }
  e.portNameSet.insert(e.portNames.begin(), e.portNames.end());
  switchsim::FabricModel copy = irModel;
  switchsim::SimulatedSwitch daemon(copy);
  string_tA nodes, nodePorts;
  daemon.get_node_names(nodes);
  daemon.get_node_fc_port_names(nodePorts);
  e.nodes = nodes.size();
  e.endpoints = irModel.ports.size() + nodePorts.size();
  return e;
}

class Stress {
 public:
  Stress(cimhost::TestBroker& irBroker, cimhost::ProviderLibrary& irLibrary, const Expected& irExpected)
      : ivBroker(irBroker), ivSession{irBroker, irLibrary, nullptr}, ivExpected(irExpected) {}

  static constexpr unsigned kKinds = 8;
  static const char* kindName(unsigned ipKind) {
    static const char* const kNames[kKinds] = {
        "gi QRX_Switch", "gi QRX_Switch", "gi QRX_SwitchFCPort", "ein QRX_SwitchFCPort",
        "ein QRX_SwitchFCPortStats", "ein QRX_SANProtocolEndpoint", "ei QRX_Node", "ei QRX_Fabric"};
    return kNames[ipKind % kKinds];
  }

  // One request of kind `ipKind`; false (with a line on stderr) when the
  // answer is wrong or failed.
  bool request(unsigned ipKind, unsigned ipSeed) {
    const auto start = std::chrono::steady_clock::now();
    const bool right = answer(ipKind % kKinds, ipSeed);
    const auto ns = std::chrono::duration_cast<std::chrono::nanoseconds>(
        std::chrono::steady_clock::now() - start).count();
    ivKindNs[ipKind % kKinds] += static_cast<std::uint64_t>(ns);
    ivKindCount[ipKind % kKinds] += 1;
    return right;
  }

  // Mean milliseconds per request of each kind.
  void printKinds() const {
    for (unsigned kind = 1; kind < kKinds; ++kind) {  // 0 and 1 are the same kind
      const std::uint64_t count = ivKindCount[kind] + (kind == 1 ? ivKindCount[0].load() : 0);
      const std::uint64_t ns = ivKindNs[kind] + (kind == 1 ? ivKindNs[0].load() : 0);
      if (count != 0) std::printf("  %-28s %6" PRIu64 " requests, %8.2f ms each\n", kindName(kind), count, ns / 1e6 / count);
    }
  }

 private:
  // Held while a request runs; endOfRequests() waits for none to run.
  // Requests pass the turnstile first, so that the reaper is not starved
  // by readers that never all leave at once.
  std::shared_lock<std::shared_mutex> enterRequest() {
    std::lock_guard<std::mutex> pass(ivTurnstile);
    return std::shared_lock<std::shared_mutex>(ivRequestLock);
  }

  bool answer(unsigned ipKind, unsigned ipSeed) {
    const std::shared_lock<std::shared_mutex> inRequest = enterRequest();
    const std::size_t port = ipSeed % ivExpected.portNames.size();
    switch (ipKind) {
      case 0:
      case 1: {  // the switch, fresh from the daemon
        CMPIObjectPath* path = newPath("QRX_Switch");
        addKey(path, "CreationClassName", "QRX_Switch");
        addKey(path, "Name", ivExpected.switchName);
        Outcome got = cimhost::getInstance(ivSession, path, ivNoProperties);
        return check(got, 1, "gi QRX_Switch") &&
               same(text(CMGetProperty(got.instances[0], "Name", nullptr)), ivExpected.switchName,
                    "switch name");
      }
      case 2: {  // one port, from the cache
        Outcome got = cimhost::getInstance(ivSession, portPath(port), ivNoProperties);
        if (!check(got, 1, "gi QRX_SwitchFCPort")) return false;
        const CMPIData status = CMGetProperty(got.instances[0], "OperationalStatus", nullptr);
        const cuint16 value = CMGetArrayElementAt(status.value.array, 0, nullptr).value.uint16;
        if (flaps(port) ? (value == 2 || value == 10) : value == ivExpected.portStatus[port]) return true;
        return fail("port " + ivExpected.portNames[port] + " OperationalStatus " + std::to_string(value));
      }
      case 3: {  // every port's name
        Outcome got = cimhost::enumerateInstanceNames(ivSession, newPath("QRX_SwitchFCPort"));
        if (!check(got, ivExpected.portNames.size(), "ein QRX_SwitchFCPort")) return false;
        for (const CMPIObjectPath* path : got.paths) {
          const std::string id = text(CMGetKey(path, "DeviceID", nullptr));
          if (ivExpected.portNameSet.count(id) == 0) return fail("unknown port " + id);
        }
        return true;
      }
      case 4: {  // the port statistics: the longest reply
        Outcome got = cimhost::enumerateInstanceNames(ivSession, newPath("QRX_SwitchFCPortStats"));
        return check(got, ivExpected.portNames.size(), "ein QRX_SwitchFCPortStats");
      }
      case 5: {
        Outcome got = cimhost::enumerateInstanceNames(ivSession, newPath("QRX_SANProtocolEndpoint"));
        return check(got, ivExpected.endpoints, "ein QRX_SANProtocolEndpoint");
      }
      case 6: {
        Outcome got = cimhost::enumerateInstances(ivSession, newPath("QRX_Node"), ivNoProperties);
        return check(got, ivExpected.nodes, "ei QRX_Node");
      }
      default: {
        Outcome got = cimhost::enumerateInstances(ivSession, newPath("QRX_Fabric"), ivNoProperties);
        return check(got, 1, "ei QRX_Fabric") &&
               same(text(CMGetProperty(got.instances[0], "Name", nullptr)), ivExpected.fabricName,
                    "fabric name");
      }
    }
  }

 public:
  // The OperationalStatus the library gives for `ipPort` now, or -1.
  int portStatus(std::size_t ipPort) {
    const std::shared_lock<std::shared_mutex> inRequest = enterRequest();
    Outcome got = cimhost::getInstance(ivSession, portPath(ipPort), ivNoProperties);
    if (got.failure != Outcome::Failure::None || got.instances.size() != 1) return -1;
    const CMPIData status = CMGetProperty(got.instances[0], "OperationalStatus", nullptr);
    return CMGetArrayElementAt(status.value.array, 0, nullptr).value.uint16;
  }

  // Frees what the provider made through the broker since the last call,
  // as an object manager does at the end of its requests; waits until no
  // request is running.
  void endOfRequests() {
    std::lock_guard<std::mutex> closed(ivTurnstile);
    std::unique_lock<std::shared_mutex> alone(ivRequestLock);
    const CMPIBroker* broker = ivBroker.broker();
    if (ivMark != nullptr) broker->mft->release(broker, ivMark);
    ivMark = broker->mft->mark(broker, nullptr);
  }

 private:
  CMPIObjectPath* newPath(const char* ipClass) { return ivBroker.newObjectPath("root/qrx", ipClass); }
  static void addKey(CMPIObjectPath* ipPath, const char* ipName, const std::string& irValue) {
    CMAddKey(ipPath, ipName, irValue.c_str(), CMPI_chars);
  }
  CMPIObjectPath* portPath(std::size_t ipPort) {
    CMPIObjectPath* path = newPath("QRX_SwitchFCPort");
    addKey(path, "SystemCreationClassName", "QRX_Switch");
    addKey(path, "SystemName", ivExpected.switchName);
    addKey(path, "CreationClassName", "QRX_SwitchFCPort");
    addKey(path, "DeviceID", ivExpected.portNames[ipPort]);
    return path;
  }
  static bool fail(const std::string& irWhat) {
    std::fprintf(stderr, "qrx-stress: wrong answer: %s\n", irWhat.c_str());
    return false;
  }
  static bool same(const std::string& irGot, const std::string& irWant, const char* ipWhat) {
    return irGot == irWant || fail(std::string(ipWhat) + " \"" + irGot + "\", expected \"" + irWant + "\"");
  }
  static bool check(const Outcome& irGot, std::size_t ipCount, const char* ipWhat) {
    if (irGot.failure != Outcome::Failure::None) {
      return fail(std::string(ipWhat) + " failed: rc " + std::to_string(irGot.rc) + " " +
                  irGot.message.value_or(irGot.loadError));
    }
    const std::size_t count = irGot.instances.size() + irGot.paths.size();
    if (count == ipCount) return true;
    return fail(std::string(ipWhat) + ": " + std::to_string(count) + " answers, expected " +
                std::to_string(ipCount));
  }

  cimhost::TestBroker& ivBroker;
  cimhost::Session ivSession;
  const Expected& ivExpected;
  cimhost::PropertyList ivNoProperties;
  std::mutex ivTurnstile;
  std::shared_mutex ivRequestLock;
  const CMPIGcStat* ivMark = nullptr;
  std::atomic<std::uint64_t> ivKindNs[kKinds] = {};
  std::atomic<std::uint64_t> ivKindCount[kKinds] = {};
};

bool portEvent(switchsim::Simulator& irSim, std::size_t ipPort, bool ipOnline) {
  switchsim::EventCommand event;
  std::string error;
  const std::vector<std::string> words = {"port-state", std::to_string(ipPort),
                                          ipOnline ? "online" : "offline"};
  return switchsim::parseEventCommand(words, &event, &error) && irSim.applyEvent(event, &error);
}

double threadCpuMs() {
  timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

int run(const Options& irOptions) {
  const std::string prefix = "/qrxstress" + std::to_string(getpid());
  setenv("QRX_SMIS_QUEUE_PREFIX", prefix.c_str(), 1);
  const std::string trace = "/tmp/qrx-stress-" + std::to_string(getpid()) + ".log";
  setenv("QRX_SMIS_TRACE_FILE", trace.c_str(), 0);  // unless one is given
  const switchsim::FabricModel model = switchsim::FabricModel::builtIn(irOptions.ports);
  const Expected expected = expectedFrom(model);
  switchsim::Simulator sim(model);
  std::string error;
  if (!sim.start(&error)) {
    std::fprintf(stderr, "qrx-stress: %s\n", error.c_str());
    return 1;
  }

  cimhost::ClassHierarchy hierarchy;
  for (const char* file : {QRX_STRESS_HIERARCHY_MOF, QRX_STRESS_VENDOR_MOF}) {
    if (!hierarchy.loadMofFile(file, &error)) {
      std::fprintf(stderr, "qrx-stress: %s\n", error.c_str());
      return 1;
    }
  }
  cimhost::TestBroker broker(&hierarchy);
  cimhost::ProviderLibrary library(broker);
  const auto loadStart = std::chrono::steady_clock::now();
  if (!library.open(irOptions.library, &error)) {  // the library's start-up runs here
    std::fprintf(stderr, "qrx-stress: %s\n", error.c_str());
    return 1;
  }
  const double loadMs = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - loadStart).count();
  // Every MI once, before the threads share them.
  for (const char* cls : {"QRX_Switch", "QRX_SwitchFCPort", "QRX_SwitchFCPortStats",
                          "QRX_SANProtocolEndpoint", "QRX_Node", "QRX_Fabric"}) {
    if (library.instanceMI(cls, &error) == nullptr) {
      std::fprintf(stderr, "qrx-stress: %s\n", error.c_str());
      return 1;
    }
  }

  Stress stress(broker, library, expected);
  std::printf("qrx-stress: %zu ports, %u threads x %u requests, a port event every %u ms "
              "(library loaded and its cache filled in %.0f ms)\n",
              expected.portNames.size(), irOptions.threads, irOptions.requests,
              irOptions.eventIntervalMs, loadMs);
  std::fflush(stdout);

  std::atomic<bool> running{true};
  std::atomic<unsigned> wrong{0};
  std::atomic<unsigned> events{0};
  std::vector<bool> online(expected.portNames.size());
  for (std::size_t i = 0; i < online.size(); ++i) online[i] = expected.portStatus[i] == 2;
  std::thread eventSource([&] {
    std::size_t port = kFirstFlapping;
    while (running) {
      online[port] = !online[port];
      if (portEvent(sim, port, online[port])) ++events;
      port = (port + 50) % online.size();
      std::this_thread::sleep_for(std::chrono::milliseconds(irOptions.eventIntervalMs));
    }
  });
  std::thread reaper([&] {
    while (running) {
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      stress.endOfRequests();
    }
  });

  const auto start = std::chrono::steady_clock::now();
  std::vector<std::thread> workers;
  for (unsigned t = 0; t < irOptions.threads; ++t) {
    workers.emplace_back([&, t] {
      unsigned seed = 2654435761u * (t + 1);
      for (unsigned i = 0; i < irOptions.requests; ++i) {
        seed = seed * 1103515245u + 12345u;
        if (!stress.request(t + i, seed >> 8)) ++wrong;
      }
    });
  }
  for (std::thread& worker : workers) worker.join();
  const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  running = false;
  eventSource.join();
  reaper.join();

  // Once the last events are handled, every port shows the model's state.
  const switchsim::FabricModel final = sim.snapshot();
  std::vector<std::size_t> flapping;
  for (std::size_t i = kFirstFlapping; i < final.ports.size(); i += 50) flapping.push_back(i);
  const auto settle = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  std::vector<std::size_t> stalePorts = flapping;
  while (!stalePorts.empty() && std::chrono::steady_clock::now() < settle) {
    std::vector<std::size_t> still;
    for (std::size_t i : stalePorts) {
      if (stress.portStatus(i) != operationalStatus(final.ports[i].info.operational_state)) {
        still.push_back(i);
      }
    }
    stalePorts.swap(still);
    if (!stalePorts.empty()) std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  for (std::size_t i : stalePorts) {
    std::fprintf(stderr, "qrx-stress: port %zu ends with OperationalStatus %d, the switch says %d\n",
                 i, stress.portStatus(i), operationalStatus(final.ports[i].info.operational_state));
  }
  const unsigned stale = static_cast<unsigned>(stalePorts.size());
  unsigned largest = 0;
  for (const std::string& line : sim.requestLog()) {
    const std::size_t at = line.rfind(" frames=");
    if (line.rfind("reply ", 0) == 0 && at != std::string::npos) {
      largest = std::max(largest, static_cast<unsigned>(std::strtoul(line.c_str() + at + 8, nullptr, 10)));
    }
  }
  const unsigned total = irOptions.threads * irOptions.requests;
  std::printf("qrx-stress: %u requests in %.1f s (%.0f per second), %u port events, "
              "largest reply %u frames; %u wrong answers, %u ports left stale\n",
              total, seconds, total / seconds, events.load(), largest, wrong.load(), stale);
  stress.printKinds();
  std::fflush(stdout);

  if (irOptions.waitCpuMs != 0) {
    // A daemon that takes the request and says nothing for a while.
    switchsim::Fault silent;
    silent.function = "rs_api_get_switch_info";
    silent.delayMs = irOptions.waitCpuMs;
    sim.addFault(silent);
    double cpuMs = 0;
    double wallMs = 0;
    std::thread waiting([&] {
      const double cpu = threadCpuMs();
      const auto began = std::chrono::steady_clock::now();
      if (!stress.request(0, 0)) ++wrong;
      wallMs = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - began).count();
      cpuMs = threadCpuMs() - cpu;
    });
    waiting.join();
    std::printf("qrx-stress: a request waiting %.0f ms on a silent daemon used %.1f ms of CPU "
                "(%.2f%% of a core)\n", wallMs, cpuMs, 100.0 * cpuMs / wallMs);
    std::fflush(stdout);
  }
  stress.endOfRequests();
  library.cleanup();
  sim.stop();
  return wrong == 0 && stale == 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  if (!parse(argc, argv, &options)) {
    std::fputs(kUsage, stderr);
    return 2;
  }
  return run(options);
}
