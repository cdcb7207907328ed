// The broker itself: its function tables in both modes, object accounting
// and memory, up-calls, indications, thread attachment, type queries,
// messages and logging, the extended services, the result recorder, and
// use from several threads.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "cmpimacs.h"
#include "tools/cimhost/broker/ResultRecorder.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace {

using cimhost::BrokerMode;
using cimhost::LogEntry;
using cimhost::ResultRecorder;
using cimhost::TestBroker;
using cimhost::UpcallHandler;

std::string str(const CMPIString* ipString) {
  return ipString ? std::string(CMGetCharPtr(ipString)) : std::string("<NULL>");
}

TEST(BrokerTablesTest, Cmpi100ModeLacksTheCmpi200Additions) {
  TestBroker v2;
  TestBroker v1(nullptr, BrokerMode::Cmpi100);
  const CMPIBroker* b2 = v2.broker();
  const CMPIBroker* b1 = v1.broker();

  EXPECT_EQ(200u, CBBrokerVersion(b2));
  EXPECT_EQ(100u, CBBrokerVersion(b1));
  EXPECT_STREQ("qrx-cimhost", CBBrokerName(b2));
  EXPECT_TRUE(CBGetCapabilities(b2) & CMPI_MB_Supports_Extended_Error);
  EXPECT_FALSE(CBGetCapabilities(b1) & CMPI_MB_Supports_Extended_Error);
  EXPECT_FALSE(CBGetCapabilities(b1) & CMPI_MB_Supports_MemEnhancements);

  ASSERT_NE(nullptr, b2->mft);
  EXPECT_EQ(nullptr, b1->mft);
  EXPECT_NE(nullptr, b2->eft->newCMPIError);
  EXPECT_NE(nullptr, b2->eft->getMessage2);
  EXPECT_EQ(nullptr, b1->eft->newCMPIError);
  EXPECT_EQ(nullptr, b1->eft->openMessageFile);
  EXPECT_EQ(nullptr, b1->eft->closeMessageFile);
  EXPECT_EQ(nullptr, b1->eft->getMessage2);
  EXPECT_NE(nullptr, b1->eft->getMessage);
  EXPECT_EQ(100, b1->eft->ftVersion);
  EXPECT_EQ(200, b2->eft->ftVersion);
  // The extended services are CMPI 1.0 already.
  EXPECT_NE(nullptr, b1->xft->newThread);
  EXPECT_NE(nullptr, b1->xft->timedCondWait);

  CMPIObjectPath* op1 = v1.newObjectPath("root/qrx", "QRX_Switch");
  CMPIObjectPath* op2 = v2.newObjectPath("root/qrx", "QRX_Switch");
  EXPECT_EQ(100, op1->ft->ftVersion);
  EXPECT_EQ(nullptr, op1->ft->getClassQualifier);
  EXPECT_EQ(nullptr, op1->ft->getPropertyQualifier);
  EXPECT_EQ(nullptr, op1->ft->getMethodQualifier);
  EXPECT_EQ(nullptr, op1->ft->getParameterQualifier);
  EXPECT_NE(nullptr, op2->ft->getParameterQualifier);
  EXPECT_EQ(nullptr, v1.newInstance(op1)->ft->setPropertyWithOrigin);
  CMPIInstance* inst2 = v2.newInstance(op2);
  ASSERT_NE(nullptr, inst2->ft->setPropertyWithOrigin);
  EXPECT_EQ(CMPI_RC_OK, CMSetPropertyWithOrigin(inst2, "Name", "sw", CMPI_chars, "QRX_Switch").rc);
  EXPECT_EQ("sw", str(CMGetProperty(inst2, "Name", nullptr).value.string));

  ResultRecorder r1(v1);
  ResultRecorder r2(v2);
  EXPECT_EQ(nullptr, r1.result()->ft->returnError);
  EXPECT_NE(nullptr, r2.result()->ft->returnError);
  EXPECT_EQ(100, r1.result()->ft->ftVersion);
  EXPECT_EQ(100, v1.newString("x")->ft->ftVersion);
  EXPECT_EQ(100, v1.context()->ft->ftVersion);

  // Objects of a 1.0 broker still work as they do in 2.0.
  CMAddKey(op1, "Name", "sw", CMPI_chars);
  EXPECT_EQ("root/qrx:QRX_Switch.Name=\"sw\"", str(CMObjectPathToString(op1, nullptr)));
}

