// "Create one cell mesh, based on path": each selected path becomes a mesh
// of one cell whose outline is the path, with its paint and blending.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <vector>

#include "HandleGeometry.h"
#include "HostRefs.h"
#include "Operations.h"
#include "color/ColorOpacity.h"
#include "construct/Construct.h"

using lb::s::sArt;
using lb::s::sMath;
using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshVertexIterator;
using lb::s::sPath;

namespace {

constexpr double kPi = std::numbers::pi;
constexpr double kNotCandidate = 2.0 * kPi;
// A handle closer than this to its anchor gives no direction.
constexpr double kShortHandle = 0.1;
// Light gray of unpainted paths: 0.8 in single precision, widened.
constexpr double kGray = 0.800000011920929;

// Sharpness of anchor k: 0 for a cusp, pi/2 for a right angle, pi for a
// smooth point or when a direction cannot be told.
double Sharpness(const std::vector<AIPathSegment>& s, int k) {
  const int n = static_cast<int>(s.size());
  const AIPathSegment& a = s[k];
  AIRealPoint inTo = a.in, outTo = a.out;
  double inLen = 1.0, outLen = 1.0;
  if (sMath->AIRealPointEqual(&a.in, &a.p)) {
    inTo = s[(k + n - 1) % n].out;
    inLen = sMath->AIRealPointLength(&a.p, &inTo);
  }
  if (sMath->AIRealPointEqual(&a.out, &a.p)) {
    outTo = s[(k + 1) % n].in;
    outLen = sMath->AIRealPointLength(&a.p, &outTo);
  }
  if (inLen < kShortHandle || outLen < kShortHandle) return kPi;
  double d = std::fabs(sMath->AIRealPointAngle(&a.p, &inTo) - sMath->AIRealPointAngle(&a.p, &outTo));
  if (d > kPi) d = 2.0 * kPi - d;
  return d;
}

// The path's paint as a node record: fill colour, else stroke colour, else
// light gray; node opacity from the path only with Alt.
CColorOpacity PathPaint(AIArtHandle path, int alt, double opacity) {
  CColorOpacity rec;
  rec.m_Color.kind = kThreeColor;
  rec.m_Color.c.rgb = {kGray, kGray, kGray};
  AIPathStyle style{};
  AIBoolean advanced = 0;
  if (CColorOpacity::sm_bUseColor && lb::s::sPathStyle->GetPathStyle(path, &style, &advanced) == kNoErr) {
    if (style.fillPaint)
      rec.m_Color = style.fill.color;
    else if (style.strokePaint)
      rec.m_Color = style.stroke.color;
  }
  rec.m_dOpacity = alt ? opacity : 1.0;
  return rec;
}

// Gives the boundary segment leaving `corner` (segment index `seg`) the
// shape from anchor `from` through the anchors strictly between to anchor
// `to`, walking the path forwards (cyclically).
void ShapeSide(AIMeshVertexIterator corner, int32_t seg, const std::vector<AIPathSegment>& s, int from, int to) {
  const int n = static_cast<int>(s.size());
  const int knots = (to - from - 1 + n) % n;
  SegmentRef side;
  ThrowIfErr(sMeshVertexIterator->GetSegment(corner, seg, side.put()));
  if (knots > 0) sMeshSegmentIterator->InsertKnots(side, 0, knots);
  // Every point of the side, end handles included: knot insertion may
  // have shortened them.
  std::vector<AIRealPoint> pts;
  pts.reserve(static_cast<size_t>(3 * knots + 4));
  pts.push_back(s[from].p);
  pts.push_back(s[from].out);
  for (int m = 1; m <= knots; ++m) {
    const AIPathSegment& a = s[(from + m) % n];
    pts.push_back(a.in);
    pts.push_back(a.p);
    pts.push_back(a.out);
  }
  pts.push_back(s[to].in);
  pts.push_back(s[to].p);
  sMeshSegmentIterator->SetPoints(side, 0, static_cast<int32_t>(pts.size()), pts.data());
}

// Restores the colour switch when the worker leaves.
struct UseColorScope {
  int saved = CColorOpacity::sm_bUseColor;
  UseColorScope() { CColorOpacity::sm_bUseColor = 1; }
  ~UseColorScope() { CColorOpacity::sm_bUseColor = saved; }
};

// Shapes, paints and selects the new mesh. Host results are not checked
// here: a failure leaves an incomplete mesh, and the path is still
// replaced.
void BuildOneCell(AIArtHandle mesh, AIArtHandle path, const std::vector<AIPathSegment>& s, const int c[4],
                  int alt) {
  try {
    sMesh->InitCartesian(mesh, 1, 1);
    const double opacity = lb::s::sBlendStyle->GetOpacity(path);
    const CColorOpacity paint = PathPaint(path, alt, opacity);
    if (!alt) lb::s::sBlendStyle->SetOpacity(mesh, opacity);
    lb::s::sBlendStyle->SetBlendingMode(mesh, lb::s::sBlendStyle->GetBlendingMode(path));

    // Corners in outline order; at each, the index of the segment that
    // leads on to the next corner, and the segment back to the previous.
    struct Corner {
      int32_t i, j;
      int32_t next, back;
    };
    const Corner corners[4] = {{0, 0, 1, 0}, {0, 1, 1, 0}, {1, 1, 1, 0}, {1, 0, 0, 1}};
    VertexRef nodes[4];
    for (int q = 0; q < 4; ++q) {
      nodes[q] = GetNodeRef(mesh, corners[q].i, corners[q].j);
      const AIPathSegment& a = s[c[q]];
      sMeshVertexIterator->SetPoint(nodes[q], &a.p);
      sMeshVertexIterator->SetTangent(nodes[q], corners[q].back, &a.in);
      sMeshVertexIterator->SetTangent(nodes[q], corners[q].next, &a.out);
    }
    UseColorScope useColor;
    for (int q = 0; q < 4; ++q) {
      paint.Write(nodes[q]);
      ShapeSide(nodes[q], corners[q].next, s, c[q], c[(q + 1) % 4]);
    }
  } catch (int) {
  }
  sArt->SetArtUserAttr(path, kArtSelected, 0);
  sArt->SetArtUserAttr(mesh, kArtSelected, kArtSelected);
}

}  // namespace

