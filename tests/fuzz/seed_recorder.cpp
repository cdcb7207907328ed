// qrx-fuzz-seeds DIR: records seed inputs for the fuzz targets from real
// traffic and writes them under DIR/<target>/ (the committed seeds in
// tests/fuzz/seeds/ were made with it):
//   reply_fuzz       each call's reply from the simulated switch (built-in
//                    fabric), framed as the switch sends it
//   ipc_record_fuzz  the results of those replies, as the records they are
//   event_fuzz       the event of each kind the simulated switch sends, and
//                    a burst of port events
//   cmpi_fuzz        the paths and method arguments the end-to-end tests
//                    send (switch, port, zone service, zoning methods)
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "common/backend/EventRecord.h"
#include "common/base/SCIMSerdes.h"
#include "common/mqueue/FramePipeIf.h"
#include "generated/scimclasstree.h"
#include "generated/smis_ipc/smis_ipc.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/fuzz/ReplyCalls.h"
#include "tests/support/InMemoryPipe.h"
#include "tools/switchsim/EventCommand.h"
#include "tools/switchsim/FabricModel.h"
#include "tools/switchsim/SimulatedSwitch.h"

namespace {

using qrxfuzz::Bytes;

bool writeSeed(const std::string& irDir, const std::string& irTarget, const std::string& irName,
               const Bytes& irBytes) {
  const std::string path = irDir + "/" + irTarget + "/" + irName;
  std::ofstream out(path, std::ios::binary);
  out.write(reinterpret_cast<const char*>(irBytes.data()), static_cast<std::streamsize>(irBytes.size()));
  if (!out) std::fprintf(stderr, "qrx-fuzz-seeds: cannot write %s\n", path.c_str());
  return static_cast<bool>(out);
}

// Keeps the data of every reply the switch sends.
class RecordingPipe : public qrxtest::DispatchPipe {
 public:
  using DispatchPipe::DispatchPipe;
  std::vector<Bytes> replies;

