"""Model classes: per CIM class <C>, <C>_Key, <C>_Array and <C>_KeyArray.

One header and one source file per class, under scimclasses/, and the
umbrella header scimclasses.h.
"""

BANNER = "// Generated from %s by tools/codegen. Do not edit.\n"


def header_path(name):
    return "generated/scimclasses/%s.h" % name


def guard(name):
    return "QRX_GENERATED_SCIMCLASSES_%s_H_" % name.upper()


def member(prop):
    init = ""
    if prop.type.cpp in ("cboolean", "cuint8", "cuint16", "cuint32", "cuint64", "csint8",
                         "csint16", "csint32", "creal32"):
        init = " = 0"
    return "  %s %s%s;\n" % (prop.type.cpp, prop.name, init)


def class_block(name, cim_name, props, comment, extra_decls=""):
    out = "// %s\n" % comment
    out += "class %s : public SCIMSerdesable {\n public:\n" % name
    out += extra_decls
    out += "".join(member(p) for p in props)
    if props:
        out += "\n"
    out += ("  static const cstring ivClassName;     // \"%s\"\n"
            "  static const cstring ivCIMClassName;  // \"%s\"\n"
            "  const cstring& getClassName() const override { return ivClassName; }\n"
            "  const cstring& getCIMClassName() const override { return ivCIMClassName; }\n"
            "  void serialize(SCIMSerializerIf& serializer) const override;\n"
            "  void deserialize(SCIMDeserializerIf& deserializer) override;\n"
            "};\n\n") % (name, cim_name)
    return out


def array_block(name, element, cim_name, comment):
    return ("// %s\n"
            "class %s : public std::vector<%s>, public SCIMSerdesable {\n"
            " public:\n"
            "  using std::vector<%s>::vector;\n\n"
            "  static const cstring ivClassName;     // \"%s\"\n"
            "  static const cstring ivCIMClassName;  // \"%s\"\n"
            "  const cstring& getClassName() const override { return ivClassName; }\n"
            "  const cstring& getCIMClassName() const override { return ivCIMClassName; }\n"
            "  // Writes the elements in order, each as a nested object.\n"
            "  void serialize(SCIMSerializerIf& serializer) const override;\n"
            "  // Reads each element already in the array, in order; the caller sizes\n"
            "  // the array first.\n"
            "  void deserialize(SCIMDeserializerIf& deserializer) override;\n"
            "};\n\n") % (comment, name, element, element, name, cim_name)


def model_superclass(cls, schema):
    """The superclass when it is a model class whose properties cls repeats."""
    parent = schema.classes.get(cls.superclass)
    if parent is None or parent.has_embedded or cls.has_embedded:
        return None
    names = {p.name for p in cls.modelled}
    if not all(p.name in names for p in parent.modelled):
        return None
    return parent


def header(cls, schema):
    n = cls.name
    parent = model_superclass(cls, schema)
    out = BANNER % ("schema/" + cls.source)
    out += "#ifndef %s\n#define %s\n\n" % (guard(n), guard(n))
    out += "#include <vector>\n\n#include \"common/base/SCIMCommon.h\"\n"
    included = {p.type.ref_class for p in cls.references}
    if parent is not None:
        included.add(parent.name)
    for target in sorted(included):
        if target != n:
            out += "#include \"%s\"\n" % header_path(target)
    out += "\nclass %s;\n\n" % n
    key_ctor = ("  %s_Key() = default;\n"
                "  // The key of `object`.\n"
                "  explicit %s_Key(const %s& object);\n\n") % (n, n, n)
    out += class_block(n + "_Key", n, cls.key_properties,
                       "Key properties of %s, in object-path order." % n, key_ctor)
    copy_note = ""
    if cls.has_embedded:
        copy_note = " Move-only: it owns its embedded instances."
    out += class_block(n, n, cls.modelled,
                       "The CIM class %s; properties in model order.%s" % (n, copy_note))
    out += array_block(n + "_Array", n, n, "Instances of %s." % n)
    out += array_block(n + "_KeyArray", n + "_Key", n, "Keys of %s." % n)
    out += "bool operator==(const %s_Key& a, const %s_Key& b);\n" % (n, n)
    out += "inline bool operator!=(const %s_Key& a, const %s_Key& b) { return !(a == b); }\n" % (n, n)
    if not cls.has_embedded:
        out += "bool operator==(const %s& a, const %s& b);\n" % (n, n)
        out += "inline bool operator!=(const %s& a, const %s& b) { return !(a == b); }\n" % (n, n)
    if parent is not None:
        out += ("\n// The properties of `object` that %s declares, as a %s.\n"
                "void copyToSuperclass(const %s& object, %s& out);\n") % (
                    parent.name, parent.name, n, parent.name)
    out += "\n#endif  // %s\n" % guard(n)
    return out


