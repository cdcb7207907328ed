// The lines of a qrx-cim run script, read into what each asks for.
//
// A line starting with '!' (after blanks) is a shell command: the rest of
// the line, as it is. Every other line is split into words the way the
// shell splits a simple command:
//
//   - blanks (spaces, tabs) separate words;
//   - '...' keeps everything up to the next ' as it is;
//   - "..." does too, except that \" \\ \$ \` stand for the second
//     character;
//   - outside quotes a backslash keeps the next character as it is;
//   - quoted text joins the word it touches; '' alone is an empty word.
//
// There is no expansion of any kind. A line whose first word is `sleep`
// or `echo` is that built-in; a line without words, or whose first
// character that is not a blank is '#', is skipped; any other line is a
// qrx-cim command.
#ifndef QRX_TOOLS_CIMHOST_SCRIPT_H_
#define QRX_TOOLS_CIMHOST_SCRIPT_H_

#include <string>
#include <vector>

namespace cimhost {

struct ScriptLine {
  enum class Kind { Skip, Command, Shell, Sleep, Echo };

  Kind kind = Kind::Skip;
  std::vector<std::string> words;  // Command: the words of the command line
  std::string text;                // Shell: the shell command; Echo: the text
  double seconds = 0;              // Sleep
};

// The longest pause `sleep` takes, in seconds.
constexpr double kMaxSleepSeconds = 86400;

// Splits `irLine` into words as described above. False with *opError set
// to a one-line reason (an unterminated quote, a backslash at the end).
bool splitWords(const std::string& irLine, std::vector<std::string>* opWords,
                std::string* opError);

// Reads one line of a script (without its line end). False with *opError
// set to a one-line reason when the line cannot be read.
bool parseScriptLine(const std::string& irLine, ScriptLine* opLine, std::string* opError);

}  // namespace cimhost

#endif  // QRX_TOOLS_CIMHOST_SCRIPT_H_
