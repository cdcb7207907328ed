// fcbb::Time: an absolute point in wall-clock time, in whole milliseconds
// since the Unix epoch.
//
// A Time is a plain value (one unsigned 64-bit count): copyable, assignable,
// with no virtual functions. It is the deadline type of every timed wait in
// the library (Semaphore::timedWait(), Cond::timedWait()), which compare it
// against the wall clock, so a step of the system clock moves deadlines.
//
// Printed as seconds, ".", and the millisecond remainder as a plain decimal
// number without zero padding: 5,007 ms prints "5.7" and 5,070 ms "5.70".
// Log readers know this form; it is kept on purpose.
//
// Thread-safety: like any value; distinct objects need no synchronisation.
#ifndef QRX_COMMON_BASE_TIME_H_
#define QRX_COMMON_BASE_TIME_H_

#include <time.h>

#include <cstdint>
#include <iosfwd>
#include <string>

namespace fcbb {

class Time {
 public:
  // The current time (see update()).
  Time();

  // The time `ipMs` milliseconds after the epoch.
  explicit Time(std::uint64_t ipMs) : ivMs(ipMs) {}

  Time(const Time&) = default;
  Time& operator=(const Time&) = default;

  // Reads the wall clock (gettimeofday): seconds times 1000 plus the
  // microseconds divided by 1000, truncated.
  void update();

  // Milliseconds since the epoch.
  std::uint64_t ms() const { return ivMs; }

  Time& operator+=(unsigned long long ipMs) {
    ivMs += ipMs;
    return *this;
  }
  Time operator+(unsigned long long ipMs) const { return Time(ivMs + ipMs); }

  bool operator==(const Time& ir) const { return ivMs == ir.ivMs; }
  bool operator!=(const Time& ir) const { return ivMs != ir.ivMs; }
  bool operator<(const Time& ir) const { return ivMs < ir.ivMs; }
  bool operator<=(const Time& ir) const { return ivMs <= ir.ivMs; }
  bool operator>(const Time& ir) const { return ivMs > ir.ivMs; }
  bool operator>=(const Time& ir) const { return ivMs >= ir.ivMs; }

  // The same instant as an absolute timespec: ms / 1000 seconds and
  // (ms mod 1000) * 1,000,000 nanoseconds; always a valid timespec.
  operator timespec() const;

  // "<seconds>.<milliseconds>", the milliseconds unpadded (see above).
  std::string toString() const;

 private:
  std::uint64_t ivMs;
};

// Writes irTime.toString().
std::ostream& operator<<(std::ostream& orStream, const Time& irTime);

}  // namespace fcbb

#endif  // QRX_COMMON_BASE_TIME_H_
