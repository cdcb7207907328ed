// The generated provider glue, driven through the in-process broker against
// backends whose answers each test sets (ScriptedBackends.h).
#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cmpimacs.h"
#include "common/base/PerfSamples.h"
#include "common/base/trace.h"
#include "generated/scimproviders/QRX_SwitchFCPortStats_Provider.h"
#include "generated/scimproviders/QRX_SwitchInFabric_Provider.h"
#include "generated/scimproviders/QRX_Switch_Provider.h"
#include "generated/scimproviders/QRX_ZoneCapabilities_Provider.h"
#include "generated/scimproviders/QRX_ZoneService_Provider.h"
#include "provider/CMPIDeserializer.h"
#include "tests/provider/ScriptedBackends.h"
#include "tests/support/LogShape.h"
#include "tests/support/TestEnvironment.h"
#include "tools/cimhost/broker/ResultRecorder.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace {

using Keys = std::vector<std::pair<const char*, std::string>>;

QRX_Switch makeSwitch(const std::string& ipName, const std::string& ipElementName) {
  QRX_Switch object;
  object.CreationClassName = "QRX_Switch";
  object.Name = ipName;
  object.ElementName = ipElementName;
  object.EnabledState = 2;
  object.Dedicated = {5};
  return object;
}

QRX_Fabric makeFabric(const std::string& ipName) {
  QRX_Fabric object;
  object.Name = ipName;
  object.CreationClassName = "QRX_Fabric";
  object.ElementName = "fabric " + ipName;
  return object;
}

std::string text(const CMPIString* ipString) {
  const char* chars = ipString != nullptr ? CMGetCharPtr(ipString) : nullptr;
  return chars != nullptr ? chars : "";
}

std::string message(const CMPIStatus& irRc) { return text(irRc.msg); }

std::string className(const CMPIObjectPath* ipPath) {
  return text(CMGetClassName(ipPath, nullptr));
}

std::string nameSpace(const CMPIObjectPath* ipPath) {
  return text(CMGetNameSpace(ipPath, nullptr));
}

std::string stringKey(const CMPIObjectPath* ipPath, const char* ipName) {
  CMPIData data = CMGetKey(ipPath, ipName, nullptr);
  return data.type == CMPI_string ? text(data.value.string) : "<not a string>";
}

CMPIObjectPath* refKey(const CMPIObjectPath* ipPath, const char* ipName) {
  CMPIData data = CMGetKey(ipPath, ipName, nullptr);
  return data.type == CMPI_ref ? data.value.ref : nullptr;
}

std::uint64_t samples(const std::string& irTag) {
  ScimPerfEntry entry;
  return scim_get_perfentry(irTag, entry) ? entry.NumSamples : 0;
}

class ProviderGlue : public ::testing::Test {
 protected:
  void SetUp() override {
    resetScript();
    scim_clear_perfdata();
    ivBroker.reset(new cimhost::TestBroker(&modelHierarchy()));
    CMPIStatus rc = okStatus();
    ivSwitch = QRX_Switch_Provider_Create_InstanceMI(broker(), ctx(), &rc);
    ivSwitchMethods = QRX_Switch_Provider_Create_MethodMI(broker(), ctx(), &rc);
    ivLinks = QRX_SwitchInFabric_Provider_Create_AssociationMI(broker(), ctx(), &rc);
    QRX_SwitchInFabric_Provider_Create_InstanceMI(broker(), ctx(), &rc);
    ivZoning = QRX_ZoneService_Provider_Create_MethodMI(broker(), ctx(), &rc);
    ivCapabilities = QRX_ZoneCapabilities_Provider_Create_MethodMI(broker(), ctx(), &rc);
    ivStats = QRX_SwitchFCPortStats_Provider_Create_MethodMI(broker(), ctx(), &rc);
  }

  const CMPIBroker* broker() { return ivBroker->broker(); }
  const CMPIContext* ctx() { return ivBroker->context(); }

