// Writing a document as SVG: meshes as meshgradients painted on their
// outline, paths, compound paths, groups, images, opacity, blend modes.
#include <cairo.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <map>
#include <pugixml.hpp>
#include <sstream>

#include "host/Color.h"
#include "io/MeshJson.h"
#include "io/svg/MeshGrid.h"
#include "io/svg/Svg.h"
#include "io/svg/SvgCommon.h"
#include "render/Render.h"

namespace lb::io::svg {

std::string Losses::text() const {
  std::string out;
  for (const std::string& s : items) out += (out.empty() ? "" : ", ") + s;
  return out;
}

namespace {

using lb::host::Document;

// Shortest text that reads back as the same double.
std::string num(double x) {
  if (x == 0) return "0";
  char buf[32];
  auto r = std::to_chars(buf, buf + sizeof buf, x);
  return std::string(buf, r.ptr);
}

std::string pt(AIRealPoint p) { return num(p.h) + "," + num(-p.v); }

std::string hexColour(double r, double g, double b) {
  auto q = [](double x) { return static_cast<int>(std::lround(std::clamp(x, 0.0, 1.0) * 255)); };
  char buf[8];
  std::snprintf(buf, sizeof buf, "#%02x%02x%02x", q(r), q(g), q(b));
  return buf;
}

class Writer {
 public:
  Writer(const Document& doc, Losses* losses) : doc_(doc), losses_(losses) {
    for (const ArtObject* a : doc.allArt())
      if (!a->id.empty()) used_.insert(a->id);
  }

  std::string write() {
    pugi::xml_node svg = xml_.append_child("svg");
    svg.append_attribute("xmlns") = "http://www.w3.org/2000/svg";
    svg.append_attribute("xmlns:xlink") = "http://www.w3.org/1999/xlink";
    svg.append_attribute("xmlns:inkscape") = "http://www.inkscape.org/namespaces/inkscape";
    svg.append_attribute("xmlns:sodipodi") = "http://sodipodi.sourceforge.net/DTD/sodipodi-0.dtd";
    svg.append_attribute("xmlns:latticebender") = kLbNamespace;
    svg.append_attribute("version") = "1.1";
    AIRealRect area = documentArea(doc_);
    // An empty or unbounded area becomes a unit square: a viewBox must
    // have a positive, finite size.
    if (!std::isfinite(area.left) || !std::isfinite(area.top)) area.left = 0, area.top = 1;
    double w = area.right - area.left, h = area.top - area.bottom;
    if (!(w > 0) || !std::isfinite(w)) w = 1;
    if (!(h > 0) || !std::isfinite(h)) h = 1;
    svg.append_attribute("width") = num(w).c_str();
    svg.append_attribute("height") = num(h).c_str();
    svg.append_attribute("viewBox") = (num(area.left) + " " + num(-area.top) + " " + num(w) + " " + num(h)).c_str();
    if (!doc_.keyArtId.empty()) svg.append_attribute("latticebender:key") = doc_.keyArtId.c_str();
    defs_ = svg.append_child("defs");
    if (!doc_.styles().empty()) losses_->add("graphic styles (art keeps its own paint)");
    const auto& layers = doc_.layers();
    for (auto it = layers.rbegin(); it != layers.rend(); ++it) {
      const ArtObject& layer = **it;
      pugi::xml_node g = svg.append_child("g");
      g.append_attribute("inkscape:groupmode") = "layer";
      g.append_attribute("inkscape:label") = layer.name.c_str();
      common(layer, g);
      children(layer, g);
    }
    std::ostringstream out;
    xml_.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
    return out.str();
  }

 private:
  std::string freshId(const std::string& stem) {
    for (;;) {
      std::string id = stem + std::to_string(++counter_);
      if (used_.insert(id).second) return id;
    }
  }

  void children(const ArtObject& parent, pugi::xml_node into) {
    for (auto it = parent.children.rbegin(); it != parent.children.rend(); ++it) art(**it, into);
  }

