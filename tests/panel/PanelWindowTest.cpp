// The panel of the loaded plug-in, driven through its native window the way
// the platform would: paint, hover, press, move and release, with the
// document showing which command ran and with which keys and checkboxes.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <set>
#include <vector>

#include <nlohmann/json.hpp>

#include "LBModule.h"
#include "host/Document.h"
#include "host/Host.h"
#include "host/PanelHost.h"
#include "io/Lbdoc.h"
#include "lbwin.h"
#include "support/MeshRead.h"

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);
constexpr COLORREF kShadow = RGB(128, 128, 128);
constexpr COLORREF kGrey = RGB(208, 208, 208);
constexpr COLORREF kBlue = RGB(0, 0, 255);
constexpr COLORREF kStrip = 0xE1FFFF;
constexpr COLORREF kBlack = RGB(0, 0, 0);

// Command ids by grid place (row, column).
const std::map<int, std::pair<int, int>> kGrid = {
    {kCmdSetOfPaths, {0, 0}},      {kCmdAxesAndNodes, {0, 1}},    {kCmdMoveCornerNode, {0, 2}},
    {kCmdKnotsToVertices, {0, 3}}, {kCmdVerticesToKnots, {0, 4}}, {kCmdColorShift, {1, 0}},
    {kCmdColorReflect, {1, 1}},    {kCmdColorRotate, {1, 2}},     {kCmdColorClone, {1, 3}},
    {kCmdColorSpread, {1, 4}},     {kCmdColorPattern, {1, 5}},    {kCmdSew0, {2, 0}},
    {kCmdSplit, {2, 1}},           {kCmdOneCellMesh, {2, 2}},     {kCmdBmgCreate, {2, 3}},
    {kCmdBmgToMesh, {2, 4}},       {kCmdColorCapture, {2, 5}},    {kCmdHandlesSmooth, {3, 0}},
    {kCmdHandles90, {3, 1}},       {kCmdHandles1_3, {3, 2}},      {kCmdHandles0, {3, 3}},
    {kCmdAlignHor, {3, 4}},        {kCmdAlignVert, {3, 5}},       {kCmdSel, {4, 0}},
    {kCmdSelRegion, {4, 1}},       {kCmdSelPerim, {4, 2}},        {kCmdSelCross, {4, 3}},
    {kCmdSelShift, {4, 4}},        {kCmdAlignPath, {4, 5}},       {kCmdSewMeshMove, {5, 0}},
    {kCmdSewMeshAdd, {5, 1}},      {kCmdSewDocked, {5, 2}},       {kCmdSewPath, {5, 3}},
    {kCmdDensityInc, {5, 4}},      {kCmdDensityDec, {5, 5}},      {kCmdUvReset, {6, 0}},
    {kCmdDirRotate, {6, 1}}};

struct Rect {
  int x, y, w, h;
};
Rect ButtonRect(int id) {
  auto [row, col] = kGrid.at(id);
  return Rect{col * 37 + 3, row * 37 + 3, 36, 36};
}

// Centres of the shift-colours and reflect-colours buttons.
constexpr int kShiftX = 21, kShiftY = 58;
constexpr int kReflectX = 58, kReflectY = 58;
// Inside the colour and opacity checkboxes; an empty grid cell.
constexpr int kColorBoxX = 195, kColorBoxY = 10;
constexpr int kOpacityBoxX = 195, kOpacityBoxY = 28;
constexpr int kEmptyX = 130, kEmptyY = 240;

// A 2 x 1 mesh, every node selected, each node's paint naming the node.
std::string MeshDocument() { return lbtest::DocJson(lbtest::Coded(2, 1, lbtest::Rect(0, 2, 0, 1))).dump(); }

