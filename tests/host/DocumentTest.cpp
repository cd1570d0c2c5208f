// The document model on its own: paint orders, walks, duplicate and
// dispose, matching order, selection semantics, bounds and transforms.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "host/Document.h"

using lb::host::Document;

namespace {

ArtObject* make(Document& d, int16_t type, int16_t order, ArtObject* prep, const std::string& name) {
  ArtObject* a = nullptr;
  EXPECT_EQ(d.newArt(type, order, prep, &a), kNoErr) << name;
  if (a) a->name = name;
  return a;
}

// Names of the children of `parent`, top first, walked with the sibling
// calls (not the vector), so the walk itself is under test.
std::vector<std::string> walkDown(const Document& d, const ArtObject* parent) {
  std::vector<std::string> names;
  for (ArtObject* a = Document::firstChild(parent); a; a = d.nextSibling(a)) names.push_back(a->name);
  return names;
}

std::vector<std::string> walkUp(const Document& d, const ArtObject* parent) {
  std::vector<std::string> names;
  if (parent->children.empty()) return names;
  for (ArtObject* a = parent->children.back().get(); a; a = d.priorSibling(a)) names.push_back(a->name);
  return names;
}

std::vector<std::string> names(const std::vector<ArtObject*>& arts) {
  std::vector<std::string> out;
  for (auto* a : arts) out.push_back(a->name);
  return out;
}

using Names = std::vector<std::string>;

AIPathSegment seg(double h, double v) { return AIPathSegment{{h, v}, {h, v}, {h, v}, 1}; }

// Selection state of every anchor of p.
std::vector<int> anchors(const Document& d, const ArtObject* p) {
  std::vector<int> out;
  for (int k = 0; k < static_cast<int>(p->segments.size()); ++k) out.push_back(d.anchorSelection(p, k));
  return out;
}

// Bounds as (left, bottom, right, top) within 1e-12.
::testing::AssertionResult BoundsAre(const std::optional<AIRealRect>& r, std::vector<double> lbrt) {
  if (!r) return ::testing::AssertionFailure() << "no bounds";
  const std::vector<double> got{r->left, r->bottom, r->right, r->top};
  for (size_t k = 0; k < 4; ++k)
    if (std::fabs(got[k] - lbrt[k]) > 1e-12)
      return ::testing::AssertionFailure() << got[0] << " " << got[1] << " " << got[2] << " " << got[3];
  return ::testing::AssertionSuccess();
}

// A document with one layer "L".
class Doc : public ::testing::Test {
 protected:
  Document d;
  ArtObject* layer = d.addLayer("L");
};

}  // namespace

TEST_F(Doc, PaintOrderAboveBelowInsideAndAll) {
  ArtObject* b = make(d, kPathArt, kPlaceAboveAll, nullptr, "b");
  ArtObject* a = make(d, kPathArt, kPlaceAbove, b, "a");
  make(d, kPathArt, kPlaceBelow, b, "c");
  make(d, kPathArt, kPlaceBelowAll, nullptr, "z");
  make(d, kPathArt, kPlaceAboveAll, nullptr, "top");
  EXPECT_EQ(walkDown(d, layer), (Names{"top", "a", "b", "c", "z"}));
  EXPECT_EQ(walkUp(d, layer), (Names{"z", "c", "b", "a", "top"}));

  ArtObject* g = make(d, kGroupArt, kPlaceBelow, a, "g");
  make(d, kPathArt, kPlaceInsideOnBottom, g, "g1");
  make(d, kPathArt, kPlaceInsideOnBottom, g, "g2");  // first made stays topmost
  make(d, kPathArt, kPlaceInsideOnTop, g, "g0");
  EXPECT_EQ(walkDown(d, g), (Names{"g0", "g1", "g2"}));
  EXPECT_EQ(walkDown(d, layer), (Names{"top", "a", "g", "b", "c", "z"}));
  EXPECT_EQ(Document::parentOf(g->children[0].get()), g);
  EXPECT_EQ(Document::parentOf(g), layer);
  EXPECT_EQ(Document::parentOf(layer), nullptr);
  EXPECT_EQ(d.priorSibling(a)->name, "top");
  EXPECT_EQ(d.nextSibling(layer->children.back().get()), nullptr);
  EXPECT_EQ(d.priorSibling(layer->children.front().get()), nullptr);
}