TEST(BrokerMemoryTest, ReleaseMarksAndDestructionFreeWhatWasHandedOut) {
  TestBroker broker;
  const CMPIBroker* mb = broker.broker();
  EXPECT_EQ(0u, broker.liveObjects());

  CMPIString* s = broker.newString("x");
  CMPIObjectPath* op = broker.newObjectPath("root/qrx", "QRX_Switch");
  EXPECT_EQ(2u, broker.liveObjects());
  EXPECT_EQ(CMPI_RC_OK, CMRelease(s).rc);
  EXPECT_EQ(1u, broker.liveObjects());
  // Getters that return new objects register them; so do status messages.
  CMPIString* cls = CMGetClassName(op, nullptr);
  EXPECT_EQ(2u, broker.liveObjects());
  CMPIStatus rc = CMSetClassName(op, nullptr);
  ASSERT_NE(nullptr, rc.msg);
  EXPECT_EQ(3u, broker.liveObjects());
  CMRelease(rc.msg);
  CMRelease(cls);

  // What lives inside another object is not the caller's to release.
  CMPIInstance* inst = broker.newInstance(op);
  CMSetProperty(inst, "Name", "sw", CMPI_chars);
  CMPIString* inner = CMGetProperty(inst, "Name", nullptr).value.string;
  rc = CMRelease(inner);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_HANDLE, rc.rc);
  EXPECT_EQ("sw", str(CMGetProperty(inst, "Name", nullptr).value.string));
  CMRelease(rc.msg);
  EXPECT_EQ(2u, broker.liveObjects());  // op, inst

  // A copy of an object's {hdl, ft} struct reaches the same object.
  CMPIString copied = *broker.newString("copied");
  EXPECT_STREQ("copied", CMGetCharPtr(&copied));
  EXPECT_STREQ("copied", CMGetCharsPtr(&copied, nullptr));
  CMPIInstance alias = *inst;
  EXPECT_EQ("sw", str(CMGetProperty(&alias, "Name", nullptr).value.string));
  EXPECT_EQ(3u, broker.liveObjects());
  EXPECT_EQ(CMPI_RC_OK, CMRelease(&copied).rc);
  EXPECT_EQ(2u, broker.liveObjects());

  // A mark frees what was made after it, nested marks included.
  CMPIGcStat* outer = mb->mft->mark(mb, &rc);
  ASSERT_EQ(CMPI_RC_OK, rc.rc);
  CMPIArray* array = CMNewArray(mb, 2, CMPI_uint8, nullptr);
  char* block = mb->mft->cmpiStrDup(mb, "dup");
  CMPIGcStat* inner_mark = mb->mft->mark(mb, nullptr);
  CMClone(inst, nullptr);
  CMNewDateTime(mb, nullptr);
  EXPECT_EQ(5u, broker.liveObjects());
  EXPECT_EQ(1u, broker.liveAllocations());
  EXPECT_EQ(CMPI_RC_OK, mb->mft->release(mb, inner_mark).rc);
  EXPECT_EQ(3u, broker.liveObjects());
  EXPECT_EQ(2u, CMGetArrayCount(array, nullptr));
  EXPECT_STREQ("dup", block);
  EXPECT_EQ(CMPI_RC_OK, mb->mft->release(mb, outer).rc);
  EXPECT_EQ(2u, broker.liveObjects());
  EXPECT_EQ(0u, broker.liveAllocations());
  rc = mb->mft->release(mb, outer);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  CMRelease(rc.msg);

  // An object made after a mark is the mark's, also when what was made
  // just before the mark is released meanwhile, and also when an outer
  // mark is released first.
  CMPIString* before = broker.newString("before");
  CMPIGcStat* third = mb->mft->mark(mb, nullptr);
  CMRelease(before);
  broker.newString("after");
  CMPIGcStat* outerFirst = mb->mft->mark(mb, nullptr);
  broker.newString("in both");
  CMPIGcStat* innerLast = mb->mft->mark(mb, nullptr);
  EXPECT_EQ(4u, broker.liveObjects());
  EXPECT_EQ(CMPI_RC_OK, mb->mft->release(mb, outerFirst).rc);
  EXPECT_EQ(3u, broker.liveObjects());
  broker.newString("after the outer went");
  EXPECT_EQ(CMPI_RC_OK, mb->mft->release(mb, innerLast).rc);
  EXPECT_EQ(3u, broker.liveObjects());
  EXPECT_EQ(CMPI_RC_OK, mb->mft->release(mb, third).rc);
  EXPECT_EQ(2u, broker.liveObjects());

  // Broker memory.
  char* text = static_cast<char*>(mb->mft->cmpiMalloc(mb, 4));
  std::strcpy(text, "abc");
  text = static_cast<char*>(mb->mft->cmpiRealloc(mb, text, 1000));
  ASSERT_NE(nullptr, text);
  EXPECT_STREQ("abc", text);
  int* zeros = static_cast<int*>(mb->mft->cmpiCalloc(mb, 8, sizeof(int)));
  EXPECT_EQ(0, zeros[7]);
  EXPECT_EQ(nullptr, mb->mft->cmpiCalloc(mb, SIZE_MAX, 2));
  EXPECT_EQ(2u, broker.liveAllocations());
  mb->mft->cmpiFree(mb, zeros);
  EXPECT_EQ(1u, broker.liveAllocations());
  int onStack = 0;
  mb->mft->cmpiFree(mb, &onStack);  // not the broker's: ignored
  EXPECT_EQ(nullptr, mb->mft->cmpiRealloc(mb, &onStack, 8));
  EXPECT_EQ(1u, broker.liveAllocations());

  // The freeX functions release like CMRelease.
  mb->mft->freeInstance(mb, inst);
  mb->mft->freeString(mb, broker.newString("y"));
  EXPECT_EQ(1u, broker.liveObjects());
  // op, text and whatever else is left go with the broker (LeakSanitizer
  // checks that in the sanitizer build).
}

