// The class hierarchy read from MOF: what the parser keeps, what it must
// skip, how repeated declarations merge, the queries, and the errors.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "tools/cimhost/broker/ClassHierarchy.h"

namespace {

using cimhost::ClassHierarchy;
using cimhost::KeyProperty;

// "name:type" per key, for compact comparisons.
std::vector<std::string> keyList(const ClassHierarchy& irClasses, const std::string& irClass) {
  std::vector<std::string> out;
  for (const KeyProperty& key : irClasses.keysOf(irClass)) out.push_back(key.name + ":" + key.type);
  return out;
}

// Everything the parser has to step over, around the few things it keeps.
const char kNoisyMof[] = R"MOF(// "quotes", { braces and class Fake : X { [Key] string F; };
#pragma include ("qualifiers.mof")
#pragma locale ("en_US")
Qualifier Key : boolean = false, Scope(property, reference),
    Flavor(DisableOverride, ToSubclass);
/* block comment
   class Hidden : Nothing { [Key] string Bogus; };
*/
[Abstract, Description ("A managed element; \"quoted\" text with ) ] } inside."),
 Version ("2.22.0")]
class CIM_ManagedElement {
  [Description ("Identifier")] string InstanceID;
  string Caption = "default; with a semicolon";
};

class CIM_System : CIM_ManagedElement {
  [Key, Propagated ("CIM_System.Name"), MaxLen (256),
   Description ("Its class \\ name")]
  string CreationClassName;
  [Key, Override ("Name"), ValueMap {"1", "2", ".."}, Values {"One", "Two", "Reserved"}]
  string Name;
  uint16 Dedicated[] = {1, 2};
  sint64 Offsets[4];
  char16 Letter = '\'';
  [Description ("A method with qualified parameters; [Key] inside a string")]
  uint32 RequestStateChange(
      [IN, ValueMap {"2", "3"}] uint16 RequestedState,
      [IN (false), OUT] CIM_ConcreteJob REF Job,
      [IN] datetime TimeoutPeriod = "00000000000000.000000:000");
  [Key (false)] string NotAKey;
};

instance of CIM_System as $sys { Name = "x"; Dedicated = {1}; Caption = "};"; };

[Association, Description ("assoc"), Version ("1.0.0")]
class QRX_SwitchInFabric : CIM_Component {
  [Key, Aggregate, Description ("The fabric")] QRX_Fabric REF GroupComponent;
  [Key] QRX_Switch REF PartComponent;
  [Description ("not a key")] QRX_Port REF Extra;
};

[Indication]
class QRX_Alert : CIM_Indication { string Text; };
)MOF";

TEST(ClassHierarchyTest, KeepsClassesAndKeysAndSkipsEverythingElse) {
  ClassHierarchy classes;
  std::string error;
  ASSERT_TRUE(classes.loadMofText(kNoisyMof, "noisy.mof", &error)) << error;

  EXPECT_EQ((std::vector<std::string>{"CIM_ManagedElement", "CIM_System", "QRX_Alert",
                                      "QRX_SwitchInFabric"}),
            classes.classNames());
  EXPECT_FALSE(classes.isKnown("Fake"));
  EXPECT_FALSE(classes.isKnown("Hidden"));

  EXPECT_EQ((std::vector<std::string>{"CreationClassName:string", "Name:string"}),
            keyList(classes, "CIM_System"));
  EXPECT_TRUE(keyList(classes, "CIM_ManagedElement").empty());
  EXPECT_EQ((std::vector<std::string>{"GroupComponent:QRX_Fabric REF",
                                      "PartComponent:QRX_Switch REF"}),
            keyList(classes, "QRX_SwitchInFabric"));
  EXPECT_TRUE(classes.keysOf("QRX_SwitchInFabric")[0].isReference());
  EXPECT_FALSE(classes.keysOf("CIM_System")[0].isReference());

  EXPECT_EQ("CIM_ManagedElement", classes.superclassOf("CIM_System"));
  EXPECT_EQ("", classes.superclassOf("CIM_ManagedElement"));
  EXPECT_TRUE(classes.isAssociation("QRX_SwitchInFabric"));
  EXPECT_FALSE(classes.isAssociation("CIM_System"));
  EXPECT_TRUE(classes.isIndication("QRX_Alert"));
  EXPECT_FALSE(classes.isIndication("QRX_SwitchInFabric"));
}

