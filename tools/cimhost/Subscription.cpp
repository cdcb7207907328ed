#include "tools/cimhost/Subscription.h"

#include <strings.h>

#include <chrono>
#include <cstdlib>
#include <sstream>
#include <thread>
#include <vector>

#include "cmpimacs.h"
#include "tools/cimhost/InstanceText.h"
#include "tools/cimhost/ProviderLibrary.h"
#include "tools/cimhost/StatusText.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace cimhost {

namespace {

// A filter as the object manager hands it to activateFilter: only its
// query text can be read (getString); the host does not evaluate it.
class QueryFilter {
 public:
  QueryFilter(const CMPIBroker* ipBroker, const std::string& irQuery)
      : ivEnc{this, &table()}, ivBroker(ipBroker), ivQuery(irQuery) {}
  QueryFilter(const QueryFilter&) = delete;
  QueryFilter& operator=(const QueryFilter&) = delete;

  const CMPISelectExp* cmpi() const { return &ivEnc; }

 private:
  static CMPIString* getString(const CMPISelectExp* ipSe, CMPIStatus* opRc) {
    const QueryFilter* self = static_cast<const QueryFilter*>(ipSe->hdl);
    return CMNewString(self->ivBroker, self->ivQuery.c_str(), opRc);
  }
  static CMPIStatus notSupported() { return CMPIStatus{CMPI_RC_ERR_NOT_SUPPORTED, nullptr}; }
  static CMPIStatus release(CMPISelectExp*) { return notSupported(); }
  static CMPISelectExpFT& table() {
    static CMPISelectExpFT ft = {200, release, nullptr, nullptr, getString,
                                 nullptr, nullptr, nullptr};
    return ft;
  }

  CMPISelectExp ivEnc;
  const CMPIBroker* ivBroker;
  std::string ivQuery;
};

int failed(std::ostream& irErr, const std::string& irCall, const CMPIStatus& irStatus) {
  irErr << "qrx-cim: " << failureText(irCall, irStatus.rc, statusMessage(irStatus)) << "\n";
  return kExitFailed;
}

}  // namespace

std::string queryFromClass(const std::string& irQuery) {
  std::istringstream words(irQuery);
  std::string word;
  while (words >> word) {
    if (strcasecmp(word.c_str(), "FROM") != 0) continue;
    std::string name;
    if (!(words >> name)) return "";
    const size_t end = name.find_first_not_of(
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_");
    return name.substr(0, end);
  }
  return "";
}

int runSubscription(const Invocation& irInvocation, Session& irSession, std::ostream& irOut,
                    std::ostream& irErr) {
  const std::string& query = irInvocation.arguments.at(0);
  const std::string className = queryFromClass(query);
  if (className.empty()) {
    irErr << "qrx-cim: the query names no class after FROM\n";
    return kExitUsage;
  }
  std::string error;
  CMPIIndicationMI* mi = irSession.library.indicationMI(className, &error);
  if (mi == nullptr) {
    irErr << "qrx-cim: " << error << "\n";
    return kExitLoad;
  }
  TestBroker& broker = irSession.broker;
  CMPIContext* context = broker.newContext(irInvocation.nameSpace.c_str());
  CMPIObjectPath* classPath = broker.newObjectPath(irInvocation.nameSpace.c_str(),
                                                   className.c_str());
  QueryFilter filter(broker.broker(), query);
  broker.clearIndications();

  CMPIStatus rc = mi->ft->activateFilter(mi, context, filter.cmpi(), className.c_str(),
                                         classPath, 1);
  if (rc.rc != CMPI_RC_OK) return failed(irErr, "ActivateFilter", rc);
  rc = mi->ft->enableIndications(mi, context);
  if (rc.rc != CMPI_RC_OK) {
    mi->ft->deActivateFilter(mi, context, filter.cmpi(), className.c_str(), classPath, 1);
    return failed(irErr, "EnableIndications", rc);
  }
  int status = kExitOk;
  if (irInvocation.thenCommand) {
    const int shell = std::system(irInvocation.thenCommand->c_str());
    if (shell != 0) {
      irErr << "qrx-cim: --then command failed: " << *irInvocation.thenCommand << "\n";
      status = kExitFailed;
    }
  }
  const auto deadline = std::chrono::steady_clock::now() +
                        std::chrono::milliseconds(static_cast<long long>(
                            irInvocation.waitSeconds * 1000));
  while (std::chrono::steady_clock::now() < deadline &&
         (irInvocation.count == 0 || broker.indications().size() < irInvocation.count)) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  rc = mi->ft->disableIndications(mi, context);
  if (rc.rc != CMPI_RC_OK) status = failed(irErr, "DisableIndications", rc);
  rc = mi->ft->deActivateFilter(mi, context, filter.cmpi(), className.c_str(), classPath, 1);
  if (rc.rc != CMPI_RC_OK) status = failed(irErr, "DeActivateFilter", rc);

  const std::vector<DeliveredIndication> delivered = broker.indications();
  if (irInvocation.json) {
    Json all = Json::array();
    for (const DeliveredIndication& indication : delivered) {
      all.push_back({{"nameSpace", indication.nameSpace},
                     {"indication", instanceJson(indication.instance)}});
    }
    irOut << all.dump(2) << "\n";
  } else {
    for (size_t i = 0; i < delivered.size(); ++i) {
      irOut << (i > 0 ? "\n" : "") << "// delivered in " << delivered[i].nameSpace << "\n"
            << instanceMof(delivered[i].instance);
    }
  }
  broker.clearIndications();
  if (delivered.size() < irInvocation.count) {
    irErr << "qrx-cim: " << delivered.size() << " of " << irInvocation.count
          << " indications within " << irInvocation.waitSeconds << " s\n";
    status = kExitFailed;
  }
  return status;
}

}  // namespace cimhost
