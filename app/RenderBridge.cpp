#include "app/RenderBridge.h"

#include <stdexcept>

#if __has_include("render/Render.h")
#include "render/Render.h"
#define LB_HAVE_RENDER 1
#endif

namespace lb::app {

#ifdef LB_HAVE_RENDER
bool renderAvailable() { return true; }
void renderPng(const lb::host::Document& doc, const std::string& outPng, double scale,
               bool selection) {
  lb::render::RenderOptions options;
  options.scale = scale;
  options.selection = selection;
  lb::render::renderDocumentPng(doc, outPng, options);
}
#else
bool renderAvailable() { return false; }
void renderPng(const lb::host::Document&, const std::string&, double, bool) {
  throw std::runtime_error("rendering is not available in this build");
}
#endif

}  // namespace lb::app
