// The command panel: a host panel whose native window the plug-in
// subclasses and paints itself. One 24-bit composite picture holds
// everything; buttons add only their 1-pixel frames on top.
#include "Panel.h"

#include "ButtonDefs.h"
#include "Dispatch.h"
#include "PanelWindow.h"
#include "PluginMain.h"
#include "Suites.h"

const AIPanelSuite* sAIPanel = nullptr;
const AIUIThemeSuite* sAIUITheme = nullptr;

static const SSuiteInit gPanelSuites[] = {
    {kAIPanelSuite, kAIPanelSuiteVersion, reinterpret_cast<const void**>(&sAIPanel)},
    {kAIUIThemeSuite, kAIUIThemeSuiteVersion, reinterpret_cast<const void**>(&sAIUITheme)},
};

void PanelGetSuites(const SSuiteInit** table, unsigned* count) {
  if (table) *table = gPanelSuites;
  if (count) *count = sizeof(gPanelSuites) / sizeof(gPanelSuites[0]);
}

// ---- Panel state -------------------------------------------------------------------

std::vector<ZC_Button> gButtons;
ZC_DIB gComposite(200, 200, 32);
ZC_DIB gLayer(200, 200, 32);
ZC_DIB gCheckOn;
ZC_DIB gCheckOff;
std::vector<int32_t> gColorLinked;
std::vector<int32_t> gOpacityLinked;
int32_t gColorCheckBox = 0;
int32_t gOpacityCheckBox = 0;
int32_t gPressed = -1;
bool gTracking = false;
int32_t gCursorX = 0;
int32_t gCursorY = 0;
const wchar_t* gDefaultText = BtnsVersionGetTooltip();
const wchar_t* gLastText = nullptr;
int32_t gPanelWidth = 0;
int32_t gPanelHeight = 0;
int32_t gLastBrightness = -1;

