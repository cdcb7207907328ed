// cimhost::EncResult: the recording CMPIResult behind ResultRecorder.
//
// Each returnX() stores a deep copy of what it gets (belonging to the
// broker, owned by the result, not registered). returnDone() is counted.
// Anything returned after the first returnDone() (a second returnDone()
// included) is counted as a call after done, not stored, and answered with
// CMPI_RC_ERR_FAILED. NULL or foreign objects are
// CMPI_RC_ERR_INVALID_PARAMETER and are not stored. release() does nothing
// (the recorder owns the result) and clone() is CMPI_RC_ERR_NOT_SUPPORTED.
// Thread-safe.
#ifndef QRX_TOOLS_CIMHOST_BROKER_RESULTS_H_
#define QRX_TOOLS_CIMHOST_BROKER_RESULTS_H_

#include <memory>
#include <mutex>
#include <vector>

#include "tools/cimhost/broker/EncObject.h"
#include "tools/cimhost/broker/Errors.h"
#include "tools/cimhost/broker/Instances.h"
#include "tools/cimhost/broker/ObjectPaths.h"
#include "tools/cimhost/broker/Values.h"

namespace cimhost {

class EncResult : public Encapsulated<EncResult, CMPIResult, CMPIResultFT> {
 public:
  static std::unique_ptr<EncResult> make(Core* ipCore);

  Status returnData(const CMPIValue* ipValue, CMPIType ipType);
  Status returnInstance(const CMPIInstance* ipInstance);
  Status returnObjectPath(const CMPIObjectPath* ipPath);
  Status returnDone();
  Status returnError(const CMPIError* ipError);

  // Snapshots of what was recorded, in order; the pointers stay valid
  // until clear() or the result's end.
  std::vector<const CMPIInstance*> instances() const;
  std::vector<const CMPIObjectPath*> objectPaths() const;
  std::vector<CMPIData> data() const;
  std::vector<const CMPIError*> errors() const;
  int doneCount() const;
  int callsAfterDone() const;

  void clear();

  std::unique_ptr<EncObject> copyTo(Core*) const override { return nullptr; }

  static const CMPIResultFT* table(const Core* ipCore);
  static bool isOwnTable(const CMPIResultFT* ipFt);

 private:
  explicit EncResult(Core* ipCore) : Encapsulated(ipCore) {}

  // With ivMutex held: counts and refuses a call made after returnDone().
  bool refuseAfterDone(Status* opStatus);

  mutable std::mutex ivMutex;
  std::vector<std::unique_ptr<EncInstance>> ivInstances;
  std::vector<std::unique_ptr<EncObjectPath>> ivPaths;
  std::vector<Value> ivData;
  std::vector<std::unique_ptr<EncError>> ivErrors;
  int ivDone = 0;
  int ivAfterDone = 0;
};

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_BROKER_RESULTS_H_
