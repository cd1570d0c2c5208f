// Reading and writing .lbdoc documents.
#include "io/Lbdoc.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "host/MeshAccess.h"
#include "io/MeshJson.h"

namespace lb::io {
namespace {

using json = nlohmann::json;
using ojson = nlohmann::ordered_json;
using lb::host::Document;
using lb::host::GraphicStyle;

const char* const kBlendNames[] = {"normal",     "multiply",   "screen",     "overlay",  "softLight", "hardLight",
                                   "colorDodge", "colorBurn",  "darken",     "lighten",  "difference", "exclusion",
                                   "hue",        "saturation", "color",      "luminosity"};
constexpr int kBlendCount = sizeof(kBlendNames) / sizeof(kBlendNames[0]);

// ---- base64 ---------------------------------------------------------------

const char kB64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string base64Encode(const std::vector<uint8_t>& in) {
  std::string out;
  out.reserve((in.size() + 2) / 3 * 4);
  size_t k = 0;
  for (; k + 2 < in.size(); k += 3) {
    const uint32_t v = (uint32_t(in[k]) << 16) | (uint32_t(in[k + 1]) << 8) | in[k + 2];
    out += kB64[(v >> 18) & 63];
    out += kB64[(v >> 12) & 63];
    out += kB64[(v >> 6) & 63];
    out += kB64[v & 63];
  }
  if (k + 1 == in.size()) {
    const uint32_t v = uint32_t(in[k]) << 16;
    out += kB64[(v >> 18) & 63];
    out += kB64[(v >> 12) & 63];
    out += "==";
  } else if (k + 2 == in.size()) {
    const uint32_t v = (uint32_t(in[k]) << 16) | (uint32_t(in[k + 1]) << 8);
    out += kB64[(v >> 18) & 63];
    out += kB64[(v >> 12) & 63];
    out += kB64[(v >> 6) & 63];
    out += '=';
  }
  return out;
}

// False on characters outside the alphabet, bad padding or a bad length.
bool base64Decode(const std::string& in, std::vector<uint8_t>& out) {
  out.clear();
  if (in.size() % 4 != 0) return false;
  auto value = [](char c) -> int {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    if (c == '+') return 62;
    if (c == '/') return 63;
    return -1;
  };
  out.reserve(in.size() / 4 * 3);
  for (size_t k = 0; k < in.size(); k += 4) {
    const bool last = k + 4 == in.size();
    int v[4];
    int pad = 0;
    for (int q = 0; q < 4; ++q) {
      const char c = in[k + q];
      if (c == '=' && last && q >= 2) {
        v[q] = 0;
        ++pad;
        continue;
      }
      if (pad) return false;  // data after padding
      v[q] = value(c);
      if (v[q] < 0) return false;
    }
    const uint32_t w = (uint32_t(v[0]) << 18) | (uint32_t(v[1]) << 12) | (uint32_t(v[2]) << 6) | uint32_t(v[3]);
    out.push_back(uint8_t(w >> 16));
    if (pad < 2) out.push_back(uint8_t(w >> 8));
    if (pad < 1) out.push_back(uint8_t(w));
  }
  return true;
}

// ---- reading --------------------------------------------------------------

std::string key(const std::string& base, const std::string& k) { return base.empty() ? k : base + "." + k; }
std::string index(const std::string& base, size_t i) { return base + "[" + std::to_string(i) + "]"; }

[[noreturn]] void fail(const std::string& path, const std::string& msg) { throw FormatError(path, msg); }

const char* typeName(const json& v) { return v.type_name(); }

void expectObject(const json& v, const std::string& path) {
  if (!v.is_object()) fail(path, std::string("expected an object, found ") + typeName(v));
}
void expectArray(const json& v, const std::string& path) {
  if (!v.is_array()) fail(path, std::string("expected an array, found ") + typeName(v));
}

// Rejects keys outside `allowed` (and outside the extra test, if given).
template <class Extra>
void checkKeys(const json& obj, const std::string& path, std::initializer_list<const char*> allowed, Extra extra) {
  for (auto it = obj.begin(); it != obj.end(); ++it) {
    bool ok = extra(it.key());
    for (const char* a : allowed)
      if (it.key() == a) ok = true;
    if (!ok) fail(key(path, it.key()), "unknown key \"" + it.key() + "\"");
  }
}
void checkKeys(const json& obj, const std::string& path, std::initializer_list<const char*> allowed) {
  checkKeys(obj, path, allowed, [](const std::string&) { return false; });
}

const json& required(const json& obj, const char* k, const std::string& path) {
  auto it = obj.find(k);
  if (it == obj.end()) fail(key(path, k), std::string("missing required key \"") + k + "\"");
  return *it;
}

const json* optional(const json& obj, const char* k) {
  auto it = obj.find(k);
  return it == obj.end() ? nullptr : &*it;
}

double number(const json& v, const std::string& path) {
  if (!v.is_number()) fail(path, std::string("expected a number, found ") + typeName(v));
  const double d = v.get<double>();
  if (!std::isfinite(d)) fail(path, "number is not finite");
  return d;
}

double unitNumber(const json& v, const std::string& path) {
  const double d = number(v, path);
  if (d < 0 || d > 1) fail(path, "value outside 0..1");
  return d;
}

int64_t integer(const json& v, const std::string& path) {
  if (v.is_number_integer()) return v.get<int64_t>();
  if (v.is_number_float()) {
    const double d = number(v, path);
    if (d == std::floor(d) && std::fabs(d) < 9e15) return static_cast<int64_t>(d);
  }
  fail(path, std::string("expected an integer, found ") + (v.is_number() ? "a fraction" : typeName(v)));
}

bool boolean(const json& v, const std::string& path) {
  if (!v.is_boolean()) fail(path, std::string("expected true or false, found ") + typeName(v));
  return v.get<bool>();
}

std::string string(const json& v, const std::string& path) {
  if (!v.is_string()) fail(path, std::string("expected a string, found ") + typeName(v));
  return v.get<std::string>();
}

AIRealPoint point(const json& v, const std::string& path) {
  expectArray(v, path);
  if (v.size() != 2) fail(path, "expected [h, v]");
  return {number(v[0], index(path, 0)), number(v[1], index(path, 1))};
}

AIColor color(const json& v, const std::string& path) {
  AIColor c{};
  if (v.is_string()) {
    if (v.get<std::string>() != "none") fail(path, "unknown colour \"" + v.get<std::string>() + "\"");
    c.kind = kNoneColor;
    return c;
  }
  if (!v.is_object()) fail(path, std::string("expected a colour, found ") + typeName(v));
  if (v.size() != 1) fail(path, "a colour has exactly one of \"gray\", \"rgb\", \"cmyk\"");
  checkKeys(v, path, {"gray", "rgb", "cmyk"});
  if (const json* g = optional(v, "gray")) {
    c.kind = kGrayColor;
    c.c.g.gray = unitNumber(*g, key(path, "gray"));
  } else if (const json* rgb = optional(v, "rgb")) {
    const std::string p = key(path, "rgb");
    expectArray(*rgb, p);
    if (rgb->size() != 3) fail(p, "expected [r, g, b]");
    c.kind = kThreeColor;
    c.c.rgb.red = unitNumber((*rgb)[0], index(p, 0));
    c.c.rgb.green = unitNumber((*rgb)[1], index(p, 1));
    c.c.rgb.blue = unitNumber((*rgb)[2], index(p, 2));
  } else {
    const json& cmyk = v.at("cmyk");
    const std::string p = key(path, "cmyk");
    expectArray(cmyk, p);
    if (cmyk.size() != 4) fail(p, "expected [c, m, y, k]");
    c.kind = kFourColor;
    c.c.f.cyan = unitNumber(cmyk[0], index(p, 0));
    c.c.f.magenta = unitNumber(cmyk[1], index(p, 1));
    c.c.f.yellow = unitNumber(cmyk[2], index(p, 2));
    c.c.f.black = unitNumber(cmyk[3], index(p, 3));
  }
  return c;
}

// PAINT: null or {"color": COLOR, "width": w} (width for strokes only).
void fillPaint(const json* v, const std::string& path, AIPathStyle& style) {
  style.fillPaint = 0;
  style.fill.color = AIColor{kGrayColor, {}};
  if (!v || v->is_null()) return;
  expectObject(*v, path);
  checkKeys(*v, path, {"color"});
  style.fillPaint = 1;
  style.fill.color = color(required(*v, "color", path), key(path, "color"));
}

void strokePaint(const json* v, const std::string& path, AIPathStyle& style) {
  style.strokePaint = 0;
  style.stroke.color = AIColor{kGrayColor, {}};
  style.stroke.width = 1;
  if (!v || v->is_null()) return;
  expectObject(*v, path);
  checkKeys(*v, path, {"color", "width"});
  style.strokePaint = 1;
  style.stroke.color = color(required(*v, "color", path), key(path, "color"));
  if (const json* w = optional(*v, "width")) {
    style.stroke.width = number(*w, key(path, "width"));
    if (style.stroke.width < 0) fail(key(path, "width"), "stroke width is negative");
  }
}

struct Reader {
  Document& doc;
  std::map<std::string, std::string> idPaths;  // id -> path of its art

