// Move corner node (133): at every corner and along both of its sides the
// corner lands on the selected vertex, the outline keeps every point, the
// old corner place becomes a vertex; and the selections that are refused.
#include <algorithm>

#include "commands/grid/KnotsDoc.h"

namespace knots {
namespace {

// A 2 x 2 mesh whose border runs each hold knot, vertex, knot, vertex.
MeshDoc Bordered() {
  MeshDoc d;
  d.I = 2;
  d.J = 2;
  for (int k = 0; k < 2; ++k) {
    d.runs[{0, k, 0}] = MakeRun(MeshDoc::NodeP(k, 0), MeshDoc::NodeP(k + 1, 0), "kvkv");
    d.runs[{0, k, 2}] = MakeRun(MeshDoc::NodeP(k, 2), MeshDoc::NodeP(k + 1, 2), "kvkv");
    d.runs[{1, 0, k}] = MakeRun(MeshDoc::NodeP(0, k), MeshDoc::NodeP(0, k + 1), "kvkv");
    d.runs[{1, 2, k}] = MakeRun(MeshDoc::NodeP(2, k), MeshDoc::NodeP(2, k + 1), "kvkv");
  }
  return d;
}

// Marks the n-th inner vertex (counted along the run's direction) selected.
void SelectVertex(MeshDoc& d, std::tuple<int, int, int> run, int n) {
  std::string& inner = d.runs.at(run).inner;
  for (char& c : inner)
    if (c == 'v' && n-- == 0) c = 'V';
}

// The outline as a closed list of points with a kind per point: 'N' node,
// 'v' vertex, 'k' knot, 'h' handle; from corner 0 round by sides 0 to 3.
struct Outline {
  std::vector<Pt> points;
  std::string kinds;
};

Outline ReadOutline(const json& mesh) {
  const int I = mesh.at("size")[0], J = mesh.at("size")[1];
  Outline o;
  auto add = [&](LineRun r, bool reversed) {
    std::string kinds = "N";
    for (char c : r.inner) kinds += std::string("hh") + (c == 'V' ? 'v' : c);
    kinds += "hh";
    if (reversed) {
      std::reverse(r.points.begin(), r.points.end());
      std::reverse(kinds.begin(), kinds.end());
      kinds = "N" + kinds.substr(0, kinds.size() - 1);
    }
    o.points.insert(o.points.end(), r.points.begin(), r.points.end() - 1);
    o.kinds += kinds;
  };
  for (int i = 0; i < I; ++i) add(ReadRun(mesh, 0, i, 0), false);
  for (int j = 0; j < J; ++j) add(ReadRun(mesh, 1, I, j), false);
  for (int i = I - 1; i >= 0; --i) add(ReadRun(mesh, 0, i, J), true);
  for (int j = J - 1; j >= 0; --j) add(ReadRun(mesh, 1, 0, j), true);
  return o;
}

struct CornerCase {
  int corner;
  bool secondSide;
  int nth;  // which vertex of the run next to the corner, counted from the corner
};

std::string Name(const ::testing::TestParamInfo<CornerCase>& info) {
  return "Corner" + std::to_string(info.param.corner) + (info.param.secondSide ? "Second" : "First") + "Vertex" +
         std::to_string(info.param.nth);
}

class MoveCorner : public ::testing::TestWithParam<CornerCase> {};

TEST_P(MoveCorner, CornerLandsOnTheVertexAndTheOutlineStays) {
  const CornerCase& c = GetParam();
  const int ci[4] = {0, 2, 2, 0}, cj[4] = {0, 0, 2, 2};
  // The run next to the corner along its first and second side, and
  // whether that run points away from the corner.
  const std::tuple<int, int, int> runs[4][2] = {{{0, 0, 0}, {1, 0, 0}},
                                                {{0, 1, 0}, {1, 2, 0}},
                                                {{0, 1, 2}, {1, 2, 1}},
                                                {{1, 0, 1}, {0, 0, 2}}};
  const bool away[4][2] = {{true, true}, {false, true}, {false, false}, {false, true}};
  MeshDoc d = Bordered();
  d.selectedNodes = {{ci[c.corner], cj[c.corner]}};
  const auto run = runs[c.corner][c.secondSide];
  SelectVertex(d, run, away[c.corner][c.secondSide] ? c.nth : 1 - c.nth);
  Session s(lbtest::DocJson({d.art()}));
  const json before = Children(s.written())[0];
  const LineRun r = ReadRun(before, std::get<0>(run), std::get<1>(run), std::get<2>(run));
  const size_t vAnchor = r.inner.find('V') + 1;
  const Pt target = r.points[3 * vAnchor];
  const Pt corner = P(NodeAt(before, ci[c.corner], cj[c.corner]).at("p"));

  const json after = Children(s.runWritten(kCmdMoveCornerNode))[0];
  EXPECT_EQ(P(NodeAt(after, ci[c.corner], cj[c.corner]).at("p")), target);
  EXPECT_TRUE(NodeAt(after, ci[c.corner], cj[c.corner]).value("selected", false));

  // Same closed outline, point for point; only the two kinds swap.
  Outline o = ReadOutline(before), n = ReadOutline(after);
  ASSERT_EQ(n.points.size(), o.points.size());
  const auto start = std::find(o.points.begin(), o.points.end(), n.points[0]);
  ASSERT_NE(start, o.points.end());
  std::rotate(o.points.begin(), start, o.points.end());
  std::rotate(o.kinds.begin(), o.kinds.begin() + (start - o.points.begin()), o.kinds.end());
  EXPECT_TRUE(SamePoints(n.points, o.points, 0.0));
  std::string want = o.kinds;
  for (size_t k = 0; k < want.size(); ++k) {
    if (o.points[k] == target && want[k] == 'v') want[k] = 'N';
    if (o.points[k] == corner && want[k] == 'N') want[k] = 'v';
  }
  EXPECT_EQ(n.kinds, want);
  // The rest of the grid is untouched.
  EXPECT_EQ(NodeAt(after, 1, 1).at("p"), NodeAt(before, 1, 1).at("p"));
}

INSTANTIATE_TEST_SUITE_P(EveryCorner, MoveCorner,
                         ::testing::ValuesIn([] {
                           std::vector<CornerCase> v;
                           for (int k = 0; k < 4; ++k)
                             for (bool second : {false, true})
                               for (int nth : {0, 1}) v.push_back({k, second, nth});
                           return v;
                         }()),
                         Name);

struct Refusal {
  const char* name;
  NodeSet nodes;
  std::vector<std::tuple<int, int, int>> vertexRuns;  // first vertex of each run
  bool twoMeshes;
};

const Refusal kRefusals[] = {
    {"TwoMeshes", {{0, 0}}, {{0, 0, 0}}, true},
    {"ThreeSelected", {{0, 0}}, {{0, 0, 0}, {1, 0, 0}}, false},
    {"TwoNonNodeVertices", {}, {{0, 0, 0}, {1, 0, 0}}, false},
    {"NodeNotACorner", {{1, 0}}, {{0, 0, 0}}, false},
    {"TwoCorners", {{0, 0}, {2, 0}}, {}, false},
    {"CornerOnly", {{0, 0}}, {}, false},
    {"SideNotMeetingTheCorner", {{0, 0}}, {{0, 0, 2}}, false},
    {"BeyondTheNextNode", {{0, 0}}, {{0, 1, 0}}, false},
};

class MoveCornerRefusal : public ::testing::TestWithParam<Refusal> {};

TEST_P(MoveCornerRefusal, ChangesNothing) {
  const Refusal& c = GetParam();
  MeshDoc d = Bordered();
  d.selectedNodes = c.nodes;
  for (auto r : c.vertexRuns) SelectVertex(d, r, 0);
  std::vector<json> arts = {d.art()};
  if (c.twoMeshes) arts.push_back(d.art());
  Session s(lbtest::DocJson(arts));
  const json before = s.written();
  EXPECT_EQ(s.runWritten(kCmdMoveCornerNode), before);
}

INSTANTIATE_TEST_SUITE_P(Cases, MoveCornerRefusal, ::testing::ValuesIn(kRefusals), lbtest::ByName());

}  // namespace
}  // namespace knots
