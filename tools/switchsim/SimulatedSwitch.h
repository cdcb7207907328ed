// The switch's answers to the 47 remote calls, computed from a FabricModel.
// Each operation returns 0 with its results, or a status of Status.h and
// leaves its results untouched. Requests never send events: only the
// owner's explicit changes (Simulator::applyEvent) do.
//
// Lookups: a zone service name other than the switch's name, a switch
// port, zone set, zone or alias name that does not exist gives
// kStatusNotFound. get_fabric_info gives kStatusNotAvailable while the
// model has no fabric. Attached-node calls list the logged-in node ports of
// one switch port (see FabricModel.h). get_all_zone_members and
// get_all_alias_members list each distinct member once, in first-seen
// order. get_active_zone_set with no active zone set answers 0 with an
// empty name and no zones.
//
// Zoning outside a session: the create/delete/add/remove calls edit the
// defined configuration at once (ZoningState.h). activate_zone_set with a
// non-zero flag copies a defined zone set into the active one; with 0 it
// deactivates the named zone set, which must be the active one. The active
// set is a copy: later edits of its zone set take effect at the next
// activation, but a zone deleted from the definitions leaves it too.
//
// Sessions: session_start opens the one session (kStatusSessionOpen if
// one is open) and returns the defined configuration. Changes are staged:
// session_update applies each batch to the session's copy, all or nothing;
// session_end makes the copy the defined configuration; session_terminate
// discards it; both close the session. While a session is open, queries
// answer from the defined configuration as it was, direct edits are
// refused with kStatusSessionOpen, and activation still works.
// get_zone_service_data reports session_state 2 (started) while a session
// is open and 3 (ended) otherwise, and the last requested state (2 start,
// 3 end, 4 terminate; 5 before any).
//
// Thread-safety: none; the owner serialises calls and model access.
#ifndef QRX_TOOLS_SWITCHSIM_SIMULATEDSWITCH_H_
#define QRX_TOOLS_SWITCHSIM_SIMULATEDSWITCH_H_

#include <cstdint>
#include <functional>
#include <string>

#include "generated/smis_ipc/smis_ipc_client.h"
#include "tools/switchsim/FabricModel.h"

namespace switchsim {

class SimulatedSwitch : public rs_api_client {
 public:
  // Answers from `irModel`, which must outlive this object.
  explicit SimulatedSwitch(FabricModel& irModel) : ivrModel(irModel) {}

  bool sessionOpen() const { return ivSessionOpen; }
  // A remark on the last failed call, for the request log ("" if none);
  // reading it clears it.
  std::string takeNote();

