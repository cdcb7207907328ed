// The broker's encapsulated types through their CMPI function tables:
// instances, object paths, arrays, enumerations, date-times, arguments,
// contexts and errors, with their copy semantics and error statuses.
#include <gtest/gtest.h>

#include <stdlib.h>
#include <time.h>

#include <cstring>
#include <string>
#include <vector>

#include "cmpimacs.h"
#include "tools/cimhost/broker/ClassHierarchy.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace {

using cimhost::BrokerMode;
using cimhost::ClassHierarchy;
using cimhost::TestBroker;

std::string str(const CMPIString* ipString) {
  return ipString ? std::string(CMGetCharPtr(ipString)) : std::string("<NULL>");
}

// The characters of a string-typed datum.
std::string str(const CMPIData& irData) {
  EXPECT_EQ(CMPI_string, irData.type);
  return irData.type == CMPI_string ? str(irData.value.string) : std::string();
}

const char kMof[] = R"(
  class CIM_System : CIM_EnabledLogicalElement {
    [Key] string CreationClassName;
    [Key] string Name;
  };
  class CIM_ComputerSystem : CIM_System { };
  class QRX_Switch : CIM_ComputerSystem { [Key] string Name; string ElementName; };
  class QRX_Fabric : CIM_AdminDomain { [Key] string Name; };
  [Association] class QRX_SwitchInFabric : CIM_Component {
    [Key] QRX_Fabric REF GroupComponent;
    [Key] QRX_Switch REF PartComponent;
  };
)";

class EncapsulatedTypesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    ASSERT_TRUE(ivClasses.loadMofText(kMof, "test.mof", &error)) << error;
  }

  CMPIObjectPath* path(const char* ipClass, const char* ipNameSpace = "root/qrx") {
    CMPIStatus rc;
    CMPIObjectPath* op = CMNewObjectPath(mb, ipNameSpace, ipClass, &rc);
    EXPECT_EQ(CMPI_RC_OK, rc.rc);
    return op;
  }

  CMPIInstance* instance(const char* ipClass) {
    CMPIStatus rc;
    CMPIInstance* inst = CMNewInstance(mb, path(ipClass), &rc);
    EXPECT_EQ(CMPI_RC_OK, rc.rc);
    return inst;
  }

  ClassHierarchy ivClasses;
  TestBroker ivBroker{&ivClasses};
  const CMPIBroker* mb = ivBroker.broker();
};