  // Attributes every element carries: id, name, opacity, blend mode,
  // visibility and lock.
  void common(const ArtObject& a, pugi::xml_node e) {
    if (!a.id.empty()) e.append_attribute("id") = a.id.c_str();
    if (!a.name.empty() && !a.isLayer) e.append_attribute("inkscape:label") = a.name.c_str();
    std::string style;
    if (a.opacity != 1) e.append_attribute("opacity") = num(std::clamp(a.opacity, 0.0, 1.0)).c_str();
    if (a.blendMode != kAINormalBlendingMode) style += "mix-blend-mode:" + blendName(a.blendMode) + ";";
    if (a.hidden()) style += "display:none;";
    if (!style.empty()) e.append_attribute("style") = style.c_str();
    if (a.locked()) e.append_attribute("sodipodi:insensitive") = "true";
    if (!a.graphicStyle.empty()) e.append_attribute("latticebender:graphic-style") = a.graphicStyle.c_str();
  }

  // The colour as SVG shows it; the exact colour and its kind go in an
  // attribute of our own.
  static std::string paint(const AIColor& c) {
    if (c.kind == kNoneColor) return "none";
    double r, g, b;
    lb::host::colorToRGB(c, &r, &g, &b);
    return hexColour(r, g, b);
  }

  void pathStyle(const AIPathStyle& st, pugi::xml_node e, bool evenOdd) {
    if (st.fillPaint) e.append_attribute("latticebender:fill") = exactColour(st.fill.color).c_str();
    if (st.strokePaint) e.append_attribute("latticebender:stroke") = exactColour(st.stroke.color).c_str();
    std::string s;
    s += "fill:" + (st.fillPaint ? paint(st.fill.color) : std::string("none")) + ";";
    if (evenOdd) s += "fill-rule:evenodd;";
    if (st.strokePaint && st.stroke.color.kind != kNoneColor) {
      s += "stroke:" + paint(st.stroke.color) + ";stroke-width:" + num(st.stroke.width) + ";";
    } else {
      s += "stroke:none;";
    }
    pugi::xml_attribute old = e.attribute("style");
    if (old)
      old.set_value((s + old.value()).c_str());
    else
      e.append_attribute("style") = s.c_str();
  }

  static void pathData(const ArtObject& p, std::string& d) {
    const auto& segs = p.segments;
    if (segs.empty()) return;
    if (!d.empty()) d += " ";
    d += "M " + pt(segs[0].p);
    const size_t n = segs.size();
    const size_t pieces = p.closed ? n : n - 1;
    for (size_t k = 0; k < pieces; ++k) {
      const AIPathSegment& a = segs[k];
      const AIPathSegment& b = segs[(k + 1) % n];
      d += " C " + pt(a.out) + " " + pt(b.in) + " " + pt(b.p);
    }
    if (p.closed) d += " Z";
  }

  // Smooth and corner anchors as Inkscape records them: one letter per
  // anchor, c for a corner, s for a smooth one.
  static void nodeTypes(const ArtObject& p, pugi::xml_node e) {
    std::string t;
    for (const AIPathSegment& sg : p.segments) t += sg.corner ? 'c' : 's';
    if (p.closed && !t.empty()) t += t[0];
    e.append_attribute("sodipodi:nodetypes") = t.c_str();
  }

  void art(const ArtObject& a, pugi::xml_node into) {
    switch (a.type) {
      case kGroupArt: {
        pugi::xml_node g = into.append_child("g");
        common(a, g);
        children(a, g);
        break;
      }
      case kPathArt: {
        for (const AIPathSegment& sg : a.segments)
          if (!finite(sg.p) || !finite(sg.in) || !finite(sg.out)) {
            losses_->add("art with non-finite coordinates");
            return;
          }
        pugi::xml_node e = into.append_child("path");
        common(a, e);
        std::string d;
        pathData(a, d);
        e.append_attribute("d") = d.c_str();
        pathStyle(a.style, e, false);
        nodeTypes(a, e);
        break;
      }
      case kCompoundPathArt: {
        pugi::xml_node e = into.append_child("path");
        common(a, e);
        std::string d;
        const ArtObject* styled = &a;
        for (const auto& c : a.children) {
          if (c->type != kPathArt) continue;
          if (styled == &a && !(a.style.fillPaint || a.style.strokePaint)) styled = c.get();
          if (c->hidden()) continue;
          pathData(*c, d);
        }
        e.append_attribute("d") = d.c_str();
        e.append_attribute("latticebender:compound") = "true";
        pathStyle(styled->style, e, true);
        break;
      }
      case kRasterArt: image(a, into); break;
      case kPlacedArt:
        if (a.image.placedType == kPlacedImageType)
          image(a, into);
        else
          losses_->add("placed content that is not an image");
        break;
      case kMeshArt:
        if (a.mesh) mesh(a, into);
        break;
      default: losses_->add("art of unknown type"); break;
    }
  }

