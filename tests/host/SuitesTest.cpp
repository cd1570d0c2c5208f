// The document suites as the plug-in sees them: acquired by name and
// version from the host's table and called with art handles.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <vector>

#include "AIArtSuites.h"
#include "AIFrameSuites.h"
#include "host/Document.h"
#include "host/Host.h"
#include "host/SuiteRegistry.h"
#include "io/Lbdoc.h"
#include "support/Geometry.h"
#include "support/MeshRecipe.h"

using lb::host::Document;
using lb::host::Host;

namespace {

template <class S>
const S* suite(const char* name, int32_t version) {
  const S* s = static_cast<const S*>(lb::host::findSuite(name, version));
  EXPECT_NE(s, nullptr) << name << " " << version;
  return s;
}

struct Suites : ::testing::Test {
  Host host;
  const AIArtSuite* art = suite<AIArtSuite>(kAIArtSuite, kAIArtSuiteVersion);
  const AIPathSuite* path = suite<AIPathSuite>(kAIPathSuite, kAIPathSuiteVersion);
  const AIPathStyleSuite* pathStyle = suite<AIPathStyleSuite>(kAIPathStyleSuite, kAIPathStyleSuiteVersion);
  const AIArtStyleSuite* artStyle = suite<AIArtStyleSuite>(kAIArtStyleSuite, kAIArtStyleSuiteVersion);
  const AIBlendStyleSuite* blend = suite<AIBlendStyleSuite>(kAIBlendStyleSuite, kAIBlendStyleSuiteVersion);
  const AIMatchingArtSuite* matching =
      suite<AIMatchingArtSuite>(kAIMatchingArtSuite, kAIMatchingArtSuiteVersion);
  const AIMdMemorySuite* memory = suite<AIMdMemorySuite>(kAIMdMemorySuite, kAIMdMemorySuiteVersion);
  const AIRealMathSuite* math = suite<AIRealMathSuite>(kAIRealMathSuite, kAIRealMathSuiteVersion);
  const AIRealBezierSuite* bezier = suite<AIRealBezierSuite>(kAIRealBezierSuite, kAIRealBezierSuiteVersion);
  const AIRandomSuite* random = suite<AIRandomSuite>(kAIRandomSuite, kAIRandomSuiteVersion);
  const AIRasterSuite* raster = suite<AIRasterSuite>(kAIRasterSuite, kAIRasterSuiteVersion);
  const AIPlacedSuite* placed = suite<AIPlacedSuite>(kAIPlacedSuite, kAIPlacedSuiteVersion);

  Document& doc() { return host.document(); }

  void load(const std::string& json) { host.setDocument(lb::io::readDocument(json)); }

  // New art of the type (a path by default) above all.
  AIArtHandle newArt(int16_t type = kPathArt) {
    AIArtHandle a = nullptr;
    EXPECT_EQ(art->NewArt(type, kPlaceAboveAll, nullptr, &a), kNoErr);
    return a;
  }

  std::vector<std::string> matchNames(const AIMatchingArtSpec* layouts, int16_t n) {
    AIArtHandle** h = nullptr;
    int32_t count = -1;
    EXPECT_EQ(matching->GetMatchingArt(layouts, n, &h, &count), kNoErr);
    std::vector<std::string> out;
    for (int32_t k = 0; k < count; ++k) out.push_back((*h)[k]->name);
    if (h) {
      EXPECT_EQ(memory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(h)), kNoErr);
    }
    return out;
  }
};

using Names = std::vector<std::string>;

// A flat I x J mesh art object as .lbdoc JSON.
std::string mesh(const std::string& name, bool selected, int I, int J) {
  lbtest::MeshRecipe r;
  r.I = I, r.J = J, r.artSelected = selected;
  lbtest::json art = lbtest::MeshJson(r);
  art["name"] = name;
  return art.dump();
}

}  // namespace

