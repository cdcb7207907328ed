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


if __name__ == "__main__":
    unittest.main()
