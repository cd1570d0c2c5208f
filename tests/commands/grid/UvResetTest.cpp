// "Reset UV coordinates" (166) through the loaded module: the dumb reset
// spreads the grid lines evenly, the smart one places them by the lengths
// of the lines across them; both keep every node, run and flag as it was.
#include <gtest/gtest.h>

#include <cmath>

#include "support/Session.h"

namespace lbtest {
namespace {

Node Same(int i, int j) { return {i, j}; }

// A straight run through the given anchors: each piece's handles at one
// and two thirds, so each piece is a straight line of known length.
json PolylineRun(int i, int j, const char* axis, const std::vector<std::pair<double, double>>& anchors,
                 const json& inner) {
  json pts = json::array();
  for (size_t k = 0; k + 1 < anchors.size(); ++k) {
    const auto [ah, av] = anchors[k];
    const auto [bh, bv] = anchors[k + 1];
    if (k == 0) pts.push_back({ah, av});
    pts.push_back({ah + (bh - ah) / 3, av + (bv - av) / 3});
    pts.push_back({ah + 2 * (bh - ah) / 3, av + 2 * (bv - av) / 3});
    pts.push_back({bh, bv});
  }
  return {{"node", {i, j}}, {"axis", axis}, {"points", pts}, {"inner", inner}};
}

// An I x 1 mesh whose lines of constant j are straight and horizontal,
// with the nodes of line j at the given h positions.
json RowsMesh(const std::vector<double>& row0, const std::vector<double>& row1) {
  const int I = static_cast<int>(row0.size()) - 1;
  json nodes = json::array();
  for (int j = 0; j <= 1; ++j)
    for (int i = 0; i <= I; ++i)
      nodes.push_back({{"p", {(j == 0 ? row0 : row1)[static_cast<size_t>(i)], 50.0 * j}}, {"color", {{"gray", 0.1 * i}}}});
  return {{"type", "mesh"}, {"size", {I, 1}}, {"selected", true}, {"nodes", nodes}};
}

// Both resets copy every point, knot, vertex, flag and paint bit for bit
// and keep the art's opacity and blending, whatever the checkboxes. The
// dumb one (Ctrl, with or without Alt) spreads the lines evenly wherever
// the nodes lie; the smart one keeps them increasing.
TEST(UvReset, KeepsContentPaintAndArtAttributes) {
  MeshRecipe layout = MeshRecipe::Varied(4, 3);
  layout.u = {0, 0.1, 0.2, 0.6, 1};
  layout.v = {0, 0.5, 0.9, 1};
  layout.artOpacity = 0.5;
  layout.blend = "screen";
  for (auto [alt, ctrl] : {std::pair{false, true}, {true, true}, {false, false}}) {
    SCOPED_TRACE(testing::Message() << "alt " << alt << " ctrl " << ctrl);
    Session s(DocJson({MeshJson(layout)}));
    const MeshContent old = s.content(0);
    const json art = Children(s.runWritten(kCmdUvReset, alt, ctrl, false, false))[0];
    const MeshContent got = ReadMesh(art);
    EXPECT_TRUE(SameContent(got, MapMesh(old, 4, 3, Same), 0.0));
    EXPECT_EQ(art.value("opacity", 1.0), 0.5);
    EXPECT_EQ(art.value("blend", std::string("normal")), "screen");
    if (ctrl) {
      EXPECT_TRUE(SamePositions(got.u, {0, 0.25, 0.5, 0.75, 1}, 1e-15));
      EXPECT_TRUE(SamePositions(got.v, Even(3), 1e-15));
    }
    for (size_t k = 1; k < got.u.size(); ++k) EXPECT_LT(got.u[k - 1], got.u[k]);
    for (size_t k = 1; k < got.v.size(); ++k) EXPECT_LT(got.v[k - 1], got.v[k]);
  }
}

// Each cell gets the average of its share over the lines that cross it; a
// cell of zero length on every line keeps a share of 1e-5 (single
// precision) before the shares are normalised.
TEST(SmartReset, CellSharesAveragedOverTheCrossingLines) {
  const double least = 9.999999747378752e-06;
  struct Case {
    std::vector<double> row0, row1;
    bool alt;
    double u1;
  } const cases[] = {{{0, 25, 100}, {0, 25, 100}, false, 0.25},
                     {{0, 25, 100}, {0, 25, 100}, true, 0.25},
                     {{0, 25, 100}, {0, 50, 100}, false, (0.25 + 0.5) / 2},
                     {{0, 0, 100}, {0, 0, 100}, false, least / (1 + least)}};
  for (const Case& c : cases) {
    Session s(DocJson({RowsMesh(c.row0, c.row1)}));
    s.run(kCmdUvReset, c.alt, false);
    const MeshContent got = s.content(0);
    ASSERT_EQ(got.u.size(), 3u);
    EXPECT_NEAR(got.u[1], c.u1, 1e-12) << c.row0[1] << " " << c.row1[1];
  }
}

// A run with a knot and a non-node vertex is measured to its end node,
// every piece of every segment counted.
TEST(SmartReset, MeasuresRunsThroughKnotsAndVertices) {
  json mesh = RowsMesh({0, 50, 100}, {0, 50, 100});
  const std::vector<std::pair<double, double>> zigzag = {{0, 0}, {20, 40}, {35, -20}, {50, 0}};
  const json inner = {{{"kind", "knot"}}, {{"kind", "vertex"}, {"selected", false}, {"smooth", {false, false}}}};
  mesh["runs"] = json::array({PolylineRun(0, 0, "I", zigzag, inner)});
  const double detour = std::hypot(20, 40) + std::hypot(15, 60) + std::hypot(15, 20);
  const double share0 = (detour / (detour + 50) + 0.5) / 2;

  Session s(DocJson({mesh}));
  const MeshContent old = s.content(0);
  const MeshContent got = ReadMesh(s.runLayer(kCmdUvReset, false, false)[0]);
  EXPECT_NEAR(got.u[1], share0, 1e-6);
  EXPECT_TRUE(SameContent(got, MapMesh(old, 2, 1, Same), 0.0));
}

}  // namespace
}  // namespace lbtest
