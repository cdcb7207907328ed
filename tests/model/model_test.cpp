// The generated model: class tree, factory, property order and the value
// types it is built from.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <ctime>
#include <set>
#include <sstream>
#include <vector>

#include "generated/scimclasses.h"
#include "generated/scimclasstree.h"
#include "tests/support/ModelText.h"

namespace {

void setZone(const char* zone) {
  setenv("TZ", zone, 1);
  tzset();
}

// Property names in the order serialize() writes them (first word of each
// top-level line of modelText).
std::vector<std::string> propertyOrder(const SCIMSerdesable& object) {
  std::vector<std::string> names;
  std::istringstream lines(modelText(object));
  std::string line;
  while (std::getline(lines, line)) {
    if (!line.empty() && line[0] != ' ') names.push_back(line.substr(0, line.find(' ')));
  }
  return names;
}

TEST(CimDateTime, TextUsesUtcFieldsAndTheLocalOffset) {
  setZone("UTC");
  EXPECT_EQ("19700101000000.000000+000", cdatetime().toString());
  cdatetime t;
  t.ivTime = 1700000000u;  // 2023-11-14 22:13:20 UTC
  EXPECT_EQ("20231114221320.000000+000", t.toString());
  EXPECT_EQ(25u, t.toString().size());
  t.ivTime = 0xFFFFFFFFu;  // the last second a datetime holds
  EXPECT_EQ("21060207062815.000000+000", t.toString());
  t.ivTime = 1700000000u;

  // A zone with summer time counts 60 minutes whatever the date; the fields
  // stay UTC.
  setZone("EST5EDT");
  EXPECT_EQ("20231114221320.000000-240", t.toString());
  setZone("JST-9");
  EXPECT_EQ("20231114221320.000000+540", t.toString());
  setZone("<-0330>3:30");
  EXPECT_EQ("20231114221320.000000-210", t.toString());
  setZone("UTC");
}

// The calendar fields agree with the C library's wherever its time_t
// reaches (all 32 bits on a 64-bit time_t; up to 2038 where it is 32 bits
// wide), at the ends of days and across leap years and centuries.
TEST(CimDateTime, CalendarFieldsAgreeWithTheCLibrary) {
  setZone("UTC");
  std::vector<unsigned int> times = {0u, 59u, 86399u, 86400u, 951782400u /* 2000-02-29 */,
                                     951868799u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu};
  for (unsigned long long t = 12345; t <= 0xFFFFFFFFull; t += 3999971ull) {
    times.push_back(static_cast<unsigned int>(t));
  }
  for (unsigned int time : times) {
    if (sizeof(time_t) < 8 && time > 0x7FFFFFFFu) continue;
    const time_t seconds = static_cast<time_t>(time);
    struct tm fields;
    ASSERT_NE(nullptr, gmtime_r(&seconds, &fields));
    char expected[32];
    strftime(expected, sizeof(expected), "%Y%m%d%H%M%S.000000+000", &fields);
    cdatetime t;
    t.ivTime = time;
    EXPECT_EQ(expected, t.toString()) << "seconds " << time;
  }
}

TEST(CimDateTime, MicrosecondsAreTruncatedToWholeSeconds) {
  cdatetime t;
  t.setTimeUsec(1999999ULL);
  EXPECT_EQ(1u, t.ivTime);
  EXPECT_EQ(1000000ULL, t.getTimeUsec());
  EXPECT_EQ(1ULL, t.getTimeSec());
  t.setTimeUsec((0x100000000ULL + 5) * cdatetime::USEC_PER_SEC);  // cut to 32 bits
  EXPECT_EQ(5u, t.ivTime);
}

// Counts live instances, to see who destroys embedded objects.
class Tracked : public SCIMSerdesable {
 public:
  Tracked() { ++live; }
  ~Tracked() override { --live; }
  const cstring& getClassName() const override { return name; }
  const cstring& getCIMClassName() const override { return name; }
  void serialize(SCIMSerializerIf&) const override {}
  void deserialize(SCIMDeserializerIf&) override {}
  static int live;
  cstring name = "Tracked";
};
int Tracked::live = 0;

TEST(EmbeddedObject, OwnsItsObjectAndMovesIt) {
  {
    cstring_EO empty;
    EXPECT_TRUE(empty.ivNull);
    EXPECT_EQ(nullptr, empty.ivpEmbeddedObj);
    EXPECT_TRUE(empty.ivNameSpace.empty() && empty.ivClassName.empty());
  }
  {
    cstring_EO a;
    a.reset(new Tracked);
    EXPECT_FALSE(a.ivNull);
    EXPECT_EQ(1, Tracked::live);
    cstring_EO b(std::move(a));
    EXPECT_TRUE(a.ivNull);
    EXPECT_EQ(nullptr, a.ivpEmbeddedObj);
    EXPECT_EQ(1, Tracked::live);
    cstring_EO c;
    c.reset(new Tracked);
    c = std::move(b);  // c's own object goes, b's moves in
    EXPECT_EQ(1, Tracked::live);
    c.reset(nullptr);
    EXPECT_TRUE(c.ivNull);
    EXPECT_EQ(0, Tracked::live);
    c.reset(new Tracked);
  }
  EXPECT_EQ(0, Tracked::live);  // destroyed exactly once
  // An indication holding one is move-only but can live in its array.
  CIM_InstCreation_Array indications;
  indications.emplace_back();
  indications[0].SourceInstance.reset(new Tracked);
  indications.emplace_back();
  indications.emplace_back();  // reallocation moves, never copies
  EXPECT_EQ(1, Tracked::live);
  indications.clear();
  EXPECT_EQ(0, Tracked::live);
}

TEST(ClassTree, HoldsTheTreeWithExactNames) {
  EXPECT_EQ(121u, scimClassNodeMap.size());
  std::set<std::string> roots;
  for (const auto& entry : scimClassNodeMap) {
    const std::string name = entry.first;
    EXPECT_EQ(name, entry.second->name);
    EXPECT_TRUE(scimIsa(name.c_str(), name.c_str())) << name;
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(), ::tolower);
    EXPECT_FALSE(scimIsa(lower.c_str(), name.c_str())) << name;
    EXPECT_FALSE(scimIsa(name.c_str(), lower.c_str())) << name;
    if (entry.second->parent == nullptr) roots.insert(name);
  }
  EXPECT_EQ((std::set<std::string>{"CIM_Indication", "CIM_ManagedElement", "CIM_Dependency",
                                   "CIM_Component", "CIM_MemberOfCollection",
                                   "CIM_ElementCapabilities", "CIM_ElementSettingData",
                                   "CIM_SAPAvailableForElement", "CIM_ElementLocation",
                                   "CIM_ElementStatisticalData"}),
            roots);

