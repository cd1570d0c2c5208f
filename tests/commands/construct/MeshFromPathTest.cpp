// "Create one cell mesh, based on path" (141): which anchors become the
// corners, knots and handles on the sides, paint, opacity and blending,
// and where the mesh goes in the paint order.
#include <gtest/gtest.h>

#include <string>

#include "commands/construct/ConstructDoc.h"

namespace constructtest {
namespace {

const std::vector<Anchor> kRect = {{{0, 0}}, {{100, 0}}, {{100, 50}}, {{0, 50}}};

// The outline of a one-cell mesh, walked from node (0, 0) through (0, 1),
// (1, 1) and (1, 0) back to (0, 0), as one list of Bezier points.
std::vector<Pt> Outline(const json& m) {
  std::vector<Pt> out;
  auto add = [&](std::vector<Pt> run) {
    if (!out.empty()) run.erase(run.begin());
    out.insert(out.end(), run.begin(), run.end());
  };
  add(Run(m, 0, 0, 'J'));
  add(Run(m, 0, 1, 'I'));
  add(Reversed(Run(m, 1, 0, 'J')));
  add(Reversed(Run(m, 0, 0, 'I')));
  return out;
}

// Which anchors become the corners: node (0, 0), (0, 1), (1, 1), (1, 0) in
// turn, the outline walked from them equal to the path's from anchor
// `first`, every other anchor a knot on a side.
TEST(MeshFromPath, CornersKnotsAndOutline) {
  const double k = 27.6;
  // A hexagon whose two pointed tips are not selected.
  std::vector<Anchor> hex = {{{0, 0}}, {{60, 0}}, {{90, 40}}, {{60, 80}}, {{0, 80}}, {{-30, 40}}};
  for (int n = 0; n < 6; ++n) hex[n].selected = n % 3 == 2 ? 0 : 1;
  const struct {
    const char* name;
    std::vector<Anchor> path;
    size_t first;
    std::vector<Pt> corners;
  } cases[] = {
      // Straight sides get handles at one third, in single precision.
      {"rectangle starts at its second anchor", kRect, 1, {{100, 0}, {100, 50}, {0, 50}, {0, 0}}},
      // The four right angles are the corners, the smooth midpoints knots.
      {"octagon", {{{0, 0}}, {{50, 0}}, {{100, 0}}, {{100, 25}}, {{100, 50}}, {{50, 50}}, {{0, 50}}, {{0, 25}}}, 0,
       {{0, 0}, {100, 0}, {100, 50}, {0, 50}}},
      // Four smooth anchors: all corners, every handle carried over.
      {"ellipse",
       {{{50, 0}, Pt{50 - k, 0}, Pt{50 + k, 0}}, {{100, 25}, Pt{100, 25 - 14}, Pt{100, 25 + 14}},
        {{50, 50}, Pt{50 + k, 50}, Pt{50 - k, 50}}, {{0, 25}, Pt{0, 25 + 14}, Pt{0, 25 - 14}}},
       1, {{100, 25}, {50, 50}, {0, 25}, {50, 0}}},
      // With direct selection the selected anchors are the candidates,
      // however sharp the others are.
      {"directly selected", hex, 0, {{0, 0}, {60, 0}, {60, 80}, {0, 80}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Session s(lbtest::DocJson({PathArt(c.path)}));
    const json kids = s.runLayer(kMeshFromPath);
    ASSERT_EQ(kids.size(), 1u);
    const json& m = kids[0];
    ASSERT_EQ(m.at("size"), json::array({1, 1}));
    EXPECT_EQ((std::vector<Pt>{NodeP(m, 0, 0), NodeP(m, 0, 1), NodeP(m, 1, 1), NodeP(m, 1, 0)}), c.corners);
    // The path's closed outline from anchor `first`, straight pieces with one-third handles.
    std::vector<Anchor> chain;
    for (size_t k = 0; k <= c.path.size(); ++k) chain.push_back(c.path[(c.first + k) % c.path.size()]);
    EXPECT_EQ(Outline(m), ChainPoints(chain));
    for (const json& r : kids[0].at("runs"))
      for (const json& e : r.at("inner")) EXPECT_EQ(e.at("kind"), "knot");
  }
}

// Open paths are meshed as closed: the closing piece is straight with
// one-third handles.
TEST(MeshFromPath, OpenPathIsClosedByAStraightSide) {
  json fromClosed, fromOpen;
  for (bool closed : {true, false}) {
    Session s(lbtest::DocJson({PathArt(kRect, closed)}));
    (closed ? fromClosed : fromOpen) = s.runLayer(kMeshFromPath);
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
    const json kids = s.runLayer(kMeshFromPath);
    ASSERT_EQ(kids.size(), 2u);
    EXPECT_EQ(kids[0], before[0]);
    EXPECT_EQ(kids[1].at("type"), "mesh");
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
    json path = PathArt(kRect);
    path["fill"] = c.fill.is_null() ? json(nullptr) : json{{"color", c.fill}};
    path["stroke"] = c.stroke.is_null() ? json(nullptr) : json{{"color", c.stroke}, {"width", 1}};
    path["opacity"] = 0.4;
    path["blend"] = "multiply";
    Session s(lbtest::DocJson({path}));
    const json kids = Children(s.runWritten(kMeshFromPath, c.alt, c.ctrl, c.useColor, c.useOpacity));
    ASSERT_EQ(kids.size(), 1u);
    const json& mesh = kids[0];
    EXPECT_EQ(mesh.value("opacity", 1.0), c.meshOpacity);
    EXPECT_EQ(mesh.value("blend", std::string("normal")), "multiply");
    for (auto [i, j] : {std::pair{0, 0}, {0, 1}, {1, 0}, {1, 1}}) {
      EXPECT_EQ(lbtest::NodeAt(mesh, i, j).at("color"), c.color);
      EXPECT_EQ(lbtest::NodeAt(mesh, i, j).value("opacity", 1.0), c.nodeOpacity);
    }
  }
}

// The mesh takes the path's place in the paint order and is selected; the
// path is gone. Paths that are not selected, a rectangle among them, stay.
TEST(MeshFromPath, MeshTakesThePathsPlace) {
  json above = PathArt({{{0, 100}}, {{10, 100}}}, false, false);
  above["id"] = "above";
  std::vector<Anchor> other = kRect;
  for (Anchor& a : other) a.p.v += 200;
  json below = PathArt(other, true, false);
  below["id"] = "below";
  Session s(lbtest::DocJson({above, PathArt(kRect), below}));
  const json before = Children(s.written());
  const json kids = s.runLayer(kMeshFromPath);
  ASSERT_EQ(kids.size(), 3u);
  EXPECT_EQ(kids[0], before[0]);
  EXPECT_EQ(kids[1].at("type"), "mesh");
  EXPECT_EQ(kids[1].at("selected"), true);
  EXPECT_EQ(kids[2], before[2]);
}

// A sub-path of a compound path is replaced by a mesh above the compound
// path.
TEST(MeshFromPath, SubPathOfACompoundPathIsReplacedAboveIt) {
  std::vector<Anchor> other = kRect;
  for (Anchor& a : other) a.p.h += 200;
  json tri = PathArt({{{0, 300}}, {{50, 300}}, {{25, 340}}});
  json compound = {{"type", "compound"}, {"id", "cp"}, {"selected", true},
                   {"children", {PathArt(kRect), tri, PathArt(other)}}};
  Session s(lbtest::DocJson({compound}));
  const json kids = s.runLayer(kMeshFromPath);
  ASSERT_EQ(kids.size(), 3u);
  EXPECT_EQ(NodeP(kids[0], 0, 0), (Pt{100, 0}));
  EXPECT_EQ(NodeP(kids[1], 0, 0), (Pt{300, 0}));
  EXPECT_EQ(kids[2].at("id"), "cp");
  ASSERT_EQ(kids[2].at("children").size(), 1u) << "only the triangle stays";
  EXPECT_EQ(kids[2].at("children")[0].at("segments").size(), 3u);
}

}  // namespace
}  // namespace constructtest
