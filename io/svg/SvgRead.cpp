// Reading SVG into a document: meshgradients (as Inkscape writes them),
// paths and basic shapes, groups and layers, images, styles, transforms.
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <pugixml.hpp>

#include <sstream>

#include "host/Color.h"
#include "host/Geometry.h"
#include "io/MeshJson.h"
#include "io/svg/MeshGrid.h"
#include "io/svg/Svg.h"
#include "io/svg/SvgCommon.h"
#include "io/svg/SvgSyntax.h"

namespace lb::io::svg {

namespace {

using lb::host::Document;

std::string describe(pugi::xml_node e) {
  std::string s = std::string("<") + e.name();
  if (const char* id = e.attribute("id").value(); *id) s += std::string(" id=\"") + id + "\"";
  return s + ">";
}

// Properties that children inherit, as far as the document can hold them.
struct Style {
  std::string fill = "black", stroke = "none", fillRule = "nonzero";
  double strokeWidth = 1, fillOpacity = 1, strokeOpacity = 1;
  bool hidden = false;
};

// Converts an SVG user-space point to document coordinates.
AIRealPoint toDoc(const Affine& m, double x, double y) {
  const Point p = m.apply({x, y});
  return {p.x, -p.y};
}

class Reader {
 public:
  Reader(Losses* losses) : losses_(losses) {}

  std::unique_ptr<Document> read(const std::string& text, const std::vector<std::string>& select) {
    const pugi::xml_parse_result ok = xml_.load_buffer(text.data(), text.size(), pugi::parse_default | pugi::parse_ws_pcdata_single);
    if (!ok)
      throw FormatError("offset " + std::to_string(ok.offset), std::string("not well-formed XML: ") + ok.description());
    pugi::xml_node root = xml_.document_element();
    if (std::strcmp(localName(root), "svg") != 0)
      throw FormatError(describe(root), "the root element is not <svg>");
    indexIds(root);
    doc_ = std::make_unique<Document>();
    area(root);
    Style base;
    readStyle(root, base);
    for (pugi::xml_node c : root.children()) topLevel(c, Affine{}, base);
    if (const char* key = root.attribute("latticebender:key").value(); *key) {
      if (doc_->findById(key))
        doc_->keyArtId = key;
      else
        losses_->add("the key object (no art has its id)");
    }
    for (const std::string& id : select) {
      ArtObject* a = doc_->findById(id);
      if (!a) {
        losses_->add("selection of unknown ids (" + id + ")");
        continue;
      }
      doc_->setSelected(a, true);
    }
    return std::move(doc_);
  }

 private:
  static const char* localName(pugi::xml_node e) {
    const char* n = e.name();
    const char* colon = std::strchr(n, ':');
    return colon && std::strncmp(n, "svg:", 4) == 0 ? colon + 1 : n;
  }

  void indexIds(pugi::xml_node root) {
    for (const pugi::xpath_node& x : root.select_nodes("//*[@id]")) ids_.emplace(x.node().attribute("id").value(), x.node());
  }

  double length(pugi::xml_node e, const char* name, double fallback) {
    pugi::xml_attribute a = e.attribute(name);
    if (!a) return fallback;
    std::optional<double> v = parseLength(a.value());
    if (!v) throw FormatError(describe(e), std::string("bad ") + name + " '" + a.value() + "'");
    return *v;
  }

  void area(pugi::xml_node root) {
    if (pugi::xml_attribute vb = root.attribute("viewBox")) {
      std::vector<double> n;
      if (!parseNumbers(vb.value(), &n) || n.size() != 4 || !(n[2] > 0) || !(n[3] > 0))
        throw FormatError(describe(root), std::string("bad viewBox '") + vb.value() + "'");
      doc_->artboard = AIRealRect{n[0] + 0.0, -n[1] + 0.0, n[0] + n[2] + 0.0, -(n[1] + n[3]) + 0.0};
      return;
    }
    const double w = length(root, "width", 0), h = length(root, "height", 0);
    if (w > 0 && h > 0) doc_->artboard = AIRealRect{0, 0, w, -h};
  }

