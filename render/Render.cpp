// Drawing a document with cairo.
#include "render/Render.h"

#include <cairo.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <stdexcept>

#include "host/mesh/GradientMesh.h"

namespace lb::render {

using lb::host::Document;
using lb::host::GradientMesh;

void Image::rgba(int x, int y, int* r, int* g, int* b, int* a) const {
  const uint32_t p = at(x, y);
  const int A = static_cast<int>(p >> 24), R = (p >> 16) & 255, G = (p >> 8) & 255, B = p & 255;
  *a = A;
  if (A == 0) {
    *r = *g = *b = 0;
    return;
  }
  *r = std::min(255, (R * 255 + A / 2) / A);
  *g = std::min(255, (G * 255 + A / 2) / A);
  *b = std::min(255, (B * 255 + A / 2) / A);
}

void Image::toPixel(AIRealPoint p, double scale, double* x, double* y) const {
  *x = (p.h - area.left) * scale;
  *y = (area.top - p.v) * scale;
}

namespace {

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;
using Context = std::unique_ptr<cairo_t, decltype(&cairo_destroy)>;
using Pattern = std::unique_ptr<cairo_pattern_t, decltype(&cairo_pattern_destroy)>;

cairo_operator_t blendOperator(int mode) {
  switch (mode) {
    case kAIMultiplyBlendingMode: return CAIRO_OPERATOR_MULTIPLY;
    case kAIScreenBlendingMode: return CAIRO_OPERATOR_SCREEN;
    case kAIOverlayBlendingMode: return CAIRO_OPERATOR_OVERLAY;
    case kAISoftLightBlendingMode: return CAIRO_OPERATOR_SOFT_LIGHT;
    case kAIHardLightBlendingMode: return CAIRO_OPERATOR_HARD_LIGHT;
    case kAIColorDodgeBlendingMode: return CAIRO_OPERATOR_COLOR_DODGE;
    case kAIColorBurnBlendingMode: return CAIRO_OPERATOR_COLOR_BURN;
    case kAIDarkenBlendingMode: return CAIRO_OPERATOR_DARKEN;
    case kAILightenBlendingMode: return CAIRO_OPERATOR_LIGHTEN;
    case kAIDifferenceBlendingMode: return CAIRO_OPERATOR_DIFFERENCE;
    case kAIExclusionBlendingMode: return CAIRO_OPERATOR_EXCLUSION;
    case kAIHueBlendingMode: return CAIRO_OPERATOR_HSL_HUE;
    case kAISaturationBlendingMode: return CAIRO_OPERATOR_HSL_SATURATION;
    case kAIColorBlendingMode: return CAIRO_OPERATOR_HSL_COLOR;
    case kAILuminosityBlendingMode: return CAIRO_OPERATOR_HSL_LUMINOSITY;
    default: return CAIRO_OPERATOR_OVER;
  }
}

void unite(AIRealRect& r, const AIRealRect& o, bool& any) {
  if (!any) {
    r = o;
    any = true;
    return;
  }
  r.left = std::min(r.left, o.left);
  r.right = std::max(r.right, o.right);
  r.bottom = std::min(r.bottom, o.bottom);
  r.top = std::max(r.top, o.top);
}

class Renderer {
 public:
  Renderer(const Document& doc, cairo_t* cr, const RenderOptions& opt, const AIRealRect& area)
      : doc_(doc), cr_(cr), opt_(opt), area_(area) {}

  void draw() {
    const auto& layers = doc_.layers();
    for (auto it = layers.rbegin(); it != layers.rend(); ++it) drawArt(**it);
    if (opt_.selection)
      for (const ArtObject* m : selectedMeshes_) drawSelection(*m->mesh);
  }

 private:
  void docTransform() {
    cairo_matrix_t m;
    cairo_matrix_init(&m, opt_.scale, 0, 0, -opt_.scale, -area_.left * opt_.scale, area_.top * opt_.scale);
    cairo_set_matrix(cr_, &m);
  }