namespace {

constexpr const char* kPanelId = "LatticeBender";
constexpr const char* kPanelTitle = "LatticeBender";
constexpr const char* kWindowProperty = "TPNL";
// Icon ids named in the "IDTOFILE" resource.
constexpr int32_t kIconWhite = 220;
constexpr int32_t kIconDark = 240;
// Height of the text strip area below the buttons.
constexpr int kStripArea = 150;
constexpr COLORREF kStripColor = 0xE1FFFF;

// Commands whose buttons are outlined while a checkbox is hovered.
constexpr int kColorLinkedIds[] = {kCmdColorShift,   kCmdColorReflect, kCmdColorRotate,  kCmdColorClone,
                                   kCmdColorCapture, kCmdColorSpread,  kCmdColorPattern, kCmdOneCellMesh};
constexpr int kOpacityLinkedIds[] = {kCmdColorShift,   kCmdColorReflect, kCmdColorRotate, kCmdColorClone,
                                     kCmdColorCapture, kCmdColorSpread,  kCmdColorPattern};

ZS_COLOR Color(unsigned char r, unsigned char g, unsigned char b, unsigned char a = 255) {
  return ZS_COLOR{b, g, r, a};
}

// Sets the panel's icon for the given brightness: the white logo on a
// bright interface, the dark one otherwise.
AIErr SetPanelIcon(int32_t brightness) {
  void* block = nullptr;
  AIErr err = gsSPBasic->AllocateBlock(sizeof(int32_t), &block);
  if (err || !block) return err;
  *static_cast<int32_t*>(block) = brightness ? kIconWhite : kIconDark;
  err = sAIPanel->SetIcon(g->panel, block, block);
  gsSPBasic->FreeBlock(block);
  return err;
}

int32_t QueryBrightness() {
  int32_t brightness = 0;
  if (sAIUITheme) sAIUITheme->GetUIBrightness(&brightness);
  return brightness;
}

// Copies `pic` centred into the rectangle (x, y, w, h) of `into`, cut to
// the rectangle where the picture is larger.
void CopyCentred(ZC_DIB& into, ZC_DIB& pic, int x, int y, int w, int h) {
  const int bw = pic.GetW(), bh = pic.GetH();
  int dx = x + w / 2 - bw / 2;
  int dy = y + h / 2 - bh / 2;
  int sx = 0, sy = 0, cw = bw, ch = bh;
  if (dx < x) {
    sx = x - dx;
    cw = w;
    dx = x;
  }
  if (dy < y) {
    sy = y - dy;
    ch = h;
    dy = y;
  }
  into.CopyRegRaw(dx, dy, &pic, sx, sy, cw, ch);
}

// The sunken frame of a checkbox, drawn into the layer.
void DrawCheckBoxFrame(const ZC_Button& b) {
  const int x = b.GetX(), y = b.GetY(), w = b.GetW(), h = b.GetH();
  ZS_COLOR white = Color(255, 255, 255);
  ZS_COLOR grey = Color(128, 128, 128);
  ZS_COLOR light = Color(212, 212, 212);
  ZS_COLOR dark = Color(64, 64, 64);
  gLayer.FillReg(&white, x, y, w, h);
  gLayer.FillReg(&white, x + w - 1, y, 1, h);
  gLayer.FillReg(&white, x, y + h - 1, w, 1);
  gLayer.FillReg(&grey, x, y, 1, h);
  gLayer.FillReg(&grey, x, y, w, 1);
  gLayer.FillReg(&light, x + w - 2, y + 1, 1, h - 2);
  gLayer.FillReg(&light, x + 1, y + h - 2, w - 2, 1);
  gLayer.FillReg(&dark, x + 1, y + 1, 1, h - 2);
  gLayer.FillReg(&dark, x + 1, y + 1, w - 2, 1);
}

// The check mark or the blank mark of a checkbox, into the composite.
void DrawCheckMark(const ZC_Button& b) {
  ZC_DIB& mark = b.GetState() ? gCheckOn : gCheckOff;
  CopyCentred(gComposite, mark, b.GetX() + 2, b.GetY() + 2, b.GetW() - 4, b.GetH() - 4);
}

// The 7 x 7 check mark: three-pixel strokes walking from the right edge
// down to the bottom row and back up.
void MakeCheckMarks() {
  ZS_COLOR white = Color(255, 255, 255);
  ZS_COLOR black = Color(0, 0, 0);
  gCheckOn.Make(7, 7, 24);
  gCheckOn.FillAll(&white);
  int top = 0, step = 1;
  for (int x = 6; x >= 0; --x) {
    gCheckOn.FillReg(&black, x, top, 1, 3);
    if (top + 3 + step > 7) step = -1;
    top += step;
  }
  gCheckOff.Make(7, 7, 24);
  gCheckOff.FillAll(&white);
}

void FillLinked(std::vector<int32_t>& linked, const int* ids, size_t count) {
  linked.clear();
  for (size_t i = 0; i < gButtons.size(); ++i) {
    if (gButtons[i].GetType() != ZC_Button::eBtnPicture) continue;
    for (size_t k = 0; k < count; ++k)
      if (gButtons[i].GetFuncID() == ids[k]) linked.push_back(static_cast<int32_t>(i));
  }
}

ZC_Button MakeCheckBox(void (*pos)(int*, int*, int, int), const wchar_t* tooltip) {
  int x = 0, y = 0;
  pos(&x, &y, 15, 15);
  ZC_Button b;
  b.SetDimentions(x, y, 15, 15);
  b.SetType(ZC_Button::eBtnCheckBox);
  b.SetState(1);
  b.SetToolTip(tooltip);
  return b;
}

void LoadIcon(const char* name, void (*pos)(int*, int*, int, int)) {
  ZC_DIB icon;
  LoadBitmapResource(name, icon);
  int x = 0, y = 0;
  pos(&x, &y, icon.GetW(), icon.GetH());
  gLayer.CopyRegRaw(x, y, &icon, 0, 0, icon.GetW(), icon.GetH());
}

bool IsPicture(const ZC_Button& b) { return b.GetType() == ZC_Button::eBtnPicture; }

// Index of the first button of either kind under the cursor, or -1.
int HoveredButton(int x, int y) {
  for (size_t i = 0; i < gButtons.size(); ++i)
    if (gButtons[i].IsUnderCursor(x, y)) return static_cast<int>(i);
  return -1;
}

void StoreCursor(LPARAM lp) {
  gCursorX = GET_X_LPARAM(lp);
  gCursorY = GET_Y_LPARAM(lp);
}

void OnPaint(HWND hwnd) {
  PAINTSTRUCT ps;
  HDC hdc = BeginPaint(hwnd, &ps);
  gComposite.Draw(hdc, 0, 0, 0, 0, -1, -1);
  for (const ZC_Button& b : gButtons)
    if (IsPicture(b)) b.DrawBorder(hdc);
  DrawTooltipArea(hdc, gDefaultText, true);
  EndPaint(hwnd, &ps);
}

void OnButtonDown(HWND hwnd, LPARAM lp) {
  gPressed = -1;
  StoreCursor(lp);
  SetCapture(hwnd);
  int i = HoveredButton(gCursorX, gCursorY);
  if (i < 0) return;
  ZC_Button& b = gButtons[i];
  HDC hdc = GetDC(hwnd);
  if (IsPicture(b)) {
    gPressed = i;
    b.DrawClicked(hdc);
  } else if (b.GetType() == ZC_Button::eBtnCheckBox) {
    b.SetState(b.GetState() ? 0 : 1);
    DrawCheckMark(b);
    gComposite.Draw(hdc, b.GetX(), b.GetY(), b.GetX(), b.GetY(), b.GetW(), b.GetH());
  }
  ReleaseDC(hwnd, hdc);
}

void OnMouseMove(HWND hwnd, WPARAM wp, LPARAM lp) {
  if (!gTracking) {
    TRACKMOUSEEVENT tme{sizeof(TRACKMOUSEEVENT), TME_LEAVE, hwnd, 0};
    if (TrackMouseEvent(&tme)) gTracking = true;
  }
  StoreCursor(lp);
  const int hovered = HoveredButton(gCursorX, gCursorY);
  for (ZC_Button& b : gButtons)
    if (IsPicture(b)) b.SetBlueBorder(false);
  HDC hdc = GetDC(hwnd);
  if (hovered >= 0) {
    DrawTooltipArea(hdc, gButtons[hovered].GetToolTip(), false);
    if (gPressed == -1) {
      const std::vector<int32_t>* linked = nullptr;
      if (hovered == gColorCheckBox) linked = &gColorLinked;
      if (hovered == gOpacityCheckBox) linked = &gOpacityLinked;
      if (linked)
        for (int32_t k : *linked) gButtons[k].SetBlueBorder(true);
    }
  } else {
    DrawTooltipArea(hdc, gDefaultText, false);
  }
  const bool leftDown = (wp & MK_LBUTTON) != 0;
  for (size_t i = 0; i < gButtons.size(); ++i) {
    const ZC_Button& b = gButtons[i];
    if (!IsPicture(b)) continue;
    if (static_cast<int>(i) == gPressed && leftDown && b.IsUnderCursor(gCursorX, gCursorY))
      b.DrawClicked(hdc);
    else
      b.DrawBorder(hdc);
  }
  ReleaseDC(hwnd, hdc);
}

void OnMouseLeave(HWND hwnd) {
  HDC hdc = GetDC(hwnd);
  for (ZC_Button& b : gButtons) {
    if (!IsPicture(b)) continue;
    b.SetBlueBorder(false);
    b.DrawBorder(hdc);
  }
  DrawTooltipArea(hdc, gDefaultText, false);
  ReleaseDC(hwnd, hdc);
  gTracking = false;
}

void OnButtonUp(HWND hwnd, LPARAM lp) {
  StoreCursor(lp);
  ReleaseCapture();
  if (gPressed != -1 && gButtons[gPressed].IsUnderCursor(gCursorX, gCursorY)) {
    const ZC_Button& b = gButtons[gPressed];
    const bool useColor = gButtons[gColorCheckBox].GetState() != 0;
    const bool useOpacity = gButtons[gOpacityCheckBox].GetState() != 0;
    const bool ctrl = (GetKeyState(VK_CONTROL) & 0x80) != 0;
    const bool alt = (GetKeyState(VK_MENU) & 0x80) != 0;
    BtnsRunLbFunc(b.GetFuncID(), alt, ctrl, useColor, useOpacity);
    HDC hdc = GetDC(hwnd);
    gButtons[gPressed].DrawBorder(hdc);
    ReleaseDC(hwnd, hdc);
  }
  gPressed = -1;
}

}  // namespace

