// Draws the panel's pictures and writes them into the directory given on
// the command line:
//   - one 32 x 32 picture per command button (NAME.bmp, 32-bit BMP with
//     straight alpha), plus the spare IMG_000;
//   - the two 16 x 16 checkbox icons (opaque 32-bit BMP);
//   - the panel logos as PNG, light ("W") and dark ("D") variants at
//     23, 46 and 35 pixels.
//
// The pictures share one small visual vocabulary so they read as a family:
// a grey mesh grid with curved lines, nodes as small squares (filled blue
// when selected), colour swatches for node colours, green arrows for
// motion and red marks for removal.
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

constexpr double kPi = 3.14159265358979323846;

// ---- Palette ---------------------------------------------------------------
struct Rgb {
  double r, g, b;
};
constexpr Rgb kGrid{0.35, 0.38, 0.42};
constexpr Rgb kNode{0.15, 0.15, 0.15};
constexpr Rgb kSel{0.10, 0.35, 0.90};
constexpr Rgb kArrow{0.05, 0.55, 0.20};
constexpr Rgb kRemove{0.85, 0.10, 0.10};
constexpr Rgb kPath{0.75, 0.35, 0.05};
constexpr Rgb kHandle{0.55, 0.20, 0.70};
constexpr Rgb kWhite{1, 1, 1};
constexpr Rgb kSwatch[] = {{0.95, 0.25, 0.20}, {1.00, 0.75, 0.10}, {0.20, 0.70, 0.30},
                           {0.20, 0.45, 0.95}, {0.60, 0.30, 0.80}, {0.10, 0.75, 0.80}};

void Src(cairo_t* cr, Rgb c, double a = 1.0) { cairo_set_source_rgba(cr, c.r, c.g, c.b, a); }

// ---- Drawing vocabulary ----------------------------------------------------

// A mesh grid of nx x ny cells over the rectangle, its inner lines gently
// curved so it reads as a gradient mesh rather than a table.
void Grid(cairo_t* cr, double x, double y, double w, double h, int nx, int ny, double bend = 1.5,
          Rgb c = kGrid, double lw = 1.0) {
  Src(cr, c);
  cairo_set_line_width(cr, lw);
  // Straight lines sit on pixel centres so that they stay sharp.
  auto snap = [](double v) { return std::floor(v) + 0.5; };
  x = snap(x);
  y = snap(y);
  w = std::round(w);
  h = std::round(h);
  for (int i = 0; i <= nx; ++i) {
    double px = snap(x + w * i / nx);
    double b = (i == 0 || i == nx) ? 0 : bend;
    cairo_move_to(cr, px, y);
    cairo_curve_to(cr, px + b, y + h / 3, px - b, y + 2 * h / 3, px, y + h);
  }
  for (int j = 0; j <= ny; ++j) {
    double py = snap(y + h * j / ny);
    double b = (j == 0 || j == ny) ? 0 : bend;
    cairo_move_to(cr, x, py);
    cairo_curve_to(cr, x + w / 3, py - b, x + 2 * w / 3, py + b, x + w, py);
  }
  cairo_stroke(cr);
}

// A node: a small square, outlined, filled when selected.
void Node(cairo_t* cr, double cx, double cy, bool selected, double s = 4.0) {
  const double half = std::round(s / 2);
  cairo_rectangle(cr, std::floor(cx) - half + 0.5, std::floor(cy) - half + 0.5, 2 * half, 2 * half);
  Src(cr, selected ? kSel : kWhite);
  cairo_fill_preserve(cr);
  Src(cr, selected ? kSel : kNode);
  cairo_set_line_width(cr, 1.0);
  cairo_stroke(cr);
}

// A colour swatch with a thin dark edge.
void Swatch(cairo_t* cr, double x, double y, double w, double h, Rgb c, double a = 1.0) {
  cairo_rectangle(cr, std::floor(x) + 0.5, std::floor(y) + 0.5, std::round(w), std::round(h));
  Src(cr, c, a);
  cairo_fill_preserve(cr);
  Src(cr, kNode, 0.8);
  cairo_set_line_width(cr, 1.0);
  cairo_stroke(cr);
}

// A round colour dot (a node's colour).
void Dot(cairo_t* cr, double cx, double cy, double r, Rgb c) {
  cairo_arc(cr, cx, cy, r, 0, 2 * kPi);
  Src(cr, c);
  cairo_fill_preserve(cr);
  Src(cr, kNode, 0.8);
  cairo_set_line_width(cr, 0.8);
  cairo_stroke(cr);
}

// An arrow head at (x, y) pointing along angle a.
void Head(cairo_t* cr, double x, double y, double a, double size, Rgb c) {
  Src(cr, c);
  cairo_move_to(cr, x, y);
  cairo_line_to(cr, x - size * std::cos(a - 0.5), y - size * std::sin(a - 0.5));
  cairo_line_to(cr, x - size * std::cos(a + 0.5), y - size * std::sin(a + 0.5));
  cairo_close_path(cr);
  cairo_fill(cr);
}

// A straight arrow from (x0, y0) to (x1, y1).
void Arrow(cairo_t* cr, double x0, double y0, double x1, double y1, Rgb c = kArrow,
           double lw = 1.6, double head = 4.5) {
  double a = std::atan2(y1 - y0, x1 - x0);
  Src(cr, c);
  cairo_set_line_width(cr, lw);
  cairo_move_to(cr, x0, y0);
  cairo_line_to(cr, x1 - head * 0.6 * std::cos(a), y1 - head * 0.6 * std::sin(a));
  cairo_stroke(cr);
  Head(cr, x1, y1, a, head, c);
}

