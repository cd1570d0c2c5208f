// The mesh object of a document file: exact round-trips of the whole
// structure, the selection rule, and errors naming the offending value.
#include <functional>

#include "io/MeshJson.h"
#include "support/Engine.h"

using namespace lbtest;
using nlohmann::json;

namespace {

lb::host::GradientMesh richMesh() {
  lb::host::GradientMesh m;
  m.initCartesian(3, 2);
  m.setRelative({0, 0.1 + 0.2, 0.5, 1}, {0, 1.0 / 3.0, 1});
  Bend(m, 0.1);
  auto n = m.nodeData(1, 1);
  n.color.kind = kFourColor;
  n.color.c.f = {0.1, 1.0 / 7.0, 0, 1};
  n.opacity = 0.123456789012345;
  n.selected = true;
  n.smooth[lb::host::kDirJBack] = true;
  m.setNodeData(1, 1, n);
  auto g = m.nodeData(0, 2);
  g.color.kind = kGrayColor;
  g.color.c.g.gray = 2.0 / 3.0;
  m.setNodeData(0, 2, g);
  // A run with a knot and a selected smooth vertex.
  const lb::host::SegmentRef s{m.node(1, 0), lb::host::kDirIFwd};
  m.insertKnots(s, 0, 2);
  const auto v = m.split(s, 1);
  m.setSelected(v, true);
  m.setSmooth(v, lb::host::kDirIBack, false);
  m.setSmooth(v, lb::host::kDirIFwd, true);
  return m;
}

json write(const lb::host::GradientMesh& m) {
  json art = {{"type", "mesh"}};
  lb::io::meshToJson(m, art);
  return art;
}

// The error path meshFromJson reports for art, or "" when it reads fine.
std::string errorPath(const json& art) {
  try {
    lb::io::meshFromJson(art, "a");
  } catch (const lb::io::FormatError& e) {
    return e.path();
  }
  return "";
}

}  // namespace

TEST(MeshJson, WrittenMeshReadsBackEqualThroughText) {
  const auto m = richMesh();
  const json first = write(m);
  const json reparsed = json::parse(first.dump());
  const auto back = lb::io::meshFromJson(reparsed, "layers[0].children[0]");
  EXPECT_EQ(write(*back), first);
  EXPECT_EQ(std::make_tuple(back->vertexCount(), back->selectedCount(), back->relativeU(1)),
            std::make_tuple(m.vertexCount(), size_t(2), 0.1 + 0.2));
  // Every run and every flag is written.
  EXPECT_EQ(first["runs"].size(), 3u * 3u + 4u * 2u);
  EXPECT_EQ(first["nodes"][0]["smooth"].size(), 4u);
  const json& inner = first["runs"][1]["inner"];
  ASSERT_EQ(inner.size(), 2u);
  EXPECT_EQ(inner[0], json({{"kind", "knot"}}));
  EXPECT_EQ(inner[1]["kind"], "vertex");
  EXPECT_EQ(inner[1]["smooth"], json({false, true}));
}

TEST(MeshJson, UnlistedRunsAreStraightWithThirdHandlesAndDefaultsApply) {
  json art = {{"type", "mesh"}, {"size", {1, 1}},
              {"nodes", {{{"p", {0, 0}}}, {{"p", {3, 0}}}, {{"p", {0, 3}}}, {{"p", {3, 6}}}}}};
  const auto m = lb::io::meshFromJson(art, "a");
  const auto pts = m->runData(1, 1, 0).points;
  ASSERT_EQ(pts.size(), 4u);
  EXPECT_EQ(std::vector<double>({pts[1].v, pts[2].v, m->relativeU(1), m->nodeData(1, 1).opacity}),
            std::vector<double>({2, 4, 1, 1}));
  EXPECT_TRUE(m->isSelectionEmpty());
}

