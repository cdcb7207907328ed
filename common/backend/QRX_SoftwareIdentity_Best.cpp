// The switch's firmware: one instance for the running version.
#include "generated/scimbackend/QRX_SoftwareIdentity_Best.h"

#include <cstdlib>

#include "common/backend/BackendStart.h"
#include "common/base/trace.h"

namespace {

const char* const kUnit = "common/backend/QRX_SoftwareIdentity_Best";

// Up to four numbers of a version such as "7.4.0.29" (Major, Minor,
// Revision, Build); a part that is not a number ends the parse.
void parseVersion(const std::string& irVersion, cuint16* opParts[4]) {
  const char* cursor = irVersion.c_str();
  for (int i = 0; i < 4; ++i) {
    char* end = nullptr;
    const unsigned long value = std::strtoul(cursor, &end, 10);
    if (end == cursor || value > 0xFFFF) return;
    *opParts[i] = static_cast<cuint16>(value);
    if (*end != '.') return;
    cursor = end + 1;
  }
}

}  // namespace

bool QRX_SoftwareIdentity_Best::enumInstances(QRX_SoftwareIdentity_Array& out) {
  FabricCache* cache = get_fabric_cache();
  if (cache == nullptr) return false;
  software_info_t software;
  if (cache->get_software_info(software) != 0) {
    TRACE_ERROR(kUnit, "rs_vk_fc_get_software_info() failed\n");
    return false;
  }
  QRX_SoftwareIdentity identity;
  identity.InstanceID = "QRX:Firmware:" + software.version;
  identity.Name = "Switch firmware";
  identity.ElementName = "Switch firmware " + software.version;
  identity.VersionString = software.version;
  cuint16* parts[4] = {&identity.MajorVersion, &identity.MinorVersion, &identity.RevisionNumber,
                       &identity.BuildNumber};
  parseVersion(software.version, parts);
  identity.Classifications = {10};  // Firmware
  identity.OperationalStatus = {2};
  out.push_back(identity);
  return true;
}