TEST(PaintOrder, AboveAllGoesToTopmostUnlockedVisibleLayerOrANewOne) {
  Document d;
  ArtObject* hidden = d.addLayer("hidden");
  ArtObject* locked = d.addLayer("locked");
  ArtObject* open = d.addLayer("open");
  hidden->userAttr |= kArtHidden;
  locked->userAttr |= kArtLocked;
  ArtObject* a = make(d, kMeshArt, kPlaceAboveAll, nullptr, "a");
  EXPECT_EQ(a->parent, open);
  ASSERT_NE(a->mesh, nullptr);
  // With a reference art, the layer that holds it.
  ArtObject* inHidden = nullptr;
  ASSERT_EQ(d.newArt(kGroupArt, kPlaceInsideOnTop, hidden, &inHidden), kNoErr);
  ArtObject* b = make(d, kPathArt, kPlaceBelowAll, inHidden, "b");
  EXPECT_EQ(std::make_pair(b->parent, hidden->children.back().get()), std::make_pair(hidden, b));
  // A document without layers gets one.
  Document empty;
  ArtObject* first = make(empty, kPathArt, kPlaceAboveAll, nullptr, "first");
  ASSERT_EQ(empty.layers().size(), 1u);
  EXPECT_EQ(first->parent, empty.layers()[0].get());
  EXPECT_EQ(empty.layers()[0]->name, "Layer 1");
}

TEST_F(Doc, PaintOrderRefusedPlacementsChangeNothing) {
  ArtObject* p = make(d, kPathArt, kPlaceAboveAll, nullptr, "p");
  ArtObject* g = make(d, kGroupArt, kPlaceAboveAll, nullptr, "g");
  ArtObject* inner = make(d, kGroupArt, kPlaceInsideOnTop, g, "inner");
  ArtObject* out = nullptr;
  EXPECT_EQ(d.newArt(kPathArt, kPlaceAbove, nullptr, &out), kBadParameterErr);
  EXPECT_EQ(d.newArt(kPathArt, kPlaceInsideOnTop, p, &out), kWrongArtTypeErr);
  EXPECT_EQ(d.newArt(kPathArt, 99, p, &out), kBadParameterErr);
  EXPECT_EQ(d.newArt(kUnknownArt, kPlaceAbove, p, &out), kBadParameterErr);
  EXPECT_EQ(d.newArt(kPathArt, kPlaceAbove, layer, &out), kBadParameterErr);
  // A group cannot move into itself or its own descendants.
  EXPECT_EQ(d.reorderArt(g, kPlaceInsideOnTop, g), kBadParameterErr);
  EXPECT_EQ(d.reorderArt(g, kPlaceInsideOnTop, inner), kBadParameterErr);
  EXPECT_EQ(d.reorderArt(g, kPlaceAbove, g), kBadParameterErr);
  // Only paths go into a compound path.
  ArtObject* cp = make(d, kCompoundPathArt, kPlaceAboveAll, nullptr, "cp");
  EXPECT_EQ(d.newArt(kMeshArt, kPlaceInsideOnTop, cp, &out), kWrongArtTypeErr);
  EXPECT_EQ(d.reorderArt(g, kPlaceInsideOnTop, cp), kWrongArtTypeErr);
  EXPECT_EQ(walkDown(d, layer), (Names{"cp", "g", "p"}));
  EXPECT_EQ(walkDown(d, g), (Names{"inner"}));
  EXPECT_TRUE(d.contains(g) && d.contains(inner));
}

