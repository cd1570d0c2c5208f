// The dispatcher: command id and modifier pair -> one mesh operation.
#include "Dispatch.h"

#include "Operations.h"
#include "Suites.h"
#include "color/ColorOpacity.h"

namespace {
// Modifier pairs, as a two-bit number: Alt is bit 0, Ctrl bit 1.
enum Mods { kNone = 0, kAlt = 1, kCtrl = 2, kCtrlAlt = 3 };

void RunOperation(int id, bool alt, bool ctrl) {
  const int m = (alt ? kAlt : 0) | (ctrl ? kCtrl : 0);
  const int a = alt ? 1 : 0;
  const int c = ctrl ? 1 : 0;
  const auto axis = static_cast<AIMeshAxis>(c);
  const auto sense = static_cast<AIMeshAxisSense>(a);

  switch (id) {
    case kCmdSetOfPaths:
      if (m == kNone) MakeMeshGrid(0, 0);
      else if (m == kAlt) MakeMeshGrid(0, 1);
      else if (m == kCtrl) MakeMeshGrid(1, 0);
      else MakeMeshDotsGroup();
      break;
    case kCmdAxesAndNodes:
      // Ctrl+Alt shows both, as with no key.
      MakeMeshCornerNodesAndCoords(m == kAlt ? 1 : m == kCtrl ? 2 : 0);
      break;
    case kCmdMoveCornerNode:
      MeshSwapCornerNodeAndVertex();
      break;
    case kCmdKnotsToVertices:
      if (m == kNone) KnotsSplit();
      else if (m == kAlt) KnotsDel(1);
      else if (m == kCtrl) KnotsDel(0);
      break;
    case kCmdVerticesToKnots:
      if (m == kNone) MeshSegmentsJoin();
      else if (m == kAlt) VerticesDel(1);
      else if (m == kCtrl) VerticesDel(0);
      break;
    case kCmdColorShift:
      lb::color::Shift(axis, sense);
      break;
    case kCmdColorReflect:
      lb::color::Flip(axis);
      break;
    case kCmdColorRotate:
      if (m == kNone) lb::color::Rotate(1);
      else if (m == kAlt) lb::color::Rotate(0);
      break;
    case kCmdColorClone:
      lb::color::Copy(a, c);
      break;
    case kCmdSplit:
      MeshCutter();
      break;
    case kCmdOneCellMesh:
      MakeMeshFromPath(a);
      break;
    case kCmdBmgCreate:
      MakeMeshGridForBrush(a);
      break;
    case kCmdBmgToMesh:
      MakeMeshFromBrushGrid(a);
      break;
    case kCmdHandlesSmooth:
      if (m == kNone) lb::handles::SmoothNodes(1, 1, 0);
      else if (m == kAlt) lb::handles::SmoothNodes(1, 0, 0);
      else if (m == kCtrl) lb::handles::SmoothNodes(0, 1, 0);
      else lb::handles::SmoothNodes(0, 0, 1);
      break;
    case kCmdHandles1_3:
    case kCmdHandles0: {
      const long zero = id == kCmdHandles0 ? 1 : 0;
      if (m == kNone) lb::handles::Nodes13or0(zero, 0, 0, 0);
      else if (m == kAlt) lb::handles::Nodes13or0(zero, 1, 1, 0);
      else if (m == kCtrl) lb::handles::Nodes13or0(zero, 1, 0, 1);
      else lb::handles::Nodes13or0(zero, 1, 1, 1);
      break;
    }
    case kCmdAlignHor:
    case kCmdAlignVert: {
      const long horizontal = id == kCmdAlignHor ? 1 : 0;
      if (m == kNone) lb::align::NodesAlign(horizontal, 0);
      else if (m == kAlt) lb::align::NodesAlign(horizontal, 1);
      else if (m == kCtrl) lb::align::NodesAlign(horizontal, 2);
      break;
    }
    case kCmdColorSpread:
      lb::color::Spread(axis, sense);
      break;
    case kCmdSelRegion:
      lb::sel::Full(false);
      break;
    case kCmdSelPerim:
      // Ctrl+Alt acts in both directions, as with no key.
      if (m == kAlt) lb::sel::Perim(1, 0, 0);
      else if (m == kCtrl) lb::sel::Perim(0, 1, 0);
      else lb::sel::Perim(1, 1, 0);
      break;
    case kCmdSewMeshMove:
      MeshAddTwo(a, c, 0);
      break;
    case kCmdSewMeshAdd:
      MeshAddTwo(a, c, 1);
      break;
    case kCmdColorPattern:
      // Ctrl+Alt fills all nodes, as with no key.
      if (m == kAlt) lb::color::Pattern(1, 0);
      else if (m == kCtrl) lb::color::Pattern(0, 1);
      else lb::color::Pattern(0, 0);
      break;
    case kCmdSelCross:
      if (m == kAlt) lb::sel::Cross(1, 0, 0);
      else if (m == kCtrl) lb::sel::Cross(0, 1, 0);
      else lb::sel::Cross(1, 1, 0);
      break;
    case kCmdSelShift:
      if (m == kNone) lb::sel::Shift(1, 0);
      else if (m == kAlt) lb::sel::Shift(-1, 0);
      else if (m == kCtrl) lb::sel::Shift(0, 1);
      else lb::sel::Shift(0, -1);
      break;
    case kCmdAlignPath:
      lb::align::NodesSpreadAlongPath(a, 1, c);
      break;
    case kCmdColorCapture:
      if (alt) lb::color::CatchFromMeshSurface(ctrl ? 0 : 1);
      else lb::color::CatchFromRaster(ctrl ? 0 : 1);
      break;
    case kCmdHandles90:
      if (m == kNone) lb::handles::Angle90Deg(1, 1);
      else if (m == kAlt) lb::handles::Angle90Deg(1, 0);
      else if (m == kCtrl) lb::handles::Angle90Deg(0, 1);
      else lb::align::Turn180();
      break;
    case kCmdSel:
      if (m == kNone) lb::sel::Nodes(0);
      else if (m == kAlt) lb::sel::Nodes(1);
      else if (m == kCtrl) lb::sel::Nodes(2);
      break;
    case kCmdSewDocked:
      MeshAddMany(0);
      break;
    case kCmdDensityInc:
      if (m == kNone) lb::dens::Mul(1, 1);
      else if (m == kAlt) lb::dens::Mul(1, 0);
      else if (m == kCtrl) lb::dens::Mul(0, 1);
      break;
    case kCmdDensityDec:
      if (m == kNone) lb::dens::Div(1, 1);
      else if (m == kAlt) lb::dens::Div(1, 0);
      else if (m == kCtrl) lb::dens::Div(0, 1);
      break;
    case kCmdSewPath:
      AddRowFromPath(a, c);
      break;
    case kCmdSew0:
      if (m == kNone) AddZeroRow();
      else if (m == kCtrl) DelZeroRow(0);
      else if (m == kCtrlAlt) DelZeroRow(1);
      break;
    case kCmdUvReset:
      if (ctrl) lb::uv::ResetLinear();
      else lb::uv::ResetRelative();
      break;
    case kCmdDirRotate:
      // With Ctrl the grid is reflected, Alt choosing the axis; without it
      // the grid is rotated, clockwise unless Alt is held.
      if (ctrl) lb::dir::Flip(static_cast<AIMeshAxis>(a));
      else lb::dir::Rotate(1 - a);
      break;
    case kCmdDebugUVs:
      lb::debug::AlertUVs();
      break;
    case kCmdSewPathsReport:
      SewPathesNew();
      break;
    default:  // kCmdNone168 and anything outside the table
      break;
  }
}
}  // namespace

AIErr RunLBFunc(int id, bool alt, bool ctrl, bool useColor, bool useOpacity) {
  CColorOpacity::sm_bUseColor = useColor ? 1 : 0;
  CColorOpacity::sm_bUseOpacity = useOpacity ? 1 : 0;
  lb::s::AcquireSuites();
  if (id >= kCmdFirst && id <= kCmdLast) RunOperation(id, alt, ctrl);
  return lb::s::ReleaseSuites();
}

AIErr BtnsRunLbFunc(int id, bool alt, bool ctrl, bool useColor, bool useOpacity) {
  AcquireSuites();
  if (!sAIAppContext) {
    // Without the context suite no command can run safely.
    ReleaseSuites();
    return kSPSuiteNotFoundError;
  }
  AIAppContextHandle context = nullptr;
  AIErr err = sAIAppContext->PushAppContext(gPluginRef, &context);
  if (err) {
    ReleaseSuites();
    return err;
  }
  RunLBFunc(id, alt, ctrl, useColor, useOpacity);
  err = sAIAppContext->PopAppContext(context);
  ReleaseSuites();
  return err;
}
