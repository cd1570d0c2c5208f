// Drawing a document with cairo.
#include "render/Render.h"




#include <cairo.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "host/mesh/GradientMesh.h"
#include "render/PatchColour.h"
#include "render/Png.h"

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

// Builds a path from user-space points such that no device coordinate
// handed to cairo leaves [-kReach, kReach] (cairo keeps device coordinates
// in 24.8 fixed point and wraps beyond 2^23). A curve inside that box is
// passed on as it is; a curve whose control points all lie beyond one side
// of the box becomes the straight line between its end points clamped
// onto the box; any other curve is halved until one of the two holds. The
// picture lies well inside the box, and neither step changes the winding
// number of any point inside it, so fills and strokes inside the picture
// are unchanged; only art far outside is flattened onto the box's sides.
class SafePath {
 public:
  static constexpr double kReach = 4194304;  // 2^22 device pixels

  explicit SafePath(cairo_t* cr) : cr_(cr) {}

  void moveTo(AIRealPoint p) {
    cur_ = device(p);
    if (inside(cur_))
      cairo_move_to(cr_, p.h, p.v);
    else
      emitMove(clamp(cur_));
  }
  void lineTo(AIRealPoint p) {
    const AIRealPoint d = device(p);
    if (inside(cur_) && inside(d))
      cairo_line_to(cr_, p.h, p.v);
    else
      piece({cur_, lerp(cur_, d, 1.0 / 3), lerp(cur_, d, 2.0 / 3), d}, 0);
    cur_ = d;
  }
  void curveTo(AIRealPoint a, AIRealPoint b, AIRealPoint c) {
    const Quad q{cur_, device(a), device(b), device(c)};
    if (inside(q[0]) && inside(q[1]) && inside(q[2]) && inside(q[3]))
      cairo_curve_to(cr_, a.h, a.v, b.h, b.v, c.h, c.v);
    else
      piece(q, 0);
    cur_ = q[3];
  }
  void close() { cairo_close_path(cr_); }

 private:
  using Quad = std::array<AIRealPoint, 4>;

  AIRealPoint device(AIRealPoint p) const {
    double x = p.h, y = p.v;
    cairo_user_to_device(cr_, &x, &y);
    return {x, y};
  }
  static bool inside(AIRealPoint d) { return std::fabs(d.h) <= kReach && std::fabs(d.v) <= kReach; }
  static AIRealPoint clamp(AIRealPoint d) {
    auto c = [](double x) { return std::isnan(x) ? 0.0 : std::clamp(x, -kReach, kReach); };
    return {c(d.h), c(d.v)};
  }
  static AIRealPoint lerp(AIRealPoint a, AIRealPoint b, double t) {
    return {a.h + (b.h - a.h) * t, a.v + (b.v - a.v) * t};
  }
  void emitMove(AIRealPoint d) {
    double x = d.h, y = d.v;
    cairo_device_to_user(cr_, &x, &y);
    cairo_move_to(cr_, x, y);
  }
  void emitLine(AIRealPoint d) {
    double x = d.h, y = d.v;
    cairo_device_to_user(cr_, &x, &y);
    cairo_line_to(cr_, x, y);
  }
  void emitCurve(const Quad& q) {
    double x[3] = {q[1].h, q[2].h, q[3].h}, y[3] = {q[1].v, q[2].v, q[3].v};
    for (int k = 0; k < 3; ++k) cairo_device_to_user(cr_, &x[k], &y[k]);
    cairo_curve_to(cr_, x[0], y[0], x[1], y[1], x[2], y[2]);
  }
  void piece(const Quad& q, int depth) {
    if (inside(q[0]) && inside(q[1]) && inside(q[2]) && inside(q[3])) return emitCurve(q);
    for (const AIRealPoint& d : q)
      if (!std::isfinite(d.h) || !std::isfinite(d.v)) return emitLine(clamp(q[3]));
    auto all = [&](auto&& test) { return test(q[0]) && test(q[1]) && test(q[2]) && test(q[3]); };
    const bool beyond = all([](AIRealPoint d) { return d.h > kReach; }) ||
                        all([](AIRealPoint d) { return d.h < -kReach; }) ||
                        all([](AIRealPoint d) { return d.v > kReach; }) ||
                        all([](AIRealPoint d) { return d.v < -kReach; });
    if (beyond || depth >= 60) return emitLine(clamp(q[3]));
    const AIRealPoint ab = lerp(q[0], q[1], 0.5), bc = lerp(q[1], q[2], 0.5), cd = lerp(q[2], q[3], 0.5);
    const AIRealPoint abc = lerp(ab, bc, 0.5), bcd = lerp(bc, cd, 0.5), mid = lerp(abc, bcd, 0.5);
    piece({q[0], ab, abc, mid}, depth + 1);
    piece({mid, bcd, cd, q[3]}, depth + 1);
  }

  cairo_t* cr_;
  AIRealPoint cur_{0, 0};
};

