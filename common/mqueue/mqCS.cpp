#include "common/mqueue/mqCS.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <time.h>

#include <cassert>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "common/base/trace.h"

namespace fcbb {

const char* const kDefaultQueuePrefix = "/CUID3570";
const char* const kQueuePrefixEnv = "QRX_SMIS_QUEUE_PREFIX";
const char* const kRequestQueueSuffix = "_stoc";
const char* const kReplyQueueSuffix = "_ctos";
const char* const kEventQueueName = "smis_ipc_ev";

namespace {

const char* const kUnit = "common/mqueue/mqCS";

constexpr int kConnectAttempts = 6;
constexpr long kConnectPauseNs = 10 * 1000 * 1000;

void pause10ms() {
  timespec left = {0, kConnectPauseNs};
  while (nanosleep(&left, &left) != 0 && errno == EINTR) {
  }
}

// Sleeps until `ipQueue` (-1: not connected, then the whole time) has
// `ipEvents`, at most `ipMs` milliseconds.
void waitOn(mqd_t ipQueue, short ipEvents, unsigned int ipMs) {
  if (ipQueue == -1) {
    const timespec pause = {static_cast<time_t>(ipMs / 1000),
                            static_cast<long>(ipMs % 1000) * 1000000L};
    nanosleep(&pause, nullptr);
    return;
  }
  pollfd entry = {ipQueue, ipEvents, 0};
  poll(&entry, 1, static_cast<int>(ipMs));
}

}  // namespace

const char* queuePrefix() {
  const char* prefix = std::getenv(kQueuePrefixEnv);
  return (prefix != nullptr && prefix[0] != '\0') ? prefix : kDefaultQueuePrefix;
}

int message_queue_send(const void* ipBuffer, std::size_t iLen, mqd_t ipQueue) {
  assert(iLen != 0);
  if (mq_send(ipQueue, static_cast<const char*>(ipBuffer), iLen, 0) == 0) {
    return static_cast<int>(iLen);
  }
  const int error = errno;
  if (error == EAGAIN) return 0;
  TRACE_ERROR(kUnit, "ERROR %i %s\n\n", error, std::strerror(error));
  return -1;
}

int message_queue_receive(void* opBuffer, std::size_t iLen, mqd_t ipQueue) {
  assert(iLen != 0);
  const ssize_t length = mq_receive(ipQueue, static_cast<char*>(opBuffer), iLen, nullptr);
  if (length >= 0) return static_cast<int>(length);
  const int error = errno;
  if (error == EAGAIN) return 0;
  TRACE_ERROR(kUnit, "ERROR %i %s\n\n", error, std::strerror(error));
  return -1;
}

// ---------------------------------------------------------------------------

mqClient::mqClient() : ivMqDescriptor(-1) {}

mqClient::~mqClient() { close(); }

bool mqClient::connect(const std::string& irName) {
  if (isConnected()) return true;
  ivMqName = irName;
  // The daemon may still be creating its queues: give it about 50 ms.
  for (int attempt = 1; attempt <= kConnectAttempts; ++attempt) {
    ivMqDescriptor = mq_open(ivMqName.c_str(), O_RDWR | O_NONBLOCK);
    if (ivMqDescriptor != -1) return true;
    if (attempt < kConnectAttempts) pause10ms();
  }
  const int error = errno;
  TRACE_ERROR(kUnit, "connect error %s %s\n\n", ivMqName.c_str(), std::strerror(error));
  return false;
}

int mqClient::send(const void* ipBuffer, std::size_t ipLen) {
  return message_queue_send(ipBuffer, ipLen, ivMqDescriptor);
}

int mqClient::recv(void* opBuffer, std::size_t ipLen) {
  return message_queue_receive(opBuffer, ipLen, ivMqDescriptor);
}

void mqClient::close() {
  if (!isConnected()) return;
  mq_close(ivMqDescriptor);
  ivMqDescriptor = -1;
}

// On Linux a queue descriptor is a file descriptor of the queue file
// system: fstat() names the queue by its inode, and poll() waits on it.
mqClient::Identity mqClient::identity() const {
  if (!isConnected()) return Identity::kGone;
  const mqd_t probe = mq_open(ivMqName.c_str(), O_RDONLY | O_NONBLOCK);
  if (probe == static_cast<mqd_t>(-1)) {
    // A queue that exists but cannot be opened (no descriptors left, say)
    // is not evidence of a restart.
    return errno == ENOENT ? Identity::kGone : Identity::kSame;
  }
  struct stat held;
  struct stat named;
  const bool same = fstat(ivMqDescriptor, &held) == 0 && fstat(probe, &named) == 0 &&
                    held.st_ino == named.st_ino && held.st_dev == named.st_dev;
  mq_close(probe);
  return same ? Identity::kSame : Identity::kOther;
}

void mqClient::waitReady(bool ipForSend, unsigned int ipMs) const {
  waitOn(ivMqDescriptor, static_cast<short>(ipForSend ? POLLOUT : POLLIN), ipMs);
}

// ---------------------------------------------------------------------------

mqServer::mqServer() : ivMqDescriptor(-1) {}

mqServer::~mqServer() { close(); }

bool mqServer::connect(const std::string& irName, std::size_t ipMsgSize, std::uint32_t ipMaxMsg) {
  if (isConnected()) return true;
  ivMqName = irName;
  mq_attr attr;
  std::memset(&attr, 0, sizeof(attr));
  attr.mq_flags = O_NONBLOCK;
  attr.mq_maxmsg = static_cast<long>(ipMaxMsg);
  attr.mq_msgsize = static_cast<long>(ipMsgSize);
  ivMqDescriptor = mq_open(ivMqName.c_str(), O_RDWR | O_CREAT | O_NONBLOCK, 0700, &attr);
  if (ivMqDescriptor < 0) {
    const int error = errno;
    TRACE_ERROR(kUnit, "mq_maxmsg=%d mq_msgsize=%d\n", static_cast<int>(attr.mq_maxmsg),
                static_cast<int>(attr.mq_msgsize));
    TRACE_ERROR(kUnit, "connect error %s %s\n\n", ivMqName.c_str(), std::strerror(error));
  }
  assert(ivMqDescriptor>=0);
  return true;
}

int mqServer::recv(void* opBuffer, std::size_t ipLen) {
  return message_queue_receive(opBuffer, ipLen, ivMqDescriptor);
}

void mqServer::waitReadable(unsigned int ipMs) const { waitOn(ivMqDescriptor, POLLIN, ipMs); }

void mqServer::close() {
  if (!isConnected()) return;
  mq_close(ivMqDescriptor);
  mq_unlink(ivMqName.c_str());
  ivMqDescriptor = -1;
}

}  // namespace fcbb
