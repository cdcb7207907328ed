// qrx-cim end to end: the real executable, run as a child process against
// the echo provider library (echo_provider.c), for every kind of command.
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include "tests/cimhost/RunTool.h"
#include "tools/cimhost/ProviderLibrary.h"
#include "tools/cimhost/broker/TestBroker.h"

namespace {

using cimhost_test::runQrxCim;
using cimhost_test::ToolRun;
using json = nlohmann::ordered_json;

const char kMof[] = R"(
class QRX_CimHostTest { [Key] string Id; [Key] uint16 Num; };
class QRX_CimHostTestChild : QRX_CimHostTest { };
class QRX_Unrelated { [Key] string Name; };
[Association] class QRX_CimHostTestLink {
  [Key] QRX_CimHostTest REF Source; [Key] QRX_CimHostTest REF Peer; };
[Association] class QRX_CimHostTestAlso {
  [Key] QRX_CimHostTest REF Source; [Key] QRX_Unrelated REF Peer; };
[Association] class QRX_UnrelatedLink {
  [Key] QRX_Unrelated REF Source; [Key] QRX_Unrelated REF Peer; };
class QRX_CimHostTestBroken { [Key] string Id; };
[Indication] class QRX_CimHostTestAlert { };
)";

const std::string kLibrary = QRX_ECHO_PROVIDER;
const std::string kUsage = "Try 'qrx-cim --help' for more information.\n";

// A path for a scratch file of this process (test cases run in parallel
// processes); the files are removed when the process ends.
std::string scratch(const std::string& irName) {
  static struct Files {
    std::vector<std::string> paths;
    ~Files() {
      for (const std::string& path : paths) std::remove(path.c_str());
    }
  } files;
  files.paths.push_back(::testing::TempDir() + std::to_string(getpid()) + "_" + irName);
  return files.paths.back();
}

std::string writeFile(const std::string& irName, const std::string& irText) {
  const std::string path = scratch(irName);
  std::ofstream(path) << irText;
  return path;
}

// The options that make qrx-cim use the echo provider with the test MOF.
std::vector<std::string> echoOptions() {
  static const std::string mof = writeFile("qrx_cim_test.mof", kMof);
  return {"--library", kLibrary, "--mof", mof};
}

// Runs qrx-cim on the echo provider with the test MOF.
ToolRun run(std::vector<std::string> ipArgs, const std::map<std::string, std::string>& irEnv = {}) {
  const std::vector<std::string> options = echoOptions();
  ipArgs.insert(ipArgs.end(), options.begin(), options.end());
  return runQrxCim(ipArgs, irEnv);
}

json parsed(const ToolRun& irRun) {
  json out = json::parse(irRun.out, nullptr, false);
  EXPECT_FALSE(out.is_discarded()) << irRun.out;
  return out;
}

const char kTest[] = R"(QRX_CimHostTest.Id="s",Num=1)";

