// Structural edits keep the geometry they promise to keep: knots inserted
// and split off exactly, joins undo splits, grid lines inserted through the
// surface and deleted without moving the remaining lines.
#include <functional>

#include "host/mesh/Bezier.h"
#include "EngineTest.h"

using namespace lbtest;
using lb::host::bez::dist;

namespace {
constexpr double kTol = 1e-9;

void expectSamePoints(const std::vector<AIRealPoint>& a, const std::vector<AIRealPoint>& b) {
  ASSERT_EQ(a.size(), b.size());
  for (size_t k = 0; k < a.size(); ++k) EXPECT_LT(dist(a[k], b[k]), kTol) << "point " << k;
}

// The chain of cubics a continued by b (whose first point is a's last).
std::vector<AIRealPoint> chain(std::vector<AIRealPoint> a, const std::vector<AIRealPoint>& b) {
  a.insert(a.end(), b.begin() + 1, b.end());
  return a;
}
}  // namespace

// A one-cell mesh with bent runs and an iterator on its bottom run (from
// node (0, 0) along I).
class Knots : public EngineTest {
 protected:
  void SetUp() override {
    EngineTest::SetUp();
    s.mesh->InitCartesian(art, 1, 1);
    Bend(m(), 0.3);
    g = segment(node(0, 0), 0);
  }
  AIMeshSegmentIterator g = nullptr;
};

TEST_F(Knots, InsertKeepsTheCurveAndNumbersNewKnotsFromTheInsertionPoint) {
  const auto before = points(g);
  ASSERT_EQ(s.seg->InsertKnots(g, 0, 3), kNoErr);
  EXPECT_EQ(s.seg->CountKnots(g), 3);
  const auto after = points(g);
  EXPECT_LT(ChainDeviation(before, after), kTol);
  // Equal parameter shares: knot k sits at t = (k + 1) / 4 of the old piece.
  for (int k = 0; k < 3; ++k)
    EXPECT_LT(dist(after[3 * k + 3], lb::host::bez::cubicAt(before.data(), (k + 1) / 4.0)), kTol);
  // Appending at the end (m = count) subdivides the last piece only.
  ASSERT_EQ(s.seg->InsertKnots(g, 3, 1), kNoErr);
  const auto appended = points(g);
  for (int k = 0; k < 9; ++k) EXPECT_EQ(appended[k].h, after[k].h);
  EXPECT_LT(ChainDeviation(before, appended), kTol);
  EXPECT_EQ(s.seg->InsertKnots(g, 6, 1), kBadParameterErr);
}

TEST_F(Knots, InsertFromTheFarEndCountsKnotsFromThatEnd) {
  s.seg->InsertKnots(g, 0, 1);
  const auto fwd = points(g);
  s.seg->Reverse(g);
  ASSERT_EQ(s.seg->InsertKnots(g, 0, 1), kNoErr);  // before knot 0 seen from (1, 0)
  s.seg->Reverse(g);
  const auto after = points(g);
  ASSERT_EQ(after.size(), 10u);
  // The first piece (from (0, 0)) is untouched; the second was split.
  for (int k = 0; k < 4; ++k) EXPECT_EQ(after[k].h, fwd[k].h);
  EXPECT_LT(ChainDeviation(fwd, after), kTol);
}

TEST_F(Knots, DeleteKeepsTheMergedPiecesOuterHandles) {
  s.seg->InsertKnots(g, 0, 4);
  const auto p = points(g);  // 16 points, knots at 3, 6, 9, 12
  ASSERT_EQ(s.seg->DeleteKnots(g, 1, 2), kNoErr);
  const auto q = points(g);
  ASSERT_EQ(q.size(), 10u);
  // Knot 0 stays, then the merged piece from knot 0 to old knot 3.
  for (int k = 0; k <= 4; ++k) EXPECT_EQ(q[k].h, p[k].h);
  EXPECT_EQ(std::make_pair(q[5].h, q[6].h), std::make_pair(p[11].h, p[12].h));
  EXPECT_EQ(s.seg->DeleteKnots(g, 1, 5), kBadParameterErr);
}

