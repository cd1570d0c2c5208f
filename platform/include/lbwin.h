// lbwin: a small window and drawing layer with the names and semantics of
// the Windows user-interface and GDI calls the panel is written against.
//
// Every window draws into its own 32-bit pixel image (top-down rows, bytes
// blue, green, red, unused), so the panel code runs headless in tests and
// in the command line, and the image can be shown in a real window or
// written to a file. Messages are delivered synchronously: whoever stands
// in for the system (the host, a test) calls lbwinSendMessage.
//
// Colours are COLORREF values with red in the low byte (RGB()).
#pragma once

#include <cstddef>
#include <cstdint>

#define LBWIN_API __attribute__((visibility("default")))

extern "C" {

// ---- Basic types ---------------------------------------------------------
using BOOL = int;
using BYTE = uint8_t;
using WORD = uint16_t;
using DWORD = uint32_t;
using LONG = int32_t;
using UINT = unsigned;
using SHORT = int16_t;
using LONG_PTR = intptr_t;
using UINT_PTR = uintptr_t;
using WPARAM = uintptr_t;
using LPARAM = intptr_t;
using LRESULT = intptr_t;
using COLORREF = uint32_t;
using HANDLE = void*;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

struct LbWindow;
struct LbDC;
struct LbGdiObject;
using HWND = LbWindow*;
using HDC = LbDC*;
using HGDIOBJ = LbGdiObject*;
using HPEN = LbGdiObject*;
using HBRUSH = LbGdiObject*;
using HFONT = LbGdiObject*;

using WNDPROC = LRESULT (*)(HWND, UINT, WPARAM, LPARAM);

struct POINT {
  LONG x;
  LONG y;
};

// Right and bottom are exclusive.
struct RECT {
  LONG left;
  LONG top;
  LONG right;
  LONG bottom;
};

struct PAINTSTRUCT {
  HDC hdc;
  BOOL fErase;
  RECT rcPaint;
};

// ---- Colours -------------------------------------------------------------
constexpr COLORREF RGB(BYTE r, BYTE g, BYTE b) {
  return static_cast<COLORREF>(r) | (static_cast<COLORREF>(g) << 8) |
         (static_cast<COLORREF>(b) << 16);
}
constexpr BYTE GetRValue(COLORREF c) { return static_cast<BYTE>(c & 0xFF); }
constexpr BYTE GetGValue(COLORREF c) { return static_cast<BYTE>((c >> 8) & 0xFF); }
constexpr BYTE GetBValue(COLORREF c) { return static_cast<BYTE>((c >> 16) & 0xFF); }

// ---- Messages --------------------------------------------------------------
#define WM_NULL 0x0000
#define WM_CREATE 0x0001
#define WM_DESTROY 0x0002
#define WM_SIZE 0x0005
#define WM_PAINT 0x000F
#define WM_ERASEBKGND 0x0014
#define WM_SHOWWINDOW 0x0018
#define WM_NCDESTROY 0x0082
#define WM_MOUSEMOVE 0x0200
#define WM_LBUTTONDOWN 0x0201
#define WM_LBUTTONUP 0x0202
#define WM_LBUTTONDBLCLK 0x0203
#define WM_RBUTTONDOWN 0x0204
#define WM_RBUTTONUP 0x0205
#define WM_MOUSELEAVE 0x02A3
#define WM_PRINTCLIENT 0x0318

// Key flags in WPARAM of mouse messages.
#define MK_LBUTTON 0x0001
#define MK_RBUTTON 0x0002
#define MK_SHIFT 0x0004
#define MK_CONTROL 0x0008

// Virtual keys.
#define VK_LBUTTON 0x01
#define VK_SHIFT 0x10
#define VK_CONTROL 0x11
#define VK_MENU 0x12

// Mouse position packing: x in the low 16 bits, y in the high 16 bits, each
// a signed 16-bit value.
constexpr LPARAM MAKELPARAM(int x, int y) {
  return static_cast<LPARAM>(static_cast<uint32_t>(static_cast<uint16_t>(x)) |
                             (static_cast<uint32_t>(static_cast<uint16_t>(y)) << 16));
}
constexpr int GET_X_LPARAM(LPARAM lp) { return static_cast<SHORT>(static_cast<WORD>(lp & 0xFFFF)); }
constexpr int GET_Y_LPARAM(LPARAM lp) {
  return static_cast<SHORT>(static_cast<WORD>((lp >> 16) & 0xFFFF));
}

// ---- Window procedures, properties ----------------------------------------
#define GWLP_WNDPROC (-4)
#define GWLP_USERDATA (-21)

LBWIN_API LRESULT DefWindowProc(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp);
LBWIN_API LRESULT CallWindowProc(WNDPROC proc, HWND hwnd, UINT msg, WPARAM wp, LPARAM lp);
LBWIN_API LRESULT SendMessage(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp);
LBWIN_API LONG_PTR SetWindowLongPtr(HWND hwnd, int index, LONG_PTR value);
LBWIN_API LONG_PTR GetWindowLongPtr(HWND hwnd, int index);
LBWIN_API BOOL SetProp(HWND hwnd, const char* name, HANDLE data);
LBWIN_API HANDLE GetProp(HWND hwnd, const char* name);
LBWIN_API HANDLE RemoveProp(HWND hwnd, const char* name);
LBWIN_API BOOL DestroyWindow(HWND hwnd);
LBWIN_API BOOL IsWindow(HWND hwnd);
LBWIN_API BOOL GetClientRect(HWND hwnd, RECT* rect);
LBWIN_API BOOL InvalidateRect(HWND hwnd, const RECT* rect, BOOL erase);
LBWIN_API BOOL UpdateWindow(HWND hwnd);

// ---- Mouse and keyboard ------------------------------------------------------
#define TME_LEAVE 0x00000002
#define TME_CANCEL 0x80000000

struct TRACKMOUSEEVENT {
  DWORD cbSize;
  DWORD dwFlags;
  HWND hwndTrack;
  DWORD dwHoverTime;
};

LBWIN_API HWND SetCapture(HWND hwnd);
LBWIN_API BOOL ReleaseCapture();
LBWIN_API HWND GetCapture();
LBWIN_API BOOL TrackMouseEvent(TRACKMOUSEEVENT* tme);
// High bit set (the value is negative, bit 0x80 included) while the key is down.
LBWIN_API SHORT GetKeyState(int vk);

// ---- Device contexts and drawing objects -----------------------------------
#define PS_SOLID 0
#define PS_NULL 5

#define TRANSPARENT 1
#define OPAQUE 2

#define WHITE_BRUSH 0
#define BLACK_BRUSH 4
#define NULL_BRUSH 5
#define WHITE_PEN 6
#define BLACK_PEN 7
#define NULL_PEN 8
#define DEFAULT_GUI_FONT 17

#define DT_LEFT 0x00000000
#define DT_CENTER 0x00000001
#define DT_RIGHT 0x00000002
#define DT_TOP 0x00000000
#define DT_WORDBREAK 0x00000010
#define DT_NOPREFIX 0x00000800

LBWIN_API HDC GetDC(HWND hwnd);
LBWIN_API int ReleaseDC(HWND hwnd, HDC hdc);
LBWIN_API HDC BeginPaint(HWND hwnd, PAINTSTRUCT* ps);
LBWIN_API BOOL EndPaint(HWND hwnd, const PAINTSTRUCT* ps);

LBWIN_API HPEN CreatePen(int style, int width, COLORREF color);
LBWIN_API HBRUSH CreateSolidBrush(COLORREF color);
LBWIN_API HGDIOBJ GetStockObject(int which);
// Returns the object of the same kind that was selected before.
LBWIN_API HGDIOBJ SelectObject(HDC hdc, HGDIOBJ obj);
// Fails (FALSE) for stock objects and for objects still selected into a DC.
LBWIN_API BOOL DeleteObject(HGDIOBJ obj);

LBWIN_API BOOL MoveToEx(HDC hdc, int x, int y, POINT* previous);
// Draws from the current position to (x, y), the end pixel excluded.
LBWIN_API BOOL LineTo(HDC hdc, int x, int y);
LBWIN_API int FillRect(HDC hdc, const RECT* rect, HBRUSH brush);
// Outline with the pen, inside with the brush; right and bottom excluded.
// With the null pen the filled area loses its last column and row too.
LBWIN_API BOOL Rectangle(HDC hdc, int left, int top, int right, int bottom);
LBWIN_API COLORREF SetPixel(HDC hdc, int x, int y, COLORREF color);
LBWIN_API COLORREF GetPixel(HDC hdc, int x, int y);
LBWIN_API int SetBkMode(HDC hdc, int mode);
LBWIN_API COLORREF SetBkColor(HDC hdc, COLORREF color);
LBWIN_API COLORREF SetTextColor(HDC hdc, COLORREF color);
// Supports DT_LEFT, DT_CENTER, DT_WORDBREAK; line breaks in the text are
// always honoured. len -1 means the text is null-terminated. Returns the
// height of the text drawn.
LBWIN_API int DrawTextW(HDC hdc, const wchar_t* text, int len, RECT* rect, UINT format);

// ---- Device-independent bitmaps ------------------------------------------------
#pragma pack(push, 2)
struct BITMAPFILEHEADER {
  WORD bfType;
  DWORD bfSize;
  WORD bfReserved1;
  WORD bfReserved2;
  DWORD bfOffBits;
};
#pragma pack(pop)
static_assert(sizeof(BITMAPFILEHEADER) == 14, "BMP file header is 14 bytes");

struct BITMAPINFOHEADER {
  DWORD biSize;
  LONG biWidth;
  LONG biHeight;  // positive: rows bottom-up
  WORD biPlanes;
  WORD biBitCount;
  DWORD biCompression;
  DWORD biSizeImage;
  LONG biXPelsPerMeter;
  LONG biYPelsPerMeter;
  DWORD biClrUsed;
  DWORD biClrImportant;
};
static_assert(sizeof(BITMAPINFOHEADER) == 40, "BMP info header is 40 bytes");

struct RGBQUAD {
  BYTE rgbBlue;
  BYTE rgbGreen;
  BYTE rgbRed;
  BYTE rgbReserved;
};

struct BITMAPINFO {
  BITMAPINFOHEADER bmiHeader;
  RGBQUAD bmiColors[1];
};

#define BI_RGB 0
#define DIB_RGB_COLORS 0

// Copies the rectangle (xSrc, ySrc, w, h) of a 24- or 32-bit DIB to (xDest,
// yDest) of the device. As on the platform, ySrc is counted from the
// bottom row for a bottom-up DIB, and `bits` holds scan lines startScan to
// startScan + lines - 1. The 32-bit DIB's fourth byte is ignored. Returns
// the number of scan lines set (0 on error).
LBWIN_API int SetDIBitsToDevice(HDC hdc, int xDest, int yDest, DWORD w, DWORD h, int xSrc, int ySrc,
                                UINT startScan, UINT lines, const void* bits, const BITMAPINFO* info,
                                UINT usage);

// ---- Host and test interface ---------------------------------------------------
// A new top-level window with a client area of w x h pixels, filled white,
// whose procedure is DefWindowProc.
LBWIN_API HWND lbwinCreateWindow(int w, int h);
// Resizes the client image (new pixels white) and sends WM_SIZE.
LBWIN_API BOOL lbwinSetWindowSize(HWND hwnd, int w, int h);
LBWIN_API LRESULT lbwinSendMessage(HWND hwnd, UINT msg, WPARAM wp, LPARAM lp);
// Delivers WM_MOUSELEAVE if a leave notification was requested through
// TrackMouseEvent and not yet delivered; returns TRUE when it did.
LBWIN_API BOOL lbwinMouseLeave(HWND hwnd);
// Sends WM_PAINT for the whole client area, whether or not it is invalid.
LBWIN_API void lbwinPaint(HWND hwnd);
// TRUE while part of the window is invalid and no WM_PAINT has validated it.
LBWIN_API BOOL lbwinIsInvalid(HWND hwnd);
// Sets the key state GetKeyState reports.
LBWIN_API void lbwinSetKeyState(int vk, BOOL down);
// The font caches of cairo and fontconfig are handed back at exit so that
// leak checkers see a clean process; a host that shares them with a
// toolkit still holding fonts at exit (a GTK window) calls this to leave
// them alone.
LBWIN_API void lbwinKeepFontCachesAtExit(void);
// Window image: top-down rows of `*stride` bytes, 4 bytes a pixel (blue,
// green, red, unused). Null for an invalid window.
LBWIN_API const uint8_t* lbwinGetPixels(HWND hwnd, int* w, int* h, int* stride);
// One client pixel as a COLORREF; 0xFFFFFFFF outside the window.
LBWIN_API COLORREF lbwinGetPixel(HWND hwnd, int x, int y);
// TRUE while a leave notification is pending for the window.
LBWIN_API BOOL lbwinIsTrackingLeave(HWND hwnd);
// Live device contexts and non-stock drawing objects, process-wide: a
// message must leave them where they were.
LBWIN_API long lbwinLiveDCs();
LBWIN_API long lbwinLiveGdiObjects();
// Number of live windows.
LBWIN_API long lbwinLiveWindows();

}  // extern "C"
