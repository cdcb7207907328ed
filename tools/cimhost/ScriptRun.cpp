#include "tools/cimhost/ScriptRun.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "tools/cimhost/Commands.h"
#include "tools/cimhost/HelpText.h"
#include "tools/cimhost/Script.h"

extern char** environ;

namespace cimhost {

namespace {

int lineError(std::ostream& irErr, size_t ipNumber, const std::string& irReason) {
  irErr << "qrx-cim: line " << ipNumber << ": " << irReason << "\n";
  return kExitUsage;
}

// Runs `irCommand` with /bin/sh -c and waits for it. False with
// *opFailure set when it cannot start or does not exit with status 0.
bool runShell(const std::string& irCommand, std::string* opFailure) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  std::string shell = "/bin/sh";
  std::string flag = "-c";
  std::string command = irCommand;
  char* argv[] = {shell.data(), flag.data(), command.data(), nullptr};
  pid_t pid = -1;
  const int spawned = posix_spawn(&pid, argv[0], &actions, nullptr, argv, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) {
    *opFailure = std::string("cannot start /bin/sh: ") + std::strerror(spawned);
    return false;
  }
  int status = 0;
  while (waitpid(pid, &status, 0) < 0) {
    if (errno != EINTR) {
      *opFailure = std::string("cannot wait for the shell command: ") + std::strerror(errno);
      return false;
    }
  }
  if (WIFEXITED(status) && WEXITSTATUS(status) == 0) return true;
  *opFailure = WIFEXITED(status)
                   ? "shell command exited with status " + std::to_string(WEXITSTATUS(status))
                   : "shell command ended by signal " + std::to_string(WTERMSIG(status));
  return false;
}

int runCommand(const std::vector<std::string>& irWords, size_t ipNumber, const Invocation& irRun,
               Session& irSession, std::ostream& irOut, std::ostream& irErr) {
  Invocation invocation;
  std::string error;
  if (!parseScriptCommand(irWords, irRun, &invocation, &error)) {
    return lineError(irErr, ipNumber, error);
  }
  if (invocation.help || invocation.command->command == Command::Help) {
    std::string text;
    if (!helpFor(invocation, &text, &error)) return lineError(irErr, ipNumber, error);
    irOut << text;
    return kExitOk;
  }
  TestBroker& broker = irSession.broker;
  Request request;
  if (!buildRequest(broker, invocation, &request, &error)) {
    return lineError(irErr, ipNumber, error);
  }
  broker.setLogToStderr(invocation.verbose);
  Session session{broker, irSession.library, invocation.verbose ? &irErr : nullptr};
  const int code = runRequest(invocation, request, session, irOut, irErr);
  broker.setLogToStderr(irRun.verbose);
  return code;
}

int runLine(const ScriptLine& irLine, size_t ipNumber, const Invocation& irRun,
            Session& irSession, std::ostream& irOut, std::ostream& irErr) {
  switch (irLine.kind) {
    case ScriptLine::Kind::Skip: return kExitOk;
    case ScriptLine::Kind::Command:
      return runCommand(irLine.words, ipNumber, irRun, irSession, irOut, irErr);
    case ScriptLine::Kind::Echo: irOut << irLine.text << "\n"; return kExitOk;
    case ScriptLine::Kind::Sleep:
      std::this_thread::sleep_for(std::chrono::duration<double>(irLine.seconds));
      return kExitOk;
    case ScriptLine::Kind::Shell: {
      std::string failure;
      if (runShell(irLine.text, &failure)) return kExitOk;
      irErr << "qrx-cim: line " << ipNumber << ": " << failure << "\n";
      return kExitFailed;
    }
  }
  return kExitOk;
}

}  // namespace

int runScript(std::istream& irIn, const Invocation& irRun, Session& irSession,
              std::ostream& irOut, std::ostream& irErr) {
  int status = kExitOk;
  size_t number = 0;
  for (std::string text; std::getline(irIn, text);) {
    ++number;
    if (!text.empty() && text.back() == '\r') text.pop_back();
    ScriptLine line;
    std::string error;
    int code = kExitOk;
    if (!parseScriptLine(text, &line, &error)) {
      code = lineError(irErr, number, error);
    } else {
      if (irRun.verbose && line.kind != ScriptLine::Kind::Skip) {
        irErr << "qrx-cim: line " << number << ": " << text << "\n";
      }
      // The shell command writes straight to the descriptors: what came
      // before it must be out first.
      if (line.kind == ScriptLine::Kind::Shell) {
        irOut.flush();
        irErr.flush();
      }
      code = runLine(line, number, irRun, irSession, irOut, irErr);
    }
    irOut.flush();
    // Nothing reads what the providers logged or delivered; a long run
    // should not keep it.
    irSession.broker.clearLog();
    irSession.broker.clearIndications();
    if (code != kExitOk) status = code;
  }
  if (irIn.bad()) {
    irErr << "qrx-cim: cannot read the script after line " << number << "\n";
    return kExitLoad;
  }
  return status;
}

}  // namespace cimhost
