#include "common/base/Thread.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <sstream>
#include <string>

#include "common/base/Semaphore.h"
#include "common/base/Time.h"
#include "tests/support/Emulation.h"

namespace {

using fcbb::Semaphore;
using fcbb::Thread;
using fcbb::Time;

// Polls isRequestTerminate() until asked to stop.
class PollingThread : public Thread {
 public:
  ~PollingThread() override { terminateThread(false); }

  Semaphore ivPolled;
  std::atomic<int> ivFirstPoll{-1};
  std::atomic<bool> ivStoppedByRequest{false};

 protected:
  void run() override {
    ivFirstPoll = isRequestTerminate();
    ivPolled.post();
    while (!isRequestTerminate()) usleep(1000);
    ivStoppedByRequest = true;
  }
};

// Sleeps on a semaphore that only its requestTerminate() override posts.
class SleepingThread : public Thread {
 public:
  ~SleepingThread() override { terminateThread(false); }
  void requestTerminate() override {
    Thread::requestTerminate();
    ivWake.post();
  }

  std::atomic<bool> ivWoken{false};

 protected:
  void run() override { ivWoken = ivWake.timedWait(Time() + 10000); }

 private:
  Semaphore ivWake;
};

// Blocks in a cancellation point for ever.
class BlockedThread : public Thread {
 public:
  ~BlockedThread() override { terminateThread(true); }

  Semaphore ivEntered;
  std::atomic<bool> ivUnwound{false};

 protected:
  void run() override {
    struct SetOnExit {
      std::atomic<bool>* ivFlag;
      ~SetOnExit() { *ivFlag = true; }
    } unwound{&ivUnwound};
    ivEntered.post();
    for (;;) pause();
  }
};

TEST(ThreadTest, StopsCooperativelyOnRequest) {
  PollingThread thread;
  EXPECT_FALSE(thread.isRunning());
  thread.waitForTerminate();  // never started: returns at once
  thread.requestTerminate();  // not running: no effect
  EXPECT_FALSE(thread.isRequestTerminate());

  ASSERT_TRUE(thread.startThread());
  EXPECT_TRUE(thread.isRunning());
  ASSERT_TRUE(thread.ivPolled.timedWait(Time() + 10000));
  EXPECT_EQ(0, thread.ivFirstPoll);
  EXPECT_TRUE(thread.isRunning());

  thread.terminateThread(false);
  EXPECT_TRUE(thread.ivStoppedByRequest);
  EXPECT_TRUE(thread.isRequestTerminate());
  EXPECT_FALSE(thread.isRunning());
  thread.waitForTerminate();  // finished: returns at once
}

TEST(ThreadTest, TerminateCallsTheOverride) {
  SleepingThread thread;
  ASSERT_TRUE(thread.startThread());
  thread.terminateThread(false);
  EXPECT_TRUE(thread.ivWoken);
  EXPECT_FALSE(thread.isRunning());
}

// Ignores the stop request and keeps polling for 10 s at most, so that only
// the cancellation point in isRequestTerminate() can end it early.
class DeafThread : public Thread {
 public:
  ~DeafThread() override { terminateThread(true); }

  std::atomic<bool> ivGaveUp{false};

 protected:
  void run() override {
    const Time end = Time() + 10000;
    while (Time() < end) isRequestTerminate();
    ivGaveUp = true;
  }
};

TEST(ThreadTest, CancelEndsRunAtItsCancellationPoints) {
  if (!qrx_test::testEmulator().empty()) {
    GTEST_SKIP() << qrx_test::kEmulatorCannotCancelBlockedThreads;
  }
  BlockedThread blocked;
  ASSERT_TRUE(blocked.startThread());
  ASSERT_TRUE(blocked.ivEntered.timedWait(Time() + 10000));
  blocked.terminateThread(true);
  EXPECT_FALSE(blocked.isRunning());  // cleared by the clean-up handler
  EXPECT_TRUE(blocked.isRequestTerminate());
  EXPECT_TRUE(blocked.ivUnwound);  // run() was unwound, its destructors ran

  DeafThread deaf;  // polling the request is itself a cancellation point
  ASSERT_TRUE(deaf.startThread());
  deaf.terminateThread(true);
  EXPECT_FALSE(deaf.ivGaveUp);
  EXPECT_FALSE(deaf.isRunning());
}

// Waits for its own termination from deep inside run(), so that the stack
// holds more frames than the backtrace writes.
class SelfJoiningThread : public Thread {
 public:
  ~SelfJoiningThread() override { terminateThread(false); }

 protected:
  void run() override { descend(20); }

 private:
  __attribute__((noinline)) int descend(int ipDepth) {
    if (ipDepth == 0) {
      waitForTerminate();
      return 0;
    }
    const int depth = descend(ipDepth - 1);
    asm volatile("" ::: "memory");  // keeps the recursion a real one
    return depth + 1;
  }
};

// Matches standard error holding ten symbol lines ("...[0x...]") before
// the failed assertion "false".
class TenFramesThenAssertion : public testing::MatcherInterface<const std::string&> {
 public:
  bool MatchAndExplain(const std::string& irStderr,
                       testing::MatchResultListener* opListener) const override {
    const size_t assertion = irStderr.find("Assertion `false' failed");
    if (assertion == std::string::npos) return false;
    std::istringstream lines(irStderr.substr(0, assertion));
    int frames = 0;
    for (std::string line; std::getline(lines, line);) {
      if (line.find("[0x") != std::string::npos && line.back() == ']') ++frames;
    }
    *opListener << frames << " frame lines";
    return frames == 10;
  }
  void DescribeTo(std::ostream* opOut) const override {
    *opOut << "10 backtrace lines, then Assertion `false' failed";
  }
};

void selfJoin() {
  SelfJoiningThread thread;
  thread.startThread();
  thread.waitForTerminate();
}

void secondStart() {
  PollingThread thread;
  thread.startThread();
  thread.startThread();
}

TEST(ThreadDeathTest, SecondStartFailsAssertion) {
  GTEST_FLAG_SET(death_test_style, qrx_test::threadsafeDeathTestStyle());
  EXPECT_DEATH(secondStart(), "Assertion `!ivPthread' failed");
}

TEST(ThreadDeathTest, SelfJoinWritesBacktraceAndFailsAssertion) {
  GTEST_FLAG_SET(death_test_style, qrx_test::threadsafeDeathTestStyle());
  EXPECT_DEATH(selfJoin(),
               testing::Matcher<const std::string&>(new TenFramesThenAssertion));
}

}  // namespace
