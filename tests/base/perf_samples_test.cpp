// The timing-sample store and its statistics.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/base/PerfSamples.h"

namespace {

TEST(PerfSamples, StatisticsUseTheUpperMiddleAndATruncatedMean) {
  ScimPerfEntry entry;
  calc_perfentry({5, 1, 9, 3}, entry);
  EXPECT_EQ(4u, entry.NumSamples);
  EXPECT_EQ(1u, entry.MinVal);
  EXPECT_EQ(9u, entry.MaxVal);
  EXPECT_EQ(5u, entry.MedVal);
  EXPECT_EQ(4u, entry.AvgVal);
  calc_perfentry({}, entry);
  EXPECT_EQ(0u, entry.NumSamples);
  EXPECT_EQ(0u, entry.MaxVal);
}

TEST(PerfSamples, StoreKeepsTagsInOrderAndStaysBounded) {
  scim_clear_perfdata();
  scim_add_perfsample("b.op", 7);
  scim_add_perfsample("a.op", 3);
  std::vector<std::string> tags;
  scim_get_perftags(tags);
  EXPECT_EQ((std::vector<std::string>{"a.op", "b.op"}), tags);
  ScimPerfEntry entry;
  EXPECT_FALSE(scim_get_perfentry("c.op", entry));

  // Past the window the count, extremes and mean still cover every sample;
  // the median comes from the most recent ones.
  scim_clear_perfdata();
  const std::uint64_t total = kPerfWindow * 3;
  for (std::uint64_t i = 1; i <= total; ++i) scim_add_perfsample("busy", i);
  ASSERT_TRUE(scim_get_perfentry("busy", entry));
  EXPECT_EQ("busy", entry.Tag);
  EXPECT_EQ(total, entry.NumSamples);
  EXPECT_EQ(1u, entry.MinVal);
  EXPECT_EQ(total, entry.MaxVal);
  EXPECT_EQ((total + 1) / 2, entry.AvgVal);
  EXPECT_EQ(total - kPerfWindow / 2 + 1, entry.MedVal);

  {
    AutoTimeStat timer("scoped");
    timer.setTag("scoped.renamed");
  }
  std::vector<ScimPerfEntry> entries;
  scim_get_perfdata(entries);
  ASSERT_EQ(2u, entries.size());
  EXPECT_EQ("scoped.renamed", entries[1].Tag);
  EXPECT_EQ(1u, entries[1].NumSamples);
  scim_clear_perfdata();
  scim_get_perftags(tags);
  EXPECT_TRUE(tags.empty());
}

}  // namespace
