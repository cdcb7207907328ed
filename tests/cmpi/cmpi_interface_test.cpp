// The CMPI interface as the library and a broker see it: the macros must
// reach the right function-table slots with their arguments in the right
// order, the status helpers must build the statuses they promise, and a
// provider built with the stub macros (here in C) must work through its
// factory. Layout pins are compiled in from cmpi_abi_checks.h.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "cmpimacs.h"
#include "tests/cmpi/c_provider.h"
#include "tests/cmpi/cmpi_abi_checks.h"

namespace {

// Every fake function appends "<slot>(<args>)" here.
std::string gCalls;

void record(const std::string& call) {
  if (!gCalls.empty()) gCalls += ";";
  gCalls += call;
}

std::string str(const char* s) { return s ? s : "null"; }

CMPIStatus ok() { return CMPIStatus{CMPI_RC_OK, nullptr}; }

// A function table with no functions (calling one crashes the test).
template <class FT>
FT emptyTable() {
  FT ft;
  std::memset(&ft, 0, sizeof(ft));
  ft.ftVersion = CMPICurrentVersion;
  return ft;
}

// ---- Strings ---------------------------------------------------------

const char* stringChars(const CMPIString* s, CMPIStatus* rc) {
  if (rc) *rc = ok();
  return static_cast<const char*>(s->hdl);
}
CMPIStringFT stringFT = {CMPICurrentVersion, nullptr, nullptr, stringChars};

// Strings made by the fake broker live until the test process ends.
CMPIString* makeString(const char* text) {
  return new CMPIString{strdup(text), &stringFT};
}

// ---- Object path ------------------------------------------------------

CMPIStatus opAddKey(CMPIObjectPath*, const char* name, const CMPIValue* value, CMPIType type) {
  record("addKey(" + str(name) + "," + std::to_string(value->uint16) + "," +
         std::to_string(type) + ")");
  return ok();
}
CMPIData opGetKey(const CMPIObjectPath*, const char* name, CMPIStatus* rc) {
  record("getKey(" + str(name) + ")");
  if (rc) *rc = ok();
  CMPIData d;
  d.type = CMPI_uint32;
  d.state = CMPI_keyValue;
  d.value.uint32 = 42;
  return d;
}
CMPIString* opGetClassName(const CMPIObjectPath* op, CMPIStatus* rc) {
  if (rc) *rc = ok();
  return makeString(static_cast<const char*>(op->hdl));
}

CMPIObjectPathFT objectPathFT = [] {
  auto ft = emptyTable<CMPIObjectPathFT>();
  ft.addKey = opAddKey;
  ft.getKey = opGetKey;
  ft.getClassName = opGetClassName;
  return ft;
}();

// ---- Instance, args, result -------------------------------------------

CMPIStatus instSetProperty(const CMPIInstance*, const char* name, const CMPIValue* value,
                           CMPIType type) {
  record("setProperty(" + str(name) + "," + std::to_string(value->uint64) + "," +
         std::to_string(type) + ")");
  return ok();
}
CMPIInstanceFT instanceFT = [] {
  auto ft = emptyTable<CMPIInstanceFT>();
  ft.setProperty = instSetProperty;
  return ft;
}();

CMPIStatus argsAddArg(const CMPIArgs*, const char* name, const CMPIValue* value, CMPIType type) {
  // For CMPI_chars the value pointer is the character data itself.
  const char* chars = type == CMPI_chars ? reinterpret_cast<const char*>(value) : value->chars;
  record("addArg(" + str(name) + "," + str(chars) + "," + std::to_string(type) + ")");
  return ok();
}
CMPIArgsFT argsFT = [] {
  auto ft = emptyTable<CMPIArgsFT>();
  ft.addArg = argsAddArg;
  return ft;
}();

CMPIStatus resData(const CMPIResult*, const CMPIValue* value, CMPIType type) {
  record("returnData(" + std::to_string(value->uint32) + "," + std::to_string(type) + ")");
  return ok();
}
CMPIStatus resInstance(const CMPIResult*, const CMPIInstance* inst) {
  record("returnInstance(" + str(static_cast<const char*>(inst->hdl)) + ")");
  return ok();
}
CMPIStatus resObjectPath(const CMPIResult*, const CMPIObjectPath* op) {
  record("returnObjectPath(" + str(static_cast<const char*>(op->hdl)) + ")");
  return ok();
}
CMPIStatus resDone(const CMPIResult*) {
  record("returnDone()");
  return ok();
}
CMPIResultFT resultFT = {CMPICurrentVersion, nullptr, nullptr, resData, resInstance,
                         resObjectPath, resDone, nullptr};

// ---- Broker -------------------------------------------------------------

CMPIObjectPath* bNewObjectPath(const CMPIBroker*, const char* ns, const char* cn,
                               CMPIStatus* rc) {
  record("newObjectPath(" + str(ns) + "," + str(cn) + ")");
  if (rc) *rc = ok();
  return new CMPIObjectPath{strdup(cn), &objectPathFT};
}
CMPIInstance* bNewInstance(const CMPIBroker*, const CMPIObjectPath* op, CMPIStatus* rc) {
  record("newInstance(" + str(static_cast<const char*>(op->hdl)) + ")");
  if (rc) *rc = ok();
  return new CMPIInstance{op->hdl, &instanceFT};
}
CMPIString* bNewString(const CMPIBroker*, const char* text, CMPIStatus* rc) {
  record("newString(" + str(text) + ")");
  if (rc) *rc = ok();
  return makeString(text);
}
CMPIBoolean bClassPathIsA(const CMPIBroker*, const CMPIObjectPath* op, const char* type,
                          CMPIStatus* rc) {
  record("classPathIsA(" + str(static_cast<const char*>(op->hdl)) + "," + str(type) + ")");
  if (rc) *rc = ok();
  return std::strcmp(type, "CIM_ManagedElement") == 0;
}
CMPIStatus bDeliver(const CMPIBroker*, const CMPIContext*, const char* ns,
                    const CMPIInstance* ind) {
  record("deliverIndication(" + str(ns) + "," + str(static_cast<const char*>(ind->hdl)) + ")");
  return ok();
}
CMPIEnumeration* bExecQuery(const CMPIBroker*, const CMPIContext*, const CMPIObjectPath*,
                            const char* query, const char* lang, CMPIStatus*) {
  record("execQuery(" + str(query) + "," + str(lang) + ")");
  return nullptr;
}
CMPIEnumeration* bEnumInstances(const CMPIBroker*, const CMPIContext*, const CMPIObjectPath*,
                                const char**, CMPIStatus*) {
  record("enumerateInstances()");
  return nullptr;
}
CMPIEnumeration* bEnumInstanceNames(const CMPIBroker*, const CMPIContext*,
                                    const CMPIObjectPath*, CMPIStatus*) {
  record("enumerateInstanceNames()");
  return nullptr;
}
CMPIEnumeration* bAssociators(const CMPIBroker*, const CMPIContext*, const CMPIObjectPath*,
                              const char* assocClass, const char* resultClass, const char* role,
                              const char* resultRole, const char**, CMPIStatus*) {
  record("associators(" + str(assocClass) + "," + str(resultClass) + "," + str(role) + "," +
         str(resultRole) + ")");
  return nullptr;
}
CMPIEnumeration* bReferenceNames(const CMPIBroker*, const CMPIContext*, const CMPIObjectPath*,
                                 const char* resultClass, const char* role, CMPIStatus*) {
  record("referenceNames(" + str(resultClass) + "," + str(role) + ")");
  return nullptr;
}

struct FakeBroker {
  CMPIBrokerFT bft;
  CMPIBrokerEncFT eft;
  CMPIBroker broker;

