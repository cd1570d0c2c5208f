// Colours and opacities: exact round-trips, interpolation without overshoot
// and continuous across patch borders, symmetric under reflection. Iterator
// and selection lifetimes: counters, AtEnd after edits and after the mesh
// is gone, visible versus detached selections.
#include <cstring>
#include <functional>
#include <random>

#include "EngineTest.h"

using namespace lbtest;

class Colors : public EngineTest {
 protected:
  void paintRandom(unsigned seed) {
    std::mt19937 rng(seed);
    std::uniform_real_distribution<double> d(0, 1);
    for (int j = 0; j <= m().sizeJ(); ++j)
      for (int i = 0; i <= m().sizeI(); ++i) {
        auto n = m().nodeData(i, j);
        n.color = Rgb(d(rng), d(rng), d(rng));
        n.opacity = d(rng);
        m().setNodeData(i, j, n);
      }
  }
};

TEST_F(Colors, EveryKindRoundTripsExactlyThroughTheVertexSuite) {
  s.mesh->InitCartesian(art, 1, 1);
  AIColor gray{}, cmyk{}, none{};
  gray.kind = kGrayColor;
  gray.c.g.gray = 0.1 + 0.2;  // not a short decimal
  cmyk.kind = kFourColor;
  cmyk.c.f = {1.0 / 3.0, 0.7, 1e-17, 1};
  none.kind = kNoneColor;
  AIMeshVertexIterator v = node(1, 1);
  for (const AIColor& c : {gray, cmyk, Rgb(0.3, 2.0 / 7.0, 0.999999999999), none}) {
    ASSERT_EQ(s.vtx->SetColor(v, &c), kNoErr);
    AIColor back{};
    s.vtx->GetColor(v, &back);
    EXPECT_EQ(back.kind, c.kind);
    EXPECT_EQ(std::memcmp(&back.c, &c.c, c.kind == kFourColor ? 32 : c.kind == kThreeColor ? 24 : 8), 0);
  }
  ASSERT_EQ(s.vtx->SetOpacity(v, 0.1 + 0.7), kNoErr);
  AIReal o = 0;
  s.vtx->GetOpacity(v, &o);
  EXPECT_EQ(o, 0.1 + 0.7);
}

TEST_F(Colors, NonNodeVerticesReportTheSurfaceAndRefuseSetting) {
  s.mesh->InitCartesian(art, 1, 1);
  paintRandom(3);
  AIMeshVertexIterator v = endOf(cut(0, 1, kAIMeshIAxis, 3));
  AIRealPoint uv{};
  s.vtx->GetUV(v, &uv);
  EXPECT_PT_NEAR(uv, (AIRealPoint{0.25, 1}), 1e-15);
  AIColor c{}, e{};
  s.vtx->GetColor(v, &c);
  s.mesh->EvalColor(art, uv, &e);
  EXPECT_EQ(c.c.rgb.green, e.c.rgb.green);
  AIRealPoint p{}, q{};
  s.vtx->GetPoint(v, &p);
  s.mesh->EvalPoint(art, uv, &q);
  EXPECT_PT_NEAR(p, q, 1e-12);
  EXPECT_EQ(s.vtx->SetColor(v, &c), kBadParameterErr);
  EXPECT_EQ(s.vtx->SetOpacity(v, 0.5), kBadParameterErr);
}

TEST_F(Colors, InterpolationHitsNodesStaysInRangeAndIsContinuous) {
  s.mesh->InitCartesian(art, 4, 3);
  m().setRelative({0, 0.1, 0.5, 0.6, 1}, {0, 0.7, 0.8, 1});
  paintRandom(7);
  const auto& us = m().relativeUs();
  const auto& vs = m().relativeVs();
  for (int j = 0; j <= 3; ++j)
    for (int i = 0; i <= 4; ++i) {
      const AIColor c = m().evalColor(us[i], vs[j]);
      EXPECT_NEAR(c.c.rgb.red, m().nodeData(i, j).color.c.rgb.red, 1e-12);
      EXPECT_NEAR(m().evalOpacity(us[i], vs[j]), m().nodeData(i, j).opacity, 1e-12);
    }
  // Within the range of the cell's corners.
  for (int k = 0; k < 4000; ++k) {
    const double u = (k % 67) / 66.0, v = (k / 67) / 60.0;
    if (v > 1) break;
    int i = 0, j = 0;
    while (i < 3 && us[i + 1] <= u) ++i;
    while (j < 2 && vs[j + 1] <= v) ++j;
    double lo = 1, hi = 0;
    for (int b = 0; b < 2; ++b)
      for (int a = 0; a < 2; ++a) {
        lo = std::min(lo, m().nodeData(i + a, j + b).opacity);
        hi = std::max(hi, m().nodeData(i + a, j + b).opacity);
      }
    const double o = m().evalOpacity(u, v);
    EXPECT_GE(o, lo - 1e-12);
    EXPECT_LE(o, hi + 1e-12);
  }
  // Continuous (and with matching slope) across an interior line.
  for (double v : {0.3, 0.75, 0.95}) {
    const double e = 1e-7;
    const double a = m().evalColor(0.5 - e, v).c.rgb.blue, b = m().evalColor(0.5 + e, v).c.rgb.blue;
    EXPECT_NEAR(a, b, 1e-5);
  }
}

