// Start-up of the library's switch side, and the one request client.
//
// When the object manager loads the shared library, its load-time
// constructor (initLib) runs backendStart() and ends the process with
// exit(-1) if it fails: the switch daemon must be up before the library is
// loaded. The static library has no constructor; tests call backendStart()
// themselves when they want the globals.
#ifndef QRX_COMMON_BACKEND_BACKENDSTART_H_
#define QRX_COMMON_BACKEND_BACKENDSTART_H_

#include "common/backend/FabricCache.h"
#include "common/mqueue/FramePipeMqTmpl.h"
#include "generated/smis_ipc/smis_ipc_client.h"

// The pipe to the daemon's queues "smis_ipc"; null before start-up.
extern fcbb::DaemonPipe* pipeClient;
// The fabric cache, which is also the request client; null before start-up.
extern FabricCache* fabricCache;

// In order: opens the trace file (trace_default_path()), creates pipeClient
// and opens it with the name "smis_ipc", creates the fabric cache over it,
// starts the event thread (backendInd, which fills the cache) and writes "Info: init provider and backend lib successfully". When the
// daemon's queues are not there it writes "Could not open mq smis_ipc",
// closes and deletes the pipe and returns false. Runs once per process;
// later calls return the first call's result.
bool backendStart();

// The fabric cache, or null (with an error logged) before start-up: the
// backends' way to the switch.
FabricCache* get_fabric_cache();

// Stops the event thread (at unload: it must not outlive the code). Remote
// calls stop waiting for the daemon first, so that a daemon that is gone
// cannot hold the unload; the pipe and the cache stay for whatever still
// runs, and their remote calls fail from now on.
void backendStop();

// The one request client of the process (the fabric cache), through which
// every backend reaches the daemon; null until backendStart() succeeded.
rs_api_client* get_rs_api_client();

#endif  // QRX_COMMON_BACKEND_BACKENDSTART_H_
