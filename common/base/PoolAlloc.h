// fcbb::InstancePool: a fixed pool of ibuffNr objects of a trivial type,
// handed out and taken back under a lock, without touching the heap.
//
// Layout (it is what the debug facility and a memory dump show): ibuffNr + 1
// slots, each one CLASS followed by a 32-bit `next` word; then the tail
// index, the head index, the pool lock and the alive indicator. Free slots
// form a list from the head to the tail through their `next` words. The
// tail slot is never handed out, so at most ibuffNr objects are out at once,
// and a freed slot goes behind the tail: after ibuffNr allocations and one
// free, the next alloc() hands out the slot that was the tail, and the one
// just freed waits behind it.
//
// Marks kept in the `next` word and the alive indicator:
//   0x19010014 ALIVE       alive indicator from construction
//   0xDEADDEAD DEAD        alive indicator after destruction
//   0xFF191014 IN_USE      `next` of a slot that is handed out
//   0xFF190009 NEW_TAIL    `next` of the slot that just became the tail
//
// Contract:
// - alloc() returns a slot (its contents as the last user left them; zero
//   the first time) or null when every slot is out.
// - free() takes back a pointer alloc() returned. Asserted misuse: a pointer
//   outside the pool ("idx <= ibuffNr"), a pointer into the middle of a slot
//   ("static_cast<void*>(ibuf)==static_cast<void*>(&(buffers[idx].data))"),
//   a slot that is not out, i.e. a double free
//   ("buffers[idx].next==0xFF191014"), and a destroyed pool
//   ("ivAliveIndicator==ALIVE", also checked by alloc() on an empty pool).
//   The member `buffers` and the names in free() are fixed by these texts.
//
// Thread-safety: alloc() and free() may be called from any thread. Not
// copyable; CLASS must be trivially copyable (the slots are zeroed).
#ifndef QRX_COMMON_BASE_POOLALLOC_H_
#define QRX_COMMON_BASE_POOLALLOC_H_

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "common/base/Semaphore.h"

namespace fcbb {

template <class CLASS, unsigned int ibuffNr>
class InstancePool {
  static_assert(std::is_trivially_copyable<CLASS>::value, "slots are zeroed");
  static_assert(ibuffNr > 0, "a pool needs at least one slot");

 public:
  static constexpr std::uint32_t ALIVE = 0x19010014;
  static constexpr std::uint32_t DEAD = 0xDEADDEAD;
  static constexpr std::uint32_t IN_USE = 0xFF191014;
  static constexpr std::uint32_t NEW_TAIL = 0xFF190009;

  InstancePool() : ivTail(ibuffNr), ivHead(0), ivLock(1), ivAliveIndicator(ALIVE) {
    std::memset(static_cast<void*>(buffers), 0, sizeof(buffers));
    for (std::uint32_t i = 0; i < ibuffNr; ++i) buffers[i].next = i + 1;
  }

  ~InstancePool() { ivAliveIndicator = DEAD; }

  InstancePool(const InstancePool&) = delete;
  InstancePool& operator=(const InstancePool&) = delete;

  // A free slot, or null when ibuffNr are out.
  CLASS* alloc() {
    ivLock.wait();
    if (ivHead == ivTail) {
      assert(ivAliveIndicator==ALIVE);
      ivLock.post();
      return nullptr;
    }
    const std::uint32_t idx = ivHead;
    ivHead = buffers[idx].next;
    buffers[idx].next = IN_USE;
    ivLock.post();
    return &buffers[idx].data;
  }

  // Takes back `ibuf`, which alloc() returned; see the asserted misuse above.
  void free(CLASS* ibuf) {
    ivLock.wait();
    const std::uintptr_t offset =
        reinterpret_cast<std::uintptr_t>(ibuf) - reinterpret_cast<std::uintptr_t>(buffers);
    const std::size_t idx = offset / sizeof(Slot);  // huge when ibuf is below the pool
    assert(idx <= ibuffNr);
    assert(static_cast<void*>(ibuf)==static_cast<void*>(&(buffers[idx].data)));
    // The literal, not IN_USE: the failing text names the mark itself.
    assert(buffers[idx].next==0xFF191014);
    buffers[ivTail].next = static_cast<std::uint32_t>(idx);
    buffers[idx].next = NEW_TAIL;
    ivTail = static_cast<std::uint32_t>(idx);
    assert(ivAliveIndicator==ALIVE);
    ivLock.post();
  }

 private:
  struct Slot {
    CLASS data;
    std::uint32_t next;  // index of the next free slot, or a mark
  };

  Slot buffers[ibuffNr + 1];
  std::uint32_t ivTail;  // last free slot, never handed out
  std::uint32_t ivHead;  // next slot alloc() hands out
  Semaphore ivLock;      // 1 while nobody is inside alloc() or free()
  std::uint32_t ivAliveIndicator;
};

}  // namespace fcbb

#endif  // QRX_COMMON_BASE_POOLALLOC_H_
