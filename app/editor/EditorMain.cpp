// `latticebender-edit [FILE]`: the GTK 4 editor window. The canvas shows the
// document through our renderer with the direct-selection tool; the panel
// is the loaded plug-in's own lbwin window, shown as an image and fed the
// mouse and the Alt/Ctrl keys; every change is undoable through .lbdoc
// snapshots taken before it.
#define GDK_DISABLE_DEPRECATION_WARNINGS
#include <gtk/gtk.h>
#ifdef GDK_WINDOWING_X11
#include <gdk/x11/gdkx.h>
#endif

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/Interchange.h"
#include "app/editor/EditorCore.h"
#include "host/Host.h"
#include "host/PanelHost.h"
#include "io/Lbdoc.h"
#include "lbwin.h"

namespace {

using lb::editor::CanvasView;
using lb::editor::Hit;
using lb::editor::DocumentHistory;

struct Editor {
  GtkApplication* app = nullptr;
  GtkWindow* win = nullptr;
  GtkWidget* canvas = nullptr;
  GtkWidget* panel = nullptr;
  GtkWidget* row = nullptr;          // the canvas and the docked panel
  GtkWindow* panelWin = nullptr;     // the panel's own window, when not docked
  std::unique_ptr<lb::host::Host> host;
  HWND panelWnd = nullptr;
  CanvasView view;
  DocumentHistory history;
  std::string path;        // empty: not saved yet
  long savedAt = 0;        // undo count when last opened or saved; -1: not reachable
  bool modified = false;
  std::unique_ptr<lb::host::Document> snapshot;  // the document between changes
  std::optional<std::string> currentText;        // its .lbdoc text, when known
  bool changing = false;
  bool known = false;      // the change itself reports whether it changed anything
  bool touched = false;    // a canvas edit changed something during the change
  bool selectionOnly = false;  // the change can alter the selection only
  std::vector<std::string> alerts;
  std::string statePath;   // LB_EDITOR_STATE: where the window's geometry goes
  bool fitted = false;
  bool closeConfirmed = false;
  // Canvas drag.
  enum { kNoDrag, kRect, kMoveVertex, kMoveHandle, kPan } drag = kNoDrag;
  Hit dragHit;
  double dragX = 0, dragY = 0, lastX = 0, lastY = 0;
  bool spaceDown = false;
};

Editor* gEd = nullptr;

lb::host::Document& Doc() { return gEd->host->document(); }

std::string DocText() { return lb::io::writeDocument(Doc()); }

std::string DisplayName() {
  return gEd->path.empty() ? std::string("Untitled") : std::filesystem::path(gEd->path).filename().string();
}

void WriteState();

void UpdateTitle() {
  const std::string t = (gEd->modified ? "*" : "") + DisplayName() + " - LatticeBender";
  gtk_window_set_title(gEd->win, t.c_str());
  WriteState();
}

void Redraw() {
  gEd->view.invalidate();
  gtk_widget_queue_draw(gEd->canvas);
}

// After a change of selection only: the picture stays, the marks are drawn again.
void RedrawMarks() {
  gEd->view.invalidateMarks();
  gtk_widget_queue_draw(gEd->canvas);
}

void ShowMessage(const std::string& text, GtkMessageType type = GTK_MESSAGE_INFO) {
  GtkWidget* d = gtk_message_dialog_new(gEd->win, GTK_DIALOG_MODAL, type, GTK_BUTTONS_OK, "%s", text.c_str());
  g_signal_connect(d, "response", G_CALLBACK(gtk_window_destroy), nullptr);
  gtk_window_present(GTK_WINDOW(d));
}

void ShowAlerts() {
  std::vector<std::string> alerts;
  alerts.swap(gEd->alerts);
  for (const std::string& a : alerts) ShowMessage(a);
}

// ---- Changes and history ---------------------------------------------------------

// `snapshot` is a copy of the document as it stands between changes; a
// change that changed something pushes it on the undo list and takes a new
// copy. Canvas edits and Select All / Deselect All know whether they changed
// anything; a panel press or an import is judged by the document's text
// before and after (the text after a change is kept for the next one).
void BeginChange(bool selectionOnly = false) {
  gEd->changing = true;
  gEd->touched = false;
  gEd->selectionOnly = selectionOnly;
  gEd->known = selectionOnly;
}

// `mayHaveChanged` false: the caller knows nothing changed.
void EndChange(bool mayHaveChanged = true) {
  if (!gEd->changing) return;
  gEd->changing = false;
  bool changed = false;
  if (mayHaveChanged && gEd->known) {
    changed = gEd->touched;
    if (changed) gEd->currentText.reset();
  } else if (mayHaveChanged) {
    if (!gEd->currentText) gEd->currentText = lb::io::writeDocument(*gEd->snapshot);
    std::string after = DocText();
    changed = after != *gEd->currentText;
    gEd->currentText = std::move(after);
  }
  if (changed) {
    if (gEd->savedAt > static_cast<long>(gEd->history.undoCount())) gEd->savedAt = -1;  // no longer reachable
    gEd->history.push(std::move(gEd->snapshot));
    gEd->snapshot = Doc().clone();
    gEd->modified = true;
    if (gEd->selectionOnly)
      RedrawMarks();
    else
      Redraw();
  }
  UpdateTitle();
}

void Restore(std::unique_ptr<lb::host::Document> doc) {
  gEd->snapshot = std::move(doc);
  gEd->host->setDocument(gEd->snapshot->clone());
  gEd->currentText.reset();
  gEd->modified = static_cast<long>(gEd->history.undoCount()) != gEd->savedAt;
  Redraw();
  UpdateTitle();
}

void Undo() {
  if (gEd->changing || !gEd->history.canUndo()) return;
  Restore(gEd->history.undo(std::move(gEd->snapshot)));
}

void Redo() {
  if (gEd->changing || !gEd->history.canRedo()) return;
  Restore(gEd->history.redo(std::move(gEd->snapshot)));
}

// ---- Files -------------------------------------------------------------------------

bool SaveTo(const std::string& path) {
  try {
    lb::io::writeDocumentFileAtomic(Doc(), path);
    gEd->path = path;
    gEd->savedAt = static_cast<long>(gEd->history.undoCount());
    gEd->modified = false;
    UpdateTitle();
    return true;
  } catch (const std::exception& e) {
    ShowMessage(std::string("Cannot save: ") + e.what(), GTK_MESSAGE_ERROR);
    return false;
  }
}

bool OpenFile(const std::string& path) {
  try {
    auto doc = lb::io::readDocumentFile(path);
    gEd->host->setDocument(std::move(doc));
  } catch (const std::exception& e) {
    ShowMessage(e.what(), GTK_MESSAGE_ERROR);
    return false;
  }
  gEd->path = path;
  gEd->snapshot = Doc().clone();
  gEd->currentText.reset();
  gEd->savedAt = 0;
  gEd->modified = false;
  gEd->history = DocumentHistory();
  gEd->fitted = false;
  Redraw();
  UpdateTitle();
  return true;
}

// Shows the warning lines of an import or an export (what the format
// cannot hold) in one dialog; they also go to standard error.
void ShowWarnings(const lb::app::Warnings& warnings) {
  if (warnings.empty()) return;
  std::string text;
  for (const std::string& w : warnings) {
    std::fprintf(stderr, "latticebender edit: warning: %s\n", w.c_str());
    text += (text.empty() ? "" : "\n") + w;
  }
  ShowMessage(text, GTK_MESSAGE_WARNING);
}

// Writes the document by the file's extension (.svg, .pdf, .png at 1 pixel
// per unit; no selection marks), atomically, as `latticebender export` does.
void ExportTo(const std::string& path) {
  if (!lb::app::isExportPath(path)) {
    ShowMessage("Cannot export: the file name must end in .svg, .pdf or .png, not '" +
                    std::filesystem::path(path).filename().string() + "'",
                GTK_MESSAGE_ERROR);
    return;
  }
  lb::app::Warnings warnings;
  try {
    lb::app::writeAnyDocument(Doc(), path, 1, &warnings);
  } catch (const std::exception& e) {
    ShowMessage(std::string("Cannot export: ") + e.what(), GTK_MESSAGE_ERROR);
    return;
  }
  ShowWarnings(warnings);
}

// Replaces the document with an SVG file's content, as `latticebender
// import` reads it: one undoable change; the document keeps its file name.
void ImportFrom(const std::string& path) {
  if (!lb::app::isSvgPath(path)) {
    ShowMessage("Cannot import: Import reads .svg files, not '" + std::filesystem::path(path).filename().string() +
                    "'",
                GTK_MESSAGE_ERROR);
    return;
  }
  lb::app::Warnings warnings;
  std::unique_ptr<lb::host::Document> doc;
  try {
    doc = lb::app::readAnyDocument(path, {}, &warnings);
  } catch (const std::exception& e) {
    const std::string what = e.what();
    ShowMessage("Cannot import: " + (what.find(path) == std::string::npos ? path + ": " + what : what),
                GTK_MESSAGE_ERROR);
    return;
  }
  BeginChange();
  gEd->host->setDocument(std::move(doc));
  gEd->fitted = false;
  EndChange();
  ShowWarnings(warnings);
}

// A file chooser whose accepted path goes to `then`.
void ChoosePath(const char* title, bool save, const std::string& name, void (*then)(const std::string&)) {
  GtkFileChooserNative* fc = gtk_file_chooser_native_new(
      title, gEd->win, save ? GTK_FILE_CHOOSER_ACTION_SAVE : GTK_FILE_CHOOSER_ACTION_OPEN, nullptr, nullptr);
  if (save) gtk_file_chooser_set_current_name(GTK_FILE_CHOOSER(fc), name.c_str());
  g_signal_connect(fc, "response", G_CALLBACK(+[](GtkNativeDialog* d, int response, gpointer data) {
                     std::string path;
                     if (response == GTK_RESPONSE_ACCEPT) {
                       GFile* f = gtk_file_chooser_get_file(GTK_FILE_CHOOSER(d));
                       char* p = f ? g_file_get_path(f) : nullptr;
                       if (p) path = p;
                       g_free(p);
                       if (f) g_object_unref(f);
                     }
                     g_object_unref(d);
                     if (!path.empty()) reinterpret_cast<void (*)(const std::string&)>(data)(path);
                   }),
                   reinterpret_cast<gpointer>(then));
  gtk_native_dialog_show(GTK_NATIVE_DIALOG(fc));
}

void Export() {
  std::string name = DisplayName();
  if (name.size() > 6 && name.substr(name.size() - 6) == ".lbdoc") name.resize(name.size() - 6);
  ChoosePath("Export (.svg, .pdf or .png)", true, name + ".svg", ExportTo);
}

void Import() { ChoosePath("Import SVG", false, "", ImportFrom); }

void ChooseFile(bool save) {
  GtkFileChooserNative* fc = gtk_file_chooser_native_new(save ? "Save Document" : "Open Document", gEd->win,
                                                         save ? GTK_FILE_CHOOSER_ACTION_SAVE
                                                              : GTK_FILE_CHOOSER_ACTION_OPEN,
                                                         nullptr, nullptr);
  GtkFileFilter* filter = gtk_file_filter_new();
  gtk_file_filter_set_name(filter, "LatticeBender documents (.lbdoc)");
  gtk_file_filter_add_pattern(filter, "*.lbdoc");
  gtk_file_chooser_add_filter(GTK_FILE_CHOOSER(fc), filter);
  g_object_unref(filter);
  if (save) gtk_file_chooser_set_current_name(GTK_FILE_CHOOSER(fc), DisplayName().c_str());
  g_signal_connect(fc, "response", G_CALLBACK(+[](GtkNativeDialog* d, int response, gpointer data) {
                     if (response == GTK_RESPONSE_ACCEPT) {
                       GFile* f = gtk_file_chooser_get_file(GTK_FILE_CHOOSER(d));
                       char* p = g_file_get_path(f);
                       std::string path = p ? p : "";
                       g_free(p);
                       g_object_unref(f);
                       if (!path.empty()) {
                         if (GPOINTER_TO_INT(data)) {
                           if (path.size() < 6 || path.substr(path.size() - 6) != ".lbdoc") path += ".lbdoc";
                           SaveTo(path);
                         } else {
                           OpenFile(path);
                         }
                       }
                     }
                     g_object_unref(d);
                   }),
                   GINT_TO_POINTER(save));
  gtk_native_dialog_show(GTK_NATIVE_DIALOG(fc));
}

void Save() {
  if (gEd->path.empty())
    ChooseFile(true);
  else
    SaveTo(gEd->path);
}

// Asks before discarding unsaved changes; `then` runs once it is fine to go on.
void ConfirmDiscard(void (*then)()) {
  if (!gEd->modified) {
    then();
    return;
  }
  GtkWidget* d = gtk_message_dialog_new(gEd->win, GTK_DIALOG_MODAL, GTK_MESSAGE_QUESTION, GTK_BUTTONS_NONE,
                                        "Save changes to \"%s\" before closing?", DisplayName().c_str());
  gtk_dialog_add_buttons(GTK_DIALOG(d), "Close without Saving", GTK_RESPONSE_REJECT, "Cancel",
                         GTK_RESPONSE_CANCEL, "Save", GTK_RESPONSE_ACCEPT, nullptr);
  g_signal_connect(d, "response", G_CALLBACK(+[](GtkDialog* dlg, int response, gpointer data) {
                     auto next = reinterpret_cast<void (*)()>(data);
                     gtk_window_destroy(GTK_WINDOW(dlg));
                     if (response == GTK_RESPONSE_REJECT) next();
                     if (response == GTK_RESPONSE_ACCEPT && !gEd->path.empty() && SaveTo(gEd->path)) next();
                     if (response == GTK_RESPONSE_ACCEPT && gEd->path.empty()) ChooseFile(true);
                   }),
                   reinterpret_cast<gpointer>(then));
  gtk_window_present(GTK_WINDOW(d));
}

void CloseNow() {
  gEd->closeConfirmed = true;
  gtk_window_close(gEd->win);
}

// ---- State for tests ---------------------------------------------------------------

unsigned long Xid(GtkWindow* win) {
  unsigned long xid = 0;
#ifdef GDK_WINDOWING_X11
  GdkSurface* surface = gtk_native_get_surface(GTK_NATIVE(win));
  if (surface && GDK_IS_X11_SURFACE(surface)) xid = gdk_x11_surface_get_xid(surface);
#endif
  return xid;
}

void WidgetBox(GtkWidget* w, std::string& out, const char* name, GtkWindow* win) {
  double x = 0, y = 0;
  double sx = 0, sy = 0;
  gtk_native_get_surface_transform(GTK_NATIVE(win), &sx, &sy);
  if (!gtk_widget_get_visible(w) || !gtk_widget_get_mapped(GTK_WIDGET(win)) || gtk_widget_get_width(w) <= 0 ||
      !gtk_widget_translate_coordinates(w, GTK_WIDGET(win), 0, 0, &x, &y)) {
    out += std::string(name) + " hidden\n";
    return;
  }
  char line[160];
  std::snprintf(line, sizeof line, "%s %d %d %d %d\n", name, static_cast<int>(x + sx), static_cast<int>(y + sy),
                gtk_widget_get_width(w), gtk_widget_get_height(w));
  out += line;
}

// With LB_EDITOR_STATE set, the window's geometry and the history's state
// are written there (atomically) after every change, so a test driving the
// window with real input events knows where to click and when it is done.
void WriteState() {
  if (gEd->statePath.empty() || !gtk_widget_get_realized(GTK_WIDGET(gEd->win))) return;
  std::string s;
  s += "xid " + std::to_string(Xid(gEd->win)) + "\n";
  WidgetBox(gEd->canvas, s, "canvas", gEd->win);
  // A panel in its own window is placed in that window's pixels.
  GtkWindow* panelIn = gEd->panelWin ? gEd->panelWin : gEd->win;
  WidgetBox(gEd->panel, s, "panel", panelIn);
  s += "panelxid " + std::to_string(Xid(panelIn)) + "\n";
  const AIRealRect a = gEd->view.area();
  char line[256];
  std::snprintf(line, sizeof line, "view %.17g %.17g %.17g %.17g %.17g\n", gEd->view.panX(), gEd->view.panY(),
                a.left, a.top, gEd->view.zoom());
  s += line;
  s += "undo " + std::to_string(gEd->history.undoCount()) + " redo " + std::to_string(gEd->history.redoCount()) +
       " modified " + (gEd->modified ? "1" : "0") + "\n";
  s += "path " + gEd->path + "\n";
  const std::string tmp = gEd->statePath + ".tmp";
  {
    std::ofstream f(tmp, std::ios::trunc);
    f << s;
  }
  std::rename(tmp.c_str(), gEd->statePath.c_str());
}

// ---- Canvas ------------------------------------------------------------------------

void DrawCanvas(GtkDrawingArea*, cairo_t* cr, int w, int h, gpointer) {
  if (!gEd->fitted && w > 1 && h > 1) {
    gEd->view.fit(Doc(), w, h);
    gEd->fitted = true;
  }
  const bool rendered = gEd->view.refresh(Doc());
  gEd->view.paint(cr, Doc(), w, h);
  if (gEd->drag == Editor::kRect) {
    cairo_rectangle(cr, std::min(gEd->dragX, gEd->lastX) + 0.5, std::min(gEd->dragY, gEd->lastY) + 0.5,
                    std::abs(gEd->lastX - gEd->dragX), std::abs(gEd->lastY - gEd->dragY));
    cairo_set_source_rgba(cr, 0.16, 0.43, 0.96, 0.15);
    cairo_fill_preserve(cr);
    cairo_set_source_rgb(cr, 0.16, 0.43, 0.96);
    cairo_set_line_width(cr, 1);
    cairo_stroke(cr);
  }
  if (rendered) WriteState();
}

constexpr double kPickPixels = 5;

void CanvasPressed(GtkGestureDrag* g, double x, double y, gpointer) {
  const guint button = gtk_gesture_single_get_current_button(GTK_GESTURE_SINGLE(g));
  gEd->dragX = gEd->lastX = x;
  gEd->dragY = gEd->lastY = y;
  if (button == 2 || (button == 1 && gEd->spaceDown)) {
    gEd->drag = Editor::kPan;
    return;
  }
  if (button != 1) return;
  const GdkModifierType mods = gtk_event_controller_get_current_event_state(GTK_EVENT_CONTROLLER(g));
  const bool shift = (mods & GDK_SHIFT_MASK) != 0;
  BeginChange(true);
  const Hit hit = lb::editor::hitTest(Doc(), gEd->view.toDoc(x, y), kPickPixels / gEd->view.zoom());
  gEd->dragHit = hit;
  if (hit.kind == Hit::kNone) {
    gEd->drag = Editor::kRect;
    if (!shift && lb::editor::deselectAll(Doc())) gEd->touched = true;
  } else {
    // Pressing a vertex that is already selected keeps the selection, so
    // that all the selected vertices can be dragged together.
    const bool keep = hit.kind == Hit::kVertex && !shift && hit.art->selected() &&
                      hit.art->mesh->selected(hit.vertex);
    if (!keep && lb::editor::clickSelect(Doc(), hit, shift)) gEd->touched = true;
    gEd->drag = hit.kind == Hit::kHandle ? Editor::kMoveHandle
                : hit.kind == Hit::kVertex && hit.art->mesh->selected(hit.vertex) ? Editor::kMoveVertex
                                                                                   : Editor::kNoDrag;
  }
  RedrawMarks();
}

void CanvasDragged(GtkGestureDrag*, double ox, double oy, gpointer) {
  const double x = gEd->dragX + ox, y = gEd->dragY + oy;
  const double dx = x - gEd->lastX, dy = y - gEd->lastY;
  const double z = gEd->view.zoom();
  switch (gEd->drag) {
    case Editor::kPan:
      gEd->view.panBy(dx, dy);
      gtk_widget_queue_draw(gEd->canvas);
      break;
    case Editor::kMoveVertex: {
      // Every selected vertex of the mesh moves together; only the patches
      // around them are drawn again, where they were and where they go.
      lb::host::GradientMesh& m = *gEd->dragHit.art->mesh;
      std::vector<lb::host::VertexId> moved;
      for (lb::host::VertexId v = m.firstVertex(); v != lb::host::kNoVertex; v = m.nextVertex(v))
        if (m.selected(v)) moved.push_back(v);
      for (lb::host::VertexId v : moved) gEd->view.invalidateArea(lb::editor::vertexReach(m, v));
      for (lb::host::VertexId v : moved) lb::editor::moveVertex(gEd->dragHit.art, v, dx / z, -dy / z);
      for (lb::host::VertexId v : moved) gEd->view.invalidateArea(lb::editor::vertexReach(m, v));
      gEd->touched = true;
      gEd->selectionOnly = false;
      gtk_widget_queue_draw(gEd->canvas);
      break;
    }
    case Editor::kMoveHandle: {
      const lb::host::GradientMesh& m = *gEd->dragHit.art->mesh;
      gEd->view.invalidateArea(lb::editor::vertexReach(m, gEd->dragHit.vertex));
      lb::editor::moveHandle(gEd->dragHit.art, gEd->dragHit.vertex, gEd->dragHit.dir, dx / z, -dy / z);
      gEd->view.invalidateArea(lb::editor::vertexReach(m, gEd->dragHit.vertex));
      gEd->touched = true;
      gEd->selectionOnly = false;
      gtk_widget_queue_draw(gEd->canvas);
      break;
    }
    case Editor::kRect:
      gtk_widget_queue_draw(gEd->canvas);
      break;
    case Editor::kNoDrag:
      break;
  }
  gEd->lastX = x;
  gEd->lastY = y;
}

void CanvasReleased(GtkGestureDrag* g, double ox, double oy, gpointer) {
  const double x = gEd->dragX + ox, y = gEd->dragY + oy;
  if (gEd->drag == Editor::kRect && (std::abs(ox) > 2 || std::abs(oy) > 2)) {
    // Without Shift the press has already cleared the selection.
    const AIRealPoint a = gEd->view.toDoc(gEd->dragX, gEd->dragY), b = gEd->view.toDoc(x, y);
    if (lb::editor::rectSelect(Doc(), AIRealRect{a.h, a.v, b.h, b.v}, true)) gEd->touched = true;
  }
  (void)g;
  const bool wasPan = gEd->drag == Editor::kPan;
  gEd->drag = Editor::kNoDrag;
  if (!wasPan) EndChange(gEd->touched);
  gtk_widget_queue_draw(gEd->canvas);
  WriteState();
}

gboolean CanvasScrolled(GtkEventControllerScroll* c, double dx, double dy, gpointer) {
  const GdkModifierType mods = gtk_event_controller_get_current_event_state(GTK_EVENT_CONTROLLER(c));
  if (mods & GDK_CONTROL_MASK) {
    double x = gtk_widget_get_width(gEd->canvas) / 2.0, y = gtk_widget_get_height(gEd->canvas) / 2.0;
    gEd->view.setZoom(gEd->view.zoom() * (dy < 0 ? 1.25 : 0.8), x, y);
  } else {
    gEd->view.panBy(-dx * 30, -dy * 30);
  }
  gtk_widget_queue_draw(gEd->canvas);
  WriteState();
  return TRUE;
}

void Zoom(double factor) {
  gEd->view.setZoom(gEd->view.zoom() * factor, gtk_widget_get_width(gEd->canvas) / 2.0,
                    gtk_widget_get_height(gEd->canvas) / 2.0);
  gtk_widget_queue_draw(gEd->canvas);
  WriteState();
}

// ---- The plug-in's panel -------------------------------------------------------------

void DrawPanel(GtkDrawingArea*, cairo_t* cr, int, int, gpointer) {
  // The state file follows the panel into and out of its own window.
  static GtkWindow* lastIn = nullptr;
  static double lastX = -1, lastY = -1;
  GtkWindow* in = gEd->panelWin ? gEd->panelWin : gEd->win;
  double x = 0, y = 0;
  if (gtk_widget_translate_coordinates(gEd->panel, GTK_WIDGET(in), 0, 0, &x, &y) &&
      (in != lastIn || x != lastX || y != lastY)) {
    lastIn = in, lastX = x, lastY = y;
    WriteState();
  }
  HWND hwnd = gEd->panelWnd;
  if (!hwnd || !IsWindow(hwnd)) return;
  if (lbwinIsInvalid(hwnd)) UpdateWindow(hwnd);
  int w = 0, h = 0, stride = 0;
  const uint8_t* px = lbwinGetPixels(hwnd, &w, &h, &stride);
  if (!px) return;
  // The window image is top-down BGRX, which is cairo's RGB24 layout.
  cairo_surface_t* s = cairo_image_surface_create_for_data(const_cast<uint8_t*>(px), CAIRO_FORMAT_RGB24, w, h,
                                                           stride);
  cairo_set_source_surface(cr, s, 0, 0);
  cairo_paint(cr);
  cairo_surface_destroy(s);
}

void SetKeys(GtkEventController* c) {
  const GdkModifierType mods = gtk_event_controller_get_current_event_state(c);
  lbwinSetKeyState(VK_MENU, (mods & GDK_ALT_MASK) != 0);
  lbwinSetKeyState(VK_CONTROL, (mods & GDK_CONTROL_MASK) != 0);
  lbwinSetKeyState(VK_SHIFT, (mods & GDK_SHIFT_MASK) != 0);
}

void PanelSend(UINT msg, WPARAM wp, double x, double y) {
  if (!gEd->panelWnd || !IsWindow(gEd->panelWnd)) return;
  lbwinSendMessage(gEd->panelWnd, msg, wp, MAKELPARAM(static_cast<int>(x), static_cast<int>(y)));
  UpdateWindow(gEd->panelWnd);
  gtk_widget_queue_draw(gEd->panel);
}

bool gPanelButtonDown = false;

void PanelMotion(GtkEventControllerMotion* c, double x, double y, gpointer) {
  SetKeys(GTK_EVENT_CONTROLLER(c));
  PanelSend(WM_MOUSEMOVE, gPanelButtonDown ? MK_LBUTTON : 0, x, y);
}

void PanelLeave(GtkEventControllerMotion*, gpointer) {
  if (gEd->panelWnd && IsWindow(gEd->panelWnd) && lbwinMouseLeave(gEd->panelWnd)) {
    UpdateWindow(gEd->panelWnd);
    gtk_widget_queue_draw(gEd->panel);
  }
}

void PanelPressed(GtkGestureClick* g, int, double x, double y, gpointer) {
  SetKeys(GTK_EVENT_CONTROLLER(g));
  BeginChange();
  gPanelButtonDown = true;
  PanelSend(WM_LBUTTONDOWN, MK_LBUTTON, x, y);
}

void PanelReleased(GtkGestureClick* g, int, double x, double y, gpointer) {
  // The keys held at the release decide the command's variant.
  SetKeys(GTK_EVENT_CONTROLLER(g));
  gPanelButtonDown = false;
  PanelSend(WM_LBUTTONUP, 0, x, y);
  EndChange();
  ShowAlerts();
}

// A press whose release went elsewhere (the gesture was cancelled).
void PanelCancelled(GtkGesture*, GdkEventSequence*, gpointer) {
  if (!gPanelButtonDown) return;
  gPanelButtonDown = false;
  PanelSend(WM_LBUTTONUP, 0, -1, -1);
  EndChange();
  ShowAlerts();
}

void SyncPanelVisibility() {
  const lb::host::PanelInfo* p = lb::host::currentPanel();
  const bool shown = p && p->shown && p->window;
  gtk_widget_set_visible(gEd->panel, shown);
  if (gEd->panelWin) {
    if (shown)
      gtk_window_present(gEd->panelWin);
    else
      gtk_widget_set_visible(GTK_WIDGET(gEd->panelWin), FALSE);
  }
  WriteState();
}

void TogglePanel();

// Moves the panel into a window of its own (beside the editor, which owns
// it) or back into the editor's window.
void SetPanelWindowed(bool windowed) {
  if (windowed == (gEd->panelWin != nullptr)) return;
  g_object_ref(gEd->panel);
  if (windowed) {
    gtk_box_remove(GTK_BOX(gEd->row), gEd->panel);
    GtkWindow* w = GTK_WINDOW(gtk_window_new());
    gtk_window_set_application(w, gEd->app);  // the editor's shortcuts work there too
    gtk_window_set_transient_for(w, gEd->win);
    gtk_window_set_resizable(w, FALSE);
    AIMenuItemHandle item = gEd->host->pluginMenuItem();
    gtk_window_set_title(w, item ? gEd->host->menuItemText(item).c_str() : "Lattice Bender");
    gtk_window_set_child(w, gEd->panel);
    // Closing the panel's window hides the panel, as its menu item does.
    g_signal_connect(w, "close-request", G_CALLBACK(+[](GtkWindow*, gpointer) -> gboolean {
                       const lb::host::PanelInfo* p = lb::host::currentPanel();
                       if (p && p->shown) TogglePanel();
                       return TRUE;
                     }),
                     nullptr);
    g_signal_connect_after(w, "map", G_CALLBACK(+[](GtkWidget*, gpointer) { WriteState(); }), nullptr);
    gEd->panelWin = w;
  } else {
    GtkWindow* w = gEd->panelWin;
    gEd->panelWin = nullptr;
    gtk_window_set_child(w, nullptr);
    gtk_window_destroy(w);
    gtk_box_append(GTK_BOX(gEd->row), gEd->panel);
  }
  g_object_unref(gEd->panel);
  SyncPanelVisibility();
}

// ---- Actions ---------------------------------------------------------------------------

void AddAction(const char* name, void (*fn)()) {
  GSimpleAction* a = g_simple_action_new(name, nullptr);
  g_signal_connect(a, "activate", G_CALLBACK(+[](GSimpleAction*, GVariant*, gpointer f) {
                     reinterpret_cast<void (*)()>(f)();
                   }),
                   reinterpret_cast<gpointer>(fn));
  g_action_map_add_action(G_ACTION_MAP(gEd->app), G_ACTION(a));
  g_object_unref(a);
}

GMenuModel* BuildMenu() {
  GMenu* bar = g_menu_new();
  GMenu* file = g_menu_new();
  g_menu_append(file, "Open...", "app.open");
  g_menu_append(file, "Save", "app.save");
  g_menu_append(file, "Save As...", "app.saveas");
  g_menu_append(file, "Import SVG...", "app.import");
  g_menu_append(file, "Export...", "app.export");
  g_menu_append(file, "Quit", "app.quit");
  g_menu_append_submenu(bar, "File", G_MENU_MODEL(file));
  GMenu* edit = g_menu_new();
  g_menu_append(edit, "Undo", "app.undo");
  g_menu_append(edit, "Redo", "app.redo");
  g_menu_append(edit, "Select All", "app.selectall");
  g_menu_append(edit, "Deselect All", "app.deselect");
  g_menu_append_submenu(bar, "Edit", G_MENU_MODEL(edit));
  GMenu* viewMenu = g_menu_new();
  g_menu_append(viewMenu, "Zoom In", "app.zoomin");
  g_menu_append(viewMenu, "Zoom Out", "app.zoomout");
  g_menu_append(viewMenu, "Fit in Window", "app.fit");
  g_menu_append(viewMenu, "Actual Size", "app.actual");
  g_menu_append_submenu(bar, "View", G_MENU_MODEL(viewMenu));
  GMenu* window = g_menu_new();
  AIMenuItemHandle item = gEd->host->pluginMenuItem();
  const std::string label = item ? gEd->host->menuItemText(item) : std::string("Lattice Bender");
  g_menu_append(window, label.c_str(), "app.panel");
  g_menu_append(window, "Panel in Own Window", "app.panelwindow");
  g_menu_append_submenu(bar, "Window", G_MENU_MODEL(window));
  g_object_unref(file);
  g_object_unref(edit);
  g_object_unref(viewMenu);
  g_object_unref(window);
  return G_MENU_MODEL(bar);
}

void TogglePanel() {
  AIMenuItemHandle item = gEd->host->pluginMenuItem();
  if (item) gEd->host->sendMenuGo(item);
  SyncPanelVisibility();
}

void SelectEverything() {
  BeginChange(true);
  for (ArtObject* a : Doc().allArt()) {
    if ((a->type != kMeshArt && a->type != kPathArt) || a->hidden() || a->locked()) continue;
    if (!a->selected() || (a->mesh && !a->mesh->isSelectionFull())) gEd->touched = true;
    Doc().setSelected(a, true);
    if (a->mesh) a->mesh->selectAll();
  }
  EndChange();
}

void DeselectEverything() {
  BeginChange(true);
  gEd->touched = lb::editor::deselectAll(Doc());
  EndChange();
}

// Plain +, - and Space belong to the editor window only (not to the text
// fields of its dialogs), so they are read here rather than as accelerators.
gboolean KeyPressed(GtkEventControllerKey*, guint keyval, guint, GdkModifierType mods, gpointer) {
  if (keyval == GDK_KEY_space) gEd->spaceDown = true;
  if (mods & (GDK_CONTROL_MASK | GDK_ALT_MASK)) return FALSE;
  if (keyval == GDK_KEY_plus || keyval == GDK_KEY_equal || keyval == GDK_KEY_KP_Add) {
    Zoom(1.25);
    return TRUE;
  }
  if (keyval == GDK_KEY_minus || keyval == GDK_KEY_KP_Subtract) {
    Zoom(0.8);
    return TRUE;
  }
  return FALSE;
}

void KeyReleased(GtkEventControllerKey*, guint keyval, guint, GdkModifierType, gpointer) {
  if (keyval == GDK_KEY_space) gEd->spaceDown = false;
}

gboolean CloseRequested(GtkWindow*, gpointer) {
  if (gEd->closeConfirmed || !gEd->modified) return FALSE;
  ConfirmDiscard(CloseNow);
  return TRUE;
}

void Activate(GtkApplication* app, gpointer) {
  if (gEd->win) return;
  gEd->win = GTK_WINDOW(gtk_application_window_new(app));
  gtk_window_set_default_size(gEd->win, 1000, 700);

  AddAction("open", +[] { ConfirmDiscard(+[] { ChooseFile(false); }); });
  AddAction("save", Save);
  AddAction("saveas", +[] { ChooseFile(true); });
  AddAction("import", Import);
  AddAction("export", Export);
  AddAction("quit", +[] { gtk_window_close(gEd->win); });
  AddAction("undo", Undo);
  AddAction("redo", Redo);
  AddAction("selectall", SelectEverything);
  AddAction("deselect", DeselectEverything);
  AddAction("zoomin", +[] { Zoom(1.25); });
  AddAction("zoomout", +[] { Zoom(0.8); });
  AddAction("fit", +[] {
    gEd->fitted = false;
    gtk_widget_queue_draw(gEd->canvas);
  });
  AddAction("actual", +[] { Zoom(1 / gEd->view.zoom()); });
  AddAction("panel", TogglePanel);
  {
    // A check item: the panel in its own window, or docked.
    GSimpleAction* a = g_simple_action_new_stateful("panelwindow", nullptr, g_variant_new_boolean(FALSE));
    g_signal_connect(a, "activate", G_CALLBACK(+[](GSimpleAction* action, GVariant*, gpointer) {
                       GVariant* state = g_action_get_state(G_ACTION(action));
                       const bool windowed = !g_variant_get_boolean(state);
                       g_variant_unref(state);
                       g_simple_action_set_state(action, g_variant_new_boolean(windowed));
                       SetPanelWindowed(windowed);
                     }),
                     nullptr);
    g_action_map_add_action(G_ACTION_MAP(app), G_ACTION(a));
    g_object_unref(a);
  }
  struct Accel {
    const char* action;
    const char* keys[3];
  };
  const Accel accels[] = {{"app.open", {"<Control>o"}},
                          {"app.save", {"<Control>s"}},
                          {"app.saveas", {"<Control><Shift>s"}},
                          {"app.import", {"<Control>i"}},
                          {"app.panelwindow", {"<Control><Shift>p"}},
                          {"app.export", {"<Control>e"}},
                          {"app.quit", {"<Control>q"}},
                          {"app.undo", {"<Control>z"}},
                          {"app.redo", {"<Control><Shift>z", "<Control>y"}},
                          {"app.selectall", {"<Control>a"}},
                          {"app.deselect", {"<Control><Shift>a"}},
                          {"app.zoomin", {"<Control>plus", "<Control>equal"}},
                          {"app.zoomout", {"<Control>minus"}},
                          {"app.fit", {"<Control>0"}},
                          {"app.actual", {"<Control>1"}}};
  for (const Accel& a : accels) {
    const char* keys[4] = {a.keys[0], a.keys[1], a.keys[2], nullptr};
    gtk_application_set_accels_for_action(app, a.action, keys);
  }

  GMenuModel* menu = BuildMenu();
  GtkWidget* bar = gtk_popover_menu_bar_new_from_model(menu);
  g_object_unref(menu);

  gEd->canvas = gtk_drawing_area_new();
  gtk_widget_set_hexpand(gEd->canvas, TRUE);
  gtk_widget_set_vexpand(gEd->canvas, TRUE);
  gtk_widget_set_focusable(gEd->canvas, TRUE);
  gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(gEd->canvas), DrawCanvas, nullptr, nullptr);
  GtkGesture* drag = gtk_gesture_drag_new();
  gtk_gesture_single_set_button(GTK_GESTURE_SINGLE(drag), 0);
  g_signal_connect(drag, "drag-begin", G_CALLBACK(CanvasPressed), nullptr);
  g_signal_connect(drag, "drag-update", G_CALLBACK(CanvasDragged), nullptr);
  g_signal_connect(drag, "drag-end", G_CALLBACK(CanvasReleased), nullptr);
  gtk_widget_add_controller(gEd->canvas, GTK_EVENT_CONTROLLER(drag));
  GtkEventController* scroll = gtk_event_controller_scroll_new(GTK_EVENT_CONTROLLER_SCROLL_BOTH_AXES);
  g_signal_connect(scroll, "scroll", G_CALLBACK(CanvasScrolled), nullptr);
  gtk_widget_add_controller(gEd->canvas, scroll);

