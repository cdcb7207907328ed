#include "tools/switchsim/RequestLog.h"

namespace switchsim {

void RequestLog::setStream(std::FILE* ipStream) {
  std::lock_guard<std::mutex> lock(ivLock);
  ivStream = ipStream;
}

void RequestLog::add(const std::string& irLine) {
  std::lock_guard<std::mutex> lock(ivLock);
  if (ivStream != nullptr) {
    std::fprintf(ivStream, "%s\n", irLine.c_str());
    std::fflush(ivStream);
  }
  ivLines.push_back(irLine);
  if (ivLines.size() > kKeptLines) ivLines.pop_front();
}

std::vector<std::string> RequestLog::lines() const {
  std::lock_guard<std::mutex> lock(ivLock);
  return std::vector<std::string>(ivLines.begin(), ivLines.end());
}

}  // namespace switchsim
