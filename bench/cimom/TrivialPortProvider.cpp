// A trivial instance provider for the object-manager benchmark: class
// QRX_BenchFCPort (the properties of a QRX_SwitchFCPort, qrx_bench.mof) with
// QRX_BENCH_INSTANCES instances (default 24), each a copy of one template
// port whose DeviceID is numbered. The template is the JSON object of one
// instance's properties as `qrx-cim --json ei QRX_SwitchFCPort` prints it,
// in the file QRX_BENCH_TEMPLATE; it is read once, and each property gets
// the type the object manager's class gives it (a property the class does
// not have is left out). So the object manager gets as many instances with
// the same properties as from the library, made with no switch, no cache
// and no glue: what serving them costs the object manager itself.
//
// Only enumerateInstances and enumerateInstanceNames are served; the rest
// answers CMPI_RC_ERR_NOT_SUPPORTED.
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cmpimacs.h"

namespace {

const char* const kClass = "QRX_BenchFCPort";

struct Property {
  std::string name;
  nlohmann::json value;
};

const CMPIBroker* gBroker = nullptr;
std::once_flag gLoaded;
std::vector<Property> gTemplate;
unsigned gInstances = 24;

void loadTemplate() {
  const char* count = std::getenv("QRX_BENCH_INSTANCES");
  if (count != nullptr) gInstances = static_cast<unsigned>(std::strtoul(count, nullptr, 10));
  const char* file = std::getenv("QRX_BENCH_TEMPLATE");
  if (file == nullptr) return;
  std::ifstream in(file);
  const nlohmann::json properties = nlohmann::json::parse(in, nullptr, false);
  if (!properties.is_object()) return;
  for (auto it = properties.begin(); it != properties.end(); ++it) {
    gTemplate.push_back({it.key(), it.value()});
  }
}

// `irValue` as a CMPIValue of `ipType` (scalar); false when it does not fit.
bool scalar(const nlohmann::json& irValue, CMPIType ipType, CMPIValue* opValue) {
  switch (ipType) {
    case CMPI_string:
      if (!irValue.is_string()) return false;
      opValue->string = CMNewString(gBroker, irValue.get<std::string>().c_str(), nullptr);
      return true;
    case CMPI_dateTime:
      if (!irValue.is_string()) return false;
      opValue->dateTime = CMNewDateTimeFromChars(gBroker, irValue.get<std::string>().c_str(), nullptr);
      return opValue->dateTime != nullptr;
    case CMPI_boolean:
      if (!irValue.is_boolean()) return false;
      opValue->boolean = irValue.get<bool>();
      return true;
    case CMPI_uint8: opValue->uint8 = irValue.get<CMPIUint8>(); return irValue.is_number();
    case CMPI_uint16: opValue->uint16 = irValue.get<CMPIUint16>(); return irValue.is_number();
    case CMPI_uint32: opValue->uint32 = irValue.get<CMPIUint32>(); return irValue.is_number();
    case CMPI_uint64: opValue->uint64 = irValue.get<CMPIUint64>(); return irValue.is_number();
    case CMPI_sint8: opValue->sint8 = irValue.get<CMPISint8>(); return irValue.is_number();
    case CMPI_sint16: opValue->sint16 = irValue.get<CMPISint16>(); return irValue.is_number();
    case CMPI_sint32: opValue->sint32 = irValue.get<CMPISint32>(); return irValue.is_number();
    case CMPI_sint64: opValue->sint64 = irValue.get<CMPISint64>(); return irValue.is_number();
    default: return false;
  }
}

// Sets the template property on `ipInstance` with the type the class gives.
void setProperty(CMPIInstance* ipInstance, const Property& irProperty, const char* ipDeviceId) {
  CMPIStatus rc = {CMPI_RC_OK, nullptr};
  const CMPIData declared = CMGetProperty(ipInstance, irProperty.name.c_str(), &rc);
  if (rc.rc != CMPI_RC_OK) return;
  const CMPIType type = declared.type;
  if (irProperty.name == "DeviceID" || irProperty.name == "Name") {
    CMSetProperty(ipInstance, irProperty.name.c_str(), ipDeviceId, CMPI_chars);
    return;
  }
  if (irProperty.value.is_null()) return;
  CMPIValue value;
  if ((type & CMPI_ARRAY) == 0) {
    if (scalar(irProperty.value, type, &value)) CMSetProperty(ipInstance, irProperty.name.c_str(), &value, type);
    return;
  }
  if (!irProperty.value.is_array()) return;
  const CMPIType element = type & ~CMPI_ARRAY;
  CMPIArray* array = CMNewArray(gBroker, static_cast<CMPICount>(irProperty.value.size()), element, nullptr);
  if (array == nullptr) return;
  for (std::size_t i = 0; i < irProperty.value.size(); ++i) {
    CMPIValue item;
    if (!scalar(irProperty.value[i], element, &item)) return;
    CMSetArrayElementAt(array, static_cast<CMPICount>(i), &item, element);
  }
  value.array = array;
  CMSetProperty(ipInstance, irProperty.name.c_str(), &value, type);
}

std::string deviceId(unsigned ipIndex) {
  char text[17];
  std::snprintf(text, sizeof text, "30%014x", ipIndex);
  return text;
}

CMPIObjectPath* pathOf(const CMPIObjectPath* ipClassPath, const std::string& irDeviceId) {
  CMPIString* nameSpace = CMGetNameSpace(ipClassPath, nullptr);
  CMPIObjectPath* path = CMNewObjectPath(gBroker, CMGetCharsPtr(nameSpace, nullptr), kClass, nullptr);
  CMAddKey(path, "SystemCreationClassName", "QRX_Switch", CMPI_chars);
  CMAddKey(path, "SystemName", "10000e5a71004000", CMPI_chars);
  CMAddKey(path, "CreationClassName", kClass, CMPI_chars);
  CMAddKey(path, "DeviceID", irDeviceId.c_str(), CMPI_chars);
  return path;
}

CMPIStatus ok() { return CMPIStatus{CMPI_RC_OK, nullptr}; }
CMPIStatus notSupported() { return CMPIStatus{CMPI_RC_ERR_NOT_SUPPORTED, nullptr}; }

CMPIStatus cleanup(CMPIInstanceMI*, const CMPIContext*, CMPIBoolean) { return ok(); }

CMPIStatus enumerateInstanceNames(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* ipResult,
                                  const CMPIObjectPath* ipClassPath) {
  std::call_once(gLoaded, loadTemplate);
  for (unsigned i = 0; i < gInstances; ++i) CMReturnObjectPath(ipResult, pathOf(ipClassPath, deviceId(i)));
  CMReturnDone(ipResult);
  return ok();
}

CMPIStatus enumerateInstances(CMPIInstanceMI*, const CMPIContext*, const CMPIResult* ipResult,
                              const CMPIObjectPath* ipClassPath, const char**) {
  std::call_once(gLoaded, loadTemplate);
  for (unsigned i = 0; i < gInstances; ++i) {
    const std::string id = deviceId(i);
    CMPIInstance* instance = CMNewInstance(gBroker, pathOf(ipClassPath, id), nullptr);
    if (instance == nullptr) continue;
    for (const Property& property : gTemplate) setProperty(instance, property, id.c_str());
    CMReturnInstance(ipResult, instance);
  }
  CMReturnDone(ipResult);
  return ok();
}

CMPIStatus getInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*,
                       const char**) {
  return notSupported();
}
CMPIStatus createInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*,
                          const CMPIInstance*) {
  return notSupported();
}
CMPIStatus modifyInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*,
                          const CMPIInstance*, const char**) {
  return notSupported();
}
CMPIStatus deleteInstance(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*) {
  return notSupported();
}
CMPIStatus execQuery(CMPIInstanceMI*, const CMPIContext*, const CMPIResult*, const CMPIObjectPath*,
                     const char*, const char*) {
  return notSupported();
}

CMPIInstanceMIFT gFunctions = {CMPICurrentVersion, CMPICurrentVersion, "QRX_BenchFCPort_Provider",
                               cleanup, enumerateInstanceNames, enumerateInstances, getInstance,
                               createInstance, modifyInstance, deleteInstance, execQuery};
CMPIInstanceMI gMi = {nullptr, &gFunctions};

}  // namespace

extern "C" CMPIInstanceMI* QRX_BenchFCPort_Provider_Create_InstanceMI(const CMPIBroker* ipBroker,
                                                                      const CMPIContext*, CMPIStatus* opRc) {
  gBroker = ipBroker;
  if (opRc != nullptr) *opRc = ok();
  return &gMi;
}
