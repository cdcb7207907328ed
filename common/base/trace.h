// The provider library's trace log.
//
// One process-wide stream receives every diagnostic the library writes.
// There are two kinds of message: those written always (errors and a few
// notices) and those written only while the debug switch `debug_on` is set.
// The caller's format is written exactly as given: no time stamp, level or
// newline is added. Until trace_open() succeeds, output goes to standard
// error, so the log is usable before anything else is initialised.
//
// By convention error lines start "[%s, %s, %d] ERROR: " (source unit,
// function, line) and debug lines start "[%s, %d] " (function, line).
//
// trace_log(bool, ...) and trace_data() are thread-safe and serialised by
// one lock; a dump is never interleaved with another message. trace_open()
// and trace_close() take no lock and belong to start-up and shut-down.
#ifndef QRX_COMMON_BASE_TRACE_H_
#define QRX_COMMON_BASE_TRACE_H_

#include <cstdarg>
#include <string>

// The debug switch: while false, messages logged with debugOnly == true are
// dropped. Only the debug facility's SetDebugOn method changes it; it is
// read without a lock.
extern bool debug_on;

// The log file the library opens at start-up.
extern const char* const TRACE_DEFAULT_PATH;  // "/tmp/smis_provider_backend.log.3570"

// Name of the environment variable that, when set and non-empty, replaces
// TRACE_DEFAULT_PATH (so that tests and parallel runs keep private logs).
extern const char* const TRACE_PATH_ENV;  // "QRX_SMIS_TRACE_FILE"

// The path start-up opens: $QRX_SMIS_TRACE_FILE if set, else the default.
const char* trace_default_path();

// Opens `path` for appending (mode "a+", never truncated) and makes it the
// current stream; a stream opened earlier is closed. If the open fails the
// current stream becomes standard error and nothing is written.
void trace_open(const char* path);

// Closes the current stream unless it is standard error; from then on
// output goes to standard error.
void trace_close();

// The path of the log file last opened successfully; before that, the
// default path (trace_default_path()). Like trace_open(), unsynchronised:
// the path changes only at start-up.
std::string trace_file_path();

// Internal writer: formats `args` onto the current stream and flushes it.
// Takes no lock; callers hold the trace lock or run single-threaded.
void trace_log(const char* format, va_list args);

// Writes one message under the trace lock, unless `debugOnly` is true and
// debug_on is false.
void trace_log(bool debugOnly, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

// Writes a caption (format and arguments) and then a hex dump of `length`
// bytes of `data`, 16 to a line, each line "<offset %04x>[ %02x]...  <chars>".
// The dump is written one line behind, so when `length` is a non-zero
// multiple of 16 the final full line is not written; a partial last line is
// padded so that its characters line up. Filtered like trace_log().
void trace_data(bool debugOnly, const unsigned char* data, unsigned int length,
                const char* format, ...)
    __attribute__((format(printf, 4, 5)));

// The two line shapes. `unit` is the source unit's path without extension
// (e.g. "provider/CMPISerializer"); the function and line are the caller's.
#define TRACE_ERROR(unit, format, ...) \
  trace_log(false, "[%s, %s, %d] ERROR: " format, unit, __func__, __LINE__, ##__VA_ARGS__)
// The arguments are evaluated only while debug_on is set.
#define TRACE_DEBUG(format, ...)                                           \
  do {                                                                     \
    if (debug_on) trace_log(true, "[%s, %d] " format, __func__, __LINE__, ##__VA_ARGS__); \
  } while (0)

// The same shapes for provider glue, whose function field is composed of
// the provider name and the operation: `owner` "QRX_Switch_Provider" and
// `operation` "enumInstanceNames" give "[QRX_Switch_Provider_enumInstanceNames, 28] ".
#define TRACE_ERROR_AT(unit, owner, operation, format, ...)                              \
  trace_log(false, "[%s, %s_%s, %d] ERROR: " format, unit, owner, operation, __LINE__, \
            ##__VA_ARGS__)
#define TRACE_DEBUG_AT(owner, operation, format, ...)                                        \
  do {                                                                                       \
    if (debug_on)                                                                            \
      trace_log(true, "[%s_%s, %d] " format, owner, operation, __LINE__, ##__VA_ARGS__);     \
  } while (0)

#endif  // QRX_COMMON_BASE_TRACE_H_
