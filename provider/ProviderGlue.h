// The generic halves of the generated provider operations. Each generated
// `<Class>_Provider` (see generated/scimproviders/) writes its own log and
// status texts and calls these templates for the work that is the same for
// every class.
//
// A provider type P offers:
//   P::className, P::providerName            const char*
//   P::broker                                the broker of its instance MI
//   P::classT, P::keyT, P::classArrayT, P::keyArrayT, P::backendT
//   P::getKeyFromObjPath, P::fillModelObject, P::fillProperties,
//   P::makeObjPath                           (ProviderBase below)
// and, for an association, P::assocBroker, P::refLeft, P::refRight and the
// provider types of its ends, P::leftProviderT and P::rightProviderT.
//
// The backend P::backendT::singleton answers true for success. The
// templates report a false answer as CMPI_RC_ERR_FAILED with a fixed text;
// CMReturnDone is left to the caller unless said otherwise. Property lists
// are accepted and not applied: every instance carries all its properties.
// Their debug lines name the provider and the template as the function
// ("[QRX_Switch_Provider_backendEnumInstances, 133] ").
#ifndef QRX_PROVIDER_PROVIDERGLUE_H_
#define QRX_PROVIDER_PROVIDERGLUE_H_

#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "cmpidt.h"
#include "cmpift.h"
#include "cmpimacs.h"
#include "common/base/PerfSamples.h"
#include "common/base/trace.h"
#include "provider/CMPIDeserializer.h"
#include "provider/CMPISerializer.h"
#include "provider/ProviderHelper.h"

// A new path of class `ipClassName` in the namespace `ipNameSpace`, keyed
// by `irKey`. The broker's failure to make it is a defect (asserted).
template <class KeyT>
CMPIObjectPath* makeKeyedObjPath(const CMPIBroker* ipBroker, const char* ipNameSpace,
                                 const char* ipClassName, const KeyT& irKey) {
  CMPIObjectPath* path = newObjPathChecked(ipBroker, ipNameSpace, ipClassName);
  CMPIObjPathSerializer serializer(ipBroker, path);
  irKey.serialize(serializer);
  return path;
}

// The same in the namespace of `ipRef`.
template <class KeyT>
CMPIObjectPath* makeKeyedObjPath(const CMPIBroker* ipBroker, const CMPIObjectPath* ipRef,
                                 const char* ipClassName, const KeyT& irKey) {
  return makeKeyedObjPath(ipBroker, nameSpaceOf(ipRef), ipClassName, irKey);
}

// The model conversions of a provider type, for the model types of its
// class (makeObjPath, which needs the class name, is the provider's own).
template <class ClassT, class KeyT>
struct ProviderBase {
  // Reads the key properties of `ipOp` into `orKey` (keys flagged
  // CMPI_keyValue or not, as the object manager delivers them); the
  // reader's status ends in `opRc`.
  static void getKeyFromObjPath(const CMPIObjectPath* ipOp, KeyT& orKey, CMPIStatus* opRc) {
    CMPIRequestPathDeserializer deserializer(ipOp);
    orKey.deserialize(deserializer);
    *opRc = deserializer.getStatus();
  }

  // Reads the properties of `ipCi` into `orObj`; absent ones keep their value.
  static void fillModelObject(const CMPIInstance* ipCi, ClassT& orObj, CMPIStatus* opRc) {
    CMPIDeserializer deserializer(ipCi);
    orObj.deserialize(deserializer);
    *opRc = deserializer.getStatus();
  }

  // Writes every property of `irObj` into `ipInst`.
  static void fillProperties(const CMPIBroker* ipBroker, CMPIInstance* ipInst, const ClassT& irObj,
                             CMPIStatus* opRc) {
    CMPISerializer serializer(ipBroker, ipInst);
    irObj.serialize(serializer);
    *opRc = serializer.getStatus();
  }
};

// ---------------------------------------------------------------------------
// Instance operations