class Panel : public ::testing::Test {
 protected:
  void SetUp() override {
    windows = lbwinLiveWindows();
    host = std::make_unique<lb::host::Host>(lb::io::readDocument(MeshDocument()));
    host->loadPlugin();
    hwnd = lb::host::currentPanelWindow();
    ASSERT_NE(hwnd, nullptr);
    lbwinPaint(hwnd);
    counters = host->counters();
    dcs = lbwinLiveDCs();
    objects = lbwinLiveGdiObjects();
  }
  void TearDown() override {
    lbwinSetKeyState(VK_CONTROL, FALSE);
    lbwinSetKeyState(VK_MENU, FALSE);
    if (!host) return;
    EXPECT_EQ(host->counters(), counters) << "a window message left a host object alive";
    EXPECT_EQ(lbwinLiveDCs(), dcs) << "a device context was not released";
    EXPECT_EQ(lbwinLiveGdiObjects(), objects) << "a pen or brush was not deleted";
    // Shutting down restores the window's procedure and destroys it.
    host->shutdownPlugin();
    EXPECT_FALSE(IsWindow(hwnd));
    EXPECT_EQ(lb::host::livePanels(), 0);
    EXPECT_EQ(lb::host::currentPanelWindow(), nullptr);
    EXPECT_EQ(lbwinLiveDCs(), dcs);
    EXPECT_EQ(lbwinLiveGdiObjects(), objects);
    host.reset();
    EXPECT_EQ(lbwinLiveWindows(), windows);
  }

  void Move(int x, int y, WPARAM keys = 0) { lbwinSendMessage(hwnd, WM_MOUSEMOVE, keys, MAKELPARAM(x, y)); }
  void Down(int x, int y) { lbwinSendMessage(hwnd, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y)); }
  void Up(int x, int y) { lbwinSendMessage(hwnd, WM_LBUTTONUP, 0, MAKELPARAM(x, y)); }
  void Click(int x, int y) {
    Move(x, y);
    Down(x, y);
    Up(x, y);
  }
  COLORREF At(int x, int y) const { return lbwinGetPixel(hwnd, x, y); }

  // The strip's pixels, row by row.
  std::vector<COLORREF> Strip() const {
    std::vector<COLORREF> out;
    for (int y = 267; y < 411; ++y)
      for (int x = 3; x < 224; ++x) out.push_back(At(x, y));
    return out;
  }
  bool Dark(int x, int y) const {
    const COLORREF c = At(x, y);
    return GetRValue(c) + GetGValue(c) + GetBValue(c) < 300;
  }
  // Columns holding text (dark) pixels inside the strip.
  std::pair<int, int> TextColumns() const {
    int lo = 1000, hi = -1;
    for (int y = 269; y < 409; ++y)
      for (int x = 5; x < 222; ++x)
        if (Dark(x, y)) lo = std::min(lo, x), hi = std::max(hi, x);
    return {lo, hi};
  }
  // The frame: light on the left column and top row but for their last
  // pixels, dark on the whole right column and bottom row.
  bool Framed(int id, COLORREF light, COLORREF dark) const {
    Rect r = ButtonRect(id);
    bool ok = true;
    for (int k = 0; k < r.h; ++k)
      ok = ok && At(r.x + r.w - 1, r.y + k) == dark && (k == r.h - 1 || At(r.x, r.y + k) == light);
    for (int k = 0; k < r.w; ++k)
      ok = ok && At(r.x + k, r.y + r.h - 1) == dark && (k == r.w - 1 || At(r.x + k, r.y) == light);
    return ok;
  }
  std::set<int> BlueButtons() const {
    std::set<int> out;
    for (const auto& [id, place] : kGrid)
      if (Framed(id, kBlue, kBlue)) out.insert(id);
    return out;
  }

  // Whose colour and opacity node (i, j) of the written mesh now holds.
  lbtest::MeshState Mesh() const {
    return lbtest::MeshState(lbtest::Children(nlohmann::json::parse(lb::io::writeDocument(host->document())))[0]);
  }
  int ColorFrom(int i, int j) const { return Mesh().colorFrom(i, j); }
  int OpacityFrom(int i, int j) const { return Mesh().opacityFrom(i, j); }

  std::unique_ptr<lb::host::Host> host;
  HWND hwnd = nullptr;
  lb::host::Counters counters;
  long windows = 0, dcs = 0, objects = 0;
};

// ---- The composed picture -------------------------------------------------------

