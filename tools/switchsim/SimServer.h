// The simulated switch's end of the request and reply queues.
//
// start() creates queuePrefix() + name + "_stoc" (requests in) and
// queuePrefix() + name + "_ctos" (replies out), each for 10 messages of
// 8192 bytes, mode 0600, and serves them on a background thread until
// stop(), which also removes both queues.
//
// A request is one frame (16-byte big-endian header, then data: the
// function name string and the arguments), or a chain of frames with the
// same req_id whose header next word is non-zero on all but the last. The
// reply carries the request's req_id, data = unsigned 32-bit status, then
// on status 0 the results. Data of more than 8176 bytes goes out as a
// chain: every frame a queue message of at most 8192 bytes, alloc_size
// 8192, used_size 16 + its data bytes, next word 1 on all but the last.
//
// Bad requests are answered and logged, never fatal:
//   - unknown or unreadable function name: kStatusUnknownFunction
//   - arguments that do not decode, a used_size that is not the message
//     length, a chain that changes req_id or stops arriving for
//     chainTimeoutMs: kStatusBadArguments
//   - a message shorter than a header: logged and dropped (no req_id)
// Faults (Faults.h) are applied by function name before the call is
// served; a fault with a status answers it without calling the switch.
//
// Replies are encoded into a buffer of replyBufferBytes; a query
// ("rs_api_get_...") whose results do not fit is run again with a buffer
// four times larger (up to 64 MiB). Other calls change the switch and are
// not run twice: they answer kStatusReplyTooLarge instead. A reply frame
// that finds the reply queue full is retried every millisecond; after
// sendTimeoutMs the rest of the reply is dropped with an error line.
//
// Log lines (RequestLog; a reply's line is written before its first frame
// is sent):
//   request req_id=<n> function=<name> bytes=<data bytes> frames=<n>
//   reply req_id=<n> function=<name> status=<n> (<name>) bytes=<n> frames=<n>
//       [fault: ...] [note: ...]
//   error: ...
//
// Thread-safety: start() and stop() belong to one owner thread. The
// dispatch function is called on the serving thread.
#ifndef QRX_TOOLS_SWITCHSIM_SIMSERVER_H_
#define QRX_TOOLS_SWITCHSIM_SIMSERVER_H_

#include <mqueue.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "common/base/SCIMCommon.h"
#include "tools/switchsim/Faults.h"
#include "tools/switchsim/RequestLog.h"

namespace switchsim {

struct ServerOptions {
  std::size_t replyBufferBytes = 1 << 20;
  unsigned sendTimeoutMs = 5000;
  unsigned chainTimeoutMs = 1000;
  // Remove queues of the same names that already exist (left behind by a
  // simulator that was killed) instead of failing.
  bool replaceQueues = false;
};

class SimServer {
 public:
  // Serves one request as rs_api_dispatch() does (returns its result and
  // the function name), adding a remark for the log in `orNote`.
  using Dispatch = std::function<int(SCIMDeserializerIf& irRequest, SCIMSerializerIf& irReply,
                                     std::string& orFunction, std::string& orNote)>;

  SimServer(Dispatch irDispatch, FaultTable& irFaults, RequestLog& irLog,
            const ServerOptions& irOptions);
  ~SimServer();  // stop()
  SimServer(const SimServer&) = delete;
  SimServer& operator=(const SimServer&) = delete;

  // False, with the reason, if it is running or a queue cannot be created.
  bool start(const std::string& irName, std::string* orError);
  void stop();
  bool running() const { return ivThread.joinable(); }

  const std::string& requestQueueName() const { return ivRequestName; }
  const std::string& replyQueueName() const { return ivReplyName; }

 private:
  struct Pending {
    bool active = false;
    std::uint32_t reqId = 0;
    unsigned frames = 0;
    std::vector<unsigned char> data;
    std::chrono::steady_clock::time_point since;
  };

  void run();
  void onMessage(const unsigned char* ipBytes, std::size_t ipLength);
  void failPending(const std::string& irWhy);
  void serve(std::uint32_t ipReqId, const std::vector<unsigned char>& irData, unsigned ipFrames);
  // Encodes the reply of a served request into ivReplyBuffer; returns its
  // size and sets *opStatus to the status written.
  std::size_t encodeReply(const std::vector<unsigned char>& irData, std::string* orFunction,
                          std::uint32_t* opStatus, std::string* orNote);
  std::size_t encodeStatus(std::uint32_t ipStatus);
  // Sends `ipLength` bytes of ivReplyBuffer as frames; logs an error line
  // when it cannot send them all.
  void sendReply(std::uint32_t ipReqId, std::size_t ipLength, const std::string& irFunction);
  void closeQueues();

  Dispatch ivDispatch;
  FaultTable& ivrFaults;
  RequestLog& ivrLog;
  ServerOptions ivOptions;
  std::string ivRequestName;
  std::string ivReplyName;
  mqd_t ivRequests = static_cast<mqd_t>(-1);
  mqd_t ivReplies = static_cast<mqd_t>(-1);
  std::vector<unsigned char> ivReplyBuffer;
  Pending ivPending;
  std::atomic<bool> ivStop{false};
  std::thread ivThread;
};

}  // namespace switchsim

#endif  // QRX_TOOLS_SWITCHSIM_SIMSERVER_H_
