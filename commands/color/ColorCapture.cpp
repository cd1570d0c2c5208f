// Colour capture: selected nodes take the colour found under them in a
// selected raster or placed image, or on the surface of the bottommost
// selected mesh, optionally sampled slightly inside the mesh's outline.
#include "color/ColorCapture.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "MeshSelection.h"
#include "Operations.h"
#include "color/ColorOpacity.h"

using lb::s::sMesh;
using lb::s::sMeshSelection;
using lb::s::sMeshVertexIterator;

namespace lb::color {
namespace {

// How far inside the outline the border nodes are sampled, in parameter
// space (a single-precision constant, used widened).
constexpr double kEdgeStep = static_cast<double>(0.05f);

// A byte over 255, computed in single precision and widened.
double Unit(int byte) { return static_cast<double>(static_cast<float>(byte) / 255.0f); }

// The sampling point of node (i, j) of a mesh of I x J cells. With edge
// correction the border nodes move kEdgeStep inwards in (u, v) and the
// surface is evaluated there; without it the raster capture takes the
// node's own position (usePosition) and the surface capture the surface at
// the node's (u, v).
AIErr SamplePoint(AIArtHandle mesh, AIMeshVertexIterator node, int32_t i, int32_t j, int32_t I, int32_t J, bool edge,
                  bool usePosition, AIRealPoint *p) {
  if (!edge && usePosition) return sMeshVertexIterator->GetPoint(node, p);
  AIRealPoint uv{};
  if (AIErr err = sMeshVertexIterator->GetUV(node, &uv)) return err;
  if (edge) {
    if (i == 0) uv.h += kEdgeStep;
    if (i == I) uv.h -= kEdgeStep;
    if (j == 0) uv.v += kEdgeStep;
    if (j == J) uv.v -= kEdgeStep;
  }
  return sMesh->EvalPoint(mesh, uv, p);
}

bool Accepted(const AIRasterRecord &info) {
  const bool space =
      info.colorSpace == kGrayColorSpace || info.colorSpace == kRGBColorSpace || info.colorSpace == kCMYKColorSpace;
  const int colour = info.colorSpace == kRGBColorSpace ? 3 : info.colorSpace == kCMYKColorSpace ? 4 : 1;
  const int channels = colour + (info.hasAlpha ? 1 : 0);
  // Bytes per pixel come from the bits per pixel; the channels must fill
  // them evenly (8 or 16 bits each).
  return space && info.bitsPerPixel > 0 && info.bitsPerPixel % (8 * channels) == 0;
}

// The colour of one pixel, bytes b0, b1, ... (colour channels first, alpha
// last), as the host's colour and an opacity.
CColorOpacity Convert(const AIRasterRecord &info, const AIPathStyle *tint, const int *b) {
  CColorOpacity p;
  p.m_dOpacity = 1.0;
  switch (info.colorSpace) {
    case kRGBColorSpace:
      p.m_Color.kind = kThreeColor;
      p.m_Color.c.rgb = {Unit(b[0]), Unit(b[1]), Unit(b[2])};
      if (info.hasAlpha) p.m_dOpacity = Unit(b[3]);
      break;
    case kCMYKColorSpace:
      p.m_Color.kind = kFourColor;
      p.m_Color.c.f = {Unit(b[0]), Unit(b[1]), Unit(b[2]), Unit(b[3])};
      if (info.hasAlpha) p.m_dOpacity = Unit(b[4]);
      break;
    default: {
      // A gray image painted with an RGB fill runs from the fill colour
      // (black pixels) to white; with a CMYK fill likewise towards no ink.
      const double g = b[0];
      const AIColor *fill = tint && tint->fillPaint ? &tint->fill.color : nullptr;
      if (fill && fill->kind == kThreeColor) {
        const AIThreeColorStyle &c = fill->c.rgb;
        p.m_Color.kind = kThreeColor;
        p.m_Color.c.rgb = {(1 - c.red) * g / 255 + c.red, (1 - c.green) * g / 255 + c.green,
                           (1 - c.blue) * g / 255 + c.blue};
      } else if (fill && fill->kind == kFourColor) {
        const AIFourColorStyle &c = fill->c.f;
        p.m_Color.kind = kFourColor;
        p.m_Color.c.f = {(255 - g) * c.cyan / 255, (255 - g) * c.magenta / 255, (255 - g) * c.yellow / 255,
                         (255 - g) * c.black / 255};
      } else {
        p.m_Color.kind = kGrayColor;
        p.m_Color.c.g.gray = Unit(255 - b[0]);
      }
      if (info.hasAlpha) p.m_dOpacity = Unit(b[1]);
    }
  }
  return p;
}

// Whether a fetched node is in the selection.
bool IsSelected(AIMeshSelection sel, AIMeshVertexIterator v) { return v && sMeshSelection->ContainsVertex(sel, v); }

}  // namespace

int _CatchFromRaster(AIArtHandle image, AIArtHandle mesh, int edgeCorrection) {
  try {
    const SelectionRef sel = GetSelectionRef(mesh);
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    AIRealMatrix m{};
    AIRasterRecord info{};
    ThrowIfErr(lb::s::sRaster->GetRasterMatrix(image, &m));
    ThrowIfErr(lb::s::sRaster->GetRasterInfo(image, &info));
    if (m.a * m.d - m.b * m.c == 0) return 1;
    if (lb::s::sMath->AIRealMatrixInvert(&m) != kNoErr) return 1;
    const bool accepted = Accepted(info);
    AIPathStyle tint{};
    bool tinted = false;
    if (accepted && info.colorSpace == kGrayColorSpace)
      tinted = lb::s::sPathStyle->GetPathStyle(image, &tint, nullptr) == kNoErr;
    const int colour = info.colorSpace == kRGBColorSpace ? 3 : info.colorSpace == kCMYKColorSpace ? 4 : 1;
    const int channels = colour + (info.hasAlpha ? 1 : 0);
    std::vector<AIReal> values(channels > 0 ? channels : 1);

    for (int32_t i = 0; i <= I; ++i)
      for (int32_t j = 0; j <= J; ++j) {
        VertexRef node;
        if (sMesh->GetNode(mesh, i, j, node.put()) != kNoErr || !IsSelected(sel, node)) continue;
        AIRealPoint p{};
        if (SamplePoint(mesh, node, i, j, I, J, edgeCorrection != 0, true, &p) != kNoErr) continue;
        AIRealPoint px{};
        lb::s::sMath->AIRealMatrixXformPoint(&m, &p, &px);
        // Pixel space: columns 0..width to the right, rows 0..height
        // downwards from y = 0.
        if (!(px.h > 0 && px.h < info.width && px.v < 0 && px.v > -info.height)) {
          sMeshSelection->SelectVertex(sel, node, false);
          continue;
        }
        if (!accepted) continue;
        const int32_t col = std::min<int32_t>(static_cast<int32_t>(std::trunc(px.h)), info.width - 1);
        const int32_t row = std::min<int32_t>(static_cast<int32_t>(std::trunc(-px.v)), info.height - 1);
        if (lb::s::sRaster->GetRasterPixel(image, col, row, values.data()) != kNoErr) continue;
        // The host gives channel values 0..1; the colour rules work on
        // 8-bit values (wider channels are reduced to their top byte).
        int bytes[5] = {0, 0, 0, 0, 0};
        for (int c = 0; c < channels && c < 5; ++c)
          bytes[c] = static_cast<int>(std::lround(std::clamp(values[c], 0.0, 1.0) * 255.0));
        Convert(info, tinted ? &tint : nullptr, bytes).Write(node);
      }
    return 0;
  } catch (int) {
    return 1;
  }
}

int _CatchFromMeshSurface(AIArtHandle source, AIArtHandle target, int edgeCorrection) {
  try {
    const SelectionRef sel = GetSelectionRef(target);
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(target, &I, &J));
    for (int32_t i = 0; i <= I; ++i)
      for (int32_t j = 0; j <= J; ++j) {
        VertexRef node;
        if (sMesh->GetNode(target, i, j, node.put()) != kNoErr || !IsSelected(sel, node)) continue;
        AIRealPoint p{};
        if (SamplePoint(target, node, i, j, I, J, edgeCorrection != 0, false, &p) != kNoErr) continue;
        AIRealPoint uv{};
        AIBoolean on = 0;
        if (sMesh->InvertPoint(source, p, &uv, &on) != kNoErr || on != 1) {
          sMeshSelection->SelectVertex(sel, node, false);
          continue;
        }
        CColorOpacity paint;
        paint.m_dOpacity = 1.0;
        sMesh->EvalColor(source, uv, &paint.m_Color);
        sMesh->EvalOpacity(source, uv, &paint.m_dOpacity);
        paint.Write(node);
      }
    return 0;
  } catch (int) {
    return 1;
  }
}