TEST_F(Knots, SplitThenJoinRestoresTheSegmentAndReportsTheKnot) {
  s.seg->InsertKnots(g, 0, 3);
  const auto whole = points(g);
  ASSERT_EQ(s.seg->Split(g, 1), kNoErr);
  EXPECT_EQ(s.seg->CountKnots(g), 1) << "the iterator stays on the first part";
  AIMeshSegmentIterator next = nullptr;
  s.seg->Copy(g, &next);
  s.seg->NextOnAxis(next);
  EXPECT_EQ(s.seg->CountKnots(next), 1);
  expectSamePoints(whole, chain(points(g), points(next)));
  int32_t knot = -1;
  ASSERT_EQ(s.seg->Join(g, &knot), kNoErr);
  EXPECT_EQ(knot, 1);
  expectSamePoints(whole, points(g));
  EXPECT_TRUE(s.seg->AtEnd(next)) << "its start vertex is a knot again";
  EXPECT_EQ(s.seg->CountKnots(next), 0);
  // A segment ending at a node cannot be joined.
  EXPECT_EQ(s.seg->Join(g, &knot), kBadParameterErr);
  s.seg->Release(next);
}

TEST_F(Knots, SetPointsMovesVerticesButSetPointLeavesHandles) {
  const AIRealPoint start{-1, -2};
  ASSERT_EQ(s.seg->SetPoints(g, 0, 1, &start), kNoErr);
  AIMeshVertexIterator n = node(0, 0);
  AIRealPoint p{}, h{};
  s.vtx->GetPoint(n, &p);
  EXPECT_EQ(p.h, -1);
  // The J run from the same node starts there too.
  EXPECT_EQ(points(segment(n, 1))[0].v, -2);
  s.vtx->GetTangent(n, 1, &h);
  const AIRealPoint moved{5, 5};
  s.vtx->SetPoint(n, &moved);
  AIRealPoint h2{};
  s.vtx->GetTangent(n, 1, &h2);
  EXPECT_PT_NEAR(h, h2, 0);
  EXPECT_EQ(s.seg->SetPoints(g, 2, 3, &moved), kBadParameterErr);
}

TEST_F(Knots, ReshapePassesThroughTheGivenPoint) {
  const AIRealPoint target{0.4, 0.25};
  ASSERT_EQ(s.seg->Reshape(g, 0.4, &target), kNoErr);
  EXPECT_LT(dist(lb::host::bez::cubicAt(points(g).data(), 0.4), target), kTol);
  EXPECT_EQ(s.seg->Reshape(g, 0, &target), kBadParameterErr);
}

class GridLines : public EngineTest {};

TEST_F(GridLines, InsertKeepsTheSurfaceAndSplitsCrossingRunsExactly) {
  s.mesh->InitCartesian(art, 3, 2);
  Bend(m(), 0.08);
  const lb::host::GradientMesh old = m();
  std::vector<std::vector<AIRealPoint>> crossing;
  for (int j = 0; j <= 2; ++j) crossing.push_back(old.runData(0, 1, j).points);
  int32_t ni = -1;
  ASSERT_EQ(s.mesh->InsertU(art, 1.3, &ni), kNoErr);
  EXPECT_EQ(std::pair(ni, m().sizeI()), std::pair(2, 4));
  const double u1 = old.relativeU(1), u2 = old.relativeU(2);
  AIReal unew = 0;
  s.mesh->GetRelativeU(art, 2, &unew);
  EXPECT_NEAR(unew, u1 + 0.3 * (u2 - u1), 1e-15);
  for (int j = 0; j <= 2; ++j) {
    const auto joined = chain(m().runData(0, 1, j).points, m().runData(0, 2, j).points);
    EXPECT_LT(ChainDeviation(crossing[j], joined), kTol) << "run along I on line j = " << j;
    // The new node sits at the crossing run's chain parameter 0.3.
    EXPECT_LT(dist(m().nodeData(2, j).p, lb::host::bez::cubicAt(crossing[j].data(), 0.3)), kTol);
  }
  // Without knots the Coons surface is unchanged everywhere.
  for (double u = 0; u <= 1; u += 0.0625)
    for (double v = 0; v <= 1; v += 0.125) EXPECT_LT(dist(old.evalPoint(u, v), m().evalPoint(u, v)), kTol);
  // The new nodes take the colour the surface had there.
  EXPECT_EQ(s.mesh->InsertU(art, 2.0, &ni), kBadParameterErr);
  EXPECT_EQ(s.mesh->InsertU(art, 4.5, &ni), kBadParameterErr);
}

