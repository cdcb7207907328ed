#include <fcntl.h>
#include <gtest/gtest.h>
#include <mqueue.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "common/base/trace.h"
#include "common/mqueue/FramePipeMqTmpl.h"
#include "common/mqueue/mqCS.h"

namespace {

using fcbb::DaemonPipe;
using fcbb::Frame;
using Bytes = std::vector<unsigned char>;

long long msSince(std::chrono::steady_clock::time_point ipStart) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::steady_clock::now() - ipStart).count();
}

timespec fiveSecondsFromNow() {
  timespec deadline;
  clock_gettime(CLOCK_REALTIME, &deadline);
  deadline.tv_sec += 5;
  return deadline;
}

// A message as the daemon writes it: header words big-endian, then data.
Bytes wireMessage(unsigned int ipReqId, unsigned int ipNext, const std::string& irData) {
  const unsigned int words[4] = {ipReqId, 0, 16 + static_cast<unsigned int>(irData.size()), ipNext};
  Bytes bytes;
  for (unsigned int word : words) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<unsigned char>(word >> shift));
  }
  bytes.insert(bytes.end(), irData.begin(), irData.end());
  return bytes;
}

// Every test runs under a private queue prefix and trace log, and plays the
// daemon on queues it creates and removes itself.
class MqTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ivPrefix = "/qrxtest" + std::to_string(getpid());
    setenv("QRX_SMIS_QUEUE_PREFIX", ivPrefix.c_str(), 1);
    char path[] = "/tmp/qrx_mqueue_test.XXXXXX";
    const int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    ::close(fd);
    ivTracePath = path;
    trace_open(path);
  }

  void TearDown() override {
    for (const auto& queue : ivQueues) {
      mq_close(queue.second);
      mq_unlink(queue.first.c_str());
    }
    debug_on = false;
    trace_close();
    std::remove(ivTracePath.c_str());
    unsetenv("QRX_SMIS_QUEUE_PREFIX");
  }

  // Creates the queue prefix + `irName` as the daemon does (blocking here).
  mqd_t daemonQueue(const std::string& irName, long ipMaxMsg = 4) {
    const std::string name = ivPrefix + irName;
    mq_unlink(name.c_str());
    mq_attr attr{};
    attr.mq_maxmsg = ipMaxMsg;
    attr.mq_msgsize = 8192;
    const mqd_t queue = mq_open(name.c_str(), O_RDWR | O_CREAT, 0600, &attr);
    EXPECT_NE(static_cast<mqd_t>(-1), queue) << name << ": " << std::strerror(errno);
    ivQueues.emplace_back(name, queue);
    return queue;
  }

  static void daemonSend(mqd_t ipQueue, const Bytes& irBytes) {
    const timespec deadline = fiveSecondsFromNow();
    EXPECT_EQ(0, mq_timedsend(ipQueue, reinterpret_cast<const char*>(irBytes.data()),
                              irBytes.size(), 0, &deadline));
  }

  static Bytes daemonReceive(mqd_t ipQueue) {
    Bytes bytes(8192);
    const timespec deadline = fiveSecondsFromNow();
    const ssize_t length = mq_timedreceive(ipQueue, reinterpret_cast<char*>(bytes.data()),
                                           bytes.size(), nullptr, &deadline);
    bytes.resize(length > 0 ? static_cast<size_t>(length) : 0);
    return bytes;
  }

  bool exists(const std::string& irName) const {
    const mqd_t queue = mq_open((ivPrefix + irName).c_str(), O_RDONLY);
    if (queue != static_cast<mqd_t>(-1)) mq_close(queue);
    return queue != static_cast<mqd_t>(-1);
  }

  bool logged(const std::string& irText) const {
    std::ifstream in(ivTracePath);
    std::stringstream text;
    text << in.rdbuf();
    return text.str().find(irText) != std::string::npos;
  }

  std::string ivPrefix;
  std::string ivTracePath;
  std::vector<std::pair<std::string, mqd_t>> ivQueues;
};

