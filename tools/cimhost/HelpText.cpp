#include "tools/cimhost/HelpText.h"

namespace cimhost {

namespace {

const char kIntro[] =
    "Usage: qrx-cim [OPTIONS] COMMAND [ARGUMENTS...]\n"
    "       qrx-cim [OPTIONS] run FILE\n"
    "\n"
    "Runs CIM operations against a CMPI provider library without an object\n"
    "manager: the library is loaded with dlopen, its provider factories are called\n"
    "with an in-process broker, and what the providers return is printed. run\n"
    "keeps the library loaded for a script of commands.\n";

const char kOptionsText[] =
    "Options (anywhere on the line; \"--\" ends them):\n"
    "  --library PATH         the provider library to load\n"
    "  --provider-dir DIR     load DIR/libNAME.so, as an object manager does ...\n"
    "  --provider NAME        ... with NAME given here (default qrxsmis)\n"
    "                         Without either, $QRX_CIM_LIBRARY, else the library\n"
    "                         this build made.\n"
    "  --mof FILE             read the class hierarchy from FILE (repeatable);\n"
    "                         replaces the build's hierarchy and vendor MOF files\n"
    "  -n, --namespace NS     namespace of paths that name none (default root/qrx)\n"
    "  --assoc-class, --ac C  associators, associator-names: the association class\n"
    "  --result-class, --rc C the result class (for references and reference-names:\n"
    "                         the association class to ask)\n"
    "  --role R               the role of the source object\n"
    "  --result-role, --rr R  associators, associator-names: the role of the result\n"
    "  --property-list, --pl A,B\n"
    "                         ei, gi, a, r: the properties wanted (\"\" for none).\n"
    "                         The list goes to the provider as it is, and only\n"
    "                         these properties are printed, as a client of an\n"
    "                         object manager would get them (libqrxsmis itself\n"
    "                         returns every property whatever the list)\n"
    "  --all-properties       ei, gi, a, r: print every property the provider\n"
    "                         returned, whatever the property list\n"
    "  --json                 print JSON instead of MOF-like text\n"
    "  -v, --verbose          show the broker's log and each provider call on stderr\n"
    "  -h, --help             show help (with a command: the command's help)\n";

const char kSyntaxText[] =
    "Object paths:  [//HOST/][NAMESPACE:]CLASS[.KEY=VALUE,...]\n"
    "  VALUE is a double-quoted string (escapes \\\" \\\\ \\n \\t \\r), an integer,\n"
    "  true/false, or for a reference key a quoted object path. Keys get the\n"
    "  types the MOF declares. Quote the whole path for the shell:\n"
    "    'QRX_ZoneInZoneSet.Collection=\"QRX_ZoneSet.InstanceID=\\\"zs1\\\"\",...'\n"
    "\n"
    "Typed values (create-instance properties, method arguments):\n"
    "  NAME=VALUE             a string\n"
    "  NAME:TYPE=VALUE        TYPE: boolean, uint8, uint16, uint32, uint64, sint8,\n"
    "                         sint16, sint32, sint64, real32, real64, string,\n"
    "                         datetime (25-character CIM text), char16, ref (an\n"
    "                         object path)\n"
    "  NAME:TYPE[]=A,B,...    an array; \"...\" around an element allows commas and\n"
    "                         \\\" in it; NAME:TYPE[]= is an empty array\n"
    "\n"
    "Exit status: 0 success, 1 the provider returned an error status, 2 usage\n"
    "error, 3 the library, a provider factory, a MOF file or run's script could\n"
    "not be loaded. run: see qrx-cim help run.\n";

std::string commandName(const CommandInfo& irCommand) {
  std::string name = irCommand.longName;
  if (*irCommand.shortName) name = std::string(irCommand.shortName) + "|" + name;
  return name;
}

}  // namespace

std::string usageText() {
  std::string text = std::string(kIntro) + "\nCommands:\n";
  for (const CommandInfo& command : commandTable()) {
    std::string head = "  " + commandName(command);
    if (*command.arguments) head += std::string(" ") + command.arguments;
    text += head + "\n      " + command.summary + "\n      e.g. qrx-cim " + command.example +
            "\n";
  }
  return text + "\n" + kOptionsText + "\n" + kSyntaxText;
}

std::string commandHelp(const CommandInfo& irCommand) {
  std::string text = "Usage: qrx-cim [OPTIONS] " + commandName(irCommand);
  if (*irCommand.arguments) text += std::string(" ") + irCommand.arguments;
  text += "\n\n" + std::string(irCommand.summary) + "\n" + irCommand.details;
  text += "\nExample:\n  qrx-cim " + std::string(irCommand.example) + "\n";
  const struct {
    unsigned bit;
    const char* line;
  } kOwnOptions[] = {
      {kOptAssocClass, "  --assoc-class, --ac C   only the association class C"},
      {kOptResultClass, "  --result-class, --rc C  the result class"},
      {kOptRole, "  --role R                the role of the source object"},
      {kOptResultRole, "  --result-role, --rr R   the role of the result objects"},
      {kOptPropertyList, "  --property-list A,B     the properties wanted (\"\" for none); only\n"
                         "                          these are printed\n"
                         "  --all-properties        print every property the provider returned"},
  };
  if (irCommand.options) {
    text += "\nOptions of this command:\n";
    for (const auto& option : kOwnOptions) {
      if (irCommand.options & option.bit) text += std::string(option.line) + "\n";
    }
  }
  return text + "\nSee qrx-cim --help for the options of every command, the path syntax\n"
                "and the typed value syntax.\n";
}

bool helpFor(const Invocation& irInvocation, std::string* opText, std::string* opError) {
  const CommandInfo* topic = irInvocation.command;
  if (topic && topic->command == Command::Help) {
    topic = nullptr;
    if (!irInvocation.arguments.empty()) {
      topic = findCommand(irInvocation.arguments[0]);
      if (!topic) {
        *opError = "unknown command '" + irInvocation.arguments[0] + "'";
        return false;
      }
    }
  }
  *opText = topic ? commandHelp(*topic) : usageText();
  return true;
}

std::string usageHint(const CommandInfo* ipCommand) {
  if (ipCommand && ipCommand->command != Command::Help) {
    return std::string("Try 'qrx-cim ") + ipCommand->longName + " --help' for more information.";
  }
  return "Try 'qrx-cim --help' for more information.";
}

}  // namespace cimhost