  static bool finite(AIRealPoint p) { return std::isfinite(p.h) && std::isfinite(p.v); }

  void mesh(const ArtObject& a, pugi::xml_node into) {
    const lb::host::GradientMesh& m = *a.mesh;
    for (int axis = 0; axis < 2; ++axis)
      for (int j = 0; j <= m.sizeJ() - axis; ++j)
        for (int i = 0; i <= m.sizeI() - (1 - axis); ++i)
          for (const AIRealPoint& p : m.runPoints(axis, i, j))
            if (!finite(p)) {
              losses_->add("art with non-finite coordinates");
              return;
            }
    if (m.nodeData(0, 0).color.kind == kNoneColor) {
      losses_->add("meshes without colour");
      return;
    }
    const MeshGrid g = gridFromMesh(m, kMinCell);
    const std::string gid = freshId("lbmesh");
    pugi::xml_node mg = defs_.append_child("meshgradient");
    mg.append_attribute("id") = gid.c_str();
    mg.append_attribute("gradientUnits") = "userSpaceOnUse";
    // SVG rows run from the top grid row down, patches from the left.
    const AIRealPoint start = g.at(0, g.rows);
    mg.append_attribute("x") = num(start.h).c_str();
    mg.append_attribute("y") = num(-start.v).c_str();
    auto stop = [&](pugi::xml_node patch, AIRealPoint from, AIRealPoint c1, AIRealPoint c2, AIRealPoint to,
                    const GridColour& colour) {
      pugi::xml_node s = patch.append_child("stop");
      auto rel = [&](AIRealPoint p) { return num(p.h - from.h) + "," + num(-(p.v - from.v)); };
      s.append_attribute("path") = ("c " + rel(c1) + " " + rel(c2) + " " + rel(to)).c_str();
      s.append_attribute("style") =
          ("stop-color:" + hexColour(colour.r, colour.g, colour.b) + ";stop-opacity:" + num(colour.a)).c_str();
    };
    for (int r = 0; r < g.rows; ++r) {
      const int b = g.rows - 1 - r;  // grid row of this SVG row; its top is line b + 1
      pugi::xml_node row = mg.append_child("meshrow");
      for (int a = 0; a < g.cols; ++a) {
        pugi::xml_node patch = row.append_child("meshpatch");
        // Corners: 0 top-left (a, b+1), 1 top-right (a+1, b+1),
        // 2 bottom-right (a+1, b), 3 bottom-left (a, b).
        const auto& top = g.hside[a + (b + 1) * g.cols];
        const auto& right = g.vside[(a + 1) + b * (g.cols + 1)];
        const auto& bottom = g.hside[a + b * g.cols];
        const auto& left = g.vside[a + b * (g.cols + 1)];
        if (r == 0)
          stop(patch, g.at(a, b + 1), top[0], top[1], g.at(a + 1, b + 1), g.colourAt(a, b + 1));
        stop(patch, g.at(a + 1, b + 1), right[1], right[0], g.at(a + 1, b), g.colourAt(a + 1, b + 1));
        stop(patch, g.at(a + 1, b), bottom[1], bottom[0], g.at(a, b), g.colourAt(a + 1, b));
        if (a == 0) stop(patch, g.at(a, b), left[0], left[1], g.at(a, b + 1), g.colourAt(a, b));
      }
    }
    pugi::xml_node e = into.append_child("path");
    common(a, e);
    std::string d = "M " + pt(m.runPoints(0, 0, 0)[0]);
    auto run = [&](std::span<const AIRealPoint> pts, bool forward) {
      const size_t n = pts.size();
      for (size_t k = 1; k + 2 < n; k += 3) {
        if (forward)
          d += " C " + pt(pts[k]) + " " + pt(pts[k + 1]) + " " + pt(pts[k + 2]);
        else
          d += " C " + pt(pts[n - 1 - k]) + " " + pt(pts[n - 2 - k]) + " " + pt(pts[n - 3 - k]);
      }
    };
    const int I = m.sizeI(), J = m.sizeJ();
    for (int i = 0; i < I; ++i) run(m.runPoints(0, i, 0), true);
    for (int j = 0; j < J; ++j) run(m.runPoints(1, I, j), true);
    for (int i = I - 1; i >= 0; --i) run(m.runPoints(0, i, J), false);
    for (int j = J - 1; j >= 0; --j) run(m.runPoints(1, 0, j), false);
    d += " Z";
    e.append_attribute("d") = d.c_str();
    const std::string fill = "fill:url(#" + gid + ");stroke:none;";
    pugi::xml_attribute old = e.attribute("style");
    if (old)
      old.set_value((fill + old.value()).c_str());
    else
      e.append_attribute("style") = fill.c_str();
    // The mesh itself (knots, inner vertices, relative positions, colour
    // kinds, smooth flags), so that reading this file back gives it again.
    nlohmann::json j;
    meshToJson(m, j);
    e.append_attribute("latticebender:mesh") = j.dump().c_str();
  }