TEST_F(Suites, HandlesAreValidated) {
  AIArtHandle p = newArt();
  AIArtHandle g = newArt(kGroupArt);
  int16_t type = 0;
  EXPECT_EQ(art->GetArtType(nullptr, &type), kBadParameterErr);
  EXPECT_EQ(art->GetArtType(p, nullptr), kBadParameterErr);
  // A handle of another document (or a disposed one) is not art of this one.
  Document other;
  other.addLayer("x");
  ArtObject* foreign = nullptr;
  ASSERT_EQ(other.newArt(kPathArt, kPlaceAboveAll, nullptr, &foreign), kNoErr);
  EXPECT_EQ(art->GetArtType(foreign, &type), kNoSuchArtErr);
  EXPECT_EQ(art->DisposeArt(foreign), kNoSuchArtErr);
  int16_t count = 0;
  EXPECT_EQ(path->GetPathSegmentCount(g, &count), kWrongArtTypeErr);
  EXPECT_EQ(path->GetPathSegmentCount(foreign, &count), kNoSuchArtErr);
  AIRasterRecord rec{};
  EXPECT_EQ(raster->GetRasterInfo(p, &rec), kWrongArtTypeErr);
  AIBoolean valid = 1;
  EXPECT_EQ(art->ValidArt(foreign, &valid), kNoErr);
  EXPECT_EQ(valid, 0);
  EXPECT_EQ(art->DisposeArt(p), kNoErr);
  EXPECT_EQ(art->ValidArt(g, &valid), kNoErr);
  EXPECT_EQ(valid, 1);
  EXPECT_EQ(art->DisposeArt(p), kNoSuchArtErr);
  AIArtHandle out = reinterpret_cast<AIArtHandle>(1);
  EXPECT_EQ(art->DuplicateArt(p, kPlaceAbove, g, &out), kNoSuchArtErr);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(art->NewArt(kPathArt, kPlaceAbove, g, nullptr), kBadParameterErr);
}

TEST_F(Suites, WalkTheTreeThroughTheArtSuite) {
  load(R"({"latticebender": 1, "layers": [
    {"name": "L", "children": [
      {"type": "path", "name": "a", "segments": [{"p": [0, 0]}]},
      {"type": "group", "name": "g", "children": [
        {"type": "path", "name": "g1", "segments": [{"p": [0, 0]}]},
        {"type": "path", "name": "g2", "segments": [{"p": [0, 0]}]}]},
      {"type": "path", "name": "c", "segments": [{"p": [0, 0]}]}]}]})");
  // Each call answers with the art it names (or none), so each is wired to its own walk.
  auto walk = [](auto call, std::vector<AIArtHandle> from) {
    Names out;
    for (AIArtHandle f : from) {
      AIArtHandle to = reinterpret_cast<AIArtHandle>(1);
      EXPECT_EQ(call(f, &to), kNoErr);
      out.push_back(to ? to->name : "none");
    }
    return out;
  };
  AIArtHandle layer = doc().layers()[0].get(), a = layer->children[0].get(), g = layer->children[1].get();
  AIArtHandle c = layer->children[2].get(), g1 = g->children[0].get(), g2 = g->children[1].get();
  EXPECT_EQ(walk(art->GetArtFirstChild, {layer, g, c}), (Names{"a", "g1", "none"}));  // a path has no children
  EXPECT_EQ(walk(art->GetArtSibling, {a, g, c, g1, g2}), (Names{"g", "c", "none", "g2", "none"}));
  EXPECT_EQ(walk(art->GetArtPriorSibling, {c, a}), (Names{"g", "none"}));
  EXPECT_EQ(walk(art->GetArtParent, {g1, g2, a}), (Names{"g", "g", "L"}));
}