TEST_F(Colors, MirroredNodesGiveTheMirroredField) {
  s.mesh->InitCartesian(art, 3, 2);
  m().setRelative({0, 0.2, 0.45, 1}, {0, 0.3, 1});
  paintRandom(11);
  lb::host::GradientMesh mirror = m();
  mirror.setRelative({0, 0.55, 0.8, 1}, {0, 0.3, 1});
  for (int j = 0; j <= 2; ++j)
    for (int i = 0; i <= 3; ++i) mirror.setNodeData(3 - i, j, m().nodeData(i, j));
  for (double u = 0; u <= 1; u += 0.05)
    for (double v = 0; v <= 1; v += 0.1) {
      EXPECT_NEAR(m().evalColor(u, v).c.rgb.red, mirror.evalColor(1 - u, v).c.rgb.red, 1e-12);
      EXPECT_NEAR(m().evalOpacity(u, v), mirror.evalOpacity(1 - u, v), 1e-12);
    }
}

TEST_F(Colors, MixedKindsEvaluateInTheKindOfTheFirstNode) {
  s.mesh->InitCartesian(art, 1, 1);
  auto n = m().nodeData(0, 0);
  n.color.kind = kGrayColor;
  n.color.c.g.gray = 0;
  m().setNodeData(0, 0, n);
  auto w = m().nodeData(1, 0);
  w.color = Rgb(0, 0, 0);  // black as RGB: gray 1
  m().setNodeData(1, 0, w);
  const AIColor c = m().evalColor(1, 0);
  EXPECT_EQ(c.kind, kGrayColor);
  EXPECT_NEAR(c.c.g.gray, 1, 1e-12);
}

TEST_F(Colors, InvertPointFindsTheParameterOfEvaluatedPoints) {
  s.mesh->InitCartesian(art, 3, 2);
  Bend(m(), 0.05);
  for (double u : {0.0, 0.13, 0.5, 0.77, 1.0})
    for (double v : {0.05, 0.4, 0.99}) {
      AIRealPoint p{}, uv{};
      AIBoolean on = false;
      s.mesh->EvalPoint(art, AIRealPoint{u, v}, &p);
      ASSERT_EQ(s.mesh->InvertPoint(art, p, &uv, &on), kNoErr);
      EXPECT_TRUE(on);
      EXPECT_PT_NEAR(uv, (AIRealPoint{u, v}), 1e-7);
    }
  AIRealPoint uv{};
  AIBoolean on = true;
  s.mesh->InvertPoint(art, AIRealPoint{5, 5}, &uv, &on);
  EXPECT_FALSE(on);
}

class Lifetimes : public EngineTest {};

TEST_F(Lifetimes, CountersFollowCopiesAddRefsAndReleases) {
  s.mesh->InitCartesian(art, 2, 2);
  const auto base = lb::host::liveCounters();
  AIMeshVertexIterator v = nodeIt(0, 0), c = nullptr;
  s.vtx->Copy(v, &c);
  EXPECT_EQ(lb::host::liveCounters().vertexIterators, base.vertexIterators + 2);
  EXPECT_EQ(s.vtx->AddRef(v), 2);
  EXPECT_EQ(s.vtx->Release(v), 1);
  EXPECT_EQ(lb::host::liveCounters().vertexIterators, base.vertexIterators + 2) << "still referenced";
  EXPECT_EQ(s.vtx->Release(v), 0);
  EXPECT_EQ(s.vtx->Release(c), 0);
  AIMeshSegmentIterator g = nullptr, g2 = nullptr;
  s.mesh->GetStartSegment(art, &g);
  s.seg->Copy(g, &g2);
  AIMeshSelection a = nullptr, b = nullptr;
  s.mesh->GetSelection(art, &a);
  s.sel->Copy(a, &b);
  AIMeshPatchIterator p = nullptr;
  s.mesh->GetStartPatch(art, &p);
  const auto mid = lb::host::liveCounters();
  EXPECT_EQ(std::vector<long>({mid.segmentIterators - base.segmentIterators, mid.selections - base.selections,
                               mid.patchIterators - base.patchIterators}),
            std::vector<long>({2, 2, 1}));
  for (auto* x : {g, g2}) s.seg->Release(x);
  for (auto* x : {a, b}) s.sel->Release(x);
  s.patch->Release(p);
  EXPECT_EQ(lb::host::liveCounters(), base);
}

