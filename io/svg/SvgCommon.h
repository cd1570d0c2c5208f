// Small pieces the SVG writer and reader share: names, base64, the area.
#pragma once

#include <string>

#include "host/Document.h"

namespace lb::io::svg {

// Namespace of the attributes that carry what SVG has no place for.
inline constexpr const char* kLbNamespace = "https://latticebender.org/ns/svg/1";
// Smallest grid cell the exporter cuts for colour, in document units.
inline constexpr double kMinCell = 3;

// CSS mix-blend-mode name of a blending mode, and back (-1 when unknown).
std::string blendName(int mode);
int blendFromName(const std::string& name);

std::string base64(const std::string& bytes);
// False when the text is not base64.
bool unbase64(const std::string& text, std::string* bytes);

// A colour exactly, with its kind: "gray g", "rgb r g b", "cmyk c m y k"
// (shortest round-trip numbers); "none".
std::string exactColour(const AIColor& c);
// False when the text is not such a colour or a component is outside 0..1.
bool parseExactColour(const std::string& text, AIColor* c);

// The artboard, or the bounds of all visible art (0, 1, 1, 0 when none).
AIRealRect documentArea(const lb::host::Document& doc);

}  // namespace lb::io::svg
