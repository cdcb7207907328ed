// qrx-switchsim: a simulated switch daemon for the provider library. See
// README.md in this directory, or qrx-switchsim --help.
#include <signal.h>

#include <iostream>
#include <string>
#include <vector>

#include "tools/switchsim/Cli.h"

int main(int argc, char** argv) {
  // Serving waits for these with sigwait(); blocked before any thread
  // starts, so that every thread inherits the mask.
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return switchsim::runCommandLine(std::vector<std::string>(argv + 1, argv + argc), std::cout,
                                   std::cerr);
}