TEST_F(Lifetimes, IteratorsOnAVanishedMeshAreAtEndAndFailSafely) {
  s.mesh->InitCartesian(art, 2, 2);
  AIMeshVertexIterator v = node(1, 1);
  AIMeshSegmentIterator g = segment(v, 0);
  AIMeshSelection sel = nullptr;
  s.mesh->GetSelection(art, &sel);
  ASSERT_EQ(session->host().document().disposeArt(art), kNoErr);
  EXPECT_EQ(std::make_pair(s.vtx->AtEnd(v), s.seg->AtEnd(g)), std::make_pair(AIBoolean(1), AIBoolean(1)));
  AIRealPoint p{};
  EXPECT_EQ(s.vtx->GetPoint(v, &p), kIterAtEndErr);
  EXPECT_EQ(s.seg->Next(g), kIterAtEndErr);
  EXPECT_EQ(s.sel->SelectVertex(sel, v, true), kIterAtEndErr);
  EXPECT_TRUE(s.sel->IsEmpty(sel));
  int32_t i, j;
  EXPECT_EQ(s.mesh->GetSize(art, &i, &j), kNoSuchArtErr);
  EXPECT_EQ(s.mesh->GetSize(nullptr, &i, &j), kBadParameterErr);
  s.sel->Release(sel);
  art = nullptr;
}

TEST_F(Lifetimes, WrongArtTypeIsRefused) {
  ArtObject* path = nullptr;
  ASSERT_EQ(session->host().document().newArt(kPathArt, kPlaceAboveAll, nullptr, &path), kNoErr);
  AIMeshVertexIterator v = nullptr;
  EXPECT_EQ(s.mesh->GetNode(path, 0, 0, &v), kWrongArtTypeErr);
  EXPECT_EQ(v, nullptr);
  EXPECT_EQ(s.mesh->GetNode(art, 2, 0, &v), kBadParameterErr);
  EXPECT_EQ(v, nullptr);
}

TEST_F(Lifetimes, VisibleSelectionShowsOnTheMeshDetachedOnesDoNot) {
  s.mesh->InitCartesian(art, 1, 1);
  AIMeshSelection vis = nullptr, mine = nullptr, full = nullptr;
  s.mesh->GetSelection(art, &vis);
  s.mesh->NewSelection(art, false, &mine);
  s.mesh->NewSelection(art, true, &full);
  EXPECT_EQ(std::make_pair(s.sel->IsFull(full), s.sel->IsEmpty(vis)), std::make_pair(AIBoolean(1), AIBoolean(1)));
  AIMeshVertexIterator v = node(1, 0);
  s.sel->SelectVertex(mine, v, true);
  EXPECT_EQ(std::make_pair(m().selected(m().node(1, 0)), art->selected()), std::make_pair(false, false));
  s.sel->SelectVertex(vis, v, true);
  EXPECT_TRUE(m().selected(m().node(1, 0)));
  EXPECT_TRUE(art->selected()) << "a visibly selected vertex selects its mesh art";
  EXPECT_EQ(m().selectedCount(), 1u) << "without selecting the whole mesh";
  AIMeshSegmentIterator g = segment(v, 0);  // (1, 0) -> (0, 0)
  EXPECT_FALSE(s.sel->ContainsSegment(vis, g));
  s.sel->SelectSegment(vis, g, true);
  EXPECT_TRUE(s.sel->ContainsSegment(vis, g));
  EXPECT_TRUE(m().selected(m().node(0, 0)));
  m().selectAll();
  EXPECT_TRUE(s.sel->IsFull(vis));
  // A vertex cut into a selected segment is selected, so the visible
  // selection stays full; the detached one does not know the new vertex.
  s.seg->InsertKnots(g, 0, 2);
  s.seg->Split(g, 0);
  EXPECT_EQ(std::make_pair(s.sel->IsFull(vis), s.sel->IsFull(full)), std::make_pair(AIBoolean(1), AIBoolean(0)));
  // One end unselected: the next vertex cut there is not selected.
  s.sel->SelectVertex(vis, v, false);
  s.seg->InsertKnots(g, 0, 1);  // g runs from (1, 0) to the first new vertex
  s.seg->Split(g, 0);
  EXPECT_FALSE(s.sel->IsFull(vis));
  EXPECT_EQ(m().selectedCount(), 4u);
  m().clearSelection();
  EXPECT_EQ(std::make_pair(s.sel->IsEmpty(vis), s.sel->IsEmpty(mine)), std::make_pair(AIBoolean(1), AIBoolean(0)));
  for (auto* x : {vis, mine, full}) s.sel->Release(x);
}