// A circular arrow around (cx, cy) from angle a0 to a1 (radians, clockwise
// on screen when a1 > a0).
void ArcArrow(cairo_t* cr, double cx, double cy, double r, double a0, double a1, Rgb c = kArrow,
              double lw = 1.6) {
  Src(cr, c);
  cairo_set_line_width(cr, lw);
  if (a1 > a0)
    cairo_arc(cr, cx, cy, r, a0, a1 - 0.35);
  else
    cairo_arc_negative(cr, cx, cy, r, a0, a1 + 0.35);
  cairo_stroke(cr);
  double ex = cx + r * std::cos(a1), ey = cy + r * std::sin(a1);
  double tangent = a1 + (a1 > a0 ? kPi / 2 : -kPi / 2);
  Head(cr, ex, ey, tangent, 5.0, c);
}

// A handle: a line from the node to a round end.
void Handle(cairo_t* cr, double x0, double y0, double x1, double y1) {
  Src(cr, kHandle);
  cairo_set_line_width(cr, 1.0);
  cairo_move_to(cr, x0, y0);
  cairo_line_to(cr, x1, y1);
  cairo_stroke(cr);
  cairo_arc(cr, x1, y1, 1.6, 0, 2 * kPi);
  cairo_fill(cr);
}

// A small letter drawn with lines (no font needed): I, J, + and -.
void Glyph(cairo_t* cr, char ch, double x, double y, double s, Rgb c = kNode) {
  Src(cr, c);
  cairo_set_line_width(cr, 1.4);
  switch (ch) {
    case 'I':
      cairo_move_to(cr, x, y);
      cairo_line_to(cr, x, y + s);
      break;
    case 'J':
      cairo_move_to(cr, x + s * 0.5, y);
      cairo_line_to(cr, x + s * 0.5, y + s * 0.8);
      cairo_curve_to(cr, x + s * 0.5, y + s * 1.05, x, y + s * 1.05, x, y + s * 0.75);
      break;
    case '+':
      cairo_move_to(cr, x - s / 2, y);
      cairo_line_to(cr, x + s / 2, y);
      cairo_move_to(cr, x, y - s / 2);
      cairo_line_to(cr, x, y + s / 2);
      break;
    case '-':
      cairo_move_to(cr, x - s / 2, y);
      cairo_line_to(cr, x + s / 2, y);
      break;
    default: break;
  }
  cairo_stroke(cr);
}

// A free path (orange curve).
void PathCurve(cairo_t* cr, double x0, double y0, double c1x, double c1y, double c2x, double c2y,
               double x1, double y1, double lw = 1.6) {
  Src(cr, kPath);
  cairo_set_line_width(cr, lw);
  cairo_move_to(cr, x0, y0);
  cairo_curve_to(cr, c1x, c1y, c2x, c2y, x1, y1);
  cairo_stroke(cr);
}

// A mesh filled with a soft four-corner colour blend, then its grid.
void ColorMesh(cairo_t* cr, double x, double y, double w, double h, int nx, int ny, Rgb a, Rgb b,
               Rgb c, Rgb d) {
  cairo_pattern_t* m = cairo_pattern_create_mesh();
  cairo_mesh_pattern_begin_patch(m);
  cairo_mesh_pattern_move_to(m, x, y);
  cairo_mesh_pattern_line_to(m, x + w, y);
  cairo_mesh_pattern_line_to(m, x + w, y + h);
  cairo_mesh_pattern_line_to(m, x, y + h);
  cairo_mesh_pattern_set_corner_color_rgb(m, 0, a.r, a.g, a.b);
  cairo_mesh_pattern_set_corner_color_rgb(m, 1, b.r, b.g, b.b);
  cairo_mesh_pattern_set_corner_color_rgb(m, 2, c.r, c.g, c.b);
  cairo_mesh_pattern_set_corner_color_rgb(m, 3, d.r, d.g, d.b);
  cairo_mesh_pattern_end_patch(m);
  cairo_set_source(cr, m);
  cairo_rectangle(cr, x, y, w, h);
  cairo_fill(cr);
  cairo_pattern_destroy(m);
  Grid(cr, x, y, w, h, nx, ny, 1.0, kGrid, 0.8);
}

using Painter = std::function<void(cairo_t*)>;

// ---- The command pictures (32 x 32) ------------------------------------------

// 131: mesh segments become separate paths.
void SetOfPaths(cairo_t* cr) {
  Grid(cr, 3, 3, 16, 16, 2, 2, 1.5, kGrid, 0.8);
  Arrow(cr, 14, 14, 20, 20, kArrow, 1.4, 4);
  PathCurve(cr, 13, 22, 18, 19, 24, 25, 29, 22, 1.6);
  PathCurve(cr, 13, 28, 18, 25, 24, 31, 29, 28, 1.6);
  PathCurve(cr, 22, 8, 25, 11, 26, 14, 29, 16, 1.6);
}

// 132: axes and corner nodes.
void AxesAndNodes(cairo_t* cr) {
  Grid(cr, 6, 6, 20, 20, 3, 3, 1.0, {0.7, 0.7, 0.72}, 0.8);
  Arrow(cr, 6, 26, 29, 26, kRemove, 1.6, 4.5);  // I axis
  Arrow(cr, 6, 26, 6, 2, kArrow, 1.6, 4.5);     // J axis
  Node(cr, 6, 26, true, 5);
  Node(cr, 26, 26, false, 4);
  Node(cr, 26, 6, false, 4);
  Node(cr, 6, 6, false, 4);
}