TEST_F(Panel, HostPanelAndWindow) {
  const lb::host::PanelInfo* info = lb::host::currentPanel();
  ASSERT_NE(info, nullptr);
  EXPECT_EQ(info->id + " " + info->title, "LatticeBender LatticeBender");
  EXPECT_EQ(std::make_pair(info->minWidth, info->minHeight), std::make_pair(200.0, 200.0));
  RECT rc;
  ASSERT_TRUE(GetClientRect(hwnd, &rc));
  EXPECT_EQ(std::make_pair(rc.right, rc.bottom), std::make_pair(LONG(227), LONG(414)));
  EXPECT_NE(GetProp(hwnd, "TPNL"), nullptr);
  EXPECT_NE(GetWindowLongPtr(hwnd, GWLP_WNDPROC), reinterpret_cast<LONG_PTR>(&DefWindowProc));
}

// Every picture button is raised with its picture inside; background
// between and around the buttons.
TEST_F(Panel, ButtonsAndBackground) {
  for (const auto& [id, place] : kGrid) {
    SCOPED_TRACE(id);
    EXPECT_TRUE(Framed(id, kWhite, kShadow));
    Rect r = ButtonRect(id);
    // The 32 x 32 picture sits at (X + 2, Y + 2): the ring just inside the
    // frame stays background.
    for (int k = 1; k <= 34; ++k)
      for (auto [x, y] : {std::pair{1, k}, {34, k}, {k, 1}, {k, 34}})
        EXPECT_EQ(At(r.x + x, r.y + y), kGrey) << x << "," << y;
    int drawn = 0;
    for (int y = r.y + 2; y < r.y + 34; ++y)
      for (int x = r.x + 2; x < r.x + 34; ++x) drawn += At(x, y) != kGrey;
    EXPECT_GT(drawn, 20) << "no picture";
  }
  for (int y = 0; y < 262; ++y) {
    EXPECT_EQ(At(39, y), kGrey) << y;   // between columns 0 and 1
    EXPECT_EQ(At(2, y), kGrey) << y;    // left margin
  }
  for (int x = 0; x < 227; ++x) {
    EXPECT_EQ(At(x, 39), kGrey) << x;  // between rows 0 and 1
    EXPECT_EQ(At(x, 2), kGrey) << x;   // top margin
  }
  // The empty cells of the last row have no frame.
  for (int x = 77; x < 224; ++x) EXPECT_EQ(At(x, 225), kGrey) << x;
}

TEST_F(Panel, CheckboxFramesAndMarks) {
  for (int top : {4, 22}) {
    SCOPED_TRACE(top);
    // (x, y - top, colour): the outer frame, shadow on the left column and
    // top row over their full length, white on the right and bottom; the
    // inner frame, dark left and top (the left winning over the bottom, the
    // top over the right), light right and bottom; white inside.
    const COLORREF dark = RGB(64, 64, 64), light = RGB(212, 212, 212);
    for (auto [x, dy, colour] : {std::tuple{189, 0, kShadow}, {189, 14, kShadow}, {203, 0, kShadow}, {203, 7, kWhite},
                                 {195, 14, kWhite}, {190, 1, dark}, {190, 13, dark}, {202, 1, dark}, {202, 7, light},
                                 {195, 13, light}, {192, 6, kWhite}})
      EXPECT_EQ(At(x, top + dy), colour) << x << "," << dy;

    // The 7 x 7 check mark lands 4 pixels in from the box's corner.
    const int mx = 193, my = top + 4;
    const int tops[7] = {2, 3, 4, 3, 2, 1, 0};  // first black row of columns 0..6
    for (int c = 0; c < 7; ++c)
      for (int r = 0; r < 7; ++r) {
        const bool black = r >= tops[c] && r < tops[c] + 3;
        EXPECT_EQ(At(mx + c, my + r), black ? kBlack : kWhite) << c << "," << r;
      }
  }
}