  void readStyle(const json& v, const std::string& path) {
    expectObject(v, path);
    checkKeys(v, path, {"name", "fill", "stroke", "opacity"});
    GraphicStyle s;
    s.name = string(required(v, "name", path), key(path, "name"));
    if (doc.styleByName(s.name)) fail(key(path, "name"), "duplicate style name \"" + s.name + "\"");
    fillPaint(optional(v, "fill"), key(path, "fill"), s.paint);
    strokePaint(optional(v, "stroke"), key(path, "stroke"), s.paint);
    if (const json* o = optional(v, "opacity")) s.opacity = unitNumber(*o, key(path, "opacity"));
    doc.addStyle(std::move(s));
  }

  void readLayer(const json& v, const std::string& path) {
    expectObject(v, path);
    checkKeys(v, path, {"name", "children", "hidden", "locked"});
    std::string name;
    if (const json* n = optional(v, "name")) name = string(*n, key(path, "name"));
    ArtObject* layer = doc.addLayer(name);
    if (const json* h = optional(v, "hidden"); h && boolean(*h, key(path, "hidden"))) layer->userAttr |= kArtHidden;
    if (const json* l = optional(v, "locked"); l && boolean(*l, key(path, "locked"))) layer->userAttr |= kArtLocked;
    if (const json* c = optional(v, "children")) readChildren(*c, key(path, "children"), layer);
  }

