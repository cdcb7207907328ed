// The control channel of a running qrx-switchsim: a Unix-domain stream
// socket that takes one command line per connection and answers one line,
// "ok[ <detail>]" or "error <reason>", then closes.
//
// Words are separated by blanks; a word may be double-quoted, with \" and
// \\ inside. Commands:
//   ping                                   -> ok
//   fault FUNCTION [status=N] [delay-ms=N] [wrong-req-id] [count=N]
//                                          -> ok <fault>
//   fault-clear                            -> ok
//   event KIND [WORDS...]                  -> ok
//       (EventCommand.h; when the event could not be sent the change is
//       still made and the answer is "error ...")
//   model                                  -> ok <the model as JSON, one line>
//
// Thread-safety: ControlServer serves on its own thread; start() and
// stop() belong to one owner.
#ifndef QRX_TOOLS_SWITCHSIM_CONTROLCHANNEL_H_
#define QRX_TOOLS_SWITCHSIM_CONTROLCHANNEL_H_

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tools/switchsim/Simulator.h"

namespace switchsim {

// Environment variable that names the control socket for every subcommand.
extern const char* const kControlPathEnv;  // "QRX_SWITCHSIM_CONTROL"

// $QRX_SWITCHSIM_CONTROL if set and non-empty; otherwise
// "/tmp/qrx-switchsim" + queuePrefix() with '/' turned into '-' + "-" +
// `irName` + ".sock", e.g. "/tmp/qrx-switchsim-CUID3570-smis_ipc.sock".
std::string defaultControlPath(const std::string& irName);

// Splits a command line into words (see above). False on an unclosed
// quote.
bool splitWords(const std::string& irLine, std::vector<std::string>* opWords,
                std::string* orError);
// The words as one line that splitWords() gives back.
std::string joinWords(const std::vector<std::string>& irWords);

// Runs one command line against `irSimulator`; returns the answer line
// (without newline).
std::string executeControlLine(Simulator& irSimulator, const std::string& irLine);

// Sends `irLine` to the socket at `irPath` and reads the answer. False,
// with the reason, if no simulator answers there.
bool sendControlLine(const std::string& irPath, const std::string& irLine, std::string* opAnswer,
                     std::string* orError);

class ControlServer {
 public:
  explicit ControlServer(Simulator& irSimulator) : ivrSimulator(irSimulator) {}
  ~ControlServer();  // stop()
  ControlServer(const ControlServer&) = delete;
  ControlServer& operator=(const ControlServer&) = delete;

  // Listens at `irPath`. A socket file left there by a simulator that is
  // gone is replaced; one with a live listener is an error.
  bool start(const std::string& irPath, std::string* orError);
  // Stops listening and removes the socket file.
  void stop();

 private:
  void run();
  void serveConnection(int ipFd);

  Simulator& ivrSimulator;
  std::string ivPath;
  int ivListenFd = -1;
  std::atomic<bool> ivStop{false};
  std::thread ivThread;
};

}  // namespace switchsim

#endif  // QRX_TOOLS_SWITCHSIM_CONTROLCHANNEL_H_
