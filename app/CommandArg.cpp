// Parsing `--command ID[+alt][+ctrl]` arguments and keeping their order.
#include "app/CommandArg.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <stdexcept>

namespace lb::app {
namespace {
bool ParseInt(const std::string& s, int* out) {
  if (s.empty()) return false;
  size_t i = (s[0] == '-' || s[0] == '+') ? 1 : 0;
  if (i == s.size()) return false;
  for (size_t k = i; k < s.size(); ++k)
    if (!std::isdigit(static_cast<unsigned char>(s[k]))) return false;
  errno = 0;
  char* end = nullptr;
  long v = std::strtol(s.c_str(), &end, 10);
  if (errno || v < INT_MIN || v > INT_MAX) return false;
  *out = static_cast<int>(v);
  return true;
}

std::string Lower(std::string s) {
  for (char& c : s) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}
}  // namespace

std::optional<CommandArg> parseCommandArg(const std::string& text, std::string* why) {
  auto fail = [&](const std::string& reason) -> std::optional<CommandArg> {
    if (why) *why = reason;
    return std::nullopt;
  };
  const size_t plus = text.find('+', 1);  // a leading sign belongs to the number
  CommandArg cmd;
  if (!ParseInt(text.substr(0, plus), &cmd.id))
    return fail("'" + text + "' does not start with a command id");
  size_t pos = plus;
  while (pos != std::string::npos) {
    size_t next = text.find('+', pos + 1);
    const std::string mod =
        Lower(text.substr(pos + 1, next == std::string::npos ? std::string::npos : next - pos - 1));
    if (mod == "alt") {
      if (cmd.alt) return fail("'" + text + "' names alt twice");
      cmd.alt = true;
    } else if (mod == "ctrl") {
      if (cmd.ctrl) return fail("'" + text + "' names ctrl twice");
      cmd.ctrl = true;
    } else {
      return fail("'" + text + "': unknown modifier '" + mod + "' (use +alt and +ctrl)");
    }
    pos = next;
  }
  return cmd;
}

std::vector<CommandArg> commandsInOrder(
    const std::vector<std::pair<std::string, std::string>>& options) {
  std::vector<CommandArg> cmds;
  bool useColor = true, useOpacity = true;
  for (const auto& [name, value] : options) {
    if (name == "color" || name == "opacity") {
      auto v = parseSwitch(value);
      if (!v) throw std::invalid_argument("--" + name + " takes on or off, not '" + value + "'");
      (name == "color" ? useColor : useOpacity) = *v;
    } else if (name == "command") {
      std::string why;
      auto cmd = parseCommandArg(value, &why);
      if (!cmd) throw std::invalid_argument("--command " + why);
      cmd->useColor = useColor;
      cmd->useOpacity = useOpacity;
      cmds.push_back(*cmd);
    } else {
      throw std::invalid_argument("unknown option --" + name);
    }
  }
  return cmds;
}

std::optional<bool> parseSwitch(const std::string& text) {
  const std::string s = Lower(text);
  if (s == "on") return true;
  if (s == "off") return false;
  return std::nullopt;
}

std::optional<std::pair<int, int>> parsePoint(const std::string& text) {
  const size_t comma = text.find(',');
  if (comma == std::string::npos) return std::nullopt;
  int x = 0, y = 0;
  if (!ParseInt(text.substr(0, comma), &x) || !ParseInt(text.substr(comma + 1), &y))
    return std::nullopt;
  return std::make_pair(x, y);
}

}  // namespace lb::app