// Records the up-calls it gets and answers them.
class FakeHandler : public UpcallHandler {
 public:
  explicit FakeHandler(TestBroker& irBroker) : ivBroker(irBroker) {}

  std::vector<std::string> calls;
  bool throwOnDelete = false;

  CMPIEnumeration* enumerateInstanceNames(const CMPIContext*, const CMPIObjectPath* op,
                                          CMPIStatus* opRc) override {
    calls.push_back("names " + str(CMGetClassName(op, nullptr)));
    CMPIArray* paths = CMNewArray(ivBroker.broker(), 2, CMPI_ref, nullptr);
    CMPIValue v;
    v.ref = const_cast<CMPIObjectPath*>(op);
    CMSetArrayElementAt(paths, 0, &v, CMPI_ref);
    CMSetArrayElementAt(paths, 1, &v, CMPI_ref);
    return ivBroker.newEnumeration(paths, opRc);
  }
  CMPIInstance* getInstance(const CMPIContext*, const CMPIObjectPath* op, const char** properties,
                            CMPIStatus* opRc) override {
    calls.push_back(std::string("get ") + (properties && properties[0] ? properties[0] : "-"));
    opRc->rc = CMPI_RC_ERR_NOT_FOUND;
    (void)op;
    return nullptr;
  }
  CMPIObjectPath* createInstance(const CMPIContext*, const CMPIObjectPath*,
                                 const CMPIInstance* inst, CMPIStatus*) override {
    calls.push_back("create");
    return CMGetObjectPath(inst, nullptr);
  }
  CMPIStatus modifyInstance(const CMPIContext*, const CMPIObjectPath*, const CMPIInstance*,
                            const char**) override {
    calls.push_back("modify");
    return CMPIStatus{CMPI_RC_OK, nullptr};
  }
  CMPIStatus deleteInstance(const CMPIContext*, const CMPIObjectPath*) override {
    calls.push_back("delete");
    if (throwOnDelete) throw std::runtime_error("handler broke");
    return CMPIStatus{CMPI_RC_ERR_ACCESS_DENIED, nullptr};
  }
  CMPIEnumeration* execQuery(const CMPIContext*, const CMPIObjectPath*, const char* query,
                             const char* lang, CMPIStatus*) override {
    calls.push_back(std::string("query ") + lang + " " + query);
    return nullptr;
  }
  CMPIEnumeration* enumerateInstances(const CMPIContext* ctx, const CMPIObjectPath*,
                                      const char**, CMPIStatus*) override {
    calls.push_back("instances in " +
                    str(CMGetContextEntry(ctx, CMPIInitNameSpace, nullptr).value.string));
    return nullptr;
  }
  CMPIEnumeration* associators(const CMPIContext*, const CMPIObjectPath*, const char* assocClass,
                               const char* resultClass, const char* role, const char* resultRole,
                               const char**, CMPIStatus*) override {
    calls.push_back(std::string("associators ") + assocClass + " " + resultClass + " " + role +
                    " " + resultRole);
    return nullptr;
  }
  CMPIEnumeration* associatorNames(const CMPIContext*, const CMPIObjectPath*, const char*,
                                   const char*, const char*, const char* resultRole,
                                   CMPIStatus*) override {
    calls.push_back(std::string("associatorNames ") + resultRole);
    return nullptr;
  }
  CMPIEnumeration* references(const CMPIContext*, const CMPIObjectPath*, const char* resultClass,
                              const char*, const char**, CMPIStatus*) override {
    calls.push_back(std::string("references ") + resultClass);
    return nullptr;
  }
  CMPIEnumeration* referenceNames(const CMPIContext*, const CMPIObjectPath*, const char*,
                                  const char* role, CMPIStatus*) override {
    calls.push_back(std::string("referenceNames ") + role);
    return nullptr;
  }
  CMPIData invokeMethod(const CMPIContext*, const CMPIObjectPath*, const char* method,
                        const CMPIArgs* in, CMPIArgs* out, CMPIStatus*) override {
    calls.push_back(std::string("invoke ") + method);
    CMPIData count = CMGetArg(in, "Count", nullptr);
    CMPIValue v;
    v.uint32 = count.value.uint32 * 2;
    CMAddArg(out, "Doubled", &v, CMPI_uint32);
    CMPIData ret;
    ret.type = CMPI_uint32;
    ret.state = CMPI_goodValue;
    ret.value.uint32 = 0;
    return ret;
  }
  CMPIStatus setProperty(const CMPIContext*, const CMPIObjectPath*, const char* name,
                         const CMPIValue* value, CMPIType type) override {
    calls.push_back(std::string("set ") + name + "=" + std::to_string(value->uint16) + "/" +
                    std::to_string(type));
    return CMPIStatus{CMPI_RC_OK, nullptr};
  }
  CMPIData getProperty(const CMPIContext*, const CMPIObjectPath*, const char* name,
                       CMPIStatus* opRc) override {
    calls.push_back(std::string("getProperty ") + name);
    opRc->rc = CMPI_RC_ERR_NO_SUCH_PROPERTY;
    CMPIData none;
    none.type = CMPI_null;
    none.state = CMPI_nullValue;
    none.value.uint64 = 0;
    return none;
  }

