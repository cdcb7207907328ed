#include "tools/cimhost/broker/ValueText.h"

#include <cstdio>

#include "tools/cimhost/broker/Args.h"
#include "tools/cimhost/broker/Arrays.h"
#include "tools/cimhost/broker/DateTimes.h"
#include "tools/cimhost/broker/Instances.h"
#include "tools/cimhost/broker/ObjectPaths.h"
#include "tools/cimhost/broker/Strings.h"
#include "tools/cimhost/broker/Types.h"

namespace cimhost {

namespace {

std::string realText(double ipValue, int ipDigits) {
  char buf[40];
  std::snprintf(buf, sizeof(buf), "%.*g", ipDigits, ipValue);
  return buf;
}

std::string char16Text(CMPIChar16 ipChar) {
  if (ipChar >= 0x20 && ipChar < 0x7f) return quoted(std::string(1, static_cast<char>(ipChar)));
  char buf[16];
  std::snprintf(buf, sizeof(buf), "\"\\x%04X\"", static_cast<unsigned>(ipChar));
  return buf;
}

std::string arrayText(const EncArray& irArray, int ipIndent) {
  std::string text = "{";
  for (size_t i = 0; i < irArray.size(); ++i) {
    if (i) text += ", ";
    text += literalText(irArray.at(i).data(), ipIndent);
  }
  return text + "}";
}

std::string objectText(const CMPIData& irData, int ipIndent) {
  switch (irData.type) {
    case CMPI_string: {
      const EncString* s = EncString::of(irData.value.string);
      return s ? quoted(s->text()) : "<foreign string>";
    }
    case CMPI_dateTime: {
      const EncDateTime* dt = EncDateTime::of(irData.value.dateTime);
      return dt ? quoted(dt->text()) : "<foreign datetime>";
    }
    case CMPI_ref: {
      const EncObjectPath* op = EncObjectPath::of(irData.value.ref);
      return op ? quoted(op->toText()) : "<foreign path>";
    }
    case CMPI_instance: {
      const EncInstance* inst = EncInstance::of(irData.value.inst);
      return inst ? inst->toText(ipIndent) : "<foreign instance>";
    }
    case CMPI_args: {
      const EncArgs* args = EncArgs::of(irData.value.args);
      return args ? args->toText() : "<foreign args>";
    }
    default:
      return "<" + cimTypeName(irData.type) + ">";
  }
}

}  // namespace

std::string quoted(const std::string& irText) {
  std::string out = "\"";
  for (char c : irText) {
    switch (c) {
      case '"': out += "\\\""; break;
      case '\\': out += "\\\\"; break;
      case '\n': out += "\\n"; break;
      case '\t': out += "\\t"; break;
      case '\r': out += "\\r"; break;
      default: out += c;
    }
  }
  return out + "\"";
}

std::string literalText(const CMPIData& irData, int ipIndent) {
  if (irData.state & CMPI_nullValue) return "NULL";
  if (irData.type & CMPI_ARRAY) {
    const EncArray* array = EncArray::of(irData.value.array);
    return array ? arrayText(*array, ipIndent) : "<foreign array>";
  }
  const CMPIValue& v = irData.value;
  switch (irData.type) {
    case CMPI_boolean: return v.boolean ? "true" : "false";
    case CMPI_char16: return char16Text(v.char16);
    case CMPI_real32: return realText(v.real32, 9);
    case CMPI_real64: return realText(v.real64, 17);
    case CMPI_uint8: return std::to_string(v.uint8);
    case CMPI_uint16: return std::to_string(v.uint16);
    case CMPI_uint32: return std::to_string(v.uint32);
    case CMPI_uint64: return std::to_string(v.uint64);
    case CMPI_sint8: return std::to_string(v.sint8);
    case CMPI_sint16: return std::to_string(v.sint16);
    case CMPI_sint32: return std::to_string(v.sint32);
    case CMPI_sint64: return std::to_string(v.sint64);
    case CMPI_chars: return v.chars ? quoted(v.chars) : "NULL";
    case CMPI_ptr: {
      char buf[32];
      std::snprintf(buf, sizeof(buf), "<ptr %p>", v.dataPtr.ptr);
      return buf;
    }
    default: return objectText(irData, ipIndent);
  }
}

std::string plainText(const CMPIData& irData) {
  if (!(irData.state & CMPI_nullValue)) {
    if (irData.type == CMPI_string) {
      const EncString* s = EncString::of(irData.value.string);
      if (s) return s->text();
    } else if (irData.type == CMPI_chars && irData.value.chars) {
      return irData.value.chars;
    }
  }
  return literalText(irData);
}

}  // namespace cimhost
