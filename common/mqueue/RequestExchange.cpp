#include "common/mqueue/RequestExchange.h"

#include <sched.h>
#include <time.h>

#include <cassert>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include "common/base/trace.h"

namespace fcbb {

namespace {

const char* const kUnit = "common/mqueue/RequestExchange";

using Clock = std::chrono::steady_clock;

Clock::time_point after(Clock::time_point ipStart, unsigned int ipMs) {
  return ipStart + std::chrono::milliseconds(ipMs);
}

unsigned int msUntil(Clock::time_point ipWhen, Clock::time_point ipNow) {
  if (ipWhen <= ipNow) return 0;
  return static_cast<unsigned int>(
      std::chrono::duration_cast<std::chrono::milliseconds>(ipWhen - ipNow).count() + 1);
}

void sleepMs(unsigned int ipMs) {
  const timespec pause = {static_cast<time_t>(ipMs / 1000), static_cast<long>(ipMs % 1000) * 1000000L};
  nanosleep(&pause, nullptr);
}

}  // namespace

// The schedule of one wait: spin first, then sleep in the pipe, and check
// the link now and then.
class RequestExchange::Waiter {
 public:
  explicit Waiter(const ExchangeLimits& irLimits)
      : ivrLimits(irLimits),
        ivSpinUntil(after(Clock::now(), irLimits.spinMs)),
        ivNextCheck(after(Clock::now(), irLimits.firstLinkCheckMs)) {}

  bool spinning(Clock::time_point ipNow) const { return ipNow < ivSpinUntil; }
  bool linkCheckDue(Clock::time_point ipNow) const { return ipNow >= ivNextCheck; }
  void linkChecked(Clock::time_point ipNow) { ivNextCheck = after(ipNow, ivrLimits.linkCheckMs); }
  // How long to sleep now: until the next link check or `ipDeadline`.
  unsigned int sleepMs(Clock::time_point ipNow, Clock::time_point ipDeadline) const {
    const unsigned int toCheck = msUntil(ivNextCheck, ipNow);
    const unsigned int toDeadline = msUntil(ipDeadline, ipNow);
    const unsigned int ms = toCheck < toDeadline ? toCheck : toDeadline;
    return ms == 0 ? 1 : ms;
  }