 private:
  TestBroker& ivBroker;
};

TEST(BrokerUpcallTest, UpcallsReachTheHandlerWithTheirArguments) {
  TestBroker broker;
  const CMPIBroker* mb = broker.broker();
  const CMPIContext* ctx = broker.newContext("root/qrx");
  CMPIObjectPath* op = broker.newObjectPath("root/qrx", "QRX_Switch");
  CMPIStatus rc;

  EXPECT_EQ(nullptr, CBEnumInstanceNames(mb, ctx, op, &rc));
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, rc.rc);
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, CBDeleteInstance(mb, ctx, op).rc);

  FakeHandler handler(broker);
  broker.setUpcallHandler(&handler);
  CMPIEnumeration* names = CBEnumInstanceNames(mb, ctx, op, &rc);
  ASSERT_EQ(CMPI_RC_OK, rc.rc);
  CMPIObjectPath* first = CMGetNext(names, nullptr).value.ref;  // macros evaluate twice
  EXPECT_EQ("QRX_Switch", str(CMGetClassName(first, nullptr)));
  EXPECT_TRUE(CMHasNext(names, nullptr));

  const char* properties[] = {"Name", nullptr};
  EXPECT_EQ(nullptr, CBGetInstance(mb, ctx, op, properties, &rc));
  EXPECT_EQ(CMPI_RC_ERR_NOT_FOUND, rc.rc);
  CMPIInstance* inst = broker.newInstance(op);
  EXPECT_NE(nullptr, CBCreateInstance(mb, ctx, op, inst, &rc));
  EXPECT_EQ(CMPI_RC_OK, CBModifyInstance(mb, ctx, op, inst, nullptr).rc);
  EXPECT_EQ(CMPI_RC_ERR_ACCESS_DENIED, CBDeleteInstance(mb, ctx, op).rc);
  CBExecQuery(mb, ctx, op, "SELECT * FROM QRX_Switch", "WQL", &rc);
  CBEnumInstances(mb, ctx, op, nullptr, &rc);
  CBAssociators(mb, ctx, op, "A", "R", "Role", "RRole", nullptr, &rc);
  CBAssociatorNames(mb, ctx, op, "A", "R", "Role", "RRole", &rc);
  CBReferences(mb, ctx, op, "RC", "Role", nullptr, &rc);
  CBReferenceNames(mb, ctx, op, "RC", "Role", &rc);
  CMPIArgs* in = broker.newArgs();
  CMPIArgs* out = broker.newArgs();
  CMPIValue v;
  v.uint32 = 21;
  CMAddArg(in, "Count", &v, CMPI_uint32);
  CMPIData ret = CBInvokeMethod(mb, ctx, op, "Double", in, out, &rc);
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(CMPI_uint32, ret.type);
  EXPECT_EQ(42u, CMGetArg(out, "Doubled", nullptr).value.uint32);
  v.uint16 = 9;
  EXPECT_EQ(CMPI_RC_OK, CBSetProperty(mb, ctx, op, "Speed", &v, CMPI_uint16).rc);
  CBGetProperty(mb, ctx, op, "Speed", &rc);
  EXPECT_EQ(CMPI_RC_ERR_NO_SUCH_PROPERTY, rc.rc);

  EXPECT_EQ((std::vector<std::string>{
                "names QRX_Switch", "get Name", "create", "modify", "delete",
                "query WQL SELECT * FROM QRX_Switch", "instances in root/qrx",
                "associators A R Role RRole", "associatorNames RRole", "references RC",
                "referenceNames Role", "invoke Double", "set Speed=9/144", "getProperty Speed"}),
            handler.calls);

  // Arguments every up-call needs are checked before the handler sees them.
  handler.calls.clear();
  CBEnumInstances(mb, nullptr, op, nullptr, &rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  EXPECT_EQ("context is NULL or not from this broker", str(rc.msg));
  CBGetInstance(mb, ctx, nullptr, nullptr, &rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  CBCreateInstance(mb, ctx, op, nullptr, &rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  CBInvokeMethod(mb, ctx, op, nullptr, in, out, &rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  CBExecQuery(mb, ctx, op, "SELECT", nullptr, &rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  EXPECT_TRUE(handler.calls.empty());

  // A throwing handler becomes a failure status.
  handler.throwOnDelete = true;
  rc = CBDeleteInstance(mb, ctx, op);
  EXPECT_EQ(CMPI_RC_ERR_FAILED, rc.rc);
  EXPECT_EQ("handler broke", str(rc.msg));

  broker.setUpcallHandler(nullptr);
  CBGetProperty(mb, ctx, op, "Speed", &rc);
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, rc.rc);
}

TEST(BrokerServicesTest, IndicationsThreadsTypesMessagesAndLogs) {
  TestBroker broker;
  const CMPIBroker* mb = broker.broker();
  CMPIStatus rc;

  // Indications are recorded as copies.
  CMPIInstance* alert = broker.newInstance(broker.newObjectPath("root/qrx", "QRX_Alert"));
  CMSetProperty(alert, "Text", "port down", CMPI_chars);
  EXPECT_EQ(CMPI_RC_OK, CBDeliverIndication(mb, broker.context(), "root/interop", alert).rc);
  CMSetProperty(alert, "Text", "changed", CMPI_chars);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER,
            CBDeliverIndication(mb, broker.context(), nullptr, alert).rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER,
            CBDeliverIndication(mb, broker.context(), "root/interop", nullptr).rc);
  std::vector<cimhost::DeliveredIndication> delivered = broker.indications();
  ASSERT_EQ(1u, delivered.size());
  EXPECT_EQ("root/interop", delivered[0].nameSpace);
  EXPECT_EQ("port down", str(CMGetProperty(delivered[0].instance, "Text", nullptr).value.string));
  broker.clearIndications();
  EXPECT_TRUE(broker.indications().empty());

  // Threads attach with a context prepared from the caller's.
  CMPIContext* call = broker.newContext("root/qrx");
  CMPIContext* prepared = CBPrepareAttachThread(mb, call);
  ASSERT_NE(nullptr, prepared);
  EXPECT_NE(call, prepared);
  EXPECT_EQ("root/qrx",
            str(CMGetContextEntry(prepared, CMPIInitNameSpace, nullptr).value.string));
  EXPECT_EQ(nullptr, CBPrepareAttachThread(mb, nullptr));
  CMPIStatus attached = {CMPI_RC_ERR_FAILED, nullptr};
  std::thread worker([&] {
    attached = CBAttachThread(mb, prepared);
    EXPECT_EQ(1, broker.attachedThreads());
    EXPECT_EQ(CMPI_RC_OK, CBDetachThread(mb, prepared).rc);
  });
  worker.join();
  EXPECT_EQ(CMPI_RC_OK, attached.rc);
  EXPECT_EQ(0, broker.attachedThreads());
  EXPECT_EQ(CMPI_RC_ERR_FAILED, CBDetachThread(mb, prepared).rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, CBAttachThread(mb, nullptr).rc);

  // Types by function table, and text forms.
  CMPIObjectPath* op = broker.newObjectPath("root/qrx", "QRX_Switch");
  CMAddKey(op, "Name", "sw1", CMPI_chars);
  CMPIInstance* inst = broker.newInstance(op);
  CMSetProperty(inst, "Name", "sw1", CMPI_chars);
  CMPIValue v;
  v.inst = alert;
  CMSetProperty(inst, "Alert", &v, CMPI_instance);
  CMPIArray* ports = CMNewArray(mb, 2, CMPI_uint16, nullptr);
  v.uint16 = 3;
  CMSetArrayElementAt(ports, 0, &v, CMPI_uint16);
  v.array = ports;
  CMSetProperty(inst, "Ports", &v, CMPI_uint16A);
  EXPECT_EQ(
      "instance of QRX_Switch\n{\n    Name = \"sw1\";\n    Alert = instance of QRX_Alert\n"
      "    {\n        Text = \"changed\";\n    };\n    Ports = {3, NULL};\n};",
      str(CDToString(mb, inst, &rc)));
  EXPECT_EQ("root/qrx:QRX_Switch.Name=\"sw1\"", str(CDToString(mb, op, nullptr)));
  EXPECT_EQ("plain", str(CDToString(mb, broker.newString("plain"), nullptr)));
  EXPECT_EQ("{3, NULL}", str(CDToString(mb, ports, nullptr)));
  CMPIDateTime* dt = CMNewDateTimeFromChars(mb, "20240301123045.000000+000", nullptr);
  EXPECT_EQ("20240301123045.000000+000", str(CDToString(mb, dt, nullptr)));
  EXPECT_EQ(nullptr, CDToString(mb, broker.context(), &rc));
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, rc.rc);

  EXPECT_TRUE(CDIsOfType(mb, inst, "CMPIInstance", &rc));
  EXPECT_FALSE(CDIsOfType(mb, inst, "CMPIObjectPath", nullptr));
  EXPECT_TRUE(CDIsOfType(mb, dt, "CMPIDateTime", nullptr));
  EXPECT_EQ("CMPIArray", str(CDGetType(mb, ports, nullptr)));
  EXPECT_EQ("CMPIContext", str(CDGetType(mb, broker.context(), nullptr)));
  CMPIString foreign = {const_cast<char*>("x"), nullptr};
  EXPECT_FALSE(CDIsOfType(mb, &foreign, "CMPIString", &rc));
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ(nullptr, CDGetType(mb, &foreign, &rc));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);

  // Default messages with typed arguments.
  CMPIString* msg = CMGetMessage(mb, "QRX1", "$0 has $1 ports ($2, $3, $4, $5, $6, $7), $9 stays",
                                 &rc,
                                 CMFmtArgs8(CMFmtChars("sw1"), CMFmtSint(-5), CMFmtUint(7),
                                            CMFmtSint64(-9000000000LL), CMFmtUint64(1ULL << 40),
                                            CMFmtReal(2.5), CMFmtBoolean(1),
                                            CMFmtString(broker.newString("str"))));
  EXPECT_EQ(CMPI_RC_OK, rc.rc);
  EXPECT_EQ("sw1 has -5 ports (7, -9000000000, 1099511627776, 2.5, true, str), $9 stays",
            str(msg));
  EXPECT_EQ(nullptr, mb->eft->getMessage(mb, "QRX1", "$0", &rc, 1, CMPI_dateTime, nullptr));
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, rc.rc);
  CMPIMsgFileHandle file = nullptr;
  EXPECT_EQ(CMPI_RC_OK, CMOpenMessageFile(mb, "qrx.msg", &file).rc);
  EXPECT_EQ("port 4", str(CMGetMessage2(mb, "QRX2", file, "port $0", &rc,
                                        CMFmtArgs1(CMFmtUint(4)))));
  EXPECT_EQ(CMPI_RC_OK, CMCloseMessageFile(mb, file).rc);

  // Log and trace entries.
  EXPECT_EQ(CMPI_RC_OK, CMLogMessage(mb, CMPI_SEV_WARNING, "QRX9", "disk full", nullptr).rc);
  EXPECT_EQ(CMPI_RC_OK, CMTraceMessage(mb, CMPI_LEV_VERBOSE, "zoning", nullptr, msg).rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER,
            CMTraceMessage(mb, CMPI_LEV_INFO, "zoning", nullptr, nullptr).rc);
  std::vector<LogEntry> log = broker.logEntries();
  ASSERT_EQ(2u, log.size());
  EXPECT_EQ(LogEntry::Kind::Message, log[0].kind);
  EXPECT_EQ(CMPI_SEV_WARNING, log[0].level);
  EXPECT_EQ("QRX9", log[0].source);
  EXPECT_EQ("disk full", log[0].text);
  EXPECT_EQ(LogEntry::Kind::Trace, log[1].kind);
  EXPECT_EQ("zoning", log[1].source);
  EXPECT_EQ(str(msg), log[1].text);
  broker.clearLog();
  EXPECT_TRUE(broker.logEntries().empty());

  CMPIArray* projection = ports;
  EXPECT_EQ(nullptr, CMNewSelectExp(mb, "SELECT * FROM X", "WQL", &projection, &rc));
  EXPECT_EQ(CMPI_RC_ERR_NOT_SUPPORTED, rc.rc);
  EXPECT_EQ(nullptr, projection);
}