// 133: a corner node moves to a neighbouring vertex.
void MoveCornerNode(cairo_t* cr) {
  Grid(cr, 4, 4, 24, 24, 3, 3);
  Node(cr, 4, 4, true, 5);
  Node(cr, 4, 12, false, 4);
  ArcArrow(cr, 9, 8, 7, -kPi / 2 + 0.2, kPi / 2 - 0.2, kArrow, 1.4);
}

// 134 / 135: knots and vertices convert into each other.
void KnotsVertices(cairo_t* cr, bool toVertices) {
  Src(cr, kGrid);
  cairo_set_line_width(cr, 1.2);
  cairo_move_to(cr, 2, 10);
  cairo_curve_to(cr, 10, 3, 20, 17, 30, 10);
  cairo_move_to(cr, 2, 26);
  cairo_curve_to(cr, 10, 19, 20, 33, 30, 26);
  cairo_stroke(cr);
  Node(cr, 2.5, 10, false, 3.5);
  Node(cr, 29.5, 10, false, 3.5);
  Node(cr, 2.5, 26, false, 3.5);
  Node(cr, 29.5, 26, false, 3.5);
  // The knot: a small hollow circle; the vertex: a square.
  auto knot = [&](double x, double y) {
    cairo_arc(cr, x, y, 2.0, 0, 2 * kPi);
    Src(cr, kWhite);
    cairo_fill_preserve(cr);
    Src(cr, kNode);
    cairo_set_line_width(cr, 1.0);
    cairo_stroke(cr);
  };
  if (toVertices) {
    knot(16, 10);
    Node(cr, 16, 26, true, 4.5);
  } else {
    Node(cr, 16, 10, true, 4.5);
    knot(16, 26);
  }
  Arrow(cr, 16, 14, 16, 22, kArrow, 1.5, 4);
}

// 136: colours shift one node along a line.
void ColorShift(cairo_t* cr) {
  for (int k = 0; k < 4; ++k) Swatch(cr, 3 + 7 * k, 5, 5, 5, kSwatch[k]);
  for (int k = 0; k < 4; ++k) Swatch(cr, 3 + 7 * k, 22, 5, 5, kSwatch[(k + 3) % 4]);
  Arrow(cr, 5, 15, 28, 15, kArrow, 1.6, 4.5);
}

// 137: colours mirror across the middle of a line.
void ColorReflect(cairo_t* cr) {
  for (int k = 0; k < 4; ++k) Swatch(cr, 3 + 7 * k, 5, 5, 5, kSwatch[k]);
  for (int k = 0; k < 4; ++k) Swatch(cr, 3 + 7 * k, 22, 5, 5, kSwatch[3 - k]);
  Src(cr, kNode);
  cairo_set_line_width(cr, 1.0);
  std::vector<double> dash{2.0, 1.5};
  cairo_set_dash(cr, dash.data(), 2, 0);
  cairo_move_to(cr, 16, 2);
  cairo_line_to(cr, 16, 30);
  cairo_stroke(cr);
  cairo_set_dash(cr, nullptr, 0, 0);
  Arrow(cr, 13, 16, 5, 16, kArrow, 1.4, 4);
  Arrow(cr, 19, 16, 27, 16, kArrow, 1.4, 4);
}

// 138: colours rotate around the region's border.
void ColorRotate(cairo_t* cr) {
  Grid(cr, 5, 5, 22, 22, 2, 2, 1.0, kGrid, 0.8);
  Dot(cr, 5, 5, 3, kSwatch[0]);
  Dot(cr, 27, 5, 3, kSwatch[1]);
  Dot(cr, 27, 27, 3, kSwatch[2]);
  Dot(cr, 5, 27, 3, kSwatch[3]);
  ArcArrow(cr, 16, 16, 7, -kPi * 0.9, kPi * 0.5, kArrow, 1.6);
}

// 139: colours of one mesh are cloned onto another.
void ColorClone(cairo_t* cr) {
  ColorMesh(cr, 2, 2, 14, 14, 2, 2, kSwatch[0], kSwatch[1], kSwatch[3], kSwatch[2]);
  Grid(cr, 16, 16, 14, 14, 2, 2, 1.0, kGrid, 0.8);
  Arrow(cr, 12, 12, 23, 23, kArrow, 1.8, 5);
}

// 140: a mesh cut in two.
void Split(cairo_t* cr) {
  Grid(cr, 2, 6, 12, 20, 2, 3, 1.0);
  Grid(cr, 18, 6, 12, 20, 2, 3, 1.0);
  Src(cr, kRemove);
  cairo_set_line_width(cr, 1.4);
  std::vector<double> dash{2.0, 2.0};
  cairo_set_dash(cr, dash.data(), 2, 0);
  cairo_move_to(cr, 16, 1);
  cairo_line_to(cr, 16, 31);
  cairo_stroke(cr);
  cairo_set_dash(cr, nullptr, 0, 0);
}

// 141: a one-cell mesh made from a path.
void OneCellMesh(cairo_t* cr) {
  Src(cr, kPath);
  cairo_set_line_width(cr, 1.6);
  cairo_move_to(cr, 3, 14);
  cairo_curve_to(cr, 3, 3, 14, 3, 14, 8);
  cairo_curve_to(cr, 14, 14, 3, 16, 3, 14);
  cairo_stroke(cr);
  Arrow(cr, 12, 14, 18, 20, kArrow, 1.4, 4);
  ColorMesh(cr, 15, 15, 15, 15, 1, 1, kSwatch[1], kSwatch[0], kSwatch[4], kSwatch[3]);
  Node(cr, 15, 15, false, 3);
  Node(cr, 30, 15, false, 3);
  Node(cr, 30, 30, false, 3);
  Node(cr, 15, 30, false, 3);
}

