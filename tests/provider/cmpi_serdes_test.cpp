// Model objects written into CMPI instances, object paths and values
// through the in-process broker, and read back.
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <deque>
#include <string>

#include "cmpimacs.h"
#include "common/base/trace.h"
#include "generated/scimclasses.h"
#include "generated/scimclasstree.h"
#include "provider/CMPIDeserializer.h"
#include "provider/CMPISerializer.h"
#include "tests/support/ModelText.h"
#include "tests/support/TestEnvironment.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace {

class CmpiSerdes : public ::testing::TestWithParam<cimhost::BrokerMode> {
 protected:
  void SetUp() override {
    setenv("TZ", "UTC", 1);
    tzset();
    ivTrace.reset(new TraceCapture);
    ivBroker.reset(new cimhost::TestBroker(&modelHierarchy(), GetParam()));
  }

  void TearDown() override {
    ivBroker.reset();
    ivTrace.reset();
  }

  const CMPIBroker* broker() { return ivBroker->broker(); }

  CMPIInstance* newInstance(const char* className, const char* ns = "root/qrx") {
    return ivBroker->newInstance(ivBroker->newObjectPath(ns, className));
  }

  std::string traced() const { return ivTrace->text(); }

  std::unique_ptr<cimhost::TestBroker> ivBroker;
  std::unique_ptr<TraceCapture> ivTrace;
};

TEST_P(CmpiSerdes, EveryModelClassRoundTripsThroughInstancesAndPaths) {
  for (std::size_t i = 0; i < scimModelClassCount; ++i) {
    const std::string name = scimModelClassNames[i];
    SCOPED_TRACE(name);
    std::unique_ptr<SCIMSerdesable> original(createCimObject(name));
    fillModel(*original);
    CMPIInstance* instance = newInstance(name.c_str());
    CMPISerializer writer(broker(), instance);
    original->serialize(writer);
    ASSERT_FALSE(writer.hasError()) << writer.getStatus().rc;
    std::unique_ptr<SCIMSerdesable> copy(createCimObject(name));
    CMPIDeserializer reader(instance);
    copy->deserialize(reader);
    ASSERT_FALSE(reader.hasError()) << reader.getStatus().rc;
    EXPECT_EQ(modelText(*original), modelText(*copy));

    std::unique_ptr<SCIMSerdesable> key(createCimObject(name + "_Key"));
    fillModel(*key);
    CMPIObjectPath* path = ivBroker->newObjectPath("root/qrx", name.c_str());
    CMPIObjPathSerializer keyWriter(broker(), path);
    key->serialize(keyWriter);
    ASSERT_FALSE(keyWriter.hasError());
    std::unique_ptr<SCIMSerdesable> keyCopy(createCimObject(name + "_Key"));
    CMPIObjPathDeserializer keyReader(path);
    keyCopy->deserialize(keyReader);
    ASSERT_FALSE(keyReader.hasError());
    EXPECT_EQ(modelText(*key), modelText(*keyCopy));
  }
}

