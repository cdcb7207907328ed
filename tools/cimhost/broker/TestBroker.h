// cimhost::TestBroker: an in-process CMPI broker for unit tests and the
// command-line CIM host.
//
// A TestBroker owns a CMPIBroker (broker()) with the broker, encapsulated-
// type, extended and memory function tables, and a default CMPIContext
// (context()). Hand both to a provider's factory and call its MI functions
// with a ResultRecorder's result. Typical use:
//
//   cimhost::ClassHierarchy classes;
//   std::string error;
//   if (!classes.loadMofFile("cim_hierarchy.mof", &error)) ...;
//   cimhost::TestBroker broker(&classes);
//   CMPIInstanceMI* mi = QRX_Switch_Create_InstanceMI(broker.broker(), broker.context(), &rc);
//   cimhost::ResultRecorder result(broker);
//   CMPIObjectPath* op = broker.newObjectPath("root/qrx", "QRX_Switch");
//   mi->ft->enumerateInstances(mi, broker.context(), result.result(), op, nullptr);
//   for (const CMPIInstance* inst : result.instances()) ...
//
// Modes. BrokerMode::Cmpi200 is a CMPI 2.0 broker. BrokerMode::Cmpi100
// looks like an object manager that implements only CMPI 1.0: brokerVersion
// and every table's ftVersion are 100, and the 2.0 additions are NULL:
// broker->mft; eft->newCMPIError, openMessageFile, closeMessageFile and
// getMessage2; CMPIInstanceFT::setPropertyWithOrigin; CMPIResultFT::
// returnError; CMPIObjectPathFT::getClassQualifier, getPropertyQualifier,
// getMethodQualifier and getParameterQualifier. The extended table (file
// names, threads, thread keys, mutexes, conditions) is complete in both
// modes: CMPI 1.0 already defines all of it.
//
// Memory. Like an object manager at the end of a request, the broker keeps
// every object it hands out (from the factories, clones, getters that
// return new strings or paths, status messages) in a registry: CMRelease()
// frees one at once, the memory table's mark/release frees those made
// since a mark, and the destructor frees everything still alive. Provider
// code therefore never needs to free what it got. liveObjects() counts the
// registered objects. Objects inside other objects (a property's string,
// an array element) belong to their container; the default context,
// delivered indications and ResultRecorder contents are not registered.
//
// Thread-safety: the broker may be used by several provider threads at
// once (registry, log, indications, attach counts and the default context
// are locked). An encapsulated object itself is not locked: one thread at a
// time, except contexts. A ResultRecorder must not outlive its broker.
#ifndef QRX_TOOLS_CIMHOST_BROKER_TESTBROKER_H_
#define QRX_TOOLS_CIMHOST_BROKER_TESTBROKER_H_

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "cmpift.h"
#include "tools/cimhost/broker/ClassHierarchy.h"
#include "tools/cimhost/broker/UpcallHandler.h"

namespace cimhost {

class Core;

enum class BrokerMode { Cmpi200, Cmpi100 };

// One logMessage() or trace() call.
struct LogEntry {
  enum class Kind { Message, Trace };

  Kind kind;
  int level;           // the severity (Message) or level (Trace)
  std::string source;  // the message id (Message) or component (Trace); "" for NULL
  std::string text;    // the text, else the CMPIString's characters
};

// One deliverIndication() call.
struct DeliveredIndication {
  std::string nameSpace;
  const CMPIInstance* instance;  // a copy owned by the broker
};

class TestBroker {
 public:
  // `ipHierarchy` (may be NULL: no class is known) must outlive the broker.
  explicit TestBroker(const ClassHierarchy* ipHierarchy = nullptr,
                      BrokerMode ipMode = BrokerMode::Cmpi200);

  // Frees every object still registered.
  ~TestBroker();

  TestBroker(const TestBroker&) = delete;
  TestBroker& operator=(const TestBroker&) = delete;

  const CMPIBroker* broker() const;
  BrokerMode mode() const;
  const ClassHierarchy* hierarchy() const;

  // The default context: CMPIInvocationFlags (uint32) 0, nothing else.
  const CMPIContext* context() const;

  // A context for one call: CMPIInitNameSpace (string) `ipNameSpace` and
  // CMPIInvocationFlags (uint32) `ipFlags`. Registered like every object.
  CMPIContext* newContext(const char* ipNameSpace, CMPIFlags ipFlags = 0);

  // The broker's own factories (eft->newObjectPath, ...), for callers that
  // build inputs. Each returns NULL with *opRc set on bad input.
  CMPIObjectPath* newObjectPath(const char* ipNameSpace, const char* ipClass,
                                CMPIStatus* opRc = nullptr);
  CMPIInstance* newInstance(const CMPIObjectPath* ipPath, CMPIStatus* opRc = nullptr);
  CMPIArgs* newArgs(CMPIStatus* opRc = nullptr);
  CMPIString* newString(const char* ipText, CMPIStatus* opRc = nullptr);

  // An enumeration over a copy of the elements of `ipItems` (made by this
  // broker), e.g. for an UpcallHandler to return.
  CMPIEnumeration* newEnumeration(const CMPIArray* ipItems, CMPIStatus* opRc = nullptr);

  // Serves the up-calls; NULL (the default) makes them NOT_SUPPORTED. Not
  // owned; must outlive its use.
  void setUpcallHandler(UpcallHandler* ipHandler);

  // Registered encapsulated objects, and registered cmpiMalloc blocks.
  size_t liveObjects() const;
  size_t liveAllocations() const;

  // What providers logged and traced, oldest first.
  std::vector<LogEntry> logEntries() const;
  void clearLog();
  // Also writes each entry to standard error (off by default).
  void setLogToStderr(bool ipOn);

  // Delivered indications, oldest first; the instances live until
  // clearIndications() or the broker's end.
  std::vector<DeliveredIndication> indications() const;
  void clearIndications();

  // Threads attached (attachThread) and not yet detached.
  int attachedThreads() const;

 private:
  std::unique_ptr<Core> ivCore;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_TESTBROKER_H_
