#include "support/EnumPerfRecord_Provider.h"

#include <vector>

EnumPerfRecordBackend EnumPerfRecordBackend::singleton;

QRX_EnumPerfRecord perfRecord(const ScimPerfEntry& irEntry) {
  QRX_EnumPerfRecord record;
  record.Tag = irEntry.Tag;
  record.NumSamples = irEntry.NumSamples;
  record.MinVal = irEntry.MinVal;
  record.MaxVal = irEntry.MaxVal;
  record.MedVal = irEntry.MedVal;
  record.AvgVal = irEntry.AvgVal;
  return record;
}

bool QRX_EnumPerfRecord_Provider::list(classArrayT& orOut) {
  std::vector<ScimPerfEntry> entries;
  scim_get_perfdata(entries);
  TRACE_DEBUG("gathered perf stats count=%d\n", static_cast<int>(entries.size()));
  for (const ScimPerfEntry& entry : entries) orOut.push_back(perfRecord(entry));
  return true;
}

bool EnumPerfRecordBackend::getInstance(const QRX_EnumPerfRecord_Key& irKey,
                                        QRX_EnumPerfRecord& orOut) {
  ScimPerfEntry entry;
  if (!scim_get_perfentry(irKey.Tag, entry)) return false;
  TRACE_DEBUG("gathered perf stats count=%d\n", 1);
  orOut = perfRecord(entry);
  return true;
}

extern "C" {

CMPIInstanceMI* QRX_EnumPerfRecord_Provider_Create_InstanceMI(const CMPIBroker* broker,
                                                              const CMPIContext*, CMPIStatus*) {
  return handwrittenInstanceMI<QRX_EnumPerfRecord_Provider>(broker);
}

}  // extern "C"
