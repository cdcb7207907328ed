#include "tools/switchsim/EventQueue.h"

#include <fcntl.h>
#include <mqueue.h>
#include <time.h>

#include <cerrno>
#include <chrono>
#include <cstring>

#include "common/mqueue/mqCS.h"

namespace switchsim {

std::string eventQueueName() {
  return std::string(fcbb::queuePrefix()) + fcbb::kEventQueueName;
}

bool postEvent(const EventRecord& irEvent, unsigned ipTimeoutMs, std::string* orError) {
  const std::string name = eventQueueName();
  const mqd_t queue = mq_open(name.c_str(), O_WRONLY | O_NONBLOCK);
  if (queue == static_cast<mqd_t>(-1)) {
    *orError = "cannot open the event queue " + name + ": " + std::strerror(errno) +
               (errno == ENOENT ? " (no library is listening)" : "");
    return false;
  }
  unsigned char message[kEventMessageSize];
  encodeEventMessage(irEvent, message);
  const auto deadline =
      std::chrono::steady_clock::now() + std::chrono::milliseconds(ipTimeoutMs);
  bool sent = false;
  for (;;) {
    if (mq_send(queue, reinterpret_cast<const char*>(message), sizeof message, 0) == 0) {
      sent = true;
      break;
    }
    if (errno != EAGAIN) {
      *orError = "cannot send to the event queue " + name + ": " + std::strerror(errno);
      break;
    }
    if (std::chrono::steady_clock::now() >= deadline) {
      *orError = "the event queue " + name + " stayed full for " + std::to_string(ipTimeoutMs) +
                 " ms";
      break;
    }
    timespec pause{0, 1000000L};
    nanosleep(&pause, nullptr);
  }
  mq_close(queue);
  return sent;
}

}  // namespace switchsim
