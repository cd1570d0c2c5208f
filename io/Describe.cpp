// The `info` summary of a document: layers, art and meshes.
#include "io/Describe.h"

#include <cstdio>
#include <sstream>


namespace lb::io {
namespace {

const char* typeName(const ArtObject& a) {
  switch (a.type) {
    case kGroupArt: return "group";
    case kCompoundPathArt: return "compound";
    case kPathArt: return "path";
    case kRasterArt: return "raster";
    case kPlacedArt: return "placed";
    case kMeshArt: return "mesh";
    default: return "unknown";
  }
}

std::string number(double d) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%g", d);
  return buf;
}

const char* const kBlendNames[] = {"normal",     "multiply",  "screen",  "overlay", "softLight",  "hardLight",
                                   "colorDodge", "colorBurn", "darken",  "lighten", "difference", "exclusion",
                                   "hue",        "saturation", "color",  "luminosity"};

void describeArt(const lb::host::Document& doc, const ArtObject& a, int depth, std::ostringstream& out) {
  out << std::string(static_cast<size_t>(depth) * 2, ' ') << typeName(a);
  if (!a.name.empty()) out << " \"" << a.name << "\"";
  if (!a.id.empty()) out << " #" << a.id;
  if (a.selected()) out << " selected";
  if (a.hidden()) out << " hidden";
  if (a.locked()) out << " locked";
  if (a.opacity != 1) out << " opacity=" << number(a.opacity);
  if (a.blendMode != kAINormalBlendingMode && a.blendMode >= 0 && a.blendMode <= kAILuminosityBlendingMode)
    out << " blend=" << kBlendNames[a.blendMode];
  if (!a.graphicStyle.empty()) out << " style=\"" << a.graphicStyle << "\"";
  if (!doc.keyArtId.empty() && a.id == doc.keyArtId) out << " key";
  switch (a.type) {
    case kPathArt: {
      out << " " << a.segments.size() << " anchors" << (a.closed ? " closed" : " open");
      if (a.selected()) {
        size_t n = 0;
        for (size_t k = 0; k < a.segments.size(); ++k)
          if (doc.anchorSelection(&a, static_cast<int>(k)) != kSegmentNotSelected) ++n;
        out << ", " << n << " selected";
      }
      break;
    }
    case kRasterArt:
    case kPlacedArt: {
      const ArtImage& im = a.image;
      out << " " << im.width << "x" << im.height << " "
          << (im.space == kRGBColorSpace ? "rgb" : im.space == kCMYKColorSpace ? "cmyk" : "gray")
          << (im.alpha ? "+alpha" : "") << " " << im.bits << "-bit";
      if (a.type == kPlacedArt) out << " placedType=" << im.placedType;
      break;
    }
    case kMeshArt:
      if (a.mesh) {
        out << " " << a.mesh->sizeI() << "x" << a.mesh->sizeJ() << " cells";
        out << ", " << a.mesh->vertexCount() << " vertices";
        out << ", " << a.mesh->selectedCount() << " selected";
      }
      break;
    case kGroupArt:
    case kCompoundPathArt:
      out << " (" << a.children.size() << (a.children.size() == 1 ? " child)" : " children)");
      break;
    default:
      break;
  }
  out << "\n";
  for (const auto& c : a.children) describeArt(doc, *c, depth + 1, out);
}

}  // namespace

std::string describeDocument(const lb::host::Document& doc) {
  std::ostringstream out;
  out << "document: " << doc.layers().size() << (doc.layers().size() == 1 ? " layer" : " layers") << ", "
      << doc.styles().size() << (doc.styles().size() == 1 ? " style" : " styles");
  if (doc.artboard) {
    const AIRealRect& r = *doc.artboard;
    out << ", artboard [" << number(r.left) << ", " << number(r.bottom) << ", " << number(r.right) << ", "
        << number(r.top) << "]";
  }
  if (!doc.keyArtId.empty()) out << ", key #" << doc.keyArtId;
  out << "\n";
  for (const auto& s : doc.styles()) out << "style \"" << s->name << "\"\n";
  for (const auto& l : doc.layers()) {
    out << "layer \"" << l->name << "\"";
    if (l->hidden()) out << " hidden";
    if (l->locked()) out << " locked";
    out << " (" << l->children.size() << (l->children.size() == 1 ? " child)" : " children)") << "\n";
    for (const auto& c : l->children) describeArt(doc, *c, 1, out);
  }
  return out.str();
}

}  // namespace lb::io
