// The switch's web management page: one access point whose access
// information is the page's URL on the switch's management address.
#include "generated/scimbackend/QRX_WebGUIRemoteAccessPoint_Best.h"

#include "common/backend/SwitchRecords.h"
#include "generated/scimclasses/QRX_Switch.h"

namespace {

const char* const kUnit = "common/backend/QRX_WebGUIRemoteAccessPoint_Best";

// The first address the switch has: IPv4, IPv6 (bracketed), then its host name.
std::string pageUrl(const switch_info_t& irSwitch) {
  if (!irSwitch.ip_address.empty()) return "http://" + irSwitch.ip_address;
  if (!irSwitch.ip_addressv6.empty()) return "http://[" + irSwitch.ip_addressv6 + "]";
  return "http://" + irSwitch.hostname;
}

}  // namespace

bool QRX_WebGUIRemoteAccessPoint_Best::enumInstances(QRX_WebGUIRemoteAccessPoint_Array& out) {
  switch_info_t swiInfo;
  if (!readSwitchInfo(kUnit, swiInfo)) return false;
  QRX_WebGUIRemoteAccessPoint point;
  point.CreationClassName = className;
  point.SystemCreationClassName = QRX_Switch::ivCIMClassName;
  point.SystemName = swiInfo.name;
  point.Name = "WebGUI";
  point.ElementName = "Web management page of switch " + swiInfo.name;
  point.AccessInfo = pageUrl(swiInfo);
  point.InfoFormat = 200;  // URL
  point.OperationalStatus = {2};
  point.EnabledState = 2;
  point.RequestedState = 5;
  point.EnabledDefault = 2;
  out.push_back(point);
  return true;
}