TEST_F(Suites, MatchingArtHandsOutCountedMemory) {
  load(R"({"latticebender": 1, "layers": [
    {"name": "L", "children": [)" + mesh("m1", true, 1, 1) + R"(,
      {"type": "group", "name": "g", "children": [)" + mesh("m2", true, 1, 1) + ", " + mesh("m3", false, 1, 1) + R"(]},
      {"type": "raster", "name": "r", "selected": true, "width": 1, "height": 1, "pixels": "AA=="}]}]})");
  const long before = host.counters().memoryHandles;
  AIArtHandle** h = nullptr;
  int32_t n = 0;
  const AIMatchingArtSpec meshes{kMeshArt, kArtSelected, kArtSelected};
  ASSERT_EQ(matching->GetMatchingArt(&meshes, 1, &h, &n), kNoErr);
  ASSERT_EQ(n, 2);
  ASSERT_NE(h, nullptr);
  EXPECT_EQ((Names{(*h)[0]->name, (*h)[1]->name}), (Names{"m1", "m2"}));
  EXPECT_EQ(host.counters().memoryHandles, before + 1);
  size_t size = 0;
  EXPECT_EQ(memory->MdMemoryGetSize(reinterpret_cast<AIMdMemoryHandle>(h), &size), kNoErr);
  EXPECT_EQ(size, 2 * sizeof(AIArtHandle));
  EXPECT_EQ(memory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(h)), kNoErr);
  EXPECT_EQ(host.counters().memoryHandles, before);
  EXPECT_EQ(memory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(h)), kBadParameterErr);

  // No match: null handle, zero count, nothing to dispose.
  const AIMatchingArtSpec placedPattern{kPlacedArt, kArtSelected, kArtSelected};
  h = reinterpret_cast<AIArtHandle**>(1);
  n = 7;
  ASSERT_EQ(matching->GetMatchingArt(&placedPattern, 1, &h, &n), kNoErr);
  EXPECT_EQ(std::make_tuple(h, n, host.counters().memoryHandles), std::make_tuple(nullptr, 0, before));

  const AIMatchingArtSpec two[2] = {{kRasterArt, kArtSelected, kArtSelected}, {kPlacedArt, kArtSelected, kArtSelected}};
  EXPECT_EQ(matchNames(two, 2), (Names{"r"}));
  ASSERT_EQ(matching->GetSelectedArt(&h, &n), kNoErr);
  ASSERT_EQ(n, 3);
  EXPECT_EQ(memory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(h)), kNoErr);
  EXPECT_EQ(host.counters().memoryHandles, before);
  EXPECT_EQ(matching->GetMatchingArt(nullptr, 1, &h, &n), kBadParameterErr);
}

TEST_F(Suites, MemoryResizeKeepsContents) {
  AIMdMemoryHandle h = nullptr;
  ASSERT_EQ(memory->MdMemoryNewHandle(4, &h), kNoErr);
  std::memcpy(*h, "abcd", 4);
  ASSERT_EQ(memory->MdMemoryResize(h, 1000), kNoErr);
  EXPECT_EQ(std::memcmp(*h, "abcd", 4), 0);
  size_t size = 0;
  ASSERT_EQ(memory->MdMemoryGetSize(h, &size), kNoErr);
  EXPECT_EQ(size, 1000u);
  EXPECT_EQ(memory->MdMemoryDisposeHandle(h), kNoErr);
  EXPECT_EQ(memory->MdMemoryDisposeHandle(nullptr), kBadParameterErr);
}

TEST_F(Suites, AttributesAndMeshSelection) {
  load(R"({"latticebender": 1, "layers": [{"name": "L", "children": [)" + mesh("m", false, 2, 2) + "]}]}");
  AIArtHandle m = doc().layers()[0]->children[0].get();
  int32_t attr = -1;
  ASSERT_EQ(art->GetArtUserAttr(m, kArtSelected | kArtLocked, &attr), kNoErr);
  EXPECT_EQ(attr, 0);
  ASSERT_EQ(art->SetArtUserAttr(m, kArtSelected | kArtHidden, kArtSelected | kArtLocked), kNoErr);
  ASSERT_EQ(art->GetArtUserAttr(m, kArtSelected | kArtLocked | kArtHidden, &attr), kNoErr);
  EXPECT_EQ(attr, kArtSelected);  // locked was not in the mask
  const AIMatchingArtSpec layout{kMeshArt, kArtSelected, kArtSelected};
  EXPECT_EQ(matchNames(&layout, 1), (Names{"m"}));
  ASSERT_EQ(art->SetArtUserAttr(m, kArtSelected, 0), kNoErr);
  EXPECT_EQ(matchNames(&layout, 1), (Names{}));
  EXPECT_EQ(art->SetArtUserAttr(m, 0x100, 0), kBadParameterErr);
}