// Returns one instance of resultProviderT's class per element of
// `irArray`, in order. Stops at the first instance whose properties cannot
// be set, with that status in `opRc`.
template <class resultProviderT, class ArrayT>
void addInstancesToResult(const CMPIBroker* ipBroker, const char* ipNameSpace, const ArrayT& irArray,
                          const char** ipProperties, const CMPIResult* ipResult, CMPIStatus* opRc) {
  (void)ipProperties;  // accepted, deliberately not applied
  for (const auto& element : irArray) {
    CMPIObjectPath* path = newObjPathChecked(ipBroker, ipNameSpace, resultProviderT::className);
    CMPIInstance* instance = newInstanceChecked(ipBroker, path);
    resultProviderT::fillProperties(ipBroker, instance, element, opRc);
    CMReturnInstance(ipResult, instance);
    if (opRc->rc != CMPI_RC_OK) return;
  }
}

template <class P>
void backendEnumInstanceNames(const CMPIResult* ipResult, const CMPIObjectPath* ipRef,
                              CMPIStatus* opRc) {
  static const std::string tag = std::string(P::className) + "_Provider.backendEnumInstanceNames";
  typename P::keyArrayT keys;
  bool done;
  {
    AutoTimeStat sample(tag);
    done = P::backendT::singleton.enumInstanceNames(keys);
  }
  if (!done) {
    setStatus(opRc, P::broker, CMPI_RC_ERR_FAILED, "backendEnumInstanceNames() failed");
    return;
  }
  for (const auto& key : keys) CMReturnObjectPath(ipResult, P::makeObjPath(P::broker, ipRef, key));
}

template <class P>
void backendEnumInstances(const CMPIResult* ipResult, const CMPIObjectPath* ipRef,
                          const char** ipProperties, CMPIStatus* opRc) {
  static const std::string tag = std::string(P::className) + "_Provider.backendEnumInstances";
  const char* nameSpace = nameSpaceOf(ipRef);
  typename P::classArrayT objects;
  bool done;
  {
    AutoTimeStat sample(tag);
    done = P::backendT::singleton.enumInstances(objects);
  }
  if (!done) {
    setStatus(opRc, P::broker, CMPI_RC_ERR_FAILED, "backendEnumInstances() failed");
    return;
  }
  TRACE_DEBUG_AT(P::providerName, "backendEnumInstances", "return %d %s.instances\n",
                 static_cast<int>(objects.size()), P::className);
  addInstancesToResult<P>(P::broker, nameSpace, objects, ipProperties, ipResult, opRc);
}

template <class P>
void backendGetInstance(const CMPIResult* ipResult, const CMPIObjectPath* ipOp,
                        const char** ipProperties, CMPIStatus* opRc) {
  (void)ipProperties;  // accepted, deliberately not applied
  typename P::keyT key;
  P::getKeyFromObjPath(ipOp, key, opRc);
  if (opRc->rc != CMPI_RC_OK) return;
  typename P::classT object;
  if (!P::backendT::singleton.getInstance(key, object)) {
    setStatus(opRc, P::broker, CMPI_RC_ERR_FAILED, "backendGetInstance() failed");
    return;
  }
  CMPIObjectPath* path = newObjPathChecked(P::broker, nameSpaceOf(ipOp), P::className);
  CMPIInstance* instance = newInstanceChecked(P::broker, path);
  P::fillProperties(P::broker, instance, object, opRc);
  CMReturnInstance(ipResult, instance);
}

// ---------------------------------------------------------------------------
// Association operations

