// Subscription queries and enable flags of the event thread.
#include <gtest/gtest.h>

#include <string>

#include "common/backend/IndSubscriptions.h"
#include "tests/support/TraceCapture.h"

namespace {

const char* const kPorts =
    "SELECT * FROM CIM_InstModification WHERE SourceInstance ISA CIM_FCPort";

TEST(IndSubscriptionsTest, AddQueryChecksEveryFactor) {
  TraceCapture trace;
  IndSubscriptions subscriptions;
  EXPECT_TRUE(subscriptions.addQuery(IND_INSTMODIFICATION, kPorts));
  EXPECT_FALSE(subscriptions.addQuery(IND_INSTMODIFICATION, kPorts));
  EXPECT_TRUE(trace.contains(std::string("ERROR: query=") + kPorts + " already exists\n"));
  // The same text is a separate query under another type.
  EXPECT_TRUE(subscriptions.addQuery(IND_INSTCREATION, kPorts));

  struct Refused {
    const char* query;
    const char* message;
  };
  const Refused refused[] = {
      {"SELECT * FROM", "ERROR: parse error query=SELECT * FROM\n"},
      {"SELECT * FROM CIM_InstCreation WHERE NOT SourceInstance ISA QRX_Switch",
       "ERROR: Unexpected operator NOT instead of property name\n"},
      {"SELECT * FROM CIM_InstCreation WHERE 'x' ISA QRX_Switch",
       "ERROR: Unexpected expression instead of property name\n"},
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA QRX_Switch AND "
       "SourceInstance.Name = 'x'",
       "ERROR: Unexpected operator 0 instead of ISA\n"},
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance.PortNumber > 3",
       "ERROR: Unexpected operator 4 instead of ISA\n"},
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA 'QRX_Switch'",
       "ERROR: Unexpected expression instead of class name\n"},
      {"SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA a.QRX_Switch",
       "ERROR: Unexpected expression instead of class name\n"},
  };
  for (const Refused& r : refused) {
    SCOPED_TRACE(r.query);
    EXPECT_FALSE(subscriptions.addQuery(IND_INSTCREATION, r.query));
    EXPECT_TRUE(trace.contains(r.message)) << trace.text();
    // A refused query is not kept: the text can be tried again.
    EXPECT_FALSE(subscriptions.delQuery(IND_INSTCREATION, r.query));
  }
  EXPECT_TRUE(subscriptions.delQuery(IND_INSTMODIFICATION, kPorts));
  EXPECT_FALSE(subscriptions.delQuery(IND_INSTMODIFICATION, kPorts));
  EXPECT_TRUE(subscriptions.addQuery(IND_INSTMODIFICATION, kPorts));
}

TEST(IndSubscriptionsTest, QueriesSelectClassesThroughTheClassTree) {
  IndSubscriptions subscriptions;
  EXPECT_FALSE(subscriptions.isLifecycleIndEnabledFor("QRX_SwitchFCPort", IND_INSTMODIFICATION));
  ASSERT_TRUE(subscriptions.addQuery(IND_INSTMODIFICATION, kPorts));
  EXPECT_TRUE(subscriptions.isLifecycleIndEnabledFor("QRX_SwitchFCPort", IND_INSTMODIFICATION));
  EXPECT_FALSE(subscriptions.isLifecycleIndEnabledFor("QRX_Switch", IND_INSTMODIFICATION));
  EXPECT_FALSE(subscriptions.isLifecycleIndEnabledFor("QRX_SwitchFCPort", IND_INSTCREATION));

  ASSERT_TRUE(subscriptions.addQuery(
      IND_INSTCREATION,
      "SELECT * FROM CIM_InstCreation WHERE SourceInstance ISA CIM_ComputerSystem OR "
      "SourceInstance ISA CIM_AdminDomain"));
  EXPECT_TRUE(subscriptions.isLifecycleIndEnabledFor("QRX_Switch", IND_INSTCREATION));
  EXPECT_TRUE(subscriptions.isLifecycleIndEnabledFor("QRX_Fabric", IND_INSTCREATION));
  EXPECT_FALSE(subscriptions.isLifecycleIndEnabledFor("QRX_SwitchFCPort", IND_INSTCREATION));

  // Every factor of a term must hold.
  ASSERT_TRUE(subscriptions.addQuery(
      IND_INSTDELETION,
      "SELECT * FROM CIM_InstDeletion WHERE SourceInstance ISA CIM_FCPort AND "
      "PreviousInstance ISA QRX_NodeFCPort"));
  EXPECT_FALSE(subscriptions.isLifecycleIndEnabledFor("QRX_SwitchFCPort", IND_INSTDELETION));
  EXPECT_TRUE(subscriptions.isLifecycleIndEnabledFor("QRX_NodeFCPort", IND_INSTDELETION));

  // A query without WHERE selects every class, an unknown class nothing.
  ASSERT_TRUE(subscriptions.addQuery(IND_INSTDELETION, "SELECT * FROM CIM_InstDeletion"));
  EXPECT_TRUE(subscriptions.isLifecycleIndEnabledFor("QRX_Switch", IND_INSTDELETION));
  ASSERT_TRUE(subscriptions.delQuery(IND_INSTDELETION, "SELECT * FROM CIM_InstDeletion"));
  EXPECT_FALSE(subscriptions.isLifecycleIndEnabledFor("QRX_Switch", IND_INSTDELETION));
  EXPECT_FALSE(subscriptions.isLifecycleIndEnabledFor("NoSuchClass", IND_INSTCREATION));
}

TEST(IndSubscriptionsTest, FlagsAndIdentifiers) {
  IndSubscriptions subscriptions;
  EXPECT_FALSE(subscriptions.getInstCreationEnabled() || subscriptions.getInstModificationEnabled() ||
               subscriptions.getInstDeletionEnabled() || subscriptions.getAlertEnabled());
  subscriptions.setInstModificationEnabled(true);
  subscriptions.setAlertEnabled(true);
  EXPECT_FALSE(subscriptions.getInstCreationEnabled());
  EXPECT_TRUE(subscriptions.getInstModificationEnabled());
  EXPECT_FALSE(subscriptions.getInstDeletionEnabled());
  EXPECT_TRUE(subscriptions.getAlertEnabled());
  subscriptions.setAlertEnabled(false);
  EXPECT_FALSE(subscriptions.getAlertEnabled());

  // "Tue Nov 24 03:05:00 2026\n_00000000", then _00000001, ...
  std::string first;
  std::string second;
  subscriptions.generateEventIdent(first);
  subscriptions.generateEventIdent(second);
  ASSERT_EQ(34u, first.size());
  EXPECT_EQ('\n', first[24]);
  EXPECT_EQ("_00000000", first.substr(25));
  EXPECT_EQ("_00000001", second.substr(25));
  for (int i = 2; i <= 0x1b; ++i) subscriptions.generateEventIdent(second);
  EXPECT_EQ("_0000001B", second.substr(25));
}

}  // namespace