def serialize_body(props):
    return "".join("  serializer.write(\"%s\", %s, %s);\n" % (p.name, p.type.cmpi, p.name)
                   for p in props)


def deserialize_body(props):
    return "".join("  deserializer.read(\"%s\", %s, %s);\n" % (p.name, p.type.cmpi, p.name)
                   for p in props)


def equality(type_name, props):
    if not props:
        return "bool operator==(const %s&, const %s&) { return true; }\n\n" % (type_name, type_name)
    terms = "\n         && ".join("a.%s == b.%s" % (p.name, p.name) for p in props)
    return "bool operator==(const %s& a, const %s& b) {\n  return %s;\n}\n\n" % (
        type_name, type_name, terms)


def unused(props, var):
    return "" if props else "  (void)%s;\n" % var


def source(cls, schema):
    n = cls.name
    keys = cls.key_properties
    props = cls.modelled
    out = BANNER % ("schema/" + cls.source)
    out += "#include \"%s\"\n\n" % header_path(n)
    for suffix in ("_Key", "", "_Array", "_KeyArray"):
        out += "const cstring %s%s::ivClassName(\"%s%s\");\n" % (n, suffix, n, suffix)
        out += "const cstring %s%s::ivCIMClassName(\"%s\");\n" % (n, suffix, n)
    out += "\n%s_Key::%s_Key(const %s& object)" % (n, n, n)
    if keys:
        out += "\n    : " + ",\n      ".join("%s(object.%s)" % (p.name, p.name) for p in keys)
        out += " {}\n\n"
    else:
        out += " {\n  (void)object;\n}\n\n"
    for type_name, members in ((n + "_Key", keys), (n, props)):
        out += "void %s::serialize(SCIMSerializerIf& serializer) const {\n" % type_name
        out += unused(members, "serializer") + serialize_body(members) + "}\n\n"
        out += "void %s::deserialize(SCIMDeserializerIf& deserializer) {\n" % type_name
        out += unused(members, "deserializer") + deserialize_body(members) + "}\n\n"
    for type_name in (n + "_Array", n + "_KeyArray"):
        out += ("void %s::serialize(SCIMSerializerIf& serializer) const {\n"
                "  serialize_A(serializer, *this);\n}\n\n") % type_name
        out += ("void %s::deserialize(SCIMDeserializerIf& deserializer) {\n"
                "  for (auto& element : *this) {\n"
                "    deserializer.read(element.getCIMClassName().c_str(), CMPI_instance, element);\n"
                "  }\n}\n\n") % type_name
    out += equality(n + "_Key", keys)
    if not cls.has_embedded:
        out += equality(n, props)
    parent = model_superclass(cls, schema)
    if parent is not None:
        out += "void copyToSuperclass(const %s& object, %s& out) {\n" % (n, parent.name)
        out += "".join("  out.%s = object.%s;\n" % (p.name, p.name) for p in parent.modelled)
        out += "}\n"
    return out.rstrip("\n") + "\n"


def umbrella(schema):
    out = BANNER % "schema/"
    out += "// Every model class.\n#ifndef QRX_GENERATED_SCIMCLASSES_H_\n#define QRX_GENERATED_SCIMCLASSES_H_\n\n"
    out += "".join("#include \"%s\"\n" % header_path(n) for n in sorted(schema.classes))
    out += "\n#endif  // QRX_GENERATED_SCIMCLASSES_H_\n"
    return out


def generate(schema):
    """Returns {relative output path: text}."""
    files = {"scimclasses.h": umbrella(schema)}
    for name, cls in schema.classes.items():
        files["scimclasses/%s.h" % name] = header(cls, schema)
        files["scimclasses/%s.cpp" % name] = source(cls, schema)
    return files
