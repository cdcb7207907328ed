#include "common/backend/AttachedNodes.h"

#include <set>
#include <string>

#include "common/backend/BackendStart.h"

namespace {

// Calls `ipAsk(cache, physical port name, answer)` for every port of the
// switch and hands each answer to `ipTake`.
template <class AnswerT, class AskT, class TakeT>
bool perSwitchPort(AskT ipAsk, TakeT ipTake) {
  FabricCache* cache = get_fabric_cache();
  if (cache == nullptr) return false;
  switch_fc_port_info_tA ports;
  if (cache->get_switch_fc_port_info(ports) != 0) return false;
  for (const switch_fc_port_info_t& port : ports) {
    AnswerT answer;
    if (ipAsk(*cache, port.name, answer) != 0) return false;
    ipTake(answer);
  }
  return true;
}

}  // namespace

// The cache's own attached-node calls translate a client's port name; the
// physical names go to the daemon as they are, through the plain client.
bool readAttachedNodeNames(string_tA& orNames) {
  std::set<std::string> seen(orNames.begin(), orNames.end());
  return perSwitchPort<string_tA>(
      [](FabricCache& irCache, const std::string& irPort, string_tA& orAnswer) {
        return irCache.rs_api_client_mq::get_attached_node_names(irPort, orAnswer);
      },
      [&](const string_tA& irAnswer) {
        for (const std::string& name : irAnswer) {
          if (seen.insert(name).second) orNames.push_back(name);
        }
      });
}

bool readAttachedNodePorts(node_fc_port_info_tA& orPorts) {
  std::set<std::string> seen;
  for (const node_fc_port_info_t& port : orPorts) seen.insert(port.name);
  return perSwitchPort<node_fc_port_info_tA>(
      [](FabricCache& irCache, const std::string& irPort, node_fc_port_info_tA& orAnswer) {
        return irCache.rs_api_client_mq::get_attached_node_fc_port_info(irPort, orAnswer);
      },
      [&](const node_fc_port_info_tA& irAnswer) {
        for (const node_fc_port_info_t& port : irAnswer) {
          if (seen.insert(port.name).second) orPorts.push_back(port);
        }
      });
}