// The small marks of the selection look (vertex squares, knot and handle
// dots), drawn by cairo once per quarter-pixel position and then copied
// into an image: a mesh has tens of thousands of them, and one cairo fill
// each (or one fill of a path of all, whose overlaps the tessellator must
// resolve) costs far more than copying 9 x 9 pixels.
class MarkStamps {
 public:
  enum Kind { kKnot, kHandleEnd, kChosen, kPlain, kKinds };
  static constexpr int kSize = 9, kCentre = 4, kPhases = 4;

  static const MarkStamps& get() {
    static const MarkStamps stamps;
    return stamps;
  }

  // Draws one mark as cairo would, centred at device point p.
  static void path(cairo_t* cr, Kind kind, double x, double y) {
    const double blue[3] = {0.16, 0.43, 0.96};
    cairo_new_path(cr);
    cairo_set_source_rgb(cr, blue[0], blue[1], blue[2]);
    switch (kind) {
      case kKnot: cairo_arc(cr, x, y, 1.5, 0, 2 * M_PI); cairo_fill(cr); break;
      case kHandleEnd: cairo_arc(cr, x, y, 2, 0, 2 * M_PI); cairo_fill(cr); break;
      case kChosen: cairo_rectangle(cr, x - 2.5, y - 2.5, 5, 5); cairo_fill(cr); break;
      default:
        cairo_rectangle(cr, x - 2.5, y - 2.5, 5, 5);
        cairo_set_source_rgb(cr, 1, 1, 1);
        cairo_fill_preserve(cr);
        cairo_set_source_rgb(cr, blue[0], blue[1], blue[2]);
        cairo_set_line_width(cr, 1);
        cairo_stroke(cr);
        break;
    }
  }

  // Lays the mark over an ARGB32 image (premultiplied OVER, as cairo
  // composites), its centre at device point (x, y) rounded to a quarter pixel.
  void blit(uint32_t* px, int width, int height, int stride, Kind kind, double x, double y) const {
    const long qx = std::lround(x * kPhases), qy = std::lround(y * kPhases);
    const long ix = floorDiv(qx), iy = floorDiv(qy);
    const uint32_t* s = stamp_[kind][qy - iy * kPhases][qx - ix * kPhases];
    for (int r = 0; r < kSize; ++r) {
      const long row = iy - kCentre + r;
      if (row < 0 || row >= height) continue;
      uint32_t* d = px + row * stride;
      for (int k = 0; k < kSize; ++k) {
        const long col = ix - kCentre + k;
        const uint32_t src = s[r * kSize + k];
        if (col < 0 || col >= width || src == 0) continue;
        d[col] = (src >> 24) == 255 ? src : over(src, d[col]);
      }
    }
  }

 private:
  MarkStamps() {
    cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, kSize, kSize);
    for (int kind = 0; kind < kKinds; ++kind)
      for (int py = 0; py < kPhases; ++py)
        for (int px = 0; px < kPhases; ++px) {
          cairo_t* cr = cairo_create(s);
          cairo_set_operator(cr, CAIRO_OPERATOR_CLEAR);
          cairo_paint(cr);
          cairo_set_operator(cr, CAIRO_OPERATOR_OVER);
          path(cr, static_cast<Kind>(kind), kCentre + double(px) / kPhases, kCentre + double(py) / kPhases);
          cairo_destroy(cr);
          cairo_surface_flush(s);
          const unsigned char* data = cairo_image_surface_get_data(s);
          const int stride = cairo_image_surface_get_stride(s);
          for (int r = 0; r < kSize; ++r)
            std::memcpy(stamp_[kind][py][px] + r * kSize, data + r * stride, kSize * 4);
        }
    cairo_surface_destroy(s);
  }
  static long floorDiv(long q) { return q >= 0 ? q / kPhases : -((-q + kPhases - 1) / kPhases); }
  static uint32_t over(uint32_t s, uint32_t d) {
    const uint32_t ia = 255 - (s >> 24);
    uint32_t out = 0;
    for (int shift = 0; shift < 32; shift += 8) {
      const uint32_t t = ((d >> shift) & 255) * ia + 0x80;
      const uint32_t v = std::min<uint32_t>(255, ((s >> shift) & 255) + (((t >> 8) + t) >> 8));
      out |= v << shift;
    }
    return out;
  }

  uint32_t stamp_[kKinds][kPhases][kPhases][kSize * kSize];
};

class Renderer {
 public:
  Renderer(const Document& doc, cairo_t* cr, const RenderOptions& opt, const AIRealRect& area)
      : doc_(doc), cr_(cr), opt_(opt), area_(area) {}

  void draw() {
    const auto& layers = doc_.layers();
    for (auto it = layers.rbegin(); it != layers.rend(); ++it) drawArt(**it);
    if (opt_.selection && !selectedMeshes_.empty()) {
      // The marks are drawn apart and laid over the picture, as the editor
      // lays its cached marks over its cached picture.
      cairo_push_group(cr_);
      for (const ArtObject* m : selectedMeshes_) drawSelection(*m->mesh);
      cairo_pop_group_to_source(cr_);
      cairo_paint(cr_);
    }
  }

