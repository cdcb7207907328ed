#include "tools/cimhost/broker/Errors.h"

#include "tools/cimhost/broker/Core.h"
#include "tools/cimhost/broker/Types.h"

namespace cimhost {

namespace {

using OptionalText = std::optional<std::string> EncError::Fields::*;

CMPIStatus errRelease(CMPIError* er) { return releaseFromC<EncError>(er); }

CMPIError* errClone(const CMPIError* er, CMPIStatus* rc) { return cloneFromC<EncError>(er, rc); }

template <class E>
E enumField(const CMPIError* er, CMPIStatus* rc, E EncError::Fields::*ipField, E ipFallback) {
  EncError* self = EncError::of(er, rc);
  if (!self) return ipFallback;
  setOk(rc);
  return self->fields().*ipField;
}

template <class E>
CMPIStatus setEnumField(CMPIError* er, E EncError::Fields::*ipField, E ipValue) {
  EncError* self = EncError::of(er);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  self->fields().*ipField = ipValue;
  return okStatus();
}

CMPIString* textField(const CMPIError* er, CMPIStatus* rc, OptionalText ipField) {
  EncError* self = EncError::of(er, rc);
  if (!self) return nullptr;
  Core* core = self->core();
  return guard(core, rc, static_cast<CMPIString*>(nullptr), [&] {
    const std::optional<std::string>& text = self->fields().*ipField;
    setOk(rc);
    return text ? core->newString(*text) : nullptr;
  });
}

CMPIStatus setTextField(CMPIError* er, const char* ipText, OptionalText ipField,
                        const char* ipWhat) {
  EncError* self = EncError::of(er);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] {
    if (!ipText) return Status(CMPI_RC_ERR_INVALID_PARAMETER, std::string(ipWhat) + " is NULL");
    self->fields().*ipField = std::string(ipText);
    return Status::OK();
  });
}

CMPIArray* arrayField(const CMPIError* er, CMPIStatus* rc,
                      const EncArray* (EncError::*ipGet)() const) {
  EncError* self = EncError::of(er, rc);
  if (!self) return nullptr;
  Core* core = self->core();
  return guard(core, rc, static_cast<CMPIArray*>(nullptr), [&] {
    const EncArray* array = (self->*ipGet)();
    setOk(rc);
    return array ? core->adopt(array->copy(core)) : nullptr;
  });
}

CMPIErrorType errGetErrorType(const CMPIError* er, CMPIStatus* rc) {
  return enumField(er, rc, &EncError::Fields::errorType, UnknownErrorType);
}
CMPIString* errGetOtherErrorType(const CMPIError* er, CMPIStatus* rc) {
  return textField(er, rc, &EncError::Fields::otherErrorType);
}
CMPIString* errGetOwningEntity(const CMPIError* er, CMPIStatus* rc) {
  return textField(er, rc, &EncError::Fields::owningEntity);
}
CMPIString* errGetMessageID(const CMPIError* er, CMPIStatus* rc) {
  return textField(er, rc, &EncError::Fields::messageId);
}
CMPIString* errGetMessage(const CMPIError* er, CMPIStatus* rc) {
  return textField(er, rc, &EncError::Fields::message);
}
CMPIErrorSeverity errGetPerceivedSeverity(const CMPIError* er, CMPIStatus* rc) {
  return enumField(er, rc, &EncError::Fields::perceivedSeverity, ErrorSevUnknown);
}
CMPIErrorProbableCause errGetProbableCause(const CMPIError* er, CMPIStatus* rc) {
  return enumField(er, rc, &EncError::Fields::probableCause, ErrorProbCauseUnknown);
}
CMPIString* errGetProbableCauseDescription(const CMPIError* er, CMPIStatus* rc) {
  return textField(er, rc, &EncError::Fields::probableCauseDescription);
}
CMPIArray* errGetRecommendedActions(const CMPIError* er, CMPIStatus* rc) {
  return arrayField(er, rc, &EncError::recommendedActions);
}
CMPIString* errGetErrorSource(const CMPIError* er, CMPIStatus* rc) {
  return textField(er, rc, &EncError::Fields::errorSource);
}
CMPIErrorSrcFormat errGetErrorSourceFormat(const CMPIError* er, CMPIStatus* rc) {
  return enumField(er, rc, &EncError::Fields::errorSourceFormat, CMPIErrSrcUnknown);
}
CMPIString* errGetOtherErrorSourceFormat(const CMPIError* er, CMPIStatus* rc) {
  return textField(er, rc, &EncError::Fields::otherErrorSourceFormat);
}
CMPIrc errGetCIMStatusCode(const CMPIError* er, CMPIStatus* rc) {
  return enumField(er, rc, &EncError::Fields::cimStatusCode, CMPI_RC_OK);
}
CMPIString* errGetCIMStatusCodeDescription(const CMPIError* er, CMPIStatus* rc) {
  return textField(er, rc, &EncError::Fields::cimStatusCodeDescription);
}
CMPIArray* errGetMessageArguments(const CMPIError* er, CMPIStatus* rc) {
  return arrayField(er, rc, &EncError::messageArguments);
}

