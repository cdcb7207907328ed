// The indication providers through the in-process broker: filter
// activation, enabling, the delivery threads and what reaches the broker,
// with the event thread's handlers driven on the test thread.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "cmpimacs.h"
#include "common/backend/BackendInd.h"
#include "provider/Indication_Providers.h"
#include "tests/support/InMemoryPipe.h"
#include "tests/support/TestEnvironment.h"
#include "tools/cimhost/InstanceText.h"
#include "tools/cimhost/broker/TestBroker.h"
#include "tools/switchsim/FabricModel.h"
#include "tools/switchsim/SimulatedSwitch.h"

namespace {

// A filter as an object manager hands it: only its query text is read.
struct Filter {
  CMPISelectExp enc;
  std::string query;
  const CMPIBroker* broker;

  static CMPIString* getString(const CMPISelectExp* ipSe, CMPIStatus* opRc) {
    const Filter* self = static_cast<const Filter*>(ipSe->hdl);
    return CMNewString(self->broker, self->query.c_str(), opRc);
  }
  Filter(const CMPIBroker* ipBroker, const std::string& irQuery)
      : enc{this, &table}, query(irQuery), broker(ipBroker) {}
  static CMPISelectExpFT table;
};
CMPISelectExpFT Filter::table = {200, nullptr, nullptr, nullptr, &Filter::getString,
                                 nullptr, nullptr, nullptr};

class IndicationProvidersTest : public ::testing::Test {
 protected:
  IndicationProvidersTest()
      : ivModel(switchsim::FabricModel::builtIn()), ivDaemon(ivModel), ivPipe(ivDaemon),
        ivCache(ivPipe), ivEvents(ivCache), ivBroker(&modelHierarchy()) {
    ivCache.initCache();
    backendInd = &ivEvents;
  }
  ~IndicationProvidersTest() override {
    stopIndicationDeliveries();
    backendInd = nullptr;
  }

  const CMPIBroker* broker() { return ivBroker.broker(); }
  const CMPIContext* ctx() { return ivBroker.context(); }

  CMPIrc activate(CMPIIndicationMI* ipMi, const std::string& irQuery, const char* ipClass) {
    Filter filter(broker(), irQuery);
    return ipMi->ft->activateFilter(ipMi, ctx(), &filter.enc, ipClass, nullptr, 1).rc;
  }
  CMPIrc deactivate(CMPIIndicationMI* ipMi, const std::string& irQuery, const char* ipClass) {
    Filter filter(broker(), irQuery);
    return ipMi->ft->deActivateFilter(ipMi, ctx(), &filter.enc, ipClass, nullptr, 1).rc;
  }
  // Takes port `ipIndex` of the model on or offline and handles the event.
  void portEvent(std::size_t ipIndex, bool ipOnline) {
    ivModel.ports.at(ipIndex).info.operational_state = ipOnline ? 1 : 2;
    EventRecord event;
    event.code = kEventPortStateChange;
    event.port = ivModel.ports.at(ipIndex).info.port_index;
    ivEvents.handleEvent(event, nullptr);
  }
  // Waits up to five seconds for `ipCount` delivered indications.
  std::size_t waitForIndications(std::size_t ipCount) {
    for (int i = 0; i < 500 && ivBroker.indications().size() < ipCount; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return ivBroker.indications().size();
  }

  switchsim::FabricModel ivModel;
  switchsim::SimulatedSwitch ivDaemon;
  qrxtest::DispatchPipe ivPipe;
  FabricCache ivCache;
  TraceCapture ivTrace;
  BackendInd ivEvents;
  cimhost::TestBroker ivBroker;
};

TEST_F(IndicationProvidersTest, FactoriesAndFilters) {
  CMPIStatus rc = {CMPI_RC_OK, nullptr};
  CMPIIndicationMI* modification =
      CIM_InstModification_Provider_Create_IndicationMI(broker(), ctx(), &rc);
  ASSERT_NE(nullptr, modification);
  EXPECT_EQ(modification, CIM_InstModification_Provider_Create_IndicationMI(broker(), ctx(), &rc));
  EXPECT_STREQ("CIM_InstModification_Provider", modification->ft->miName);
  EXPECT_EQ(200, modification->ft->ftVersion);
  EXPECT_TRUE(ivTrace.contains("Info: loaded Indication CIM_InstModification\n"));
  CMPIIndicationMI* alert = QRX_AlertIndication_Provider_Create_IndicationMI(broker(), ctx(), &rc);
  EXPECT_STREQ("QRX_AlertIndication_Provider", alert->ft->miName);
  EXPECT_TRUE(ivTrace.contains("Info: loaded Indication QRX_AlertIndication\n"));
  EXPECT_STREQ("CIM_InstCreation_Provider",
               CIM_InstCreation_Provider_Create_IndicationMI(broker(), ctx(), &rc)->ft->miName);
  EXPECT_STREQ("CIM_InstDeletion_Provider",
               CIM_InstDeletion_Provider_Create_IndicationMI(broker(), ctx(), &rc)->ft->miName);

  const std::string ports =
      "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_FCPort";
  EXPECT_EQ(CMPI_RC_OK, activate(modification, ports, "CIM_InstModification"));
  EXPECT_TRUE(ivEvents.isLifecycleIndEnabledFor("QRX_SwitchFCPort", IND_INSTMODIFICATION));
  EXPECT_FALSE(ivEvents.isLifecycleIndEnabledFor("QRX_SwitchFCPort", IND_INSTCREATION));
  // Not CQL, a condition of another shape, a filter twice: refused.
  EXPECT_EQ(CMPI_RC_ERR_INVALID_QUERY, activate(modification, "SELECT FROM", "x"));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_QUERY,
            activate(modification, "SELECT * FROM CIM_InstModification WHERE a = 1", "x"));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_QUERY, activate(modification, ports, "x"));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_QUERY, modification->ft->activateFilter(
                                           modification, ctx(), nullptr, "x", nullptr, 1).rc);
  // Alerts: any CQL.
  EXPECT_EQ(CMPI_RC_OK, activate(alert, "SELECT * FROM QRX_AlertIndication WHERE a = 1", "x"));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_QUERY, activate(alert, "SELECT * FROM", "x"));

  EXPECT_EQ(CMPI_RC_OK, deactivate(modification, ports, "CIM_InstModification"));
  EXPECT_FALSE(ivEvents.isLifecycleIndEnabledFor("QRX_SwitchFCPort", IND_INSTMODIFICATION));
  EXPECT_EQ(CMPI_RC_OK, modification->ft->cleanup(modification, ctx(), 1).rc);
}