TEST_F(EncapsulatedTypesTest, InstancePropertiesRoundTripEveryType) {
  CMPIInstance* inst = instance("QRX_Switch");
  CMPIValue v;
  v.string = CMNewString(mb, "sw1", nullptr);
  EXPECT_EQ(CMPI_RC_OK, CMSetProperty(inst, "Str", &v, CMPI_string).rc);
  EXPECT_EQ(CMPI_RC_OK, CMSetProperty(inst, "Chars", "port \"7\"", CMPI_chars).rc);
  v.boolean = 1;
  CMSetProperty(inst, "Bool", &v, CMPI_boolean);
  v.char16 = 'Q';
  CMSetProperty(inst, "C16", &v, CMPI_char16);
  v.uint8 = 255;
  CMSetProperty(inst, "U8", &v, CMPI_uint8);
  v.sint8 = -128;
  CMSetProperty(inst, "S8", &v, CMPI_sint8);
  v.uint16 = 65535;
  CMSetProperty(inst, "U16", &v, CMPI_uint16);
  v.sint16 = -32768;
  CMSetProperty(inst, "S16", &v, CMPI_sint16);
  v.uint32 = 4000000000u;
  CMSetProperty(inst, "U32", &v, CMPI_uint32);
  v.sint32 = -2000000000;
  CMSetProperty(inst, "S32", &v, CMPI_sint32);
  v.uint64 = 18000000000000000000ull;
  CMSetProperty(inst, "U64", &v, CMPI_uint64);
  v.sint64 = -9000000000000000000ll;
  CMSetProperty(inst, "S64", &v, CMPI_sint64);
  v.real32 = 1.5f;
  CMSetProperty(inst, "R32", &v, CMPI_real32);
  v.real64 = -2.25e300;
  CMSetProperty(inst, "R64", &v, CMPI_real64);
  v.dateTime = CMNewDateTimeFromBinary(mb, 1000001, 1, nullptr);
  CMSetProperty(inst, "Interval", &v, CMPI_dateTime);

  CMPIArray* u16s = CMNewArray(mb, 2, CMPI_uint16, nullptr);
  CMPIValue e;
  e.uint16 = 7;
  CMSetArrayElementAt(u16s, 0, &e, CMPI_uint16);
  e.uint16 = 9;
  CMSetArrayElementAt(u16s, 1, &e, CMPI_uint16);
  v.array = u16s;
  CMSetProperty(inst, "U16A", &v, CMPI_uint16A);
  CMPIArray* u64s = CMNewArray(mb, 1, CMPI_uint64, nullptr);
  e.uint64 = 1ull << 40;
  CMSetArrayElementAt(u64s, 0, &e, CMPI_uint64);
  v.array = u64s;
  CMSetProperty(inst, "U64A", &v, CMPI_uint64A);
  CMPIArray* strs = CMNewArray(mb, 2, CMPI_string, nullptr);
  CMSetArrayElementAt(strs, 0, "a", CMPI_chars);
  v.array = strs;
  CMSetProperty(inst, "StrA", &v, CMPI_stringA);

  CMPIObjectPath* ref = path("QRX_Fabric");
  CMAddKey(ref, "Name", "f1", CMPI_chars);
  v.ref = ref;
  CMSetProperty(inst, "Ref", &v, CMPI_ref);
  CMPIInstance* embedded = instance("QRX_Fabric");
  CMSetProperty(embedded, "Name", "inner", CMPI_chars);
  v.inst = embedded;
  CMSetProperty(inst, "Embedded", &v, CMPI_instance);

  // Null values: a NULL value pointer, a NULL object, and CMPI_null.
  EXPECT_EQ(CMPI_RC_OK, CMSetProperty(inst, "NullU32", nullptr, CMPI_uint32).rc);
  v.string = nullptr;
  EXPECT_EQ(CMPI_RC_OK, CMSetProperty(inst, "NullStr", &v, CMPI_string).rc);
  EXPECT_EQ(CMPI_RC_OK, CMSetProperty(inst, "NullChars", nullptr, CMPI_chars).rc);
  EXPECT_EQ(CMPI_RC_OK, CMSetProperty(inst, "Nothing", nullptr, CMPI_null).rc);

  CMPIStatus rc;
  EXPECT_EQ("sw1", str(CMGetProperty(inst, "str", &rc)));  // names are case-insensitive
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  CMPIData d = CMGetProperty(inst, "Chars", &rc);
  EXPECT_EQ("port \"7\"", str(d));
  EXPECT_EQ(CMPI_goodValue, d.state);
  d = CMGetProperty(inst, "Bool", nullptr);
  EXPECT_EQ(CMPI_boolean, d.type);
  EXPECT_EQ(1, d.value.boolean);
  d = CMGetProperty(inst, "C16", nullptr);
  EXPECT_EQ(CMPI_char16, d.type);
  EXPECT_EQ('Q', d.value.char16);
  EXPECT_EQ(255, CMGetProperty(inst, "U8", nullptr).value.uint8);
  EXPECT_EQ(-128, CMGetProperty(inst, "S8", nullptr).value.sint8);
  EXPECT_EQ(65535, CMGetProperty(inst, "U16", nullptr).value.uint16);
  EXPECT_EQ(-32768, CMGetProperty(inst, "S16", nullptr).value.sint16);
  EXPECT_EQ(4000000000u, CMGetProperty(inst, "U32", nullptr).value.uint32);
  EXPECT_EQ(-2000000000, CMGetProperty(inst, "S32", nullptr).value.sint32);
  EXPECT_EQ(18000000000000000000ull, CMGetProperty(inst, "U64", nullptr).value.uint64);
  EXPECT_EQ(-9000000000000000000ll, CMGetProperty(inst, "S64", nullptr).value.sint64);
  EXPECT_EQ(CMPI_sint64, CMGetProperty(inst, "S64", nullptr).type);
  EXPECT_EQ(1.5f, CMGetProperty(inst, "R32", nullptr).value.real32);
  EXPECT_EQ(CMPI_real32, CMGetProperty(inst, "R32", nullptr).type);
  EXPECT_EQ(-2.25e300, CMGetProperty(inst, "R64", nullptr).value.real64);
  d = CMGetProperty(inst, "Interval", nullptr);
  ASSERT_EQ(CMPI_dateTime, d.type);
  EXPECT_EQ(1000001u, CMGetBinaryFormat(d.value.dateTime, nullptr));
  EXPECT_TRUE(CMIsInterval(d.value.dateTime, nullptr));

  d = CMGetProperty(inst, "U16A", nullptr);
  ASSERT_EQ(CMPI_uint16A, d.type);
  ASSERT_EQ(2u, CMGetArrayCount(d.value.array, nullptr));
  EXPECT_EQ(CMPI_uint16, CMGetArrayType(d.value.array, nullptr));
  EXPECT_EQ(9, CMGetArrayElementAt(d.value.array, 1, nullptr).value.uint16);
  d = CMGetProperty(inst, "U64A", nullptr);
  ASSERT_EQ(CMPI_uint64A, d.type);
  EXPECT_EQ(1ull << 40, CMGetArrayElementAt(d.value.array, 0, nullptr).value.uint64);
  d = CMGetProperty(inst, "StrA", nullptr);
  ASSERT_EQ(CMPI_stringA, d.type);
  EXPECT_EQ("a", str(CMGetArrayElementAt(d.value.array, 0, nullptr)));
  EXPECT_TRUE(CMIsNullValue(CMGetArrayElementAt(d.value.array, 1, nullptr)));

  d = CMGetProperty(inst, "Ref", nullptr);
  ASSERT_EQ(CMPI_ref, d.type);
  EXPECT_EQ("root/qrx:QRX_Fabric.Name=\"f1\"", str(CMObjectPathToString(d.value.ref, nullptr)));
  d = CMGetProperty(inst, "Embedded", nullptr);
  ASSERT_EQ(CMPI_instance, d.type);
  EXPECT_EQ("inner", str(CMGetProperty(d.value.inst, "Name", nullptr)));

  d = CMGetProperty(inst, "NullU32", &rc);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(CMPI_uint32, d.type);
  EXPECT_EQ(CMPI_nullValue, d.state);
  d = CMGetProperty(inst, "NullStr", nullptr);
  EXPECT_EQ(CMPI_string, d.type);
  EXPECT_EQ(CMPI_nullValue, d.state);
  d = CMGetProperty(inst, "NullChars", nullptr);
  EXPECT_EQ(CMPI_string, d.type);
  EXPECT_TRUE(CMIsNullValue(d));
  d = CMGetProperty(inst, "Nothing", nullptr);
  EXPECT_EQ(CMPI_null, d.type);
  EXPECT_TRUE(CMIsNullValue(d));

  // Order, names and count; unknown names and indexes.
  EXPECT_EQ(24u, CMGetPropertyCount(inst, nullptr));
  CMPIString* name = nullptr;
  d = CMGetPropertyAt(inst, 4, &name, &rc);
  EXPECT_EQ("U8", str(name));
  EXPECT_EQ(255, d.value.uint8);
  d = CMGetPropertyAt(inst, 24, &name, &rc);
  EXPECT_EQ(CMPI_RC_ERR_NO_SUCH_PROPERTY, rc.rc);
  d = CMGetProperty(inst, "Missing", &rc);
  EXPECT_EQ(CMPI_RC_ERR_NO_SUCH_PROPERTY, rc.rc);
  EXPECT_EQ("no property Missing in QRX_Switch instance", str(rc.msg));
  EXPECT_TRUE(d.state & CMPI_notFound);

  // Values that cannot be stored.
  v.array = u16s;
  rc = CMSetProperty(inst, "Bad", &v, CMPI_uint32A);
  EXPECT_EQ(CMPI_RC_ERR_TYPE_MISMATCH, rc.rc);
  EXPECT_EQ("property Bad: an array of uint16 passed as uint32[]", str(rc.msg));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_DATA_TYPE, CMSetProperty(inst, "Bad", &v, CMPI_class).rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, CMSetProperty(inst, nullptr, &v, CMPI_uint32).rc);
  CMPIInstanceFT otherTable = *inst->ft;  // same functions, another implementation's table
  CMPIInstance foreign = {inst->hdl, &otherTable};
  v.inst = &foreign;
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, CMSetProperty(inst, "Bad", &v, CMPI_instance).rc);
  EXPECT_EQ(24u, CMGetPropertyCount(inst, nullptr));
}

