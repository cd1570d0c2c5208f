// The command table and its accessors.
#include "ButtonDefs.h"

namespace {
constexpr int kCell = 37;     // grid pitch in pixels
constexpr int kMargin = 3;    // offset of a button inside its cell
constexpr int kButton = 36;   // button side
constexpr int kCbBox = 18;    // box a checkbox or its icon is centred in
constexpr int kCbX = 188;
constexpr int kImgX = 206;
constexpr int kColorY = 3;
constexpr int kOpacityY = 21;

void Centre(int* x, int* y, int w, int h, int left, int top) {
  if (x) *x = (kCbBox - w) / 2 + left;
  if (y) *y = (kCbBox - h) / 2 + top;
}
}  // namespace

// clang-format off
const SButtonDef gButtonDefs[kButtonCount] = {
    {0, 0, 129, "IMG_SET_OF_PATHS", kCmdSetOfPaths,
     L"Make set of paths, based on mesh segments\n[] - each path from each sequence of segments\n[Ctrl] - each path from each segment\n[Alt] - each path from each sub-segments\n\n[Ctrl]+[Alt] - Make set of paths, based on mesh handles"},
    {0, 1, 130, "IMG_AXES_AND_NODES", kCmdAxesAndNodes,
     L"Show axes and/or corner nodes\n[] - axes and corner nodes\n[Ctrl] - axes\n[Alt] - corner nodes"},
    {0, 2, 131, "IMG_MOVE_CORNER_NODE", kCmdMoveCornerNode,
     L"Move corner node"},
    {0, 3, 132, "IMG_KNOTS_TO_VERTICES", kCmdKnotsToVertices,
     L"Convert knots into vertices\n[] - knots converts into vertices\n[Alt] - delete knots with handles correction\n[Ctrl] - delete knots"},
    {0, 4, 133, "IMG_VERTICES_TO_KNOTS", kCmdVerticesToKnots,
     L"Convert vertices into knots\n[] - vertices converts into knots\n[Alt] - delete vertices with handles correction\n[Ctrl] - delete vertices"},
    {1, 0, 134, "IMG_COLOR_SHIFT", kCmdColorShift,
     L"Shift colors\n[] - I direction\n[Alt] - I' direction\n[Ctrl] - J direction\n[Ctrl]+[Alt] - J' direction"},
    {1, 1, 135, "IMG_COLOR_REFLECT", kCmdColorReflect,
     L"Reflect colors\n[] - I direction\n[Ctrl] - J direction"},
    {1, 2, 136, "IMG_COLOR_ROTATE", kCmdColorRotate,
     L"Rotate colors\n[] - clockwise\n[Alt] - counterclockwise"},
    {1, 3, 137, "IMG_COLOR_CLONE", kCmdColorClone,
     L"Clone colors\n[] - from one topmost to all other\n[Alt] - from one bottommost to all other\n[Ctrl] - from one topmost to all other with IJ convertion\n[Ctrl]+[Alt] - from one bottommost to all other with IJ convertion"},
    {2, 1, 138, "IMG_SPLIT", kCmdSplit,
     L"Split"},
    {2, 2, 139, "IMG_ONE_CELL_MESH", kCmdOneCellMesh,
     L"Create one cell mesh, based on path\n[] - set path opacity to mesh\n[Alt] - set path opacity to mesh nodes"},
    {2, 3, 140, "IMG_BMG_CREATE", kCmdBmgCreate,
     L"Make BMG (brush mesh grid)"},
    {2, 4, 141, "IMG_BMG_TO_MESH", kCmdBmgToMesh,
     L"Convert BMG into mesh"},
    {3, 0, 142, "IMG_HANDLES_SMOOTH", kCmdHandlesSmooth,
     L"Smooth\n[] - smooth selected vertices and nodes, corner nodes are ignored\n[Alt] - handles in I direction\n[Ctrl] - handles in J direction\n[Ctrl]+[Alt] - corner nodes only (handles 180 deg)"},
    {3, 2, 143, "IMG_HANDLES_1_3", kCmdHandles1_3,
     L"Handles 1/3\n[] - all handles of selected vertices and nodes\n[Alt] - only handles between selected vertices and nodes in I direction\n[Ctrl] - only handles between selected vertices and nodes in J direction\n[Ctrl]+[Alt] - only handles between selected vertices and nodes in both directions"},
    {3, 3, 144, "IMG_HANDLES_0", kCmdHandles0,
     L"Handles 0\n[] - all handles of selected vertices and nodes\n[Alt] - only handles between selected vertices and nodes in I direction\n[Ctrl] - only handles between selected vertices and nodes in J direction\n[Ctrl]+[Alt] - only handles between selected vertices and nodes in both directions"},
    {3, 4, 145, "IMG_ALIGN_HOR", kCmdAlignHor,
     L"Vertical alignment\n[] - center\n[Alt] - upper side\n[Ctrl] - down side"},
    {3, 5, 146, "IMG_ALIGN_VERT", kCmdAlignVert,
     L"Horizontal alignment\n[] - center\n[Alt] - right side\n[Ctrl] - left side"},
    {1, 4, 147, "IMG_COLOR_SPREAD", kCmdColorSpread,
     L"Spread colors\n[] - I direction\n[Alt] - I' direction\n[Ctrl] - J direction\n[Ctrl]+[Alt] - J' direction"},
    {4, 1, 148, "IMG_SEL_REGION", kCmdSelRegion,
     L"Select all region vertices"},
    {4, 2, 149, "IMG_SEL_PERIM", kCmdSelPerim,
     L"Select region perimeter\n[] - entire perimeter\n[Alt] - I direction only\n[Ctrl] - J direction only"},
    {5, 0, 150, "IMG_SEW_MESH_MOVE", kCmdSewMeshMove,
     L"Sew meshes together (move vertices)\n[] - in direct order\n[Alt] - in reverse order\n[Ctrl] - in direct order, using a second pair of sides\n[Ctrl]+[Alt] - in reverse order, using a second pair of sides"},
    {5, 1, 151, "IMG_SEW_MESH_ADD", kCmdSewMeshAdd,
     L"Sew meshes together (add row of cells)\n[] - in direct order\n[Alt] - in reverse order\n[Ctrl] - in direct order, using a second pair of sides\n[Ctrl]+[Alt] - in reverse order, using a second pair of sides "},
    {1, 5, 152, "IMG_COLOR_PATTERN", kCmdColorPattern,
     L"Pattern fill\n[] - fill all nodes\n[Alt] - I direction only\n[Ctrl] - J direction only"},
    {4, 3, 153, "IMG_SEL_CROSS", kCmdSelCross,
     L"Select all vertices in selected rows/columns\n[] - rows(I) and columns(J)\n[Alt] - only rows(I)\n[Ctrl] - only columns(J)"},
    {4, 4, 154, "IMG_SEL_SHIFT", kCmdSelShift,
     L"Shift selected nodes\n[] - I direction\n[Alt] - I' direction\n[Ctrl] - J direction\n[Ctrl]+[Alt] - J' direction"},
    {4, 5, 155, "IMG_ALIGN_PATH", kCmdAlignPath,
     L"Align segments along path\n[] - in direct order\n[Alt] - in reverse order\n[Ctrl] - in direct order, change path side\n[Ctrl]+[Alt] - in reverse order, change path side"},
    {2, 5, 156, "IMG_COLOR_CAPTURE", kCmdColorCapture,
     L"Capture colors from raster object to all selected meshes\n[] - using edge correction\n[Ctrl] - not using edge correction\nCapture colors from bottom mesh surface\n[Alt] - using edge correction\n[Ctrl]+[Alt] - not using edge correction"},
    {3, 1, 157, "IMG_HANDLES_90", kCmdHandles90,
     L"Handles 90 deg\n[] - act on both direction handles\n[Alt] - don't act on I direction\n[Ctrl] - don't act on J direction\n\n[Ctrl]+[Alt] - turn around handles 180 deg in 0xN region"},
    {4, 0, 158, "IMG_SEL", kCmdSel,
     L"Select nodes/vertices\n[] - select nodes only\n[Alt] - select vertices only\n[Ctrl] - invers selection"},
    {5, 2, 159, "IMG_SEW_DOCKED", kCmdSewDocked,
     L"Sew docked meshes together\nor\nMake mesh from docked pathes"},
    {5, 4, 160, "IMG_DENSITY_INC", kCmdDensityInc,
     L"Increase mesh density\n[] - on both directions\n[Alt] - I direction only\n[Ctrl] - J direction only"},
    {5, 5, 161, "IMG_DENSITY_DEC", kCmdDensityDec,
     L"Decrease mesh density\n[] - on both directions\n[Alt] - I direction only\n[Ctrl] - J direction only"},
    {5, 3, 162, "IMG_SEW_PATH", kCmdSewPath,
     L"Sew mesh with path\n[] - in direct order\n[Alt] - in reverse order\n[Ctrl] - in direct order, change path side\n[Ctrl]+[Alt] - in reverse order, change path side"},
    {2, 0, 165, "IMG_SEW_0", kCmdSew0,
     L"[] - Add 0-width rows at selected sides\n\n[Ctrl] - Delete 0-width rows at selected sides\n[Ctrl]+[Alt] - Delete one row at each selected side"},
    {6, 0, 163, "IMG_UV_RESET", kCmdUvReset,
     L"Reset UV coordinates\n[] - Smart reset\n[Ctrl] - Dumb reset"},
    {6, 1, 164, "IMG_DIR_ROTATE", kCmdDirRotate,
     L"Rotate or reflect grid direction\n[] - rotate clockwise\n[Alt] - rotate counterclockwise\n[Ctrl] - reflect in I direction\n[Ctrl]+[Alt] - reflect in J direction"},
};
// clang-format on

