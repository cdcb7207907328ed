"""Backend declarations: per class with a generated provider, <C>_Best.

scimbackend/<C>_Best.h declares the whole backend interface: the instance
operations, for an association the three operations of each reference role
(with role-neutral forwarders for the glue), and one operation per method.
scimbackend/<C>_Best.cpp defines the singleton and every operation the
schema does not list under `implements`: those answer that the backend does
not offer them (false; a method result of 1). The listed ones are defined by
hand in common/backend/. A backend whose enumInstances is written by hand
gets its other read operations from that list (see
common/backend/ListedInstances.h), each unless it is listed too.
"""

from gen_classes import BANNER, header_path as class_header

# Method results: 0 success, 10 object not supported by the switch, else failure.
UNSUPPORTED_METHOD_RESULT = 1


def header_path(name):
    return "generated/scimbackend/%s_Best.h" % name


def guard(name):
    return "QRX_GENERATED_SCIMBACKEND_%s_BEST_H_" % name.upper()


def param_decl(param):
    """A method parameter as the backend receives it."""
    if param.direction == "out":
        return "%s& %s" % (param.type.cpp, param.name)
    if param.type.ref_class:
        return "const %s& %s" % (param.type.cpp, param.name)
    return "%s %s" % (param.type.cpp, param.name)


def method_params(cls, method):
    return ", ".join(["const %s_Key& key" % cls.name] + [param_decl(p) for p in method.params])


def instance_decls(cls):
    n = cls.name
    return [
        ("bool", "enumInstanceNames", "%s_KeyArray& out" % n),
        ("bool", "enumInstances", "%s_Array& out" % n),
        ("bool", "getInstance", "const %s_Key& key, %s& out" % (n, n)),
        ("bool", "createInstance", "const %s& object, %s_Key& out" % (n, n)),
        ("bool", "modifyInstance", "const %s_Key& key, const %s& object" % (n, n)),
        ("bool", "deleteInstance", "const %s_Key& key" % n),
    ]


def association_decls(cls):
    """Per end: the operations whose results lie at that end."""
    left, right = cls.ends
    decls = []
    for end, source in ((left, right), (right, left)):
        target, src = end.type.ref_class, source.type.ref_class
        decls += [
            ("bool", "associatorsFor" + end.name, "const %s_Key& source, %s_Array& out" % (src, target)),
            ("bool", "associatorNamesFor" + end.name,
             "const %s_Key& source, %s_KeyArray& out" % (src, target)),
            ("bool", "referencesFor" + end.name,
             "const %s_Key& source, %s_Array& out" % (src, cls.name)),
        ]
    return decls


def method_decls(cls):
    return [("cuint32", m.name, method_params(cls, m)) for m in cls.methods]


def declarations(cls):
    decls = instance_decls(cls)
    if cls.kind == "association":
        decls += association_decls(cls)
    return decls + method_decls(cls)


def forwarders(cls):
    left, right = cls.ends
    out = "\n  // The same operations by end, for the glue.\n"
    for side, end, source in (("Left", left, right), ("Right", right, left)):
        target, src = end.type.ref_class, source.type.ref_class
        for op, array in (("associatorsFor", "_Array"), ("associatorNamesFor", "_KeyArray")):
            out += ("  bool %sRef%s(const %s_Key& source, %s%s& out) {\n"
                    "    return %s%s(source, out);\n  }\n") % (op, side, src, target, array, op, end.name)
        out += ("  bool referencesForRef%s(const %s_Key& source, %s_Array& out) {\n"
                "    return referencesFor%s(source, out);\n  }\n") % (side, src, cls.name, end.name)
    return out


def included_classes(cls):
    names = {cls.name}
    names.update(p.type.ref_class for p in cls.references)
    for method in cls.methods:
        names.update(p.type.ref_class for p in method.params if p.type.ref_class)
    return sorted(names)