TEST_F(Panel, TextStripAndVersionText) {
  // Filled without an outline: the last column and row stay background.
  for (auto [x, y, colour] : {std::tuple{3, 267, kStrip}, {222, 409, kStrip}, {2, 300, kGrey}, {100, 266, kGrey},
                              {223, 300, kGrey}, {100, 410, kGrey}})
    EXPECT_EQ(At(x, y), colour) << x << "," << y;
  // "Lattice Bender" over "0.41.4", each centred.
  auto [lo, hi] = TextColumns();
  ASSERT_LT(lo, hi);
  EXPECT_NEAR((lo + hi) / 2.0, 113.0, 4.0);
  EXPECT_GT(lo, 40);
  int bands = 0;
  bool inText = false;
  for (int y = 269; y < 409; ++y) {
    bool any = false;
    for (int x = 5; x < 222; ++x) any = any || Dark(x, y);
    if (any && !inText) ++bands;
    inText = any;
  }
  EXPECT_EQ(bands, 2);
}

TEST_F(Panel, PrintClientDrawsTheCompositeAlone) {
  HWND other = lbwinCreateWindow(227, 414);
  HDC dc = GetDC(other);
  lbwinSendMessage(hwnd, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc), 0);
  ReleaseDC(other, dc);
  // The composite holds pictures, checkboxes and marks, but neither the
  // buttons' frames nor the text strip.
  for (auto [x, y, colour] : {std::tuple{3, 3, kGrey}, {38, 38, kGrey}, {199, 8, kBlack}, {189, 4, kShadow},
                              {100, 300, kGrey}, {30, 20, At(30, 20)}})
    EXPECT_EQ(lbwinGetPixel(other, x, y), colour) << x << "," << y;
  DestroyWindow(other);
}

// ---- Hovering -----------------------------------------------------------------------

// Hovering a button shows its tooltip from the left, an empty spot the
// version; the strip is redrawn only when its text changes (and on paint).
TEST_F(Panel, HoverShowsTheTooltipAndRedrawsTheStripOnlyWhenItsTextChanges) {
  const auto version = Strip();
  Move(kShiftX, kShiftY);
  EXPECT_NE(Strip(), version);
  EXPECT_LT(TextColumns().first, 12);
  Move(kEmptyX, kEmptyY);
  EXPECT_EQ(Strip(), version);
  Move(kShiftX, kShiftY);
  Move(1, 1);  // the margin is no button either
  EXPECT_EQ(Strip(), version);

  Move(kShiftX, kShiftY);
  HDC dc = GetDC(hwnd);
  SetPixel(dc, 150, 400, RGB(1, 2, 3));
  ReleaseDC(hwnd, dc);
  Move(kShiftX + 5, kShiftY + 5);  // same button, same text
  EXPECT_EQ(At(150, 400), RGB(1, 2, 3));
  Move(kReflectX, kReflectY);
  EXPECT_EQ(At(150, 400), kStrip);

  dc = GetDC(hwnd);
  SetPixel(dc, 150, 400, RGB(1, 2, 3));
  ReleaseDC(hwnd, dc);
  lbwinPaint(hwnd);  // painting always redraws it
  EXPECT_EQ(At(150, 400), kStrip);
}

TEST_F(Panel, CheckboxHoverOutlinesTheButtonsItAffects) {
  Move(kColorBoxX, kColorBoxY);
  const std::set<int> opacityLinked{kCmdColorShift,  kCmdColorReflect, kCmdColorRotate, kCmdColorClone,
                                    kCmdColorSpread, kCmdColorPattern, kCmdColorCapture};
  std::set<int> colorLinked = opacityLinked;
  colorLinked.insert(kCmdOneCellMesh);
  EXPECT_EQ(BlueButtons(), colorLinked);
  Move(kOpacityBoxX, kOpacityBoxY);
  EXPECT_EQ(BlueButtons(), opacityLinked);
  EXPECT_TRUE(Framed(kCmdOneCellMesh, kWhite, kShadow));
  Move(kShiftX, kShiftY);
  EXPECT_TRUE(BlueButtons().empty());
  Move(kColorBoxX, kColorBoxY);
  Move(kEmptyX, kEmptyY);
  EXPECT_TRUE(BlueButtons().empty());
  // None while a button is pressed.
  Down(kShiftX, kShiftY);
  Move(kColorBoxX, kColorBoxY, MK_LBUTTON);
  EXPECT_TRUE(BlueButtons().empty());
  Up(kColorBoxX, kColorBoxY);
}