// Thread body for the extended-services test: bumps a counter under the
// broker's mutex and signals.
struct Shared {
  const CMPIBroker* mb;
  CMPI_MUTEX_TYPE mutex;
  CMPI_COND_TYPE cond;
  int counter = 0;
};

void* bump(void* ipShared) {
  Shared* shared = static_cast<Shared*>(ipShared);
  shared->mb->xft->lockMutex(shared->mutex);
  ++shared->counter;
  shared->mb->xft->signalCondition(shared->cond);
  shared->mb->xft->unlockMutex(shared->mutex);
  return ipShared;
}

int gOnceRuns = 0;
void onceInit() { ++gOnceRuns; }

TEST(BrokerServicesTest, ExtendedServicesRunOnPosixThreads) {
  TestBroker broker;
  const CMPIBroker* mb = broker.broker();
  const CMPIBrokerExtFT* x = mb->xft;

  char* name = x->resolveFileName("qrxsmis");
  EXPECT_STREQ("libqrxsmis.so", name);
  std::free(name);

  Shared shared{mb, x->newMutex(0), x->newCondition(0)};
  ASSERT_NE(nullptr, shared.mutex);
  CMPI_THREAD_TYPE thread = x->newThread(bump, &shared, 0);
  ASSERT_NE(nullptr, thread);
  x->lockMutex(shared.mutex);
  while (shared.counter == 0) EXPECT_EQ(0, x->condWait(shared.cond, shared.mutex));
  x->lockMutex(shared.mutex);  // recursive
  x->unlockMutex(shared.mutex);
  x->unlockMutex(shared.mutex);
  void* result = nullptr;
  EXPECT_EQ(0, x->joinThread(thread, &result));
  EXPECT_EQ(&shared, result);
  EXPECT_EQ(1, shared.counter);
  x->destroyCondition(shared.cond);
  x->destroyMutex(shared.mutex);

  int once = 0;
  EXPECT_EQ(0, x->threadOnce(&once, onceInit));
  EXPECT_EQ(0, x->threadOnce(&once, onceInit));
  EXPECT_EQ(1, gOnceRuns);

  CMPI_THREAD_KEY_TYPE key;
  ASSERT_EQ(0, x->createThreadKey(&key, nullptr));
  EXPECT_EQ(nullptr, x->getThreadSpecific(key));
  EXPECT_EQ(0, x->setThreadSpecific(key, &once));
  EXPECT_EQ(&once, x->getThreadSpecific(key));
  EXPECT_EQ(0, x->destroyThreadKey(key));
  EXPECT_EQ(0, x->threadSleep(0));
}