  // Fills `st` from the element's presentation attributes and then its
  // style attribute (which wins).
  void readStyle(pugi::xml_node e, Style& st) {
    std::map<std::string, std::string> props;
    for (const char* name : {"fill", "stroke", "stroke-width", "fill-rule", "fill-opacity", "stroke-opacity", "display",
                             "visibility", "opacity", "mix-blend-mode", "clip-path", "mask", "filter"})
      if (pugi::xml_attribute a = e.attribute(name)) props[name] = trim(a.value());
    parseStyleAttribute(e.attribute("style").value(), &props);
    // A hidden group hides its children; they keep their own state.
    st.hidden = false;
    for (auto& [k, v] : props) {
      if (v == "inherit") continue;
      if (k == "fill") st.fill = v;
      else if (k == "stroke") st.stroke = v;
      else if (k == "fill-rule") st.fillRule = v;
      else if (k == "stroke-width") {
        std::optional<double> w = parseLength(v);
        if (!w) throw FormatError(describe(e), "bad stroke-width '" + v + "'");
        st.strokeWidth = *w;
      } else if (k == "fill-opacity" || k == "stroke-opacity") {
        std::optional<double> o = parseLength(v);
        if (!o) throw FormatError(describe(e), "bad " + k + " '" + v + "'");
        (k == "fill-opacity" ? st.fillOpacity : st.strokeOpacity) = std::clamp(*o, 0.0, 1.0);
      } else if ((k == "display" && v == "none") || (k == "visibility" && v == "hidden")) {
        st.hidden = true;
      } else if ((k == "clip-path" || k == "mask" || k == "filter") && v != "none") {
        losses_->add(k == "filter" ? "filters" : "clip paths and masks");
      }
    }
    elementProps_ = std::move(props);
  }

  // Element-level (not inherited) properties of the element read last.
  void commonArt(pugi::xml_node e, ArtObject& a, const Style& st) {
    if (const char* id = e.attribute("id").value(); *id && !usedIds_.count(id)) {
      a.id = id;
      usedIds_.insert(id);
    }
    if (pugi::xml_attribute l = e.attribute("inkscape:label")) a.name = l.value();
    if (auto it = elementProps_.find("opacity"); it != elementProps_.end()) {
      std::optional<double> o = parseLength(it->second);
      if (!o) throw FormatError(describe(e), "bad opacity '" + it->second + "'");
      a.opacity = std::clamp(*o, 0.0, 1.0);
    }
    if (auto it = elementProps_.find("mix-blend-mode"); it != elementProps_.end()) {
      const int mode = blendFromName(it->second);
      if (mode < 0)
        losses_->add("blend mode " + it->second);
      else
        a.blendMode = mode;
    }
    if (st.hidden) a.userAttr |= kArtHidden;
    if (std::strcmp(e.attribute("sodipodi:insensitive").value(), "true") == 0) a.userAttr |= kArtLocked;
    if (pugi::xml_attribute gs = e.attribute("latticebender:graphic-style")) (void)gs;  // styles are not kept in SVG
  }

  Affine transformOf(pugi::xml_node e, const Affine& parent) {
    pugi::xml_attribute t = e.attribute("transform");
    if (!t) return parent;
    std::optional<Affine> m = parseTransform(t.value());
    if (!m) throw FormatError(describe(e), std::string("bad transform '") + t.value() + "'");
    return parent * *m;
  }

  void topLevel(pugi::xml_node e, const Affine& ctm, const Style& inherited) {
    if (e.type() != pugi::node_element) return;
    const std::string name = localName(e);
    if (name == "g" && std::strcmp(e.attribute("inkscape:groupmode").value(), "layer") == 0) {
      Style st = inherited;
      readStyle(e, st);
      const Affine m = transformOf(e, ctm);
      ArtObject* layer = doc_->addLayer(e.attribute("inkscape:label").value(), true);
      if (st.hidden) layer->userAttr |= kArtHidden;
      if (std::strcmp(e.attribute("sodipodi:insensitive").value(), "true") == 0) layer->userAttr |= kArtLocked;
      if (auto it = elementProps_.find("opacity"); it != elementProps_.end() && parseLength(it->second) != 1.0)
        losses_->add("layer opacity");
      for (pugi::xml_node c : e.children()) {
        auto art = element(c, m, st);
        if (art) doc_->appendChild(layer, std::move(art), true);
      }
      loose_ = nullptr;
      return;
    }
    auto art = element(e, ctm, inherited);
    if (!art) return;
    if (!loose_) loose_ = doc_->addLayer(doc_->layers().empty() ? "Layer 1" : "Layer", true);
    doc_->appendChild(loose_, std::move(art), true);
  }

