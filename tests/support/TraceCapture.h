// A private trace log for the lifetime of a test, to read back.
#ifndef QRX_TESTS_SUPPORT_TRACECAPTURE_H_
#define QRX_TESTS_SUPPORT_TRACECAPTURE_H_

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "common/base/trace.h"

// Opens a fresh trace log for its lifetime; text() reads it back.
class TraceCapture {
 public:
  TraceCapture() {
    char path[] = "/tmp/qrx_test_trace.XXXXXX";
    int fd = mkstemp(path);
    if (fd >= 0) close(fd);
    ivPath = path;
    trace_open(ivPath.c_str());
  }
  ~TraceCapture() {
    trace_close();
    std::remove(ivPath.c_str());
  }
  TraceCapture(const TraceCapture&) = delete;
  TraceCapture& operator=(const TraceCapture&) = delete;

  std::string text() const {
    std::ifstream in(ivPath);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }
  const std::string& path() const { return ivPath; }
  bool contains(const std::string& irText) const {
    return text().find(irText) != std::string::npos;
  }

 private:
  std::string ivPath;
};

#endif  // QRX_TESTS_SUPPORT_TRACECAPTURE_H_
