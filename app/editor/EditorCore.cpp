// The editor's direct-selection tool and cached canvas picture and marks.
#include "app/editor/EditorCore.h"

#include <algorithm>
#include <cmath>

namespace lb::editor {

using lb::host::Document;
using lb::host::GradientMesh;
using lb::host::kNoVertex;
using lb::host::VertexId;

// ---- Direct selection ---------------------------------------------------------

namespace {

bool editable(const ArtObject* a) {
  for (const ArtObject* p = a; p; p = p->parent)
    if (p->hidden() || p->locked()) return false;
  return true;
}

double dist(AIRealPoint a, AIRealPoint b) { return std::hypot(a.h - b.h, a.v - b.v); }

// Makes the mesh art selected without its vertices: the document selects a
// whole mesh when its art becomes selected.
void selectMeshArt(Document& doc, ArtObject* a) {
  if (a->selected() && !a->mesh->isSelectionEmpty()) return;
  doc.setSelected(a, true);
  a->mesh->clearSelection();
}

}  // namespace

Hit hitTest(const Document& doc, AIRealPoint p, double tolerance) {
  const std::vector<ArtObject*> all = doc.allArt();
  // Handles of the selected vertices: only they are drawn.
  for (ArtObject* a : all) {
    if (a->type != kMeshArt || !a->mesh || !a->selected() || !editable(a)) continue;
    const GradientMesh& m = *a->mesh;
    if (m.isSelectionEmpty()) continue;
    for (VertexId v = m.firstVertex(); v != kNoVertex; v = m.nextVertex(v)) {
      if (!m.selected(v)) continue;
      for (int dir = 0; dir < 4; ++dir)
        if (m.hasSegment(v, dir) && dist(m.tangent(v, dir), p) <= tolerance &&
            dist(m.point(v), p) > tolerance)
          return Hit{Hit::kHandle, a, v, dir};
    }
  }
  for (ArtObject* a : all) {
    if (a->type != kMeshArt || !a->mesh || !editable(a)) continue;
    const VertexId v = a->mesh->hitVertex(p, tolerance);
    if (v != kNoVertex) return Hit{Hit::kVertex, a, v, -1};
  }
  for (ArtObject* a : all) {
    if (a->type != kPathArt || !editable(a)) continue;
    const auto b = doc.bounds(a);
    if (b && p.h >= b->left - tolerance && p.h <= b->right + tolerance && p.v <= b->top + tolerance &&
        p.v >= b->bottom - tolerance)
      return Hit{Hit::kPath, a, kNoVertex, -1};
  }
  return {};
}

bool deselectAll(Document& doc) {
  bool changed = false;
  for (ArtObject* a : doc.allArt()) {
    if (a->selected()) {
      doc.setSelected(a, false);
      changed = true;
    }
    if (a->type == kMeshArt && a->mesh && !a->mesh->isSelectionEmpty()) {
      a->mesh->clearSelection();
      changed = true;
    }
    if (a->type == kPathArt)
      for (int k = 0; k < static_cast<int>(a->segments.size()); ++k)
        if (doc.anchorSelection(a, k) != 0) {
          doc.setAnchorSelection(a, k, 0);
          changed = true;
        }
  }
  return changed;
}

bool clickSelect(Document& doc, const Hit& hit, bool shift) {
  switch (hit.kind) {
    case Hit::kNone:
      return shift ? false : deselectAll(doc);
    case Hit::kHandle:
      return false;  // a handle only moves
    case Hit::kVertex: {
      GradientMesh& m = *hit.art->mesh;
      if (shift) {
        const bool on = !m.selected(hit.vertex);
        if (on) selectMeshArt(doc, hit.art);
        m.setSelected(hit.vertex, on);
        return true;
      }
      if (hit.art->selected() && m.selectedCount() == 1 && m.selected(hit.vertex)) return false;
      deselectAll(doc);
      selectMeshArt(doc, hit.art);
      m.setSelected(hit.vertex, true);
      return true;
    }
    case Hit::kPath:
      if (shift) {
        doc.setSelected(hit.art, !hit.art->selected());
        return true;
      }
      deselectAll(doc);
      doc.setSelected(hit.art, true);
      return true;
  }
  return false;
}

bool rectSelect(Document& doc, AIRealRect r, bool shift) {
  bool changed = shift ? false : deselectAll(doc);
  const double left = std::min(r.left, r.right), right = std::max(r.left, r.right);
  const double bottom = std::min(r.top, r.bottom), top = std::max(r.top, r.bottom);
  for (ArtObject* a : doc.allArt()) {
    if (a->type != kMeshArt || !a->mesh || !editable(a)) continue;
    GradientMesh& m = *a->mesh;
    for (VertexId v = m.firstVertex(); v != kNoVertex; v = m.nextVertex(v)) {
      const AIRealPoint p = m.point(v);
      if (p.h < left || p.h > right || p.v < bottom || p.v > top || m.selected(v)) continue;
      selectMeshArt(doc, a);
      m.setSelected(v, true);
      changed = true;
    }
  }
  return changed;
}

void moveVertex(ArtObject* mesh, VertexId v, double dx, double dy) {
  GradientMesh& m = *mesh->mesh;
  AIRealPoint handles[4];
  for (int dir = 0; dir < 4; ++dir)
    if (m.hasSegment(v, dir)) handles[dir] = m.tangent(v, dir);
  const AIRealPoint p = m.point(v);
  m.setPoint(v, AIRealPoint{p.h + dx, p.v + dy});
  for (int dir = 0; dir < 4; ++dir)
    if (m.hasSegment(v, dir)) m.setTangent(v, dir, AIRealPoint{handles[dir].h + dx, handles[dir].v + dy});
}

void moveHandle(ArtObject* mesh, VertexId v, int dir, double dx, double dy) {
  GradientMesh& m = *mesh->mesh;
  const AIRealPoint h = m.tangent(v, dir);
  m.setTangent(v, dir, AIRealPoint{h.h + dx, h.v + dy});
}

AIRealRect vertexReach(const GradientMesh& m, VertexId v) {
  int i = 0, j = 0;
  if (!m.nodeIndex(v, &i, &j)) return AIRealRect{0, 0, 0, 0};
  // The cells touching the vertex: around a node, or on both sides of the
  // run an inner vertex lies on.
  const int axis = m.vertexAxis(v);
  const int i0 = axis == 0 ? i : i - 1, i1 = i;
  const int j0 = axis == 1 ? j : j - 1, j1 = j;
  double l = INFINITY, r = -INFINITY, b = INFINITY, t = -INFINITY;
  for (int cj = std::max(j0, 0); cj <= std::min(j1, m.sizeJ() - 1); ++cj)
    for (int ci = std::max(i0, 0); ci <= std::min(i1, m.sizeI() - 1); ++ci) {
      const AIRealRect p = lb::render::patchReach(m, ci, cj);
      l = std::min(l, p.left), r = std::max(r, p.right);
      b = std::min(b, p.bottom), t = std::max(t, p.top);
    }
  return AIRealRect{l, t, r, b};
}

// ---- Canvas -------------------------------------------------------------------

void CanvasView::invalidateArea(const AIRealRect& r) {
  marksStale_ = true;
  if (stale_) return;
  if (!(r.left <= r.right && r.bottom <= r.top)) return;
  lb::render::unite(dirtyArea_, r, dirty_);
}

CanvasView::~CanvasView() {
  if (surface_) {
    cairo_surface_finish(surface_);
    cairo_surface_destroy(surface_);
  }
  if (marks_) cairo_surface_destroy(marks_);
}

void CanvasView::setZoom(double zoom, double anchorX, double anchorY) {
  zoom = std::clamp(zoom, 0.01, 64.0);
  const AIRealPoint d = toDoc(anchorX, anchorY);
  zoom_ = zoom;
  double x, y;
  toView(d, &x, &y);
  panX_ += anchorX - x;
  panY_ += anchorY - y;
  stale_ = marksStale_ = true;
}

void CanvasView::fit(const Document& doc, int w, int h) {
  const AIRealRect a = lb::render::renderArea(doc);
  const double aw = std::max(1e-6, a.right - a.left), ah = std::max(1e-6, a.top - a.bottom);
  const double margin = 20;
  zoom_ = std::clamp(std::min((w - 2 * margin) / aw, (h - 2 * margin) / ah), 0.01, 64.0);
  // Pan is measured from the area's top-left corner.
  panX_ = (w - aw * zoom_) / 2;
  panY_ = (h - ah * zoom_) / 2;
  area_ = a;
  stale_ = marksStale_ = true;
}

AIRealPoint CanvasView::toDoc(double x, double y) const {
  return AIRealPoint{area_.left + (x - panX_) / zoom_, area_.top - (y - panY_) / zoom_};
}

void CanvasView::toView(AIRealPoint p, double* x, double* y) const {
  *x = panX_ + (p.h - area_.left) * zoom_;
  *y = panY_ + (area_.top - p.v) * zoom_;
}

bool CanvasView::refresh(const Document& doc) {
  if (!stale_ && surface_ && !dirty_) return false;
  const AIRealRect a = lb::render::renderArea(doc);
  if (!stale_ && surface_ && dirty_ && a.left == area_.left && a.top == area_.top && a.right == area_.right &&
      a.bottom == area_.bottom) {
    redrawArea(doc);
    return true;
  }
  dirty_ = false;
  // Keep document points where they are on screen when the area moves.
  if (surface_ || area_.left != 0 || area_.top != 0 || area_.right != 0 || area_.bottom != 0) {
    panX_ += (a.left - area_.left) * zoom_;
    panY_ += (area_.top - a.top) * zoom_;
  }
  area_ = a;
  // Large zooms render at a lower scale and are magnified when painted.
  const double aw = std::max(1e-6, a.right - a.left), ah = std::max(1e-6, a.top - a.bottom);
  double s = zoom_;
  s = std::min(s, 8192 / std::max(aw, ah));
  s = std::min(s, std::sqrt(32.0 * 1024 * 1024 / (aw * ah)));
  lb::render::RenderOptions o;
  o.scale = std::max(s, 0.0001);
  // The old surface goes first: cairo may still read its pixels (copying
  // them for a snapshot) when it is destroyed.
  if (surface_) {
    cairo_surface_finish(surface_);
    cairo_surface_destroy(surface_);
    surface_ = nullptr;
  }
  image_ = lb::render::renderDocument(doc, o);
  pictureScale_ = o.scale;
  surface_ = cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(image_.pixels.data()),
                                                 CAIRO_FORMAT_ARGB32, image_.width, image_.height,
                                                 image_.width * 4);
  stale_ = false;
  marksStale_ = true;
  return true;
}

