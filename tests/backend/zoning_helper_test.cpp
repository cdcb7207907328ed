// The InstanceID layout of zoning objects and the member type checks.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "common/backend/ZoningHelper.h"

namespace {

TEST(ZoneEntityInstanceIDTest, LayoutOfEveryField) {
  ZoneEntityInstanceID fresh(ZONE_ENTITY_ZONE, 0);
  EXPECT_EQ("0Z0.0000000000000000.", fresh.text());
  EXPECT_EQ("0000000000000000", fresh.getSwitchWwn());
  EXPECT_EQ("", fresh.getEntityName());

  const std::string name(64, 'n');
  const std::string member = makeZoneInstanceId(ZONE_ENTITY_MEMBER, "10000e5a71004000", name, 4);
  EXPECT_EQ(85u, member.size());
  EXPECT_EQ("0M4.10000e5a71004000." + name, member);

  ZoneEntityInstanceID parsed(member.c_str());
  EXPECT_TRUE(parsed.validate(ZONE_ENTITY_MEMBER));
  EXPECT_FALSE(parsed.validate(ZONE_ENTITY_ZONE));
  EXPECT_EQ('4', parsed.getEntitySubtype());
  EXPECT_EQ(4u, parsed.getMemberType());
  EXPECT_EQ("10000e5a71004000", parsed.getSwitchWwn());
  EXPECT_EQ(name, parsed.getEntityName());
  EXPECT_FALSE(parsed.isActive());
  parsed.setActive(true);
  EXPECT_EQ("1M4.10000e5a71004000." + name, parsed.text());
  EXPECT_EQ(parsed.text(), std::string(parsed));

  // Active copies differ in the first character only.
  EXPECT_EQ("1S0.10000e5a71004000.cfg",
            makeZoneInstanceId(ZONE_ENTITY_ZONESET, "10000e5a71004000", "cfg", 0, true));

  // Text without the delimiters, or too short to have them, does not validate.
  EXPECT_FALSE(ZoneEntityInstanceID("0Z0-10000e5a71004000.z").validate(ZONE_ENTITY_ZONE));
  EXPECT_FALSE(ZoneEntityInstanceID("0Z0.10000e5a71004000-z").validate(ZONE_ENTITY_ZONE));
  EXPECT_FALSE(ZoneEntityInstanceID("0Z").validate(ZONE_ENTITY_ZONE));
  EXPECT_FALSE(ZoneEntityInstanceID("").validate(ZONE_ENTITY_ZONE));
}

TEST(ZoneEntityInstanceIDTest, ClientTextIsCheckedBeforeTheAssertions) {
  EXPECT_TRUE(ZoneEntityInstanceID::fitsInstanceId(std::string(85, 'x')));
  EXPECT_FALSE(ZoneEntityInstanceID::fitsInstanceId(std::string(86, 'x')));
  EXPECT_FALSE(ZoneEntityInstanceID::fitsInstanceId(std::string("0Z0\0x", 5)));
  EXPECT_TRUE(ZoneEntityInstanceID::fitsEntityName(std::string(64, 'z')));
  EXPECT_FALSE(ZoneEntityInstanceID::fitsEntityName(std::string(65, 'z')));
}

TEST(ZoneEntityInstanceIDDeathTest, TheLibrarysOwnMisuseAborts) {
  EXPECT_DEATH(ZoneEntityInstanceID(0, 0), "entityType");
  EXPECT_DEATH(ZoneEntityInstanceID(std::string(86, 'x').c_str()),
               "ipInstId && strlen\\(ipInstId\\) < sizeof\\(\\*this\\)");
  ZoneEntityInstanceID id(ZONE_ENTITY_ZONE, 0);
  EXPECT_DEATH(id.setSwitchWwn("10000e5a7100400"), "irSwitchWwn.length\\(\\) == WWN_MAX_SIZE");
  EXPECT_DEATH(id.setEntityName(std::string(65, 'z')),
               "irName.length\\(\\) <= ENTITY_NAME_SIZE - 1");
}

TEST(ConnectivityMemberTest, TypesTwoToSixAreAccepted) {
  for (unsigned type = 0; type < 9; ++type) {
    const bool expected = type >= 2 && type <= 6;
    EXPECT_EQ(expected, checkConnectivityMemberType(type)) << type;
    EXPECT_EQ(expected, checkConnectivityMemberID(type, "anything")) << type;
  }
}

}  // namespace