namespace lb::construct {

int _MakeMeshFromPath(AIArtHandle path, int alt) {
  try {
    int16_t count = 0;
    ThrowIfErr(sPath->GetPathSegmentCount(path, &count));
    const int n = count;
    if (n < 4) return 1;
    std::vector<AIPathSegment> segs(static_cast<size_t>(n));
    std::vector<int16_t> picked(static_cast<size_t>(n), 0);
    ThrowIfErr(sPath->GetPathSegments(path, 0, count, segs.data()));
    for (int k = 0; k < n; ++k) sPath->GetPathSegmentSelected(path, static_cast<int16_t>(k), &picked[k]);

    ZF_AIPathSegment_0h_to_0p33h(segs.data(), n, 1);
    if (n == 4) {
      // Node (0, 0) takes the second anchor of a four-anchor path.
      std::rotate(segs.begin(), segs.begin() + 1, segs.end());
      std::rotate(picked.begin(), picked.begin() + 1, picked.end());
    }

    std::vector<double> sharp(static_cast<size_t>(n), kNotCandidate);
    int candidates = 0;
    for (int k = 0; k < n; ++k) {
      if (picked[k] != kSegmentPointSelected) continue;
      ++candidates;
      sharp[k] = Sharpness(segs, k);
    }
    if (candidates < 4) return 1;

    int c[4];
    for (int q = 0; q < 4; ++q) {
      int best = 0;
      for (int k = 1; k < n; ++k)
        if (sharp[k] < sharp[best]) best = k;
      c[q] = best;
      sharp[best] = kNotCandidate;
    }
    std::sort(c, c + 4);

    // The mesh goes above the path, or above its compound path.
    AIArtHandle place = path;
    AIArtHandle parent = nullptr;
    int16_t parentType = kUnknownArt;
    if (sArt->GetArtParent(path, &parent) == kNoErr && parent && sArt->GetArtType(parent, &parentType) == kNoErr &&
        parentType == kCompoundPathArt)
      place = parent;
    AIArtHandle mesh = nullptr;
    ThrowIfErr(sArt->NewArt(kMeshArt, kPlaceAbove, place, &mesh));
    BuildOneCell(mesh, path, segs, c, alt);
  } catch (int) {
    return 2;
  }
  return 0;
}

}  // namespace lb::construct

int MakeMeshFromPath(int alt) {
  AIMatchingArtSpec wanted{kPathArt, kArtSelected, kArtSelected};
  AIArtHandle** paths = nullptr;
  int32_t count = 0;
  if (lb::s::sAIMatchingArt->GetMatchingArt(&wanted, 1, &paths, &count) != kNoErr) count = 0;
  int result = 0;
  for (int32_t k = 0; k < count && paths; ++k) {
    AIArtHandle path = (*paths)[k];
    result = lb::construct::_MakeMeshFromPath(path, alt);
    if (result == 0) sArt->DisposeArt(path);
  }
  if (paths) lb::s::sMdMemory->MdMemoryDisposeHandle(reinterpret_cast<AIMdMemoryHandle>(paths));
  return result;
}
