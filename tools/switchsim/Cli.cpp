#include "tools/switchsim/Cli.h"

#include <signal.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <ostream>
#include <set>

#include "tools/switchsim/ControlChannel.h"
#include "tools/switchsim/EventQueue.h"
#include "tools/switchsim/Simulator.h"
#include "tools/switchsim/Status.h"

namespace switchsim {

namespace {

const char kUsage[] =
    "usage: qrx-switchsim [serve] [--model FILE.json | --ports N] [--name NAME] [--log FILE|-]\n"
    "                     [--control PATH] [--replace]\n"
    "       qrx-switchsim dump-model [--model FILE.json | --ports N]\n"
    "       qrx-switchsim event [--control PATH] [--name NAME] KIND [WORDS...]\n"
    "       qrx-switchsim fault [--control PATH] [--name NAME] --function F [--status N]\n"
    "                           [--delay-ms N] [--wrong-req-id] [--count N]\n"
    "       qrx-switchsim fault [--control PATH] [--name NAME] --clear\n"
    "       qrx-switchsim model [--control PATH] [--name NAME]\n";

const char kHelpBody[] =
    "\n"
    "A simulated Fibre Channel switch daemon: answers the provider library's 47\n"
    "remote calls from a fabric model over POSIX message queues, and sends switch\n"
    "events to the library's event queue.\n"
    "\n"
    "serve (the default)\n"
    "  Creates PREFIX+NAME+\"_stoc\" (requests in) and PREFIX+NAME+\"_ctos\" (replies\n"
    "  out) and serves until SIGINT or SIGTERM, then removes both queues. PREFIX is\n"
    "  $QRX_SMIS_QUEUE_PREFIX, or \"/CUID3570\"; NAME is \"smis_ipc\" unless --name.\n"
    "  --model FILE   the model to serve (JSON; see dump-model); default built-in\n"
    "  --ports N      the built-in model with N switch ports (24 to 2500)\n"
    "  --log FILE|-   append one line per request, reply and event to FILE (-:\n"
    "                 standard output): req_id, function, status, bytes, frames\n"
    "  --control PATH the control socket (default below)\n"
    "  --replace      remove queues of the same names left behind by a killed\n"
    "                 simulator instead of failing\n"
    "\n"
    "dump-model\n"
    "  Prints the built-in model as JSON, a starting point for custom models; with\n"
    "  --model, checks FILE and prints it as read.\n"
    "\n"
    "event KIND [WORDS...]    changes the running simulator's model and sends the\n"
    "                         matching event (PORT is a port_index)\n"
    "  port-state PORT online|offline|disabled|faulty           code 13\n"
    "  port-attr PORT [speed=N] [type=N] [licensed=0|1]         code 14\n"
    "  switch-attr [state=N] [location=T] [owner=T] [hostname=T] code 8\n"
    "  ip [ip=A] [ip2=A] [ipv6=A] [ip2v6=A]                     code 68\n"
    "  fabric [name=WWN] [vlan=N] [absent|present]              code 1 (85: VLAN only)\n"
    "  zone [op=OPCODE:KIND:NAME[:TYPE:ID]]... [activate=NAME|deactivate]   code 3\n"
    "       OPCODE 0 create, 1 delete, 2 add, 3 remove; KIND 240 zone set,\n"
    "       241 zone, 242 alias; TYPE:ID the member (for a zone set, the zone as ID)\n"
    "  raw CODE [port=N]                                        no model change\n"
    "  Every kind also takes chassis=N, blade=N and text=T.\n"
    "  If the library's event queue does not exist the change is still made, and\n"
    "  the command fails.\n"
    "\n"
    "fault --function F ...   every later request for F (e.g. rs_api_get_switch_info)\n"
    "  --status N       answers status N without results\n"
    "  --delay-ms N     answers N milliseconds late\n"
    "  --wrong-req-id   answers with req_id + 1\n"
    "  --count N        only the next N requests (default: until cleared)\n"
    "  A new fault for F replaces the old one. fault --clear removes all.\n"
    "\n"
    "model                    prints the running simulator's model (one JSON line)\n"
    "\n"
    "Control socket: --control PATH, else $QRX_SWITCHSIM_CONTROL, else\n"
    "  /tmp/qrx-switchsim<PREFIX with '/' as '-'>-<NAME>.sock\n"
    "  (by default /tmp/qrx-switchsim-CUID3570-smis_ipc.sock). One command line\n"
    "  per connection, answered by one line \"ok ...\" or \"error ...\".\n"
    "\n"
    "Reply statuses (unsigned 32-bit, first word of every reply):\n";

struct Options {
  std::string command = "serve";
  std::map<std::string, std::string> values;  // option -> value
  std::set<std::string> flags;
  std::vector<std::string> words;
};

bool parseOptions(const std::vector<std::string>& irArgs, Options* opOptions,
                  std::string* orError) {
  static const std::set<std::string> kValued = {"--model",  "--ports",    "--name",     "--log",
                                                "--control", "--function", "--status",
                                                "--delay-ms", "--count"};
  static const std::set<std::string> kFlags = {"--replace", "--wrong-req-id", "--clear",
                                               "--help", "-h"};
  static const std::set<std::string> kCommands = {"serve", "dump-model", "event", "fault",
                                                  "model", "help"};
  Options options;
  std::size_t i = 0;
  if (!irArgs.empty() && kCommands.count(irArgs[0]) != 0) options.command = irArgs[i++];
  for (; i < irArgs.size(); ++i) {
    const std::string& arg = irArgs[i];
    if (arg.rfind("-", 0) != 0 || arg == "-") {
      options.words.push_back(arg);
      continue;
    }
    const std::size_t equals = arg.find('=');
    const std::string name = arg.substr(0, equals);
    if (kFlags.count(name) != 0 && equals == std::string::npos) {
      options.flags.insert(name);
    } else if (kValued.count(name) != 0) {
      if (equals != std::string::npos) {
        options.values[name] = arg.substr(equals + 1);
      } else if (i + 1 < irArgs.size()) {
        options.values[name] = irArgs[++i];
      } else {
        *orError = name + " needs a value";
        return false;
      }
    } else {
      *orError = "unknown option " + arg;
      return false;
    }
  }
  *opOptions = std::move(options);
  return true;
}

// The options each command accepts.
bool checkAllowed(const Options& irOptions, const std::set<std::string>& irAllowed,
                  bool ipWords, std::string* orError) {
  for (const auto& value : irOptions.values) {
    if (irAllowed.count(value.first) == 0) {
      *orError = value.first + " does not go with " + irOptions.command;
      return false;
    }
  }
  for (const std::string& flag : irOptions.flags) {
    if (irAllowed.count(flag) == 0) {
      *orError = flag + " does not go with " + irOptions.command;
      return false;
    }
  }
  if (!ipWords && !irOptions.words.empty()) {
    *orError = "unexpected argument \"" + irOptions.words[0] + "\"";
    return false;
  }
  return true;
}

std::string value(const Options& irOptions, const std::string& irName,
                  const std::string& irDefault) {
  auto it = irOptions.values.find(irName);
  return it == irOptions.values.end() ? irDefault : it->second;
}

std::string controlPath(const Options& irOptions) {
  return value(irOptions, "--control", defaultControlPath(value(irOptions, "--name", "smis_ipc")));
}

bool loadModel(const Options& irOptions, FabricModel* opModel, std::string* orError) {
  auto file = irOptions.values.find("--model");
  auto ports = irOptions.values.find("--ports");
  if (ports != irOptions.values.end()) {
    char* end = nullptr;
    const unsigned long count = std::strtoul(ports->second.c_str(), &end, 10);
    if (file != irOptions.values.end() || ports->second.empty() || *end != '\0' || count < 24 ||
        count > FabricModel::kMaxPorts) {
      *orError = "--ports: expected a number from 24 to 2500 (without --model), got \"" +
                 ports->second + "\"";
      return false;
    }
    *opModel = FabricModel::builtIn(static_cast<unsigned>(count));
    return true;
  }
  if (file == irOptions.values.end()) {
    *opModel = FabricModel::builtIn();
    return true;
  }
  return FabricModel::loadFile(file->second, opModel, orError);
}

int serve(const Options& irOptions, std::ostream& irOut, std::ostream& irErr) {
  FabricModel model;
  std::string error;
  if (!loadModel(irOptions, &model, &error)) {
    irErr << "qrx-switchsim: " << error << "\n";
    return kExitFailed;
  }
  std::FILE* log = nullptr;
  const std::string logPath = value(irOptions, "--log", "");
  if (logPath == "-") {
    log = stdout;
  } else if (!logPath.empty()) {
    log = std::fopen(logPath.c_str(), "a");
    if (log == nullptr) {
      irErr << "qrx-switchsim: cannot open " << logPath << ": " << std::strerror(errno) << "\n";
      return kExitFailed;
    }
  }
  int result = kExitOk;
  {
    Simulator simulator(std::move(model));
    simulator.setLogStream(log);
    ServerOptions serverOptions;
    serverOptions.replaceQueues = irOptions.flags.count("--replace") != 0;
    simulator.setServerOptions(serverOptions);
    ControlServer control(simulator);
    const std::string path = controlPath(irOptions);
    if (!simulator.start(&error, value(irOptions, "--name", "smis_ipc")) ||
        !control.start(path, &error)) {
      irErr << "qrx-switchsim: " << error << "\n";
      result = kExitFailed;
    } else {
      irOut << "qrx-switchsim: serving " << simulator.requestQueueName() << " and "
            << simulator.replyQueueName() << "; events to " << eventQueueName()
            << "; control socket " << path << std::endl;
      sigset_t signals;
      sigemptyset(&signals);
      sigaddset(&signals, SIGINT);
      sigaddset(&signals, SIGTERM);
      int signal = 0;
      while (sigwait(&signals, &signal) != 0) {
      }
      irOut << "qrx-switchsim: stopping on signal " << signal << std::endl;
    }
    control.stop();
    simulator.stop();
    simulator.setLogStream(nullptr);
  }
  if (log != nullptr && log != stdout) std::fclose(log);
  return result;
}

// Sends one control line and prints the answer's detail.
int control(const Options& irOptions, const std::vector<std::string>& irWords,
            std::ostream& irOut, std::ostream& irErr) {
  std::string answer;
  std::string error;
  if (!sendControlLine(controlPath(irOptions), joinWords(irWords), &answer, &error)) {
    irErr << "qrx-switchsim: " << error << "\n";
    return kExitFailed;
  }
  if (answer.rfind("ok", 0) == 0) {
    if (answer.size() > 3) irOut << answer.substr(3) << "\n";
    return kExitOk;
  }
  irErr << "qrx-switchsim: " << (answer.rfind("error ", 0) == 0 ? answer.substr(6) : answer)
        << "\n";
  return kExitFailed;
}

int fault(const Options& irOptions, std::ostream& irOut, std::ostream& irErr) {
  if (irOptions.flags.count("--clear") != 0) {
    if (irOptions.values.count("--function") != 0 || irOptions.values.count("--status") != 0 ||
        irOptions.values.count("--delay-ms") != 0 || irOptions.values.count("--count") != 0 ||
        irOptions.flags.count("--wrong-req-id") != 0) {
      irErr << "qrx-switchsim: --clear goes alone\n" << kUsage;
      return kExitUsage;
    }
    return control(irOptions, {"fault-clear"}, irOut, irErr);
  }
  auto function = irOptions.values.find("--function");
  if (function == irOptions.values.end()) {
    irErr << "qrx-switchsim: fault needs --function or --clear\n" << kUsage;
    return kExitUsage;
  }
  std::vector<std::string> words = {"fault", function->second};
  for (const char* name : {"--status", "--delay-ms", "--count"}) {
    auto it = irOptions.values.find(name);
    if (it != irOptions.values.end()) words.push_back(std::string(name + 2) + "=" + it->second);
  }
  if (irOptions.flags.count("--wrong-req-id") != 0) words.push_back("wrong-req-id");
  return control(irOptions, words, irOut, irErr);
}

}  // namespace

std::string helpText() { return std::string(kUsage) + kHelpBody + statusTable(); }

int runCommandLine(const std::vector<std::string>& irArgs, std::ostream& irOut,
                   std::ostream& irErr) {
  Options options;
  std::string error;
  if (!parseOptions(irArgs, &options, &error)) {
    irErr << "qrx-switchsim: " << error << "\n" << kUsage;
    return kExitUsage;
  }
  if (options.command == "help" || options.flags.count("--help") != 0 ||
      options.flags.count("-h") != 0) {
    irOut << helpText();
    return kExitOk;
  }
  const std::string& command = options.command;
  bool ok = true;
  if (command == "serve") {
    ok = checkAllowed(options, {"--model", "--ports", "--name", "--log", "--control", "--replace"},
                      false, &error);
  } else if (command == "dump-model") {
    ok = checkAllowed(options, {"--model", "--ports"}, false, &error);
  } else if (command == "event") {
    ok = checkAllowed(options, {"--control", "--name"}, true, &error);
    if (ok && options.words.empty()) {
      ok = false;
      error = "event needs a kind: port-state, port-attr, switch-attr, ip, fabric, zone or raw";
    }
  } else if (command == "fault") {
    ok = checkAllowed(options,
                      {"--control", "--name", "--function", "--status", "--delay-ms", "--count",
                       "--wrong-req-id", "--clear"},
                      false, &error);
  } else if (command == "model") {
    ok = checkAllowed(options, {"--control", "--name"}, false, &error);
  }
  if (!ok) {
    irErr << "qrx-switchsim: " << error << "\n" << kUsage;
    return kExitUsage;
  }

  if (command == "serve") return serve(options, irOut, irErr);
  if (command == "dump-model") {
    FabricModel model;
    if (!loadModel(options, &model, &error)) {
      irErr << "qrx-switchsim: " << error << "\n";
      return kExitFailed;
    }
    irOut << model.toJson() << "\n";
    return kExitOk;
  }
  if (command == "event") {
    std::vector<std::string> words = {"event"};
    words.insert(words.end(), options.words.begin(), options.words.end());
    return control(options, words, irOut, irErr);
  }
  if (command == "fault") return fault(options, irOut, irErr);
  return control(options, {"model"}, irOut, irErr);
}

}  // namespace switchsim
