// Every pair of sides (s1 of the first mesh, s2 of the second) in both
// directions along the seam: the second mesh is laid against the first so
// that its side s2 lies on the first's side s1, and the sewn mesh must be
// the lattice of both (moving vertices: one shared seam line; adding a
// row: the two seam lines coincide, one row of zero-length segments apart).
#include <gtest/gtest.h>

#include <set>

#include "support/Session.h"

namespace lbtest {
namespace {

using P = std::pair<double, double>;

constexpr double kStep = 10.0;
constexpr int kI1 = 2, kJ1 = 3, kDepth2 = 2;

struct Case {
  int s1, s2;
  bool same;
};

std::string CaseName(const Case& c) {
  return "S" + std::to_string(c.s1) + "toS" + std::to_string(c.s2) + (c.same ? "Same" : "Opposite");
}

std::vector<Case> AllCases() {
  std::vector<Case> out;
  for (int s1 = 0; s1 < 4; ++s1)
    for (int s2 = 0; s2 < 4; ++s2)
      for (bool same : {true, false}) out.push_back({s1, s2, same});
  return out;
}

// The second mesh: its side s2 on the first mesh's side s1, extending
// outward by kDepth2 cells; `same` walks both sides the same way.
json SecondMesh(const Case& c) {
  const int n = c.s1 % 2 == 0 ? kI1 : kJ1;  // cells along the seam
  const int I = c.s2 % 2 == 0 ? n : kDepth2, J = c.s2 % 2 == 0 ? kDepth2 : n;
  // Seam start, direction along it and outward normal of the first mesh.
  const double S[4][2] = {{0, 0}, {kI1 * kStep, 0}, {0, kJ1 * kStep}, {0, 0}};
  const double U[4][2] = {{1, 0}, {0, 1}, {1, 0}, {0, 1}};
  const double N[4][2] = {{0, -1}, {1, 0}, {0, 1}, {-1, 0}};
  MeshRecipe g = Cells(1, 1);
  g.I = I;
  g.J = J;
  g.id = "b";
  json art = MeshJson(g);
  art.erase("runs");  // the nodes move below; runs stay straight between them
  for (int j = 0; j <= J; ++j)
    for (int i = 0; i <= I; ++i) {
      int t = 0, d = 0;
      switch (c.s2) {
        case 0: t = i, d = j; break;
        case 1: t = j, d = I - i; break;
        case 2: t = i, d = J - j; break;
        default: t = j, d = i; break;
      }
      if (!c.same) t = n - t;
      const double h = S[c.s1][0] + kStep * (t * U[c.s1][0] + d * N[c.s1][0]);
      const double v = S[c.s1][1] + kStep * (t * U[c.s1][1] + d * N[c.s1][1]);
      art["nodes"][static_cast<size_t>(j * (I + 1) + i)]["p"] = {h, v};
    }
  return art;
}

class EachSidePair : public ::testing::TestWithParam<Case> {};

TEST_P(EachSidePair, SewnMeshIsTheLatticeOfBoth) {
  const Case& c = GetParam();
  MeshRecipe a = Cells(1, 1);
  a.I = kI1;
  a.J = kJ1;
  a.id = "a";
  const json b = SecondMesh(c);
  std::set<P> want;
  for (const json& m : {MeshJson(a), b})
    for (const auto& p : Positions(m)) want.insert(p);
  for (int addRow = 0; addRow < 2; ++addRow) {
    Session s(DocJson({MeshJson(a), b}));
    const json kids = Children(s.runWritten(addRow ? kCmdSewMeshAdd : kCmdSewMeshMove));
    ASSERT_EQ(kids.size(), 1u);
    const json& mesh = kids[0];
    const int I = mesh.at("size")[0], J = mesh.at("size")[1];
    const int wantI = c.s1 % 2 == 0 ? kI1 : kI1 + kDepth2 + addRow;
    const int wantJ = c.s1 % 2 == 0 ? kJ1 + kDepth2 + addRow : kJ1;
    EXPECT_EQ(I, wantI) << "add row " << addRow;
    EXPECT_EQ(J, wantJ) << "add row " << addRow;
    const auto got = Positions(mesh);
    EXPECT_EQ(std::set<P>(got.begin(), got.end()), want) << "add row " << addRow;
    // Neighbours are one step apart, except across the added row.
    int zero = 0;
    for (int j = 0; j <= J; ++j)
      for (int i = 0; i <= I; ++i)
        for (const auto& [di, dj] : {std::pair{1, 0}, std::pair{0, 1}}) {
          if (i + di > I || j + dj > J) continue;
          const P p = got[static_cast<size_t>(j * (I + 1) + i)];
          const P q = got[static_cast<size_t>((j + dj) * (I + 1) + i + di)];
          const double d = std::hypot(q.first - p.first, q.second - p.second);
          if (d == 0.0) {
            ++zero;
          } else {
            EXPECT_NEAR(d, kStep, 1e-9) << "nodes (" << i << ", " << j << ") +(" << di << ", " << dj << ")";
          }
        }
    const int seamNodes = (c.s1 % 2 == 0 ? kI1 : kJ1) + 1;
    EXPECT_EQ(zero, addRow ? seamNodes : 0);
    // The first mesh keeps its orientation: its node (0, 0) stays the
    // lowest-index node of its part.
    const int offI = c.s1 == 3 ? I - kI1 : 0, offJ = c.s1 == 0 ? J - kJ1 : 0;
    EXPECT_EQ(got[static_cast<size_t>(offJ * (I + 1) + offI)], (P{0, 0}));
    EXPECT_EQ(got[static_cast<size_t>((offJ + kJ1) * (I + 1) + offI + kI1)], (P{kI1 * kStep, kJ1 * kStep}));
  }
}

INSTANTIATE_TEST_SUITE_P(Sew, EachSidePair, ::testing::ValuesIn(AllCases()),
                         [](const auto& info) { return CaseName(info.param); });

}  // namespace
}  // namespace lbtest
