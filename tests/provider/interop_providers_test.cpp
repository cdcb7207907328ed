// The hand-written providers, driven through the in-process broker: the
// registration tables and their association, the agent's constants, the
// checks of the conformance association, the performance records and the
// debug facility. (What needs the switch is checked end to end in
// tests/cimhost/interop_test.cpp.)
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "cmpimacs.h"
#include "common/base/PerfSamples.h"
#include "common/base/trace.h"
#include "provider/AgentSoftware_Providers.h"
#include "provider/CMPIDeserializer.h"
#include "provider/ElementConformsToProfile_Provider.h"
#include "provider/RegisteredProfile_Providers.h"
#include "support/DebugFacility_Provider.h"
#include "support/EnumPerfRecord_Provider.h"
#include "tests/support/TestEnvironment.h"
#include "tools/cimhost/broker/ResultRecorder.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace {

std::string text(const CMPIString* ipString) {
  const char* chars = ipString != nullptr ? CMGetCharPtr(ipString) : nullptr;
  return chars != nullptr ? chars : "";
}

std::string pathText(const CMPIObjectPath* ipPath) {
  return text(CMObjectPathToString(ipPath, nullptr));
}

class InteropProviders : public ::testing::Test {
 protected:
  void SetUp() override {
    ivBroker.reset(new cimhost::TestBroker(&modelHierarchy()));
    CMPIStatus rc = okStatus();
    ivProfiles = QRX_RegisteredProfile_Provider_Create_InstanceMI(broker(), ctx(), &rc);
    ivSubProfiles = QRX_RegisteredSubProfile_Provider_Create_InstanceMI(broker(), ctx(), &rc);
    ivRequires = QRX_SubProfileRequiresProfile_Provider_Create_InstanceMI(broker(), ctx(), &rc);
    ivRequiresAssoc =
        QRX_SubProfileRequiresProfile_Provider_Create_AssociationMI(broker(), ctx(), &rc);
    ivConforms = QRX_ElementConformsToProfile_Provider_Create_AssociationMI(broker(), ctx(), &rc);
    ivProduct = QRX_AgentProduct_Provider_Create_InstanceMI(broker(), ctx(), &rc);
    ivSoftware = QRX_AgentSoftwareIdentity_Provider_Create_InstanceMI(broker(), ctx(), &rc);
    ivPerf = QRX_EnumPerfRecord_Provider_Create_InstanceMI(broker(), ctx(), &rc);
    ivDebug = QRX_DebugFacility_Provider_Create_InstanceMI(broker(), ctx(), &rc);
    ivDebugMethods = QRX_DebugFacility_Provider_Create_MethodMI(broker(), ctx(), &rc);
  }
  void TearDown() override { debug_on = false; }

  const CMPIBroker* broker() { return ivBroker->broker(); }
  const CMPIContext* ctx() { return ivBroker->context(); }

  CMPIObjectPath* path(const char* ipNameSpace, const char* ipClass, const char* ipInstanceID) {
    CMPIObjectPath* result = ivBroker->newObjectPath(ipNameSpace, ipClass);
    if (ipInstanceID != nullptr) CMAddKey(result, "InstanceID", ipInstanceID, CMPI_chars);
    return result;
  }
  CMPIObjectPath* profile(const char* ipInstanceID) {
    return path("root/interop", "QRX_RegisteredProfile", ipInstanceID);
  }

  // Enumerates the instances of an instance MI into model objects.
  template <class T>
  std::vector<T> enumerate(CMPIInstanceMI* ipMi, const char* ipNameSpace, const char* ipClass,
                           CMPIStatus* opRc = nullptr) {
    cimhost::ResultRecorder result(*ivBroker);
    CMPIStatus rc = ipMi->ft->enumerateInstances(ipMi, ctx(), result.result(),
                                                 path(ipNameSpace, ipClass, nullptr), nullptr);
    if (opRc != nullptr) *opRc = rc;
    std::vector<T> out;
    for (const CMPIInstance* instance : result.instances()) {
      T object;
      CMPIDeserializer reader(instance);
      object.deserialize(reader);
      EXPECT_FALSE(reader.hasError());
      out.push_back(object);
    }
    return out;
  }