TEST_F(Doc, ReorderMovesWithinAndAcrossContainers) {
  ArtObject* c = make(d, kPathArt, kPlaceAboveAll, nullptr, "c");
  ArtObject* b = make(d, kPathArt, kPlaceAboveAll, nullptr, "b");
  ArtObject* a = make(d, kPathArt, kPlaceAboveAll, nullptr, "a");
  ASSERT_EQ(d.reorderArt(a, kPlaceBelow, c), kNoErr);
  EXPECT_EQ(walkDown(d, layer), (Names{"b", "c", "a"}));
  ASSERT_EQ(d.reorderArt(a, kPlaceAbove, b), kNoErr);
  EXPECT_EQ(walkDown(d, layer), (Names{"a", "b", "c"}));
  // Moving next to a neighbour in the same list: indices shift on removal.
  ASSERT_EQ(d.reorderArt(a, kPlaceBelow, b), kNoErr);
  EXPECT_EQ(walkDown(d, layer), (Names{"b", "a", "c"}));
  ArtObject* g = make(d, kGroupArt, kPlaceAboveAll, nullptr, "g");
  ASSERT_EQ(d.reorderArt(c, kPlaceInsideOnBottom, g), kNoErr);
  ASSERT_EQ(d.reorderArt(b, kPlaceInsideOnBottom, g), kNoErr);
  EXPECT_EQ(walkDown(d, g), (Names{"c", "b"}));
  EXPECT_EQ(walkDown(d, layer), (Names{"g", "a"}));
  EXPECT_EQ(std::make_pair(c->parent, d.contains(c)), std::make_pair(g, true));
}

TEST_F(Doc, DuplicateDeepCopyWithoutIdPlacedRelative) {
  ArtObject* g = make(d, kGroupArt, kPlaceAboveAll, nullptr, "g");
  g->id = "G";
  g->opacity = 0.25;
  g->blendMode = kAIScreenBlendingMode;
  ArtObject* p = make(d, kPathArt, kPlaceInsideOnTop, g, "p");
  p->segments = {seg(0, 0), seg(10, 5)};
  p->segmentSelection = {1, 0};
  p->userAttr = kArtSelected;
  ArtObject* m = make(d, kMeshArt, kPlaceInsideOnBottom, g, "m");
  m->mesh->initCartesian(3, 2);

  ArtObject* copy = nullptr;
  ASSERT_EQ(d.duplicateArt(g, kPlaceAbove, g, &copy), kNoErr);
  EXPECT_EQ(walkDown(d, layer), (Names{"g", "g"}));
  EXPECT_EQ(layer->children[0].get(), copy);
  EXPECT_EQ(std::make_tuple(copy->id, copy->opacity, copy->blendMode),
            std::make_tuple("", 0.25, kAIScreenBlendingMode));
  ASSERT_EQ(copy->children.size(), 2u);
  ArtObject* p2 = copy->children[0].get();
  ArtObject* m2 = copy->children[1].get();
  EXPECT_NE(p2, p);
  EXPECT_EQ(p2->parent, copy);
  EXPECT_TRUE(d.contains(p2) && d.contains(m2));
  ASSERT_EQ(p2->segments.size(), 2u);
  EXPECT_EQ(p2->segments[1].p.h, 10);
  EXPECT_EQ(anchors(d, p2), (std::vector<int>{1, 0}));
  ASSERT_NE(m2->mesh, nullptr);
  EXPECT_NE(m2->mesh.get(), m->mesh.get());
  EXPECT_EQ(std::make_pair(m2->mesh->sizeI(), m2->mesh->sizeJ()), std::make_pair(3, 2));
  // The copy is independent.
  p2->segments[0].p.h = 99;
  EXPECT_EQ(p->segments[0].p.h, 0);
  // Layers are not duplicated.
  EXPECT_EQ(d.duplicateArt(layer, kPlaceAbove, g, &copy), kBadParameterErr);
}