namespace {

// The selected raster and placed art, topmost first; the array is the
// host's, disposed when the list goes.
class SelectedImages {
 public:
  SelectedImages() {
    const AIMatchingArtSpec wanted[2] = {{kRasterArt, kArtSelected, kArtSelected},
                                         {kPlacedArt, kArtSelected, kArtSelected}};
    if (lb::s::sAIMatchingArt->GetMatchingArt(wanted, 2, &m_art, &m_count) != kNoErr) m_count = 0;
    if (!m_art) m_count = 0;
  }
  ~SelectedImages() {
    if (m_art) lb::s::sMdMemory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(m_art));
  }
  SelectedImages(const SelectedImages &) = delete;
  SelectedImages &operator=(const SelectedImages &) = delete;
  bool empty() const { return m_count <= 0; }
  AIArtHandle first() const { return (*m_art)[0]; }

 private:
  AIArtHandle **m_art = nullptr;
  int32_t m_count = 0;
};

// A mesh's vertex selection, one flag per vertex in the host's vertex
// order, kept across the placed image's conversion.
struct SelectionSnapshot {
  AIArtHandle mesh = nullptr;
  std::vector<char> flags;
  size_t selected = 0;

  void Take(AIArtHandle art) {
    mesh = art;
    flags.clear();
    selected = 0;
    SelectionRef sel;
    VertexRef v;
    if (sMesh->GetSelection(art, sel.put()) != kNoErr || sMesh->GetStartVertex(art, v.put()) != kNoErr) return;
    for (; !sMeshVertexIterator->AtEnd(v); sMeshVertexIterator->Next(v)) {
      const bool on = sMeshSelection->ContainsVertex(sel, v);
      flags.push_back(on ? 1 : 0);
      selected += on;
    }
  }