TEST(ResultRecorderTest, RecordsCopiesAndCountsCallsAfterDone) {
  TestBroker broker;
  const CMPIBroker* mb = broker.broker();
  ResultRecorder recorder(broker);
  const CMPIResult* result = recorder.result();

  CMPIObjectPath* op = broker.newObjectPath("root/qrx", "QRX_Switch");
  CMAddKey(op, "Name", "sw1", CMPI_chars);
  CMPIInstance* inst = broker.newInstance(op);
  CMSetProperty(inst, "Name", "sw1", CMPI_chars);
  EXPECT_EQ(CMPI_RC_OK, CMReturnInstance(result, inst).rc);
  EXPECT_EQ(CMPI_RC_OK, CMReturnObjectPath(result, op).rc);
  CMPIValue v;
  v.uint32 = 7;
  EXPECT_EQ(CMPI_RC_OK, CMReturnData(result, &v, CMPI_uint32).rc);
  EXPECT_EQ(CMPI_RC_OK, CMReturnData(result, "text", CMPI_chars).rc);
  CMPIError* err = CMNewCMPIError(mb, "QRX", "QRX1", "failed", ErrorSevLow, ErrorProbCauseUnknown,
                                  CMPI_RC_ERR_FAILED, nullptr);
  EXPECT_EQ(CMPI_RC_OK, CMReturnError(result, err).rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_PARAMETER, CMReturnInstance(result, nullptr).rc);
  EXPECT_EQ(CMPI_RC_ERR_INVALID_DATA_TYPE, CMReturnData(result, &v, CMPI_filter).rc);

  // The recorder keeps copies: the provider's objects may change or go.
  CMSetProperty(inst, "Name", "changed", CMPI_chars);
  CMAddKey(op, "Name", "changed", CMPI_chars);
  CMRelease(inst);
  CMRelease(err);

  EXPECT_EQ(0, recorder.doneCount());
  EXPECT_EQ(CMPI_RC_OK, CMReturnDone(result).rc);
  EXPECT_EQ(1, recorder.doneCount());
  EXPECT_EQ(CMPI_RC_ERR_FAILED, CMReturnInstance(result, broker.newInstance(op)).rc);
  EXPECT_EQ(CMPI_RC_ERR_FAILED, CMReturnData(result, &v, CMPI_uint32).rc);
  EXPECT_EQ(CMPI_RC_ERR_FAILED, CMReturnDone(result).rc);
  EXPECT_EQ(3, recorder.callsAfterDone());
  EXPECT_EQ(1, recorder.doneCount());

  std::vector<const CMPIInstance*> instances = recorder.instances();
  ASSERT_EQ(1u, instances.size());
  EXPECT_EQ("sw1", str(CMGetProperty(instances[0], "Name", nullptr).value.string));
  std::vector<const CMPIObjectPath*> paths = recorder.objectPaths();
  ASSERT_EQ(1u, paths.size());
  EXPECT_EQ("root/qrx:QRX_Switch.Name=\"sw1\"", str(CMObjectPathToString(paths[0], nullptr)));
  std::vector<CMPIData> data = recorder.data();
  ASSERT_EQ(2u, data.size());
  EXPECT_EQ(CMPI_uint32, data[0].type);
  EXPECT_EQ(7u, data[0].value.uint32);
  EXPECT_EQ(CMPI_string, data[1].type);
  EXPECT_EQ("text", str(data[1].value.string));
  std::vector<const CMPIError*> errors = recorder.errors();
  ASSERT_EQ(1u, errors.size());
  EXPECT_EQ("QRX1", str(CMGetMessageID(errors[0], nullptr)));

  EXPECT_EQ(nullptr, CMClone(result, nullptr));
  recorder.clear();
  EXPECT_TRUE(recorder.instances().empty());
  EXPECT_TRUE(recorder.objectPaths().empty());
  EXPECT_TRUE(recorder.data().empty());
  EXPECT_TRUE(recorder.errors().empty());
  EXPECT_EQ(0, recorder.doneCount());
  EXPECT_EQ(0, recorder.callsAfterDone());
  EXPECT_EQ(CMPI_RC_OK, CMReturnObjectPath(result, op).rc);
  EXPECT_EQ(1u, recorder.objectPaths().size());
}

