// "Rotate or reflect grid direction" (167) through the loaded module:
// where every node, run, smooth flag and grid line lands, that the turns
// undo each other, and what happens to the art around the rebuilt mesh.
#include <gtest/gtest.h>

#include <cstdlib>

#include "render/Render.h"
#include "support/Session.h"

namespace lbtest {
namespace {

constexpr double kTol = 1e-9;

struct Turn {
  const char* name;
  bool alt, ctrl;
  bool swapsSize;
  // The grid lines move with the nodes they pass through: a new line's
  // position is that of the old line it came from (u from v when the size
  // swaps), seen from the end it now starts at (mirrored).
  bool mirrorU, mirrorV;
  // Where old node (i, j) of an I x J mesh lands.
  Node (*map)(int i, int j, int I, int J);
};

const Turn kTurns[] = {
    {"Clockwise", false, false, true, true, false, [](int i, int j, int, int J) { return Node{J - j, i}; }},
    {"Counterclockwise", true, false, true, false, true, [](int i, int j, int I, int) { return Node{j, I - i}; }},
    {"ReflectI", false, true, false, true, false, [](int i, int j, int I, int) { return Node{I - i, j}; }},
    {"ReflectJ", true, true, false, false, true, [](int i, int j, int, int J) { return Node{i, J - j}; }},
};

std::vector<double> MirrorOf(const std::vector<double>& t) {
  std::vector<double> m(t.size());
  for (size_t k = 0; k < t.size(); ++k) m[k] = 1.0 - t[t.size() - 1 - k];
  return m;
}

class EachTurn : public ::testing::TestWithParam<Turn> {};

TEST_P(EachTurn, CarriesEveryNodeRunFlagAndLine) {
  const Turn& turn = GetParam();
  MeshRecipe layout = MeshRecipe::Varied(3, 2);
  layout.u = {0, 0.2, 0.45, 1};
  layout.v = {0, 0.3, 1};
  Session s(DocJson({MeshJson(layout)}));
  const MeshContent old = ReadMesh(Children(s.written())[0]);

  // Both checkboxes off: a rebuild carries colour and opacity regardless.
  const json kids = Children(s.runWritten(kCmdDirRotate, turn.alt, turn.ctrl, /*useColor=*/false, /*useOpacity=*/false));
  ASSERT_EQ(kids.size(), 1u);
  const MeshContent got = ReadMesh(kids[0]);
  const int newI = turn.swapsSize ? layout.J : layout.I, newJ = turn.swapsSize ? layout.I : layout.J;
  const MeshContent want =
      MapMesh(old, newI, newJ, [&](int i, int j) { return turn.map(i, j, layout.I, layout.J); });
  EXPECT_TRUE(SameContent(got, want, kTol));
  const std::vector<double>&u0 = turn.swapsSize ? old.v : old.u, &v0 = turn.swapsSize ? old.u : old.v;
  EXPECT_TRUE(SamePositions(got.u, turn.mirrorU ? MirrorOf(u0) : u0, 1e-12));
  EXPECT_TRUE(SamePositions(got.v, turn.mirrorV ? MirrorOf(v0) : v0, 1e-12));
}

// Renumbering the grid must not change the picture: shape, colours and
// opacities are interpolated from the same nodes and line positions.
TEST_P(EachTurn, PictureStaysTheSame) {
  const Turn& turn = GetParam();
  MeshRecipe layout = MeshRecipe::Varied();
  layout.u = {0, 0.2, 0.45, 1};
  layout.v = {0, 0.3, 1};
  layout.paint = Paint::Rgb;  // mixed kinds are blended in the kind of node (0, 0)
  json doc = DocJson({MeshJson(layout)});
  doc["artboard"] = {-10, -10, 140, 75};
  Session s(doc);
  const lb::render::RenderOptions options{2.0, false};
  const lb::render::Image before = lb::render::renderDocument(s.host().document(), options);
  s.run(kCmdDirRotate, turn.alt, turn.ctrl);
  const lb::render::Image after = lb::render::renderDocument(s.host().document(), options);
  ASSERT_EQ(after.width, before.width);
  ASSERT_EQ(after.height, before.height);
  // The renderer subdivides each patch along its own grid, so colours may
  // differ by a level or two; a misplaced node or handle changes whole
  // areas by far more.
  const long pixels = static_cast<long>(before.width) * before.height;
  long off = 0;
  double total = 0;
  for (int y = 0; y < before.height; ++y) {
    for (int x = 0; x < before.width; ++x) {
      int a[4], b[4];
      before.rgba(x, y, &a[0], &a[1], &a[2], &a[3]);
      after.rgba(x, y, &b[0], &b[1], &b[2], &b[3]);
      int d = 0;
      for (int c = 0; c < 4; ++c) d = std::max(d, std::abs(a[c] - b[c]));
      total += d;
      if (d > 8) ++off;
    }
  }
  EXPECT_LE(off, pixels / 1000) << "pixels off by more than 8 levels";
  EXPECT_LT(total / static_cast<double>(pixels), 1.5) << "mean difference";
}

INSTANTIATE_TEST_SUITE_P(GridDirection, EachTurn, ::testing::ValuesIn(kTurns), ByName());

// Turning back, or reflecting twice, gives the mesh it started from.
TEST(GridDirection, InverseTurnsGiveBackTheSameMesh) {
  struct Sequence {
    const char* name;
    std::vector<std::pair<bool, bool>> steps;  // (alt, ctrl)
  };
  const Sequence sequences[] = {
      {"clockwise then counterclockwise", {{false, false}, {true, false}}},
      {"counterclockwise then clockwise", {{true, false}, {false, false}}},
      {"reflect I twice", {{false, true}, {false, true}}},
      {"reflect J twice", {{true, true}, {true, true}}},
      {"four clockwise turns", {{false, false}, {false, false}, {false, false}, {false, false}}},
      {"two turns equal reflecting both ways", {{false, false}, {false, false}, {false, true}, {true, true}}},
  };
  MeshRecipe layout = MeshRecipe::Varied(4, 3);
  layout.u = {0, 0.15, 0.5, 0.55, 1};
  layout.v = {0, 0.6, 0.7, 1};
  for (const Sequence& seq : sequences) {
    SCOPED_TRACE(seq.name);
    Session s(DocJson({MeshJson(layout)}));
    const MeshContent old = ReadMesh(Children(s.written())[0]);
    json kids;
    for (auto [alt, ctrl] : seq.steps) kids = s.runLayer(kCmdDirRotate, alt, ctrl);
    ASSERT_EQ(kids.size(), 1u);
    const MeshContent got = ReadMesh(kids[0]);
    EXPECT_TRUE(SameContent(got, old, kTol));
    EXPECT_TRUE(SamePositions(got.u, old.u, 1e-12));
    EXPECT_TRUE(SamePositions(got.v, old.v, 1e-12));
  }
}

// The rebuilt mesh takes the old one's place in the paint order, its
// opacity and blending mode, and ends selected as a whole; the art around
// it is left alone (unselected meshes among several:
// EveryCommand.EachSelectedMeshEndsAsItWouldAlone).
TEST(GridDirection, RebuiltMeshReplacesTheOldOneInPlace) {
  MeshRecipe mid = MeshRecipe::Varied(), low = MeshRecipe::Varied();
  mid.id = "mid";
  mid.artOpacity = 0.625;
  mid.blend = "multiply";
  low.id = "low";
  low.artSelected = false;
  low.x0 = 400;
  const json path = json::parse(R"({"type": "path", "id": "p", "segments": [{"p": [0, 0]}, {"p": [10, 10]}]})");
  Session s(DocJson({path, MeshJson(mid), MeshJson(low)}));
  const json before = s.written();

  const json kids = s.runLayer(kCmdDirRotate, false, false);
  ASSERT_EQ(kids.size(), 3u);
  EXPECT_EQ(kids[0], Children(before)[0]);
  EXPECT_EQ(kids[2], Children(before)[2]);
  const json& rebuilt = kids[1];
  EXPECT_EQ(rebuilt.at("type"), "mesh");
  EXPECT_FALSE(rebuilt.contains("id") && rebuilt["id"] == "mid") << "the old art should be gone";
  EXPECT_EQ(rebuilt.value("opacity", 1.0), 0.625);
  EXPECT_EQ(rebuilt.value("blend", std::string("normal")), "multiply");
  EXPECT_EQ(rebuilt.value("selected", false), true);
  const MeshContent got = ReadMesh(rebuilt);
  for (const auto& [key, n] : got.nodes) EXPECT_TRUE(n.selected) << key.first << "," << key.second;
  for (const auto& [key, r] : got.runs)
    for (const InnerContent& ic : r.inner) EXPECT_TRUE(ic.kind != "vertex" || ic.selected);
}

// One selected node is enough: the whole mesh is turned (several meshes:
// EveryCommand.EachSelectedMeshEndsAsItWouldAlone).
TEST(GridDirection, MeshIsTurnedWhateverPartOfItIsSelected) {
  json art = MeshJson(MeshRecipe::Varied());
  for (json& n : art["nodes"]) n["selected"] = false;
  art["nodes"][4]["selected"] = true;
  Session s(DocJson({art}));
  const MeshContent old = ReadMesh(Children(s.written())[0]);
  const json kids = s.runLayer(kCmdDirRotate, false, true);  // reflect in I
  ASSERT_EQ(kids.size(), 1u);
  EXPECT_TRUE(SameContent(ReadMesh(kids[0]), MapMesh(old, 3, 2, [](int i, int j) { return Node{3 - i, j}; }), kTol));
}

}  // namespace
}  // namespace lbtest
