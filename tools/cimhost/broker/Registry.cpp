#include "tools/cimhost/broker/Registry.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cstddef>
#include <new>

namespace cimhost {

Registry::~Registry() { clear(); }

void Registry::destroy(std::vector<Entry>* iopEntries) {
  for (Entry& entry : *iopEntries) {
    std::free(entry.block);
    entry.object.reset();
  }
  iopEntries->clear();
}

Registry::Entry& Registry::append(const void* ipKey) {
  if (ivEntries.empty()) ivFirstSeq = ivNextSeq;
  // Numbers kept back for a mark become released slots.
  while (ivFirstSeq + ivEntries.size() < ivNextSeq) ivEntries.emplace_back();
  const uint64_t seq = ivNextSeq;
  ivEntries.emplace_back();
  try {
    ivIndex.emplace(ipKey, seq);
  } catch (...) {
    ivEntries.pop_back();
    throw;
  }
  ++ivNextSeq;
  return ivEntries.back();
}

namespace {

template <class EntryT>
bool isReleased(const EntryT& irEntry) {
  return !irEntry.object && !irEntry.block;
}

}  // namespace

void Registry::trim() {
  while (!ivEntries.empty() && isReleased(ivEntries.back())) ivEntries.pop_back();
  while (!ivEntries.empty() && isReleased(ivEntries.front())) {
    ivEntries.pop_front();
    ++ivFirstSeq;
  }
  const uint64_t lastMark = ivMarkSeqs.empty() ? 0 : *ivMarkSeqs.rbegin();
  ivNextSeq = std::max(ivFirstSeq + ivEntries.size(), lastMark + 1);
}

void Registry::addObject(std::unique_ptr<EncObject> ipObject) {
  std::lock_guard<std::mutex> lock(ivMutex);
  append(ipObject->handle()).object = std::move(ipObject);
}

bool Registry::releaseObject(const void* ipHandle) {
  std::unique_ptr<EncObject> doomed;
  {
    std::lock_guard<std::mutex> lock(ivMutex);
    auto it = ivIndex.find(ipHandle);
    if (it == ivIndex.end()) return false;
    Entry& entry = at(it->second);
    if (!entry.object) return false;  // a block, not an object
    doomed = std::move(entry.object);
    ivIndex.erase(it);
    trim();
  }
  return true;
}

void* Registry::allocate(size_t ipSize, bool ipZero) {
  void* block = ipZero ? std::calloc(1, ipSize ? ipSize : 1) : std::malloc(ipSize ? ipSize : 1);
  if (!block) return nullptr;
  try {
    std::lock_guard<std::mutex> lock(ivMutex);
    append(block).block = block;
    ++ivBlockCount;
  } catch (...) {
    std::free(block);
    return nullptr;
  }
  return block;
}

void* Registry::reallocate(void* ipBlock, size_t ipSize) {
  std::lock_guard<std::mutex> lock(ivMutex);
  auto it = ivIndex.find(ipBlock);
  if (it == ivIndex.end()) return nullptr;
  Entry& entry = at(it->second);
  if (!entry.block) return nullptr;  // an object, not a block
  void* grown = std::realloc(ipBlock, ipSize ? ipSize : 1);
  if (!grown) return nullptr;
  // Re-keying the index node allocates nothing, so nothing can fail now
  // that realloc() may have moved the block.
  auto node = ivIndex.extract(it);
  node.key() = grown;
  ivIndex.insert(std::move(node));
  entry.block = grown;
  return grown;
}

bool Registry::freeBlock(void* ipBlock) {
  {
    std::lock_guard<std::mutex> lock(ivMutex);
    auto it = ivIndex.find(ipBlock);
    if (it == ivIndex.end()) return false;
    Entry& entry = at(it->second);
    if (!entry.block) return false;  // an object, not a block
    entry.block = nullptr;
    ivIndex.erase(it);
    --ivBlockCount;
    trim();
  }
  std::free(ipBlock);
  return true;
}

const void* Registry::mark() {
  std::lock_guard<std::mutex> lock(ivMutex);
  auto mark = std::make_unique<Mark>();
  const uint64_t seq = ivNextSeq - 1;
  mark->seq = seq;
  const void* key = mark.get();
  auto counted = ivMarkSeqs.insert(seq);
  try {
    ivMarks.emplace(key, std::move(mark));
  } catch (...) {
    ivMarkSeqs.erase(counted);
    throw;
  }
  return key;
}

std::vector<Registry::Entry> Registry::takeAfter(uint64_t ipSeq) {
  std::vector<Entry> taken;
  const size_t first =
      ipSeq >= ivFirstSeq ? static_cast<size_t>(ipSeq + 1 - ivFirstSeq) : static_cast<size_t>(0);
  if (first < ivEntries.size()) {
    const auto from = ivEntries.begin() + static_cast<std::ptrdiff_t>(first);
    for (auto it = from; it != ivEntries.end(); ++it) {
      if (it->block) {
        ivIndex.erase(it->block);
        --ivBlockCount;
      } else if (it->object) {
        ivIndex.erase(it->object->handle());
      } else {
        continue;  // released earlier
      }
      taken.push_back(std::move(*it));
    }
    ivEntries.erase(from, ivEntries.end());
  }
  trim();
  return taken;
}

bool Registry::releaseMark(const void* ipMark) {
  std::vector<Entry> doomed;
  {
    std::lock_guard<std::mutex> lock(ivMutex);
    auto it = ivMarks.find(ipMark);
    if (it == ivMarks.end()) return false;
    const uint64_t seq = it->second->seq;
    ivMarkSeqs.erase(ivMarkSeqs.find(seq));
    ivMarks.erase(it);
    doomed = takeAfter(seq);
  }
  destroy(&doomed);
  return true;
}

size_t Registry::objectCount() const {
  std::lock_guard<std::mutex> lock(ivMutex);
  return ivIndex.size() - ivBlockCount;
}

size_t Registry::blockCount() const {
  std::lock_guard<std::mutex> lock(ivMutex);
  return ivBlockCount;
}

void Registry::clear() {
  std::vector<Entry> doomed;
  {
    std::lock_guard<std::mutex> lock(ivMutex);
    ivMarks.clear();
    ivMarkSeqs.clear();
    doomed = takeAfter(0);
  }
  destroy(&doomed);
}

}  // namespace cimhost
