// The simulator's log: one line per request, reply, event and error. Lines
// go to an optional stream (flushed after each) and are kept in memory,
// the newest kKeptLines of them.
//
// Thread-safety: safe to use from any thread.
#ifndef QRX_TOOLS_SWITCHSIM_REQUESTLOG_H_
#define QRX_TOOLS_SWITCHSIM_REQUESTLOG_H_

#include <cstdio>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace switchsim {

class RequestLog {
 public:
  static constexpr std::size_t kKeptLines = 10000;

  // Where lines are written besides memory; null for nowhere. The stream
  // stays the caller's.
  void setStream(std::FILE* ipStream);
  // Adds one line (without its newline).
  void add(const std::string& irLine);
  std::vector<std::string> lines() const;

 private:
  mutable std::mutex ivLock;
  std::FILE* ivStream = nullptr;
  std::deque<std::string> ivLines;
};

}  // namespace switchsim

#endif  // QRX_TOOLS_SWITCHSIM_REQUESTLOG_H_
