// The calls the reply target makes, one of each shape of results, in the
// order its input picks them (a seed's first byte is an index here).
#ifndef QRX_TESTS_FUZZ_REPLYCALLS_H_
#define QRX_TESTS_FUZZ_REPLYCALLS_H_

#include <cstddef>
#include <functional>

#include "generated/smis_ipc/smis_ipc_client.h"

namespace qrxfuzz {

using ReplyCall = std::function<int(rs_api_client&)>;

inline const ReplyCall kReplyCalls[] = {
    [](rs_api_client& c) { software_info_t r; return c.get_software_info(r); },
    [](rs_api_client& c) { fabric_info_t r; return c.get_fabric_info(r); },
    [](rs_api_client& c) { string_t r; return c.get_switch_name(r); },
    [](rs_api_client& c) { switch_info_t r; return c.get_switch_info(r); },
    [](rs_api_client& c) { string_tA r; return c.get_switch_fc_port_names(r); },
    [](rs_api_client& c) { switch_fc_port_info_tA r; return c.get_switch_fc_port_info(r); },
    [](rs_api_client& c) { switch_fc_port_stat_tA r; return c.get_switch_fc_port_stat(r); },
    [](rs_api_client& c) { node_fc_port_info_tA r; return c.get_node_fc_port_info(r); },
    [](rs_api_client& c) { protocol_endpoint_info_tA r; return c.get_protocol_endpoint_info(r); },
    [](rs_api_client& c) { switch_product_info_t r; return c.get_switch_product_info(r); },
    [](rs_api_client& c) {
      zone_tA zones;
      alias_tA aliases;
      zoneset_tA sets;
      return c.session_start("zs", zones, aliases, sets);
    },
    [](rs_api_client& c) { return c.session_end("zs"); },
    [](rs_api_client& c) { zone_service_data_t r; return c.get_zone_service_data("zs", r); },
    [](rs_api_client& c) { zone_capabilities_data_t r; return c.get_zone_capabilities_data("zs", r); },
    [](rs_api_client& c) { zone_member_data_tA r; return c.get_all_zone_members("zs", r); },
    [](rs_api_client& c) { zoneset_t r; return c.get_active_zone_set("zs", r); },
};
constexpr std::size_t kReplyCallCount = sizeof kReplyCalls / sizeof kReplyCalls[0];

}  // namespace qrxfuzz

#endif  // QRX_TESTS_FUZZ_REPLYCALLS_H_
