"""The records of the switch daemon protocol: smis_ipc/smis_ipc.h/.cpp hold
every record of schema/*.ipc with its list type (suffix A).
"""

from gen_classes import BANNER

SOURCE = "schema/smis_ipc.ipc"


def record_decl(record):
    n = record.name
    out = "// %s, encoded member by member in this order.\n" % n
    out += "class %s : public SCIMSerdesable {\n public:\n" % n
    for m in record.members:
        init = "" if m.type.cpp_is_class else " = 0"
        out += "  %s %s%s;\n" % (m.type.cpp, m.name, init)
    out += ("\n  static const cstring ivClassName;  // \"%s\"\n"
            "  const cstring& getClassName() const override { return ivClassName; }\n"
            "  const cstring& getCIMClassName() const override { return ivClassName; }\n"
            "  void serialize(SCIMSerializerIf& serializer) const override;\n"
            "  void deserialize(SCIMDeserializerIf& deserializer) override;\n};\n\n") % n
    out += ("// A list of %s: a 32-bit count, then each record.\n"
            "class %sA : public std::vector<%s>, public SCIMSerdesable {\n public:\n"
            "  using std::vector<%s>::vector;\n\n"
            "  static const cstring ivClassName;  // \"%sA\"\n"
            "  const cstring& getClassName() const override { return ivClassName; }\n"
            "  const cstring& getCIMClassName() const override { return ivClassName; }\n"
            "  void serialize(SCIMSerializerIf& serializer) const override;\n"
            "  // Reads the count, then record by record while the data lasts.\n"
            "  void deserialize(SCIMDeserializerIf& deserializer) override;\n};\n\n") % (
        n, n, n, n, n)
    out += "bool operator==(const %s& a, const %s& b);\n" % (n, n)
    out += "inline bool operator!=(const %s& a, const %s& b) { return !(a == b); }\n\n" % (n, n)
    return out


def records_header(protocol):
    out = BANNER % SOURCE
    out += ("#ifndef QRX_GENERATED_SMIS_IPC_SMIS_IPC_H_\n#define QRX_GENERATED_SMIS_IPC_SMIS_IPC_H_\n\n"
            "#include <string>\n#include <vector>\n\n#include \"common/base/SCIMCommon.h\"\n\n"
            "typedef std::string string_t;\n"
            "typedef std::vector<std::string> string_tA;\n"
            "typedef cdatetime datetime_t;\n\n")
    out += "".join(record_decl(r) for r in protocol.records)
    out += ("// Every record, for code that handles each one alike: X(record) once per\n"
            "// record, in the order of the protocol description.\n"
            "#define SMIS_IPC_RECORDS(X) \\\n")
    out += " \\\n".join("  X(%s)" % r.name for r in protocol.records) + "\n\n"
    out += "#endif  // QRX_GENERATED_SMIS_IPC_SMIS_IPC_H_\n"
    return out


def records_source(protocol):
    out = BANNER % SOURCE
    out += "#include \"generated/smis_ipc/smis_ipc.h\"\n\n#include <utility>\n\n"
    for r in protocol.records:
        n = r.name
        out += "const cstring %s::ivClassName(\"%s\");\n" % (n, n)
        out += "const cstring %sA::ivClassName(\"%sA\");\n\n" % (n, n)
        out += "void %s::serialize(SCIMSerializerIf& serializer) const {\n" % n
        out += "".join("  serializer.write(\"%s\", %s, %s);\n" % (m.name, m.type.code, m.name)
                       for m in r.members)
        out += "}\n\nvoid %s::deserialize(SCIMDeserializerIf& deserializer) {\n" % n
        out += "".join("  deserializer.read(\"%s\", %s, %s);\n" % (m.name, m.type.code, m.name)
                       for m in r.members)
        out += "}\n\n"
        out += ("void %sA::serialize(SCIMSerializerIf& serializer) const {\n"
                "  serializer.write(\"count\", CMPI_uint32, static_cast<cuint32>(size()));\n"
                "  for (const auto& element : *this) {\n"
                "    if (serializer.hasError()) return;\n"
                "    serializer.write(\"%s\", CMPI_instance, element);\n  }\n}\n\n") % (n, n)
        out += ("void %sA::deserialize(SCIMDeserializerIf& deserializer) {\n"
                "  cuint32 count = 0;\n"
                "  deserializer.read(\"count\", CMPI_uint32, count);\n"
                "  %sA elements;\n"
                "  // The count comes from the wire: room is made ahead for a modest one only.\n"
                "  elements.reserve(count < 256 ? count : 256);\n"
                "  for (cuint32 i = 0; i < count && !deserializer.hasError(); ++i) {\n"
                "    %s element;\n"
                "    deserializer.read(\"%s\", CMPI_instance, element);\n"
                "    if (!deserializer.hasError()) elements.push_back(std::move(element));\n"
                "  }\n"
                "  if (!deserializer.hasError()) swap(elements);\n}\n\n") % (n, n, n, n)
        terms = "\n         && ".join("a.%s == b.%s" % (m.name, m.name) for m in r.members)
        out += "bool operator==(const %s& a, const %s& b) {\n  return %s;\n}\n\n" % (n, n, terms)
    return out.rstrip("\n") + "\n"


def generate(schema):
    protocol = schema.protocol
    return {
        "smis_ipc/smis_ipc.h": records_header(protocol),
        "smis_ipc/smis_ipc.cpp": records_source(protocol),
    }
