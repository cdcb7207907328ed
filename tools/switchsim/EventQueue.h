// Posting event messages (EventRecord.h) to the library's event queue,
// queuePrefix() + "smis_ipc_ev". The library creates that queue; the
// simulator only opens it, non-blocking and write-only, for each event.
#ifndef QRX_TOOLS_SWITCHSIM_EVENTQUEUE_H_
#define QRX_TOOLS_SWITCHSIM_EVENTQUEUE_H_

#include <string>

#include "common/backend/EventRecord.h"

namespace switchsim {

// The event queue's full name.
std::string eventQueueName();

// Sends one event message. While the queue is full it retries every
// millisecond for up to `ipTimeoutMs`. False, with the reason, if the
// queue does not exist (no library listens) or the message cannot be sent.
bool postEvent(const EventRecord& irEvent, unsigned ipTimeoutMs, std::string* orError);

}  // namespace switchsim

#endif  // QRX_TOOLS_SWITCHSIM_EVENTQUEUE_H_