TEST(QrxCimTest, EnumerationsPrintMofTextAndJson) {
  ToolRun names = run({"ein", "QRX_CimHostTest"});
  EXPECT_EQ(0, names.exitCode) << names.err;
  EXPECT_EQ("root/qrx:QRX_CimHostTest.Id=\"a\",Num=1\n"
            "root/qrx:QRX_CimHostTest.Id=\"b \\\"q\\\"\",Num=2\n",
            names.out);
  EXPECT_EQ("", names.err);
  EXPECT_EQ(json({"other/ns:QRX_CimHostTest.Id=\"a\",Num=1",
                  "other/ns:QRX_CimHostTest.Id=\"b \\\"q\\\"\",Num=2"}),
            parsed(run({"ein", "--json", "-n", "other/ns", "qrx_cimhosttest"})));

  ToolRun mof = run({"ei", "QRX_CimHostTest"});
  EXPECT_EQ(0, mof.exitCode) << mof.err;
  EXPECT_EQ(0u, mof.out.find("// root/qrx:QRX_CimHostTest.Id=\"a\",Num=1\n"
                             "instance of QRX_CimHostTest {\n    Id = \"a\";\n    Num = 1;\n"))
      << mof.out;
  for (const char* line : {"    Big = 18446744073709551615;\n", "    Names = {\"x\", \"y,z\"};\n",
                           "    Nothing = NULL;\n", "    PropertyList = NULL;\n",
                           "    When = \"20240131120000.000000+060\";\n"}) {
    EXPECT_NE(std::string::npos, mof.out.find(line)) << line;
  }
  EXPECT_NE(std::string::npos,
            mof.out.find("};\n\n// root/qrx:QRX_CimHostTest.Id=\"b\",Num=2\n"
                         "instance of QRX_CimHostTest {\n    Id = \"b\";\n};\n"))
      << mof.out;

  const json list =
      parsed(run({"ei", "QRX_CimHostTest", "--json", "--pl", "Id,Num", "--all-properties"}));
  ASSERT_EQ(2u, list.size());
  EXPECT_EQ("root/qrx:QRX_CimHostTest.Id=\"a\",Num=1", list[0]["path"]);
  EXPECT_EQ("QRX_CimHostTest", list[0]["class"]);
  const json& p = list[0]["properties"];
  EXPECT_EQ("Id", p.begin().key());  // the provider's order
  EXPECT_TRUE(p["Big"].is_number_unsigned());
  EXPECT_EQ(18446744073709551615ull, p["Big"].get<uint64_t>());
  EXPECT_EQ(-5, p["Neg"]);
  EXPECT_EQ(0.1, p["Ratio"].get<double>());
  EXPECT_EQ(true, p["Flag"]);
  EXPECT_EQ(json({"x", "y,z"}), p["Names"]);
  EXPECT_EQ("20240131120000.000000+060", p["When"]);
  EXPECT_EQ("root/qrx:QRX_CimHostTest.Id=\"a\",Num=1", p["Self"]);
  EXPECT_TRUE(p["Nothing"].is_null());
  EXPECT_EQ("nested", p["Inner"]["properties"]["Note"]);
  EXPECT_EQ(json({"Id", "Num"}), p["PropertyList"]);

  // --verbose shows the broker's log and the provider calls.
  ToolRun verbose = run({"ein", "QRX_CimHostTest", "--verbose"});
  EXPECT_NE(std::string::npos, verbose.err.find("enumerating names")) << verbose.err;
  EXPECT_NE(std::string::npos,
            verbose.err.find("QRX_CimHostTest instance provider: enumerateInstanceNames "
                             "root/qrx:QRX_CimHostTest"))
      << verbose.err;
  EXPECT_EQ(names.out, verbose.out);
}

