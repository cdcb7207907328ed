"""MOF text for object managers.

qrx_classes.mof declares the vendor classes for a CIM object manager: each
QRX_ class under its DMTF superclass, declaring only what the superclass
does not (vendor properties and methods, and references narrowed to the
vendor classes they link), so that it loads on top of a standard DMTF CIM
schema.

qrx_interop.mof declares, the same way, only the vendor classes served in
root/interop, for an object manager that keeps that namespace apart.

cim_hierarchy.mof places every class the schema knows in its hierarchy,
standard classes as empty declarations and model classes with their key
properties. It stands in for the DMTF schema in the in-process test object
manager; it is not meant for a real one.
"""

BANNER = "// Generated from schema/ by tools/codegen. Do not edit.\n"


def ordered(schema, names):
    """`names` with every superclass and referenced class before its users."""
    done, out = set(), []

    def visit(name):
        if name in done or name not in names:
            return
        done.add(name)
        parent = schema.parent_of(name)
        if parent:
            visit(parent)
        cls = schema.classes.get(name)
        if cls:
            for prop in cls.references:
                visit(prop.type.ref_class)
            for method in cls.methods:
                for param in method.params:
                    if param.type.ref_class:
                        visit(param.type.ref_class)
        out.append(name)

    for name in names:
        visit(name)
    return out


def root_of(schema, name):
    while schema.parent_of(name) is not None:
        name = schema.parent_of(name)
    return name


def kind_of(schema, name):
    """class, association or indication, for any known class: the kind of
    the model classes that share its root (the CIM qualifiers Association
    and Indication are inherited)."""
    if name in schema.classes:
        return schema.classes[name].kind
    root = root_of(schema, name)
    for cls in schema.classes.values():
        if cls.kind != "class" and root_of(schema, cls.name) == root:
            return cls.kind
    return "class"


def class_qualifiers(kind):
    return {"association": "[Association]\n", "indication": "[Indication]\n"}.get(kind, "")


def property_decl(prop, qualifiers):
    text = "   %s %s%s;\n" % (prop.type.mof, prop.name, "[]" if prop.type.is_array else "")
    if prop.type.embedded:
        qualifiers = qualifiers + ["EmbeddedObject"]
    if qualifiers:
        text = "      [%s]\n%s" % (", ".join(qualifiers), text)
    return text


def method_decl(method):
    params = []
    for p in method.params:
        suffix = "[]" if p.type.is_array else ""
        params.append("[%s] %s %s%s" % (p.direction.upper(), p.type.mof, p.name, suffix))
    return "   uint32 %s(%s);\n" % (method.name, ", ".join(params))


def inherited_ref(schema, cls, prop):
    """True when a vendor ancestor already declares the same reference."""
    parent = schema.classes.get(cls.superclass)
    while parent is not None:
        same = parent.prop(prop.name)
        if same is not None and same.type.ref_class == prop.type.ref_class:
            return True
        parent = schema.classes.get(parent.superclass)
    return False


def vendor_class(schema, cls):
    body = ""
    for prop in cls.modelled:
        key = ["Key"] if prop.name in cls.keys else []
        if prop.new:
            body += property_decl(prop, key)
        elif prop.type.ref_class and not inherited_ref(schema, cls, prop):
            body += property_decl(prop, key + ['Override ("%s")' % prop.name])
    for method in cls.methods:
        if method.new:
            body += method_decl(method)
    head = "class %s" % cls.name
    if cls.superclass:
        head += " : %s" % cls.superclass
    return "%s%s {\n%s};\n" % (class_qualifiers(cls.kind), head, body)


def vendor_mof(schema, namespace=None):
    out = BANNER
    if namespace:
        out += ("// Vendor classes of the switch agent served in %s. Load after the DMTF\n"
                "// CIM schema (2.17 or later) into that namespace.\n\n" % namespace)
    else:
        out += ("// Vendor classes of the switch agent. Load after the DMTF CIM schema\n"
                "// (2.17 or later) into root/qrx, and into root/interop for the profile\n"
                "// registration classes.\n\n")
    names = [n for n in schema.order if n.startswith("QRX_") and
             (namespace is None or namespace in schema.classes[n].served_namespaces)]
    return out + "\n".join(vendor_class(schema, schema.classes[n]) for n in ordered(schema, names))


def hierarchy_mof(schema):
    out = BANNER + "// Class hierarchy for the in-process test object manager.\n\n"
    decls = []
    for name in ordered(schema, schema.all_class_names()):
        parent = schema.parent_of(name)
        head = "class %s" % name + (" : %s" % parent if parent else "")
        body = ""
        cls = schema.classes.get(name)
        if cls:
            body = "".join(property_decl(p, ["Key"]) for p in cls.key_properties)
        decls.append("%s%s {\n%s};\n" % (class_qualifiers(kind_of(schema, name)), head, body))
    return out + "\n".join(decls)


def generate(schema):
    return {"mof/qrx_classes.mof": vendor_mof(schema),
            "mof/qrx_interop.mof": vendor_mof(schema, "root/interop"),
            "mof/cim_hierarchy.mof": hierarchy_mof(schema)}
