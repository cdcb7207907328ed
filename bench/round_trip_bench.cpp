// One uncached remote call through the request client over the real
// queues, against its floor: a raw POSIX message-queue ping-pong of the
// same sizes between the same two threads over the same queues.
//
// The daemon is minimal on purpose, so that what is measured is the
// transport: a thread that creates the request and reply queues, receives
// a request (blocking) and sends back a prepared reply with the request's
// req_id. The call is get_zone_set_names; the reply carries `names` zone
// set names of 32 characters (0: an 8-byte reply, 100: about 3.7 KiB).
//
// Each iteration times a block of calls through the client, then a block
// of raw ping-pongs (the main thread sends a copy of a real request frame
// and waits in a blocking receive for the daemon's reply), so that both
// see the same load on a shared machine. Counters: library_us and
// floor_us per round trip, ratio = library / floor. The manual time is the
// library's block of calls.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <mqueue.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "common/mqueue/FramePipeMqTmpl.h"
#include "generated/smis_ipc/smis_ipc_client.h"

namespace {

const int kBlock = 20;
const char* const kQueueName = "smis_ipc";

using Clock = std::chrono::steady_clock;

void putWord(std::vector<unsigned char>& orBytes, std::uint32_t ipValue) {
  unsigned char word[4];
  fcbb::encodeBigEndian32(word, ipValue);
  orBytes.insert(orBytes.end(), word, word + 4);
}

// The reply data of get_zone_set_names: status 0, then `ipNames` names.
std::vector<unsigned char> replyData(int ipNames) {
  std::vector<unsigned char> data;
  putWord(data, 0);
  putWord(data, static_cast<std::uint32_t>(ipNames));
  for (int i = 0; i < ipNames; ++i) {
    std::string name = "zoneset_" + std::to_string(i);
    name.resize(32, 'x');
    putWord(data, static_cast<std::uint32_t>(name.size()));
    data.insert(data.end(), name.begin(), name.end());
    data.push_back(0);
  }
  return data;
}

// The daemon's end: creates both queues, answers every request with the
// prepared reply until stopped, and removes the queues.
class EchoDaemon {
 public:
  explicit EchoDaemon(std::vector<unsigned char> ipReplyData)
      : ivBase(std::string(fcbb::queuePrefix()) + kQueueName), ivReplyData(std::move(ipReplyData)) {}
  ~EchoDaemon() { stop(); }

  bool start() {
    mq_attr attr{};
    attr.mq_maxmsg = 10;
    attr.mq_msgsize = fcbb::kMaxFrameSize;
    ivRequests = mq_open((ivBase + "_stoc").c_str(), O_RDWR | O_CREAT | O_EXCL, 0600, &attr);
    ivReplies = mq_open((ivBase + "_ctos").c_str(), O_RDWR | O_CREAT | O_EXCL, 0600, &attr);
    if (ivRequests == -1 || ivReplies == -1) return false;
    ivThread = std::thread([this] { serve(); });
    return true;
  }

  void stop() {
    ivStop = true;
    if (ivThread.joinable()) ivThread.join();
    if (ivRequests != -1) mq_close(ivRequests);
    if (ivReplies != -1) mq_close(ivReplies);
    if (ivRequests != -1 || ivReplies != -1) {
      mq_unlink((ivBase + "_stoc").c_str());
      mq_unlink((ivBase + "_ctos").c_str());
    }
    ivRequests = ivReplies = -1;
  }

  const std::string& base() const { return ivBase; }
  // The wire bytes of the last request received.
  std::vector<unsigned char> lastRequest() const { return ivLastRequest; }

