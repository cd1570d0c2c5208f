// Pictures for the command line and the demo.
#pragma once

#include <string>

#include "host/Document.h"

namespace lb::app {

// Draws `doc` into `outPng` atomically. Throws std::runtime_error on failure.
void renderPng(const lb::host::Document& doc, const std::string& outPng, double scale,
               bool selection);

}  // namespace lb::app
