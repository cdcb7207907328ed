// libFuzzer target of the request client's receive-and-decode path: a call
// of the client (picked by a byte) is answered by a chain of messages from
// the fuzzer, each a 16-bit length and that many bytes, received through
// the real frame pipe (header checks, pool frames) and RequestExchange
// (stale frames, chains, the reply limit), then decoded by the call. Then
// the next call, until the input ends; at its end the reply queue fails,
// which fails the call waiting.
//
// A frame whose req_id is later than the request's answers a request never
// sent; that is the documented protocol break that stops the process, so
// such a req_id is brought back to the request's own before the frame is
// received. Every other header word arrives as the fuzzer wrote it.
//
// After each call every pool frame must be back.
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "common/base/trace.h"
#include "common/mqueue/FramePipeMq.h"
#include "generated/smis_ipc/smis_ipc_client.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/ReplyCalls.h"

namespace {

using fcbb::Frame;
using fcbb::kFramePoolSize;
using fcbb::kMaxFrameSize;

// The daemon's side of both queues: requests are taken in, replies come
// from the fuzzer's input.
struct Script {
  qrxfuzz::FuzzInput* input = nullptr;
  std::uint32_t awaited = 0;  // req_id of the last request sent
};

// A queue connection over the script, in place of mqClient.
class ScriptedConnection {
 public:
  void attach(Script* ipScript) { ivScript = ipScript; }
  int send(const void* ipBuffer, std::size_t ipLen) {
    assert(ipLen >= fcbb::kFrameHeaderSize && ipLen <= kMaxFrameSize);
    ivScript->awaited = fcbb::decodeBigEndian32(static_cast<const unsigned char*>(ipBuffer));
    return static_cast<int>(ipLen);
  }
  // A message, or -1 (a failing queue) once the input is used up, for an
  // empty message or one larger than the buffer, as a queue would refuse.
  int recv(void* opBuffer, std::size_t ipLen) {
    if (ivScript->input->done()) return -1;
    qrxfuzz::Bytes message = ivScript->input->piece();
    if (message.empty() || message.size() > ipLen) return -1;
    if (message.size() >= 4) {
      const std::uint32_t reqId = fcbb::decodeBigEndian32(message.data());
      if (static_cast<std::int32_t>(reqId - ivScript->awaited) > 0) {
        fcbb::encodeBigEndian32(message.data(), ivScript->awaited);
      }
    }
    std::memcpy(opBuffer, message.data(), message.size());
    return static_cast<int>(message.size());
  }
  void close() {}
  const std::string& name() const { return ivName; }
  void waitReady(bool, unsigned int) const {}
  fcbb::mqClient::Identity identity() const { return fcbb::mqClient::Identity::kSame; }

 private:
  Script* ivScript = nullptr;
  std::string ivName = "fuzz_ctos";
};

class ScriptedPipe : public fcbb::mqPipeBase<ScriptedConnection, kMaxFrameSize, kFramePoolSize> {
 public:
  explicit ScriptedPipe(Script* ipScript) {
    ivSendConn.attach(ipScript);
    ivRecvConn.attach(ipScript);
  }
  bool open(const char*) override { return true; }

  // True when every pool frame can be taken.
  bool allFramesFree() {
    Frame* frames[kFramePoolSize];
    bool all = true;
    for (Frame*& frame : frames) {
      frame = allocFrame(kMaxFrameSize);
      all = all && frame != nullptr;
    }
    for (Frame* frame : frames) freeFrame(frame);
    return all;
  }
};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  trace_open("/dev/null");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* ipData, std::size_t ipSize) {
  qrxfuzz::FuzzInput input(ipData, ipSize);
  Script script;
  script.input = &input;
  ScriptedPipe pipe(&script);
  rs_api_client_mq client(pipe);
  // A limit a fuzzer's input can pass.
  fcbb::ExchangeLimits limits;
  limits.maxReplyBytes = 3 * kMaxFrameSize;
  client.setExchangeLimits(limits);
  while (!input.done()) {
    qrxfuzz::kReplyCalls[input.pick(qrxfuzz::kReplyCallCount)](client);
    assert(pipe.allFramesFree());
  }
  return 0;
}
