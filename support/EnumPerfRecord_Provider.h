// QRX_EnumPerfRecord: the statistics of the performance sample store
// (common/base/PerfSamples.h), one instance per tag, keyed by Tag, with
// NumSamples, MinVal, MaxVal, MedVal and AvgVal in microseconds. Creation,
// modification, deletion and queries are not offered; an unknown tag has
// no instance (getInstance fails).
#ifndef QRX_SUPPORT_ENUMPERFRECORD_PROVIDER_H_
#define QRX_SUPPORT_ENUMPERFRECORD_PROVIDER_H_

#include <atomic>

#include "cmpift.h"
#include "common/base/PerfSamples.h"
#include "generated/scimclasses/QRX_EnumPerfRecord.h"
#include "provider/HandwrittenProvider.h"

// The record of one tag's statistics.
QRX_EnumPerfRecord perfRecord(const ScimPerfEntry& irEntry);

struct EnumPerfRecordBackend;

struct QRX_EnumPerfRecord_Provider
    : HandwrittenProviderBase<QRX_EnumPerfRecord_Provider, QRX_EnumPerfRecord,
                              QRX_EnumPerfRecord_Key, QRX_EnumPerfRecord_Array,
                              QRX_EnumPerfRecord_KeyArray> {
  using backendT = EnumPerfRecordBackend;
  static constexpr const char* className = "QRX_EnumPerfRecord";
  static constexpr const char* providerName = "QRX_EnumPerfRecord_Provider";
  static constexpr const char* unit = "support/EnumPerfRecord_Provider";

  // One record per tag, in tag order.
  static bool list(classArrayT& orOut);
};

// Lists every tag; gets one tag's statistics without computing the others.
struct EnumPerfRecordBackend : ListBackend<QRX_EnumPerfRecord_Provider> {
  static EnumPerfRecordBackend singleton;
  bool getInstance(const QRX_EnumPerfRecord_Key& irKey, QRX_EnumPerfRecord& orOut);
};

extern "C" {
CMPIInstanceMI* QRX_EnumPerfRecord_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                              const CMPIContext* ctx,
                                                              CMPIStatus* rc);
}

#endif  // QRX_SUPPORT_ENUMPERFRECORD_PROVIDER_H_
