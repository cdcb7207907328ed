// Timing samples: a process-wide store of durations (microseconds) per text
// tag, the statistics computed from it, and AutoTimeStat, the scope timer
// that feeds it.
//
// Memory stays bounded however long the process runs: per tag the store
// keeps the exact count, minimum, maximum and sum of every sample, and the
// most recent kPerfWindow samples themselves for the median. Until a tag
// has more than kPerfWindow samples its statistics are those of all of
// them.
//
// Thread-safety: every function takes the one store mutex; statistics are
// computed on a copy made while it is held.
#ifndef QRX_COMMON_BASE_PERFSAMPLES_H_
#define QRX_COMMON_BASE_PERFSAMPLES_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

// Samples kept per tag for the median.
constexpr std::size_t kPerfWindow = 4096;

// The statistics of one tag.
struct ScimPerfEntry {
  std::string Tag;
  std::uint64_t NumSamples = 0;
  std::uint64_t MinVal = 0;
  std::uint64_t MaxVal = 0;
  std::uint64_t MedVal = 0;  // element NumSamples / 2 of the sorted samples
  std::uint64_t AvgVal = 0;  // sum / NumSamples, truncated
};

// Appends a sample of `ipValue` microseconds to `irTag`, creating the tag.
void scim_add_perfsample(const std::string& irTag, std::uint64_t ipValue);

// Drops every tag and sample.
void scim_clear_perfdata();

// The known tags, in ascending order.
void scim_get_perftags(std::vector<std::string>& orTags);

// False if `irTag` is unknown; else fills `orEntry` and returns true.
bool scim_get_perfentry(const std::string& irTag, ScimPerfEntry& orEntry);

// One entry per tag, in tag order.
void scim_get_perfdata(std::vector<ScimPerfEntry>& orEntries);

// The statistics of `irSamples` (any order; not changed) into `orEntry`,
// the tag aside: count, smallest, largest, the element at index count / 2
// of the sorted samples (for an even count the upper middle one, not an
// average) and the truncated mean. All zero for no samples.
void calc_perfentry(const std::vector<std::uint64_t>& irSamples, ScimPerfEntry& orEntry);

// Measures the wall-clock time from its construction to its destruction
// and records it under its tag.
class AutoTimeStat {
 public:
  explicit AutoTimeStat(std::string ipTag);
  ~AutoTimeStat();
  AutoTimeStat(const AutoTimeStat&) = delete;
  AutoTimeStat& operator=(const AutoTimeStat&) = delete;

  // The tag the sample is recorded under.
  void setTag(std::string ipTag) { ivTag = std::move(ipTag); }
  const std::string& tag() const { return ivTag; }

 private:
  std::string ivTag;
  std::uint64_t ivStartUsec;
};

#endif  // QRX_COMMON_BASE_PERFSAMPLES_H_
