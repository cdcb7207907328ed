// The entry-point shape of the hand-written providers (profile
// registration, agent software, performance records, debug facility): the
// same static MI objects, function tables (CMPI 2.0), once-only `miName`
// and stored brokers as the generated providers, and, for classes whose
// instances are a list, the generic instance operations of ProviderGlue.h.
//
// A hand-written provider type P offers what ProviderGlue.h asks of a
// provider type (className, providerName, broker, the model types,
// backendT, getKeyFromObjPath, fillProperties, makeObjPath) plus
//   P::unit                     the source unit its own error lines name
// and, per further MI kind, assocBroker / methodBroker and the operations
// of that kind with their CMPI signatures.
//
// Creation, modification, deletion and queries are not offered
// (CMPI_RC_ERR_NOT_SUPPORTED). A factory writes the debug line "loaded"
// (the always-on "Info: loaded" lines belong to the generated providers).
// Log lines name the provider and operation as the function, e.g.
// "[QRX_RegisteredProfile_Provider_enumInstances, 52] ".
#ifndef QRX_PROVIDER_HANDWRITTENPROVIDER_H_
#define QRX_PROVIDER_HANDWRITTENPROVIDER_H_

#include <atomic>
#include <mutex>
#include <string>

#include "cmpidt.h"
#include "cmpift.h"
#include "cmpimacs.h"
#include "common/base/PerfSamples.h"
#include "common/base/trace.h"
#include "provider/ProviderGlue.h"
#include "provider/ProviderHelper.h"

// A backend for a provider type P whose instances are all listed by
// `P::list(classArrayT&)` (false on failure): names and single instances
// are taken from that list.
template <class P>
struct ListBackend {
  using KeyArray = typename P::keyArrayT;
  static ListBackend singleton;

  bool enumInstances(typename P::classArrayT& orOut) { return P::list(orOut); }
  bool enumInstanceNames(typename P::keyArrayT& orOut) {
    typename P::classArrayT all;
    if (!P::list(all)) return false;
    for (const auto& object : all) orOut.emplace_back(object);
    return true;
  }
  bool getInstance(const typename P::keyT& irKey, typename P::classT& orOut) {
    typename P::classArrayT all;
    if (!P::list(all)) return false;
    for (const auto& object : all) {
      if (typename P::keyT(object) == irKey) {
        orOut = object;
        return true;
      }
    }
    return false;
  }
};
template <class P>
ListBackend<P> ListBackend<P>::singleton;

// The types and conversions of a hand-written provider type `Self` of the
// model class ClassT (with its key, array and key array types), whose
// instances `Self::list(ArrayT&)` lists: Self adds className,
// providerName and unit. Self may name another backendT and replace the
// conversions (by declaring its own).
template <class Self, class ClassT, class KeyT, class ArrayT, class KeyArrayT>
struct HandwrittenProviderBase : ProviderBase<ClassT, KeyT> {
  using classT = ClassT;
  using keyT = KeyT;
  using classArrayT = ArrayT;
  using keyArrayT = KeyArrayT;
  using backendT = ListBackend<Self>;
  // Stored by the factories; read by every operation.
  static inline std::atomic<const CMPIBroker*> broker{nullptr};

  // A new path of Self's class in the namespace of `ipRef`, keyed by `irKey`.
  static CMPIObjectPath* makeObjPath(const CMPIBroker* ipBroker, const CMPIObjectPath* ipRef,
                                     const KeyT& irKey) {
    return makeKeyedObjPath(ipBroker, ipRef, Self::className, irKey);
  }
};

// The instance operations no hand-written provider offers.
template <class P>
struct NotOfferedInstanceOps {
  static CMPIStatus cleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) { return okStatus(); }
  static CMPIStatus createInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                                   const CMPIObjectPath*, const CMPIInstance*) {
    return notSupported();
  }
  static CMPIStatus modifyInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                                   const CMPIObjectPath*, const CMPIInstance*, const char**) {
    return notSupported();
  }
  static CMPIStatus deleteInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                                   const CMPIObjectPath*) {
    return notSupported();
  }
  static CMPIStatus execQuery(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*,
                              const CMPIObjectPath*, const char*, const char*) {
    return notSupported();
  }
  static CMPIStatus notSupported() {
    CMPIStatus rc = {CMPI_RC_ERR_NOT_SUPPORTED, nullptr};
    return rc;
  }
};

// Ends an instance operation: CMReturnDone on success, else an error line.
template <class P>
void finishInstanceOp(const CMPIResult* ipResult, const CMPIStatus& irRc, const char* ipOperation) {
  if (irRc.rc == CMPI_RC_OK) {
    CMReturnDone(ipResult);
  } else {
    TRACE_ERROR_AT("provider/HandwrittenProvider", P::providerName, ipOperation,
                   "%s.%s() failed rc=%d\n", P::className, ipOperation, irRc.rc);
  }
}

