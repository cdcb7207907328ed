// The request client against the simulated switch over the real message
// queues, where the frame pool is the real ten-frame pool: many threads
// with long replies at once, a reply over the limit, and a daemon that goes
// away or is replaced while a request waits for it.
#include <gtest/gtest.h>
#include <mqueue.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "common/mqueue/FramePipeMqTmpl.h"
#include "generated/smis_ipc/smis_ipc_client.h"
#include "tests/support/TraceCapture.h"
#include "tools/switchsim/Simulator.h"

namespace {

using switchsim::FabricModel;

FabricModel bigModel() {
  FabricModel model = FabricModel::builtIn(2500);
  model.switchInfo.switch_time.setTimeUsec(1700000000ULL * 1000000ULL);
  return model;
}

class DaemonLinkTest : public ::testing::Test {
 protected:
  void SetUp() override {
    setenv("QRX_SMIS_QUEUE_PREFIX", ("/qrxlink" + std::to_string(getpid())).c_str(), 1);
  }
  TraceCapture ivTrace;
};

TEST_F(DaemonLinkTest, SixteenThreadsWithLongRepliesShareTheTenFramePool) {
  switchsim::Simulator sim(bigModel());
  std::string error;
  ASSERT_TRUE(sim.start(&error)) << error;
  FabricModel copy = bigModel();
  switchsim::SimulatedSwitch direct(copy);
  switch_fc_port_info_tA ports;
  switch_fc_port_stat_tA stats;
  protocol_endpoint_info_tA endpoints;
  ASSERT_EQ(0, direct.get_switch_fc_port_info(ports));
  ASSERT_EQ(0, direct.get_switch_fc_port_stat(stats));
  ASSERT_EQ(0, direct.get_protocol_endpoint_info(endpoints));

  fcbb::DaemonPipe pipe;
  ASSERT_TRUE(pipe.open("smis_ipc"));
  rs_api_client_mq client(pipe);
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 16; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < 6; ++i) {
        switch ((t + i) % 4) {
          case 0: {
            switch_fc_port_stat_tA got;  // about 440 KiB, 54 frames
            if (client.get_switch_fc_port_stat(got) != 0 || !(got == stats)) ++wrong;
            break;
          }
          case 1: {
            switch_fc_port_info_tA got;
            if (client.get_switch_fc_port_info(got) != 0 || !(got == ports)) ++wrong;
            break;
          }
          case 2: {
            protocol_endpoint_info_tA got;
            if (client.get_protocol_endpoint_info(got) != 0 || !(got == endpoints)) ++wrong;
            break;
          }
          default: {
            std::string name;
            if (client.get_switch_name(name) != 0 || name != copy.switchInfo.name) ++wrong;
          }
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(0, wrong.load());

  // A reply over the limit fails alone; the next call is in step.
  fcbb::ExchangeLimits limits;
  limits.maxReplyBytes = 100000;
  client.setExchangeLimits(limits);
  switch_fc_port_stat_tA refused;
  EXPECT_EQ(-1, client.get_switch_fc_port_stat(refused));
  EXPECT_TRUE(refused.empty());
  EXPECT_TRUE(ivTrace.contains("refused the reply to req_id=96"));
  std::string name;
  EXPECT_EQ(0, client.get_switch_name(name));
  EXPECT_EQ(copy.switchInfo.name, name);

  // Every pool frame came back.
  std::vector<fcbb::Frame*> frames;
  for (fcbb::Frame* f; (f = pipe.allocFrame(16)) != nullptr;) frames.push_back(f);
  EXPECT_EQ(10u, frames.size());
  for (fcbb::Frame* f : frames) pipe.freeFrame(f);
}

TEST_F(DaemonLinkTest, ARequestFollowsTheDaemonWhenItsQueuesAreGoneOrReplaced) {
  switchsim::Simulator first(FabricModel::builtIn());
  std::string error;
  ASSERT_TRUE(first.start(&error)) << error;
  fcbb::DaemonPipe pipe;
  ASSERT_TRUE(pipe.open("smis_ipc"));
  rs_api_client_mq client(pipe);
  const std::string expected = FabricModel::builtIn().switchInfo.name;

  // The daemon takes the request and never answers; then its queues go.
  first.addFault({"rs_api_get_switch_name", 0, 60000});
  std::string name;
  int rc = 1;
  std::thread waiting([&] { rc = client.get_switch_name(name); });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  mq_unlink(first.requestQueueName().c_str());
  mq_unlink(first.replyQueueName().c_str());
  std::this_thread::sleep_for(std::chrono::milliseconds(400));
  // A new daemon: the request goes again, to it.
  switchsim::Simulator second(FabricModel::builtIn());
  const bool secondStarted = second.start(&error);
  if (!secondStarted) client.abandonRequests();  // let the waiting call end
  waiting.join();
  ASSERT_TRUE(secondStarted) << error;
  EXPECT_EQ(0, rc);
  EXPECT_EQ(expected, name);
  EXPECT_TRUE(ivTrace.contains("the daemon's queues are gone"));
  first.stop();

  // Now a daemon that hangs is replaced under its own names (--replace).
  second.addFault({"rs_api_get_switch_name", 0, 60000});
  name.clear();
  rc = 1;
  std::thread replaced([&] { rc = client.get_switch_name(name); });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  switchsim::Simulator third(FabricModel::builtIn());
  switchsim::ServerOptions options;
  options.replaceQueues = true;
  third.setServerOptions(options);
  const bool thirdStarted = third.start(&error);
  if (!thirdStarted) client.abandonRequests();
  replaced.join();
  ASSERT_TRUE(thirdStarted) << error;
  EXPECT_EQ(0, rc);
  EXPECT_EQ(expected, name);
  EXPECT_TRUE(ivTrace.contains("the daemon's queues were created anew"));
  third.stop();
  second.stop();
}

}  // namespace
