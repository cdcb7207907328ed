"""The class generator: schema errors and what it writes."""

import os
import subprocess
import sys
import tempfile
import textwrap
import unittest

CODEGEN = os.path.join(os.path.dirname(__file__), "..", "..", "tools", "codegen", "scimgen.py")

TREE = """
tree {
    CIM_ManagedElement: CIM_ManagedSystemElement
    CIM_ManagedSystemElement: CIM_LogicalElement
    CIM_LogicalElement: QRX_Thing
    CIM_Component: QRX_ThingInThing
}
"""

THING = """
class QRX_Thing : CIM_LogicalElement {
    keys Name;
    string Name;
    uint16[] OperationalStatus;
    unmodelled sint64 Counter;
    new string Extra;
    new method Poke(in uint16 Level, out string[] Answers);
    method Inherited();
}
association QRX_ThingInThing : CIM_Component {
    keys GroupComponent, PartComponent;
    QRX_Thing REF GroupComponent;
    QRX_Thing REF PartComponent;
}
"""


class SchemaDir:
    def __init__(self, **files):
        self.dir = tempfile.TemporaryDirectory()
        for name, text in files.items():
            with open(os.path.join(self.dir.name, name + ".schema"), "w") as f:
                f.write(textwrap.dedent(text))

    def run(self, *args):
        return subprocess.run([sys.executable, CODEGEN, "--schema", self.dir.name] + list(args),
                              capture_output=True, text=True)

    def path(self, name):
        return os.path.join(self.dir.name, name + ".schema")


class SchemaErrors(unittest.TestCase):
    def expect_error(self, text, line, reason):
        schema = SchemaDir(tree=TREE, things=text)
        result = schema.run("--check")
        self.assertEqual(1, result.returncode, result.stderr)
        self.assertIn("%s:%d:" % (schema.path("things"), line), result.stderr)
        self.assertIn(reason, result.stderr)

    def test_errors_name_file_line_and_reason(self):
        self.expect_error("class QRX_Thing : CIM_LogicalElement {\n  sint64 Counter;\n}\n",
                          2, "no model representation")
        self.expect_error("class QRX_Thing : CIM_LogicalElement {\n  keys Name;\n  string Nam;\n}\n",
                          2, "key Name is not a property")
        self.expect_error("class QRX_Thing : CIM_ManagedElement {\n}\n",
                          1, "under CIM_LogicalElement in the tree")
        self.expect_error("class QRX_Thing : CIM_LogicalElement {\n  string A;\n  string A;\n}\n",
                          3, "declared twice")
        self.expect_error("\n\nassociation QRX_ThingInThing : CIM_Component {\n"
                          "  keys GroupComponent;\n  QRX_Other REF GroupComponent;\n"
                          "  QRX_Other REF PartComponent;\n}\n", 5, "not a model class")
        self.expect_error("class QRX_Thing : CIM_LogicalElement {\n  string A\n}\n",
                          3, "expected ';'")
        self.expect_error("class QRX_Thing : CIM_LogicalElement {\n  string A;\n", 1, "not closed")
        self.expect_error("class QRX_Thing : CIM_LogicalElement {\n  method M(inout uint8 X);\n}\n",
                          2, "expected 'in' or 'out'")
        self.expect_error("class QRX_Loose : CIM_Nowhere {\n}\n", 1, "superclass CIM_Nowhere")
        self.expect_error("class QRX_Thing : CIM_LogicalElement {\n  keys Name;\n  string Name;\n"
                          "  implements enumInstances, Frobnicate;\n}\n",
                          4, "Frobnicate is not an operation of QRX_Thing_Best")
        self.expect_error("handwritten class QRX_Thing : CIM_LogicalElement {\n  keys Name;\n"
                          "  string Name;\n}\nassociation QRX_ThingInThing : CIM_Component {\n"
                          "  keys GroupComponent, PartComponent;\n"
                          "  QRX_Thing REF GroupComponent;\n  QRX_Thing REF PartComponent;\n}\n",
                          7, "ends at QRX_Thing, which has no generated provider")
        self.expect_error("class QRX_Thing : CIM_LogicalElement {\n  namespaces qrx;\n"
                          "  namespaces interop;\n}\n", 3, "a second namespaces line")
        self.expect_error("class CIM_LogicalElement : CIM_ManagedSystemElement {\n"
                          "  namespaces qrx;\n}\n", 1, "not served, so it has no namespaces")

    def test_a_valid_schema_checks_clean(self):
        result = SchemaDir(tree=TREE, things=THING).run("--check")
        self.assertEqual(0, result.returncode, result.stderr)


