// Costs of the runtime foundation on the paths every request takes: a debug
// line while debugging is off (the common case in the field), a written
// line, and a mutex round trip.
#include <benchmark/benchmark.h>

#include <cstdio>

#include "common/base/Mutex.h"
#include "common/base/trace.h"

namespace {

void BM_TraceDebugLineFilteredOut(benchmark::State& state) {
  debug_on = false;
  for (auto _ : state) trace_log(true, "[%s, %d] enter\n", __func__, __LINE__);
}
BENCHMARK(BM_TraceDebugLineFilteredOut);

void BM_TraceLineWritten(benchmark::State& state) {
  trace_open("/dev/null");
  for (auto _ : state) trace_log(false, "[%s, %s, %d] ERROR: %s\n", "unit", __func__, __LINE__, "x");
  trace_close();
}
BENCHMARK(BM_TraceLineWritten);

void BM_MutexLockUnlock(benchmark::State& state) {
  fcbb::Mutex mutex;
  for (auto _ : state) {
    mutex.lock();
    mutex.unlock();
  }
}
BENCHMARK(BM_MutexLockUnlock);

}  // namespace
