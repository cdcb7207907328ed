#include "tools/cimhost/broker/DateTimes.h"

#include <time.h>

#include <cassert>
#include <cstdio>

#include "tools/cimhost/broker/Core.h"

namespace cimhost {

namespace {

constexpr uint64_t kMicrosPerSecond = 1000000;
constexpr uint64_t kMicrosPerDay = 86400 * kMicrosPerSecond;
constexpr uint64_t kIntervalDayLimit = 100000000;  // eight digits of days
constexpr size_t kTextLength = 25;

// Days from 1970-01-01 to the given date of the proleptic Gregorian
// calendar (negative before it).
int64_t daysFromCivil(int64_t ipYear, int ipMonth, int ipDay) {
  const int64_t y = ipYear - (ipMonth <= 2 ? 1 : 0);
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yearOfEra = y - era * 400;
  const int64_t dayOfYear = (153 * (ipMonth + (ipMonth > 2 ? -3 : 9)) + 2) / 5 + ipDay - 1;
  const int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

bool isLeapYear(int64_t ipYear) {
  return (ipYear % 4 == 0 && ipYear % 100 != 0) || ipYear % 400 == 0;
}

int daysInMonth(int64_t ipYear, int ipMonth) {
  static const int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return ipMonth == 2 && isLeapYear(ipYear) ? 29 : kDays[ipMonth - 1];
}

// The last representable point: 9999-12-31 23:59:59.999999 UTC.
const uint64_t kMaxPoint =
    static_cast<uint64_t>(daysFromCivil(9999, 12, 31) + 1) * kMicrosPerDay - 1;

// Reads `ipCount` digits at `ipAt`; false if any is not a digit.
bool digits(const std::string& irText, size_t ipAt, size_t ipCount, int64_t* opValue) {
  int64_t value = 0;
  for (size_t i = ipAt; i < ipAt + ipCount; ++i) {
    if (irText[i] < '0' || irText[i] > '9') return false;
    value = value * 10 + (irText[i] - '0');
  }
  *opValue = value;
  return true;
}

Status malformed(const std::string& irText, const std::string& irWhy) {
  return Status(CMPI_RC_ERR_INVALID_PARAMETER,
                "malformed CIM date-time \"" + irText + "\": " + irWhy);
}

CMPIStatus dtRelease(CMPIDateTime* dt) { return releaseFromC<EncDateTime>(dt); }

CMPIDateTime* dtClone(const CMPIDateTime* dt, CMPIStatus* rc) {
  return cloneFromC<EncDateTime>(dt, rc);
}

CMPIUint64 dtGetBinaryFormat(const CMPIDateTime* dt, CMPIStatus* rc) {
  EncDateTime* self = EncDateTime::of(dt);
  if (!self) {
    setStatus(rc, nullptr, Status(CMPI_RC_ERR_INVALID_HANDLE, ""));
    return 0;
  }
  setOk(rc);
  return self->binary();
}

CMPIString* dtGetStringFormat(const CMPIDateTime* dt, CMPIStatus* rc) {
  EncDateTime* self = EncDateTime::of(dt);
  if (!self) {
    setStatus(rc, nullptr, Status(CMPI_RC_ERR_INVALID_HANDLE, ""));
    return nullptr;
  }
  Core* core = self->core();
  return guard(core, rc, static_cast<CMPIString*>(nullptr), [&] {
    setOk(rc);
    return core->newString(self->text());
  });
}

CMPIBoolean dtIsInterval(const CMPIDateTime* dt, CMPIStatus* rc) {
  EncDateTime* self = EncDateTime::of(dt);
  if (!self) {
    setStatus(rc, nullptr, Status(CMPI_RC_ERR_INVALID_HANDLE, ""));
    return 0;
  }
  setOk(rc);
  return self->isInterval() ? 1 : 0;
}

constexpr CMPIDateTimeFT makeTable(int ipVersion) {
  return CMPIDateTimeFT{ipVersion,         dtRelease,         dtClone,
                        dtGetBinaryFormat, dtGetStringFormat, dtIsInterval};
}

const CMPIDateTimeFT kTable200 = makeTable(CMPIVersion200);
const CMPIDateTimeFT kTable100 = makeTable(CMPIVersion100);

}  // namespace

Status parseCimDateTime(const std::string& irText, uint64_t* opBinary, bool* opInterval) {
  if (irText.size() != kTextLength) return malformed(irText, "not 25 characters");
  if (irText[14] != '.') return malformed(irText, "no '.' after the seconds");
  int64_t a, hour, minute, second, micros, offset;
  if (!digits(irText, 0, 8, &a) || !digits(irText, 8, 2, &hour) ||
      !digits(irText, 10, 2, &minute) || !digits(irText, 12, 2, &second) ||
      !digits(irText, 15, 6, &micros) || !digits(irText, 22, 3, &offset)) {
    return malformed(irText, "a field is not numeric");
  }
  if (hour > 23 || minute > 59 || second > 59) return malformed(irText, "time out of range");

  const char sign = irText[21];
  const uint64_t timeOfDay =
      static_cast<uint64_t>((hour * 60 + minute) * 60 + second) * kMicrosPerSecond +
      static_cast<uint64_t>(micros);
  if (sign == ':') {
    if (offset != 0) return malformed(irText, "an interval ends in \":000\"");
    *opBinary = static_cast<uint64_t>(a) * kMicrosPerDay + timeOfDay;
    *opInterval = true;
    return Status::OK();
  }
  if (sign != '+' && sign != '-') return malformed(irText, "no '+', '-' or ':' at position 22");

  const int64_t year = a / 10000;
  const int month = static_cast<int>(a / 100 % 100);
  const int day = static_cast<int>(a % 100);
  if (month < 1 || month > 12) return malformed(irText, "month out of range");
  if (day < 1 || day > daysInMonth(year, month)) return malformed(irText, "day out of range");

  const int64_t offsetMicros =
      (sign == '-' ? -offset : offset) * 60 * static_cast<int64_t>(kMicrosPerSecond);
  const int64_t local =
      daysFromCivil(year, month, day) * static_cast<int64_t>(kMicrosPerDay) +
      static_cast<int64_t>(timeOfDay);
  const int64_t utc = local - offsetMicros;
  if (utc < 0) return malformed(irText, "before 1970-01-01 00:00:00 UTC");
  *opBinary = static_cast<uint64_t>(utc);
  *opInterval = false;
  return Status::OK();
}

Status formatCimDateTime(uint64_t ipBinary, bool ipInterval, std::string* opText) {
  char buf[64];  // room for any int fields, as the compiler sees them
  const unsigned micros = static_cast<unsigned>(ipBinary % kMicrosPerSecond);
  if (ipInterval) {
    if (ipBinary / kMicrosPerDay >= kIntervalDayLimit) {
      return Status(CMPI_RC_ERR_INVALID_PARAMETER,
                    "interval of " + std::to_string(ipBinary) + " us exceeds 99999999 days");
    }
    const uint64_t seconds = ipBinary / kMicrosPerSecond;
    std::snprintf(buf, sizeof(buf), "%08llu%02u%02u%02u.%06u:000",
                  static_cast<unsigned long long>(seconds / 86400),
                  static_cast<unsigned>(seconds / 3600 % 24),
                  static_cast<unsigned>(seconds / 60 % 60), static_cast<unsigned>(seconds % 60),
                  micros);
    *opText = buf;
    return Status::OK();
  }
  if (ipBinary > kMaxPoint) {
    return Status(CMPI_RC_ERR_INVALID_PARAMETER,
                  "time of " + std::to_string(ipBinary) + " us is after the year 9999");
  }
  const time_t seconds = static_cast<time_t>(ipBinary / kMicrosPerSecond);
  struct tm fields;
  long offsetMinutes = 0;
  if (localtime_r(&seconds, &fields) && fields.tm_year + 1900 <= 9999) {
    offsetMinutes = fields.tm_gmtoff / 60;
  } else if (!gmtime_r(&seconds, &fields)) {
    return Status(CMPI_RC_ERR_FAILED, "cannot break down time " + std::to_string(ipBinary));
  }
  std::snprintf(buf, sizeof(buf), "%04d%02d%02d%02d%02d%02d.%06u%c%03ld", fields.tm_year + 1900,
                fields.tm_mon + 1, fields.tm_mday, fields.tm_hour, fields.tm_min, fields.tm_sec,
                micros, offsetMinutes < 0 ? '-' : '+',
                offsetMinutes < 0 ? -offsetMinutes : offsetMinutes);
  *opText = buf;
  return Status::OK();
}

EncDateTime::EncDateTime(Core* ipCore, uint64_t ipBinary, bool ipInterval, std::string ipText)
    : Encapsulated(ipCore), ivBinary(ipBinary), ivInterval(ipInterval), ivText(std::move(ipText)) {}

std::unique_ptr<EncDateTime> EncDateTime::now(Core* ipCore) {
  struct timespec ts;
  clock_gettime(CLOCK_REALTIME, &ts);
  const uint64_t binary = static_cast<uint64_t>(ts.tv_sec) * kMicrosPerSecond +
                          static_cast<uint64_t>(ts.tv_nsec) / 1000;
  std::unique_ptr<EncDateTime> out;
  const Status status = fromBinary(ipCore, binary, false, &out);
  assert(status.ok());
  return out;
}

Status EncDateTime::fromBinary(Core* ipCore, uint64_t ipBinary, bool ipInterval,
                               std::unique_ptr<EncDateTime>* opOut) {
  std::string text;
  Status status = formatCimDateTime(ipBinary, ipInterval, &text);
  if (!status.ok()) return status;
  opOut->reset(new EncDateTime(ipCore, ipBinary, ipInterval, std::move(text)));
  return Status::OK();
}

Status EncDateTime::fromText(Core* ipCore, const std::string& irText,
                             std::unique_ptr<EncDateTime>* opOut) {
  uint64_t binary = 0;
  bool interval = false;
  Status status = parseCimDateTime(irText, &binary, &interval);
  if (!status.ok()) return status;
  if (!interval && binary > kMaxPoint) {
    return malformed(irText, "after 9999-12-31 23:59:59.999999 UTC");
  }
  opOut->reset(new EncDateTime(ipCore, binary, interval, irText));
  return Status::OK();
}

std::unique_ptr<EncDateTime> EncDateTime::copy(Core* ipCore) const {
  return std::unique_ptr<EncDateTime>(new EncDateTime(ipCore, ivBinary, ivInterval, ivText));
}

const CMPIDateTimeFT* EncDateTime::table(const Core* ipCore) {
  return ipCore->mode() == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

bool EncDateTime::isOwnTable(const CMPIDateTimeFT* ipFt) {
  return ipFt == &kTable200 || ipFt == &kTable100;
}

}  // namespace cimhost
