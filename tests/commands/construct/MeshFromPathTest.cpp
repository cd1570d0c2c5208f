// "Create one cell mesh, based on path" (141): which anchors become the
// corners, knots and handles on the sides, paint, opacity and blending,
// and where the mesh goes in the paint order.
#include <gtest/gtest.h>

#include <string>

#include "commands/construct/ConstructDoc.h"

namespace constructtest {
namespace {

const std::vector<Anchor> kRect = {{{0, 0}}, {{100, 0}}, {{100, 50}}, {{0, 50}}};

json Painted(json path, json fill, json stroke, double opacity = 1.0, const char* blend = "normal") {
  path["fill"] = fill.is_null() ? json(nullptr) : json{{"color", fill}};
  path["stroke"] = stroke.is_null() ? json(nullptr) : json{{"color", stroke}, {"width", 1}};
  path["opacity"] = opacity;
  path["blend"] = blend;
  return path;
}

// The outline of a one-cell mesh, walked from node (0, 0) through (0, 1),
// (1, 1) and (1, 0) back to (0, 0), as one list of Bezier points.
std::vector<Pt> Outline(const MeshView& m) {
  std::vector<Pt> out;
  auto add = [&](std::vector<Pt> run) {
    if (!out.empty()) run.erase(run.begin());
    out.insert(out.end(), run.begin(), run.end());
  };
  add(m.Run(0, 0, "J"));
  add(m.Run(0, 1, "I"));
  add(Reversed(m.Run(1, 0, "J")));
  add(Reversed(m.Run(0, 0, "I")));
  return out;
}

// The closed outline of a path from anchor `first`, as Bezier points, with
// straight pieces given one-third handles.
std::vector<Pt> PathOutline(const std::vector<Anchor>& a, size_t first) {
  std::vector<Anchor> chain;
  for (size_t k = 0; k <= a.size(); ++k) chain.push_back(a[(first + k) % a.size()]);
  return ChainPoints(chain);
}

TEST(MeshFromPath, RectangleStartsAtItsSecondAnchor) {
  Session s(lbtest::DocJson({Painted(PathArt(kRect), {{"rgb", {0.25, 0.5, 0.75}}}, nullptr)}));
  const json doc = s.runWritten(kMeshFromPath);
  ASSERT_EQ(Children(doc).size(), 1u);
  const MeshView m{Children(doc)[0]};
  ASSERT_EQ(m.I(), 1);
  ASSERT_EQ(m.J(), 1);
  EXPECT_EQ(m.NodeP(0, 0), (Pt{100, 0}));
  EXPECT_EQ(m.NodeP(0, 1), (Pt{100, 50}));
  EXPECT_EQ(m.NodeP(1, 1), (Pt{0, 50}));
  EXPECT_EQ(m.NodeP(1, 0), (Pt{0, 0}));
  // Straight sides with handles at one third, in single precision.
  EXPECT_EQ(m.Run(0, 0, "J"), (std::vector<Pt>{{100, 0}, {100, 50 * kThird}, {100, 50 - 50 * kThird}, {100, 50}}));
  EXPECT_EQ(m.Run(0, 0, "I"), (std::vector<Pt>{{100, 0}, {100 - 100 * kThird, 0}, {100 * kThird, 0}, {0, 0}}));
  EXPECT_EQ(Outline(m), PathOutline(kRect, 1));
  for (auto [i, j] : {std::pair{0, 0}, {0, 1}, {1, 0}, {1, 1}})
    EXPECT_EQ(m.Node(i, j).at("color"), json({{"rgb", {0.25, 0.5, 0.75}}}));
}

// Eight anchors: the four right angles are the corners, the four smooth
// midpoints become knots on the sides, and the outline stays the same.
TEST(MeshFromPath, SharpestAnchorsAreCornersTheOthersKnots) {
  const std::vector<Anchor> octo = {{{0, 0}},   {{50, 0}},   {{100, 0}}, {{100, 25}},
                                    {{100, 50}}, {{50, 50}}, {{0, 50}},  {{0, 25}}};
  Session s(lbtest::DocJson({PathArt(octo)}));
  const json doc = s.runWritten(kMeshFromPath);
  ASSERT_EQ(Children(doc).size(), 1u);
  const MeshView m{Children(doc)[0]};
  EXPECT_EQ(m.NodeP(0, 0), (Pt{0, 0}));
  EXPECT_EQ(m.NodeP(0, 1), (Pt{100, 0}));
  EXPECT_EQ(m.NodeP(1, 1), (Pt{100, 50}));
  EXPECT_EQ(m.NodeP(1, 0), (Pt{0, 50}));
  const double t = kThird;
  EXPECT_EQ(m.Run(0, 0, "J"), (std::vector<Pt>{{0, 0}, {50 * t, 0}, {50 - 50 * t, 0}, {50, 0}, {50 + 50 * t, 0},
                                               {100 - 50 * t, 0}, {100, 0}}));
  // The last side, from (1, 0) back to (0, 0), holds anchor 7; the run is
  // written from (0, 0).
  EXPECT_EQ(m.Run(0, 0, "I"), (std::vector<Pt>{{0, 0}, {0, 25 * t}, {0, 25 - 25 * t}, {0, 25}, {0, 25 + 25 * t},
                                               {0, 50 - 25 * t}, {0, 50}}));
  EXPECT_EQ(Outline(m), PathOutline(octo, 0));
  EXPECT_EQ(Children(doc)[0].at("runs")[0].at("inner")[0].at("kind"), "knot");
}

// An ellipse of four smooth anchors: all four are corners, every handle
// carries over.
TEST(MeshFromPath, EllipseKeepsItsHandles) {
  const double k = 27.6;
  const std::vector<Anchor> ellipse = {{{50, 0}, Pt{50 - k, 0}, Pt{50 + k, 0}},
                                       {{100, 25}, Pt{100, 25 - 14}, Pt{100, 25 + 14}},
                                       {{50, 50}, Pt{50 + k, 50}, Pt{50 - k, 50}},
                                       {{0, 25}, Pt{0, 25 + 14}, Pt{0, 25 - 14}}};
  Session s(lbtest::DocJson({PathArt(ellipse)}));
  const json doc = s.runWritten(kMeshFromPath);
  ASSERT_EQ(Children(doc).size(), 1u);
  const MeshView m{Children(doc)[0]};
  EXPECT_EQ(m.NodeP(0, 0), (Pt{100, 25}));
  EXPECT_EQ(m.Run(0, 0, "J"), (std::vector<Pt>{{100, 25}, {100, 39}, {50 + k, 50}, {50, 50}}));
  EXPECT_EQ(Outline(m), PathOutline(ellipse, 1));
}

// With direct selection the selected anchors are the candidates, however
// sharp the others are.
TEST(MeshFromPath, DirectlySelectedAnchorsAreTheCorners) {
  // A hexagon whose two pointed tips are not selected.
  std::vector<Anchor> hex = {{{0, 0}}, {{60, 0}}, {{90, 40}}, {{60, 80}}, {{0, 80}}, {{-30, 40}}};
  for (int k : {0, 1, 3, 4}) hex[k].selected = 1;
  for (int k : {2, 5}) hex[k].selected = 0;
  Session s(lbtest::DocJson({PathArt(hex)}));
  const json doc = s.runWritten(kMeshFromPath);
  ASSERT_EQ(Children(doc).size(), 1u);
  const MeshView m{Children(doc)[0]};
  EXPECT_EQ(m.NodeP(0, 0), (Pt{0, 0}));
  EXPECT_EQ(m.NodeP(0, 1), (Pt{60, 0}));
  EXPECT_EQ(m.NodeP(1, 1), (Pt{60, 80}));
  EXPECT_EQ(m.NodeP(1, 0), (Pt{0, 80}));
  EXPECT_EQ(m.Run(0, 1, "I").size(), 7u) << "the tip at (90, 40) is a knot";
  EXPECT_EQ(Outline(m), PathOutline(hex, 0));
}

// Open paths are meshed as closed: the closing piece is straight with
// one-third handles.
TEST(MeshFromPath, OpenPathIsClosedByAStraightSide) {
  json fromClosed, fromOpen;
  {
    Session s(lbtest::DocJson({PathArt(kRect, true)}));
    fromClosed = Children(s.runWritten(kMeshFromPath));
  }
  {
    Session s(lbtest::DocJson({PathArt(kRect, false)}));
    fromOpen = Children(s.runWritten(kMeshFromPath));
  }
  ASSERT_EQ(fromOpen.size(), 1u);
  EXPECT_EQ(fromOpen[0].at("type"), "mesh");
  EXPECT_EQ(fromOpen, fromClosed);
}

// Paths that keep their shape: too few anchors, or too few selected.
TEST(MeshFromPath, PathsWithoutFourCandidatesStay) {
  std::vector<Anchor> fiveThreeSelected = {{{0, 0}}, {{60, 0}}, {{90, 40}}, {{60, 80}}, {{0, 80}}};
  for (int k = 0; k < 5; ++k) fiveThreeSelected[k].selected = k < 3 ? 1 : 0;
  std::vector<Anchor> handlesOnly = kRect;
  for (Anchor& a : handlesOnly) a.selected = 1;
  handlesOnly[2].selected = 3;  // only its out handle
  const struct {
    const char* name;
    json path;
  } cases[] = {
      {"three anchors", PathArt({{{0, 0}}, {{100, 0}}, {{50, 80}}})},
      {"three of five anchors selected", PathArt(fiveThreeSelected)},
      {"one rectangle anchor with only a handle selected", PathArt(handlesOnly)},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    // A rectangle below is still turned into a mesh.
    Session s(lbtest::DocJson({c.path, PathArt(kRect)}));
    const json before = Children(s.written());
    const json doc = s.runWritten(kMeshFromPath);
    ASSERT_EQ(Children(doc).size(), 2u);
    EXPECT_EQ(Children(doc)[0], before[0]);
    EXPECT_EQ(Children(doc)[1].at("type"), "mesh");
  }
}

// Colour: fill, else stroke, else gray; gray too when colours are off.
// Opacity: on the mesh without Alt, on the nodes with Alt (only when
// node opacity is on); Ctrl changes nothing. Blending always carries.
TEST(MeshFromPath, PaintOpacityAndBlending) {
  const json red = {{"rgb", {1, 0, 0}}}, blue = {{"cmyk", {1, 0.5, 0, 0.25}}};
  const json gray = {{"rgb", {kGray, kGray, kGray}}};
  const struct {
    const char* name;
    json fill, stroke;
    bool alt, ctrl, useColor, useOpacity;
    json color;
    double meshOpacity, nodeOpacity;
  } cases[] = {
      {"fill", red, blue, false, false, true, true, red, 0.4, 1.0},
      {"stroke only", nullptr, blue, false, false, true, true, blue, 0.4, 1.0},
      {"no paint", nullptr, nullptr, false, false, true, true, gray, 0.4, 1.0},
      {"colours off", red, blue, false, false, false, true, gray, 0.4, 1.0},
      {"alt: opacity to nodes", red, nullptr, true, false, true, true, red, 1.0, 0.4},
      {"alt, node opacity off", red, nullptr, true, false, true, false, red, 1.0, 1.0},
      {"ctrl as no key", red, nullptr, false, true, true, true, red, 0.4, 1.0},
      {"ctrl+alt as alt", red, nullptr, true, true, true, true, red, 1.0, 0.4},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Session s(lbtest::DocJson({Painted(PathArt(kRect), c.fill, c.stroke, 0.4, "multiply")}));
    const json doc = s.runWritten(kMeshFromPath, c.alt, c.ctrl, c.useColor, c.useOpacity);
    ASSERT_EQ(Children(doc).size(), 1u);
    const json& mesh = Children(doc)[0];
    EXPECT_EQ(mesh.value("opacity", 1.0), c.meshOpacity);
    EXPECT_EQ(mesh.value("blend", std::string("normal")), "multiply");
    const MeshView m{mesh};
    for (auto [i, j] : {std::pair{0, 0}, {0, 1}, {1, 0}, {1, 1}}) {
      EXPECT_EQ(m.Node(i, j).at("color"), c.color);
      EXPECT_EQ(m.Node(i, j).value("opacity", 1.0), c.nodeOpacity);
    }
  }
}

// The mesh takes the path's place in the paint order and is selected; the
// path is gone. A sub-path of a compound path is replaced by a mesh above
// the compound path.
TEST(MeshFromPath, MeshTakesThePathsPlace) {
  json above = PathArt({{{0, 100}}, {{10, 100}}}, false, false);
  above["id"] = "above";
  json below = PathArt({{{0, 200}}, {{10, 200}}}, false, false);
  below["id"] = "below";
  Session s(lbtest::DocJson({above, PathArt(kRect), below}));
  const json doc = s.runWritten(kMeshFromPath);
  const json& kids = Children(doc);
  ASSERT_EQ(kids.size(), 3u);
  EXPECT_EQ(kids[0].at("id"), "above");
  EXPECT_EQ(kids[1].at("type"), "mesh");
  EXPECT_EQ(kids[1].at("selected"), true);
  EXPECT_EQ(kids[2].at("id"), "below");
}

TEST(MeshFromPath, SubPathOfACompoundPathIsReplacedAboveIt) {
  std::vector<Anchor> other = kRect;
  for (Anchor& a : other) a.p.h += 200;
  json tri = PathArt({{{0, 300}}, {{50, 300}}, {{25, 340}}});
  json compound = {{"type", "compound"}, {"id", "cp"}, {"selected", true},
                   {"children", {PathArt(kRect), tri, PathArt(other)}}};
  Session s(lbtest::DocJson({compound}));
  const json doc = s.runWritten(kMeshFromPath);
  const json& kids = Children(doc);
  ASSERT_EQ(kids.size(), 3u);
  EXPECT_EQ(MeshView{kids[0]}.NodeP(0, 0), (Pt{100, 0}));
  EXPECT_EQ(MeshView{kids[1]}.NodeP(0, 0), (Pt{300, 0}));
  EXPECT_EQ(kids[2].at("id"), "cp");
  ASSERT_EQ(kids[2].at("children").size(), 1u) << "only the triangle stays";
  EXPECT_EQ(kids[2].at("children")[0].at("segments").size(), 3u);
}

TEST(MeshFromPath, NothingSelectedChangesNothing) {
  Session s(lbtest::DocJson({PathArt(kRect, true, false)}));
  const json before = s.written();
  EXPECT_EQ(s.runWritten(kMeshFromPath), before);
}

}  // namespace
}  // namespace constructtest
