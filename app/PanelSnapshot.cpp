// `latticebender panel`: loads the plug-in into a fresh host, lets it build
// its panel, replays a hover and a press, and writes the window's pixels.
#include "app/PanelSnapshot.h"

#include <cairo.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <system_error>

#include "host/Host.h"
#include "host/PanelHost.h"
#include "lbwin.h"

namespace lb::app {
namespace {

// Writes the window image as an opaque PNG, through a temporary file in
// the same directory renamed over the target.
bool WritePng(HWND hwnd, const std::string& outPng, std::string& error) {
  int w = 0, h = 0, stride = 0;
  const uint8_t* px = lbwinGetPixels(hwnd, &w, &h, &stride);
  if (!px || w <= 0 || h <= 0) {
    error = "the panel window has no pixels";
    return false;
  }
  cairo_surface_t* s = cairo_image_surface_create(CAIRO_FORMAT_RGB24, w, h);
  unsigned char* data = cairo_image_surface_get_data(s);
  const int dstStride = cairo_image_surface_get_stride(s);
  cairo_surface_flush(s);
  for (int y = 0; y < h; ++y) std::memcpy(data + y * dstStride, px + y * stride, static_cast<size_t>(w) * 4);
  cairo_surface_mark_dirty(s);
  const std::string tmp = outPng + ".tmp";
  cairo_status_t st = cairo_surface_write_to_png(s, tmp.c_str());
  cairo_surface_destroy(s);
  if (st != CAIRO_STATUS_SUCCESS) {
    std::remove(tmp.c_str());
    error = "cannot write " + outPng + ": " + cairo_status_to_string(st);
    return false;
  }
  std::error_code ec;
  std::filesystem::rename(tmp, outPng, ec);
  if (ec) {
    std::remove(tmp.c_str());
    error = "cannot write " + outPng + ": " + ec.message();
    return false;
  }
  return true;
}

}  // namespace

int panelSnapshot(const std::string& outPng, std::optional<std::pair<int, int>> hover,
                  std::optional<std::pair<int, int>> press) {
  std::string error;
  try {
    lb::host::Host host;
    host.loadPlugin();
    HWND hwnd = lb::host::currentPanelWindow();
    if (!hwnd) {
      std::fprintf(stderr, "latticebender panel: the plug-in created no panel\n");
      host.shutdownPlugin();
      return 4;
    }
    lbwinPaint(hwnd);
    if (hover) lbwinSendMessage(hwnd, WM_MOUSEMOVE, 0, MAKELPARAM(hover->first, hover->second));
    if (press)
      lbwinSendMessage(hwnd, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(press->first, press->second));
    const bool ok = WritePng(hwnd, outPng, error);
    if (press) {
      // Let go outside every button so that nothing runs, then close.
      lbwinSendMessage(hwnd, WM_LBUTTONUP, 0, MAKELPARAM(-1, -1));
    }
    host.shutdownPlugin();
    if (!ok) {
      std::fprintf(stderr, "latticebender panel: %s\n", error.c_str());
      return 4;
    }
    return 0;
  } catch (const std::exception& e) {
    std::fprintf(stderr, "latticebender panel: %s\n", e.what());
    return 4;
  }
}

}  // namespace lb::app
