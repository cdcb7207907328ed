// The shared object's load-time start-up. Only libqrxsmis.so contains this
// file: the static library that tests link has no constructor.
#include <cstdlib>

#include "common/backend/BackendStart.h"
#include "provider/Indication_Providers.h"

__attribute__((constructor)) static void initLib() {
  if (!backendStart()) std::exit(-1);
}

// The event thread ends first, so that nothing is queued for delivery any
// more; then the delivery threads end and drop what they still hold.
__attribute__((destructor)) static void finiLib() {
  backendStop();
  stopIndicationDeliveries();
}
