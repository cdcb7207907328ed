// The qrx-cim command line: its commands, its options, and the reading of
// the words after the program name into an Invocation.
//
// The first word that is not an option names the command; the words after
// it are the command's arguments. Options may come anywhere, as "--name
// value" or "--name=value" (short ones as "-n value"); "--" ends the
// options, so that later words are arguments even if they start with '-'.
// Options that belong to certain commands (the association filters and
// the property list) are refused with other commands.
#ifndef QRX_TOOLS_CIMHOST_COMMANDLINE_H_
#define QRX_TOOLS_CIMHOST_COMMANDLINE_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tools/cimhost/Operations.h"

namespace cimhost {

// What the process returns.
enum ExitCode : int {
  kExitOk = 0,
  kExitFailed = 1,  // a provider returned a status other than CMPI_RC_OK
  kExitUsage = 2,   // the command line is wrong
  kExitLoad = 3,    // the library, a factory, a MOF file or a script could not be loaded
};

enum class Command {
  EnumerateInstances,
  EnumerateInstanceNames,
  GetInstance,
  DeleteInstance,
  CreateInstance,
  Associators,
  AssociatorNames,
  References,
  ReferenceNames,
  InvokeMethod,
  Classes,
  Subscribe,
  Run,
  Help,
};

// The options only some commands take, as bits of CommandInfo::options.
enum CommandOption : unsigned {
  kOptAssocClass = 1u << 0,
  kOptResultClass = 1u << 1,
  kOptRole = 1u << 2,
  kOptResultRole = 1u << 3,
  kOptPropertyList = 1u << 4,
  kOptSubscribe = 1u << 5,  // --count, --wait, --then
};

struct CommandInfo {
  Command command;
  const char* longName;   // "enumerate-instances"
  const char* shortName;  // "ei"; "" when there is none
  const char* arguments;  // "CLASS"
  const char* summary;    // one line
  const char* details;    // more lines, may be ""
  const char* example;    // the words after "qrx-cim "
  size_t minArguments;
  size_t maxArguments;  // SIZE_MAX: no limit
  unsigned options;     // CommandOption bits
};

// Every command, in the order help lists them.
const std::vector<CommandInfo>& commandTable();

// The command with this long or short name; NULL if there is none.
const CommandInfo* findCommand(const std::string& irName);

struct Invocation {
  const CommandInfo* command = nullptr;  // NULL only when `help` is set
  std::vector<std::string> arguments;

  std::optional<std::string> library;      // --library
  std::optional<std::string> providerDir;  // --provider-dir
  std::optional<std::string> provider;     // --provider
  std::vector<std::string> mofFiles;       // --mof, in order
  std::string nameSpace = "root/qrx";      // -n, --namespace
  AssociationFilter filter;
  std::optional<std::vector<std::string>> propertyList;
  // --all-properties: print every property the provider returned, not only
  // those of the property list (an object manager would drop the others).
  bool allProperties = false;
  // subscribe: stop after this many indications (0: wait the whole time),
  // wait at most this long, and run this shell command once the filter is
  // active.
  unsigned count = 0;
  double waitSeconds = 5;
  std::optional<std::string> thenCommand;
  bool json = false;
  bool verbose = false;
  bool help = false;  // --help, -h
};

// Reads the words after the program name into *opInvocation, which the
// caller passes default-constructed. False with *opError set to a one-line
// reason.
bool parseCommandLine(const std::vector<std::string>& irWords, Invocation* opInvocation,
                      std::string* opError);

// Reads the words of one line of a `run` script. The line starts from the
// run's namespace, --json and --verbose (`irRun`) and may change them; the
// options that choose the library or the class hierarchy apply to the
// whole run and are refused here, as is a nested `run`.
bool parseScriptCommand(const std::vector<std::string>& irWords, const Invocation& irRun,
                        Invocation* opInvocation, std::string* opError);

// The library to load: --library; else DIR/libNAME.so for --provider-dir
// DIR and --provider NAME (default qrxsmis); else `ipEnvironment` (the
// value of QRX_CIM_LIBRARY, NULL or empty when unset); else `irDefault`.
std::string libraryPath(const Invocation& irInvocation, const char* ipEnvironment,
                        const std::string& irDefault);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_COMMANDLINE_H_
