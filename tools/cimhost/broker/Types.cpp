#include "tools/cimhost/broker/Types.h"

#include <cstddef>
#include <cstdio>
#include <cstring>

#include "tools/cimhost/broker/Args.h"
#include "tools/cimhost/broker/Arrays.h"
#include "tools/cimhost/broker/Contexts.h"
#include "tools/cimhost/broker/DateTimes.h"
#include "tools/cimhost/broker/Enumerations.h"
#include "tools/cimhost/broker/Errors.h"
#include "tools/cimhost/broker/Instances.h"
#include "tools/cimhost/broker/ObjectPaths.h"
#include "tools/cimhost/broker/Results.h"
#include "tools/cimhost/broker/Strings.h"

namespace cimhost {

namespace {

const char* scalarName(CMPIType ipType) {
  switch (ipType) {
    case CMPI_null: return "null";
    case CMPI_boolean: return "boolean";
    case CMPI_char16: return "char16";
    case CMPI_real32: return "real32";
    case CMPI_real64: return "real64";
    case CMPI_uint8: return "uint8";
    case CMPI_uint16: return "uint16";
    case CMPI_uint32: return "uint32";
    case CMPI_uint64: return "uint64";
    case CMPI_sint8: return "sint8";
    case CMPI_sint16: return "sint16";
    case CMPI_sint32: return "sint32";
    case CMPI_sint64: return "sint64";
    case CMPI_instance: return "instance";
    case CMPI_ref: return "ref";
    case CMPI_args: return "args";
    case CMPI_class: return "class";
    case CMPI_filter: return "filter";
    case CMPI_enumeration: return "enumeration";
    case CMPI_string: return "string";
    case CMPI_chars: return "chars";
    case CMPI_dateTime: return "datetime";
    case CMPI_ptr: return "ptr";
    case CMPI_charsptr: return "charsptr";
    default: return nullptr;
  }
}

template <class T, class FT>
bool hasTableOf(const void* ipFt) {
  return T::isOwnTable(static_cast<const FT*>(ipFt));
}

}  // namespace

std::string cimTypeName(CMPIType ipType) {
  const bool isArray = (ipType & CMPI_ARRAY) != 0;
  const char* name = scalarName(static_cast<CMPIType>(ipType & ~CMPI_ARRAY));
  if (!name || (isArray && ipType == CMPI_ARRAY)) {
    char buf[24];
    std::snprintf(buf, sizeof(buf), "type 0x%04x", static_cast<unsigned>(ipType));
    return buf;
  }
  return isArray ? std::string(name) + "[]" : std::string(name);
}

const char* encTypeName(const void* ipObject) {
  if (!ipObject) return nullptr;
  // Every encapsulated C struct is {void* hdl; <table>* ft;}.
  const void* hdl;
  const void* ft;
  std::memcpy(&hdl, static_cast<const char*>(ipObject) + offsetof(CMPIString, hdl), sizeof(hdl));
  std::memcpy(&ft, static_cast<const char*>(ipObject) + offsetof(CMPIString, ft), sizeof(ft));
  if (!hdl) return nullptr;
  if (hasTableOf<EncInstance, CMPIInstanceFT>(ft)) return "CMPIInstance";
  if (hasTableOf<EncObjectPath, CMPIObjectPathFT>(ft)) return "CMPIObjectPath";
  if (hasTableOf<EncString, CMPIStringFT>(ft)) return "CMPIString";
  if (hasTableOf<EncArray, CMPIArrayFT>(ft)) return "CMPIArray";
  if (hasTableOf<EncArgs, CMPIArgsFT>(ft)) return "CMPIArgs";
  if (hasTableOf<EncDateTime, CMPIDateTimeFT>(ft)) return "CMPIDateTime";
  if (hasTableOf<EncEnumeration, CMPIEnumerationFT>(ft)) return "CMPIEnumeration";
  if (hasTableOf<EncContext, CMPIContextFT>(ft)) return "CMPIContext";
  if (hasTableOf<EncResult, CMPIResultFT>(ft)) return "CMPIResult";
  if (hasTableOf<EncError, CMPIErrorFT>(ft)) return "CMPIError";
  return nullptr;
}

}  // namespace cimhost