  // associatorNames of an association MI, as path texts; the status in *opRc.
  std::vector<std::string> associatorNames(CMPIAssociationMI* ipMi, const CMPIObjectPath* ipSource,
                                           const char* ipAssocClass, const char* ipResultClass,
                                           CMPIStatus* opRc) {
    cimhost::ResultRecorder result(*ivBroker);
    *opRc = ipMi->ft->associatorNames(ipMi, ctx(), result.result(), ipSource, ipAssocClass,
                                      ipResultClass, nullptr, nullptr);
    std::vector<std::string> out;
    for (const CMPIObjectPath* found : result.objectPaths()) out.push_back(pathText(found));
    return out;
  }

  CMPIStatus invoke(const char* ipMethod, const CMPIArgs* ipIn, std::vector<CMPIData>* opData) {
    cimhost::ResultRecorder result(*ivBroker);
    CMPIObjectPath* op = path("root/qrx", "QRX_DebugFacility", "QRX:DebugFacility");
    CMPIStatus rc = ivDebugMethods->ft->invokeMethod(ivDebugMethods, ctx(), result.result(), op,
                                                     ipMethod, ipIn, ivBroker->newArgs());
    *opData = result.data();
    return rc;
  }

  std::unique_ptr<cimhost::TestBroker> ivBroker;
  CMPIInstanceMI* ivProfiles = nullptr;
  CMPIInstanceMI* ivSubProfiles = nullptr;
  CMPIInstanceMI* ivRequires = nullptr;
  CMPIAssociationMI* ivRequiresAssoc = nullptr;
  CMPIAssociationMI* ivConforms = nullptr;
  CMPIInstanceMI* ivProduct = nullptr;
  CMPIInstanceMI* ivSoftware = nullptr;
  CMPIInstanceMI* ivPerf = nullptr;
  CMPIInstanceMI* ivDebug = nullptr;
  CMPIMethodMI* ivDebugMethods = nullptr;
};

TEST_F(InteropProviders, RegisteredProfilesAndSubProfilesAreTheTable) {
  const auto profiles =
      enumerate<QRX_RegisteredProfile>(ivProfiles, "root/interop", "QRX_RegisteredProfile");
  const char* const profileRows[][2] = {{"QRX:Fabric.1.2.0", "Fabric"},
                                        {"QRX:Switch.1.2.0", "Switch"},
                                        {"QRX:Indication.1.2.0", "Indication"},
                                        {"QRX:Server.1.2.0", "Server"}};
  ASSERT_EQ(4u, profiles.size());
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    EXPECT_EQ(profileRows[i][0], profiles[i].InstanceID);
    EXPECT_EQ(profileRows[i][1], profiles[i].RegisteredName);
    EXPECT_EQ("1.2.0", profiles[i].RegisteredVersion);
    EXPECT_EQ(11, profiles[i].RegisteredOrganization);
    EXPECT_EQ(cuint16_A{2}, profiles[i].AdvertiseTypes);
  }
  const auto subs = enumerate<QRX_RegisteredSubProfile>(ivSubProfiles, "root/interop",
                                                        "QRX_RegisteredSubProfile");
  const char* const subNames[] = {"Enhanced Zoning and Enhanced Zoning Control", "Zone Control",
                                  "Access Points", "Software", "Location"};
  ASSERT_EQ(5u, subs.size());
  for (std::size_t i = 0; i < subs.size(); ++i) {
    EXPECT_EQ(std::string("QRX:") + subNames[i], subs[i].InstanceID) << "no version in the ID";
    EXPECT_EQ(subNames[i], subs[i].RegisteredName);
    EXPECT_EQ("1.2.0", subs[i].RegisteredVersion);
    EXPECT_EQ(11, subs[i].RegisteredOrganization);
    EXPECT_EQ(cuint16_A{2}, subs[i].AdvertiseTypes);
  }

  // Names answer in the request's namespace; getInstance finds a row.
  cimhost::ResultRecorder names(*ivBroker);
  ASSERT_EQ(CMPI_RC_OK,
            ivProfiles->ft
                ->enumerateInstanceNames(ivProfiles, ctx(), names.result(),
                                         path("root/interop", "QRX_RegisteredProfile", nullptr))
                .rc);
  ASSERT_EQ(4u, names.objectPaths().size());
  EXPECT_EQ("root/interop:QRX_RegisteredProfile.InstanceID=\"QRX:Switch.1.2.0\"",
            pathText(names.objectPaths()[1]));
  cimhost::ResultRecorder got(*ivBroker);
  EXPECT_EQ(
      CMPI_RC_OK,
      ivSubProfiles->ft
          ->getInstance(ivSubProfiles, ctx(), got.result(),
                        path("root/interop", "QRX_RegisteredSubProfile", "QRX:Location"), nullptr)
          .rc);
  EXPECT_EQ(1u, got.instances().size());
  cimhost::ResultRecorder none(*ivBroker);
  EXPECT_EQ(CMPI_RC_ERR_FAILED,
            ivSubProfiles->ft
                ->getInstance(ivSubProfiles, ctx(), none.result(), profile("QRX:Nothing"), nullptr)
                .rc);
}