  int pw = 227, ph = 414;
  if (gEd->panelWnd) {
    RECT r{};
    GetClientRect(gEd->panelWnd, &r);
    pw = r.right - r.left;
    ph = r.bottom - r.top;
  }
  gEd->panel = gtk_drawing_area_new();
  gtk_drawing_area_set_content_width(GTK_DRAWING_AREA(gEd->panel), pw);
  gtk_drawing_area_set_content_height(GTK_DRAWING_AREA(gEd->panel), ph);
  gtk_widget_set_valign(gEd->panel, GTK_ALIGN_START);
  gtk_widget_set_hexpand(gEd->panel, FALSE);
  gtk_drawing_area_set_draw_func(GTK_DRAWING_AREA(gEd->panel), DrawPanel, nullptr, nullptr);
  GtkEventController* motion = gtk_event_controller_motion_new();
  g_signal_connect(motion, "motion", G_CALLBACK(PanelMotion), nullptr);
  g_signal_connect(motion, "leave", G_CALLBACK(PanelLeave), nullptr);
  gtk_widget_add_controller(gEd->panel, motion);
  GtkGesture* click = gtk_gesture_click_new();
  g_signal_connect(click, "pressed", G_CALLBACK(PanelPressed), nullptr);
  g_signal_connect(click, "released", G_CALLBACK(PanelReleased), nullptr);
  g_signal_connect(click, "cancel", G_CALLBACK(PanelCancelled), nullptr);
  gtk_widget_add_controller(gEd->panel, GTK_EVENT_CONTROLLER(click));