  // Only the selection marks, of the meshes draw() would mark, those
  // reaching into `visible` (device pixels; null: all).
  void drawMarks(const PixelRect* visible) {
    visible_ = visible;
    const auto& layers = doc_.layers();
    for (auto it = layers.rbegin(); it != layers.rend(); ++it) collectMarked(**it);
    for (const ArtObject* m : selectedMeshes_) drawSelection(*m->mesh);
  }

 private:
  void docTransform() {
    cairo_matrix_t m;
    cairo_matrix_init(&m, opt_.scale, 0, 0, -opt_.scale, -area_.left * opt_.scale, area_.top * opt_.scale);
    cairo_set_matrix(cr_, &m);
  }

  void collectMarked(const ArtObject& art) {
    if (art.hidden()) return;
    if (art.type == kMeshArt) {
      if (art.mesh && art.selected() && finiteRuns(*art.mesh)) selectedMeshes_.push_back(&art);
      return;
    }
    for (auto it = art.children.rbegin(); it != art.children.rend(); ++it) collectMarked(**it);
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
          if (art.selected() && finiteRuns(*art.mesh)) selectedMeshes_.push_back(&art);
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

  // An image matrix cairo can invert: finite, and not flattening the image
  // to a line or a point at the picture's scale.
  bool drawableMatrix(const AIRealMatrix& m) const {
    for (double x : {m.a, m.b, m.c, m.d, m.tx, m.ty})
      if (!std::isfinite(x)) return false;
    const double det = (m.a * m.d - m.b * m.c) * opt_.scale * opt_.scale;
    return std::isfinite(det) && std::fabs(det) > 1e-12;
  }

  void drawPaths(const std::vector<const ArtObject*>& parts, const ArtObject& styled, cairo_fill_rule_t rule) {
    AIRealRect hull{0, 0, 0, 0};
    bool any = false;
    for (const ArtObject* p : parts)
      for (const AIPathSegment& sg : p->segments)
        for (const AIRealPoint& q : {sg.p, sg.in, sg.out}) {
          if (!std::isfinite(q.h) || !std::isfinite(q.v)) return;
          unite(hull, AIRealRect{q.h, q.v, q.h, q.v}, any);
        }
    const double reach = styled.style.strokePaint && std::isfinite(styled.style.stroke.width)
                             ? std::max(0.0, styled.style.stroke.width) : 0.0;
    if (!any || !overlapsPicture(AIRealRect{hull.left - reach, hull.top + reach, hull.right + reach, hull.bottom - reach}))
      return;
    AIPathStyle st = styled.style;
    double alpha = 1;
    if (!styled.graphicStyle.empty())
      if (const auto* gs = doc_.styleByName(styled.graphicStyle)) st = gs->paint, alpha = gs->opacity;
    cairo_new_path(cr_);
    SafePath path(cr_);
    for (const ArtObject* p : parts) {
      const auto& segs = p->segments;
      if (segs.empty()) continue;
      path.moveTo(segs[0].p);
      const size_t n = segs.size();
      const size_t pieces = p->closed ? n : n - 1;
      for (size_t k = 0; k < pieces; ++k) {
        const AIPathSegment& a = segs[k];
        const AIPathSegment& b = segs[(k + 1) % n];
        path.curveTo(a.out, b.in, b.p);
      }
      if (p->closed) path.close();
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
    if (!drawableMatrix(im.matrix)) return;
    if (const auto b = doc_.bounds(&art); b && (!finiteRect(*b) || !overlapsPicture(*b))) return;
    Surface surf(imageSurface(art), cairo_surface_destroy);
    if (!surf) return;
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
    SafePath path(cr_);
    path.moveTo({0, 0});
    path.lineTo({static_cast<double>(im.width), 0});
    path.lineTo({static_cast<double>(im.width), static_cast<double>(im.height)});
    path.lineTo({0, static_cast<double>(im.height)});
    path.close();
    cairo_fill(cr_);
    cairo_restore(cr_);
  }

  // A mesh is drawn as one cairo mesh pattern used as the source of a fill
  // of the mesh's outline: the outline gives the coverage (anti-aliased
  // like any path fill, exactly the area inside the border), the pattern
  // gives the colour. Cairo's mesh rasteriser paints every pixel a patch
  // touches, so every pixel the outline covers even partly has its colour;
  // all patches sit in the one pattern, so neighbouring patches leave no
  // seam between them.
  void drawMesh(const GradientMesh& mesh) {
    if (mesh.nodeData(0, 0).color.kind == kNoneColor) return;
    const AIRealRect bb = mesh.bounds();
    if (!finiteRect(bb) || !overlapsPicture(bb) || !finiteRuns(mesh)) return;
    Pattern pat(cairo_pattern_create_mesh(), cairo_pattern_destroy);
    // Patches wholly outside the clip (the picture, or the part of it being
    // redrawn) are left out: they cannot change a pixel inside it.
    double cx0, cy0, cx1, cy1;
    cairo_clip_extents(cr_, &cx0, &cy0, &cx1, &cy1);
    const double margin = 2 / opt_.scale;
    const AIRealRect clip{std::min(cx0, cx1) - margin, std::max(cy0, cy1) + margin, std::max(cx0, cx1) + margin,
                          std::min(cy0, cy1) - margin};
    for (int j = 0; j < mesh.sizeJ(); ++j)
      for (int i = 0; i < mesh.sizeI(); ++i)
        if (overlaps(lb::render::patchReach(mesh, i, j), clip)) addPatch(pat.get(), mesh, i, j);
    cairo_new_path(cr_);
    if (opt_.maskMeshes) {
      cairo_push_group(cr_);
      cairo_set_source(cr_, pat.get());
      cairo_paint(cr_);
      Pattern colour(cairo_pop_group(cr_), cairo_pattern_destroy);
      cairo_push_group_with_content(cr_, CAIRO_CONTENT_ALPHA);
      traceOutline(mesh);
      cairo_set_source_rgb(cr_, 0, 0, 0);
      cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_WINDING);
      cairo_fill(cr_);
      Pattern mask(cairo_pop_group(cr_), cairo_pattern_destroy);
      cairo_set_source(cr_, colour.get());
      cairo_mask(cr_, mask.get());
      return;
    }
    traceOutline(mesh);
    cairo_set_source(cr_, pat.get());
    cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_WINDING);
    cairo_fill(cr_);
  }

