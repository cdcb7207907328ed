// The texts qrx-cim reads: object paths, typed values and the command line.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "cmpimacs.h"
#include "tools/cimhost/ArgumentText.h"
#include "tools/cimhost/CommandLine.h"
#include "tools/cimhost/PathText.h"
#include "tools/cimhost/broker/Types.h"
#include "tools/cimhost/broker/ValueText.h"

namespace {

using cimhost::Invocation;
using cimhost::TypedValue;

const char kMof[] = R"(
class T_Base { [Key] string Name; };
class T_Port : T_Base {
  [Key] uint16 Port; [Key] boolean Up; [Key] sint8 Delta; [Key] datetime Since; };
[Association] class T_Link { [Key] T_Base REF Left; [Key] T_Port REF Right; };
)";

std::string str(const CMPIString* ipString) { return CMGetCharPtr(ipString); }

class TextTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::string error;
    ASSERT_TRUE(ivHierarchy.loadMofText(kMof, "test.mof", &error)) << error;
  }

  // The parsed path's text, or the error.
  std::string path(const std::string& irText, const std::string& irNameSpace = "root/qrx") {
    std::string error;
    CMPIObjectPath* op = cimhost::parsePath(ivBroker, irText, irNameSpace, &error);
    return op ? str(CMObjectPathToString(op, nullptr)) : "error: " + error;
  }

  CMPIData key(CMPIObjectPath* ipPath, const char* ipName) {
    CMPIStatus rc = {CMPI_RC_OK, nullptr};
    CMPIData data = CMGetKey(ipPath, ipName, &rc);
    EXPECT_EQ(CMPI_RC_OK, rc.rc) << ipName;
    return data;
  }

  // "<type> <literal>" of a typed value, or the error.
  std::string typed(const std::string& irText) {
    TypedValue value;
    std::string error;
    if (!cimhost::parseTypedValue(ivBroker, irText, "root/qrx", &value, &error)) return error;
    CMPIData data{value.type, CMPI_goodValue, value.value};
    return cimhost::cimTypeName(value.type) + " " + cimhost::literalText(data);
  }

  cimhost::ClassHierarchy ivHierarchy;
  cimhost::TestBroker ivBroker{&ivHierarchy};
};

TEST_F(TextTest, PathKeysTakeTheDeclaredTypesAndSpelling) {
  std::string error;
  CMPIObjectPath* op = cimhost::parsePath(
      ivBroker,
      R"(//sw1/other/ns:t_port.name="a\"b\\c\n",PORT=8080,Up=TRUE,Delta=-3,Since="20240131120000.000000+060")",
      "root/qrx", &error);
  ASSERT_NE(nullptr, op) << error;
  EXPECT_EQ("T_Port", str(CMGetClassName(op, nullptr)));
  EXPECT_EQ("other/ns", str(CMGetNameSpace(op, nullptr)));
  EXPECT_EQ("sw1", str(CMGetHostname(op, nullptr)));
  CMPIString* name = nullptr;
  CMGetKeyAt(op, 1, &name, nullptr);
  EXPECT_EQ("Port", str(name));
  EXPECT_EQ(CMPI_string, key(op, "Name").type);
  EXPECT_EQ("a\"b\\c\n", str(key(op, "Name").value.string));
  EXPECT_EQ(CMPI_uint16, key(op, "Port").type);
  EXPECT_EQ(8080, key(op, "Port").value.uint16);
  EXPECT_EQ(CMPI_boolean, key(op, "Up").type);
  EXPECT_TRUE(key(op, "Up").value.boolean);
  EXPECT_EQ(CMPI_sint8, key(op, "Delta").type);
  EXPECT_EQ(-3, key(op, "Delta").value.sint8);
  EXPECT_EQ(CMPI_dateTime, key(op, "Since").type);

  // Keys the hierarchy does not know are typed by their text.
  op = cimhost::parsePath(ivBroker, R"(X_Unknown.S="1",U=5,N=-5,B=false)", "root/qrx", &error);
  ASSERT_NE(nullptr, op) << error;
  EXPECT_EQ(CMPI_string, key(op, "S").type);
  EXPECT_EQ(CMPI_uint64, key(op, "U").type);
  EXPECT_EQ(CMPI_sint64, key(op, "N").type);
  EXPECT_EQ(-5, key(op, "N").value.sint64);
  EXPECT_EQ(CMPI_boolean, key(op, "B").type);
  EXPECT_EQ("root/qrx:T_Base", path("T_Base"));
  EXPECT_EQ("ns2:T_Base", path("T_Base", "ns2"));
}

