// Helpers of the simulator tests: a private queue prefix per test process,
// and a bare client that builds request frames by hand and reads reply
// frames one by one, so that the frames themselves can be checked.
#ifndef QRX_TESTS_SWITCHSIM_SIMTESTING_H_
#define QRX_TESTS_SWITCHSIM_SIMTESTING_H_

#include <gtest/gtest.h>
#include <time.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "common/base/SCIMSerdes.h"
#include "common/mqueue/FramePipeIf.h"
#include "common/mqueue/mqCS.h"

namespace switchsim_test {

using Bytes = std::vector<unsigned char>;

// Queues of this test process are named "/qrxsimtest<pid>...".
inline std::string usePrivatePrefix() {
  const std::string prefix = "/qrxsimtest" + std::to_string(getpid());
  setenv("QRX_SMIS_QUEUE_PREFIX", prefix.c_str(), 1);
  return prefix;
}

// Encodes values with the protocol's serializer.
inline Bytes encode(const std::function<void(SCIMSerializerIf&)>& irWrite) {
  Bytes buffer(1 << 16);
  SCIMSerializer out(buffer.data(), buffer.size());
  irWrite(out);
  EXPECT_FALSE(out.hasError());
  buffer.resize(out.getWrittenLen());
  return buffer;
}

// A request's data: the function name, then what `irArgs` writes.
inline Bytes request(const std::string& irFunction,
                     const std::function<void(SCIMSerializerIf&)>& irArgs = nullptr) {
  return encode([&](SCIMSerializerIf& out) {
    out.write("function", CMPI_string, irFunction);
    if (irArgs) irArgs(out);
  });
}

struct Frame {
  std::uint32_t reqId, allocSize, usedSize, next;
  Bytes data;
};

struct Reply {
  std::vector<Frame> frames;
  Bytes data;  // the data of all frames, joined
  std::uint32_t status() const {
    return data.size() >= 4 ? fcbb::decodeBigEndian32(data.data()) : 0xffffffffu;
  }
};

class RawClient {
 public:
  bool connect(const std::string& irName = "smis_ipc") {
    const std::string base = std::string(fcbb::queuePrefix()) + irName;
    return ivRequests.connect(base + "_stoc") && ivReplies.connect(base + "_ctos");
  }

  // Sends a message: the header words as given (used_size is computed
  // unless `ipUsed` is given), then `irData`.
  void sendRaw(std::uint32_t ipReqId, const Bytes& irData, std::uint32_t ipNext = 0,
               long long ipUsed = -1) {
    Bytes message(16);
    fcbb::encodeBigEndian32(&message[0], ipReqId);
    fcbb::encodeBigEndian32(&message[4], fcbb::kMaxFrameSize);
    fcbb::encodeBigEndian32(&message[8], ipUsed >= 0 ? static_cast<std::uint32_t>(ipUsed)
                                                     : static_cast<std::uint32_t>(16 + irData.size()));
    fcbb::encodeBigEndian32(&message[12], ipNext);
    message.insert(message.end(), irData.begin(), irData.end());
    ASSERT_EQ(static_cast<int>(message.size()), ivRequests.send(message.data(), message.size()));
  }

  void sendBytes(const Bytes& irMessage) {
    ASSERT_EQ(static_cast<int>(irMessage.size()), ivRequests.send(irMessage.data(), irMessage.size()));
  }

  // One reply message, or false after `ipTimeoutMs`.
  bool receiveFrame(Frame* opFrame, unsigned ipTimeoutMs = 3000) {
    unsigned char buffer[fcbb::kMaxFrameSize];
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(ipTimeoutMs);
    while (std::chrono::steady_clock::now() < deadline) {
      const int n = ivReplies.recv(buffer, sizeof buffer);
      if (n >= 16) {
        opFrame->reqId = fcbb::decodeBigEndian32(buffer);
        opFrame->allocSize = fcbb::decodeBigEndian32(buffer + 4);
        opFrame->usedSize = fcbb::decodeBigEndian32(buffer + 8);
        opFrame->next = fcbb::decodeBigEndian32(buffer + 12);
        opFrame->data.assign(buffer + 16, buffer + n);
        EXPECT_EQ(static_cast<std::uint32_t>(n), opFrame->usedSize);
        return true;
      }
      timespec pause{0, 1000000L};
      nanosleep(&pause, nullptr);
    }
    return false;
  }

  // The frames of one reply, up to the one whose next word is 0.
  bool receive(Reply* opReply, unsigned ipTimeoutMs = 3000) {
    *opReply = Reply();
    Frame frame;
    do {
      if (!receiveFrame(&frame, ipTimeoutMs)) return false;
      opReply->frames.push_back(frame);
      opReply->data.insert(opReply->data.end(), frame.data.begin(), frame.data.end());
    } while (frame.next != 0);
    return true;
  }

  Reply call(std::uint32_t ipReqId, const Bytes& irRequest) {
    sendRaw(ipReqId, irRequest);
    Reply reply;
    EXPECT_TRUE(receive(&reply)) << "no reply to req_id " << ipReqId;
    return reply;
  }

 private:
  fcbb::mqClient ivRequests;
  fcbb::mqClient ivReplies;
};

// Reads the results that follow the status of a reply.
template <typename T>
T results(const Reply& irReply) {
  T value;
  SCIMDeserializer in(irReply.data.data() + 4, irReply.data.size() - 4);
  in.read("result", CMPI_instance, value);
  EXPECT_FALSE(in.hasError());
  EXPECT_EQ(irReply.data.size() - 4, in.getWrittenLen());
  return value;
}

}  // namespace switchsim_test

#endif  // QRX_TESTS_SWITCHSIM_SIMTESTING_H_