  // Whether two document rectangles (top above bottom) meet.
  static bool overlaps(const AIRealRect& a, const AIRealRect& b) {
    return a.left <= b.right && b.left <= a.right && a.bottom <= b.top && b.bottom <= a.top;
  }

  static bool finiteRuns(const GradientMesh& mesh) {
    for (int axis = 0; axis < 2; ++axis)
      for (int j = 0; j <= mesh.sizeJ() - axis; ++j)
        for (int i = 0; i <= mesh.sizeI() - (1 - axis); ++i)
          for (const AIRealPoint& p : mesh.runPoints(axis, i, j))
            if (!std::isfinite(p.h) || !std::isfinite(p.v)) return false;
    return true;
  }

  // The border of the mesh: bottom runs forward, right runs up, top runs
  // back, left runs down.
  void traceOutline(const GradientMesh& mesh) {
    const int I = mesh.sizeI(), J = mesh.sizeJ();
    SafePath path(cr_);
    path.moveTo(mesh.runPoints(0, 0, 0)[0]);
    auto run = [&](std::span<const AIRealPoint> pts, bool forward) {
      const size_t n = pts.size();
      for (size_t k = 1; k + 2 < n; k += 3) {
        if (forward)
          path.curveTo(pts[k], pts[k + 1], pts[k + 2]);
        else
          path.curveTo(pts[n - 1 - k], pts[n - 2 - k], pts[n - 3 - k]);
      }
    };
    for (int i = 0; i < I; ++i) run(mesh.runPoints(0, i, 0), true);
    for (int j = 0; j < J; ++j) run(mesh.runPoints(1, I, j), true);
    for (int i = I - 1; i >= 0; --i) run(mesh.runPoints(0, i, J), false);
    for (int j = J - 1; j >= 0; --j) run(mesh.runPoints(1, 0, j), false);
    path.close();
  }

  // Parameters at which a patch is cut, along one direction: the knots of
  // the two runs across that direction (so every cell side is one cubic of
  // the surface) and `cuts` equal steps for the colour.
  static void cutParameters(size_t piecesA, size_t piecesB, int cuts, std::vector<double>& at) {
    at.assign({0.0, 1.0});
    for (size_t q = 1; q < piecesA; ++q) at.push_back(static_cast<double>(q) / piecesA);
    for (size_t q = 1; q < piecesB; ++q) at.push_back(static_cast<double>(q) / piecesB);
    for (int q = 1; q < cuts; ++q) at.push_back(static_cast<double>(q) / cuts);
    std::sort(at.begin(), at.end());
    at.erase(std::unique(at.begin(), at.end(), [](double a, double b) { return b - a < 1e-9; }), at.end());
  }

