#include "tools/cimhost/Commands.h"

#include <strings.h>

#include <algorithm>

#include "cmpimacs.h"
#include "tools/cimhost/ArgumentText.h"
#include "tools/cimhost/InstanceText.h"
#include "tools/cimhost/PathText.h"
#include "tools/cimhost/Subscription.h"
#include "tools/cimhost/StatusText.h"

namespace cimhost {

namespace {

// A class argument: a path text without keys.
CMPIObjectPath* classPath(TestBroker& irBroker, const Invocation& irInvocation,
                          const std::string& irText, std::string* opError) {
  CMPIObjectPath* path = parsePath(irBroker, irText, irInvocation.nameSpace, opError);
  if (path && CMGetKeyCount(path, nullptr) > 0) {
    *opError = std::string(irInvocation.command->longName) + " takes a class name; '" + irText +
               "' names an instance";
    return nullptr;
  }
  return path;
}

bool isKeyOf(const ClassHierarchy* ipHierarchy, const std::string& irClass,
             const std::string& irName) {
  if (!ipHierarchy) return false;
  for (const KeyProperty& key : ipHierarchy->keysOf(irClass)) {
    if (strcasecmp(key.name.c_str(), irName.c_str()) == 0) return true;
  }
  return false;
}

// create-instance: the class path gets the key properties as keys.
bool buildInstance(TestBroker& irBroker, const Invocation& irInvocation, Request* opRequest,
                   std::string* opError) {
  const std::vector<std::string> texts(irInvocation.arguments.begin() + 1,
                                       irInvocation.arguments.end());
  std::vector<TypedValue> properties;
  if (!parseTypedValues(irBroker, texts, irInvocation.nameSpace, &properties, opError)) {
    return false;
  }
  const std::string className = stringText(CMGetClassName(opRequest->path, nullptr));
  for (const TypedValue& property : properties) {
    if (isKeyOf(irBroker.hierarchy(), className, property.name) &&
        CMAddKey(opRequest->path, property.name.c_str(), &property.value, property.type).rc !=
            CMPI_RC_OK) {
      *opError = "cannot make key " + property.name + " of the new instance's path";
      return false;
    }
  }
  opRequest->instance = irBroker.newInstance(opRequest->path);
  for (const TypedValue& property : properties) {
    const CMPIStatus rc =
        CMSetProperty(opRequest->instance, property.name.c_str(), &property.value, property.type);
    if (rc.rc != CMPI_RC_OK) {
      *opError = "cannot set property " + property.name;
      return false;
    }
  }
  return true;
}

bool buildMethodCall(TestBroker& irBroker, const Invocation& irInvocation, Request* opRequest,
                     std::string* opError) {
  opRequest->method = irInvocation.arguments[1];
  if (!isCimName(opRequest->method)) {
    *opError = "bad method name '" + opRequest->method + "'";
    return false;
  }
  const std::vector<std::string> texts(irInvocation.arguments.begin() + 2,
                                       irInvocation.arguments.end());
  std::vector<TypedValue> args;
  if (!parseTypedValues(irBroker, texts, irInvocation.nameSpace, &args, opError)) return false;
  opRequest->in = irBroker.newArgs();
  for (const TypedValue& arg : args) {
    if (CMAddArg(opRequest->in, arg.name.c_str(), &arg.value, arg.type).rc != CMPI_RC_OK) {
      *opError = "cannot add argument " + arg.name;
      return false;
    }
  }
  return true;
}

// The properties printed: those of the property list, unless all are asked for.
PropertyFilter printedProperties(const Invocation& irInvocation) {
  if (!irInvocation.propertyList || irInvocation.allProperties) return nullptr;
  return &*irInvocation.propertyList;
}

void printInstances(const Invocation& irInvocation, const Outcome& irOutcome, std::ostream& irOut) {
  const PropertyFilter only = printedProperties(irInvocation);
  if (irInvocation.json) {
    Json list = Json::array();
    for (const CMPIInstance* instance : irOutcome.instances) {
      list.push_back(instanceJson(instance, only));
    }
    irOut << list.dump(2) << "\n";
    return;
  }
  for (size_t i = 0; i < irOutcome.instances.size(); ++i) {
    irOut << (i ? "\n" : "") << instanceMof(irOutcome.instances[i], only);
  }
}

void printPaths(const Invocation& irInvocation, const Outcome& irOutcome, std::ostream& irOut) {
  if (irInvocation.json) {
    Json list = Json::array();
    for (const CMPIObjectPath* path : irOutcome.paths) list.push_back(pathText(path));
    irOut << list.dump(2) << "\n";
    return;
  }
  for (const CMPIObjectPath* path : irOutcome.paths) irOut << pathText(path) << "\n";
}

// The single instance of get-instance (or the path of create-instance).
void printSingle(const Invocation& irInvocation, Outcome* opOutcome, std::ostream& irOut) {
  const bool instance = irInvocation.command->command == Command::GetInstance;
  const size_t count = instance ? opOutcome->instances.size() : opOutcome->paths.size();
  if (count > 1) {
    opOutcome->warnings.push_back("the provider returned " + std::to_string(count) +
                                  (instance ? " instances" : " paths") + "; the first is shown");
  } else if (count == 0 && instance) {
    opOutcome->warnings.push_back("the provider returned no instance");
  }
  if (count == 0) return;
  if (instance) {
    const CMPIInstance* first = opOutcome->instances.front();
    const PropertyFilter only = printedProperties(irInvocation);
    irOut << (irInvocation.json ? instanceJson(first, only).dump(2) + "\n"
                                : instanceMof(first, only));
  } else {
    const std::string text = pathText(opOutcome->paths.front());
    irOut << (irInvocation.json ? Json(text).dump() : text) << "\n";
  }
}

void printClasses(const Invocation& irInvocation, Session& irSession, std::ostream& irOut,
                  std::ostream& irErr) {
  const ClassHierarchy* hierarchy = irSession.broker.hierarchy();
  const std::vector<ServedClass> served =
      hierarchy ? servedClasses(*hierarchy, irSession.library) : std::vector<ServedClass>();
  if (irInvocation.json) {
    Json list = Json::array();
    for (const ServedClass& entry : served) {
      Json kinds = Json::array();
      for (MiKind kind : entry.kinds) kinds.push_back(miKindName(kind));
      list.push_back(Json{{"class", entry.name}, {"providers", kinds}});
    }
    irOut << list.dump(2) << "\n";
  } else {
    size_t width = 0;
    for (const ServedClass& entry : served) width = std::max(width, entry.name.size());
    for (const ServedClass& entry : served) {
      irOut << entry.name << std::string(width - entry.name.size() + 2, ' ');
      for (size_t i = 0; i < entry.kinds.size(); ++i) {
        irOut << (i ? " " : "") << miKindName(entry.kinds[i]);
      }
      irOut << "\n";
    }
  }
  if (served.empty()) {
    irErr << "qrx-cim: warning: library " << irSession.library.path()
          << " serves none of the classes the MOF declares\n";
  }
}

}  // namespace

bool buildRequest(TestBroker& irBroker, const Invocation& irInvocation, Request* opRequest,
                  std::string* opError) {
  if (irInvocation.propertyList) opRequest->properties.set(*irInvocation.propertyList);
  const Command command = irInvocation.command->command;
  if (command == Command::Classes || command == Command::Help || command == Command::Run ||
      command == Command::Subscribe) {
    return true;
  }
  const std::string& target = irInvocation.arguments.at(0);
  switch (command) {
    case Command::EnumerateInstances:
    case Command::EnumerateInstanceNames:
    case Command::CreateInstance:
      opRequest->path = classPath(irBroker, irInvocation, target, opError);
      break;
    default:
      opRequest->path = parsePath(irBroker, target, irInvocation.nameSpace, opError);
      break;
  }
  if (!opRequest->path) return false;
  if (command == Command::CreateInstance) return buildInstance(irBroker, irInvocation, opRequest, opError);
  if (command == Command::InvokeMethod) return buildMethodCall(irBroker, irInvocation, opRequest, opError);
  return true;
}

int runRequest(const Invocation& irInvocation, const Request& irRequest, Session& irSession,
               std::ostream& irOut, std::ostream& irErr) {
  const AssociationFilter& filter = irInvocation.filter;
  const PropertyList& properties = irRequest.properties;
  Outcome outcome;
  switch (irInvocation.command->command) {
    case Command::EnumerateInstances:
      outcome = enumerateInstances(irSession, irRequest.path, properties);
      break;
    case Command::EnumerateInstanceNames:
      outcome = enumerateInstanceNames(irSession, irRequest.path);
      break;
    case Command::GetInstance: outcome = getInstance(irSession, irRequest.path, properties); break;
    case Command::DeleteInstance: outcome = deleteInstance(irSession, irRequest.path); break;
    case Command::CreateInstance:
      outcome = createInstance(irSession, irRequest.path, irRequest.instance);
      break;
    case Command::Associators:
      outcome = associators(irSession, irRequest.path, filter, properties);
      break;
    case Command::AssociatorNames:
      outcome = associatorNames(irSession, irRequest.path, filter);
      break;
    case Command::References:
      outcome = references(irSession, irRequest.path, filter, properties);
      break;
    case Command::ReferenceNames: outcome = referenceNames(irSession, irRequest.path, filter); break;
    case Command::InvokeMethod:
      outcome = invokeMethod(irSession, irRequest.path, irRequest.method, irRequest.in);
      break;
    case Command::Classes:
      printClasses(irInvocation, irSession, irOut, irErr);
      return kExitOk;
    case Command::Subscribe:
      return runSubscription(irInvocation, irSession, irOut, irErr);
    case Command::Run:
    case Command::Help:
      return kExitUsage;  // handled before a request is built
  }

  if (outcome.failure == Outcome::Failure::Load) {
    irErr << "qrx-cim: " << outcome.loadError << "\n";
    return kExitLoad;
  }
  switch (irInvocation.command->command) {
    case Command::EnumerateInstances:
    case Command::Associators:
    case Command::References:
      printInstances(irInvocation, outcome, irOut);
      break;
    case Command::EnumerateInstanceNames:
    case Command::AssociatorNames:
    case Command::ReferenceNames:
      printPaths(irInvocation, outcome, irOut);
      break;
    case Command::GetInstance:
    case Command::CreateInstance:
      if (outcome.failure == Outcome::Failure::None) printSingle(irInvocation, &outcome, irOut);
      break;
    case Command::InvokeMethod:
      if (outcome.failure != Outcome::Failure::None) break;
      if (!outcome.returnValue) outcome.warnings.push_back("the provider returned no return value");
      irOut << (irInvocation.json ? methodResultJson(outcome.returnValue, outcome.out).dump(2) + "\n"
                                  : methodResultText(outcome.returnValue, outcome.out));
      break;
    default:
      break;
  }
  for (const std::string& warning : outcome.warnings) irErr << "qrx-cim: warning: " << warning << "\n";
  if (outcome.failure == Outcome::Failure::Provider) {
    irErr << "qrx-cim: " << failureText(outcome.operation, outcome.rc, outcome.message) << "\n";
    return kExitFailed;
  }
  return kExitOk;
}

}  // namespace cimhost
