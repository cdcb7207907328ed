// The provider library as the benchmarks load it: the build's class
// hierarchy in an in-process test broker, the library opened with dlopen
// (its start-up connects to the switch daemon, which must be up, and fills
// the cache) and the instance MI of one class.
//
//   bench::LoadedLibrary loaded;
//   std::string error;
//   CMPIInstanceMI* mi = loaded.open("QRX_SwitchFCPort", &error);
//   if (mi == nullptr) ...;  // error says why
//   mi->ft->enumerateInstances(mi, loaded.broker.context(), ...);
//
// The library cleans up its MIs in its destructor, or earlier through
// library.cleanup().
#ifndef QRX_BENCH_LOADEDLIBRARY_H_
#define QRX_BENCH_LOADEDLIBRARY_H_

#include <string>

#include "cmpift.h"
#include "tools/cimhost/ProviderLibrary.h"
#include "tools/cimhost/broker/ClassHierarchy.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace bench {

struct LoadedLibrary {
  LoadedLibrary() : broker(&hierarchy), library(broker) {}

  // Loads the hierarchy and the library and returns `ipClass`'s instance
  // MI; null with *opError set when any step fails.
  CMPIInstanceMI* open(const char* ipClass, std::string* opError) {
    for (const char* file : {QRX_BENCH_HIERARCHY_MOF, QRX_BENCH_VENDOR_MOF}) {
      if (!hierarchy.loadMofFile(file, opError)) return nullptr;
    }
    if (!library.open(QRX_BENCH_LIBRARY, opError)) return nullptr;
    return library.instanceMI(ipClass, opError);
  }

  cimhost::ClassHierarchy hierarchy;
  cimhost::TestBroker broker;
  cimhost::ProviderLibrary library;
};

}  // namespace bench

#endif  // QRX_BENCH_LOADEDLIBRARY_H_
