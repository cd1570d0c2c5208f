// lbwin: windows as pixel images with window procedures, properties, mouse
// capture and leave tracking, key states, and the GDI drawing calls the
// panel needs. Text is drawn with cairo.
#include "lbwin.h"

#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <map>
#include <set>
#include <string>
#include <vector>

enum class GdiKind { Pen, Brush, Font };

struct LbGdiObject {
  GdiKind kind;
  bool stock = false;
  int style = PS_SOLID;  // pens: PS_SOLID or PS_NULL; brushes: PS_NULL for the hollow brush
  COLORREF color = 0;
  int selected = 0;  // how many live DCs have it selected
};

struct LbWindow {
  int w = 0;
  int h = 0;
  std::vector<uint32_t> pixels;  // 0x00RRGGBB, top-down
  WNDPROC proc = nullptr;
  LONG_PTR userData = 0;
  std::map<std::string, HANDLE> props;
  bool invalid = false;
  bool trackingLeave = false;
};

struct LbDC {
  HWND wnd = nullptr;
  HGDIOBJ pen = nullptr;
  HGDIOBJ brush = nullptr;
  HGDIOBJ font = nullptr;
  POINT pos{0, 0};
  int bkMode = OPAQUE;
  COLORREF bkColor = RGB(255, 255, 255);
  COLORREF textColor = RGB(0, 0, 0);
};

namespace {

std::set<HWND> gWindows;
std::set<HDC> gDCs;
std::set<HGDIOBJ> gObjects;  // non-stock objects
HWND gCapture = nullptr;
std::map<int, bool> gKeys;

LbGdiObject gStockWhiteBrush{GdiKind::Brush, true, PS_SOLID, RGB(255, 255, 255), 0};
LbGdiObject gStockBlackBrush{GdiKind::Brush, true, PS_SOLID, RGB(0, 0, 0), 0};
LbGdiObject gStockNullBrush{GdiKind::Brush, true, PS_NULL, 0, 0};
LbGdiObject gStockWhitePen{GdiKind::Pen, true, PS_SOLID, RGB(255, 255, 255), 0};
LbGdiObject gStockBlackPen{GdiKind::Pen, true, PS_SOLID, RGB(0, 0, 0), 0};
LbGdiObject gStockNullPen{GdiKind::Pen, true, PS_NULL, 0, 0};
LbGdiObject gStockGuiFont{GdiKind::Font, true, PS_SOLID, 0, 0};

bool Valid(HWND hwnd) { return hwnd && gWindows.count(hwnd) != 0; }
bool Valid(HDC hdc) { return hdc && gDCs.count(hdc) != 0 && Valid(hdc->wnd); }

uint32_t ToPixel(COLORREF c) {
  return (static_cast<uint32_t>(GetRValue(c)) << 16) | (static_cast<uint32_t>(GetGValue(c)) << 8) |
         GetBValue(c);
}
COLORREF FromPixel(uint32_t p) {
  return RGB(static_cast<BYTE>((p >> 16) & 0xFF), static_cast<BYTE>((p >> 8) & 0xFF),
             static_cast<BYTE>(p & 0xFF));
}

void Plot(HWND w, int x, int y, uint32_t pixel) {
  if (x < 0 || y < 0 || x >= w->w || y >= w->h) return;
  w->pixels[static_cast<size_t>(y) * w->w + x] = pixel;
}

void FillArea(HWND w, int l, int t, int r, int b, uint32_t pixel) {
  l = std::max(l, 0);
  t = std::max(t, 0);
  r = std::min(r, w->w);
  b = std::min(b, w->h);
  for (int y = t; y < b; ++y)
    for (int x = l; x < r; ++x) w->pixels[static_cast<size_t>(y) * w->w + x] = pixel;
}

HDC NewDC(HWND hwnd) {
  HDC dc = new LbDC;
  dc->wnd = hwnd;
  dc->pen = &gStockBlackPen;
  dc->brush = &gStockWhiteBrush;
  dc->font = &gStockGuiFont;
  dc->pen->selected++;
  dc->brush->selected++;
  dc->font->selected++;
  gDCs.insert(dc);
  return dc;
}

void FreeDC(HDC dc) {
  dc->pen->selected--;
  dc->brush->selected--;
  dc->font->selected--;
  gDCs.erase(dc);
  delete dc;
}

// UTF-32 wide text to UTF-8 for cairo.
std::string ToUtf8(const wchar_t* s, size_t n) {
  std::string out;
  for (size_t i = 0; i < n; ++i) {
    uint32_t c = static_cast<uint32_t>(s[i]);
    if (c < 0x80) {
      out += static_cast<char>(c);
    } else if (c < 0x800) {
      out += static_cast<char>(0xC0 | (c >> 6));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      out += static_cast<char>(0xE0 | (c >> 12));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
      out += static_cast<char>(0xF0 | (c >> 18));
      out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
      out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
      out += static_cast<char>(0x80 | (c & 0x3F));
    }
  }
  return out;
}

// cairo keeps the font faces it has looked up (and fontconfig's patterns
// with them) for the life of the process; give them back at exit so that
// leak checkers see a clean process, unless the host said another user
// (a toolkit) still holds fonts then: cairo refuses (aborts) to reset its
// static data while fonts are in use.
bool gKeepFontCaches = false;
void ReleaseFontCaches() {
  if (gKeepFontCaches) return;
  cairo_debug_reset_static_data();
  FcFini();
}
void ReleaseFontCachesAtExit() {
  static const bool registered = std::atexit(ReleaseFontCaches) == 0;
  (void)registered;
}

// The default GUI font: a small sans-serif face, 11 pixels.
constexpr double kFontSize = 11.0;
constexpr int kLineHeight = 13;

}  // namespace