// The instance operations of a class whose backend lists its instances
// (ListBackend or any backend with the same three operations).
template <class P>
struct ListedInstanceOps : NotOfferedInstanceOps<P> {
  static CMPIStatus enumInstanceNames(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* rslt,
                                      const CMPIObjectPath* ref) {
    static const std::string sampleTag = std::string(P::providerName) + ".enumInstanceNames";
    AutoTimeStat sample(sampleTag);
    CMPIStatus rc = okStatus();
    TRACE_DEBUG_AT(P::providerName, "enumInstanceNames", "class=%s ref=%s\n", P::className,
                   objPathText(ref));
    backendEnumInstanceNames<P>(rslt, ref, &rc);
    finishInstanceOp<P>(rslt, rc, "enumInstanceNames");
    return rc;
  }
  static CMPIStatus enumInstances(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* rslt,
                                  const CMPIObjectPath* ref, const char** properties) {
    static const std::string sampleTag = std::string(P::providerName) + ".enumInstances";
    AutoTimeStat sample(sampleTag);
    CMPIStatus rc = okStatus();
    TRACE_DEBUG_AT(P::providerName, "enumInstances", "class=%s ref=%s\n", P::className,
                   objPathText(ref));
    backendEnumInstances<P>(rslt, ref, properties, &rc);
    finishInstanceOp<P>(rslt, rc, "enumInstances");
    return rc;
  }
  static CMPIStatus getInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* rslt,
                                const CMPIObjectPath* op, const char** properties) {
    CMPIStatus rc = okStatus();
    TRACE_DEBUG_AT(P::providerName, "getInstance", "class=%s op=%s\n", P::className,
                   objPathText(op));
    backendGetInstance<P>(rslt, op, properties, &rc);
    finishInstanceOp<P>(rslt, rc, "getInstance");
    return rc;
  }
};

// The factories' work: the static MI of its kind for P, named once, with
// the broker stored in P. Ops supplies the operations of the kind.
template <class P, class Ops = ListedInstanceOps<P>>
CMPIInstanceMI* handwrittenInstanceMI(const CMPIBroker* ipBroker) {
  static CMPIInstanceMIFT instMIFT = {
      200,
      200,
      nullptr,
      Ops::cleanup,
      Ops::enumInstanceNames,
      Ops::enumInstances,
      Ops::getInstance,
      Ops::createInstance,
      Ops::modifyInstance,
      Ops::deleteInstance,
      Ops::execQuery,
  };
  static CMPIInstanceMI mi = {nullptr, &instMIFT};
  static std::once_flag named;
  std::call_once(named, [] { instMIFT.miName = P::providerName; });
  P::broker = ipBroker;
  TRACE_DEBUG_AT(P::providerName, "Create_InstanceMI", "loaded %s\n", P::className);
  return &mi;
}

template <class P>
CMPIStatus handwrittenAssocCleanup(CMPIAssociationMI*, const CMPIContext*, CMPIBoolean) {
  return okStatus();
}

template <class P, class Ops = P>
CMPIAssociationMI* handwrittenAssociationMI(const CMPIBroker* ipBroker) {
  static CMPIAssociationMIFT assocMIFT = {
      200,
      200,
      nullptr,
      handwrittenAssocCleanup<P>,
      Ops::associators,
      Ops::associatorNames,
      Ops::references,
      Ops::referenceNames,
  };
  static CMPIAssociationMI mi = {nullptr, &assocMIFT};
  static std::once_flag named;
  std::call_once(named, [] { assocMIFT.miName = P::providerName; });
  P::assocBroker = ipBroker;
  // Messages may use the instance broker, which an object manager that
  // never loaded the instance MI has not given.
  const CMPIBroker* none = nullptr;
  P::broker.compare_exchange_strong(none, ipBroker);
  TRACE_DEBUG_AT(P::providerName, "Create_AssociationMI", "loaded %s\n", P::className);
  return &mi;
}

template <class P>
CMPIStatus handwrittenMethodCleanup(CMPIMethodMI*, const CMPIContext*, CMPIBoolean) {
  return okStatus();
}

template <class P>
CMPIMethodMI* handwrittenMethodMI(const CMPIBroker* ipBroker) {
  static CMPIMethodMIFT methMIFT = {200, 200, nullptr, handwrittenMethodCleanup<P>,
                                    P::invokeMethod};
  static CMPIMethodMI mi = {nullptr, &methMIFT};
  static std::once_flag named;
  std::call_once(named, [] { methMIFT.miName = P::providerName; });
  P::methodBroker = ipBroker;
  const CMPIBroker* none = nullptr;
  P::broker.compare_exchange_strong(none, ipBroker);
  TRACE_DEBUG_AT(P::providerName, "Create_MethodMI", "loaded %s\n", P::className);
  return &mi;
}

// Whether the association class `ipAssocClass` (NULL: any) covers the
// association P. False with the error line "Invalid assocClass=%s" and
// `opRc` CMPI_RC_ERR_INVALID_PARAMETER "Invalid assocClass" when it does
// not; "Create CMPIObjectPath failed." when the class path cannot be made.
template <class P>
bool assocClassCovers(const CMPIObjectPath* ipCop, const char* ipAssocClass,
                      const char* ipOperation, CMPIStatus* opRc) {
  CMPIObjectPath* path = nullptr;
  if (assocClassPath<P>(ipCop, ipAssocClass, &path, opRc)) return true;
  if (path != nullptr) {
    TRACE_ERROR_AT(P::unit, P::providerName, ipOperation, "Invalid assocClass=%s\n", ipAssocClass);
  }
  return false;
}

#endif  // QRX_PROVIDER_HANDWRITTENPROVIDER_H_