  CMPIObjectPath* path(const char* ipClass, const Keys& irKeys, const char* ipNameSpace = "root/qrx") {
    CMPIObjectPath* result = ivBroker->newObjectPath(ipNameSpace, ipClass);
    for (const auto& key : irKeys) CMAddKey(result, key.first, key.second.c_str(), CMPI_chars);
    return result;
  }
  CMPIObjectPath* switchPath(const std::string& ipName, const char* ipNameSpace = "root/qrx") {
    return path("QRX_Switch", {{"CreationClassName", "QRX_Switch"}, {"Name", ipName}}, ipNameSpace);
  }
  CMPIObjectPath* fabricPath(const std::string& ipName, const char* ipNameSpace = "root/qrx") {
    return path("QRX_Fabric", {{"Name", ipName}, {"CreationClassName", "QRX_Fabric"}}, ipNameSpace);
  }
  CMPIObjectPath* servicePath() {
    return path("QRX_ZoneService", {{"SystemCreationClassName", "QRX_Fabric"},
                                    {"SystemName", "f1"},
                                    {"CreationClassName", "QRX_ZoneService"},
                                    {"Name", "zoning"}});
  }

  template <class T>
  T read(const CMPIInstance* ipInstance) {
    T object;
    CMPIDeserializer reader(ipInstance);
    object.deserialize(reader);
    EXPECT_FALSE(reader.hasError());
    return object;
  }

  // invokeMethod on `ipMi` with the arguments `ipIn`.
  CMPIStatus invoke(CMPIMethodMI* ipMi, const CMPIObjectPath* ipOp, const char* ipMethod,
                    const CMPIArgs* ipIn, CMPIArgs* ipOut, cimhost::ResultRecorder& irResult) {
    return ipMi->ft->invokeMethod(ipMi, ctx(), irResult.result(), ipOp, ipMethod, ipIn, ipOut);
  }
  std::vector<CMPIUint32> returnValues(const cimhost::ResultRecorder& irResult) {
    std::vector<CMPIUint32> values;
    for (const CMPIData& data : irResult.data()) {
      EXPECT_EQ(CMPI_uint32, data.type);
      values.push_back(data.value.uint32);
    }
    return values;
  }

  TraceCapture ivTrace;
  std::unique_ptr<cimhost::TestBroker> ivBroker;
  CMPIInstanceMI* ivSwitch = nullptr;
  CMPIMethodMI* ivSwitchMethods = nullptr;
  CMPIAssociationMI* ivLinks = nullptr;
  CMPIMethodMI* ivZoning = nullptr;
  CMPIMethodMI* ivCapabilities = nullptr;
  CMPIMethodMI* ivStats = nullptr;
};

TEST_F(ProviderGlue, FactoriesHandOutOneStaticMIAndKeepTheLatestBroker) {
  cimhost::TestBroker other(&modelHierarchy());
  CMPIStatus rc = {CMPI_RC_ERR_FAILED, nullptr};
  CMPIInstanceMI* again = QRX_Switch_Provider_Create_InstanceMI(other.broker(), ctx(), &rc);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(ivSwitch, again);
  EXPECT_EQ(other.broker(), QRX_Switch_Provider::broker.load());
  EXPECT_EQ(nullptr, again->hdl);
  EXPECT_EQ(200, again->ft->ftVersion);
  EXPECT_EQ(200, again->ft->miVersion);
  EXPECT_STREQ("QRX_Switch_Provider", again->ft->miName);

  CMPIMethodMI* methods = QRX_Switch_Provider_Create_MethodMI(other.broker(), ctx(), &rc);
  EXPECT_EQ(ivSwitchMethods, methods);
  EXPECT_EQ(other.broker(), QRX_Switch_Provider::methodBroker.load());
  EXPECT_STREQ("QRX_Switch_Provider", methods->ft->miName);
  EXPECT_EQ(200, methods->ft->miVersion);

  // An association MI alone also gives the instance broker its messages use.
  QRX_SwitchInFabric_Provider::broker = nullptr;
  CMPIAssociationMI* links = QRX_SwitchInFabric_Provider_Create_AssociationMI(other.broker(), ctx(), nullptr);
  EXPECT_EQ(ivLinks, links);
  EXPECT_STREQ("QRX_SwitchInFabric_Provider", links->ft->miName);
  EXPECT_EQ(other.broker(), QRX_SwitchInFabric_Provider::assocBroker.load());
  EXPECT_EQ(other.broker(), QRX_SwitchInFabric_Provider::broker.load());

  EXPECT_TRUE(ivTrace.contains("Info: loaded Instance QRX_Switch\n"));
  EXPECT_TRUE(ivTrace.contains("Info: loaded MethodInvocation QRX_Switch\n"));
  EXPECT_TRUE(ivTrace.contains("Info: loaded Association QRX_SwitchInFabric\n"));
  EXPECT_EQ(CMPI_RC_OK, again->ft->cleanup(again, ctx(), true).rc);
  EXPECT_EQ(CMPI_RC_OK, methods->ft->cleanup(methods, ctx(), true).rc);
  EXPECT_EQ(CMPI_RC_OK, links->ft->cleanup(links, ctx(), true).rc);
}