TEST_F(MqTest, PrimitivesReportFullEmptyAndErrors) {
  const mqd_t queue = daemonQueue("prim", 2);
  mq_attr nonBlocking{};
  nonBlocking.mq_flags = O_NONBLOCK;  // as the library opens its queues
  mq_setattr(queue, &nonBlocking, nullptr);
  char buffer[8192] = "abc";
  EXPECT_EQ(3, fcbb::message_queue_send(buffer, 3, queue));
  EXPECT_EQ(3, fcbb::message_queue_send(buffer, 3, queue));
  EXPECT_EQ(0, fcbb::message_queue_send(buffer, 3, queue));
  EXPECT_EQ(-1, fcbb::message_queue_receive(buffer, 100, queue));  // below the message size
  EXPECT_TRUE(logged("[common/mqueue/mqCS, message_queue_receive, "));
  EXPECT_TRUE(logged("] ERROR: ERROR " + std::to_string(EMSGSIZE) + " " + std::strerror(EMSGSIZE) + "\n\n"));
  EXPECT_EQ(3, fcbb::message_queue_receive(buffer, sizeof(buffer), queue));
  EXPECT_EQ(3, fcbb::message_queue_receive(buffer, sizeof(buffer), queue));
  EXPECT_EQ(0, fcbb::message_queue_receive(buffer, sizeof(buffer), queue));
  EXPECT_EQ(-1, fcbb::message_queue_send(buffer, 3, static_cast<mqd_t>(-1)));
  EXPECT_TRUE(logged("[common/mqueue/mqCS, message_queue_send, "));

  EXPECT_DEATH(fcbb::message_queue_send(buffer, 0, queue), "iLen != 0");
  EXPECT_DEATH(fcbb::message_queue_receive(buffer, 0, queue), "iLen != 0");
}

TEST_F(MqTest, ServerCreatesAndRemovesTheEventQueue) {
  const std::string name = ivPrefix + fcbb::kEventQueueName;
  fcbb::mqServer server;
  EXPECT_TRUE(server.connect(name, 8192, 10));
  const mqd_t daemon = mq_open(name.c_str(), O_WRONLY);
  ASSERT_NE(static_cast<mqd_t>(-1), daemon);
  mq_attr attr{};
  mq_getattr(daemon, &attr);
  EXPECT_EQ(10, attr.mq_maxmsg);
  EXPECT_EQ(8192, attr.mq_msgsize);

  char buffer[8192];
  EXPECT_EQ(0, server.recv(buffer, sizeof(buffer)));  // empty: does not wait
  daemonSend(daemon, Bytes{'e', 'v'});
  EXPECT_EQ(2, server.recv(buffer, sizeof(buffer)));
  mq_close(daemon);
  server.close();
  EXPECT_FALSE(exists(fcbb::kEventQueueName));

  // Waiting for an event: the whole time on an empty queue (and while not
  // connected), woken by a message, which stays to be received.
  using Clock = std::chrono::steady_clock;
  auto start = Clock::now();
  fcbb::mqServer().waitReadable(30);
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(30));
  ASSERT_TRUE(server.connect(name, 8192, 10));
  start = Clock::now();
  server.waitReadable(30);
  EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(29));
  const mqd_t sender = mq_open(name.c_str(), O_WRONLY);
  std::thread late([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    daemonSend(sender, Bytes{'e', 'v', '2'});
  });
  start = Clock::now();
  server.waitReadable(10000);
  EXPECT_LT(Clock::now() - start, std::chrono::milliseconds(5000));
  late.join();
  EXPECT_EQ(3, server.recv(buffer, sizeof(buffer)));
  mq_close(sender);
  server.close();

  EXPECT_DEATH(fcbb::mqServer().connect(ivPrefix + "/bad", 8192, 10), "ivMqDescriptor>=0");
  EXPECT_TRUE(logged("ERROR: mq_maxmsg=10 mq_msgsize=8192\n"));
  EXPECT_TRUE(logged("ERROR: connect error " + ivPrefix + "/bad "));
}

