// The request client over an in-memory pipe that plays the daemon from a
// script: it keeps every request's bytes and answers each with the next
// scripted reply, split into frames as the daemon would send it.
#include <gtest/gtest.h>
#include <sched.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "common/base/PerfSamples.h"
#include "common/base/SCIMSerdes.h"
#include "generated/smis_ipc/smis_ipc_client.h"
#include "tests/support/InMemoryPipe.h"

namespace {

using fcbb::Frame;
using fcbb::FrameBuffer;
using qrxtest::Bytes;

// Encodes values with the binary serializer, for requests and replies.
template <typename Fill>
Bytes encode(Fill ipFill) {
  Bytes buffer(1 << 20);
  SCIMSerializer serializer(buffer.data(), buffer.size());
  ipFill(serializer);
  EXPECT_FALSE(serializer.hasError());
  buffer.resize(serializer.getWrittenLen());
  return buffer;
}

Bytes statusOnly(cuint32 ipStatus) {
  return encode([&](SCIMSerializer& s) { s.write("status", CMPI_uint32, ipStatus); });
}

// Answers each request with the next scripted reply.
class ScriptedPipe : public qrxtest::InMemoryPipe {
 public:
  void script(Bytes ipData, std::uint32_t ipSkew = 0) {
    Reply reply;
    reply.data = std::move(ipData);
    reply.reqIdSkew = ipSkew;
    script(std::move(reply));
  }
  void script(Reply ipReply) {
    std::lock_guard<std::mutex> lock(ivMutex);
    ivScript.push_back(std::move(ipReply));
  }

 protected:
  Reply answer(const Bytes&) override {
    std::lock_guard<std::mutex> lock(ivMutex);
    Reply reply = std::move(ivScript.front());
    ivScript.pop_front();
    return reply;
  }