TEST_F(Panel, LeavingClearsOutlinesAndRestoresTheVersion) {
  const auto version = Strip();
  Move(kColorBoxX, kColorBoxY);
  ASSERT_FALSE(BlueButtons().empty());
  EXPECT_TRUE(lbwinIsTrackingLeave(hwnd));
  EXPECT_TRUE(lbwinMouseLeave(hwnd));
  EXPECT_TRUE(BlueButtons().empty());
  EXPECT_EQ(Strip(), version);
  for (const auto& [id, place] : kGrid) EXPECT_TRUE(Framed(id, kWhite, kShadow)) << id;
  // The request was used up; the next move asks again.
  EXPECT_FALSE(lbwinMouseLeave(hwnd));
  Move(kShiftX, kShiftY);
  EXPECT_TRUE(lbwinIsTrackingLeave(hwnd));
}

// ---- Pressing and releasing -----------------------------------------------------------

// Released away from the pressed button (over nothing, over another
// button) nothing runs; a press outside every button runs nothing either;
// released over it after leaving and returning, it runs.
TEST_F(Panel, PressedButtonSinksRisesAndRunsOnlyWhenReleasedOverIt) {
  Down(kShiftX, kShiftY);
  EXPECT_TRUE(Framed(kCmdColorShift, kShadow, kWhite));
  EXPECT_EQ(GetCapture(), hwnd);
  Move(kEmptyX, kEmptyY, MK_LBUTTON);
  EXPECT_TRUE(Framed(kCmdColorShift, kWhite, kShadow));
  Move(kShiftX, kShiftY, MK_LBUTTON);
  EXPECT_TRUE(Framed(kCmdColorShift, kShadow, kWhite));
  Move(kShiftX, kShiftY, 0);  // the button is no longer held
  EXPECT_TRUE(Framed(kCmdColorShift, kWhite, kShadow));
  Up(kEmptyX, kEmptyY);
  EXPECT_EQ(GetCapture(), nullptr);
  EXPECT_EQ(ColorFrom(0, 0), 0);
  Down(kShiftX, kShiftY);
  Move(kReflectX, kReflectY, MK_LBUTTON);
  Up(kReflectX, kReflectY);
  EXPECT_EQ(std::make_pair(ColorFrom(0, 0), ColorFrom(2, 1)), std::make_pair(0, 5));
  Down(kEmptyX, kEmptyY);
  Up(kShiftX, kShiftY);
  EXPECT_EQ(ColorFrom(0, 0), 0);
  Down(kShiftX, kShiftY);
  Move(kEmptyX, kEmptyY, MK_LBUTTON);
  Move(kShiftX + 3, kShiftY - 3, MK_LBUTTON);
  Up(kShiftX + 3, kShiftY - 3);
  EXPECT_EQ(ColorFrom(0, 0), 2);  // shifted along I: (0, 0) takes (2, 0)'s colour
  EXPECT_TRUE(Framed(kCmdColorShift, kWhite, kShadow));
}

TEST_F(Panel, CheckboxTogglesOnPressAndTheNextCommandSeesIt) {
  Down(kColorBoxX, kColorBoxY);
  EXPECT_EQ(At(199, 8), kWhite);  // the mark is gone at once
  Up(kColorBoxX, kColorBoxY);
  EXPECT_EQ(At(199, 8), kWhite);
  // Colour off, opacity on: only the opacities shift.
  Click(kShiftX, kShiftY);
  EXPECT_EQ(std::make_pair(ColorFrom(0, 0), OpacityFrom(0, 0)), std::make_pair(0, 2));
  // Pressing again checks it again; a release elsewhere does not matter.
  Down(kColorBoxX, kColorBoxY);
  EXPECT_EQ(At(199, 8), kBlack);
  Up(kEmptyX, kEmptyY);
  Click(kShiftX, kShiftY);
  EXPECT_EQ(std::make_pair(ColorFrom(0, 0), OpacityFrom(0, 0)), std::make_pair(2, 1));
  // Opacity off, colour on: only the colours shift (a second time).
  Click(kOpacityBoxX, kOpacityBoxY);
  EXPECT_EQ(std::make_pair(At(199, 26), At(199, 8)), std::make_pair(kWhite, kBlack));
  Click(kShiftX, kShiftY);
  EXPECT_EQ(std::make_pair(ColorFrom(0, 0), OpacityFrom(0, 0)), std::make_pair(1, 1));
}

