#include "common/base/RwLock.h"

namespace fcbb {

RwLock::~RwLock() { pthread_rwlock_destroy(&ivLock); }

void RwLock::rdLock() { pthread_rwlock_rdlock(&ivLock); }

void RwLock::wrLock() { pthread_rwlock_wrlock(&ivLock); }

void RwLock::unlock() { pthread_rwlock_unlock(&ivLock); }

}  // namespace fcbb