TEST_F(Suites, PathSegmentsSelectionAndLength) {
  AIArtHandle p = newArt();
  ASSERT_EQ(path->SetPathSegmentCount(p, 3), kNoErr);
  const AIPathSegment segs[3] = {{{0, 0}, {0, 0}, {0, 0}, 1}, {{3, 0}, {3, 0}, {3, 0}, 1}, {{3, 4}, {3, 4}, {3, 4}, 1}};
  ASSERT_EQ(path->SetPathSegments(p, 0, 3, segs), kNoErr);
  EXPECT_EQ(path->SetPathSegments(p, 2, 2, segs), kBadParameterErr);  // runs past the end
  EXPECT_EQ(path->SetPathSegments(p, -1, 1, segs), kBadParameterErr);
  AIPathSegment back[2];
  ASSERT_EQ(path->GetPathSegments(p, 1, 2, back), kNoErr);
  EXPECT_EQ(back[1].p.v, 4);
  AIReal len = 0;
  ASSERT_EQ(path->GetPathLength(p, &len, 0.01), kNoErr);
  EXPECT_NEAR(len, 7, 1e-12);
  ASSERT_EQ(path->SetPathClosed(p, 1), kNoErr);
  ASSERT_EQ(path->GetPathLength(p, &len, 0.01), kNoErr);
  EXPECT_NEAR(len, 12, 1e-12);
  AIRealBezier b{};
  ASSERT_EQ(path->GetPathBezier(p, 2, &b), kNoErr);  // the closing piece
  EXPECT_EQ(b.p0.v, 4);
  EXPECT_EQ(b.p3.h, 0);
  EXPECT_EQ(path->GetPathBezier(p, 3, &b), kBadParameterErr);
  ASSERT_EQ(path->SetPathClosed(p, 0), kNoErr);
  EXPECT_EQ(path->GetPathBezier(p, 2, &b), kBadParameterErr);

  // The anchor states are the document's (Doc.SelectionPathAnchorStates); the suite reads and sets them.
  int16_t state = -1;
  ASSERT_EQ(art->SetArtUserAttr(p, kArtSelected, kArtSelected), kNoErr);
  ASSERT_EQ(path->SetPathSegmentSelected(p, 2, kSegmentNotSelected), kNoErr);
  ASSERT_EQ(path->GetPathSegmentSelected(p, 2, &state), kNoErr);
  EXPECT_EQ(state, kSegmentNotSelected);
  ASSERT_EQ(path->GetPathSegmentSelected(p, 1, &state), kNoErr);
  EXPECT_EQ(state, kSegmentPointSelected);
  EXPECT_EQ(path->SetPathSegmentSelected(p, 1, 5), kBadParameterErr);
  EXPECT_EQ(path->GetPathSegmentSelected(p, 3, &state), kBadParameterErr);
}