TEST_F(MqTest, PipeOpensOnlyWhenTheDaemonCreatedBothQueues) {
  debug_on = true;
  DaemonPipe pipe;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_FALSE(pipe.open("pipe"));
  EXPECT_GE(msSince(start), 40);  // it waited for the daemon
  EXPECT_LT(msSince(start), 5000);
  EXPECT_TRUE(logged("connect " + ivPrefix + "pipe\n"));
  EXPECT_TRUE(logged("connect error " + ivPrefix + "pipe_ctos No such file or directory"));

  daemonQueue("pipe_ctos");
  EXPECT_FALSE(pipe.open("pipe"));
  EXPECT_TRUE(logged("connect error " + ivPrefix + "pipe_stoc No such file or directory"));
  EXPECT_FALSE(exists("pipe_stoc"));  // never created by the library
  Frame* frame = nullptr;
  EXPECT_EQ(-1, pipe.recvNonBlock(frame));  // both connections closed again
  frame = pipe.allocFrame(32);
  EXPECT_DEATH(pipe.sendBlock(frame), "Assertion `0' failed");
  pipe.freeFrame(frame);

  daemonQueue("pipe_stoc");
  EXPECT_TRUE(pipe.open("pipe"));
  EXPECT_EQ(0, pipe.recvNonBlock(frame));
  EXPECT_EQ(nullptr, frame);
}

TEST_F(MqTest, HeaderWordsAreBigEndianOnTheWire) {
  const mqd_t requests = daemonQueue("pipe_stoc");
  const mqd_t replies = daemonQueue("pipe_ctos");
  DaemonPipe pipe;
  ASSERT_TRUE(pipe.open("pipe"));
  Frame* frame = pipe.allocFrame(64);
  Frame* follower = pipe.allocFrame(8192);
  frame->setReqId(0x11223344);
  std::memcpy(frame->data(), "abc", 3);
  frame->setDataSize(3);
  frame->setNext(follower);
  EXPECT_EQ(19, pipe.send(frame));
  EXPECT_EQ((Bytes{0x11, 0x22, 0x33, 0x44, 0, 0, 0, 64, 0, 0, 0, 19, 0, 0, 0, 1, 'a', 'b', 'c'}),
            daemonReceive(requests));
  frame->setNext(nullptr);
  EXPECT_EQ(19, pipe.send(frame));
  EXPECT_EQ(0, daemonReceive(requests).at(15));  // last frame of its message
  pipe.freeFrame(frame);
  pipe.freeFrame(follower);
  EXPECT_DEATH(pipe.allocFrame(8193), "ipSize <= MaxFrameSize");

  daemonSend(replies, wireMessage(0xA0B0C0D0, 7, "xy"));
  EXPECT_EQ(18, pipe.recvNonBlock(frame));
  ASSERT_NE(nullptr, frame);
  EXPECT_EQ(0xA0B0C0D0u, frame->reqId());
  EXPECT_EQ(8192u, frame->allocSize());
  EXPECT_EQ(2u, frame->dataSize());
  EXPECT_EQ(7u, frame->wireNext());
  EXPECT_EQ(nullptr, frame->next());
  EXPECT_EQ(0, std::memcmp("xy", frame->data(), 2));
  pipe.recvDone(frame);
}

