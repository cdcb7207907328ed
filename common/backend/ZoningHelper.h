// The InstanceID of zoning objects and the checks of zone member types.
//
// Zone sets, zones, aliases, zone members and zone capabilities are keyed
// by a ZoneEntityInstanceID: a fixed layout of 86 characters, used as a
// NUL-terminated string of at most 85:
//
//   0       active        "0" when built, "1" for the copy in the active zone set
//   1       entityType    'S' zone set, 'Z' zone, 'A' alias, 'M' member, 'C' capabilities
//   2       entitySubtype '0', or for a member '0' + its connectivity member type
//   3       "."
//   4..19   switchWwn     16 hexadecimal characters ("0" x 16 when built)
//   20      "."
//   21..85  entityName    the object's name (a member's identifier), at most 64
//
// The constructors and setters assert their limits: they guard the
// library's own use. Text from a client is checked with fitsInstanceId()
// or fitsEntityName() first and refused when it does not fit.
#ifndef QRX_COMMON_BACKEND_ZONINGHELPER_H_
#define QRX_COMMON_BACKEND_ZONINGHELPER_H_

#include <string>

#include "common/base/SCIMCommon.h"

enum ConnectivityMemberTypes {
  ConnectivityMember_Unknown = 0,
  ConnectivityMember_Other = 1,
  ConnectivityMember_PermanentAddress = 2,
  ConnectivityMember_NetworkAddress = 3,
  ConnectivityMember_SwitchPortId = 4,
  ConnectivityMember_LogicalPortGroup = 5,
  ConnectivityMember_ConnectivityCollection = 6,
};

// Entity types of the InstanceID.
enum : char {
  ZONE_ENTITY_ZONESET = 'S',
  ZONE_ENTITY_ZONE = 'Z',
  ZONE_ENTITY_ALIAS = 'A',
  ZONE_ENTITY_MEMBER = 'M',
  ZONE_ENTITY_CAPABILITIES = 'C',
};

const char DELIMETER_CHAR = '.';
const unsigned WWN_MAX_SIZE = 16;
const unsigned ENTITY_NAME_SIZE = 65;

class ZoneEntityInstanceID {
 public:
  // A fresh identifier: active "0", the type, subtype "0" + ipMemberType,
  // sixteen "0" as switch WWN, no name. Asserts "entityType".
  ZoneEntityInstanceID(char ipEntityType, unsigned ipMemberType);
  // The layout of an identifier's text. Asserts that it is at most 85
  // characters; validate() tells whether it has the layout.
  explicit ZoneEntityInstanceID(const char* ipInstId);

  void setSwitchWwn(const std::string& irSwitchWwn);  // asserts 16 characters
  void setEntityName(const std::string& irName);      // asserts at most 64
  void setActive(bool ipActive) { active = ipActive ? '1' : '0'; }

  std::string getSwitchWwn() const;
  std::string getEntityName() const;
  char getEntitySubtype() const { return entitySubtype; }
  // The member type the subtype carries ('0' + type).
  unsigned getMemberType() const { return static_cast<unsigned char>(entitySubtype) - '0'; }
  char getEntityType() const { return entityType; }
  bool isActive() const { return active == '1'; }

  // Positions 3 and 20 hold "." and position 1 the type.
  bool validate(char ipEntityType) const;

  operator std::string() const { return std::string(&active); }
  std::string text() const { return std::string(&active); }

  // Whether a client's text can be taken as an InstanceID, or as an entity
  // name, without tripping the assertions.
  static bool fitsInstanceId(const std::string& irText);
  static bool fitsEntityName(const std::string& irName);

 private:
  char active;
  char entityType;
  char entitySubtype;
  char delim1;
  char switchWwn[WWN_MAX_SIZE];
  char delim2;
  char entityName[ENTITY_NAME_SIZE];
};

static_assert(sizeof(ZoneEntityInstanceID) == 86, "the InstanceID layout is 86 characters");

// The text of a fresh identifier of that type, switch WWN and name; the
// member type only for members. Asserts as the setters do.
std::string makeZoneInstanceId(char ipEntityType, const std::string& irSwitchWwn,
                               const std::string& irName, unsigned ipMemberType = 0,
                               bool ipActive = false);

// Member types a zone or alias member may have: 2 to 6.
bool checkConnectivityMemberType(unsigned ipType);
// Any identifier of a type checkConnectivityMemberType() accepts (the
// switch checks the identifier's format).
bool checkConnectivityMemberID(unsigned ipType, const std::string& irId);

#endif  // QRX_COMMON_BACKEND_ZONINGHELPER_H_
