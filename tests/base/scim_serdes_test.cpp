// The binary encoding of the switch daemon's records.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/base/SCIMSerdes.h"
#include "generated/smis_ipc/smis_ipc.h"

namespace {

using Bytes = std::vector<unsigned char>;

template <class T>
Bytes encode(const T& irRecord, size_t ipCapacity = 512, bool* opError = nullptr) {
  Bytes buffer(ipCapacity, 0xEE);
  SCIMSerializer serializer(buffer.data(), buffer.size());
  serializer.write("record", CMPI_instance, irRecord);
  if (opError != nullptr) *opError = serializer.hasError();
  buffer.resize(serializer.getWrittenLen());
  return buffer;
}

TEST(ScimSerdes, ValuesAreBigEndianWithLengthPrefixedTerminatedStrings) {
  fabric_info_t fabric;
  fabric.name = "F1";
  fabric.vlan = 5;
  EXPECT_EQ((Bytes{0, 0, 0, 2, 'F', '1', 0, 0, 5}), encode(fabric));

  fabric.name.clear();
  EXPECT_EQ((Bytes{0, 0, 0, 0, 0, 0, 5}), encode(fabric));

  zoneset_t empty;  // empty name, empty list: length, terminator, count
  EXPECT_EQ((Bytes{0, 0, 0, 0, 0, 0, 0, 0, 0}), encode(empty));

  zone_operation_t op;
  op.opcode = 0x0102;
  op.data1.member_type = 0x0304;
  op.data1.member_id = "a";
  EXPECT_EQ((Bytes{1, 2, 3, 4, 0, 0, 0, 1, 'a', 0, 0, 0, 0, 0, 0, 0, 0}), encode(op));

  switch_fc_port_stat_t stat;
  stat.LinkFailures = 0x0102030405060708ULL;
  Bytes bytes = encode(stat);
  ASSERT_EQ(4u + 1 + 2 + 19 * 8, bytes.size());
  EXPECT_EQ((Bytes{1, 2, 3, 4, 5, 6, 7, 8}), Bytes(bytes.begin() + 7, bytes.begin() + 15));

  switch_info_t info;
  info.switch_time.setTimeUsec(1000000ULL * 1700000000ULL);
  info.community_info_set = {"public", "private"};
  info.domain_id = 7;
  switch_info_t back;
  bytes = encode(info);
  SCIMDeserializer reader(bytes.data(), bytes.size());
  reader.read("record", CMPI_instance, back);
  EXPECT_FALSE(reader.getStatus());
  EXPECT_EQ(bytes.size(), reader.getWrittenLen());
  EXPECT_EQ(info, back);
}

TEST(ScimSerdes, ShortBuffersSetAStickyErrorAndKeepWhatFitted) {
  zone_t zone;
  zone.name = "zone_a";
  zone.member_list.resize(2);
  zone.member_list[0].member_id = "10:00:00:00:c9:aa:bb:cc";
  zone.member_list[1].member_id = "10:00:00:00:c9:aa:bb:dd";
  bool error = false;
  Bytes full = encode(zone, 512, &error);
  ASSERT_FALSE(error);
  Bytes cut = encode(zone, 30, &error);  // name and count fit, the first member does not
  EXPECT_TRUE(error);
  EXPECT_EQ(4u + 6 + 1 + 4 + 2, cut.size());
  EXPECT_EQ(Bytes(full.begin(), full.begin() + cut.size()), cut);

  // Reading: a string running past the end, a missing terminator, a list
  // count far beyond the data.
  Bytes pastEnd{0, 0, 0, 9, 'a', 'b', 0};
  std::string text = "kept";
  SCIMDeserializer reader(pastEnd.data(), pastEnd.size());
  reader.read("name", CMPI_string, text);
  EXPECT_TRUE(reader.getStatus());
  EXPECT_EQ("kept", text);
  unsigned short number = 9;
  reader.read("vlan", CMPI_uint16, number);
  EXPECT_EQ(9, number);  // nothing is read after an error

  Bytes unterminated{0, 0, 0, 2, 'a', 'b', 'c'};
  SCIMDeserializer noZero(unterminated.data(), unterminated.size());
  noZero.read("name", CMPI_string, text);
  EXPECT_TRUE(noZero.getStatus());
  EXPECT_EQ("kept", text);

  Bytes huge{0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0};
  string_tA names{"old"};
  SCIMDeserializer counted(huge.data(), huge.size());
  counted.read("names", CMPI_stringA, names);
  EXPECT_TRUE(counted.getStatus());
  EXPECT_EQ((string_tA{"old"}), names);
  zone_member_data_tA members;
  SCIMDeserializer records(huge.data(), huge.size());
  records.read("members", CMPI_instanceA, members);
  EXPECT_TRUE(records.getStatus());
  EXPECT_TRUE(members.empty());

  // A truncated number reads as 0.
  Bytes two{0x12, 0x34};
  unsigned int word = 5;
  SCIMDeserializer shortWord(two.data(), two.size());
  shortWord.read("word", CMPI_uint32, word);
  EXPECT_TRUE(shortWord.getStatus());
  EXPECT_EQ(0u, word);
}

}  // namespace