  std::unique_ptr<ArtObject> element(pugi::xml_node e, const Affine& ctm, const Style& inherited) {
    if (e.type() != pugi::node_element) return nullptr;
    const std::string name = localName(e);
    static const char* const kSkipped[] = {"defs", "metadata", "title", "desc", "sodipodi:namedview", "meshgradient",
                                           "linearGradient", "radialGradient", "clipPath", "mask", "symbol",
                                           "filter", "marker", "pattern", "script"};
    for (const char* s : kSkipped)
      if (name == s) return nullptr;
    Style st = inherited;
    readStyle(e, st);
    const Affine m = transformOf(e, ctm);
    if (name == "g" || name == "a" || name == "svg") {
      if (++depth_ > kMaxDepth) throw FormatError(describe(e), "groups nested more than 256 deep");
      auto g = std::make_unique<ArtObject>();
      g->type = kGroupArt;
      commonArt(e, *g, st);
      const auto props = elementProps_;
      for (pugi::xml_node c : e.children())
        if (auto child = element(c, m, st)) {
          child->parent = g.get();
          g->children.insert(g->children.begin(), std::move(child));
        }
      --depth_;
      return g;
    }
    if (name == "image") return image(e, m, st);
    std::vector<SubPath> subs;
    if (!shape(e, name, &subs)) {
      if (name == "style")
        losses_->add("style sheets");
      else if (name == "text" || name == "flowRoot")
        losses_->add("text");
      else if (name == "use")
        losses_->add("clones (<use>)");
      else if (e.name()[0] && std::strchr(e.name(), ':') == nullptr)
        losses_->add("<" + name + "> elements");
      return nullptr;
    }
    // A mesh fill makes mesh art.
    const std::string fill = st.fill;
    if (fill.rfind("url(", 0) == 0) {
      const std::string ref = urlId(fill);
      auto it = ids_.find(ref);
      if (it == ids_.end()) throw FormatError(describe(e), "fill names no element: '" + fill + "'");
      if (std::strcmp(localName(it->second), "meshgradient") == 0) return mesh(e, it->second, m, st, subs);
    }
    return pathArt(e, m, st, subs);
  }

  static std::string urlId(const std::string& v) {
    size_t a = v.find('#'), b = v.find(')');
    if (a == std::string::npos || b == std::string::npos || b < a) return "";
    return v.substr(a + 1, b - a - 1);
  }

  bool shape(pugi::xml_node e, const std::string& name, std::vector<SubPath>* subs) {
    if (name == "path") {
      std::string err;
      if (!parsePathData(e.attribute("d").value(), subs, &err))
        throw FormatError(describe(e), "bad path data: " + err);
      return true;
    }
    if (name == "rect") {
      const double x = length(e, "x", 0), y = length(e, "y", 0), w = length(e, "width", 0), h = length(e, "height", 0);
      double rx = length(e, "rx", -1), ry = length(e, "ry", -1);
      if (rx < 0) rx = ry;
      if (ry < 0) ry = rx;
      rx = std::clamp(rx, 0.0, w / 2), ry = std::clamp(ry, 0.0, h / 2);
      if (w < 0 || h < 0) throw FormatError(describe(e), "negative width or height");
      *subs = {roundedRect(x, y, w, h, rx, ry)};
      return true;
    }
    if (name == "circle" || name == "ellipse") {
      const double cx = length(e, "cx", 0), cy = length(e, "cy", 0);
      const double rx = name == "circle" ? length(e, "r", 0) : length(e, "rx", 0);
      const double ry = name == "circle" ? rx : length(e, "ry", 0);
      if (rx < 0 || ry < 0) throw FormatError(describe(e), "negative radius");
      *subs = {ellipse(cx, cy, rx, ry)};
      return true;
    }
    if (name == "line") {
      SubPath s;
      const Point a{length(e, "x1", 0), length(e, "y1", 0)}, b{length(e, "x2", 0), length(e, "y2", 0)};
      s.pts = {a, lerp(a, b, 1.0 / 3), lerp(a, b, 2.0 / 3), b};
      *subs = {s};
      return true;
    }
    if (name == "polyline" || name == "polygon") {
      std::vector<double> n;
      if (!parseNumbers(e.attribute("points").value(), &n) || n.size() % 2)
        throw FormatError(describe(e), std::string("bad points '") + e.attribute("points").value() + "'");
      SubPath s;
      for (size_t k = 0; k + 1 < n.size(); k += 2) {
        const Point p{n[k], n[k + 1]};
        if (!s.pts.empty()) {
          const Point a = s.pts.back();
          s.pts.insert(s.pts.end(), {lerp(a, p, 1.0 / 3), lerp(a, p, 2.0 / 3)});
        }
        s.pts.push_back(p);
      }
      s.closed = name == "polygon";
      if (s.closed && s.pts.size() > 1) closeSub(s);
      if (!s.pts.empty()) subs->push_back(s);
      return true;
    }
    return false;
  }

