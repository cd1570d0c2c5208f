// The mesh cutter (140): which selections mark a cut line, that the two
// parts carry the mesh's content on both sides of it, and the bridge of a
// one-cell strip with its nodes on the selected vertices.
#include "commands/grid/KnotsDoc.h"

namespace knots {
namespace {

MeshDoc ThreeByTwo() {
  MeshDoc d;
  d.I = 3;
  d.J = 2;
  d.runs[{0, 1, 0}] = MakeRun(MeshDoc::NodeP(1, 0), MeshDoc::NodeP(2, 0), "kv");
  d.runs[{1, 1, 1}] = MakeRun(MeshDoc::NodeP(1, 1), MeshDoc::NodeP(1, 2), "k");
  d.runs[{1, 3, 0}] = MakeRun(MeshDoc::NodeP(3, 0), MeshDoc::NodeP(3, 1), "vk");
  return d;
}

struct CutCase {
  const char* name;
  NodeSet selected;
  int cutI, cutJ;  // 0, 0: no cut
};

const CutCase kCuts[] = {
    {"BottomNode", {{1, 0}}, 1, 0},
    {"TopNode", {{2, 2}}, 2, 0},
    {"BothEndsOfOneLine", {{2, 0}, {2, 2}}, 2, 0},
    {"LeftNode", {{0, 1}}, 0, 1},
    {"RightNodeAndInner", {{3, 1}, {1, 1}}, 0, 1},
    {"TwoDifferentLines", {{1, 0}, {2, 2}}, 0, 0},
    {"LinesAlongBothAxes", {{1, 0}, {0, 1}}, 0, 0},
    {"CornersOnly", {{0, 0}, {3, 2}}, 0, 0},
    {"InnerNodeOnly", {{1, 1}}, 0, 0},
};

class Cutter : public ::testing::TestWithParam<CutCase> {};

TEST_P(Cutter, CutsAlongTheMarkedLineOnly) {
  const CutCase& c = GetParam();
  MeshDoc d = ThreeByTwo();
  d.selectedNodes = c.selected;
  Session s(lbtest::DocJson({d.art()}));
  const json before = s.written();
  const json doc = s.runWritten(kCmdSplit);
  if (c.cutI == 0 && c.cutJ == 0) {
    EXPECT_EQ(doc, before) << "a mesh wider than one cell with no cut line stays";
    return;
  }
  const json& old = Children(before)[0];
  ASSERT_EQ(Children(doc).size(), 2u) << "two parts, the old mesh gone";
  for (const json& part : Children(doc)) {
    ASSERT_EQ(part.at("type"), "mesh");
    const int pI = part.at("size")[0], pJ = part.at("size")[1];
    // The part's origin in the old grid: where its node (0, 0) stood.
    int oi = 0, oj = 0;
    if (c.cutI) {
      EXPECT_EQ(pJ, 2);
      oi = NodeAt(part, 0, 0).at("p") == NodeAt(old, 0, 0).at("p") ? 0 : c.cutI;
      EXPECT_EQ(pI, oi == 0 ? c.cutI : 3 - c.cutI);
    } else {
      EXPECT_EQ(pI, 3);
      oj = NodeAt(part, 0, 0).at("p") == NodeAt(old, 0, 0).at("p") ? 0 : c.cutJ;
      EXPECT_EQ(pJ, oj == 0 ? c.cutJ : 2 - c.cutJ);
    }
    for (int j = 0; j <= pJ; ++j)
      for (int i = 0; i <= pI; ++i) {
        const json &got = NodeAt(part, i, j), &want = NodeAt(old, i + oi, j + oj);
        EXPECT_EQ(got.at("p"), want.at("p"));
        EXPECT_EQ(got.at("color"), want.at("color"));
        EXPECT_EQ(got.value("selected", false), want.value("selected", false));
        for (int axis = 0; axis < 2; ++axis) {
          if (axis == 0 ? i == pI : j == pJ) continue;
          const LineRun g = ReadRun(part, axis, i, j), w = ReadRun(old, axis, i + oi, j + oj);
          EXPECT_TRUE(SamePoints(g.points, w.points, 0.0));
          EXPECT_EQ(g.inner, w.inner);
        }
      }
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, Cutter, ::testing::ValuesIn(kCuts), lbtest::ByName());

struct BridgeCase {
  const char* name;
  int I, J;
  const char* side0;  // kinds of the first long side's run
  const char* side1;
  bool bridged;
};

const BridgeCase kBridges[] = {
    {"OneCellAlongI", 1, 1, "kVk", "Vk", true},
    {"StripAlongJ", 1, 2, "vVk", "kV", true},
    {"OneSideOnly", 1, 1, "kVk", "vk", false},
    {"NotAStrip", 2, 2, "kVk", "Vk", false},
};

class Bridge : public ::testing::TestWithParam<BridgeCase> {};

// The long sides of the bridged cell: along I from (0, 0) and (0, 1) when
// J = 1; along J from (0, 0) and (1, 0) otherwise.
TEST_P(Bridge, NewLineRunsBetweenTheSelectedVertices) {
  const BridgeCase& c = GetParam();
  MeshDoc d;
  d.I = c.I;
  d.J = c.J;
  const int axis = c.J == 1 ? 0 : 1;
  const std::pair<int, int> s0{0, 0}, s1 = axis == 0 ? std::pair{0, 1} : std::pair{1, 0};
  auto far = [&](std::pair<int, int> n) { return axis == 0 ? MeshDoc::NodeP(n.first + 1, n.second) : MeshDoc::NodeP(n.first, n.second + 1); };
  d.runs[{axis, s0.first, s0.second}] = MakeRun(MeshDoc::NodeP(s0.first, s0.second), far(s0), c.side0);
  d.runs[{axis, s1.first, s1.second}] = MakeRun(MeshDoc::NodeP(s1.first, s1.second), far(s1), c.side1);
  Session s(lbtest::DocJson({d.art()}));
  const json before = s.written();
  const json doc = s.runWritten(kCmdSplit);
  if (!c.bridged) {
    EXPECT_EQ(doc, before);
    return;
  }
  const json& old = Children(before)[0];
  ASSERT_EQ(Children(doc).size(), 1u);
  const json& mesh = Children(doc)[0];
  EXPECT_EQ(mesh.at("size")[axis], (axis == 0 ? c.I : c.J) + 1);
  Pt ends[2];
  for (int side = 0; side < 2; ++side) {
    const std::pair<int, int> n = side == 0 ? s0 : s1;
    const std::string kinds = side == 0 ? c.side0 : c.side1;
    const LineRun o = ReadRun(old, axis, n.first, n.second);
    const size_t at = kinds.find('V') + 1;  // anchor index of the bridge end
    std::vector<Pt> first(o.points.begin(), o.points.begin() + static_cast<long>(3 * at + 1));
    std::vector<Pt> second(o.points.begin() + static_cast<long>(3 * at), o.points.end());
    const LineRun a = ReadRun(mesh, axis, n.first, n.second);
    const int ni = axis == 0 ? n.first + 1 : n.first, nj = axis == 0 ? n.second : n.second + 1;
    const LineRun b = ReadRun(mesh, axis, ni, nj);
    EXPECT_TRUE(SamePoints(a.points, first, 0.0)) << "side " << side << " first half";
    EXPECT_TRUE(SamePoints(b.points, second, 0.0)) << "side " << side << " second half";
    auto plain = [](std::string k) { for (char& ch : k) ch = ch == 'V' ? 'v' : ch; return k; };
    EXPECT_EQ(plain(a.inner), plain(kinds.substr(0, at - 1)));
    EXPECT_EQ(plain(b.inner), plain(kinds.substr(at)));
    ends[side] = P(NodeAt(mesh, ni, nj).at("p"));
    EXPECT_EQ(ends[side], o.points[3 * at]);
  }
  // The cross segment is straight with handles a (single precision) third
  // of the way from each end.
  const int ai = axis == 0 ? 1 : 0, aj = axis == 0 ? 0 : 1;
  const LineRun cross = ReadRun(mesh, 1 - axis, ai, aj);
  const double t = 0.3333333432674408;
  const Pt A = ends[0], B = ends[1];
  EXPECT_TRUE(SamePoints(cross.points,
                         {A, {A.first + t * (B.first - A.first), A.second + t * (B.second - A.second)},
                          {B.first + t * (A.first - B.first), B.second + t * (A.second - B.second)}, B},
                         0.0));
  EXPECT_TRUE(mesh.value("selected", false));
}

INSTANTIATE_TEST_SUITE_P(Cases, Bridge, ::testing::ValuesIn(kBridges), lbtest::ByName());

}  // namespace
}  // namespace knots