void CanvasView::redrawArea(const Document& doc) {
  dirty_ = false;
  // The dirty area in picture pixels, grown to whole pixels (a clip on
  // pixel edges is exact, so the pixels inside come out as a full render
  // would draw them).
  const double s = pictureScale_;
  const double x0 = std::floor((dirtyArea_.left - area_.left) * s) - 1;
  const double x1 = std::ceil((dirtyArea_.right - area_.left) * s) + 1;
  const double y0 = std::floor((area_.top - dirtyArea_.top) * s) - 1;
  const double y1 = std::ceil((area_.top - dirtyArea_.bottom) * s) + 1;
  const double cx0 = std::clamp(x0, 0.0, double(image_.width)), cx1 = std::clamp(x1, 0.0, double(image_.width));
  const double cy0 = std::clamp(y0, 0.0, double(image_.height)), cy1 = std::clamp(y1, 0.0, double(image_.height));
  if (cx1 <= cx0 || cy1 <= cy0) return;
  cairo_t* cr = cairo_create(surface_);
  cairo_rectangle(cr, cx0, cy0, cx1 - cx0, cy1 - cy0);
  cairo_clip(cr);
  cairo_set_source_rgb(cr, 1, 1, 1);
  cairo_paint(cr);
  lb::render::RenderOptions o;
  o.scale = s;
  lb::render::drawDocument(doc, cr, o, area_);
  cairo_destroy(cr);
  cairo_surface_flush(surface_);
}