// 142: a brush mesh grid (a group of plain paths) made from a mesh.
void BmgCreate(cairo_t* cr) {
  ColorMesh(cr, 2, 2, 14, 14, 2, 2, kSwatch[0], kSwatch[1], kSwatch[3], kSwatch[2]);
  Arrow(cr, 12, 12, 19, 19, kArrow, 1.4, 4);
  Grid(cr, 16, 16, 14, 14, 2, 2, 1.2, kPath, 1.2);
}

// 143: a brush mesh grid converted back into a mesh.
void BmgToMesh(cairo_t* cr) {
  Grid(cr, 2, 2, 14, 14, 2, 2, 1.2, kPath, 1.2);
  Arrow(cr, 12, 12, 19, 19, kArrow, 1.4, 4);
  ColorMesh(cr, 16, 16, 14, 14, 2, 2, kSwatch[0], kSwatch[1], kSwatch[3], kSwatch[2]);
}

// 144: handles of a node made smooth (collinear).
void HandlesSmooth(cairo_t* cr) {
  Src(cr, kGrid);
  cairo_set_line_width(cr, 1.2);
  cairo_move_to(cr, 2, 24);
  cairo_curve_to(cr, 8, 24, 10, 14, 16, 14);
  cairo_curve_to(cr, 22, 14, 24, 24, 30, 24);
  cairo_stroke(cr);
  Handle(cr, 16, 14, 7, 14);
  Handle(cr, 16, 14, 25, 14);
  Node(cr, 16, 14, true, 4.5);
  Node(cr, 2.5, 24, false, 3);
  Node(cr, 29.5, 24, false, 3);
}

// 145 / 146: handles set to one third or to zero.
void HandlesThirdOrZero(cairo_t* cr, bool zero) {
  Src(cr, kGrid);
  cairo_set_line_width(cr, 1.2);
  if (zero) {
    cairo_move_to(cr, 4, 24);
    cairo_line_to(cr, 28, 8);
  } else {
    cairo_move_to(cr, 4, 24);
    cairo_curve_to(cr, 12, 24, 20, 8, 28, 8);
  }
  cairo_stroke(cr);
  if (!zero) {
    Handle(cr, 4, 24, 12, 24);
    Handle(cr, 28, 8, 20, 8);
  }
  Node(cr, 4, 24, true, 4.5);
  Node(cr, 28, 8, true, 4.5);
  // "1/3" or "0" as strokes in the free corner.
  Src(cr, kNode);
  cairo_set_line_width(cr, 1.3);
  if (zero) {
    cairo_save(cr);
    cairo_translate(cr, 8, 8.5);
    cairo_scale(cr, 2.5, 4);
    cairo_arc(cr, 0, 0, 1, 0, 2 * kPi);
    cairo_restore(cr);
    cairo_stroke(cr);
  } else {
    cairo_move_to(cr, 4, 6);
    cairo_line_to(cr, 6, 4);
    cairo_line_to(cr, 6, 12);
    cairo_move_to(cr, 12, 3);
    cairo_line_to(cr, 8, 13);
    cairo_move_to(cr, 13, 5);
    cairo_curve_to(cr, 14, 3, 18, 3, 17, 6);
    cairo_curve_to(cr, 17, 8, 15, 8, 15, 8);
    cairo_curve_to(cr, 18, 8, 18, 12, 16, 12.5);
    cairo_curve_to(cr, 14, 13, 13, 12, 13, 11.5);
    cairo_stroke(cr);
  }
}

// 147: nodes aligned on one horizontal line (tooltip: vertical alignment).
void AlignHor(cairo_t* cr) {
  double ys[] = {8, 22, 13, 26};
  for (int k = 0; k < 4; ++k) {
    double x = 5 + 7.3 * k;
    Src(cr, kGrid, 0.6);
    cairo_set_line_width(cr, 0.8);
    cairo_move_to(cr, x, ys[k]);
    cairo_line_to(cr, x, 16);
    cairo_stroke(cr);
    Node(cr, x, ys[k], false, 3);
    Node(cr, x, 16, true, 4);
  }
  Src(cr, kArrow);
  cairo_set_line_width(cr, 1.0);
  cairo_move_to(cr, 1, 16);
  cairo_line_to(cr, 31, 16);
  cairo_stroke(cr);
}

// 148: nodes aligned on one vertical line (tooltip: horizontal alignment).
void AlignVert(cairo_t* cr) {
  double xs[] = {8, 22, 13, 26};
  for (int k = 0; k < 4; ++k) {
    double y = 5 + 7.3 * k;
    Src(cr, kGrid, 0.6);
    cairo_set_line_width(cr, 0.8);
    cairo_move_to(cr, xs[k], y);
    cairo_line_to(cr, 16, y);
    cairo_stroke(cr);
    Node(cr, xs[k], y, false, 3);
    Node(cr, 16, y, true, 4);
  }
  Src(cr, kArrow);
  cairo_set_line_width(cr, 1.0);
  cairo_move_to(cr, 16, 1);
  cairo_line_to(cr, 16, 31);
  cairo_stroke(cr);
}

// 149: one colour spreads along a line.
void ColorSpread(cairo_t* cr) {
  Swatch(cr, 3, 5, 5, 5, kSwatch[0]);
  for (int k = 1; k < 4; ++k) Swatch(cr, 3 + 7 * k, 5, 5, 5, kSwatch[3]);
  for (int k = 0; k < 4; ++k) Swatch(cr, 3 + 7 * k, 22, 5, 5, kSwatch[0]);
  Arrow(cr, 5, 15, 28, 15, kArrow, 1.6, 4.5);
}