TEST_F(Suites, NewPathLookAndGraphicStyles) {
  load(R"({"latticebender": 1,
    "styles": [{"name": "[LB][Axis]", "fill": null, "stroke": {"color": {"rgb": [1, 0, 0]}, "width": 3}, "opacity": 0.5}],
    "layers": [{"name": "L", "children": []}]})");
  AIArtHandle p = newArt();
  AIPathStyle st{};
  AIBoolean adv = 1;
  ASSERT_EQ(pathStyle->GetPathStyle(p, &st, &adv), kNoErr);
  // Stroked only, width 1, no advanced style.
  EXPECT_EQ(std::make_tuple(adv, st.fillPaint, st.strokePaint, st.stroke.width), std::make_tuple(0, 0, 1, 1.0));
  EXPECT_EQ(blend->GetOpacity(p), 1.0);
  EXPECT_EQ(blend->GetOpacity(nullptr), 1.0);
  EXPECT_EQ(blend->SetOpacity(p, 1.5), kBadParameterErr);
  EXPECT_EQ(blend->SetOpacity(p, NAN), kBadParameterErr);
  EXPECT_EQ(blend->SetBlendingMode(p, 16), kBadParameterErr);
  AIArtStyleHandle s = nullptr;
  ASSERT_EQ(artStyle->GetArtStyleByName(&s, "[LB][Axis]"), kNoErr);
  ASSERT_NE(s, nullptr);
  AIArtStyleHandle missing = reinterpret_cast<AIArtStyleHandle>(1);
  ASSERT_EQ(artStyle->GetArtStyleByName(&missing, "[LB][Node]"), kNoErr);
  EXPECT_EQ(missing, nullptr);
  ASSERT_EQ(artStyle->SetArtStyle(p, s), kNoErr);
  ASSERT_EQ(pathStyle->GetPathStyle(p, &st, nullptr), kNoErr);
  EXPECT_EQ(std::make_tuple(st.stroke.width, st.stroke.color.kind, st.stroke.color.c.rgb.red),
            std::make_tuple(3.0, kThreeColor, 1.0));
  EXPECT_EQ(blend->GetOpacity(p), 0.5);
  AIArtStyleHandle got = nullptr;
  ASSERT_EQ(artStyle->GetArtStyle(p, &got), kNoErr);
  EXPECT_EQ(got, s);
  const char* name = nullptr;
  ASSERT_EQ(artStyle->GetArtStyleName(s, &name), kNoErr);
  EXPECT_STREQ(name, "[LB][Axis]");
  EXPECT_EQ(artStyle->SetArtStyle(p, reinterpret_cast<AIArtStyleHandle>(&st)), kBadParameterErr);
  AIArtHandle g = newArt(kGroupArt);
  EXPECT_EQ(pathStyle->GetPathStyle(g, &st, nullptr), kWrongArtTypeErr);
}

TEST_F(Suites, BoundsKeyArtAndTransform) {
  load(R"({"latticebender": 1, "key": "k", "layers": [{"name": "L", "children": [
    {"type": "path", "id": "k", "segments": [{"p": [1, 2]}, {"p": [5, -3]}]}]}]})");
  AIArtHandle k = nullptr;
  ASSERT_EQ(art->GetKeyArt(&k), kNoErr);
  ASSERT_NE(k, nullptr);
  EXPECT_EQ(k->id, "k");
  AIRealRect r{};
  ASSERT_EQ(art->GetArtBounds(k, &r), kNoErr);
  EXPECT_EQ(std::vector<double>({r.left, r.top, r.right, r.bottom}), std::vector<double>({1, 2, 5, -3}));
  const AIRealMatrix shift{1, 0, 0, 1, 10, 0};
  ASSERT_EQ(art->TransformArt(k, &shift), kNoErr);
  ASSERT_EQ(art->GetArtBounds(k, &r), kNoErr);
  EXPECT_EQ(r.left, 11);
  ASSERT_EQ(art->DisposeArt(k), kNoErr);
  ASSERT_EQ(art->GetKeyArt(&k), kNoErr);
  EXPECT_EQ(k, nullptr);
}

