// PDF export: the renderer's drawing onto cairo's PDF surface.
#include "render/Pdf.h"

#include <cairo-pdf.h>
#include <cairo.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <stdexcept>

#include "render/Render.h"

namespace lb::render {

void writePdf(const lb::host::Document& doc, const std::string& path) {
  AIRealRect area = renderArea(doc);
  double w = area.right - area.left, h = area.top - area.bottom;
  if (!std::isfinite(area.left) || !std::isfinite(area.top) || !std::isfinite(w) || !std::isfinite(h))
    throw std::runtime_error("cannot write " + path + ": the page is not finite");
  // An empty area makes a one-unit page; PDF pages are at most 14400 units.
  if (!(w > 0)) w = 1, area.right = area.left + 1;
  if (!(h > 0)) h = 1, area.bottom = area.top - 1;
  if (w > 14400 || h > 14400)
    throw std::runtime_error("cannot write " + path + ": the page is larger than 14400 units a side");
  const std::string tmp = path + ".tmp" + std::to_string(::getpid());
  cairo_surface_t* surf = cairo_pdf_surface_create(tmp.c_str(), w, h);
  cairo_t* cr = cairo_create(surf);
  RenderOptions options;
  options.scale = 1;
  options.maskMeshes = true;
  drawDocument(doc, cr, options, area);
  cairo_status_t st = cairo_status(cr);
  cairo_destroy(cr);
  cairo_surface_finish(surf);
  if (st == CAIRO_STATUS_SUCCESS) st = cairo_surface_status(surf);
  cairo_surface_destroy(surf);
  if (st != CAIRO_STATUS_SUCCESS) {
    std::remove(tmp.c_str());
    throw std::runtime_error("cannot write " + path + ": " + cairo_status_to_string(st));
  }
  if (std::rename(tmp.c_str(), path.c_str()) != 0) {
    std::remove(tmp.c_str());
    throw std::runtime_error("cannot write " + path);
  }
}

}  // namespace lb::render
