// cimhost::EncError: CMPIError (CMPI 2.0), an extended error in the shape
// of CIM_Error.
//
// newCMPIError() sets the owning entity, message id, message (each may be
// NULL: unset), perceived severity, probable cause and CIM status code;
// the error type starts UnknownErrorType and the source format
// CMPIErrSrcUnknown. String getters return a new string, or NULL (with
// CMPI_RC_OK) for a field never set; array getters return a new copy of the
// array, or NULL likewise. Setters copy what they get; a NULL string or
// array is CMPI_RC_ERR_INVALID_PARAMETER, and recommended actions and
// message arguments must be string arrays (CMPI_RC_ERR_TYPE_MISMATCH).
#ifndef QRX_TOOLS_CIMHOST_BROKER_ERRORS_H_
#define QRX_TOOLS_CIMHOST_BROKER_ERRORS_H_

#include <memory>
#include <optional>
#include <string>

#include "tools/cimhost/broker/Arrays.h"
#include "tools/cimhost/broker/EncObject.h"

namespace cimhost {

class EncError : public Encapsulated<EncError, CMPIError, CMPIErrorFT> {
 public:
  // The fields of CIM_Error that CMPIError carries. Strings and arrays are
  // optional (unset until given).
  struct Fields {
    CMPIErrorType errorType = UnknownErrorType;
    std::optional<std::string> otherErrorType;
    std::optional<std::string> owningEntity;
    std::optional<std::string> messageId;
    std::optional<std::string> message;
    CMPIErrorSeverity perceivedSeverity = ErrorSevUnknown;
    CMPIErrorProbableCause probableCause = ErrorProbCauseUnknown;
    std::optional<std::string> probableCauseDescription;
    std::optional<std::string> errorSource;
    CMPIErrorSrcFormat errorSourceFormat = CMPIErrSrcUnknown;
    std::optional<std::string> otherErrorSourceFormat;
    CMPIrc cimStatusCode = CMPI_RC_OK;
    std::optional<std::string> cimStatusCodeDescription;
  };

  static std::unique_ptr<EncError> make(Core* ipCore);

  Fields& fields() { return ivFields; }
  const Fields& fields() const { return ivFields; }

  // NULL while unset.
  const EncArray* recommendedActions() const { return ivRecommendedActions.get(); }
  const EncArray* messageArguments() const { return ivMessageArguments.get(); }
  Status setRecommendedActions(const CMPIArray* ipActions);
  Status setMessageArguments(const CMPIArray* ipArguments);

  std::unique_ptr<EncError> copy(Core* ipCore) const;
  std::unique_ptr<EncObject> copyTo(Core* ipCore) const override { return copy(ipCore); }

  static const CMPIErrorFT* table(const Core* ipCore);
  static bool isOwnTable(const CMPIErrorFT* ipFt);

 private:
  explicit EncError(Core* ipCore) : Encapsulated(ipCore) {}

  Fields ivFields;
  std::unique_ptr<EncArray> ivRecommendedActions;
  std::unique_ptr<EncArray> ivMessageArguments;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_ERRORS_H_
