#include "common/base/SCIMCommon.h"

#include <cstdint>
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
  // zoneVariable is "=" followed by TZ when TZ is set, and empty when not.
  const char* tz = getenv("TZ");
  const bool sameZone = tz != nullptr
                            ? !zoneVariable.empty() && zoneVariable.compare(1, std::string::npos, tz) == 0
                            : zoneVariable.empty();
  if (!known || now.tv_sec != readAt || !sameZone) {
    tzset();
    offsetMinutes = (daylight != 0 ? 60 : 0) - timezone / 60;
    readAt = now.tv_sec;
    zoneVariable = tz != nullptr ? std::string(1, '=') + tz : std::string();
    known = true;
  }
  return offsetMinutes;
}

// Writes `ipValue` (not negative) as `ipDigits` decimal digits, the last
// ones when it has more; returns the end.
char* putDigits(char* opText, unsigned long ipValue, int ipDigits) {
  for (int i = ipDigits - 1; i >= 0; --i) {
    opText[i] = static_cast<char>('0' + ipValue % 10);
    ipValue /= 10;
  }
  return opText + ipDigits;
}

}  // namespace

std::string cdatetime::toString() const {
  // The UTC fields, computed here rather than by gmtime_r(): time_t is 32
  // bits wide on some targets (32-bit PowerPC), where every second from
  // 2038 on would turn negative. Days to a civil date count in 400-year
  // eras of 146,097 days, with years starting on March 1st so that the
  // leap day comes last.
  const std::uint64_t seconds = ivTime;
  const std::uint64_t dayOfTime = seconds % 86400;
  const std::uint64_t z = seconds / 86400 + 719468;  // days since 0000-03-01
  const std::uint64_t era = z / 146097;
  const std::uint64_t dayOfEra = z - era * 146097;
  const std::uint64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::uint64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::uint64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
  const unsigned long day = static_cast<unsigned long>(dayOfYear - (153 * monthFromMarch + 2) / 5 + 1);
  const unsigned long month =
      static_cast<unsigned long>(monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9);
  const unsigned long year =
      static_cast<unsigned long>(yearOfEra + era * 400 + (month <= 2 ? 1 : 0));
  const long offsetMinutes = zoneOffsetMinutes();
  if (offsetMinutes >= -999 && offsetMinutes <= 999) {
    // The usual case, written by hand: this runs for every datetime
    // property of every instance. A 32-bit time ends in 2106: four digits.
    char text[25];
    char* at = putDigits(text, year, 4);
    at = putDigits(at, month, 2);
    at = putDigits(at, day, 2);
    at = putDigits(at, static_cast<unsigned long>(dayOfTime / 3600), 2);
    at = putDigits(at, static_cast<unsigned long>(dayOfTime % 3600 / 60), 2);
    at = putDigits(at, static_cast<unsigned long>(dayOfTime % 60), 2);
    *at++ = '.';
    at = putDigits(at, 0, 6);
    *at++ = offsetMinutes < 0 ? '-' : '+';
    at = putDigits(at, static_cast<unsigned long>(offsetMinutes < 0 ? -offsetMinutes : offsetMinutes), 3);
    return std::string(text, static_cast<size_t>(at - text));
  }
  char text[96];  // room for any offset the compiler can imagine
  snprintf(text, sizeof(text), "%04lu%02lu%02lu%02lu%02lu%02lu.%06d%+4.3ld", year, month, day,
           static_cast<unsigned long>(dayOfTime / 3600),
           static_cast<unsigned long>(dayOfTime % 3600 / 60),
           static_cast<unsigned long>(dayOfTime % 60), 0, offsetMinutes);
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
