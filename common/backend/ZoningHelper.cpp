#include "common/backend/ZoningHelper.h"

#include <cassert>
#include <cstring>

ZoneEntityInstanceID::ZoneEntityInstanceID(char ipEntityType, unsigned ipMemberType) {
  assert(ipEntityType != 0 && "entityType");
  active = '0';
  entityType = ipEntityType;
  entitySubtype = static_cast<char>('0' + ipMemberType);
  delim1 = DELIMETER_CHAR;
  std::memset(switchWwn, '0', sizeof(switchWwn));
  delim2 = DELIMETER_CHAR;
  std::memset(entityName, 0, sizeof(entityName));
}

ZoneEntityInstanceID::ZoneEntityInstanceID(const char* ipInstId) {
  assert(ipInstId && strlen(ipInstId) < sizeof(*this));
  std::memset(static_cast<void*>(this), 0, sizeof(*this));
  std::memcpy(static_cast<void*>(this), ipInstId, strlen(ipInstId));
}

void ZoneEntityInstanceID::setSwitchWwn(const std::string& irSwitchWwn) {
  assert(irSwitchWwn.length() == WWN_MAX_SIZE);
  std::memcpy(switchWwn, irSwitchWwn.data(), WWN_MAX_SIZE);
}

void ZoneEntityInstanceID::setEntityName(const std::string& irName) {
  assert(irName.length() <= ENTITY_NAME_SIZE - 1);
  std::memset(entityName, 0, sizeof(entityName));
  std::memcpy(entityName, irName.data(), irName.length());
}

std::string ZoneEntityInstanceID::getSwitchWwn() const {
  return std::string(switchWwn, WWN_MAX_SIZE);
}

std::string ZoneEntityInstanceID::getEntityName() const {
  return std::string(entityName, strnlen(entityName, sizeof(entityName)));
}

bool ZoneEntityInstanceID::validate(char ipEntityType) const {
  return delim1 == DELIMETER_CHAR && delim2 == DELIMETER_CHAR && entityType == ipEntityType;
}

bool ZoneEntityInstanceID::fitsInstanceId(const std::string& irText) {
  return irText.length() < sizeof(ZoneEntityInstanceID) && irText.find('\0') == std::string::npos;
}

bool ZoneEntityInstanceID::fitsEntityName(const std::string& irName) {
  return irName.length() <= ENTITY_NAME_SIZE - 1 && irName.find('\0') == std::string::npos;
}

std::string makeZoneInstanceId(char ipEntityType, const std::string& irSwitchWwn,
                               const std::string& irName, unsigned ipMemberType, bool ipActive) {
  ZoneEntityInstanceID id(ipEntityType, ipMemberType);
  id.setSwitchWwn(irSwitchWwn);
  id.setEntityName(irName);
  id.setActive(ipActive);
  return id.text();
}

bool checkConnectivityMemberType(unsigned ipType) {
  return ipType >= ConnectivityMember_PermanentAddress &&
         ipType <= ConnectivityMember_ConnectivityCollection;
}

bool checkConnectivityMemberID(unsigned ipType, const std::string&) {
  return checkConnectivityMemberType(ipType);
}