// One value of each type a container stores, as a provider passes it.
struct Sample {
  const char* name;
  CMPIType type;           // as passed
  CMPIType stored;         // as read back
  const CMPIValue* value;  // as passed
};

// A datum as text: scalars by their member, objects by the broker's
// toString(), so that a stored copy compares with its source.
std::string render(const CMPIBroker* mb, CMPIType ipType, const CMPIValue& irValue) {
  char buf[64];
  switch (ipType) {
    case CMPI_boolean: return irValue.boolean ? "true" : "false";
    case CMPI_char16: return std::to_string(irValue.char16);
    case CMPI_uint8: return std::to_string(irValue.uint8);
    case CMPI_sint8: return std::to_string(irValue.sint8);
    case CMPI_uint16: return std::to_string(irValue.uint16);
    case CMPI_sint16: return std::to_string(irValue.sint16);
    case CMPI_uint32: return std::to_string(irValue.uint32);
    case CMPI_sint32: return std::to_string(irValue.sint32);
    case CMPI_uint64: return std::to_string(irValue.uint64);
    case CMPI_sint64: return std::to_string(irValue.sint64);
    case CMPI_real32: snprintf(buf, sizeof(buf), "%a", irValue.real32); return buf;
    case CMPI_real64: snprintf(buf, sizeof(buf), "%a", irValue.real64); return buf;
    case CMPI_chars: return reinterpret_cast<const char*>(&irValue);
    default: return str(CDToString(mb, irValue.inst, nullptr));
  }
}

TEST_F(EncapsulatedTypesTest, EveryTypeRoundTripsThroughEveryContainer) {
  std::vector<CMPIValue> v(16);
  v[0].boolean = 1;
  v[1].char16 = 0x263A;
  v[2].uint8 = 200;
  v[3].sint8 = -100;
  v[4].uint16 = 60000;
  v[5].sint16 = -30000;
  v[6].uint32 = 4000000000u;
  v[7].sint32 = -2000000000;
  v[8].uint64 = 1ull << 63;
  v[9].sint64 = -(1ll << 62);
  v[10].real32 = 0.1f;
  v[11].real64 = 1.0 / 3;
  v[12].string = CMNewString(mb, "text", nullptr);
  v[13].dateTime = CMNewDateTimeFromChars(mb, "20240301123045.123456-120", nullptr);
  v[14].ref = path("QRX_Fabric");
  CMAddKey(v[14].ref, "Name", "f1", CMPI_chars);
  v[15].inst = instance("QRX_Fabric");
  CMSetProperty(v[15].inst, "Name", "f1", CMPI_chars);
  CMPIArray* u16s = CMNewArray(mb, 2, CMPI_uint16, nullptr);
  CMSetArrayElementAt(u16s, 1, &v[4], CMPI_uint16);
  CMPIArray* u64s = CMNewArray(mb, 1, CMPI_uint64, nullptr);
  CMSetArrayElementAt(u64s, 0, &v[8], CMPI_uint64);
  CMPIArray* strings = CMNewArray(mb, 2, CMPI_chars, nullptr);
  CMSetArrayElementAt(strings, 0, "a \"quoted\" one", CMPI_chars);
  CMPIArray* refs = CMNewArray(mb, 1, CMPI_ref, nullptr);
  CMSetArrayElementAt(refs, 0, &v[14], CMPI_ref);
  CMPIValue arrays[4];
  arrays[0].array = u16s;
  arrays[1].array = u64s;
  arrays[2].array = strings;
  arrays[3].array = refs;

  const Sample samples[] = {
      {"Bool", CMPI_boolean, CMPI_boolean, &v[0]},
      {"Char", CMPI_char16, CMPI_char16, &v[1]},
      {"U8", CMPI_uint8, CMPI_uint8, &v[2]},
      {"S8", CMPI_sint8, CMPI_sint8, &v[3]},
      {"U16", CMPI_uint16, CMPI_uint16, &v[4]},
      {"S16", CMPI_sint16, CMPI_sint16, &v[5]},
      {"U32", CMPI_uint32, CMPI_uint32, &v[6]},
      {"S32", CMPI_sint32, CMPI_sint32, &v[7]},
      {"U64", CMPI_uint64, CMPI_uint64, &v[8]},
      {"S64", CMPI_sint64, CMPI_sint64, &v[9]},
      {"R32", CMPI_real32, CMPI_real32, &v[10]},
      {"R64", CMPI_real64, CMPI_real64, &v[11]},
      {"Str", CMPI_string, CMPI_string, &v[12]},
      {"Chars", CMPI_chars, CMPI_string, reinterpret_cast<const CMPIValue*>("chars")},
      {"When", CMPI_dateTime, CMPI_dateTime, &v[13]},
      {"Ref", CMPI_ref, CMPI_ref, &v[14]},
      {"Inst", CMPI_instance, CMPI_instance, &v[15]},
      {"U16A", CMPI_uint16A, CMPI_uint16A, &arrays[0]},
      {"U64A", CMPI_uint64A, CMPI_uint64A, &arrays[1]},
      {"StrA", CMPI_stringA, CMPI_stringA, &arrays[2]},
      {"RefA", CMPI_refA, CMPI_refA, &arrays[3]},
  };

  CMPIInstance* inst = instance("QRX_Switch");
  CMPIObjectPath* op = path("QRX_Switch");
  CMPIArgs* args = ivBroker.newArgs();
  CMPIContext* ctx = ivBroker.newContext("root/qrx");
  std::vector<std::string> before;
  for (const Sample& sample : samples) {
    before.push_back(render(mb, sample.type, *sample.value));
    EXPECT_EQ(CMPI_RC_OK, CMSetProperty(inst, sample.name, sample.value, sample.type).rc);
    EXPECT_EQ(CMPI_RC_OK, CMAddKey(op, sample.name, sample.value, sample.type).rc);
    EXPECT_EQ(CMPI_RC_OK, CMAddArg(args, sample.name, sample.value, sample.type).rc);
    EXPECT_EQ(CMPI_RC_OK, CMAddContextEntry(ctx, sample.name, sample.value, sample.type).rc);
  }

  // Change every source object; the stored copies must not follow.
  CMRelease(v[12].string);
  CMAddKey(v[14].ref, "Name", "changed", CMPI_chars);
  CMSetProperty(v[15].inst, "Name", "changed", CMPI_chars);
  CMSetArrayElementAt(u16s, 0, &v[4], CMPI_uint16);
  CMSetArrayElementAt(strings, 1, "more", CMPI_chars);
  CMSetArrayElementAt(refs, 0, &v[14], CMPI_ref);

  for (size_t i = 0; i < sizeof(samples) / sizeof(samples[0]); ++i) {
    const Sample& sample = samples[i];
    const CMPIData read[] = {CMGetProperty(inst, sample.name, nullptr),
                             CMGetKey(op, sample.name, nullptr),
                             CMGetArg(args, sample.name, nullptr),
                             CMGetContextEntry(ctx, sample.name, nullptr)};
    for (const CMPIData& d : read) {
      EXPECT_EQ(sample.stored, d.type) << sample.name;
      EXPECT_FALSE(CMIsNullValue(d)) << sample.name;
      EXPECT_EQ(before[i], render(mb, sample.stored, d.value)) << sample.name;
    }
    EXPECT_EQ(static_cast<CMPIValueState>(CMPI_goodValue), read[1].state) << sample.name;
  }
}