TEST_P(CmpiSerdes, ValuesArriveAsClientsSeeThem) {
  QRX_SwitchInFabric link;
  fillModel(link);
  QRX_Switch sw;
  fillModel(sw);
  sw.InstallDate.ivTime = 1700000000u;

  // References always name root/qrx, whatever namespace the target uses.
  CMPIInstance* linkInstance = newInstance("QRX_SwitchInFabric", "root/other");
  CMPISerializer linkWriter(broker(), linkInstance);
  link.serialize(linkWriter);
  CMPIData ref = CMGetProperty(linkInstance, "PartComponent", nullptr);
  ASSERT_EQ(CMPI_ref, ref.type);
  EXPECT_STREQ("root/qrx", CMGetCharPtr(CMGetNameSpace(ref.value.ref, nullptr)));
  EXPECT_STREQ("QRX_Switch", CMGetCharPtr(CMGetClassName(ref.value.ref, nullptr)));
  CMPIData refName = CMGetKey(ref.value.ref, "Name", nullptr);
  ASSERT_EQ(CMPI_string, refName.type);
  EXPECT_EQ(link.PartComponent.Name, CMGetCharPtr(refName.value.string));

  // A datetime is its 25-character text; arrays keep order and type. The
  // strings, datetimes and arrays made for the properties are released once
  // set; only the element strings of string arrays stay with the request.
  CMPIInstance* instance = newInstance("QRX_Switch");
  const size_t liveBefore = ivBroker->liveObjects();
  CMPISerializer writer(broker(), instance);
  sw.serialize(writer);
  size_t elementStrings = 0;
  for (CMPICount i = 0; i < CMGetPropertyCount(instance, nullptr); ++i) {
    CMPIData data = CMGetPropertyAt(instance, i, nullptr, nullptr);
    if (data.type == CMPI_stringA && data.value.array != nullptr) {
      elementStrings += CMGetArrayCount(data.value.array, nullptr);
    }
  }
  EXPECT_LT(0u, elementStrings);
  EXPECT_EQ(liveBefore + elementStrings, ivBroker->liveObjects());
  CMPIData installed = CMGetProperty(instance, "InstallDate", nullptr);
  ASSERT_EQ(CMPI_dateTime, installed.type);
  CMPIString* text = CMGetStringFormat(installed.value.dateTime, nullptr);
  EXPECT_STREQ("20231114221320.000000+000", CMGetCharPtr(text));
  CMPIData status = CMGetProperty(instance, "OperationalStatus", nullptr);
  ASSERT_EQ(CMPI_uint16A, status.type);
  ASSERT_EQ(sw.OperationalStatus.size(), CMGetArrayCount(status.value.array, nullptr));
  EXPECT_EQ(sw.OperationalStatus[2], CMGetArrayElementAt(status.value.array, 2, nullptr).value.uint16);
  CMPIData roles = CMGetProperty(instance, "Roles", nullptr);
  ASSERT_EQ(CMPI_stringA, roles.type);
  EXPECT_EQ(CMPI_string, CMGetArrayElementAt(roles.value.array, 0, nullptr).type);

  // An embedded instance is an instance of its own class and namespace.
  CIM_InstCreation created;
  fillModel(created);
  created.SourceInstance.ivNameSpace = "root/elsewhere";
  CMPIInstance* indication = newInstance("CIM_InstCreation");
  CMPISerializer indicationWriter(broker(), indication);
  created.serialize(indicationWriter);
  ASSERT_FALSE(indicationWriter.hasError());
  CMPIData embedded = CMGetProperty(indication, "SourceInstance", nullptr);
  ASSERT_EQ(CMPI_instance, embedded.type);
  CMPIObjectPath* embeddedPath = CMGetObjectPath(embedded.value.inst, nullptr);
  EXPECT_STREQ("root/elsewhere", CMGetCharPtr(CMGetNameSpace(embeddedPath, nullptr)));
  EXPECT_STREQ("QRX_Switch", CMGetCharPtr(CMGetClassName(embeddedPath, nullptr)));
  CIM_InstCreation readBack;
  CMPIDeserializer reader(indication);
  readBack.deserialize(reader);
  ASSERT_FALSE(reader.hasError());
  EXPECT_EQ(modelText(created), modelText(readBack));

  // A NULL embedded object stays NULL.
  CIM_InstCreation empty;
  CMPIInstance* emptyInstance = newInstance("CIM_InstCreation");
  CMPISerializer emptyWriter(broker(), emptyInstance);
  empty.serialize(emptyWriter);
  EXPECT_FALSE(emptyWriter.hasError());
  CMPIDeserializer emptyReader(emptyInstance);
  CIM_InstCreation emptyBack;
  emptyBack.deserialize(emptyReader);
  EXPECT_FALSE(emptyReader.hasError());
  EXPECT_TRUE(emptyBack.SourceInstance.ivNull);
  // A NULL value is skipped: what the target held stays.
  readBack.deserialize(emptyReader);
  EXPECT_FALSE(readBack.SourceInstance.ivNull);
}

// An object path whose keys the object manager flags as key values.
struct KeyFlaggingPath {
  explicit KeyFlaggingPath(CMPIObjectPath* path) : wrapped{path->hdl, &ft} {
    original = path->ft;
    ft = *path->ft;
    ft.getKey = flaggedKey;
  }
  // Every key flagged CMPI_keyValue, as OpenPegasus hands them over; the
  // paths of reference keys flag theirs too.
  static CMPIData flaggedKey(const CMPIObjectPath* op, const char* name, CMPIStatus* rc) {
    CMPIObjectPath inner = {op->hdl, const_cast<CMPIObjectPathFT*>(original)};
    CMPIData data = inner.ft->getKey(&inner, name, rc);
    if (data.type == CMPI_ref && data.value.ref != nullptr) {
      nested.push_back({data.value.ref->hdl, &ft});
      data.value.ref = &nested.back();
    }
    data.state |= CMPI_keyValue;
    return data;
  }
  static const CMPIObjectPathFT* original;
  static CMPIObjectPathFT ft;
  static std::deque<CMPIObjectPath> nested;
  CMPIObjectPath wrapped;
};
const CMPIObjectPathFT* KeyFlaggingPath::original = nullptr;
CMPIObjectPathFT KeyFlaggingPath::ft;
std::deque<CMPIObjectPath> KeyFlaggingPath::nested;

