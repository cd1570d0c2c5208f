// Host errors inside clone, pattern and capture: the operations linked in
// directly against the host's suite tables, with one mesh's selection or
// size made to fail. That mesh is given up, the others are still done, and
// nothing is leaked.
#include <gtest/gtest.h>

#include "ColourDoc.h"
#include "Operations.h"
#include "Suites.h"
#include "color/ColorOpacity.h"
#include "host/SuiteRegistry.h"

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

template <class T>
const T* Find(const char* name, int32_t version) {
  return static_cast<const T*>(lb::host::findSuite(name, version));
}

class ColourFailure : public ::testing::Test {
 protected:
  void Load(const std::vector<json>& children) {
    host.reset();
    json doc = {{"latticebender", 1}, {"layers", {{{"name", "Layer 1"}, {"children", children}}}}};
    host = std::make_unique<lb::host::Host>(lb::io::readDocument(doc.dump()));
    mesh = *Find<AIMeshSuite>(kAIMeshSuite, kAIMeshSuiteVersion);
    gRealGetSelection = mesh.GetSelection;
    gRealGetSize = mesh.GetSize;
    lb::s::sMesh = &mesh;
    lb::s::sMeshVertexIterator =
        Find<AIMeshVertexIteratorSuite>(kAIMeshVertexIteratorSuite, kAIMeshVertexIteratorSuiteVersion);
    lb::s::sMeshSelection = Find<AIMeshSelectionSuite>(kAIMeshSelectionSuite, kAIMeshSelectionSuiteVersion);
    lb::s::sArt = Find<AIArtSuite>(kAIArtSuite, kAIArtSuiteVersion);
    lb::s::sAIMatchingArt = Find<AIMatchingArtSuite>(kAIMatchingArtSuite, kAIMatchingArtSuiteVersion);
    lb::s::sMdMemory = Find<AIMdMemorySuite>(kAIMdMemorySuite, kAIMdMemorySuiteVersion);
    lb::s::sMath = Find<AIRealMathSuite>(kAIRealMathSuite, kAIRealMathSuiteVersion);
    lb::s::sRaster = Find<AIRasterSuite>(kAIRasterSuite, kAIRasterSuiteVersion);
    lb::s::sPlaced = Find<AIPlacedSuite>(kAIPlacedSuite, kAIPlacedSuiteVersion);
    lb::s::sPathStyle = Find<AIPathStyleSuite>(kAIPathStyleSuite, kAIPathStyleSuiteVersion);
    ASSERT_NE(lb::s::sRaster, nullptr);
    before = host->counters();
    CColorOpacity::sm_bUseColor = 1;
    CColorOpacity::sm_bUseOpacity = 1;
  }
  void TearDown() override {
    CColorOpacity::sm_bUseColor = 1;
    CColorOpacity::sm_bUseOpacity = 0;
    gFailMesh = nullptr;
    lb::s::sMesh = nullptr;
    lb::s::sMeshVertexIterator = nullptr;
    lb::s::sMeshSelection = nullptr;
    lb::s::sArt = nullptr;
    lb::s::sAIMatchingArt = nullptr;
    lb::s::sMdMemory = nullptr;
    lb::s::sMath = nullptr;
    lb::s::sRaster = nullptr;
    lb::s::sPlaced = nullptr;
    lb::s::sPathStyle = nullptr;
    host.reset();
  }
  AIArtHandle Art(size_t k) const { return host->document().layers()[0]->children[k].get(); }
  MeshOut Out(size_t k) const {
    return MeshOut(json::parse(lb::io::writeDocument(host->document())).at("layers").at(0).at("children").at(k));
  }

  std::unique_ptr<lb::host::Host> host;
  AIMeshSuite mesh{};
  lb::host::Counters before;
};

MeshRecipe Full(int tag, int I, int J, double x0 = 0) {
  MeshRecipe s;
  s.tag = tag;
  s.I = I;
  s.J = J;
  s.selected = Rect(0, I, 0, J);
  s.at = [x0](int i, int j) { return std::pair<double, double>{x0 + 10.0 * i, 10.0 * j}; };
  return s;
}

enum class Fail { kSelection, kSize };

TEST_F(ColourFailure, CloneGivesUpOneTargetAndFillsTheNext) {
  for (Fail f : {Fail::kSelection, Fail::kSize}) {
    Load({MeshJson(Full(0, 1, 1)), MeshJson(Full(1, 1, 1)), MeshJson(Full(2, 1, 1))});
    gFailMesh = Art(1);
    if (f == Fail::kSelection) mesh.GetSelection = FailingGetSelection;
    if (f == Fail::kSize) mesh.GetSize = FailingGetSize;
    lb::color::Copy(0, 0);
    EXPECT_EQ(Out(1).colorCode(1, 1), Code(1, 1, 1));
    EXPECT_EQ(Out(2).colorCode(1, 1), Code(0, 1, 1));
    EXPECT_EQ(Out(2).opacityCode(0, 1), Code(0, 0, 1));
    EXPECT_TRUE(host->counters() == before);
  }
}

TEST_F(ColourFailure, PatternGoesOnWithTheNextMesh) {
  MeshRecipe a = Full(0, 3, 1);
  a.selected = {{0, 0}};
  MeshRecipe b = a;
  b.tag = 1;
  Load({MeshJson(a), MeshJson(b)});
  gFailMesh = Art(0);
  mesh.GetSize = FailingGetSize;
  lb::color::Pattern(0, 0);
  EXPECT_EQ(Out(0).colorCode(3, 1), Code(0, 3, 1));
  EXPECT_EQ(Out(1).colorCode(3, 1), Code(1, 0, 0));
  EXPECT_TRUE(host->counters() == before);
}

TEST_F(ColourFailure, CaptureGoesOnWithTheNextMesh) {
  ImageRecipe im;
  im.width = im.height = 2;
  im.matrix = {20, 0, 0, 20, -5, 35};
  im.pixels = {10, 20, 30, 10, 20, 30, 10, 20, 30, 10, 20, 30};
  for (bool placed : {false, true}) {
    SCOPED_TRACE(placed);
    im.type = placed ? "placed" : "raster";
    Load({MeshJson(Full(0, 1, 1)), MeshJson(Full(1, 1, 1)), ImageJson(im)});
    gFailMesh = Art(0);
    mesh.GetSelection = FailingGetSelection;
    lb::color::CatchFromRaster(1);
    EXPECT_EQ(Out(0).colorCode(0, 0), Code(0, 0, 0));
    EXPECT_EQ(Out(1).color(0, 0), (json{{"rgb", {10 / 255.0f, 20 / 255.0f, 30 / 255.0f}}}));
    EXPECT_EQ(host->document().layers()[0]->children.size(), 3u);
    EXPECT_TRUE(host->counters() == before);
  }
}

TEST_F(ColourFailure, SurfaceCaptureGoesOnWithTheNextMesh) {
  Load({MeshJson(Full(0, 1, 1)), MeshJson(Full(1, 1, 1)), MeshJson(Full(2, 1, 1))});
  gFailMesh = Art(0);
  mesh.GetSelection = FailingGetSelection;
  lb::color::CatchFromMeshSurface(0);
  EXPECT_EQ(Out(0).colorCode(1, 0), Code(0, 1, 0));
  EXPECT_NEAR(Out(1).color(1, 0).at("gray").get<double>(), GrayOfCode(Code(2, 1, 0)), 1e-9);
  EXPECT_TRUE(host->counters() == before);
}

}  // namespace
