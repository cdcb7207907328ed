#include "common/backend/EventRecord.h"

#include <algorithm>
#include <cstring>

#include "common/mqueue/FramePipeIf.h"

using fcbb::decodeBigEndian32;
using fcbb::encodeBigEndian32;

void encodeEventMessage(const EventRecord& irEvent, unsigned char* opMessage) {
  std::memset(opMessage, 0, kEventMessageSize);
  encodeBigEndian32(opMessage, static_cast<std::uint32_t>(irEvent.reqId));
  encodeBigEndian32(opMessage + 4, kEventMessageSize);
  encodeBigEndian32(opMessage + 8, kEventMessageSize);
  encodeBigEndian32(opMessage + 12, 0);
  encodeBigEndian32(opMessage + 16, irEvent.code);
  encodeBigEndian32(opMessage + 20, irEvent.chassis);
  encodeBigEndian32(opMessage + 24, irEvent.blade);
  encodeBigEndian32(opMessage + 28, irEvent.port);
  const std::size_t length = std::min(irEvent.text.size(), kEventTextSize - 1);
  std::memcpy(opMessage + 32, irEvent.text.data(), length);
}

bool decodeEventMessage(const unsigned char* ipMessage, std::size_t ipLength,
                        EventRecord* opEvent, std::string* orError) {
  constexpr std::size_t kTextOffset = kEventHeaderSize + 16;
  if (ipLength < kTextOffset) {
    *orError = "an event message of " + std::to_string(ipLength) +
               " bytes is too short for its code and source";
    return false;
  }
  opEvent->reqId = static_cast<std::int32_t>(decodeBigEndian32(ipMessage));
  opEvent->code = decodeBigEndian32(ipMessage + 16);
  opEvent->chassis = decodeBigEndian32(ipMessage + 20);
  opEvent->blade = decodeBigEndian32(ipMessage + 24);
  opEvent->port = decodeBigEndian32(ipMessage + 28);
  const char* text = reinterpret_cast<const char*>(ipMessage + kTextOffset);
  const std::size_t room = std::min(ipLength - kTextOffset, kEventTextSize);
  const void* end = std::memchr(text, '\0', room);
  opEvent->text.assign(text, end != nullptr ? static_cast<const char*>(end) : text + room);
  return true;
}