  void image(const ArtObject& a, pugi::xml_node into) {
    const ArtImage& im = a.image;
    if (im.width <= 0 || im.height <= 0 || im.pixels.size() < im.expectedBytes()) {
      losses_->add("images without pixel data");
      return;
    }
    cairo_surface_t* surf = lb::render::imageSurface(a);
    if (!surf) {
      losses_->add("images too large to encode");
      return;
    }
    std::string png;
    cairo_surface_write_to_png_stream(
        surf,
        [](void* closure, const unsigned char* bytes, unsigned int n) {
          static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(bytes), n);
          return CAIRO_STATUS_SUCCESS;
        },
        &png);
    cairo_surface_destroy(surf);
    pugi::xml_node e = into.append_child("image");
    common(a, e);
    e.append_attribute("width") = im.width;
    e.append_attribute("height") = im.height;
    e.append_attribute("preserveAspectRatio") = "none";
    e.append_attribute("style").set_value((std::string("image-rendering:pixelated;") + e.attribute("style").value()).c_str());
    const AIRealMatrix& m = im.matrix;
    // Pixel (x, row) sits at image (x, -row); document (h, v) at SVG (h, -v).
    e.append_attribute("transform") = ("matrix(" + num(m.a) + " " + num(-m.b) + " " + num(-m.c) + " " + num(m.d) +
                                       " " + num(m.tx) + " " + num(-m.ty) + ")")
                                          .c_str();
    e.append_attribute("xlink:href") = ("data:image/png;base64," + base64(png)).c_str();
    if (a.type == kPlacedArt) e.append_attribute("latticebender:placed") = std::to_string(im.placedType).c_str();
    // The pixels as they are (gray, CMYK, 16 bits) and the colourising fill.
    if (im.space != kRGBColorSpace || im.bits != 8 || a.style.fillPaint) {
      const char* space = im.space == kRGBColorSpace ? "rgb" : im.space == kCMYKColorSpace ? "cmyk" : "gray";
      e.append_attribute("latticebender:raster") =
          (std::string(space) + " " + std::to_string(im.bits) + (im.alpha ? " alpha" : "")).c_str();
      e.append_attribute("latticebender:pixels") =
          base64(std::string(im.pixels.begin(), im.pixels.begin() + static_cast<long>(im.expectedBytes()))).c_str();
      if (a.style.fillPaint) e.append_attribute("latticebender:fill") = exactColour(a.style.fill.color).c_str();
    }
  }

  const Document& doc_;
  Losses* losses_;
  pugi::xml_document xml_;
  pugi::xml_node defs_;
  std::set<std::string> used_;
  int counter_ = 0;
};

}  // namespace

std::string writeSvg(const Document& doc, Losses* losses) {
  Losses local;
  return Writer(doc, losses ? losses : &local).write();
}

}  // namespace lb::io::svg
