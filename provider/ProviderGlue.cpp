#include "provider/ProviderGlue.h"

bool fetchMethodArg(const CMPIArgs* ipIn, const char* ipName, CMPIData* opData, CMPIStatus* opRc) {
  if (ipIn == nullptr) {
    opRc->rc = CMPI_RC_ERR_NO_SUCH_PROPERTY;
    opRc->msg = nullptr;
    return false;
  }
  *opData = CMGetArg(ipIn, ipName, opRc);
  return opRc->rc == CMPI_RC_OK;
}

bool addMethodStringArrayArg(const CMPIBroker* ipBroker, CMPIArgs* ipOut, const char* ipName,
                             const std::vector<std::string>& irValue, CMPIStatus* opRc) {
  CMPIValue value;
  CMPIValueSerializer serializer(ipBroker, &value);
  serializer.write(ipName, CMPI_stringA, irValue);
  if (serializer.hasError()) {
    *opRc = serializer.getStatus();
    return false;
  }
  *opRc = CMAddArg(ipOut, ipName, &value, CMPI_stringA);
  return opRc->rc == CMPI_RC_OK;
}

bool methodSucceeded(const CMPIBroker* ipBroker, CMPIUint32 ipResult, const char* ipFailure,
                     CMPIStatus* opRc) {
  if (ipResult == 0) return true;
  if (ipResult == 10) {
    setStatus(opRc, ipBroker, CMPI_RC_ERR_NOT_SUPPORTED, "ERROR: FC ID is not supported");
  } else {
    setStatus(opRc, ipBroker, CMPI_RC_ERR_FAILED, ipFailure);
  }
  return false;
}
