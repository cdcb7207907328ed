// libFuzzer target of the switch daemon's records: the first byte picks a
// record, a list of records or the list of strings, the rest is decoded as
// it would come in a reply (SCIMDeserializer). Whatever decodes must encode
// again to exactly as many bytes, decode from those to an equal value and
// encode to the same bytes (a round trip; only a date-time's microseconds
// below the second are not kept, so the first encoding may differ there).
#include <algorithm>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "common/base/SCIMSerdes.h"
#include "common/base/trace.h"
#include "generated/smis_ipc/smis_ipc.h"
#include "tests/fuzz/FuzzInput.h"

namespace {

using qrxfuzz::Bytes;

// Encodes `irValue` into exactly `ipSize` bytes.
template <class T>
Bytes encode(const T& irValue, std::size_t ipSize) {
  Bytes bytes(ipSize + 1);
  SCIMSerializer writer(bytes.data(), bytes.size());
  irValue.serialize(writer);
  assert(!writer.hasError());
  assert(writer.getWrittenLen() == ipSize);
  bytes.resize(ipSize);
  return bytes;
}

template <class T, class Compare>
void roundTrip(const Bytes& irBytes, Compare ipEqual) {
  T value;
  SCIMDeserializer reader(irBytes.data(), irBytes.size());
  value.deserialize(reader);
  if (reader.hasError()) return;
  const std::size_t used = reader.getWrittenLen();
  assert(used <= irBytes.size());

  const Bytes first = encode(value, used);
  T again;
  SCIMDeserializer rereader(first.data(), first.size());
  again.deserialize(rereader);
  assert(!rereader.hasError());
  assert(rereader.getWrittenLen() == used);
  assert(ipEqual(value, again));
  assert(encode(again, used) == first);
}

template <class T>
void record(const Bytes& irBytes) {
  roundTrip<T>(irBytes, [](const T& irA, const T& irB) { return irA == irB; });
}

// The lists compare as the vectors they are.
template <class T>
void recordList(const Bytes& irBytes) {
  using Vector = std::vector<typename T::value_type>;
  roundTrip<T>(irBytes, [](const T& irA, const T& irB) {
    return static_cast<const Vector&>(irA) == static_cast<const Vector&>(irB);
  });
}

// string_tA is a plain vector: decoded as a reply carries it.
void stringList(const Bytes& irBytes) {
  string_tA value;
  SCIMDeserializer reader(irBytes.data(), irBytes.size());
  reader.read("list", CMPI_stringA, value);
  if (reader.hasError()) return;
  const std::size_t used = reader.getWrittenLen();
  Bytes encoded(used + 1);
  SCIMSerializer writer(encoded.data(), encoded.size());
  writer.write("list", CMPI_stringA, value);
  assert(!writer.hasError() && writer.getWrittenLen() == used);
  assert(std::equal(encoded.begin(), encoded.begin() + static_cast<long>(used), irBytes.begin()));
}

using Decoder = void (*)(const Bytes&);

#define QRX_FUZZ_RECORD(name) record<name>, recordList<name##A>,
const Decoder kDecoders[] = {SMIS_IPC_RECORDS(QRX_FUZZ_RECORD) stringList};
#undef QRX_FUZZ_RECORD

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  trace_open("/dev/null");
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* ipData, std::size_t ipSize) {
  qrxfuzz::FuzzInput input(ipData, ipSize);
  const Decoder decoder = kDecoders[input.pick(sizeof kDecoders / sizeof kDecoders[0])];
  decoder(input.take(input.remaining()));
  return 0;
}