  // Paint of fill or stroke; url() references to plain gradients give their
  // first stop's colour.
  bool paint(pugi::xml_node e, const std::string& v, double opacity, AIColor* out) {
    if (v == "none" || v.empty()) return false;
    std::string colour = v;
    if (v.rfind("url(", 0) == 0) {
      auto it = ids_.find(urlId(v));
      if (it == ids_.end()) throw FormatError(describe(e), "paint names no element: '" + v + "'");
      losses_->add("linear, radial and pattern paints (first stop colour used)");
      pugi::xml_node g = it->second;
      pugi::xml_node stop;
      for (int hops = 0; hops < 16 && g && !(stop = g.child("stop")); ++hops) g = ids_[urlId("(#" + std::string(href(g)) + ")")];
      if (!stop) return false;
      std::map<std::string, std::string> props;
      if (pugi::xml_attribute c = stop.attribute("stop-color")) props["stop-color"] = c.value();
      parseStyleAttribute(stop.attribute("style").value(), &props);
      colour = props.count("stop-color") ? props["stop-color"] : "black";
    }
    double r, g, b;
    if (colour == "currentColor") colour = "black";
    if (!parseColour(colour, &r, &g, &b)) throw FormatError(describe(e), "bad colour '" + colour + "'");
    (void)opacity;
    out->kind = kThreeColor;
    out->c.rgb = {r, g, b};
    return true;
  }

  // Our own record of the exact colour, used while the SVG colour still
  // shows it (the paint was not changed elsewhere).
  static void exact(pugi::xml_node e, const char* name, bool painted, AIColor* c) {
    pugi::xml_attribute a = e.attribute(name);
    AIColor mine;
    if (!a || !painted || c->kind != kThreeColor || !parseExactColour(a.value(), &mine) || mine.kind == kNoneColor) return;
    double r, g, b;
    lb::host::colorToRGB(mine, &r, &g, &b);
    if (std::fabs(r - c->c.rgb.red) <= 0.6 / 255 && std::fabs(g - c->c.rgb.green) <= 0.6 / 255 &&
        std::fabs(b - c->c.rgb.blue) <= 0.6 / 255)
      *c = mine;
  }

  static const char* href(pugi::xml_node e) {
    const char* h = e.attribute("xlink:href").value();
    if (!*h) h = e.attribute("href").value();
    return *h == '#' ? h + 1 : h;
  }

  std::unique_ptr<ArtObject> pathFromSub(const SubPath& s, const Affine& m) {
    auto p = std::make_unique<ArtObject>();
    p->type = kPathArt;
    const size_t n = (s.pts.size() - 1) / 3 + 1;  // anchors
    std::vector<AIRealPoint> q(s.pts.size());
    for (size_t k = 0; k < s.pts.size(); ++k) q[k] = toDoc(m, s.pts[k].x, s.pts[k].y);
    size_t anchors = n;
    if (s.closed && n > 1) anchors = n - 1;  // the last anchor is the first again
    for (size_t k = 0; k < anchors; ++k) {
      AIPathSegment sg{};
      sg.p = q[3 * k];
      sg.in = k > 0 ? q[3 * k - 1] : (s.closed && n > 1 ? q[q.size() - 2] : q[0]);
      sg.out = 3 * k + 1 < q.size() ? q[3 * k + 1] : q[3 * k];
      sg.corner = true;
      p->segments.push_back(sg);
    }
    p->closed = s.closed;
    p->segmentSelection.assign(p->segments.size(), 0);
    return p;
  }