namespace {

bool anySelectedMesh(const Document& doc) {
  for (const ArtObject* a : doc.allArt())
    if (a->type == kMeshArt && a->mesh && a->selected()) return true;
  return false;
}

}  // namespace

bool CanvasView::refreshMarks(const Document& doc, int w, int h) {
  // The view in picture pixels at the current zoom.
  const int vx0 = -static_cast<int>(std::round(panX_)), vy0 = -static_cast<int>(std::round(panY_));
  const int vx1 = vx0 + w, vy1 = vy0 + h;
  const double pw = std::ceil((area_.right - area_.left) * zoom_ - 1e-9);
  const double ph = std::ceil((area_.top - area_.bottom) * zoom_ - 1e-9);
  auto clampX = [&](double x) { return static_cast<int>(std::clamp(x, 0.0, std::max(pw, 0.0))); };
  auto clampY = [&](double y) { return static_cast<int>(std::clamp(y, 0.0, std::max(ph, 0.0))); };
  const bool covered = clampX(vx0) >= marksX_ && clampY(vy0) >= marksY_ && clampX(vx1) <= marksX_ + marksW_ &&
                       clampY(vy1) <= marksY_ + marksH_;
  if (!marksStale_ && (covered || !anyMarks_)) return false;
  marksStale_ = false;
  if (marks_) cairo_surface_destroy(marks_);
  marks_ = nullptr;
  marksW_ = marksH_ = 0;
  anyMarks_ = anySelectedMesh(doc);
  if (!anyMarks_) return true;
  // The view and a quarter of it on every side, so that short pans need
  // no new marks; marks outside the picture are not shown.
  marksX_ = clampX(vx0 - w / 4), marksY_ = clampY(vy0 - h / 4);
  marksW_ = clampX(vx1 + w / 4) - marksX_, marksH_ = clampY(vy1 + h / 4) - marksY_;
  if (marksW_ <= 0 || marksH_ <= 0) return true;
  marks_ = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, marksW_, marksH_);
  cairo_surface_set_device_offset(marks_, -marksX_, -marksY_);
  cairo_t* cr = cairo_create(marks_);
  const lb::render::PixelRect visible{double(marksX_), double(marksY_), double(marksX_ + marksW_),
                                      double(marksY_ + marksH_)};
  lb::render::drawSelectionMarks(doc, cr, zoom_, area_, &visible);
  cairo_destroy(cr);
  cairo_surface_flush(marks_);
  // Painted from its own top-left pixel from now on.
  cairo_surface_set_device_offset(marks_, 0, 0);
  return true;
}

