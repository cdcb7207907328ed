"""The request client of the switch daemon protocol.

smis_ipc/smis_ipc_client.h   rs_api_client (one pure virtual per call, in
                             order) and rs_api_client_mq, its implementation
smis_ipc/smis_ipc_client.cpp one definition per call over
                             rs_api_client_mq::exchange (written by hand)
"""

from gen_classes import BANNER
from gen_ipc import SOURCE


def arg_decl(field):
    return "%s %s" % (field.type.cpp, field.name)


def signature(call, qualified=""):
    params = [arg_decl(a) for a in call.args] + ["%s& %s" % (r.type.cpp, r.name) for r in call.results]
    return "int %s%s(%s)" % (qualified, call.name, ", ".join(params))


CLIENT_HEADER = """\
#ifndef QRX_GENERATED_SMIS_IPC_SMIS_IPC_CLIENT_H_
#define QRX_GENERATED_SMIS_IPC_SMIS_IPC_CLIENT_H_

#include <cstdint>
#include <functional>

#include "common/base/Mutex.h"
#include "common/mqueue/FramePipeIf.h"
#include "common/mqueue/RequestExchange.h"
#include "generated/smis_ipc/smis_ipc.h"

// The remote calls of the switch daemon, one operation each. Every call
// answers 0 on success, -1 on a local failure (no frame, no memory, a
// reply that does not decode), a negative transport result, or the
// daemon's own non-zero status. Results are written only on success.
// The same interface serves the daemon's side (smis_ipc_dispatch.h), where
// the status is what the implementation returns.
class rs_api_client {
 public:
%s
  virtual ~rs_api_client() {}
};

// The client over a frame pipe: each call sends one request frame (the
// function name "rs_api_<call>" and the arguments) and receives the reply
// (a 32-bit status, then on 0 the results), holding ivLock from taking the
// request frame to decoding the reply, so that one call is in flight at a
// time and a caller waiting for the lock holds no frame. Requests are
// numbered in order. Each exchange is timed under
// "rs_api_client_mq.<call>". How the exchange waits, gathers long replies
// and follows a restarted daemon: common/mqueue/RequestExchange.h.
class rs_api_client_mq : public rs_api_client {
 public:
  explicit rs_api_client_mq(fcbb::FramePipeIf& irFramePipe);

%s
  // Sends `ipIn` numbered with the next request number and receives its
  // whole reply as one frame in *opOut, to be given back with
  // releaseReply(). Returns 0, or -1 when no reply could be had. Asserts
  // that the reply does not answer a request that was never sent.
  int execIpc(fcbb::Frame* ipIn, fcbb::Frame** opOut);
  void releaseReply(fcbb::Frame* ipReply);

  // Replaces the limits of the exchanges that follow.
  void setExchangeLimits(const fcbb::ExchangeLimits& irLimits);

  // Stops waiting for the daemon for good (the library is being unloaded):
  // a call in flight fails, later calls fail at once. Any thread.
  void abandonRequests() { ivExchange.abandon(); }

 protected:
  // One remote call: writes the function name and `irArgs`, exchanges, and
  // on a zero status reads the results with `irResults`.
  int exchange(const char* ipTag, const char* ipFunction,
               const std::function<void(SCIMSerializerIf&)>& irArgs,
               const std::function<void(SCIMDeserializerIf&)>& irResults);
  // execIpc() with ivLock held.
  int execIpc_nl(fcbb::Frame* ipIn, fcbb::Frame** opOut);

  fcbb::FramePipeIf& ivrFramePipe;
  fcbb::Mutex ivLock;
  std::uint32_t ivReqIdNr;
  fcbb::ExchangeLimits ivLimits;
  fcbb::RequestExchange ivExchange;
};

#endif  // QRX_GENERATED_SMIS_IPC_SMIS_IPC_CLIENT_H_
"""


def client_header(protocol):
    virtuals = "\n".join("  virtual %s = 0;" % signature(c) for c in protocol.calls)
    overrides = "\n".join("  %s override;" % signature(c) for c in protocol.calls)
    return BANNER % SOURCE + CLIENT_HEADER % (virtuals, overrides)


def call_source(call):
    out = "%s {\n" % signature(call, "rs_api_client_mq::")
    for r in call.results:
        out += "  %s read%s%s;\n" % (r.type.cpp, r.name, "" if r.type.cpp_is_class else "{}")
    writes = "".join("        serializer.write(\"%s\", %s, %s);\n" % (a.name, a.type.code, a.name)
                     for a in call.args)
    reads = "".join("        deserializer.read(\"%s\", %s, read%s);\n" % (r.name, r.type.code, r.name)
                    for r in call.results)
    out += "  int rc = exchange(\n      \"rs_api_client_mq.%s\", \"rs_api_%s\",\n" % (call.name, call.name)
    out += "      [&](SCIMSerializerIf& serializer) {\n%s%s      },\n" % (
        "        (void)serializer;\n" if not writes else "", writes)
    out += "      [&](SCIMDeserializerIf& deserializer) {\n%s%s      });\n" % (
        "        (void)deserializer;\n" if not reads else "", reads)
    if call.results:
        out += "  if (rc == 0) {\n"
        out += "".join("    %s = std::move(read%s);\n" % (r.name, r.name) for r in call.results)
        out += "  }\n"
    out += "  return rc;\n}\n\n"
    return out


def client_source(protocol):
    out = BANNER % SOURCE
    out += "#include \"generated/smis_ipc/smis_ipc_client.h\"\n\n#include <utility>\n\n"
    out += "".join(call_source(c) for c in protocol.calls)
    return out.rstrip("\n") + "\n"


def generate(schema):
    protocol = schema.protocol
    return {
        "smis_ipc/smis_ipc_client.h": client_header(protocol),
        "smis_ipc/smis_ipc_client.cpp": client_source(protocol),
    }