  void readChildren(const json& v, const std::string& path, ArtObject* parent) {
    expectArray(v, path);
    for (size_t k = 0; k < v.size(); ++k) {
      const std::string p = index(path, k);
      auto art = readArt(v[k], p);
      if (parent->type == kCompoundPathArt && art->type != kPathArt)
        fail(key(p, "type"), "a compound path holds only paths");
      doc.appendChild(parent, std::move(art));
    }
  }

  std::unique_ptr<ArtObject> readArt(const json& v, const std::string& path) {
    expectObject(v, path);
    const std::string type = string(required(v, "type", path), key(path, "type"));
    auto art = std::make_unique<ArtObject>();
    auto common = [](const std::string& k) {
      return k == "type" || k == "id" || k == "name" || k == "selected" || k == "hidden" || k == "locked" ||
             k == "opacity" || k == "blend" || k == "graphicStyle";
    };
    if (type == "group" || type == "compound") {
      art->type = type == "group" ? kGroupArt : kCompoundPathArt;
      checkKeys(v, path, {"children"}, common);
    } else if (type == "path") {
      art->type = kPathArt;
      checkKeys(v, path, {"closed", "fill", "stroke", "segments"}, common);
    } else if (type == "raster") {
      art->type = kRasterArt;
      checkKeys(v, path, {"width", "height", "space", "alpha", "bits", "matrix", "pixels", "fill"}, common);
    } else if (type == "placed") {
      art->type = kPlacedArt;
      checkKeys(v, path, {"width", "height", "space", "alpha", "bits", "matrix", "pixels", "fill", "placedType"},
                common);
    } else if (type == "mesh") {
      art->type = kMeshArt;
      checkKeys(v, path, {}, [&](const std::string& k) { return common(k) || isMeshKey(k); });
    } else {
      fail(key(path, "type"), "unknown art type \"" + type + "\"");
    }

    // Common keys.
    if (const json* id = optional(v, "id")) {
      art->id = string(*id, key(path, "id"));
      if (art->id.empty()) fail(key(path, "id"), "empty id");
      auto [it, fresh] = idPaths.emplace(art->id, path);
      if (!fresh) fail(key(path, "id"), "duplicate id \"" + art->id + "\" (also at " + it->second + ")");
    }
    if (const json* n = optional(v, "name")) art->name = string(*n, key(path, "name"));
    bool selected = false;
    if (const json* s = optional(v, "selected")) selected = boolean(*s, key(path, "selected"));
    if (const json* h = optional(v, "hidden"); h && boolean(*h, key(path, "hidden"))) art->userAttr |= kArtHidden;
    if (const json* l = optional(v, "locked"); l && boolean(*l, key(path, "locked"))) art->userAttr |= kArtLocked;
    if (selected) art->userAttr |= kArtSelected;
    if (const json* o = optional(v, "opacity")) art->opacity = unitNumber(*o, key(path, "opacity"));
    if (const json* b = optional(v, "blend")) {
      const std::string name = string(*b, key(path, "blend"));
      int mode = -1;
      for (int k = 0; k < kBlendCount; ++k)
        if (name == kBlendNames[k]) mode = k;
      if (mode < 0) fail(key(path, "blend"), "unknown blending mode \"" + name + "\"");
      art->blendMode = mode;
    }
    if (const json* g = optional(v, "graphicStyle")) {
      art->graphicStyle = string(*g, key(path, "graphicStyle"));
      if (!doc.styleByName(art->graphicStyle))
        fail(key(path, "graphicStyle"), "unknown style name \"" + art->graphicStyle + "\"");
    }

    switch (art->type) {
      case kGroupArt:
      case kCompoundPathArt:
        if (const json* c = optional(v, "children")) {
          // Children are attached once the object itself is in the tree;
          // read them into a holder first so that paths stay exact.
          const std::string p = key(path, "children");
          expectArray(*c, p);
          for (size_t k = 0; k < c->size(); ++k) {
            const std::string cp = index(p, k);
            auto child = readArt((*c)[k], cp);
            if (art->type == kCompoundPathArt && child->type != kPathArt)
              fail(key(cp, "type"), "a compound path holds only paths");
            child->parent = art.get();
            art->children.push_back(std::move(child));
          }
        }
        break;
      case kPathArt:
        readPath(v, path, *art);
        break;
      case kRasterArt:
      case kPlacedArt:
        readImage(v, path, *art);
        break;
      case kMeshArt:
        readMesh(v, path, *art);
        break;
      default:
        break;
    }
    return art;
  }

