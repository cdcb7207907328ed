#include "common/base/trace.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

// Each test logs into a private file and reads back what was written.
class TraceTest : public ::testing::Test {
 protected:
  void SetUp() override {
    char path[] = "/tmp/qrx_trace_test.XXXXXX";
    int tmp = mkstemp(path);
    ASSERT_GE(tmp, 0);
    close(tmp);
    ivPath = path;
    debug_on = false;
  }

  void TearDown() override {
    trace_close();
    debug_on = false;
    std::remove(ivPath.c_str());
  }

  std::string contents() const {
    std::ifstream in(ivPath);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }

  std::string dumpOf(const std::vector<unsigned char>& bytes) {
    trace_open(ivPath.c_str());
    trace_data(false, bytes.data(), static_cast<unsigned int>(bytes.size()), "cap %d\n", 7);
    trace_close();
    return contents();
  }

  std::string ivPath;
};

std::vector<unsigned char> sequence(unsigned int count) {
  std::vector<unsigned char> bytes(count);
  for (unsigned int i = 0; i < count; ++i) bytes[i] = static_cast<unsigned char>(0x30 + i % 64);
  return bytes;
}

TEST_F(TraceTest, DumpLineShapes) {
  // Three bytes: offset, pairs, 13 missing bytes as 39 blanks, two blanks,
  // characters with "." for the unprintable one.
  EXPECT_EQ(dumpOf({0x41, 0x00, 0x7a}),
            "cap 7\n0000 41 00 7a" + std::string(39, ' ') + "  A.z\n");
}

TEST_F(TraceTest, DumpIsWrittenOneLineBehind) {
  const std::string line0 =
      "0000 30 31 32 33 34 35 36 37 38 39 3a 3b 3c 3d 3e 3f  0123456789:;<=>?\n";
  const std::string line1 =
      "0010 40 41 42 43 44 45 46 47 48 49 4a 4b 4c 4d 4e 4f  @ABCDEFGHIJKLMNO\n";

  // 17 bytes: the full first line and a padded second line of one byte.
  EXPECT_EQ(dumpOf(sequence(17)), "cap 7\n" + line0 + "0010 40" + std::string(45, ' ') + "  @\n");
  std::remove(ivPath.c_str());

  // 16 bytes: the only line is never written.
  EXPECT_EQ(dumpOf(sequence(16)), "cap 7\n");
  std::remove(ivPath.c_str());

  // 32 bytes: the first line only.
  EXPECT_EQ(dumpOf(sequence(32)), "cap 7\n" + line0);
  std::remove(ivPath.c_str());

  // 33 bytes: two full lines and the one-byte tail.
  EXPECT_EQ(dumpOf(sequence(33)),
            "cap 7\n" + line0 + line1 + "0020 50" + std::string(45, ' ') + "  P\n");
  std::remove(ivPath.c_str());

  // Nothing to dump: the caption alone.
  EXPECT_EQ(dumpOf({}), "cap 7\n");
}

TEST_F(TraceTest, OffsetsWidenPastFourDigits) {
  std::vector<unsigned char> bytes(0x10000 + 3, 0xff);
  std::string text = dumpOf(bytes);
  EXPECT_NE(text.find("\nfff0 ff ff"), std::string::npos);
  // The partial line at 0x10000 keeps all five digits and stays aligned.
  EXPECT_NE(text.find("\n10000 ff ff ff" + std::string(39, ' ') + "  ...\n"), std::string::npos);
  EXPECT_EQ(text.substr(text.size() - 4), "...\n");
}

TEST_F(TraceTest, DebugSwitchFiltersOnlyDebugMessages) {
  const unsigned char bytes[] = {'h', 'i'};
  trace_open(ivPath.c_str());
  trace_log(true, "[%s, %d] hidden\n", "fn", 1);
  trace_data(true, bytes, sizeof(bytes), "hidden dump\n");
  trace_log(false, "[%s, %s, %d] ERROR: shown %s\n", "unit", "fn", 2, "always");
  trace_data(false, bytes, sizeof(bytes), "dump\n");
  debug_on = true;
  trace_log(true, "[%s, %d] now shown\n", "fn", 3);
  trace_close();

  EXPECT_EQ(contents(),
            "[unit, fn, 2] ERROR: shown always\n"
            "dump\n0000 68 69" + std::string(42, ' ') + "  hi\n"
            "[fn, 3] now shown\n");
}

TEST_F(TraceTest, StandardErrorBeforeOpenAndAfterFailedOpen) {
  testing::internal::CaptureStderr();
  trace_log(false, "before open %d\n", 1);
  trace_open("/nonexistent-dir/trace.log");
  trace_log(false, "after failed open\n");
  std::string err = testing::internal::GetCapturedStderr();
  EXPECT_EQ(err, "before open 1\nafter failed open\n");
  EXPECT_EQ(trace_file_path(), trace_default_path());

  testing::internal::CaptureStderr();
  trace_open(ivPath.c_str());
  trace_log(false, "to the file\n");
  trace_close();
  trace_log(false, "after close\n");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "after close\n");
  EXPECT_EQ(contents(), "to the file\n");
  EXPECT_EQ(trace_file_path(), ivPath);
}

TEST_F(TraceTest, FileIsAppendedAcrossOpens) {
  trace_open(ivPath.c_str());
  trace_log(false, "first load\n");
  trace_close();
  trace_open(ivPath.c_str());
  trace_log(false, "second load\n");
  // Reopening while open closes the earlier stream and keeps appending.
  trace_open(ivPath.c_str());
  trace_log(false, "third\n");
  trace_close();
  EXPECT_EQ(contents(), "first load\nsecond load\nthird\n");
}

TEST_F(TraceTest, ConcurrentDumpsAreNeverInterleaved) {
  const int kThreads = 4;
  const int kDumps = 200;
  trace_open(ivPath.c_str());
  std::vector<std::thread> writers;
  for (int t = 0; t < kThreads; ++t) {
    writers.emplace_back([t] {
      std::vector<unsigned char> bytes(33, static_cast<unsigned char>('a' + t));
      for (int n = 0; n < kDumps; ++n) {
        trace_data(false, bytes.data(), 33, "dump %d\n", t);
        trace_log(false, "line %d\n", t);
      }
    });
  }
  for (auto& w : writers) w.join();
  trace_close();

  // Every caption is followed directly by its own three dump lines.
  std::istringstream in(contents());
  std::string line;
  int captions = 0;
  while (std::getline(in, line)) {
    if (line.rfind("dump ", 0) != 0) continue;
    ++captions;
    char c = static_cast<char>('a' + (line[5] - '0'));
    for (const char* offset : {"0000 ", "0010 ", "0020 "}) {
      ASSERT_TRUE(std::getline(in, line));
      ASSERT_EQ(line.rfind(offset, 0), 0u) << line;
      ASSERT_EQ(line.back(), c) << line;
    }
  }
  EXPECT_EQ(captions, kThreads * kDumps);
}

TEST(TracePath, EnvironmentOverridesDefault) {
  unsetenv(TRACE_PATH_ENV);
  EXPECT_STREQ(trace_default_path(), "/tmp/smis_provider_backend.log.3570");
  setenv(TRACE_PATH_ENV, "", 1);
  EXPECT_STREQ(trace_default_path(), "/tmp/smis_provider_backend.log.3570");
  setenv(TRACE_PATH_ENV, "/tmp/private.log", 1);
  EXPECT_STREQ(trace_default_path(), "/tmp/private.log");
  unsetenv(TRACE_PATH_ENV);
}

}  // namespace