class Output(unittest.TestCase):
    def setUp(self):
        self.schema = SchemaDir(tree=TREE, things=THING)
        self.out = tempfile.TemporaryDirectory()

    def generate(self):
        result = self.schema.run("--out", self.out.name)
        self.assertEqual(0, result.returncode, result.stderr)
        return result.stdout

    def read(self, name):
        with open(os.path.join(self.out.name, name)) as f:
            return f.read()

    def test_listed_files_are_the_written_files(self):
        listed = self.schema.run("--out", self.out.name, "--list").stdout.split()
        self.generate()
        written = []
        for root, _, files in os.walk(self.out.name):
            written += [os.path.join(root, f) for f in files]
        self.assertEqual(sorted(listed), sorted(written))

    def test_unchanged_files_are_not_rewritten(self):
        self.assertIn("changed", self.generate())
        header = os.path.join(self.out.name, "scimclasses", "QRX_Thing.h")
        before = os.stat(header).st_mtime_ns
        self.assertIn(" 0 changed", self.generate())
        self.assertEqual(before, os.stat(header).st_mtime_ns)

    def test_model_leaves_out_unmodelled_properties(self):
        self.generate()
        header = self.read("scimclasses/QRX_Thing.h")
        self.assertIn("cuint16_A OperationalStatus;", header)
        self.assertNotIn("Counter", header)
        source = self.read("scimclasses/QRX_Thing.cpp")
        self.assertIn('serializer.write("OperationalStatus", CMPI_uint16A, OperationalStatus);', source)

    def test_vendor_mof_declares_only_what_the_superclass_lacks(self):
        self.generate()
        mof = self.read("mof/qrx_classes.mof")
        thing = mof[mof.index("class QRX_Thing"):]
        thing = thing[:thing.index("};")]
        self.assertIn("string Extra;", thing)
        self.assertIn("uint32 Poke([IN] uint16 Level, [OUT] string Answers[]);", thing)
        self.assertNotIn("OperationalStatus", thing)
        self.assertNotIn("Inherited", thing)
        self.assertIn("[Key]\n   string Name;", self.read("mof/cim_hierarchy.mof"))
        assoc = mof[mof.index("[Association]\nclass QRX_ThingInThing : CIM_Component"):]
        self.assertIn('[Key, Override ("GroupComponent")]\n   QRX_Thing REF GroupComponent;', assoc)
        # Superclasses come before their subclasses in the hierarchy file.
        hierarchy = self.read("mof/cim_hierarchy.mof")
        self.assertLess(hierarchy.index("class CIM_LogicalElement"), hierarchy.index("class QRX_Thing"))


