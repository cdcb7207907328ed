#include "provider/Indication_Providers.h"

#include <cstring>
#include <mutex>
#include <string>

#include "cmpimacs.h"
#include "common/backend/BackendInd.h"
#include "common/base/trace.h"
#include "cql/CqlSelect.h"

namespace {

const char* const kUnit = "provider/Indication_Providers";

// The indication classes; `type` is the lifecycle type, IND_MAX for the
// alert indication.
struct IndicationClass {
  const char* className;
  const char* providerName;
  IND_TYPE type;
};

constexpr int kAlert = 3;
const IndicationClass kClasses[] = {
    {"CIM_InstCreation", "CIM_InstCreation_Provider", IND_INSTCREATION},
    {"CIM_InstModification", "CIM_InstModification_Provider", IND_INSTMODIFICATION},
    {"CIM_InstDeletion", "CIM_InstDeletion_Provider", IND_INSTDELETION},
    {"QRX_AlertIndication", "QRX_AlertIndication_Provider", IND_MAX},
};
constexpr int kClassCount = 4;

// Made once and kept for the life of the process: the event thread may
// still hold a delivery while static objects are being destroyed at unload.
IndicationDelivery* const* deliveries() {
  static IndicationDelivery* const all[kClassCount] = {
      new IndicationDelivery(kClasses[0].className), new IndicationDelivery(kClasses[1].className),
      new IndicationDelivery(kClasses[2].className), new IndicationDelivery(kClasses[3].className)};
  return all;
}

// The event thread's sink: each indication to the delivery of its class.
class DeliveryRouter : public IndicationSink {
 public:
  void deliverIndication(std::unique_ptr<SCIMSerdesable> ipIndication) override {
    IndicationDelivery* delivery = indicationDeliveryFor(ipIndication->getCIMClassName().c_str());
    if (delivery != nullptr) delivery->deliverIndication(std::move(ipIndication));
  }
};

DeliveryRouter router;

CMPIStatus status(const CMPIBroker* ipBroker, CMPIrc ipRc, const char* ipText) {
  CMPIStatus rc = {ipRc, nullptr};
  if (ipText != nullptr) rc.msg = CMNewString(ipBroker, ipText, nullptr);
  return rc;
}

void setEnabled(int ipKind, bool ipOn) {
  IndSubscriptions& subscriptions = backendInd->subscriptions();
  switch (ipKind) {
    case IND_INSTCREATION: subscriptions.setInstCreationEnabled(ipOn); break;
    case IND_INSTMODIFICATION: subscriptions.setInstModificationEnabled(ipOn); break;
    case IND_INSTDELETION: subscriptions.setInstDeletionEnabled(ipOn); break;
    default: subscriptions.setAlertEnabled(ipOn); break;
  }
}

// The indication MI of kClasses[K].
template <int K>
struct IndicationProvider {
  static const CMPIBroker* broker;

  static const IndicationClass& cls() { return kClasses[K]; }

  static CMPIStatus cleanup(CMPIIndicationMI*, const CMPIContext*, CMPIBoolean) {
    if (backendInd != nullptr) setEnabled(K, false);
    deliveries()[K]->stop();
    return status(broker, CMPI_RC_OK, nullptr);
  }

  static CMPIStatus authorizeFilter(CMPIIndicationMI*, const CMPIContext*, const CMPISelectExp*,
                                    const char*, const CMPIObjectPath*, const char*) {
    return status(broker, CMPI_RC_OK, nullptr);
  }

  static CMPIStatus mustPoll(CMPIIndicationMI*, const CMPIContext*, const CMPISelectExp*,
                             const char*, const CMPIObjectPath*) {
    return status(broker, CMPI_RC_OK, nullptr);
  }

  static CMPIStatus activateFilter(CMPIIndicationMI*, const CMPIContext*,
                                   const CMPISelectExp* ipFilter, const char*,
                                   const CMPIObjectPath*, CMPIBoolean) {
    std::string query;
    CMPIStatus rc = queryOf(ipFilter, &query);
    if (rc.rc != CMPI_RC_OK) return rc;
    if (K == kAlert) {
      cql::CqlSelect select;
      std::string error;
      if (!select.parse(query, &error)) {
        TRACE_ERROR(kUnit, "parse error query=%s: %s\n", query.c_str(), error.c_str());
        return status(broker, CMPI_RC_ERR_INVALID_QUERY, error.c_str());
      }
      TRACE_DEBUG("%s: activated query=%s\n", cls().className, query.c_str());
      return status(broker, CMPI_RC_OK, nullptr);
    }
    if (!backendInd->addQuery(cls().type, query)) {
      return status(broker, CMPI_RC_ERR_INVALID_QUERY,
                    ("query not accepted (see the trace log): " + query).c_str());
    }
    return status(broker, CMPI_RC_OK, nullptr);
  }

