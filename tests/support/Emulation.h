// Test runs of a cross build under a user-mode emulator. ctest gives every
// test of such a build QRX_TEST_EMULATOR, the emulator's command line (for
// example "/usr/bin/qemu-ppc -L /usr/powerpc-linux-gnu"): tests start the
// build's programs through it, since the host cannot execute them itself,
// and skip what the emulator cannot do. Unset or empty on a native run.
#ifndef QRX_TESTS_SUPPORT_EMULATION_H_
#define QRX_TESTS_SUPPORT_EMULATION_H_

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>

namespace qrx_test {

// The emulator's command line, or "" on a native run.
inline std::string testEmulator() {
  const char* command = std::getenv("QRX_TEST_EMULATOR");
  return command ? command : "";
}

// The emulator's command line as words (none on a native run).
inline std::vector<std::string> testEmulatorWords() {
  std::istringstream in(testEmulator());
  std::vector<std::string> words;
  for (std::string word; in >> word;) words.push_back(word);
  return words;
}

// The death test style for statements that start threads: "threadsafe",
// whose child executes the test program anew, natively; under the emulator,
// through which alone that program can be executed, "fast", whose child is
// only forked (safe, as ctest runs every case in a process of its own, so
// the test process has one thread when it forks).
inline const char* threadsafeDeathTestStyle() {
  return testEmulator().empty() ? "threadsafe" : "fast";
}

// Why the thread-cancellation tests do not run under the emulator:
// qemu-user (7.2) cannot cancel a target thread that is blocked in a system
// call; the cancellation signal ends the whole process instead.
constexpr char kEmulatorCannotCancelBlockedThreads[] =
    "the emulator cannot cancel a thread blocked in a system call";

}  // namespace qrx_test

#endif  // QRX_TESTS_SUPPORT_EMULATION_H_