  GtkEventController* keys = gtk_event_controller_key_new();
  g_signal_connect(keys, "key-pressed", G_CALLBACK(KeyPressed), nullptr);
  g_signal_connect(keys, "key-released", G_CALLBACK(KeyReleased), nullptr);
  gtk_widget_add_controller(GTK_WIDGET(gEd->win), keys);

  GtkWidget* row = gEd->row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
  gtk_box_append(GTK_BOX(row), gEd->canvas);
  gtk_box_append(GTK_BOX(row), gEd->panel);
  GtkWidget* column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
  gtk_box_append(GTK_BOX(column), bar);
  gtk_box_append(GTK_BOX(column), row);
  gtk_window_set_child(gEd->win, column);
  g_signal_connect(gEd->win, "close-request", G_CALLBACK(CloseRequested), nullptr);
  // The panel's own window goes with the editor's.
  g_signal_connect(gEd->win, "destroy", G_CALLBACK(+[](GtkWidget*, gpointer) {
                     if (!gEd->panelWin) return;
                     GtkWindow* w = gEd->panelWin;
                     gEd->panelWin = nullptr;
                     gtk_window_destroy(w);
                   }),
                   nullptr);
  g_signal_connect_after(gEd->win, "map", G_CALLBACK(+[](GtkWidget*, gpointer) { WriteState(); }), nullptr);