  void drawArt(const ArtObject& art) {
    if (art.hidden()) return;
    const bool group = art.opacity < 1 || art.blendMode != kAINormalBlendingMode;
    if (group) cairo_push_group(cr_);
    docTransform();
    switch (art.type) {
      case kMeshArt:
        if (art.mesh) {
          drawMesh(*art.mesh);
          if (art.selected()) selectedMeshes_.push_back(&art);
        }
        break;
      case kPathArt: drawPaths({&art}, art, CAIRO_FILL_RULE_WINDING); break;
      case kCompoundPathArt: {
        std::vector<const ArtObject*> parts;
        for (const auto& c : art.children)
          if (c->type == kPathArt && !c->hidden()) parts.push_back(c.get());
        if (!parts.empty()) drawPaths(parts, art.style.fillPaint || art.style.strokePaint ? art : *parts[0],
                                      CAIRO_FILL_RULE_EVEN_ODD);
        break;
      }
      case kRasterArt: drawImage(art); break;
      case kPlacedArt:
        if (art.image.placedType == kPlacedImageType) drawImage(art);
        break;
      default:
        for (auto it = art.children.rbegin(); it != art.children.rend(); ++it) drawArt(**it);
        break;
    }
    if (group) {
      cairo_pop_group_to_source(cr_);
      cairo_set_operator(cr_, blendOperator(art.blendMode));
      cairo_paint_with_alpha(cr_, std::clamp(art.opacity, 0.0, 1.0));
      cairo_set_operator(cr_, CAIRO_OPERATOR_OVER);
    }
  }

  static bool setColor(cairo_t* cr, const AIColor& c, double alpha) {
    if (c.kind == kNoneColor) return false;
    double r, g, b;
    lb::host::colorToRGB(c, &r, &g, &b);
    cairo_set_source_rgba(cr, r, g, b, alpha);
    return true;
  }

  void drawPaths(const std::vector<const ArtObject*>& parts, const ArtObject& styled, cairo_fill_rule_t rule) {
    AIPathStyle st = styled.style;
    double alpha = 1;
    if (!styled.graphicStyle.empty())
      if (const auto* gs = doc_.styleByName(styled.graphicStyle)) st = gs->paint, alpha = gs->opacity;
    cairo_new_path(cr_);
    for (const ArtObject* p : parts) {
      const auto& segs = p->segments;
      if (segs.empty()) continue;
      cairo_move_to(cr_, segs[0].p.h, segs[0].p.v);
      const size_t n = segs.size();
      const size_t pieces = p->closed ? n : n - 1;
      for (size_t k = 0; k < pieces; ++k) {
        const AIPathSegment& a = segs[k];
        const AIPathSegment& b = segs[(k + 1) % n];
        cairo_curve_to(cr_, a.out.h, a.out.v, b.in.h, b.in.v, b.p.h, b.p.v);
      }
      if (p->closed) cairo_close_path(cr_);
    }
    cairo_set_fill_rule(cr_, rule);
    if (st.fillPaint && setColor(cr_, st.fill.color, alpha)) cairo_fill_preserve(cr_);
    if (st.strokePaint && st.stroke.width > 0 && setColor(cr_, st.stroke.color, alpha)) {
      cairo_set_line_width(cr_, st.stroke.width);
      cairo_stroke_preserve(cr_);
    }
    cairo_new_path(cr_);
  }

