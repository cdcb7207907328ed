#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <set>
#include <thread>
#include <vector>

#include "common/base/PoolAlloc.h"
#include "common/mqueue/FramePipeIf.h"

namespace {

using fcbb::Frame;
using fcbb::FrameBuffer;

struct Item {
  unsigned int owner;
  unsigned char payload[60];
};
using Pool = fcbb::InstancePool<Item, 10>;

TEST(PoolTest, TenOutAtOnceAndAFreedSlotWaitsBehindTheTail) {
  Pool pool;
  std::vector<Item*> out;
  for (int i = 0; i < 10; ++i) {
    Item* item = pool.alloc();
    ASSERT_NE(nullptr, item);
    EXPECT_EQ(0u, item->owner);
    out.push_back(item);
  }
  EXPECT_EQ(10u, std::set<Item*>(out.begin(), out.end()).size());
  EXPECT_EQ(nullptr, pool.alloc());

  pool.free(out[3]);
  Item* former_tail = pool.alloc();
  ASSERT_NE(nullptr, former_tail);
  EXPECT_EQ(out.end(), std::find(out.begin(), out.end(), former_tail));
  EXPECT_EQ(nullptr, pool.alloc());  // out[3] is held back behind the tail

  pool.free(former_tail);
  EXPECT_EQ(out[3], pool.alloc());
  EXPECT_EQ(nullptr, pool.alloc());

  for (Item* item : out) pool.free(item);
  for (int i = 0; i < 10; ++i) EXPECT_NE(nullptr, pool.alloc());
}

TEST(PoolTest, MisuseIsAsserted) {
  Pool pool;
  Item* item = pool.alloc();
  pool.free(item);
  EXPECT_DEATH(pool.free(item), "buffers\\[idx\\].next==0xFF191014");

  item = pool.alloc();
  Item* inside = reinterpret_cast<Item*>(reinterpret_cast<char*>(item) + 4);
  EXPECT_DEATH(pool.free(inside),
               "static_cast<void\\*>\\(ibuf\\)==static_cast<void\\*>\\(&\\(buffers\\[idx\\]\\.data\\)\\)");
  Item outside;
  EXPECT_DEATH(pool.free(&outside), "idx <= ibuffNr");
}

TEST(PoolTest, ThreadsNeverShareASlotAndAllSlotsComeBack) {
  Pool pool;
  std::atomic<int> clashes{0};
  std::vector<std::thread> threads;
  for (unsigned int id = 1; id <= 8; ++id) {
    threads.emplace_back([&pool, &clashes, id] {
      for (int i = 0; i < 100000; ++i) {
        Item* item = pool.alloc();
        if (item == nullptr) continue;
        item->owner = id;
        std::this_thread::yield();
        if (item->owner != id) ++clashes;
        pool.free(item);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(0, clashes.load());
  for (int i = 0; i < 10; ++i) EXPECT_NE(nullptr, pool.alloc());
  EXPECT_EQ(nullptr, pool.alloc());
}

TEST(FrameTest, ChainPointerStaysOutsideTheWireBytesAndDataSizeIsBounded) {
  static FrameBuffer first;
  static FrameBuffer second;
  Frame* frame = first.frame();
  frame->reset(64);
  frame->setDataSize(48);  // exactly full
  unsigned char header[16];
  std::memcpy(header, frame->bytes(), sizeof(header));
  frame->setNext(second.frame());
  EXPECT_EQ(second.frame(), frame->next());
  EXPECT_EQ(0, std::memcmp(header, frame->bytes(), sizeof(header)));
  EXPECT_DEATH(frame->setDataSize(49), "alloc_size >= used_size");
  EXPECT_DEATH(frame->setDataSize(0xFFFFFFF8u), "alloc_size >= used_size");  // no wrap-around
}

}  // namespace
