#include "tests/cimhost/RunTool.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "tests/support/Emulation.h"

extern char** environ;

namespace cimhost_test {

namespace {

// This process's environment with `irEnv` applied, as "NAME=value" texts.
std::vector<std::string> childEnvironment(const std::map<std::string, std::string>& irEnv) {
  std::vector<std::string> out;
  for (char** entry = environ; *entry; ++entry) {
    const std::string text = *entry;
    if (irEnv.count(text.substr(0, text.find('='))) == 0) out.push_back(text);
  }
  for (const auto& entry : irEnv) {
    if (!entry.second.empty()) out.push_back(entry.first + "=" + entry.second);
  }
  return out;
}

std::vector<char*> pointers(std::vector<std::string>& irTexts) {
  std::vector<char*> out;
  for (std::string& text : irTexts) out.push_back(text.data());
  out.push_back(nullptr);
  return out;
}

// Reads both pipes until the child closes them.
void drain(int ipOut, int ipErr, ToolRun* opRun) {
  struct pollfd fds[2] = {{ipOut, POLLIN, 0}, {ipErr, POLLIN, 0}};
  std::string* sinks[2] = {&opRun->out, &opRun->err};
  int open = 2;
  while (open > 0) {
    if (poll(fds, 2, -1) < 0) {
      if (errno == EINTR) continue;
      break;
    }
    for (int i = 0; i < 2; ++i) {
      if (fds[i].fd < 0 || fds[i].revents == 0) continue;
      char buf[4096];
      const ssize_t n = read(fds[i].fd, buf, sizeof(buf));
      if (n > 0) {
        sinks[i]->append(buf, static_cast<size_t>(n));
      } else if (n == 0 || errno != EINTR) {
        close(fds[i].fd);
        fds[i].fd = -1;
        --open;
      }
    }
  }
}

}  // namespace

ToolRun runCommand(const std::vector<std::string>& irCommand,
                   const std::map<std::string, std::string>& irEnv) {
  ToolRun run;
  if (irCommand.empty()) {
    run.exitCode = 127;
    run.err = "no program to start";
    return run;
  }
  int outPipe[2];
  int errPipe[2];
  if (pipe2(outPipe, O_CLOEXEC) != 0 || pipe2(errPipe, O_CLOEXEC) != 0) {
    run.exitCode = 127;
    run.err = std::string("pipe: ") + std::strerror(errno);
    return run;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, outPipe[1], 1);
  posix_spawn_file_actions_adddup2(&actions, errPipe[1], 2);

  std::vector<std::string> argTexts = irCommand;
  std::vector<std::string> envTexts = childEnvironment(irEnv);
  std::vector<char*> argv = pointers(argTexts);
  std::vector<char*> envp = pointers(envTexts);

  pid_t pid = -1;
  const int spawned =
      posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  close(outPipe[1]);
  close(errPipe[1]);
  if (spawned != 0) {
    close(outPipe[0]);
    close(errPipe[0]);
    run.exitCode = 127;
    run.err = "cannot start " + irCommand[0] + ": " + std::strerror(spawned);
    return run;
  }
  drain(outPipe[0], errPipe[0], &run);
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status)) run.exitCode = WEXITSTATUS(status);
  if (WIFSIGNALED(status)) run.exitCode = 128 + WTERMSIG(status);
  return run;
}

ToolRun runProgram(const std::string& irProgram, const std::vector<std::string>& irArgs,
                   const std::map<std::string, std::string>& irEnv) {
  std::vector<std::string> command{irProgram};
  command.insert(command.end(), irArgs.begin(), irArgs.end());
  return runCommand(command, irEnv);
}

std::vector<std::string> builtProgramCommand(const std::string& irProgram) {
  std::vector<std::string> command = qrx_test::testEmulatorWords();
  command.push_back(irProgram);
  return command;
}

ToolRun runBuiltProgram(const std::string& irProgram, const std::vector<std::string>& irArgs,
                        const std::map<std::string, std::string>& irEnv) {
  std::vector<std::string> command = builtProgramCommand(irProgram);
  command.insert(command.end(), irArgs.begin(), irArgs.end());
  return runCommand(command, irEnv);
}

const char* qrxCimPath() { return QRX_CIM_TOOL; }

ToolRun runQrxCim(const std::vector<std::string>& irArgs,
                  const std::map<std::string, std::string>& irEnv) {
  return runBuiltProgram(QRX_CIM_TOOL, irArgs, irEnv);
}

}  // namespace cimhost_test