  void drawImage(const ArtObject& art) {
    const ArtImage& im = art.image;
    if (im.width <= 0 || im.height <= 0 || im.pixels.size() < im.expectedBytes()) return;
    Surface surf(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, im.width, im.height), cairo_surface_destroy);
    if (cairo_surface_status(surf.get()) != CAIRO_STATUS_SUCCESS) return;
    cairo_surface_flush(surf.get());
    unsigned char* data = cairo_image_surface_get_data(surf.get());
    const int stride = cairo_image_surface_get_stride(surf.get());
    const int colour = im.channels() - (im.alpha ? 1 : 0);
    const bool colourise = im.space == kGrayColorSpace && art.style.fillPaint && art.style.fill.color.kind != kNoneColor;
    double fr = 0, fg = 0, fb = 0;
    if (colourise) lb::host::colorToRGB(art.style.fill.color, &fr, &fg, &fb);
    for (int y = 0; y < im.height; ++y) {
      auto* row = reinterpret_cast<uint32_t*>(data + static_cast<size_t>(y) * stride);
      for (int x = 0; x < im.width; ++x) {
        double r, g, b;
        if (colour >= 4) {
          const double c = im.channel(x, y, 0), m = im.channel(x, y, 1), yy = im.channel(x, y, 2), k = im.channel(x, y, 3);
          r = (1 - c) * (1 - k), g = (1 - m) * (1 - k), b = (1 - yy) * (1 - k);
        } else if (colour == 3) {
          r = im.channel(x, y, 0), g = im.channel(x, y, 1), b = im.channel(x, y, 2);
        } else {
          const double l = im.channel(x, y, 0);
          if (colourise)
            r = fr + (1 - fr) * l, g = fg + (1 - fg) * l, b = fb + (1 - fb) * l;
          else
            r = g = b = l;
        }
        const double a = im.alpha ? im.channel(x, y, im.channels() - 1) : 1.0;
        auto q = [&](double v) { return static_cast<uint32_t>(std::lround(std::clamp(v * a, 0.0, 1.0) * 255)); };
        row[x] = (static_cast<uint32_t>(std::lround(a * 255)) << 24) | (q(r) << 16) | (q(g) << 8) | q(b);
      }
    }
    cairo_surface_mark_dirty(surf.get());
    // Image space: column x spans x..x+1, row r spans -(r+1)..-r.
    cairo_save(cr_);
    const AIRealMatrix& m = im.matrix;
    cairo_matrix_t toDoc, flip;
    cairo_matrix_init(&toDoc, m.a, m.b, m.c, m.d, m.tx, m.ty);
    cairo_matrix_init(&flip, 1, 0, 0, -1, 0, 0);  // pixel row y -> image v = -y
    cairo_transform(cr_, &toDoc);
    cairo_transform(cr_, &flip);
    cairo_set_source_surface(cr_, surf.get(), 0, 0);
    cairo_pattern_set_filter(cairo_get_source(cr_), CAIRO_FILTER_NEAREST);
    cairo_rectangle(cr_, 0, 0, im.width, im.height);
    cairo_fill(cr_);
    cairo_restore(cr_);
  }

  // Each patch is cut in (s, t) into cells a few device pixels wide; every
  // cell becomes one cairo mesh patch whose sides follow the surface
  // (Hermite cubics from the engine's derivatives) and whose corner colours
  // are the engine's colour and opacity, so the picture matches evaluation.
  void drawMesh(const GradientMesh& mesh) {
    if (mesh.nodeData(0, 0).color.kind == kNoneColor) return;
    Pattern pat(cairo_pattern_create_mesh(), cairo_pattern_destroy);
    const int I = mesh.sizeI(), J = mesh.sizeJ();
    struct Corner {
      AIRealPoint p, ps, pt;
      double r, g, b, a;
    };
    std::vector<Corner> grid;
    for (int j = 0; j < J; ++j)
      for (int i = 0; i < I; ++i) {
        double size = 0;
        for (int axis = 0; axis < 2; ++axis)
          for (int side = 0; side < 2; ++side) {
            const auto& pts = mesh.runPoints(axis, axis == 0 ? i : i + side, axis == 0 ? j + side : j);
            for (size_t k = 1; k < pts.size(); ++k)
              size = std::max(size, std::hypot(pts[k].h - pts[0].h, pts[k].v - pts[0].v));
          }
        const int n = std::clamp(static_cast<int>(std::ceil(size * opt_.scale / 6.0)), 1, 48);
        grid.assign(static_cast<size_t>((n + 1) * (n + 1)), Corner{});
        for (int b = 0; b <= n; ++b)
          for (int a = 0; a <= n; ++a) {
            const double s = static_cast<double>(a) / n, t = static_cast<double>(b) / n;
            Corner& c = grid[a + b * (n + 1)];
            mesh.patchDerivs(i, j, s, t, &c.p, &c.ps, &c.pt);
            lb::host::colorToRGB(mesh.patchColor(i, j, s, t), &c.r, &c.g, &c.b);
            c.a = std::clamp(mesh.patchOpacity(i, j, s, t), 0.0, 1.0);
          }
        const double d = 1.0 / n / 3.0;
        for (int b = 0; b < n; ++b)
          for (int a = 0; a < n; ++a) {
            const Corner& c0 = grid[a + b * (n + 1)];
            const Corner& c1 = grid[a + 1 + b * (n + 1)];
            const Corner& c2 = grid[a + 1 + (b + 1) * (n + 1)];
            const Corner& c3 = grid[a + (b + 1) * (n + 1)];
            cairo_pattern_t* p = pat.get();
            cairo_mesh_pattern_begin_patch(p);
            cairo_mesh_pattern_move_to(p, c0.p.h, c0.p.v);
            cairo_mesh_pattern_curve_to(p, c0.p.h + d * c0.ps.h, c0.p.v + d * c0.ps.v, c1.p.h - d * c1.ps.h,
                                        c1.p.v - d * c1.ps.v, c1.p.h, c1.p.v);
            cairo_mesh_pattern_curve_to(p, c1.p.h + d * c1.pt.h, c1.p.v + d * c1.pt.v, c2.p.h - d * c2.pt.h,
                                        c2.p.v - d * c2.pt.v, c2.p.h, c2.p.v);
            cairo_mesh_pattern_curve_to(p, c2.p.h - d * c2.ps.h, c2.p.v - d * c2.ps.v, c3.p.h + d * c3.ps.h,
                                        c3.p.v + d * c3.ps.v, c3.p.h, c3.p.v);
            cairo_mesh_pattern_curve_to(p, c3.p.h - d * c3.pt.h, c3.p.v - d * c3.pt.v, c0.p.h + d * c0.pt.h,
                                        c0.p.v + d * c0.pt.v, c0.p.h, c0.p.v);
            const Corner* cs[4] = {&c0, &c1, &c2, &c3};
            for (int k = 0; k < 4; ++k) cairo_mesh_pattern_set_corner_color_rgba(p, k, cs[k]->r, cs[k]->g, cs[k]->b, cs[k]->a);
            cairo_mesh_pattern_end_patch(p);
          }
      }
    const AIRealRect bb = mesh.bounds();
    cairo_set_source(cr_, pat.get());
    cairo_rectangle(cr_, bb.left - 1, bb.bottom - 1, bb.right - bb.left + 2, bb.top - bb.bottom + 2);
    cairo_fill(cr_);
  }

