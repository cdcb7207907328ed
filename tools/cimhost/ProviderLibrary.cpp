#include "tools/cimhost/ProviderLibrary.h"

#include <dlfcn.h>

#include "tools/cimhost/StatusText.h"

namespace cimhost {

namespace {

// Calls the factory at `ipAddress` through its own type.
template <class MI>
MI* callFactory(void* ipAddress, const CMPIBroker* ipBroker, const CMPIContext* ipContext,
                CMPIStatus* opRc) {
  using Factory = MI* (*)(const CMPIBroker*, const CMPIContext*, CMPIStatus*);
  // dlsym hands out data pointers; POSIX guarantees they convert.
  return reinterpret_cast<Factory>(ipAddress)(ipBroker, ipContext, opRc);
}

void* callFactory(MiKind ipKind, void* ipAddress, const CMPIBroker* ipBroker,
                  const CMPIContext* ipContext, CMPIStatus* opRc) {
  switch (ipKind) {
    case MiKind::Instance: return callFactory<CMPIInstanceMI>(ipAddress, ipBroker, ipContext, opRc);
    case MiKind::Association:
      return callFactory<CMPIAssociationMI>(ipAddress, ipBroker, ipContext, opRc);
    case MiKind::Method: return callFactory<CMPIMethodMI>(ipAddress, ipBroker, ipContext, opRc);
    case MiKind::Indication:
      return callFactory<CMPIIndicationMI>(ipAddress, ipBroker, ipContext, opRc);
  }
  return nullptr;
}

const char* kindSuffix(MiKind ipKind) {
  switch (ipKind) {
    case MiKind::Instance: return "InstanceMI";
    case MiKind::Association: return "AssociationMI";
    case MiKind::Method: return "MethodMI";
    case MiKind::Indication: return "IndicationMI";
  }
  return "";
}

CMPIStatus cleanupMi(MiKind ipKind, void* ipMi, const CMPIContext* ipContext) {
  switch (ipKind) {
    case MiKind::Instance: {
      auto* mi = static_cast<CMPIInstanceMI*>(ipMi);
      return mi->ft->cleanup(mi, ipContext, true);
    }
    case MiKind::Association: {
      auto* mi = static_cast<CMPIAssociationMI*>(ipMi);
      return mi->ft->cleanup(mi, ipContext, true);
    }
    case MiKind::Method: {
      auto* mi = static_cast<CMPIMethodMI*>(ipMi);
      return mi->ft->cleanup(mi, ipContext, true);
    }
    case MiKind::Indication: {
      auto* mi = static_cast<CMPIIndicationMI*>(ipMi);
      return mi->ft->cleanup(mi, ipContext, true);
    }
  }
  return CMPIStatus{CMPI_RC_ERR_FAILED, nullptr};
}

}  // namespace

const char* miKindName(MiKind ipKind) {
  switch (ipKind) {
    case MiKind::Instance: return "instance";
    case MiKind::Association: return "association";
    case MiKind::Method: return "method";
    case MiKind::Indication: return "indication";
  }
  return "";
}

ProviderLibrary::ProviderLibrary(TestBroker& irBroker, std::ostream* ipTrace)
    : ivBroker(irBroker), ivTrace(ipTrace) {}

ProviderLibrary::~ProviderLibrary() { cleanup(); }

bool ProviderLibrary::open(const std::string& irPath, std::string* opError) {
  ivPath = irPath;
  dlerror();
  ivHandle = dlopen(irPath.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (ivHandle) return true;
  const char* reason = dlerror();
  *opError = "cannot load provider library " + irPath + ": " +
             (reason ? reason : "unknown loader error");
  return false;
}

std::string ProviderLibrary::factoryName(const std::string& irClass, MiKind ipKind) {
  return irClass + "_Provider_Create_" + kindSuffix(ipKind);
}

bool ProviderLibrary::exports(const std::string& irClass, MiKind ipKind) const {
  return ivHandle && dlsym(ivHandle, factoryName(irClass, ipKind).c_str()) != nullptr;
}

void* ProviderLibrary::miFor(const std::string& irClass, MiKind ipKind, std::string* opError) {
  const auto key = std::make_pair(ipKind, irClass);
  auto it = ivEntries.find(key);
  if (it == ivEntries.end()) {
    Entry entry;
    const std::string symbol = factoryName(irClass, ipKind);
    void* address = ivHandle ? dlsym(ivHandle, symbol.c_str()) : nullptr;
    if (!address) {
      entry.error = "library " + ivPath + " serves no " + miKindName(ipKind) +
                    " provider for class " + irClass;
    } else {
      if (ivTrace) *ivTrace << "qrx-cim: calling " << symbol << "\n";
      CMPIStatus rc = {CMPI_RC_OK, nullptr};
      entry.mi = callFactory(ipKind, address, ivBroker.broker(), ivBroker.context(), &rc);
      if (rc.rc != CMPI_RC_OK) {
        entry.error = failureText(symbol + " in " + ivPath, rc.rc, statusMessage(rc));
      } else if (!entry.mi) {
        entry.error = symbol + " in " + ivPath + " returned no provider";
      }
      if (!entry.mi || rc.rc != CMPI_RC_OK) {
        // Nothing usable was obtained, so there is nothing to clean up.
        entry.mi = nullptr;
      } else {
        ivObtained.push_back(key);
      }
    }
    it = ivEntries.emplace(key, std::move(entry)).first;
  }
  if (!it->second.mi) *opError = it->second.error;
  return it->second.mi;
}

CMPIInstanceMI* ProviderLibrary::instanceMI(const std::string& irClass, std::string* opError) {
  return static_cast<CMPIInstanceMI*>(miFor(irClass, MiKind::Instance, opError));
}

CMPIAssociationMI* ProviderLibrary::associationMI(const std::string& irClass,
                                                  std::string* opError) {
  return static_cast<CMPIAssociationMI*>(miFor(irClass, MiKind::Association, opError));
}

CMPIMethodMI* ProviderLibrary::methodMI(const std::string& irClass, std::string* opError) {
  return static_cast<CMPIMethodMI*>(miFor(irClass, MiKind::Method, opError));
}

CMPIIndicationMI* ProviderLibrary::indicationMI(const std::string& irClass,
                                                std::string* opError) {
  return static_cast<CMPIIndicationMI*>(miFor(irClass, MiKind::Indication, opError));
}

std::vector<std::string> ProviderLibrary::cleanup() {
  std::vector<std::string> failures;
  for (const auto& key : ivObtained) {
    const char* kind = miKindName(key.first);
    if (ivTrace) *ivTrace << "qrx-cim: cleaning up the " << kind << " provider of " << key.second << "\n";
    const CMPIStatus rc = cleanupMi(key.first, ivEntries[key].mi, ivBroker.context());
    if (rc.rc != CMPI_RC_OK) {
      failures.push_back(failureText(std::string("cleanup of the ") + kind + " provider of " +
                                         key.second,
                                     rc.rc, statusMessage(rc)));
    }
  }
  ivObtained.clear();
  return failures;
}

}  // namespace cimhost
