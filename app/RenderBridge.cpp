// Rendering a document to PNG for the command line and the demo.
#include "app/RenderBridge.h"

#include "render/Render.h"

namespace lb::app {

void renderPng(const lb::host::Document& doc, const std::string& outPng, double scale,
               bool selection) {
  lb::render::RenderOptions options;
  options.scale = scale;
  options.selection = selection;
  lb::render::renderDocumentPng(doc, outPng, options);
}

}  // namespace lb::app
