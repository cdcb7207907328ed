// The shared object's load-time start-up. Only libqrxsmis.so contains this
// file: the static library that tests link has no constructor.
#include <cstdlib>

#include "common/backend/BackendStart.h"

__attribute__((constructor)) static void initLib() {
  if (!backendStart()) std::exit(-1);
}

__attribute__((destructor)) static void finiLib() { backendStop(); }