  void readPath(const json& v, const std::string& path, ArtObject& art) {
    if (const json* c = optional(v, "closed")) art.closed = boolean(*c, key(path, "closed"));
    fillPaint(optional(v, "fill"), key(path, "fill"), art.style);
    strokePaint(optional(v, "stroke"), key(path, "stroke"), art.style);
    const std::string sp = key(path, "segments");
    const json& segs = required(v, "segments", path);
    expectArray(segs, sp);
    if (segs.size() > 32767) fail(sp, "too many segments");
    for (size_t k = 0; k < segs.size(); ++k) {
      const std::string p = index(sp, k);
      const json& s = segs[k];
      expectObject(s, p);
      checkKeys(s, p, {"p", "in", "out", "corner", "selected"});
      AIPathSegment seg{};
      seg.p = point(required(s, "p", p), key(p, "p"));
      seg.in = seg.p;
      seg.out = seg.p;
      seg.corner = 1;
      if (const json* in = optional(s, "in")) seg.in = point(*in, key(p, "in"));
      if (const json* out = optional(s, "out")) seg.out = point(*out, key(p, "out"));
      if (const json* c = optional(s, "corner")) seg.corner = boolean(*c, key(p, "corner")) ? 1 : 0;
      int16_t state = kSegmentNotSelected;
      if (const json* sel = optional(s, "selected")) {
        if (sel->is_boolean()) {
          state = sel->get<bool>() ? kSegmentPointSelected : kSegmentNotSelected;
        } else {
          const int64_t n = integer(*sel, key(p, "selected"));
          if (n < kSegmentNotSelected || n > kSegmentInAndOutSelected)
            fail(key(p, "selected"), "anchor selection state must be 0..4");
          state = static_cast<int16_t>(n);
        }
      }
      art.segments.push_back(seg);
      art.segmentSelection.push_back(state);
    }
    // An anchor selection makes the path selected.
    for (int16_t s : art.segmentSelection)
      if (s != kSegmentNotSelected) art.userAttr |= kArtSelected;
  }

