#include "tests/support/InMemoryPipe.h"

#include <algorithm>
#include <memory>
#include <string>

#include "common/base/SCIMSerdes.h"
#include "generated/smis_ipc/smis_ipc_dispatch.h"

namespace qrxtest {

using fcbb::Frame;
using fcbb::FrameBuffer;

InMemoryPipe::~InMemoryPipe() {
  for (Frame* f : ivInbox) freeFrame(f);
}

Frame* InMemoryPipe::allocFrame(unsigned int ipSize) {
  std::lock_guard<std::mutex> lock(ivMutex);
  if (ivOutOfFrames) return nullptr;
  ++ivOutstanding;
  auto* storage = new FrameBuffer();
  storage->frame()->reset(ipSize);
  return storage->frame();
}

void InMemoryPipe::freeFrame(Frame* ipFrame) {
  while (ipFrame != nullptr) {
    Frame* next = ipFrame->next();
    delete FrameBuffer::of(ipFrame);
    std::lock_guard<std::mutex> lock(ivMutex);
    --ivOutstanding;
    ipFrame = next;
  }
}

int InMemoryPipe::send(const Frame* ipFrame) {
  const Bytes request(ipFrame->data(), ipFrame->data() + ipFrame->dataSize());
  const Reply reply = answer(request);
  std::lock_guard<std::mutex> lock(ivMutex);
  if (ivInFlight) ivOverlapped = true;
  ivInFlight = true;
  ivRequests.push_back(request);
  ivReqIds.push_back(ipFrame->reqId());
  const std::size_t room = fcbb::kMaxFrameSize - fcbb::kFrameHeaderSize;
  for (int copy = 0; copy < reply.copies; ++copy) {
    std::size_t offset = 0;
    for (int frames = 0; reply.cutAfter < 0 || frames < reply.cutAfter; ++frames) {
      const std::size_t part = std::min(room, reply.data.size() - offset);
      auto* storage = new FrameBuffer();
      ++ivOutstanding;
      Frame* frame = storage->frame();
      frame->reset(fcbb::kMaxFrameSize);
      frame->req_id = ipFrame->reqId() + reply.reqIdSkew;
      std::copy(reply.data.begin() + offset, reply.data.begin() + offset + part, frame->data());
      frame->setDataSize(static_cast<std::uint32_t>(part));
      offset += part;
      frame->setWireNext(offset < reply.data.size() ? 1 : 0);
      ivInbox.push_back(frame);
      if (offset >= reply.data.size()) break;
    }
  }
  return static_cast<int>(ipFrame->usedSize());
}

int InMemoryPipe::recvNonBlock(Frame*& orFrame) {
  orFrame = nullptr;
  std::lock_guard<std::mutex> lock(ivMutex);
  if (ivInbox.empty() || ++ivPolls % ivPollsPerFrame != 0) return 0;
  orFrame = ivInbox.front();
  ivInbox.pop_front();
  if (ivInbox.empty()) ivInFlight = false;
  return static_cast<int>(orFrame->usedSize());
}

void InMemoryPipe::setAnswerAtOnce(bool ipAtOnce) {
  std::lock_guard<std::mutex> lock(ivMutex);
  ivPollsPerFrame = ipAtOnce ? 1 : 4;
}

void InMemoryPipe::forgetRequests() {
  std::lock_guard<std::mutex> lock(ivMutex);
  ivRequests.clear();
  ivReqIds.clear();
}

int InMemoryPipe::outstanding() {
  std::lock_guard<std::mutex> lock(ivMutex);
  return ivOutstanding;
}

std::vector<Bytes> InMemoryPipe::requests() {
  std::lock_guard<std::mutex> lock(ivMutex);
  return ivRequests;
}

std::vector<std::uint32_t> InMemoryPipe::reqIds() {
  std::lock_guard<std::mutex> lock(ivMutex);
  return ivReqIds;
}

bool InMemoryPipe::overlapped() {
  std::lock_guard<std::mutex> lock(ivMutex);
  return ivOverlapped;
}

int InMemoryPipe::waiting() {
  std::lock_guard<std::mutex> lock(ivMutex);
  return static_cast<int>(ivInbox.size());
}

void InMemoryPipe::setOutOfFrames(bool ipOut) {
  std::lock_guard<std::mutex> lock(ivMutex);
  ivOutOfFrames = ipOut;
}

InMemoryPipe::Reply DispatchPipe::answer(const Bytes& irRequest) {
  // Large enough for any reply a test builds; the call runs only once,
  // since it may change the daemon's state. One buffer serves every call,
  // one call at a time.
  constexpr std::size_t kCapacity = 8 << 20;
  std::lock_guard<std::mutex> lock(ivAnswerMutex);
  if (!ivReply) ivReply.reset(new unsigned char[kCapacity]);
  unsigned char* const reply = ivReply.get();
  Bytes request = irRequest;
  SCIMDeserializer in(request.data(), request.size());
  SCIMSerializer out(reply, kCapacity);
  std::string function;
  if (rs_api_dispatch(ivDaemon, in, out, function) != kDispatchDone || out.hasError()) {
    SCIMSerializer failure(reply, kCapacity);
    failure.write("status", CMPI_uint32, cuint32{0xFFFF});
    return Reply{Bytes(reply, reply + failure.getWrittenLen())};
  }
  return Reply{Bytes(reply, reply + out.getWrittenLen())};
}

}  // namespace qrxtest
