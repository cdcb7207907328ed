#include "common/base/SCIMCommon.h"

#include <cstdio>
#include <ctime>
#include <mutex>
#include <utility>

std::string cdatetime::toString() const {
  time_t seconds = static_cast<time_t>(ivTime);
  struct tm fields;
  gmtime_r(&seconds, &fields);
  long offsetMinutes;
  {
    // tzset() rewrites `daylight` and `timezone`; provider threads convert
    // at once, so the two are read under the same lock that writes them.
    static std::mutex zoneLock;
    std::lock_guard<std::mutex> lock(zoneLock);
    tzset();
    offsetMinutes = (daylight != 0 ? 60 : 0) - timezone / 60;
  }
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