// The objects (or their names) at one end for a source at the other:
// at the right end for a left-end source when `ToRight`, else the mirror.
template <class P, bool ToRight>
CMPIStatus associatorsFor(bool ipWantInstances, const CMPIResult* ipResult,
                          const CMPIObjectPath* ipCop, const char** ipProperties) {
  using SourceT = std::conditional_t<ToRight, typename P::leftProviderT, typename P::rightProviderT>;
  using TargetT = std::conditional_t<ToRight, typename P::rightProviderT, typename P::leftProviderT>;
  auto& backend = P::backendT::singleton;
  CMPIStatus rc = okStatus();
  const char* nameSpace = nameSpaceOf(ipCop);
  typename SourceT::keyT key;
  SourceT::getKeyFromObjPath(ipCop, key, &rc);
  if (rc.rc != CMPI_RC_OK) {
    setStatus(&rc, P::assocBroker, CMPI_RC_ERR_INVALID_PARAMETER, "Can not obtain key properties");
    return rc;
  }
  if (ipWantInstances) {
    typename TargetT::classArrayT objects;
    bool done;
    if constexpr (ToRight) {
      done = backend.associatorsForRefRight(key, objects);
    } else {
      done = backend.associatorsForRefLeft(key, objects);
    }
    if (!done) {
      setStatus(&rc, P::broker, CMPI_RC_ERR_FAILED, "backendAssociatorsFor() failed");
      return rc;
    }
    addInstancesToResult<TargetT>(P::assocBroker, nameSpace, objects, ipProperties, ipResult, &rc);
  } else {
    typename TargetT::keyArrayT keys;
    bool done;
    if constexpr (ToRight) {
      done = backend.associatorNamesForRefRight(key, keys);
    } else {
      done = backend.associatorNamesForRefLeft(key, keys);
    }
    if (!done) {
      setStatus(&rc, P::broker, CMPI_RC_ERR_FAILED, "backendAssociatorNamesFor() failed");
      return rc;
    }
    for (const auto& target : keys) {
      CMReturnObjectPath(ipResult, TargetT::makeObjPath(P::assocBroker, ipCop, target));
    }
  }
  CMReturnDone(ipResult);
  return rc;
}

template <class P>
CMPIStatus associatorsForLeft(bool ipWantInstances, const CMPIResult* ipResult,
                              const CMPIObjectPath* ipCop, const char** ipProperties) {
  return associatorsFor<P, false>(ipWantInstances, ipResult, ipCop, ipProperties);
}

template <class P>
CMPIStatus associatorsForRight(bool ipWantInstances, const CMPIResult* ipResult,
                               const CMPIObjectPath* ipCop, const char** ipProperties) {
  return associatorsFor<P, true>(ipWantInstances, ipResult, ipCop, ipProperties);
}

// A path of the association's own class in the namespace of `ipCop`.
// When `ipFilter` is given, that class must be it or inherit from it. False
// with `opRc` set ("Create CMPIObjectPath failed.", "Invalid assocClass").
template <class P>
bool assocClassPath(const CMPIObjectPath* ipCop, const char* ipFilter, CMPIObjectPath** opPath,
                    CMPIStatus* opRc) {
  const CMPIBroker* broker = P::assocBroker;
  *opPath = CMNewObjectPath(broker, nameSpaceOf(ipCop), P::className, opRc);
  if (*opPath == nullptr || opRc->rc != CMPI_RC_OK) {
    setStatus(opRc, broker, CMPI_RC_ERR_FAILED, "Create CMPIObjectPath failed.");
    return false;
  }
  if (ipFilter != nullptr && !CMClassPathIsA(broker, *opPath, ipFilter, opRc)) {
    setStatus(opRc, broker, CMPI_RC_ERR_INVALID_PARAMETER, "Invalid assocClass");
    return false;
  }
  *opRc = okStatus();
  return true;
}

