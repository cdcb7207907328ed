// fcbb::Mutex: a non-recursive lock built on a binary Semaphore (value 1
// when free, 0 when held).
//
// The lock has no owner: any thread may unlock it, not only the one that
// locked it, and isLocked() tells only whether some thread holds it.
// Locking it twice from one thread deadlocks; unlocking a free mutex makes
// it admit two holders. Neither is detected. lock() is a cancellation
// point (a thread cancelled while waiting does not hold the lock).
// Not copyable.
#ifndef QRX_COMMON_BASE_MUTEX_H_
#define QRX_COMMON_BASE_MUTEX_H_

#include "common/base/Semaphore.h"

namespace fcbb {

class Mutex {
 public:
  Mutex();
  virtual ~Mutex();

  Mutex(const Mutex&) = delete;
  Mutex& operator=(const Mutex&) = delete;

  // Blocks until the mutex is free and takes it.
  void lock();

  // Frees the mutex; the caller need not be the thread that locked it.
  void unlock();

  // True while some thread holds the mutex.
  bool isLocked();

 private:
  Semaphore ivSem;
};

// Holds `irMutex` for the lifetime of the guard.
class MutexLock {
 public:
  explicit MutexLock(Mutex& irMutex) : ivMutex(irMutex) { ivMutex.lock(); }
  ~MutexLock() { ivMutex.unlock(); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  Mutex& ivMutex;
};

}  // namespace fcbb

#endif  // QRX_COMMON_BASE_MUTEX_H_