TEST_F(ProviderGlue, EnumerationsReturnEveryObjectWithAllPropertiesOrFailWithoutDone) {
  cimhost::ResultRecorder result(*ivBroker);
  CMPIObjectPath* ref = path("QRX_Switch", {}, "root/elsewhere");
  CMPIStatus rc = ivSwitch->ft->enumerateInstances(ivSwitch, ctx(), result.result(), ref, nullptr);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(1, result.doneCount());
  EXPECT_TRUE(result.instances().empty());

  script().switches = {makeSwitch("100000c0dd0c8f1e", "core"), makeSwitch("100000c0dd0c8f2f", "edge")};
  const char* onlyName[] = {"Name", nullptr};
  result.clear();
  rc = ivSwitch->ft->enumerateInstances(ivSwitch, ctx(), result.result(), ref, onlyName);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  ASSERT_EQ(2u, result.instances().size());
  for (std::size_t i = 0; i < 2; ++i) {
    const CMPIObjectPath* instancePath = CMGetObjectPath(result.instances()[i], nullptr);
    EXPECT_EQ("QRX_Switch", className(instancePath));
    EXPECT_EQ("root/elsewhere", nameSpace(instancePath));
    EXPECT_EQ(script().switches[i], read<QRX_Switch>(result.instances()[i]));
  }

  result.clear();
  rc = ivSwitch->ft->enumerateInstanceNames(ivSwitch, ctx(), result.result(), ref);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(1, result.doneCount());
  ASSERT_EQ(2u, result.objectPaths().size());
  EXPECT_EQ("root/elsewhere", nameSpace(result.objectPaths()[1]));
  EXPECT_EQ("100000c0dd0c8f2f", stringKey(result.objectPaths()[1], "Name"));
  EXPECT_EQ("QRX_Switch", stringKey(result.objectPaths()[1], "CreationClassName"));

  script().answer = false;
  result.clear();
  rc = ivSwitch->ft->enumerateInstances(ivSwitch, ctx(), result.result(), ref, nullptr);
  EXPECT_EQ(CMPI_RC_ERR_FAILED, rc.rc);
  EXPECT_EQ("backendEnumInstances() failed", message(rc));
  EXPECT_EQ(0, result.doneCount());
  EXPECT_TRUE(result.instances().empty());
  rc = ivSwitch->ft->enumerateInstanceNames(ivSwitch, ctx(), result.result(), ref);
  EXPECT_EQ(CMPI_RC_ERR_FAILED, rc.rc);
  EXPECT_EQ("backendEnumInstanceNames() failed", message(rc));
  EXPECT_EQ(0, result.doneCount());
  EXPECT_TRUE(result.objectPaths().empty());
  EXPECT_TRUE(ivTrace.contains("[generated/scimproviders, QRX_Switch_Provider_enumInstances, "));
  EXPECT_TRUE(ivTrace.contains("ERROR: QRX_Switch.backendEnumInstances() failed rc=1\n"));
  EXPECT_TRUE(ivTrace.contains("ERROR: QRX_Switch.backendEnumInstanceNames failed rc=1\n"));

  // Each enumeration is timed as a whole and around the backend call.
  EXPECT_EQ(3u, samples("QRX_Switch_Provider.enumInstances"));
  EXPECT_EQ(3u, samples("QRX_Switch_Provider.backendEnumInstances"));
  EXPECT_EQ(2u, samples("QRX_Switch_Provider.enumInstanceNames"));
  EXPECT_EQ(2u, samples("QRX_Switch_Provider.backendEnumInstanceNames"));
}

