// What provider tests set up around the code under test: the class
// hierarchy of the test object manager, and a private trace log to read
// back. Header-only, so that it can be linked with either static library.
#ifndef QRX_TESTS_SUPPORT_TESTENVIRONMENT_H_
#define QRX_TESTS_SUPPORT_TESTENVIRONMENT_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "common/base/trace.h"
#include "tools/cimhost/broker/ClassHierarchy.h"

// Every class of the model and the DMTF classes above it, with their keys,
// read once from the generated hierarchy MOF (QRX_HIERARCHY_MOF).
inline const cimhost::ClassHierarchy& modelHierarchy() {
  static cimhost::ClassHierarchy* loaded = [] {
    auto* hierarchy = new cimhost::ClassHierarchy;
    std::string error;
    if (!hierarchy->loadMofFile(QRX_HIERARCHY_MOF, &error)) ADD_FAILURE() << error;
    return hierarchy;
  }();
  return *loaded;
}

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
  bool contains(const std::string& irText) const {
    return text().find(irText) != std::string::npos;
  }

 private:
  std::string ivPath;
};

#endif  // QRX_TESTS_SUPPORT_TESTENVIRONMENT_H_