  // Direct-selection look: grid lines, vertices as squares (filled when
  // selected), knots as small circles, and the handles of selected vertices.
  void drawSelection(const GradientMesh& mesh) {
    cairo_identity_matrix(cr_);
    auto dev = [&](AIRealPoint p) {
      return AIRealPoint{(p.h - area_.left) * opt_.scale, (area_.top - p.v) * opt_.scale};
    };
    const double blue[3] = {0.16, 0.43, 0.96};
    cairo_set_source_rgb(cr_, blue[0], blue[1], blue[2]);
    cairo_set_line_width(cr_, 1);
    for (int axis = 0; axis < 2; ++axis)
      for (int j = 0; j <= mesh.sizeJ() - axis; ++j)
        for (int i = 0; i <= mesh.sizeI() - (1 - axis); ++i) {
          const auto& pts = mesh.runPoints(axis, i, j);
          AIRealPoint p0 = dev(pts[0]);
          cairo_move_to(cr_, p0.h, p0.v);
          for (size_t k = 1; k + 2 < pts.size(); k += 3) {
            const AIRealPoint a = dev(pts[k]), b = dev(pts[k + 1]), c = dev(pts[k + 2]);
            cairo_curve_to(cr_, a.h, a.v, b.h, b.v, c.h, c.v);
          }
          cairo_stroke(cr_);
          const MeshRunData d = mesh.runData(axis, i, j);
          for (size_t k = 0; k < d.inner.size(); ++k)
            if (!d.inner[k].vertex) {
              const AIRealPoint q = dev(pts[3 * (k + 1)]);
              cairo_new_sub_path(cr_);
              cairo_arc(cr_, q.h, q.v, 1.5, 0, 2 * M_PI);
              cairo_fill(cr_);
            }
        }
    for (lb::host::VertexId v = mesh.firstVertex(); v != lb::host::kNoVertex; v = mesh.nextVertex(v)) {
      const AIRealPoint p = dev(mesh.point(v));
      const bool sel = mesh.selected(v);
      if (sel) {
        for (int dir = 0; dir < 4; ++dir) {
          if (!mesh.hasSegment(v, dir)) continue;
          const AIRealPoint h = dev(mesh.tangent(v, dir));
          cairo_move_to(cr_, p.h, p.v);
          cairo_line_to(cr_, h.h, h.v);
          cairo_stroke(cr_);
          cairo_arc(cr_, h.h, h.v, 2, 0, 2 * M_PI);
          cairo_fill(cr_);
        }
      }
      cairo_rectangle(cr_, p.h - 2.5, p.v - 2.5, 5, 5);
      if (sel) {
        cairo_fill(cr_);
      } else {
        cairo_set_source_rgb(cr_, 1, 1, 1);
        cairo_fill_preserve(cr_);
        cairo_set_source_rgb(cr_, blue[0], blue[1], blue[2]);
        cairo_stroke(cr_);
      }
    }
  }

