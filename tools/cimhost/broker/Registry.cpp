#include "tools/cimhost/broker/Registry.h"

#include <cstdlib>
#include <cstring>
#include <iterator>
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

// Sequence numbers only grow, so a new entry always goes to the end of the
// map: the hint makes that constant time, whatever the registry holds.
Registry::Entry& Registry::append(const void* ipKey) {
  const uint64_t seq = ivNextSeq++;
  auto slot = ivEntries.emplace_hint(ivEntries.end(), seq, Entry());
  try {
    ivIndex.emplace(ipKey, seq);
  } catch (...) {
    ivEntries.erase(slot);
    throw;
  }
  return slot->second;
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
    auto entry = ivEntries.find(it->second);
    if (!entry->second.object) return false;  // a block, not an object
    doomed = std::move(entry->second.object);
    ivEntries.erase(entry);
    ivIndex.erase(it);
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
  auto entry = ivEntries.find(it->second);
  if (!entry->second.block) return nullptr;  // an object, not a block
  void* grown = std::realloc(ipBlock, ipSize ? ipSize : 1);
  if (!grown) return nullptr;
  // Re-keying the index node allocates nothing, so nothing can fail now
  // that realloc() may have moved the block.
  auto node = ivIndex.extract(it);
  node.key() = grown;
  ivIndex.insert(std::move(node));
  entry->second.block = grown;
  return grown;
}

bool Registry::freeBlock(void* ipBlock) {
  {
    std::lock_guard<std::mutex> lock(ivMutex);
    auto it = ivIndex.find(ipBlock);
    if (it == ivIndex.end()) return false;
    auto entry = ivEntries.find(it->second);
    if (!entry->second.block) return false;  // an object, not a block
    ivEntries.erase(entry);
    ivIndex.erase(it);
    --ivBlockCount;
  }
  std::free(ipBlock);
  return true;
}

const void* Registry::mark() {
  std::lock_guard<std::mutex> lock(ivMutex);
  auto mark = std::make_unique<Mark>();
  mark->seq = ivNextSeq - 1;
  const void* key = mark.get();
  ivMarks.emplace(key, std::move(mark));
  return key;
}

std::vector<Registry::Entry> Registry::takeAfter(uint64_t ipSeq) {
  std::vector<Entry> taken;
  auto first = ivEntries.upper_bound(ipSeq);
  taken.reserve(static_cast<size_t>(std::distance(first, ivEntries.end())));
  for (auto it = first; it != ivEntries.end(); ++it) {
    if (it->second.block) {
      ivIndex.erase(it->second.block);
      --ivBlockCount;
    } else {
      ivIndex.erase(it->second.object->handle());
    }
    taken.push_back(std::move(it->second));
  }
  ivEntries.erase(first, ivEntries.end());
  return taken;
}

bool Registry::releaseMark(const void* ipMark) {
  std::vector<Entry> doomed;
  {
    std::lock_guard<std::mutex> lock(ivMutex);
    auto it = ivMarks.find(ipMark);
    if (it == ivMarks.end()) return false;
    doomed = takeAfter(it->second->seq);
    ivMarks.erase(it);
  }
  destroy(&doomed);
  return true;
}

size_t Registry::objectCount() const {
  std::lock_guard<std::mutex> lock(ivMutex);
  return ivEntries.size() - ivBlockCount;
}

size_t Registry::blockCount() const {
  std::lock_guard<std::mutex> lock(ivMutex);
  return ivBlockCount;
}

void Registry::clear() {
  std::vector<Entry> doomed;
  {
    std::lock_guard<std::mutex> lock(ivMutex);
    doomed = takeAfter(0);
    ivMarks.clear();
  }
  destroy(&doomed);
}

}  // namespace cimhost
