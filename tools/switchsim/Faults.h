// Faults injected into the simulated switch's answers, by function name.
//
// Thread-safety: FaultTable is safe to use from any thread.
#ifndef QRX_TOOLS_SWITCHSIM_FAULTS_H_
#define QRX_TOOLS_SWITCHSIM_FAULTS_H_

#include <mutex>
#include <string>
#include <vector>

namespace switchsim {

// Applies to every later request for `function` (e.g.
// "rs_api_get_switch_info").
struct Fault {
  std::string function;
  int status = 0;           // non-zero: answer this status with no payload
  unsigned delayMs = 0;     // wait this long before answering
  bool wrongReqId = false;  // answer with req_id + 1
  int remaining = -1;       // how many requests it applies to; -1 = until cleared
};

// "status=33025 delay-ms=0 wrong-req-id count=2"-style summary.
std::string describeFault(const Fault& irFault);

class FaultTable {
 public:
  // Sets the fault of irFault.function, replacing one set before.
  void add(const Fault& irFault);
  void clear();
  // The fault for the next request of `irFunction`, if one applies: true
  // with a copy in *opFault, and one use counted (a fault whose uses are
  // spent is dropped).
  bool take(const std::string& irFunction, Fault* opFault);
  std::vector<Fault> list() const;

 private:
  mutable std::mutex ivLock;
  std::vector<Fault> ivFaults;
};

}  // namespace switchsim

#endif  // QRX_TOOLS_SWITCHSIM_FAULTS_H_
