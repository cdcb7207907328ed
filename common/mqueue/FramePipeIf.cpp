#include "common/mqueue/FramePipeIf.h"

#include <sched.h>

#include <cassert>

#include "common/base/Time.h"

namespace fcbb {

void Frame::reset(std::uint32_t ipAllocSize) {
  setReqId(0);
  setAllocSize(ipAllocSize);
  setWord(8, kFrameHeaderSize);
  setWireNext(0);
  setNext(nullptr);
}

void Frame::setDataSize(std::uint32_t ipSize) {
  // Named after the header fields: the failing text reads
  // "alloc_size >= used_size".
  const std::uint32_t alloc_size = allocSize();
  const std::uint64_t used_size = std::uint64_t{ipSize} + kFrameHeaderSize;
  assert(alloc_size >= used_size);
  setWord(8, static_cast<std::uint32_t>(used_size));
}

FramePipeIf::~FramePipeIf() = default;

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