// 150: every vertex of the selected region selected.
void SelRegion(cairo_t* cr) {
  Grid(cr, 3, 3, 26, 26, 3, 3);
  for (int i = 0; i <= 3; ++i)
    for (int j = 0; j <= 3; ++j) {
      bool in = i >= 1 && j >= 1 && i <= 2 && j <= 2;
      Node(cr, 3 + 26.0 * i / 3, 3 + 26.0 * j / 3, in || (i == 1 && j == 1), 4);
    }
  Src(cr, kSel, 0.25);
  cairo_rectangle(cr, 3 + 26.0 / 3, 3 + 26.0 / 3, 26.0 / 3, 26.0 / 3);
  cairo_fill(cr);
}

// 151: the perimeter of the region selected, its inside not.
void SelPerim(cairo_t* cr) {
  Grid(cr, 3, 3, 26, 26, 4, 4, 1.0);
  for (int i = 0; i <= 4; ++i)
    for (int j = 0; j <= 4; ++j) {
      bool inRegion = i >= 1 && i <= 3 && j >= 1 && j <= 3;
      bool border = inRegion && (i == 1 || i == 3 || j == 1 || j == 3);
      if (inRegion) Node(cr, 3 + 6.5 * i, 3 + 6.5 * j, border, 3.5);
    }
}

// 152: two meshes sewn by moving the vertices of one side onto the other.
void SewMeshMove(cairo_t* cr) {
  Grid(cr, 2, 4, 9, 24, 1, 3, 1.0);
  Grid(cr, 21, 4, 9, 24, 1, 3, 1.0);
  for (int j = 0; j <= 3; ++j) Arrow(cr, 20, 4.5 + 8.0 * j, 12.5, 4.5 + 8.0 * j, kArrow, 1.5, 4);
}

// 153: two meshes sewn by adding a row of cells between them.
void SewMeshAdd(cairo_t* cr) {
  Grid(cr, 2, 4, 9, 24, 1, 3, 1.0);
  Grid(cr, 21, 4, 9, 24, 1, 3, 1.0);
  // The new cells, tinted green.
  cairo_rectangle(cr, 11.5, 4.5, 10, 24);
  Src(cr, kArrow, 0.25);
  cairo_fill(cr);
  Src(cr, kArrow);
  cairo_set_line_width(cr, 1.0);
  for (int j = 0; j <= 3; ++j) {
    cairo_move_to(cr, 11.5, 4.5 + 8.0 * j);
    cairo_line_to(cr, 21.5, 4.5 + 8.0 * j);
  }
  cairo_stroke(cr);
}

// 154: a pattern of colours repeated over the nodes.
void ColorPattern(cairo_t* cr) {
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j)
      Swatch(cr, 3 + 7 * i, 3 + 7 * j, 5, 5, kSwatch[((i % 2) + 2 * (j % 2)) % 4]);
  Src(cr, kSel);
  cairo_set_line_width(cr, 1.2);
  cairo_rectangle(cr, 1.5, 1.5, 14, 14);
  cairo_stroke(cr);
}

// 155: all vertices of the rows and columns that hold a selection.
void SelCross(cairo_t* cr) {
  Grid(cr, 3, 3, 26, 26, 4, 4, 1.0);
  for (int i = 0; i <= 4; ++i)
    for (int j = 0; j <= 4; ++j) {
      bool on = i == 2 || j == 1;
      if (on) Node(cr, 3 + 6.5 * i, 3 + 6.5 * j, true, 3.5);
    }
  Node(cr, 16, 9.5, true, 5.5);
}

// 156: the selected nodes shift by one along a line.
void SelShift(cairo_t* cr) {
  Grid(cr, 3, 10, 26, 12, 4, 1, 1.0);
  for (int i = 0; i <= 4; ++i) {
    Node(cr, 3 + 6.5 * i, 10, i == 1, 3.5);
    Node(cr, 3 + 6.5 * i, 22, i == 2, 3.5);
  }
  Arrow(cr, 9, 4, 18, 4, kArrow, 1.4, 4);
  Arrow(cr, 9, 28, 18, 28, kArrow, 1.4, 4);
}

// 157: mesh segments laid along a path.
void AlignPath(cairo_t* cr) {
  PathCurve(cr, 2, 26, 10, 6, 22, 6, 30, 26, 1.6);
  double pts[][2] = {{3.5, 23}, {9, 14.3}, {16, 11}, {23, 14.3}, {28.5, 23}};
  for (auto& p : pts) Node(cr, p[0], p[1], true, 3.5);
  Src(cr, kGrid);
  cairo_set_line_width(cr, 1.0);
  for (auto& p : pts) {
    cairo_move_to(cr, p[0], p[1] + 2);
    cairo_line_to(cr, p[0], 31);
  }
  cairo_stroke(cr);
}

// 158: colours taken from a raster image below.
void ColorCapture(cairo_t* cr) {
  // The picture: coloured pixels.
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j < 6; ++j) {
      Rgb c = kSwatch[(i + j) % 6];
      cairo_rectangle(cr, 2 + 3 * i, 12 + 3 * j, 3, 3);
      Src(cr, c, 0.85);
      cairo_fill(cr);
    }
  // An eyedropper.
  Src(cr, kNode);
  cairo_set_line_width(cr, 2.5);
  cairo_move_to(cr, 12, 20);
  cairo_line_to(cr, 24, 8);
  cairo_stroke(cr);
  cairo_set_line_width(cr, 4);
  cairo_move_to(cr, 23, 9);
  cairo_line_to(cr, 28, 4);
  cairo_stroke(cr);
  Dot(cr, 27, 22, 4, kSwatch[2]);
}

