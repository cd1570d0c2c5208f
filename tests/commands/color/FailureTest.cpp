// Host errors inside clone, pattern and capture: the operations linked in
// directly against the host's suite tables, with one mesh's selection or
// size made to fail. That mesh is given up, the others are still done, and
// nothing is leaked.
#include <gtest/gtest.h>

#include "ColourDoc.h"
#include "Operations.h"
#include "Suites.h"
#include "color/ColorOpacity.h"

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

// One Linked session; the plug-in's mesh table is the session's editable
// copy, so one mesh's calls can be made to fail.
class ColourFailure : public LinkedTest {
 protected:
  void Load(const std::vector<json>& children) {
    LinkedTest::Load(DocJson(children));
    gRealGetSelection = mesh().GetSelection;
    gRealGetSize = mesh().GetSize;
    CColorOpacity::sm_bUseOpacity = 1;
  }
  void TearDown() override {
    gFailMesh = nullptr;
    LinkedTest::TearDown();
  }
};

json Full(int tag, int I, int J) { return MeshJson(Tagged(tag, I, J, Rect(0, I, 0, J))); }

enum class Fail { kSelection, kSize };

TEST_F(ColourFailure, CloneGivesUpOneTargetAndFillsTheNext) {
  for (Fail f : {Fail::kSelection, Fail::kSize}) {
    Load({Full(0, 1, 1), Full(1, 1, 1), Full(2, 1, 1)});
    gFailMesh = Mesh(1);
    if (f == Fail::kSelection) mesh().GetSelection = FailingGetSelection;
    if (f == Fail::kSize) mesh().GetSize = FailingGetSize;
    lb::color::Copy(0, 0);
    EXPECT_EQ(ColorCode(State(1), 1, 1), Code(1, 1, 1));
    EXPECT_EQ(ColorCode(State(2), 1, 1), Code(0, 1, 1));
    EXPECT_EQ(OpacityCode(State(2), 0, 1), Code(0, 0, 1));
    EXPECT_TRUE(NoLeaks());
  }
}

TEST_F(ColourFailure, PatternGoesOnWithTheNextMesh) {
  Load({MeshJson(Tagged(0, 3, 1, {{0, 0}})), MeshJson(Tagged(1, 3, 1, {{0, 0}}))});
  gFailMesh = Mesh(0);
  mesh().GetSize = FailingGetSize;
  lb::color::Pattern(0, 0);
  EXPECT_EQ(ColorCode(State(0), 3, 1), Code(0, 3, 1));
  EXPECT_EQ(ColorCode(State(1), 3, 1), Code(1, 0, 0));
  EXPECT_TRUE(NoLeaks());
}

TEST_F(ColourFailure, CaptureGoesOnWithTheNextMesh) {
  ImageRecipe im;
  im.width = im.height = 2;
  im.matrix = {20, 0, 0, 20, -5, 35};
  im.pixels = {10, 20, 30, 10, 20, 30, 10, 20, 30, 10, 20, 30};
  for (bool placed : {false, true}) {
    SCOPED_TRACE(placed);
    im.type = placed ? "placed" : "raster";
    Load({Full(0, 1, 1), Full(1, 1, 1), ImageJson(im)});
    gFailMesh = Mesh(0);
    mesh().GetSelection = FailingGetSelection;
    lb::color::CatchFromRaster(1);
    EXPECT_EQ(ColorCode(State(0), 0, 0), Code(0, 0, 0));
    EXPECT_EQ(State(1).node(0, 0).at("color"), (json{{"rgb", {10 / 255.0f, 20 / 255.0f, 30 / 255.0f}}}));
    EXPECT_EQ(session->artCount(), 3u);
    EXPECT_TRUE(NoLeaks());
  }
}

TEST_F(ColourFailure, SurfaceCaptureGoesOnWithTheNextMesh) {
  Load({Full(0, 1, 1), Full(1, 1, 1), Full(2, 1, 1)});
  gFailMesh = Mesh(0);
  mesh().GetSelection = FailingGetSelection;
  lb::color::CatchFromMeshSurface(0);
  EXPECT_EQ(ColorCode(State(0), 1, 0), Code(0, 1, 0));
  EXPECT_NEAR(State(1).node(1, 0).at("color").at("gray").get<double>(), GrayOfCode(Code(2, 1, 0)), 1e-9);
  EXPECT_TRUE(NoLeaks());
}

}  // namespace
