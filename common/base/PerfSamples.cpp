#include "common/base/PerfSamples.h"

#include <sys/time.h>

#include <algorithm>
#include <map>
#include <utility>

#include "common/base/Mutex.h"

namespace {

// What the store keeps of one tag's samples.
struct TagSamples {
  std::uint64_t count = 0;
  std::uint64_t min = 0;
  std::uint64_t max = 0;
  std::uint64_t sum = 0;
  std::vector<std::uint64_t> window;  // the last kPerfWindow samples, a ring
  std::size_t next = 0;               // ring position of the next sample once full

  void add(std::uint64_t ipValue) {
    min = count == 0 ? ipValue : std::min(min, ipValue);
    max = count == 0 ? ipValue : std::max(max, ipValue);
    ++count;
    sum += ipValue;
    if (window.size() < kPerfWindow) {
      window.push_back(ipValue);
    } else {
      window[next] = ipValue;
      next = (next + 1) % kPerfWindow;
    }
  }

  void fill(ScimPerfEntry& orEntry) const {
    calc_perfentry(window, orEntry);
    orEntry.NumSamples = count;
    orEntry.MinVal = min;
    orEntry.MaxVal = max;
    orEntry.AvgVal = count == 0 ? 0 : sum / count;
  }
};

struct Store {
  fcbb::Mutex mutex;
  std::map<std::string, TagSamples> tags;
};

// Never destroyed: samples may be recorded until the process ends.
Store& store() {
  static Store* s = new Store;
  return *s;
}

std::uint64_t nowUsec() {
  timeval tv;
  gettimeofday(&tv, nullptr);
  return static_cast<std::uint64_t>(tv.tv_sec) * 1000000u + static_cast<std::uint64_t>(tv.tv_usec);
}

}  // namespace

void scim_add_perfsample(const std::string& irTag, std::uint64_t ipValue) {
  Store& s = store();
  fcbb::MutexLock lock(s.mutex);
  s.tags[irTag].add(ipValue);
}

void scim_clear_perfdata() {
  Store& s = store();
  fcbb::MutexLock lock(s.mutex);
  s.tags.clear();
}

void scim_get_perftags(std::vector<std::string>& orTags) {
  Store& s = store();
  fcbb::MutexLock lock(s.mutex);
  orTags.clear();
  for (const auto& tag : s.tags) orTags.push_back(tag.first);
}

bool scim_get_perfentry(const std::string& irTag, ScimPerfEntry& orEntry) {
  Store& s = store();
  fcbb::MutexLock lock(s.mutex);
  auto it = s.tags.find(irTag);
  if (it == s.tags.end()) return false;
  orEntry.Tag = irTag;
  it->second.fill(orEntry);
  return true;
}

void scim_get_perfdata(std::vector<ScimPerfEntry>& orEntries) {
  Store& s = store();
  fcbb::MutexLock lock(s.mutex);
  orEntries.clear();
  for (const auto& tag : s.tags) {
    ScimPerfEntry entry;
    entry.Tag = tag.first;
    tag.second.fill(entry);
    orEntries.push_back(std::move(entry));
  }
}

void calc_perfentry(const std::vector<std::uint64_t>& irSamples, ScimPerfEntry& orEntry) {
  orEntry.NumSamples = irSamples.size();
  if (irSamples.empty()) {
    orEntry.MinVal = orEntry.MaxVal = orEntry.MedVal = orEntry.AvgVal = 0;
    return;
  }
  std::vector<std::uint64_t> sorted(irSamples);
  std::sort(sorted.begin(), sorted.end());
  std::uint64_t sum = 0;
  for (std::uint64_t value : sorted) sum += value;
  orEntry.MinVal = sorted.front();
  orEntry.MaxVal = sorted.back();
  orEntry.MedVal = sorted[sorted.size() / 2];
  orEntry.AvgVal = sum / sorted.size();
}

AutoTimeStat::AutoTimeStat(std::string ipTag) : ivTag(std::move(ipTag)), ivStartUsec(nowUsec()) {}

AutoTimeStat::~AutoTimeStat() {
  std::uint64_t end = nowUsec();
  scim_add_perfsample(ivTag, end >= ivStartUsec ? end - ivStartUsec : 0);
}