TEST_F(EncapsulatedTypesTest, StoredValuesAreDeepCopies) {
  CMPIInstance* inst = instance("QRX_Switch");
  CMPIValue v;

  CMPIString* source = CMNewString(mb, "before", nullptr);
  v.string = source;
  CMSetProperty(inst, "Str", &v, CMPI_string);
  CMRelease(source);

  CMPIArray* array = CMNewArray(mb, 1, CMPI_string, nullptr);
  CMSetArrayElementAt(array, 0, "before", CMPI_chars);
  v.array = array;
  CMSetProperty(inst, "Arr", &v, CMPI_stringA);
  CMSetArrayElementAt(array, 0, "after", CMPI_chars);

  CMPIObjectPath* ref = path("QRX_Fabric");
  v.ref = ref;
  CMSetProperty(inst, "Ref", &v, CMPI_ref);
  CMAddKey(ref, "Name", "after", CMPI_chars);
  CMSetNameSpace(ref, "other");

  CMPIInstance* embedded = instance("QRX_Fabric");
  CMSetProperty(embedded, "Name", "before", CMPI_chars);
  v.inst = embedded;
  CMSetProperty(inst, "Emb", &v, CMPI_instance);
  CMSetProperty(embedded, "Name", "after", CMPI_chars);
  CMRelease(embedded);

  CMPIDateTime* when = CMNewDateTimeFromBinary(mb, 42, 0, nullptr);
  v.dateTime = when;
  CMSetProperty(inst, "When", &v, CMPI_dateTime);
  CMRelease(when);

  EXPECT_EQ("before", str(CMGetProperty(inst, "Str", nullptr)));
  CMPIArray* stored = CMGetProperty(inst, "Arr", nullptr).value.array;
  EXPECT_NE(array, stored);
  EXPECT_EQ("before", str(CMGetArrayElementAt(stored, 0, nullptr)));
  CMPIObjectPath* storedRef = CMGetProperty(inst, "Ref", nullptr).value.ref;
  EXPECT_EQ(0u, CMGetKeyCount(storedRef, nullptr));
  EXPECT_EQ("root/qrx", str(CMGetNameSpace(storedRef, nullptr)));
  EXPECT_EQ("before", str(CMGetProperty(CMGetProperty(inst, "Emb", nullptr).value.inst, "Name",
                                        nullptr)));
  EXPECT_EQ(42u, CMGetBinaryFormat(CMGetProperty(inst, "When", nullptr).value.dateTime, nullptr));

  // A clone is independent both ways, nested objects included.
  CMPIInstance* copy = CMClone(inst, nullptr);
  CMSetProperty(copy, "Str", "changed", CMPI_chars);
  CMSetArrayElementAt(CMGetProperty(copy, "Arr", nullptr).value.array, 0, "changed", CMPI_chars);
  EXPECT_EQ("before", str(CMGetProperty(inst, "Str", nullptr)));
  EXPECT_EQ("before", str(CMGetArrayElementAt(stored, 0, nullptr)));
  CMSetProperty(inst, "Str", "again", CMPI_chars);
  EXPECT_EQ("changed", str(CMGetProperty(copy, "Str", nullptr)));

  // Replacing a property keeps its position and first spelling.
  CMPIString* name = nullptr;
  CMSetProperty(inst, "STR", "replaced", CMPI_chars);
  EXPECT_EQ("replaced", str(CMGetPropertyAt(inst, 0, &name, nullptr)));
  EXPECT_EQ("Str", str(name));
  EXPECT_EQ(5u, CMGetPropertyCount(inst, nullptr));
}