  using MeshRunData = lb::host::MeshRunData;

  const Document& doc_;
  cairo_t* cr_;
  RenderOptions opt_;
  AIRealRect area_;
  std::vector<const ArtObject*> selectedMeshes_;
};

}  // namespace

AIRealRect renderArea(const Document& doc) {
  if (doc.artboard) return *doc.artboard;
  AIRealRect r{0, 0, 0, 0};
  bool any = false;
  for (const auto& layer : doc.layers()) {
    if (layer->hidden()) continue;
    for (const auto& child : layer->children) {
      if (child->hidden()) continue;
      if (auto b = doc.bounds(child.get())) unite(r, *b, any);
    }
  }
  if (!any) return AIRealRect{0, 1, 1, 0};
  return r;
}

Image renderDocument(const Document& doc, const RenderOptions& options) {
  if (!(options.scale > 0) || !std::isfinite(options.scale)) throw std::runtime_error("render: the scale must be positive");
  Image img;
  img.area = renderArea(doc);
  const double w = (img.area.right - img.area.left) * options.scale;
  const double h = (img.area.top - img.area.bottom) * options.scale;
  if (!(w >= 0 && h >= 0) || w > 20000 || h > 20000)
    throw std::runtime_error("render: picture size out of range (" + std::to_string(w) + " x " + std::to_string(h) + ")");
  img.width = std::max(1, static_cast<int>(std::ceil(w - 1e-9)));
  img.height = std::max(1, static_cast<int>(std::ceil(h - 1e-9)));
  Surface surf(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, img.width, img.height), cairo_surface_destroy);
  if (cairo_surface_status(surf.get()) != CAIRO_STATUS_SUCCESS) throw std::runtime_error("render: cannot make the picture");
  Context cr(cairo_create(surf.get()), cairo_destroy);
  cairo_set_source_rgb(cr.get(), 1, 1, 1);
  cairo_paint(cr.get());
  Renderer(doc, cr.get(), options, img.area).draw();
  if (cairo_status(cr.get()) != CAIRO_STATUS_SUCCESS)
    throw std::runtime_error(std::string("render: ") + cairo_status_to_string(cairo_status(cr.get())));
  cairo_surface_flush(surf.get());
  const unsigned char* data = cairo_image_surface_get_data(surf.get());
  const int stride = cairo_image_surface_get_stride(surf.get());
  img.pixels.resize(static_cast<size_t>(img.width) * img.height);
  for (int y = 0; y < img.height; ++y)
    std::copy_n(reinterpret_cast<const uint32_t*>(data + static_cast<size_t>(y) * stride), img.width,
                img.pixels.begin() + static_cast<ptrdiff_t>(y) * img.width);
  return img;
}

void renderDocumentPng(const Document& doc, const std::string& outPng, const RenderOptions& options) {
  Image img = renderDocument(doc, options);
  Surface surf(cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(img.pixels.data()),
                                                   CAIRO_FORMAT_ARGB32, img.width, img.height, img.width * 4),
               cairo_surface_destroy);
  if (cairo_surface_status(surf.get()) != CAIRO_STATUS_SUCCESS) throw std::runtime_error("render: cannot make the picture");
  const std::string tmp = outPng + ".tmp" + std::to_string(::getpid());
  const cairo_status_t st = cairo_surface_write_to_png(surf.get(), tmp.c_str());
  if (st != CAIRO_STATUS_SUCCESS) {
    std::remove(tmp.c_str());
    throw std::runtime_error("cannot write " + outPng + ": " + cairo_status_to_string(st));
  }
  if (std::rename(tmp.c_str(), outPng.c_str()) != 0) {
    std::remove(tmp.c_str());
    throw std::runtime_error("cannot write " + outPng);
  }
}

}  // namespace lb::render
