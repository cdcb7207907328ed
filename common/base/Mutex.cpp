#include "common/base/Mutex.h"

namespace fcbb {

Mutex::Mutex() : ivSem(1) {}

Mutex::~Mutex() = default;

void Mutex::lock() { ivSem.wait(); }

void Mutex::unlock() { ivSem.post(); }

bool Mutex::isLocked() { return ivSem.getValue() == 0; }

}  // namespace fcbb
