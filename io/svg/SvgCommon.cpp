// Names, base64 and the drawn area shared by the SVG writer and reader.
#include "io/svg/SvgCommon.h"

#include <sstream>
#include <vector>

#include "host/Color.h"
#include "io/svg/SvgSyntax.h"
#include "render/Render.h"

namespace lb::io::svg {

namespace {
const char* const kBlendNames[] = {"normal",     "multiply",   "screen",    "overlay",    "soft-light", "hard-light",
                                   "color-dodge", "color-burn", "darken",    "lighten",    "difference", "exclusion",
                                   "hue",        "saturation", "color",     "luminosity"};
const char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
}  // namespace

std::string blendName(int mode) {
  if (mode < 0 || mode >= 16) return "normal";
  return kBlendNames[mode];
}

int blendFromName(const std::string& name) {
  for (int k = 0; k < 16; ++k)
    if (name == kBlendNames[k]) return k;
  return -1;
}

std::string base64(const std::string& bytes) {
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  size_t k = 0;
  for (; k + 2 < bytes.size(); k += 3) {
    const uint32_t v = (uint8_t(bytes[k]) << 16) | (uint8_t(bytes[k + 1]) << 8) | uint8_t(bytes[k + 2]);
    for (int s = 18; s >= 0; s -= 6) out += kAlphabet[(v >> s) & 63];
  }
  if (k < bytes.size()) {
    uint32_t v = uint8_t(bytes[k]) << 16;
    if (k + 1 < bytes.size()) v |= uint8_t(bytes[k + 1]) << 8;
    out += kAlphabet[(v >> 18) & 63];
    out += kAlphabet[(v >> 12) & 63];
    out += k + 1 < bytes.size() ? kAlphabet[(v >> 6) & 63] : '=';
    out += '=';
  }
  return out;
}

bool unbase64(const std::string& text, std::string* bytes) {
  bytes->clear();
  uint32_t acc = 0;
  int bits = 0;
  for (char c : text) {
    if (c == '=' ) break;
    if (c == ' ' || c == '\n' || c == '\r' || c == '\t') continue;
    const char* p = std::char_traits<char>::find(kAlphabet, 64, c);
    if (!p) return false;
    acc = (acc << 6) | static_cast<uint32_t>(p - kAlphabet);
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      bytes->push_back(static_cast<char>((acc >> bits) & 0xff));
    }
  }
  return true;
}

std::string exactColour(const AIColor& c) {
  if (c.kind == kNoneColor) return "none";
  double v[4];
  lb::host::colorComponents(c, v);
  const int n = lb::host::componentCount(c.kind);
  std::string out = c.kind == kGrayColor ? "gray" : c.kind == kFourColor ? "cmyk" : "rgb";
  for (int k = 0; k < n; ++k) out += " " + fmt(v[k]);
  return out;
}

bool parseExactColour(const std::string& text, AIColor* c) {
  std::istringstream in(text);
  std::string kind;
  in >> kind;
  if (kind == "none") {
    c->kind = kNoneColor;
    return true;
  }
  const AIColorTag tag = kind == "gray" ? kGrayColor : kind == "cmyk" ? kFourColor : kind == "rgb" ? kThreeColor : kNoneColor;
  if (tag == kNoneColor) return false;
  std::string rest;
  std::getline(in, rest);
  std::vector<double> v;
  if (!parseNumbers(rest, &v) || static_cast<int>(v.size()) != lb::host::componentCount(tag)) return false;
  for (double x : v)
    if (!(x >= 0 && x <= 1)) return false;
  *c = lb::host::colorFromComponents(tag, v.data());
  return true;
}

AIRealRect documentArea(const lb::host::Document& doc) { return lb::render::renderArea(doc); }

}  // namespace lb::io::svg
