#include "common/base/trace.h"

#include <pthread.h>

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

bool debug_on = false;

const char* const TRACE_DEFAULT_PATH = "/tmp/smis_provider_backend.log.3570";
const char* const TRACE_PATH_ENV = "QRX_SMIS_TRACE_FILE";

namespace {

// The current output stream; null until first use or trace_open().
FILE* fd = nullptr;

// Serialises trace_log(bool, ...) and trace_data().
pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;

// Path of the log file last opened, empty before the first successful open.
char openPath[4096];

FILE* currentStream() {
  if (fd == nullptr) fd = stderr;
  return fd;
}

// Holds the trace lock with thread cancellation disabled: the stdio calls
// below are cancellation points, and a thread cancelled inside them must
// not leave the lock held for every other thread.
class TraceLock {
 public:
  TraceLock() {
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &ivOldState);
    pthread_mutex_lock(&mutex);
  }
  ~TraceLock() {
    pthread_mutex_unlock(&mutex);
    pthread_setcancelstate(ivOldState, nullptr);
  }
  TraceLock(const TraceLock&) = delete;
  TraceLock& operator=(const TraceLock&) = delete;

 private:
  int ivOldState = PTHREAD_CANCEL_ENABLE;
};

void writeLine(const char* format, ...) __attribute__((format(printf, 1, 2)));
void writeLine(const char* format, ...) {
  va_list args;
  va_start(args, format);
  trace_log(format, args);
  va_end(args);
}

// Appends to a fixed buffer with snprintf bounded by what is left of it.
class LineBuffer {
 public:
  void clear() { ivUsed = 0; ivText[0] = '\0'; }

  void append(const char* format, unsigned int value)
      __attribute__((format(printf, 2, 0))) {
    if (ivUsed >= sizeof(ivText) - 1) return;
    int n = std::snprintf(ivText + ivUsed, sizeof(ivText) - ivUsed, format, value);
    if (n > 0) {
      ivUsed += static_cast<size_t>(n);
      if (ivUsed > sizeof(ivText) - 1) ivUsed = sizeof(ivText) - 1;
    }
  }

  void appendBlanks(unsigned int count) {
    while (count-- > 0 && ivUsed < sizeof(ivText) - 1) ivText[ivUsed++] = ' ';
    ivText[ivUsed] = '\0';
  }

  const char* text() const { return ivText; }

 private:
  char ivText[100] = {0};
  size_t ivUsed = 0;
};

// Writes the hex dump of trace_data(), one line behind the bytes.
void writeDump(const unsigned char* data, unsigned int length) {
  const unsigned int kPerLine = 16;
  LineBuffer hex;
  char chars[kPerLine + 1] = {0};

  unsigned int i = 0;
  for (; i < length; ++i) {
    unsigned int column = i % kPerLine;
    if (column == 0) {
      if (i != 0) writeLine("%s  %s\n", hex.text(), chars);
      hex.clear();
      std::memset(chars, 0, sizeof(chars));
      hex.append("%04x", i);
    }
    hex.append(" %02x", data[i]);
    chars[column] = std::isprint(data[i]) ? static_cast<char>(data[i]) : '.';
  }

  unsigned int tail = i % kPerLine;
  if (tail != 0) {
    hex.appendBlanks(3 * (kPerLine - tail));
    writeLine("%s  %s\n", hex.text(), chars);
  }
  // A non-zero multiple of 16 bytes leaves its last full line unwritten:
  // that is how this log has always dumped, and readers rely on the shape.
}

}  // namespace

const char* trace_default_path() {
  const char* path = std::getenv(TRACE_PATH_ENV);
  return (path != nullptr && path[0] != '\0') ? path : TRACE_DEFAULT_PATH;
}

void trace_open(const char* path) {
  if (fd != nullptr && fd != stderr) std::fclose(fd);
  fd = (path != nullptr) ? std::fopen(path, "a+") : nullptr;
  if (fd == nullptr) {
    fd = stderr;
    return;
  }
  std::snprintf(openPath, sizeof(openPath), "%s", path);
}

void trace_close() {
  if (fd != nullptr && fd != stderr) std::fclose(fd);
  fd = stderr;
}

std::string trace_file_path() {
  return openPath[0] != '\0' ? std::string(openPath) : std::string(trace_default_path());
}

void trace_log(const char* format, va_list args) {
  FILE* stream = currentStream();
  std::vfprintf(stream, format, args);
  std::fflush(stream);
}

void trace_log(bool debugOnly, const char* format, ...) {
  // debug_on is read without the lock, so the filter needs none either:
  // the debug lines on every request path cost next to nothing while off.
  if (debugOnly && !debug_on) return;
  TraceLock lock;
  va_list args;
  va_start(args, format);
  trace_log(format, args);
  va_end(args);
}

void trace_data(bool debugOnly, const unsigned char* data, unsigned int length,
                const char* format, ...) {
  if (debugOnly && !debug_on) return;
  TraceLock lock;
  va_list args;
  va_start(args, format);
  trace_log(format, args);
  va_end(args);
  writeDump(data, length);
}
