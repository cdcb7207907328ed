#include "tools/switchsim/SimServer.h"

#include <fcntl.h>
#include <time.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "common/base/SCIMSerdes.h"
#include "common/mqueue/FramePipeIf.h"
#include "common/mqueue/mqCS.h"
#include "generated/smis_ipc/smis_ipc_dispatch.h"
#include "tools/switchsim/Status.h"

namespace switchsim {

namespace {

constexpr long kQueueDepth = 10;
constexpr std::size_t kFrameData = fcbb::kMaxFrameSize - fcbb::kFrameHeaderSize;
constexpr std::size_t kLargestReply = std::size_t{64} << 20;
// A request chain longer than this is not a request of this protocol.
constexpr std::size_t kLargestRequest = std::size_t{1} << 20;
constexpr unsigned kPollMs = 20;

const mqd_t kNoQueue = static_cast<mqd_t>(-1);

mqd_t createQueue(const std::string& irName, int ipFlags, bool ipReplace, std::string* orError) {
  if (ipReplace) mq_unlink(irName.c_str());
  mq_attr attr{};
  attr.mq_maxmsg = kQueueDepth;
  attr.mq_msgsize = fcbb::kMaxFrameSize;
  const mqd_t queue = mq_open(irName.c_str(), O_CREAT | O_EXCL | ipFlags, 0600, &attr);
  if (queue == kNoQueue) {
    const int error = errno;
    *orError = "cannot create message queue " + irName + ": " + std::strerror(error);
    if (error == EEXIST) {
      *orError += " (another simulator serves it, or one was killed; --replace removes it)";
    }
  }
  return queue;
}

void sleepMs(unsigned ipMs) {
  timespec pause{static_cast<time_t>(ipMs / 1000), static_cast<long>(ipMs % 1000) * 1000000L};
  nanosleep(&pause, nullptr);
}

bool isQuery(const std::string& irFunction) { return irFunction.rfind("rs_api_get_", 0) == 0; }

// The frames a reply of `ipLength` data bytes takes.
std::size_t framesOf(std::size_t ipLength) {
  return std::max<std::size_t>(1, (ipLength + kFrameData - 1) / kFrameData);
}

}  // namespace

SimServer::SimServer(Dispatch irDispatch, FaultTable& irFaults, RequestLog& irLog,
                     const ServerOptions& irOptions)
    : ivDispatch(std::move(irDispatch)),
      ivrFaults(irFaults),
      ivrLog(irLog),
      ivOptions(irOptions) {
  ivOptions.replyBufferBytes = std::max<std::size_t>(ivOptions.replyBufferBytes, 64);
}

SimServer::~SimServer() { stop(); }

bool SimServer::start(const std::string& irName, std::string* orError) {
  if (running()) {
    *orError = "the simulator is already serving " + ivRequestName;
    return false;
  }
  const std::string base = std::string(fcbb::queuePrefix()) + irName;
  ivRequestName = base + fcbb::kRequestQueueSuffix;
  ivReplyName = base + fcbb::kReplyQueueSuffix;
  ivRequests = createQueue(ivRequestName, O_RDONLY, ivOptions.replaceQueues, orError);
  if (ivRequests == kNoQueue) return false;
  ivReplies = createQueue(ivReplyName, O_WRONLY | O_NONBLOCK, ivOptions.replaceQueues, orError);
  if (ivReplies == kNoQueue) {
    closeQueues();
    return false;
  }
  ivReplyBuffer.assign(ivOptions.replyBufferBytes, 0);
  ivPending = Pending();
  ivStop = false;
  ivThread = std::thread(&SimServer::run, this);
  return true;
}

void SimServer::stop() {
  ivStop = true;
  if (ivThread.joinable()) ivThread.join();
  closeQueues();
}

void SimServer::closeQueues() {
  if (ivRequests != kNoQueue) {
    mq_close(ivRequests);
    mq_unlink(ivRequestName.c_str());
    ivRequests = kNoQueue;
  }
  if (ivReplies != kNoQueue) {
    mq_close(ivReplies);
    mq_unlink(ivReplyName.c_str());
    ivReplies = kNoQueue;
  }
}

void SimServer::run() {
  std::vector<unsigned char> message(fcbb::kMaxFrameSize);
  while (!ivStop) {
    timespec deadline;
    clock_gettime(CLOCK_REALTIME, &deadline);
    deadline.tv_nsec += kPollMs * 1000000L;
    if (deadline.tv_nsec >= 1000000000L) {
      deadline.tv_sec += 1;
      deadline.tv_nsec -= 1000000000L;
    }
    const ssize_t length = mq_timedreceive(ivRequests, reinterpret_cast<char*>(message.data()),
                                           message.size(), nullptr, &deadline);
    if (length >= 0) {
      onMessage(message.data(), static_cast<std::size_t>(length));
    } else if (errno != ETIMEDOUT && errno != EINTR) {
      ivrLog.add(std::string("error: receiving from ") + ivRequestName + ": " +
                 std::strerror(errno));
      sleepMs(100);
    }
    if (ivPending.active && std::chrono::steady_clock::now() - ivPending.since >
                                std::chrono::milliseconds(ivOptions.chainTimeoutMs)) {
      failPending("its next frame did not arrive");
    }
  }
}

void SimServer::failPending(const std::string& irWhy) {
  const std::uint32_t reqId = ivPending.reqId;
  ivrLog.add("error: request req_id=" + std::to_string(reqId) + " of " +
             std::to_string(ivPending.frames) + " frames dropped: " + irWhy);
  ivPending = Pending();
  const std::size_t length = encodeStatus(kStatusBadArguments);
  ivrLog.add("reply req_id=" + std::to_string(reqId) + " function=? status=" +
             std::to_string(kStatusBadArguments) + " (bad-arguments) bytes=" +
             std::to_string(length) + " frames=" + std::to_string(framesOf(length)));
  sendReply(reqId, length, "?");
}

void SimServer::onMessage(const unsigned char* ipBytes, std::size_t ipLength) {
  if (ipLength < fcbb::kFrameHeaderSize) {
    ivrLog.add("error: dropped a message of " + std::to_string(ipLength) +
               " bytes, shorter than a frame header");
    return;
  }
  const std::uint32_t reqId = fcbb::decodeBigEndian32(ipBytes);
  const std::uint32_t used = fcbb::decodeBigEndian32(ipBytes + 8);
  const std::uint32_t next = fcbb::decodeBigEndian32(ipBytes + 12);
  if (ivPending.active && reqId != ivPending.reqId) {
    failPending("req_id " + std::to_string(reqId) + " came before its last frame");
  }
  if (!ivPending.active) {
    ivPending.active = true;
    ivPending.reqId = reqId;
  }
  ivPending.frames += 1;
  ivPending.since = std::chrono::steady_clock::now();
  if (used != ipLength) {
    failPending("a frame's used_size " + std::to_string(used) + " is not its length " +
                std::to_string(ipLength));
    return;
  }
  ivPending.data.insert(ivPending.data.end(), ipBytes + fcbb::kFrameHeaderSize, ipBytes + used);
  if (ivPending.data.size() > kLargestRequest) {
    failPending("longer than " + std::to_string(kLargestRequest) + " bytes");
    return;
  }
  if (next != 0) return;
  Pending request = std::move(ivPending);
  ivPending = Pending();
  serve(request.reqId, request.data, request.frames);
}

void SimServer::serve(std::uint32_t ipReqId, const std::vector<unsigned char>& irData,
                      unsigned ipFrames) {
  // The name is read here only to find a fault; the dispatcher reads it
  // again.
  std::string function;
  {
    SCIMDeserializer peek(irData.data(), irData.size());
    peek.read("function", CMPI_string, function);
    if (peek.hasError()) function.clear();
  }
  const std::string shown = function.empty() ? "?" : function;
  ivrLog.add("request req_id=" + std::to_string(ipReqId) + " function=" + shown +
             " bytes=" + std::to_string(irData.size()) + " frames=" + std::to_string(ipFrames));

  Fault fault;
  const bool faulted = !function.empty() && ivrFaults.take(function, &fault);
  if (faulted && fault.delayMs != 0) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(fault.delayMs);
    while (!ivStop && std::chrono::steady_clock::now() < until) sleepMs(1);
  }
  std::uint32_t status = 0;
  std::string note;
  std::size_t length = 0;
  if (faulted && fault.status != 0) {
    status = static_cast<std::uint32_t>(fault.status);
    length = encodeStatus(status);
  } else {
    length = encodeReply(irData, &function, &status, &note);
  }
  const std::uint32_t replyId = faulted && fault.wrongReqId ? ipReqId + 1 : ipReqId;
  // Logged before it leaves: whoever reads the reply finds its line. A
  // reply that cannot be sent whole gets an error line after it.
  std::string line = "reply req_id=" + std::to_string(replyId) + " function=" + shown +
                     " status=" + std::to_string(status) + " (" + statusName(status) +
                     ") bytes=" + std::to_string(length) + " frames=" +
                     std::to_string(framesOf(length));
  if (faulted) line += " fault: " + describeFault(fault);
  if (!note.empty()) line += " note: " + note;
  ivrLog.add(line);
  sendReply(replyId, length, shown);
}

