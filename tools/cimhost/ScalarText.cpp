#include "tools/cimhost/ScalarText.h"

#include <strings.h>

#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "cmpimacs.h"
#include "tools/cimhost/broker/Types.h"

namespace cimhost {

namespace {

struct TypeName {
  const char* name;
  CMPIType type;
};

const TypeName kTypeNames[] = {
    {"boolean", CMPI_boolean}, {"uint8", CMPI_uint8},     {"uint16", CMPI_uint16},
    {"uint32", CMPI_uint32},   {"uint64", CMPI_uint64},   {"sint8", CMPI_sint8},
    {"sint16", CMPI_sint16},   {"sint32", CMPI_sint32},   {"sint64", CMPI_sint64},
    {"real32", CMPI_real32},   {"real64", CMPI_real64},   {"string", CMPI_string},
    {"datetime", CMPI_dateTime}, {"char16", CMPI_char16}, {"ref", CMPI_ref},
};

// The inclusive range of an integer type.
void integerRange(CMPIType ipType, int64_t* opMin, uint64_t* opMax) {
  switch (ipType) {
    case CMPI_uint8: *opMin = 0; *opMax = UINT8_MAX; break;
    case CMPI_uint16: *opMin = 0; *opMax = UINT16_MAX; break;
    case CMPI_uint32: *opMin = 0; *opMax = UINT32_MAX; break;
    case CMPI_uint64: *opMin = 0; *opMax = UINT64_MAX; break;
    case CMPI_sint8: *opMin = INT8_MIN; *opMax = INT8_MAX; break;
    case CMPI_sint16: *opMin = INT16_MIN; *opMax = INT16_MAX; break;
    case CMPI_sint32: *opMin = INT32_MIN; *opMax = INT32_MAX; break;
    default: *opMin = INT64_MIN; *opMax = INT64_MAX; break;
  }
}

bool parseInteger(const std::string& irText, CMPIType ipType, const std::string& irWhat,
                  CMPIValue* opValue, std::string* opError) {
  const std::string typeName = cimTypeName(ipType);
  size_t digits = (!irText.empty() && (irText[0] == '-' || irText[0] == '+')) ? 1 : 0;
  bool valid = digits < irText.size();
  for (size_t i = digits; i < irText.size(); ++i) valid = valid && irText[i] >= '0' && irText[i] <= '9';
  if (!valid) {
    *opError = "bad " + typeName + " value '" + irText + "' for " + irWhat + " (a decimal integer)";
    return false;
  }
  const std::string outOfRange =
      typeName + " value " + irText + " out of range for " + irWhat;
  int64_t min = 0;
  uint64_t max = 0;
  integerRange(ipType, &min, &max);

  bool negative = irText[0] == '-';
  uint64_t magnitude = 0;
  errno = 0;
  magnitude = std::strtoull(irText.c_str() + digits, nullptr, 10);
  if (errno == ERANGE) {
    *opError = outOfRange;
    return false;
  }
  if (negative && magnitude != 0) {
    // -magnitude must not go below min; min's magnitude fits in uint64_t.
    const uint64_t minMagnitude = min < 0 ? static_cast<uint64_t>(-(min + 1)) + 1 : 0;
    if (magnitude > minMagnitude) {
      *opError = outOfRange;
      return false;
    }
  } else if (magnitude > max) {
    *opError = outOfRange;
    return false;
  }
  const int64_t signedValue =
      negative ? static_cast<int64_t>(0 - magnitude) : static_cast<int64_t>(magnitude);
  switch (ipType) {
    case CMPI_uint8: opValue->uint8 = static_cast<CMPIUint8>(magnitude); break;
    case CMPI_uint16: opValue->uint16 = static_cast<CMPIUint16>(magnitude); break;
    case CMPI_uint32: opValue->uint32 = static_cast<CMPIUint32>(magnitude); break;
    case CMPI_uint64: opValue->uint64 = magnitude; break;
    case CMPI_sint8: opValue->sint8 = static_cast<CMPISint8>(signedValue); break;
    case CMPI_sint16: opValue->sint16 = static_cast<CMPISint16>(signedValue); break;
    case CMPI_sint32: opValue->sint32 = static_cast<CMPISint32>(signedValue); break;
    default: opValue->sint64 = signedValue; break;
  }
  return true;
}

bool parseReal(const std::string& irText, CMPIType ipType, const std::string& irWhat,
               CMPIValue* opValue, std::string* opError) {
  const std::string typeName = cimTypeName(ipType);
  char* end = nullptr;
  errno = 0;
  const double value = irText.empty() ? 0.0 : std::strtod(irText.c_str(), &end);
  if (irText.empty() || *end != '\0' || !std::isfinite(value)) {
    *opError = "bad " + typeName + " value '" + irText + "' for " + irWhat + " (a finite number)";
    return false;
  }
  if (errno == ERANGE || (ipType == CMPI_real32 && std::fabs(value) > FLT_MAX)) {
    *opError = typeName + " value " + irText + " out of range for " + irWhat;
    return false;
  }
  if (ipType == CMPI_real32) {
    opValue->real32 = static_cast<CMPIReal32>(value);
  } else {
    opValue->real64 = value;
  }
  return true;
}

}  // namespace

bool cimTypeFromName(const std::string& irName, CMPIType* opType) {
  for (const TypeName& entry : kTypeNames) {
    if (strcasecmp(entry.name, irName.c_str()) == 0) {
      *opType = entry.type;
      return true;
    }
  }
  return false;
}

const char* cimTypeNames() {
  return "boolean, uint8, uint16, uint32, uint64, sint8, sint16, sint32, sint64, real32, "
         "real64, string, datetime, char16, ref";
}

bool isIntegerType(CMPIType ipType) {
  switch (ipType) {
    case CMPI_uint8: case CMPI_uint16: case CMPI_uint32: case CMPI_uint64:
    case CMPI_sint8: case CMPI_sint16: case CMPI_sint32: case CMPI_sint64:
      return true;
    default:
      return false;
  }
}

bool parseScalar(TestBroker& irBroker, const std::string& irText, CMPIType ipType,
                 const std::string& irWhat, CMPIValue* opValue, std::string* opError) {
  if (isIntegerType(ipType)) return parseInteger(irText, ipType, irWhat, opValue, opError);
  switch (ipType) {
    case CMPI_boolean:
      if (strcasecmp(irText.c_str(), "true") == 0 || strcasecmp(irText.c_str(), "false") == 0) {
        opValue->boolean = strcasecmp(irText.c_str(), "true") == 0;
        return true;
      }
      *opError = "bad boolean value '" + irText + "' for " + irWhat + " (true or false)";
      return false;
    case CMPI_real32:
    case CMPI_real64:
      return parseReal(irText, ipType, irWhat, opValue, opError);
    case CMPI_char16:
      if (irText.size() == 1 && static_cast<unsigned char>(irText[0]) < 0x80) {
        opValue->char16 = static_cast<CMPIChar16>(irText[0]);
        return true;
      }
      *opError = "bad char16 value '" + irText + "' for " + irWhat + " (one ASCII character)";
      return false;
    case CMPI_string:
      opValue->string = irBroker.newString(irText.c_str());
      if (opValue->string) return true;
      *opError = "cannot make a string for " + irWhat;
      return false;
    case CMPI_dateTime: {
      CMPIStatus rc = {CMPI_RC_OK, nullptr};
      opValue->dateTime = CMNewDateTimeFromChars(irBroker.broker(), irText.c_str(), &rc);
      if (rc.rc == CMPI_RC_OK && opValue->dateTime) return true;
      *opError = "bad datetime value '" + irText + "' for " + irWhat +
                 " (25 characters: yyyymmddhhmmss.mmmmmm+utc, or ddddddddhhmmss.mmmmmm:000)";
      return false;
    }
    default:
      *opError = "values of type " + cimTypeName(ipType) + " cannot be given for " + irWhat;
      return false;
  }
}

}  // namespace cimhost