TEST(QrxCimTest, GetAndDeleteReachTheProviderTyped) {
  const json got = parsed(run({"gi", "qrx_cimhosttest.id=\"k1\",num=5", "--json"}));
  EXPECT_EQ("QRX_CimHostTest", got["class"]);
  EXPECT_EQ("k1", got["properties"]["Id"]);
  EXPECT_EQ(5, got["properties"]["Num"]);
  EXPECT_EQ("Id:string,Num:uint16", got["properties"]["KeyTypes"]);
  EXPECT_EQ("root/qrx", got["properties"]["ContextNameSpace"]);
  EXPECT_TRUE(got["properties"]["PropertyList"].is_null());
  EXPECT_EQ(json::array(),
            parsed(run({"gi", kTest, "--json", "--property-list=", "--all-properties"}))
                ["properties"]["PropertyList"]);
  // Without --all-properties only the listed properties are printed (names
  // ignoring case), as a client of an object manager would get them.
  EXPECT_EQ((json{{"Id", "k1"}, {"Num", 5}}),
            parsed(run({"gi", "QRX_CimHostTest.Id=\"k1\",Num=5", "--json", "--pl", "num,ID"}))
                ["properties"]);
  EXPECT_EQ(json::object(), parsed(run({"gi", kTest, "--json", "--pl", ""}))["properties"]);
  const ToolRun mof = run({"gi", "QRX_CimHostTest.Id=\"k1\",Num=5", "--pl", "Num"});
  EXPECT_NE(std::string::npos, mof.out.find("instance of QRX_CimHostTest {\n    Num = 5;\n};\n"))
      << mof.out;

  ToolRun missing = run({"gi", "QRX_CimHostTest.Id=\"missing\",Num=1"});
  EXPECT_EQ(1, missing.exitCode);
  EXPECT_EQ("", missing.out);
  EXPECT_EQ("qrx-cim: GetInstance failed: CMPI_RC_ERR_NOT_FOUND (6): no instance missing\n",
            missing.err);
  ToolRun silent = run({"di", "QRX_CimHostTest.Id=\"silent\",Num=1"});
  EXPECT_EQ(1, silent.exitCode);
  EXPECT_EQ("qrx-cim: DeleteInstance failed: CMPI_RC_ERR_FAILED (1)\n", silent.err);

  ToolRun deleted = run({"di", kTest});
  EXPECT_EQ(0, deleted.exitCode);
  EXPECT_EQ("", deleted.out + deleted.err);
  ToolRun noDone = run({"gi", "QRX_CimHostTest.Id=\"nodone\",Num=1"});
  EXPECT_EQ(0, noDone.exitCode);
  EXPECT_EQ("qrx-cim: warning: QRX_CimHostTest instance provider returned from getInstance "
            "without calling returnDone\n",
            noDone.err);
  ToolRun twice = run({"di", "QRX_CimHostTest.Id=\"twice\",Num=1"});
  EXPECT_EQ(0, twice.exitCode);
  EXPECT_EQ("qrx-cim: warning: QRX_CimHostTest instance provider used the result 1 time(s) "
            "after returnDone in deleteInstance\n",
            twice.err);
}

TEST(QrxCimTest, CreateInstanceSendsTypedPropertiesAndPrintsThePath) {
  ToolRun created = run({"ci", "QRX_CimHostTest", "Id=new", "Num:uint16=7", "Flag:BOOLEAN=TRUE",
                         "Tags:string[]=\"a,b\",c", "Ref:ref=QRX_Unrelated.Name=\"u\""});
  EXPECT_EQ(0, created.exitCode) << created.err;
  // The echo provider makes every property a key; PathKeys counts the keys
  // of the path it was given (the declared keys Id and Num).
  EXPECT_EQ("root/qrx:QRX_CimHostTest.Id=\"new\",Num=7,Flag=true,Tags={\"a,b\", \"c\"},"
            "Ref=\"root/qrx:QRX_Unrelated.Name=\\\"u\\\"\",PathKeys=\"2\"\n",
            created.out);
  EXPECT_EQ(json("root/qrx:QRX_CimHostTest.Id=\"j\",PathKeys=\"1\""),
            parsed(run({"ci", "QRX_CimHostTest", "Id=j", "--json"})));
}

// The By property of each result: which association class answered.
std::vector<std::string> answeredBy(const ToolRun& irRun) {
  std::vector<std::string> by;
  for (const json& item : parsed(irRun)) by.push_back(item["properties"]["By"]);
  return by;
}