TEST_F(Doc, DisposeRemovesWholeSubtreeAndInvalidatesHandles) {
  ArtObject* keep = make(d, kPathArt, kPlaceAboveAll, nullptr, "keep");
  ArtObject* g = make(d, kGroupArt, kPlaceAboveAll, nullptr, "g");
  ArtObject* inner = make(d, kGroupArt, kPlaceInsideOnTop, g, "inner");
  ArtObject* leaf = make(d, kMeshArt, kPlaceInsideOnTop, inner, "leaf");
  leaf->id = "leaf";
  d.keyArtId = "leaf";
  EXPECT_EQ(d.keyArt(), leaf);
  ASSERT_EQ(d.disposeArt(g), kNoErr);
  EXPECT_FALSE(d.contains(g) || d.contains(inner) || d.contains(leaf));
  EXPECT_TRUE(d.contains(keep));
  EXPECT_EQ(walkDown(d, layer), (Names{"keep"}));
  EXPECT_EQ(std::make_tuple(d.keyArt(), d.findById("leaf")), std::make_tuple(nullptr, nullptr));
  EXPECT_EQ(d.disposeArt(g), kNoSuchArtErr);
  EXPECT_EQ(d.matchingArt(nullptr, 0).size(), 0u);
  const AIMatchingArtSpec any{kAnyArt, 0, 0};
  EXPECT_EQ(names(d.matchingArt(&any, 1)), (Names{"keep"}));
}

TEST(Matching, DocumentOrderTopmostFirstAcrossLayersAndGroups) {
  Document d;
  ArtObject* top = d.addLayer("top");
  ArtObject* bottom = d.addLayer("bottom");
  auto put = [&](ArtObject* parent, int16_t type, const char* name, int32_t attr) {
    ArtObject* a = make(d, type, kPlaceInsideOnBottom, parent, name);
    a->userAttr = attr;
    return a;
  };
  put(top, kMeshArt, "m1", kArtSelected);
  ArtObject* g = put(top, kGroupArt, "g", 0);
  put(g, kMeshArt, "m2", kArtSelected);
  put(g, kPathArt, "p1", kArtSelected);
  put(g, kMeshArt, "m3", 0);
  put(top, kMeshArt, "m4", kArtSelected);
  put(bottom, kMeshArt, "m5", kArtSelected);
  bottom->userAttr |= kArtHidden | kArtLocked;

  const AIMatchingArtSpec meshes{kMeshArt, kArtSelected, kArtSelected};
  EXPECT_EQ(names(d.matchingArt(&meshes, 1)), (Names{"m1", "m2", "m4", "m5"}));
  // Several layouts: any one matching is enough, order stays document order.
  const AIMatchingArtSpec two[2] = {{kPathArt, kArtSelected, kArtSelected}, {kMeshArt, kArtSelected, kArtSelected}};
  EXPECT_EQ(names(d.matchingArt(two, 2)), (Names{"m1", "m2", "p1", "m4", "m5"}));
  // Groups come before their contents; layers are never listed.
  const AIMatchingArtSpec any{kAnyArt, 0, 0};
  EXPECT_EQ(names(d.matchingArt(&any, 1)), (Names{"m1", "g", "m2", "p1", "m3", "m4", "m5"}));
  // Hidden / locked are inherited from the layer when the layout asks.
  const AIMatchingArtSpec visible{kMeshArt, kArtSelected | kArtHidden, kArtSelected};
  EXPECT_EQ(names(d.matchingArt(&visible, 1)), (Names{"m1", "m2", "m4"}));
  const AIMatchingArtSpec lockedOnly{kAnyArt, kArtLocked, kArtLocked};
  EXPECT_EQ(names(d.matchingArt(&lockedOnly, 1)), (Names{"m5"}));
  const AIMatchingArtSpec unselected{kMeshArt, kArtSelected, 0};
  EXPECT_EQ(names(d.matchingArt(&unselected, 1)), (Names{"m3"}));
}