  // Cairo draws a patch's colour bilinearly in (s, t) and its shape as the
  // Coons patch of its four sides, which is the engine's shape wherever the
  // sides are single cubics. A patch is therefore cut only where it has to
  // be: at the knots of its runs, and, for the colour, into as many equal
  // steps per direction as keep straight interpolation within
  // 1.5/255 of the engine's colour (estimated from the largest
  // second difference of colour samples a third apart), but no finer than
  // cells a few device pixels wide. A patch whose colour is already
  // bilinear enough is one cairo patch.
  void addPatch(cairo_pattern_t* pat, const GradientMesh& mesh, int i, int j) {
    static constexpr double kCellPx = 6;
    const auto& bottom = mesh.runPoints(0, i, j);
    const auto& top = mesh.runPoints(0, i, j + 1);
    const auto& left = mesh.runPoints(1, i, j);
    const auto& right = mesh.runPoints(1, i + 1, j);
    const PatchSamples samples = samplePatch(mesh, i, j);
    const auto& c = samples.c;  // c[a][b] at s = a / 3, t = b / 3
    const double scale = opt_.scale;
    const int cutsS =
        colourCuts(samples.bendS, std::max(polygonLength(bottom), polygonLength(top)) * scale, kCellPx);
    const int cutsT =
        colourCuts(samples.bendT, std::max(polygonLength(left), polygonLength(right)) * scale, kCellPx);
    std::vector<double>& S = scratch_.S;
    std::vector<double>& T = scratch_.T;
    cutParameters((bottom.size() - 1) / 3, (top.size() - 1) / 3, cutsS, S);
    cutParameters((left.size() - 1) / 3, (right.size() - 1) / 3, cutsT, T);
    const Rgba& c00 = c[0][0];
    const Rgba& c10 = c[3][0];
    const Rgba& c11 = c[3][3];
    const Rgba& c01 = c[0][3];
    if (S.size() == 2 && T.size() == 2) {
      // One cell whose sides are the runs themselves.
      const AIRealPoint side[4][4] = {{bottom[0], bottom[1], bottom[2], bottom[3]},
                                      {right[0], right[1], right[2], right[3]},
                                      {top[3], top[2], top[1], top[0]},
                                      {left[3], left[2], left[1], left[0]}};
      const Rgba* corner[4] = {&c00, &c10, &c11, &c01};
      emitPatch(pat, side, corner);
      return;
    }
    const size_t ns = S.size(), nt = T.size();
    std::vector<AIRealPoint>& node = scratch_.node;
    std::vector<AIRealPoint>& dS = scratch_.dS;
    std::vector<AIRealPoint>& dT = scratch_.dT;
    std::vector<Rgba>& colour = scratch_.colour;
    node.resize(ns * nt);
    colour.resize(ns * nt);
    // With single-cubic runs the surface is one polynomial piece and the
    // derivatives at the cell corners give the sides; across knots they
    // are ambiguous, so the sides come from points on the surface instead.
    const bool onePiece = bottom.size() == 4 && top.size() == 4 && left.size() == 4 && right.size() == 4;
    if (onePiece) dS.resize(ns * nt), dT.resize(ns * nt);
    for (size_t b = 0; b < nt; ++b)
      for (size_t a = 0; a < ns; ++a) {
        const size_t k = a + b * ns;
        if (onePiece)
          mesh.patchDerivs(i, j, S[a], T[b], &node[k], &dS[k], &dT[k]);
        else
          node[k] = mesh.patchPoint(i, j, S[a], T[b]);
        // Nodes at thirds already have their colour sample.
        const double a3 = S[a] * 3, b3 = T[b] * 3;
        if (std::fabs(a3 - std::round(a3)) < 1e-9 && std::fabs(b3 - std::round(b3)) < 1e-9)
          colour[k] = c[static_cast<int>(std::lround(a3))][static_cast<int>(std::lround(b3))];
        else
          colour[k] = patchRgba(mesh, i, j, S[a], T[b]);
      }
    // Inner control points of the cell side from node n0 to node n1, which
    // lies `h` further in s (alongS) or t: from the derivatives, or from
    // the surface at one and two thirds of the side (exact: each side is
    // one cubic).
    auto controls = [&](size_t n0, size_t n1, double h, bool alongS, AIRealPoint* k1, AIRealPoint* k2) {
      const AIRealPoint p0 = node[n0], p3 = node[n1];
      if (onePiece) {
        const AIRealPoint d0 = alongS ? dS[n0] : dT[n0], d1 = alongS ? dS[n1] : dT[n1];
        *k1 = {p0.h + h / 3 * d0.h, p0.v + h / 3 * d0.v};
        *k2 = {p3.h - h / 3 * d1.h, p3.v - h / 3 * d1.v};
        return;
      }
      const size_t a = n0 % ns, b = n0 / ns;
      const AIRealPoint p1 = alongS ? mesh.patchPoint(i, j, S[a] + h / 3, T[b]) : mesh.patchPoint(i, j, S[a], T[b] + h / 3);
      const AIRealPoint p2 =
          alongS ? mesh.patchPoint(i, j, S[a] + 2 * h / 3, T[b]) : mesh.patchPoint(i, j, S[a], T[b] + 2 * h / 3);
      k1->h = (-5 * p0.h + 18 * p1.h - 9 * p2.h + 2 * p3.h) / 6;
      k1->v = (-5 * p0.v + 18 * p1.v - 9 * p2.v + 2 * p3.v) / 6;
      k2->h = (2 * p0.h - 9 * p1.h + 18 * p2.h - 5 * p3.h) / 6;
      k2->v = (2 * p0.v - 9 * p1.v + 18 * p2.v - 5 * p3.v) / 6;
    };
    std::vector<AIRealPoint>& alongS = scratch_.alongS;
    std::vector<AIRealPoint>& alongT = scratch_.alongT;
    alongS.resize(2 * (ns - 1) * nt);
    alongT.resize(2 * ns * (nt - 1));
    for (size_t b = 0; b < nt; ++b)
      for (size_t a = 0; a + 1 < ns; ++a) {
        const size_t k = 2 * (a + b * (ns - 1));
        controls(a + b * ns, a + 1 + b * ns, S[a + 1] - S[a], true, &alongS[k], &alongS[k + 1]);
      }
    for (size_t b = 0; b + 1 < nt; ++b)
      for (size_t a = 0; a < ns; ++a) {
        const size_t k = 2 * (a + b * ns);
        controls(a + b * ns, a + (b + 1) * ns, T[b + 1] - T[b], false, &alongT[k], &alongT[k + 1]);
      }
    for (size_t b = 0; b + 1 < nt; ++b)
      for (size_t a = 0; a + 1 < ns; ++a) {
        const size_t n00 = a + b * ns, n10 = n00 + 1, n01 = n00 + ns, n11 = n01 + 1;
        const size_t sb = 2 * (a + b * (ns - 1)), st = 2 * (a + (b + 1) * (ns - 1));
        const size_t tl = 2 * (a + b * ns), tr = 2 * (a + 1 + b * ns);
        const AIRealPoint side[4][4] = {{node[n00], alongS[sb], alongS[sb + 1], node[n10]},
                                        {node[n10], alongT[tr], alongT[tr + 1], node[n11]},
                                        {node[n11], alongS[st + 1], alongS[st], node[n01]},
                                        {node[n01], alongT[tl + 1], alongT[tl], node[n00]}};
        const Rgba* corner[4] = {&colour[n00], &colour[n10], &colour[n11], &colour[n01]};
        emitPatch(pat, side, corner);
      }
  }