TEST_F(Suites, RealMathInterpolationAnglesLengthsAndMatrices) {
  // Interpolation is measured from the second point (the one-third handle
  // rule: the other anchor first, the handle's own anchor second; the
  // handle lands a third of the chord from its anchor).
  const double third = 0.3333333432674408;
  const AIRealPoint other{9, 0}, own{0, 0};
  for (auto [t, want] : {std::pair{third, 9 * third}, {0.0, 0.0}, {1.0, 9.0}}) {
    AIRealPoint h{};
    math->AIRealPointInterpolate(&other, &own, t, &h);
    EXPECT_DOUBLE_EQ(h.h, want) << t;
    EXPECT_EQ(h.v, 0) << t;
  }

  const AIRealPoint o{1, 1}, up{1, 3}, left{-1, 1}, down{1, 0};
  for (auto [p, angle] : {std::pair{up, M_PI / 2}, std::pair{left, M_PI}, std::pair{down, -M_PI / 2}})
    EXPECT_DOUBLE_EQ(math->AIRealPointAngle(&o, &p), angle);
  EXPECT_DOUBLE_EQ(math->AIRealPointLength(&o, &up), 2);
  AIRealPoint r{};
  math->AIRealPointSubtract(&up, &o, &r);
  EXPECT_EQ(r.v, 2);
  math->AIRealPointLengthAngle(2, M_PI / 2, &r);
  EXPECT_PT_NEAR(r, (AIRealPoint{0, 2}), 1e-15);
  EXPECT_TRUE(math->AIRealPointClose(&o, &up, 2));
  EXPECT_FALSE(math->AIRealPointClose(&o, &up, 1.5));
  EXPECT_FALSE(math->AIRealPointEqual(&o, &up));

  AIRealMatrix rot{}, tr{}, both{};
  math->AIRealMatrixSetRotate(&rot, M_PI / 2);
  math->AIRealMatrixSetTranslate(&tr, 10, 0);
  math->AIRealMatrixConcat(&rot, &tr, &both);  // rotate, then translate
  const AIRealPoint x{1, 0};
  math->AIRealMatrixXformPoint(&both, &x, &r);
  EXPECT_PT_NEAR(r, (AIRealPoint{10, 1}), 1e-15);
  ASSERT_EQ(math->AIRealMatrixInvert(&both), kNoErr);
  AIRealPoint back{};
  math->AIRealMatrixXformPoint(&both, &r, &back);
  EXPECT_PT_NEAR(back, x, 1e-15);
  AIRealMatrix singular{};
  math->AIRealMatrixSetScale(&singular, 0, 1);
  EXPECT_EQ(math->AIRealMatrixInvert(&singular), kBadParameterErr);
  EXPECT_EQ(singular.a, 0);
}

TEST_F(Suites, BezierEvaluateDivideLengthBounds) {
  const AIRealBezier b{{0, 0}, {0, 1}, {1, 1}, {1, 0}};
  AIRealPoint p{};
  bezier->Evaluate(&b, 0.5, &p);
  EXPECT_PT_NEAR(p, (AIRealPoint{0.5, 0.75}), 1e-15);
  bezier->Tangent(&b, 0, &p);
  EXPECT_PT_NEAR(p, (AIRealPoint{0, 3}), 1e-15);
  AIRealBezier l{}, r{};
  bezier->Divide(&b, 0.25, &l, &r);
  AIRealPoint q{};
  bezier->Evaluate(&b, 0.25, &p);
  EXPECT_EQ(l.p3.h, p.h);
  EXPECT_EQ(r.p0.v, p.v);
  bezier->Evaluate(&r, 0.5, &q);
  bezier->Evaluate(&b, 0.625, &p);
  EXPECT_PT_NEAR(q, p, 1e-15);
  // A straight piece measures its chord whatever the flatness.
  const AIRealBezier line{{0, 0}, {1, 0}, {2, 0}, {3, 0}};
  EXPECT_DOUBLE_EQ(bezier->Length(&line, 1), 3);
  // A quarter circle approximation: length close to pi/2; finer flatness is closer.
  const double k = 0.5522847498;
  const AIRealBezier arc{{1, 0}, {1, k}, {k, 1}, {0, 1}};
  const double coarse = bezier->Length(&arc, 0.1);
  const double fine = bezier->Length(&arc, 1e-9);
  EXPECT_NEAR(fine, M_PI / 2, 1e-3);
  EXPECT_LE(std::fabs(fine - M_PI / 2), std::fabs(coarse - M_PI / 2) + 1e-12);
  AIRealRect bb{};
  bezier->Bounds(&b, &bb);
  EXPECT_EQ(std::vector<double>({bb.left, bb.top, bb.right, bb.bottom}), std::vector<double>({0, 0.75, 1, 0}));
}