// ---- Building ------------------------------------------------------------------------

void BuildWidgets() {
  const unsigned n = BtnsGetCount();
  gButtons.clear();
  gButtons.reserve(n + 2);
  int w = 0, h = 0;
  BtnsGetArea(&w, &h);
  AISize size{static_cast<AIReal>(w), static_cast<AIReal>(h + kStripArea)};
  if (sAIPanel && g && g->panel) sAIPanel->SetSize(g->panel, &size);
  const int width = static_cast<int>(size.width);
  const int height = static_cast<int>(size.height);

  ZS_COLOR grey = Color(208, 208, 208);
  ZS_COLOR clear = Color(255, 255, 255, 0);
  gComposite.Make(width, height, 24);
  gComposite.FillAll(&grey);
  gLayer.Make(width, height, 32);
  gLayer.FillAll(&clear);
  gPanelWidth = width;
  gPanelHeight = height;

  for (unsigned i = 0; i < n; ++i) {
    int x = 0, y = 0, bw = 0, bh = 0;
    BtnGetDimentions(i, &x, &y, &bw, &bh);
    ZC_Button b;
    b.SetDimentions(x, y, bw, bh);
    b.SetType(ZC_Button::eBtnPicture);
    b.SetFuncID(BtnGetFuncID(i));
    b.SetToolTip(BtnGetTooltip(i));
    gButtons.push_back(b);
    // A fresh bitmap per button: a picture that cannot be read leaves its
    // button empty rather than showing the previous one.
    ZC_DIB pic;
    LoadBitmapResource(BtnGetPicStr(i), pic);
    CopyCentred(gLayer, pic, x, y, bw, bh);
  }

  FillLinked(gColorLinked, kColorLinkedIds, sizeof(kColorLinkedIds) / sizeof(kColorLinkedIds[0]));
  FillLinked(gOpacityLinked, kOpacityLinkedIds,
             sizeof(kOpacityLinkedIds) / sizeof(kOpacityLinkedIds[0]));

  // The checkbox icons are loaded by their literal names.
  LoadIcon("IMG_CB_COLOR", BtnImgColorGetPos);
  LoadIcon("IMG_CB_OPACITY", BtnImgOpacityGetPos);

  gButtons.push_back(MakeCheckBox(BtnCbColorGetPos, BtnCbColorGetTooltip()));
  DrawCheckBoxFrame(gButtons.back());
  gColorCheckBox = static_cast<int32_t>(gButtons.size() - 1);
  gButtons.push_back(MakeCheckBox(BtnCbOpacityGetPos, BtnCbOpacityGetTooltip()));
  DrawCheckBoxFrame(gButtons.back());
  gOpacityCheckBox = static_cast<int32_t>(gButtons.size() - 1);

  MakeCheckMarks();
  gComposite.CopyReg(0, 0, &gLayer, 0, 0, -1, -1);
  DrawCheckMark(gButtons[gColorCheckBox]);
  DrawCheckMark(gButtons[gOpacityCheckBox]);
}