class Registration(unittest.TestCase):
    """The provider registrations name each served class's provider, kinds
    and namespaces."""

    def generate(self, schema_dir):
        out = tempfile.TemporaryDirectory()
        self.addCleanup(out.cleanup)
        result = schema_dir.run("--out", out.name, "--module-version", "4.5.6")
        self.assertEqual(0, result.returncode, result.stderr)
        texts = []
        for name in ("registration/qrxsmis.reg", "registration/qrxsmis-pegasus.mof",
                     "mof/qrx_interop.mof"):
            with open(os.path.join(out.name, name)) as f:
                texts.append(f.read())
        return texts

    @staticmethod
    def stanzas(reg):
        """class -> (provider, location, kinds, group, namespaces) of a .reg file."""
        found = {}
        for block in reg.split("\n#\n"):
            lines = [l.strip() for l in block.splitlines() if l.strip() and not l.startswith("#")]
            if not lines:
                continue
            fields = {}
            for line in lines[1:]:
                key, value = line.split(":", 1)
                fields.setdefault(key, []).extend(value.split())
            found[lines[0].strip("[]")] = (fields["provider"][0], fields["location"][0],
                                          " ".join(fields["type"]), fields["group"][0],
                                          fields["namespace"])
        return found

    def test_kinds_and_namespaces_follow_the_schema(self):
        things = THING.replace("keys Name;", "keys Name;\n    namespaces qrx, interop;", 1)
        things += "indication CIM_InstIndication : CIM_Indication {\n    string SourceInstanceHost;\n}\n"
        tree = TREE + "hierarchy {\n    CIM_Indication: CIM_InstIndication\n}\n"
        reg, pegasus, interop_mof = self.generate(SchemaDir(tree=tree, things=things))
        self.assertEqual({
            "QRX_Thing": ("QRX_Thing_Provider", "qrxsmis", "instance method", "qrxsmis",
                          ["root/qrx", "root/interop"]),
            "QRX_ThingInThing": ("QRX_ThingInThing_Provider", "qrxsmis", "instance association",
                                 "qrxsmis", ["root/qrx"]),
            "CIM_InstIndication": ("CIM_InstIndication_Provider", "qrxsmis", "indication",
                                   "qrxsmis", ["root/qrx"]),
        }, self.stanzas(reg))
        # The root/interop MOF declares only the classes served there.
        self.assertIn("class QRX_Thing : CIM_LogicalElement", interop_mof)
        self.assertNotIn("QRX_ThingInThing", interop_mof)
        self.assertEqual(1, pegasus.count("instance of PG_ProviderModule"))
        self.assertIn('InterfaceType = "CMPI";\n   InterfaceVersion = "2.0.0";', pegasus)
        self.assertIn('Version = "4.5.6";', pegasus)
        self.assertEqual(3, pegasus.count("instance of PG_Provider\n"))
        thing = pegasus[pegasus.index('CapabilityID = "QRX_Thing";'):]
        self.assertIn('Namespaces = {"root/qrx", "root/interop"};\n   ProviderType = {2, 5};',
                      thing[:thing.index("\n};")])
        assoc = pegasus[pegasus.index('CapabilityID = "QRX_ThingInThing";'):]
        self.assertIn("ProviderType = {2, 3};", assoc[:assoc.index("\n};")])
        ind = pegasus[pegasus.index('CapabilityID = "CIM_InstIndication";'):]
        self.assertIn("ProviderType = {4};", ind[:ind.index("\n};")])

    def test_the_schema_registers_the_factories_the_library_exports(self):
        # tests/provider_factories.txt lists the exported factories (another
        # test compares it with the library); a class missing there may
        # only be an indication whose MI is not exported yet.
        root = os.path.join(os.path.dirname(__file__), "..", "..")
        reg, _, _ = self.generate(SchemaDirAt(os.path.join(root, "schema")))
        registered = self.stanzas(reg)
        exported = {}
        with open(os.path.join(root, "tests", "provider_factories.txt")) as f:
            for line in f:
                if line.strip() and not line.startswith("#"):
                    words = line.split()
                    exported[words[0]] = " ".join(w.lower() for w in words[1:])
        for name, kinds in exported.items():
            self.assertIn(name, registered)
            self.assertEqual(kinds, registered[name][2], name)
        for name in set(registered) - set(exported):
            self.assertEqual("indication", registered[name][2], name)
        self.assertEqual(["root/interop"], registered["QRX_RegisteredProfile"][4])
        self.assertEqual(["root/qrx", "root/interop"], registered["QRX_DebugFacility"][4])
        self.assertEqual(["root/qrx"], registered["QRX_Switch"][4])


class SchemaDirAt(SchemaDir):
    """An existing schema directory."""

    def __init__(self, path):
        self.dir = type("Dir", (), {"name": path})()


if __name__ == "__main__":
    unittest.main()