extern "C" {

// ---- Windows -------------------------------------------------------------------

LRESULT DefWindowProc(HWND hwnd, UINT msg, WPARAM, LPARAM) {
  if (msg == WM_PAINT && Valid(hwnd)) {
    PAINTSTRUCT ps;
    BeginPaint(hwnd, &ps);
    EndPaint(hwnd, &ps);
  }
  return 0;
}

LRESULT CallWindowProc(WNDPROC proc, HWND hwnd, UINT msg, WPARAM wp, LPARAM lp) {
  if (!proc) return 0;
  return proc(hwnd, msg, wp, lp);
}

LRESULT SendMessage(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp) {
  if (!Valid(hwnd) || !hwnd->proc) return 0;
  return hwnd->proc(hwnd, msg, wp, lp);
}

LONG_PTR SetWindowLongPtr(HWND hwnd, int index, LONG_PTR value) {
  if (!Valid(hwnd)) return 0;
  LONG_PTR old = 0;
  if (index == GWLP_WNDPROC) {
    old = reinterpret_cast<LONG_PTR>(hwnd->proc);
    hwnd->proc = reinterpret_cast<WNDPROC>(value);
  } else if (index == GWLP_USERDATA) {
    old = hwnd->userData;
    hwnd->userData = value;
  }
  return old;
}

LONG_PTR GetWindowLongPtr(HWND hwnd, int index) {
  if (!Valid(hwnd)) return 0;
  if (index == GWLP_WNDPROC) return reinterpret_cast<LONG_PTR>(hwnd->proc);
  if (index == GWLP_USERDATA) return hwnd->userData;
  return 0;
}

BOOL SetProp(HWND hwnd, const char* name, HANDLE data) {
  if (!Valid(hwnd) || !name) return FALSE;
  hwnd->props[name] = data;
  return TRUE;
}

HANDLE GetProp(HWND hwnd, const char* name) {
  if (!Valid(hwnd) || !name) return nullptr;
  auto it = hwnd->props.find(name);
  return it == hwnd->props.end() ? nullptr : it->second;
}

HANDLE RemoveProp(HWND hwnd, const char* name) {
  if (!Valid(hwnd) || !name) return nullptr;
  auto it = hwnd->props.find(name);
  if (it == hwnd->props.end()) return nullptr;
  HANDLE data = it->second;
  hwnd->props.erase(it);
  return data;
}

BOOL DestroyWindow(HWND hwnd) {
  if (!Valid(hwnd)) return FALSE;
  SendMessage(hwnd, WM_DESTROY, 0, 0);
  SendMessage(hwnd, WM_NCDESTROY, 0, 0);
  if (gCapture == hwnd) gCapture = nullptr;
  // Device contexts of the window die with it.
  std::vector<HDC> dcs;
  for (HDC dc : gDCs)
    if (dc->wnd == hwnd) dcs.push_back(dc);
  for (HDC dc : dcs) FreeDC(dc);
  gWindows.erase(hwnd);
  delete hwnd;
  return TRUE;
}

BOOL IsWindow(HWND hwnd) { return Valid(hwnd) ? TRUE : FALSE; }

BOOL GetClientRect(HWND hwnd, RECT* rect) {
  if (!Valid(hwnd) || !rect) return FALSE;
  *rect = RECT{0, 0, hwnd->w, hwnd->h};
  return TRUE;
}

BOOL InvalidateRect(HWND hwnd, const RECT*, BOOL) {
  if (!Valid(hwnd)) return FALSE;
  hwnd->invalid = true;
  return TRUE;
}

BOOL UpdateWindow(HWND hwnd) {
  if (!Valid(hwnd)) return FALSE;
  if (hwnd->invalid) SendMessage(hwnd, WM_PAINT, 0, 0);
  return TRUE;
}

// ---- Mouse and keyboard -----------------------------------------------------------

HWND SetCapture(HWND hwnd) {
  HWND old = gCapture;
  gCapture = Valid(hwnd) ? hwnd : nullptr;
  return old;
}

BOOL ReleaseCapture() {
  gCapture = nullptr;
  return TRUE;
}

HWND GetCapture() { return gCapture; }

BOOL TrackMouseEvent(TRACKMOUSEEVENT* tme) {
  if (!tme || tme->cbSize != sizeof(TRACKMOUSEEVENT) || !Valid(tme->hwndTrack)) return FALSE;
  if (tme->dwFlags & TME_LEAVE) tme->hwndTrack->trackingLeave = (tme->dwFlags & TME_CANCEL) == 0;
  return TRUE;
}

SHORT GetKeyState(int vk) {
  auto it = gKeys.find(vk);
  return (it != gKeys.end() && it->second) ? static_cast<SHORT>(0xFF80) : 0;
}

// ---- Device contexts and objects ----------------------------------------------------

HDC GetDC(HWND hwnd) { return Valid(hwnd) ? NewDC(hwnd) : nullptr; }

int ReleaseDC(HWND, HDC hdc) {
  if (!hdc || !gDCs.count(hdc)) return 0;
  FreeDC(hdc);
  return 1;
}

HDC BeginPaint(HWND hwnd, PAINTSTRUCT* ps) {
  if (!Valid(hwnd) || !ps) return nullptr;
  ps->hdc = NewDC(hwnd);
  ps->fErase = FALSE;
  ps->rcPaint = RECT{0, 0, hwnd->w, hwnd->h};
  hwnd->invalid = false;
  return ps->hdc;
}

BOOL EndPaint(HWND, const PAINTSTRUCT* ps) {
  if (!ps) return FALSE;
  return ReleaseDC(nullptr, ps->hdc) ? TRUE : FALSE;
}

HPEN CreatePen(int style, int, COLORREF color) {
  auto* o = new LbGdiObject{GdiKind::Pen, false, style == PS_NULL ? PS_NULL : PS_SOLID, color, 0};
  gObjects.insert(o);
  return o;
}

HBRUSH CreateSolidBrush(COLORREF color) {
  auto* o = new LbGdiObject{GdiKind::Brush, false, PS_SOLID, color, 0};
  gObjects.insert(o);
  return o;
}

HGDIOBJ GetStockObject(int which) {
  switch (which) {
    case WHITE_BRUSH: return &gStockWhiteBrush;
    case BLACK_BRUSH: return &gStockBlackBrush;
    case NULL_BRUSH: return &gStockNullBrush;
    case WHITE_PEN: return &gStockWhitePen;
    case BLACK_PEN: return &gStockBlackPen;
    case NULL_PEN: return &gStockNullPen;
    case DEFAULT_GUI_FONT: return &gStockGuiFont;
    default: return nullptr;
  }
}

HGDIOBJ SelectObject(HDC hdc, HGDIOBJ obj) {
  if (!Valid(hdc) || !obj) return nullptr;
  if (!obj->stock && !gObjects.count(obj)) return nullptr;
  HGDIOBJ* slot = obj->kind == GdiKind::Pen ? &hdc->pen : obj->kind == GdiKind::Brush ? &hdc->brush
                                                                                     : &hdc->font;
  HGDIOBJ old = *slot;
  old->selected--;
  obj->selected++;
  *slot = obj;
  return old;
}

BOOL DeleteObject(HGDIOBJ obj) {
  if (!obj || obj->stock || !gObjects.count(obj) || obj->selected > 0) return FALSE;
  gObjects.erase(obj);
  delete obj;
  return TRUE;
}

// ---- Drawing ------------------------------------------------------------------------

BOOL MoveToEx(HDC hdc, int x, int y, POINT* previous) {
  if (!Valid(hdc)) return FALSE;
  if (previous) *previous = hdc->pos;
  hdc->pos = POINT{x, y};
  return TRUE;
}

BOOL LineTo(HDC hdc, int x, int y) {
  if (!Valid(hdc)) return FALSE;
  int x0 = hdc->pos.x, y0 = hdc->pos.y;
  hdc->pos = POINT{x, y};
  if (hdc->pen->style == PS_NULL) return TRUE;
  uint32_t pixel = ToPixel(hdc->pen->color);
  // Bresenham from (x0, y0) towards (x, y), stopping before the end pixel.
  int dx = std::abs(x - x0), sx = x0 < x ? 1 : -1;
  int dy = -std::abs(y - y0), sy = y0 < y ? 1 : -1;
  int err = dx + dy;
  while (!(x0 == x && y0 == y)) {
    Plot(hdc->wnd, x0, y0, pixel);
    int e2 = 2 * err;
    if (e2 >= dy) {
      err += dy;
      x0 += sx;
    }
    if (e2 <= dx) {
      err += dx;
      y0 += sy;
    }
  }
  return TRUE;
}

int FillRect(HDC hdc, const RECT* rect, HBRUSH brush) {
  if (!Valid(hdc) || !rect || !brush || brush->kind != GdiKind::Brush) return 0;
  if (brush->style == PS_NULL) return 1;
  FillArea(hdc->wnd, rect->left, rect->top, rect->right, rect->bottom, ToPixel(brush->color));
  return 1;
}

BOOL Rectangle(HDC hdc, int left, int top, int right, int bottom) {
  if (!Valid(hdc)) return FALSE;
  if (right < left) std::swap(left, right);
  if (bottom < top) std::swap(top, bottom);
  bool hasPen = hdc->pen->style != PS_NULL;
  if (hdc->brush->style != PS_NULL) {
    if (hasPen)
      FillArea(hdc->wnd, left + 1, top + 1, right - 1, bottom - 1, ToPixel(hdc->brush->color));
    else
      FillArea(hdc->wnd, left, top, right - 1, bottom - 1, ToPixel(hdc->brush->color));
  }
  if (hasPen && right - left > 0 && bottom - top > 0) {
    uint32_t p = ToPixel(hdc->pen->color);
    for (int x = left; x < right; ++x) {
      Plot(hdc->wnd, x, top, p);
      Plot(hdc->wnd, x, bottom - 1, p);
    }
    for (int y = top; y < bottom; ++y) {
      Plot(hdc->wnd, left, y, p);
      Plot(hdc->wnd, right - 1, y, p);
    }
  }
  return TRUE;
}

COLORREF SetPixel(HDC hdc, int x, int y, COLORREF color) {
  if (!Valid(hdc)) return 0xFFFFFFFF;
  Plot(hdc->wnd, x, y, ToPixel(color));
  return color;
}

COLORREF GetPixel(HDC hdc, int x, int y) {
  if (!Valid(hdc)) return 0xFFFFFFFF;
  return lbwinGetPixel(hdc->wnd, x, y);
}

int SetBkMode(HDC hdc, int mode) {
  if (!Valid(hdc)) return 0;
  int old = hdc->bkMode;
  hdc->bkMode = mode;
  return old;
}

COLORREF SetBkColor(HDC hdc, COLORREF color) {
  if (!Valid(hdc)) return 0xFFFFFFFF;
  COLORREF old = hdc->bkColor;
  hdc->bkColor = color;
  return old;
}

COLORREF SetTextColor(HDC hdc, COLORREF color) {
  if (!Valid(hdc)) return 0xFFFFFFFF;
  COLORREF old = hdc->textColor;
  hdc->textColor = color;
  return old;
}

int DrawTextW(HDC hdc, const wchar_t* text, int len, RECT* rect, UINT format) {
  if (!Valid(hdc) || !text || !rect) return 0;
  size_t n = len < 0 ? std::wcslen(text) : static_cast<size_t>(len);
  ReleaseFontCachesAtExit();
  HWND w = hdc->wnd;
  cairo_surface_t* surface = cairo_image_surface_create_for_data(
      reinterpret_cast<unsigned char*>(w->pixels.data()), CAIRO_FORMAT_RGB24, w->w, w->h, w->w * 4);
  cairo_t* cr = cairo_create(surface);
  cairo_rectangle(cr, rect->left, rect->top, rect->right - rect->left, rect->bottom - rect->top);
  cairo_clip(cr);
  cairo_select_font_face(cr, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(cr, kFontSize);
  cairo_font_options_t* fo = cairo_font_options_create();
  cairo_font_options_set_antialias(fo, CAIRO_ANTIALIAS_GRAY);
  cairo_font_options_set_hint_style(fo, CAIRO_HINT_STYLE_FULL);
  cairo_set_font_options(cr, fo);
  cairo_font_options_destroy(fo);

  const double width = rect->right - rect->left;
  auto measure = [&](const std::string& s) {
    cairo_text_extents_t e;
    cairo_text_extents(cr, s.c_str(), &e);
    return e.x_advance;
  };

  // Split at line breaks, then (with DT_WORDBREAK) wrap each paragraph at
  // spaces so that no line is wider than the rectangle where possible.
  std::vector<std::string> lines;
  std::wstring all(text, n);
  size_t start = 0;
  while (start <= all.size()) {
    size_t nl = all.find(L'\n', start);
    std::wstring para = all.substr(start, nl == std::wstring::npos ? std::wstring::npos : nl - start);
    if (!para.empty() && para.back() == L'\r') para.pop_back();
    if (!(format & DT_WORDBREAK)) {
      lines.push_back(ToUtf8(para.data(), para.size()));
    } else {
      std::string line;
      size_t i = 0;
      bool any = false;
      while (i < para.size()) {
        size_t sp = para.find(L' ', i);
        std::wstring word = para.substr(i, sp == std::wstring::npos ? std::wstring::npos : sp - i);
        std::string w8 = ToUtf8(word.data(), word.size());
        std::string candidate = line.empty() && !any ? w8 : line + " " + w8;
        if (any && measure(candidate) > width) {
          lines.push_back(line);
          line = w8;
        } else {
          line = candidate;
        }
        any = true;
        if (sp == std::wstring::npos) break;
        i = sp + 1;
      }
      lines.push_back(line);
    }
    if (nl == std::wstring::npos) break;
    start = nl + 1;
  }

  cairo_font_extents_t fe;
  cairo_font_extents(cr, &fe);
  int y = rect->top;
  for (const std::string& line : lines) {
    double adv = measure(line);
    double x = rect->left;
    if (format & DT_CENTER)
      x = rect->left + (width - adv) / 2.0;
    else if (format & DT_RIGHT)
      x = rect->right - adv;
    x = static_cast<int>(x);
    if (hdc->bkMode == OPAQUE && !line.empty()) {
      cairo_set_source_rgb(cr, GetRValue(hdc->bkColor) / 255.0, GetGValue(hdc->bkColor) / 255.0,
                           GetBValue(hdc->bkColor) / 255.0);
      cairo_rectangle(cr, x, y, static_cast<int>(adv + 0.999), kLineHeight);
      cairo_fill(cr);
    }
    cairo_set_source_rgb(cr, GetRValue(hdc->textColor) / 255.0, GetGValue(hdc->textColor) / 255.0,
                         GetBValue(hdc->textColor) / 255.0);
    cairo_move_to(cr, x, y + static_cast<int>(fe.ascent + 0.5));
    cairo_show_text(cr, line.c_str());
    y += kLineHeight;
  }
  cairo_destroy(cr);
  cairo_surface_flush(surface);
  cairo_surface_destroy(surface);
  return static_cast<int>(lines.size()) * kLineHeight;
}

// ---- Device-independent bitmaps -----------------------------------------------------

int SetDIBitsToDevice(HDC hdc, int xDest, int yDest, DWORD w, DWORD h, int xSrc, int ySrc,
                      UINT startScan, UINT lines, const void* bits, const BITMAPINFO* info, UINT) {
  if (!Valid(hdc) || !bits || !info) return 0;
  const BITMAPINFOHEADER& bi = info->bmiHeader;
  if (bi.biCompression != BI_RGB || (bi.biBitCount != 24 && bi.biBitCount != 32)) return 0;
  if (bi.biWidth <= 0 || bi.biHeight == 0) return 0;
  const int bpp = bi.biBitCount / 8;
  const int stride = bi.biBitCount == 24 ? (3 * bi.biWidth + 3) & ~3 : 4 * bi.biWidth;
  const bool bottomUp = bi.biHeight > 0;
  const int height = bottomUp ? bi.biHeight : -bi.biHeight;
  const auto* base = static_cast<const uint8_t*>(bits);
  int set = 0;
  for (int j = 0; j < static_cast<int>(h); ++j) {
    // Scan line of the source rectangle's destination row j, counted from
    // the bottom of the DIB for bottom-up and from the top otherwise.
    int scan = bottomUp ? ySrc + static_cast<int>(h) - 1 - j : ySrc + j;
    if (scan < 0 || scan >= height) continue;
    if (scan < static_cast<int>(startScan) || scan >= static_cast<int>(startScan + lines)) continue;
    const uint8_t* row = base + static_cast<size_t>(scan - static_cast<int>(startScan)) * stride;
    ++set;
    for (int i = 0; i < static_cast<int>(w); ++i) {
      int sx = xSrc + i;
      if (sx < 0 || sx >= bi.biWidth) continue;
      const uint8_t* p = row + static_cast<size_t>(sx) * bpp;
      Plot(hdc->wnd, xDest + i, yDest + j,
           (static_cast<uint32_t>(p[2]) << 16) | (static_cast<uint32_t>(p[1]) << 8) | p[0]);
    }
  }
  return set;
}

// ---- Host and test interface ----------------------------------------------------------

HWND lbwinCreateWindow(int w, int h) {
  auto* wnd = new LbWindow;
  wnd->w = std::max(w, 0);
  wnd->h = std::max(h, 0);
  wnd->pixels.assign(static_cast<size_t>(wnd->w) * wnd->h, 0x00FFFFFFu);
  wnd->proc = &DefWindowProc;
  wnd->invalid = true;
  gWindows.insert(wnd);
  return wnd;
}

BOOL lbwinSetWindowSize(HWND hwnd, int w, int h) {
  if (!Valid(hwnd)) return FALSE;
  w = std::max(w, 0);
  h = std::max(h, 0);
  std::vector<uint32_t> px(static_cast<size_t>(w) * h, 0x00FFFFFFu);
  for (int y = 0; y < std::min(h, hwnd->h); ++y)
    for (int x = 0; x < std::min(w, hwnd->w); ++x)
      px[static_cast<size_t>(y) * w + x] = hwnd->pixels[static_cast<size_t>(y) * hwnd->w + x];
  hwnd->pixels.swap(px);
  hwnd->w = w;
  hwnd->h = h;
  hwnd->invalid = true;
  SendMessage(hwnd, WM_SIZE, 0, MAKELPARAM(w, h));
  return TRUE;
}

LRESULT lbwinSendMessage(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp) {
  return SendMessage(hwnd, msg, wp, lp);
}

BOOL lbwinMouseLeave(HWND hwnd) {
  if (!Valid(hwnd) || !hwnd->trackingLeave) return FALSE;
  hwnd->trackingLeave = false;
  SendMessage(hwnd, WM_MOUSELEAVE, 0, 0);
  return TRUE;
}

void lbwinPaint(HWND hwnd) {
  if (!Valid(hwnd)) return;
  hwnd->invalid = true;
  SendMessage(hwnd, WM_PAINT, 0, 0);
}

BOOL lbwinIsInvalid(HWND hwnd) { return Valid(hwnd) && hwnd->invalid ? TRUE : FALSE; }

void lbwinKeepFontCachesAtExit(void) { gKeepFontCaches = true; }

void lbwinSetKeyState(int vk, BOOL down) { gKeys[vk] = down != FALSE; }

const uint8_t* lbwinGetPixels(HWND hwnd, int* w, int* h, int* stride) {
  if (!Valid(hwnd)) return nullptr;
  if (w) *w = hwnd->w;
  if (h) *h = hwnd->h;
  if (stride) *stride = hwnd->w * 4;
  return reinterpret_cast<const uint8_t*>(hwnd->pixels.data());
}

COLORREF lbwinGetPixel(HWND hwnd, int x, int y) {
  if (!Valid(hwnd) || x < 0 || y < 0 || x >= hwnd->w || y >= hwnd->h) return 0xFFFFFFFF;
  return FromPixel(hwnd->pixels[static_cast<size_t>(y) * hwnd->w + x]);
}

BOOL lbwinIsTrackingLeave(HWND hwnd) { return Valid(hwnd) && hwnd->trackingLeave ? TRUE : FALSE; }

long lbwinLiveDCs() { return static_cast<long>(gDCs.size()); }
long lbwinLiveGdiObjects() { return static_cast<long>(gObjects.size()); }
long lbwinLiveWindows() { return static_cast<long>(gWindows.size()); }

}  // extern "C"
