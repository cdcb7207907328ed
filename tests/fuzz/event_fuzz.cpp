// libFuzzer target of the event thread: a run of event messages from the
// fuzzer (each a 16-bit length and that many bytes, as they would come off
// the event queue) is decoded as the thread decodes them, then handled one
// by one with the event queued behind each, as the thread handles them:
// the fabric cache refreshes from the simulated switch, which answers in
// process, and every lifecycle change and alert is built.
//
// A message that decodes must encode again to a message that decodes to
// the same event (its text cut to what travels).
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "common/backend/BackendInd.h"
#include "common/backend/EventRecord.h"
#include "common/base/trace.h"
#include "tests/fuzz/FuzzInput.h"
#include "tests/support/InMemoryPipe.h"
#include "tools/switchsim/FabricModel.h"
#include "tools/switchsim/SimulatedSwitch.h"

namespace {

// Takes every indication and lets it go.
class Discard : public IndicationSink {
 public:
  void deliverIndication(std::unique_ptr<SCIMSerdesable>) override {}
};

// The event thread's surroundings, made once: a simulated switch, the
// fabric cache over it, and the handler with every indication wanted.
struct EventThread {
  EventThread()
      : model(switchsim::FabricModel::builtIn()), daemon(model), pipe(daemon), cache(pipe),
        events(cache) {
    pipe.setAnswerAtOnce(true);
    cache.initCache();
    for (IND_TYPE type : {IND_INSTCREATION, IND_INSTMODIFICATION, IND_INSTDELETION}) {
      events.addQuery(type, "SELECT * FROM CIM_InstIndication");
    }
    events.subscriptions().setInstCreationEnabled(true);
    events.subscriptions().setInstModificationEnabled(true);
    events.subscriptions().setInstDeletionEnabled(true);
    events.subscriptions().setAlertEnabled(true);
    events.setIndicationSink(&sink);
  }

  switchsim::FabricModel model;
  switchsim::SimulatedSwitch daemon;
  qrxtest::DispatchPipe pipe;
  FabricCache cache;
  Discard sink;
  BackendInd events;
};

EventThread* gThread = nullptr;

// At most this many events per input: each refresh asks the switch.
constexpr int kMaxEvents = 8;

void checkRoundTrip(const EventRecord& irEvent) {
  unsigned char message[kEventMessageSize];
  encodeEventMessage(irEvent, message);
  EventRecord again;
  std::string error;
  assert(decodeEventMessage(message, sizeof message, &again, &error));
  assert(again.reqId == irEvent.reqId && again.code == irEvent.code);
  assert(again.chassis == irEvent.chassis && again.blade == irEvent.blade);
  assert(again.port == irEvent.port);
  assert(again.text == irEvent.text.substr(0, kEventTextSize - 1));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  trace_open("/dev/null");
  gThread = new EventThread;
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* ipData, std::size_t ipSize) {
  qrxfuzz::FuzzInput input(ipData, ipSize);
  std::deque<EventRecord> queue;
  for (int i = 0; i < kMaxEvents && !input.done(); ++i) {
    const qrxfuzz::Bytes message = input.piece();
    EventRecord event;
    std::string error;
    if (!decodeEventMessage(message.data(), message.size(), &event, &error)) {
      assert(!error.empty());
      continue;
    }
    checkRoundTrip(event);
    queue.push_back(std::move(event));
  }
  gThread->pipe.forgetRequests();
  while (!queue.empty()) {
    const EventRecord event = std::move(queue.front());
    queue.pop_front();
    gThread->events.handleEvent(event, queue.empty() ? nullptr : &queue.front());
  }
  return 0;
}
