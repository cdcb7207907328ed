// IndSubscriptions: what the indication providers have asked for.
//
// Per lifecycle indication type, the active subscription queries (CQL,
// read into a CqlSelect), and the four switches with which the providers
// turn delivery on and off. The event thread asks isLifecycleIndEnabledFor
// and the flags before it builds an indication; provider threads add and
// drop queries and set the flags. Every operation takes the one lock.
//
// A query is accepted only when every search factor of its condition has
// the form `property ISA class`, e.g.
//   SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_FCPort
// It selects a class when one of its terms holds for it: every factor of
// the term names the class or one of its superclasses (the class tree,
// scimIsa). The property of a factor is not compared: in a lifecycle
// indication SourceInstance and PreviousInstance are of the same class. A
// query without WHERE selects every class.
#ifndef QRX_COMMON_BACKEND_INDSUBSCRIPTIONS_H_
#define QRX_COMMON_BACKEND_INDSUBSCRIPTIONS_H_

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "common/base/Mutex.h"
#include "cql/CqlSelect.h"

enum IND_TYPE {
  IND_INSTCREATION = 0,
  IND_INSTMODIFICATION = 1,
  IND_INSTDELETION = 2,
  IND_MAX = 3,
};

class IndSubscriptions {
 public:
  IndSubscriptions() = default;
  IndSubscriptions(const IndSubscriptions&) = delete;
  IndSubscriptions& operator=(const IndSubscriptions&) = delete;

  // Registers `irQuery` for `ipType`. False, with a trace line, when the
  // text is registered already, is not CQL, or has a condition of another
  // shape than `property ISA class`.
  bool addQuery(IND_TYPE ipType, const std::string& irQuery);
  // Drops `irQuery`; false when it was not registered.
  bool delQuery(IND_TYPE ipType, const std::string& irQuery);
  // Whether a registered query of `ipType` selects instances of
  // `irClassName`.
  bool isLifecycleIndEnabledFor(const std::string& irClassName, IND_TYPE ipType) const;

  void setInstCreationEnabled(bool ipOn) { setFlag(ivInstCreationEnabled, ipOn); }
  bool getInstCreationEnabled() const { return getFlag(ivInstCreationEnabled); }
  void setInstModificationEnabled(bool ipOn) { setFlag(ivInstModificationEnabled, ipOn); }
  bool getInstModificationEnabled() const { return getFlag(ivInstModificationEnabled); }
  void setInstDeletionEnabled(bool ipOn) { setFlag(ivInstDeletionEnabled, ipOn); }
  bool getInstDeletionEnabled() const { return getFlag(ivInstDeletionEnabled); }
  void setAlertEnabled(bool ipOn) { setFlag(ivAlertEnabled, ipOn); }
  bool getAlertEnabled() const { return getFlag(ivAlertEnabled); }

  // A new indication identifier: the current time as ctime() writes it
  // (newline included) and a running number, "%s_%08X", at most 49
  // characters.
  void generateEventIdent(std::string& orIdent);

 private:
  typedef std::map<std::string, std::unique_ptr<cql::CqlSelect>> QueryMap;

  void setFlag(bool& orFlag, bool ipOn);
  bool getFlag(const bool& irFlag) const;
  // Whether every factor has the form `property ISA class`; logs why not.
  static bool isIsaCondition(const cql::CqlSelect& irSelect);

  mutable fcbb::Mutex ivLock;
  bool ivInstCreationEnabled = false;
  bool ivInstModificationEnabled = false;
  bool ivInstDeletionEnabled = false;
  bool ivAlertEnabled = false;
  std::uint32_t ivEventIdentNr = 0;
  QueryMap ivCqlSelectMap[IND_MAX];
};

#endif  // QRX_COMMON_BACKEND_INDSUBSCRIPTIONS_H_
