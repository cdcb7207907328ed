#include "common/mqueue/FramePipeIf.h"

#include <sched.h>
#include <time.h>

#include <cassert>

#include "common/base/Time.h"

namespace fcbb {

void Frame::reset(std::uint32_t ipAllocSize) {
  setReqId(0);
  setAllocSize(ipAllocSize);
  used_size = kFrameHeaderSize;
  setWireNext(0);
  setNext(nullptr);
}

void Frame::setDataSize(std::uint32_t ipSize) {
  const std::uint64_t wanted = std::uint64_t{ipSize} + kFrameHeaderSize;
  // Compared before it is stored, so that a size past 32 bits cannot wrap.
  assert(alloc_size >= wanted && "alloc_size >= used_size");
  used_size = static_cast<std::uint32_t>(wanted);
}

FramePipeIf::~FramePipeIf() = default;

void FramePipeIf::waitReady(bool /*ipForSend*/, unsigned int ipMs) {
  const timespec pause = {0, (ipMs < 1 ? static_cast<long>(ipMs) : 1L) * 1000000L};
  nanosleep(&pause, nullptr);
}

FramePipeIf::Link FramePipeIf::checkLink() { return Link::kCurrent; }

bool FramePipeIf::reopen() { return false; }

bool FramePipeIf::sendBlock(const Frame* ipFrame) {
  for (const Frame* frame = ipFrame; frame != nullptr; frame = frame->next()) {
    int result;
    while ((result = send(frame)) == 0) sched_yield();
    if (result < 0) assert(0);
  }
  return true;
}

int FramePipeIf::recvBlock(Frame*& orFrame) {
  orFrame = nullptr;
  Frame* last = nullptr;
  int total = 0;
  for (;;) {
    Frame* frame = nullptr;
    const int result = recvNonBlock(frame);
    if (result == 0) {
      sched_yield();
      continue;
    }
    if (result < 0) {
      if (orFrame != nullptr) recvDone(orFrame);
      orFrame = nullptr;
      return result;
    }
    total += result;
    if (last == nullptr) {
      orFrame = frame;
    } else {
      last->setNext(frame);
    }
    last = frame;
    if (frame->wireNext() == 0) return total;
  }
}

int FramePipeIf::timedRecv(Frame*& orFrame, unsigned int ipMs) {
  const Time deadline = Time() + ipMs;
  for (;;) {
    const int result = recvNonBlock(orFrame);
    if (result != 0 || Time() >= deadline) return result;
  }
}

}  // namespace fcbb
