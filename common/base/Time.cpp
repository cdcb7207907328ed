#include "common/base/Time.h"

#include <sys/time.h>

#include <ostream>

namespace fcbb {

Time::Time() : ivMs(0) { update(); }

void Time::update() {
  struct timeval now;
  gettimeofday(&now, nullptr);
  ivMs = static_cast<std::uint64_t>(now.tv_sec) * 1000 +
         static_cast<std::uint64_t>(now.tv_usec) / 1000;
}

Time::operator timespec() const {
  timespec result;
  result.tv_sec = static_cast<time_t>(ivMs / 1000);
  result.tv_nsec = static_cast<long>(ivMs % 1000) * 1000000L;
  return result;
}

std::string Time::toString() const {
  // Unpadded on purpose: 5,007 ms is "5.7".
  return std::to_string(ivMs / 1000) + "." + std::to_string(ivMs % 1000);
}

std::ostream& operator<<(std::ostream& orStream, const Time& irTime) {
  return orStream << irTime.toString();
}

}  // namespace fcbb