  int get_software_info(software_info_t& Software) override;
  int get_fabric_info(fabric_info_t& Fabric) override;
  int get_switch_name(string_t& Name) override;
  int get_switch_info(switch_info_t& SwitchInfo) override;
  int get_switch_fc_port_names(string_tA& SwitchFcPortNames) override;
  int get_switch_fc_port_info(switch_fc_port_info_tA& SwitchFcPortInfo) override;
  int get_switch_fc_port_stat(switch_fc_port_stat_tA& SwitchFcPortStat) override;
  int get_node_names(string_tA& NodeNames) override;
  int get_node_fc_port_names(string_tA& NodeFcPortNames) override;
  int get_node_fc_port_info(node_fc_port_info_tA& NodeFcPortInfo) override;
  int get_protocol_endpoint_names(string_tA& EndPointNames) override;
  int get_protocol_endpoint_info(protocol_endpoint_info_tA& EndPointInfo) override;
  int get_switch_product_info(switch_product_info_t& SwitchProductInfo) override;
  int get_attached_node_names(string_t SwitchPortName, string_tA& NodeNames) override;
  int get_attached_node_fc_port_names(string_t SwitchPortName,
                                      string_tA& NodeFcPortNames) override;
  int get_attached_node_fc_port_info(string_t SwitchPortName,
                                     node_fc_port_info_tA& NodeFcPortInfo) override;
  int session_start(string_t ZoneServiceName, zone_tA& ZoneList, alias_tA& AliasList,
                    zoneset_tA& ZonesetList) override;
  int session_terminate(string_t ZoneServiceName) override;
  int session_update(string_t ZoneServiceName, zone_operation_tA ZoneOpList) override;
  int session_end(string_t ZoneServiceName) override;
  int get_zone_service_data(string_t ZoneServiceName,
                            zone_service_data_t& ZoneServiceData) override;
  int get_zone_capabilities_data(string_t ZoneServiceName,
                                 zone_capabilities_data_t& ZoneCapabilitiesData) override;
  int get_zone_set_names(string_t ZoneServiceName, string_tA& ZoneSetNames) override;
  int get_zone_names(string_t ZoneServiceName, string_tA& ZoneNames) override;
  int get_zone_names_in_zone_set(string_t ZoneServiceName, string_t ZoneSetName,
                                 string_tA& ZoneNames) override;
  int get_zone_alias_names(string_t ZoneServiceName, string_tA& ZoneAliasNames) override;
  int get_zone_alias_names_in_zone(string_t ZoneServiceName, string_t ZoneName,
                                   string_tA& ZoneAliasNames) override;
  int get_all_zone_members(string_t ZoneServiceName, zone_member_data_tA& ZoneMemberData) override;
  int get_all_alias_members(string_t ZoneServiceName,
                            zone_member_data_tA& ZoneMemberData) override;
  int get_zone_members_in_zone(string_t ZoneServiceName, string_t ZoneName,
                               zone_member_data_tA& ZoneMemberData) override;
  int get_zone_members_in_zone_alias(string_t ZoneServiceName, string_t AliasName,
                                     zone_member_data_tA& ZoneMemberData) override;
  int get_active_zone_set(string_t ZoneServiceName, zoneset_t& ZoneSet) override;
  int create_zone_set(string_t ZoneServiceName, string_t ZoneSetName) override;
  int create_zone(string_t ZoneServiceName, string_t ZoneName) override;
  int create_zone_alias(string_t ZoneServiceName, string_t ZoneAliasName) override;
  int delete_zone_set(string_t ZoneServiceName, string_t ZoneSetName) override;
  int delete_zone(string_t ZoneServiceName, string_t ZoneName) override;
  int delete_zone_alias(string_t ZoneServiceName, string_t ZoneAliasName) override;
  int add_zone(string_t ZoneServiceName, string_t ZoneSetName, string_t ZoneName) override;
  int add_zone_alias(string_t ZoneServiceName, string_t ZoneName,
                     string_t ZoneAliasName) override;
  int add_zone_member(string_t ZoneServiceName, string_t ZoneName,
                      zone_member_data_t ZoneMemberData) override;
  int add_alias_member(string_t ZoneServiceName, string_t AliasName,
                       zone_member_data_t ZoneMemberData) override;
  int remove_zone(string_t ZoneServiceName, string_t ZoneSetName, string_t ZoneName) override;
  int remove_zone_alias(string_t ZoneServiceName, string_t ZoneName,
                        string_t ZoneAliasName) override;
  int remove_zone_member(string_t ZoneServiceName, string_t ZoneName,
                         zone_member_data_t ZoneMemberData) override;
  int remove_alias_member(string_t ZoneServiceName, string_t AliasName,
                          zone_member_data_t ZoneMemberData) override;
  int activate_zone_set(string_t ZoneServiceName, string_t ZoneSetName, cuint8 Activate) override;

 private:
  bool isService(const std::string& irName) const { return irName == ivrModel.switchInfo.name; }
  // Runs a direct edit of the defined configuration.
  int edit(const std::string& irService, const std::function<std::uint32_t(ZoneEditor&)>& irFn);
  // The logged-in node ports, optionally only those of one switch port.
  std::vector<const NodePort*> loggedIn(const std::string* ipSwitchPort) const;

  FabricModel& ivrModel;
  bool ivSessionOpen = false;
  ZoneConfig ivStaged;  // the session's copy
  std::uint16_t ivRequestedSessionState = 5;
  std::string ivNote;
};

}  // namespace switchsim

#endif  // QRX_TOOLS_SWITCHSIM_SIMULATEDSWITCH_H_
