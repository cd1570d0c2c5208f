// Reading and writing .lbdoc documents.
#include "io/Lbdoc.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <optional>
#include <stdexcept>
#include <system_error>

#include "io/JsonDom.h"
#include "io/JsonWriter.h"
#include "io/Limits.h"
#include "io/MeshJson.h"

namespace lb::io {
namespace {

using json = JsonRef;
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
    const std::string_view k = it.key();
    bool ok = extra(k);
    for (const char* a : allowed)
      if (k == a) ok = true;
    if (!ok) fail(key(path, std::string(k)), "unknown key \"" + std::string(k) + "\"");
  }
}
void checkKeys(const json& obj, const std::string& path, std::initializer_list<const char*> allowed) {
  checkKeys(obj, path, allowed, [](std::string_view) { return false; });
}

json required(const json& obj, const char* k, const std::string& path) {
  auto it = obj.find(k);
  if (!it) fail(key(path, k), std::string("missing required key \"") + k + "\"");
  return *it;
}

std::optional<json> optional(const json& obj, const char* k) { return obj.find(k); }

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

double coordinate(const json& v, const std::string& path) {
  const double d = number(v, path);
  if (std::fabs(d) > kMaxCoordinate) fail(path, "coordinate outside +-1e7");
  return d;
}

AIRealPoint point(const json& v, const std::string& path) {
  expectArray(v, path);
  if (v.size() != 2) fail(path, "expected [h, v]");
  return {coordinate(v[0], index(path, 0)), coordinate(v[1], index(path, 1))};
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
  if (auto g = optional(v, "gray")) {
    c.kind = kGrayColor;
    c.c.g.gray = unitNumber(*g, key(path, "gray"));
  } else if (auto rgb = optional(v, "rgb")) {
    const std::string p = key(path, "rgb");
    expectArray(*rgb, p);
    if (rgb->size() != 3) fail(p, "expected [r, g, b]");
    c.kind = kThreeColor;
    c.c.rgb.red = unitNumber((*rgb)[0], index(p, 0));
    c.c.rgb.green = unitNumber((*rgb)[1], index(p, 1));
    c.c.rgb.blue = unitNumber((*rgb)[2], index(p, 2));
  } else {
    const json cmyk = *v.find("cmyk");
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
void fillPaint(std::optional<json> v, const std::string& path, AIPathStyle& style) {
  style.fillPaint = 0;
  style.fill.color = AIColor{kGrayColor, {}};
  if (!v || v->is_null()) return;
  expectObject(*v, path);
  checkKeys(*v, path, {"color"});
  style.fillPaint = 1;
  style.fill.color = color(required(*v, "color", path), key(path, "color"));
}

void strokePaint(std::optional<json> v, const std::string& path, AIPathStyle& style) {
  style.strokePaint = 0;
  style.stroke.color = AIColor{kGrayColor, {}};
  style.stroke.width = 1;
  if (!v || v->is_null()) return;
  expectObject(*v, path);
  checkKeys(*v, path, {"color", "width"});
  style.strokePaint = 1;
  style.stroke.color = color(required(*v, "color", path), key(path, "color"));
  if (auto w = optional(*v, "width")) {
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
    if (auto o = optional(v, "opacity")) s.opacity = unitNumber(*o, key(path, "opacity"));
    doc.addStyle(std::move(s));
  }

  void readLayer(const json& v, const std::string& path) {
    expectObject(v, path);
    checkKeys(v, path, {"name", "children", "hidden", "locked"});
    std::string name;
    if (auto n = optional(v, "name")) name = string(*n, key(path, "name"));
    ArtObject* layer = doc.addLayer(name);
    if (auto h = optional(v, "hidden"); h && boolean(*h, key(path, "hidden"))) layer->userAttr |= kArtHidden;
    if (auto l = optional(v, "locked"); l && boolean(*l, key(path, "locked"))) layer->userAttr |= kArtLocked;
    if (auto c = optional(v, "children")) readChildren(*c, key(path, "children"), layer);
  }

  void readChildren(const json& v, const std::string& path, ArtObject* parent) {
    expectArray(v, path);
    size_t k = 0;
    for (const json child : v) {
      const std::string p = index(path, k++);
      auto art = readArt(child, p, 1);
      if (parent->type == kCompoundPathArt && art->type != kPathArt)
        fail(key(p, "type"), "a compound path holds only paths");
      doc.appendChild(parent, std::move(art));
    }
  }

  // depth: 1 for a layer's children, one more per enclosing group.
  std::unique_ptr<ArtObject> readArt(const json& v, const std::string& path, int depth) {
    expectObject(v, path);
    if (depth > kMaxArtDepth)
      fail(path, "art nested deeper than " + std::to_string(kMaxArtDepth) + " levels");
    const std::string type = string(required(v, "type", path), key(path, "type"));
    auto art = std::make_unique<ArtObject>();
    auto common = [](std::string_view k) {
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
      checkKeys(v, path, {}, [&](std::string_view k) { return common(k) || isMeshKey(k); });
    } else {
      fail(key(path, "type"), "unknown art type \"" + type + "\"");
    }

    // Common keys.
    if (auto id = optional(v, "id")) {
      art->id = string(*id, key(path, "id"));
      if (art->id.empty()) fail(key(path, "id"), "empty id");
      auto [it, fresh] = idPaths.emplace(art->id, path);
      if (!fresh) fail(key(path, "id"), "duplicate id \"" + art->id + "\" (also at " + it->second + ")");
    }
    if (auto n = optional(v, "name")) art->name = string(*n, key(path, "name"));
    bool selected = false;
    if (auto s = optional(v, "selected")) selected = boolean(*s, key(path, "selected"));
    if (auto h = optional(v, "hidden"); h && boolean(*h, key(path, "hidden"))) art->userAttr |= kArtHidden;
    if (auto l = optional(v, "locked"); l && boolean(*l, key(path, "locked"))) art->userAttr |= kArtLocked;
    if (selected) art->userAttr |= kArtSelected;
    if (auto o = optional(v, "opacity")) art->opacity = unitNumber(*o, key(path, "opacity"));
    if (auto b = optional(v, "blend")) {
      const std::string name = string(*b, key(path, "blend"));
      int mode = -1;
      for (int k = 0; k < kBlendCount; ++k)
        if (name == kBlendNames[k]) mode = k;
      if (mode < 0) fail(key(path, "blend"), "unknown blending mode \"" + name + "\"");
      art->blendMode = mode;
    }
    if (auto g = optional(v, "graphicStyle")) {
      art->graphicStyle = string(*g, key(path, "graphicStyle"));
      if (!doc.styleByName(art->graphicStyle))
        fail(key(path, "graphicStyle"), "unknown style name \"" + art->graphicStyle + "\"");
    }

    switch (art->type) {
      case kGroupArt:
      case kCompoundPathArt:
        if (auto c = optional(v, "children")) {
          // Children are attached once the object itself is in the tree;
          // read them into a holder first so that paths stay exact.
          const std::string p = key(path, "children");
          expectArray(*c, p);
          size_t k = 0;
          for (const json element : *c) {
            const std::string cp = index(p, k++);
            auto child = readArt(element, cp, depth + 1);
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
    if (auto c = optional(v, "closed")) art.closed = boolean(*c, key(path, "closed"));
    fillPaint(optional(v, "fill"), key(path, "fill"), art.style);
    strokePaint(optional(v, "stroke"), key(path, "stroke"), art.style);
    const std::string sp = key(path, "segments");
    const json& segs = required(v, "segments", path);
    expectArray(segs, sp);
    if (segs.size() > 32767) fail(sp, "too many segments");
    size_t k = 0;
    for (const json s : segs) {
      const std::string p = index(sp, k++);
      expectObject(s, p);
      checkKeys(s, p, {"p", "in", "out", "corner", "selected"});
      AIPathSegment seg{};
      seg.p = point(required(s, "p", p), key(p, "p"));
      seg.in = seg.p;
      seg.out = seg.p;
      seg.corner = 1;
      if (auto in = optional(s, "in")) seg.in = point(*in, key(p, "in"));
      if (auto out = optional(s, "out")) seg.out = point(*out, key(p, "out"));
      if (auto c = optional(s, "corner")) seg.corner = boolean(*c, key(p, "corner")) ? 1 : 0;
      int16_t state = kSegmentNotSelected;
      if (auto sel = optional(s, "selected")) {
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
    if (auto s = optional(v, "space")) {
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
    if (auto a = optional(v, "alpha")) im.alpha = boolean(*a, key(path, "alpha"));
    if (auto b = optional(v, "bits")) {
      const int64_t bits = integer(*b, key(path, "bits"));
      if (bits != 8 && bits != 16) fail(key(path, "bits"), "bits per channel must be 8 or 16");
      im.bits = static_cast<int16_t>(bits);
    }
    if (auto m = optional(v, "matrix")) {
      const std::string mp = key(path, "matrix");
      expectArray(*m, mp);
      if (m->size() != 6) fail(mp, "expected [a, b, c, d, tx, ty]");
      double e[6];
      for (size_t k = 0; k < 6; ++k) e[k] = k < 4 ? number((*m)[k], index(mp, k)) : coordinate((*m)[k], index(mp, k));
      // The image must map onto an area: a singular matrix cannot be
      // inverted for drawing or hit testing.
      const double det = e[0] * e[3] - e[1] * e[2];
      if (det == 0) fail(mp, "matrix is singular (its determinant is 0)");
      if (!std::isfinite(det)) fail(mp, "matrix determinant is not finite");
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
      if (auto t = optional(v, "placedType")) {
        const int64_t pt = integer(*t, key(path, "placedType"));
        if (pt < -32768 || pt > 32767) fail(key(path, "placedType"), "placed type out of range");
        im.placedType = static_cast<int16_t>(pt);
      }
    }
  }

  void readMesh(const json& v, const std::string& path, ArtObject& art) {
    try {
      art.mesh = meshFromTree(v, path);
    } catch (const std::bad_alloc&) {
      fail(path, "mesh too large");
    }
    if (!art.mesh) fail(path, "mesh could not be read");
    // The mesh reader applies "a selected mesh with no vertex flags is
    // selected as a whole"; a mesh with selected vertices is selected art.
    if (!art.selected() && !art.mesh->isSelectionEmpty()) art.userAttr |= kArtSelected;
  }
};

// ---- writing --------------------------------------------------------------

void writeColor(JsonWriter& w, const AIColor& c) {
  switch (c.kind) {
    case kGrayColor: w.object([&] { w.member("gray", c.c.g.gray); }); break;
    case kThreeColor:
      w.object([&] {
        w.key("rgb");
        w.array([&] {
          w.number(c.c.rgb.red);
          w.number(c.c.rgb.green);
          w.number(c.c.rgb.blue);
        });
      });
      break;
    case kFourColor:
      w.object([&] {
        w.key("cmyk");
        w.array([&] {
          w.number(c.c.f.cyan);
          w.number(c.c.f.magenta);
          w.number(c.c.f.yellow);
          w.number(c.c.f.black);
        });
      });
      break;
    default: w.string("none");
  }
}

void writeFill(JsonWriter& w, const AIPathStyle& s) {
  if (!s.fillPaint) return w.null();
  w.object([&] {
    w.key("color");
    writeColor(w, s.fill.color);
  });
}

void writeStroke(JsonWriter& w, const AIPathStyle& s) {
  if (!s.strokePaint) return w.null();
  w.object([&] {
    w.key("color");
    writeColor(w, s.stroke.color);
    w.member("width", s.stroke.width);
  });
}

void writePoint(JsonWriter& w, const AIRealPoint& p) {
  w.array([&] {
    w.number(p.h);
    w.number(p.v);
  });
}

void writeArt(JsonWriter& w, const Document& doc, const ArtObject& a) {
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
  w.object([&] {
    w.member("type", type);
    if (!a.id.empty()) w.member("id", a.id);
    w.member("name", a.name);
    w.member("selected", a.selected());
    w.member("hidden", a.hidden());
    w.member("locked", a.locked());
    w.member("opacity", static_cast<double>(a.opacity));
    w.member("blend", (a.blendMode >= 0 && a.blendMode < kBlendCount) ? kBlendNames[a.blendMode] : "normal");
    // A style name the document no longer holds is dropped so that the file
    // stays readable.
    if (!a.graphicStyle.empty() && doc.styleByName(a.graphicStyle)) w.member("graphicStyle", a.graphicStyle);
    switch (a.type) {
      case kGroupArt:
      case kCompoundPathArt:
        w.key("children");
        w.array([&] {
          for (const auto& c : a.children) {
            if (w.aborted()) return;
            writeArt(w, doc, *c);
          }
        });
        break;
      case kPathArt:
        w.member("closed", a.closed);
        w.key("fill");
        writeFill(w, a.style);
        w.key("stroke");
        writeStroke(w, a.style);
        w.key("segments");
        w.array([&] {
          for (size_t k = 0; k < a.segments.size() && !w.aborted(); ++k) {
            const AIPathSegment& s = a.segments[k];
            w.object([&] {
              w.key("p");
              writePoint(w, s.p);
              w.key("in");
              writePoint(w, s.in);
              w.key("out");
              writePoint(w, s.out);
              w.member("corner", s.corner != 0);
              w.memberInt("selected", doc.anchorSelection(&a, static_cast<int>(k)));
            });
          }
        });
        break;
      case kRasterArt:
      case kPlacedArt: {
        const ArtImage& im = a.image;
        w.memberInt("width", im.width);
        w.memberInt("height", im.height);
        w.member("space", im.space == kRGBColorSpace ? "rgb" : im.space == kCMYKColorSpace ? "cmyk" : "gray");
        w.member("alpha", im.alpha);
        w.memberInt("bits", im.bits);
        const AIRealMatrix& m = im.matrix;
        w.key("matrix");
        w.array([&] {
          for (double x : {m.a, m.b, m.c, m.d, m.tx, m.ty}) w.number(x);
        });
        w.member("pixels", base64Encode(im.pixels));
        w.key("fill");
        writeFill(w, a.style);
        if (a.type == kPlacedArt) w.memberInt("placedType", im.placedType);
        break;
      }
      case kMeshArt:
        if (a.mesh) writeMeshKeys(w, *a.mesh);
        break;
      default:
        break;
    }
  });
}

void writeRoot(JsonWriter& w, const Document& doc) {
  w.object([&] {
    w.memberInt("latticebender", 1);
    if (doc.artboard) {
      const AIRealRect& a = *doc.artboard;
      w.key("artboard");
      w.array([&] {
        for (double x : {a.left, a.bottom, a.right, a.top}) w.number(x);
      });
    }
    w.key("styles");
    w.array([&] {
      for (const auto& s : doc.styles())
        w.object([&] {
          w.member("name", s->name);
          w.key("fill");
          writeFill(w, s->paint);
          w.key("stroke");
          writeStroke(w, s->paint);
          w.member("opacity", static_cast<double>(s->opacity));
        });
    });
    // A key id whose art is gone is dropped: the file must name live art.
    if (doc.keyArt()) w.member("key", doc.keyArtId);
    w.key("layers");
    w.array([&] {
      for (const auto& l : doc.layers()) {
        if (w.aborted()) return;
        w.object([&] {
          w.member("name", l->name);
          w.member("hidden", l->hidden());
          w.member("locked", l->locked());
          w.key("children");
          w.array([&] {
            for (const auto& c : l->children) {
              if (w.aborted()) return;
              writeArt(w, doc, *c);
            }
          });
        });
      }
    });
  });
}

std::unique_ptr<Document> buildDocument(const JsonTree& tree) {
  const json root = tree.root();
  expectObject(root, "document");
  checkKeys(root, "", {"latticebender", "artboard", "styles", "key", "layers"});
  const json version = required(root, "latticebender", "");
  if (integer(version, "latticebender") != 1) fail("latticebender", "unsupported format version");

  auto doc = std::make_unique<Document>();
  Reader r{*doc, {}};
  if (auto ab = optional(root, "artboard")) {
    expectArray(*ab, "artboard");
    if (ab->size() != 4) fail("artboard", "expected [left, bottom, right, top]");
    const double l = coordinate((*ab)[0], "artboard[0]"), b = coordinate((*ab)[1], "artboard[1]");
    const double rt = coordinate((*ab)[2], "artboard[2]"), t = coordinate((*ab)[3], "artboard[3]");
    if (!(rt > l) || !(t > b)) fail("artboard", "artboard is empty (right must exceed left, top bottom)");
    doc->artboard = AIRealRect{l, t, rt, b};
  }
  if (auto styles = optional(root, "styles")) {
    expectArray(*styles, "styles");
    size_t k = 0;
    for (const json s : *styles) r.readStyle(s, index("styles", k++));
  }
  const json layers = required(root, "layers", "");
  expectArray(layers, "layers");
  size_t k = 0;
  for (const json l : layers) r.readLayer(l, index("layers", k++));
  if (auto keyId = optional(root, "key")) {
    doc->keyArtId = string(*keyId, "key");
    if (!r.idPaths.count(doc->keyArtId)) fail("key", "no art has the id \"" + doc->keyArtId + "\"");
  }
  return doc;
}

JsonTree parseText(std::string_view text) {
  JsonLimits limits;
  limits.maxDepth = kMaxJsonDepth;
  return JsonTree::parse(text, limits);
}

// Reads the whole file into memory, refusing what is not a regular file.
std::string readFileText(const std::string& path) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) throw FormatError(path, std::string("cannot read the file: ") + std::strerror(errno));
  struct stat st {};
  if (::fstat(fd, &st) != 0) {
    const int saved = errno;
    ::close(fd);
    throw FormatError(path, std::string("cannot read the file: ") + std::strerror(saved));
  }
  if (S_ISDIR(st.st_mode)) {
    ::close(fd);
    throw FormatError(path, "is a directory, not a document");
  }
  std::string text;
  if (S_ISREG(st.st_mode)) text.reserve(static_cast<size_t>(st.st_size));
  char buf[1 << 16];
  for (;;) {
    const ssize_t n = ::read(fd, buf, sizeof buf);
    if (n < 0) {
      if (errno == EINTR) continue;
      const int saved = errno;
      ::close(fd);
      throw FormatError(path, std::string("cannot read the file: ") + std::strerror(saved));
    }
    if (n == 0) break;
    text.append(buf, static_cast<size_t>(n));
  }
  ::close(fd);
  return text;
}

}  // namespace

std::unique_ptr<lb::host::Document> readDocument(const std::string& text) {
  return buildDocument(parseText(text));
}

std::unique_ptr<lb::host::Document> readDocumentFile(const std::string& path) {
  try {
    std::unique_ptr<JsonTree> tree;
    {
      // The text is dropped once parsed, before the document is built.
      const std::string text = readFileText(path);
      tree = std::make_unique<JsonTree>(parseText(text));
    }
    return buildDocument(*tree);
  } catch (const FormatError& e) {
    if (e.path() == path) throw;
    std::string what = e.what();
    const std::string prefix = e.path() + ": ";
    if (what.compare(0, prefix.size(), prefix) == 0) what = what.substr(prefix.size());
    throw FormatError(e.path(), what + " (in " + path + ")");
  }
}

std::string writeDocument(const lb::host::Document& doc) {
  std::string out;
  JsonWriter w(out);
  writeRoot(w, doc);
  out += "\n";
  return out;
}

namespace {

void writeAll(int fd, const std::string& text) {
  size_t done = 0;
  while (done < text.size()) {
    const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
    if (n < 0) {
      if (errno == EINTR) continue;
      throw std::system_error(errno, std::generic_category(), "write failed");
    }
    done += static_cast<size_t>(n);
  }
}

}  // namespace

void writeDocumentTo(int fd, const lb::host::Document& doc) {
  std::string out;
  JsonWriter w(out, [fd](std::string& text) { writeAll(fd, text); });
  writeRoot(w, doc);
  out += "\n";
  writeAll(fd, out);
}

void writeDocumentFileAtomic(const lb::host::Document& doc, const std::string& path) {
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
  try {
    writeDocumentTo(fd, doc);
  } catch (const std::system_error& e) {
    errno = e.code().value();
    failWith("write failed");
  } catch (const std::exception& e) {
    errno = 0;
    failWith(e.what());
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
