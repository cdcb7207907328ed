#include "common/base/Cond.h"

#include <pthread.h>

#include <cassert>

#include "common/base/Time.h"

// Cancellation unwinds the stack like an exception that cannot be caught;
// the clean-up handler below runs only if this unit is built with
// exception support.
#if !defined(__EXCEPTIONS)
#error "Cond.cpp must be compiled with exceptions enabled (thread cancellation)"
#endif

namespace fcbb {

Cond::Cond() : ivWaitSem(0), ivWaiters(0) {}

Cond::~Cond() = default;

bool Cond::timedWait(const Time& irDeadline) {
  assert(ivCondMutex.isLocked());

  // Cancellation is held off except while sleeping on ivWaitSem, so that a
  // cancelled waiter is always counted exactly when the clean-up below
  // expects it, and never unwinds without the mutex.
  int oldCancelState = PTHREAD_CANCEL_ENABLE;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &oldCancelState);

  ivCountMutex.lock();
  ++ivWaiters;
  ivCountMutex.unlock();
  ivCondMutex.unlock();

  bool signalled = false;
  pthread_cleanup_push(&Cond::cancelledWait, this);
  pthread_setcancelstate(oldCancelState, nullptr);
  signalled = ivWaitSem.timedWait(irDeadline);
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
  pthread_cleanup_pop(0);

  // Timed out: if a signal() has counted this waiter out in the meantime,
  // its post stays in ivWaitSem for the next waiter.
  if (!signalled) dropWaiter();
  ivCondMutex.lock();

  pthread_setcancelstate(oldCancelState, nullptr);
  return signalled;
}

bool Cond::relTimedWait(unsigned long ipMs) { return timedWait(Time() + ipMs); }

void Cond::signal() {
  ivCountMutex.lock();
  if (ivWaiters > 0) {
    --ivWaiters;
    ivWaitSem.post();
  }
  ivCountMutex.unlock();
}

void Cond::dropWaiter() {
  ivCountMutex.lock();
  if (ivWaiters > 0) --ivWaiters;
  ivCountMutex.unlock();
}

// Runs while a waiter that was cancelled in its sleep unwinds. It takes the
// mutex back first, as a cancelled POSIX condition wait does, and only then
// leaves the count: to a thread that signals while holding the mutex the
// cancelled waiter is still waiting, so that signal is spent on it and its
// post is left for the next waiter, just as when a time-out races a signal.
// Cancellation is not acted on again while the thread unwinds, so neither
// lock() below can be interrupted.
void Cond::cancelledWait(void* ipCond) {
  Cond* cond = static_cast<Cond*>(ipCond);
  cond->ivCondMutex.lock();
  cond->dropWaiter();
}

}  // namespace fcbb
