// Frames and the abstract frame pipe to the switch daemon.
//
// A Frame is one message on a queue: a 16-byte header followed by data, at
// the start of a kMaxFrameSize-byte buffer. The bytes that travel are the
// first used_size bytes, header included. The header is four 32-bit words,
// each stored BIG-ENDIAN in the buffer whatever the host is, so that this
// library and the switch daemon put the same bytes on the queue:
//
//   offset  0  req_id      written 0 on allocation; not interpreted here
//   offset  4  alloc_size  capacity, header included (kMaxFrameSize for a
//                          received frame)
//   offset  8  used_size   16 + data size
//   offset 12  next        on the wire: non-zero when another frame of the
//                          same message follows
//   offset 16  data
//
// A message larger than one frame is a chain of frames, each travelling as
// its own queue message, in chain order. In memory the chain is linked by
// pointers, which do not fit the 32-bit wire word on a 64-bit host. So every
// Frame lives in a FrameBuffer, whose chain pointer sits just in front of
// the frame's first byte, outside the wire bytes; next()/setNext() use it.
// The wire word is written by send() (1 when next() is set, else 0); in a
// received frame it is what the sender wrote, which is how receivers know
// that more frames follow.
#ifndef QRX_COMMON_MQUEUE_FRAMEPIPEIF_H_
#define QRX_COMMON_MQUEUE_FRAMEPIPEIF_H_

#include <cstddef>
#include <cstdint>

namespace fcbb {

constexpr unsigned int kFrameHeaderSize = 16;
// The largest frame, header included; also the queue message size.
constexpr unsigned int kMaxFrameSize = 8192;

// Big-endian 32-bit words in a byte buffer.
inline std::uint32_t decodeBigEndian32(const unsigned char* ipBytes) {
  return (std::uint32_t{ipBytes[0]} << 24) | (std::uint32_t{ipBytes[1]} << 16) |
         (std::uint32_t{ipBytes[2]} << 8) | std::uint32_t{ipBytes[3]};
}
inline void encodeBigEndian32(unsigned char* opBytes, std::uint32_t ipValue) {
  opBytes[0] = static_cast<unsigned char>(ipValue >> 24);
  opBytes[1] = static_cast<unsigned char>(ipValue >> 16);
  opBytes[2] = static_cast<unsigned char>(ipValue >> 8);
  opBytes[3] = static_cast<unsigned char>(ipValue);
}

// A 32-bit header word stored big-endian; reads and assigns as a number.
struct BigEndian32 {
  unsigned char bytes[4];

  operator std::uint32_t() const { return decodeBigEndian32(bytes); }
  BigEndian32& operator=(std::uint32_t ipValue) {
    encodeBigEndian32(bytes, ipValue);
    return *this;
  }
};

// A view of the first bytes of a FrameBuffer; never constructed or copied,
// only reached through FrameBuffer::frame() or a pipe's allocFrame().
class Frame {
 public:
  Frame() = delete;
  Frame(const Frame&) = delete;
  Frame& operator=(const Frame&) = delete;

  // A fresh frame of capacity `ipAllocSize`: req_id 0, used_size 16, wire
  // next word 0, no next frame.
  void reset(std::uint32_t ipAllocSize);

  std::uint32_t reqId() const { return req_id; }
  void setReqId(std::uint32_t ipId) { req_id = ipId; }

  std::uint32_t allocSize() const { return alloc_size; }
  void setAllocSize(std::uint32_t ipSize) { alloc_size = ipSize; }

  std::uint32_t usedSize() const { return used_size; }
  std::uint32_t dataSize() const { return usedSize() - kFrameHeaderSize; }
  // Sets used_size to `ipSize` + 16; asserts "alloc_size >= used_size".
  void setDataSize(std::uint32_t ipSize);

  // The wire bytes (header first) and the data after the header.
  unsigned char* bytes() { return reinterpret_cast<unsigned char*>(this); }
  const unsigned char* bytes() const { return reinterpret_cast<const unsigned char*>(this); }
  unsigned char* data() { return bytes() + kFrameHeaderSize; }
  const unsigned char* data() const { return bytes() + kFrameHeaderSize; }

