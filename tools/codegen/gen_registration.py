"""Provider registrations for CIM object managers.

Every class the library serves (the QRX_ classes and the indication classes)
is registered with its provider `<Class>_Provider`, the management-interface
kinds of its factories and the namespaces it is served in:

- registration/qrxsmis.reg: one stanza per class for an sfcb-style
  repository stage, all classes in one provider group so that the library
  is loaded once; the namespaces on one line (sfcb takes only the last of
  several namespace lines);
- registration/qrxsmis-pegasus.mof: a PG_ProviderModule for the library
  (CMPI 2.0), a PG_Provider per provider and a PG_ProviderCapabilities per
  class, for OpenPegasus's cimmof into its interop namespace.
"""

from gen_mof import BANNER

# The library's file is lib<LOCATION>.so.
LOCATION = "qrxsmis"

# PG_ProviderCapabilities.ProviderType values.
PEGASUS_TYPES = {"instance": 2, "association": 3, "indication": 4, "method": 5}


def served(schema):
    return [schema.classes[n] for n in sorted(schema.classes) if schema.classes[n].served]


def sfcb_registration(schema):
    out = BANNER.replace("//", "#")
    out += ("# Provider registration of lib%s.so: one stanza per class.\n\n" % LOCATION)
    for cls in served(schema):
        out += "[%s]\n" % cls.name
        out += "   provider: %s_Provider\n" % cls.name
        out += "   location: %s\n" % LOCATION
        out += "   type: %s\n" % " ".join(cls.mi_kinds)
        out += "   group: %s\n" % LOCATION
        out += "   unload: never\n"
        out += "   namespace: %s\n" % " ".join(cls.served_namespaces)
        out += "#\n"
    return out


def pegasus_registration(schema, version):
    out = BANNER
    out += ("// Provider registration of lib%s.so. Load into root/PG_InterOp after\n"
            "// the classes are in their namespaces.\n\n" % LOCATION)
    out += ("instance of PG_ProviderModule\n{\n"
            '   Name = "%s";\n   Location = "%s";\n   Vendor = "QRX";\n   Version = "%s";\n'
            '   InterfaceType = "CMPI";\n   InterfaceVersion = "2.0.0";\n};\n\n'
            % (LOCATION, LOCATION, version))
    for cls in served(schema):
        provider = cls.name + "_Provider"
        out += ("instance of PG_Provider\n{\n"
                '   ProviderModuleName = "%s";\n   Name = "%s";\n};\n\n' % (LOCATION, provider))
        out += ("instance of PG_ProviderCapabilities\n{\n"
                '   ProviderModuleName = "%s";\n   ProviderName = "%s";\n'
                '   CapabilityID = "%s";\n   ClassName = "%s";\n'
                "   Namespaces = {%s};\n   ProviderType = {%s};\n"
                "   SupportedProperties = NULL;\n   SupportedMethods = NULL;\n};\n\n"
                % (LOCATION, provider, cls.name, cls.name,
                   ", ".join('"%s"' % ns for ns in cls.served_namespaces),
                   ", ".join(str(PEGASUS_TYPES[k]) for k in cls.mi_kinds)))
    return out


def generate(schema):
    return {"registration/%s.reg" % LOCATION: sfcb_registration(schema),
            "registration/%s-pegasus.mof" % LOCATION: pegasus_registration(schema, schema.version)}