TEST_F(IndicationProvidersTest, DeliveryWhileEnabledOnly) {
  CMPIStatus rc = {CMPI_RC_OK, nullptr};
  CMPIIndicationMI* mi = CIM_InstModification_Provider_Create_IndicationMI(broker(), ctx(), &rc);
  const std::string query =
      "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA QRX_SwitchFCPort";
  ASSERT_EQ(CMPI_RC_OK, activate(mi, query, "CIM_InstModification"));

  // Activated, not enabled: nothing.
  portEvent(5, false);
  EXPECT_EQ(0u, waitForIndications(0));
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_TRUE(ivBroker.indications().empty());

  ASSERT_EQ(CMPI_RC_OK, mi->ft->enableIndications(mi, ctx()).rc);
  EXPECT_EQ(1, ivBroker.attachedThreads());
  portEvent(5, true);
  ASSERT_EQ(1u, waitForIndications(1));
  const cimhost::DeliveredIndication delivered = ivBroker.indications()[0];
  EXPECT_EQ("root/qrx", delivered.nameSpace);
  const cimhost::Json json = cimhost::instanceJson(delivered.instance);
  EXPECT_EQ("CIM_InstModification", json["class"]);
  const cimhost::Json& properties = json["properties"];
  EXPECT_EQ(34u, properties["IndicationIdentifier"].get<std::string>().size());
  EXPECT_EQ("QRX_SwitchFCPort", properties["SourceInstance"]["class"]);
  EXPECT_EQ(cimhost::Json::array({2}), properties["SourceInstance"]["properties"]["OperationalStatus"]);
  EXPECT_EQ(cimhost::Json::array({10}),
            properties["PreviousInstance"]["properties"]["OperationalStatus"]);
  EXPECT_EQ(ivModel.ports.at(5).info.name, properties["SourceInstance"]["properties"]["Name"]);

  // Disabled: the thread detached and ended, nothing more arrives.
  ASSERT_EQ(CMPI_RC_OK, mi->ft->disableIndications(mi, ctx()).rc);
  EXPECT_EQ(0, ivBroker.attachedThreads());
  EXPECT_FALSE(ivEvents.subscriptions().getInstModificationEnabled());
  portEvent(5, false);
  // Enabled again after the filter went: nothing either.
  ASSERT_EQ(CMPI_RC_OK, deactivate(mi, query, "CIM_InstModification"));
  ASSERT_EQ(CMPI_RC_OK, mi->ft->enableIndications(mi, ctx()).rc);
  portEvent(5, true);
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  EXPECT_EQ(1u, ivBroker.indications().size());
  EXPECT_EQ(1u, indicationDeliveryFor("CIM_InstModification")->delivered());
  ASSERT_EQ(CMPI_RC_OK, mi->ft->cleanup(mi, ctx(), 1).rc);
  EXPECT_EQ(0, ivBroker.attachedThreads());
  EXPECT_FALSE(indicationDeliveryFor("CIM_InstModification")->running());
}

TEST_F(IndicationProvidersTest, AlertsCarryTheEventText) {
  CMPIStatus rc = {CMPI_RC_OK, nullptr};
  CMPIIndicationMI* mi = QRX_AlertIndication_Provider_Create_IndicationMI(broker(), ctx(), &rc);
  ASSERT_EQ(CMPI_RC_OK, activate(mi, "SELECT * FROM QRX_AlertIndication", "QRX_AlertIndication"));
  ASSERT_EQ(CMPI_RC_OK, mi->ft->enableIndications(mi, ctx()).rc);
  EventRecord event;
  event.code = 2;
  event.text = "fan 2 failed";
  ivEvents.handleEvent(event, nullptr);
  ASSERT_EQ(1u, waitForIndications(1));
  const cimhost::Json json = cimhost::instanceJson(ivBroker.indications()[0].instance);
  EXPECT_EQ("QRX_AlertIndication", json["class"]);
  EXPECT_EQ("fan 2 failed", json["properties"]["Description"]);
  EXPECT_EQ("2", json["properties"]["EventID"]);
  ASSERT_EQ(CMPI_RC_OK, mi->ft->disableIndications(mi, ctx()).rc);
}

}  // namespace
