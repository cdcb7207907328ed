// fcbb::RequestExchange: one request/reply exchange with the switch daemon
// over a frame pipe, as the request client needs it: no time limit, and
// yet no spinning, no abort on anything the client can refuse, and no
// reply left behind to confuse the next exchange.
//
// run() sends the request frame, then receives frames until the last frame
// (wire next word 0) of the reply that carries the request's req_id:
// - Each frame is received into a pool frame and, when the reply has more
//   than one frame, its data is appended to one joined frame on the heap
//   and the pool frame goes back at once. So a reply of any length needs a
//   single pool frame, and a one-frame reply is handed out as it came.
// - A reply longer than maxReplyBytes (data bytes) is still read to its
//   last frame, then refused: the call fails, the next one starts in step.
// - A frame with an earlier req_id is the rest of a reply the client
//   already gave up on, or a reply the daemon sent twice: it is dropped
//   with a log line. A frame with a later req_id answers a request that was
//   never sent: the daemon broke the protocol, and the assertion
//   "ipIn->req_id == (*opOut)->req_id" fails.
// - A chain whose next frame does not come within chainTimeoutMs was cut
//   off by the daemon: the call fails (a late rest is dropped as above).
// - A frame the pipe refuses (bad header) fails the call.
// Waiting: the first spinMs milliseconds poll with sched_yield() (a daemon
// on another core answers in microseconds); after that the pipe's
// waitReady() sleeps until a frame may have arrived. The same holds while
// the request queue is full. While waiting, the names of the queues are
// checked against the queues held, first after firstLinkCheckMs and then
// every linkCheckMs; when a restarted daemon has created new ones, the
// pipe is reopened and the request sent again. A daemon that is gone is
// waited for, without limit, until it comes back.
//
// abandon() ends the waiting for good, when the library is unloaded: an
// exchange that waits fails, and every later one fails at once, so that
// no thread stays bound to a daemon that is gone.
//
// Results: 0 with the reply in *opOut, or -1 (logged). The reply is
// released with release().
//
// Thread-safety: none of its own; the request client holds its lock across
// run() and release(). abandon() may be called from any thread.
#ifndef QRX_COMMON_MQUEUE_REQUESTEXCHANGE_H_
#define QRX_COMMON_MQUEUE_REQUESTEXCHANGE_H_

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

#include "common/mqueue/FramePipeIf.h"

namespace fcbb {

struct ExchangeLimits {
  // The longest reply accepted: 4 MiB of data, 514 frames. A 2,500-port
  // switch's largest reply (the port statistics) is about 440 KiB.
  std::size_t maxReplyBytes = std::size_t{4} << 20;
  unsigned int chainTimeoutMs = 5000;
  unsigned int spinMs = 1;
  unsigned int firstLinkCheckMs = 5;
  unsigned int linkCheckMs = 200;
};

class RequestExchange {
 public:
  RequestExchange(FramePipeIf& irPipe, const ExchangeLimits& irLimits)
      : ivrPipe(irPipe), ivrLimits(irLimits) {}
  ~RequestExchange();
  RequestExchange(const RequestExchange&) = delete;
  RequestExchange& operator=(const RequestExchange&) = delete;

  // Sends `ipIn` (one frame, req_id set) and receives its reply; see above.
  int run(Frame* ipIn, Frame** opOut);

  // See above; cannot be undone.
  void abandon() { ivAbandoned = true; }

  // Gives back a reply run() handed out: a pool frame to the pipe, a joined
  // frame (alloc_size above the pipe's frame size) to the heap.
  static void release(FramePipeIf& irPipe, Frame* ipReply);

 private:
  class Waiter;
  enum class Step { kDone, kFailed, kResend };

  // Sends `ipIn`; kResend when the pipe was reopened while the request
  // queue stayed full.
  Step send(const Frame* ipIn);
  // Receives the reply to `ipIn`.
  Step receive(Frame* ipIn, Frame** opOut);
  // Counts a frame of a reply of several frames and appends its data to
  // the joined frame, unless the reply is being discarded (too long, or no
  // memory to join it).
  void append(const Frame* ipFrame);
  // Forgets the reply so far.
  void dropJoined();
  void dropJoinedStorage();
  // One turn of waiting while nothing moves: spins, sleeps (at most until
  // `ipDeadline`) or checks the link. kResend when the pipe was reopened
  // and the request must go again, kFailed when the exchange was abandoned,
  // kDone to wait on; *iopOpen tells whether the pipe is open.
  Step waitOrFollow(Waiter& irWaiter, bool ipForSend,
                    std::chrono::steady_clock::time_point ipDeadline, bool* iopOpen);

  FramePipeIf& ivrPipe;
  const ExchangeLimits& ivrLimits;
  Frame* ivJoined = nullptr;          // the reply so far, when it has several frames
  std::size_t ivJoinedCapacity = 0;   // bytes of ivJoined's frame, header included
  std::size_t ivReplyBytes = 0;       // data bytes of the reply so far
  unsigned int ivReplyFrames = 0;     // frames of the reply so far
  bool ivDiscarding = false;          // read on to the last frame, keep nothing
  bool ivToldGone = false;            // "queues are gone" logged in this exchange
  std::atomic<bool> ivAbandoned{false};
};

}  // namespace fcbb

#endif  // QRX_COMMON_MQUEUE_REQUESTEXCHANGE_H_