// The role of the end opposite the source. NULL with `opRc` OK when the
// request does not concern this association (logged with `ipAsked`, the
// class the client named), NULL with `opRc` set when the source fits no end.
template <class P>
const char* assocTarget(const CMPIObjectPath* ipCop, const char* ipAsked, const char* ipResultClass,
                        const char* ipRole, const char* ipResultRole, CMPIStatus* opRc) {
  const CMPIBroker* broker = P::assocBroker;
  const char* leftClass = P::leftProviderT::className;
  const char* rightClass = P::rightProviderT::className;
  if (!assocCheckParameterConst(broker, ipCop, P::refLeft, P::refRight, leftClass, rightClass,
                                ipResultClass, ipRole, ipResultRole, opRc)) {
    TRACE_DEBUG_AT(P::providerName, "assocTarget",
                   "Check Params failed cop=%s ac=%s left=%s right=%s\n", objPathText(ipCop),
                   ipAsked != nullptr ? ipAsked : "", leftClass, rightClass);
    *opRc = okStatus();
    return nullptr;
  }
  return assocTargetName(broker, ipCop, leftClass, P::refLeft, rightClass, P::refRight, opRc);
}

// associators and associatorNames: checks the request against the
// association's ends, then asks the backend for the opposite end. A request
// that does not concern this association is an empty success (no
// CMReturnDone).
template <class P>
CMPIStatus associatorsHelper(const CMPIResult* ipResult, const CMPIObjectPath* ipCop,
                             const char* ipAssocClass, const char* ipResultClass,
                             const char* ipRole, const char* ipResultRole,
                             const char** ipProperties, bool ipWantInstances) {
  CMPIStatus rc = okStatus();
  CMPIObjectPath* assocPath = nullptr;
  if (ipAssocClass != nullptr && !assocClassPath<P>(ipCop, ipAssocClass, &assocPath, &rc)) return rc;
  const char* target = assocTarget<P>(ipCop, ipAssocClass, ipResultClass, ipRole, ipResultRole, &rc);
  if (target == nullptr) return rc;
  if (strcmp(target, P::refRight) == 0) {
    return associatorsForRight<P>(ipWantInstances, ipResult, ipCop, ipProperties);
  }
  return associatorsForLeft<P>(ipWantInstances, ipResult, ipCop, ipProperties);
}

// The association objects of the source: as a left-end source when
// `ipSourceIsLeft`, else as a right-end one. False with `opRc` set when
// the key cannot be read or the backend fails.
template <class P>
bool referencesHelper2(const CMPIObjectPath* ipCop, bool ipSourceIsLeft,
                       typename P::classArrayT& orAssocs, CMPIStatus* opRc) {
  bool done;
  if (ipSourceIsLeft) {
    typename P::leftProviderT::keyT key;
    P::leftProviderT::getKeyFromObjPath(ipCop, key, opRc);
    if (opRc->rc != CMPI_RC_OK) return false;
    done = P::backendT::singleton.referencesForRefRight(key, orAssocs);
  } else {
    typename P::rightProviderT::keyT key;
    P::rightProviderT::getKeyFromObjPath(ipCop, key, opRc);
    if (opRc->rc != CMPI_RC_OK) return false;
    done = P::backendT::singleton.referencesForRefLeft(key, orAssocs);
  }
  if (!done) setStatus(opRc, P::assocBroker, CMPI_RC_ERR_FAILED, "backendReferencesFor() failed");
  return done;
}

// references and referenceNames.
template <class P>
CMPIStatus referencesHelper(const CMPIResult* ipResult, const CMPIObjectPath* ipCop,
                            const char* ipResultClass, const char* ipRole,
                            const char** ipProperties, bool ipWantInstances) {
  (void)ipProperties;  // accepted, deliberately not applied
  const CMPIBroker* broker = P::assocBroker;
  const char* nameSpace = nameSpaceOf(ipCop);
  CMPIStatus rc = okStatus();
  CMPIObjectPath* assocPath = nullptr;
  if (!assocClassPath<P>(ipCop, ipResultClass, &assocPath, &rc)) return rc;
  const char* target = assocTarget<P>(ipCop, ipResultClass, nullptr, ipRole, nullptr, &rc);
  if (target == nullptr) return rc;
  typename P::classArrayT assocs;
  if (!referencesHelper2<P>(ipCop, strcmp(target, P::refRight) == 0, assocs, &rc)) return rc;
  for (const auto& assoc : assocs) {
    CMPIStatus made = okStatus();
    CMPIInstance* instance = CMNewInstance(broker, assocPath, &made);
    if (instance == nullptr) {
      setStatus(&rc, broker, CMPI_RC_ERR_FAILED, "Create CMPIInstance failed.");
      return rc;
    }
    P::fillProperties(broker, instance, assoc, &rc);
    if (ipWantInstances) {
      CMReturnInstance(ipResult, instance);
      continue;
    }
    CMPIObjectPath* path = CMGetObjectPath(instance, &made);
    if (path == nullptr) {
      setStatus(&rc, broker, CMPI_RC_ERR_FAILED, "CMGetObjectPath()");
      return rc;
    }
    CMSetNameSpace(path, nameSpace);
    CMReturnObjectPath(ipResult, path);
  }
  CMReturnDone(ipResult);
  return okStatus();
}

