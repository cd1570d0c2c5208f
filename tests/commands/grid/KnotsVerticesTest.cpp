// Knots to vertices and back (134, 135): which segments are touched, the
// exact points after each delete, the node selection afterwards, and that
// the surface stays put when only the kinds of points change.
#include "commands/grid/KnotsDoc.h"

namespace knots {
namespace {

// A 2 x 1 mesh: the bottom run from (0, 0) has two knots, the one from
// (1, 0) a knot and an unselected vertex, the left side a knot.
MeshDoc TwoCells() {
  MeshDoc d;
  d.I = 2;
  d.J = 1;
  d.runs[{0, 0, 0}] = MakeRun(MeshDoc::NodeP(0, 0), MeshDoc::NodeP(1, 0), "kk");
  d.runs[{0, 1, 0}] = MakeRun(MeshDoc::NodeP(1, 0), MeshDoc::NodeP(2, 0), "kv");
  d.runs[{1, 0, 0}] = MakeRun(MeshDoc::NodeP(0, 0), MeshDoc::NodeP(0, 1), "k");
  return d;
}

struct SplitCase {
  const char* name;
  NodeSet selected;
  bool whole;
  const char* kinds[3];  // of runs I(0,0), I(1,0), J(0,0)
};

const SplitCase kSplitCases[] = {
    // Both ends of the first bottom run: its knots become (selected) vertices.
    {"BottomLeftEnds", {{0, 0}, {1, 0}}, false, {"VV", "kv", "k"}},
    // One end only: nothing changes anywhere.
    {"OneEndOnly", {{0, 0}}, false, {"kk", "kv", "k"}},
    // Nodes (1, 0) and (2, 0): the knot before the unselected vertex is not
    // inside a segment with two selected ends, nor is the one after.
    {"VertexBetween", {{1, 0}, {2, 0}}, false, {"kk", "kv", "k"}},
    // The whole mesh: every knot becomes a vertex, written selected with the mesh.
    {"Whole", {}, true, {"VV", "VV", "V"}},
};

class KnotsSplit : public ::testing::TestWithParam<SplitCase> {};

TEST_P(KnotsSplit, TurnsKnotsOfFullySelectedSegmentsIntoVertices) {
  const SplitCase& c = GetParam();
  MeshDoc d = TwoCells();
  d.selectedNodes = c.selected;
  d.wholeSelected = c.whole;
  Session s(lbtest::DocJson({d.art()}));
  const json before = Children(s.written())[0];
  const json after = s.runLayer(kCmdKnotsToVertices)[0];
  // The surface is unchanged: every run keeps its points exactly.
  const lbtest::MeshContent got = lbtest::ReadMesh(after), want = lbtest::ReadMesh(before);
  ASSERT_EQ(got.runs.size(), want.runs.size());
  for (const auto& [key, run] : want.runs) EXPECT_EQ(got.runs.at(key).points, run.points);
  const std::tuple<int, int, int> runs[3] = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}};
  for (int k = 0; k < 3; ++k) {
    const auto [axis, i, j] = runs[k];
    EXPECT_EQ(ReadRun(after, axis, i, j).inner, c.kinds[k]) << "run " << k;
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, KnotsSplit, ::testing::ValuesIn(kSplitCases), lbtest::ByName());

// Knots become vertices and the vertices become knots again: the mesh is
// back point for point and kind for kind.
TEST(KnotsVertices, RoundTripRestoresEveryRun) {
  MeshDoc d = TwoCells();
  d.selectedNodes = {{0, 0}, {1, 0}, {0, 1}};
  Session s(lbtest::DocJson({d.art()}));
  const json before = Children(s.written())[0];
  const json mid = s.runLayer(kCmdKnotsToVertices)[0];
  EXPECT_EQ(ReadRun(mid, 0, 0, 0).inner, "VV");
  EXPECT_EQ(ReadRun(mid, 1, 0, 0).inner, "V");
  const json back = s.runLayer(kCmdVerticesToKnots)[0];
  EXPECT_TRUE(lbtest::SameContent(lbtest::ReadMesh(back), lbtest::ReadMesh(before), 0.0, true));
}

// Deleting the knots of a segment (Alt: corrected, Ctrl: plain) leaves one
// cubic with the segment's two end handles. With nodes (0, 0) and (1, 0)
// selected, segments with an unselected end keep their knots and the vertex
// selection is as before; with the whole mesh every knot goes (on I(1, 0)
// the one before its vertex; the vertex stays, selected with the mesh).
TEST(KnotsDel, KeepsEndHandlesOfSelectedSegments) {
  struct Want {
    int axis, i, j;
    std::vector<int> kept;  // indices of the old points that remain, in order
    const char* kinds;
  };
  const std::vector<Want> twoNodes = {{0, 0, 0, {0, 1, 8, 9}, ""},
                                      {0, 1, 0, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, "kv"},
                                      {1, 0, 0, {0, 1, 2, 3, 4, 5, 6}, "k"}};
  const std::vector<Want> whole = {
      {0, 0, 0, {0, 1, 8, 9}, ""}, {0, 1, 0, {0, 1, 5, 6, 7, 8, 9}, "V"}, {1, 0, 0, {0, 1, 5, 6}, ""}};
  for (const char* mode : {"corrected", "plain", "whole"}) {
    SCOPED_TRACE(mode);
    const bool plain = mode[0] == 'p';
    MeshDoc d = TwoCells();
    d.wholeSelected = mode[0] == 'w';
    if (!d.wholeSelected) d.selectedNodes = {{0, 0}, {1, 0}};
    Session s(lbtest::DocJson({d.art()}));
    const json before = Children(s.written())[0];
    const json after = s.runLayer(kCmdKnotsToVertices, !plain, plain)[0];
    for (const Want& w : d.wholeSelected ? whole : twoNodes) {
      const LineRun old = ReadRun(before, w.axis, w.i, w.j), got = ReadRun(after, w.axis, w.i, w.j);
      std::vector<Pt> want;
      for (int k : w.kept) want.push_back(old.points[static_cast<size_t>(k)]);
      EXPECT_TRUE(SamePoints(got.points, want, 0.0)) << "run " << w.axis << " (" << w.i << ", " << w.j << ")";
      EXPECT_EQ(got.inner, w.kinds) << "run " << w.axis << " (" << w.i << ", " << w.j << ")";
    }
    EXPECT_EQ(MeshState(after).selectedNodes(), MeshState(before).selectedNodes());
    EXPECT_TRUE(after.value("selected", false));
  }
}

struct DelCase {
  const char* name;
  bool corrected;     // Alt: the stretch around removed vertices is redrawn
  const char* inner;  // the run from (0, 0) along I
  std::vector<int> kept;  // indices of the old points that remain, in order
  const char* kinds;
};

const DelCase kDelCases[] = {
    // With correction each stretch that loses vertices becomes one cubic
    // between the nearest remaining knot or vertex on either side, with
    // their handles; every other knot and vertex stays what it was.
    {"CorrectedAfterNode", true, "Vk", {0, 1, 5, 6, 7, 8, 9}, "k"},
    {"CorrectedBeforeNode", true, "kV", {0, 1, 2, 3, 4, 8, 9}, "k"},
    {"CorrectedSeparatedByAKnot", true, "VkV", {0, 1, 5, 6, 7, 11, 12}, "k"},
    {"CorrectedBetweenKnots", true, "kkVkk", {0, 1, 2, 3, 4, 5, 6, 7, 11, 12, 13, 14, 15, 16, 17, 18}, "kkkk"},
    {"CorrectedAroundAnUnselectedVertex", true, "VvV", {0, 1, 5, 6, 7, 11, 12}, "v"},
    {"CorrectedAdjacentVertices", true, "kVVk", {0, 1, 2, 3, 4, 11, 12, 13, 14, 15}, "kk"},
    {"CorrectedThreeInARow", true, "kVVVk", {0, 1, 2, 3, 4, 14, 15, 16, 17, 18}, "kk"},
    // Without it the host removes the vertex and keeps the outer handles of
    // the two pieces that meet there.
    {"PlainVertexThenKnot", false, "Vk", {0, 1, 5, 6, 7, 8, 9}, "k"},
    {"PlainKnotThenVertex", false, "kV", {0, 1, 2, 3, 4, 8, 9}, "k"},
    {"PlainUnselectedStays", false, "kv", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}, "kv"},
    {"PlainTwoSelected", false, "VkV", {0, 1, 5, 6, 7, 11, 12}, "k"},
};