  FakeBroker() : eft(emptyTable<CMPIBrokerEncFT>()) {
    std::memset(&bft, 0, sizeof(bft));
    bft.brokerCapabilities = CMPI_MB_Class_1;
    bft.brokerVersion = CMPICurrentVersion;
    bft.brokerName = "fake";
    bft.deliverIndication = bDeliver;
    bft.execQuery = bExecQuery;
    bft.enumerateInstances = bEnumInstances;
    bft.enumerateInstanceNames = bEnumInstanceNames;
    bft.associators = bAssociators;
    bft.referenceNames = bReferenceNames;
    eft.newObjectPath = bNewObjectPath;
    eft.newInstance = bNewInstance;
    eft.newString = bNewString;
    eft.classPathIsA = bClassPathIsA;
    broker = CMPIBroker{nullptr, &bft, &eft, nullptr, nullptr};
  }
};

class CmpiInterfaceTest : public ::testing::Test {
 protected:
  void SetUp() override { gCalls.clear(); }
  FakeBroker ivFake;
  const CMPIBroker* b = &ivFake.broker;
  CMPIContext ivCtx{nullptr, nullptr};
  CMPIResult ivResult{nullptr, &resultFT};
};

TEST_F(CmpiInterfaceTest, BrokerMacrosPassArgumentsToTheirSlots) {
  CMPIStatus rc{CMPI_RC_ERR_FAILED, nullptr};
  CMPIObjectPath* op = CMNewObjectPath(b, "root/qrx", "QRX_Switch", &rc);
  ASSERT_NE(op, nullptr);
  EXPECT_EQ(rc.rc, CMPI_RC_OK);
  CMPIInstance* inst = CMNewInstance(b, op, &rc);
  EXPECT_TRUE(CMClassPathIsA(b, op, "CIM_ManagedElement", &rc));
  EXPECT_FALSE(CMClassPathIsA(b, op, "CIM_Other", nullptr));
  CBDeliverIndication(b, &ivCtx, "root/qrx", inst);
  CBExecQuery(b, &ivCtx, op, "SELECT * FROM QRX_Switch", "CQL", &rc);
  CBEnumInstanceNames(b, &ivCtx, op, &rc);
  CBEnumInstances(b, &ivCtx, op, nullptr, &rc);
  CBAssociators(b, &ivCtx, op, "QRX_Assoc", "QRX_Result", "Role", "ResultRole", nullptr, &rc);
  CBReferenceNames(b, &ivCtx, op, "QRX_Assoc", "Role", &rc);
  EXPECT_STREQ(CBBrokerName(b), "fake");
  EXPECT_EQ(CBGetClassification(b), static_cast<unsigned int>(CMPI_MB_Class_1));

  EXPECT_EQ(gCalls,
            "newObjectPath(root/qrx,QRX_Switch);newInstance(QRX_Switch);"
            "classPathIsA(QRX_Switch,CIM_ManagedElement);classPathIsA(QRX_Switch,CIM_Other);"
            "deliverIndication(root/qrx,QRX_Switch);"
            "execQuery(SELECT * FROM QRX_Switch,CQL);"
            "enumerateInstanceNames();enumerateInstances();"
            "associators(QRX_Assoc,QRX_Result,Role,ResultRole);"
            "referenceNames(QRX_Assoc,Role)");
}

TEST_F(CmpiInterfaceTest, ObjectMacrosPassValuesByPointer) {
  CMPIObjectPath* op = CMNewObjectPath(b, "root/qrx", "QRX_Port", nullptr);
  CMPIInstance* inst = CMNewInstance(b, op, nullptr);
  gCalls.clear();

  CMPIUint64 speed = 8589934592ULL;  // needs all 64 bits
  CMSetProperty(inst, "Speed", &speed, CMPI_uint64);
  CMPIUint16 key = 513;
  CMAddKey(op, "PortNumber", &key, CMPI_uint16);
  CMPIData d = CMGetKey(op, "PortNumber", nullptr);
  EXPECT_EQ(d.type, CMPI_uint32);
  EXPECT_TRUE(CMIsKeyValue(d));
  EXPECT_FALSE(CMIsNullValue(d));
  EXPECT_FALSE(CMIsArray(d));
  EXPECT_EQ(d.value.uint32, 42u);
  CMPIArgs args{nullptr, &argsFT};
  CMAddArg(&args, "ZoneName", "zone1", CMPI_chars);
  CMPIUint32 rv = 4096;
  CMReturnData(&ivResult, &rv, CMPI_uint32);
  CMReturnInstance(&ivResult, inst);
  CMReturnObjectPath(&ivResult, op);
  CMReturnDone(&ivResult);
  EXPECT_STREQ(CMGetCharsPtr(CMGetClassName(op, nullptr), nullptr), "QRX_Port");
  EXPECT_STREQ(CMGetCharPtr(CMGetClassName(op, nullptr)), "QRX_Port");

  EXPECT_EQ(gCalls,
            "setProperty(Speed,8589934592,176);addKey(PortNumber,513,144);getKey(PortNumber);"
            "addArg(ZoneName,zone1,5888);returnData(4096,160);returnInstance(QRX_Port);"
            "returnObjectPath(QRX_Port);returnDone()");
}

CMPIStatus failWithChars(const CMPIBroker* b) {
  CMReturnWithChars(b, CMPI_RC_ERR_INVALID_PARAMETER, "bad key");
}
CMPIStatus plainReturn() { CMReturn(CMPI_RC_ERR_NOT_SUPPORTED); }

TEST_F(CmpiInterfaceTest, StatusHelpers) {
  CMPIStatus st = failWithChars(b);
  EXPECT_EQ(st.rc, CMPI_RC_ERR_INVALID_PARAMETER);
  ASSERT_NE(st.msg, nullptr);
  EXPECT_STREQ(CMGetCharsPtr(st.msg, nullptr), "bad key");

  st = plainReturn();
  EXPECT_EQ(st.rc, CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_EQ(st.msg, nullptr);

  CMPIStatus* none = nullptr;
  CMSetStatus(none, CMPI_RC_ERR_FAILED);  // a null status pointer is left alone
  CMSetStatusWithChars(b, none, CMPI_RC_ERR_FAILED, "never made");
  EXPECT_EQ(gCalls.find("never made"), std::string::npos);
  CMSetStatusWithChars(b, &st, CMPI_RC_ERR_FAILED, "made");
  EXPECT_EQ(st.rc, CMPI_RC_ERR_FAILED);
  EXPECT_STREQ(CMGetCharsPtr(st.msg, nullptr), "made");

  CMPIString empty{nullptr, &stringFT};
  EXPECT_TRUE(CMIsNullObject(static_cast<CMPIString*>(nullptr)));
  EXPECT_TRUE(CMIsNullObject(&empty));
  EXPECT_FALSE(CMIsNullObject(st.msg));
}

TEST_F(CmpiInterfaceTest, ProviderBuiltWithStubMacrosInC) {
  CMPIStatus rc{CMPI_RC_OK, nullptr};
  CMPIInstanceMI* mi = QRX_CTest_Create_InstanceMI(b, &ivCtx, &rc);
  ASSERT_NE(mi, nullptr);
  EXPECT_EQ(c_provider_broker(), b);
  EXPECT_EQ(c_provider_hook_runs(), 1);
  EXPECT_EQ(mi->ft->ftVersion, CMPICurrentVersion);
  EXPECT_EQ(mi->ft->miVersion, CMPICurrentVersion);
  EXPECT_STREQ(mi->ft->miName, "instanceQRX_CTest");

  CMPIObjectPath* ref = CMNewObjectPath(b, "root/qrx", "QRX_CTest", nullptr);
  gCalls.clear();
  CMPIStatus st = mi->ft->enumerateInstanceNames(mi, &ivCtx, &ivResult, ref);
  EXPECT_EQ(st.rc, CMPI_RC_OK);
  EXPECT_EQ(gCalls,
            "newObjectPath(root/qrx,QRX_CTest);addKey(Key,7,144);"
            "returnObjectPath(QRX_CTest);returnDone()");

  st = mi->ft->getInstance(mi, &ivCtx, &ivResult, ref, nullptr);
  EXPECT_EQ(st.rc, CMPI_RC_ERR_NOT_SUPPORTED);
  EXPECT_STREQ(CMGetCharsPtr(st.msg, nullptr), "enumerate in C");
  EXPECT_EQ(mi->ft->cleanup(mi, &ivCtx, 1).rc, CMPI_RC_OK);
}

}  // namespace
