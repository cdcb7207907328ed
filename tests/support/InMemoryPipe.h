// A frame pipe that plays the switch daemon inside the test process.
//
// Each request sent is handed to answer(), whose reply data (a status and
// the results) comes back as the daemon would send it: split into frames
// of at most 8176 data bytes, wire next word 1 on all but the last, req_id
// copied from the request (plus an optional skew). A reply may also be
// sent twice, or cut off after some frames, as a faulty daemon would.
// Frames are counted, so a test can check that every one came back.
// Thread-safe.
#ifndef QRX_TESTS_SUPPORT_INMEMORYPIPE_H_
#define QRX_TESTS_SUPPORT_INMEMORYPIPE_H_

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "common/mqueue/FramePipeIf.h"
#include "generated/smis_ipc/smis_ipc_client.h"

namespace qrxtest {

using Bytes = std::vector<unsigned char>;

class InMemoryPipe : public fcbb::FramePipeIf {
 public:
  ~InMemoryPipe() override;

  bool open(const char*) override { return true; }
  void close() override {}
  unsigned int getMaxFrameSize() const override { return fcbb::kMaxFrameSize; }
  fcbb::Frame* allocFrame(unsigned int ipSize) override;
  void freeFrame(fcbb::Frame* ipFrame) override;
  int send(const fcbb::Frame* ipFrame) override;
  // Empty for the first three polls of every frame, so that a second
  // caller has time to get in if the client let it (unless answering at
  // once, below).
  int recvNonBlock(fcbb::Frame*& orFrame) override;
  // Hands every frame out at its first poll: for single-threaded callers
  // that need speed (fuzzing), not the interleaving.
  void setAnswerAtOnce(bool ipAtOnce);
  void recvDone(fcbb::Frame* ipFrame) override { freeFrame(ipFrame); }

  // Frames handed out and not yet returned.
  int outstanding();
  // Every request's data and req_id, in order.
  std::vector<Bytes> requests();
  std::vector<std::uint32_t> reqIds();
  // Forgets the requests so far (a long run keeps its memory flat).
  void forgetRequests();
  // True once a request was sent while the previous reply was unread.
  bool overlapped();
  // allocFrame() answers null while set.
  void setOutOfFrames(bool ipOut);
  // Frames of replies waiting to be received.
  int waiting();

  // How a reply goes out.
  struct Reply {
    Bytes data;
    std::uint32_t reqIdSkew = 0;  // added to the request's req_id
    int copies = 1;               // sent this many times
    int cutAfter = -1;            // >= 0: only the first cutAfter frames go out
  };

 protected:
  // The reply to a request's data.
  virtual Reply answer(const Bytes& irRequest) = 0;

 private:
  std::mutex ivMutex;
  std::deque<fcbb::Frame*> ivInbox;
  std::vector<Bytes> ivRequests;
  std::vector<std::uint32_t> ivReqIds;
  int ivOutstanding = 0;
  unsigned ivPolls = 0;
  unsigned ivPollsPerFrame = 4;
  bool ivOutOfFrames = false;
  bool ivInFlight = false;
  bool ivOverlapped = false;
};

// Answers every request with rs_api_dispatch() over `irDaemon`, an
// implementation of the calls that stands for the daemon. An unknown
// function, undecodable arguments or a reply over 8 MiB answer status
// 0xFFFF with no payload.
class DispatchPipe : public InMemoryPipe {
 public:
  explicit DispatchPipe(rs_api_client& irDaemon) : ivDaemon(irDaemon) {}

 protected:
  Reply answer(const Bytes& irRequest) override;

 private:
  rs_api_client& ivDaemon;
  std::mutex ivAnswerMutex;
  std::unique_ptr<unsigned char[]> ivReply;  // the reply buffer, made at the first call
};

}  // namespace qrxtest

#endif  // QRX_TESTS_SUPPORT_INMEMORYPIPE_H_
