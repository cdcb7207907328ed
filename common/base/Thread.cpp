#include "common/base/Thread.h"

#include <execinfo.h>
#include <unistd.h>

#include <cassert>

#include "common/base/Semaphore.h"

// Cancellation unwinds the stack like an exception that cannot be caught;
// the clean-up handler of the thread procedure runs only if this unit is
// built with exception support.
#if !defined(__EXCEPTIONS)
#error "Thread.cpp must be compiled with exceptions enabled (thread cancellation)"
#endif

namespace fcbb {

namespace {

// Handed to the new thread by startThread(), which waits on `started` and
// so keeps it alive until the thread has set its running flag.
struct StartContext {
  explicit StartContext(Thread* ipThread) : thread(ipThread) {}
  Thread* thread;
  Semaphore started;
};

// Holds off cancellation of the calling thread for the scope.
class NoCancel {
 public:
  NoCancel() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &ivOldState); }
  ~NoCancel() { pthread_setcancelstate(ivOldState, nullptr); }
  NoCancel(const NoCancel&) = delete;
  NoCancel& operator=(const NoCancel&) = delete;

 private:
  int ivOldState = PTHREAD_CANCEL_ENABLE;
};

}  // namespace

Thread::Thread(void* ipArg)
    : ivArg(ipArg), ivPthread(0), ivRunning(false), ivTerminateRequest(false),
      ivJoined(false) {}

Thread::~Thread() {
  if (!ivPthread) return;
  NoCancel noCancel;
  terminateThread(true);
  // A thread that finished on its own may still be leaving its clean-up
  // (and so ivLock); reap it before the members go away.
  if (!ivJoined && !pthread_equal(ivPthread, pthread_self())) {
    pthread_cancel(ivPthread);
    pthread_join(ivPthread, nullptr);
    ivJoined = true;
  }
}

bool Thread::startThread() {
  assert(!ivPthread);
  StartContext start(this);
  // The caller must not unwind while the new thread may still use `start`.
  NoCancel noCancel;
  // pthread_create() stores the id before the new thread runs, so the
  // thread sees its own ivPthread.
  if (pthread_create(&ivPthread, nullptr, &Thread::threadProc, &start) != 0) {
    ivPthread = 0;
    return false;
  }
  start.started.wait();
  return true;
}

void* Thread::threadProc(void* ipStart) {
  StartContext* start = static_cast<StartContext*>(ipStart);
  Thread* self = start->thread;
  pthread_cleanup_push(&Thread::clearRunning, self);
  self->ivLock.wrLock();
  self->ivRunning = true;
  self->ivLock.unlock();
  start->started.post();  // `start` is gone from here on
  self->run();
  pthread_cleanup_pop(1);
  return nullptr;
}

void Thread::clearRunning(void* ipThread) {
  Thread* self = static_cast<Thread*>(ipThread);
  self->ivLock.wrLock();
  self->ivRunning = false;
  self->ivLock.unlock();
}

bool Thread::isRunning() {
  if (!ivPthread) return false;
  ivLock.rdLock();
  const bool running = ivRunning;
  ivLock.unlock();
  return running;
}

void Thread::requestTerminate() {
  ivLock.wrLock();
  if (ivRunning) ivTerminateRequest = true;
  ivLock.unlock();
}

bool Thread::isRequestTerminate() {
  ivLock.rdLock();
  const bool requested = ivTerminateRequest;
  ivLock.unlock();
  pthread_testcancel();
  return requested;
}

void Thread::waitForTerminate() {
  if (ivPthread && pthread_equal(ivPthread, pthread_self())) {
    void* frames[10];
    const int count = backtrace(frames, 10);
    backtrace_symbols_fd(frames, count, STDERR_FILENO);
    assert(false);
  }
  if (isRunning()) {
    pthread_join(ivPthread, nullptr);
    ivJoined = true;
  }
}

void Thread::terminateThread(bool ipCancel) {
  NoCancel noCancel;
  if (!isRunning()) return;
  requestTerminate();
  if (ipCancel) pthread_cancel(ivPthread);
  waitForTerminate();
}

}  // namespace fcbb
