// The indication providers: CIM_InstCreation, CIM_InstModification,
// CIM_InstDeletion and QRX_AlertIndication.
//
// Each exports <Class>_Provider_Create_IndicationMI, which stores the
// broker, writes "Info: loaded Indication <Class>", lets the event thread
// hand its indications to the delivery queues (one IndicationDelivery per
// class) and returns the class's static indication MI:
//   authorizeFilter, mustPoll      OK (no polling: events drive delivery)
//   activateFilter                 registers the filter's query text with
//                                  the event thread (addQuery); for alerts
//                                  the text must be CQL and is not kept.
//                                  CMPI_RC_ERR_INVALID_QUERY when refused
//   deActivateFilter               drops it (delQuery)
//   enableIndications              sets the class's flag, starts delivery
//   disableIndications, cleanup    clears the flag, stops delivery
#ifndef QRX_PROVIDER_INDICATION_PROVIDERS_H_
#define QRX_PROVIDER_INDICATION_PROVIDERS_H_

#include "cmpidt.h"
#include "cmpift.h"
#include "provider/IndicationDelivery.h"

// The delivery of an indication class, or null for another class.
IndicationDelivery* indicationDeliveryFor(const char* ipClassName);

// Stops every delivery thread (library unload, after the event thread).
void stopIndicationDeliveries();

extern "C" {
CMPIIndicationMI* CIM_InstCreation_Provider_Create_IndicationMI(const CMPIBroker*,
                                                                 const CMPIContext*, CMPIStatus*);
CMPIIndicationMI* CIM_InstModification_Provider_Create_IndicationMI(const CMPIBroker*,
                                                                     const CMPIContext*,
                                                                     CMPIStatus*);
CMPIIndicationMI* CIM_InstDeletion_Provider_Create_IndicationMI(const CMPIBroker*,
                                                                 const CMPIContext*, CMPIStatus*);
CMPIIndicationMI* QRX_AlertIndication_Provider_Create_IndicationMI(const CMPIBroker*,
                                                                    const CMPIContext*,
                                                                    CMPIStatus*);
}

#endif  // QRX_PROVIDER_INDICATION_PROVIDERS_H_
