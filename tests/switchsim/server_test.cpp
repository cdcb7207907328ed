// The simulator on its queues, driven by a bare client: reply chains, bad
// requests, faults, event messages and the queues' lifetime.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <mqueue.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>

#include "tests/switchsim/SimTesting.h"
#include "common/backend/EventRecord.h"
#include "tools/switchsim/Simulator.h"
#include "tools/switchsim/Status.h"

namespace {

using namespace switchsim;
using namespace switchsim_test;

bool logHas(const Simulator& irSim, const std::string& irText) {
  const std::vector<std::string> lines = irSim.requestLog();
  return std::any_of(lines.begin(), lines.end(),
                     [&](const std::string& l) { return l.find(irText) != std::string::npos; });
}

bool queueExists(const std::string& irName) {
  const mqd_t queue = mq_open(irName.c_str(), O_RDONLY | O_NONBLOCK);
  if (queue == static_cast<mqd_t>(-1)) return false;
  mq_close(queue);
  return true;
}

EventCommand event(const std::vector<std::string>& irWords) {
  EventCommand command;
  std::string error;
  EXPECT_TRUE(parseEventCommand(irWords, &command, &error)) << error;
  return command;
}

class ServerTest : public ::testing::Test {
 protected:
  void SetUp() override { ivPrefix = usePrivatePrefix(); }
  std::string ivPrefix;
  std::string ivError;
};

TEST_F(ServerTest, LargeReplyArrivesAsAChainOfFrames) {
  FabricModel model = FabricModel::builtIn();
  for (unsigned i = 24; i < 120; ++i) {  // about 21 KB of counters: three frames
    SwitchPort port = model.ports[0];
    char name[17];
    std::snprintf(name, sizeof name, "2f%02x0e5a71004000", i);
    port.info.name = name;
    port.info.port_index = static_cast<cuint16>(i);
    port.stats.TotalRxBytes = i;
    model.ports.push_back(port);
  }
  Simulator sim(model);
  ServerOptions options;
  options.replyBufferBytes = 1024;  // has to grow twice
  sim.setServerOptions(options);
  ASSERT_TRUE(sim.start(&ivError)) << ivError;
  RawClient client;
  ASSERT_TRUE(client.connect());

  const Reply reply = client.call(77, request("rs_api_get_switch_fc_port_stat"));
  ASSERT_EQ(3u, reply.frames.size());
  for (std::size_t i = 0; i < reply.frames.size(); ++i) {
    const bool last = i + 1 == reply.frames.size();
    EXPECT_EQ(77u, reply.frames[i].reqId);
    EXPECT_EQ(8192u, reply.frames[i].allocSize);
    EXPECT_EQ(16 + reply.frames[i].data.size(), reply.frames[i].usedSize);
    EXPECT_EQ(last ? 0u : 1u, reply.frames[i].next);
    if (!last) {
      EXPECT_EQ(8192u - 16, reply.frames[i].data.size());
    }
  }
  EXPECT_EQ(0u, reply.status());
  const auto stats = results<switch_fc_port_stat_tA>(reply);
  ASSERT_EQ(120u, stats.size());
  EXPECT_EQ(model.ports[119].info.name, stats[119].name);
  EXPECT_EQ(119u, stats[119].TotalRxBytes);
  EXPECT_EQ(model.ports[21].stats.InvalidCRC, stats[21].InvalidCRC);
  EXPECT_TRUE(logHas(sim, "reply req_id=77 function=rs_api_get_switch_fc_port_stat status=0 (ok) bytes=" +
                              std::to_string(reply.data.size()) + " frames=3"));
}

TEST_F(ServerTest, BadRequestsAreAnsweredWithDistinctStatuses) {
  Simulator sim(FabricModel::builtIn());
  ASSERT_TRUE(sim.start(&ivError)) << ivError;
  RawClient client;
  ASSERT_TRUE(client.connect());

  Reply reply = client.call(1, request("rs_api_no_such_call"));
  EXPECT_EQ(kStatusUnknownFunction, reply.status());
  EXPECT_EQ(4u, reply.data.size());
  EXPECT_EQ(kStatusUnknownFunction, client.call(2, Bytes{0, 0, 0, 99}).status());
  const Bytes missingArgument = request("rs_api_create_zone", [](SCIMSerializerIf& out) {
    out.write("ZoneServiceName", CMPI_string, std::string("10000e5a71004000"));
  });
  EXPECT_EQ(kStatusBadArguments, client.call(3, missingArgument).status());

  const Bytes getName = request("rs_api_get_switch_name");
  client.sendRaw(4, getName, 0, 100);  // used_size is not the length
  ASSERT_TRUE(client.receive(&reply));
  EXPECT_EQ(4u, reply.frames[0].reqId);
  EXPECT_EQ(kStatusBadArguments, reply.status());

  client.sendBytes(Bytes(8, 0));  // no header: dropped, and serving goes on
  reply = client.call(5, getName);
  EXPECT_EQ(0u, reply.status());
  EXPECT_EQ("10000e5a71004000", results<std::string>(reply));

  // A request in two frames is joined; one broken off by another is not.
  const Bytes head(getName.begin(), getName.begin() + 10);
  const Bytes tail(getName.begin() + 10, getName.end());
  client.sendRaw(6, head, 1);
  client.sendRaw(6, tail, 0);
  ASSERT_TRUE(client.receive(&reply));
  EXPECT_EQ(6u, reply.frames[0].reqId);
  EXPECT_EQ(0u, reply.status());
  client.sendRaw(7, head, 1);
  client.sendRaw(8, getName, 0);
  ASSERT_TRUE(client.receive(&reply));
  EXPECT_EQ(7u, reply.frames[0].reqId);
  EXPECT_EQ(kStatusBadArguments, reply.status());
  ASSERT_TRUE(client.receive(&reply));
  EXPECT_EQ(8u, reply.frames[0].reqId);
  EXPECT_EQ(0u, reply.status());

  EXPECT_EQ(FabricModel::builtIn().zoning, sim.snapshot().zoning);
  EXPECT_TRUE(logHas(sim, "function=rs_api_no_such_call status=33264 (unknown-function)"));
  EXPECT_TRUE(logHas(sim, "shorter than a frame header"));
  EXPECT_TRUE(logHas(sim, "request req_id=6 function=rs_api_get_switch_name bytes=" +
                              std::to_string(getName.size()) + " frames=2"));
}

TEST_F(ServerTest, FaultsChangeTheAnswersOfOneFunction) {
  Simulator sim(FabricModel::builtIn());
  ASSERT_TRUE(sim.start(&ivError)) << ivError;
  RawClient client;
  ASSERT_TRUE(client.connect());
  const std::string service = "10000e5a71004000";
  const Bytes createZone = request("rs_api_create_zone", [&](SCIMSerializerIf& out) {
    out.write("ZoneServiceName", CMPI_string, service);
    out.write("ZoneName", CMPI_string, std::string("z_fault"));
  });

  sim.addFault({"rs_api_get_switch_name", 0x8101, 0, false, 1});
  Reply reply = client.call(1, request("rs_api_get_switch_name"));
  EXPECT_EQ(0x8101u, reply.status());
  EXPECT_EQ(4u, reply.data.size());
  EXPECT_EQ(0u, client.call(2, request("rs_api_get_switch_name")).status()) << "count spent";

  sim.addFault({"rs_api_create_zone", 0x8102});
  EXPECT_EQ(0x8102u, client.call(3, createZone).status());
  EXPECT_EQ(0x8102u, client.call(4, createZone).status());
  EXPECT_EQ(nullptr, sim.snapshot().zoning.findZone("z_fault")) << "the switch was not asked";
  sim.clearFaults();
  EXPECT_EQ(0u, client.call(5, createZone).status());
  EXPECT_NE(nullptr, sim.snapshot().zoning.findZone("z_fault"));

  sim.addFault({"rs_api_get_software_info", 0, 0, true});
  client.sendRaw(6, request("rs_api_get_software_info"));
  ASSERT_TRUE(client.receive(&reply));
  EXPECT_EQ(7u, reply.frames[0].reqId);
  EXPECT_EQ("7.4.0.12", results<software_info_t>(reply).version);

  sim.addFault({"rs_api_get_fabric_info", 0, 200});
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(0u, client.call(8, request("rs_api_get_fabric_info")).status());
  EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(200));
  EXPECT_TRUE(logHas(sim, "reply req_id=1 function=rs_api_get_switch_name status=33025 "
                          "(not-found) bytes=4 frames=1 fault: rs_api_get_switch_name "
                          "status=33025 count=1"));
}

