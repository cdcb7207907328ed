#include "common/backend/BackendStart.h"

#include <cassert>
#include <mutex>

#include "common/backend/BackendInd.h"
#include "common/backend/LocalZoneDb.h"
#include "common/base/trace.h"

fcbb::DaemonPipe* pipeClient = nullptr;
FabricCache* fabricCache = nullptr;

namespace {

const char* const kUnit = "common/backend/BackendStart";
const char* const kPipeName = "smis_ipc";
const unsigned kFillTimeoutMs = 30000;

bool startOnce() {
  trace_open(trace_default_path());
  pipeClient = new fcbb::DaemonPipe();
  assert(pipeClient);
  if (!pipeClient->open(kPipeName)) {
    TRACE_ERROR(kUnit, "Could not open mq %s\n", kPipeName);
    pipeClient->close();
    delete pipeClient;
    pipeClient = nullptr;
    return false;
  }
  fabricCache = new FabricCache(*pipeClient);
  assert(fabricCache);
  // The event thread fills the cache before it takes events.
  backendInd = new BackendInd(*fabricCache);
  assert(backendInd);
  // Zone change events caused by the zone database's own commit are
  // dropped, other events wait until the session is closed; zoning changed
  // through the library re-reads the cached active zone set at once.
  backendInd->setClosingSessionCheck([] { return ZoneDb::getInstance().isClosingSession(); });
  ZoneDb::getInstance().setZoningChangedHook([] { fabricCache->refreshActiveZoneSet(); });
  // Providers answer from the cache: wait for the first fill, but do not
  // let a daemon that does not answer hold the object manager forever.
  if (!backendInd->startThread()) {
    TRACE_ERROR(kUnit, "Could not start the event thread\n");
  } else if (!backendInd->waitUntilFilled(kFillTimeoutMs)) {
    TRACE_ERROR(kUnit, "The fabric cache was not filled within %u ms\n", kFillTimeoutMs);
  }
  trace_log(false, "Info: init provider and backend lib successfully\n");
  return true;
}

}  // namespace

bool backendStart() {
  static std::once_flag once;
  static bool started = false;
  std::call_once(once, [] { started = startOnce(); });
  return started;
}

rs_api_client* get_rs_api_client() { return fabricCache; }

FabricCache* get_fabric_cache() {
  if (fabricCache == nullptr) TRACE_ERROR(kUnit, "no connection to the switch daemon\n");
  return fabricCache;
}

void backendStop() {
  if (backendInd == nullptr) return;
  // The event thread may be waiting for a daemon that is gone.
  if (fabricCache != nullptr) fabricCache->abandonRequests();
  backendInd->terminateThread(false);
  delete backendInd;
  backendInd = nullptr;
}
