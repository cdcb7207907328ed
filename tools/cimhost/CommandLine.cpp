#include "tools/cimhost/CommandLine.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "tools/cimhost/PathText.h"

namespace cimhost {

namespace {

constexpr unsigned kAssociatorOptions =
    kOptAssocClass | kOptResultClass | kOptRole | kOptResultRole;

const char kRunDetails[] =
    "\n"
    "FILE is read line by line, \"-\" standard input. Each line runs as soon as\n"
    "it is read, all in one process: the library is loaded once, each provider\n"
    "is obtained once, and every provider is cleaned up when the script ends.\n"
    "A line is one of\n"
    "  COMMAND [ARGUMENTS...]  a qrx-cim command with its options, as on the\n"
    "                          command line; its output is what it prints alone\n"
    "  ! SHELL-COMMAND         runs with /bin/sh -c, standard input /dev/null; a\n"
    "                          non-zero exit status is reported, the script goes on\n"
    "  sleep SECONDS           pauses, e.g. sleep 0.5 (at most 86400 seconds)\n"
    "  echo [WORDS...]         prints the words, separated by single spaces\n"
    "  # ...                   a comment; blank lines are skipped as well\n"
    "Words split as in the shell: '...' keeps its text as it is, \"...\" too but\n"
    "for \\\" \\\\ \\$ \\`, and a backslash outside quotes keeps the next character.\n"
    "There are no variables, wildcards or comments after a command.\n"
    "\n"
    "The options given to qrx-cim itself (--library, --provider-dir, --provider,\n"
    "--mof, -n, --json, -v) apply to every line. A line may add -n, --json, -v\n"
    "and its command's options; it cannot change the library or the MOF files.\n"
    "\n"
    "A failing line prints its error and the script goes on; errors found before\n"
    "a provider is called start with \"qrx-cim: line N:\". The exit status is 0\n"
    "when every line succeeded, else that of the last line that failed: the\n"
    "command's, 1 for a failed shell command, 2 for a line that cannot be read.\n";

const std::vector<CommandInfo> kCommands = {
    {Command::EnumerateInstances, "enumerate-instances", "ei", "CLASS",
     "Lists the instances of a class.",
     "CLASS may carry a namespace (root/qrx:QRX_Switch) but no keys.\n",
     "ei QRX_Switch --property-list Name,ElementName", 1, 1, kOptPropertyList},
    {Command::EnumerateInstanceNames, "enumerate-instance-names", "ein", "CLASS",
     "Lists the object paths of the instances of a class, one per line.", "",
     "ein QRX_Zone", 1, 1, 0},
    {Command::GetInstance, "get-instance", "gi", "PATH", "Shows one instance.", "",
     "gi 'QRX_Fabric.CreationClassName=\"QRX_Fabric\",Name=\"100000051E000001\"'", 1, 1,
     kOptPropertyList},
    {Command::DeleteInstance, "delete-instance", "di", "PATH",
     "Deletes an instance; prints nothing on success.", "",
     "di 'QRX_Zone.InstanceID=\"zone1\"'", 1, 1, 0},
    {Command::CreateInstance, "create-instance", "ci", "CLASS NAME[:TYPE]=VALUE...",
     "Creates an instance with the given properties and prints its new path.",
     "Properties that are keys of CLASS also become keys of the path handed to the\n"
     "provider.\n",
     "ci QRX_ZoneSet InstanceID=zs1 ElementName=night Active:boolean=false", 1, SIZE_MAX, 0},
    {Command::Associators, "associators", "a", "PATH",
     "Shows the instances associated with the instance PATH names.",
     "Without --assoc-class every association provider with a reference to PATH's\n"
     "class is asked, in class-name order.\n",
     "a 'QRX_Fabric.CreationClassName=\"QRX_Fabric\",Name=\"f1\"' --assoc-class "
     "QRX_SwitchInFabric",
     1, 1, kAssociatorOptions | kOptPropertyList},
    {Command::AssociatorNames, "associator-names", "an", "PATH",
     "Lists the paths of the instances associated with PATH.",
     "Without --assoc-class every association provider with a reference to PATH's\n"
     "class is asked, in class-name order.\n",
     "an 'QRX_Zone.InstanceID=\"zone1\"' --result-class QRX_ZoneAlias", 1, 1,
     kAssociatorOptions},
    {Command::References, "references", "r", "PATH",
     "Shows the association instances that refer to PATH.",
     "--result-class names the association class to ask; without it every\n"
     "association provider with a reference to PATH's class is asked.\n",
     "r 'QRX_Zone.InstanceID=\"zone1\"' --result-class QRX_ZoneInZoneSet", 1, 1,
     kOptResultClass | kOptRole | kOptPropertyList},
    {Command::ReferenceNames, "reference-names", "rn", "PATH",
     "Lists the paths of the association instances that refer to PATH.",
     "--result-class names the association class to ask; without it every\n"
     "association provider with a reference to PATH's class is asked.\n",
     "rn 'QRX_Zone.InstanceID=\"zone1\"' --role Member", 1, 1, kOptResultClass | kOptRole},
    {Command::InvokeMethod, "invoke-method", "im", "PATH METHOD [NAME[:TYPE]=VALUE...]",
     "Calls a method and prints its return value and output arguments.",
     "PATH is an instance path, or a class name for a static method.\n",
     "im 'QRX_DebugFacility.InstanceID=\"debug\"' SetDebugOn DebugOn:boolean=true", 2,
     SIZE_MAX, 0},
    {Command::Classes, "classes", "", "",
     "Lists the classes the library serves and the kinds of provider each has.",
     "Only classes the loaded MOF declares are looked for.\n", "classes", 0, 0, 0},
    {Command::Subscribe, "subscribe", "sub", "QUERY",
     "Activates a filter with a CQL query, enables delivery and prints the indications.",
     "The indication class is the query's FROM class; its indication provider gets\n"
     "the filter (activateFilter) and enableIndications. qrx-cim then waits\n"
     "--wait SECONDS (default 5) or until --count N indications were delivered,\n"
     "disables delivery, deactivates the filter and prints each indication.\n"
     "--then COMMAND runs a shell command once delivery is enabled. The status is\n"
     "1 when fewer than --count indications came.\n",
     "sub 'SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_FCPort' "
     "--count 1 --then 'qrx-switchsim event port-state 5 offline'",
     1, 1, kOptSubscribe},
    {Command::Run, "run", "", "FILE",
     "Runs a script of commands, one per line, with the library loaded once.",
     kRunDetails, "run demo.txt", 1, 1, 0},
    {Command::Help, "help", "", "[COMMAND]", "Shows this help, or a command's help.", "",
     "help invoke-method", 0, 1, 0},
};

// An option of the command line.
enum class Option {
  Library,
  ProviderDir,
  Provider,
  Mof,
  NameSpace,
  AssocClass,
  ResultClass,
  Role,
  ResultRole,
  PropertyList,
  AllProperties,
  Count,
  Wait,
  Then,
  Json,
  Verbose,
  Help,
};

struct OptionInfo {
  Option option;
  const char* name;   // "--library"
  const char* alias;  // "-n", "--ac"; "" when there is none
  bool takesValue;
  unsigned commandBit;  // CommandOption bit; 0 for options every command takes
  bool wholeRun;        // chooses what a `run` script shares: not on its lines
};

const OptionInfo kOptions[] = {
    {Option::Library, "--library", "", true, 0, true},
    {Option::ProviderDir, "--provider-dir", "", true, 0, true},
    {Option::Provider, "--provider", "", true, 0, true},
    {Option::Mof, "--mof", "", true, 0, true},
    {Option::NameSpace, "--namespace", "-n", true, 0, false},
    {Option::AssocClass, "--assoc-class", "--ac", true, kOptAssocClass, false},
    {Option::ResultClass, "--result-class", "--rc", true, kOptResultClass, false},
    {Option::Role, "--role", "", true, kOptRole, false},
    {Option::ResultRole, "--result-role", "--rr", true, kOptResultRole, false},
    {Option::PropertyList, "--property-list", "--pl", true, kOptPropertyList, false},
    {Option::AllProperties, "--all-properties", "", false, kOptPropertyList, false},
    {Option::Count, "--count", "", true, kOptSubscribe, false},
    {Option::Wait, "--wait", "", true, kOptSubscribe, false},
    {Option::Then, "--then", "", true, kOptSubscribe, false},
    {Option::Json, "--json", "", false, 0, false},
    {Option::Verbose, "--verbose", "-v", false, 0, false},
    {Option::Help, "--help", "-h", false, 0, false},
};

const OptionInfo* findOption(const std::string& irName) {
  for (const OptionInfo& info : kOptions) {
    if (irName == info.name || irName == info.alias) return &info;
  }
  return nullptr;
}

// Stores a single-valued option; a second one is an error.
bool setOnce(std::optional<std::string>* opSlot, const std::string& irValue, const char* ipName,
             std::string* opError) {
  if (*opSlot) {
    *opError = std::string(ipName) + " given twice";
    return false;
  }
  *opSlot = irValue;
  return true;
}

bool setClassOption(std::optional<std::string>* opSlot, const std::string& irValue,
                    const char* ipName, std::string* opError) {
  if (!isCimName(irValue)) {
    *opError = std::string(ipName) + " needs a class or property name, not '" + irValue + "'";
    return false;
  }
  return setOnce(opSlot, irValue, ipName, opError);
}

bool applyOption(const OptionInfo& irInfo, const std::string& irValue, Invocation* opInv,
                 std::string* opError) {
  switch (irInfo.option) {
    case Option::Library: return setOnce(&opInv->library, irValue, irInfo.name, opError);
    case Option::ProviderDir: return setOnce(&opInv->providerDir, irValue, irInfo.name, opError);
    case Option::Provider:
      if (irValue.empty() || irValue.find('/') != std::string::npos) {
        *opError = "--provider needs a library name such as qrxsmis, not '" + irValue + "'";
        return false;
      }
      return setOnce(&opInv->provider, irValue, irInfo.name, opError);
    case Option::Mof: opInv->mofFiles.push_back(irValue); return true;
    case Option::NameSpace:
      if (irValue.empty() || irValue.find_first_of(":.\"") != std::string::npos) {
        *opError = "bad namespace '" + irValue + "'";
        return false;
      }
      opInv->nameSpace = irValue;
      return true;
    case Option::AssocClass:
      return setClassOption(&opInv->filter.assocClass, irValue, irInfo.name, opError);
    case Option::ResultClass:
      return setClassOption(&opInv->filter.resultClass, irValue, irInfo.name, opError);
    case Option::Role: return setClassOption(&opInv->filter.role, irValue, irInfo.name, opError);
    case Option::ResultRole:
      return setClassOption(&opInv->filter.resultRole, irValue, irInfo.name, opError);
    case Option::PropertyList: {
      if (opInv->propertyList) {
        *opError = "--property-list given twice";
        return false;
      }
      std::vector<std::string> names;
      for (size_t start = 0; !irValue.empty() && start <= irValue.size();) {
        const size_t comma = std::min(irValue.find(',', start), irValue.size());
        names.push_back(irValue.substr(start, comma - start));
        if (!isCimName(names.back())) {
          *opError = "bad property name '" + names.back() + "' in --property-list";
          return false;
        }
        start = comma + 1;
      }
      opInv->propertyList = std::move(names);
      return true;
    }
    case Option::AllProperties: opInv->allProperties = true; return true;
    case Option::Count: {
      char* end = nullptr;
      const unsigned long count = std::strtoul(irValue.c_str(), &end, 10);
      if (irValue.empty() || *end != '\0' || irValue[0] == '-' || count > 1000000) {
        *opError = "--count needs a number from 0 to 1000000, not '" + irValue + "'";
        return false;
      }
      opInv->count = static_cast<unsigned>(count);
      return true;
    }
    case Option::Wait: {
      char* end = nullptr;
      const double seconds = std::strtod(irValue.c_str(), &end);
      if (irValue.empty() || *end != '\0' || !(seconds >= 0 && seconds <= 86400)) {
        *opError = "--wait needs seconds from 0 to 86400, not '" + irValue + "'";
        return false;
      }
      opInv->waitSeconds = seconds;
      return true;
    }
    case Option::Then: return setOnce(&opInv->thenCommand, irValue, irInfo.name, opError);
    case Option::Json: opInv->json = true; return true;
    case Option::Verbose: opInv->verbose = true; return true;
    case Option::Help: opInv->help = true; return true;
  }
  return false;
}

// Checks the parsed words against the command they name.
bool checkCommand(const std::vector<std::string>& irPositional, unsigned ipUsedOptions,
                  Invocation* opInv, std::string* opError) {
  if (irPositional.empty()) {
    if (opInv->help) return true;
    *opError = "no command given";
    return false;
  }
  opInv->command = findCommand(irPositional[0]);
  if (!opInv->command) {
    *opError = "unknown command '" + irPositional[0] + "'";
    return false;
  }
  const CommandInfo& info = *opInv->command;
  opInv->arguments.assign(irPositional.begin() + 1, irPositional.end());
  if (opInv->help) return true;
  const size_t count = opInv->arguments.size();
  if (count < info.minArguments) {
    *opError = std::string(info.longName) + " needs " + info.arguments;
    return false;
  }
  if (count > info.maxArguments) {
    *opError = std::string("too many arguments for ") + info.longName + ": '" +
               opInv->arguments[info.maxArguments] + "'";
    return false;
  }
  for (const OptionInfo& option : kOptions) {
    if ((option.commandBit & ipUsedOptions) && !(option.commandBit & info.options)) {
      *opError = std::string(option.name) + " does not apply to " + info.longName;
      return false;
    }
  }
  if (opInv->library && opInv->providerDir) {
    *opError = "--library and --provider-dir exclude each other";
    return false;
  }
  if (opInv->provider && !opInv->providerDir) {
    *opError = "--provider needs --provider-dir";
    return false;
  }
  return true;
}

// Reads the words; on a script line the whole-run options are refused.
bool parseWords(const std::vector<std::string>& irWords, bool ipScriptLine,
                Invocation* opInvocation, std::string* opError) {
  std::vector<std::string> positional;
  unsigned usedOptions = 0;
  bool optionsEnded = false;
  for (size_t i = 0; i < irWords.size(); ++i) {
    const std::string& word = irWords[i];
    if (optionsEnded || word.size() < 2 || word[0] != '-') {
      positional.push_back(word);
      continue;
    }
    if (word == "--") {
      optionsEnded = true;
      continue;
    }
    const size_t eq = word.compare(0, 2, "--") == 0 ? word.find('=') : std::string::npos;
    const std::string name = word.substr(0, eq);
    const OptionInfo* info = findOption(name);
    if (!info) {
      *opError = "unknown option '" + name + "'";
      return false;
    }
    if (ipScriptLine && info->wholeRun) {
      *opError = std::string(info->name) + " applies to the whole run, not to one line";
      return false;
    }
    std::string value;
    if (!info->takesValue) {
      if (eq != std::string::npos) {
        *opError = std::string(info->name) + " takes no value";
        return false;
      }
    } else if (eq != std::string::npos) {
      value = word.substr(eq + 1);
    } else if (i + 1 < irWords.size()) {
      value = irWords[++i];
    } else {
      *opError = std::string(info->name) + " needs a value";
      return false;
    }
    if (!applyOption(*info, value, opInvocation, opError)) return false;
    usedOptions |= info->commandBit;
  }
  return checkCommand(positional, usedOptions, opInvocation, opError);
}

}  // namespace

const std::vector<CommandInfo>& commandTable() { return kCommands; }

const CommandInfo* findCommand(const std::string& irName) {
  if (irName.empty()) return nullptr;
  for (const CommandInfo& info : kCommands) {
    if (irName == info.longName || irName == info.shortName) return &info;
  }
  return nullptr;
}

bool parseCommandLine(const std::vector<std::string>& irWords, Invocation* opInvocation,
                      std::string* opError) {
  return parseWords(irWords, false, opInvocation, opError);
}

bool parseScriptCommand(const std::vector<std::string>& irWords, const Invocation& irRun,
                        Invocation* opInvocation, std::string* opError) {
  *opInvocation = Invocation();
  opInvocation->nameSpace = irRun.nameSpace;
  opInvocation->json = irRun.json;
  opInvocation->verbose = irRun.verbose;
  if (!parseWords(irWords, true, opInvocation, opError)) return false;
  if (!opInvocation->help && opInvocation->command->command == Command::Run) {
    *opError = "run cannot be used inside a script";
    return false;
  }
  return true;
}

std::string libraryPath(const Invocation& irInvocation, const char* ipEnvironment,
                        const std::string& irDefault) {
  if (irInvocation.library) return *irInvocation.library;
  if (irInvocation.providerDir) {
    std::string dir = *irInvocation.providerDir;
    if (!dir.empty() && dir.back() != '/') dir += '/';
    return dir + "lib" + irInvocation.provider.value_or("qrxsmis") + ".so";
  }
  if (ipEnvironment && *ipEnvironment) return ipEnvironment;
  return irDefault;
}

}  // namespace cimhost