TEST_F(ServerTest, EventMessagesHaveTheirExactBytes) {
  EventRecord record;
  record.reqId = -2;
  record.code = kEventPortStateChange;
  record.chassis = 1;
  record.blade = 2;
  record.port = 5;
  record.text = "Port 5 is offline";
  unsigned char message[kEventMessageSize];
  encodeEventMessage(record, message);
  const Bytes head(message, message + 32);
  EXPECT_EQ((Bytes{0xff, 0xff, 0xff, 0xfe, 0, 0, 5, 0x98, 0, 0, 5, 0x98, 0, 0, 0, 0,
                   0, 0, 0, 13, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 5}),
            head);
  EXPECT_EQ(record.text, std::string(reinterpret_cast<char*>(message + 32)));
  EXPECT_TRUE(std::all_of(message + 32 + record.text.size(), message + kEventMessageSize,
                          [](unsigned char c) { return c == 0; }));
  EventRecord decoded;
  ASSERT_TRUE(decodeEventMessage(message, sizeof message, &decoded, &ivError)) << ivError;
  EXPECT_EQ(record.text, decoded.text);
  EXPECT_EQ(-2, decoded.reqId);
  EXPECT_EQ(5u, decoded.port);
  EXPECT_FALSE(decodeEventMessage(message, 31, &decoded, &ivError));  // no room for the source
  record.text = std::string(2000, 'x');
  encodeEventMessage(record, message);
  ASSERT_TRUE(decodeEventMessage(message, sizeof message, &decoded, &ivError));
  EXPECT_EQ(1399u, decoded.text.size());

  // Events through the library's queue, as the library creates it.
  Simulator sim(FabricModel::builtIn());
  auto eventQueue = std::make_unique<fcbb::mqServer>();
  ASSERT_TRUE(eventQueue->connect(ivPrefix + "smis_ipc_ev", 8192, 10));
  auto receive = [&](EventRecord* opEvent) {
    unsigned char buffer[8192];
    const int n = eventQueue->recv(buffer, sizeof buffer);
    ASSERT_EQ(static_cast<int>(kEventMessageSize), n);
    ASSERT_TRUE(decodeEventMessage(buffer, static_cast<std::size_t>(n), opEvent, &ivError));
  };
  ASSERT_TRUE(sim.applyEvent(event({"port-state", "5", "offline"}), &ivError)) << ivError;
  receive(&decoded);
  EXPECT_EQ(0, decoded.reqId);
  EXPECT_EQ(13u, decoded.code);
  EXPECT_EQ(5u, decoded.port);
  EXPECT_EQ("Port 5 is offline", decoded.text);
  EXPECT_EQ(2u, sim.snapshot().ports[5].info.operational_state);

  ASSERT_TRUE(sim.applyEvent(event({"zone", "op=0:241:z_ev", "activate=cfg_maintenance"}), &ivError));
  receive(&decoded);
  EXPECT_EQ(1, decoded.reqId);
  EXPECT_EQ(3u, decoded.code);
  EXPECT_NE(nullptr, sim.snapshot().zoning.findZone("z_ev"));
  EXPECT_EQ("cfg_maintenance", sim.snapshot().activeZoneSet.name);

  ASSERT_TRUE(sim.applyEvent(event({"raw", "2", "port=7", "text=hello"}), &ivError));
  receive(&decoded);
  EXPECT_EQ(2u, decoded.code);
  EXPECT_EQ(7u, decoded.port);
  EXPECT_EQ("hello", decoded.text);

  EXPECT_FALSE(sim.applyEvent(event({"port-state", "99", "offline"}), &ivError));
  EXPECT_NE(std::string::npos, ivError.find("no port with port_index 99")) << ivError;
  EXPECT_FALSE(sim.applyEvent(event({"ip", "ip=300.1.1.1"}), &ivError));
  EXPECT_EQ("192.0.2.50", sim.snapshot().switchInfo.ip_address);

  eventQueue.reset();  // the library has gone: the change stays, the send fails
  EXPECT_FALSE(sim.applyEvent(event({"port-state", "5", "online"}), &ivError));
  EXPECT_NE(std::string::npos, ivError.find("no library is listening")) << ivError;
  EXPECT_EQ(1u, sim.snapshot().ports[5].info.operational_state);
}