  // The header's next word as it is in the buffer.
  std::uint32_t wireNext() const { return next_word; }
  void setWireNext(std::uint32_t ipValue) { next_word = ipValue; }

  // The in-memory chain (kept outside the wire bytes, see above).
  inline Frame* next() const;
  inline void setNext(Frame* ipNext);

  // The header, under the names of its fields.
  BigEndian32 req_id;
  BigEndian32 alloc_size;
  BigEndian32 used_size;
  BigEndian32 next_word;
};

static_assert(sizeof(Frame) == kFrameHeaderSize, "a frame view is its header");

// The storage of one frame: the chain pointer, then the frame's bytes.
struct FrameBuffer {
  Frame* chain;
  unsigned char buffer[kMaxFrameSize];

  Frame* frame() { return reinterpret_cast<Frame*>(buffer); }
  static FrameBuffer* of(const Frame* ipFrame) {
    return reinterpret_cast<FrameBuffer*>(const_cast<unsigned char*>(ipFrame->bytes()) -
                                          offsetof(FrameBuffer, buffer));
  }
};

Frame* Frame::next() const { return FrameBuffer::of(this)->chain; }
void Frame::setNext(Frame* ipNext) { FrameBuffer::of(this)->chain = ipNext; }

// The pipe to the daemon: frames out, frames in. Results of the sending and
// receiving operations: positive is the number of bytes moved, 0 means the
// queue was full (sending) or empty (receiving), negative an error (already
// logged). Frames come from allocFrame() or a receive and go back with
// freeFrame() or recvDone(); both return a whole chain.
class FramePipeIf {
 public:
  // Connects to the daemon's queues for `ipName`; true on success.
  virtual bool open(const char* ipName) = 0;
  virtual void close() = 0;
  // The largest frame, header included.
  virtual unsigned int getMaxFrameSize() const = 0;
  // A fresh frame of capacity `ipSize` (header included; 16 to
  // getMaxFrameSize()), or null when none is free.
  virtual Frame* allocFrame(unsigned int ipSize) = 0;
  // Returns `ipFrame` and every frame chained behind it.
  virtual void freeFrame(Frame* ipFrame) = 0;
  // Sends the one frame `ipFrame` (not its successors) without waiting.
  virtual int send(const Frame* ipFrame) = 0;
  // Sends every frame of the chain, retrying (with sched_yield()) while the
  // queue is full; never gives up. A send error fails the assertion "0".
  // Returns true.
  virtual bool sendBlock(const Frame* ipFrame);
  // Waits, polling with sched_yield(), for a whole message: frames are
  // received and chained until one whose wire next word is 0. Returns the
  // bytes received, or on an error the negative result with `orFrame` null
  // (frames gathered so far are released). No time limit.
  virtual int recvBlock(Frame*& orFrame);
  // Polls, without yielding, for ONE frame (no chain is gathered) until
  // `ipMs` milliseconds have passed. Returns the last poll's result: > 0
  // with the frame, 0 at the deadline, < 0 on an error; `orFrame` is null
  // unless the result is positive.
  virtual int timedRecv(Frame*& orFrame, unsigned int ipMs);
  // One frame if one is waiting; `orFrame` is null unless the result is
  // positive.
  virtual int recvNonBlock(Frame*& orFrame) = 0;
  // Gives back a received frame or chain.
  virtual void recvDone(Frame* ipFrame) = 0;

  // For a client that waits without time limit yet must neither spin nor
  // stay bound to a daemon that was restarted:
  //
  // Sleeps until a frame may be there to receive (or, with ipForSend,
  // room to send one), at most `ipMs` milliseconds. This default sleeps
  // for the shorter of ipMs and one millisecond.
  virtual void waitReady(bool ipForSend, unsigned int ipMs);
  // What the names the pipe was opened with lead to now: the queues it
  // holds, no queues (the daemon is gone), or new queues (the daemon was
  // restarted). This default answers kCurrent.
  enum class Link { kCurrent, kGone, kReplaced };
  virtual Link checkLink();
  // Closes and opens again under the same name; true when open again.
  // This default has nothing to reopen and answers false.
  virtual bool reopen();

  virtual ~FramePipeIf();
};

}  // namespace fcbb

#endif  // QRX_COMMON_MQUEUE_FRAMEPIPEIF_H_