 private:
  std::mutex ivMutex;
  std::deque<Reply> ivScript;
};

// A reply of `ipNames` names of 30 characters: about 34 bytes each.
Bytes namesReply(int ipNames, string_tA* opNames = nullptr) {
  string_tA names;
  for (int i = 0; i < ipNames; ++i) {
    char name[40];
    std::snprintf(name, sizeof name, "node-%06d-20000025b5aa0001-xyz", i);
    names.push_back(name);
  }
  if (opNames != nullptr) *opNames = names;
  return encode([&](SCIMSerializer& s) {
    s.write("status", CMPI_uint32, cuint32{0});
    s.write("NodeNames", CMPI_stringA, names);
  });
}

TEST(RequestClientTest, RequestBytesResultsAndTiming) {
  ScriptedPipe pipe;
  rs_api_client_mq client(pipe);
  scim_clear_perfdata();

  pipe.script(encode([](SCIMSerializer& s) {
    s.write("status", CMPI_uint32, cuint32{0});
    s.write("Name", CMPI_string, std::string("100000051e0a0b0c"));
  }));
  std::string name;
  ASSERT_EQ(0, client.get_switch_name(name));
  EXPECT_EQ("100000051e0a0b0c", name);

  // Arguments follow the function name in table order; a member record is
  // its two fields. Checked byte by byte against the wire layout.
  pipe.script(statusOnly(0));
  zone_member_data_t member;
  member.member_type = 2;
  member.member_id = "W";
  ASSERT_EQ(0, client.add_zone_member("zs", "Z1", member));
  const std::string function = "rs_api_add_zone_member";
  Bytes expected = {0, 0, 0, static_cast<unsigned char>(function.size())};
  expected.insert(expected.end(), function.begin(), function.end());
  const Bytes rest = {0, 0, 0, 2, 'z', 's', 0, 0, 0, 0, 2, 'Z', '1', 0, 0, 2, 0, 0, 0, 1, 'W', 0};
  expected.insert(expected.end(), 0);
  expected.insert(expected.end(), rest.begin(), rest.end());
  ASSERT_EQ(2u, pipe.requests().size());
  EXPECT_EQ(expected, pipe.requests()[1]);
  EXPECT_EQ((std::vector<std::uint32_t>{0, 1}), pipe.reqIds());

  // A reply with several results fills all of them.
  zone_t zone;
  zone.name = "Z1";
  zone.member_list.push_back(member);
  zoneset_t zoneSet;
  zoneSet.name = "ZS";
  zoneSet.zone_names = {"Z1"};
  pipe.script(encode([&](SCIMSerializer& s) {
    s.write("status", CMPI_uint32, cuint32{0});
    s.write("ZoneList", CMPI_instanceA, zone_tA{zone});
    s.write("AliasList", CMPI_instanceA, alias_tA{});
    s.write("ZonesetList", CMPI_instanceA, zoneset_tA{zoneSet});
  }));
  zone_tA zones;
  alias_tA aliases{alias_t()};
  zoneset_tA zoneSets;
  ASSERT_EQ(0, client.session_start("zs", zones, aliases, zoneSets));
  EXPECT_EQ(zone_tA{zone}, zones);
  EXPECT_TRUE(aliases.empty());
  EXPECT_EQ(zoneset_tA{zoneSet}, zoneSets);

  ScimPerfEntry entry;
  ASSERT_TRUE(scim_get_perfentry("rs_api_client_mq.get_switch_name", entry));
  EXPECT_EQ(1u, entry.NumSamples);
  EXPECT_TRUE(scim_get_perfentry("rs_api_client_mq.add_zone_member", entry));
  EXPECT_EQ(0, pipe.outstanding());
}

TEST(RequestClientTest, FailuresLeaveTheOutputUntouched) {
  ScriptedPipe pipe;
  rs_api_client_mq client(pipe);
  switch_info_t info;
  info.name = "before";

  pipe.script(statusOnly(32770));  // the daemon's status, passed on
  EXPECT_EQ(32770, client.get_switch_info(info));
  EXPECT_EQ("before", info.name);

  // Status 0 but a result cut short: a local failure, nothing assigned.
  Bytes truncated = encode([](SCIMSerializer& s) {
    s.write("status", CMPI_uint32, cuint32{0});
    s.write("name", CMPI_string, std::string("sw"));
  });
  pipe.script(truncated);
  EXPECT_EQ(-1, client.get_switch_info(info));
  EXPECT_EQ("before", info.name);

  pipe.script(Bytes{0, 0});  // no whole status word
  EXPECT_EQ(-1, client.get_switch_info(info));

  // Arguments that do not fit one request frame are not sent.
  const std::size_t sentBefore = pipe.requests().size();
  EXPECT_EQ(-1, client.create_zone("zs", std::string(9000, 'z')));
  EXPECT_EQ(sentBefore, pipe.requests().size());

  // No free frame: nothing is sent.
  pipe.setOutOfFrames(true);
  EXPECT_EQ(-1, client.get_switch_info(info));
  EXPECT_EQ(sentBefore, pipe.requests().size());
  EXPECT_EQ("before", info.name);
  EXPECT_EQ(0, pipe.outstanding());
}

TEST(RequestClientTest, LongRepliesAreGatheredAndTooLongOnesRefusedInStep) {
  ScriptedPipe pipe;
  rs_api_client_mq client(pipe);
  const std::size_t frameData = fcbb::kMaxFrameSize - fcbb::kFrameHeaderSize;

  // Sixty frames and more, joined in order.
  string_tA names;
  const Bytes sixty = namesReply(14500, &names);
  ASSERT_GT(sixty.size(), 60 * frameData);
  pipe.script(sixty);
  string_tA received;
  ASSERT_EQ(0, client.get_node_names(received));
  EXPECT_EQ(names, received);

  // Over the limit: read to its last frame, refused, and the next call is
  // answered by its own reply.
  fcbb::ExchangeLimits limits;
  limits.maxReplyBytes = 3 * frameData;
  client.setExchangeLimits(limits);
  pipe.script(namesReply(1000));  // about 34,000 bytes, five frames
  received = {"kept"};
  EXPECT_EQ(-1, client.get_node_names(received));
  EXPECT_EQ(string_tA{"kept"}, received);
  EXPECT_EQ(0, pipe.waiting());
  pipe.script(namesReply(200, &names));  // within the limit
  ASSERT_EQ(0, client.get_node_names(received));
  EXPECT_EQ(names, received);
  EXPECT_EQ(0, pipe.outstanding());
}

TEST(RequestClientTest, DuplicateAndCutOffRepliesDoNotPutTheClientOutOfStep) {
  ScriptedPipe pipe;
  rs_api_client_mq client(pipe);
  fcbb::ExchangeLimits limits;
  limits.chainTimeoutMs = 50;
  client.setExchangeLimits(limits);
  auto nameReply = [](const char* ipName) {
    return encode([&](SCIMSerializer& s) {
      s.write("status", CMPI_uint32, cuint32{0});
      s.write("Name", CMPI_string, std::string(ipName));
    });
  };

  // The daemon answers twice; the copy is dropped by the next call.
  qrxtest::InMemoryPipe::Reply twice;
  twice.data = namesReply(600);  // three frames
  twice.copies = 2;
  pipe.script(twice);
  string_tA names;
  ASSERT_EQ(0, client.get_node_names(names));
  EXPECT_EQ(600u, names.size());
  pipe.script(nameReply("sw1"));
  std::string name;
  ASSERT_EQ(0, client.get_switch_name(name));
  EXPECT_EQ("sw1", name);

  // The daemon stops after two frames of three: the call fails once the
  // chain stalls, and the next call gets its own reply.
  qrxtest::InMemoryPipe::Reply cut;
  cut.data = namesReply(600);
  cut.cutAfter = 2;
  pipe.script(cut);
  names = {"kept"};
  EXPECT_EQ(-1, client.get_node_names(names));
  EXPECT_EQ(string_tA{"kept"}, names);
  pipe.script(nameReply("sw2"));
  ASSERT_EQ(0, client.get_switch_name(name));
  EXPECT_EQ("sw2", name);
  EXPECT_EQ(0, pipe.outstanding());
}

TEST(RequestClientTest, AbandonedRequestsStopWaitingForGood) {
  ScriptedPipe pipe;
  rs_api_client_mq client(pipe);
  qrxtest::InMemoryPipe::Reply never;  // the daemon takes the request and never answers
  never.data = statusOnly(0);
  never.cutAfter = 0;
  pipe.script(never);
  int rc = 0;
  std::thread waiting([&] {
    std::string name;
    rc = client.get_switch_name(name);
  });
  while (pipe.requests().empty()) std::this_thread::yield();
  client.abandonRequests();
  waiting.join();
  EXPECT_EQ(-1, rc);
  std::string name;
  EXPECT_EQ(-1, client.get_switch_name(name));
  EXPECT_EQ(1u, pipe.requests().size());  // nothing more was sent
  EXPECT_EQ(0, pipe.outstanding());
}

TEST(RequestClientTest, ConcurrentCallsAreSerialisedAndNumberedInOrder) {
  ScriptedPipe pipe;
  rs_api_client_mq client(pipe);
  constexpr int kCallsPerThread = 300;
  for (int i = 0; i < 2 * kCallsPerThread; ++i) {
    pipe.script(encode([](SCIMSerializer& s) {
      s.write("status", CMPI_uint32, cuint32{0});
      s.write("Software", CMPI_instance, [] {
        software_info_t software;
        software.version = "9.1.0";
        return software;
      }());
    }));
  }
  auto caller = [&client](int* opFailures) {
    for (int i = 0; i < kCallsPerThread; ++i) {
      software_info_t software;
      if (client.get_software_info(software) != 0 || software.version != "9.1.0") ++*opFailures;
    }
  };
  int failures[2] = {0, 0};
  std::thread one(caller, &failures[0]);
  std::thread two(caller, &failures[1]);
  one.join();
  two.join();
  EXPECT_EQ(0, failures[0] + failures[1]);
  EXPECT_FALSE(pipe.overlapped());
  const std::vector<std::uint32_t> ids = pipe.reqIds();
  ASSERT_EQ(2u * kCallsPerThread, ids.size());
  for (std::uint32_t i = 0; i < ids.size(); ++i) ASSERT_EQ(i, ids[i]);
}

TEST(RequestClientDeathTest, ReplyToAnotherRequestIsFatal) {
  ScriptedPipe pipe;
  rs_api_client_mq client(pipe);
  pipe.script(statusOnly(0), 1);
  std::string name;
  EXPECT_DEATH(client.get_switch_name(name), "ipIn->req_id == \\(\\*opOut\\)->req_id");
}

}  // namespace