 private:
  void serve() {
    std::vector<unsigned char> request(fcbb::kMaxFrameSize);
    std::vector<unsigned char> reply(fcbb::kFrameHeaderSize);
    reply.insert(reply.end(), ivReplyData.begin(), ivReplyData.end());
    while (!ivStop) {
      timespec until;
      clock_gettime(CLOCK_REALTIME, &until);
      until.tv_nsec += 100 * 1000 * 1000;
      if (until.tv_nsec >= 1000000000L) {
        until.tv_sec += 1;
        until.tv_nsec -= 1000000000L;
      }
      const ssize_t length = mq_timedreceive(ivRequests, reinterpret_cast<char*>(request.data()),
                                             request.size(), nullptr, &until);
      if (length < static_cast<ssize_t>(fcbb::kFrameHeaderSize)) continue;
      if (ivLastRequest.empty()) ivLastRequest.assign(request.begin(), request.begin() + length);
      std::memcpy(reply.data(), request.data(), 4);  // req_id
      fcbb::encodeBigEndian32(reply.data() + 4, fcbb::kMaxFrameSize);
      fcbb::encodeBigEndian32(reply.data() + 8, static_cast<std::uint32_t>(reply.size()));
      fcbb::encodeBigEndian32(reply.data() + 12, 0);
      mq_send(ivReplies, reinterpret_cast<const char*>(reply.data()), reply.size(), 0);
    }
  }

  const std::string ivBase;
  const std::vector<unsigned char> ivReplyData;
  std::vector<unsigned char> ivLastRequest;
  mqd_t ivRequests = -1;
  mqd_t ivReplies = -1;
  std::atomic<bool> ivStop{false};
  std::thread ivThread;
};

double secondsSince(Clock::time_point ipStart) {
  return std::chrono::duration<double>(Clock::now() - ipStart).count();
}

void BM_RemoteCallVersusRawPingPong(benchmark::State& state) {
  const int names = static_cast<int>(state.range(0));
  setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxrtbench" + std::to_string(getpid())).c_str(), 1);
  EchoDaemon daemon(replyData(names));
  if (!daemon.start()) {
    state.SkipWithError("cannot create the daemon's queues");
    return;
  }
  fcbb::DaemonPipe pipe;
  if (!pipe.open(kQueueName)) {
    state.SkipWithError("cannot open the daemon's queues");
    return;
  }
  rs_api_client_mq client(pipe);
  string_tA got;
  if (client.get_zone_set_names("switch", got) != 0 || static_cast<int>(got.size()) != names) {
    state.SkipWithError("the remote call did not answer as the daemon did");
    return;
  }
  // The floor's sender: blocking descriptors on the same queues, and a
  // copy of the request the client sent.
  const std::vector<unsigned char> request = daemon.lastRequest();
  const mqd_t out = mq_open((daemon.base() + "_stoc").c_str(), O_WRONLY);
  const mqd_t in = mq_open((daemon.base() + "_ctos").c_str(), O_RDONLY);
  std::vector<unsigned char> reply(fcbb::kMaxFrameSize);

  double librarySeconds = 0;
  double floorSeconds = 0;
  bool wrong = false;
  for (auto _ : state) {
    auto start = Clock::now();
    for (int i = 0; i < kBlock; ++i) {
      if (client.get_zone_set_names("switch", got) != 0) wrong = true;
    }
    const double library = secondsSince(start);
    start = Clock::now();
    for (int i = 0; i < kBlock; ++i) {
      if (mq_send(out, reinterpret_cast<const char*>(request.data()), request.size(), 0) != 0 ||
          mq_receive(in, reinterpret_cast<char*>(reply.data()), reply.size(), nullptr) <= 0) {
        wrong = true;
      }
    }
    floorSeconds += secondsSince(start);
    librarySeconds += library;
    state.SetIterationTime(library);
    if (wrong) {
      state.SkipWithError("a round trip failed");
      break;
    }
  }
  const double calls = static_cast<double>(state.iterations()) * kBlock;
  if (floorSeconds > 0 && calls > 0) {
    state.counters["library_us"] = 1e6 * librarySeconds / calls;
    state.counters["floor_us"] = 1e6 * floorSeconds / calls;
    state.counters["ratio"] = librarySeconds / floorSeconds;
    state.counters["request_bytes"] = static_cast<double>(request.size());
    state.counters["reply_bytes"] = static_cast<double>(fcbb::kFrameHeaderSize + replyData(names).size());
  }
  mq_close(out);
  mq_close(in);
  pipe.close();
  daemon.stop();
}
BENCHMARK(BM_RemoteCallVersusRawPingPong)
    ->Arg(0)
    ->Arg(100)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

}  // namespace
