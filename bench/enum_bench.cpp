// enumerateInstances of QRX_SwitchFCPort through the provider glue, the
// way an object manager asks: the provider library loaded with dlopen into
// the in-process test broker, the simulated switch in the same process
// with QRX_BENCH_PORTS ports (24 to 2,500, default 24; the library starts
// once per process, so each size is its own run).
//
// The floor is the same broker creating the same instances directly: for
// every instance the library returned once, a new path with its keys, a
// new instance with each of its properties set to the same value, handed
// to a result. Each iteration times the library's enumeration, then the
// floor, so that both see the same load. Counters: library_ms, floor_ms,
// ratio = library / floor, library_us_per_port, floor_us_per_port, ports,
// and switch_read_us: the median time of the one switch record each
// enumeration reads from the daemon (it is never cached), from the
// library's own timing samples (QRX_EnumPerfRecord).
// What each side made is released (mark/release) with the timer stopped,
// before the other side runs, as an object manager does at the end of a
// request.
//
//   QRX_BENCH_PORTS=1024 enum_bench [benchmark flags]
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "cmpimacs.h"
#include "bench/LoadedLibrary.h"
#include "tools/cimhost/broker/ResultRecorder.h"
#include "tools/cimhost/broker/TestBroker.h"
#include "tools/switchsim/Simulator.h"

namespace {

const char* const kNameSpace = "root/qrx";
const char* const kClass = "QRX_SwitchFCPort";


using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point ipStart) {
  return std::chrono::duration<double>(Clock::now() - ipStart).count();
}

struct Value {
  std::string name;
  CMPIData data;
};

// What it takes to make one instance again: its keys and its properties.
struct Recipe {
  std::vector<Value> keys;
  std::vector<Value> properties;
};

Recipe recipeOf(const CMPIInstance* ipInstance) {
  Recipe recipe;
  const CMPIObjectPath* path = CMGetObjectPath(ipInstance, nullptr);
  const unsigned keys = CMGetKeyCount(path, nullptr);
  for (unsigned i = 0; i < keys; ++i) {
    CMPIString* name = nullptr;
    const CMPIData data = CMGetKeyAt(path, i, &name, nullptr);
    recipe.keys.push_back({CMGetCharsPtr(name, nullptr), data});
  }
  const unsigned count = CMGetPropertyCount(ipInstance, nullptr);
  for (unsigned i = 0; i < count; ++i) {
    CMPIString* name = nullptr;
    const CMPIData data = CMGetPropertyAt(ipInstance, i, &name, nullptr);
    recipe.properties.push_back({CMGetCharsPtr(name, nullptr), data});
  }
  return recipe;
}

// Merges the free space a side left when its objects were freed. glibc
// does that lazily, at the next allocation of a larger block: without this
// the side that runs next pays, inside its timing, for the other side's
// clean-up. The memory stays with the process (no trim), so neither side
// pays for fresh pages either.
void settleHeap() {
  void* block = std::malloc(4096);  // a large-block request merges the small free blocks
  benchmark::DoNotOptimize(block);
  std::free(block);
}

// The floor: the broker makes each instance from its recipe and hands it
// to the result. False when the broker refused a step.
bool makeDirectly(cimhost::TestBroker& irBroker, const std::vector<Recipe>& irRecipes,
                  const CMPIResult* ipResult) {
  const CMPIBroker* broker = irBroker.broker();
  for (const Recipe& recipe : irRecipes) {
    CMPIStatus rc = {CMPI_RC_OK, nullptr};
    CMPIObjectPath* path = CMNewObjectPath(broker, kNameSpace, kClass, &rc);
    if (path == nullptr) return false;
    for (const Value& key : recipe.keys) {
      if (CMAddKey(path, key.name.c_str(), &key.data.value, key.data.type).rc != CMPI_RC_OK) {
        return false;
      }
    }
    CMPIInstance* instance = CMNewInstance(broker, path, &rc);
    if (instance == nullptr) return false;
    for (const Value& property : recipe.properties) {
      const CMPIValue* value = (property.data.state & CMPI_nullValue) ? nullptr : &property.data.value;
      if (CMSetProperty(instance, property.name.c_str(), value, property.data.type).rc != CMPI_RC_OK) {
        return false;
      }
    }
    if (CMReturnInstance(ipResult, instance).rc != CMPI_RC_OK) return false;
  }
  return true;
}