TEST_P(CmpiSerdes, ValueStatesDecideWhatIsRead) {
  // Scalars are read from good, null and key-flagged values; strings only
  // from plain good ones.
  CMPIData data;
  data.type = CMPI_uint16;
  data.state = CMPI_keyValue;
  data.value.uint16 = 7;
  unsigned short number = 0;
  CMPIDataDeserializer(data).read("N", CMPI_uint16, number);
  EXPECT_EQ(7, number);
  data.state = CMPI_badValue;
  CMPIDataDeserializer(data).read("N", CMPI_uint16, number = 1);
  EXPECT_EQ(1, number);
  EXPECT_NE(std::string::npos, traced().find("ERROR: CMPIData value was bad\n"));

  data.type = CMPI_string;
  data.state = CMPI_keyValue;
  data.value.string = ivBroker->newString("flagged");
  std::string text = "before";
  CMPIDataDeserializer(data).read("S", CMPI_string, text);
  EXPECT_EQ("before", text);
  data.state = 0;
  CMPIDataDeserializer(data).read("S", CMPI_string, text);
  EXPECT_EQ("flagged", text);

  // The object-path reader says so when it skips a key-flagged string.
  QRX_Switch_Key key;
  key.CreationClassName = "QRX_Switch";
  key.Name = "1000000000000001";
  CMPIObjectPath* path = ivBroker->newObjectPath("root/qrx", "QRX_Switch");
  CMPIObjPathSerializer writer(broker(), path);
  key.serialize(writer);
  KeyFlaggingPath flagged(path);
  QRX_Switch_Key readKey;
  CMPIObjPathDeserializer reader(&flagged.wrapped);
  readKey.deserialize(reader);
  EXPECT_FALSE(reader.hasError());
  EXPECT_TRUE(readKey.Name.empty());
  EXPECT_NE(std::string::npos, traced().find("ERROR: No good value!!!\n"));
}

TEST_P(CmpiSerdes, RequestPathsAreReadWithKeysFlaggedOrNot) {
  // The glue's reader takes keys flagged CMPI_keyValue, also those of the
  // paths of reference keys; a flagged null stays unread.
  QRX_SwitchInFabric_Key link;
  fillModel(link);
  CMPIObjectPath* path = ivBroker->newObjectPath("root/qrx", "QRX_SwitchInFabric");
  CMPIObjPathSerializer writer(broker(), path);
  link.serialize(writer);
  ASSERT_FALSE(writer.hasError());
  for (bool flagged : {false, true}) {
    SCOPED_TRACE(flagged ? "flagged" : "plain");
    KeyFlaggingPath flagging(path);
    QRX_SwitchInFabric_Key copy;
    CMPIRequestPathDeserializer reader(flagged ? &flagging.wrapped : path);
    copy.deserialize(reader);
    EXPECT_FALSE(reader.hasError());
    EXPECT_EQ(modelText(link), modelText(copy));
    EXPECT_FALSE(copy.PartComponent.Name.empty());
  }
  EXPECT_EQ(std::string::npos, traced().find("No good value"));

  CMPIObjectPath* partial = ivBroker->newObjectPath("root/qrx", "QRX_Switch");
  CMPIValue value;
  value.string = ivBroker->newString("QRX_Switch");
  CMAddKey(partial, "CreationClassName", &value, CMPI_string);
  value.string = nullptr;
  CMAddKey(partial, "Name", &value, CMPI_string);
  KeyFlaggingPath flagging(partial);
  QRX_Switch_Key key;
  key.Name = "kept";
  CMPIRequestPathDeserializer reader(&flagging.wrapped);
  key.deserialize(reader);
  EXPECT_EQ("QRX_Switch", key.CreationClassName);
  EXPECT_EQ("kept", key.Name);
}