TEST_F(GridLines, InsertVAndNewNodePaint) {
  s.mesh->InitCartesian(art, 2, 2);
  Bend(m(), 0.05);
  for (int j = 0; j <= 2; ++j)
    for (int i = 0; i <= 2; ++i) {
      AIMeshVertexIterator n = node(i, j);
      const AIColor c = Rgb(0.5 * i, 0.5 * j, (i + j) % 2);
      s.vtx->SetColor(n, &c);
      s.vtx->SetOpacity(n, 0.25 + 0.25 * j);
    }
  const lb::host::GradientMesh old = m();
  int32_t nj = -1;
  ASSERT_EQ(s.mesh->InsertV(art, 0.75, &nj), kNoErr);
  EXPECT_EQ(std::pair(nj, m().sizeJ()), std::pair(1, 3));
  const double vnew = m().relativeV(1);
  EXPECT_DOUBLE_EQ(vnew, 0.375);
  for (int i = 0; i <= 2; ++i) {
    const AIColor want = old.evalColor(m().relativeU(i), vnew);
    const auto got = m().nodeData(i, 1);
    EXPECT_NEAR(got.color.c.rgb.red, want.c.rgb.red, 1e-12);
    EXPECT_NEAR(got.color.c.rgb.blue, want.c.rgb.blue, 1e-12);
    EXPECT_NEAR(got.opacity, old.evalOpacity(m().relativeU(i), vnew), 1e-12);
  }
  for (double u = 0; u <= 1; u += 0.125)
    for (double v = 0; v <= 1; v += 0.0625) EXPECT_LT(dist(old.evalPoint(u, v), m().evalPoint(u, v)), kTol);
  // Old nodes keep their paint under their new indices.
  EXPECT_EQ(m().nodeData(2, 3).color.c.rgb.green, 1.0);
}

// A fresh grid's new nodes share its one paint; once one node's colour or
// opacity is set, whichever way, new nodes must take the surface's again.
TEST_F(GridLines, NewNodesFollowPaintSetOnAFreshGrid) {
  const AIColor red = Rgb(1, 0, 0);
  const std::vector<std::pair<const char*, std::function<void()>>> changes = {
      {"colour", [&] { s.vtx->SetColor(node(0, 0), &red); }},
      {"opacity", [&] { s.vtx->SetOpacity(node(0, 0), 0.2); }},
      {"node data", [&] {
         lb::host::MeshNodeData d = m().nodeData(0, 0);
         d.color = red;
         m().setNodeData(0, 0, d);
       }},
  };
  for (const auto& [name, change] : changes) {
    SCOPED_TRACE(name);
    s.mesh->InitCartesian(art, 2, 2);
    change();
    const lb::host::GradientMesh old = m();
    int32_t ni = -1;
    ASSERT_EQ(s.mesh->InsertU(art, 0.5, &ni), kNoErr);
    const auto got = m().nodeData(1, 0);
    const AIColor want = old.evalColor(0.25, 0);
    EXPECT_NEAR(got.color.c.rgb.red, want.c.rgb.red, 1e-12);
    EXPECT_NEAR(got.color.c.rgb.green, want.c.rgb.green, 1e-12);
    EXPECT_NEAR(got.opacity, old.evalOpacity(0.25, 0), 1e-12);
  }
}

TEST_F(GridLines, InsertThroughAVertexMakesItTheNode) {
  s.mesh->InitCartesian(art, 1, 1);
  AIMeshVertexIterator v = endOf(cut(0, 0, kAIMeshIAxis));
  AIMeshSelection sel = nullptr;
  s.mesh->GetSelection(art, &sel);
  s.sel->SelectVertex(sel, v, true);
  int32_t ni = -1;
  ASSERT_EQ(s.mesh->InsertU(art, 0.5, &ni), kNoErr);
  EXPECT_FALSE(s.vtx->AtEnd(v)) << "the vertex lives on as the node";
  EXPECT_TRUE(s.vtx->IsNode(v));
  int32_t i = -1, j = -1;
  s.vtx->GetNodeIndex(v, &i, &j);
  EXPECT_EQ(std::pair(i, j), std::pair(1, 0));
  EXPECT_TRUE(s.sel->ContainsVertex(sel, v));
  EXPECT_EQ(m().vertexCount(), 6u);
  s.sel->Release(sel);
}

