// fcbb::RwLock: a read/write lock that prefers writers.
//
// Any number of readers or one writer hold it at a time. A writer that is
// waiting blocks new readers, so a steady stream of readers cannot starve
// it. The lock is not recursive: a thread that already holds it (in either
// mode) and waits for it again deadlocks whenever a writer is waiting, and
// always when it holds it for writing. Results of the underlying calls are
// not checked. None of the operations is a cancellation point.
// Thread-safe; not copyable.
#ifndef QRX_COMMON_BASE_RWLOCK_H_
#define QRX_COMMON_BASE_RWLOCK_H_

#include <pthread.h>

namespace fcbb {

class RwLock {
 public:
  RwLock() = default;
  virtual ~RwLock();

  RwLock(const RwLock&) = delete;
  RwLock& operator=(const RwLock&) = delete;

  // Takes the lock shared; waits while a writer holds it or waits for it.
  void rdLock();

  // Takes the lock exclusively.
  void wrLock();

  // Releases the lock taken by rdLock() or wrLock().
  void unlock();

 private:
  pthread_rwlock_t ivLock = PTHREAD_RWLOCK_WRITER_NONRECURSIVE_INITIALIZER_NP;
};

}  // namespace fcbb

#endif  // QRX_COMMON_BASE_RWLOCK_H_