TEST(QrxCimTest, AssociationsAskEveryClassWithAMatchingEnd) {
  ToolRun names = run({"an", kTest});
  EXPECT_EQ(0, names.exitCode) << names.err;
  EXPECT_EQ("root/qrx:QRX_CimHostTest.Id=\"QRX_CimHostTestAlso\",Num=7\n"
            "root/qrx:QRX_CimHostTest.Id=\"QRX_CimHostTestLink\",Num=7\n",
            names.out);
  using Classes = std::vector<std::string>;
  EXPECT_EQ((Classes{"QRX_CimHostTestAlso", "QRX_CimHostTestLink"}),
            answeredBy(run({"a", "QRX_CimHostTestChild.Id=\"c\",Num=1", "--json"})));
  EXPECT_EQ((Classes{"QRX_CimHostTestAlso", "QRX_UnrelatedLink"}),
            answeredBy(run({"r", "QRX_Unrelated.Name=\"u\"", "--json"})));
  EXPECT_EQ((Classes{"QRX_CimHostTestAlso", "QRX_CimHostTestLink", "QRX_UnrelatedLink"}),
            answeredBy(run({"a", "QRX_Nobody.X=\"1\"", "--json"})));

  // Named classes and filters reach the provider; absent ones are NULL.
  const json filtered = parsed(run({"a", kTest, "--ac", "qrx_cimhosttestlink", "--rc",
                                    "QRX_CimHostTestPeer", "--role", "Source", "--rr", "Peer",
                                    "--pl", "By", "--all-properties", "--json"}));
  ASSERT_EQ(1u, filtered.size());
  const json& p = filtered[0]["properties"];
  EXPECT_EQ("QRX_CimHostTestLink", p["By"]);
  EXPECT_EQ(json({"qrx_cimhosttestlink", "QRX_CimHostTestPeer", "Source", "Peer"}),
            json({p["Filter1"], p["Filter2"], p["Filter3"], p["Filter4"]}));
  EXPECT_EQ(json({"By"}), p["PropertyList"]);
  const json plain = parsed(run({"a", kTest, "--ac", "QRX_CimHostTestLink", "--json"}));
  EXPECT_TRUE(plain[0]["properties"]["Filter2"].is_null());

  const json refs =
      parsed(run({"r", kTest, "--rc", "QRX_CimHostTestAlso", "--role", "Source", "--json"}));
  ASSERT_EQ(1u, refs.size());
  EXPECT_EQ("root/qrx:QRX_CimHostTestAlso.Source=\"root/qrx:QRX_CimHostTest.Id=\\\"s\\\",Num=1\","
            "Peer=\"root/qrx:QRX_CimHostTest.Id=\\\"s\\\",Num=1\"",
            refs[0]["path"]);
  EXPECT_EQ(json({"QRX_CimHostTestAlso", "Source"}),
            json({refs[0]["properties"]["Filter1"], refs[0]["properties"]["Filter2"]}));
  ToolRun refNames = run({"rn", kTest, "--rc", "QRX_CimHostTestLink", "--role", "Peer"});
  EXPECT_EQ("root/qrx:QRX_CimHostTestLink.Source=\"root/qrx:QRX_CimHostTest.Id=\\\"s\\\","
            "Num=1\",Role=\"Peer\"\n",
            refNames.out);

  // The results of the classes that answered stay; the first failure is
  // reported.
  ToolRun linkFails = run({"an", "QRX_CimHostTest.Id=\"linkfail\",Num=1"});
  EXPECT_EQ(1, linkFails.exitCode);
  EXPECT_EQ("root/qrx:QRX_CimHostTest.Id=\"QRX_CimHostTestAlso\",Num=7\n", linkFails.out);
  EXPECT_EQ("qrx-cim: AssociatorNames failed: CMPI_RC_ERR_FAILED (1): link broken\n",
            linkFails.err);
  ToolRun bothFail = run({"rn", "QRX_CimHostTest.Id=\"assocfail\",Num=1"});
  EXPECT_EQ(1, bothFail.exitCode);
  EXPECT_EQ("", bothFail.out);
  EXPECT_EQ("qrx-cim: ReferenceNames failed: CMPI_RC_ERR_NOT_SUPPORTED (7): also unsupported\n",
            bothFail.err);
}