  std::unique_ptr<ArtObject> pathArt(pugi::xml_node e, const Affine& m, const Style& st, const std::vector<SubPath>& subs) {
    AIPathStyle ps{};
    ps.fillPaint = paint(e, st.fill, st.fillOpacity, &ps.fill.color);
    ps.strokePaint = paint(e, st.stroke, st.strokeOpacity, &ps.stroke.color);
    exact(e, "latticebender:fill", ps.fillPaint, &ps.fill.color);
    exact(e, "latticebender:stroke", ps.strokePaint, &ps.stroke.color);
    ps.stroke.width = st.strokeWidth * std::sqrt(std::fabs(m.a * m.d - m.b * m.c));
    if (ps.strokePaint && std::fabs(m.a * m.d - m.b * m.c - 1) > 1e-9 &&
        std::fabs(std::hypot(m.a, m.b) - std::hypot(m.c, m.d)) > 1e-9)
      losses_->add("strokes under non-uniform scaling (width averaged)");
    std::vector<const SubPath*> parts;
    for (const SubPath& s : subs)
      if (s.pts.size() >= 1) parts.push_back(&s);
    if (parts.empty()) return nullptr;
    std::unique_ptr<ArtObject> art;
    const bool compound = parts.size() > 1 || std::strcmp(e.attribute("latticebender:compound").value(), "true") == 0;
    if (!compound) {
      art = pathFromSub(*parts[0], m);
      art->style = ps;
      const std::string types = e.attribute("sodipodi:nodetypes").value();
      if (types.size() >= art->segments.size())
        for (size_t k = 0; k < art->segments.size(); ++k) art->segments[k].corner = types[k] != 's' && types[k] != 'z' && types[k] != 'a';
    } else {
      art = std::make_unique<ArtObject>();
      art->type = kCompoundPathArt;
      if (st.fillRule != "evenodd" && ps.fillPaint) losses_->add("non-zero fill rule of compound paths (even-odd used)");
      for (const SubPath* s : parts) {
        auto p = pathFromSub(*s, m);
        p->style = ps;
        p->parent = art.get();
        art->children.push_back(std::move(p));
      }
    }
    commonArt(e, *art, st);
    // Fill or stroke opacity of art painted only one way is art opacity.
    if (ps.fillPaint && !ps.strokePaint)
      art->opacity *= st.fillOpacity;
    else if (ps.strokePaint && !ps.fillPaint)
      art->opacity *= st.strokeOpacity;
    else if (ps.fillPaint && (st.fillOpacity < 1 || st.strokeOpacity < 1))
      losses_->add("fill and stroke opacity of art with both");
    return art;
  }

  std::unique_ptr<ArtObject> image(pugi::xml_node e, const Affine& m, const Style& st) {
    const std::string ref = e.attribute("xlink:href") ? e.attribute("xlink:href").value() : e.attribute("href").value();
    const std::string prefix = "data:image/png;base64,";
    if (ref.rfind(prefix, 0) != 0) {
      losses_->add("images that are not embedded PNG");
      return nullptr;
    }
    std::string png;
    if (!unbase64(ref.substr(prefix.size()), &png)) throw FormatError(describe(e), "bad base64 image data");
    struct Source {
      const std::string* bytes;
      size_t at;
    } src{&png, 0};
    cairo_surface_t* surf = cairo_image_surface_create_from_png_stream(
        [](void* closure, unsigned char* data, unsigned int n) {
          auto* s = static_cast<Source*>(closure);
          if (s->at + n > s->bytes->size()) return CAIRO_STATUS_READ_ERROR;
          std::memcpy(data, s->bytes->data() + s->at, n);
          s->at += n;
          return CAIRO_STATUS_SUCCESS;
        },
        &src);
    if (cairo_surface_status(surf) != CAIRO_STATUS_SUCCESS) {
      cairo_surface_destroy(surf);
      throw FormatError(describe(e), "the embedded PNG cannot be decoded");
    }
    auto art = std::make_unique<ArtObject>();
    art->type = *e.attribute("latticebender:placed").value() ? kPlacedArt : kRasterArt;
    ArtImage& im = art->image;
    cairo_surface_t* argb = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, cairo_image_surface_get_width(surf),
                                                       cairo_image_surface_get_height(surf));
    cairo_t* cr = cairo_create(argb);
    cairo_set_source_surface(cr, surf, 0, 0);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    cairo_paint(cr);
    cairo_destroy(cr);
    cairo_surface_destroy(surf);
    cairo_surface_flush(argb);
    im.width = cairo_image_surface_get_width(argb);
    im.height = cairo_image_surface_get_height(argb);
    im.space = kRGBColorSpace;
    im.bits = 8;
    const unsigned char* data = cairo_image_surface_get_data(argb);
    const int stride = cairo_image_surface_get_stride(argb);
    bool alpha = false;
    for (int y = 0; y < im.height; ++y)
      for (int x = 0; x < im.width; ++x)
        if ((reinterpret_cast<const uint32_t*>(data + y * stride)[x] >> 24) != 255) alpha = true;
    im.alpha = alpha;
    im.pixels.reserve(static_cast<size_t>(im.width) * im.height * (alpha ? 4 : 3));
    for (int y = 0; y < im.height; ++y)
      for (int x = 0; x < im.width; ++x) {
        const uint32_t px = reinterpret_cast<const uint32_t*>(data + y * stride)[x];
        const int a = px >> 24;
        for (int sh : {16, 8, 0}) {
          const int c = (px >> sh) & 255;
          im.pixels.push_back(static_cast<uint8_t>(a == 0 ? 0 : std::min(255, (c * 255 + a / 2) / a)));
        }
        if (alpha) im.pixels.push_back(static_cast<uint8_t>(a));
      }
    cairo_surface_destroy(argb);
    if (im.pixels.empty()) return nullptr;
    if (const char* placed = e.attribute("latticebender:placed").value(); *placed) im.placedType = static_cast<int16_t>(std::atoi(placed));
    ownPixels(e, art.get());
    // Pixel (x, row) is at image (x, -row); the element puts it at
    // (ix + x * w / W, iy + row * h / H) in its user space.
    const double ix = length(e, "x", 0), iy = length(e, "y", 0);
    const double w = length(e, "width", im.width), h = length(e, "height", im.height);
    const double sx = w / im.width, sy = h / im.height;
    auto place = [&](double X, double Y) { return toDoc(m, ix + X * sx, iy - Y * sy); };
    const AIRealPoint o = place(0, 0), ex = place(1, 0), ey = place(0, 1);
    im.matrix = {ex.h - o.h, ex.v - o.v, ey.h - o.h, ey.v - o.v, o.h, o.v};
    commonArt(e, *art, st);
    return art;
  }

