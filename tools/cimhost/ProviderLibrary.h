// cimhost::ProviderLibrary: a provider library opened with dlopen, the way
// an object manager loads one, and the MIs its factories hand out.
//
// For each class <Class> a library exports the plain C factories
// <Class>_Provider_Create_InstanceMI, _AssociationMI, _MethodMI and
// _IndicationMI (only the kinds it serves), each taking (broker, context,
// status). A factory is called at most once per class and kind: its MI, or
// the reason it gave none, is kept. A factory that returns NULL or sets a
// status other than CMPI_RC_OK gives no MI.
//
// cleanup() calls every obtained MI's cleanup(terminating = true) once; the
// destructor does so if cleanup() was not called. The library itself stays
// mapped until the process ends, so that no thread a provider left behind
// runs unmapped code.
//
// Class names are used as given; dlsym is case-sensitive, so callers pass
// the spelling the class hierarchy uses.
#ifndef QRX_TOOLS_CIMHOST_PROVIDERLIBRARY_H_
#define QRX_TOOLS_CIMHOST_PROVIDERLIBRARY_H_

#include <map>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cmpift.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace cimhost {

enum class MiKind { Instance, Association, Method, Indication };

// "instance", "association", "method", "indication".
const char* miKindName(MiKind ipKind);

class ProviderLibrary {
 public:
  // `irBroker` must outlive the library object; `ipTrace` (may be NULL)
  // gets a line per factory and cleanup call.
  explicit ProviderLibrary(TestBroker& irBroker, std::ostream* ipTrace = nullptr);
  ~ProviderLibrary();

  ProviderLibrary(const ProviderLibrary&) = delete;
  ProviderLibrary& operator=(const ProviderLibrary&) = delete;

  // Loads the library at `irPath` (RTLD_NOW, so unresolved symbols fail
  // here). False with *opError set to the loader's message.
  bool open(const std::string& irPath, std::string* opError);

  const std::string& path() const { return ivPath; }

  // The factory's symbol name, e.g. "QRX_Switch_Provider_Create_InstanceMI".
  static std::string factoryName(const std::string& irClass, MiKind ipKind);

  // Whether the library exports the factory (nothing is called).
  bool exports(const std::string& irClass, MiKind ipKind) const;

  // The class's MI, from the factory on first use. NULL with *opError set
  // ("library X serves no instance provider for class Y", or why the
  // factory gave none).
  CMPIInstanceMI* instanceMI(const std::string& irClass, std::string* opError);
  CMPIAssociationMI* associationMI(const std::string& irClass, std::string* opError);
  CMPIMethodMI* methodMI(const std::string& irClass, std::string* opError);
  CMPIIndicationMI* indicationMI(const std::string& irClass, std::string* opError);

  // Cleans up every MI obtained; returns a message per cleanup that did not
  // return CMPI_RC_OK.
  std::vector<std::string> cleanup();

 private:
  struct Entry {
    void* mi = nullptr;  // the MI, or NULL when the factory gave none
    std::string error;   // why there is none
  };

  void* miFor(const std::string& irClass, MiKind ipKind, std::string* opError);

  TestBroker& ivBroker;
  std::ostream* ivTrace;
  std::string ivPath;
  void* ivHandle = nullptr;
  // Keyed by kind and class; in the order obtained for cleanup.
  std::map<std::pair<MiKind, std::string>, Entry> ivEntries;
  std::vector<std::pair<MiKind, std::string>> ivObtained;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_PROVIDERLIBRARY_H_