// 159: handles at right angles.
void Handles90(cairo_t* cr) {
  Src(cr, kGrid);
  cairo_set_line_width(cr, 1.0);
  cairo_move_to(cr, 3, 16);
  cairo_line_to(cr, 29, 16);
  cairo_move_to(cr, 16, 3);
  cairo_line_to(cr, 16, 29);
  cairo_stroke(cr);
  Handle(cr, 16, 16, 26, 16);
  Handle(cr, 16, 16, 16, 6);
  Src(cr, kRemove);
  cairo_set_line_width(cr, 1.0);
  cairo_rectangle(cr, 16, 11, 5, 5);
  cairo_stroke(cr);
  Node(cr, 16, 16, true, 4.5);
}

// 160: nodes or vertices selected.
void Sel(cairo_t* cr) {
  Grid(cr, 3, 3, 26, 26, 2, 2);
  for (int i = 0; i <= 2; ++i)
    for (int j = 0; j <= 2; ++j) Node(cr, 3 + 13 * i, 3 + 13 * j, true, 4);
  // Non-node vertices in the middle of segments stay clear.
  Node(cr, 9.5, 3, false, 3);
  Node(cr, 29, 22.5, false, 3);
}

// 161: docked meshes (or paths) joined into one.
void SewDocked(cairo_t* cr) {
  Grid(cr, 2, 2, 13, 13, 1, 1, 0);
  Grid(cr, 17, 2, 13, 13, 1, 1, 0);
  Grid(cr, 2, 17, 13, 13, 1, 1, 0);
  Grid(cr, 17, 17, 13, 13, 1, 1, 0);
  Arrow(cr, 6, 8, 12, 14, kArrow, 1.3, 3.5);
  Arrow(cr, 26, 8, 20, 14, kArrow, 1.3, 3.5);
  Arrow(cr, 6, 24, 12, 18, kArrow, 1.3, 3.5);
  Arrow(cr, 26, 24, 20, 18, kArrow, 1.3, 3.5);
}

// 162 / 163: grid density up or down.
void Density(cairo_t* cr, bool inc) {
  Grid(cr, 2, 5, 12, 22, inc ? 1 : 4, inc ? 2 : 4, 1.0, kGrid, 1.0);
  Arrow(cr, 15, 16, 19, 16, kArrow, 1.4, 3.5);
  Grid(cr, 20, 5, 10, 22, inc ? 4 : 1, inc ? 4 : 2, 1.0, kGrid, 1.0);
  Glyph(cr, inc ? '+' : '-', 17, 3.5, 5, inc ? kArrow : kRemove);
}

// 164: a row of cells added from a path along a mesh side.
void SewPath(cairo_t* cr) {
  Grid(cr, 2, 4, 14, 24, 2, 3, 1.0);
  PathCurve(cr, 28, 4, 24, 12, 32, 20, 27, 28, 1.8);
  Src(cr, kArrow);
  cairo_set_line_width(cr, 1.0);
  for (int j = 0; j <= 3; ++j) {
    cairo_move_to(cr, 16, 4 + 8.0 * j);
    cairo_line_to(cr, 27.5, 4 + 8.0 * j);
  }
  cairo_stroke(cr);
}

// 165: zero-width border rows added at (or removed from) the sides: a
// second line hugging each side, joined to it at every row.
void Sew0(cairo_t* cr) {
  Grid(cr, 8, 9, 16, 18, 2, 3, 1.0);
  Src(cr, kSel);
  cairo_set_line_width(cr, 1.0);
  for (double x : {5.5, 26.5}) {
    cairo_move_to(cr, x, 9.5);
    cairo_line_to(cr, x, 27.5);
  }
  for (int j = 0; j <= 3; ++j) {
    const double y = 9.5 + 6.0 * j;
    cairo_move_to(cr, 5.5, y);
    cairo_line_to(cr, 8.5, y);
    cairo_move_to(cr, 23.5, y);
    cairo_line_to(cr, 26.5, y);
  }
  cairo_stroke(cr);
  // "0" above the grid.
  Src(cr, kNode);
  cairo_set_line_width(cr, 1.3);
  cairo_save(cr);
  cairo_translate(cr, 16, 4.5);
  cairo_scale(cr, 2.0, 3.0);
  cairo_arc(cr, 0, 0, 1, 0, 2 * kPi);
  cairo_restore(cr);
  cairo_stroke(cr);
}

// 166: UV coordinates reset.
void UvReset(cairo_t* cr) {
  Grid(cr, 3, 3, 26, 26, 3, 3, 3.0, kGrid, 1.0);
  // "UV" on a white label in the upper left.
  cairo_rectangle(cr, 2, 2, 18, 13);
  Src(cr, kWhite);
  cairo_fill(cr);
  Src(cr, kArrow);
  cairo_set_line_width(cr, 1.8);
  cairo_move_to(cr, 4.5, 4);
  cairo_line_to(cr, 4.5, 10);
  cairo_curve_to(cr, 4.5, 14, 10.5, 14, 10.5, 10);
  cairo_line_to(cr, 10.5, 4);
  cairo_move_to(cr, 12.5, 4);
  cairo_line_to(cr, 15.5, 13);
  cairo_line_to(cr, 18.5, 4);
  cairo_stroke(cr);
  // A reset arrow on a white disc in the lower right.
  cairo_arc(cr, 22, 22, 8, 0, 2 * kPi);
  Src(cr, kWhite);
  cairo_fill(cr);
  ArcArrow(cr, 22, 22, 5, -kPi * 0.3, kPi * 1.3, kArrow, 1.6);
}