std::size_t SimServer::encodeReply(const std::vector<unsigned char>& irData,
                                   std::string* orFunction, std::uint32_t* opStatus,
                                   std::string* orNote) {
  for (;;) {
    SCIMDeserializer request(irData.data(), irData.size());
    SCIMSerializer reply(ivReplyBuffer.data(), ivReplyBuffer.size());
    const int result = ivDispatch(request, reply, *orFunction, *orNote);
    if (result == kDispatchUnknownFunction) {
      *opStatus = kStatusUnknownFunction;
      return encodeStatus(*opStatus);
    }
    if (result != kDispatchDone) {
      *opStatus = kStatusBadArguments;
      return encodeStatus(*opStatus);
    }
    if (!reply.hasError()) {
      *opStatus = fcbb::decodeBigEndian32(ivReplyBuffer.data());
      return reply.getWrittenLen();
    }
    if (!isQuery(*orFunction) || ivReplyBuffer.size() >= kLargestReply) {
      *orNote = "reply larger than " + std::to_string(ivReplyBuffer.size()) + " bytes";
      *opStatus = kStatusReplyTooLarge;
      return encodeStatus(*opStatus);
    }
    ivReplyBuffer.assign(ivReplyBuffer.size() * 4, 0);
  }
}

std::size_t SimServer::encodeStatus(std::uint32_t ipStatus) {
  SCIMSerializer reply(ivReplyBuffer.data(), ivReplyBuffer.size());
  reply.write("status", CMPI_uint32, static_cast<cuint32>(ipStatus));
  return reply.getWrittenLen();
}

