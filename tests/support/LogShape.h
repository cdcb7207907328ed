// The shapes of the trace log's lines, for tests that read a log back:
//   debug   "[function, line] ..."
//   error   "[unit, function, line] ERROR: ..."
//   notice  "Info: ..."
// The function is an identifier (the glue's composed names included, e.g.
// "QRX_Switch_Provider_enumInstances"), the unit a source path without
// extension, the line a decimal number.
#ifndef QRX_TESTS_SUPPORT_LOGSHAPE_H_
#define QRX_TESTS_SUPPORT_LOGSHAPE_H_

#include <cctype>
#include <string>
#include <vector>

enum class LogShape { None, Debug, Error, Notice };

inline LogShape logShape(const std::string& irLine) {
  if (irLine.rfind("Info: ", 0) == 0) return LogShape::Notice;
  const std::string::size_type close = irLine.find("] ");
  if (irLine.empty() || irLine[0] != '[' || close == std::string::npos) return LogShape::None;
  std::vector<std::string> fields;
  const std::string inside = irLine.substr(1, close - 1);
  for (std::string::size_type at = 0;;) {
    const std::string::size_type comma = inside.find(", ", at);
    fields.push_back(inside.substr(at, comma == std::string::npos ? std::string::npos : comma - at));
    if (comma == std::string::npos) break;
    at = comma + 2;
  }
  auto all = [](const std::string& irText, auto ipAllowed) {
    if (irText.empty()) return false;
    for (char c : irText) {
      if (!ipAllowed(static_cast<unsigned char>(c))) return false;
    }
    return true;
  };
  auto identifier = [&](const std::string& irText) {
    return !std::isdigit(static_cast<unsigned char>(irText[0])) &&
           all(irText, [](unsigned char c) { return std::isalnum(c) || c == '_'; });
  };
  auto number = [&](const std::string& irText) {
    return all(irText, [](unsigned char c) { return std::isdigit(c) != 0; });
  };
  auto unit = [&](const std::string& irText) {
    return all(irText, [](unsigned char c) { return std::isalnum(c) || c == '_' || c == '/'; });
  };
  if (fields.size() == 2 && !fields[0].empty() && identifier(fields[0]) && number(fields[1])) {
    return LogShape::Debug;
  }
  if (fields.size() == 3 && unit(fields[0]) && !fields[1].empty() && identifier(fields[1]) &&
      number(fields[2]) && irLine.compare(close + 2, 7, "ERROR: ") == 0) {
    return LogShape::Error;
  }
  return LogShape::None;
}

#endif  // QRX_TESTS_SUPPORT_LOGSHAPE_H_
