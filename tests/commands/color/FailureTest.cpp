// Colour code linked in directly against the host's suite tables: the
// paint record and its three switches on real mesh nodes, and host errors
// inside the commands that go mesh by mesh (clone, pattern, capture, colour
// flip, selection shift) with one mesh's selection or size made to fail.
// That mesh is given up and left as it was, every other art ends as it
// does without the error, and nothing is leaked.
#include <gtest/gtest.h>

#include <functional>

#include "ColourDoc.h"
#include "HostRefs.h"
#include "Operations.h"
#include "Suites.h"
#include "color/ColorOpacity.h"
#include "color/ColorTransforms.h"
#include "select/Select.h"

using namespace coltest;

namespace {

AIArtHandle gFailMesh = nullptr;
AIErr (*gRealGetSelection)(AIArtHandle, AIMeshSelection*) = nullptr;
AIErr (*gRealGetSize)(AIArtHandle, int32_t*, int32_t*) = nullptr;

AIErr FailingGetSelection(AIArtHandle m, AIMeshSelection* s) {
  return m == gFailMesh ? kCantHappenErr : gRealGetSelection(m, s);
}
AIErr FailingGetSize(AIArtHandle m, int32_t* i, int32_t* j) {
  return m == gFailMesh ? kCantHappenErr : gRealGetSize(m, i, j);
}

enum class Fail { kNone, kSelection, kSize };

// One Linked session; the plug-in's mesh table is the session's editable
// copy, so one mesh's calls can be made to fail.
class ColourFailure : public LinkedTest {
 protected:
  // The first layer's art after `op` with mesh `failing` failing as `f`.
  json Run(const std::vector<json>& arts, const std::function<void()>& op, size_t failing, Fail f) {
    LinkedTest::Load(DocJson(arts));
    CColorOpacity::sm_bUseOpacity = 1;
    gRealGetSelection = mesh().GetSelection;
    gRealGetSize = mesh().GetSize;
    gFailMesh = Mesh(failing);
    if (f == Fail::kSelection) mesh().GetSelection = FailingGetSelection;
    if (f == Fail::kSize) mesh().GetSize = FailingGetSize;
    op();
    EXPECT_TRUE(NoLeaks());
    return Children(session->written());
  }
  void TearDown() override {
    gFailMesh = nullptr;
    LinkedTest::TearDown();
  }
};

json Full(int tag, int I, int J) { return MeshJson(Tagged(tag, I, J, Rect(0, I, 0, J))); }

TEST_F(ColourFailure, FailingMeshIsGivenUpAndTheOthersAreDone) {
  const std::vector<json> three = {Full(0, 1, 1), Full(1, 1, 1), Full(2, 1, 1)};
  const std::vector<json> pair = {MeshJson(Tagged(0, 3, 1, {{0, 0}})), MeshJson(Tagged(1, 3, 1, {{0, 0}}))};
  const std::vector<json> coded = {MeshJson(Coded(2, 1, {{0, 0}, {2, 1}})), MeshJson(Coded(2, 1, {{0, 0}, {2, 1}}))};
  const struct {
    const char* name;
    std::vector<json> arts;
    std::function<void()> op;
    size_t failing;
    Fail fail;
  } rows[] = {
      {"clone, target's selection", three, [] { lb::color::Copy(0, 0); }, 1, Fail::kSelection},
      {"clone, target's size", three, [] { lb::color::Copy(0, 0); }, 1, Fail::kSize},
      {"pattern", pair, [] { lb::color::Pattern(0, 0); }, 0, Fail::kSize},
      {"capture from a raster", {Full(0, 1, 1), Full(1, 1, 1), ImageJson(Plain(10, 20, 30))},
       [] { lb::color::CatchFromRaster(1); }, 0, Fail::kSelection},
      {"capture from a placed image", {Full(0, 1, 1), Full(1, 1, 1), ImageJson(Plain(10, 20, 30, true, "placed"))},
       [] { lb::color::CatchFromRaster(1); }, 0, Fail::kSelection},
      {"capture from a surface", three, [] { lb::color::CatchFromMeshSurface(0); }, 0, Fail::kSelection},
      {"flip colours", coded, [] { EXPECT_EQ(lb::color::Flip(kAIMeshIAxis), 0); }, 0, Fail::kSize},
      {"shift the selection", coded, [] { EXPECT_EQ(lb::sel::Shift(1, 0), 0); }, 0, Fail::kSize},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.name);
    const json clean = Run(r.arts, r.op, r.failing, Fail::kNone);
    const json before = Run(r.arts, [] {}, r.failing, Fail::kNone);
    const json got = Run(r.arts, r.op, r.failing, r.fail);
    ASSERT_EQ(got.size(), clean.size());
    for (size_t k = 0; k < got.size(); ++k) EXPECT_EQ(got[k], k == r.failing ? before[k] : clean[k]) << "art " << k;
    EXPECT_NE(clean, before) << "the operation should change something";
  }
}

