// The mesh part copy called directly, with the plug-in's suite pointers
// acquired from the host as a command would: windows (identity, turned,
// mirrored, shifted, invalid) and cutting a rectangle of cells into a new
// mesh with its selection.
#include <gtest/gtest.h>

#include <array>

#include "MeshPartCopy.h"
#include "support/Session.h"

namespace lbtest {
namespace {

class PartCopy : public LinkedTest {
 protected:
  // The varied mesh of I x J cells above a plain, unselected one of dstI x
  // dstJ cells at x = x0.
  void LoadPair(int I, int J, int dstI, int dstJ, double x0) {
    MeshRecipe dst = MeshRecipe::Varied(dstI, dstJ);
    dst.knots = false;
    dst.x0 = x0;
    dst.artSelected = false;
    Load(DocJson({MeshJson(MeshRecipe::Varied(I, J)), MeshJson(dst)}));
  }
  // Copies window `src` of the first mesh onto window `dst` of the second.
  int Copy(ZS_RestoreMeshData src, ZS_RestoreMeshData dst) {
    return RestoreMeshPart(session->art(0), session->art(1), &src, &dst);
  }
};

// The content of the cells i0..i1 x j0..j1 of a mesh, renumbered from 0.
MeshContent SubMesh(const MeshContent& m, int i0, int i1, int j0, int j1) {
  MeshContent s;
  s.I = i1 - i0;
  s.J = j1 - j0;
  for (int j = j0; j <= j1; ++j) {
    for (int i = i0; i <= i1; ++i) {
      NodeContent n = m.nodes.at({i, j});
      // Border nodes of the part have no segment outward.
      if (i == i0) n.smooth.erase("I-");
      if (i == i1) n.smooth.erase("I+");
      if (j == j0) n.smooth.erase("J-");
      if (j == j1) n.smooth.erase("J+");
      s.nodes[{i - i0, j - j0}] = n;
      if (i < i1) s.runs[{i - i0, j - j0, 0}] = m.runs.at({i, j, 0});
      if (j < j1) s.runs[{i - i0, j - j0, 1}] = m.runs.at({i, j, 1});
    }
  }
  return s;
}

TEST_F(PartCopy, InvalidWindowsChangeNothing) {
  LoadPair(3, 2, 3, 2, 300);
  const json before = session->written();
  ZS_RestoreMeshData good{0, 0, 0, 1, 0, 0, 3, 2};
  const ZS_RestoreMeshData bad[] = {
      {0, 0, 0, 0, 0, 0, 3, 2},   // both coordinates along I
      {0, 0, 1, 1, 0, 0, 3, 2},   // both along J
      {4, 0, 0, 1, 0, 0, 3, 2},   // start beyond the last line i
      {0, 3, 0, 1, 0, 0, 3, 2},   // start beyond the last line j
      {-1, 0, 0, 1, 0, 0, 3, 2},  // start before the first line
      {0, 0, 0, 1, 0, 0, -1, 2},  // negative extent
      {0, 0, 0, 1, 0, 0, 3, -2},
  };
  for (const ZS_RestoreMeshData& b : bad) {
    EXPECT_EQ(Copy(b, good), 1);
    EXPECT_EQ(Copy(good, b), 1);
    EXPECT_EQ(session->written(), before);
  }
}

// A window reaching past the destination's grid is a host error half-way:
// the copy stops, keeps what it wrote and leaves no iterator behind (the
// fixture checks the counters).
TEST_F(PartCopy, WindowPastTheGridStopsWithoutLeaking) {
  LoadPair(3, 2, 2, 2, 300);
  const MeshContent src = session->content(0);
  const ZS_RestoreMeshData w{0, 0, 0, 1, 0, 0, 3, 2};
  EXPECT_EQ(Copy(w, w), 1);
  const MeshContent got = session->content(1);
  for (int j = 0; j <= 2; ++j)
    for (int i = 0; i <= 1; ++i) EXPECT_EQ(got.nodes.at({i, j}).color, src.nodes.at({i, j}).color) << i << "," << j;
}

TEST_F(PartCopy, IdentityWindowCopiesEverythingButSelectionExactly) {
  LoadPair(4, 3, 4, 3, 500);
  const MeshContent src = session->content(0);
  const MeshContent dstBefore = session->content(1);
  const ZS_RestoreMeshData w{0, 0, 0, 1, 0, 0, 4, 3};
  ASSERT_EQ(Copy(w, w), 0);
  const MeshContent got = session->content(1);
  EXPECT_TRUE(SameContent(got, src, 0.0));
  // Line positions and selection belong to the destination.
  EXPECT_EQ(got.u, dstBefore.u);
  EXPECT_EQ(got.v, dstBefore.v);
  for (const auto& [key, n] : got.nodes) EXPECT_FALSE(n.selected);
  // The source is only read.
  EXPECT_TRUE(SameContent(session->content(0), src, 0.0, true));
}

TEST_F(PartCopy, ExchangedAxesTransposeAndSensesMirror) {
  struct Case {
    const char* name;
    int dstI, dstJ;
    ZS_RestoreMeshData dst;
    Node (*map)(int, int);
  };
  const Case cases[] = {
      {"transpose", 2, 3, {0, 0, 1, 0, 0, 0, 2, 3}, [](int i, int j) { return Node{j, i}; }},
      {"mirror I", 3, 2, {3, 0, 0, 1, 1, 0, 3, 2}, [](int i, int j) { return Node{3 - i, j}; }},
      {"mirror both", 3, 2, {3, 2, 0, 1, 1, 1, 3, 2}, [](int i, int j) { return Node{3 - i, 2 - j}; }},
      {"turn", 2, 3, {2, 0, 1, 0, 0, 1, 2, 3}, [](int i, int j) { return Node{2 - j, i}; }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    LoadPair(3, 2, c.dstI, c.dstJ, 300);
    const MeshContent src = session->content(0);
    ASSERT_EQ(Copy({0, 0, 0, 1, 0, 0, 3, 2}, c.dst), 0);
    EXPECT_TRUE(SameContent(session->content(1), MapMesh(src, c.dstI, c.dstJ, c.map), 0.0));
  }
}

TEST_F(PartCopy, ShiftedWindowCopiesPartOfTheSource) {
  LoadPair(4, 3, 2, 1, 400);
  const MeshContent src = session->content(0);
  ASSERT_EQ(Copy({1, 1, 0, 1, 0, 0, 2, 1}, {0, 0, 0, 1, 0, 0, 2, 1}), 0);
  EXPECT_TRUE(SameContent(session->content(1), SubMesh(src, 1, 3, 1, 2), 0.0));
}

// A selection with single nodes and single non-node vertices, some on runs
// whose start node is not selected.
json SelectedPartly(json mesh) {
  for (json& n : mesh["nodes"]) n["selected"] = false;
  for (int k : {0, 6, 7, 13}) mesh["nodes"][k]["selected"] = true;
  int vertexNo = 0;
  for (json& r : mesh["runs"])
    for (json& e : r["inner"])
      if (e["kind"] == "vertex") e["selected"] = (vertexNo++ % 3) != 1;
  return mesh;
}

// The part goes directly above the source with the art's opacity and
// blending; cutting the whole grid gives the same mesh and selection.
TEST_F(PartCopy, CuttingARectangleRenumbersFromItsCorner) {
  MeshRecipe layout = MeshRecipe::Varied(4, 2);
  layout.artOpacity = 0.75;
  layout.blend = "overlay";
  for (auto [i0, i1, j0, j1] : {std::array{0, 4, 0, 2}, std::array{1, 3, 1, 2}}) {
    SCOPED_TRACE(testing::Message() << i0 << ".." << i1 << " x " << j0 << ".." << j1);
    Load(DocJson({SelectedPartly(MeshJson(layout))}));
    const MeshContent src = session->content(0);
    ArtObject* part = nullptr;
    ASSERT_EQ(MakeMeshPart(session->art(0), &part, i0, i1, j0, j1), 0);
    ASSERT_EQ(session->artCount(), 2u);
    EXPECT_EQ(session->art(0), part);
    EXPECT_TRUE(SameContent(session->content(0), SubMesh(src, i0, i1, j0, j1), 0.0, true));
    if (i1 == 4) {
      EXPECT_TRUE(SameContent(session->content(1), src, 0.0, true));
    }
    const json top = Children(session->written())[0];
    EXPECT_EQ(std::make_tuple(top.value("opacity", 1.0), top.value("blend", std::string("normal"))),
              std::make_tuple(0.75, "overlay"));
  }
}

TEST_F(PartCopy, RectangleWithoutACellOrOutsideTheGridIsRefused) {
  Load(DocJson({MeshJson(MeshRecipe::Varied())}));  // 3 x 2
  const json before = session->written();
  const int bad[][4] = {{1, 1, 0, 2}, {0, 3, 2, 2}, {-1, 2, 0, 1}, {0, 4, 0, 1}, {0, 3, 0, 3}, {2, 1, 0, 2}};
  for (const auto& r : bad) {
    ArtObject* part = nullptr;
    EXPECT_EQ(MakeMeshPart(session->art(0), &part, r[0], r[1], r[2], r[3]), 1);
    EXPECT_EQ(std::make_tuple(part, session->artCount()), std::make_tuple(nullptr, size_t(1)));
  }
  EXPECT_EQ(session->written(), before);
}

}  // namespace
}  // namespace lbtest