TEST_F(Doc, SelectionPathAnchorStates) {
  ArtObject* p = make(d, kPathArt, kPlaceAboveAll, nullptr, "p");
  p->segments = {seg(0, 0), seg(1, 0), seg(2, 0)};
  p->segmentSelection.assign(3, 0);
  EXPECT_EQ(d.anchorSelection(p, 0), kSegmentNotSelected);
  // Selected with no anchor state: every anchor selected.
  d.setSelected(p, true);
  EXPECT_EQ(anchors(d, p), std::vector<int>(3, kSegmentPointSelected));
  // Deselecting one anchor keeps the others selected.
  d.setAnchorSelection(p, 1, kSegmentNotSelected);
  EXPECT_EQ(anchors(d, p), (std::vector<int>{kSegmentPointSelected, kSegmentNotSelected, kSegmentPointSelected}));
  EXPECT_TRUE(p->selected());
  // Re-selecting an already selected path keeps the partial state.
  d.setSelected(p, true);
  EXPECT_EQ(d.anchorSelection(p, 1), kSegmentNotSelected);
  // Clearing every anchor deselects the path.
  d.setAnchorSelection(p, 0, kSegmentNotSelected);
  d.setAnchorSelection(p, 2, kSegmentNotSelected);
  EXPECT_FALSE(p->selected());
  // Selecting one anchor of an unselected path selects the path, that anchor only.
  d.setAnchorSelection(p, 2, kSegmentInAndOutSelected);
  EXPECT_TRUE(p->selected());
  EXPECT_EQ(anchors(d, p), (std::vector<int>{kSegmentNotSelected, kSegmentNotSelected, kSegmentInAndOutSelected}));
  // Deselecting the path clears the anchors; selecting it again means all.
  d.setSelected(p, false);
  EXPECT_EQ(d.anchorSelection(p, 2), kSegmentNotSelected);
  d.setSelected(p, true);
  EXPECT_EQ(d.anchorSelection(p, 0), kSegmentPointSelected);
  // Out of range reads as not selected.
  for (int k : {3, -1}) EXPECT_EQ(d.anchorSelection(p, k), kSegmentNotSelected) << k;
}

// A group selects its contents; a mesh's attribute drives its vertex selection.
TEST_F(Doc, SelectionGroupSelectsContentsAndMeshVertices) {
  ArtObject* g = make(d, kGroupArt, kPlaceAboveAll, nullptr, "g");
  ArtObject* a = make(d, kPathArt, kPlaceInsideOnTop, g, "a");
  ArtObject* m = make(d, kMeshArt, kPlaceInsideOnTop, g, "m");
  m->mesh->initCartesian(2, 2);
  d.setSelected(g, true);
  EXPECT_TRUE(g->selected() && a->selected() && m->selected());
  EXPECT_FALSE(m->mesh->isSelectionEmpty());
  d.setSelected(g, false);
  EXPECT_FALSE(g->selected() || a->selected() || m->selected());
  EXPECT_TRUE(m->mesh->isSelectionEmpty());
}

TEST_F(Doc, GeometryPathBoundsFollowTheCurveNotTheHandles) {
  ArtObject* p = make(d, kPathArt, kPlaceAboveAll, nullptr, "p");
  // One piece from (0,0) to (3,0) with both handles at height 3: the curve
  // peaks at 0.75 * 3 = 2.25, not at the handles' 3.
  p->segments = {AIPathSegment{{0, 0}, {0, 0}, {0, 3}, 0}, AIPathSegment{{3, 0}, {3, 3}, {3, 0}, 0}};
  EXPECT_TRUE(BoundsAre(d.bounds(p), {0, 0, 3, 2.25}));
  // Closing the path adds the piece back to the start (same curve reversed here).
  p->closed = true;
  EXPECT_TRUE(BoundsAre(d.bounds(p), {0, 0, 3, 2.25}));

  // A raster: image space x right, y up, rows downward from 0.
  ArtObject* r = make(d, kRasterArt, kPlaceAboveAll, nullptr, "r");
  r->image.width = 4;
  r->image.height = 2;
  r->image.matrix = {2, 0, 0, 2, 10, 20};
  EXPECT_TRUE(BoundsAre(d.bounds(r), {10, 16, 18, 20}));

  // A group unites its children; an empty group has none.
  ArtObject* g = make(d, kGroupArt, kPlaceAboveAll, nullptr, "g");
  EXPECT_FALSE(d.bounds(g));
  ASSERT_EQ(d.reorderArt(p, kPlaceInsideOnTop, g), kNoErr);
  ASSERT_EQ(d.reorderArt(r, kPlaceInsideOnTop, g), kNoErr);
  EXPECT_TRUE(BoundsAre(d.bounds(g), {0, 0, 18, 20}));
}