TEST(QrxCimTest, InvokeMethodPrintsReturnValueAndOutputArguments) {
  const std::vector<std::string> call = {"im",           kTest,           "Sum", "A:uint16=2",
                                         "B:uint16=40", "S=x",           "Flags:boolean[]=true,false",
                                         "R:ref=QRX_CimHostTest.Id=\"r\",Num=2"};
  ToolRun text = run(call);
  EXPECT_EQ(0, text.exitCode) << text.err;
  EXPECT_EQ("ReturnValue = 42\n"
            "Echo = \"root/qrx:QRX_CimHostTest.Id=\\\"s\\\",Num=1\"\n"
            "Types = {\"A:uint16\", \"B:uint16\", \"S:string\", \"Flags:boolean[]\", \"R:ref\"}\n",
            text.out);
  std::vector<std::string> jsonCall = call;
  jsonCall.push_back("--json");
  const json result = parsed(run(jsonCall));
  EXPECT_EQ(42, result["returnValue"]);
  EXPECT_EQ("root/qrx:QRX_CimHostTest.Id=\"s\",Num=1", result["out"]["Echo"]);
  EXPECT_EQ(5u, result["out"]["Types"].size());

  ToolRun unknown = run({"im", kTest, "Nope"});
  EXPECT_EQ(1, unknown.exitCode);
  EXPECT_EQ("qrx-cim: InvokeMethod failed: CMPI_RC_ERR_METHOD_NOT_FOUND (17): Nope\n",
            unknown.err);
}

TEST(QrxCimTest, UsageAndLoadErrorsExitWithTheirCodes) {
  ToolRun badPath = run({"gi", "QRX_CimHostTest.Num=70000"});
  EXPECT_EQ(2, badPath.exitCode);
  EXPECT_EQ("qrx-cim: object path 'QRX_CimHostTest.Num=70000': uint16 value 70000 out of range "
            "for key Num\nTry 'qrx-cim get-instance --help' for more information.\n",
            badPath.err);
  ToolRun badArg = run({"im", kTest, "Sum", "X:uint16=x"});
  EXPECT_EQ(2, badArg.exitCode);
  EXPECT_EQ(0u, badArg.err.find("qrx-cim: bad uint16 value 'x' for X")) << badArg.err;
  ToolRun unknown = run({"frobnicate"});
  EXPECT_EQ(2, unknown.exitCode);
  EXPECT_EQ("qrx-cim: unknown command 'frobnicate'\n" + kUsage, unknown.err);
  EXPECT_EQ(2, run({"ei", kTest}).exitCode);
  EXPECT_EQ(2, runQrxCim({}).exitCode);

  ToolRun noLibrary = runQrxCim({"ein", "X", "--library", "/nonexistent/libx.so", "--mof",
                                 writeFile("empty.mof", "")});
  EXPECT_EQ(3, noLibrary.exitCode);
  EXPECT_EQ(0u, noLibrary.err.find("qrx-cim: cannot load provider library /nonexistent/libx.so: "))
      << noLibrary.err;
  ToolRun notServed = run({"ei", "QRX_Unrelated"});
  EXPECT_EQ(3, notServed.exitCode);
  EXPECT_EQ("qrx-cim: library " + kLibrary + " serves no instance provider for class QRX_Unrelated\n",
            notServed.err);
  ToolRun noMethods = run({"im", "QRX_Unrelated.Name=\"u\"", "Reset"});
  EXPECT_EQ(3, noMethods.exitCode);
  EXPECT_NE(std::string::npos, noMethods.err.find("serves no method provider")) << noMethods.err;
  ToolRun broken = run({"ein", "QRX_CimHostTestBroken"});
  EXPECT_EQ(3, broken.exitCode);
  EXPECT_EQ("qrx-cim: QRX_CimHostTestBroken_Provider_Create_InstanceMI in " + kLibrary +
                " failed: CMPI_RC_ERR_FAILED (1): backend down\n",
            broken.err);

  const std::string badMof = writeFile("bad.mof", "class X {\n  [Key] string K\n};\n");
  ToolRun mof = runQrxCim({"ein", "X", "--library", kLibrary, "--mof", badMof});
  EXPECT_EQ(3, mof.exitCode);
  EXPECT_EQ(0u, mof.err.find("qrx-cim: cannot read the class hierarchy: " + badMof + ":"))
      << mof.err;
  EXPECT_EQ(3, runQrxCim({"ein", "X", "--mof", "/nonexistent.mof"}).exitCode);
}

