// qrx-cim: runs CIM operations from the command line against a CMPI
// provider library, with the in-process broker in place of an object
// manager. See README.md in this directory, or qrx-cim --help.
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "tools/cimhost/CommandLine.h"
#include "tools/cimhost/Commands.h"
#include "tools/cimhost/HelpText.h"
#include "tools/cimhost/Operations.h"
#include "tools/cimhost/ProviderLibrary.h"
#include "tools/cimhost/ScriptRun.h"
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
  std::string text;
  std::string error;
  if (!helpFor(irInvocation, &text, &error)) return usageError(error, nullptr);
  std::cout << text;
  return kExitOk;
}

// Opens the script of run into *opFile; "-" is standard input. NULL with
// *opError set when it cannot be read.
std::istream* openScript(const std::string& irName, std::ifstream* opFile, std::string* opError) {
  if (irName == "-") return &std::cin;
  struct stat info;
  if (stat(irName.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) {
    *opError = "cannot read script " + irName + ": it is a directory";
    return nullptr;
  }
  opFile->open(irName);
  if (!*opFile) {
    *opError = "cannot read script " + irName + ": " + std::strerror(errno);
    return nullptr;
  }
  return opFile;
}

// `ipInstalled` (relative to the directory of this program) when that file
// exists, as in an installed tree; else `ipBuild`, the build tree's file.
std::string defaultFile(const char* ipInstalled, const char* ipBuild) {
  char exe[4096];
  const ssize_t length = readlink("/proc/self/exe", exe, sizeof exe - 1);
  if (length <= 0) return ipBuild;
  std::string path(exe, static_cast<size_t>(length));
  path = path.substr(0, path.rfind('/') + 1) + ipInstalled;
  struct stat info;
  return stat(path.c_str(), &info) == 0 ? path : ipBuild;
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

  std::ifstream scriptFile;
  std::istream* script = nullptr;
  if (invocation.command->command == Command::Run) {
    script = openScript(invocation.arguments[0], &scriptFile, &error);
    if (!script) {
      std::cerr << "qrx-cim: " << error << "\n";
      return kExitLoad;
    }
  }

  ClassHierarchy hierarchy;
  std::vector<std::string> mofFiles = invocation.mofFiles;
  if (mofFiles.empty()) {
    mofFiles = {defaultFile(QRX_CIM_INSTALLED_HIERARCHY_MOF, QRX_CIM_HIERARCHY_MOF),
                defaultFile(QRX_CIM_INSTALLED_VENDOR_MOF, QRX_CIM_VENDOR_MOF)};
  }
  for (const std::string& file : mofFiles) {
    if (!hierarchy.loadMofFile(file, &error)) {
      std::cerr << "qrx-cim: cannot read the class hierarchy: " << error << "\n";
      return kExitLoad;
    }
  }

  TestBroker broker(&hierarchy);
  broker.setLogToStderr(invocation.verbose);
  Request request;
  if (!script && !buildRequest(broker, invocation, &request, &error)) {
    return usageError(error, invocation.command);
  }

  std::ostream* trace = invocation.verbose ? &std::cerr : nullptr;
  ProviderLibrary library(broker, trace);
  const std::string path =
      libraryPath(invocation, std::getenv("QRX_CIM_LIBRARY"),
                  defaultFile(QRX_CIM_INSTALLED_LIBRARY, QRX_CIM_DEFAULT_LIBRARY));
  if (trace) *trace << "qrx-cim: loading " << path << "\n";
  if (!library.open(path, &error)) {
    std::cerr << "qrx-cim: " << error << "\n";
    return kExitLoad;
  }
  Session session{broker, library, trace};
  const int code = script ? runScript(*script, invocation, session, std::cout, std::cerr)
                          : runRequest(invocation, request, session, std::cout, std::cerr);
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