TEST_F(InteropProviders, EverySubProfileRequiresTheFabricProfile) {
  cimhost::ResultRecorder links(*ivBroker);
  ASSERT_EQ(CMPI_RC_OK, ivRequires->ft
                            ->enumerateInstanceNames(
                                ivRequires, ctx(), links.result(),
                                path("root/interop", "QRX_SubProfileRequiresProfile", nullptr))
                            .rc);
  ASSERT_EQ(5u, links.objectPaths().size());
  EXPECT_EQ(
      "root/interop:QRX_SubProfileRequiresProfile.Antecedent="
      "\"root/interop:QRX_RegisteredProfile.InstanceID=\\\"QRX:Fabric.1.2.0\\\"\","
      "Dependent=\"root/interop:QRX_RegisteredSubProfile.InstanceID=\\\"QRX:Zone Control\\\"\"",
      pathText(links.objectPaths()[1]));
  // The association objects read back through getInstance.
  cimhost::ResultRecorder got(*ivBroker);
  EXPECT_EQ(
      CMPI_RC_OK,
      ivRequires->ft->getInstance(ivRequires, ctx(), got.result(), links.objectPaths()[1], nullptr)
          .rc);
  EXPECT_EQ(1u, got.instances().size());

  CMPIStatus rc;
  const auto fromFabric =
      associatorNames(ivRequiresAssoc, profile("QRX:Fabric.1.2.0"), nullptr, nullptr, &rc);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  ASSERT_EQ(5u, fromFabric.size());
  EXPECT_EQ(
      "root/interop:QRX_RegisteredSubProfile.InstanceID=\"QRX:Enhanced Zoning and Enhanced "
      "Zoning Control\"",
      fromFabric[0]);
  EXPECT_TRUE(
      associatorNames(ivRequiresAssoc, profile("QRX:Switch.1.2.0"), nullptr, nullptr, &rc).empty());
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  const auto fromSoftware = associatorNames(
      ivRequiresAssoc, path("root/interop", "QRX_RegisteredSubProfile", "QRX:Software"),
      "CIM_SubProfileRequiresProfile", nullptr, &rc);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(
      std::vector<std::string>{
          "root/interop:QRX_RegisteredProfile.InstanceID=\"QRX:Fabric.1.2.0\""},
      fromSoftware);

  // The subprofile instances themselves, and the references.
  cimhost::ResultRecorder subs(*ivBroker);
  EXPECT_EQ(CMPI_RC_OK,
            ivRequiresAssoc->ft
                ->associators(ivRequiresAssoc, ctx(), subs.result(), profile("QRX:Fabric.1.2.0"),
                              nullptr, "CIM_RegisteredSubProfile", nullptr, nullptr, nullptr)
                .rc);
  EXPECT_EQ(5u, subs.instances().size());
  cimhost::ResultRecorder refs(*ivBroker);
  EXPECT_EQ(CMPI_RC_OK, ivRequiresAssoc->ft
                            ->referenceNames(ivRequiresAssoc, ctx(), refs.result(),
                                             profile("QRX:Fabric.1.2.0"), nullptr, nullptr)
                            .rc);
  EXPECT_EQ(5u, refs.objectPaths().size());

  // Bad requests: no InstanceID, one the table lacks, another association class.
  TraceCapture trace;
  associatorNames(ivRequiresAssoc, profile(nullptr), nullptr, nullptr, &rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  EXPECT_EQ("Missing CIM_RegisteredProfile.InstanceID", text(rc.msg));
  associatorNames(ivRequiresAssoc, profile("QRX:Fabric.9"), nullptr, nullptr, &rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  EXPECT_EQ("Illegal value CIM_RegisteredProfile.InstanceID", text(rc.msg));
  associatorNames(ivRequiresAssoc, profile("QRX:Fabric.1.2.0"), "QRX_SwitchInFabric", nullptr, &rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  EXPECT_EQ("Invalid assocClass", text(rc.msg));
  const std::string log = trace.text();
  EXPECT_NE(std::string::npos,
            log.find(", QRX_SubProfileRequiresProfile_Provider_associatorNames, "));
  EXPECT_NE(std::string::npos,
            log.find("] ERROR: Could not get CIM_RegisteredProfile.InstanceID\n"));
  EXPECT_NE(std::string::npos,
            log.find("] ERROR: Invalid CIM_RegisteredProfile.InstanceID=QRX:Fabric.9\n"));
  EXPECT_NE(std::string::npos, log.find("] ERROR: Invalid assocClass=QRX_SwitchInFabric\n"));
}

TEST_F(InteropProviders, ConformanceAssociationRefusesWhatItDoesNotServe) {
  TraceCapture trace;
  CMPIStatus rc;
  associatorNames(ivConforms, profile("QRX:Switch.1.2.0"), nullptr, "CIM_LogicalDevice", &rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  EXPECT_EQ("Invalid resultClass", text(rc.msg));
  associatorNames(ivConforms, profile("QRX:Switch.1.2.0"), nullptr, "CIM_NoSuchClass", &rc);
  EXPECT_EQ("Invalid resultClass", text(rc.msg));
  CMPIObjectPath* element = path("root/qrx", "QRX_Switch", nullptr);
  CMAddKey(element, "CreationClassName", "QRX_Switch", CMPI_chars);
  CMAddKey(element, "Name", "sw", CMPI_chars);
  associatorNames(ivConforms, element, nullptr, "CIM_RegisteredProfile", &rc);
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, rc.rc);
  EXPECT_EQ("Invalid result class", text(rc.msg));
  associatorNames(ivConforms, profile(nullptr), nullptr, "CIM_ComputerSystem", &rc);
  EXPECT_EQ("Missing CIM_RegisteredProfile.InstanceID", text(rc.msg));
  associatorNames(ivConforms, profile("QRX:Switch.1.2.0"), "CIM_Component", nullptr, &rc);
  EXPECT_EQ("Invalid assocClass", text(rc.msg));
  const std::string log = trace.text();
  EXPECT_NE(std::string::npos, log.find("] ERROR: Invalid resultClass=CIM_LogicalDevice\n"));
  EXPECT_NE(std::string::npos, log.find("] ERROR: Unsupported targetName=ConformantStandard\n"));
  EXPECT_NE(std::string::npos, log.find("] ERROR: Invalid assocClass=CIM_Component\n"));
}

TEST_F(InteropProviders, AgentProductAndSoftwareAreOneConstantEach) {
  const auto products = enumerate<QRX_AgentProduct>(ivProduct, "root/qrx", "QRX_AgentProduct");
  ASSERT_EQ(1u, products.size());
  EXPECT_EQ("QRX:QRX_SMIAgent", products[0].Name);
  EXPECT_EQ("QRX SMI Agent 120.9.0", products[0].IdentifyingNumber);
  EXPECT_EQ("QRX", products[0].Vendor);
  EXPECT_EQ("120.9.0", products[0].Version);
  EXPECT_EQ("QRX SMI Agent", products[0].ElementName);
  const auto software =
      enumerate<QRX_AgentSoftwareIdentity>(ivSoftware, "root/qrx", "QRX_AgentSoftwareIdentity");
  ASSERT_EQ(1u, software.size());
  EXPECT_EQ("QRX:QRX_SMIAgentSoftware", software[0].InstanceID);
  EXPECT_EQ("AgentSoftwareIdentity", software[0].Name);
  EXPECT_EQ("0.1(2)", software[0].VersionString) << "not the product's 120.9.0";
  EXPECT_EQ(123, software[0].BuildNumber);
  EXPECT_EQ(cuint16_A{5}, software[0].Classifications);
  EXPECT_EQ("serial123456", software[0].SerialNumber);
  EXPECT_EQ(0u, software[0].ReleaseDate.ivTime);
}

TEST_F(InteropProviders, PerfRecordsShowTheStatisticsOfEachTag) {
  scim_clear_perfdata();
  for (std::uint64_t value : {5, 1, 9, 3})
    scim_add_perfsample("rs_api_client_mq.get_switch_info", value);
  scim_add_perfsample("rs_api_client_mq.get_fabric_info", 7);
  const auto records = enumerate<QRX_EnumPerfRecord>(ivPerf, "root/qrx", "QRX_EnumPerfRecord");
  ASSERT_EQ(2u, records.size());
  EXPECT_EQ("rs_api_client_mq.get_fabric_info", records[0].Tag);
  const QRX_EnumPerfRecord& record = records[1];
  EXPECT_EQ("rs_api_client_mq.get_switch_info", record.Tag);
  EXPECT_EQ(4u, record.NumSamples);
  EXPECT_EQ(1u, record.MinVal);
  EXPECT_EQ(9u, record.MaxVal);
  EXPECT_EQ(5u, record.MedVal);
  EXPECT_EQ(4u, record.AvgVal);

  CMPIObjectPath* tag = path("root/qrx", "QRX_EnumPerfRecord", nullptr);
  CMAddKey(tag, "Tag", "rs_api_client_mq.get_fabric_info", CMPI_chars);
  cimhost::ResultRecorder got(*ivBroker);
  EXPECT_EQ(CMPI_RC_OK, ivPerf->ft->getInstance(ivPerf, ctx(), got.result(), tag, nullptr).rc);
  EXPECT_EQ(1u, got.instances().size());
  CMPIObjectPath* unknown = path("root/qrx", "QRX_EnumPerfRecord", nullptr);
  CMAddKey(unknown, "Tag", "no.such.tag", CMPI_chars);
  cimhost::ResultRecorder missing(*ivBroker);
  EXPECT_EQ(CMPI_RC_ERR_FAILED,
            ivPerf->ft->getInstance(ivPerf, ctx(), missing.result(), unknown, nullptr).rc);
  EXPECT_TRUE(missing.instances().empty());
  cimhost::ResultRecorder created(*ivBroker);
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED,
            ivPerf->ft->deleteInstance(ivPerf, ctx(), created.result(), tag).rc);
}

TEST_F(InteropProviders, DebugFacilitySwitchesTracingAndClearsRecords) {
  TraceCapture trace;
  const auto facilities = enumerate<QRX_DebugFacility>(ivDebug, "root/qrx", "QRX_DebugFacility");
  ASSERT_EQ(1u, facilities.size());
  EXPECT_EQ(trace_file_path(), facilities[0].LogFilePath);

  std::vector<CMPIData> data;
  CMPIArgs* on = ivBroker->newArgs();
  CMPIBoolean yes = 1;
  CMAddArg(on, "DebugOn", &yes, CMPI_boolean);
  debug_on = false;
  ASSERT_EQ(CMPI_RC_OK, invoke("SetDebugOn", on, &data).rc);
  EXPECT_TRUE(debug_on);
  ASSERT_EQ(1u, data.size());
  EXPECT_EQ(0u, data[0].value.uint32);
  // Debug lines now reach the log, in their shape.
  enumerate<QRX_DebugFacility>(ivDebug, "root/qrx", "QRX_DebugFacility");
  EXPECT_TRUE(trace.contains("[QRX_DebugFacility_Provider_enumInstances, "));
  EXPECT_TRUE(trace.contains("] class=QRX_DebugFacility ref=root/qrx:QRX_DebugFacility\n"));

  // A missing argument changes nothing.
  EXPECT_NE(CMPI_RC_OK, invoke("SetDebugOn", ivBroker->newArgs(), &data).rc);
  EXPECT_TRUE(debug_on);
  EXPECT_TRUE(trace.contains(", QRX_DebugFacility_Provider_invokeMethod, "));
  EXPECT_TRUE(trace.contains("] ERROR: Failed to read input var DebugOn\n"));
  CMPIArgs* off = ivBroker->newArgs();
  CMPIBoolean no = 0;
  CMAddArg(off, "DebugOn", &no, CMPI_boolean);
  ASSERT_EQ(CMPI_RC_OK, invoke("SetDebugOn", off, &data).rc);
  EXPECT_FALSE(debug_on);

  scim_add_perfsample("a.tag", 3);
  ASSERT_EQ(CMPI_RC_OK, invoke("ClearPerfRecords", ivBroker->newArgs(), &data).rc);
  // The method's own sample is the only record after clearing.
  const auto records = enumerate<QRX_EnumPerfRecord>(ivPerf, "root/qrx", "QRX_EnumPerfRecord");
  ASSERT_EQ(1u, records.size());
  EXPECT_EQ("QRX_DebugFacility_Provider.invokeMethod.ClearPerfRecords", records[0].Tag);
  EXPECT_EQ(CMPI_RC_ERR_METHOD_NOT_FOUND, invoke("Reboot", ivBroker->newArgs(), &data).rc);
}

}  // namespace
