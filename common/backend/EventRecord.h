// The switch daemon's change event, as it travels on the event queue: a
// fixed record whose numbers are BIG-ENDIAN 32-bit words.
//
//   offset  size
//        0     4  req_id: the daemon's running event number (signed)
//        4    12  the rest of a frame header: alloc_size, used_size (both
//                 1432 as this library writes them), next 0
//       16     4  Code, the event code (below)
//       20     4  Source: chassis number
//       24     4  Source: blade number
//       28     4  Source: port number (the port's port_index)
//       32  1400  Text: NUL-terminated message text, NUL-filled
//
// The 1416 bytes from offset 16 are the event proper (vksw_event_s).
#ifndef QRX_COMMON_BACKEND_EVENTRECORD_H_
#define QRX_COMMON_BACKEND_EVENTRECORD_H_

#include <cstddef>
#include <cstdint>
#include <string>

constexpr std::size_t kEventHeaderSize = 16;
constexpr std::size_t kEventTextSize = 1400;
constexpr std::size_t kEventBodySize = 16 + kEventTextSize;                   // 1416
constexpr std::size_t kEventMessageSize = kEventHeaderSize + kEventBodySize;  // 1432

// The event codes the library acts on; the daemon has more, which are
// received and ignored.
enum EventCode : std::uint32_t {
  kEventFabricChange = 1,
  kEventZoneChange = 3,
  kEventNameServerChange = 6,
  kEventSwitchAttrChange = 8,
  kEventPortStateChange = 13,
  kEventPortAttrChange = 14,
  kEventPortTopoChange = 20,
  kEventSwitchOperChange = 31,
  kEventSwitchStateChange = 32,
  kEventDomainIdChange = 49,
  kEventIpAddressChange = 68,
  kEventFcfChange = 83,
  kEventFcfConfigChange = 84,
  kEventVlanConfigChange = 85,
};

struct EventRecord {
  std::int32_t reqId = 0;
  std::uint32_t code = 0;
  std::uint32_t chassis = 0;
  std::uint32_t blade = 0;
  std::uint32_t port = 0;
  std::string text;  // at most 1399 characters travel; the rest is cut
};

// Writes the kEventMessageSize bytes of `irEvent` to `opMessage`.
void encodeEventMessage(const EventRecord& irEvent, unsigned char* opMessage);

// Reads a message of `ipLength` bytes. The header words after req_id are
// not checked, and bytes after the record are ignored; a text without its
// NUL ends with the message. False, with the reason in *orError, when the
// message is too short to carry the code and source (32 bytes).
bool decodeEventMessage(const unsigned char* ipMessage, std::size_t ipLength,
                        EventRecord* opEvent, std::string* orError);

#endif  // QRX_COMMON_BACKEND_EVENTRECORD_H_