TEST_F(EncapsulatedTypesTest, ObjectPathKeysAndTextForm) {
  CMPIObjectPath* fabric = path("QRX_Fabric");
  CMAddKey(fabric, "Name", "f \"1\" \\ x", CMPI_chars);
  CMPIObjectPath* op = path("QRX_SwitchInFabric");
  CMPIValue v;
  v.ref = fabric;
  EXPECT_EQ(CMPI_RC_OK, CMAddKey(op, "GroupComponent", &v, CMPI_ref).rc);
  v.uint16 = 5;
  CMAddKey(op, "Port", &v, CMPI_uint16);
  v.boolean = 0;
  CMAddKey(op, "Active", &v, CMPI_boolean);
  v.sint64 = -3;
  CMAddKey(op, "Offset", &v, CMPI_sint64);
  v.dateTime = CMNewDateTimeFromChars(mb, "20240301123045.000000+060", nullptr);
  CMAddKey(op, "Since", &v, CMPI_dateTime);

  EXPECT_EQ(R"(root/qrx:QRX_SwitchInFabric.)"
            R"(GroupComponent="root/qrx:QRX_Fabric.Name=\"f \\\"1\\\" \\\\ x\"",)"
            R"(Port=5,Active=false,Offset=-3,Since="20240301123045.000000+060")",
            str(CMObjectPathToString(op, nullptr)));

  CMPIStatus rc;
  CMPIData d = CMGetKey(op, "port", &rc);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(CMPI_uint16, d.type);
  EXPECT_EQ(CMPI_goodValue, d.state);
  EXPECT_EQ(5, d.value.uint16);
  CMPIString* name = nullptr;
  d = CMGetKeyAt(op, 0, &name, &rc);
  EXPECT_EQ("GroupComponent", str(name));
  EXPECT_EQ(CMPI_ref, d.type);
  EXPECT_FALSE(CMIsKeyValue(d));
  EXPECT_EQ(5u, CMGetKeyCount(op, nullptr));
  d = CMGetKey(op, "Nope", &rc);
  EXPECT_EQ(CMPI_RC_ERR_NOT_FOUND, rc.rc);
  EXPECT_TRUE(CMIsNullValue(d));
  CMGetKeyAt(op, 5, nullptr, &rc);
  EXPECT_EQ(CMPI_RC_ERR_NO_SUCH_PROPERTY, rc.rc);

  // Adding an existing key replaces it in place.
  v.uint16 = 6;
  CMAddKey(op, "PORT", &v, CMPI_uint16);
  EXPECT_EQ(6, CMGetKeyAt(op, 1, nullptr, nullptr).value.uint16);
  EXPECT_EQ(5u, CMGetKeyCount(op, nullptr));

  // Host and namespace forms, and copying them from another path.
  CMPIObjectPath* bare = CMNewObjectPath(mb, nullptr, "QRX_Switch", nullptr);
  EXPECT_EQ("QRX_Switch", str(CMObjectPathToString(bare, nullptr)));
  EXPECT_EQ("", str(CMGetNameSpace(bare, nullptr)));
  CMSetHostname(fabric, "sw.example");
  EXPECT_EQ(CMPI_RC_OK, CMSetNameSpaceFromObjectPath(bare, fabric).rc);
  EXPECT_EQ("root/qrx:QRX_Switch", str(CMObjectPathToString(bare, nullptr)));
  EXPECT_EQ(CMPI_RC_OK, CMSetHostAndNameSpaceFromObjectPath(bare, fabric).rc);
  EXPECT_EQ("//sw.example/root/qrx:QRX_Switch", str(CMObjectPathToString(bare, nullptr)));
  EXPECT_EQ("sw.example", str(CMGetHostname(bare, nullptr)));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, CMSetNameSpaceFromObjectPath(bare, nullptr).rc);
  EXPECT_EQ(CMPI_RC_OK, CMSetClassName(bare, "QRX_Fabric").rc);
  EXPECT_EQ("QRX_Fabric", str(CMGetClassName(bare, nullptr)));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, CMSetClassName(bare, "").rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, CMAddKey(bare, nullptr, &v, CMPI_uint16).rc);
  EXPECT_EQ(nullptr, CMNewObjectPath(mb, "ns", nullptr, &rc));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);

  // The hierarchy carries no qualifiers.
  CMGetClassQualifier(op, "Association", &rc);
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, rc.rc);
  CMGetPropertyQualifier(op, "Port", "Key", &rc);
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, rc.rc);
  CMGetMethodQualifier(op, "M", "Static", &rc);
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, rc.rc);
  CMGetParameterQualifier(op, "M", "P", "IN", &rc);
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, rc.rc);
}

TEST_F(EncapsulatedTypesTest, GetObjectPathTakesTheKeysTheHierarchyDeclares) {
  CMPIObjectPath* op = path("QRX_Switch");
  CMAddKey(op, "Name", "from-path", CMPI_chars);
  CMAddKey(op, "Stale", "x", CMPI_chars);
  CMPIInstance* inst = CMNewInstance(mb, op, nullptr);
  CMSetProperty(inst, "ElementName", "not a key", CMPI_chars);
  CMSetProperty(inst, "CreationClassName", "QRX_Switch", CMPI_chars);
  CMSetHostname(op, "later");  // the instance has its own copy of the path

  // Name from the path (no such property yet), CreationClassName from the
  // property; ancestors' key order; Stale and ElementName are no keys.
  CMPIStatus rc;
  CMPIObjectPath* got = CMGetObjectPath(inst, &rc);
  ASSERT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ("root/qrx:QRX_Switch.CreationClassName=\"QRX_Switch\",Name=\"from-path\"",
            str(CMObjectPathToString(got, nullptr)));

  // Property values win over the path; a null property falls back to it.
  CMSetProperty(inst, "Name", "sw1", CMPI_chars);
  EXPECT_EQ("root/qrx:QRX_Switch.CreationClassName=\"QRX_Switch\",Name=\"sw1\"",
            str(CMObjectPathToString(CMGetObjectPath(inst, nullptr), nullptr)));
  CMSetProperty(inst, "Name", nullptr, CMPI_chars);
  EXPECT_EQ("from-path", str(CMGetKey(CMGetObjectPath(inst, nullptr), "Name", nullptr)));

  // Reference keys of an association keep their type.
  CMPIInstance* assoc = instance("QRX_SwitchInFabric");
  CMPIValue v;
  v.ref = got;
  CMSetProperty(assoc, "PartComponent", &v, CMPI_ref);
  CMPIData key = CMGetKey(CMGetObjectPath(assoc, nullptr), "PartComponent", nullptr);
  ASSERT_EQ(CMPI_ref, key.type);
  EXPECT_EQ("QRX_Switch", str(CMGetClassName(key.value.ref, nullptr)));
  EXPECT_EQ(1u, CMGetKeyCount(CMGetObjectPath(assoc, nullptr), nullptr));

  // Unknown class: the keys of the instance's own path.
  CMPIObjectPath* unknown = path("QRX_Unknown");
  CMAddKey(unknown, "Id", "7", CMPI_chars);
  CMPIInstance* other = CMNewInstance(mb, unknown, nullptr);
  CMSetProperty(other, "Id", "8", CMPI_chars);
  EXPECT_EQ("root/qrx:QRX_Unknown.Id=\"7\"",
            str(CMObjectPathToString(CMGetObjectPath(other, nullptr), nullptr)));

  // setObjectPath replaces the path; the class decides the keys again.
  CMPIObjectPath* fabric = path("QRX_Fabric", "interop");
  EXPECT_EQ(CMPI_RC_OK, CMSetObjectPath(other, fabric).rc);
  CMSetProperty(other, "Name", "f9", CMPI_chars);
  EXPECT_EQ("interop:QRX_Fabric.Name=\"f9\"",
            str(CMObjectPathToString(CMGetObjectPath(other, nullptr), nullptr)));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, CMSetObjectPath(other, nullptr).rc);

  // classPathIsA follows the hierarchy, case-insensitively.
  EXPECT_TRUE(CMClassPathIsA(mb, got, "cim_system", &rc));
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_TRUE(CMClassPathIsA(mb, got, "CIM_EnabledLogicalElement", nullptr));
  EXPECT_FALSE(CMClassPathIsA(mb, got, "QRX_Fabric", nullptr));
  EXPECT_FALSE(CMClassPathIsA(mb, unknown, "QRX_Unknown", &rc));
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_FALSE(CMClassPathIsA(mb, got, nullptr, &rc));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  EXPECT_FALSE(CMClassPathIsA(mb, nullptr, "CIM_System", &rc));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
}