// The lines of a file; none if it does not exist.
std::vector<std::string> lines(const std::string& irPath) {
  std::vector<std::string> out;
  std::ifstream in(irPath);
  for (std::string line; std::getline(in, line);) out.push_back(line);
  return out;
}

TEST(QrxCimTest, LibraryIsFoundLoadedOnceAndCleanedUp) {
  const std::string dir = kLibrary.substr(0, kLibrary.rfind('/'));
  const std::string name = kLibrary.substr(dir.size() + 4, kLibrary.size() - dir.size() - 7);
  ToolRun byDir = runQrxCim({"ein", "QRX_CimHostTest", "--provider-dir", dir, "--provider", name,
                             "--mof", writeFile("qrx_cim_dir.mof", kMof)});
  EXPECT_EQ(0, byDir.exitCode) << byDir.err;
  ToolRun byEnv = runQrxCim({"ein", "QRX_CimHostTest", "--mof", writeFile("env.mof", kMof)},
                            {{"QRX_CIM_LIBRARY", kLibrary}});
  EXPECT_EQ(0, byEnv.exitCode) << byEnv.err;
  EXPECT_EQ(byDir.out, byEnv.out);
  ToolRun defaultName = runQrxCim({"ein", "X", "--provider-dir", dir, "--mof",
                                   writeFile("empty.mof", "")});
  EXPECT_EQ(3, defaultName.exitCode);
  EXPECT_NE(std::string::npos, defaultName.err.find(dir + "/libqrxsmis.so")) << defaultName.err;

  // Each factory is called once, and each MI it made cleaned up.
  const std::string log = scratch("calls.log");
  std::remove(log.c_str());
  EXPECT_EQ(0, run({"an", "QRX_Nobody.X=\"1\""}, {{"QRX_ECHO_PROVIDER_LOG", log}}).exitCode);
  EXPECT_EQ((std::vector<std::string>{
                "create association QRX_CimHostTestAlso",
                "create association QRX_CimHostTestLink",
                "create association QRX_UnrelatedLink",
                "cleanup-terminating association QRX_CimHostTestAlso",
                "cleanup-terminating association QRX_CimHostTestLink",
                "cleanup-terminating association QRX_UnrelatedLink",
            }),
            lines(log));

  // classes looks the factories up without calling them.
  std::remove(log.c_str());
  ToolRun classes = run({"classes", "--json"}, {{"QRX_ECHO_PROVIDER_LOG", log}});
  EXPECT_EQ(json::parse(R"([
      {"class": "QRX_CimHostTest", "providers": ["instance", "method"]},
      {"class": "QRX_CimHostTestAlert", "providers": ["indication"]},
      {"class": "QRX_CimHostTestAlso", "providers": ["association"]},
      {"class": "QRX_CimHostTestBroken", "providers": ["instance"]},
      {"class": "QRX_CimHostTestLink", "providers": ["association"]},
      {"class": "QRX_UnrelatedLink", "providers": ["association"]}])"),
            parsed(classes));
  EXPECT_TRUE(lines(log).empty());
  EXPECT_EQ(0u, run({"classes"}).out.find("QRX_CimHostTest        instance method\n"));
}