  SyncPanelVisibility();
  UpdateTitle();
  gtk_window_present(gEd->win);
}

}  // namespace

int main(int argc, char** argv) {
  std::string file;
  for (int i = 1; i < argc; ++i) {
    const std::string a = argv[i];
    if (a == "-h" || a == "--help") {
      std::printf("usage: latticebender-edit [FILE.lbdoc]\n");
      return 0;
    }
    if (!a.empty() && a[0] == '-') {
      std::fprintf(stderr, "latticebender edit: unknown option '%s'\n", a.c_str());
      return 2;
    }
    if (!file.empty()) {
      std::fprintf(stderr, "latticebender edit: one document at a time, not '%s' too\n", a.c_str());
      return 2;
    }
    file = a;
  }
  // GTK holds cairo and fontconfig fonts past the end of main.
  lbwinKeepFontCachesAtExit();
  Editor ed;
  gEd = &ed;
  if (const char* s = std::getenv("LB_EDITOR_STATE")) ed.statePath = s;
  std::unique_ptr<lb::host::Document> doc;
  if (!file.empty()) {
    try {
      doc = lb::io::readDocumentFile(file);
    } catch (const std::exception& e) {
      const std::string what = e.what();
      std::fprintf(stderr, "latticebender edit: %s\n",
                   (what.find(file) == std::string::npos ? file + ": " + what : what).c_str());
      return 3;
    }
    ed.path = file;
  }
  if (!gtk_init_check()) {
    std::fprintf(stderr, "latticebender edit: cannot open a display\n");
    return 4;
  }
  try {
    ed.host = std::make_unique<lb::host::Host>(std::move(doc));
    ed.host->setAlertSink([](const std::string& text) {
      std::printf("%s\n", text.c_str());
      std::fflush(stdout);
      gEd->alerts.push_back(text);
    });
    ed.host->loadPlugin();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "latticebender edit: %s\n", e.what());
    return 4;
  }
  ed.panelWnd = lb::host::currentPanelWindow();
  // The panel opens with the editor, as its menu item shows it.
  const lb::host::PanelInfo* p = lb::host::currentPanel();
  if (p && !p->shown && ed.host->pluginMenuItem()) ed.host->sendMenuGo(ed.host->pluginMenuItem());
  if (ed.panelWnd) lbwinPaint(ed.panelWnd);
  ed.snapshot = Doc().clone();

  ed.app = gtk_application_new("org.latticebender.Editor", G_APPLICATION_NON_UNIQUE);
  g_signal_connect(ed.app, "activate", G_CALLBACK(Activate), nullptr);
  char* args[] = {argv[0], nullptr};
  const int status = g_application_run(G_APPLICATION(ed.app), 1, args);
  g_object_unref(ed.app);
  ed.host->shutdownPlugin();
  ed.host.reset();
  gEd = nullptr;
  return status;
}
