// The hand-written half of the request client: one exchange with the
// daemon. The per-call wrappers are generated (smis_ipc_client.cpp).
#include "common/base/PerfSamples.h"
#include "common/base/SCIMSerdes.h"
#include "common/base/trace.h"
#include "generated/smis_ipc/smis_ipc_client.h"

namespace {
const char* const kUnit = "common/mqueue/rs_api_client_mq";
}  // namespace

rs_api_client_mq::rs_api_client_mq(fcbb::FramePipeIf& irFramePipe)
    : ivrFramePipe(irFramePipe), ivReqIdNr(0), ivExchange(irFramePipe, ivLimits) {}

int rs_api_client_mq::execIpc(fcbb::Frame* ipIn, fcbb::Frame** opOut) {
  fcbb::MutexLock lock(ivLock);
  return execIpc_nl(ipIn, opOut);
}

int rs_api_client_mq::execIpc_nl(fcbb::Frame* ipIn, fcbb::Frame** opOut) {
  ipIn->req_id = ivReqIdNr++;
  *opOut = nullptr;
  return ivExchange.run(ipIn, opOut);
}

void rs_api_client_mq::releaseReply(fcbb::Frame* ipReply) {
  fcbb::RequestExchange::release(ivrFramePipe, ipReply);
}

void rs_api_client_mq::setExchangeLimits(const fcbb::ExchangeLimits& irLimits) {
  fcbb::MutexLock lock(ivLock);
  ivLimits = irLimits;
}

int rs_api_client_mq::exchange(const char* ipTag, const char* ipFunction,
                               const std::function<void(SCIMSerializerIf&)>& irArgs,
                               const std::function<void(SCIMDeserializerIf&)>& irResults) {
  // The lock comes first: a caller that waits for its turn holds no frame,
  // so the pool always has frames for the caller whose turn it is.
  fcbb::MutexLock lock(ivLock);
  fcbb::Frame* request = ivrFramePipe.allocFrame(ivrFramePipe.getMaxFrameSize());
  if (request == nullptr) {
    TRACE_ERROR(kUnit, "no free frame for %s\n", ipFunction);
    return -1;
  }
  SCIMSerializer serializer(request->data(), request->allocSize() - fcbb::kFrameHeaderSize);
  serializer.write("function", CMPI_string, ipFunction);
  irArgs(serializer);
  if (serializer.hasError()) {
    // Sending a truncated request would have the daemon act on part of it.
    TRACE_ERROR(kUnit, "request %s does not fit in one frame\n", ipFunction);
    ivrFramePipe.freeFrame(request);
    return -1;
  }
  request->setDataSize(static_cast<std::uint32_t>(serializer.getWrittenLen()));

  AutoTimeStat timer(ipTag);
  fcbb::Frame* reply = nullptr;
  int rc = execIpc_nl(request, &reply);
  ivrFramePipe.freeFrame(request);
  if (rc != 0) {
    TRACE_ERROR(kUnit, "no reply to %s\n", ipFunction);
    return rc;
  }

  SCIMDeserializer deserializer(reply->data(), reply->dataSize());
  cuint32 status = 0;
  deserializer.read("status", CMPI_uint32, status);
  if (deserializer.hasError()) {
    TRACE_ERROR(kUnit, "reply to %s has no status\n", ipFunction);
    rc = -1;
  } else if (status != 0) {
    rc = static_cast<int>(status);
  } else {
    irResults(deserializer);
    if (deserializer.hasError()) {
      // The results are read into temporaries, so the caller's outputs
      // stay as they were.
      TRACE_ERROR(kUnit, "reply to %s is too short for its results\n", ipFunction);
      rc = -1;
    }
  }
  releaseReply(reply);
  return rc;
}
