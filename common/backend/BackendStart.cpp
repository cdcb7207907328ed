#include "common/backend/BackendStart.h"

#include <cassert>
#include <mutex>

#include "common/base/trace.h"

fcbb::DaemonPipe* pipeClient = nullptr;
FabricCache* fabricCache = nullptr;

namespace {

const char* const kUnit = "common/backend/BackendStart";
const char* const kPipeName = "smis_ipc";

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
  fabricCache->initCache();
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