unsigned BtnsGetCount() { return kButtonCount; }

void BtnsGetArea(int* w, int* h) {
  int maxRow = 0, maxCol = 0;
  for (const SButtonDef& b : gButtonDefs) {
    if (b.row > maxRow) maxRow = b.row;
    if (b.column > maxCol) maxCol = b.column;
  }
  if (w) *w = (maxCol + 1) * kCell + 5;
  if (h) *h = (maxRow + 1) * kCell + 5;
}

int BtnGetFuncID(unsigned i) { return i < kButtonCount ? gButtonDefs[i].funcId : 0; }
int BtnGetPicID(unsigned i) { return i < kButtonCount ? gButtonDefs[i].picId : 0; }
const char* BtnGetPicStr(unsigned i) { return i < kButtonCount ? gButtonDefs[i].picName : nullptr; }
const wchar_t* BtnGetTooltip(unsigned i) {
  return i < kButtonCount ? gButtonDefs[i].tooltip : nullptr;
}

void BtnGetDimentions(unsigned i, int* x, int* y, int* w, int* h) {
  if (i >= kButtonCount) return;
  if (x) *x = gButtonDefs[i].column * kCell + kMargin;
  if (y) *y = gButtonDefs[i].row * kCell + kMargin;
  if (w) *w = kButton;
  if (h) *h = kButton;
}

void BtnCbColorGetPos(int* x, int* y, int w, int h) { Centre(x, y, w, h, kCbX, kColorY); }
void BtnCbOpacityGetPos(int* x, int* y, int w, int h) { Centre(x, y, w, h, kCbX, kOpacityY); }
void BtnImgColorGetPos(int* x, int* y, int w, int h) { Centre(x, y, w, h, kImgX, kColorY); }
void BtnImgOpacityGetPos(int* x, int* y, int w, int h) { Centre(x, y, w, h, kImgX, kOpacityY); }

const wchar_t* BtnCbColorGetTooltip() { return L"Affect the color of nodes"; }
const wchar_t* BtnCbOpacityGetTooltip() { return L"Affect the opacity of nodes"; }
const char* BtnImgColorGetPicStr() { return "IMG_CB_COLOR"; }
const char* BtnImgOpacityGetPicStr() { return "IMG_CB_OPACITY"; }
int BtnImgColorGetPicID() { return 100; }
int BtnImgOpacityGetPicID() { return 101; }

const wchar_t* BtnsVersionGetTooltip() { return L"Lattice Bender\n0.41.4"; }
