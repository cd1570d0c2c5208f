// Documents for the construction tests: paths and grids of docked paths as
// .lbdoc JSON and readers for the written meshes (sessions come from the
// support library).
#pragma once

#include "LBModule.h"
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "support/Session.h"

namespace constructtest {

using namespace lbtest;

constexpr int kMeshFromPath = kCmdOneCellMesh;
constexpr int kMeshFromDockedPaths = kCmdSewDocked;
// One third and 0.8 as single-precision values, widened.
constexpr double kThird = 0.3333333432674408;
constexpr double kGray = 0.800000011920929;

struct Pt {
  double h, v;
  bool operator==(const Pt&) const = default;
};
inline void PrintTo(const Pt& p, std::ostream* os) { *os << "(" << p.h << ", " << p.v << ")"; }

inline json J(Pt p) { return json::array({p.h, p.v}); }
inline Pt P(const json& j) { return {j[0].get<double>(), j[1].get<double>()}; }

// One anchor of a path; handles default to the anchor (retracted).
struct Anchor {
  Anchor(Pt p_, std::optional<Pt> in_ = std::nullopt, std::optional<Pt> out_ = std::nullopt, int selected_ = -1)
      : p(p_), in(in_), out(out_), selected(selected_) {}
  Pt p;
  std::optional<Pt> in, out;
  int selected;  // -1: not written
  Pt In() const { return in ? *in : p; }
  Pt Out() const { return out ? *out : p; }
};

inline json PathArt(const std::vector<Anchor>& anchors, bool closed = true, bool selected = true) {
  json segs = json::array();
  for (const Anchor& a : anchors) {
    json s = {{"p", J(a.p)}};
    if (a.in) s["in"] = J(*a.in);
    if (a.out) s["out"] = J(*a.out);
    if (a.selected >= 0) s["selected"] = a.selected;
    segs.push_back(s);
  }
  return {{"type", "path"}, {"closed", closed}, {"selected", selected}, {"fill", nullptr},
          {"stroke", nullptr}, {"segments", segs}};
}

// ---- Reading a written mesh ---------------------------------------------

// Node (i, j) of a written mesh, and the points of its run from (i, j)
// along 'I' or 'J'.
inline Pt NodeP(const json& mesh, int i, int j) { return P(lbtest::NodeAt(mesh, i, j).at("p")); }
inline std::vector<Pt> Run(const json& mesh, int i, int j, char axis) {
  std::vector<Pt> pts;
  for (const json& p : lbtest::RunAt(mesh, i, j, axis).at("points")) pts.push_back(P(p));
  return pts;
}

// ---- Expected shapes ----------------------------------------------------

// a + t (b - a) evaluated as the host's interpolation does: b' + t (a' - b')
// with a' = far anchor, b' = own anchor.
inline Pt Third(Pt own, Pt far) { return {own.h + kThird * (far.h - own.h), own.v + kThird * (far.v - own.v)}; }

// The Bezier points (anchor, out, in, anchor, ...) of an open chain of
// anchors, with straight pieces given one-third handles.
inline std::vector<Pt> ChainPoints(const std::vector<Anchor>& a) {
  std::vector<Pt> pts;
  const size_t n = a.size();
  for (size_t k = 0; k < n; ++k) {
    if (k > 0) {
      const bool straight = !a[k - 1].out && !a[k].in;
      pts.push_back(straight ? Third(a[k].p, a[k - 1].p) : a[k].In());
    }
    pts.push_back(a[k].p);
    if (k + 1 < n) {
      const bool straight = !a[k].out && !a[k + 1].in;
      pts.push_back(straight ? Third(a[k].p, a[k + 1].p) : a[k].Out());
    }
  }
  return pts;
}

inline std::vector<Pt> Reversed(std::vector<Pt> v) {
  std::reverse(v.begin(), v.end());
  return v;
}

// ---- Grids of docked paths ----------------------------------------------

// The grid points are (40 i, 30 j) for 0 <= i <= a, 0 <= j <= b. Every
// third path bends through a middle anchor with handles; the others are
// straight two-anchor paths.
struct GridPath {
  bool horizontal;
  int i, j;      // the lower-left end: (i, j) to (i + 1, j) or (i, j + 1)
  bool reverse;  // drawn from the far end
  std::vector<Anchor> anchors;
};

inline Pt GridPt(int i, int j) { return {40.0 * i, 30.0 * j}; }

inline GridPath MakeGridPath(bool horizontal, int i, int j, bool reverse, int serial) {
  GridPath g{horizontal, i, j, reverse, {}};
  const Pt a = GridPt(i, j), b = horizontal ? GridPt(i + 1, j) : GridPt(i, j + 1);
  if (serial % 3 == 2) {
    // A bend: the middle anchor stands off the straight line.
    const Pt mid = horizontal ? Pt{a.h + 20, a.v + 4} : Pt{a.h - 5, a.v + 15};
    const Pt d = horizontal ? Pt{7, 1} : Pt{1, 6};
    g.anchors = {{a, std::nullopt, Pt{a.h + d.h, a.v + d.v + 2}},
                 {mid, Pt{mid.h - d.h, mid.v - d.v}, Pt{mid.h + d.h, mid.v + d.v}},
                 {b, std::nullopt, std::nullopt}};
  } else {
    g.anchors = {{a}, {b}};
  }
  if (reverse) {
    std::reverse(g.anchors.begin(), g.anchors.end());
    for (Anchor& x : g.anchors) std::swap(x.in, x.out);
  }
  return g;
}

enum class Order { RowsFirst, ColumnsFirst, CellByCell };

// All paths of an a x b grid in one of the orders a person draws them in;
// with `mixDirections`, every other path is drawn backwards.
inline std::vector<GridPath> GridPaths(int a, int b, Order order, bool mixDirections) {
  std::vector<GridPath> out;
  int serial = 0;
  auto add = [&](bool horizontal, int i, int j) {
    out.push_back(MakeGridPath(horizontal, i, j, mixDirections && serial % 2 == 1, serial));
    ++serial;
  };
  auto rows = [&] {
    for (int j = 0; j <= b; ++j)
      for (int i = 0; i < a; ++i) add(true, i, j);
  };
  auto columns = [&] {
    for (int i = 0; i <= a; ++i)
      for (int j = 0; j < b; ++j) add(false, i, j);
  };
  switch (order) {
    case Order::RowsFirst:
      rows();
      columns();
      break;
    case Order::ColumnsFirst:
      columns();
      rows();
      break;
    case Order::CellByCell:
      // Each cell's bottom and left side, then the top row and right column.
      for (int j = 0; j < b; ++j)
        for (int i = 0; i < a; ++i) {
          add(true, i, j);
          add(false, i, j);
        }
      for (int i = 0; i < a; ++i) add(true, i, b);
      for (int j = 0; j < b; ++j) add(false, a, j);
      break;
  }
  return out;
}

inline std::vector<json> GridArt(const std::vector<GridPath>& paths) {
  std::vector<json> art;
  for (const GridPath& g : paths) art.push_back(PathArt(g.anchors, false));
  return art;
}

}  // namespace constructtest
