// Reading a fuzzer's bytes as a sequence of small decisions and values,
// and writing seeds in the same layout.
//
// Every target reads its input front to back: a byte picks one of n
// choices, a big-endian 16-bit length announces a piece. A read past the
// end yields zeros and empty pieces, so that any input is a valid (if
// short) program; done() tells the target to stop.
#ifndef QRX_TESTS_FUZZ_FUZZINPUT_H_
#define QRX_TESTS_FUZZ_FUZZINPUT_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qrxfuzz {

using Bytes = std::vector<unsigned char>;

class FuzzInput {
 public:
  FuzzInput(const std::uint8_t* ipData, std::size_t ipSize) : ivData(ipData), ivSize(ipSize) {}

  bool done() const { return ivPos >= ivSize; }
  std::size_t remaining() const { return ivSize - ivPos; }

  std::uint8_t byte() { return done() ? 0 : ivData[ivPos++]; }
  // One of `ipCount` choices (ipCount > 0).
  std::size_t pick(std::size_t ipCount) { return byte() % ipCount; }
  std::uint16_t u16() { return static_cast<std::uint16_t>((byte() << 8) | byte()); }
  std::uint32_t u32() { return (std::uint32_t{u16()} << 16) | u16(); }
  std::uint64_t u64() { return (std::uint64_t{u32()} << 32) | u32(); }
  // Up to `ipCount` bytes, fewer at the end.
  Bytes take(std::size_t ipCount) {
    const std::size_t count = ipCount < remaining() ? ipCount : remaining();
    Bytes piece(ivData + ivPos, ivData + ivPos + count);
    ivPos += count;
    return piece;
  }
  // A piece announced by its 16-bit length.
  Bytes piece() { return take(u16()); }
  std::string text() {
    const Bytes bytes = piece();
    return std::string(bytes.begin(), bytes.end());
  }

 private:
  const std::uint8_t* ivData;
  std::size_t ivSize;
  std::size_t ivPos = 0;
};

// The writing side, for seeds.
inline void putByte(Bytes* iopOut, std::uint8_t ipValue) { iopOut->push_back(ipValue); }
inline void putU16(Bytes* iopOut, std::uint16_t ipValue) {
  iopOut->push_back(static_cast<unsigned char>(ipValue >> 8));
  iopOut->push_back(static_cast<unsigned char>(ipValue));
}
inline void putU32(Bytes* iopOut, std::uint32_t ipValue) {
  putU16(iopOut, static_cast<std::uint16_t>(ipValue >> 16));
  putU16(iopOut, static_cast<std::uint16_t>(ipValue));
}
inline void putU64(Bytes* iopOut, std::uint64_t ipValue) {
  putU32(iopOut, static_cast<std::uint32_t>(ipValue >> 32));
  putU32(iopOut, static_cast<std::uint32_t>(ipValue));
}
// A piece with its 16-bit length (cut at 65535 bytes).
inline void putPiece(Bytes* iopOut, const unsigned char* ipBytes, std::size_t ipSize) {
  const std::size_t size = ipSize > 0xFFFF ? 0xFFFF : ipSize;
  putU16(iopOut, static_cast<std::uint16_t>(size));
  iopOut->insert(iopOut->end(), ipBytes, ipBytes + size);
}
inline void putText(Bytes* iopOut, const std::string& irText) {
  putPiece(iopOut, reinterpret_cast<const unsigned char*>(irText.data()), irText.size());
}

}  // namespace qrxfuzz

#endif  // QRX_TESTS_FUZZ_FUZZINPUT_H_