TEST_F(ServerTest, AFullReplyQueueDropsRepliesButNotTheServer) {
  Simulator sim(FabricModel::builtIn());
  ServerOptions options;
  options.sendTimeoutMs = 100;
  sim.setServerOptions(options);
  ASSERT_TRUE(sim.start(&ivError)) << ivError;
  RawClient client;
  ASSERT_TRUE(client.connect());
  for (std::uint32_t id = 1; id <= 12; ++id) {  // paced: the request queue holds ten too
    client.sendRaw(id, request("rs_api_get_switch_name"));
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  for (int i = 0; i < 300 && !logHas(sim, "reply req_id=12 function=rs_api_get_switch_name dropped");
       ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  Reply reply;
  for (std::uint32_t id = 1; id <= 10; ++id) {  // the queue holds ten
    ASSERT_TRUE(client.receive(&reply));
    EXPECT_EQ(id, reply.frames[0].reqId);
  }
  EXPECT_TRUE(logHas(sim, "error: reply req_id=11 function=rs_api_get_switch_name dropped after "
                          "0 of 1 frames: the reply queue stayed full"));
  reply = client.call(13, request("rs_api_get_switch_name"));
  EXPECT_EQ(13u, reply.frames.at(0).reqId);
  EXPECT_EQ(0u, reply.status());
}

TEST_F(ServerTest, QueuesLiveFromStartToStop) {
  Simulator sim(FabricModel::builtIn());
  ASSERT_TRUE(sim.start(&ivError)) << ivError;
  const std::string requests = sim.requestQueueName();
  const std::string replies = sim.replyQueueName();
  EXPECT_EQ(ivPrefix + "smis_ipc_stoc", requests);
  EXPECT_EQ(ivPrefix + "smis_ipc_ctos", replies);
  EXPECT_FALSE(sim.start(&ivError));
  EXPECT_NE(std::string::npos, ivError.find("already serving")) << ivError;

  Simulator second(FabricModel::builtIn());
  EXPECT_FALSE(second.start(&ivError));
  EXPECT_NE(std::string::npos, ivError.find("cannot create message queue " + requests)) << ivError;
  ServerOptions replace;
  replace.replaceQueues = true;
  second.setServerOptions(replace);
  ASSERT_TRUE(second.start(&ivError)) << ivError;
  second.stop();

  sim.stop();
  EXPECT_FALSE(queueExists(requests));
  EXPECT_FALSE(queueExists(replies));
  ASSERT_TRUE(sim.start(&ivError, "other")) << ivError;
  EXPECT_TRUE(queueExists(ivPrefix + "other_stoc"));
  sim.stop();

  FabricModel empty = FabricModel::builtIn();
  empty.ports.clear();
  Simulator broken(empty);
  EXPECT_FALSE(broken.start(&ivError));
  EXPECT_NE(std::string::npos, ivError.find("inconsistent: ports")) << ivError;
}

}  // namespace