  EXPECT_TRUE(scimIsa("CIM_FCPort", "QRX_SwitchFCPort"));
  EXPECT_TRUE(scimIsa("QRX_FCPort", "QRX_NodeFCPort"));
  EXPECT_TRUE(scimIsa("CIM_ManagedElement", "QRX_SwitchFCPortStats"));
  EXPECT_FALSE(scimIsa("QRX_SwitchFCPort", "CIM_FCPort"));
  EXPECT_FALSE(scimIsa("QRX_NodeFCPort", "QRX_SwitchFCPort"));
  EXPECT_TRUE(scimIsa("CIM_Indication", "QRX_AlertIndication"));
  EXPECT_TRUE(scimIsa("CIM_InstIndication", "CIM_InstModification"));
  // The intended departures from the DMTF hierarchy.
  EXPECT_TRUE(scimIsa("CIM_Component", "QRX_SwitchInFabric"));
  EXPECT_FALSE(scimIsa("CIM_SystemComponent", "QRX_SwitchInFabric"));
  EXPECT_TRUE(scimIsa("CIM_MemberOfCollection", "QRX_PortInNode"));

  EXPECT_EQ(nullptr, scimGetClassNode("QRX_NoSuchClass"));
  EXPECT_EQ(nullptr, scimGetClassNode(nullptr));
  EXPECT_FALSE(scimIsa("QRX_NoSuchClass", "QRX_NoSuchClass"));
  EXPECT_FALSE(scimIsa("CIM_ManagedElement", "QRX_NoSuchClass"));
  EXPECT_FALSE(scimIsa(nullptr, "QRX_Switch"));
  // Model classes outside the tree are not nodes.
  EXPECT_EQ(nullptr, scimGetClassNode("CIM_ConcreteJob"));
}