// 167: grid direction rotated or reflected.
void DirRotate(cairo_t* cr) {
  Grid(cr, 6, 6, 20, 20, 2, 2, 1.0, {0.7, 0.7, 0.72}, 1.0);
  Arrow(cr, 7, 25, 24, 25, kRemove, 1.5, 4);
  Arrow(cr, 7, 25, 7, 8, kArrow, 1.5, 4);
  ArcArrow(cr, 16, 16, 12, -kPi * 0.85, -kPi * 0.15, kSel, 1.5);
}

// Spare picture: an empty mesh cell.
void Spare(cairo_t* cr) { Grid(cr, 4, 4, 24, 24, 1, 1, 0); }

// ---- Checkbox icons (16 x 16, opaque) -----------------------------------------

void CbColor(cairo_t* cr) {
  Src(cr, {0.82, 0.82, 0.82});
  cairo_paint(cr);
  Swatch(cr, 1.5, 1.5, 6, 6, kSwatch[0]);
  Swatch(cr, 8.5, 1.5, 6, 6, kSwatch[2]);
  Swatch(cr, 1.5, 8.5, 6, 6, kSwatch[3]);
  Swatch(cr, 8.5, 8.5, 6, 6, kSwatch[1]);
}

void CbOpacity(cairo_t* cr) {
  Src(cr, {0.82, 0.82, 0.82});
  cairo_paint(cr);
  // A checkerboard seen through a half-transparent blue square.
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 4; ++j) {
      cairo_rectangle(cr, 1 + 3.5 * i, 1 + 3.5 * j, 3.5, 3.5);
      Src(cr, (i + j) % 2 ? kWhite : Rgb{0.55, 0.55, 0.55});
      cairo_fill(cr);
    }
  Swatch(cr, 4.5, 4.5, 10, 10, kSwatch[3], 0.55);
}

// ---- Logos ----------------------------------------------------------------------------

// The panel logo: a bent 2 x 2 mesh with coloured corner nodes, drawn with
// white lines (the "W" logo) or dark lines (the "D" logo).
void Logo(cairo_t* cr, double size, bool white) {
  cairo_scale(cr, size / 23.0, size / 23.0);
  Rgb line = white ? Rgb{0.92, 0.92, 0.92} : Rgb{0.20, 0.20, 0.22};
  Src(cr, line);
  cairo_set_line_width(cr, 1.3);
  // Outer edges bent like a lattice under load.
  cairo_move_to(cr, 3, 3);
  cairo_curve_to(cr, 9, 6, 14, 0, 20, 3);
  cairo_curve_to(cr, 17, 9, 23, 14, 20, 20);
  cairo_curve_to(cr, 14, 17, 9, 23, 3, 20);
  cairo_curve_to(cr, 6, 14, 0, 9, 3, 3);
  cairo_close_path(cr);
  cairo_stroke(cr);
  cairo_set_line_width(cr, 0.9);
  cairo_move_to(cr, 11.5, 2.5);
  cairo_curve_to(cr, 10, 9, 14, 14, 11.5, 20.5);
  cairo_move_to(cr, 2.5, 11.5);
  cairo_curve_to(cr, 9, 10, 14, 14, 20.5, 11.5);
  cairo_stroke(cr);
  Rgb corners[] = {kSwatch[0], kSwatch[1], kSwatch[3], kSwatch[2]};
  double pos[][2] = {{3, 3}, {20, 3}, {20, 20}, {3, 20}};
  for (int k = 0; k < 4; ++k) {
    cairo_arc(cr, pos[k][0], pos[k][1], 2.4, 0, 2 * kPi);
    Src(cr, corners[k]);
    cairo_fill_preserve(cr);
    Src(cr, line);
    cairo_set_line_width(cr, 0.7);
    cairo_stroke(cr);
  }
}

// ---- Output ---------------------------------------------------------------------------

void Put16(std::vector<uint8_t>& v, uint32_t x) {
  v.push_back(static_cast<uint8_t>(x & 0xFF));
  v.push_back(static_cast<uint8_t>((x >> 8) & 0xFF));
}
void Put32(std::vector<uint8_t>& v, uint32_t x) {
  Put16(v, x & 0xFFFF);
  Put16(v, x >> 16);
}

// Renders a picture into a cairo ARGB32 surface (premultiplied) of size n.
cairo_surface_t* Render(int n, const Painter& paint) {
  cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, n, n);
  cairo_t* cr = cairo_create(s);
  cairo_set_line_cap(cr, CAIRO_LINE_CAP_ROUND);
  cairo_set_line_join(cr, CAIRO_LINE_JOIN_ROUND);
  paint(cr);
  cairo_destroy(cr);
  cairo_surface_flush(s);
  return s;
}