  // Mostly selected meshes are selected whole and then thinned out; the
  // others are cleared and then built up vertex by vertex.
  void Restore() const {
    if (!mesh || flags.empty()) return;
    const bool mostly = selected >= flags.size() / 2;
    lb::s::sArt->SetArtUserAttr(mesh, kArtSelected, 0);
    if (mostly) lb::s::sArt->SetArtUserAttr(mesh, kArtSelected, kArtSelected);
    if (mostly && selected == flags.size()) return;
    SelectionRef sel;
    VertexRef v;
    if (sMesh->GetSelection(mesh, sel.put()) != kNoErr || sMesh->GetStartVertex(mesh, v.put()) != kNoErr) return;
    for (size_t k = 0; k < flags.size() && !sMeshVertexIterator->AtEnd(v); ++k, sMeshVertexIterator->Next(v)) {
      if (mostly && !flags[k]) sMeshSelection->SelectVertex(sel, v, false);
      if (!mostly && flags[k]) sMeshSelection->SelectVertex(sel, v, true);
    }
  }
};

}  // namespace

int CatchFromRaster(int edgeCorrection) {
  SelectedMeshList meshes;
  SelectedImages images;
  if (meshes.empty() || images.empty()) return 0;
  AIArtHandle image = images.first();
  int16_t type = kUnknownArt;
  if (lb::s::sArt->GetArtType(image, &type) != kNoErr) return 0;
  if (type == kRasterArt) {
    for (AIArtHandle mesh : meshes) _CatchFromRaster(image, mesh, edgeCorrection);
    return 0;
  }
  int16_t placedType = 0;
  if (lb::s::sPlaced->GetPlacedType(image, &placedType) != kNoErr || placedType != kPlacedImageType) return 0;

  // Turning a copy of the placed image into a raster may disturb the
  // selection, so the meshes' vertex selection is kept and put back.
  std::vector<SelectionSnapshot> snapshots(meshes.size());
  for (int32_t k = 0; k < meshes.size(); ++k) snapshots[k].Take(meshes[k]);
  AIArtHandle copy = nullptr;
  AIArtHandle raster = nullptr;
  if (lb::s::sArt->DuplicateArt(image, kPlaceAbove, image, &copy) == kNoErr && copy &&
      lb::s::sPlaced->ConvertToNative(copy, &raster) != kNoErr) {
    // The copy stayed placed art; it must not stay in the document.
    lb::s::sArt->DisposeArt(copy);
    raster = nullptr;
  }
  for (const SelectionSnapshot &s : snapshots) s.Restore();
  if (raster) {
    for (AIArtHandle mesh : meshes) _CatchFromRaster(raster, mesh, edgeCorrection);
    lb::s::sArt->DisposeArt(raster);
  }
  return 0;
}

int CatchFromMeshSurface(int edgeCorrection) {
  SelectedMeshList meshes;
  const int32_t n = meshes.size();
  if (n < 2) return 0;
  AIArtHandle source = meshes[n - 1];
  for (int32_t k = 0; k < n - 1; ++k) _CatchFromMeshSurface(source, meshes[k], edgeCorrection);
  return 0;
}

}  // namespace lb::color
