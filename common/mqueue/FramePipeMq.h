// fcbb::mqPipeBase: the frame pipe over a pair of message-queue connections
// (CONN: mqClient), with frames taken from a pool of ibuffNr buffers of
// MaxFrameSize bytes. Subclasses add open().
//
// - allocFrame(size) asserts "ipSize >= kFrameHeaderSize && ipSize <=
//   MaxFrameSize": a frame larger than a buffer is a caller's bug.
// - At most ibuffNr frames are out at once (allocated and not freed, or
//   received and not done); allocFrame() returns null beyond that, and
//   recvNonBlock() then fails with an error line, leaving the waiting
//   message on its queue. A message of more frames than are free cannot be
//   gathered by recvBlock().
// - send() puts used_size bytes on the send queue as one message, the wire
//   next word first set from next() (1 or 0).
// - recvNonBlock() takes one message of at most MaxFrameSize bytes into a
//   fresh frame and sets its alloc_size to MaxFrameSize; req_id, used_size
//   and the wire next word stay as the daemon wrote them. A message shorter
//   than the header, or whose used_size is not its length, is bad data from
//   the daemon: it is logged and dropped, and the result is -1.
// - close() closes both connections; the queues stay (they are the
//   daemon's).
// - waitReady() polls the receive (or send) queue; checkLink() compares
//   both queue names with the queues held (kReplaced only when both names
//   lead to queues and one of them is new, kGone when one is missing).
//
// Thread-safety: the pool is locked, so frames may be allocated and freed
// from any thread; one thread may send while another receives. open() and
// close() belong to the owner.
#ifndef QRX_COMMON_MQUEUE_FRAMEPIPEMQ_H_
#define QRX_COMMON_MQUEUE_FRAMEPIPEMQ_H_

#include <cassert>

#include "common/base/PoolAlloc.h"
#include "common/base/trace.h"
#include "common/mqueue/FramePipeIf.h"
#include "common/mqueue/mqCS.h"

namespace fcbb {

// Frames the transport keeps in its pool.
constexpr unsigned int kFramePoolSize = 10;

template <class CONN, unsigned int MaxFrameSize, unsigned int ibuffNr>
class mqPipeBase : public FramePipeIf {
  static_assert(MaxFrameSize >= kFrameHeaderSize && MaxFrameSize <= kMaxFrameSize,
                "a frame must fit a FrameBuffer");

 public:
  mqPipeBase() = default;
  mqPipeBase(const mqPipeBase&) = delete;
  mqPipeBase& operator=(const mqPipeBase&) = delete;

  void close() override {
    ivSendConn.close();
    ivRecvConn.close();
  }

  unsigned int getMaxFrameSize() const override { return MaxFrameSize; }

  Frame* allocFrame(unsigned int ipSize) override {
    assert(ipSize >= kFrameHeaderSize && ipSize <= MaxFrameSize);
    FrameBuffer* buffer = ivPool.alloc();
    if (buffer == nullptr) return nullptr;
    Frame* frame = buffer->frame();
    frame->reset(ipSize);
    return frame;
  }

  void freeFrame(Frame* ipFrame) override {
    while (ipFrame != nullptr) {
      Frame* next = ipFrame->next();
      ipFrame->setNext(nullptr);
      ivPool.free(FrameBuffer::of(ipFrame));
      ipFrame = next;
    }
  }

  int send(const Frame* ipFrame) override {
    // The frame is the caller's pool buffer; only its wire next word is
    // brought in line with the chain before the bytes leave.
    const_cast<Frame*>(ipFrame)->setWireNext(ipFrame->next() != nullptr ? 1 : 0);
    return ivSendConn.send(ipFrame->bytes(), ipFrame->usedSize());
  }

  int recvNonBlock(Frame*& orFrame) override {
    orFrame = nullptr;
    Frame* frame = allocFrame(MaxFrameSize);
    if (frame == nullptr) {
      TRACE_ERROR("common/mqueue/FramePipeMq", "no free frame to receive into (%u in use)\n",
                  ibuffNr);
      return -1;
    }
    const int result = ivRecvConn.recv(frame->bytes(), MaxFrameSize);
    if (result > 0 && (result < static_cast<int>(kFrameHeaderSize) ||
                       frame->usedSize() != static_cast<unsigned int>(result))) {
      TRACE_ERROR("common/mqueue/FramePipeMq",
                  "bad message from %s: %d bytes, used_size %u; dropped\n",
                  ivRecvConn.name().c_str(), result,
                  result < static_cast<int>(kFrameHeaderSize) ? 0u : frame->usedSize());
      freeFrame(frame);
      return -1;
    }
    if (result <= 0) {
      freeFrame(frame);
      return result;
    }
    frame->setAllocSize(MaxFrameSize);
    orFrame = frame;
    return result;
  }

  void recvDone(Frame* ipFrame) override { freeFrame(ipFrame); }

  void waitReady(bool ipForSend, unsigned int ipMs) override {
    (ipForSend ? ivSendConn : ivRecvConn).waitReady(ipForSend, ipMs);
  }

  Link checkLink() override {
    const mqClient::Identity send = ivSendConn.identity();
    const mqClient::Identity recv = ivRecvConn.identity();
    if (send == mqClient::Identity::kGone || recv == mqClient::Identity::kGone) {
      return Link::kGone;
    }
    if (send == mqClient::Identity::kOther || recv == mqClient::Identity::kOther) {
      return Link::kReplaced;
    }
    return Link::kCurrent;
  }

 protected:
  InstancePool<FrameBuffer, ibuffNr> ivPool;
  CONN ivSendConn;  // requests, to the daemon
  CONN ivRecvConn;  // replies, from the daemon
};

}  // namespace fcbb

#endif  // QRX_COMMON_MQUEUE_FRAMEPIPEMQ_H_
