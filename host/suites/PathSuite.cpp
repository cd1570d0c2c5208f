// The path suite (segments, closed flag, anchor selection, pieces, length)
// and the path style suite (fill and stroke).
#include "host/Geometry.h"
#include "host/SuiteRegistry.h"
#include "host/suites/ArtSuiteCommon.h"

namespace lb::host::suites {
namespace {

// [first, first + count) must lie inside the path's segments.
bool inRange(const ArtObject* path, int16_t first, int16_t count) {
  return first >= 0 && count >= 0 && static_cast<size_t>(first) + static_cast<size_t>(count) <= path->segments.size();
}

size_t pieceCount(const ArtObject* path) {
  const size_t n = path->segments.size();
  if (n < 2) return 0;
  return path->closed ? n : n - 1;
}

AIRealBezier piece(const ArtObject* path, size_t k) {
  const auto& s = path->segments;
  const AIPathSegment& a = s[k];
  const AIPathSegment& b = s[(k + 1) % s.size()];
  return {a.p, a.out, b.in, b.p};
}

AIErr GetPathSegmentCount(AIArtHandle path, int16_t* count) {
  if (!count) return kBadParameterErr;
  if (AIErr err = checkArt(path, kPathArt)) return err;
  *count = static_cast<int16_t>(path->segments.size());
  return kNoErr;
}

// Added segments are zero points with no anchor selection; the existing
// ones keep their place, so growing and then setting from 0 is the usual
// way to fill a new path.
AIErr SetPathSegmentCount(AIArtHandle path, int16_t count) {
  if (AIErr err = checkArt(path, kPathArt)) return err;
  if (count < 0) return kBadParameterErr;
  path->segments.resize(static_cast<size_t>(count), AIPathSegment{{0, 0}, {0, 0}, {0, 0}, 1});
  path->segmentSelection.resize(static_cast<size_t>(count), kSegmentNotSelected);
  return kNoErr;
}

AIErr GetPathSegments(AIArtHandle path, int16_t segNumber, int16_t count, AIPathSegment* segs) {
  if (AIErr err = checkArt(path, kPathArt)) return err;
  if (!segs || !inRange(path, segNumber, count)) return kBadParameterErr;
  for (int16_t k = 0; k < count; ++k) segs[k] = path->segments[static_cast<size_t>(segNumber + k)];
  return kNoErr;
}

AIErr SetPathSegments(AIArtHandle path, int16_t segNumber, int16_t count, const AIPathSegment* segs) {
  if (AIErr err = checkArt(path, kPathArt)) return err;
  if (!segs || !inRange(path, segNumber, count)) return kBadParameterErr;
  for (int16_t k = 0; k < count; ++k) path->segments[static_cast<size_t>(segNumber + k)] = segs[k];
  return kNoErr;
}

AIErr GetPathClosed(AIArtHandle path, AIBoolean* closed) {
  if (!closed) return kBadParameterErr;
  if (AIErr err = checkArt(path, kPathArt)) return err;
  *closed = path->closed ? 1 : 0;
  return kNoErr;
}

AIErr SetPathClosed(AIArtHandle path, AIBoolean closed) {
  if (AIErr err = checkArt(path, kPathArt)) return err;
  path->closed = closed != 0;
  return kNoErr;
}

AIErr GetPathSegmentSelected(AIArtHandle path, int16_t segNumber, int16_t* selected) {
  if (!selected) return kBadParameterErr;
  if (AIErr err = checkArt(path, kPathArt)) return err;
  if (!inRange(path, segNumber, 1)) return kBadParameterErr;
  *selected = doc().anchorSelection(path, segNumber);
  return kNoErr;
}

AIErr SetPathSegmentSelected(AIArtHandle path, int16_t segNumber, int16_t selected) {
  if (AIErr err = checkArt(path, kPathArt)) return err;
  if (!inRange(path, segNumber, 1)) return kBadParameterErr;
  if (selected < kSegmentNotSelected || selected > kSegmentInAndOutSelected) return kBadParameterErr;
  doc().setAnchorSelection(path, segNumber, selected);
  return kNoErr;
}

AIErr GetPathBezier(AIArtHandle path, int16_t pieceNumber, AIRealBezier* bezier) {
  if (!bezier) return kBadParameterErr;
  if (AIErr err = checkArt(path, kPathArt)) return err;
  if (pieceNumber < 0 || static_cast<size_t>(pieceNumber) >= pieceCount(path)) return kBadParameterErr;
  *bezier = piece(path, static_cast<size_t>(pieceNumber));
  return kNoErr;
}

AIErr GetPathLength(AIArtHandle path, AIReal* length, AIReal flatness) {
  if (!length) return kBadParameterErr;
  if (AIErr err = checkArt(path, kPathArt)) return err;
  double total = 0;
  for (size_t k = 0; k < pieceCount(path); ++k) total += geom::length(piece(path, k), flatness);
  *length = total;
  return kNoErr;
}

const AIPathSuite kPathSuite = {
    .GetPathSegmentCount = GetPathSegmentCount,
    .SetPathSegmentCount = SetPathSegmentCount,
    .GetPathSegments = GetPathSegments,
    .SetPathSegments = SetPathSegments,
    .GetPathClosed = GetPathClosed,
    .SetPathClosed = SetPathClosed,
    .GetPathSegmentSelected = GetPathSegmentSelected,
    .SetPathSegmentSelected = SetPathSegmentSelected,
    .GetPathBezier = GetPathBezier,
    .GetPathLength = GetPathLength,
};

// ---- AI Path Style Suite ---------------------------------------------------
// Paths, compound paths, raster and placed art carry a path style (for
// images the fill colourises a gray image); groups and meshes do not.

bool hasPathStyle(const ArtObject* art) {
  return art->type == kPathArt || art->type == kCompoundPathArt || art->type == kRasterArt ||
         art->type == kPlacedArt;
}

AIErr GetPathStyle(AIArtHandle art, AIPathStyle* style, AIBoolean* hasAdvancedFill) {
  if (!style) return kBadParameterErr;
  if (AIErr err = checkArt(art)) return err;
  if (!hasPathStyle(art)) return kWrongArtTypeErr;
  *style = art->style;
  if (hasAdvancedFill) *hasAdvancedFill = 0;
  return kNoErr;
}

AIErr SetPathStyle(AIArtHandle art, const AIPathStyle* style) {
  if (!style) return kBadParameterErr;
  if (AIErr err = checkArt(art)) return err;
  if (!hasPathStyle(art)) return kWrongArtTypeErr;
  art->style = *style;
  // The paths of a compound path share its look.
  if (art->type == kCompoundPathArt)
    for (auto& c : art->children) c->style = *style;
  return kNoErr;
}

const AIPathStyleSuite kPathStyleSuite = {
    .GetPathStyle = GetPathStyle,
    .SetPathStyle = SetPathStyle,
};

}  // namespace

void registerPathSuites() {
  registerSuite(kAIPathSuite, kAIPathSuiteVersion, &kPathSuite);
  registerSuite(kAIPathStyleSuite, kAIPathStyleSuiteVersion, &kPathStyleSuite);
}

}  // namespace lb::host::suites