void SimServer::sendReply(std::uint32_t ipReqId, std::size_t ipLength,
                              const std::string& irFunction) {
  unsigned char frame[fcbb::kMaxFrameSize];
  const std::size_t count = framesOf(ipLength);
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t offset = i * kFrameData;
    const std::size_t chunk = std::min(kFrameData, ipLength - offset);
    const std::size_t used = fcbb::kFrameHeaderSize + chunk;
    fcbb::encodeBigEndian32(frame, ipReqId);
    fcbb::encodeBigEndian32(frame + 4, fcbb::kMaxFrameSize);
    fcbb::encodeBigEndian32(frame + 8, static_cast<std::uint32_t>(used));
    fcbb::encodeBigEndian32(frame + 12, i + 1 < count ? 1 : 0);
    std::memcpy(frame + fcbb::kFrameHeaderSize, ivReplyBuffer.data() + offset, chunk);
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(ivOptions.sendTimeoutMs);
    for (;;) {
      const int sent = fcbb::message_queue_send(frame, used, ivReplies);
      if (sent > 0) break;
      if (sent < 0 || ivStop || std::chrono::steady_clock::now() >= deadline) {
        ivrLog.add("error: reply req_id=" + std::to_string(ipReqId) + " function=" + irFunction +
                   " dropped after " + std::to_string(i) + " of " + std::to_string(count) +
                   " frames: " +
                   (sent < 0 ? std::string("send failed: ") + std::strerror(errno)
                             : "the reply queue stayed full"));
        return;
      }
      sleepMs(1);
    }
  }
}

}  // namespace switchsim