TEST_F(TextTest, ReferenceKeysNestAndReadBackTheirOwnText) {
  const std::string text =
      R"(T_Link.Left="T_Base.Name=\"x,y\"",Right="other:T_Port.Name=\"p\",Port=1,Up=false")";
  std::string error;
  CMPIObjectPath* op = cimhost::parsePath(ivBroker, text, "root/qrx", &error);
  ASSERT_NE(nullptr, op) << error;
  const CMPIData left = key(op, "Left");
  ASSERT_EQ(CMPI_ref, left.type);
  EXPECT_EQ("root/qrx", str(CMGetNameSpace(left.value.ref, nullptr)));
  const CMPIData right = key(op, "Right");
  ASSERT_EQ(CMPI_ref, right.type);
  EXPECT_EQ("other", str(CMGetNameSpace(right.value.ref, nullptr)));
  EXPECT_EQ(CMPI_uint16, key(right.value.ref, "Port").type);
  // What the host prints, it reads back the same.
  const std::string printed = path(text);
  EXPECT_EQ(printed, path(printed));
  EXPECT_EQ(
      R"(root/qrx:T_Link.Left="root/qrx:T_Base.Name=\"x,y\"",Right="other:T_Port.Name=\"p\",Port=1,Up=false")",
      printed);
}

TEST_F(TextTest, MalformedPathsAreRefusedWithTheReason) {
  EXPECT_EQ("error: object path 'T_Base.Name=abc': key Name of T_Base is a string; write its "
            "value in double quotes",
            path("T_Base.Name=abc"));
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "class name missing"},
      {"root/qrx:", "class name missing"},
      {":T_Base", "empty namespace before ':'"},
      {"//", "empty host name"},
      {"T-Base", "bad class name 'T-Base'"},
      {"T_Base.", "key expected after '.'"},
      {"T_Base.Name", "expected '=' after key Name"},
      {"T_Base.=1", "key name expected at position 1"},
      {"T_Base.Name=", "missing value of key Name"},
      {"T_Base.Name=\"abc", "unterminated string in the value of key Name"},
      {"T_Base.Name=\"a\\q\"", "unknown escape '\\q' in the value of key Name"},
      {"T_Base.Name=\"a\"x", "expected ',' after the value of key Name"},
      {"T_Base.Name=\"a\",", "key expected after the last ','"},
      {"T_Base.Name=\"a\",name=\"b\"", "key name given twice"},
      {"T_Port.Port=\"5\"", "key Port of T_Port is a uint16; write its value without quotes"},
      {"T_Port.Port=70000", "uint16 value 70000 out of range for key Port"},
      {"T_Port.Delta=-129", "sint8 value -129 out of range for key Delta"},
      {"T_Port.Up=yes", "bad boolean value 'yes' for key Up (true or false)"},
      {"T_Port.Since=\"2024\"", "bad datetime value '2024' for key Since"},
      {"T_Link.Left=T_Base", "key Left of T_Link is a reference; write its value in double quotes"},
      {"T_Link.Left=\"T_Base.Name=x\"",
       "key Left: object path 'T_Base.Name=x': key Name of T_Base is a string"},
      {"X.K=abc", "bad value 'abc' of key K (a quoted string, an integer, true or false)"},
      {"X.K=99999999999999999999", "uint64 value 99999999999999999999 out of range for key K"},
  };
  for (const auto& entry : cases) {
    const std::string result = path(entry.first);
    EXPECT_EQ(0u, result.find("error: object path '" + entry.first + "': ")) << result;
    EXPECT_NE(std::string::npos, result.find(entry.second)) << entry.first << " -> " << result;
  }
}

