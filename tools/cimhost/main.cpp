// qrx-cim: runs CIM operations from the command line against a CMPI
// provider library, with the in-process broker in place of an object
// manager. See README.md in this directory, or qrx-cim --help.
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "tools/cimhost/CommandLine.h"
#include "tools/cimhost/Commands.h"
#include "tools/cimhost/HelpText.h"
#include "tools/cimhost/Operations.h"
#include "tools/cimhost/ProviderLibrary.h"
#include "tools/cimhost/broker/ClassHierarchy.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace {

using namespace cimhost;

int usageError(const std::string& irReason, const CommandInfo* ipCommand) {
  std::cerr << "qrx-cim: " << irReason << "\n" << usageHint(ipCommand) << "\n";
  return kExitUsage;
}

// --help, -h and the help command.
int showHelp(const Invocation& irInvocation) {
  const CommandInfo* topic = irInvocation.command;
  if (topic && topic->command == Command::Help) {
    topic = nullptr;
    if (!irInvocation.arguments.empty()) {
      topic = findCommand(irInvocation.arguments[0]);
      if (!topic) return usageError("unknown command '" + irInvocation.arguments[0] + "'", nullptr);
    }
  }
  std::cout << (topic ? commandHelp(*topic) : usageText());
  return kExitOk;
}

int run(const std::vector<std::string>& irWords) {
  Invocation invocation;
  std::string error;
  if (!parseCommandLine(irWords, &invocation, &error)) {
    return usageError(error, invocation.command);
  }
  if (invocation.help || invocation.command->command == Command::Help) {
    return showHelp(invocation);
  }

  ClassHierarchy hierarchy;
  std::vector<std::string> mofFiles = invocation.mofFiles;
  if (mofFiles.empty()) mofFiles = {QRX_CIM_HIERARCHY_MOF, QRX_CIM_VENDOR_MOF};
  for (const std::string& file : mofFiles) {
    if (!hierarchy.loadMofFile(file, &error)) {
      std::cerr << "qrx-cim: cannot read the class hierarchy: " << error << "\n";
      return kExitLoad;
    }
  }

  TestBroker broker(&hierarchy);
  broker.setLogToStderr(invocation.verbose);
  Request request;
  if (!buildRequest(broker, invocation, &request, &error)) {
    return usageError(error, invocation.command);
  }

  std::ostream* trace = invocation.verbose ? &std::cerr : nullptr;
  ProviderLibrary library(broker, trace);
  const std::string path =
      libraryPath(invocation, std::getenv("QRX_CIM_LIBRARY"), QRX_CIM_DEFAULT_LIBRARY);
  if (trace) *trace << "qrx-cim: loading " << path << "\n";
  if (!library.open(path, &error)) {
    std::cerr << "qrx-cim: " << error << "\n";
    return kExitLoad;
  }
  Session session{broker, library, trace};
  const int code = runRequest(invocation, request, session, std::cout, std::cerr);
  std::cout.flush();
  for (const std::string& failure : library.cleanup()) {
    std::cerr << "qrx-cim: warning: " << failure << "\n";
  }
  return code;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(std::vector<std::string>(argv + 1, argv + argc));
  } catch (const std::exception& e) {
    std::cerr << "qrx-cim: internal error: " << e.what() << "\n";
  } catch (...) {
    std::cerr << "qrx-cim: internal error\n";
  }
  return kExitFailed;
}
