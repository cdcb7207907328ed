// fcbb::mqPipeClient: the library's pipe to the daemon for one queue name.
//
// open(name) connects to the two queues the daemon created for `name`:
// first the reply queue queuePrefix() + name + "_ctos" (frames come in),
// then the request queue queuePrefix() + name + "_stoc" (frames go out).
// Each connect waits about 50 ms for its queue to appear. open() is true
// only when both connect; otherwise both are closed again and it is false.
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
    const char* prefix = queuePrefix();
    TRACE_DEBUG("connect %s%s\n", prefix, ipName);
    const std::string base = std::string(prefix) + ipName;
    if (this->ivRecvConn.connect(base + kReplyQueueSuffix) &&
        this->ivSendConn.connect(base + kRequestQueueSuffix)) {
      return true;
    }
    this->close();
    return false;
  }
};

// The pipe the library uses.
using DaemonPipe = mqPipeClient<kMaxFrameSize, kFramePoolSize>;

}  // namespace fcbb

#endif  // QRX_COMMON_MQUEUE_FRAMEPIPEMQTMPL_H_