  void readImage(const json& v, const std::string& path, ArtObject& art) {
    ArtImage& im = art.image;
    const int64_t w = integer(required(v, "width", path), key(path, "width"));
    const int64_t h = integer(required(v, "height", path), key(path, "height"));
    if (w < 1 || w > 1000000) fail(key(path, "width"), "width must be at least 1");
    if (h < 1 || h > 1000000) fail(key(path, "height"), "height must be at least 1");
    im.width = static_cast<int32_t>(w);
    im.height = static_cast<int32_t>(h);
    if (const json* s = optional(v, "space")) {
      const std::string space = string(*s, key(path, "space"));
      if (space == "gray")
        im.space = kGrayColorSpace;
      else if (space == "rgb")
        im.space = kRGBColorSpace;
      else if (space == "cmyk")
        im.space = kCMYKColorSpace;
      else
        fail(key(path, "space"), "unknown colour space \"" + space + "\"");
    }
    if (const json* a = optional(v, "alpha")) im.alpha = boolean(*a, key(path, "alpha"));
    if (const json* b = optional(v, "bits")) {
      const int64_t bits = integer(*b, key(path, "bits"));
      if (bits != 8 && bits != 16) fail(key(path, "bits"), "bits per channel must be 8 or 16");
      im.bits = static_cast<int16_t>(bits);
    }
    if (const json* m = optional(v, "matrix")) {
      const std::string mp = key(path, "matrix");
      expectArray(*m, mp);
      if (m->size() != 6) fail(mp, "expected [a, b, c, d, tx, ty]");
      double e[6];
      for (size_t k = 0; k < 6; ++k) e[k] = number((*m)[k], index(mp, k));
      im.matrix = {e[0], e[1], e[2], e[3], e[4], e[5]};
    }
    const std::string pp = key(path, "pixels");
    const std::string data = string(required(v, "pixels", path), pp);
    if (!base64Decode(data, im.pixels)) fail(pp, "pixel data is not valid base64");
    if (im.pixels.size() != im.expectedBytes())
      fail(pp, "pixel data has " + std::to_string(im.pixels.size()) + " bytes, expected " +
                   std::to_string(im.expectedBytes()));
    fillPaint(optional(v, "fill"), key(path, "fill"), art.style);
    if (art.type == kPlacedArt) {
      if (const json* t = optional(v, "placedType")) {
        const int64_t pt = integer(*t, key(path, "placedType"));
        if (pt < -32768 || pt > 32767) fail(key(path, "placedType"), "placed type out of range");
        im.placedType = static_cast<int16_t>(pt);
      }
    }
  }

