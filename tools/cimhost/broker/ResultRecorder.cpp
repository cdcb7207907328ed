#include "tools/cimhost/broker/ResultRecorder.h"

#include "tools/cimhost/broker/Core.h"
#include "tools/cimhost/broker/Results.h"

namespace cimhost {

ResultRecorder::ResultRecorder(TestBroker& irBroker)
    : ivResult(EncResult::make(Core::of(irBroker.broker()))) {}

ResultRecorder::~ResultRecorder() = default;

const CMPIResult* ResultRecorder::result() const { return ivResult->cmpi(); }

std::vector<const CMPIInstance*> ResultRecorder::instances() const {
  return ivResult->instances();
}

std::vector<const CMPIObjectPath*> ResultRecorder::objectPaths() const {
  return ivResult->objectPaths();
}

std::vector<CMPIData> ResultRecorder::data() const { return ivResult->data(); }

std::vector<const CMPIError*> ResultRecorder::errors() const { return ivResult->errors(); }

int ResultRecorder::doneCount() const { return ivResult->doneCount(); }

int ResultRecorder::callsAfterDone() const { return ivResult->callsAfterDone(); }

void ResultRecorder::clear() { ivResult->clear(); }

}  // namespace cimhost