  static CMPIStatus deActivateFilter(CMPIIndicationMI*, const CMPIContext*,
                                     const CMPISelectExp* ipFilter, const char*,
                                     const CMPIObjectPath*, CMPIBoolean) {
    std::string query;
    CMPIStatus rc = queryOf(ipFilter, &query);
    if (rc.rc != CMPI_RC_OK) return rc;
    if (K != kAlert && !backendInd->delQuery(cls().type, query)) {
      TRACE_ERROR(kUnit, "%s: query=%s was not active\n", cls().className, query.c_str());
    }
    return status(broker, CMPI_RC_OK, nullptr);
  }

  static CMPIStatus enableIndications(CMPIIndicationMI*, const CMPIContext* ipContext) {
    if (backendInd == nullptr) return notRunning();
    if (!deliveries()[K]->start(broker, ipContext)) {
      return status(broker, CMPI_RC_ERR_FAILED, "could not start the indication delivery");
    }
    setEnabled(K, true);
    return status(broker, CMPI_RC_OK, nullptr);
  }

  static CMPIStatus disableIndications(CMPIIndicationMI*, const CMPIContext*) {
    if (backendInd == nullptr) return notRunning();
    setEnabled(K, false);
    deliveries()[K]->stop();
    return status(broker, CMPI_RC_OK, nullptr);
  }

  // The filter's query text; an error status when there is none or the
  // event handling does not run.
  static CMPIStatus queryOf(const CMPISelectExp* ipFilter, std::string* opQuery) {
    if (backendInd == nullptr) return notRunning();
    CMPIStatus rc = {CMPI_RC_OK, nullptr};
    CMPIString* text = ipFilter != nullptr ? CMGetSelExpString(ipFilter, &rc) : nullptr;
    const char* chars = text != nullptr ? CMGetCharsPtr(text, nullptr) : nullptr;
    if (chars == nullptr) {
      TRACE_ERROR(kUnit, "%s: filter without query text\n", cls().className);
      return status(broker, CMPI_RC_ERR_INVALID_QUERY, "the filter has no query text");
    }
    *opQuery = chars;
    return status(broker, CMPI_RC_OK, nullptr);
  }

  static CMPIStatus notRunning() {
    TRACE_ERROR(kUnit, "%s: event handling is not running\n", cls().className);
    return status(broker, CMPI_RC_ERR_FAILED, "event handling is not running");
  }

  static CMPIIndicationMI* create(const CMPIBroker* ipBroker) {
    static CMPIIndicationMIFT indMIFT = {200, 200, nullptr, cleanup, authorizeFilter, mustPoll,
                                         activateFilter, deActivateFilter, enableIndications,
                                         disableIndications};
    static CMPIIndicationMI mi = {nullptr, &indMIFT};
    static std::once_flag named;
    std::call_once(named, [] { indMIFT.miName = cls().providerName; });
    broker = ipBroker;
    if (backendInd != nullptr) backendInd->setIndicationSink(&router);
    trace_log(false, "Info: loaded Indication %s\n", cls().className);
    return &mi;
  }
};

template <int K>
const CMPIBroker* IndicationProvider<K>::broker = nullptr;

}  // namespace

IndicationDelivery* indicationDeliveryFor(const char* ipClassName) {
  for (int i = 0; i < kClassCount; ++i) {
    if (std::strcmp(kClasses[i].className, ipClassName) == 0) return deliveries()[i];
  }
  return nullptr;
}

void stopIndicationDeliveries() {
  for (int i = 0; i < kClassCount; ++i) deliveries()[i]->stop();
}

extern "C" {

CMPIIndicationMI* CIM_InstCreation_Provider_Create_IndicationMI(const CMPIBroker* broker,
                                                                 const CMPIContext*, CMPIStatus*) {
  return IndicationProvider<0>::create(broker);
}

CMPIIndicationMI* CIM_InstModification_Provider_Create_IndicationMI(const CMPIBroker* broker,
                                                                     const CMPIContext*,
                                                                     CMPIStatus*) {
  return IndicationProvider<1>::create(broker);
}

CMPIIndicationMI* CIM_InstDeletion_Provider_Create_IndicationMI(const CMPIBroker* broker,
                                                                 const CMPIContext*, CMPIStatus*) {
  return IndicationProvider<2>::create(broker);
}

CMPIIndicationMI* QRX_AlertIndication_Provider_Create_IndicationMI(const CMPIBroker* broker,
                                                                    const CMPIContext*,
                                                                    CMPIStatus*) {
  return IndicationProvider<kAlert>::create(broker);
}

}  // extern "C"