void DrawTooltipArea(HDC hdc, const wchar_t* text, bool force) {
  if (text == gLastText && !force) return;
  HBRUSH brush = CreateSolidBrush(kStripColor);
  HGDIOBJ oldBrush = SelectObject(hdc, brush);
  HGDIOBJ oldPen = SelectObject(hdc, GetStockObject(NULL_PEN));
  RECT rc{3, gPanelHeight - 147, gPanelWidth - 3, gPanelHeight - 3};
  Rectangle(hdc, rc.left, rc.top, rc.right, rc.bottom);
  SelectObject(hdc, oldPen);
  SelectObject(hdc, oldBrush);
  DeleteObject(brush);

  rc.left += 2;
  rc.top += 2;
  rc.right -= 2;
  rc.bottom -= 2;
  HGDIOBJ oldFont = SelectObject(hdc, GetStockObject(DEFAULT_GUI_FONT));
  SetBkColor(hdc, kStripColor);
  const UINT format =
      DT_NOPREFIX | (text == gDefaultText ? DT_CENTER : (DT_LEFT | DT_WORDBREAK));
  if (text) DrawTextW(hdc, text, -1, &rc, format);
  SelectObject(hdc, oldFont);
  gLastText = text;
}

// ---- Window procedure --------------------------------------------------------------------

