// FabricCache: the process's copy of what the switch daemon reports about
// the fabric, the switch, its ports and the active zone set.
//
// The cache is also the process's request client (it derives from
// rs_api_client_mq): backends ask it as they would ask the daemon, and the
// calls it overrides answer from the cache; every other call goes to the
// daemon. It is filled once by initCache() and changes afterwards only
// through the cacheAndRefresh operations (driven by daemon events), which
// say what kind of change they saw and keep the state from before it for
// the prev_ readers, and through refreshActiveZoneSet().
//
// Parts the first fill could not read are read again by the next reader
// that needs them (the switch with its ports and port name mapping, the
// active zone set, the fabric), so a daemon that failed once at start-up
// is not served as an empty switch for ever. A refresh whose read fails
// keeps the last good state and reports no change; only the daemon's own
// answer that the fabric is not there reports it deleted.
//
// Results are 0 or the daemon's non-zero status. One lock guards every
// member; operations ending in _nl expect it held. Lock order: the cache's
// lock before the request client's, never the other way round.
#ifndef QRX_COMMON_BACKEND_FABRICCACHE_H_
#define QRX_COMMON_BACKEND_FABRICCACHE_H_

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "common/backend/AwwpnMap.h"
#include "common/base/Mutex.h"
#include "generated/scimclasses/QRX_Fabric.h"
#include "generated/scimclasses/QRX_Switch.h"
#include "generated/scimclasses/QRX_SwitchFCPort.h"
#include "generated/smis_ipc/smis_ipc_client.h"

// Orders zone members by member type, then identifier.
struct zone_member_data_cmp {
  bool operator()(const zone_member_data_t& a, const zone_member_data_t& b) const;
};
typedef std::set<zone_member_data_t, zone_member_data_cmp> zone_member_set;

// What a cacheAndRefresh operation saw.
enum change_flag {
  CHANGE_FLAG_NONE = 0,  // no change, or the refresh failed
  CHANGE_FLAG_CREATE = 1,
  CHANGE_FLAG_MODIFY = 2,
  CHANGE_FLAG_DELETE = 3,
};

class FabricCache : public rs_api_client_mq {
 public:
  // What one refresh reads about the switch.
  struct switch_record {
    switch_info_t ivSwitchInfo;
    switch_product_info_t ivSwitchProductInfo;
    switch_fc_port_info_tA ivSwitchFcPortInfoList;
  };

  explicit FabricCache(fcbb::FramePipeIf& irFramePipe);
  ~FabricCache() override;
  FabricCache(const FabricCache&) = delete;
  FabricCache& operator=(const FabricCache&) = delete;

  // The first fill: fabric, switch with product and ports, active zone set,
  // the dummy port and the port name mapping. Failed reads are logged and
  // leave their part empty.
  void initCache();

  // Re-read one kind of object; the result is a change_flag. A port event
  // names the port by its port_index. Every port refresh of a port known
  // on either side reports a modification, even when nothing changed. A
  // switch refresh also brings the port name mapping up to date.
  int cacheAndRefreshFabric();
  int cacheAndRefreshSwitch();
  int cacheAndRefreshSwitchPort(int port_index);

  // Re-reads the active zone set and the members of each of its zones.
  void refreshActiveZoneSet();
  void clearAwwpnMap();

  // --- Calls answered from the cache (falling back to the daemon when the
  // cache has nothing); see the class comment. ---
  int get_fabric_info(fabric_info_t& Fabric) override;
  // Always asks the daemon; a fresh answer also refreshes the cached
  // switch's four address strings (no event announces an address change).
  int get_switch_info(switch_info_t& SwitchInfo) override;
  int get_switch_product_info(switch_product_info_t& SwitchProductInfo) override;
  // The cached switch record, without asking the daemon; 7 when none is cached.
  int cached_switch_info(switch_info_t& orSwitch);
  // The physical port list.
  int get_switch_fc_port_info(switch_fc_port_info_tA& SwitchFcPortInfo) override;
  // The cached physical port with `port_index`; 7 when there is none.
  int get_switch_fc_port_info(int port_index, switch_fc_port_info_t& orPort);
  // Asks the daemon; the result is 0 or -1.
  int get_switch_name(string_t& Name) override;
  // The daemon's endpoints, then one switch-side endpoint per mapped port.
  int get_protocol_endpoint_info(protocol_endpoint_info_tA& EndPointInfo) override;
  // The cached active zone set; the name argument is not compared.
  int get_active_zone_set(string_t ZoneServiceName, zoneset_t& ZoneSet) override;
  // Every member of the active zone `zone_name`, direct and through its
  // aliases; `orMembers` is left as it was for an unknown zone. Returns 0.
  int get_all_active_zone_members_in_zone(const std::string& zone_set_name,
                                          const std::string& zone_name,
                                          zone_member_set& orMembers);

