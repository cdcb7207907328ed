#include "tools/switchsim/ControlChannel.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>

#include "common/mqueue/mqCS.h"

namespace switchsim {

const char* const kControlPathEnv = "QRX_SWITCHSIM_CONTROL";

namespace {

// A command is short; an answer carries the whole model (a 2,500-port
// switch's is over a megabyte).
constexpr std::size_t kLongestCommand = std::size_t{1} << 20;
constexpr std::size_t kLongestAnswer = std::size_t{64} << 20;
constexpr int kReadTimeoutMs = 2000;
constexpr int kAnswerTimeoutMs = 10000;

bool makeAddress(const std::string& irPath, sockaddr_un* opAddress, std::string* orError) {
  std::memset(opAddress, 0, sizeof *opAddress);
  opAddress->sun_family = AF_UNIX;
  if (irPath.empty() || irPath.size() >= sizeof opAddress->sun_path) {
    *orError = "control socket path \"" + irPath + "\" is empty or longer than " +
               std::to_string(sizeof opAddress->sun_path - 1) + " characters";
    return false;
  }
  std::memcpy(opAddress->sun_path, irPath.c_str(), irPath.size());
  return true;
}

// Reads from `ipFd` until a newline or the end, at most `ipTimeoutMs` and
// about `ipLongest` bytes.
bool readLine(int ipFd, int ipTimeoutMs, std::size_t ipLongest, std::string* opLine) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(ipTimeoutMs);
  std::string data;
  char buffer[4096];
  while (data.find('\n') == std::string::npos && data.size() < ipLongest) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
        deadline - std::chrono::steady_clock::now()).count();
    if (left <= 0) return false;
    pollfd fd{ipFd, POLLIN, 0};
    const int ready = poll(&fd, 1, static_cast<int>(left));
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return false;
    const ssize_t n = read(ipFd, buffer, sizeof buffer);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    if (n == 0) break;
    data.append(buffer, static_cast<std::size_t>(n));
  }
  const std::size_t newline = data.find('\n');
  *opLine = newline == std::string::npos ? data : data.substr(0, newline);
  return !opLine->empty() || newline != std::string::npos;
}

bool writeAll(int ipFd, const std::string& irText) {
  std::size_t done = 0;
  while (done < irText.size()) {
    const ssize_t n = send(ipFd, irText.data() + done, irText.size() - done, MSG_NOSIGNAL);
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) return false;
    done += static_cast<std::size_t>(n);
  }
  return true;
}

// Connects to the socket at `irPath`; -1 with the reason on failure.
int connectTo(const std::string& irPath, std::string* orError) {
  sockaddr_un address;
  if (!makeAddress(irPath, &address, orError)) return -1;
  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0) {
    *orError = std::string("cannot make a socket: ") + std::strerror(errno);
    return -1;
  }
  if (connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    *orError = "no simulator answers at " + irPath + ": " + std::strerror(errno);
    close(fd);
    return -1;
  }
  return fd;
}

bool parseUnsigned(const std::string& irText, unsigned long long ipMax, unsigned long long* opValue) {
  if (irText.empty() || irText.size() > 20) return false;
  char* end = nullptr;
  errno = 0;
  const unsigned long long value = std::strtoull(irText.c_str(), &end, 10);
  if (errno != 0 || *end != '\0' || irText[0] == '-' || irText[0] == '+' || value > ipMax) {
    return false;
  }
  *opValue = value;
  return true;
}

std::string executeFault(Simulator& irSimulator, const std::vector<std::string>& irWords) {
  if (irWords.size() < 2 || irWords[1].find('=') != std::string::npos) {
    return "error fault needs a function name, e.g. rs_api_get_switch_info";
  }
  Fault fault;
  fault.function = irWords[1];
  for (std::size_t i = 2; i < irWords.size(); ++i) {
    const std::string& word = irWords[i];
    const std::size_t equals = word.find('=');
    const std::string key = word.substr(0, equals);
    const std::string value = equals == std::string::npos ? "" : word.substr(equals + 1);
    unsigned long long number = 0;
    if (word == "wrong-req-id") {
      fault.wrongReqId = true;
    } else if (key == "status" && parseUnsigned(value, 0x7fffffff, &number)) {
      fault.status = static_cast<int>(number);
    } else if (key == "delay-ms" && parseUnsigned(value, 3600000, &number)) {
      fault.delayMs = static_cast<unsigned>(number);
    } else if (key == "count" && parseUnsigned(value, 0x7fffffff, &number) && number > 0) {
      fault.remaining = static_cast<int>(number);
    } else {
      return "error bad fault word \"" + word +
             "\": expected status=N, delay-ms=N (at most 3600000), wrong-req-id or count=N (N > 0)";
    }
  }
  if (fault.status == 0 && fault.delayMs == 0 && !fault.wrongReqId) {
    return "error a fault needs status=, delay-ms= or wrong-req-id";
  }
  irSimulator.addFault(fault);
  return "ok " + describeFault(fault);
}

}  // namespace