TEST_F(MqTest, ChainOfThreeFramesCrossesAFullQueueAndIsReassembled) {
  const mqd_t requests = daemonQueue("pipe_stoc", 2);
  const mqd_t replies = daemonQueue("pipe_ctos", 2);
  DaemonPipe pipe;
  ASSERT_TRUE(pipe.open("pipe"));
  const std::string parts[3] = {std::string(8176, 'A'), std::string(100, 'B'), "C"};
  Frame* chain[3];
  for (int i = 0; i < 3; ++i) {
    chain[i] = pipe.allocFrame(8192);
    chain[i]->setReqId(i + 1);
    std::memcpy(chain[i]->data(), parts[i].data(), parts[i].size());
    chain[i]->setDataSize(parts[i].size());
    if (i > 0) chain[i - 1]->setNext(chain[i]);
  }

  // A slow daemon that echoes every message: the sender meets a full queue
  // and the receiver an empty one.
  std::vector<size_t> lengths;
  std::thread daemon([&] {
    for (int i = 0; i < 3; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      const Bytes message = daemonReceive(requests);
      lengths.push_back(message.size());
      if (!message.empty()) daemonSend(replies, message);
    }
  });
  EXPECT_TRUE(pipe.sendBlock(chain[0]));
  Frame* received = nullptr;
  EXPECT_EQ(8192 + 116 + 17, pipe.recvBlock(received));
  daemon.join();
  EXPECT_EQ((std::vector<size_t>{8192, 116, 17}), lengths);

  const Frame* frame = received;
  for (int i = 0; i < 3; ++i) {
    ASSERT_NE(nullptr, frame);
    EXPECT_EQ(static_cast<unsigned int>(i + 1), frame->reqId());
    EXPECT_EQ(parts[i], std::string(reinterpret_cast<const char*>(frame->data()), frame->dataSize()));
    frame = frame->next();
  }
  EXPECT_EQ(nullptr, frame);

  pipe.freeFrame(chain[0]);
  pipe.recvDone(received);
  for (int i = 0; i < 10; ++i) EXPECT_NE(nullptr, pipe.allocFrame(16));  // all came back
}

TEST_F(MqTest, TimedRecvTimesOutOrTakesOneFrame) {
  daemonQueue("pipe_stoc");
  const mqd_t replies = daemonQueue("pipe_ctos");
  DaemonPipe pipe;
  ASSERT_TRUE(pipe.open("pipe"));
  Frame* frame = pipe.allocFrame(16);
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(0, pipe.timedRecv(frame, 30));
  EXPECT_EQ(nullptr, frame);
  EXPECT_GE(msSince(start), 25);
  EXPECT_LT(msSince(start), 5000);

  daemonSend(replies, wireMessage(1, 1, "first"));
  daemonSend(replies, wireMessage(2, 0, "second"));
  EXPECT_EQ(21, pipe.timedRecv(frame, 1000));
  ASSERT_NE(nullptr, frame);
  EXPECT_EQ(1u, frame->wireNext());
  EXPECT_EQ(nullptr, frame->next());  // no chain gathered
  pipe.recvDone(frame);
  EXPECT_EQ(22, pipe.timedRecv(frame, 1000));
  ASSERT_NE(nullptr, frame);
  EXPECT_EQ(2u, frame->reqId());
  pipe.recvDone(frame);
}

TEST_F(MqTest, ReceiveFailuresNeitherAssertNorLoseFrames) {
  daemonQueue("pipe_stoc");
  const mqd_t replies = daemonQueue("pipe_ctos");
  DaemonPipe pipe;
  ASSERT_TRUE(pipe.open("pipe"));
  Frame* frame = nullptr;
  daemonSend(replies, Bytes(8, 0));
  EXPECT_EQ(-1, pipe.recvNonBlock(frame));
  EXPECT_EQ(nullptr, frame);
  EXPECT_TRUE(logged("bad message from " + ivPrefix + "pipe_ctos: 8 bytes"));
  Bytes lying = wireMessage(1, 0, "four");
  lying[11] = 100;  // used_size 100, length 20
  daemonSend(replies, lying);
  EXPECT_EQ(-1, pipe.recvNonBlock(frame));
  EXPECT_TRUE(logged("20 bytes, used_size 100; dropped"));

  Frame* held[10];
  for (Frame*& out : held) ASSERT_NE(nullptr, out = pipe.allocFrame(16));
  daemonSend(replies, wireMessage(3, 0, "kept"));
  EXPECT_EQ(-1, pipe.recvNonBlock(frame));  // no free frame: the message waits
  EXPECT_TRUE(logged("no free frame to receive into"));
  pipe.freeFrame(held[0]);
  EXPECT_EQ(20, pipe.recvBlock(frame));
  ASSERT_NE(nullptr, frame);
  EXPECT_EQ(3u, frame->reqId());
  pipe.recvDone(frame);
  for (int i = 1; i < 10; ++i) pipe.freeFrame(held[i]);
}

}  // namespace
