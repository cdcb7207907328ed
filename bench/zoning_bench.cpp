// Committing a zoning session of 10,000 operations through the real message
// queues to the simulated switch, against the round trips the commit takes
// at the least: 10,000 operations go out in 500 batches of 20, so the
// benchmark also times 500 bare requests (get_zone_service_data) in the same
// run and reports the commit's time as a multiple of theirs (the counter
// "x_500_round_trips").
//
// The session: 100 new zones of 99 members each (100 creations, 9,900
// additions). The edits are made with the timer stopped; only session_end,
// which builds the operation lists and sends them, is timed. The zones are
// deleted again between iterations.
//
// The simulated switch decodes and applies every operation (checking each
// new member against the zone's others) and journals each batch so as to
// undo it on failure: part of the commit's time is the simulator's, so the
// ratio bounds the library's share from above. Build with a release build
// type for figures.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "common/backend/LocalZoneDb.h"
#include "common/mqueue/FramePipeMqTmpl.h"
#include "tools/switchsim/Simulator.h"

namespace {

const int kZones = 100;
const int kMembersPerZone = 99;
const int kBareRoundTrips = 500;

std::string zoneName(int ipZone) { return "z_bench_" + std::to_string(ipZone); }

double secondsSince(std::chrono::steady_clock::time_point ipStart) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - ipStart).count();
}

void BM_CommitSessionOf10000Operations(benchmark::State& state) {
  setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxzonebench" + std::to_string(getpid())).c_str(), 1);
  switchsim::Simulator sim(switchsim::FabricModel::builtIn());
  std::string error;
  if (!sim.start(&error)) {
    state.SkipWithError(error.c_str());
    return;
  }
  const std::string service = sim.snapshot().switchInfo.name;
  fcbb::DaemonPipe pipe;
  if (!pipe.open("smis_ipc")) {
    state.SkipWithError("cannot open the simulated switch's queues");
    return;
  }
  rs_api_client_mq client(pipe);
  ZoneDb db([&client] { return &client; });

  double commitSeconds = 0;
  double roundTripSeconds = 0;
  for (auto _ : state) {
    if (db.session_start(service) != 0) {
      state.SkipWithError("session_start failed");
      break;
    }
    for (int z = 0; z < kZones; ++z) {
      db.create_zone(service, zoneName(z));
      for (int m = 0; m < kMembersPerZone; ++m) {
        zone_member_data_t member;
        member.member_type = 2;
        char wwn[17];
        std::snprintf(wwn, sizeof(wwn), "21000e5b7201%04x", m);
        member.member_id = wwn;
        db.add_zone_member(service, zoneName(z), member);
      }
    }

    auto start = std::chrono::steady_clock::now();
    const int rc = db.session_end(service);
    const double commit = secondsSince(start);
    if (rc != 0) {
      state.SkipWithError("session_end failed");
      break;
    }
    start = std::chrono::steady_clock::now();
    for (int i = 0; i < kBareRoundTrips; ++i) {
      zone_service_data_t data;
      client.get_zone_service_data(service, data);
    }
    roundTripSeconds += secondsSince(start);
    commitSeconds += commit;
    state.SetIterationTime(commit);

    // Back to the built-in zoning for the next iteration, by direct edits:
    // the reply to a session start would now carry 10,000 members, more
    // than the client's frame pool holds.
    for (int z = 0; z < kZones; ++z) db.delete_zone(service, zoneName(z));
  }
  if (roundTripSeconds > 0) {
    state.counters["x_500_round_trips"] = commitSeconds / roundTripSeconds;
    state.counters["round_trip_us"] =
        1e6 * roundTripSeconds / (static_cast<double>(state.iterations()) * kBareRoundTrips);
  }
  pipe.close();
  sim.stop();
}
BENCHMARK(BM_CommitSessionOf10000Operations)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
