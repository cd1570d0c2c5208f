// `latticebender panel`: the command panel as a user would see it.
#pragma once

#include <optional>
#include <string>
#include <utility>

namespace lb::app {

// Loads the plug-in, lets it build its panel, optionally moves the cursor
// to `hover` and presses the left button at `press` (client pixels), and
// writes the panel window's pixels to `outPng`. Returns a process exit
// status (0 done, 4 failure) after printing any error to stderr.
int panelSnapshot(const std::string& outPng, std::optional<std::pair<int, int>> hover,
                  std::optional<std::pair<int, int>> press);

}  // namespace lb::app
