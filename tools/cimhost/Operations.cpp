#include "tools/cimhost/Operations.h"

#include "cmpimacs.h"
#include "tools/cimhost/InstanceText.h"
#include "tools/cimhost/PathText.h"
#include "tools/cimhost/StatusText.h"

namespace cimhost {

namespace {

std::string classOf(const CMPIObjectPath* ipPath) {
  return stringText(CMGetClassName(ipPath, nullptr));
}

const char* orNull(const std::optional<std::string>& irText) {
  return irText ? irText->c_str() : nullptr;
}

Outcome loadFailure(Outcome ipOutcome, const std::string& irError) {
  ipOutcome.failure = Outcome::Failure::Load;
  ipOutcome.loadError = irError;
  return ipOutcome;
}

Outcome named(const char* ipOperation) {
  Outcome outcome;
  outcome.operation = ipOperation;
  return outcome;
}

// One call of a provider function: a fresh result and a context with the
// path's namespace; `irCall(context, result)` returns the status. The
// result's contents join *opOutcome when the call succeeds.
template <class Call>
void callProvider(Session& irSession, const std::string& irClass, MiKind ipKind,
                  const char* ipFunction, const CMPIObjectPath* ipPath, Outcome* opOutcome,
                  Call&& irCall) {
  const std::string provider = irClass + " " + miKindName(ipKind) + " provider";
  if (irSession.trace) {
    *irSession.trace << "qrx-cim: " << provider << ": " << ipFunction << " " << pathText(ipPath)
                     << "\n";
  }
  auto recorder = std::make_unique<ResultRecorder>(irSession.broker);
  const std::string nameSpace = stringText(CMGetNameSpace(ipPath, nullptr));
  CMPIContext* context = irSession.broker.newContext(nameSpace.c_str());
  const CMPIStatus rc = irCall(context, recorder->result());

  if (recorder->callsAfterDone() > 0) {
    opOutcome->warnings.push_back(provider + " used the result " +
                                  std::to_string(recorder->callsAfterDone()) +
                                  " time(s) after returnDone in " + ipFunction);
  }
  if (rc.rc != CMPI_RC_OK) {
    if (opOutcome->failure == Outcome::Failure::None) {
      opOutcome->failure = Outcome::Failure::Provider;
      opOutcome->rc = rc.rc;
      opOutcome->message = statusMessage(rc);
    }
    return;
  }
  if (recorder->doneCount() == 0) {
    opOutcome->warnings.push_back(provider + " returned from " + ipFunction +
                                  " without calling returnDone");
  }
  for (const CMPIInstance* instance : recorder->instances()) opOutcome->instances.push_back(instance);
  for (const CMPIObjectPath* path : recorder->objectPaths()) opOutcome->paths.push_back(path);
  const std::vector<CMPIData> data = recorder->data();
  if (!data.empty()) {
    opOutcome->returnValue = data.front();
    if (data.size() > 1) {
      opOutcome->warnings.push_back(provider + " returned " + std::to_string(data.size()) +
                                    " values from " + ipFunction + "; the first is shown");
    }
  }
  opOutcome->recorders.push_back(std::move(recorder));
}

// Runs `irCall(mi, context, result)` on the instance provider of the
// path's class.
template <class Call>
Outcome instanceCall(Session& irSession, const char* ipOperation, const char* ipFunction,
                     const CMPIObjectPath* ipPath, Call&& irCall) {
  Outcome outcome = named(ipOperation);
  std::string error;
  const std::string name = classOf(ipPath);
  CMPIInstanceMI* mi = irSession.library.instanceMI(name, &error);
  if (!mi) return loadFailure(std::move(outcome), error);
  callProvider(irSession, name, MiKind::Instance, ipFunction, ipPath, &outcome,
               [&](const CMPIContext* ipContext, const CMPIResult* ipResult) {
                 return irCall(mi, ipContext, ipResult);
               });
  return outcome;
}

// The association classes an association operation asks: the one named,
// else those associationClassesFor() finds.
std::vector<std::string> askedClasses(Session& irSession, const CMPIObjectPath* ipPath,
                                      const std::optional<std::string>& irNamed) {
  const ClassHierarchy* hierarchy = irSession.broker.hierarchy();
  if (irNamed) return {classSpelling(hierarchy, *irNamed)};
  return associationClassesFor(hierarchy, irSession.library, classOf(ipPath));
}

// Runs `irCall(mi, context, result)` on every asked association class.
template <class Call>
Outcome associationCall(Session& irSession, const char* ipOperation, const char* ipFunction,
                        const CMPIObjectPath* ipPath, const std::optional<std::string>& irNamed,
                        Call&& irCall) {
  Outcome outcome = named(ipOperation);
  const std::vector<std::string> classes = askedClasses(irSession, ipPath, irNamed);
  if (classes.empty()) {
    outcome.warnings.push_back("library " + irSession.library.path() +
                               " serves no association provider with a reference to class " +
                               classOf(ipPath));
  }
  for (const std::string& name : classes) {
    std::string error;
    CMPIAssociationMI* mi = irSession.library.associationMI(name, &error);
    if (!mi) return loadFailure(std::move(outcome), error);
    callProvider(irSession, name, MiKind::Association, ipFunction, ipPath, &outcome,
                 [&](const CMPIContext* ipContext, const CMPIResult* ipResult) {
                   return irCall(mi, ipContext, ipResult);
                 });
  }
  return outcome;
}

}  // namespace

void PropertyList::set(std::vector<std::string> ipNames) {
  ivPresent = true;
  ivNames = std::move(ipNames);
  ivPointers.clear();
  for (const std::string& name : ivNames) ivPointers.push_back(name.c_str());
  ivPointers.push_back(nullptr);
}

const char** PropertyList::get() const {
  return ivPresent ? const_cast<const char**>(ivPointers.data()) : nullptr;
}

Outcome enumerateInstances(Session& irSession, const CMPIObjectPath* ipClassPath,
                           const PropertyList& irProperties) {
  return instanceCall(
      irSession, "EnumerateInstances", "enumerateInstances", ipClassPath,
      [&](CMPIInstanceMI* ipMi, const CMPIContext* ipContext, const CMPIResult* ipResult) {
        return ipMi->ft->enumerateInstances(ipMi, ipContext, ipResult, ipClassPath,
                                            irProperties.get());
      });
}

Outcome enumerateInstanceNames(Session& irSession, const CMPIObjectPath* ipClassPath) {
  return instanceCall(
      irSession, "EnumerateInstanceNames", "enumerateInstanceNames", ipClassPath,
      [&](CMPIInstanceMI* ipMi, const CMPIContext* ipContext, const CMPIResult* ipResult) {
        return ipMi->ft->enumerateInstanceNames(ipMi, ipContext, ipResult, ipClassPath);
      });
}

Outcome getInstance(Session& irSession, const CMPIObjectPath* ipPath,
                    const PropertyList& irProperties) {
  return instanceCall(
      irSession, "GetInstance", "getInstance", ipPath,
      [&](CMPIInstanceMI* ipMi, const CMPIContext* ipContext, const CMPIResult* ipResult) {
        return ipMi->ft->getInstance(ipMi, ipContext, ipResult, ipPath, irProperties.get());
      });
}

Outcome deleteInstance(Session& irSession, const CMPIObjectPath* ipPath) {
  return instanceCall(
      irSession, "DeleteInstance", "deleteInstance", ipPath,
      [&](CMPIInstanceMI* ipMi, const CMPIContext* ipContext, const CMPIResult* ipResult) {
        return ipMi->ft->deleteInstance(ipMi, ipContext, ipResult, ipPath);
      });
}

Outcome createInstance(Session& irSession, const CMPIObjectPath* ipPath,
                       const CMPIInstance* ipInstance) {
  Outcome outcome = instanceCall(
      irSession, "CreateInstance", "createInstance", ipPath,
      [&](CMPIInstanceMI* ipMi, const CMPIContext* ipContext, const CMPIResult* ipResult) {
        return ipMi->ft->createInstance(ipMi, ipContext, ipResult, ipPath, ipInstance);
      });
  if (outcome.failure == Outcome::Failure::None && outcome.paths.empty()) {
    outcome.warnings.push_back(classOf(ipPath) +
                               " instance provider returned no path from createInstance");
  }
  return outcome;
}

Outcome associators(Session& irSession, const CMPIObjectPath* ipPath,
                    const AssociationFilter& irFilter, const PropertyList& irProperties) {
  return associationCall(
      irSession, "Associators", "associators", ipPath, irFilter.assocClass,
      [&](CMPIAssociationMI* ipMi, const CMPIContext* ipContext, const CMPIResult* ipResult) {
        return ipMi->ft->associators(ipMi, ipContext, ipResult, ipPath, orNull(irFilter.assocClass),
                                     orNull(irFilter.resultClass), orNull(irFilter.role),
                                     orNull(irFilter.resultRole), irProperties.get());
      });
}

Outcome associatorNames(Session& irSession, const CMPIObjectPath* ipPath,
                        const AssociationFilter& irFilter) {
  return associationCall(
      irSession, "AssociatorNames", "associatorNames", ipPath, irFilter.assocClass,
      [&](CMPIAssociationMI* ipMi, const CMPIContext* ipContext, const CMPIResult* ipResult) {
        return ipMi->ft->associatorNames(ipMi, ipContext, ipResult, ipPath,
                                         orNull(irFilter.assocClass), orNull(irFilter.resultClass),
                                         orNull(irFilter.role), orNull(irFilter.resultRole));
      });
}

Outcome references(Session& irSession, const CMPIObjectPath* ipPath,
                   const AssociationFilter& irFilter, const PropertyList& irProperties) {
  return associationCall(
      irSession, "References", "references", ipPath, irFilter.resultClass,
      [&](CMPIAssociationMI* ipMi, const CMPIContext* ipContext, const CMPIResult* ipResult) {
        return ipMi->ft->references(ipMi, ipContext, ipResult, ipPath, orNull(irFilter.resultClass),
                                    orNull(irFilter.role), irProperties.get());
      });
}

Outcome referenceNames(Session& irSession, const CMPIObjectPath* ipPath,
                       const AssociationFilter& irFilter) {
  return associationCall(
      irSession, "ReferenceNames", "referenceNames", ipPath, irFilter.resultClass,
      [&](CMPIAssociationMI* ipMi, const CMPIContext* ipContext, const CMPIResult* ipResult) {
        return ipMi->ft->referenceNames(ipMi, ipContext, ipResult, ipPath,
                                        orNull(irFilter.resultClass), orNull(irFilter.role));
      });
}

Outcome invokeMethod(Session& irSession, const CMPIObjectPath* ipPath, const std::string& irMethod,
                     const CMPIArgs* ipIn) {
  Outcome outcome = named("InvokeMethod");
  std::string error;
  const std::string name = classOf(ipPath);
  CMPIMethodMI* mi = irSession.library.methodMI(name, &error);
  if (!mi) return loadFailure(std::move(outcome), error);
  CMPIArgs* out = irSession.broker.newArgs();
  callProvider(irSession, name, MiKind::Method, "invokeMethod", ipPath, &outcome,
               [&](const CMPIContext* ipContext, const CMPIResult* ipResult) {
                 return mi->ft->invokeMethod(mi, ipContext, ipResult, ipPath, irMethod.c_str(),
                                             ipIn, out);
               });
  outcome.out = out;
  return outcome;
}

std::vector<std::string> associationClassesFor(const ClassHierarchy* ipHierarchy,
                                               const ProviderLibrary& irLibrary,
                                               const std::string& irSourceClass) {
  std::vector<std::string> classes;
  if (!ipHierarchy) return classes;
  const bool sourceKnown = ipHierarchy->isKnown(irSourceClass);
  for (const std::string& name : ipHierarchy->classNames()) {
    if (!irLibrary.exports(name, MiKind::Association)) continue;
    bool hasEnds = false;
    bool matches = !sourceKnown;
    for (const KeyProperty& key : ipHierarchy->keysOf(name)) {
      if (!key.isReference()) continue;
      hasEnds = true;
      const std::string endClass = key.type.substr(0, key.type.size() - 4);  // drop " REF"
      matches = matches || ipHierarchy->isA(irSourceClass, endClass);
    }
    if (matches || !hasEnds) classes.push_back(name);
  }
  return classes;
}

std::vector<ServedClass> servedClasses(const ClassHierarchy& irHierarchy,
                                       const ProviderLibrary& irLibrary) {
  std::vector<ServedClass> served;
  for (const std::string& name : irHierarchy.classNames()) {
    ServedClass entry{name, {}};
    for (MiKind kind : {MiKind::Instance, MiKind::Association, MiKind::Method, MiKind::Indication}) {
      if (irLibrary.exports(name, kind)) entry.kinds.push_back(kind);
    }
    if (!entry.kinds.empty()) served.push_back(std::move(entry));
  }
  return served;
}

}  // namespace cimhost