 protected:
  Reply answer(const qrxtest::Bytes& irRequest) override {
    Reply reply = DispatchPipe::answer(irRequest);
    replies.push_back(reply.data);
    return reply;
  }
};

// `irData` as the reply frames to request 0, each with its length.
Bytes framed(const Bytes& irData) {
  Bytes out;
  const std::size_t room = fcbb::kMaxFrameSize - fcbb::kFrameHeaderSize;
  std::size_t at = 0;
  do {
    const std::size_t size = std::min(room, irData.size() - at);
    Bytes frame(fcbb::kFrameHeaderSize);
    fcbb::encodeBigEndian32(&frame[0], 0);
    fcbb::encodeBigEndian32(&frame[4], fcbb::kMaxFrameSize);
    fcbb::encodeBigEndian32(&frame[8], static_cast<std::uint32_t>(fcbb::kFrameHeaderSize + size));
    fcbb::encodeBigEndian32(&frame[12], at + size < irData.size() ? 1 : 0);
    frame.insert(frame.end(), irData.begin() + static_cast<long>(at),
                 irData.begin() + static_cast<long>(at + size));
    qrxfuzz::putPiece(&out, frame.data(), frame.size());
    at += size;
  } while (at < irData.size());
  return out;
}

// Whether `irBytes` decode as a T to their last byte.
template <class T>
bool decodesWhole(const Bytes& irBytes) {
  T value;
  SCIMDeserializer reader(irBytes.data(), irBytes.size());
  value.deserialize(reader);
  return !reader.hasError() && reader.getWrittenLen() == irBytes.size();
}
bool stringListWhole(const Bytes& irBytes) {
  string_tA value;
  SCIMDeserializer reader(irBytes.data(), irBytes.size());
  reader.read("list", CMPI_stringA, value);
  return !reader.hasError() && reader.getWrittenLen() == irBytes.size();
}
// In the order of ipc_record_fuzz's decoders.
using Check = bool (*)(const Bytes&);
#define QRX_FUZZ_RECORD(name) decodesWhole<name>, decodesWhole<name##A>,
const Check kRecordChecks[] = {SMIS_IPC_RECORDS(QRX_FUZZ_RECORD) stringListWhole};
#undef QRX_FUZZ_RECORD

int recordReplies(const std::string& irDir) {
  switchsim::FabricModel model = switchsim::FabricModel::builtIn();
  switchsim::SimulatedSwitch daemon(model);
  int written = 0;
  for (std::size_t call = 0; call < qrxfuzz::kReplyCallCount; ++call) {
    RecordingPipe pipe(daemon);
    rs_api_client_mq client(pipe);
    qrxfuzz::kReplyCalls[call](client);
    if (pipe.replies.size() != 1) continue;
    const Bytes& data = pipe.replies[0];
    Bytes seed;
    qrxfuzz::putByte(&seed, static_cast<std::uint8_t>(call));
    const Bytes frames = framed(data);
    seed.insert(seed.end(), frames.begin(), frames.end());
    written += writeSeed(irDir, "reply_fuzz", "call" + std::to_string(call), seed);
    if (data.size() <= 4) continue;
    const Bytes results(data.begin() + 4, data.end());  // after the status
    for (std::size_t d = 0; d < sizeof kRecordChecks / sizeof kRecordChecks[0]; ++d) {
      if (!kRecordChecks[d](results)) continue;
      Bytes record{static_cast<unsigned char>(d)};
      record.insert(record.end(), results.begin(), results.end());
      written += writeSeed(irDir, "ipc_record_fuzz",
                           "call" + std::to_string(call) + "_as" + std::to_string(d), record);
    }
  }
  return written;
}

int recordEvents(const std::string& irDir) {
  const char* const kCommands[] = {
      "port-state 1 offline", "port-state 1 online", "port-state 2 faulty",
      "port-attr 3 speed=8",  "switch-attr owner=lab location=rack", "ip ip=10.0.0.7",
      "fabric vlan=7",        "zone",                "raw 99 port=4 text=a message",
  };
  switchsim::FabricModel model = switchsim::FabricModel::builtIn();
  int written = 0;
  Bytes burst;
  int number = 0;
  for (const char* line : kCommands) {
    std::vector<std::string> words;
    for (const char* at = line; *at != '\0';) {
      const char* end = std::strchr(at, ' ');
      if (std::strncmp(at, "text=", 5) == 0) end = nullptr;  // the text runs to the end
      words.emplace_back(at, end != nullptr ? end : at + std::strlen(at));
      at = end != nullptr ? end + 1 : at + std::strlen(at);
    }
    switchsim::EventCommand command;
    EventRecord event;
    std::string error;
    if (!switchsim::parseEventCommand(words, &command, &error) ||
        !switchsim::applyEventCommand(command, model, &event, &error)) {
      std::fprintf(stderr, "qrx-fuzz-seeds: %s: %s\n", line, error.c_str());
      continue;
    }
    event.reqId = number;
    unsigned char message[kEventMessageSize];
    encodeEventMessage(event, message);
    Bytes seed;
    qrxfuzz::putPiece(&seed, message, sizeof message);
    written += writeSeed(irDir, "event_fuzz", "event" + std::to_string(number++), seed);
    if (event.code == kEventPortStateChange) qrxfuzz::putPiece(&burst, message, sizeof message);
  }
  written += writeSeed(irDir, "event_fuzz", "port_burst", burst);
  return written;
}

// The layout cmpi_fuzz reads (see there).
std::uint16_t classIndex(const std::string& irName) {
  for (std::size_t i = 0; i < scimModelClassCount; ++i) {
    if (irName == scimModelClassNames[i]) return static_cast<std::uint16_t>(i);
  }
  std::fprintf(stderr, "qrx-fuzz-seeds: no class %s\n", irName.c_str());
  return 0;
}
constexpr std::uint8_t kNameFromInput = 0xF0;
constexpr std::uint8_t kStringValue = 12;  // CMPI_string among the value kinds
constexpr std::uint8_t kUint16Value = 1;
constexpr std::uint8_t kRefValue = 15;
enum Mode : std::uint8_t { kInstance = 0, kPath = 1, kArguments = 2 };

void putStringValue(Bytes* iopOut, const std::string& irName, const std::string& irValue) {
  qrxfuzz::putByte(iopOut, kNameFromInput);
  qrxfuzz::putText(iopOut, irName);
  qrxfuzz::putByte(iopOut, kStringValue);
  qrxfuzz::putText(iopOut, irValue);
}

int recordClientData(const std::string& irDir, const std::string& irSwitch) {
  struct Keys {
    const char* className;
    std::vector<std::pair<std::string, std::string>> keys;
  };
  const std::string port = irSwitch + ":1";
  const std::vector<Keys> paths = {
      {"QRX_Switch", {{"CreationClassName", "QRX_Switch"}, {"Name", irSwitch}}},
      {"QRX_SwitchFCPort", {{"CreationClassName", "QRX_SwitchFCPort"}, {"DeviceID", port},
                            {"SystemCreationClassName", "QRX_Switch"}, {"SystemName", irSwitch}}},
      {"QRX_ZoneService", {{"CreationClassName", "QRX_ZoneService"}, {"Name", irSwitch},
                           {"SystemCreationClassName", "QRX_Switch"}, {"SystemName", irSwitch}}},
      {"QRX_Zone", {{"InstanceID", "0Z0." + irSwitch + ".z_cimom"}}},
      {"QRX_ZoneSet", {{"InstanceID", "1S0." + irSwitch + ".cfg"}}},
      {"QRX_DebugFacility", {{"InstanceID", "QRX:DebugFacility"}}},
  };
  int written = 0;
  for (const Keys& path : paths) {
    for (Mode mode : {kPath, kInstance}) {
      Bytes seed;
      qrxfuzz::putU16(&seed, classIndex(path.className));
      qrxfuzz::putByte(&seed, mode);
      for (const auto& key : path.keys) putStringValue(&seed, key.first, key.second);
      written += writeSeed(irDir, "cmpi_fuzz",
                           std::string(mode == kPath ? "path_" : "instance_") + path.className, seed);
    }
  }
  // Zoning method arguments: a new zone by name, and a zone added to a
  // zone set by reference; the reader kinds follow (string, reference).
  Bytes create;
  qrxfuzz::putU16(&create, classIndex("QRX_ZoneService"));
  qrxfuzz::putByte(&create, kArguments);
  putStringValue(&create, "ZoneName", "z_cimom");
  qrxfuzz::putByte(&create, 0);
  written += writeSeed(irDir, "cmpi_fuzz", "args_CreateZone", create);

  Bytes add;
  qrxfuzz::putU16(&add, classIndex("QRX_ZoneService"));
  qrxfuzz::putByte(&add, kArguments);
  qrxfuzz::putByte(&add, kNameFromInput);
  qrxfuzz::putText(&add, "Zone");
  qrxfuzz::putByte(&add, kRefValue);
  qrxfuzz::putU16(&add, classIndex("QRX_Zone"));
  qrxfuzz::putByte(&add, 1);  // one key
  putStringValue(&add, "InstanceID", "0Z0." + irSwitch + ".z_cimom");
  qrxfuzz::putByte(&add, kNameFromInput);
  qrxfuzz::putText(&add, "RequestedSessionState");
  qrxfuzz::putByte(&add, kUint16Value);
  qrxfuzz::putU16(&add, 2);
  qrxfuzz::putByte(&add, 6);  // read as a reference
  qrxfuzz::putU16(&add, classIndex("QRX_Zone"));
  qrxfuzz::putByte(&add, 1);  // read as uint16
  written += writeSeed(irDir, "cmpi_fuzz", "args_AddZone", add);
  return written;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: qrx-fuzz-seeds DIR (DIR/<target>/ must exist)\n");
    return 2;
  }
  const std::string dir = argv[1];
  switchsim::FabricModel model = switchsim::FabricModel::builtIn();
  switchsim::SimulatedSwitch daemon(model);
  string_t switchName;
  daemon.get_switch_name(switchName);
  const int written = recordReplies(dir) + recordEvents(dir) + recordClientData(dir, switchName);
  std::printf("qrx-fuzz-seeds: %d seeds written\n", written);
  return 0;
}
