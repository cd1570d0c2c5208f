// Parsing of the command line's panel-command arguments.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace lb::app {

// One click on the panel: a command id with the keys held and the two
// checkbox states.
struct CommandArg {
  int id = 0;
  bool alt = false;
  bool ctrl = false;
  bool useColor = true;
  bool useOpacity = true;
};

// "ID[+alt][+ctrl]" (modifiers in any order, each at most once, case
// insensitive). Returns nullopt for anything else; `why` says what is wrong.
std::optional<CommandArg> parseCommandArg(const std::string& text, std::string* why = nullptr);

// The commands of a run, from its options in the order given: ("command",
// "138+alt"), ("color", "off"), ("opacity", "on"), ... Each checkbox option
// holds for the commands after it; both start on. Throws
// std::invalid_argument with a message for a bad value.
std::vector<CommandArg> commandsInOrder(
    const std::vector<std::pair<std::string, std::string>>& options);

// "on" / "off".
std::optional<bool> parseSwitch(const std::string& text);

// "X,Y" with two integers.
std::optional<std::pair<int, int>> parsePoint(const std::string& text);

}  // namespace lb::app
