#include "common/backend/PortStatistics.h"

#include <ctime>

std::string portStatsInstanceID(const std::string& irPortName) {
  return "QRX:FCPortStats:" + irPortName;
}

std::string statsCollectionInstanceID(const std::string& irSwitchName) {
  return "QRX:FCPortStatisticsCollection:" + irSwitchName;
}

void convertPortStats(QRX_SwitchFCPortStats& orStats, const switch_fc_port_stat_t& irCounters,
                      const std::string& irPortName) {
  orStats.InstanceID = portStatsInstanceID(irPortName);
  orStats.ElementName = "Statistics of port " + irPortName;
  orStats.StatisticTime.setTimeUsec(static_cast<unsigned long long>(std::time(nullptr)) *
                                    1000000ULL);
  orStats.BytesTransmitted = irCounters.TotalTxBytes;
  orStats.BytesReceived = irCounters.TotalRxBytes;
  orStats.PacketsTransmitted = irCounters.TotalTxFrames;
  orStats.PacketsReceived = irCounters.TotalRxFrames;
  orStats.LinkFailures = irCounters.LinkFailures;
  orStats.CRCErrors = irCounters.InvalidCRC;
  orStats.InvalidTransmissionWords = irCounters.InvalidTxWords;
  orStats.PrimitiveSeqProtocolErrCount = irCounters.PrimitiveSequenceProtocolErrors;
  orStats.LossOfSyncCounter = irCounters.LossOfSynchronization;
  orStats.LinkResetsReceived = irCounters.RxLinkResets;
  orStats.LinkResetsTransmitted = irCounters.TxLinkResets;
  orStats.FramesTooLong = irCounters.FramesTooLong;
  orStats.AddressErrors = irCounters.AddressErrors;
  orStats.DelimiterErrors = irCounters.DelimiterErrors;
  orStats.FBSYFrames = irCounters.FBSYFrames;
  orStats.FRJTFrames = irCounters.FRJTFrames;
  orStats.RXClass2Frames = irCounters.Class2RxFrames;
  orStats.RXClass3Frames = irCounters.Class3RxFrames;
  orStats.Class3FramesDiscarded = irCounters.Class3Discards;
}