// ---------------------------------------------------------------------------
// Method arguments

// Gets the input argument `ipName`. False with `opRc` set when there are no
// arguments or CMGetArg fails (a missing argument).
bool fetchMethodArg(const CMPIArgs* ipIn, const char* ipName, CMPIData* opData, CMPIStatus* opRc);

// Reads the input argument `ipName` of CMPI type `ipType` into `orValue`.
// False with `opRc` set when it is missing or cannot be read.
template <class T>
bool readMethodArg(const CMPIArgs* ipIn, const char* ipName, CMPIType ipType, T& orValue,
                   CMPIStatus* opRc) {
  CMPIData data;
  if (!fetchMethodArg(ipIn, ipName, &data, opRc)) return false;
  CMPIDataDeserializer reader(data);
  reader.read(ipName, ipType, orValue);
  *opRc = reader.getStatus();
  return opRc->rc == CMPI_RC_OK;
}

// Reads the reference argument `ipName` into the key `orKey`; a NULL
// reference leaves the key empty, a value of another type is refused.
template <class KeyT>
bool readMethodRefArg(const CMPIArgs* ipIn, const char* ipName, KeyT& orKey, CMPIStatus* opRc) {
  CMPIData data;
  if (!fetchMethodArg(ipIn, ipName, &data, opRc)) return false;
  if (data.state != 0) return true;
  if (data.type != CMPI_ref || data.value.ref == nullptr) {
    opRc->rc = CMPI_RC_ERR_TYPE_MISMATCH;
    opRc->msg = nullptr;
    return false;
  }
  CMPIRequestPathDeserializer reader(data.value.ref);
  orKey.deserialize(reader);
  *opRc = reader.getStatus();
  return opRc->rc == CMPI_RC_OK;
}

// Adds the reference output `ipName`: a path of class `ipClassName` in the
// namespace of `ipOp` keyed by `irKey`. False with CMAddArg's status on
// failure.
template <class KeyT>
bool addMethodRefArg(const CMPIBroker* ipBroker, const CMPIObjectPath* ipOp, CMPIArgs* ipOut,
                     const char* ipName, const char* ipClassName, const KeyT& irKey,
                     CMPIStatus* opRc) {
  CMPIObjectPath* path = makeKeyedObjPath(ipBroker, ipOp, ipClassName, irKey);
  *opRc = CMAddArg(ipOut, ipName, &path, CMPI_ref);
  return opRc->rc == CMPI_RC_OK;
}

// Adds the string-array output `ipName`.
bool addMethodStringArrayArg(const CMPIBroker* ipBroker, CMPIArgs* ipOut, const char* ipName,
                             const std::vector<std::string>& irValue, CMPIStatus* opRc);

// Maps a backend method result: 0 is success (true); 10 gives
// CMPI_RC_ERR_NOT_SUPPORTED "ERROR: FC ID is not supported"; anything else
// CMPI_RC_ERR_FAILED with `ipFailure` ("<Method> failed").
bool methodSucceeded(const CMPIBroker* ipBroker, CMPIUint32 ipResult, const char* ipFailure,
                     CMPIStatus* opRc);

#endif  // QRX_PROVIDER_PROVIDERGLUE_H_
