// CMPIBrokerExtFT: library file names and POSIX threads, thread keys,
// mutexes and conditions. Complete in both modes (CMPI 1.0 has all of it).
//
// Conventions: functions returning int return 0 or an errno value (EINVAL
// for NULL arguments). resolveFileName() returns malloc()ed memory the
// caller frees with free(). Mutexes are recursive (a thread may lock one it
// holds). threadOnce() runs `init` once per `*once` (which starts 0) and
// makes concurrent callers wait until it has run.
#include <errno.h>
#include <pthread.h>
#include <time.h>

#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>
#include <string>
#include <system_error>

#include "tools/cimhost/broker/BrokerTables.h"

namespace cimhost {

namespace {

static_assert(sizeof(pthread_t) <= sizeof(void*), "a pthread_t must fit a CMPI_THREAD_TYPE");

CMPI_THREAD_TYPE toThread(pthread_t ipThread) {
  void* out = nullptr;
  std::memcpy(&out, &ipThread, sizeof(ipThread));
  return out;
}

pthread_t fromThread(CMPI_THREAD_TYPE ipThread) {
  pthread_t out;
  std::memset(&out, 0, sizeof(out));
  std::memcpy(&out, &ipThread, sizeof(out));
  return out;
}

char* xResolveFileName(const char* filename) {
  if (!filename) return nullptr;
  const std::string name = std::string("lib") + filename + ".so";
  char* out = static_cast<char*>(std::malloc(name.size() + 1));
  if (out) std::memcpy(out, name.c_str(), name.size() + 1);
  return out;
}

CMPI_THREAD_TYPE xNewThread(CMPI_THREAD_RETURN(CMPI_THREAD_CDECL* start)(void*), void* parm,
                            int detached) {
  if (!start) return nullptr;
  pthread_attr_t attr;
  if (pthread_attr_init(&attr) != 0) return nullptr;
  pthread_attr_setdetachstate(&attr, detached ? PTHREAD_CREATE_DETACHED : PTHREAD_CREATE_JOINABLE);
  pthread_t thread;
  const int rc = pthread_create(&thread, &attr, start, parm);
  pthread_attr_destroy(&attr);
  return rc == 0 ? toThread(thread) : nullptr;
}

int xJoinThread(CMPI_THREAD_TYPE thread, CMPI_THREAD_RETURN* retval) {
  if (!thread) return EINVAL;
  return pthread_join(fromThread(thread), retval);
}

int xExitThread(CMPI_THREAD_RETURN return_code) { pthread_exit(return_code); }

int xCancelThread(CMPI_THREAD_TYPE thread) {
  if (!thread) return EINVAL;
  return pthread_cancel(fromThread(thread));
}

int xThreadSleep(CMPIUint32 msec) {
  struct timespec wait;
  wait.tv_sec = static_cast<time_t>(msec / 1000);
  wait.tv_nsec = static_cast<long>(msec % 1000) * 1000000L;
  while (nanosleep(&wait, &wait) != 0) {
    if (errno != EINTR) return errno;
  }
  return 0;
}

std::recursive_mutex& onceMutex() {
  static std::recursive_mutex mutex;
  return mutex;
}

int xThreadOnce(int* once, void (*init)(void)) {
  if (!once || !init) return EINVAL;
  if (__atomic_load_n(once, __ATOMIC_ACQUIRE) != 0) return 0;
  try {
    std::lock_guard<std::recursive_mutex> lock(onceMutex());
    if (*once == 0) {
      init();
      __atomic_store_n(once, 1, __ATOMIC_RELEASE);
    }
  } catch (const std::system_error& e) {
    return e.code().value();
  }
  return 0;
}

int xCreateThreadKey(CMPI_THREAD_KEY_TYPE* key, void (*cleanup)(void*)) {
  if (!key) return EINVAL;
  pthread_key_t pkey;
  const int rc = pthread_key_create(&pkey, cleanup);
  if (rc == 0) *key = static_cast<CMPI_THREAD_KEY_TYPE>(pkey);
  return rc;
}

int xDestroyThreadKey(CMPI_THREAD_KEY_TYPE key) {
  return pthread_key_delete(static_cast<pthread_key_t>(key));
}

void* xGetThreadSpecific(CMPI_THREAD_KEY_TYPE key) {
  return pthread_getspecific(static_cast<pthread_key_t>(key));
}

int xSetThreadSpecific(CMPI_THREAD_KEY_TYPE key, void* value) {
  return pthread_setspecific(static_cast<pthread_key_t>(key), value);
}

CMPI_MUTEX_TYPE xNewMutex(int) {
  pthread_mutex_t* mutex = new (std::nothrow) pthread_mutex_t;
  if (!mutex) return nullptr;
  pthread_mutexattr_t attr;
  pthread_mutexattr_init(&attr);
  pthread_mutexattr_settype(&attr, PTHREAD_MUTEX_RECURSIVE);
  const int rc = pthread_mutex_init(mutex, &attr);
  pthread_mutexattr_destroy(&attr);
  if (rc != 0) {
    delete mutex;
    return nullptr;
  }
  return mutex;
}

void xDestroyMutex(CMPI_MUTEX_TYPE mutex) {
  if (!mutex) return;
  pthread_mutex_destroy(static_cast<pthread_mutex_t*>(mutex));
  delete static_cast<pthread_mutex_t*>(mutex);
}

void xLockMutex(CMPI_MUTEX_TYPE mutex) {
  if (mutex) pthread_mutex_lock(static_cast<pthread_mutex_t*>(mutex));
}

void xUnlockMutex(CMPI_MUTEX_TYPE mutex) {
  if (mutex) pthread_mutex_unlock(static_cast<pthread_mutex_t*>(mutex));
}

CMPI_COND_TYPE xNewCondition(int) {
  pthread_cond_t* cond = new (std::nothrow) pthread_cond_t;
  if (!cond) return nullptr;
  if (pthread_cond_init(cond, nullptr) != 0) {
    delete cond;
    return nullptr;
  }
  return cond;
}

void xDestroyCondition(CMPI_COND_TYPE cond) {
  if (!cond) return;
  pthread_cond_destroy(static_cast<pthread_cond_t*>(cond));
  delete static_cast<pthread_cond_t*>(cond);
}

int xCondWait(CMPI_COND_TYPE cond, CMPI_MUTEX_TYPE mutex) {
  if (!cond || !mutex) return EINVAL;
  return pthread_cond_wait(static_cast<pthread_cond_t*>(cond),
                           static_cast<pthread_mutex_t*>(mutex));
}

int xTimedCondWait(CMPI_COND_TYPE cond, CMPI_MUTEX_TYPE mutex, struct timespec* wait) {
  if (!cond || !mutex || !wait) return EINVAL;
  return pthread_cond_timedwait(static_cast<pthread_cond_t*>(cond),
                                static_cast<pthread_mutex_t*>(mutex), wait);
}

int xSignalCondition(CMPI_COND_TYPE cond) {
  if (!cond) return EINVAL;
  return pthread_cond_signal(static_cast<pthread_cond_t*>(cond));
}

constexpr CMPIBrokerExtFT makeTable(int ipVersion) {
  return CMPIBrokerExtFT{ipVersion,          xResolveFileName,   xNewThread,
                         xJoinThread,        xExitThread,        xCancelThread,
                         xThreadSleep,       xThreadOnce,        xCreateThreadKey,
                         xDestroyThreadKey,  xGetThreadSpecific, xSetThreadSpecific,
                         xNewMutex,          xDestroyMutex,      xLockMutex,
                         xUnlockMutex,       xNewCondition,      xDestroyCondition,
                         xCondWait,          xTimedCondWait,     xSignalCondition};
}

const CMPIBrokerExtFT kTable200 = makeTable(CMPIVersion200);
const CMPIBrokerExtFT kTable100 = makeTable(CMPIVersion100);

}  // namespace

const CMPIBrokerExtFT* extFunctions(BrokerMode ipMode) {
  return ipMode == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

}  // namespace cimhost