TEST_F(ProviderGlue, GetInstanceFindsByKeyAndReportsEveryFailureAsFailed) {
  script().switches = {makeSwitch("a", "core"), makeSwitch("b", "edge")};
  cimhost::ResultRecorder result(*ivBroker);
  const char* onlyName[] = {"Name", nullptr};
  CMPIStatus rc = ivSwitch->ft->getInstance(ivSwitch, ctx(), result.result(), switchPath("b"), onlyName);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(1, result.doneCount());
  ASSERT_EQ(1u, result.instances().size());
  EXPECT_EQ(script().switches[1], read<QRX_Switch>(result.instances()[0]));

  // A key the backend does not know is a failure, not "not found".
  result.clear();
  rc = ivSwitch->ft->getInstance(ivSwitch, ctx(), result.result(), switchPath("c"), nullptr);
  EXPECT_EQ(CMPI_RC_ERR_FAILED, rc.rc);
  EXPECT_EQ("backendGetInstance() failed", message(rc));
  EXPECT_EQ(0, result.doneCount());
  EXPECT_TRUE(ivTrace.contains("ERROR: QRX_Switch.backendGetInstance() failed rc=1 op="));

  // A key that cannot be read never reaches the backend.
  script().calls.clear();
  CMPIObjectPath* wrong = ivBroker->newObjectPath("root/qrx", "QRX_Switch");
  CMPIUint32 number = 7;
  CMAddKey(wrong, "Name", &number, CMPI_uint32);
  rc = ivSwitch->ft->getInstance(ivSwitch, ctx(), result.result(), wrong, nullptr);
  EXPECT_EQ(CMPI_RC_ERR_TYPE_MISMATCH, rc.rc);
  EXPECT_TRUE(script().calls.empty());
  EXPECT_EQ(0, result.doneCount());
}

TEST_F(ProviderGlue, CreateDeleteModifyAndQuery) {
  cimhost::ResultRecorder result(*ivBroker);
  CMPIInstance* instance = ivBroker->newInstance(switchPath("new"));
  CMSetProperty(instance, "CreationClassName", "QRX_Switch", CMPI_chars);
  CMSetProperty(instance, "Name", "new", CMPI_chars);
  CMSetProperty(instance, "ElementName", "fresh", CMPI_chars);
  CMPIStatus rc = ivSwitch->ft->createInstance(ivSwitch, ctx(), result.result(), switchPath("new"), instance);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ("fresh", script().created.ElementName);  // properties not set keep their defaults
  EXPECT_EQ(0, script().created.EnabledState);
  ASSERT_EQ(1u, result.objectPaths().size());
  EXPECT_EQ("new", stringKey(result.objectPaths()[0], "Name"));
  EXPECT_EQ(1, result.doneCount());
  // The success path writes this line with rc 0; log readers know it.
  EXPECT_TRUE(ivTrace.contains("ERROR: QRX_Switch.createInstance() failed rc=0 cop="));

  script().answer = false;
  result.clear();
  rc = ivSwitch->ft->createInstance(ivSwitch, ctx(), result.result(), switchPath("new"), instance);
  EXPECT_EQ(CMPI_RC_ERR_FAILED, rc.rc);
  EXPECT_EQ("backendCreateInstance() failed", message(rc));
  EXPECT_TRUE(result.objectPaths().empty());
  EXPECT_EQ(0, result.doneCount());

  // A value of the wrong type is the client's error; nothing is created.
  script().calls.clear();
  CMPIUint64 number = 4;
  CMSetProperty(instance, "ElementName", &number, CMPI_uint64);
  rc = ivSwitch->ft->createInstance(ivSwitch, ctx(), result.result(), switchPath("new"), instance);
  EXPECT_EQ(CMPI_RC_ERR_TYPE_MISMATCH, rc.rc);
  EXPECT_TRUE(script().calls.empty());

  rc = ivSwitch->ft->deleteInstance(ivSwitch, ctx(), result.result(), switchPath("gone"));
  EXPECT_EQ(CMPI_RC_ERR_FAILED, rc.rc);
  EXPECT_EQ("QRX_Switch.backendDeleteInstance() failed", message(rc));
  script().answer = true;
  rc = ivSwitch->ft->deleteInstance(ivSwitch, ctx(), result.result(), switchPath("gone"));
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ("gone", script().switchKey.Name);
  EXPECT_EQ(0, result.doneCount());
  script().calls.clear();
  CMPIObjectPath* keyless = ivBroker->newObjectPath("root/qrx", "QRX_Switch");
  rc = ivSwitch->ft->deleteInstance(ivSwitch, ctx(), result.result(), keyless);
  EXPECT_NE(CMPI_RC_OK, rc.rc);
  EXPECT_TRUE(script().calls.empty());

  // Never offered, whatever the backend has.
  rc = ivSwitch->ft->modifyInstance(ivSwitch, ctx(), result.result(), switchPath("x"), instance, nullptr);
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, rc.rc);
  EXPECT_EQ(nullptr, rc.msg);
  rc = ivSwitch->ft->execQuery(ivSwitch, ctx(), result.result(), switchPath("x"),
                               "SELECT * FROM QRX_Switch", "CQL");
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, rc.rc);
  EXPECT_TRUE(script().calls.empty());
  EXPECT_EQ(0, result.doneCount());
}

