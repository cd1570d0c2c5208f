// Pictures for the command line, through the renderer when it is built in.
#pragma once

#include <string>

#include "host/Document.h"

namespace lb::app {

// False while the renderer is not part of the build.
bool renderAvailable();
// Draws `doc` into `outPng` atomically. Throws std::runtime_error on failure.
void renderPng(const lb::host::Document& doc, const std::string& outPng, double scale,
               bool selection);

}  // namespace lb::app