// Writes a 32-bit bottom-up BMP with straight alpha: "BM", pixel offset 54,
// 40-byte info header, 3780 pixels per metre, image size filled in.
bool WriteBmp(const std::string& path, cairo_surface_t* s, bool opaque) {
  const int w = cairo_image_surface_get_width(s);
  const int h = cairo_image_surface_get_height(s);
  const int stride = cairo_image_surface_get_stride(s);
  const unsigned char* data = cairo_image_surface_get_data(s);
  const uint32_t imageSize = static_cast<uint32_t>(w * h * 4);
  std::vector<uint8_t> out;
  out.push_back('B');
  out.push_back('M');
  Put32(out, 54 + imageSize);
  Put16(out, 0);
  Put16(out, 0);
  Put32(out, 54);
  Put32(out, 40);
  Put32(out, static_cast<uint32_t>(w));
  Put32(out, static_cast<uint32_t>(h));
  Put16(out, 1);
  Put16(out, 32);
  Put32(out, 0);
  Put32(out, imageSize);
  Put32(out, 3780);
  Put32(out, 3780);
  Put32(out, 0);
  Put32(out, 0);
  for (int row = h - 1; row >= 0; --row) {
    const auto* px = reinterpret_cast<const uint32_t*>(data + row * stride);
    for (int x = 0; x < w; ++x) {
      uint32_t p = px[x];
      uint32_t a = p >> 24;
      uint32_t r = (p >> 16) & 0xFF, g = (p >> 8) & 0xFF, b = p & 0xFF;
      if (opaque) {
        a = 255;
      } else if (a > 0 && a < 255) {  // un-premultiply
        r = std::min<uint32_t>(255, (r * 255 + a / 2) / a);
        g = std::min<uint32_t>(255, (g * 255 + a / 2) / a);
        b = std::min<uint32_t>(255, (b * 255 + a / 2) / a);
      } else if (a == 0) {
        // Transparent pixels carry white, the colour of the panel's layer.
        r = g = b = 255;
      }
      out.push_back(static_cast<uint8_t>(b));
      out.push_back(static_cast<uint8_t>(g));
      out.push_back(static_cast<uint8_t>(r));
      out.push_back(static_cast<uint8_t>(a));
    }
  }
  FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) return false;
  bool ok = std::fwrite(out.data(), 1, out.size(), f) == out.size();
  return std::fclose(f) == 0 && ok;
}

struct Picture {
  const char* name;
  Painter paint;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s OUTPUT-DIR\n", argv[0]);
    return 2;
  }
  const std::string dir = argv[1];
  const std::vector<Picture> buttons = {
      {"IMG_SET_OF_PATHS", SetOfPaths},
      {"IMG_AXES_AND_NODES", AxesAndNodes},
      {"IMG_MOVE_CORNER_NODE", MoveCornerNode},
      {"IMG_KNOTS_TO_VERTICES", [](cairo_t* cr) { KnotsVertices(cr, true); }},
      {"IMG_VERTICES_TO_KNOTS", [](cairo_t* cr) { KnotsVertices(cr, false); }},
      {"IMG_COLOR_SHIFT", ColorShift},
      {"IMG_COLOR_REFLECT", ColorReflect},
      {"IMG_COLOR_ROTATE", ColorRotate},
      {"IMG_COLOR_CLONE", ColorClone},
      {"IMG_SPLIT", Split},
      {"IMG_ONE_CELL_MESH", OneCellMesh},
      {"IMG_BMG_CREATE", BmgCreate},
      {"IMG_BMG_TO_MESH", BmgToMesh},
      {"IMG_HANDLES_SMOOTH", HandlesSmooth},
      {"IMG_HANDLES_1_3", [](cairo_t* cr) { HandlesThirdOrZero(cr, false); }},
      {"IMG_HANDLES_0", [](cairo_t* cr) { HandlesThirdOrZero(cr, true); }},
      {"IMG_ALIGN_HOR", AlignHor},
      {"IMG_ALIGN_VERT", AlignVert},
      {"IMG_COLOR_SPREAD", ColorSpread},
      {"IMG_SEL_REGION", SelRegion},
      {"IMG_SEL_PERIM", SelPerim},
      {"IMG_SEW_MESH_MOVE", SewMeshMove},
      {"IMG_SEW_MESH_ADD", SewMeshAdd},
      {"IMG_COLOR_PATTERN", ColorPattern},
      {"IMG_SEL_CROSS", SelCross},
      {"IMG_SEL_SHIFT", SelShift},
      {"IMG_ALIGN_PATH", AlignPath},
      {"IMG_COLOR_CAPTURE", ColorCapture},
      {"IMG_HANDLES_90", Handles90},
      {"IMG_SEL", Sel},
      {"IMG_SEW_DOCKED", SewDocked},
      {"IMG_DENSITY_INC", [](cairo_t* cr) { Density(cr, true); }},
      {"IMG_DENSITY_DEC", [](cairo_t* cr) { Density(cr, false); }},
      {"IMG_SEW_PATH", SewPath},
      {"IMG_SEW_0", Sew0},
      {"IMG_UV_RESET", UvReset},
      {"IMG_DIR_ROTATE", DirRotate},
      {"IMG_000", Spare},
  };
  int failures = 0;
  for (const Picture& p : buttons) {
    cairo_surface_t* s = Render(32, p.paint);
    if (!WriteBmp(dir + "/" + p.name + ".bmp", s, false)) ++failures;
    cairo_surface_destroy(s);
  }
  const std::vector<Picture> checkboxes = {{"IMG_CB_COLOR", CbColor},
                                           {"IMG_CB_OPACITY", CbOpacity}};
  for (const Picture& p : checkboxes) {
    cairo_surface_t* s = Render(16, p.paint);
    if (!WriteBmp(dir + "/" + p.name + ".bmp", s, true)) ++failures;
    cairo_surface_destroy(s);
  }
  struct LogoSize {
    const char* suffix;
    int size;
  };
  const LogoSize sizes[] = {{"", 23}, {"_AT_2X", 46}, {"_AT_3TO2X", 35}};
  for (bool white : {true, false}) {
    for (const LogoSize& ls : sizes) {
      std::string name = std::string(white ? "LBLOGOW" : "LBLOGOD") + ls.suffix;
      cairo_surface_t* s = Render(ls.size, [&](cairo_t* cr) { Logo(cr, ls.size, white); });
      if (cairo_surface_write_to_png(s, (dir + "/" + name + ".png").c_str()) != CAIRO_STATUS_SUCCESS)
        ++failures;
      cairo_surface_destroy(s);
    }
  }
  if (failures) std::fprintf(stderr, "lb_icongen: %d pictures could not be written\n", failures);
  return failures ? 1 : 0;
}