TEST(ClassHierarchyTest, MergesRedeclarationsAndAnswersInheritanceQueries) {
  ClassHierarchy classes;
  std::string error;
  // Stubs first, as the generated hierarchy file declares standard classes.
  ASSERT_TRUE(classes.loadMofText(R"(
      class CIM_System : CIM_EnabledLogicalElement { };
      class CIM_ComputerSystem : CIM_System { };
      [Association] class CIM_Component { };
      class QRX_Switch : CIM_ComputerSystem { [Key] string CreationClassName; [Key] string Name; };
  )", "stubs.mof", &error)) << error;
  ASSERT_TRUE(classes.loadMofText(R"(
      class CIM_System : CIM_EnabledLogicalElement {
        [Key] string Name;
        [Key] string CreationClassName;
      };
      class CIM_ManagedSystemElement { };
      class QRX_Switch : CIM_ComputerSystem { [Key] string Name; [Key] uint16 Domain; };
      class QRX_SwitchInFabric : CIM_Component { [Key] QRX_Fabric REF GroupComponent; };
  )", "full.mof", &error)) << error;

  // Keys: ancestors first, each once, first position kept on a merge.
  EXPECT_EQ((std::vector<std::string>{"Name:string", "CreationClassName:string"}),
            keyList(classes, "CIM_System"));
  EXPECT_EQ((std::vector<std::string>{"Name:string", "CreationClassName:string",
                                      "Domain:uint16"}),
            keyList(classes, "qrx_switch"));
  EXPECT_TRUE(keyList(classes, "QRX_Unknown").empty());

  // isA: itself, ancestors, an undeclared named superclass; names in any case.
  EXPECT_TRUE(classes.isA("QRX_Switch", "QRX_Switch"));
  EXPECT_TRUE(classes.isA("qrx_switch", "CIM_SYSTEM"));
  EXPECT_TRUE(classes.isA("QRX_Switch", "cim_enabledlogicalelement"));
  EXPECT_FALSE(classes.isA("CIM_System", "QRX_Switch"));
  EXPECT_FALSE(classes.isA("QRX_Switch", "CIM_ManagedSystemElement"));
  EXPECT_FALSE(classes.isA("CIM_EnabledLogicalElement", "CIM_EnabledLogicalElement"));
  EXPECT_FALSE(classes.isA("QRX_Unknown", "QRX_Unknown"));
  EXPECT_TRUE(classes.isKnown("cim_computersystem"));
  EXPECT_FALSE(classes.isKnown("CIM_EnabledLogicalElement"));

  // The Association qualifier is inherited.
  EXPECT_TRUE(classes.isAssociation("QRX_SwitchInFabric"));
  EXPECT_FALSE(classes.isAssociation("QRX_Switch"));
  EXPECT_FALSE(classes.isAssociation("QRX_Unknown"));
}

TEST(ClassHierarchyTest, ReportsFileAndLineAndKeepsTheHierarchyOnError) {
  struct Case {
    const char* text;
    const char* error;
  };
  const Case cases[] = {
      {"class A {\n  string X\n};\n", "bad.mof:3: unexpected '}' (missing ';'?)"},
      {"class A {\n  string X;\n}\n", "bad.mof:3: expected ';' after the class body"},
      {"class A {\n  [Key string X;\n};\n", "bad.mof:2: unexpected ';' in qualifier list"},
      {"\n[Description (\"x\"] class A { };", "bad.mof:2: ']' does not match '('"},
      {"class A {\n  [Description (\"open\n  string X;\n};\n",
       "bad.mof:2: line break in a literal"},
      {"class A { };\n/* never closed\n", "bad.mof:2: unterminated comment"},
      {"class A { };\n\nfoo A;\n", "bad.mof:3: unexpected 'foo'"},
      {"class A : { };", "bad.mof:1: expected a superclass name"},
      {"class A {\n  string 5;\n};", "bad.mof:2: malformed property or method declaration"},
      {"class A {\n  [Key] string X;\n  [Key] string x;\n};",
       "bad.mof:3: key x declared twice in A"},
      {"class Known : Root { };", "bad.mof:1: class Known redeclared with superclass 'Root', "
                                  "but base.mof:1 declares ''"},
      {"class Known {\n [Key] uint32 Id; };",
       "bad.mof:1: key Known.Id redeclared as 'uint32', but was 'string'"},
      {"class B : C { };\nclass C : B { };", "bad.mof:2: class C inherits from itself"},
      {"instance of A { X = 1; }", "bad.mof:1: expected ';' after instance"},
  };
  for (const Case& c : cases) {
    ClassHierarchy classes;
    std::string error;
    ASSERT_TRUE(classes.loadMofText("class Known { [Key] string Id; };", "base.mof", &error));
    EXPECT_FALSE(classes.loadMofText(c.text, "bad.mof", &error)) << c.text;
    EXPECT_EQ(c.error, error) << c.text;
    EXPECT_EQ(std::vector<std::string>{"Known"}, classes.classNames()) << c.text;
  }

  // A failed load adds nothing, not even the classes before the error.
  ClassHierarchy classes;
  std::string error;
  EXPECT_FALSE(classes.loadMofText("class Good { };\nclass Bad {", "partial.mof", &error));
  EXPECT_EQ("partial.mof:2: class Bad has no closing '}'", error);
  EXPECT_FALSE(classes.isKnown("Good"));
}

TEST(ClassHierarchyTest, LoadsFilesAndReportsUnreadableOnes) {
  const std::string path = ::testing::TempDir() + "class_hierarchy_test.mof";
  {
    std::ofstream out(path);
    out << "[Association]\nclass QRX_Link : CIM_Dependency {\n"
           "  [Key] QRX_Port REF Antecedent;\n  [Key] QRX_Port REF Dependent;\n};\n"
           "class QRX_Broken {\n";
  }
  ClassHierarchy classes;
  std::string error;
  EXPECT_FALSE(classes.loadMofFile(path, &error));
  EXPECT_EQ(path + ":6: class QRX_Broken has no closing '}'", error);

  {
    std::ofstream out(path, std::ios::app);
    out << "};\n";
  }
  ASSERT_TRUE(classes.loadMofFile(path, &error)) << error;
  EXPECT_TRUE(classes.isAssociation("QRX_Link"));
  EXPECT_EQ((std::vector<std::string>{"Antecedent:QRX_Port REF", "Dependent:QRX_Port REF"}),
            keyList(classes, "QRX_Link"));
  std::remove(path.c_str());

  EXPECT_FALSE(classes.loadMofFile(path, &error));
  EXPECT_EQ(path + ": cannot open", error);
}

}  // namespace