TEST(BrokerConcurrencyTest, ProviderThreadsShareOneBrokerAndRecorder) {
  TestBroker broker;
  const CMPIBroker* mb = broker.broker();
  ResultRecorder recorder(broker);
  const int kThreads = 8;
  const int kInstancesPerThread = 200;

  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      CMPIStatus rc = CBAttachThread(mb, broker.context());
      EXPECT_EQ(CMPI_RC_OK, rc.rc);
      for (int i = 0; i < kInstancesPerThread; ++i) {
        CMPIObjectPath* op = CMNewObjectPath(mb, "root/qrx", "QRX_Port", nullptr);
        CMPIValue v;
        v.uint32 = static_cast<CMPIUint32>(t * kInstancesPerThread + i);
        CMAddKey(op, "Id", &v, CMPI_uint32);
        CMPIInstance* inst = CMNewInstance(mb, op, nullptr);
        CMSetProperty(inst, "Id", &v, CMPI_uint32);
        CMReturnInstance(recorder.result(), inst);
        CMTraceMessage(mb, CMPI_LEV_INFO, "port", "made", nullptr);
        CMRelease(inst);  // op stays for the broker to free
      }
      EXPECT_EQ(CMPI_RC_OK, CBDetachThread(mb, broker.context()).rc);
    });
  }
  for (std::thread& thread : threads) thread.join();

  EXPECT_EQ(static_cast<size_t>(kThreads * kInstancesPerThread), broker.liveObjects());
  EXPECT_EQ(static_cast<size_t>(kThreads * kInstancesPerThread), broker.logEntries().size());
  EXPECT_EQ(0, broker.attachedThreads());
  std::vector<const CMPIInstance*> instances = recorder.instances();
  ASSERT_EQ(static_cast<size_t>(kThreads * kInstancesPerThread), instances.size());
  std::vector<bool> seen(instances.size(), false);
  for (const CMPIInstance* inst : instances) {
    const CMPIUint32 id = CMGetProperty(inst, "Id", nullptr).value.uint32;
    ASSERT_LT(id, seen.size());
    EXPECT_FALSE(seen[id]);
    seen[id] = true;
  }
}

}  // namespace