TEST_F(Doc, GeometryTransformMovesPathsAndImages) {
  ArtObject* g = make(d, kGroupArt, kPlaceAboveAll, nullptr, "g");
  ArtObject* p = make(d, kPathArt, kPlaceInsideOnTop, g, "p");
  p->segments = {AIPathSegment{{1, 2}, {0, 2}, {2, 2}, 1}};
  ArtObject* r = make(d, kRasterArt, kPlaceInsideOnTop, g, "r");
  r->image.matrix = {1, 0, 0, 1, 5, 5};
  d.transformArt(g, AIRealMatrix{2, 0, 0, 3, 1, 1});
  const AIPathSegment& s = p->segments[0];
  EXPECT_EQ(std::vector<double>({s.p.h, s.p.v, s.in.h, s.out.h}), std::vector<double>({3, 7, 1, 5}));
  // The image matrix maps image space first, then the transform.
  const AIRealMatrix& m = r->image.matrix;
  EXPECT_EQ(std::vector<double>({m.a, m.d, m.tx, m.ty}), std::vector<double>({2, 3, 11, 16}));
}

// 16-bit samples are big-endian pairs (8-bit RGB with alpha: the suites'
// RasterAndPlacedPixels).
TEST(Image, SixteenBitSamplesAndOutside) {
  ArtImage im;
  im.width = 2;
  im.height = 1;
  im.bits = 16;
  im.space = kGrayColorSpace;
  EXPECT_EQ(im.expectedBytes(), 4u);
  im.pixels = {0xFF, 0xFF, 0x80, 0x00};
  EXPECT_EQ(std::vector<double>({im.channel(0, 0, 0), im.channel(1, 0, 0), im.channel(2, 0, 0)}),
            std::vector<double>({1.0, 0x8000 / 65535.0, 0}));  // the last one outside
}

// Lookup by name and foreign handles: the suites' NewPathLookAndGraphicStyles.
TEST(Styles, SameNameReplacesInPlace) {
  Document d;
  lb::host::GraphicStyle s;
  s.name = "[LB][Axis]";
  s.opacity = 0.5;
  auto* a = d.addStyle(s);
  s.opacity = 0.75;
  EXPECT_EQ(d.addStyle(s), a);
  EXPECT_EQ(a->opacity, 0.75);
  EXPECT_EQ(d.styles().size(), 1u);
}

TEST_F(Doc, WalksStayCorrectAcrossMixedInsertsMovesAndDisposals) {
  // Sibling steps use cached positions; every kind of edit must keep the
  // walks exact.
  std::vector<std::string> expected;
  std::vector<ArtObject*> arts;
  for (int k = 0; k < 200; ++k) {
    const std::string name = std::to_string(k);
    ArtObject* a = nullptr;
    if (k % 3 == 0) {
      a = make(d, kPathArt, kPlaceInsideOnTop, layer, name);
      expected.insert(expected.begin(), name);
    } else if (k % 3 == 1) {
      a = make(d, kPathArt, kPlaceInsideOnBottom, layer, name);
      expected.push_back(name);
    } else {
      // Directly below the art made just before.
      ArtObject* prev = arts.back();
      a = make(d, kPathArt, kPlaceBelow, prev, name);
      auto it = std::find(expected.begin(), expected.end(), prev->name);
      expected.insert(it + 1, name);
    }
    arts.push_back(a);
    if (k % 17 == 0) {
      ASSERT_EQ(walkDown(d, layer), expected) << k;
    }
  }
  ASSERT_EQ(walkDown(d, layer), expected);
  for (int k = 0; k < 200; k += 7) {
    ASSERT_EQ(d.disposeArt(arts[k]), kNoErr);
    expected.erase(std::find(expected.begin(), expected.end(), std::to_string(k)));
  }
  ASSERT_EQ(d.reorderArt(arts[1], kPlaceAboveAll, nullptr), kNoErr);
  expected.erase(std::find(expected.begin(), expected.end(), "1"));
  expected.insert(expected.begin(), "1");
  EXPECT_EQ(walkDown(d, layer), expected);
  std::vector<std::string> reversed(expected.rbegin(), expected.rend());
  EXPECT_EQ(walkUp(d, layer), reversed);
}