TEST_P(CmpiSerdes, FailuresAreKeptInTheStatusAndLeaveTargetsAlone) {
  // A missing property is no failure; a value of the wrong kind is, the
  // last failure wins, and a later success does not clear it.
  CMPIInstance* instance = newInstance("QRX_Switch");
  CMPIValue value;
  value.string = ivBroker->newString("not a number");
  CMSetProperty(instance, "EnabledState", &value, CMPI_string);
  value.sint64 = 70000;
  CMSetProperty(instance, "HealthState", &value, CMPI_sint64);
  value.sint64 = 5;
  CMSetProperty(instance, "RequestedState", &value, CMPI_sint64);
  value.string = ivBroker->newString("switch");
  CMSetProperty(instance, "Name", &value, CMPI_string);

  CMPIDeserializer reader(instance);
  unsigned short number = 3;
  reader.read("ResetCapability", CMPI_uint16, number);  // not set at all
  EXPECT_FALSE(reader.hasError());
  EXPECT_EQ(3, number);
  reader.read("EnabledState", CMPI_uint16, number);
  EXPECT_EQ(CMPI_RC_ERR_TYPE_MISMATCH, reader.getStatus().rc);
  EXPECT_EQ(3, number);
  reader.read("HealthState", CMPI_uint16, number);  // out of range
  EXPECT_EQ(3, number);
  reader.read("RequestedState", CMPI_uint16, number);  // another width that fits
  EXPECT_EQ(5, number);
  std::string name;
  reader.read("Name", CMPI_string, name);
  EXPECT_EQ("switch", name);
  EXPECT_TRUE(reader.hasError());
  EXPECT_EQ(CMPI_RC_ERR_TYPE_MISMATCH, reader.getStatus().rc);

  // Raw values cannot be written.
  CMPISerializer writer(broker(), instance);
  CMPIData raw = CMGetProperty(instance, "Name", nullptr);
  writer.write("Name", raw);
  EXPECT_EQ(CMPI_RC_ERROR, writer.getStatus().rc);
  EXPECT_EQ(nullptr, writer.getStatus().msg);
  CMPIValue target;
  CMPIValueSerializer single(broker(), &target);
  single.write("Name", raw);
  EXPECT_EQ(200, single.getStatus().rc);
}

TEST_P(CmpiSerdes, ValueSerializerFillsOneValue) {
  CMPIValue target;
  CMPIValueSerializer values(broker(), &target);
  values.write("A", CMPI_uint64, 0x123456789ULL);
  EXPECT_EQ(0x123456789ULL, target.uint64);
  values.write("B", CMPI_boolean, static_cast<unsigned char>(1));
  EXPECT_EQ(1, target.boolean);
  values.write("C", CMPI_stringA, std::vector<std::string>{"x", "y"});
  EXPECT_EQ(2u, CMGetArrayCount(target.array, nullptr));
  QRX_Fabric_Key fabric;
  fabric.Name = "fabric";
  values.write("D", CMPI_ref, fabric);
  EXPECT_STREQ("QRX_Fabric", CMGetCharPtr(CMGetClassName(target.ref, nullptr)));
  EXPECT_FALSE(values.hasError());
}

INSTANTIATE_TEST_SUITE_P(BothBrokerVersions, CmpiSerdes,
                         ::testing::Values(cimhost::BrokerMode::Cmpi200,
                                           cimhost::BrokerMode::Cmpi100),
                         [](const ::testing::TestParamInfo<cimhost::BrokerMode>& info) {
                           return info.param == cimhost::BrokerMode::Cmpi200 ? "Cmpi200" : "Cmpi100";
                         });

TEST(CmpiSerdesDeath, TypeCodeMismatchAborts) {
  cimhost::TestBroker broker(&modelHierarchy());
  CMPIInstance* instance = broker.newInstance(broker.newObjectPath("root/qrx", "QRX_Switch"));
  EXPECT_DEATH(
      {
        CMPISerializer writer(broker.broker(), instance);
        writer.write("EnabledState", CMPI_uint32, static_cast<unsigned short>(2));
      },
      "type == CMPI_uint16");
  EXPECT_DEATH(
      {
        CMPIDeserializer reader(instance);
        std::string text;
        reader.read("Name", CMPI_stringA, text);
      },
      "type == CMPI_string");
  EXPECT_DEATH(
      {
        CMPIData data = CMGetProperty(instance, "Name", nullptr);
        QRX_Switch_Key key;
        CMPIDataDeserializer(data).read("Key", CMPI_ref, key);
      },
      "nested object cannot be read");
}

}  // namespace