TEST(ProviderLibraryTest, FactoriesRunOnceAndEveryMiIsCleanedUp) {
  const std::string log = scratch("library.log");
  setenv("QRX_ECHO_PROVIDER_LOG", log.c_str(), 1);
  cimhost::TestBroker broker;
  cimhost::ProviderLibrary library(broker);
  std::string error;
  EXPECT_FALSE(library.open("/nonexistent/libx.so", &error));
  EXPECT_EQ(0u, error.find("cannot load provider library /nonexistent/libx.so: ")) << error;
  ASSERT_TRUE(library.open(kLibrary, &error)) << error;

  EXPECT_TRUE(library.exports("QRX_CimHostTest", cimhost::MiKind::Method));
  EXPECT_FALSE(library.exports("QRX_CimHostTest", cimhost::MiKind::Association));
  CMPIInstanceMI* mi = library.instanceMI("QRX_CimHostTest", &error);
  ASSERT_NE(nullptr, mi);
  EXPECT_EQ(mi, library.instanceMI("QRX_CimHostTest", &error));
  EXPECT_EQ(nullptr, library.instanceMI("QRX_CimHostTestBroken", &error));
  std::string again;
  EXPECT_EQ(nullptr, library.instanceMI("QRX_CimHostTestBroken", &again));
  EXPECT_EQ(error, again);
  EXPECT_EQ(nullptr, library.associationMI("QRX_CimHostTest", &error));
  EXPECT_EQ("library " + kLibrary + " serves no association provider for class QRX_CimHostTest",
            error);
  EXPECT_TRUE(library.cleanup().empty());
  EXPECT_TRUE(library.cleanup().empty());
  unsetenv("QRX_ECHO_PROVIDER_LOG");
  EXPECT_EQ((std::vector<std::string>{"create instance QRX_CimHostTest",
                                      "create instance QRX_CimHostTestBroken",
                                      "cleanup-terminating instance QRX_CimHostTest"}),
            lines(log));
}

TEST(QrxCimTest, RunKeepsTheLibraryLoadedAcrossTheLinesOfAScript) {
  const std::string script = writeFile("script.txt",
                                       "# names, then something outside\n"
                                       "echo  == names ==\n"
                                       "ein QRX_CimHostTest\n"
                                       "! echo from the shell; exit 3\n"
                                       "sleep 0.3\n"
                                       "gi 'QRX_CimHostTest.Id=\"missing\",Num=1'\n"
                                       "ein QRX_CimHostTest --mof other.mof\n"
                                       "gi 'QRX_CimHostTest.Id=\"open\n"
                                       "\n"
                                       "ei QRX_Unrelated\n"
                                       "ein QRX_CimHostTest -n other/ns\r\n");
  const std::string log = scratch("run.log");
  std::remove(log.c_str());
  // "run -" reads the script from standard input; --json applies to every line.
  std::vector<std::string> args = {"-c", "exec \"$@\" < \"$SCRIPT\"", "sh"};
  const std::vector<std::string> cim = cimhost_test::builtProgramCommand(cimhost_test::qrxCimPath());
  args.insert(args.end(), cim.begin(), cim.end());
  args.insert(args.end(), {"run", "-", "--json"});
  const std::vector<std::string> options = echoOptions();
  args.insert(args.end(), options.begin(), options.end());
  const auto start = std::chrono::steady_clock::now();
  ToolRun ran = cimhost_test::runProgram("/bin/sh", args,
                                         {{"SCRIPT", script}, {"QRX_ECHO_PROVIDER_LOG", log}});
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(300));

  // Output as each command prints it alone, in the order of the lines; the
  // last failing line (the class the library does not serve) gives the status.
  EXPECT_EQ("== names ==\n" + run({"ein", "QRX_CimHostTest", "--json"}).out + "from the shell\n" +
                run({"ein", "QRX_CimHostTest", "-n", "other/ns", "--json"}).out,
            ran.out);
  EXPECT_EQ("qrx-cim: line 4: shell command exited with status 3\n"
            "qrx-cim: GetInstance failed: CMPI_RC_ERR_NOT_FOUND (6): no instance missing\n"
            "qrx-cim: line 7: --mof applies to the whole run, not to one line\n"
            "qrx-cim: line 8: unterminated ' quote\n"
            "qrx-cim: library " +
                kLibrary + " serves no instance provider for class QRX_Unrelated\n",
            ran.err);
  EXPECT_EQ(3, ran.exitCode);
  // One provider served all three lines, and was cleaned up at the end.
  EXPECT_EQ((std::vector<std::string>{"create instance QRX_CimHostTest",
                                      "cleanup-terminating instance QRX_CimHostTest"}),
            lines(log));

  // From a file (standard input no longer flushes the output before each
  // line is read), and with every line succeeding.
  ToolRun clean = run(
      {"run", writeFile("clean.txt", "echo ok\nein QRX_CimHostTest\n! echo from the shell\n")});
  EXPECT_EQ(0, clean.exitCode) << clean.err;
  EXPECT_EQ("ok\n" + run({"ein", "QRX_CimHostTest"}).out + "from the shell\n", clean.out);
  ToolRun missing = run({"run", "/nonexistent/script.txt"});
  EXPECT_EQ(3, missing.exitCode);
  EXPECT_EQ("qrx-cim: cannot read script /nonexistent/script.txt: No such file or directory\n",
            missing.err);
}