// With debug tracing on, every line has one of the two shapes, and the
// glue's lines name the provider and operation as their function.
TEST_F(ProviderGlue, LogLinesNameTheProviderAndOperation) {
  script().switches = {makeSwitch("a", "core")};
  script().fabrics = {makeFabric("f1")};
  debug_on = true;
  cimhost::ResultRecorder result(*ivBroker);
  CMPIObjectPath* ref = ivBroker->newObjectPath("root/qrx", "QRX_Switch");
  ivSwitch->ft->enumerateInstances(ivSwitch, ctx(), result.result(), ref, nullptr);
  ivSwitch->ft->getInstance(ivSwitch, ctx(), result.result(), switchPath("zz"), nullptr);
  ivLinks->ft->associators(ivLinks, ctx(), result.result(), switchPath("a"), nullptr, nullptr,
                           "Antecedent", nullptr, nullptr);
  debug_on = false;
  const std::string log = ivTrace.text();
  EXPECT_NE(std::string::npos, log.find("[QRX_Switch_Provider_enumInstances, "));
  EXPECT_NE(std::string::npos,
            log.find("[QRX_Switch_Provider_backendEnumInstances, "));
  EXPECT_NE(std::string::npos, log.find("] return 1 QRX_Switch.instances\n"));
  EXPECT_NE(std::string::npos, log.find("[QRX_SwitchInFabric_Provider_assocTarget, "));
  EXPECT_NE(std::string::npos,
            log.find("[generated/scimproviders, QRX_Switch_Provider_getInstance, "));
  std::istringstream lines(log);
  int count = 0;
  for (std::string line; std::getline(lines, line); ++count) {
    EXPECT_NE(LogShape::None, logShape(line)) << line;
  }
  EXPECT_GT(count, 5);
}