// Clearing skips a mesh known to have nothing selected, so every way of
// selecting a vertex on a fresh grid must leave it for clearing to find.
TEST_F(Lifetimes, ClearingFindsAVertexSelectedAnyWay) {
  const std::vector<std::pair<const char*, std::function<void()>>> ways = {
      {"node", [&] { m().setSelected(m().node(1, 0), true); }},
      {"inner vertex", [&] {
         AIMeshSegmentIterator g = along(node(0, 0), kAIMeshIAxis);
         s.seg->InsertKnots(g, 0, 1);
         s.seg->Split(g, 0);
         m().setSelected(m().segmentEnd({m().node(0, 0), lb::host::kDirIFwd}), true);
       }},
      {"node data", [&] {
         lb::host::MeshNodeData d = m().nodeData(1, 1);
         d.selected = true;
         m().setNodeData(1, 1, d);
       }},
      {"run data", [&] {
         lb::host::MeshRunData r = m().runData(1, 0, 0);
         r.points.insert(r.points.begin() + 2, 3, r.points[1]);
         r.inner = {{true, true, {false, false}}};
         ASSERT_TRUE(m().setRunData(1, 0, 0, r));
       }},
      {"all", [&] { m().selectAll(); }},
  };
  for (const auto& [name, select] : ways) {
    SCOPED_TRACE(name);
    s.mesh->InitCartesian(art, 1, 1);
    select();
    EXPECT_FALSE(m().isSelectionEmpty());
    m().clearSelection();
    EXPECT_EQ(m().selectedCount(), 0u);
  }
}

// Selecting a whole mesh writes no flag: every reader must still see each
// vertex selected, also those edits make later, and deselecting one vertex
// any way must leave all the others selected.
TEST_F(Lifetimes, WholeSelectionHoldsThroughEditsAndLosesOneVertexAtATime) {
  const std::vector<std::pair<const char*, std::function<void()>>> deselect = {
      {"vertex", [&] { m().setSelected(m().node(0, 1), false); }},
      {"node data", [&] {
         lb::host::MeshNodeData d = m().nodeData(0, 1);
         d.selected = false;
         m().setNodeData(0, 1, d);
       }},
      {"run data", [&] {
         lb::host::MeshRunData r = m().runData(1, 0, 0);  // holds the vertex cut below
         r.inner.at(0).selected = false;
         ASSERT_TRUE(m().setRunData(1, 0, 0, r));
       }},
  };
  for (const auto& [name, change] : deselect) {
    SCOPED_TRACE(name);
    s.mesh->InitCartesian(art, 1, 1);
    AIMeshSegmentIterator g = along(node(0, 0), kAIMeshJAxis);
    s.seg->InsertKnots(g, 0, 1);
    s.seg->Split(g, 0);  // a vertex on the run from (0, 0) along J
    m().selectAll();
    int32_t k = -1;
    ASSERT_EQ(s.mesh->InsertU(art, 0.5, &k), kNoErr);
    EXPECT_TRUE(m().isSelectionFull());
    EXPECT_EQ(std::tuple(m().selected(m().node(1, 0)), m().nodeData(1, 1).selected,
                         m().runData(1, 0, 0).inner.at(0).selected),
              std::tuple(true, true, true));
    const size_t all = m().vertexCount();
    EXPECT_EQ(m().selectedCount(), all);
    change();
    EXPECT_EQ(m().selectedCount(), all - 1);
    EXPECT_TRUE(m().selected(m().node(1, 1)));
  }
}

TEST_F(Lifetimes, HitVertexFindsTheNearestWithinTolerance) {
  s.mesh->InitCartesian(art, 2, 2);
  AIMeshVertexIterator v = nullptr;
  ASSERT_EQ(s.hit->HitVertex(art, AIRealPoint{0.52, 0.49}, 0.05, &v), kNoErr);
  ASSERT_NE(v, nullptr);
  int32_t i, j;
  s.vtx->GetNodeIndex(v, &i, &j);
  EXPECT_EQ(std::pair(i, j), std::pair(1, 1));
  s.vtx->Release(v);
  ASSERT_EQ(s.hit->HitVertex(art, AIRealPoint{0.25, 0.25}, 0.05, &v), kNoErr);
  EXPECT_EQ(v, nullptr);
}
