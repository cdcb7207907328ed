// cimhost::Value and cimhost::NamedValues: CMPI data owned by the broker.
//
// A Value holds one CMPI datum the way an instance property, object-path
// key, method argument, context entry or array element stores it: a copy
// of what the caller passed, independent of the caller's objects.
//   - CMPI_chars becomes CMPI_string (and CMPI_charsA CMPI_stringA). As
//     CMPI has it, the value pointer passed with CMPI_chars is the
//     characters themselves: CMSetProperty(inst, "Name", "sw1", CMPI_chars);
//   - strings, date-times, object paths, instances, arguments,
//     enumerations and arrays are deep-copied; CMPI_ptr is copied as the
//     pointer it is (the broker does not own what it points to);
//   - a NULL value pointer, a NULL object pointer, or the type CMPI_null
//     stores a null value of the given type (state CMPI_nullValue);
//   - CMPI_class, CMPI_filter and CMPI_charsptr are refused
//     (CMPI_RC_ERR_INVALID_DATA_TYPE), as are objects other than strings
//     and date-times that another CMPI implementation made
//     (CMPI_RC_ERR_INVALID_PARAMETER), and arrays whose element type is not
//     the one `type` names (CMPI_RC_ERR_TYPE_MISMATCH).
// data() hands out a CMPIData that points into the Value; it stays valid
// while the Value does and must not be released.
//
// NamedValues is an ordered list of uniquely named Values; names compare
// case-insensitively, as CIM names do.
#ifndef QRX_TOOLS_CIMHOST_BROKER_VALUES_H_
#define QRX_TOOLS_CIMHOST_BROKER_VALUES_H_

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cmpift.h"
#include "tools/cimhost/broker/EncObject.h"
#include "tools/cimhost/broker/Status.h"

namespace cimhost {

class Value {
 public:
  // A null value of type CMPI_null.
  Value() = default;

  Value(Value&&) noexcept = default;
  Value& operator=(Value&&) noexcept = default;
  Value(const Value&) = delete;
  Value& operator=(const Value&) = delete;

  // A null value of `ipType` (normalised as above).
  static Value null(CMPIType ipType);

  // Stores a copy of `ipValue` of `ipType` in *opOut, its objects
  // belonging to `ipCore`. *opOut is unchanged on failure.
  static Status copyFrom(Core* ipCore, const CMPIValue* ipValue, CMPIType ipType, Value* opOut);

  // A deep copy whose objects belong to `ipCore`.
  Value copy(Core* ipCore) const;

  CMPIType type() const { return ivType; }
  bool isNull() const { return ivNull; }

  // The datum, with `ipExtraState` or-ed into its state.
  CMPIData data(CMPIValueState ipExtraState = CMPI_goodValue) const;

 private:
  // Takes `ipObject` as the value (ivType must be set).
  void hold(std::unique_ptr<EncObject> ipObject);

  CMPIType ivType = CMPI_null;
  bool ivNull = true;
  CMPIValue ivValue = {};
  std::unique_ptr<EncObject> ivObject;  // for encapsulated types
};

// The type a value of `ipType` is stored as (chars as string).
CMPIType storedType(CMPIType ipType);

// A CMPIData reporting a missing item: CMPI_null, CMPI_nullValue|CMPI_notFound.
CMPIData missingData();

class NamedValues {
 public:
  NamedValues() = default;
  NamedValues(NamedValues&&) noexcept = default;
  NamedValues& operator=(NamedValues&&) noexcept = default;

  size_t size() const { return ivItems.size(); }
  const std::string& nameAt(size_t ipIndex) const { return ivItems[ipIndex].first; }
  const Value& valueAt(size_t ipIndex) const { return ivItems[ipIndex].second; }

  // The value named `irName`, or NULL.
  const Value* find(const std::string& irName) const;

  // Replaces the value of that name (keeping its position and spelling) or
  // appends a new one.
  void set(const std::string& irName, Value ipValue);

  // Removes the value of that name; false if there was none.
  bool remove(const std::string& irName);

  NamedValues copy(Core* ipCore) const;

 private:
  std::vector<std::pair<std::string, Value>> ivItems;
};

// The getters of the CMPI tables over a NamedValues (getProperty, getKey,
// getArg and their ...At forms), run inside the caller's guard. `ipWhat`
// names an item in messages ("property", "key", "argument"), `irWhere`
// ends the unknown-name message (" in QRX_Switch instance", or ""). A NULL
// name is CMPI_RC_ERR_INVALID_PARAMETER, an unknown one `ipMissing`, an
// index past the end CMPI_RC_ERR_NO_SUCH_PROPERTY; each returns
// missingData() then. `ipState` is or-ed into the state of what is found.
CMPIData namedValueData(Core* ipCore, const NamedValues& irValues, const char* ipName,
                        const char* ipWhat, const std::string& irWhere, CMPIrc ipMissing,
                        CMPIStatus* opRc, CMPIValueState ipState = CMPI_goodValue);
CMPIData indexedValueData(Core* ipCore, const NamedValues& irValues, CMPICount ipIndex,
                          CMPIString** opName, const char* ipWhat, CMPIStatus* opRc,
                          CMPIValueState ipState = CMPI_goodValue);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_VALUES_H_