TEST(MeshJson, SelectedMeshWithoutVertexFlagsIsWhollySelected) {
  json art = write(richMesh());
  art["selected"] = true;
  EXPECT_EQ(lb::io::meshFromJson(art, "a")->selectedCount(), 2u) << "flags present: kept as written";
  for (auto& n : art["nodes"]) n.erase("selected");
  for (auto& r : art["runs"])
    for (auto& e : r["inner"]) e.erase("selected");
  const auto m = lb::io::meshFromJson(art, "a");
  EXPECT_TRUE(m->isSelectionFull());
  art["selected"] = false;
  EXPECT_TRUE(lb::io::meshFromJson(art, "a")->isSelectionEmpty());
}

TEST(MeshJson, ErrorsNameTheOffendingValue) {
  const json good = write(richMesh());
  struct Case {
    const char* what;
    std::function<void(json&)> spoil;
    const char* path;
  };
  const Case cases[] = {
      {"missing nodes", [](json& a) { a.erase("nodes"); }, "a.nodes"},
      {"missing size", [](json& a) { a.erase("size"); }, "a.size"},
      {"I below 1", [](json& a) { a["size"][0] = 0; }, "a.size[0]"},
      {"size not integer", [](json& a) { a["size"][1] = 1.5; }, "a.size[1]"},
      {"node count", [](json& a) { a["nodes"].erase(a["nodes"].size() - 1); }, "a.nodes"},
      {"point wrong type", [](json& a) { a["nodes"][5]["p"] = "x"; }, "a.nodes[5].p"},
      {"coordinate not finite", [](json& a) { a["nodes"][2]["p"][1] = 1e308 * 10; }, "a.nodes[2].p[1]"},
      {"colour out of range", [](json& a) { a["nodes"][3]["color"] = {{"rgb", {0, 1.5, 0}}}; },
       "a.nodes[3].color.rgb[1]"},
      {"unknown colour", [](json& a) { a["nodes"][3]["color"] = {{"lab", {0, 1, 0}}}; }, "a.nodes[3].color.lab"},
      {"opacity out of range", [](json& a) { a["nodes"][0]["opacity"] = -0.5; }, "a.nodes[0].opacity"},
      {"unknown node key", [](json& a) { a["nodes"][1]["weight"] = 1; }, "a.nodes[1].weight"},
      {"smooth not bool", [](json& a) { a["nodes"][1]["smooth"]["J+"] = 1; }, "a.nodes[1].smooth.J+"},
      {"u not increasing", [](json& a) { a["u"][2] = 0.2; }, "a.u[2]"},
      {"u not ending at 1", [](json& a) { a["u"][3] = 0.9; }, "a.u[3]"},
      {"u wrong count", [](json& a) { a["u"].erase(1); }, "a.u"},
      {"run start off its node", [](json& a) { a["runs"][0]["points"][0][0] = 9; }, "a.runs[0].points[0]"},
      {"run end off its node", [](json& a) { a["runs"][0]["points"][3][1] = 9; }, "a.runs[0].points[3]"},
      {"run point count", [](json& a) { a["runs"][0]["points"].erase(1); }, "a.runs[0].points"},
      {"inner count", [](json& a) { a["runs"][1]["inner"].erase(0); }, "a.runs[1].inner"},
      {"inner kind", [](json& a) { a["runs"][1]["inner"][0]["kind"] = "bump"; }, "a.runs[1].inner[0].kind"},
      {"run node outside", [](json& a) { a["runs"][0]["node"] = {3, 0}; }, "a.runs[0].node"},
      {"run twice", [](json& a) { a["runs"][1] = a["runs"][0]; }, "a.runs[1]"},
      {"axis", [](json& a) { a["runs"][0]["axis"] = "K"; }, "a.runs[0].axis"},
  };
  ASSERT_EQ(errorPath(good), "");
  for (const Case& c : cases) {
    json bad = good;
    c.spoil(bad);
    EXPECT_EQ(errorPath(bad), c.path) << c.what;
  }
}
