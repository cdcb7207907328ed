#include "tools/cimhost/Script.h"

#include <cstdlib>
#include <utility>

namespace cimhost {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }

// Decimal seconds: digits with an optional fraction ("2", "0.5", ".25").
bool parseSeconds(const std::string& irText, double* opSeconds) {
  size_t digits = 0;
  size_t dots = 0;
  for (char c : irText) {
    if (c >= '0' && c <= '9') {
      ++digits;
    } else if (c == '.') {
      ++dots;
    } else {
      return false;
    }
  }
  if (digits == 0 || dots > 1) return false;
  *opSeconds = std::strtod(irText.c_str(), nullptr);
  return true;
}

bool parseSleep(const std::vector<std::string>& irWords, ScriptLine* opLine,
                std::string* opError) {
  if (irWords.size() < 2) {
    *opError = "sleep needs SECONDS";
    return false;
  }
  if (irWords.size() > 2) {
    *opError = "too many arguments for sleep: '" + irWords[2] + "'";
    return false;
  }
  if (!parseSeconds(irWords[1], &opLine->seconds)) {
    *opError = "sleep needs a number of seconds such as 0.5, not '" + irWords[1] + "'";
    return false;
  }
  if (opLine->seconds > kMaxSleepSeconds) {
    *opError = "sleep takes at most 86400 seconds, not " + irWords[1];
    return false;
  }
  opLine->kind = ScriptLine::Kind::Sleep;
  return true;
}

}  // namespace

bool splitWords(const std::string& irLine, std::vector<std::string>* opWords,
                std::string* opError) {
  opWords->clear();
  std::string word;
  bool inWord = false;
  for (size_t i = 0; i < irLine.size(); ++i) {
    const char c = irLine[i];
    if (isBlank(c)) {
      if (inWord) opWords->push_back(word);
      word.clear();
      inWord = false;
      continue;
    }
    inWord = true;
    if (c == '\\') {
      if (++i == irLine.size()) {
        *opError = "backslash at the end of the line";
        return false;
      }
      word += irLine[i];
    } else if (c == '\'' || c == '"') {
      size_t end = i + 1;
      for (; end < irLine.size() && irLine[end] != c; ++end) {
        const bool escape = c == '"' && irLine[end] == '\\' && end + 1 < irLine.size() &&
                            std::string("\"\\$`").find(irLine[end + 1]) != std::string::npos;
        if (escape) ++end;
        word += irLine[end];
      }
      if (end == irLine.size()) {
        *opError = std::string("unterminated ") + c + " quote";
        return false;
      }
      i = end;
    } else {
      word += c;
    }
  }
  if (inWord) opWords->push_back(word);
  return true;
}

bool parseScriptLine(const std::string& irLine, ScriptLine* opLine, std::string* opError) {
  *opLine = ScriptLine();
  size_t start = 0;
  while (start < irLine.size() && isBlank(irLine[start])) ++start;
  if (start == irLine.size() || irLine[start] == '#') return true;
  if (irLine[start] == '!') {
    size_t first = start + 1;
    while (first < irLine.size() && isBlank(irLine[first])) ++first;
    if (first == irLine.size()) {
      *opError = "! needs a shell command";
      return false;
    }
    opLine->kind = ScriptLine::Kind::Shell;
    opLine->text = irLine.substr(first);
    return true;
  }
  std::vector<std::string> words;
  if (!splitWords(irLine, &words, opError)) return false;
  if (words.empty()) return true;
  if (words[0] == "sleep") return parseSleep(words, opLine, opError);
  if (words[0] == "echo") {
    opLine->kind = ScriptLine::Kind::Echo;
    for (size_t i = 1; i < words.size(); ++i) opLine->text += (i > 1 ? " " : "") + words[i];
    return true;
  }
  opLine->kind = ScriptLine::Kind::Command;
  opLine->words = std::move(words);
  return true;
}

}  // namespace cimhost