bool PanelWindowProc(long long&, HWND hwnd, UINT msg, WPARAM wp, LPARAM lp) {
  switch (msg) {
    case WM_PAINT:
      OnPaint(hwnd);
      return true;
    case WM_PRINTCLIENT:
      gComposite.Draw(reinterpret_cast<HDC>(wp), 0, 0, 0, 0, -1, -1);
      return true;
    case WM_LBUTTONDOWN:
      OnButtonDown(hwnd, lp);
      return true;
    case WM_MOUSEMOVE:
      OnMouseMove(hwnd, wp, lp);
      return true;
    case WM_MOUSELEAVE:
      OnMouseLeave(hwnd);
      return true;
    case WM_LBUTTONUP:
      OnButtonUp(hwnd, lp);
      return true;
    default:
      return false;
  }
}

LRESULT CallDefaultWindowProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp) {
  if (!g || !g->oldWindowProc) return 0;
  return CallWindowProc(reinterpret_cast<WNDPROC>(g->oldWindowProc), hwnd, msg, wp, lp);
}

LRESULT NewWindowProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp) {
  long long result = 0;
  if (PanelWindowProc(result, hwnd, msg, wp, lp)) return 0;
  return CallDefaultWindowProc(hwnd, msg, wp, lp);
}

AIErr AddWidgets() {
  BuildWidgets();
  AIPanelPlatformWindow window = nullptr;
  AIErr err = sAIPanel->GetPlatformWindow(g->panel, &window);
  if (err) return err;
  HWND hwnd = reinterpret_cast<HWND>(window);
  // A new window: no press, no leave request and no strip text of its own
  // yet, even when the module outlived an earlier panel.
  gPressed = -1;
  gTracking = false;
  gLastText = nullptr;
  SetProp(hwnd, kWindowProperty, g);
  g->oldWindowProc = reinterpret_cast<void*>(
      SetWindowLongPtr(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&NewWindowProc)));
  return kNoErr;
}

AIErr RemoveWidgets() {
  if (!g || !g->panel) return kNoErr;
  AIPanelPlatformWindow window = nullptr;
  AIErr err = sAIPanel->GetPlatformWindow(g->panel, &window);
  if (err || !window) return err;
  HWND hwnd = reinterpret_cast<HWND>(window);
  RemoveProp(hwnd, kWindowProperty);
  SetWindowLongPtr(hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(g->oldWindowProc));
  DestroyWindow(hwnd);
  return err;
}

// ---- Panel lifetime ----------------------------------------------------------------------

AIErr PanelAdd() {
  if (!g || !sAIPanel) return kNoPanelErr;
  AIUnicodeStringRef id = nullptr;
  AIUnicodeStringRef title = nullptr;
  sAIUnicodeString->InitializeFromPlatform(&id, kPanelId);
  sAIUnicodeString->InitializeFromPlatform(&title, kPanelTitle);
  g->panel = nullptr;
  AIErr err = sAIPanel->Create(gPluginRef, id, title, 1, AISize{200, 200}, false, nullptr, nullptr,
                               &g->panel);
  sAIUnicodeString->Destroy(id);
  sAIUnicodeString->Destroy(title);
  if (err) {
    g->panel = nullptr;
    return err;
  }
  err = AddWidgets();
  if (err) return err;
  SetPanelIcon(QueryBrightness());
  return kNoErr;
}

AIErr PanelChangeUITheme() {
  if (!g || !g->panel || !sAIPanel) return kNoErr;
  const int32_t brightness = QueryBrightness();
  if (brightness == gLastBrightness) return kNoErr;
  AIErr err = SetPanelIcon(brightness);
  gLastBrightness = brightness;
  return err;
}

AIErr PanelRemove() {
  if (!g || !g->panel || !sAIPanel) return kNoErr;
  RemoveWidgets();
  AIErr err = sAIPanel->Destroy(g->panel);
  g->panel = nullptr;
  return err;
}

bool PanelIsVisible() {
  if (!g || !g->panel || !sAIPanel) return false;
  AIBoolean shown = 0;
  sAIPanel->IsShown(g->panel, &shown);
  return shown != 0;
}

void PanelShowHide() {
  if (!g || !g->panel || !sAIPanel) return;
  sAIPanel->Show(g->panel, PanelIsVisible() ? 0 : 1);
}