TEST(ModelFactory, CreatesEveryModelTypeByName) {
  ASSERT_GT(scimModelClassCount, 60u);
  for (std::size_t i = 0; i < scimModelClassCount; ++i) {
    const std::string name = scimModelClassNames[i];
    for (const std::string suffix : {"", "_Key", "_Array", "_KeyArray"}) {
      SCIMSerdesable* object = createCimObject(name + suffix);
      ASSERT_NE(nullptr, object) << name + suffix;
      EXPECT_EQ(name + suffix, object->getClassName());
      EXPECT_EQ(name, object->getCIMClassName());
      delete object;
    }
    // Every class of the served namespace that is a tree node is in the map.
    if (name.compare(0, 4, "QRX_") == 0 && scimGetClassNode(name.c_str()) == nullptr) {
      EXPECT_TRUE(name == "QRX_AgentProduct" || name == "QRX_AgentSoftwareIdentity" ||
                  name == "QRX_InstalledSoftwareOnSystem" || name == "QRX_RegisteredProfile" ||
                  name == "QRX_RegisteredSubProfile" || name == "QRX_SubProfileRequiresProfile" ||
                  name == "QRX_ElementConformsToProfile" || name == "QRX_EnumPerfRecord" ||
                  name == "QRX_DebugFacility")
          << name << " is served but not in the class tree";
    }
  }
  EXPECT_EQ(nullptr, createCimObject("qrx_switch"));
  EXPECT_EQ(nullptr, createCimObject("QRX_Switch_"));
  EXPECT_EQ(nullptr, createCimObject(""));
  EXPECT_EQ(nullptr, createCimObject("CIM_System"));  // a tree node without a model
}

TEST(GeneratedClasses, WriteTheirPropertiesInModelOrder) {
  EXPECT_EQ((std::vector<std::string>{
                "CreationClassName", "Name", "Dedicated", "OtherIdentifyingInfo",
                "IdentifyingDescriptions", "ElementName", "NameFormat", "OperationalStatus",
                "EnabledState", "RequestedState", "PrimaryOwnerName", "PrimaryOwnerContact",
                "OtherDedicatedDescriptions", "ResetCapability", "PowerManagementCapabilities",
                "Roles", "OtherEnabledState", "EnabledDefault", "TimeOfLastStateChange",
                "InstallDate", "StatusDescriptions", "Status", "HealthState", "Caption",
                "Description"}),
            propertyOrder(QRX_Switch()));
  EXPECT_EQ((std::vector<std::string>{"Name", "CreationClassName"}), propertyOrder(QRX_Fabric_Key()));
  EXPECT_EQ((std::vector<std::string>{"CreationClassName", "Name"}), propertyOrder(QRX_SAN_Key()));
  EXPECT_EQ((std::vector<std::string>{"Vendor", "Name", "IdentifyingNumber", "Version"}),
            propertyOrder(QRX_Product_Key()));
  EXPECT_EQ((std::vector<std::string>{"CreationClassName", "SystemCreationClassName", "SystemName",
                                      "Name"}),
            propertyOrder(QRX_WebGUIRemoteAccessPoint_Key()));
  EXPECT_EQ((std::vector<std::string>{"AvailableSAP", "ManagedElement"}),
            propertyOrder(QRX_SAPAvailableForSwitch_Key()));
  EXPECT_TRUE(propertyOrder(CIM_InstCreation_Key()).empty());

  // Type codes, and references as nested keys.
  QRX_SwitchInFabric_Key link;
  const std::string text = modelText(link);
  EXPECT_NE(std::string::npos, text.find("GroupComponent 0x1100 QRX_Fabric_Key\n  Name 0x1600"));
  EXPECT_NE(std::string::npos, text.find("PartComponent 0x1100 QRX_Switch_Key\n"));
  EXPECT_NE(std::string::npos, modelText(QRX_Switch()).find("OperationalStatus 0x2090 [ ]"));
  EXPECT_NE(std::string::npos, modelText(QRX_Switch()).find("Roles 0x3600 [ ]"));
  EXPECT_NE(std::string::npos, modelText(QRX_Switch()).find("InstallDate 0x1800 0"));
  EXPECT_NE(std::string::npos, modelText(CIM_InstCreation()).find("SourceInstance 0x1600 EO"));
}

TEST(GeneratedClasses, KeysComeFromTheirObjectsAndCompareByValue) {
  QRX_SwitchInFabric link;
  fillModel(link);
  QRX_SwitchInFabric_Key key(link);
  EXPECT_EQ(link.GroupComponent, key.GroupComponent);
  EXPECT_EQ(link.PartComponent, key.PartComponent);
  QRX_SwitchInFabric_Key other = key;
  EXPECT_EQ(key, other);
  other.PartComponent.Name += "x";
  EXPECT_NE(key, other);

  QRX_Switch a;
  fillModel(a);
  QRX_Switch b = a;
  EXPECT_EQ(a, b);
  b.OperationalStatus.push_back(2);
  EXPECT_NE(a, b);
  EXPECT_NE(a, QRX_Switch());

  // Arrays write their elements in order as nested objects, nothing else.
  QRX_Switch_KeyArray keys(2);
  keys[0].Name = "first";
  keys[1].Name = "second";
  const std::string text = modelText(keys);
  EXPECT_EQ(0u, text.find("QRX_Switch 0x1000 QRX_Switch_Key\n"));
  EXPECT_LT(text.find("first"), text.find("second"));
}

}  // namespace