TEST(QrxCimTest, HelpShowsEveryCommandWithAnExample) {
  ToolRun help = runQrxCim({"--help"});
  EXPECT_EQ(0, help.exitCode);
  for (const char* text : {"ei|enumerate-instances CLASS", "e.g. qrx-cim ein QRX_Zone",
                           "im|invoke-method PATH METHOD", "classes", "--provider-dir DIR",
                           "NAME:TYPE[]=A,B,...", "Exit status"}) {
    EXPECT_NE(std::string::npos, help.out.find(text)) << text;
  }
  ToolRun command = runQrxCim({"help", "gi"});
  EXPECT_EQ(0, command.exitCode);
  EXPECT_EQ(0u, command.out.find("Usage: qrx-cim [OPTIONS] gi|get-instance PATH\n"));
  EXPECT_NE(std::string::npos, command.out.find("--property-list"));
  EXPECT_EQ(command.out, runQrxCim({"get-instance", "--help"}).out);
  EXPECT_EQ(2, runQrxCim({"help", "nope"}).exitCode);
}

}  // namespace

namespace {

// A cross build's tests start the build's programs through the emulator
// that QRX_TEST_EMULATOR names: its words, then the program and its
// arguments; without one, the program alone.
TEST(RunToolTest, BuiltProgramsStartThroughTheTestEmulator) {
  const char* outer = std::getenv("QRX_TEST_EMULATOR");
  const std::string kept = outer ? outer : "";

  setenv("QRX_TEST_EMULATOR", " env  QRX_RUN_TOOL_PROBE=through ", 1);
  EXPECT_EQ((std::vector<std::string>{"env", "QRX_RUN_TOOL_PROBE=through", "/bin/sh"}),
            cimhost_test::builtProgramCommand("/bin/sh"));
  ToolRun run = cimhost_test::runBuiltProgram(
      "/bin/sh", {"-c", "echo \"$QRX_RUN_TOOL_PROBE $0 $1\"", "zero", "one"});
  EXPECT_EQ(0, run.exitCode) << run.err;
  EXPECT_EQ("through zero one\n", run.out);

  setenv("QRX_TEST_EMULATOR", "", 1);
  EXPECT_EQ(std::vector<std::string>{"/bin/sh"}, cimhost_test::builtProgramCommand("/bin/sh"));
  run = cimhost_test::runBuiltProgram("/bin/sh", {"-c", "echo \"[$QRX_RUN_TOOL_PROBE]\""});
  EXPECT_EQ("[]\n", run.out);

  setenv("QRX_TEST_EMULATOR", "no-such-emulator-program", 1);
  run = cimhost_test::runBuiltProgram("/bin/sh", {"-c", "true"});
  EXPECT_EQ(127, run.exitCode);
  // (Under an emulator the spawning child is a copy of the process, which
  // cannot hand the reason back: there the exit status alone tells.)
  if (kept.empty()) {
    EXPECT_NE(std::string::npos, run.err.find("cannot start no-such-emulator-program")) << run.err;
  }

  if (outer) {
    setenv("QRX_TEST_EMULATOR", kept.c_str(), 1);
  } else {
    unsetenv("QRX_TEST_EMULATOR");
  }
}

}  // namespace
