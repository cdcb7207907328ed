#include "common/base/Semaphore.h"

#include <cassert>
#include <cerrno>

#include "common/base/Time.h"

// assert() quoting its expression after macro expansion: the argument is
// expanded before it reaches assert(), so `errno == ETIMEDOUT` fails as
// "(*__errno_location ()) == 110", the text diagnostics are matched on.
#define QRX_ASSERT_EXPANDED(expr) assert(expr)

namespace fcbb {

Semaphore::Semaphore(unsigned int ipValue) { sem_init(&ivSem, 0, ipValue); }

Semaphore::~Semaphore() { sem_destroy(&ivSem); }

void Semaphore::wait() {
  // A signal handler ends sem_wait() early whatever its SA_RESTART flag;
  // returning then would hand a Mutex to a caller that does not hold it.
  while (sem_wait(&ivSem) != 0 && errno == EINTR) {
  }
}

bool Semaphore::timedWait(const Time& irDeadline) {
  const timespec deadline = irDeadline;
  if (sem_timedwait(&ivSem, &deadline) == 0) return true;
  QRX_ASSERT_EXPANDED(errno == ETIMEDOUT);
  return false;
}

void Semaphore::post() { sem_post(&ivSem); }

int Semaphore::getValue() {
  int value = 0;
  sem_getvalue(&ivSem, &value);
  return value;
}

}  // namespace fcbb
