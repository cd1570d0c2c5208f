// The editor's toolkit-free parts: undo history of .lbdoc snapshots, the
// direct-selection tool on a host document, and the canvas view with its
// cached picture of the document.
#pragma once

#include <cairo.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/Document.h"
#include "render/Render.h"

namespace lb::editor {

// Undo and redo as whole-document snapshots (the editor keeps copies of
// the host document): exact, and independent of what a command or an edit
// touched.
template <class State>
class History {
 public:
  // Records the state before a change; clears the redo list.
  void push(State before) {
    undo_.push_back(std::move(before));
    redo_.clear();
  }
  bool canUndo() const { return !undo_.empty(); }
  bool canRedo() const { return !redo_.empty(); }
  size_t undoCount() const { return undo_.size(); }
  size_t redoCount() const { return redo_.size(); }
  // Returns the state to restore; `current` goes to the other list.
  State undo(State current) { return step(undo_, redo_, std::move(current)); }
  State redo(State current) { return step(redo_, undo_, std::move(current)); }

 private:
  static State step(std::vector<State>& from, std::vector<State>& to, State current) {
    State s = std::move(from.back());
    from.pop_back();
    to.push_back(std::move(current));
    return s;
  }
  std::vector<State> undo_, redo_;
};

// The editor's history: copies of the document.
using DocumentHistory = History<std::unique_ptr<lb::host::Document>>;

// What lies under a point of the document, topmost first.
struct Hit {
  enum Kind { kNone, kVertex, kHandle, kPath } kind = kNone;
  ArtObject* art = nullptr;
  lb::host::VertexId vertex = lb::host::kNoVertex;
  int dir = -1;  // handle direction for kHandle
};

// Hit test in document units: handles of selected vertices of selected
// meshes first, then vertices of every visible unlocked mesh, then paths
// by their bounds.
Hit hitTest(const lb::host::Document& doc, AIRealPoint p, double tolerance);

// A click of the direct-selection tool. Without Shift: a vertex becomes the
// only selected vertex and its mesh the only selected art; a path the only
// selected art; empty canvas deselects everything. With Shift a vertex or
// path toggles and the rest stays. Returns whether anything changed.
bool clickSelect(lb::host::Document& doc, const Hit& hit, bool shift);

// Selects the vertices inside `r` (document units) of every visible,
// unlocked mesh; meshes that get one become selected. Without Shift
// everything else is deselected first.
bool rectSelect(lb::host::Document& doc, AIRealRect r, bool shift);

// Moves a vertex with its handles, or one handle, by (dx, dy) document units.
void moveVertex(ArtObject* mesh, lb::host::VertexId v, double dx, double dy);
void moveHandle(ArtObject* mesh, lb::host::VertexId v, int dir, double dx, double dy);
// The document area that moving vertex v or one of its handles can change:
// the patches around it. Take it before and after a move and redraw both.
AIRealRect vertexReach(const lb::host::GradientMesh& mesh, lb::host::VertexId v);

// Everything deselected: art and mesh vertices.
bool deselectAll(lb::host::Document& doc);

// The canvas: a zoom and a pan over the document's drawing area, the
// rendered picture of the document kept until the document changes or the
// zoom does, and the selection marks over it, drawn apart for the part of
// the picture in and around the view and kept until the selection changes
// or the view moves beyond that part. A frame only paints the two.
class CanvasView {
 public:
  // Marks the cached picture stale (after any change of the document).
  void invalidate() { stale_ = marksStale_ = true; }
  // Marks the picture stale inside a document area only (after an edit
  // whose effect stays there, such as dragging a vertex); the next refresh
  // redraws that part, or everything when the drawing area itself moved.
  void invalidateArea(const AIRealRect& r);
  // Marks only the selection marks stale (after a change of selection).
  void invalidateMarks() { marksStale_ = true; }
  void setZoom(double zoom, double anchorX, double anchorY);
  double zoom() const { return zoom_; }
  void panBy(double dx, double dy) { panX_ += dx; panY_ += dy; }
  double panX() const { return panX_; }
  double panY() const { return panY_; }
  // Zoom and pan so that the drawing area fills w x h with a margin.
  void fit(const lb::host::Document& doc, int w, int h);
  // The document area drawn (renderArea of the last picture).
  AIRealRect area() const { return area_; }

  AIRealPoint toDoc(double x, double y) const;
  void toView(AIRealPoint p, double* x, double* y) const;

  // Paints the view into cr (widget pixels, w x h), re-rendering the
  // picture first when stale.
  void paint(cairo_t* cr, const lb::host::Document& doc, int w, int h);
  // Renders the picture now if stale; returns whether it did.
  bool refresh(const lb::host::Document& doc);
  // Draws the marks for a w x h view now if stale or if the view has left
  // the part they cover; returns whether it did.
  bool refreshMarks(const lb::host::Document& doc, int w, int h);

 private:
  void redrawArea(const lb::host::Document& doc);
  // The marks: view pixels relative to the picture's top-left corner at
  // the current zoom, covering (marksX_, marksY_) + marksW_ x marksH_.
  cairo_surface_t* marks_ = nullptr;
  int marksX_ = 0, marksY_ = 0, marksW_ = 0, marksH_ = 0;
  bool marksStale_ = true;
  bool anyMarks_ = false;

  double zoom_ = 1, panX_ = 20, panY_ = 20;
  bool stale_ = true;
  bool dirty_ = false;  // dirtyArea_ waits to be redrawn
  AIRealRect dirtyArea_{0, 0, 0, 0};
  AIRealRect area_{0, 0, 0, 0};
  double pictureScale_ = 1;
  lb::render::Image image_;
  cairo_surface_t* surface_ = nullptr;

 public:
  CanvasView() = default;
  CanvasView(const CanvasView&) = delete;
  CanvasView& operator=(const CanvasView&) = delete;
  ~CanvasView();
};

}  // namespace lb::editor
