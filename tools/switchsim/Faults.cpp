#include "tools/switchsim/Faults.h"

#include <algorithm>

namespace switchsim {

std::string describeFault(const Fault& irFault) {
  std::string text = irFault.function;
  if (irFault.status != 0) text += " status=" + std::to_string(irFault.status);
  if (irFault.delayMs != 0) text += " delay-ms=" + std::to_string(irFault.delayMs);
  if (irFault.wrongReqId) text += " wrong-req-id";
  if (irFault.remaining >= 0) text += " count=" + std::to_string(irFault.remaining);
  return text;
}

void FaultTable::add(const Fault& irFault) {
  std::lock_guard<std::mutex> lock(ivLock);
  for (Fault& fault : ivFaults) {
    if (fault.function == irFault.function) {
      fault = irFault;
      return;
    }
  }
  ivFaults.push_back(irFault);
}

void FaultTable::clear() {
  std::lock_guard<std::mutex> lock(ivLock);
  ivFaults.clear();
}

bool FaultTable::take(const std::string& irFunction, Fault* opFault) {
  std::lock_guard<std::mutex> lock(ivLock);
  auto it = std::find_if(ivFaults.begin(), ivFaults.end(),
                         [&](const Fault& f) { return f.function == irFunction; });
  if (it == ivFaults.end() || it->remaining == 0) return false;
  *opFault = *it;
  if (it->remaining > 0 && --it->remaining == 0) ivFaults.erase(it);
  return true;
}

std::vector<Fault> FaultTable::list() const {
  std::lock_guard<std::mutex> lock(ivLock);
  return ivFaults;
}

}  // namespace switchsim
