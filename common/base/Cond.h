// fcbb::Cond: a condition variable built from semaphores, with its own
// mutex (getMutex()).
//
// Contract:
// - timedWait() must be called with getMutex() held, or the assertion
//   "ivCondMutex.isLocked()" fails. It releases the mutex while it sleeps
//   and holds it again when it returns, whether signalled (true) or timed
//   out (false).
// - signal() wakes one thread that is inside timedWait() and not yet
//   signalled. A signal sent while no thread waits is lost: it is not
//   remembered for a later waiter. There is no broadcast. signal() may be
//   called with or without the mutex held.
// - The waiter count only drops while it is above zero, so it never wraps.
//   When a waiter times out just as it is signalled, the signal is spent on
//   it nevertheless and its post stays in the semaphore: the next waiter
//   returns true at once. That waiter's own place in the count is then
//   spent by the next signal(), which is therefore kept for a later waiter
//   instead of being lost, even when nobody waits. Callers re-check their
//   predicate after every wake-up, as with any condition variable.
// - Cancellation (as for a POSIX condition variable): timedWait() acts on a
//   cancellation request only while it sleeps. A waiter cancelled there
//   leaves the waiter count, holds the mutex again and then unwinds, so the
//   cancelled thread's own clean-up must release the mutex, and the thread
//   that cancels it must not hold the mutex while it joins it. A signal
//   meant for it is not consumed by it: it passes to the next waiter as
//   above.
//
// All operations are thread-safe. Not copyable.
#ifndef QRX_COMMON_BASE_COND_H_
#define QRX_COMMON_BASE_COND_H_

#include <cstdint>

#include "common/base/Mutex.h"
#include "common/base/Semaphore.h"

namespace fcbb {

class Time;

class Cond {
 public:
  Cond();
  ~Cond();

  Cond(const Cond&) = delete;
  Cond& operator=(const Cond&) = delete;

  // The mutex that callers hold around the condition.
  Mutex& getMutex() { return ivCondMutex; }

  // Waits with getMutex() held until signalled (true) or until `irDeadline`
  // has passed (false); the mutex is held again on return.
  bool timedWait(const Time& irDeadline);

  // timedWait() with the deadline `ipMs` milliseconds from now.
  bool relTimedWait(unsigned long ipMs);

  // Wakes one waiter, if any; a signal with no waiter is lost.
  void signal();

 private:
  // Clean-up of a waiter cancelled while sleeping: see Cond.cpp.
  static void cancelledWait(void* ipCond);

  // Drops one waiter from the count unless a signal already did.
  void dropWaiter();

  Mutex ivCondMutex;       // held by callers around the condition
  Semaphore ivWaitSem;     // waiters sleep here; one post per signal
  Mutex ivCountMutex;      // guards ivWaiters, never held while sleeping
  std::uint32_t ivWaiters; // waiting threads not yet signalled
};

}  // namespace fcbb

#endif  // QRX_COMMON_BASE_COND_H_