TEST_F(EncapsulatedTypesTest, PropertyFilterDropsWhatItDoesNotAdmit) {
  CMPIInstance* inst = instance("QRX_Switch");
  CMSetProperty(inst, "ElementName", "e", CMPI_chars);
  CMSetProperty(inst, "Caption", "c", CMPI_chars);
  CMSetProperty(inst, "Name", "n", CMPI_chars);
  CMSetProperty(inst, "Extra", "x", CMPI_chars);

  const char* properties[] = {"elementname", nullptr};
  const char* keys[] = {"Extra", nullptr};
  EXPECT_EQ(CMPI_RC_OK, CMSetPropertyFilter(inst, properties, keys).rc);
  // Name stays as a key of the class, Extra as a listed key.
  EXPECT_EQ(3u, CMGetPropertyCount(inst, nullptr));
  CMPIStatus rc;
  CMGetProperty(inst, "Caption", &rc);
  EXPECT_EQ(CMPI_RC_ERR_NO_SUCH_PROPERTY, rc.rc);
  EXPECT_EQ(CMPI_RC_OK, CMSetProperty(inst, "Caption", "c2", CMPI_chars).rc);
  CMGetProperty(inst, "Caption", &rc);
  EXPECT_EQ(CMPI_RC_ERR_NO_SUCH_PROPERTY, rc.rc);
  CMSetProperty(inst, "CreationClassName", "QRX_Switch", CMPI_chars);
  EXPECT_EQ(4u, CMGetPropertyCount(inst, nullptr));

  // The filter goes with a clone, and a NULL list removes it.
  CMPIInstance* copy = CMClone(inst, nullptr);
  CMSetProperty(copy, "Caption", "c3", CMPI_chars);
  EXPECT_EQ(4u, CMGetPropertyCount(copy, nullptr));
  EXPECT_EQ(CMPI_RC_OK, CMSetPropertyFilter(inst, nullptr, nullptr).rc);
  CMSetProperty(inst, "Caption", "c4", CMPI_chars);
  EXPECT_EQ("c4", str(CMGetProperty(inst, "Caption", nullptr)));
}

TEST_F(EncapsulatedTypesTest, ArraysAndEnumerations) {
  CMPIStatus rc;
  CMPIArray* array = CMNewArray(mb, 3, CMPI_chars, &rc);
  ASSERT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(CMPI_string, CMGetArrayType(array, nullptr));
  EXPECT_EQ(3u, CMGetArrayCount(array, nullptr));
  CMPIData d = CMGetArrayElementAt(array, 2, &rc);
  EXPECT_EQ(CMPI_string, d.type);
  EXPECT_EQ(CMPI_nullValue, d.state);
  EXPECT_EQ(CMPI_RC_OK, CMSetArrayElementAt(array, 0, "zero", CMPI_chars).rc);
  CMPIValue v;
  v.string = CMNewString(mb, "one", nullptr);
  EXPECT_EQ(CMPI_RC_OK, CMSetArrayElementAt(array, 1, &v, CMPI_string).rc);
  v.uint32 = 1;
  rc = CMSetArrayElementAt(array, 2, &v, CMPI_uint32);
  EXPECT_EQ(CMPI_RC_ERR_TYPE_MISMATCH, rc.rc);
  EXPECT_EQ("cannot store a uint32 in an array of string", str(rc.msg));
  EXPECT_EQ(CMPI_RC_ERR_NO_SUCH_PROPERTY, CMSetArrayElementAt(array, 3, "x", CMPI_chars).rc);
  CMGetArrayElementAt(array, 3, &rc);
  EXPECT_EQ(CMPI_RC_ERR_NO_SUCH_PROPERTY, rc.rc);
  EXPECT_EQ("one", str(CMGetArrayElementAt(array, 1, nullptr)));
  EXPECT_EQ(CMPI_RC_OK, CMSetArrayElementAt(array, 1, nullptr, CMPI_null).rc);
  EXPECT_TRUE(CMIsNullValue(CMGetArrayElementAt(array, 1, nullptr)));
  CMSetArrayElementAt(array, 1, "one", CMPI_chars);

  EXPECT_EQ(nullptr, CMNewArray(mb, 1, CMPI_args, &rc));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_DATA_TYPE, rc.rc);
  CMPIArray* u8s = CMNewArray(mb, 2, CMPI_uint8A, &rc);  // the array bit is ignored
  EXPECT_EQ(CMPI_uint8, CMGetArrayType(u8s, nullptr));

  CMPIArray* copy = CMClone(array, nullptr);
  CMSetArrayElementAt(copy, 0, "changed", CMPI_chars);
  EXPECT_EQ("zero", str(CMGetArrayElementAt(array, 0, nullptr)));

  // An enumeration copies the array and walks it.
  CMPIEnumeration* en = ivBroker.newEnumeration(array, &rc);
  ASSERT_EQ(CMPI_RC_OK, rc.rc);
  CMSetArrayElementAt(array, 0, "later", CMPI_chars);
  EXPECT_TRUE(CMHasNext(en, nullptr));
  EXPECT_EQ("zero", str(CMGetNext(en, nullptr)));
  CMPIEnumeration* rest = CMClone(en, nullptr);
  EXPECT_EQ("one", str(CMGetNext(en, nullptr)));
  EXPECT_TRUE(CMIsNullValue(CMGetNext(en, nullptr)));
  EXPECT_FALSE(CMHasNext(en, nullptr));
  CMGetNext(en, &rc);
  EXPECT_EQ(CMPI_RC_ERR_NOT_FOUND, rc.rc);
  EXPECT_EQ("one", str(CMGetNext(rest, nullptr)));
  CMPIArray* all = CMToArray(en, nullptr);
  EXPECT_EQ(3u, CMGetArrayCount(all, nullptr));
  EXPECT_EQ("zero", str(CMGetArrayElementAt(all, 0, nullptr)));
  EXPECT_EQ(nullptr, ivBroker.newEnumeration(nullptr, &rc));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
}

