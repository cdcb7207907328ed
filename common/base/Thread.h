// fcbb::Thread: an abstract POSIX thread with a cooperative stop request.
//
// A subclass implements run(), the thread body, and starts it once with
// startThread(). run() is expected to poll isRequestTerminate(), which is
// also a cancellation point, and to return once it is true; a subclass
// whose run() sleeps elsewhere overrides requestTerminate() to wake it (and
// calls the base version). terminateThread() asks the thread to stop,
// optionally cancels it, and waits for it.
//
// Lifecycle: created -> started (startThread()) -> running -> stop
// requested -> finished. The running flag is set by the new thread before
// run() and cleared by a clean-up handler after run(), also when the
// thread is cancelled. startThread() returns only once the flag is set, so
// isRunning() is true right after a successful start. A thread object is
// started at most once.
//
// Destruction: a subclass MUST call terminateThread() in its own
// destructor. The base destructor runs after the subclass part is gone;
// requestTerminate() then no longer reaches the override, and run() must
// not go on using (or, shortly after startThread(), start on) a half-
// destroyed object. The base destructor still terminates a running thread
// (with cancellation) and reaps a finished one that nobody joined, so the
// thread never touches the object after its destruction.
//
// Cancellation: run() is unwound by a forced unwind, so C++ destructors in
// it run; the library is built with exceptions for this reason. The
// calling thread cannot be cancelled inside terminateThread() or the
// destructor (both run in destructors, which an unwind must not cross);
// waitForTerminate() is a cancellation point.
//
// Thread-safety: the flags are guarded by an internal RwLock; isRunning(),
// isRequestTerminate() and requestTerminate() may be called from any
// thread. startThread(), waitForTerminate(), terminateThread() and the
// destructor belong to one controlling thread at a time.
//
// Asserted misuse: a second startThread() ("!ivPthread"); waiting for the
// thread's own termination from inside it, which first writes a backtrace
// of at most 10 frames to standard error ("false").
#ifndef QRX_COMMON_BASE_THREAD_H_
#define QRX_COMMON_BASE_THREAD_H_

#include <pthread.h>

#include "common/base/RwLock.h"

namespace fcbb {

class Thread {
  // Virtual functions are declared in slot order: the destructors, run(),
  // requestTerminate().
 public:
  // `ipArg` is kept for the subclass (getArg()).
  explicit Thread(void* ipArg = nullptr);

  // If the thread was ever started: terminateThread(true), then, unless the
  // caller is the thread itself, cancels and joins a thread that nobody has
  // joined yet.
  virtual ~Thread();

  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;

 protected:
  // The thread body, called once on the new thread.
  virtual void run() = 0;

 public:
  // Sets the stop request if the thread is running; does nothing (the
  // request stays unset) when it is not.
  virtual void requestTerminate();

  // Creates the thread (default attributes) and waits until it runs.
  // Returns false if it could not be created; the object then counts as
  // never started. Asserts "!ivPthread" when called a second time.
  bool startThread();

  // False before startThread(); otherwise whether the thread is between
  // its first instruction and the end of its clean-up.
  bool isRunning();

  // Whether a stop was requested; then acts on a pending cancellation, so
  // every poll is a cancellation point.
  bool isRequestTerminate();

  // Joins the thread if it is running; returns at once otherwise (never
  // started, or finished already). Called from the thread itself it writes
  // a backtrace to standard error and fails the assertion "false".
  void waitForTerminate();

  // If the thread is running: requestTerminate(), then pthread_cancel() if
  // `ipCancel`, then waitForTerminate(). Does nothing otherwise.
  void terminateThread(bool ipCancel);

 protected:
  void* getArg() const { return ivArg; }

 private:
  static void* threadProc(void* ipStart);
  static void clearRunning(void* ipThread);

  void* ivArg;
  RwLock ivLock;             // guards ivRunning and ivTerminateRequest
  pthread_t ivPthread;       // 0 until started
  bool ivRunning;
  bool ivTerminateRequest;
  bool ivJoined;             // set once waitForTerminate() joined it
};

}  // namespace fcbb

#endif  // QRX_COMMON_BASE_THREAD_H_
