// The CIM operations the host runs against a provider library, one
// function per operation. Each finds the provider (MI) of the class its
// path names, calls it with a fresh ResultRecorder and a context holding
// the path's namespace, and returns what came back.
//
// Failures: a class whose provider the library does not serve, or whose
// factory fails, is a load failure (nothing is called); a status other
// than CMPI_RC_OK from the provider is a provider failure. Warnings note
// providers that use the result after returnDone() or return CMPI_RC_OK
// without calling returnDone().
//
// Association operations without an explicit association class ask, in
// class-name order, every class the hierarchy knows whose association
// factory the library exports and one of whose reference keys the source
// class is-a (or that declares no reference keys, or every such class when
// the hierarchy does not know the source class). Their results are merged
// in that order; the first failure is the outcome's failure, and the
// results of the classes that succeeded are kept.
#ifndef QRX_TOOLS_CIMHOST_OPERATIONS_H_
#define QRX_TOOLS_CIMHOST_OPERATIONS_H_

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cmpift.h"
#include "tools/cimhost/ProviderLibrary.h"
#include "tools/cimhost/broker/ClassHierarchy.h"
#include "tools/cimhost/broker/ResultRecorder.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace cimhost {

// What every operation works with. The broker's hierarchy (may be NULL)
// tells association classes and reference ends.
struct Session {
  TestBroker& broker;
  ProviderLibrary& library;
  std::ostream* trace = nullptr;  // gets a line per MI call when not NULL
};

// A property list for the provider: NULL when absent, else the names.
class PropertyList {
 public:
  PropertyList() = default;
  PropertyList(const PropertyList&) = delete;
  PropertyList& operator=(const PropertyList&) = delete;

  // Makes the list present with these names (none is an empty list).
  void set(std::vector<std::string> ipNames);

  // A NULL-terminated array valid until the next set(), or NULL when
  // there is no list.
  const char** get() const;

 private:
  bool ivPresent = false;
  std::vector<std::string> ivNames;
  std::vector<const char*> ivPointers;
};

// The filters of the association operations; absent ones are NULL for
// the provider.
struct AssociationFilter {
  std::optional<std::string> assocClass;  // associators, associator names
  std::optional<std::string> resultClass;
  std::optional<std::string> role;
  std::optional<std::string> resultRole;  // associators, associator names
};

struct Outcome {
  enum class Failure { None, Load, Provider };

  std::string operation;  // "EnumerateInstances", "GetInstance", ...
  Failure failure = Failure::None;
  std::string loadError;  // Failure::Load
  CMPIrc rc = CMPI_RC_OK;  // Failure::Provider: the first failed status
  std::optional<std::string> message;
  std::vector<std::string> warnings;

  std::vector<const CMPIInstance*> instances;
  std::vector<const CMPIObjectPath*> paths;
  std::optional<CMPIData> returnValue;  // InvokeMethod
  const CMPIArgs* out = nullptr;        // InvokeMethod

  // Own what the pointers above point to.
  std::vector<std::unique_ptr<ResultRecorder>> recorders;
};

Outcome enumerateInstances(Session& irSession, const CMPIObjectPath* ipClassPath,
                           const PropertyList& irProperties);
Outcome enumerateInstanceNames(Session& irSession, const CMPIObjectPath* ipClassPath);
Outcome getInstance(Session& irSession, const CMPIObjectPath* ipPath,
                    const PropertyList& irProperties);
Outcome deleteInstance(Session& irSession, const CMPIObjectPath* ipPath);
// The instance's class path (namespace, class, keys) goes along as the
// operation's path.
Outcome createInstance(Session& irSession, const CMPIObjectPath* ipPath,
                       const CMPIInstance* ipInstance);

Outcome associators(Session& irSession, const CMPIObjectPath* ipPath,
                    const AssociationFilter& irFilter, const PropertyList& irProperties);
Outcome associatorNames(Session& irSession, const CMPIObjectPath* ipPath,
                        const AssociationFilter& irFilter);
// For references and reference names the result class, when given, is the
// association class asked.
Outcome references(Session& irSession, const CMPIObjectPath* ipPath,
                   const AssociationFilter& irFilter, const PropertyList& irProperties);
Outcome referenceNames(Session& irSession, const CMPIObjectPath* ipPath,
                       const AssociationFilter& irFilter);

Outcome invokeMethod(Session& irSession, const CMPIObjectPath* ipPath, const std::string& irMethod,
                     const CMPIArgs* ipIn);

// The association classes asked for a source of class `irSourceClass`
// when no association class is named, as described above.
std::vector<std::string> associationClassesFor(const ClassHierarchy* ipHierarchy,
                                               const ProviderLibrary& irLibrary,
                                               const std::string& irSourceClass);

// A class the hierarchy knows and the kinds of provider the library
// exports for it.
struct ServedClass {
  std::string name;
  std::vector<MiKind> kinds;
};

// Every class the hierarchy knows with at least one exported factory, in
// class-name order. Calls no factory.
std::vector<ServedClass> servedClasses(const ClassHierarchy& irHierarchy,
                                       const ProviderLibrary& irLibrary);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_OPERATIONS_H_