def header(cls):
    n = cls.name
    out = BANNER % ("schema/" + cls.source)
    out += "#ifndef %s\n#define %s\n\n" % (guard(n), guard(n))
    out += "".join("#include \"%s\"\n" % class_header(c) for c in included_classes(cls))
    out += ("\n// The backend of %s: the glue calls its operations on `singleton`.\n"
            "// true (a method result of 0) means success; out-arrays arrive empty\n"
            "// and are filled by appending.\n" % n)
    out += "class %s_Best {\n public:\n" % n
    out += "  static %s_Best singleton;\n" % n
    out += "  static constexpr const char* className = \"%s\";\n" % n
    out += "  typedef %s_Array Array;\n  typedef %s_KeyArray KeyArray;\n\n" % (n, n)
    for ret, name, params in declarations(cls):
        out += "  %s %s(%s);\n" % (ret, name, params)
    if cls.kind == "association":
        out += forwarders(cls)
    out += "};\n\n#endif  // %s\n" % guard(n)
    return out


def unnamed(params):
    """The parameter list without names, for definitions that ignore them."""
    return ", ".join(p.rsplit(" ", 1)[0] for p in params.split(", "))


def derived_bodies(cls):
    """{operation: body} of the read operations answered from the listed instances."""
    n = cls.name
    bodies = {
        "enumInstanceNames": "listed_instances::names<%s_Array>(*this, out)" % n,
        "getInstance": "listed_instances::get<%s_Array>(*this, key, out)" % n,
    }
    if cls.kind != "association":
        return {op: body for op, body in bodies.items() if op not in cls.implements}
    left, right = cls.ends
    for end, source in ((left, right), (right, left)):
        members = "&%s::%s, &%s::%s" % (n, source.name, n, end.name)
        bodies["referencesFor" + end.name] = (
            "listed_instances::references<%s_Array>(*this, &%s::%s, source, out)"
            % (n, n, source.name))
        bodies["associatorNamesFor" + end.name] = (
            "listed_instances::associatorNames<%s_Array>(*this, %s, source, out)" % (n, members))
        bodies["associatorsFor" + end.name] = (
            "listed_instances::associators<%s_Array>(*this, %s_Best::singleton, %s, source, out)"
            % (n, end.type.ref_class, members))
    return {op: body for op, body in bodies.items() if op not in cls.implements}


def source(cls):
    n = cls.name
    derived = derived_bodies(cls) if "enumInstances" in cls.implements else {}
    out = BANNER % ("schema/" + cls.source)
    out += "#include \"%s\"\n\n" % header_path(n)
    if derived:
        out += "#include \"common/backend/ListedInstances.h\"\n"
        ends = cls.ends if cls.kind == "association" else ()
        for end in sorted({e.type.ref_class for e in ends}):
            out += "#include \"%s\"\n" % header_path(end)
        out += "\n"
    out += "%s_Best %s_Best::singleton;\n" % (n, n)
    if derived:
        out += "\n// Read operations answered from the instances enumInstances lists.\n"
    for ret, name, params in declarations(cls):
        if name in derived:
            out += "%s %s_Best::%s(%s) {\n  return %s;\n}\n" % (ret, n, name, params, derived[name])
    missing = [d for d in declarations(cls) if d[1] not in cls.implements and d[1] not in derived]
    if missing:
        out += "\n// Operations this backend does not offer: the glue reports the failure.\n"
    for ret, name, params in missing:
        answer = "false" if ret == "bool" else str(UNSUPPORTED_METHOD_RESULT)
        out += "%s %s_Best::%s(%s) { return %s; }\n" % (ret, n, name, unnamed(params), answer)
    return out


def generate(schema):
    files = {}
    for name, cls in schema.classes.items():
        if cls.generated_provider:
            files["scimbackend/%s_Best.h" % name] = header(cls)
            files["scimbackend/%s_Best.cpp" % name] = source(cls)
    return files
