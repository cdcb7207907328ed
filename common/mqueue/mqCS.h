// POSIX message-queue primitives and the two ends the library holds.
//
// The library talks to the switch daemon over three queues whose names all
// start with queuePrefix():
//   prefix + name + "_stoc"   requests, library to daemon
//   prefix + name + "_ctos"   replies, daemon to library
//   prefix + "smis_ipc_ev"    events, daemon to library
// The daemon opens the same names. It creates the request and reply queues
// (the library only connects to them, with mqClient); the library creates
// the event queue (mqServer). Every queue is used non-blocking.
//
// Errors of the queue calls are written to the trace log as
// "[common/mqueue/mqCS, <function>, <line>] ERROR: ..." lines.
//
// Thread-safety: the primitives are as safe as the queue calls. An mqClient
// or mqServer belongs to one owner for connect() and close(); while it is
// connected, send() and recv() may be used from several threads.
#ifndef QRX_COMMON_MQUEUE_MQCS_H_
#define QRX_COMMON_MQUEUE_MQCS_H_

#include <mqueue.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace fcbb {

// The default queue name prefix.
extern const char* const kDefaultQueuePrefix;  // "/CUID3570"
// Environment variable that, when set and non-empty, replaces the default
// (tests use private prefixes so that they can run in parallel).
extern const char* const kQueuePrefixEnv;  // "QRX_SMIS_QUEUE_PREFIX"
// Suffixes of the request and reply queues, and the event queue's name.
extern const char* const kRequestQueueSuffix;  // "_stoc"
extern const char* const kReplyQueueSuffix;    // "_ctos"
extern const char* const kEventQueueName;      // "smis_ipc_ev"

// $QRX_SMIS_QUEUE_PREFIX if set and non-empty, else kDefaultQueuePrefix.
// Reads the environment on every call, so a change applies to the next
// queue opened; it must not race with setenv().
const char* queuePrefix();

// Sends `iLen` bytes of `ipBuffer` on `ipQueue` with priority 0. Returns
// iLen, 0 when the queue is full, -1 on any other error (logged). Asserts
// "iLen != 0".
int message_queue_send(const void* ipBuffer, std::size_t iLen, mqd_t ipQueue);

// Receives one message into `opBuffer`, which holds `iLen` bytes (at least
// the queue's message size). Returns the message length, 0 when the queue
// is empty, -1 on any other error (logged). Asserts "iLen != 0".
int message_queue_receive(void* opBuffer, std::size_t iLen, mqd_t ipQueue);

// The library's end of a queue the daemon created.
class mqClient {
 public:
  mqClient();
  ~mqClient();  // closes
  mqClient(const mqClient&) = delete;
  mqClient& operator=(const mqClient&) = delete;

  // Opens the existing queue `irName` read/write, non-blocking, trying six
  // times 10 ms apart (about 50 ms in all) while it does not exist yet.
  // False, with a "connect error <name> <reason>" line, if it never opens.
  // Already connected: true, nothing reopened (and the name kept).
  bool connect(const std::string& irName);
  // message_queue_send() / message_queue_receive() on the queue.
  int send(const void* ipBuffer, std::size_t ipLen);
  int recv(void* opBuffer, std::size_t ipLen);
  // Closes the descriptor (the queue stays); connect() may follow.
  void close();

  // What the name leads to now, compared with the queue this client holds:
  // the same queue, no queue (the daemon removed it), or another queue (a
  // restarted daemon created it anew). Costs an open and a close; nothing
  // is received or sent. A client that is not connected answers kGone.
  enum class Identity { kSame, kGone, kOther };
  Identity identity() const;

  // Sleeps until the queue has a message to receive (ipForSend false) or
  // room for one (true), at most `ipMs` milliseconds; returns early on a
  // signal. Nothing is received or sent.
  void waitReady(bool ipForSend, unsigned int ipMs) const;

  bool isConnected() const { return ivMqDescriptor != -1; }
  const std::string& name() const { return ivMqName; }

 private:
  std::string ivMqName;
  mqd_t ivMqDescriptor;  // -1 while not connected
};

// The library's end of a queue it creates (the event queue).
class mqServer {
 public:
  mqServer();
  ~mqServer();  // closes
  mqServer(const mqServer&) = delete;
  mqServer& operator=(const mqServer&) = delete;

  // Creates (or opens, if it exists) the queue `irName`: read/write,
  // non-blocking, mode 0700, at most `ipMaxMsg` messages of `ipMsgSize`
  // bytes. Failing to is a broken installation: the attributes and the
  // reason are logged, then the assertion "ivMqDescriptor>=0" fails.
  // Returns true; already connected, nothing is reopened.
  bool connect(const std::string& irName, std::size_t ipMsgSize, std::uint32_t ipMaxMsg);
  // message_queue_receive() on the queue; never waits.
  int recv(void* opBuffer, std::size_t ipLen);
  // Sleeps until the queue has a message to receive, at most `ipMs`
  // milliseconds (all of them while not connected); returns early on a
  // signal. Nothing is received.
  void waitReadable(unsigned int ipMs) const;
  // Closes and removes the queue.
  void close();

  bool isConnected() const { return ivMqDescriptor != -1; }
  const std::string& name() const { return ivMqName; }

 private:
  std::string ivMqName;
  mqd_t ivMqDescriptor;  // -1 while not connected
};

}  // namespace fcbb

#endif  // QRX_COMMON_MQUEUE_MQCS_H_
