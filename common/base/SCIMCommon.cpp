#include "common/base/SCIMCommon.h"

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <string>
#include <utility>

namespace {

// The local zone's offset as datetimes print it: 60 when the zone has any
// summer-time rule, minus `timezone` in minutes. tzset() looks at the zone
// files (two stat() calls) each time, so its result is kept: it is read
// again when TZ changes, and otherwise at most once a second, so that an
// enumeration of thousands of instances asks once and a new zone file
// shows within a second.
long zoneOffsetMinutes() {
  static std::mutex zoneLock;
  static long offsetMinutes = 0;
  static time_t readAt = 0;
  static bool known = false;
  static std::string zoneVariable;
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
  // tzset() rewrites `daylight` and `timezone`; provider threads convert
  // at once, so the two are read under the same lock that writes them.
  std::lock_guard<std::mutex> lock(zoneLock);
  const char* tz = getenv("TZ");
  const std::string zone = tz != nullptr ? std::string(1, '=') + tz : std::string();
  if (!known || now.tv_sec != readAt || zone != zoneVariable) {
    tzset();
    offsetMinutes = (daylight != 0 ? 60 : 0) - timezone / 60;
    readAt = now.tv_sec;
    zoneVariable = zone;
    known = true;
  }
  return offsetMinutes;
}

}  // namespace

std::string cdatetime::toString() const {
  time_t seconds = static_cast<time_t>(ivTime);
  struct tm fields;
  gmtime_r(&seconds, &fields);
  const long offsetMinutes = zoneOffsetMinutes();
  char text[96];  // room for any int the compiler can imagine
  snprintf(text, sizeof(text), "%04d%02d%02d%02d%02d%02d.%06d%+4.3ld", fields.tm_year + 1900,
           fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min, fields.tm_sec, 0,
           offsetMinutes);
  return text;
}

cstring_EO::~cstring_EO() { delete ivpEmbeddedObj; }

cstring_EO::cstring_EO(cstring_EO&& other) noexcept
    : ivNameSpace(std::move(other.ivNameSpace)),
      ivClassName(std::move(other.ivClassName)),
      ivNull(other.ivNull),
      ivpEmbeddedObj(other.ivpEmbeddedObj) {
  other.ivNull = 1;
  other.ivpEmbeddedObj = nullptr;
}

cstring_EO& cstring_EO::operator=(cstring_EO&& other) noexcept {
  if (this != &other) {
    delete ivpEmbeddedObj;
    ivNameSpace = std::move(other.ivNameSpace);
    ivClassName = std::move(other.ivClassName);
    ivNull = other.ivNull;
    ivpEmbeddedObj = other.ivpEmbeddedObj;
    other.ivNull = 1;
    other.ivpEmbeddedObj = nullptr;
  }
  return *this;
}

void cstring_EO::reset(SCIMSerdesable* object) {
  if (object != ivpEmbeddedObj) delete ivpEmbeddedObj;
  ivpEmbeddedObj = object;
  ivNull = object == nullptr ? 1 : 0;
}