TEST_F(ProviderGlue, AssociatorsCheckRolesAndClassesBeforeAskingTheBackend) {
  script().fabrics = {makeFabric("f1"), makeFabric("f2")};
  cimhost::ResultRecorder result(*ivBroker);
  auto associators = [&](const CMPIObjectPath* ipCop, const char* ipAssocClass, const char* ipResultClass,
                         const char* ipRole, const char* ipResultRole) {
    result.clear();
    script().calls.clear();
    return ivLinks->ft->associators(ivLinks, ctx(), result.result(), ipCop, ipAssocClass,
                                    ipResultClass, ipRole, ipResultRole, nullptr);
  };

  CMPIStatus rc = associators(switchPath("s1"), nullptr, nullptr, "partcomponent", "GroupComponent");
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ("s1", script().switchKey.Name);
  ASSERT_EQ(2u, result.instances().size());
  EXPECT_EQ(script().fabrics[1], read<QRX_Fabric>(result.instances()[1]));
  EXPECT_EQ(1, result.doneCount());

  // Requests that do not concern this association: empty success, no done.
  for (const char* role : {"GroupComponent", "Antecedent"}) {
    rc = associators(switchPath("s1"), nullptr, nullptr, role, nullptr);
    EXPECT_EQ(CMPI_RC_OK, rc.rc) << role;
    EXPECT_TRUE(script().calls.empty()) << role;
    EXPECT_EQ(0, result.doneCount()) << role;
  }
  rc = associators(switchPath("s1"), nullptr, nullptr, nullptr, "PartComponent");
  EXPECT_TRUE(script().calls.empty());
  rc = associators(switchPath("s1"), nullptr, "QRX_Chassis", nullptr, nullptr);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_TRUE(script().calls.empty());
  rc = associators(path("QRX_Chassis", {{"Tag", "c"}, {"CreationClassName", "QRX_Chassis"}}),
                   nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_TRUE(script().calls.empty());

  // A superclass of the far end, or of the association, is accepted.
  rc = associators(switchPath("s1"), "CIM_Component", "CIM_AdminDomain", nullptr, nullptr);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(2u, result.instances().size());
  rc = associators(switchPath("s1"), "CIM_Dependency", nullptr, nullptr, nullptr);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  EXPECT_EQ("Invalid assocClass", message(rc));

  rc = associators(ivBroker->newObjectPath("root/qrx", "QRX_Switch"), nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  EXPECT_EQ("Can not obtain key properties", message(rc));

  script().answer = false;
  rc = associators(switchPath("s1"), nullptr, nullptr, nullptr, nullptr);
  EXPECT_EQ(CMPI_RC_ERR_FAILED, rc.rc);
  EXPECT_EQ("backendAssociatorsFor() failed", message(rc));
  EXPECT_EQ(0, result.doneCount());
  result.clear();
  rc = ivLinks->ft->associatorNames(ivLinks, ctx(), result.result(), switchPath("s1"), nullptr,
                                    nullptr, nullptr, nullptr);
  EXPECT_EQ(CMPI_RC_ERR_FAILED, rc.rc);
  EXPECT_EQ("backendAssociatorNamesFor() failed", message(rc));

  // From the other end: the switches, as paths in the request's namespace.
  script().answer = true;
  script().switches = {makeSwitch("s1", "core")};
  result.clear();
  rc = ivLinks->ft->associatorNames(ivLinks, ctx(), result.result(), fabricPath("f1", "root/elsewhere"),
                                    nullptr, "QRX_Switch", "GroupComponent", "PartComponent");
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ("f1", script().fabricKey.Name);
  ASSERT_EQ(1u, result.objectPaths().size());
  EXPECT_EQ("QRX_Switch", className(result.objectPaths()[0]));
  EXPECT_EQ("root/elsewhere", nameSpace(result.objectPaths()[0]));
  EXPECT_EQ("s1", stringKey(result.objectPaths()[0], "Name"));
  EXPECT_EQ(1, result.doneCount());
}

TEST_F(ProviderGlue, ReferencesReturnTheLinksOfTheSource) {
  QRX_SwitchInFabric link;
  link.GroupComponent = QRX_Fabric_Key(makeFabric("f1"));
  link.PartComponent = QRX_Switch_Key(makeSwitch("s1", "core"));
  script().links = {link};
  cimhost::ResultRecorder result(*ivBroker);

  CMPIStatus rc = ivLinks->ft->references(ivLinks, ctx(), result.result(), switchPath("s1"),
                                          "CIM_Component", "PartComponent", nullptr);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ("QRX_SwitchInFabric.referencesForGroupComponent", script().calls.at(0));
  ASSERT_EQ(1u, result.instances().size());
  EXPECT_EQ(link, read<QRX_SwitchInFabric>(result.instances()[0]));
  EXPECT_EQ(1, result.doneCount());

  result.clear();
  rc = ivLinks->ft->referenceNames(ivLinks, ctx(), result.result(), fabricPath("f1", "root/elsewhere"),
                                   nullptr, nullptr);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ("f1", script().fabricKey.Name);
  ASSERT_EQ(1u, result.objectPaths().size());
  const CMPIObjectPath* name = result.objectPaths()[0];
  EXPECT_EQ("QRX_SwitchInFabric", className(name));
  EXPECT_EQ("root/elsewhere", nameSpace(name));
  ASSERT_NE(nullptr, refKey(name, "PartComponent"));
  EXPECT_EQ("s1", stringKey(refKey(name, "PartComponent"), "Name"));
  EXPECT_EQ("f1", stringKey(refKey(name, "GroupComponent"), "Name"));

  // resultClass names the association class for references.
  result.clear();
  rc = ivLinks->ft->references(ivLinks, ctx(), result.result(), switchPath("s1"), "QRX_Fabric",
                               nullptr, nullptr);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  EXPECT_EQ("Invalid assocClass", message(rc));
  script().calls.clear();
  rc = ivLinks->ft->references(ivLinks, ctx(), result.result(), switchPath("s1"), nullptr,
                               "GroupComponent", nullptr);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_TRUE(script().calls.empty());

  script().answer = false;
  rc = ivLinks->ft->referenceNames(ivLinks, ctx(), result.result(), switchPath("s1"), nullptr, nullptr);
  EXPECT_EQ(CMPI_RC_ERR_FAILED, rc.rc);
  EXPECT_EQ("backendReferencesFor() failed", message(rc));
  EXPECT_EQ(0, result.doneCount());
}

TEST_F(ProviderGlue, MethodsDispatchByExactNameAndMapResults) {
  cimhost::ResultRecorder result(*ivBroker);
  CMPIArgs* in = ivBroker->newArgs();
  CMPIArgs* out = ivBroker->newArgs();
  CMAddArg(in, "ZoneSetName", "fabA", CMPI_chars);

  // A wrongly cased name matches nothing: OK with return value 1.
  CMPIStatus rc = invoke(ivZoning, servicePath(), "createZoneSet", in, out, result);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(std::vector<CMPIUint32>{1}, returnValues(result));
  EXPECT_EQ(1, result.doneCount());
  EXPECT_TRUE(script().calls.empty());

  result.clear();
  rc = invoke(ivZoning, servicePath(), "CreateZoneSet", in, out, result);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(std::vector<CMPIUint32>{0}, returnValues(result));
  EXPECT_EQ("fabA", script().text);
  EXPECT_EQ("zoning", script().serviceKey.Name);
  CMPIData zoneSet = CMGetArg(out, "ZoneSet", nullptr);
  ASSERT_EQ(CMPI_ref, zoneSet.type);
  EXPECT_EQ("QRX_ZoneSet", className(zoneSet.value.ref));
  EXPECT_EQ("out-1", stringKey(zoneSet.value.ref, "InstanceID"));
  EXPECT_EQ(1u, samples("QRX_ZoneService_Provider.invokeMethod.CreateZoneSet"));
  EXPECT_EQ(1u, samples("QRX_ZoneService_Provider.invokeMethod"));  // the unknown name

  // Backend results: 10 is "not supported", anything else a failure.
  for (CMPIUint32 failure : {10u, 7u}) {
    script().methodResult = failure;
    result.clear();
    rc = invoke(ivZoning, servicePath(), "CreateZoneSet", in, ivBroker->newArgs(), result);
    EXPECT_EQ(failure == 10 ? CMPI_RC_ERR_NOT_SUPPORTED : CMPI_RC_ERR_FAILED, rc.rc);
    EXPECT_EQ(failure == 10 ? "ERROR: FC ID is not supported" : "CreateZoneSet failed", message(rc));
    EXPECT_TRUE(result.data().empty());
    EXPECT_EQ(0, result.doneCount());
  }
  script().methodResult = 10;
  CMPIArgs* statistics = ivBroker->newArgs();
  CMPIArray* names = CMNewArray(broker(), 2, CMPI_string, nullptr);
  CMSetArrayElementAt(names, 0, "BytesTransmitted", CMPI_chars);
  CMSetArrayElementAt(names, 1, "LinkFailures", CMPI_chars);
  CMAddArg(statistics, "SelectedStatistics", &names, CMPI_stringA);
  result.clear();
  rc = invoke(ivStats, path("QRX_SwitchFCPortStats", {{"InstanceID", "p1"}}), "ResetSelectedStats",
              statistics, ivBroker->newArgs(), result);
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, rc.rc);
  EXPECT_EQ("ERROR: FC ID is not supported", message(rc));
  EXPECT_EQ((cstring_A{"BytesTransmitted", "LinkFailures"}), script().strings);
  EXPECT_TRUE(result.data().empty());
}

TEST_F(ProviderGlue, MethodArgumentsAreReadByTypeAndOutputsAdded) {
  cimhost::ResultRecorder result(*ivBroker);
  CMPIStatus rc;

  // A missing argument: the status of CMGetArg, no return value.
  rc = invoke(ivZoning, servicePath(), "CreateZoneSet", ivBroker->newArgs(), ivBroker->newArgs(), result);
  EXPECT_NE(CMPI_RC_OK, rc.rc);
  EXPECT_TRUE(result.data().empty());
  EXPECT_TRUE(ivTrace.contains("ERROR: Failed to read input var ZoneSetName\n"));
  EXPECT_TRUE(script().calls.empty());

  // Integers of another width are taken when they fit; a string is not a number.
  CMPIArgs* in = ivBroker->newArgs();
  CMAddArg(in, "ZoneName", "z1", CMPI_chars);
  CMPIUint64 wide = 2;
  CMAddArg(in, "ZoneType", &wide, CMPI_uint64);
  CMAddArg(in, "ZoneSubType", &wide, CMPI_uint64);
  result.clear();
  rc = invoke(ivZoning, servicePath(), "CreateZone", in, ivBroker->newArgs(), result);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(2, script().number);
  CMAddArg(in, "ZoneType", "two", CMPI_chars);
  result.clear();
  rc = invoke(ivZoning, servicePath(), "CreateZone", in, ivBroker->newArgs(), result);
  EXPECT_EQ(CMPI_RC_ERR_TYPE_MISMATCH, rc.rc);
  EXPECT_TRUE(ivTrace.contains("ERROR: Failed to read input var ZoneType\n"));

  // References are read into keys; anything else in their place is refused.
  CMPIArgs* refs = ivBroker->newArgs();
  CMPIObjectPath* zoneSet = path("QRX_ZoneSet", {{"InstanceID", "zs"}});
  CMPIObjectPath* zone = path("QRX_Zone", {{"InstanceID", "z"}});
  CMAddArg(refs, "ZoneSet", &zoneSet, CMPI_ref);
  CMAddArg(refs, "Zone", &zone, CMPI_ref);
  result.clear();
  rc = invoke(ivZoning, servicePath(), "AddZone", refs, ivBroker->newArgs(), result);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ("zs", script().zoneSet.InstanceID);
  EXPECT_EQ("z", script().zone.InstanceID);
  CMAddArg(refs, "ZoneSet", "QRX_ZoneSet.InstanceID=\"zs\"", CMPI_chars);
  result.clear();
  rc = invoke(ivZoning, servicePath(), "AddZone", refs, ivBroker->newArgs(), result);
  EXPECT_EQ(CMPI_RC_ERR_TYPE_MISMATCH, rc.rc);
  EXPECT_TRUE(ivTrace.contains("ERROR: Failed to read input var QRX_ZoneSet from objpath\n"));

  CMPIArgs* activate = ivBroker->newArgs();
  CMPIBoolean yes = 1;
  CMAddArg(activate, "ZoneSet", &zoneSet, CMPI_ref);
  CMAddArg(activate, "Activate", &yes, CMPI_boolean);
  result.clear();
  rc = invoke(ivZoning, servicePath(), "ActivateZoneSet", activate, ivBroker->newArgs(), result);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(1, script().flag);

  // A string-array output.
  script().outputStrings = {"goal-a", "goal-b"};
  CMPIArgs* templates = ivBroker->newArgs();
  CMPIArray* none = CMNewArray(broker(), 0, CMPI_string, nullptr);
  CMAddArg(templates, "TemplateGoalSettings", &none, CMPI_stringA);
  CMPIArgs* out = ivBroker->newArgs();
  result.clear();
  rc = invoke(ivCapabilities, path("QRX_ZoneCapabilities", {{"InstanceID", "caps"}}),
              "CreateGoalSettings", templates, out, result);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  CMPIData goals = CMGetArg(out, "SupportedGoalSettings", nullptr);
  ASSERT_EQ(CMPI_stringA, goals.type);
  ASSERT_EQ(2u, CMGetArrayCount(goals.value.array, nullptr));
  EXPECT_EQ("goal-b", text(CMGetArrayElementAt(goals.value.array, 1, nullptr).value.string));

  // The job output of RequestStateChange, in the namespace of the target.
  CMPIArgs* change = ivBroker->newArgs();
  CMPIUint16 state = 3;
  CMAddArg(change, "RequestedState", &state, CMPI_uint16);
  CMPIDateTime* timeout = CMNewDateTimeFromChars(broker(), "00000000000100.000000:000", nullptr);
  CMAddArg(change, "TimeoutPeriod", &timeout, CMPI_dateTime);
  out = ivBroker->newArgs();
  script().outputId = "job-7";
  result.clear();
  rc = invoke(ivSwitchMethods, switchPath("s1", "root/elsewhere"), "RequestStateChange", change, out, result);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(3, script().number);
  EXPECT_EQ("s1", script().switchKey.Name);
  CMPIData job = CMGetArg(out, "Job", nullptr);
  ASSERT_EQ(CMPI_ref, job.type);
  EXPECT_EQ("CIM_ConcreteJob", className(job.value.ref));
  EXPECT_EQ("root/elsewhere", nameSpace(job.value.ref));
  EXPECT_EQ("job-7", stringKey(job.value.ref, "InstanceID"));

  // A target whose key cannot be read.
  result.clear();
  rc = invoke(ivZoning, ivBroker->newObjectPath("root/qrx", "QRX_ZoneService"), "StartService",
              nullptr, nullptr, result);
  EXPECT_NE(CMPI_RC_OK, rc.rc);
  EXPECT_TRUE(result.data().empty());
  EXPECT_TRUE(ivTrace.contains("ERROR: No object key found\n"));
}

}  // namespace