  // The attached-node calls take a port name as a client sees it; the
  // daemon is asked with the physical port's name.
  int get_attached_node_names(string_t SwitchPortName, string_tA& NodeNames) override;
  int get_attached_node_fc_port_names(string_t SwitchPortName, string_tA& NodeFcPortNames) override;
  int get_attached_node_fc_port_info(string_t SwitchPortName,
                                     node_fc_port_info_tA& NodeFcPortInfo) override;

  // The ports as clients see them (see AwwpnMap). Return 0.
  int get_artificial_switch_fc_port_info(switch_fc_port_info_tA& orPorts);
  int get_artificial_switch_fc_port_names(std::vector<std::string>& orNames);
  std::uint64_t getNodewwn(std::uint64_t ipWwpn);
  std::uint64_t getITwwpn(std::uint64_t ipAwwpn);

  // The state before the last reported modification or deletion. Only to
  // be called after a cacheAndRefresh operation reported one; they assert
  // that the state exists. Return 0.
  int prev_fabric_info(fabric_info_t& orFabric);
  int prev_switch_info(switch_info_t& orSwitch);
  int prev_switch_fc_port_info(int port_index, switch_fc_port_info_t& orPort);

  // The CIM objects of the daemon's records.
  static void convertFabric(QRX_Fabric& orFabric, const fabric_info_t& irFabric);
  static void convertSwitch(QRX_Switch& orSwitch, const switch_info_t& irSwitch);
  static void convertSwitchFCPort(QRX_SwitchFCPort& orPort, const switch_fc_port_info_t& irPort,
                                  const std::string& irSwitchName);

  // Equality over the fields that make a change (null equals only null).
  static bool isEqualFabric(const fabric_info_t* a, const fabric_info_t* b);
  static bool isEqualSwitch(const switch_record* a, const switch_record* b);
  static bool isEqualSwitchPort(const switch_fc_port_info_t* a, const switch_fc_port_info_t* b);

 private:
  typedef std::map<std::string, std::unique_ptr<switch_record>> SwitchMap;

  // 0, or the failed read's result (logged); the record stays on failure.
  int refreshFabric_nl();
  // The switch, its product record and its ports, or null (logged).
  std::unique_ptr<switch_record> readSwitch_nl();
  // Adds the switch read now unless one of its name is cached; false
  // when the read failed.
  bool refreshSwitchAndPort_nl();
  void refreshActiveZoneSet_nl();
  // Read again what the first fill could not read (see the class comment).
  void healSwitch_nl();
  void healActiveZoneSet_nl();
  void fillDummySwitchFCPort();
  void initAwwpnMap();
  void updateAwwpnMap();
  // Brings the port name mapping to the current port list: updated while
  // valid, rebuilt otherwise (an empty list makes it invalid).
  void followPortList_nl();
  int getSwitchName_nl(std::string& orName);
  switch_record* currentSwitch_nl() const;
  std::string physicalPortName(const std::string& irName);

  std::unique_ptr<AwwpnMap> ivASwitchMap;
  switch_fc_port_info_t ivDummySwitchFCPort;
  fcbb::Mutex ivLock;
  std::unique_ptr<fabric_info_t> ivpFabricInfo;
  std::unique_ptr<fabric_info_t> ivpPrevFabricInfo;
  SwitchMap ivSwitchMap;
  SwitchMap ivPrevSwitchMap;
  zoneset_t ivActiveZoneSet;
  std::map<std::string, zone_member_set> ivActiveZone2MemberMap;
  bool ivFabricRead = false;         // a fabric read got through since the start
  bool ivActiveZoneSetRead = false;  // the last zone set refresh got through whole
};

#endif  // QRX_COMMON_BACKEND_FABRICCACHE_H_
