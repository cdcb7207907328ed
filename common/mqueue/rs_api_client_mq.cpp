// The hand-written half of the request client: one exchange with the
// daemon. The per-call wrappers are generated (smis_ipc_client.cpp).
#include <sched.h>

#include <cassert>
#include <cstdlib>
#include <cstring>

#include "common/base/PerfSamples.h"
#include "common/base/SCIMSerdes.h"
#include "common/base/trace.h"
#include "generated/smis_ipc/smis_ipc_client.h"

namespace {
const char* const kUnit = "common/mqueue/rs_api_client_mq";
}  // namespace

rs_api_client_mq::rs_api_client_mq(fcbb::FramePipeIf& irFramePipe)
    : ivrFramePipe(irFramePipe), ivReqIdNr(0) {}

int rs_api_client_mq::execIpc(fcbb::Frame* ipIn, fcbb::Frame** opOut) {
  fcbb::MutexLock lock(ivLock);
  ipIn->req_id = ivReqIdNr++;
  while (!ivrFramePipe.sendBlock(ipIn)) sched_yield();
  const int received = ivrFramePipe.recvBlock(*opOut);
  if (received < 0) return received;
  assert(ipIn->req_id == (*opOut)->req_id);
  return 0;
}

fcbb::Frame* rs_api_client_mq::makeSingleFrame(fcbb::Frame* ipFrame) {
  if (ipFrame->next() == nullptr) return ipFrame;
  std::uint64_t total = fcbb::kFrameHeaderSize;
  for (const fcbb::Frame* f = ipFrame; f != nullptr; f = f->next()) total += f->dataSize();
  if (total > UINT32_MAX) return nullptr;
  // Laid out like a FrameBuffer (the chain pointer in front), so that the
  // joined frame is a Frame like any other.
  void* memory = std::malloc(offsetof(fcbb::FrameBuffer, buffer) + total);
  if (memory == nullptr) return nullptr;
  auto* storage = static_cast<fcbb::FrameBuffer*>(memory);
  fcbb::Frame* joined = storage->frame();
  joined->reset(static_cast<std::uint32_t>(total));
  joined->req_id = ipFrame->reqId();
  unsigned char* out = joined->data();
  for (const fcbb::Frame* f = ipFrame; f != nullptr; f = f->next()) {
    std::memcpy(out, f->data(), f->dataSize());
    out += f->dataSize();
  }
  joined->setDataSize(static_cast<std::uint32_t>(total - fcbb::kFrameHeaderSize));
  return joined;
}

void rs_api_client_mq::freeSingleFrame(fcbb::Frame* ipFrame) {
  std::free(fcbb::FrameBuffer::of(ipFrame));
}

int rs_api_client_mq::exchange(const char* ipTag, const char* ipFunction,
                               const std::function<void(SCIMSerializerIf&)>& irArgs,
                               const std::function<void(SCIMDeserializerIf&)>& irResults) {
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
  int rc = execIpc(request, &reply);
  ivrFramePipe.freeFrame(request);
  if (rc != 0) return rc;

  fcbb::Frame* joined = makeSingleFrame(reply);
  if (joined == nullptr) {
    TRACE_ERROR(kUnit, "no memory to join the reply to %s\n", ipFunction);
    ivrFramePipe.recvDone(reply);
    return -1;
  }
  SCIMDeserializer deserializer(joined->data(), joined->dataSize());
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
  ivrFramePipe.recvDone(reply);
  if (joined != reply) freeSingleFrame(joined);
  return rc;
}
