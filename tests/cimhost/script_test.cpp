// The lines of a qrx-cim run script: how they split into words, what each
// asks for, and which options a line may give.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "tools/cimhost/CommandLine.h"
#include "tools/cimhost/Script.h"

namespace {

using cimhost::Invocation;
using cimhost::ScriptLine;
using Words = std::vector<std::string>;

// The words of `irLine`, or the error alone.
Words split(const std::string& irLine) {
  Words words;
  std::string error;
  if (!cimhost::splitWords(irLine, &words, &error)) return {"error: " + error};
  return words;
}

TEST(ScriptTest, WordsSplitAsInTheShell) {
  EXPECT_EQ((Words{"gi", "QRX_X.Id=\"a b\"", "--json"}),
            split("  gi\t'QRX_X.Id=\"a b\"'  --json "));
  EXPECT_EQ((Words{"ab cd e", "--pl", ""}), split("a\"b c\"'d'\\ e --pl \"\""));
  // In double quotes only \" \\ \$ \` escape; in single quotes nothing does.
  EXPECT_EQ((Words{"x\"y\\z\\n$`", "'", "a\\\"b"}), split("\"x\\\"y\\\\z\\n\\$\\`\" \\' 'a\\\"b'"));
  EXPECT_EQ(Words{}, split(" \t "));

  EXPECT_EQ(Words{"error: unterminated ' quote"}, split("gi 'QRX_X.Id=\"a\""));
  EXPECT_EQ(Words{"error: unterminated \" quote"}, split("gi \"abc\\\""));
  EXPECT_EQ(Words{"error: backslash at the end of the line"}, split("gi abc\\"));
}

// What a line asks for, as "kind details", or the error.
std::string describe(const std::string& irLine) {
  ScriptLine line;
  std::string error;
  if (!cimhost::parseScriptLine(irLine, &line, &error)) return "error: " + error;
  std::ostringstream out;
  switch (line.kind) {
    case ScriptLine::Kind::Skip: out << "skip"; break;
    case ScriptLine::Kind::Shell: out << "shell " << line.text; break;
    case ScriptLine::Kind::Echo: out << "echo " << line.text; break;
    case ScriptLine::Kind::Sleep: out << "sleep " << line.seconds; break;
    case ScriptLine::Kind::Command:
      out << "command";
      for (const std::string& word : line.words) out << " [" << word << "]";
      break;
  }
  return out.str();
}

TEST(ScriptTest, LinesAreCommandsShellCommandsSleepsEchoesOrSkipped) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "skip"},
      {" \t", "skip"},
      {"  # gi 'unterminated", "skip"},
      {" !  qrx-switchsim event 'a b' > /dev/null # kept",
       "shell qrx-switchsim event 'a b' > /dev/null # kept"},
      {"sleep 0.5", "sleep 0.5"},
      {"sleep .25", "sleep 0.25"},
      {"sleep 3", "sleep 3"},
      {"echo  == 'a  b'   ==", "echo == a  b =="},
      {"echo", "echo "},
      {"gi 'P x' --json", "command [gi] [P x] [--json]"},
      {"ein C # not a comment", "command [ein] [C] [#] [not] [a] [comment]"},
      {"!", "error: ! needs a shell command"},
      {"sleep", "error: sleep needs SECONDS"},
      {"sleep 1 2", "error: too many arguments for sleep: '2'"},
      {"sleep -1", "error: sleep needs a number of seconds such as 0.5, not '-1'"},
      {"sleep 1e3", "error: sleep needs a number of seconds such as 0.5, not '1e3'"},
      {"sleep 1.2.3", "error: sleep needs a number of seconds such as 0.5, not '1.2.3'"},
      {"sleep .", "error: sleep needs a number of seconds such as 0.5, not '.'"},
      {"sleep 86401", "error: sleep takes at most 86400 seconds, not 86401"},
      {"echo 'open", "error: unterminated ' quote"},
  };
  for (const auto& entry : cases) EXPECT_EQ(entry.second, describe(entry.first)) << entry.first;
}

TEST(ScriptTest, LinesStartFromTheRunOptionsButKeepItsLibrary) {
  Invocation run;
  std::string error;
  ASSERT_TRUE(cimhost::parseCommandLine({"-n", "ns1", "--json", "run", "-", "--mof", "m.mof"}, &run,
                                        &error))
      << error;
  EXPECT_EQ(cimhost::Command::Run, run.command->command);

  Invocation line;
  ASSERT_TRUE(cimhost::parseScriptCommand({"ein", "C"}, run, &line, &error)) << error;
  EXPECT_EQ("ns1", line.nameSpace);
  EXPECT_TRUE(line.json);
  EXPECT_FALSE(line.verbose);
  EXPECT_TRUE(line.mofFiles.empty());
  ASSERT_TRUE(cimhost::parseScriptCommand({"ein", "C", "-n", "ns2", "-v"}, run, &line, &error));
  EXPECT_EQ("ns2", line.nameSpace);
  EXPECT_TRUE(line.verbose && line.json);
  EXPECT_TRUE(cimhost::parseScriptCommand({"run", "--help"}, run, &line, &error)) << error;

  const std::vector<std::pair<Words, std::string>> errors = {
      {{"ein", "C", "--library", "x.so"}, "--library applies to the whole run, not to one line"},
      {{"ein", "C", "--provider-dir=d"},
       "--provider-dir applies to the whole run, not to one line"},
      {{"ein", "C", "--provider", "p"}, "--provider applies to the whole run, not to one line"},
      {{"ein", "C", "--mof", "m.mof"}, "--mof applies to the whole run, not to one line"},
      {{"run", "other.txt"}, "run cannot be used inside a script"},
      {{"frob"}, "unknown command 'frob'"},
  };
  for (const auto& entry : errors) {
    EXPECT_FALSE(cimhost::parseScriptCommand(entry.first, run, &line, &error));
    EXPECT_EQ(entry.second, error);
  }
}

}  // namespace