TEST_F(Suites, RandomIsDeterministic) {
  random->SetRndSeed(42);
  std::vector<double> a;
  for (int k = 0; k < 5; ++k) a.push_back(random->FloatRnd());
  random->SetRndSeed(42);
  for (int k = 0; k < 5; ++k) EXPECT_EQ(random->FloatRnd(), a[k]);
  for (double v : a) EXPECT_TRUE(v >= 0 && v < 1) << v;
  random->SetRndSeed(43);
  EXPECT_NE(random->FloatRnd(), a[0]);
}

TEST_F(Suites, RasterAndPlacedPixels) {
  // 2 x 1 RGB with alpha: pixel 0 = (255, 0, 51, 128), pixel 1 = (0, 255, 0, 255).
  load(R"({"latticebender": 1, "layers": [{"name": "L", "children": [
    {"type": "placed", "name": "pl", "width": 2, "height": 1, "space": "rgb", "alpha": true,
     "matrix": [2, 0, 0, 2, 5, 6], "pixels": "/wAzgAD/AP8=", "placedType": 1},
    {"type": "raster", "name": "r", "width": 1, "height": 1, "pixels": "AA==",
     "fill": {"color": {"rgb": [0, 0, 1]}}}]}]})");
  AIArtHandle pl = doc().layers()[0]->children[0].get();
  AIArtHandle r = doc().layers()[0]->children[1].get();
  AIRasterRecord rec{};
  ASSERT_EQ(placed->GetPlacedInfo(pl, &rec), kNoErr);
  EXPECT_EQ(std::vector<int>({rec.width, rec.height, rec.colorSpace, rec.bitsPerPixel, rec.hasAlpha}),
            std::vector<int>({2, 1, kRGBColorSpace, 32, 1}));
  AIReal ch[4] = {};
  ASSERT_EQ(placed->GetPlacedPixel(pl, 0, 0, ch), kNoErr);
  EXPECT_EQ(std::vector<AIReal>(ch, ch + 4), std::vector<AIReal>({1.0, 0.0, 51 / 255.0, 128 / 255.0}));
  EXPECT_EQ(placed->GetPlacedPixel(pl, 2, 0, ch), kBadParameterErr);
  EXPECT_EQ(placed->GetPlacedPixel(pl, 0, -1, ch), kBadParameterErr);
  int16_t ptype = 0;
  ASSERT_EQ(placed->GetPlacedType(pl, &ptype), kNoErr);
  EXPECT_EQ(ptype, kPlacedImageType);
  // The raster's fill colourises it and is read through the path style.
  AIPathStyle st{};
  ASSERT_EQ(pathStyle->GetPathStyle(r, &st, nullptr), kNoErr);
  EXPECT_EQ(std::make_pair(st.fillPaint, st.fill.color.kind), std::make_pair(AIBoolean(1), kThreeColor));
  ASSERT_EQ(raster->GetRasterInfo(r, &rec), kNoErr);
  EXPECT_EQ(rec.bitsPerPixel, 8);

  // Conversion to native art keeps the place, pixels and matrix.
  AIArtHandle native = nullptr;
  ASSERT_EQ(placed->ConvertToNative(pl, &native), kNoErr);
  AIBoolean valid = 1;
  art->ValidArt(pl, &valid);
  EXPECT_EQ(valid, 0);
  EXPECT_EQ(doc().layers()[0]->children[0].get(), native);
  int16_t type = 0;
  ASSERT_EQ(art->GetArtType(native, &type), kNoErr);
  EXPECT_EQ(type, kRasterArt);
  AIRealMatrix m{};
  ASSERT_EQ(raster->GetRasterMatrix(native, &m), kNoErr);
  EXPECT_EQ(m.tx, 5);
  ASSERT_EQ(raster->GetRasterPixel(native, 1, 0, ch), kNoErr);
  EXPECT_EQ(ch[1], 1.0);
  EXPECT_EQ(doc().layers()[0]->children.size(), 2u);
}
