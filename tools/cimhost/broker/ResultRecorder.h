// cimhost::ResultRecorder: a CMPIResult that records what a provider
// returns through it, for tests and the command-line host to read.
//
// Everything recorded is a deep copy owned by the recorder (the provider's
// objects may go away); the accessors return the recorded items in the
// order they arrived, valid until clear() or the recorder's end. A
// provider must not return anything after returnDone(): such calls
// (another returnDone() included) are counted in callsAfterDone(), not
// recorded, and answered with CMPI_RC_ERR_FAILED. NULL or foreign objects
// are answered with CMPI_RC_ERR_INVALID_PARAMETER and not recorded.
//
// The result's function table follows the broker's mode (returnError is
// NULL in BrokerMode::Cmpi100). Thread-safe; must not outlive its broker.
#ifndef QRX_TOOLS_CIMHOST_BROKER_RESULTRECORDER_H_
#define QRX_TOOLS_CIMHOST_BROKER_RESULTRECORDER_H_

#include <memory>
#include <vector>

#include "cmpift.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace cimhost {

class EncResult;

class ResultRecorder {
 public:
  explicit ResultRecorder(TestBroker& irBroker);
  ~ResultRecorder();

  ResultRecorder(const ResultRecorder&) = delete;
  ResultRecorder& operator=(const ResultRecorder&) = delete;

  // The result to hand to the provider.
  const CMPIResult* result() const;

  std::vector<const CMPIInstance*> instances() const;  // returnInstance()
  std::vector<const CMPIObjectPath*> objectPaths() const;  // returnObjectPath()
  std::vector<CMPIData> data() const;  // returnData(), with the stored type
  std::vector<const CMPIError*> errors() const;  // returnError()
  int doneCount() const;  // returnDone() calls before the first one, i.e. 0 or 1
  int callsAfterDone() const;

  // Forgets everything recorded and the done state.
  void clear();

 private:
  std::unique_ptr<EncResult> ivResult;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_RESULTRECORDER_H_