  // The pixels as this program wrote them (gray, CMYK, 16 bits), when the
  // element still holds an image of their size.
  static void ownPixels(pugi::xml_node e, ArtObject* art) {
    pugi::xml_attribute kind = e.attribute("latticebender:raster"), data = e.attribute("latticebender:pixels");
    if (!kind || !data) return;
    std::istringstream in(kind.value());
    std::string space, alpha;
    int bits = 0;
    in >> space >> bits >> alpha;
    ArtImage im = art->image;
    im.space = space == "rgb" ? kRGBColorSpace : space == "cmyk" ? kCMYKColorSpace : kGrayColorSpace;
    im.bits = static_cast<int16_t>(bits);
    im.alpha = alpha == "alpha";
    std::string bytes;
    if ((bits != 8 && bits != 16) || !unbase64(data.value(), &bytes) || bytes.size() != im.expectedBytes()) return;
    im.pixels.assign(bytes.begin(), bytes.end());
    art->image = std::move(im);
    AIColor fill;
    if (pugi::xml_attribute f = e.attribute("latticebender:fill"); f && parseExactColour(f.value(), &fill)) {
      art->style.fillPaint = true;
      art->style.fill.color = fill;
    }
  }

  // ---- meshgradient ----------------------------------------------------
  std::unique_ptr<ArtObject> mesh(pugi::xml_node e, pugi::xml_node mg, const Affine& m, const Style& st,
                                  const std::vector<SubPath>& subs) {
    // Attributes come from the nearest element of the href chain that has
    // them; the rows from the first that has any.
    pugi::xml_node rowsFrom;
    std::map<std::string, std::string> attrs;
    pugi::xml_node g = mg;
    for (int hops = 0; g; ++hops) {
      if (hops > 32) throw FormatError(describe(mg), "href chain too long or circular");
      for (const char* a : {"x", "y", "gradientTransform", "gradientUnits", "type"})
        if (g.attribute(a) && !attrs.count(a)) attrs[a] = g.attribute(a).value();
      if (!rowsFrom && g.child("meshrow")) rowsFrom = g;
      const char* next = href(g);
      if (!*next) break;
      auto it = ids_.find(next);
      if (it == ids_.end()) throw FormatError(describe(g), std::string("href names no element: '") + next + "'");
      g = it->second;
    }
    if (!rowsFrom) throw FormatError(describe(mg), "mesh gradient without rows");
    Affine gm;
    if (attrs.count("gradientTransform")) {
      std::optional<Affine> t = parseTransform(attrs["gradientTransform"]);
      if (!t) throw FormatError(describe(mg), "bad gradientTransform '" + attrs["gradientTransform"] + "'");
      gm = *t;
    }
    Affine units;
    if (attrs.count("gradientUnits") == 0 || attrs["gradientUnits"] != "userSpaceOnUse") {
      // Object bounding box units: the unit square is the shape's bounds.
      double x0 = INFINITY, y0 = INFINITY, x1 = -INFINITY, y1 = -INFINITY;
      for (const SubPath& s : subs)
        for (const Point& p : s.pts) x0 = std::min(x0, p.x), y0 = std::min(y0, p.y), x1 = std::max(x1, p.x), y1 = std::max(y1, p.y);
      if (!(x1 > x0) || !(y1 > y0)) throw FormatError(describe(e), "a bounding-box mesh on a shape without area");
      units = Affine{x1 - x0, 0, 0, y1 - y0, x0, y0};
    }
    const Affine full = m * units * gm;
    auto num = [&](const char* a) {
      if (!attrs.count(a)) return 0.0;
      std::optional<double> v = parseLength(attrs[a]);
      if (!v) throw FormatError(describe(mg), std::string("bad ") + a + " '" + attrs[a] + "'");
      return *v;
    };
    if (attrs.count("type") && attrs["type"] == "bicubic") losses_->add("bicubic mesh smoothing (read as bilinear)");
    // SVG-indexed grid: corners N[r][c], horizontal sides H[r][c] from
    // N[r][c] to N[r][c+1], vertical sides V[r][c] from N[r][c] to N[r+1][c].
    std::vector<std::vector<pugi::xml_node>> rows;
    for (pugi::xml_node r : rowsFrom.children("meshrow")) {
      rows.emplace_back();
      for (pugi::xml_node p : r.children("meshpatch")) rows.back().push_back(p);
    }
    const int R = static_cast<int>(rows.size());
    const int C = R ? static_cast<int>(rows[0].size()) : 0;
    if (R == 0 || C == 0) throw FormatError(describe(mg), "mesh gradient without patches");
    for (const auto& r : rows)
      if (static_cast<int>(r.size()) != C) throw FormatError(describe(mg), "mesh rows of different lengths");
    std::vector<Point> N(static_cast<size_t>(R + 1) * (C + 1));
    std::vector<GridColour> col(N.size());
    std::vector<std::array<Point, 2>> H(static_cast<size_t>(R + 1) * C), V(static_cast<size_t>(R) * (C + 1));
    auto n = [&](int r, int c) -> Point& { return N[r * (C + 1) + c]; };
    auto cl = [&](int r, int c) -> GridColour& { return col[r * (C + 1) + c]; };
    n(0, 0) = {num("x"), num("y")};
    for (int r = 0; r < R; ++r)
      for (int c = 0; c < C; ++c) {
        int side = r == 0 ? 0 : 1;
        const int last = c == 0 ? 3 : 2;
        for (pugi::xml_node s : rows[r][c].children("stop")) {
          if (side > last) break;
          static const int kStart[4][2] = {{0, 0}, {0, 1}, {1, 1}, {1, 0}};  // corner (dr, dc) where side k starts
          static const int kEnd[4][2] = {{0, 1}, {1, 1}, {1, 0}, {0, 0}};
          const Point from = n(r + kStart[side][0], c + kStart[side][1]);
          std::vector<SubPath> piece;
          std::string err;
          const std::string d = "M " + fmt(from.x) + " " + fmt(from.y) + " " + s.attribute("path").value();
          if (!parsePathData(d, &piece, &err) || piece.size() != 1 || piece[0].pts.size() != 4)
            throw FormatError(describe(mg), std::string("bad stop path '") + s.attribute("path").value() + "'");
          const auto& q = piece[0].pts;
          const bool closing = side == last && side >= 2;
          if (!closing) n(r + kEnd[side][0], c + kEnd[side][1]) = q[3];
          switch (side) {
            case 0: H[r * C + c] = {q[1], q[2]}; break;
            case 1: V[r * (C + 1) + c + 1] = {q[1], q[2]}; break;
            case 2: H[(r + 1) * C + c] = {q[2], q[1]}; break;
            case 3: V[r * (C + 1) + c] = {q[2], q[1]}; break;
          }
          std::map<std::string, std::string> props;
          for (const char* a : {"stop-color", "stop-opacity"})
            if (pugi::xml_attribute at = s.attribute(a)) props[a] = at.value();
          parseStyleAttribute(s.attribute("style").value(), &props);
          GridColour& gc = cl(r + kStart[side][0], c + kStart[side][1]);
          const std::string colour = props.count("stop-color") ? props["stop-color"] : "black";
          if (!parseColour(colour, &gc.r, &gc.g, &gc.b))
            throw FormatError(describe(mg), "bad stop-color '" + colour + "'");
          gc.a = 1;
          if (props.count("stop-opacity")) {
            std::optional<double> o = parseLength(props["stop-opacity"]);
            if (!o) throw FormatError(describe(mg), "bad stop-opacity '" + props["stop-opacity"] + "'");
            gc.a = std::clamp(*o, 0.0, 1.0);
          }
          ++side;
        }
        if (side <= last) throw FormatError(describe(rows[r][c]), "a mesh patch with too few stops");
      }
    // Grid (a, b) with b upwards: SVG row line r is b = R - r.
    MeshGrid grid;
    grid.resize(C, R);
    auto doc = [&](Point p) { return toDoc(full, p.x, p.y); };
    for (int b = 0; b <= R; ++b)
      for (int a = 0; a <= C; ++a) {
        grid.at(a, b) = doc(n(R - b, a));
        grid.colourAt(a, b) = cl(R - b, a);
      }
    for (int b = 0; b <= R; ++b)
      for (int a = 0; a < C; ++a) {
        const auto& h = H[(R - b) * C + a];
        grid.hside[a + b * C] = {doc(h[0]), doc(h[1])};
      }
    for (int b = 0; b < R; ++b)
      for (int a = 0; a <= C; ++a) {
        const auto& v = V[(R - b - 1) * (C + 1) + a];
        grid.vside[a + b * (C + 1)] = {doc(v[1]), doc(v[0])};
      }
    auto art = std::make_unique<ArtObject>();
    art->type = kMeshArt;
    art->mesh = ownMesh(e, m, grid);
    if (!art->mesh) {
      art->mesh = meshFromGrid(grid);
      losses_->add("the shapes that clip mesh fills (the mesh's own border is kept)");
    }
    commonArt(e, *art, st);
    return art;
  }