 private:
  const ExchangeLimits& ivrLimits;
  const Clock::time_point ivSpinUntil;
  Clock::time_point ivNextCheck;
};

int RequestExchange::run(Frame* ipIn, Frame** opOut) {
  if (ivAbandoned) {
    TRACE_ERROR(kUnit, "request req_id=%u not sent: the library is being unloaded\n", ipIn->reqId());
    return -1;
  }
  ivToldGone = false;
  for (;;) {
    Step step = send(ipIn);
    if (step == Step::kResend) continue;
    if (step == Step::kDone) step = receive(ipIn, opOut);
    if (step == Step::kResend) continue;
    return step == Step::kDone ? 0 : -1;
  }
}

RequestExchange::Step RequestExchange::send(const Frame* ipIn) {
  Waiter waiter(ivrLimits);
  bool open = true;
  for (;;) {
    const int result = open ? ivrPipe.send(ipIn) : 0;
    if (result > 0) return Step::kDone;
    if (result < 0) {
      TRACE_ERROR(kUnit, "sending request req_id=%u failed\n", ipIn->reqId());
      return Step::kFailed;
    }
    const Step step = waitOrFollow(waiter, true, Clock::time_point::max(), &open);
    if (step != Step::kDone) return step;
  }
}

RequestExchange::Step RequestExchange::receive(Frame* ipIn, Frame** opOut) {
  dropJoined();
  Waiter waiter(ivrLimits);
  bool open = true;
  Clock::time_point chainDeadline = Clock::time_point::max();
  for (;;) {
    Frame* frame = nullptr;
    const int result = open ? ivrPipe.recvNonBlock(frame) : 0;
    if (result < 0) {
      TRACE_ERROR(kUnit, "receiving the reply to req_id=%u failed after %u frames\n",
                  ipIn->reqId(), ivReplyFrames);
      dropJoined();
      return Step::kFailed;
    }
    if (result == 0) {
      if (Clock::now() >= chainDeadline) {
        TRACE_ERROR(kUnit, "the reply to req_id=%u was cut off after %u frames (%zu bytes)\n",
                    ipIn->reqId(), ivReplyFrames, ivReplyBytes);
        dropJoined();
        return Step::kFailed;
      }
      const Step step = waitOrFollow(waiter, false, chainDeadline, &open);
      if (step != Step::kDone) {
        dropJoined();
        return step;
      }
      continue;
    }

    const std::int32_t turn = static_cast<std::int32_t>(frame->reqId() - ipIn->reqId());
    if (turn < 0) {
      TRACE_ERROR(kUnit, "dropped a reply frame of req_id=%u (%u bytes) while waiting for %u\n",
                  frame->reqId(), frame->usedSize(), ipIn->reqId());
      ivrPipe.recvDone(frame);
      continue;
    }
    if (turn > 0) {
      // A reply to a request that was never sent.
      *opOut = frame;
      assert(ipIn->req_id == (*opOut)->req_id);
    }
    if (ivReplyFrames == 0 && frame->wireNext() == 0) {
      *opOut = frame;  // one frame: handed out as it came
      return Step::kDone;
    }
    append(frame);
    const bool last = frame->wireNext() == 0;
    ivrPipe.recvDone(frame);
    if (!last) {
      chainDeadline = after(Clock::now(), ivrLimits.chainTimeoutMs);
      continue;
    }
    if (ivDiscarding) {
      TRACE_ERROR(kUnit, "refused the reply to req_id=%u: %zu bytes in %u frames, limit %zu bytes%s\n",
                  ipIn->reqId(), ivReplyBytes, ivReplyFrames, ivrLimits.maxReplyBytes,
                  ivReplyBytes <= ivrLimits.maxReplyBytes ? " (no memory)" : "");
      dropJoined();
      return Step::kFailed;
    }
    *opOut = ivJoined;
    ivJoined = nullptr;
    return Step::kDone;
  }
}

void RequestExchange::append(const Frame* ipFrame) {
  const std::size_t data = ipFrame->dataSize();
  ivReplyBytes += data;
  ivReplyFrames += 1;
  if (ivDiscarding) return;
  if (ivReplyBytes > ivrLimits.maxReplyBytes) {
    ivDiscarding = true;  // read on to the last frame, keep nothing
    dropJoinedStorage();
    return;
  }
  // Laid out like a FrameBuffer (the chain pointer in front), so that the
  // joined reply is a Frame like any other. Grown by doubling.
  const std::size_t needed = kFrameHeaderSize + ivReplyBytes;
  if (needed > ivJoinedCapacity) {
    std::size_t capacity = ivJoinedCapacity == 0 ? 4 * std::size_t{kMaxFrameSize} : ivJoinedCapacity;
    while (capacity < needed) capacity *= 2;
    void* memory = std::realloc(ivJoined == nullptr ? nullptr : FrameBuffer::of(ivJoined),
                                offsetof(FrameBuffer, buffer) + capacity);
    if (memory == nullptr) {
      ivDiscarding = true;
      dropJoinedStorage();
      return;
    }
    auto* storage = static_cast<FrameBuffer*>(memory);
    if (ivJoined == nullptr) {
      storage->frame()->reset(0);
      storage->frame()->req_id = ipFrame->reqId();
    }
    ivJoined = storage->frame();
    ivJoinedCapacity = capacity;
  }
  std::memcpy(ivJoined->data() + (ivReplyBytes - data), ipFrame->data(), data);
  // Always above a pool frame's size, which is how release() tells them apart.
  ivJoined->setAllocSize(static_cast<std::uint32_t>(ivJoinedCapacity));
  ivJoined->setDataSize(static_cast<std::uint32_t>(ivReplyBytes));
}

void RequestExchange::dropJoinedStorage() {
  if (ivJoined != nullptr) std::free(FrameBuffer::of(ivJoined));
  ivJoined = nullptr;
  ivJoinedCapacity = 0;
}

void RequestExchange::dropJoined() {
  dropJoinedStorage();
  ivReplyBytes = 0;
  ivReplyFrames = 0;
  ivDiscarding = false;
}

RequestExchange::Step RequestExchange::waitOrFollow(Waiter& irWaiter, bool ipForSend,
                                                    Clock::time_point ipDeadline, bool* iopOpen) {
  if (ivAbandoned) {
    TRACE_ERROR(kUnit, "stopped waiting for the daemon: the library is being unloaded\n");
    return Step::kFailed;
  }
  const Clock::time_point now = Clock::now();
  if (*iopOpen && irWaiter.spinning(now)) {
    sched_yield();
    return Step::kDone;
  }
  if (!irWaiter.linkCheckDue(now)) {
    const unsigned int ms = irWaiter.sleepMs(now, ipDeadline);
    if (*iopOpen) {
      ivrPipe.waitReady(ipForSend, ms);
    } else {
      sleepMs(ms);
    }
    return Step::kDone;
  }
  irWaiter.linkChecked(now);
  if (*iopOpen) {
    switch (ivrPipe.checkLink()) {
      case FramePipeIf::Link::kCurrent:
        return Step::kDone;
      case FramePipeIf::Link::kGone:
        if (!ivToldGone) TRACE_ERROR(kUnit, "the daemon's queues are gone; waiting for new ones\n");
        ivToldGone = true;
        return Step::kDone;
      case FramePipeIf::Link::kReplaced:
        break;
    }
  }
  if (!ivrPipe.reopen()) {
    *iopOpen = false;
    return Step::kDone;
  }
  TRACE_ERROR(kUnit, "the daemon's queues were created anew: reopened, sending the request again\n");
  *iopOpen = true;
  return Step::kResend;
}

void RequestExchange::release(FramePipeIf& irPipe, Frame* ipReply) {
  if (ipReply == nullptr) return;
  if (ipReply->allocSize() > irPipe.getMaxFrameSize()) {
    std::free(FrameBuffer::of(ipReply));
  } else {
    irPipe.recvDone(ipReply);
  }
}

RequestExchange::~RequestExchange() { dropJoinedStorage(); }

}  // namespace fcbb