void CanvasView::paint(cairo_t* cr, const Document& doc, int w, int h) {
  refresh(doc);
  refreshMarks(doc, w, h);
  cairo_save(cr);
  cairo_set_source_rgb(cr, 0.62, 0.62, 0.62);
  cairo_rectangle(cr, 0, 0, w, h);
  cairo_fill(cr);
  cairo_translate(cr, std::round(panX_), std::round(panY_));
  const double k = zoom_ / pictureScale_;
  if (std::fabs(k - 1) > 1e-9) cairo_scale(cr, k, k);
  cairo_set_source_surface(cr, surface_, 0, 0);
  cairo_pattern_set_filter(cairo_get_source(cr), std::fabs(k - 1) > 1e-9 ? CAIRO_FILTER_GOOD : CAIRO_FILTER_FAST);
  cairo_paint(cr);
  cairo_restore(cr);
  if (marks_) {
    // The marks are drawn at the zoom itself, sharp however the picture is
    // magnified.
    cairo_save(cr);
    cairo_translate(cr, std::round(panX_), std::round(panY_));
    cairo_set_source_surface(cr, marks_, marksX_, marksY_);
    cairo_pattern_set_filter(cairo_get_source(cr), CAIRO_FILTER_FAST);
    cairo_paint(cr);
    cairo_restore(cr);
  }
}

}  // namespace lb::editor