// Sets TZ for the test's scope.
class ScopedTimeZone {
 public:
  explicit ScopedTimeZone(const char* ipZone) {
    const char* old = getenv("TZ");
    ivHadOld = old != nullptr;
    if (old) ivOld = old;
    setenv("TZ", ipZone, 1);
    tzset();
  }
  ~ScopedTimeZone() {
    if (ivHadOld) {
      setenv("TZ", ivOld.c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }

 private:
  bool ivHadOld;
  std::string ivOld;
};

TEST_F(EncapsulatedTypesTest, DateTimeTextAndBinaryWithOffsets) {
  CMPIStatus rc;
  // 2024-03-01 12:30:45.123456 at UTC+1 is 11:30:45.123456 UTC.
  CMPIDateTime* dt = CMNewDateTimeFromChars(mb, "20240301123045.123456+060", &rc);
  ASSERT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(1709292645123456ull, CMGetBinaryFormat(dt, nullptr));
  EXPECT_FALSE(CMIsInterval(dt, nullptr));
  EXPECT_EQ("20240301123045.123456+060", str(CMGetStringFormat(dt, nullptr)));
  // West of Greenwich across midnight and a year end: 2023-12-31 21:30 UTC.
  dt = CMNewDateTimeFromChars(mb, "20231231163000.000000-300", nullptr);
  EXPECT_EQ(1704058200000000ull, CMGetBinaryFormat(dt, nullptr));
  dt = CMNewDateTimeFromChars(mb, "20240101010000.000000+210", nullptr);
  EXPECT_EQ(1704058200000000ull, CMGetBinaryFormat(dt, nullptr));
  dt = CMNewDateTimeFromChars(mb, "20240229000000.000000+000", &rc);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);  // a leap day

  {
    ScopedTimeZone zone("XST-02:30");  // POSIX: 2h30 east of UTC
    dt = CMNewDateTimeFromBinary(mb, 1709292645123456ull, 0, nullptr);
    EXPECT_EQ("20240301140045.123456+150", str(CMGetStringFormat(dt, nullptr)));
  }
  {
    ScopedTimeZone zone("YST+05");  // 5h west of UTC
    dt = CMNewDateTimeFromBinary(mb, 1704058200000000ull, 0, nullptr);
    EXPECT_EQ("20231231163000.000000-300", str(CMGetStringFormat(dt, nullptr)));
    CMPIDateTime* back = CMNewDateTimeFromChars(mb, CMGetCharPtr(CMGetStringFormat(dt, nullptr)),
                                                nullptr);
    EXPECT_EQ(1704058200000000ull, CMGetBinaryFormat(back, nullptr));
  }

  // Intervals: 1 day 02:03:04.000005.
  const CMPIUint64 interval = ((26ull * 60 + 3) * 60 + 4) * 1000000 + 5;
  dt = CMNewDateTimeFromBinary(mb, interval, 1, nullptr);
  EXPECT_TRUE(CMIsInterval(dt, nullptr));
  EXPECT_EQ("00000001020304.000005:000", str(CMGetStringFormat(dt, nullptr)));
  dt = CMNewDateTimeFromChars(mb, "99999999235959.999999:000", nullptr);
  EXPECT_EQ(99999999ull * 86400000000ull + 86399999999ull, CMGetBinaryFormat(dt, nullptr));
  EXPECT_EQ(nullptr, CMNewDateTimeFromBinary(mb, 100000000ull * 86400000000ull, 1, &rc));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);

  // Now lies between two readings of the clock.
  struct timespec before, after;
  clock_gettime(CLOCK_REALTIME, &before);
  dt = CMNewDateTime(mb, nullptr);
  clock_gettime(CLOCK_REALTIME, &after);
  const CMPIUint64 now = CMGetBinaryFormat(dt, nullptr);
  EXPECT_LE(static_cast<CMPIUint64>(before.tv_sec) * 1000000 + before.tv_nsec / 1000, now);
  EXPECT_GE(static_cast<CMPIUint64>(after.tv_sec) * 1000000 + after.tv_nsec / 1000, now);

  const char* malformed[] = {
      "20240301123045.123456+06",   // short
      "20241301123045.123456+060",  // month 13
      "20230229123045.123456+060",  // not a leap year
      "20240301243045.123456+060",  // hour 24
      "20240301123060.123456+060",  // second 60
      "20240301123045,123456+060",  // no '.'
      "2024030112304*.123456+060",  // wildcards are not taken
      "20240301123045.123456*060",  // bad sign
      "00000001020304.000005:001",  // interval without :000
      "19691231235959.999999+000",  // before the epoch
      "19700101003000.000000+060",  // before the epoch once the offset is applied
      "",
  };
  for (const char* text : malformed) {
    rc.rc = CMPI_RC_OK;
    EXPECT_EQ(nullptr, CMNewDateTimeFromChars(mb, text, &rc)) << text;
    EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc) << text;
  }
  EXPECT_EQ(nullptr, CMNewDateTimeFromChars(mb, nullptr, &rc));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
}

TEST_F(EncapsulatedTypesTest, ArgsAndContexts) {
  CMPIArgs* args = ivBroker.newArgs();
  CMPIValue v;
  v.uint32 = 3;
  EXPECT_EQ(CMPI_RC_OK, CMAddArg(args, "Count", &v, CMPI_uint32).rc);
  EXPECT_EQ(CMPI_RC_OK, CMAddArg(args, "Name", "sw1", CMPI_chars).rc);
  v.uint32 = 4;
  CMAddArg(args, "count", &v, CMPI_uint32);
  EXPECT_EQ(2u, CMGetArgCount(args, nullptr));
  EXPECT_EQ(4u, CMGetArg(args, "COUNT", nullptr).value.uint32);
  CMPIString* name = nullptr;
  EXPECT_EQ("sw1", str(CMGetArgAt(args, 1, &name, nullptr)));
  EXPECT_EQ("Name", str(name));
  CMPIStatus rc;
  CMGetArg(args, "Missing", &rc);
  EXPECT_EQ(CMPI_RC_ERR_NOT_FOUND, rc.rc);
  CMGetArgAt(args, 2, nullptr, &rc);
  EXPECT_EQ(CMPI_RC_ERR_NO_SUCH_PROPERTY, rc.rc);
  EXPECT_EQ("(Count=4, Name=\"sw1\")", str(CDToString(mb, args, nullptr)));
  CMPIArgs* copy = CMClone(args, nullptr);
  CMAddArg(copy, "Name", "changed", CMPI_chars);
  EXPECT_EQ("sw1", str(CMGetArg(args, "Name", nullptr)));

  // The default context carries the invocation flags only.
  const CMPIContext* ctx = ivBroker.context();
  EXPECT_EQ(1u, CMGetContextEntryCount(ctx, nullptr));
  CMPIData d = CMGetContextEntry(ctx, CMPIInvocationFlags, &rc);
  EXPECT_EQ(CMPI_uint32, d.type);
  EXPECT_EQ(0u, d.value.uint32);
  CMGetContextEntry(ctx, CMPIInitNameSpace, &rc);
  EXPECT_EQ(CMPI_RC_ERR_NO_SUCH_PROPERTY, rc.rc);

  CMPIContext* call = ivBroker.newContext("root/qrx", CMPI_FLAG_DeepInheritance);
  EXPECT_EQ("root/qrx", str(CMGetContextEntry(call, CMPIInitNameSpace, nullptr)));
  EXPECT_EQ(static_cast<CMPIUint32>(CMPI_FLAG_DeepInheritance),
            CMGetContextEntry(call, CMPIInvocationFlags, nullptr).value.uint32);
  EXPECT_EQ(CMPI_RC_OK, CMAddContextEntry(call, "Custom", "v1", CMPI_chars).rc);
  CMPIContext* clone = CMClone(call, nullptr);
  CMAddContextEntry(call, "Custom", "v2", CMPI_chars);
  EXPECT_EQ("v1", str(CMGetContextEntry(clone, "Custom", nullptr)));
  d = CMGetContextEntryAt(call, 2, &name, nullptr);
  EXPECT_EQ("Custom", str(name));
  EXPECT_EQ("v2", str(d));
  CMGetContextEntryAt(call, 3, nullptr, &rc);
  EXPECT_EQ(CMPI_RC_ERR_NO_SUCH_PROPERTY, rc.rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, CMAddContextEntry(call, nullptr, "v", CMPI_chars).rc);
}