  static void emitPatch(cairo_pattern_t* pat, const AIRealPoint (&side)[4][4], const Rgba* const (&corner)[4]) {
    cairo_mesh_pattern_begin_patch(pat);
    cairo_mesh_pattern_move_to(pat, side[0][0].h, side[0][0].v);
    for (int k = 0; k < 4; ++k)
      cairo_mesh_pattern_curve_to(pat, side[k][1].h, side[k][1].v, side[k][2].h, side[k][2].v, side[k][3].h,
                                  side[k][3].v);
    for (int k = 0; k < 4; ++k)
      cairo_mesh_pattern_set_corner_color_rgba(pat, k, corner[k]->r, corner[k]->g, corner[k]->b, corner[k]->a);
    cairo_mesh_pattern_end_patch(pat);
  }

  static bool finiteRect(const AIRealRect& r) {
    return std::isfinite(r.left) && std::isfinite(r.right) && std::isfinite(r.top) && std::isfinite(r.bottom);
  }

  // Whether document bounds reach into the picture (art entirely outside
  // is not handed to cairo at all).
  bool overlapsPicture(const AIRealRect& r) const {
    const double margin = 2 / opt_.scale;
    return r.right >= area_.left - margin && r.left <= area_.right + margin && r.top >= area_.bottom - margin &&
           r.bottom <= area_.top + margin;
  }