std::string defaultControlPath(const std::string& irName) {
  const char* env = std::getenv(kControlPathEnv);
  if (env != nullptr && env[0] != '\0') return env;
  std::string prefix = fcbb::queuePrefix();
  for (char& c : prefix) {
    if (c == '/') c = '-';
  }
  return "/tmp/qrx-switchsim" + prefix + "-" + irName + ".sock";
}

bool splitWords(const std::string& irLine, std::vector<std::string>* opWords,
                std::string* orError) {
  std::vector<std::string> words;
  std::size_t i = 0;
  while (i < irLine.size()) {
    if (irLine[i] == ' ' || irLine[i] == '\t' || irLine[i] == '\r') {
      ++i;
      continue;
    }
    std::string word;
    bool quoted = false;
    for (; i < irLine.size(); ++i) {
      const char c = irLine[i];
      if (quoted && c == '\\' && i + 1 < irLine.size()) {
        word += irLine[++i];
      } else if (c == '"') {
        quoted = !quoted;
      } else if (!quoted && (c == ' ' || c == '\t' || c == '\r')) {
        break;
      } else {
        word += c;
      }
    }
    if (quoted) {
      *orError = "unclosed quote in \"" + irLine + "\"";
      return false;
    }
    words.push_back(std::move(word));
  }
  *opWords = std::move(words);
  return true;
}

std::string joinWords(const std::vector<std::string>& irWords) {
  std::string line;
  for (const std::string& word : irWords) {
    if (!line.empty()) line += ' ';
    if (!word.empty() && word.find_first_of(" \t\r\n\"\\") == std::string::npos) {
      line += word;
      continue;
    }
    line += '"';
    for (char c : word) {
      if (c == '"' || c == '\\') line += '\\';
      line += c == '\n' ? ' ' : c;
    }
    line += '"';
  }
  return line;
}

std::string executeControlLine(Simulator& irSimulator, const std::string& irLine) {
  std::vector<std::string> words;
  std::string error;
  if (!splitWords(irLine, &words, &error)) return "error " + error;
  if (words.empty()) return "error empty command";
  const std::string& command = words[0];
  if (command == "ping" && words.size() == 1) return "ok";
  if (command == "fault") return executeFault(irSimulator, words);
  if (command == "fault-clear" && words.size() == 1) {
    irSimulator.clearFaults();
    return "ok";
  }
  if (command == "model" && words.size() == 1) return "ok " + irSimulator.snapshot().toJson(-1);
  if (command == "event") {
    EventCommand event;
    if (!parseEventCommand(std::vector<std::string>(words.begin() + 1, words.end()), &event,
                           &error) ||
        !irSimulator.applyEvent(event, &error)) {
      return "error " + error;
    }
    return "ok";
  }
  return "error unknown command \"" + irLine +
         "\": expected ping, fault, fault-clear, event or model";
}

bool sendControlLine(const std::string& irPath, const std::string& irLine, std::string* opAnswer,
                     std::string* orError) {
  const int fd = connectTo(irPath, orError);
  if (fd < 0) return false;
  bool ok = writeAll(fd, irLine + "\n");
  if (ok) shutdown(fd, SHUT_WR);
  ok = ok && readLine(fd, kAnswerTimeoutMs, kLongestAnswer, opAnswer);
  close(fd);
  if (!ok) *orError = "the simulator at " + irPath + " did not answer";
  return ok;
}

ControlServer::~ControlServer() { stop(); }

bool ControlServer::start(const std::string& irPath, std::string* orError) {
  sockaddr_un address;
  if (ivListenFd >= 0) {
    *orError = "the control channel is already open at " + ivPath;
    return false;
  }
  if (!makeAddress(irPath, &address, orError)) return false;
  std::string ignored;
  const int probe = connectTo(irPath, &ignored);
  if (probe >= 0) {
    close(probe);
    *orError = "another simulator listens at " + irPath;
    return false;
  }
  unlink(irPath.c_str());
  const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (fd < 0 || bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      listen(fd, 8) != 0) {
    *orError = "cannot listen at " + irPath + ": " + std::strerror(errno);
    if (fd >= 0) close(fd);
    return false;
  }
  ivPath = irPath;
  ivListenFd = fd;
  ivStop = false;
  ivThread = std::thread(&ControlServer::run, this);
  return true;
}

void ControlServer::stop() {
  ivStop = true;
  if (ivThread.joinable()) ivThread.join();
  if (ivListenFd >= 0) {
    close(ivListenFd);
    unlink(ivPath.c_str());
    ivListenFd = -1;
  }
}

void ControlServer::run() {
  while (!ivStop) {
    pollfd fd{ivListenFd, POLLIN, 0};
    if (poll(&fd, 1, 100) <= 0) continue;
    const int connection = accept4(ivListenFd, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) continue;
    serveConnection(connection);
    close(connection);
  }
}

void ControlServer::serveConnection(int ipFd) {
  std::string line;
  if (!readLine(ipFd, kReadTimeoutMs, kLongestCommand, &line)) {
    writeAll(ipFd, "error no command line arrived\n");
    return;
  }
  writeAll(ipFd, executeControlLine(ivrSimulator, line) + "\n");
}

}  // namespace switchsim