TEST_F(EncapsulatedTypesTest, ErrorsCarryEveryField) {
  CMPIStatus rc;
  CMPIError* err = CMNewCMPIError(mb, "QRX", "QRX0042", "Port $0 is down", ErrorSevHigh,
                                  ErrorProbCauseOther, CMPI_RC_ERR_FAILED, &rc);
  ASSERT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ("QRX", str(CMGetOwningEntity(err, nullptr)));
  EXPECT_EQ("QRX0042", str(CMGetMessageID(err, nullptr)));
  EXPECT_EQ("Port $0 is down", str(CMGetErrorMessage(err, nullptr)));
  EXPECT_EQ(ErrorSevHigh, CMGetPerceivedSeverity(err, nullptr));
  EXPECT_EQ(ErrorProbCauseOther, CMGetProbableCause(err, nullptr));
  EXPECT_EQ(CMPI_RC_ERR_FAILED, CMGetCIMStatusCode(err, nullptr));
  EXPECT_EQ(UnknownErrorType, CMGetErrorType(err, nullptr));
  EXPECT_EQ(CMPIErrSrcUnknown, CMGetErrorSourceFormat(err, nullptr));
  EXPECT_EQ(nullptr, CMGetOtherErrorType(err, &rc));  // never set
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(nullptr, CMGetRecommendedActions(err, &rc));
  EXPECT_EQ(CMPI_RC_OK, rc.rc);

  EXPECT_EQ(CMPI_RC_OK, CMSetErrorType(err, HardwareError).rc);
  EXPECT_EQ(CMPI_RC_OK, CMSetOtherErrorType(err, "other").rc);
  EXPECT_EQ(CMPI_RC_OK, CMSetProbableCauseDescription(err, "cable").rc);
  EXPECT_EQ(CMPI_RC_OK, CMSetErrorSource(err, "port 7").rc);
  EXPECT_EQ(CMPI_RC_OK, CMSetErrorSourceFormat(err, CIMObjectHandle).rc);
  EXPECT_EQ(CMPI_RC_OK, CMSetOtherErrorSourceFormat(err, "fmt").rc);
  EXPECT_EQ(CMPI_RC_OK, CMSetCIMStatusCodeDescription(err, "failed").rc);
  CMPIArray* actions = CMNewArray(mb, 1, CMPI_string, nullptr);
  CMSetArrayElementAt(actions, 0, "replace cable", CMPI_chars);
  EXPECT_EQ(CMPI_RC_OK, CMSetRecommendedActions(err, actions).rc);
  CMSetArrayElementAt(actions, 0, "changed", CMPI_chars);
  CMPIArray* arguments = CMNewArray(mb, 1, CMPI_string, nullptr);
  CMSetArrayElementAt(arguments, 0, "7", CMPI_chars);
  EXPECT_EQ(CMPI_RC_OK, CMSetMessageArguments(err, arguments).rc);

  EXPECT_EQ(HardwareError, CMGetErrorType(err, nullptr));
  EXPECT_EQ("other", str(CMGetOtherErrorType(err, nullptr)));
  EXPECT_EQ("cable", str(CMGetProbableCauseDescription(err, nullptr)));
  EXPECT_EQ("port 7", str(CMGetErrorSource(err, nullptr)));
  EXPECT_EQ(CIMObjectHandle, CMGetErrorSourceFormat(err, nullptr));
  EXPECT_EQ("fmt", str(CMGetOtherErrorSourceFormat(err, nullptr)));
  EXPECT_EQ("failed", str(CMGetCIMStatusCodeDescription(err, nullptr)));
  EXPECT_EQ("replace cable",
            str(CMGetArrayElementAt(CMGetRecommendedActions(err, nullptr), 0, nullptr)));
  EXPECT_EQ("7", str(CMGetArrayElementAt(CMGetMessageArguments(err, nullptr), 0, nullptr)));

  CMPIError* copy = CMClone(err, nullptr);
  CMSetErrorSource(copy, "elsewhere");
  EXPECT_EQ("port 7", str(CMGetErrorSource(err, nullptr)));
  EXPECT_EQ("replace cable",
            str(CMGetArrayElementAt(CMGetRecommendedActions(copy, nullptr), 0, nullptr)));

  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, CMSetErrorSource(err, nullptr).rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, CMSetRecommendedActions(err, nullptr).rc);
  CMPIArray* numbers = CMNewArray(mb, 1, CMPI_uint16, nullptr);
  EXPECT_EQ(CMPI_RC_ERR_TYPE_MISMATCH, CMSetMessageArguments(err, numbers).rc);

  CMPIError* bare = CMNewCMPIError(mb, nullptr, nullptr, nullptr, ErrorSevUnknown,
                                   ErrorProbCauseUnknown, CMPI_RC_OK, nullptr);
  EXPECT_EQ(nullptr, CMGetErrorMessage(bare, nullptr));
}

}  // namespace
