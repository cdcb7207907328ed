// cimhost::EncDateTime: CMPIDateTime, an immutable CIM date-time.
//
// A point in time has the binary form "microseconds since 1970-01-01
// 00:00:00 UTC" and the 25-character text form "yyyymmddhhmmss.mmmmmmsutc":
// the local date and time fields, then the sign and three-digit offset in
// minutes of that local time from UTC ("+060" is one hour east of
// Greenwich). Reading a text subtracts the offset, so "...120000.000000+060"
// and "...110000.000000+000" are the same binary time; the text is kept as
// given. A binary time is written in the local time zone of the process
// (TZ) at the moment the object is made.
//
// An interval is a duration in microseconds with the text form
// "ddddddddhhmmss.mmmmmm:000" (days, hours, minutes, seconds, microseconds).
//
// Accepted range: points from 1970 (after applying the offset) to the end
// of 9999 UTC; intervals below 100,000,000 days. Wildcard ('*') fields are
// not accepted. Anything else is CMPI_RC_ERR_INVALID_PARAMETER.
#ifndef QRX_TOOLS_CIMHOST_BROKER_DATETIMES_H_
#define QRX_TOOLS_CIMHOST_BROKER_DATETIMES_H_

#include <cstdint>
#include <memory>
#include <string>

#include "tools/cimhost/broker/EncObject.h"
#include "tools/cimhost/broker/Status.h"

namespace cimhost {

// Reads a CIM date-time text.
Status parseCimDateTime(const std::string& irText, uint64_t* opBinary, bool* opInterval);

// Writes a binary date-time as CIM text (a point in local time).
Status formatCimDateTime(uint64_t ipBinary, bool ipInterval, std::string* opText);

class EncDateTime : public Encapsulated<EncDateTime, CMPIDateTime, CMPIDateTimeFT> {
 public:
  // The current time.
  static std::unique_ptr<EncDateTime> now(Core* ipCore);
  static Status fromBinary(Core* ipCore, uint64_t ipBinary, bool ipInterval,
                           std::unique_ptr<EncDateTime>* opOut);
  static Status fromText(Core* ipCore, const std::string& irText,
                         std::unique_ptr<EncDateTime>* opOut);

  uint64_t binary() const { return ivBinary; }
  bool isInterval() const { return ivInterval; }
  const std::string& text() const { return ivText; }

  std::unique_ptr<EncDateTime> copy(Core* ipCore) const;
  std::unique_ptr<EncObject> copyTo(Core* ipCore) const override { return copy(ipCore); }

  static const CMPIDateTimeFT* table(const Core* ipCore);
  static bool isOwnTable(const CMPIDateTimeFT* ipFt);

 private:
  EncDateTime(Core* ipCore, uint64_t ipBinary, bool ipInterval, std::string ipText);

  const uint64_t ivBinary;
  const bool ivInterval;
  const std::string ivText;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_DATETIMES_H_
