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

Registry::Entry& Registry::append(uint64_t* opSeq) {
  if (ivEntries.empty()) ivFirstSeq = ivNextSeq;
  // Numbers kept back for a mark become released slots.
  while (ivFirstSeq + ivEntries.size() < ivNextSeq) ivEntries.emplace_back();
  ivEntries.emplace_back();
  *opSeq = ivNextSeq++;
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
  uint64_t seq = 0;
  Entry& entry = append(&seq);
  ipObject->ivRegistrySeq = seq;
  entry.object = std::move(ipObject);
  ++ivObjectCount;
}

bool Registry::releaseObject(const EncObject& irObject) {
  std::unique_ptr<EncObject> doomed;
  {
    std::lock_guard<std::mutex> lock(ivMutex);
    const uint64_t seq = irObject.ivRegistrySeq;
    if (seq < ivFirstSeq || seq >= ivFirstSeq + ivEntries.size()) return false;
    Entry& entry = at(seq);
    if (entry.object.get() != &irObject) return false;  // registered elsewhere, or not at all
    doomed = std::move(entry.object);
    doomed->ivRegistrySeq = 0;
    --ivObjectCount;
    trim();
  }
  return true;
}

void* Registry::allocate(size_t ipSize, bool ipZero) {
  void* block = ipZero ? std::calloc(1, ipSize ? ipSize : 1) : std::malloc(ipSize ? ipSize : 1);
  if (!block) return nullptr;
  try {
    std::lock_guard<std::mutex> lock(ivMutex);
    uint64_t seq = 0;
    Entry& entry = append(&seq);
    try {
      ivBlocks.emplace(block, seq);
    } catch (...) {
      ivEntries.pop_back();
      --ivNextSeq;
      throw;
    }
    entry.block = block;
  } catch (...) {
    std::free(block);
    return nullptr;
  }
  return block;
}

void* Registry::reallocate(void* ipBlock, size_t ipSize) {
  std::lock_guard<std::mutex> lock(ivMutex);
  auto it = ivBlocks.find(ipBlock);
  if (it == ivBlocks.end()) return nullptr;
  Entry& entry = at(it->second);
  void* grown = std::realloc(ipBlock, ipSize ? ipSize : 1);
  if (!grown) return nullptr;
  // Re-keying the index node allocates nothing, so nothing can fail now
  // that realloc() may have moved the block.
  auto node = ivBlocks.extract(it);
  node.key() = grown;
  ivBlocks.insert(std::move(node));
  entry.block = grown;
  return grown;
}

bool Registry::freeBlock(void* ipBlock) {
  {
    std::lock_guard<std::mutex> lock(ivMutex);
    auto it = ivBlocks.find(ipBlock);
    if (it == ivBlocks.end()) return false;
    at(it->second).block = nullptr;
    ivBlocks.erase(it);
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
        ivBlocks.erase(it->block);
      } else if (it->object) {
        it->object->ivRegistrySeq = 0;
        --ivObjectCount;
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
  return ivObjectCount;
}

size_t Registry::blockCount() const {
  std::lock_guard<std::mutex> lock(ivMutex);
  return ivBlocks.size();
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
