// The paint record and its three switches, on real mesh nodes.
#include <gtest/gtest.h>

#include "HostRefs.h"
#include "color/ColorOpacity.h"
#include "support/Session.h"

using namespace lbtest;

namespace {

class ColorOpacityTest : public LinkedTest {
 protected:
  void SetUp() override {
    saved[0] = CColorOpacity::sm_bUseColor;
    saved[1] = CColorOpacity::sm_bUseOpacity;
    saved[2] = CColorOpacity::sm_bUseAll;
    Load({Coded(1, 1)});
    a = GetNodeRef(Mesh(0), 0, 0);
    b = GetNodeRef(Mesh(0), 1, 1);
  }
  void TearDown() override {
    a.reset();
    b.reset();
    CColorOpacity::sm_bUseColor = saved[0];
    CColorOpacity::sm_bUseOpacity = saved[1];
    CColorOpacity::sm_bUseAll = saved[2];
    LinkedTest::TearDown();
  }
  void Use(int color, int opacity, int all) {
    CColorOpacity::sm_bUseColor = color;
    CColorOpacity::sm_bUseOpacity = opacity;
    CColorOpacity::sm_bUseAll = all;
  }
  // Copies node a's paint onto node b through a record.
  void CopyAtoB() {
    CColorOpacity p;
    p.Read(a);
    p.Write(b);
  }
  int saved[3] = {};
  VertexRef a, b;
};

TEST_F(ColorOpacityTest, SwitchesStartAsColourOnly) {
  // Nothing in this process has touched them before the fixture saved them.
  EXPECT_EQ(saved[0], 1);
  EXPECT_EQ(saved[1], 0);
  EXPECT_EQ(saved[2], 0);
}

TEST_F(ColorOpacityTest, EachSwitchMovesOnlyItsHalf) {
  struct Case {
    int color, opacity, all;
    bool colorMoves, opacityMoves;
  };
  const Case cases[] = {{1, 0, 0, true, false}, {0, 1, 0, false, true}, {0, 0, 0, false, false},
                        {1, 1, 0, true, true},  {0, 0, 1, true, true}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.color << c.opacity << c.all);
    a.reset();
    b.reset();
    Load({Coded(1, 1)});
    a = GetNodeRef(Mesh(0), 0, 0);
    b = GetNodeRef(Mesh(0), 1, 1);
    Use(c.color, c.opacity, c.all);
    CopyAtoB();
    const MeshState m = State(0);
    EXPECT_EQ(m.colorFrom(1, 1), c.colorMoves ? 0 : 3);
    EXPECT_EQ(m.opacityFrom(1, 1), c.opacityMoves ? 0 : 3);
    EXPECT_EQ(m.colorFrom(0, 0), 0);
  }
}

TEST_F(ColorOpacityTest, OpacityReadsAsOneWhenItTakesNoPart) {
  Use(1, 0, 0);
  CColorOpacity p;
  p.m_dOpacity = 0.25;
  p.Read(a);
  EXPECT_EQ(p.m_dOpacity, 1.0);
  Use(0, 1, 0);
  p.Read(a);
  EXPECT_EQ(p.m_dOpacity, OpacityOf(0, 4));
}

}  // namespace