  void readMesh(const json& v, const std::string& path, ArtObject& art) {
    try {
      art.mesh = meshFromJson(v, path);
    } catch (const json::exception& e) {
      fail(path, std::string("bad mesh: ") + e.what());
    }
    if (!art.mesh) fail(path, "mesh could not be read");
    // The mesh reader applies "a selected mesh with no vertex flags is
    // selected as a whole"; a mesh with selected vertices is selected art.
    const auto empty = lb::host::meshaccess::isSelectionEmpty(*art.mesh);
    if (!art.selected() && empty && !*empty) art.userAttr |= kArtSelected;
  }
};

std::string parseErrorPlace(const std::string& text, size_t byte) {
  size_t line = 1, column = 1;
  for (size_t k = 0; k < byte && k < text.size(); ++k) {
    if (text[k] == '\n') {
      ++line;
      column = 1;
    } else {
      ++column;
    }
  }
  return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

// ---- writing --------------------------------------------------------------

ojson writeColor(const AIColor& c) {
  switch (c.kind) {
    case kGrayColor:
      return ojson{{"gray", c.c.g.gray}};
    case kThreeColor:
      return ojson{{"rgb", {c.c.rgb.red, c.c.rgb.green, c.c.rgb.blue}}};
    case kFourColor:
      return ojson{{"cmyk", {c.c.f.cyan, c.c.f.magenta, c.c.f.yellow, c.c.f.black}}};
    default:
      return "none";
  }
}

ojson writeFill(const AIPathStyle& s) {
  if (!s.fillPaint) return nullptr;
  return ojson{{"color", writeColor(s.fill.color)}};
}

ojson writeStroke(const AIPathStyle& s) {
  if (!s.strokePaint) return nullptr;
  return ojson{{"color", writeColor(s.stroke.color)}, {"width", s.stroke.width}};
}

ojson writePoint(const AIRealPoint& p) { return ojson::array({p.h, p.v}); }

ojson writeArt(const Document& doc, const ArtObject& a) {
  ojson o;
  const char* type = "group";
  switch (a.type) {
    case kGroupArt: type = "group"; break;
    case kCompoundPathArt: type = "compound"; break;
    case kPathArt: type = "path"; break;
    case kRasterArt: type = "raster"; break;
    case kPlacedArt: type = "placed"; break;
    case kMeshArt: type = "mesh"; break;
    default: break;
  }
  o["type"] = type;
  if (!a.id.empty()) o["id"] = a.id;
  o["name"] = a.name;
  o["selected"] = a.selected();
  o["hidden"] = a.hidden();
  o["locked"] = a.locked();
  o["opacity"] = a.opacity;
  o["blend"] = (a.blendMode >= 0 && a.blendMode < kBlendCount) ? kBlendNames[a.blendMode] : "normal";
  // A style name the document no longer holds is dropped so that the file
  // stays readable.
  if (!a.graphicStyle.empty() && doc.styleByName(a.graphicStyle)) o["graphicStyle"] = a.graphicStyle;
  switch (a.type) {
    case kGroupArt:
    case kCompoundPathArt: {
      ojson kids = ojson::array();
      for (const auto& c : a.children) kids.push_back(writeArt(doc, *c));
      o["children"] = std::move(kids);
      break;
    }
    case kPathArt: {
      o["closed"] = a.closed;
      o["fill"] = writeFill(a.style);
      o["stroke"] = writeStroke(a.style);
      ojson segs = ojson::array();
      for (size_t k = 0; k < a.segments.size(); ++k) {
        const AIPathSegment& s = a.segments[k];
        segs.push_back(ojson{{"p", writePoint(s.p)},
                             {"in", writePoint(s.in)},
                             {"out", writePoint(s.out)},
                             {"corner", s.corner != 0},
                             {"selected", doc.anchorSelection(&a, static_cast<int>(k))}});
      }
      o["segments"] = std::move(segs);
      break;
    }
    case kRasterArt:
    case kPlacedArt: {
      const ArtImage& im = a.image;
      o["width"] = im.width;
      o["height"] = im.height;
      o["space"] = im.space == kRGBColorSpace ? "rgb" : im.space == kCMYKColorSpace ? "cmyk" : "gray";
      o["alpha"] = im.alpha;
      o["bits"] = im.bits;
      const AIRealMatrix& m = im.matrix;
      o["matrix"] = ojson::array({m.a, m.b, m.c, m.d, m.tx, m.ty});
      o["pixels"] = base64Encode(im.pixels);
      o["fill"] = writeFill(a.style);
      if (a.type == kPlacedArt) o["placedType"] = im.placedType;
      break;
    }
    case kMeshArt:
      if (a.mesh) {
        json m;
        meshToJson(*a.mesh, m);
        for (auto it = m.begin(); it != m.end(); ++it)
          if (isMeshKey(it.key())) o[it.key()] = ojson(it.value());
      }
      break;
    default:
      break;
  }
  return o;
}

bool isScalar(const ojson& v) { return !v.is_object() && !v.is_array(); }

// One-line rendering with a space after commas and colons, appended to
// out; gives up (false) as soon as out grows past limit, so that large
// values cost no more than the limit to try.
bool compact(const ojson& v, std::string& out, size_t limit) {
  if (out.size() > limit) return false;
  if (v.is_object()) {
    out += "{";
    bool first = true;
    for (auto it = v.begin(); it != v.end(); ++it) {
      if (!first) out += ", ";
      first = false;
      out += ojson(it.key()).dump() + ": ";
      if (!compact(it.value(), out, limit)) return false;
    }
    out += "}";
  } else if (v.is_array()) {
    out += "[";
    for (size_t k = 0; k < v.size(); ++k) {
      if (k) out += ", ";
      if (!compact(v[k], out, limit)) return false;
    }
    out += "]";
  } else {
    out += v.dump();
  }
  return out.size() <= limit;
}

constexpr size_t kLineWidth = 100;

// Indented JSON; anything that fits on one line stays on one line.
void emit(const ojson& v, std::string& out, int indent) {
  const std::string pad(static_cast<size_t>(indent) * 2, ' ');
  const std::string padIn(static_cast<size_t>(indent + 1) * 2, ' ');
  if (!isScalar(v)) {
    // Small values (points, colours, paints, segments, nodes) on one line.
    std::string line;
    const size_t room = kLineWidth > static_cast<size_t>(indent) * 2 ? kLineWidth - static_cast<size_t>(indent) * 2 : 0;
    if (compact(v, line, room)) {
      out += line;
      return;
    }
  }
  if (v.is_object()) {
    out += "{\n";
    bool first = true;
    for (auto it = v.begin(); it != v.end(); ++it) {
      if (!first) out += ",\n";
      first = false;
      out += padIn + ojson(it.key()).dump() + ": ";
      emit(it.value(), out, indent + 1);
    }
    out += "\n" + pad + "}";
  } else if (v.is_array()) {
    out += "[\n";
    for (size_t k = 0; k < v.size(); ++k) {
      if (k) out += ",\n";
      out += padIn;
      emit(v[k], out, indent + 1);
    }
    out += "\n" + pad + "]";
  } else {
    out += v.dump();
  }
}

}  // namespace

std::unique_ptr<lb::host::Document> readDocument(const std::string& text) {
  json root;
  try {
    root = json::parse(text);
  } catch (const json::parse_error& e) {
    std::string detail = e.what();
    // Keep the parser's own explanation, without its error-id prefix.
    if (auto colon = detail.find(": "); colon != std::string::npos) detail = detail.substr(colon + 2);
    throw FormatError(parseErrorPlace(text, e.byte ? e.byte - 1 : 0), "malformed JSON: " + detail);
  } catch (const json::exception& e) {
    throw FormatError("document", std::string("malformed JSON: ") + e.what());
  }
  expectObject(root, "document");
  checkKeys(root, "", {"latticebender", "artboard", "styles", "key", "layers"});
  const json& version = required(root, "latticebender", "");
  if (integer(version, "latticebender") != 1) fail("latticebender", "unsupported format version");

  auto doc = std::make_unique<Document>();
  Reader r{*doc, {}};
  if (const json* ab = optional(root, "artboard")) {
    expectArray(*ab, "artboard");
    if (ab->size() != 4) fail("artboard", "expected [left, bottom, right, top]");
    const double l = number((*ab)[0], "artboard[0]"), b = number((*ab)[1], "artboard[1]");
    const double rt = number((*ab)[2], "artboard[2]"), t = number((*ab)[3], "artboard[3]");
    if (!(rt > l) || !(t > b)) fail("artboard", "artboard is empty (right must exceed left, top bottom)");
    doc->artboard = AIRealRect{l, t, rt, b};
  }
  if (const json* styles = optional(root, "styles")) {
    expectArray(*styles, "styles");
    for (size_t k = 0; k < styles->size(); ++k) r.readStyle((*styles)[k], index("styles", k));
  }
  const json& layers = required(root, "layers", "");
  expectArray(layers, "layers");
  for (size_t k = 0; k < layers.size(); ++k) r.readLayer(layers[k], index("layers", k));
  if (const json* keyId = optional(root, "key")) {
    doc->keyArtId = string(*keyId, "key");
    if (!r.idPaths.count(doc->keyArtId)) fail("key", "no art has the id \"" + doc->keyArtId + "\"");
  }
  return doc;
}

std::unique_ptr<lb::host::Document> readDocumentFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw FormatError(path, std::string("cannot read the file: ") + std::strerror(errno));
  std::stringstream ss;
  ss << in.rdbuf();
  if (in.bad()) throw FormatError(path, "cannot read the file");
  try {
    return readDocument(ss.str());
  } catch (const FormatError& e) {
    std::string what = e.what();
    const std::string prefix = e.path() + ": ";
    if (what.compare(0, prefix.size(), prefix) == 0) what = what.substr(prefix.size());
    throw FormatError(e.path(), what + " (in " + path + ")");
  }
}

std::string writeDocument(const lb::host::Document& doc) {
  ojson root;
  root["latticebender"] = 1;
  if (doc.artboard) {
    const AIRealRect& a = *doc.artboard;
    root["artboard"] = ojson::array({a.left, a.bottom, a.right, a.top});
  }
  ojson styles = ojson::array();
  for (const auto& s : doc.styles()) {
    styles.push_back(ojson{{"name", s->name},
                           {"fill", writeFill(s->paint)},
                           {"stroke", writeStroke(s->paint)},
                           {"opacity", s->opacity}});
  }
  root["styles"] = std::move(styles);
  // A key id whose art is gone is dropped: the file must name live art.
  if (doc.keyArt()) root["key"] = doc.keyArtId;
  ojson layers = ojson::array();
  for (const auto& l : doc.layers()) {
    ojson kids = ojson::array();
    for (const auto& c : l->children) kids.push_back(writeArt(doc, *c));
    layers.push_back(ojson{{"name", l->name}, {"hidden", l->hidden()}, {"locked", l->locked()}, {"children", std::move(kids)}});
  }
  root["layers"] = std::move(layers);
  std::string out;
  emit(root, out, 0);
  out += "\n";
  return out;
}

void writeDocumentFileAtomic(const lb::host::Document& doc, const std::string& path) {
  const std::string text = writeDocument(doc);
  const auto slash = path.find_last_of('/');
  const std::string dir = slash == std::string::npos ? "." : path.substr(0, slash == 0 ? 1 : slash);
  const std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
  std::string tmpl = dir + "/." + base + ".tmpXXXXXX";
  std::vector<char> name(tmpl.begin(), tmpl.end());
  name.push_back('\0');
  const int fd = mkstemp(name.data());
  if (fd < 0) throw std::runtime_error("cannot write " + path + ": " + std::strerror(errno));
  const std::string tmp(name.data());
  auto failWith = [&](const std::string& what) {
    const int saved = errno;
    ::close(fd);
    std::remove(tmp.c_str());
    throw std::runtime_error("cannot write " + path + ": " + what + (saved ? std::string(": ") + std::strerror(saved) : ""));
  };
  size_t done = 0;
  while (done < text.size()) {
    const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      failWith("write failed");
    }
    done += static_cast<size_t>(n);
  }
  if (::fsync(fd) != 0) failWith("sync failed");
  // mkstemp makes the file 0600; documents get the usual permissions.
  ::fchmod(fd, 0644);
  if (::close(fd) != 0) {
    std::remove(tmp.c_str());
    throw std::runtime_error("cannot write " + path + ": close failed");
  }
  if (std::rename(tmp.c_str(), path.c_str()) != 0) {
    const int saved = errno;
    std::remove(tmp.c_str());
    throw std::runtime_error("cannot write " + path + ": " + std::strerror(saved));
  }
}

}  // namespace lb::io
