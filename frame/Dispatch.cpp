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
    case 131:
      if (m == kNone) MakeMeshGrid(0, 0);
      else if (m == kAlt) MakeMeshGrid(0, 1);
      else if (m == kCtrl) MakeMeshGrid(1, 0);
      else MakeMeshDotsGroup();
      break;
    case 132:
      // Ctrl+Alt shows both, as with no key.
      MakeMeshCornerNodesAndCoords(m == kAlt ? 1 : m == kCtrl ? 2 : 0);
      break;
    case 133:
      MeshSwapCornerNodeAndVertex();
      break;
    case 134:
      if (m == kNone) KnotsSplit();
      else if (m == kAlt) KnotsDel(1);
      else if (m == kCtrl) KnotsDel(0);
      break;
    case 135:
      if (m == kNone) MeshSegmentsJoin();
      else if (m == kAlt) VerticesDel(1);
      else if (m == kCtrl) VerticesDel(0);
      break;
    case 136:
      lb::color::Shift(axis, sense);
      break;
    case 137:
      lb::color::Flip(axis);
      break;
    case 138:
      if (m == kNone) lb::color::Rotate(1);
      else if (m == kAlt) lb::color::Rotate(0);
      break;
    case 139:
      lb::color::Copy(a, c);
      break;
    case 140:
      MeshCutter();
      break;
    case 141:
      MakeMeshFromPath(a);
      break;
    case 142:
      MakeMeshGridForBrush(a);
      break;
    case 143:
      MakeMeshFromBrushGrid(a);
      break;
    case 144:
      if (m == kNone) lb::handles::SmoothNodes(1, 1, 0);
      else if (m == kAlt) lb::handles::SmoothNodes(1, 0, 0);
      else if (m == kCtrl) lb::handles::SmoothNodes(0, 1, 0);
      else lb::handles::SmoothNodes(0, 0, 1);
      break;
    case 145:
    case 146: {
      const long zero = id == 146 ? 1 : 0;
      if (m == kNone) lb::handles::Nodes13or0(zero, 0, 0, 0);
      else if (m == kAlt) lb::handles::Nodes13or0(zero, 1, 1, 0);
      else if (m == kCtrl) lb::handles::Nodes13or0(zero, 1, 0, 1);
      else lb::handles::Nodes13or0(zero, 1, 1, 1);
      break;
    }
    case 147:
    case 148: {
      const long horizontal = id == 147 ? 1 : 0;
      if (m == kNone) lb::align::NodesAlign(horizontal, 0);
      else if (m == kAlt) lb::align::NodesAlign(horizontal, 1);
      else if (m == kCtrl) lb::align::NodesAlign(horizontal, 2);
      break;
    }
    case 149:
      lb::color::Spread(axis, sense);
      break;
    case 150:
      lb::sel::Full(false);
      break;
    case 151:
      // Ctrl+Alt acts in both directions, as with no key.
      if (m == kAlt) lb::sel::Perim(1, 0, 0);
      else if (m == kCtrl) lb::sel::Perim(0, 1, 0);
      else lb::sel::Perim(1, 1, 0);
      break;
    case 152:
      MeshAddTwo(a, c, 0);
      break;
    case 153:
      MeshAddTwo(a, c, 1);
      break;
    case 154:
      // Ctrl+Alt fills all nodes, as with no key.
      if (m == kAlt) lb::color::Pattern(1, 0);
      else if (m == kCtrl) lb::color::Pattern(0, 1);
      else lb::color::Pattern(0, 0);
      break;
    case 155:
      if (m == kAlt) lb::sel::Cross(1, 0, 0);
      else if (m == kCtrl) lb::sel::Cross(0, 1, 0);
      else lb::sel::Cross(1, 1, 0);
      break;
    case 156:
      if (m == kNone) lb::sel::Shift(1, 0);
      else if (m == kAlt) lb::sel::Shift(-1, 0);
      else if (m == kCtrl) lb::sel::Shift(0, 1);
      else lb::sel::Shift(0, -1);
      break;
    case 157:
      lb::align::NodesSpreadAlongPath(a, 1, c);
      break;
    case 158:
      if (alt) lb::color::CatchFromMeshSurface(ctrl ? 0 : 1);
      else lb::color::CatchFromRaster(ctrl ? 0 : 1);
      break;
    case 159:
      if (m == kNone) lb::handles::Angle90Deg(1, 1);
      else if (m == kAlt) lb::handles::Angle90Deg(1, 0);
      else if (m == kCtrl) lb::handles::Angle90Deg(0, 1);
      else lb::align::Turn180();
      break;
    case 160:
      if (m == kNone) lb::sel::Nodes(0);
      else if (m == kAlt) lb::sel::Nodes(1);
      else if (m == kCtrl) lb::sel::Nodes(2);
      break;
    case 161:
      MeshAddMany(0);
      break;
    case 162:
      if (m == kNone) lb::dens::Mul(1, 1);
      else if (m == kAlt) lb::dens::Mul(1, 0);
      else if (m == kCtrl) lb::dens::Mul(0, 1);
      break;
    case 163:
      if (m == kNone) lb::dens::Div(1, 1);
      else if (m == kAlt) lb::dens::Div(1, 0);
      else if (m == kCtrl) lb::dens::Div(0, 1);
      break;
    case 164:
      AddRowFromPath(a, c);
      break;
    case 165:
      if (m == kNone) AddZeroRow();
      else if (m == kCtrl) DelZeroRow(0);
      else if (m == kCtrlAlt) DelZeroRow(1);
      break;
    case 166:
      if (ctrl) lb::uv::ResetLinear();
      else lb::uv::ResetRelative();
      break;
    case 167:
      // With Ctrl the grid is reflected, Alt choosing the axis; without it
      // the grid is rotated, clockwise unless Alt is held.
      if (ctrl) lb::dir::Flip(static_cast<AIMeshAxis>(a));
      else lb::dir::Rotate(1 - a);
      break;
    case 169:
      lb::debug::AlertUVs();
      break;
    case 170:
      SewPathesNew();
      break;
    default:  // 168 and anything outside the table
      break;
  }
}
}  // namespace

AIErr RunLBFunc(int id, bool alt, bool ctrl, bool useColor, bool useOpacity) {
  CColorOpacity::sm_bUseColor = useColor ? 1 : 0;
  CColorOpacity::sm_bUseOpacity = useOpacity ? 1 : 0;
  lb::s::AcquireSuites();
  if (id >= 131 && id <= 170) RunOperation(id, alt, ctrl);
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