// The median of the library's timing samples under `ipTag`, in
// microseconds; negative when the library has none.
double medianSample(cimhost::TestBroker& irBroker, CMPIInstanceMI* ipRecords, const char* ipTag) {
  CMPIObjectPath* path = irBroker.newObjectPath(kNameSpace, "QRX_EnumPerfRecord");
  CMAddKey(path, "Tag", ipTag, CMPI_chars);
  cimhost::ResultRecorder result(irBroker);
  const CMPIStatus rc = ipRecords->ft->getInstance(ipRecords, irBroker.newContext(kNameSpace),
                                                   result.result(), path, nullptr);
  if (rc.rc != CMPI_RC_OK || result.instances().size() != 1) return -1;
  const CMPIData median = CMGetProperty(result.instances()[0], "MedVal", nullptr);
  return median.state == CMPI_goodValue ? static_cast<double>(median.value.uint64) : -1;
}

void BM_EnumerateSwitchFCPorts(benchmark::State& state) {
  const char* wanted = std::getenv("QRX_BENCH_PORTS");
  const unsigned long ports = wanted != nullptr ? std::strtoul(wanted, nullptr, 10) : 24;
  if (ports < 24 || ports > 2500) {
    state.SkipWithError("QRX_BENCH_PORTS takes 24 to 2500");
    return;
  }
  const std::string prefix = "/qrxenumbench" + std::to_string(getpid());
  setenv("QRX_SMIS_QUEUE_PREFIX", prefix.c_str(), 1);
  const std::string trace = "/tmp/qrx-enum-bench-" + std::to_string(getpid()) + ".log";
  setenv("QRX_SMIS_TRACE_FILE", trace.c_str(), 0);
  switchsim::Simulator sim(switchsim::FabricModel::builtIn(static_cast<unsigned>(ports)));
  std::string error;
  if (!sim.start(&error)) {
    state.SkipWithError(error.c_str());
    return;
  }
  bench::LoadedLibrary loaded;
  CMPIInstanceMI* mi = loaded.open(kClass, &error);
  if (mi == nullptr) {
    state.SkipWithError(error.c_str());
    return;
  }
  cimhost::TestBroker& broker = loaded.broker;
  const CMPIContext* context = broker.newContext(kNameSpace);
  const CMPIObjectPath* classPath = broker.newObjectPath(kNameSpace, kClass);
  const CMPIBroker* cmpi = broker.broker();

  // The recipes, from one enumeration whose instances stay alive.
  cimhost::ResultRecorder first(broker);
  mi->ft->enumerateInstances(mi, context, first.result(), classPath, nullptr);
  std::vector<Recipe> recipes;
  for (const CMPIInstance* instance : first.instances()) recipes.push_back(recipeOf(instance));
  if (recipes.size() != ports) {
    state.SkipWithError(("the library returned " + std::to_string(recipes.size()) + " ports, not " +
                         std::to_string(ports)).c_str());
    return;
  }

  double librarySeconds = 0;
  double floorSeconds = 0;
  for (auto _ : state) {
    bool right = true;
    double library = 0;
    // Each side starts from a released heap: what one made is freed (the
    // mark) before the other runs.
    {
      const CMPIGcStat* mark = cmpi->mft->mark(cmpi, nullptr);
      {
        cimhost::ResultRecorder result(broker);
        const auto start = Clock::now();
        const CMPIStatus rc =
            mi->ft->enumerateInstances(mi, context, result.result(), classPath, nullptr);
        library = secondsSince(start);
        right = rc.rc == CMPI_RC_OK && result.instances().size() == ports;
      }
      cmpi->mft->release(cmpi, mark);
      settleHeap();
    }
    {
      const CMPIGcStat* mark = cmpi->mft->mark(cmpi, nullptr);
      {
        cimhost::ResultRecorder result(broker);
        const auto start = Clock::now();
        right = makeDirectly(broker, recipes, result.result()) && right;
        floorSeconds += secondsSince(start);
        right = right && result.instances().size() == ports;
      }
      cmpi->mft->release(cmpi, mark);
      settleHeap();
    }
    librarySeconds += library;
    state.SetIterationTime(library);
    if (!right) {
      state.SkipWithError("an enumeration did not return every port");
      break;
    }
  }
  const double runs = static_cast<double>(state.iterations());
  if (runs > 0 && floorSeconds > 0) {
    state.counters["ports"] = static_cast<double>(ports);
    state.counters["library_ms"] = 1e3 * librarySeconds / runs;
    state.counters["floor_ms"] = 1e3 * floorSeconds / runs;
    state.counters["ratio"] = librarySeconds / floorSeconds;
    state.counters["library_us_per_port"] = 1e6 * librarySeconds / runs / ports;
    state.counters["floor_us_per_port"] = 1e6 * floorSeconds / runs / ports;
    CMPIInstanceMI* records = loaded.library.instanceMI("QRX_EnumPerfRecord", &error);
    if (records != nullptr) {
      state.counters["switch_read_us"] =
          medianSample(broker, records, "rs_api_client_mq.get_switch_info");
    }
  }
  loaded.library.cleanup();
  sim.stop();
  std::remove(trace.c_str());
}
BENCHMARK(BM_EnumerateSwitchFCPorts)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