  // Direct-selection look: grid lines, vertices as squares (filled when
  // selected), knots as small circles, and the handles of selected
  // vertices. Lines are stroked as one path per direction (lines of one
  // direction do not cross, so cairo has no crossings to resolve); the
  // small marks are stamped (MarkStamps) when drawing into an image. Marks
  // wholly outside `visible_` (device pixels) are left out, so the cost
  // follows what is seen rather than the size of the mesh.
  void drawSelection(const GradientMesh& mesh) {
    cairo_identity_matrix(cr_);
    auto dev = [&](AIRealPoint p) {
      return AIRealPoint{(p.h - area_.left) * opt_.scale, (area_.top - p.v) * opt_.scale};
    };
    // Marks far outside the picture are left out.
    auto near = [](AIRealPoint d) { return std::fabs(d.h) < SafePath::kReach && std::fabs(d.v) < SafePath::kReach; };
    // A mark reaches at most 3.5 pixels from its point.
    constexpr double kMark = 4;
    auto seen = [&](double x0, double y0, double x1, double y1) {
      return !visible_ || (x1 >= visible_->x0 - kMark && x0 <= visible_->x1 + kMark && y1 >= visible_->y0 - kMark &&
                           y0 <= visible_->y1 + kMark);
    };
    auto seenPoint = [&](AIRealPoint d) { return near(d) && seen(d.h, d.v, d.h, d.v); };
    const double blue[3] = {0.16, 0.43, 0.96};
    auto stroke = [&] {
      cairo_set_source_rgb(cr_, blue[0], blue[1], blue[2]);
      cairo_set_line_width(cr_, 1);
      cairo_stroke(cr_);
    };
    std::vector<AIRealPoint> knots, ends, chosen, plain;
    std::vector<AIRealPoint> d3;
    cairo_new_path(cr_);
    for (int axis = 0; axis < 2; ++axis) {
      for (int j = 0; j <= mesh.sizeJ() - axis; ++j)
        for (int i = 0; i <= mesh.sizeI() - (1 - axis); ++i) {
          const auto& pts = mesh.runPoints(axis, i, j);
          d3.clear();
          double x0 = HUGE_VAL, y0 = HUGE_VAL, x1 = -HUGE_VAL, y1 = -HUGE_VAL;
          for (const AIRealPoint& p : pts) {
            const AIRealPoint d = dev(p);
            d3.push_back(d);
            x0 = std::min(x0, d.h), x1 = std::max(x1, d.h), y0 = std::min(y0, d.v), y1 = std::max(y1, d.v);
          }
          // A run lies inside the hull of its control points.
          if (!seen(x0, y0, x1, y1)) continue;
          SafePath line(cr_);
          line.moveTo(d3[0]);
          for (size_t k = 1; k + 2 < d3.size(); k += 3)
            if (straight(d3[k - 1], d3[k], d3[k + 1], d3[k + 2]))
              line.lineTo(d3[k + 2]);
            else
              line.curveTo(d3[k], d3[k + 1], d3[k + 2]);
          if (d3.size() <= 4) continue;
          const MeshRunData d = mesh.runData(axis, i, j);
          for (size_t k = 0; k < d.inner.size(); ++k)
            if (!d.inner[k].vertex && seenPoint(d3[3 * (k + 1)])) knots.push_back(d3[3 * (k + 1)]);
        }
      stroke();
    }
    marks(MarkStamps::kKnot, knots);
    // Handles of the selected vertices: lines along I, then along J, then
    // their ends.
    for (int axis = 0; axis < 2 && !mesh.isSelectionEmpty(); ++axis) {
      for (lb::host::VertexId v = mesh.firstVertex(); v != lb::host::kNoVertex; v = mesh.nextVertex(v)) {
        if (!mesh.selected(v)) continue;
        const AIRealPoint p = dev(mesh.point(v));
        for (int dir = axis; dir < 4; dir += 2) {
          if (!mesh.hasSegment(v, dir)) continue;
          const AIRealPoint h = dev(mesh.tangent(v, dir));
          if (!seen(std::min(p.h, h.h), std::min(p.v, h.v), std::max(p.h, h.h), std::max(p.v, h.v))) continue;
          SafePath handle(cr_);
          handle.moveTo(p);
          handle.lineTo(h);
          if (seenPoint(h)) ends.push_back(h);
        }
      }
      stroke();
    }
    marks(MarkStamps::kHandleEnd, ends);
    for (lb::host::VertexId v = mesh.firstVertex(); v != lb::host::kNoVertex; v = mesh.nextVertex(v)) {
      const AIRealPoint p = dev(mesh.point(v));
      if (seenPoint(p)) (mesh.selected(v) ? chosen : plain).push_back(p);
    }
    marks(MarkStamps::kPlain, plain);
    marks(MarkStamps::kChosen, chosen);
  }

  // A cubic piece that is drawn as its chord: handles on the chord, within
  // it, so the curve traces the chord (its speed along it does not show).
  static bool straight(AIRealPoint a, AIRealPoint b, AIRealPoint c, AIRealPoint d) {
    const double dx = d.h - a.h, dy = d.v - a.v, len2 = dx * dx + dy * dy;
    if (!(len2 > 0)) return false;
    for (const AIRealPoint& p : {b, c}) {
      const double ex = p.h - a.h, ey = p.v - a.v;
      const double t = (ex * dx + ey * dy) / len2;
      const double off = (ex * dy - ey * dx);
      if (t < 0 || t > 1 || off * off > 1e-6 * len2) return false;
    }
    return true;
  }

  // Small marks at device points: stamped into an image target (past any
  // clip of cr; the callers draw marks unclipped), else drawn one by one.
  void marks(MarkStamps::Kind kind, const std::vector<AIRealPoint>& at) {
    if (at.empty()) return;
    cairo_surface_t* target = cairo_get_group_target(cr_);
    if (cairo_surface_get_type(target) == CAIRO_SURFACE_TYPE_IMAGE &&
        cairo_image_surface_get_format(target) == CAIRO_FORMAT_ARGB32) {
      cairo_surface_flush(target);
      double ox = 0, oy = 0;
      cairo_surface_get_device_offset(target, &ox, &oy);
      auto* px = reinterpret_cast<uint32_t*>(cairo_image_surface_get_data(target));
      const int w = cairo_image_surface_get_width(target), h = cairo_image_surface_get_height(target);
      const int stride = cairo_image_surface_get_stride(target) / 4;
      const MarkStamps& stamps = MarkStamps::get();
      for (const AIRealPoint& p : at) stamps.blit(px, w, h, stride, kind, p.h + ox, p.v + oy);
      cairo_surface_mark_dirty(target);
      return;
    }
    for (const AIRealPoint& p : at) MarkStamps::path(cr_, kind, p.h, p.v);
  }

  using MeshRunData = lb::host::MeshRunData;

  // Working arrays of addPatch, kept between patches.
  struct {
    std::vector<double> S, T;
    std::vector<AIRealPoint> node, dS, dT, alongS, alongT;
    std::vector<Rgba> colour;
  } scratch_;

  const Document& doc_;
  cairo_t* cr_;
  RenderOptions opt_;
  AIRealRect area_;
  std::vector<const ArtObject*> selectedMeshes_;
  const PixelRect* visible_ = nullptr;
};

}  // namespace