class VerticesDel : public ::testing::TestWithParam<DelCase> {};

TEST_P(VerticesDel, RemovesSelectedVerticesAndKeepsTheNodeSelection) {
  const DelCase& c = GetParam();
  MeshDoc d;
  d.runs[{0, 0, 0}] = MakeRun(MeshDoc::NodeP(0, 0), MeshDoc::NodeP(1, 0), c.inner);
  d.runs[{1, 1, 0}] = MakeRun(MeshDoc::NodeP(1, 0), MeshDoc::NodeP(1, 1), "V");
  const auto [si, sj] = c.corrected ? std::pair{1, 0} : std::pair{0, 1};
  d.selectedNodes = {{si, sj}};
  Session s(lbtest::DocJson({d.art()}));
  const json before = Children(s.written())[0];
  const json after = s.runLayer(kCmdVerticesToKnots, c.corrected, !c.corrected)[0];
  const std::vector<Pt> o = ReadRun(before, 0, 0, 0).points;
  std::vector<Pt> want;
  for (int k : c.kept) want.push_back(o[static_cast<size_t>(k)]);
  const LineRun got = ReadRun(after, 0, 0, 0);
  EXPECT_TRUE(SamePoints(got.points, want, 0.0));
  EXPECT_EQ(got.inner, c.kinds);
  EXPECT_EQ(ReadRun(after, 1, 1, 0).inner, "");
  EXPECT_TRUE(NodeAt(after, si, sj).value("selected", false));
  EXPECT_FALSE(NodeAt(after, 0, 0).value("selected", false));
}

INSTANTIATE_TEST_SUITE_P(Cases, VerticesDel, ::testing::ValuesIn(kDelCases), lbtest::ByName());

}  // namespace
}  // namespace knots