CMPIStatus errSetErrorType(CMPIError* er, const CMPIErrorType et) {
  return setEnumField(er, &EncError::Fields::errorType, et);
}
CMPIStatus errSetOtherErrorType(CMPIError* er, const char* ot) {
  return setTextField(er, ot, &EncError::Fields::otherErrorType, "other error type");
}
CMPIStatus errSetProbableCauseDescription(CMPIError* er, const char* pcd) {
  return setTextField(er, pcd, &EncError::Fields::probableCauseDescription,
                      "probable cause description");
}
CMPIStatus errSetRecommendedActions(CMPIError* er, const CMPIArray* ra) {
  EncError* self = EncError::of(er);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->setRecommendedActions(ra); });
}
CMPIStatus errSetErrorSource(CMPIError* er, const char* es) {
  return setTextField(er, es, &EncError::Fields::errorSource, "error source");
}
CMPIStatus errSetErrorSourceFormat(CMPIError* er, const CMPIErrorSrcFormat esf) {
  return setEnumField(er, &EncError::Fields::errorSourceFormat, esf);
}
CMPIStatus errSetOtherErrorSourceFormat(CMPIError* er, const char* oef) {
  return setTextField(er, oef, &EncError::Fields::otherErrorSourceFormat,
                      "other error source format");
}
CMPIStatus errSetCIMStatusCodeDescription(CMPIError* er, const char* scd) {
  return setTextField(er, scd, &EncError::Fields::cimStatusCodeDescription,
                      "CIM status code description");
}
CMPIStatus errSetMessageArguments(CMPIError* er, CMPIArray* values) {
  EncError* self = EncError::of(er);
  if (!self) return CMPIStatus{CMPI_RC_ERR_INVALID_HANDLE, nullptr};
  return guardStatus(self->core(), [&] { return self->setMessageArguments(values); });
}

constexpr CMPIErrorFT makeTable(int ipVersion) {
  return CMPIErrorFT{ipVersion,
                     errRelease,
                     errClone,
                     errGetErrorType,
                     errGetOtherErrorType,
                     errGetOwningEntity,
                     errGetMessageID,
                     errGetMessage,
                     errGetPerceivedSeverity,
                     errGetProbableCause,
                     errGetProbableCauseDescription,
                     errGetRecommendedActions,
                     errGetErrorSource,
                     errGetErrorSourceFormat,
                     errGetOtherErrorSourceFormat,
                     errGetCIMStatusCode,
                     errGetCIMStatusCodeDescription,
                     errGetMessageArguments,
                     errSetErrorType,
                     errSetOtherErrorType,
                     errSetProbableCauseDescription,
                     errSetRecommendedActions,
                     errSetErrorSource,
                     errSetErrorSourceFormat,
                     errSetOtherErrorSourceFormat,
                     errSetCIMStatusCodeDescription,
                     errSetMessageArguments};
}

const CMPIErrorFT kTable200 = makeTable(CMPIVersion200);
const CMPIErrorFT kTable100 = makeTable(CMPIVersion100);

// A copy of `ipArray` if it is an array of strings made by this broker.
Status copyStringArray(Core* ipCore, const CMPIArray* ipArray, const char* ipWhat,
                       std::unique_ptr<EncArray>* opOut) {
  const EncArray* array = EncArray::of(ipArray);
  if (!array) {
    return Status(CMPI_RC_ERR_INVALID_PARAMETER,
                  std::string(ipWhat) + " array is NULL or not from this broker");
  }
  if (array->elementType() != CMPI_string) {
    return Status(CMPI_RC_ERR_TYPE_MISMATCH, std::string(ipWhat) + " must be string[], not " +
                                                 cimTypeName(array->elementType()) + "[]");
  }
  *opOut = array->copy(ipCore);
  return Status::OK();
}

}  // namespace

std::unique_ptr<EncError> EncError::make(Core* ipCore) {
  return std::unique_ptr<EncError>(new EncError(ipCore));
}

Status EncError::setRecommendedActions(const CMPIArray* ipActions) {
  return copyStringArray(core(), ipActions, "recommended actions", &ivRecommendedActions);
}

Status EncError::setMessageArguments(const CMPIArray* ipArguments) {
  return copyStringArray(core(), ipArguments, "message arguments", &ivMessageArguments);
}

std::unique_ptr<EncError> EncError::copy(Core* ipCore) const {
  std::unique_ptr<EncError> out = make(ipCore);
  out->ivFields = ivFields;
  if (ivRecommendedActions) out->ivRecommendedActions = ivRecommendedActions->copy(ipCore);
  if (ivMessageArguments) out->ivMessageArguments = ivMessageArguments->copy(ipCore);
  return out;
}

const CMPIErrorFT* EncError::table(const Core* ipCore) {
  return ipCore->mode() == BrokerMode::Cmpi100 ? &kTable100 : &kTable200;
}

bool EncError::isOwnTable(const CMPIErrorFT* ipFt) {
  return ipFt == &kTable200 || ipFt == &kTable100;
}

}  // namespace cimhost