TEST_F(GridLines, DeleteLeavesCrossingsAsVerticesAndTheOtherLinesInPlace) {
  s.mesh->InitCartesian(art, 3, 3);
  Bend(m(), 0.06);
  const lb::host::GradientMesh old = m();
  AIMeshVertexIterator crossing = node(1, 0), inner = node(1, 1), gone = node(1, 2), keep = node(2, 1);
  ASSERT_EQ(s.mesh->DeleteGridLines(art, 1, 2), kNoErr);  // line i = 1 and line j = 2
  EXPECT_EQ(std::pair(m().sizeI(), m().sizeJ()), std::pair(2, 2));
  // The crossing lives on as a vertex with two segments.
  EXPECT_EQ(std::make_tuple(s.vtx->AtEnd(crossing), s.vtx->IsNode(crossing), s.vtx->CountSegments(crossing)),
            std::make_tuple(false, false, 2));
  EXPECT_FALSE(s.vtx->IsNode(inner));
  EXPECT_TRUE(s.vtx->AtEnd(gone)) << "(1, 2) lay on both removed lines";
  AIRealPoint p{};
  EXPECT_EQ(s.vtx->GetPoint(gone, &p), kIterAtEndErr);
  int32_t i = -1, j = -1;
  s.vtx->GetNodeIndex(keep, &i, &j);
  EXPECT_EQ(std::pair(i, j), std::pair(1, 1));
  // Row j = 0 still has the same shape, now one run with a vertex inside.
  const auto oldRow =
      chain(chain(old.runData(0, 0, 0).points, old.runData(0, 1, 0).points), old.runData(0, 2, 0).points);
  expectSamePoints(oldRow, chain(m().runData(0, 0, 0).points, m().runData(0, 1, 0).points));
  const std::vector<double> us{0, 2.0 / 3.0, 1};
  EXPECT_EQ(m().relativeUs(), us);
  EXPECT_EQ(s.mesh->DeleteGridLines(art, 0, 0.5), kBadParameterErr) << "border lines stay";
}

TEST_F(GridLines, InsertOnAKnotUsesItAndNewNodesFollowTheSelection) {
  s.mesh->InitCartesian(art, 1, 2);
  Bend(m(), 0.2);
  // Row j = 0 gets a knot at its middle; rows 1 and 2 stay single cubics.
  lb::host::GradientMesh& g = m();
  const lb::host::SegmentRef row0{g.node(0, 0), lb::host::kDirIFwd};
  ASSERT_TRUE(g.insertKnots(row0, 0, 1));
  const AIRealPoint knot = g.segmentPoints(row0)[3];
  g.setSelected(g.node(0, 1), true);
  g.setSelected(g.node(1, 1), true);
  g.setSelected(g.node(0, 2), true);
  int32_t ni = -1;
  ASSERT_EQ(s.mesh->InsertU(art, 0.5, &ni), kNoErr);
  ASSERT_EQ(ni, 1);
  const auto n0 = g.nodeData(1, 0);
  EXPECT_PT_NEAR(n0.p, knot, 0);
  EXPECT_EQ(g.runData(0, 0, 0).points.size(), 4u) << "the knot became the node, no piece is left over";
  EXPECT_FALSE(n0.selected);
  EXPECT_TRUE(g.nodeData(1, 1).selected) << "both ends of the cut segment were selected";
  EXPECT_FALSE(g.nodeData(1, 2).selected) << "only one end was selected";
  // A cut inside a piece leaves a C1 joint: smooth along I.
  EXPECT_TRUE(g.nodeData(1, 1).smooth[lb::host::kDirIBack]);
  EXPECT_TRUE(g.nodeData(1, 1).smooth[lb::host::kDirIFwd]);
  EXPECT_EQ(g.vertexCount(), 9u);
}
