// fcbb::mqPipeClient: the library's pipe to the daemon for one queue name.
//
// open(name) connects to the two queues the daemon created for `name`:
// first the reply queue queuePrefix() + name + "_ctos" (frames come in),
// then the request queue queuePrefix() + name + "_stoc" (frames go out).
// Each connect waits about 50 ms for its queue to appear. open() is true
// only when both connect; otherwise both are closed again and it is false.
// Messages already waiting on the reply queue when it opens cannot answer
// anything this pipe sent: they are dropped (with a count in the log).
// reopen() closes and opens again under the name of the last open().
// See FramePipeMq.h for everything else.
#ifndef QRX_COMMON_MQUEUE_FRAMEPIPEMQTMPL_H_
#define QRX_COMMON_MQUEUE_FRAMEPIPEMQTMPL_H_

#include <string>

#include "common/base/trace.h"
#include "common/mqueue/FramePipeMq.h"
#include "common/mqueue/mqCS.h"

namespace fcbb {

template <unsigned int MaxFrameSize, unsigned int ibuffNr>
class mqPipeClient : public mqPipeBase<mqClient, MaxFrameSize, ibuffNr> {
 public:
  bool open(const char* ipName) override {
    ivName = ipName;
    const char* prefix = queuePrefix();
    TRACE_DEBUG("connect %s%s\n", prefix, ipName);
    const std::string base = std::string(prefix) + ipName;
    if (this->ivRecvConn.connect(base + kReplyQueueSuffix) &&
        this->ivSendConn.connect(base + kRequestQueueSuffix)) {
      dropLeftovers();
      return true;
    }
    this->close();
    return false;
  }

  bool reopen() override {
    this->close();
    return open(ivName.c_str());
  }

 private:
  void dropLeftovers() {
    // Bounded, so that a queue that keeps failing cannot hold open() up.
    unsigned dropped = 0;
    Frame* frame = nullptr;
    for (int polls = 0, result; polls < 1000 && (result = this->recvNonBlock(frame)) != 0; ++polls) {
      if (result > 0) this->recvDone(frame);
      ++dropped;
    }
    if (dropped != 0) {
      TRACE_ERROR("common/mqueue/FramePipeMqTmpl", "dropped %u messages left on %s\n", dropped,
                  this->ivRecvConn.name().c_str());
    }
  }

  std::string ivName;
};

// The pipe the library uses.
using DaemonPipe = mqPipeClient<kMaxFrameSize, kFramePoolSize>;

}  // namespace fcbb

#endif  // QRX_COMMON_MQUEUE_FRAMEPIPEMQTMPL_H_