struct KeyCase {
  int x, y;  // the button
  bool alt, ctrl;
  int expected, expected20;  // whose colour nodes (0, 0) and (2, 0) take
};

class PanelKeys : public Panel, public ::testing::WithParamInterface<KeyCase> {};

TEST_P(PanelKeys, KeysAreReadAtTheRelease) {
  const KeyCase k = GetParam();
  // Keys held at the press do not count...
  lbwinSetKeyState(VK_MENU, !k.alt);
  lbwinSetKeyState(VK_CONTROL, !k.ctrl);
  Move(k.x, k.y);
  Down(k.x, k.y);
  // ...those held at the release do.
  lbwinSetKeyState(VK_MENU, k.alt);
  lbwinSetKeyState(VK_CONTROL, k.ctrl);
  Up(k.x, k.y);
  EXPECT_EQ(std::make_pair(ColorFrom(0, 0), ColorFrom(2, 0)), std::make_pair(k.expected, k.expected20));
}

// Shift colours moves each node's paint one node towards the higher index
// (I forward, no key), the lower index (I backward, Alt) or along J (Ctrl);
// the reflect button runs its own command (Ctrl: reflected along J).
INSTANTIATE_TEST_SUITE_P(Buttons, PanelKeys,
                         ::testing::Values(KeyCase{kShiftX, kShiftY, false, false, 2, 1},
                                           KeyCase{kShiftX, kShiftY, true, false, 1, 0},
                                           KeyCase{kShiftX, kShiftY, false, true, 3, 5},
                                           KeyCase{kReflectX, kReflectY, false, true, 3, 5}));

// ---- Theme and lifetime ------------------------------------------------------------------

TEST_F(Panel, BrightnessChangesSwapTheLogo) {
  // A bright interface starts with the white logo.
  const auto& icons = lb::host::currentPanel()->icons;
  ASSERT_EQ(icons, (std::vector<std::pair<int32_t, int32_t>>{{220, 220}}));
  host->fireNotifier("AI UI Brightness Changed Notifier");
  ASSERT_EQ(icons.size(), 2u);  // the first notification always sets it
  EXPECT_EQ(icons.back(), std::make_pair(220, 220));
  host->fireNotifier("AI UI Brightness Changed Notifier");
  EXPECT_EQ(icons.size(), 2u);  // unchanged brightness: no icon
  lb::host::setUIBrightness(0);
  host->fireNotifier("AI UI Brightness Changed Notifier");
  ASSERT_EQ(icons.size(), 3u);
  EXPECT_EQ(icons.back(), std::make_pair(240, 240));
}

TEST(PanelSessions, ASecondPanelStartsWithoutPressOrLeaveRequest) {
  for (int session = 0; session < 2; ++session) {
    SCOPED_TRACE(session);
    lb::host::Host host;
    host.loadPlugin();
    HWND hwnd = lb::host::currentPanelWindow();
    ASSERT_NE(hwnd, nullptr);
    lbwinPaint(hwnd);
    lbwinSendMessage(hwnd, WM_MOUSEMOVE, 0, MAKELPARAM(kShiftX, kShiftY));
    EXPECT_TRUE(lbwinIsTrackingLeave(hwnd));
    // Left pressed when the session ends.
    lbwinSendMessage(hwnd, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(kShiftX, kShiftY));
    host.shutdownPlugin();
  }
}

TEST(PanelDarkInterface, StartsWithTheDarkLogo) {
  lb::host::Host host;
  lb::host::setUIBrightness(0);
  host.loadPlugin();
  ASSERT_NE(lb::host::currentPanel(), nullptr);
  EXPECT_EQ(lb::host::currentPanel()->icons, (std::vector<std::pair<int32_t, int32_t>>{{240, 240}}));
  host.shutdownPlugin();
}

}  // namespace