// The per-mesh workers report the host's error to the command.
TEST_F(ColourFailure, WorkersReturnTheHostsError) {
  LinkedTest::Load(DocJson({MeshJson(Coded(2, 1, {{0, 0}, {2, 1}}))}));
  gRealGetSize = mesh().GetSize;
  mesh().GetSize = FailingGetSize;
  gFailMesh = Mesh(0);
  EXPECT_EQ(lb::color::_Flip(Mesh(0), kAIMeshIAxis), 1);
  EXPECT_EQ(lb::sel::_Shift(Mesh(0), 1, 0), 1);
}

// ---- The paint record ------------------------------------------------------

class ColorOpacityTest : public LinkedTest {
 protected:
  void SetUp() override {
    saved[0] = CColorOpacity::sm_bUseColor;
    saved[1] = CColorOpacity::sm_bUseOpacity;
    saved[2] = CColorOpacity::sm_bUseAll;
    Load({Coded(1, 1)});
    a = GetNodeRef(Mesh(0), 0, 0);
    b = GetNodeRef(Mesh(0), 1, 1);
  }
  void TearDown() override {
    a.reset();
    b.reset();
    CColorOpacity::sm_bUseColor = saved[0];
    CColorOpacity::sm_bUseOpacity = saved[1];
    CColorOpacity::sm_bUseAll = saved[2];
    LinkedTest::TearDown();
  }
  void Use(int color, int opacity, int all) {
    CColorOpacity::sm_bUseColor = color;
    CColorOpacity::sm_bUseOpacity = opacity;
    CColorOpacity::sm_bUseAll = all;
  }
  // Copies node a's paint onto node b through a record.
  void CopyAtoB() {
    CColorOpacity p;
    p.Read(a);
    p.Write(b);
  }
  int saved[3] = {};
  VertexRef a, b;
};

TEST_F(ColorOpacityTest, SwitchesStartAsColourOnly) {
  // Nothing in this process has touched them before the fixture saved them.
  EXPECT_EQ(std::vector<int>(saved, saved + 3), (std::vector<int>{1, 0, 0}));
}

TEST_F(ColorOpacityTest, EachSwitchMovesOnlyItsHalf) {
  struct Case {
    int color, opacity, all;
    bool colorMoves, opacityMoves;
  };
  const Case cases[] = {{1, 0, 0, true, false}, {0, 1, 0, false, true}, {0, 0, 0, false, false},
                        {1, 1, 0, true, true},  {0, 0, 1, true, true}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.color << c.opacity << c.all);
    a.reset();
    b.reset();
    Load({Coded(1, 1)});
    a = GetNodeRef(Mesh(0), 0, 0);
    b = GetNodeRef(Mesh(0), 1, 1);
    Use(c.color, c.opacity, c.all);
    CopyAtoB();
    const MeshState m = State(0);
    EXPECT_EQ(m.colorFrom(1, 1), c.colorMoves ? 0 : 3);
    EXPECT_EQ(m.opacityFrom(1, 1), c.opacityMoves ? 0 : 3);
    EXPECT_EQ(m.colorFrom(0, 0), 0);
  }
}

TEST_F(ColorOpacityTest, OpacityReadsAsOneWhenItTakesNoPart) {
  Use(1, 0, 0);
  CColorOpacity p;
  p.m_dOpacity = 0.25;
  p.Read(a);
  EXPECT_EQ(p.m_dOpacity, 1.0);
  Use(0, 1, 0);
  p.Read(a);
  EXPECT_EQ(p.m_dOpacity, OpacityOf(0, 4));
}

}  // namespace
