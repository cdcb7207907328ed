// fcbb::Semaphore: a process-private POSIX counting semaphore.
//
// The building block of Mutex and Cond. All operations are thread-safe.
// wait() blocks until the value can be decremented and is not ended early
// by a signal handler. timedWait() gives up at an absolute wall-clock
// deadline; any failure other than the time-out, an interrupting signal
// handler included, is a broken invariant and fails the assertion
// "(*__errno_location ()) == 110".
//
// wait() and timedWait() are cancellation points: a thread cancelled while
// blocked in them has not taken the semaphore. Not copyable.
#ifndef QRX_COMMON_BASE_SEMAPHORE_H_
#define QRX_COMMON_BASE_SEMAPHORE_H_

#include <semaphore.h>

namespace fcbb {

class Time;

class Semaphore {
 public:
  // A semaphore holding `ipValue`.
  explicit Semaphore(unsigned int ipValue = 0);
  ~Semaphore();

  Semaphore(const Semaphore&) = delete;
  Semaphore& operator=(const Semaphore&) = delete;

  // Blocks until the value is above zero, then decrements it.
  void wait();

  // Like wait(), but returns false once `irDeadline` has passed without the
  // value becoming positive; true when the semaphore was taken.
  bool timedWait(const Time& irDeadline);

  // Increments the value, waking one waiter if there is one.
  void post();

  // The current value (a snapshot; it may change at once).
  int getValue();

 private:
  sem_t ivSem;
};

}  // namespace fcbb

#endif  // QRX_COMMON_BASE_SEMAPHORE_H_
