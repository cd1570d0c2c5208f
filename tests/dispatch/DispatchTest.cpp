// Every (id, modifiers) pair of 130..171 reaches exactly the operation the
// command table names, with its arguments, after the switches are set.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "Dispatch.h"
#include "Fakes.h"
#include "Suites.h"
#include "color/ColorOpacity.h"

namespace {

// Columns: none, Alt, Ctrl, Ctrl+Alt. A cell "(args)" calls the row's
// operation, "Name(args)" another one, and "" means the pair does nothing.
struct Row {
  const char* op;
  const char* cell[4];
};

// clang-format off
const std::map<int, Row> kExpected = {
  {kCmdSetOfPaths, {"MakeMeshGrid", {"(0,0)", "(0,1)", "(1,0)", "MakeMeshDotsGroup()"}}},
  {kCmdAxesAndNodes, {"MakeMeshCornerNodesAndCoords", {"(0)", "(1)", "(2)", "(0)"}}},
  {kCmdMoveCornerNode, {"MeshSwapCornerNodeAndVertex", {"()", "()", "()", "()"}}},
  {kCmdKnotsToVertices, {"KnotsSplit", {"()", "KnotsDel(1)", "KnotsDel(0)", ""}}},
  {kCmdVerticesToKnots, {"MeshSegmentsJoin", {"()", "VerticesDel(1)", "VerticesDel(0)", ""}}},
  {kCmdColorShift, {"color::Shift", {"(0,0)", "(0,1)", "(1,0)", "(1,1)"}}},
  {kCmdColorReflect, {"color::Flip", {"(0)", "(0)", "(1)", "(1)"}}},
  {kCmdColorRotate, {"color::Rotate", {"(1)", "(0)", "", ""}}},
  {kCmdColorClone, {"color::Copy", {"(0,0)", "(1,0)", "(0,1)", "(1,1)"}}},
  {kCmdSplit, {"MeshCutter", {"()", "()", "()", "()"}}},
  {kCmdOneCellMesh, {"MakeMeshFromPath", {"(0)", "(1)", "(0)", "(1)"}}},
  {kCmdBmgCreate, {"MakeMeshGridForBrush", {"(0)", "(1)", "(0)", "(1)"}}},
  {kCmdBmgToMesh, {"MakeMeshFromBrushGrid", {"(0)", "(1)", "(0)", "(1)"}}},
  {kCmdHandlesSmooth, {"handles::SmoothNodes", {"(1,1,0)", "(1,0,0)", "(0,1,0)", "(0,0,1)"}}},
  {kCmdHandles1_3, {"handles::Nodes13or0", {"(0,0,0,0)", "(0,1,1,0)", "(0,1,0,1)", "(0,1,1,1)"}}},
  {kCmdHandles0, {"handles::Nodes13or0", {"(1,0,0,0)", "(1,1,1,0)", "(1,1,0,1)", "(1,1,1,1)"}}},
  {kCmdAlignHor, {"align::NodesAlign", {"(1,0)", "(1,1)", "(1,2)", ""}}},
  {kCmdAlignVert, {"align::NodesAlign", {"(0,0)", "(0,1)", "(0,2)", ""}}},
  {kCmdColorSpread, {"color::Spread", {"(0,0)", "(0,1)", "(1,0)", "(1,1)"}}},
  {kCmdSelRegion, {"sel::Full", {"(0)", "(0)", "(0)", "(0)"}}},
  {kCmdSelPerim, {"sel::Perim", {"(1,1,0)", "(1,0,0)", "(0,1,0)", "(1,1,0)"}}},
  {kCmdSewMeshMove, {"MeshAddTwo", {"(0,0,0)", "(1,0,0)", "(0,1,0)", "(1,1,0)"}}},
  {kCmdSewMeshAdd, {"MeshAddTwo", {"(0,0,1)", "(1,0,1)", "(0,1,1)", "(1,1,1)"}}},
  {kCmdColorPattern, {"color::Pattern", {"(0,0)", "(1,0)", "(0,1)", "(0,0)"}}},
  {kCmdSelCross, {"sel::Cross", {"(1,1,0)", "(1,0,0)", "(0,1,0)", "(1,1,0)"}}},
  {kCmdSelShift, {"sel::Shift", {"(1,0)", "(-1,0)", "(0,1)", "(0,-1)"}}},
  {kCmdAlignPath, {"align::NodesSpreadAlongPath", {"(0,1,0)", "(1,1,0)", "(0,1,1)", "(1,1,1)"}}},
  {kCmdColorCapture, {"color::CatchFromRaster", {"(1)", "color::CatchFromMeshSurface(1)", "(0)", "color::CatchFromMeshSurface(0)"}}},
  {kCmdHandles90, {"handles::Angle90Deg", {"(1,1)", "(1,0)", "(0,1)", "align::Turn180()"}}},
  {kCmdSel, {"sel::Nodes", {"(0)", "(1)", "(2)", ""}}},
  {kCmdSewDocked, {"MeshAddMany", {"(0)", "(0)", "(0)", "(0)"}}},
  {kCmdDensityInc, {"dens::Mul", {"(1,1)", "(1,0)", "(0,1)", ""}}},
  {kCmdDensityDec, {"dens::Div", {"(1,1)", "(1,0)", "(0,1)", ""}}},
  {kCmdSewPath, {"AddRowFromPath", {"(0,0)", "(1,0)", "(0,1)", "(1,1)"}}},
  {kCmdSew0, {"AddZeroRow", {"()", "", "DelZeroRow(0)", "DelZeroRow(1)"}}},
  {kCmdUvReset, {"uv::ResetRelative", {"()", "()", "uv::ResetLinear()", "uv::ResetLinear()"}}},
  {kCmdDirRotate, {"dir::Rotate", {"(1)", "(0)", "dir::Flip(0)", "dir::Flip(1)"}}},
  {kCmdNone168, {"", {"", "", "", ""}}},
  {kCmdDebugUVs, {"debug::AlertUVs", {"()", "()", "()", "()"}}},
  {kCmdSewPathsReport, {"SewPathesNew", {"()", "()", "()", "()"}}},
};
// clang-format on

class Dispatch : public ::testing::Test {
 protected:
  void SetUp() override {
    fake::resetHost();
    fake::calls.clear();
    gsSPBasic = fake::basic();
    gPluginRef = reinterpret_cast<SPPluginRef>(0x99);
  }
  void TearDown() override {
    EXPECT_EQ(gAcquireCount, 0);
    EXPECT_EQ(lb::s::gAcquireCount, 0);
    EXPECT_TRUE(fake::host.acquired.empty());
    EXPECT_EQ(fake::host.contexts, 0);
  }
};

TEST_F(Dispatch, EveryIdAndModifierPairRunsTheRightOperation) {
  for (int id = kCmdFirst - 1; id <= kCmdLast + 1; ++id) {
    for (int mods = 0; mods < 4; ++mods) {
      const bool alt = mods & 1, ctrl = mods & 2;
      SCOPED_TRACE("id " + std::to_string(id) + " alt " + std::to_string(alt) + " ctrl " +
                   std::to_string(ctrl));
      fake::calls.clear();
      EXPECT_EQ(BtnsRunLbFunc(id, alt, ctrl, true, true), AIFourCC("POP!"));
      auto it = kExpected.find(id);
      const std::string cell = it == kExpected.end() ? "" : it->second.cell[mods];
      const std::string expected = cell[0] == '(' ? it->second.op + cell : cell;
      if (expected.empty()) {
        EXPECT_TRUE(fake::calls.empty()) << fake::calls.front().text;
      } else {
        ASSERT_EQ(fake::calls.size(), 1u);
        EXPECT_EQ(fake::calls[0].text, expected);
        // The command suites are held while the operation runs.
        EXPECT_EQ(fake::calls[0].commandAcquisitions, 1);
      }
    }
  }
  EXPECT_EQ(kExpected.size(), 40u);
}

TEST_F(Dispatch, SwitchesAreSetBeforeTheOperationRuns) {
  for (int color = 0; color < 2; ++color) {
    for (int opacity = 0; opacity < 2; ++opacity) {
      CColorOpacity::sm_bUseColor = !color;
      CColorOpacity::sm_bUseOpacity = !opacity;
      CColorOpacity::sm_bUseAll = 0;
      fake::calls.clear();
      RunLBFunc(kCmdColorShift, false, false, color, opacity);
      ASSERT_EQ(fake::calls.size(), 1u);
      EXPECT_EQ(std::make_pair(fake::calls[0].useColor, fake::calls[0].useOpacity), std::make_pair(color, opacity));
      EXPECT_EQ(CColorOpacity::sm_bUseAll, 0);  // never the dispatcher's business
    }
  }
}

TEST_F(Dispatch, IdsThatRunNothingStillRecordTheSwitchesAndCycleTheSuites) {
  for (int id : {kCmdFirst - 1, int(kCmdNone168), kCmdLast + 1}) {
    CColorOpacity::sm_bUseColor = 1;
    CColorOpacity::sm_bUseOpacity = 1;
    fake::host.acquireLog.clear();
    RunLBFunc(id, false, false, false, false);
    EXPECT_EQ(std::make_pair(CColorOpacity::sm_bUseColor, CColorOpacity::sm_bUseOpacity), std::make_pair(0, 0));
    ASSERT_EQ(fake::host.acquireLog.size(), 18u);  // the whole command table
    EXPECT_EQ(std::make_tuple(fake::host.acquireLog.front(), fake::host.acquireLog.back()),
              std::make_tuple("AI Real Math Suite", "AI Matching Art Suite"));
  }
  EXPECT_TRUE(fake::calls.empty());
}

TEST_F(Dispatch, AFailedContextPushRunsNothingAndReleasesTheFrameSuites) {
  fake::host.pushError = AIFourCC("CTX!");
  EXPECT_EQ(BtnsRunLbFunc(kCmdSelRegion, false, false, true, true), AIFourCC("CTX!"));
  EXPECT_TRUE(fake::calls.empty());
  EXPECT_EQ(fake::host.pushes, 1);
}

TEST_F(Dispatch, CommandSuitesNestInsideAnOuterAcquisition) {
  lb::s::AcquireSuites();
  const size_t walked = fake::host.acquireLog.size();
  RunLBFunc(kCmdSelRegion, false, false, true, true);
  EXPECT_EQ(fake::host.acquireLog.size(), walked);  // no second walk
  EXPECT_EQ(lb::s::gAcquireCount, 1);
  EXPECT_NE(lb::s::sMesh, nullptr);  // still held by the outer level
  lb::s::ReleaseSuites();
  EXPECT_EQ(lb::s::sMesh, nullptr);
}

TEST_F(Dispatch, CommandAcquisitionStopsAtTheFirstMissingSuite) {
  fake::host.failSuite = "AI Mesh Suite";
  EXPECT_EQ(lb::s::AcquireSuites(), kSPSuiteNotFoundError);
  EXPECT_EQ(lb::s::gAcquireCount, 1);  // counted either way
  EXPECT_EQ(fake::host.acquireLog.size(), 6u);  // the six rows before it
  EXPECT_EQ(lb::s::sMesh, nullptr);
  EXPECT_EQ(lb::s::sMeshHit, nullptr);  // never reached
  EXPECT_EQ(lb::s::ReleaseSuites(), kNoErr);
  EXPECT_EQ(lb::s::sMath, nullptr);
}

}  // namespace
