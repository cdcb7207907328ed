// cimhost::Registry: what a broker has handed out and not yet freed, the
// way an object manager keeps the objects of a request.
//
// Entries are encapsulated objects (which carry their own sequence
// number) and memory blocks from the broker's cmpiMalloc family (found by
// their address). Each entry gets the next sequence number; a mark
// remembers the number at its creation, and releasing the mark frees every
// entry created after it that is still registered (marks nest). Releasing
// a mark twice, or an entry that is not registered, is refused. The
// destructor frees everything still registered, marks included.
//
// Entries are kept in creation order; a released one leaves an empty slot
// that goes as soon as no live entry follows it, so the usual patterns
// (made and released at once, or freed by a mark) cost constant time per
// entry whatever the registry holds. Objects are destroyed outside the
// registry's lock. Thread-safe.
#ifndef QRX_TOOLS_CIMHOST_BROKER_REGISTRY_H_
#define QRX_TOOLS_CIMHOST_BROKER_REGISTRY_H_

#include <cstddef>
#include <cstdint>
#include <deque>
#include <set>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "tools/cimhost/broker/EncObject.h"

namespace cimhost {

class Registry {
 public:
  Registry() = default;
  ~Registry();

  Registry(const Registry&) = delete;
  Registry& operator=(const Registry&) = delete;

  void addObject(std::unique_ptr<EncObject> ipObject);

  // Frees `irObject`; false if it is not registered here.
  bool releaseObject(const EncObject& irObject);

  // A registered block of `ipSize` bytes (zeroed if `ipZero`); NULL when out
  // of memory. A size of 0 allocates one byte.
  void* allocate(size_t ipSize, bool ipZero);

  // Resizes a registered block, keeping its sequence number; NULL (the
  // block unchanged) when `ipBlock` is not registered or memory is out.
  void* reallocate(void* ipBlock, size_t ipSize);

  // Frees a registered block; false if `ipBlock` is not one.
  bool freeBlock(void* ipBlock);

  // A new mark; NULL when out of memory.
  const void* mark();

  // Frees the entries created after `ipMark`, then the mark; false (nothing
  // freed) if `ipMark` is not a live mark.
  bool releaseMark(const void* ipMark);

  size_t objectCount() const;
  size_t blockCount() const;

  // Frees every entry and mark.
  void clear();

 private:
  struct Entry {
    std::unique_ptr<EncObject> object;  // or
    void* block = nullptr;              // or neither: a released slot
  };

  // A new entry with the next sequence number, which `opSeq` receives.
  // Called with the lock held, like the helpers below.
  Entry& append(uint64_t* opSeq);

  // The slot of sequence number `ipSeq` (which must be in the registry).
  Entry& at(uint64_t ipSeq) { return ivEntries[static_cast<size_t>(ipSeq - ivFirstSeq)]; }

  // Drops the released slots at both ends and lowers the next sequence
  // number as far as the live marks allow.
  void trim();

  // Moves the live entries with a sequence number above `ipSeq` out,
  // oldest first; the caller frees them after unlocking.
  std::vector<Entry> takeAfter(uint64_t ipSeq);

  static void destroy(std::vector<Entry>* iopEntries);

  mutable std::mutex ivMutex;
  // ivEntries[i] has sequence number ivFirstSeq + i. A number is never
  // given out again while a live mark could tell it from a later one.
  uint64_t ivFirstSeq = 1;
  uint64_t ivNextSeq = 1;
  std::deque<Entry> ivEntries;
  std::unordered_map<const void*, uint64_t> ivBlocks;  // block -> sequence number
  struct Mark {
    uint64_t seq;  // the last sequence number given out before the mark
  };

  std::unordered_map<const void*, std::unique_ptr<Mark>> ivMarks;  // by address
  std::multiset<uint64_t> ivMarkSeqs;                               // their seq
  size_t ivObjectCount = 0;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_REGISTRY_H_