namespace {
constexpr int kMaxSide = 16384;
constexpr double kMaxPixels = 64.0 * 1024 * 1024;
constexpr double kMinScale = 1e-4, kMaxScale = 1e4;
}  // namespace

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

AIRealRect patchReach(const GradientMesh& mesh, int i, int j) {
  double l = INFINITY, r = -INFINITY, b = INFINITY, t = -INFINITY;
  for (const auto run : {mesh.runPoints(0, i, j), mesh.runPoints(0, i, j + 1), mesh.runPoints(1, i, j),
                         mesh.runPoints(1, i + 1, j)})
    for (const AIRealPoint& p : run) {
      l = std::min(l, p.h), r = std::max(r, p.h);
      b = std::min(b, p.v), t = std::max(t, p.v);
    }
  const double w = r - l, h = t - b;
  return AIRealRect{l - w, t + h, r + w, b - h};
}

cairo_surface_t* imageSurface(const ArtObject& art) {
  const ArtImage& im = art.image;
  if (im.width <= 0 || im.height <= 0 || im.pixels.size() < im.expectedBytes()) return nullptr;
  cairo_surface_t* surf = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, im.width, im.height);
  if (cairo_surface_status(surf) != CAIRO_STATUS_SUCCESS) {
    cairo_surface_destroy(surf);
    return nullptr;
  }
  cairo_surface_flush(surf);
  unsigned char* data = cairo_image_surface_get_data(surf);
  const int stride = cairo_image_surface_get_stride(surf);
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
  cairo_surface_mark_dirty(surf);
  return surf;
}

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
  if (options.scale < kMinScale || options.scale > kMaxScale)
    throw std::runtime_error("render: the scale must lie between 0.0001 and 10000");
  Image img;
  img.area = renderArea(doc);
  AIRealRect& area = img.area;
  if (!std::isfinite(area.left) || !std::isfinite(area.top)) area.left = 0, area.top = 0;
  if (!std::isfinite(area.right)) area.right = area.left;
  if (!std::isfinite(area.bottom)) area.bottom = area.top;
  // The picture keeps the area's top-left corner; an area larger than the
  // picture may be is cut at the right and at the bottom.
  const double w = (area.right - area.left) * options.scale;
  const double h = (area.top - area.bottom) * options.scale;
  img.width = w > kMaxSide ? kMaxSide : std::max(1, static_cast<int>(std::ceil(w - 1e-9)));
  img.height = h > kMaxSide ? kMaxSide : std::max(1, static_cast<int>(std::ceil(h - 1e-9)));
  if (static_cast<double>(img.width) * img.height > kMaxPixels) img.height = std::max(1, static_cast<int>(kMaxPixels / img.width));
  if (img.width < w) area.right = area.left + img.width / options.scale;
  if (img.height < h) area.bottom = area.top - img.height / options.scale;
  // Cairo draws straight into the picture's pixels (rows of 4 x width
  // bytes are a valid ARGB32 stride).
  img.pixels.assign(static_cast<size_t>(img.width) * img.height, 0);
  Surface surf(cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(img.pixels.data()),
                                                   CAIRO_FORMAT_ARGB32, img.width, img.height, img.width * 4),
               cairo_surface_destroy);
  if (cairo_surface_status(surf.get()) != CAIRO_STATUS_SUCCESS) throw std::runtime_error("render: cannot make the picture");
  {
    Context cr(cairo_create(surf.get()), cairo_destroy);
    cairo_set_source_rgb(cr.get(), 1, 1, 1);
    cairo_paint(cr.get());
    Renderer(doc, cr.get(), options, img.area).draw();
    if (cairo_status(cr.get()) != CAIRO_STATUS_SUCCESS)
      throw std::runtime_error(std::string("render: ") + cairo_status_to_string(cairo_status(cr.get())));
  }
  cairo_surface_flush(surf.get());
  cairo_surface_finish(surf.get());
  return img;
}

void drawDocument(const Document& doc, cairo_t* cr, const RenderOptions& options, const AIRealRect& area) {
  Renderer(doc, cr, options, area).draw();
}

void drawSelectionMarks(const Document& doc, cairo_t* cr, double scale, const AIRealRect& area,
                        const PixelRect* visible) {
  RenderOptions o;
  o.scale = scale;
  o.selection = true;
  Renderer(doc, cr, o, area).drawMarks(visible);
}

void renderDocumentPng(const Document& doc, const std::string& outPng, const RenderOptions& options) {
  Image img = renderDocument(doc, options);
  const std::string tmp = outPng + ".tmp" + std::to_string(::getpid());
  const std::string err = writePng(tmp, img.pixels.data(), img.width, img.height, img.width);
  if (!err.empty()) {
    std::remove(tmp.c_str());
    throw std::runtime_error("cannot write " + outPng + ": " + err);
  }
  if (std::rename(tmp.c_str(), outPng.c_str()) != 0) {
    std::remove(tmp.c_str());
    throw std::runtime_error("cannot write " + outPng);
  }
}

}  // namespace lb::render