  // The mesh this program wrote with the element, when the meshgradient
  // still matches it (it was not edited elsewhere); else null.
  std::unique_ptr<lb::host::GradientMesh> ownMesh(pugi::xml_node e, const Affine& m, const MeshGrid& grid) {
    pugi::xml_attribute data = e.attribute("latticebender:mesh");
    if (!data) return nullptr;
    std::unique_ptr<lb::host::GradientMesh> mesh;
    try {
      mesh = meshFromJson(nlohmann::json::parse(data.value()), describe(e));
    } catch (const std::exception&) {
      return nullptr;
    }
    // Element transforms added after export (Inkscape moves art that way).
    const Point o = m.apply({0, 0}), ex = m.apply({1, 0}), ey = m.apply({0, 1});
    const AIRealMatrix dm{ex.x - o.x, -(ex.y - o.y), -(ey.x - o.x), ey.y - o.y, o.x, -o.y};
    if (dm.a != 1 || dm.b != 0 || dm.c != 0 || dm.d != 1 || dm.tx != 0 || dm.ty != 0) mesh->transform(dm);
    // The selection comes from the caller's --select, not from the file.
    mesh->clearSelection();
    const MeshGrid mine = gridFromMesh(*mesh, kMinCell);
    if (mine.cols != grid.cols || mine.rows != grid.rows) return nullptr;
    const AIRealRect bb = mesh->bounds();
    const double tol = 1e-6 * std::max({1.0, bb.right - bb.left, bb.top - bb.bottom});
    for (size_t k = 0; k < grid.corner.size(); ++k) {
      if (std::fabs(mine.corner[k].h - grid.corner[k].h) > tol || std::fabs(mine.corner[k].v - grid.corner[k].v) > tol)
        return nullptr;
      const GridColour &x = mine.colour[k], &y = grid.colour[k];
      if (std::fabs(x.r - y.r) > 0.6 / 255 || std::fabs(x.g - y.g) > 0.6 / 255 || std::fabs(x.b - y.b) > 0.6 / 255 ||
          std::fabs(x.a - y.a) > 1e-6)
        return nullptr;
    }
    return mesh;
  }

  static constexpr int kMaxDepth = 256;
  int depth_ = 0;
  Losses* losses_;
  pugi::xml_document xml_;
  std::map<std::string, pugi::xml_node> ids_;
  std::set<std::string> usedIds_;
  std::unique_ptr<Document> doc_;
  ArtObject* loose_ = nullptr;
  std::map<std::string, std::string> elementProps_;
};

}  // namespace

std::unique_ptr<Document> readSvg(const std::string& text, const std::vector<std::string>& select, Losses* losses) {
  Losses local;
  return Reader(losses ? losses : &local).read(text, select);
}

}  // namespace lb::io::svg
