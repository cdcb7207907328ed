#include "tools/cimhost/InstanceText.h"

#include <strings.h>

#include <charconv>
#include <cstdlib>
#include <functional>

#include "cmpimacs.h"
#include "tools/cimhost/broker/ValueText.h"

namespace cimhost {

namespace {

std::string classOf(const CMPIObjectPath* ipPath) {
  return ipPath ? stringText(CMGetClassName(ipPath, nullptr)) : std::string();
}

// Calls `irEach` with the name and data of every property (or argument).
void forEachProperty(const CMPIInstance* ipInstance,
                     const std::function<void(const std::string&, const CMPIData&)>& irEach) {
  const CMPICount count = CMGetPropertyCount(ipInstance, nullptr);
  for (CMPICount i = 0; i < count; ++i) {
    CMPIString* name = nullptr;
    CMPIStatus rc = {CMPI_RC_OK, nullptr};
    const CMPIData data = CMGetPropertyAt(ipInstance, i, &name, &rc);
    if (rc.rc == CMPI_RC_OK) irEach(stringText(name), data);
  }
}

void forEachArg(const CMPIArgs* ipArgs,
                const std::function<void(const std::string&, const CMPIData&)>& irEach) {
  if (!ipArgs) return;
  const CMPICount count = CMGetArgCount(ipArgs, nullptr);
  for (CMPICount i = 0; i < count; ++i) {
    CMPIString* name = nullptr;
    CMPIStatus rc = {CMPI_RC_OK, nullptr};
    const CMPIData data = CMGetArgAt(ipArgs, i, &name, &rc);
    if (rc.rc == CMPI_RC_OK) irEach(stringText(name), data);
  }
}

// A real32 as the double its shortest decimal text reads as, so that 0.1f
// shows as 0.1 rather than 0.10000000149011612.
double real32Value(CMPIReal32 ipValue) {
  char buf[32];
  const auto end = std::to_chars(buf, buf + sizeof(buf) - 1, ipValue);
  *end.ptr = '\0';
  return std::strtod(buf, nullptr);
}

Json scalarJson(const CMPIData& irData) {
  const CMPIValue& v = irData.value;
  switch (irData.type) {
    case CMPI_boolean: return Json(static_cast<bool>(v.boolean));
    case CMPI_uint8: return Json(v.uint8);
    case CMPI_uint16: return Json(v.uint16);
    case CMPI_uint32: return Json(v.uint32);
    case CMPI_uint64: return Json(v.uint64);
    case CMPI_sint8: return Json(v.sint8);
    case CMPI_sint16: return Json(v.sint16);
    case CMPI_sint32: return Json(v.sint32);
    case CMPI_sint64: return Json(v.sint64);
    case CMPI_real32: return Json(real32Value(v.real32));
    case CMPI_real64: return Json(v.real64);
    case CMPI_char16:
      return v.char16 < 0x80 ? Json(std::string(1, static_cast<char>(v.char16)))
                             : Json(plainText(irData));
    case CMPI_chars: return v.chars ? Json(std::string(v.chars)) : Json();
    case CMPI_string: return v.string ? Json(stringText(v.string)) : Json();
    case CMPI_dateTime:
      return v.dateTime ? Json(stringText(CMGetStringFormat(v.dateTime, nullptr))) : Json();
    case CMPI_ref: return v.ref ? Json(pathText(v.ref)) : Json();
    case CMPI_instance: return v.inst ? instanceJson(v.inst) : Json();
    case CMPI_args: {
      Json out = Json::object();
      forEachArg(v.args, [&](const std::string& irName, const CMPIData& irArg) {
        out[irName] = dataJson(irArg);
      });
      return out;
    }
    default: return Json(literalText(irData));
  }
}

// Whether the property `irName` is printed under `ipOnly`.
bool passes(PropertyFilter ipOnly, const std::string& irName) {
  if (ipOnly == nullptr) return true;
  for (const std::string& wanted : *ipOnly) {
    if (strcasecmp(wanted.c_str(), irName.c_str()) == 0) return true;
  }
  return false;
}

}  // namespace

std::string stringText(const CMPIString* ipString) {
  const char* text = ipString ? ipString->ft->getCharPtr(ipString, nullptr) : nullptr;
  return text ? std::string(text) : std::string();
}

std::string pathText(const CMPIObjectPath* ipPath) {
  CMPIStatus rc = {CMPI_RC_OK, nullptr};
  CMPIString* text = ipPath ? CMObjectPathToString(ipPath, &rc) : nullptr;
  if (!text || rc.rc != CMPI_RC_OK) return "<bad path>";
  return stringText(text);
}

std::string instanceMof(const CMPIInstance* ipInstance, PropertyFilter ipOnly) {
  const CMPIObjectPath* path = CMGetObjectPath(ipInstance, nullptr);
  std::string text = "// " + pathText(path) + "\n";
  text += "instance of " + classOf(path) + " {\n";
  forEachProperty(ipInstance, [&](const std::string& irName, const CMPIData& irData) {
    if (passes(ipOnly, irName)) text += "    " + irName + " = " + literalText(irData, 4) + ";\n";
  });
  return text + "};\n";
}

Json instanceJson(const CMPIInstance* ipInstance, PropertyFilter ipOnly) {
  const CMPIObjectPath* path = CMGetObjectPath(ipInstance, nullptr);
  Json properties = Json::object();
  forEachProperty(ipInstance, [&](const std::string& irName, const CMPIData& irData) {
    if (passes(ipOnly, irName)) properties[irName] = dataJson(irData);
  });
  Json out = Json::object();
  out["path"] = pathText(path);
  out["class"] = classOf(path);
  out["properties"] = std::move(properties);
  return out;
}

Json dataJson(const CMPIData& irData) {
  if (irData.state & CMPI_nullValue) return Json();
  if (!(irData.type & CMPI_ARRAY)) return scalarJson(irData);
  const CMPIArray* array = irData.value.array;
  if (!array) return Json();
  Json out = Json::array();
  const CMPICount count = CMGetArrayCount(array, nullptr);
  for (CMPICount i = 0; i < count; ++i) {
    out.push_back(dataJson(CMGetArrayElementAt(array, i, nullptr)));
  }
  return out;
}

std::string methodResultText(const std::optional<CMPIData>& irReturnValue,
                             const CMPIArgs* ipOut) {
  std::string text = "ReturnValue = " + (irReturnValue ? literalText(*irReturnValue) : "NULL") + "\n";
  forEachArg(ipOut, [&](const std::string& irName, const CMPIData& irData) {
    text += irName + " = " + literalText(irData) + "\n";
  });
  return text;
}

Json methodResultJson(const std::optional<CMPIData>& irReturnValue, const CMPIArgs* ipOut) {
  Json out = Json::object();
  forEachArg(ipOut, [&](const std::string& irName, const CMPIData& irData) {
    out[irName] = dataJson(irData);
  });
  Json result = Json::object();
  result["returnValue"] = irReturnValue ? dataJson(*irReturnValue) : Json();
  result["out"] = std::move(out);
  return result;
}

}  // namespace cimhost
