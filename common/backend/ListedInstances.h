// Backends that list their instances in full.
//
// A backend whose enumInstances is written by hand builds every instance
// (for an association, both ends' keys) from the switch's records. Its
// generated backend answers the other read operations from that list with
// the functions below, each unless the schema says the backend writes it:
//
//   enumInstanceNames      the key of every listed instance
//   getInstance            the listed instance with that key
// and for an association:
//   referencesFor<Role>    the listed instances whose other end is the source
//   associatorNamesFor<Role>  the <Role> ends of those instances, in list
//                          order, each once
//   associatorsFor<Role>   the objects behind those names, from the backend
//                          of the <Role> end's class (which enumerates once;
//                          a name it does not list is asked for with its
//                          getInstance, so that an end declared with a
//                          superclass finds its subclasses' objects)
//
// A failing backend call ends the operation with false; the called backend
// has logged why. A name whose object cannot be found is left out.
#ifndef QRX_COMMON_BACKEND_LISTEDINSTANCES_H_
#define QRX_COMMON_BACKEND_LISTEDINSTANCES_H_

#include <algorithm>
#include <type_traits>
#include <utility>
#include <vector>

#include "common/base/trace.h"

namespace listed_instances {

template <class ArrayT, class BestT, class KeyArrayT>
bool names(BestT& irBackend, KeyArrayT& orOut) {
  ArrayT all;
  if (!irBackend.enumInstances(all)) return false;
  for (const auto& object : all) orOut.emplace_back(object);
  return true;
}

template <class ArrayT, class BestT, class KeyT, class ObjectT>
bool get(BestT& irBackend, const KeyT& irKey, ObjectT& orOut) {
  ArrayT all;
  if (!irBackend.enumInstances(all)) return false;
  for (auto& object : all) {
    if (KeyT(object) == irKey) {
      orOut = std::move(object);
      return true;
    }
  }
  TRACE_ERROR(BestT::className, "No Instance found\n");
  return false;
}

// `ipSource` is the member holding the source's end, `ipTarget` the other.
template <class ArrayT, class BestT, class SourceKeyT, class ObjectT>
bool references(BestT& irBackend, SourceKeyT ObjectT::*ipSource, const SourceKeyT& irSource,
                ArrayT& orOut) {
  ArrayT all;
  if (!irBackend.enumInstances(all)) return false;
  for (auto& object : all) {
    if (object.*ipSource == irSource) orOut.push_back(std::move(object));
  }
  return true;
}

template <class ArrayT, class BestT, class SourceKeyT, class TargetKeyT, class ObjectT,
          class KeyArrayT>
bool associatorNames(BestT& irBackend, SourceKeyT ObjectT::*ipSource, TargetKeyT ObjectT::*ipTarget,
                     const SourceKeyT& irSource, KeyArrayT& orOut) {
  ArrayT all;
  if (!references(irBackend, ipSource, irSource, all)) return false;
  for (const auto& object : all) {
    const TargetKeyT& target = object.*ipTarget;
    if (std::find(orOut.begin(), orOut.end(), target) == orOut.end()) orOut.push_back(target);
  }
  return true;
}

template <class ArrayT, class TargetArrayT, class BestT, class TargetBestT, class SourceKeyT,
          class TargetKeyT, class ObjectT>
bool associators(BestT& irBackend, TargetBestT& irTargets, SourceKeyT ObjectT::*ipSource,
                 TargetKeyT ObjectT::*ipTarget, const SourceKeyT& irSource, TargetArrayT& orOut) {
  std::vector<TargetKeyT> names;
  if (!associatorNames<ArrayT>(irBackend, ipSource, ipTarget, irSource, names)) return false;
  if (names.empty()) return true;
  TargetArrayT all;
  if (!irTargets.enumInstances(all)) return false;
  for (const TargetKeyT& name : names) {
    auto found =
        std::find_if(all.begin(), all.end(), [&](const typename TargetArrayT::value_type& object) {
          return TargetKeyT(object) == name;
        });
    if (found != all.end()) {
      orOut.push_back(*found);
      continue;
    }
    typename TargetArrayT::value_type object;
    if (irTargets.getInstance(name, object)) orOut.push_back(std::move(object));
  }
  return true;
}

// Appends the instances that pair each object named by the left end's
// backend with each object named by the right end's for which
// `irMatch(left key, right key)` holds, in the order of the left, then the
// right end's names. `ipLeftLabel` and `ipRightLabel` name the ends in the
// error lines.
template <class ArrayT, class LeftBestT, class RightBestT, class LeftKeyT, class RightKeyT,
          class ObjectT, class MatchT>
bool pairs(LeftBestT& irLeft, const char* ipLeftLabel, LeftKeyT ObjectT::*ipLeftEnd,
           RightBestT& irRight, const char* ipRightLabel, RightKeyT ObjectT::*ipRightEnd,
           const MatchT& irMatch, ArrayT& orOut) {
  static_assert(std::is_same<typename ArrayT::value_type, ObjectT>::value, "ends of another class");
  const char* unit = ObjectT::ivCIMClassName.c_str();
  typename LeftBestT::KeyArray lefts;
  if (!irLeft.enumInstanceNames(lefts)) {
    TRACE_ERROR(unit, "Failed to retrieve %s key data\n", ipLeftLabel);
    return false;
  }
  typename RightBestT::KeyArray rights;
  if (!lefts.empty() && !irRight.enumInstanceNames(rights)) {
    TRACE_ERROR(unit, "Failed to retrieve %s key data\n", ipRightLabel);
    return false;
  }
  for (const LeftKeyT& left : lefts) {
    for (const RightKeyT& right : rights) {
      if (!irMatch(left, right)) continue;
      ObjectT object;
      object.*ipLeftEnd = left;
      object.*ipRightEnd = right;
      orOut.push_back(std::move(object));
    }
  }
  return true;
}

// A match for pairs() that pairs everything.
struct AnyPair {
  template <class L, class R>
  bool operator()(const L&, const R&) const {
    return true;
  }
};

// Matches for pairs() of a system and the elements it scopes (whose keys
// name it by SystemCreationClassName and SystemName): the right end's
// element on the left end's system, or the other way round.
struct OnLeftSystem {
  template <class SystemKeyT, class ElementKeyT>
  bool operator()(const SystemKeyT& irSystem, const ElementKeyT& irElement) const {
    return irElement.SystemCreationClassName == irSystem.CreationClassName &&
           irElement.SystemName == irSystem.Name;
  }
};
struct OnRightSystem {
  template <class ElementKeyT, class SystemKeyT>
  bool operator()(const ElementKeyT& irElement, const SystemKeyT& irSystem) const {
    return OnLeftSystem()(irSystem, irElement);
  }
};

}  // namespace listed_instances

#endif  // QRX_COMMON_BACKEND_LISTEDINSTANCES_H_
