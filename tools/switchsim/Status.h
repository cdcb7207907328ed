// The statuses the simulated switch answers with. Every reply starts with
// one of them as an unsigned 32-bit word; only kStatusOk is followed by the
// call's results. The values sit in the vendor range of the zone service's
// method results (0x8000 and up), so that a CIM client that gets one passed
// through can tell it from the library's own codes.
#ifndef QRX_TOOLS_SWITCHSIM_STATUS_H_
#define QRX_TOOLS_SWITCHSIM_STATUS_H_

#include <cstdint>

namespace switchsim {

enum : std::uint32_t {
  kStatusOk = 0,
  // A named object (zone service, port, zone set, zone, alias, member)
  // does not exist.
  kStatusNotFound = 0x8101,
  // A create of a name that exists, or an add of a member already there.
  kStatusAlreadyExists = 0x8102,
  // A zone member type other than 2 to 5, or an alias where none may be.
  kStatusBadMemberType = 0x8103,
  // A member identifier that does not fit its type (WWN: 16 hex digits;
  // address: 6 hex digits; switch port: "<domain>,<port>").
  kStatusBadMemberId = 0x8104,
  // A zoning name that is empty, longer than the capabilities allow or
  // holds characters other than letters, digits, '_', '-', '$' and '^'.
  kStatusBadName = 0x8105,
  // A limit of the zone capabilities would be exceeded.
  kStatusLimitReached = 0x8106,
  // A zoning session is open: a second start, or a direct edit meanwhile.
  kStatusSessionOpen = 0x8107,
  // An update, end or terminate without an open session.
  kStatusNoSession = 0x8108,
  // A zone operation with an unknown opcode or kind marker.
  kStatusBadOperation = 0x8109,
  // The object exists in principle but not now (the fabric is absent).
  kStatusNotAvailable = 0x810A,
  // The request's function name is not one of the switch's calls (or
  // cannot be read at all).
  kStatusUnknownFunction = 0x81F0,
  // The request's arguments do not decode, or its frames are malformed.
  kStatusBadArguments = 0x81F1,
  // A reply that changes the switch would not fit the reply buffer.
  kStatusReplyTooLarge = 0x81F2,
};

// "not-found" for kStatusNotFound, "ok" for 0, "unknown" otherwise.
const char* statusName(std::uint32_t ipStatus);

// Every status above, for help texts: "  0x8101 (33025)  not-found  ..."
// one per line.
const char* statusTable();

}  // namespace switchsim

#endif  // QRX_TOOLS_SWITCHSIM_STATUS_H_
