// The brush mesh grid (142, 143): the group's structure, edge paths in
// segment order, tile paint, the round trip back to a mesh point for point
// (also after moving and scaling the grid), and broken grids left alone.
#include <functional>

#include "commands/grid/KnotsDoc.h"

namespace knots {
namespace {

// A mesh with knots and non-node vertices on some runs.
MeshDoc Curvy(int I, int J, bool withVertices) {
  MeshDoc d;
  d.I = I;
  d.J = J;
  d.wholeSelected = true;
  d.opacity = 0.75;
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i <= I; ++i) {
      if (i < I) d.runs[{0, i, j}] = MakeRun(MeshDoc::NodeP(i, j), MeshDoc::NodeP(i + 1, j), (i + j) % 2 ? "k" : (withVertices ? "vk" : "kk"));
      if (j < J) d.runs[{1, i, j}] = MakeRun(MeshDoc::NodeP(i, j), MeshDoc::NodeP(i, j + 1), (i + j) % 2 ? (withVertices ? "v" : "k") : "");
    }
  return d;
}

// Each segment of a path as [p, in, out].
std::vector<std::vector<Pt>> Segs(const json& path) {
  std::vector<std::vector<Pt>> out;
  for (const json& s : path.at("segments")) {
    const Pt p = P(s.at("p"));
    out.push_back({p, s.contains("in") ? P(s["in"]) : p, s.contains("out") ? P(s["out"]) : p});
  }
  return out;
}

TEST(BrushGrid, OneCellGroupStructure) {
  MeshDoc d = Curvy(1, 1, false);
  Session s(lbtest::DocJson({d.art()}));
  const json mesh = Children(s.written())[0];
  const json layer = s.runLayer(kCmdBmgCreate);
  ASSERT_EQ(layer.size(), 1u) << "the mesh is deleted without Alt";
  const json& g = layer[0];
  EXPECT_EQ(g.at("type"), "group");
  EXPECT_EQ(g.value("name", ""), "MeshGrid");
  EXPECT_EQ(g.value("opacity", 1.0), 0.75);
  const json& kids = g.at("children");
  // (How many paths each part holds: BrushGridTrip.BackToTheSameMesh/OneCell.)
  ASSERT_EQ(kids.size(), 5u);
  EXPECT_EQ(kids[0].at("children").at(0).value("opacity", 1.0), 0.0);

  // Edges in segment order: bottom, top, left, right; each runs along the
  // mesh's run, every anchor a corner, black stroke of width 0.5.
  const std::tuple<int, int, int> order[4] = {{0, 0, 0}, {0, 0, 1}, {1, 0, 0}, {1, 1, 0}};
  for (int e = 0; e < 4; ++e) {
    const auto [axis, i, j] = order[e];
    const LineRun r = ReadRun(mesh, axis, i, j);
    const json& path = kids[2].at("children").at(e);
    EXPECT_FALSE(path.value("closed", false));
    EXPECT_TRUE(path.at("fill").is_null());
    EXPECT_EQ(path.at("stroke").value("width", 1.0), 0.5);
    std::vector<Pt> pts;
    const auto segs = Segs(path);
    for (size_t k = 0; k < segs.size(); ++k) {
      if (k > 0) pts.push_back(segs[k][1]);
      pts.push_back(segs[k][0]);
      if (k + 1 < segs.size()) pts.push_back(segs[k][2]);
    }
    EXPECT_TRUE(SamePoints(pts, r.points, 0.0)) << "edge " << e;
    for (const json& sg : path["segments"]) EXPECT_TRUE(sg.value("corner", false));
  }
  // Tiles j outer, i inner, painted with the node's colour and opacity.
  const std::pair<int, int> tiles[4] = {{0, 0}, {1, 0}, {0, 1}, {1, 1}};
  for (int t = 0; t < 4; ++t) {
    const json& tile = kids[3].at("children").at(t);
    const auto [i, j] = tiles[t];
    EXPECT_TRUE(tile.value("closed", false));
    EXPECT_EQ(tile.at("fill").at("color"), MeshDoc::NodeColor(i, j)) << "tile " << t;
    EXPECT_TRUE(tile.at("stroke").is_null());
    EXPECT_EQ(tile.value("opacity", 1.0), MeshDoc::NodeOpacity(i, j));
    // The tile of a corner node holds its corner.
    bool hasNode = false;
    for (const auto& sg : Segs(tile)) hasNode |= sg[0] == MeshDoc::NodeP(i, j);
    EXPECT_TRUE(hasNode) << "tile " << t;
  }
  // The bounds rectangle, unpainted.
  const json& rect = kids[4];
  EXPECT_EQ(rect.at("segments").size(), 4u);
  EXPECT_TRUE(rect.at("fill").is_null());
  EXPECT_TRUE(rect.at("stroke").is_null());
}

// On a mesh with straight runs, the tile of node (0, 0) of a 1 x 1 mesh is
// the quarter between the corner, the two side middles and the centre.
TEST(BrushGrid, TileIsTheQuarterAroundItsNode) {
  MeshDoc d;
  d.wholeSelected = true;
  Session s(lbtest::DocJson({d.art()}));
  const json tile = s.runLayer(kCmdBmgCreate)[0].at("children")[3].at("children")[0];
  const Pt n00 = MeshDoc::NodeP(0, 0), n10 = MeshDoc::NodeP(1, 0), n01 = MeshDoc::NodeP(0, 1), n11 = MeshDoc::NodeP(1, 1);
  auto mid = [](Pt a, Pt b) { return Pt{(a.first + b.first) / 2, (a.second + b.second) / 2}; };
  const Pt centre = mid(mid(n00, n10), mid(n01, n11));
  std::vector<Pt> anchors;
  for (const auto& sg : Segs(tile)) anchors.push_back(sg[0]);
  EXPECT_TRUE(SamePoints(anchors, {n00, mid(n00, n10), centre, mid(n00, n01)}, 1e-9));
}

struct RoundTrip {
  const char* name;
  int I, J;
  bool vertices;
  // Applied to every point of the grid before converting back.
  double scale, dh, dv;
};

const RoundTrip kTrips[] = {
    {"OneCell", 1, 1, false, 1, 0, 0},
    {"ThreeByTwo", 3, 2, false, 1, 0, 0},
    {"VerticesBecomeKnots", 3, 2, true, 1, 0, 0},
    {"MovedAndScaled", 2, 3, false, 1.5, 40, -25},
};

void TransformPaths(json& art, double scale, double dh, double dv) {
  auto f = [&](json& p) { p = json::array({p[0].get<double>() * scale + dh, p[1].get<double>() * scale + dv}); };
  if (art.contains("segments"))
    for (json& s : art["segments"])
      for (const char* k : {"p", "in", "out"})
        if (s.contains(k)) f(s[k]);
  if (art.contains("children"))
    for (json& c : art["children"]) TransformPaths(c, scale, dh, dv);
}

class BrushGridTrip : public ::testing::TestWithParam<RoundTrip> {};

TEST_P(BrushGridTrip, BackToTheSameMesh) {
  const RoundTrip& c = GetParam();
  MeshDoc d = Curvy(c.I, c.J, c.vertices);
  json mesh;
  json grid;
  {
    Session s(lbtest::DocJson({d.art()}));
    mesh = Children(s.written())[0];
    grid = Children(s.runWritten(kCmdBmgCreate))[0];
  }
  EXPECT_TRUE(grid.value("selected", false));
  const json& kids = grid.at("children");
  EXPECT_EQ(kids[0].at("children").size(), static_cast<size_t>(c.I)) << "markers along I";
  EXPECT_EQ(kids[1].at("children").size(), static_cast<size_t>(c.J)) << "markers along J";
  EXPECT_EQ(kids[2].at("children").size(), static_cast<size_t>(2 * c.I * c.J + c.I + c.J)) << "edges";
  EXPECT_EQ(kids[3].at("children").size(), static_cast<size_t>((c.I + 1) * (c.J + 1))) << "tiles";
  TransformPaths(grid, c.scale, c.dh, c.dv);
  Session s(lbtest::DocJson({grid}));
  const json layer = s.runLayer(kCmdBmgToMesh);
  ASSERT_EQ(layer.size(), 1u) << "the grid is deleted without Alt";
  const json& back = layer[0];
  ASSERT_EQ(back.at("type"), "mesh");
  EXPECT_EQ(back.value("opacity", 1.0), 0.75);
  EXPECT_EQ(back.at("size"), mesh.at("size"));
  for (int j = 0; j <= c.J; ++j)
    for (int i = 0; i <= c.I; ++i) {
      EXPECT_EQ(NodeAt(back, i, j).at("color"), MeshDoc::NodeColor(i, j));
      EXPECT_EQ(NodeAt(back, i, j).value("opacity", 1.0), MeshDoc::NodeOpacity(i, j));
    }
  for (int axis = 0; axis < 2; ++axis)
    for (int j = 0; j <= c.J; ++j)
      for (int i = 0; i <= c.I; ++i) {
        if (axis == 0 ? i == c.I : j == c.J) continue;
        LineRun want = ReadRun(mesh, axis, i, j);
        for (Pt& p : want.points) p = {p.first * c.scale + c.dh, p.second * c.scale + c.dv};
        const LineRun got = ReadRun(back, axis, i, j);
        EXPECT_TRUE(SamePoints(got.points, want.points, 1e-9)) << "run " << axis << " (" << i << ", " << j << ")";
        EXPECT_EQ(got.inner, std::string(want.inner.size(), 'k'));
      }
}

INSTANTIATE_TEST_SUITE_P(Trips, BrushGridTrip, ::testing::ValuesIn(kTrips), lbtest::ByName());

struct Breakage {
  const char* name;
  std::function<void(json&)> apply;
};

class BrokenGrid : public ::testing::TestWithParam<Breakage> {};

TEST_P(BrokenGrid, IsNotRecognised) {
  json grid;
  {
    Session s(lbtest::DocJson({Curvy(2, 1, false).art()}));
    grid = Children(s.runWritten(kCmdBmgCreate))[0];
  }
  GetParam().apply(grid);
  Session s(lbtest::DocJson({grid}));
  const json before = s.written();
  EXPECT_EQ(s.runWritten(kCmdBmgToMesh), before);
}

const json kExtraPath = {{"type", "path"}, {"segments", {{{"p", {0, 0}}}, {{"p", {1, 1}}}}}, {"selected", true}};

INSTANTIATE_TEST_SUITE_P(Cases, BrokenGrid, ::testing::Values(
        Breakage{"EdgeDeleted", [](json& g) { g["children"][2]["children"].erase(0); }},
        Breakage{"PathAddedToTiles", [](json& g) { g["children"][3]["children"].push_back(kExtraPath); }},
        Breakage{"MarkersEmptied", [](json& g) { g["children"][0]["children"] = json::array(); g["children"][1]["children"] = json::array(); }},
        Breakage{"GroupInEdges", [](json& g) { g["children"][2]["children"][0] = {{"type", "group"}, {"children", json::array()}, {"selected", true}}; }},
        Breakage{"BoundsNotLast", [](json& g) { g["children"].push_back(kExtraPath); }}), lbtest::ByName());

// With Alt both directions keep their source.
TEST(BrushGrid, AltKeepsTheSource) {
  Session s(lbtest::DocJson({Curvy(2, 2, false).art()}));
  json doc = s.runLayer(kCmdBmgCreate, true);
  ASSERT_EQ(doc.size(), 2u);
  EXPECT_EQ(doc[0].at("type"), "group");
  EXPECT_EQ(doc[1].at("type"), "mesh");
  EXPECT_FALSE(doc[1].value("selected", true));
  doc = s.runLayer(kCmdBmgToMesh, true);
  ASSERT_EQ(doc.size(), 3u);
  EXPECT_EQ(doc[0].at("type"), "mesh");
  EXPECT_TRUE(doc[0].value("selected", false));
  EXPECT_EQ(doc[1].at("type"), "group");
}

}  // namespace
}  // namespace knots