TEST_F(TextTest, TypedValuesReadEveryType) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"S=hello world", "string \"hello world\""},
      {"S:string=a=b:c", "string \"a=b:c\""},
      {"B:BOOLEAN=TRUE", "boolean true"},
      {"B:boolean=False", "boolean false"},
      {"U:uint8=255", "uint8 255"},
      {"U:uint16=65535", "uint16 65535"},
      {"U:uint32=4294967295", "uint32 4294967295"},
      {"U:uint64=18446744073709551615", "uint64 18446744073709551615"},
      {"I:sint8=-128", "sint8 -128"},
      {"I:sint16=+32767", "sint16 32767"},
      {"I:sint32=-2147483648", "sint32 -2147483648"},
      {"I:sint64=-9223372036854775808", "sint64 -9223372036854775808"},
      {"R:real32=0.5", "real32 0.5"},
      {"R:real64=-1e-3", "real64 -0.001"},
      {"C:char16=x", "char16 \"x\""},
      {"T:datetime=20240131120000.000000+060", "datetime \"20240131120000.000000+060\""},
      {"P:ref=T_Base.Name=\"n\"", "ref \"root/qrx:T_Base.Name=\\\"n\\\"\""},
      {"A:string[]=\"a,b\",c,\"say \\\"hi\\\"\"", "string[] {\"a,b\", \"c\", \"say \\\"hi\\\"\"}"},
      {"A:string[]=a,,b,", "string[] {\"a\", \"\", \"b\", \"\"}"},
      {"A:string[]=\"\"", "string[] {\"\"}"},
      {"E:uint32[]=", "uint32[] {}"},
      {"F:boolean[]=true,FALSE", "boolean[] {true, false}"},
      {"Q:ref[]=\"T_Base.Name=\\\"x\\\"\"", "ref[] {\"root/qrx:T_Base.Name=\\\"x\\\"\"}"},
  };
  for (const auto& entry : cases) EXPECT_EQ(entry.second, typed(entry.first)) << entry.first;
}

TEST_F(TextTest, BadTypedValuesSayWhatIsWrong) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"State:uint16=70000", "uint16 value 70000 out of range for State"},
      {"X:uint8=-1", "uint8 value -1 out of range for X"},
      {"X:sint8=128", "sint8 value 128 out of range for X"},
      {"X:sint64=-9223372036854775809", "sint64 value -9223372036854775809 out of range for X"},
      {"X:uint64=18446744073709551616", "uint64 value 18446744073709551616 out of range for X"},
      {"X:uint16=12a", "bad uint16 value '12a' for X (a decimal integer)"},
      {"X:uint16=", "bad uint16 value '' for X (a decimal integer)"},
      {"F:boolean=yes", "bad boolean value 'yes' for F (true or false)"},
      {"F:boolean=1", "bad boolean value '1' for F (true or false)"},
      {"X:real32=1e39", "real32 value 1e39 out of range for X"},
      {"X:real64=nan", "bad real64 value 'nan' for X (a finite number)"},
      {"X:char16=ab", "bad char16 value 'ab' for X (one ASCII character)"},
      {"X:datetime=2024", "bad datetime value '2024' for X (25 characters"},
      {"X:uint17=1", "unknown type 'uint17' for X (one of boolean, uint8,"},
      {"X:[]=1", "unknown type '[]' for X"},
      {"NoEquals", "bad argument 'NoEquals': expected NAME=VALUE or NAME:TYPE=VALUE"},
      {"1x=3", "bad argument '1x=3': '1x' is not a valid name"},
      {"R:ref=T_Base.Name=x", "bad reference for R: object path 'T_Base.Name=x': key Name"},
      {"A:uint16[]=1,70000", "uint16 value 70000 out of range for A[1]"},
      {"A:string[]=\"abc", "unterminated quote in element 0 in the value of A"},
      {"A:string[]=a,\"b\"c", "text after the closing quote of element 1 in the value of A"},
  };
  for (const auto& entry : cases) {
    EXPECT_EQ(0u, typed(entry.first).find(entry.second)) << entry.first << " -> " << typed(entry.first);
  }
  std::vector<TypedValue> values;
  std::string error;
  EXPECT_FALSE(cimhost::parseTypedValues(ivBroker, {"A=1", "a:uint8=2"}, "root/qrx", &values, &error));
  EXPECT_EQ("a given twice", error);
}

// Splits an example the way a shell does for its simple quoting.
std::vector<std::string> shellWords(const std::string& irText) {
  std::vector<std::string> words;
  std::string word;
  bool quoted = false;
  bool inWord = false;
  for (char c : irText) {
    if (c == '\'') {
      quoted = !quoted;
      inWord = true;
    } else if (c == ' ' && !quoted) {
      if (inWord) words.push_back(word);
      word.clear();
      inWord = false;
    } else {
      word += c;
      inWord = true;
    }
  }
  if (inWord) words.push_back(word);
  return words;
}

// The words' invocation, or the error.
std::string parse(const std::vector<std::string>& irWords, Invocation* opInvocation) {
  std::string error;
  return cimhost::parseCommandLine(irWords, opInvocation, &error) ? "" : error;
}

