// The daemon's records the backends build their objects from, read through
// the fabric cache. Each reader returns false after one error line naming
// the failed call (with `ipUnit`, the backend's source unit); "no
// connection" is logged by get_fabric_cache().
#ifndef QRX_COMMON_BACKEND_SWITCHRECORDS_H_
#define QRX_COMMON_BACKEND_SWITCHRECORDS_H_

#include <string>

#include "generated/smis_ipc/smis_ipc.h"

bool readSwitchName(const char* ipUnit, std::string& orName);
bool readSwitchInfo(const char* ipUnit, switch_info_t& orSwitch);
bool readSwitchProduct(const char* ipUnit, switch_product_info_t& orProduct);
bool readFabric(const char* ipUnit, fabric_info_t& orFabric);

#endif  // QRX_COMMON_BACKEND_SWITCHRECORDS_H_