TEST(CommandLineTest, OptionsGoAnywhereAndBelongToTheirCommands) {
  Invocation inv;
  ASSERT_EQ("", parse({"-n", "ns1", "a", "--json", "P", "--pl=A,B", "-v", "--ac", "L",
                       "--result-role=R", "--mof", "a.mof", "--mof", "b.mof"},
                      &inv));
  EXPECT_EQ(cimhost::Command::Associators, inv.command->command);
  EXPECT_EQ(std::vector<std::string>{"P"}, inv.arguments);
  EXPECT_EQ("ns1", inv.nameSpace);
  EXPECT_TRUE(inv.json && inv.verbose);
  EXPECT_EQ((std::vector<std::string>{"A", "B"}), *inv.propertyList);
  EXPECT_EQ("L", *inv.filter.assocClass);
  EXPECT_EQ("R", *inv.filter.resultRole);
  EXPECT_EQ((std::vector<std::string>{"a.mof", "b.mof"}), inv.mofFiles);

  Invocation ended;
  ASSERT_EQ("", parse({"im", "--", "P", "-M", "--json"}, &ended));
  EXPECT_EQ((std::vector<std::string>{"P", "-M", "--json"}), ended.arguments);
  EXPECT_FALSE(ended.json);

  Invocation empty;
  ASSERT_EQ("", parse({"gi", "P", "--property-list", ""}, &empty));
  EXPECT_TRUE(empty.propertyList && empty.propertyList->empty());

  const std::vector<std::pair<std::vector<std::string>, std::string>> errors = {
      {{}, "no command given"},
      {{"bogus"}, "unknown command 'bogus'"},
      {{"gi"}, "get-instance needs PATH"},
      {{"im", "P"}, "invoke-method needs PATH METHOD [NAME[:TYPE]=VALUE...]"},
      {{"gi", "a", "b"}, "too many arguments for get-instance: 'b'"},
      {{"gi", "P", "--assoc-class", "X"}, "--assoc-class does not apply to get-instance"},
      {{"r", "P", "--rr", "X"}, "--result-role does not apply to references"},
      {{"ein", "C", "--pl", "A"}, "--property-list does not apply to enumerate-instance-names"},
      {{"ei", "C", "--library"}, "--library needs a value"},
      {{"ei", "C", "--frob"}, "unknown option '--frob'"},
      {{"ei", "C", "--json=1"}, "--json takes no value"},
      {{"ei", "C", "-n", "a:b"}, "bad namespace 'a:b'"},
      {{"ei", "C", "--library", "x", "--library", "y"}, "--library given twice"},
      {{"ei", "C", "--library", "x", "--provider-dir", "d"},
       "--library and --provider-dir exclude each other"},
      {{"ei", "C", "--provider", "x"}, "--provider needs --provider-dir"},
      {{"ei", "C", "--pl", "A,,B"}, "bad property name '' in --property-list"},
      {{"a", "P", "--ac", "1X"}, "--assoc-class needs a class or property name, not '1X'"},
  };
  for (const auto& entry : errors) {
    Invocation failed;
    EXPECT_EQ(entry.second, parse(entry.first, &failed));
  }

  // Every example the help shows is a valid command line.
  for (const cimhost::CommandInfo& command : cimhost::commandTable()) {
    Invocation example;
    EXPECT_EQ("", parse(shellWords(command.example), &example)) << command.example;
    EXPECT_EQ(&command, example.command);
  }
}

TEST(CommandLineTest, LibraryChoiceFollowsOptionsThenEnvironment) {
  Invocation inv;
  EXPECT_EQ("/build/libqrxsmis.so", cimhost::libraryPath(inv, nullptr, "/build/libqrxsmis.so"));
  EXPECT_EQ("/env/lib.so", cimhost::libraryPath(inv, "/env/lib.so", "/build/libqrxsmis.so"));
  EXPECT_EQ("/build/libqrxsmis.so", cimhost::libraryPath(inv, "", "/build/libqrxsmis.so"));
  inv.providerDir = "/om/providers";
  EXPECT_EQ("/om/providers/libqrxsmis.so", cimhost::libraryPath(inv, "/env/lib.so", "/d"));
  inv.provider = "other";
  EXPECT_EQ("/om/providers/libother.so", cimhost::libraryPath(inv, "/env/lib.so", "/d"));
  Invocation direct;
  direct.library = "./my.so";
  EXPECT_EQ("./my.so", cimhost::libraryPath(direct, "/env/lib.so", "/d"));
}

}  // namespace
