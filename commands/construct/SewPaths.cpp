// Sewing two paths into a one-cell mesh whose opposite sides are the two
// paths, and the diagnostic report of how the ends of the selected paths
// meet.
#include <cstdio>
#include <string>
#include <vector>

#include "HandleGeometry.h"
#include "HostRefs.h"
#include "Operations.h"
#include "color/ColorOpacity.h"
#include "construct/Construct.h"
#include "handles/Handles.h"

using lb::s::sArt;
using lb::s::sMath;
using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshSelection;
using lb::s::sMeshVertexIterator;
using lb::s::sPath;

namespace {

// Light gray of a path with neither stroke nor fill (single-precision 0.8).
constexpr double kPathGray = 0.800000011920929;

std::vector<AIPathSegment> ReadAnchors(AIArtHandle path) {
  int16_t count = 0;
  ThrowIfErr(sPath->GetPathSegmentCount(path, &count));
  std::vector<AIPathSegment> segs(static_cast<size_t>(count));
  if (count > 0) ThrowIfErr(sPath->GetPathSegments(path, 0, count, segs.data()));
  return segs;
}

bool AnchorSelected(AIArtHandle path, int16_t k) {
  int16_t state = kSegmentNotSelected;
  sPath->GetPathSegmentSelected(path, k, &state);
  return state == kSegmentPointSelected;
}

// Shapes the mesh segment leaving `node` along I in `sense` by the path's
// anchors in stored order: the path's first anchor lands on `node`.
void ShapeFromPath(AIArtHandle mesh, int32_t i, int32_t j, AIMeshAxisSense sense,
                   const std::vector<AIPathSegment>& s) {
  VertexRef node = GetNodeRef(mesh, i, j);
  SegmentRef seg;
  ThrowIfErr(sMeshVertexIterator->GetSegment(node, sMeshVertexIterator->GetSegmentIndex(node, kAIMeshIAxis, sense),
                                             seg.put()));
  const int n = static_cast<int>(s.size());
  if (n > 2) sMeshSegmentIterator->InsertKnots(seg, 0, n - 2);
  std::vector<AIRealPoint> pts;
  pts.reserve(static_cast<size_t>(3 * n - 2));
  for (int k = 0; k < n; ++k) {
    if (k > 0) pts.push_back(s[k].in);
    pts.push_back(s[k].p);
    if (k < n - 1) pts.push_back(s[k].out);
  }
  sMeshSegmentIterator->SetPoints(seg, 0, static_cast<int32_t>(pts.size()), pts.data());
}

// Straightens side i of the one-cell mesh: one-third handles along J at
// both of its nodes.
void StraightSide(AIArtHandle mesh, int32_t i) {
  VertexRef a = GetNodeRef(mesh, i, 0), b = GetNodeRef(mesh, i, 1);
  AIRealPoint pa{}, pb{}, ha{}, hb{};
  ThrowIfErr(sMeshVertexIterator->GetPoint(a, &pa));
  ThrowIfErr(sMeshVertexIterator->GetPoint(b, &pb));
  sMath->AIRealPointInterpolate(&pb, &pa, kLbOneThird, &ha);
  sMath->AIRealPointInterpolate(&pa, &pb, kLbOneThird, &hb);
  sMeshVertexIterator->SetTangent(a, sMeshVertexIterator->GetSegmentIndex(a, kAIMeshJAxis, kAIMeshForward), &ha);
  sMeshVertexIterator->SetTangent(b, sMeshVertexIterator->GetSegmentIndex(b, kAIMeshJAxis, kAIMeshBackward), &hb);
}

void SelectNode(AIArtHandle mesh, AIMeshSelection sel, int32_t i, int32_t j, bool on) {
  VertexRef v = GetNodeRef(mesh, i, j);
  sMeshSelection->SelectVertex(sel, v, on);
}

}  // namespace

AIColor PathPaintColor(AIArtHandle path) {
  AIPathStyle style{};
  AIBoolean advanced = 0;
  if (lb::s::sPathStyle->GetPathStyle(path, &style, &advanced) == kNoErr) {
    if (style.strokePaint) return style.stroke.color;
    if (style.fillPaint) return style.fill.color;
  }
  AIColor gray{};
  gray.kind = kThreeColor;
  gray.c.rgb = {kPathGray, kPathGray, kPathGray};
  return gray;
}

int PairPathEnds(AIArtHandle path1, AIArtHandle path2, int* end1, int* end2) {
  AIPathSegment ends[2][2];
  bool usable[2][2];
  const AIArtHandle paths[2] = {path1, path2};
  for (int p = 0; p < 2; ++p) {
    int16_t count = 0;
    ThrowIfErr(sPath->GetPathSegmentCount(paths[p], &count));
    if (count < 2) return 1;
    ThrowIfErr(sPath->GetPathSegments(paths[p], 0, 1, &ends[p][0]));
    ThrowIfErr(sPath->GetPathSegments(paths[p], static_cast<int16_t>(count - 1), 1, &ends[p][1]));
    const bool first = AnchorSelected(paths[p], 0), last = AnchorSelected(paths[p], static_cast<int16_t>(count - 1));
    // Exactly one selected end is the one to use; otherwise either.
    usable[p][0] = first || !last;
    usable[p][1] = last || !first;
  }
  double best = -1;
  for (int a = 0; a < 2; ++a)
    for (int b = 0; b < 2; ++b) {
      if (!usable[0][a] || !usable[1][b]) continue;
      const double d = sMath->AIRealPointLength(&ends[0][a].p, &ends[1][b].p);
      if (best < 0 || d < best) {
        best = d;
        *end1 = a;
        *end2 = b;
      }
    }
  return 0;
}

void ColorizeFromTwoPathes(AIArtHandle mesh, AIArtHandle path1, AIArtHandle path2) {
  const AIArtHandle paths[2] = {path1, path2};
  for (int32_t j = 0; j < 2; ++j) {
    CColorOpacity paint;
    paint.m_Color = PathPaintColor(paths[j]);
    paint.m_dOpacity = lb::s::sBlendStyle->GetOpacity(paths[j]);
    for (int32_t i = 0; i < 2; ++i) {
      VertexRef v = GetNodeRef(mesh, i, j);
      paint.Write(v);
    }
  }
}

int Sew2Pathes(long reverse) {
  SelectedArt paths(kPathArt);
  if (paths.size() < 2) return 0;
  const AIArtHandle p1 = paths[0], p2 = paths[1];
  try {
    int e1 = 0, e2 = 0;
    if (PairPathEnds(p1, p2, &e1, &e2) != 0) return 0;
    if (reverse) e2 = 1 - e2;
    std::vector<AIPathSegment> s1 = ReadAnchors(p1), s2 = ReadAnchors(p2);
    ZF_AIPathSegment_0h_to_0p33h(s1.data(), static_cast<int>(s1.size()), 0);
    ZF_AIPathSegment_0h_to_0p33h(s2.data(), static_cast<int>(s2.size()), 0);

    AIArtHandle place = p1, parent = nullptr;
    int16_t parentType = kUnknownArt;
    if (sArt->GetArtParent(p1, &parent) == kNoErr && parent && sArt->GetArtType(parent, &parentType) == kNoErr &&
        parentType == kCompoundPathArt)
      place = parent;
    AIArtHandle mesh = nullptr;
    ThrowIfErr(sArt->NewArt(kMeshArt, kPlaceAbove, place, &mesh));
    ThrowIfErr(sMesh->InitCartesian(mesh, 1, 1));

    // The paired end of each path sits at i = 0.
    ShapeFromPath(mesh, e1 ? 1 : 0, 0, e1 ? kAIMeshBackward : kAIMeshForward, s1);
    ShapeFromPath(mesh, e2 ? 1 : 0, 1, e2 ? kAIMeshBackward : kAIMeshForward, s2);
    StraightSide(mesh, 0);
    StraightSide(mesh, 1);

    // Selecting the art selects all four corners of the one cell.
    sArt->SetArtUserAttr(mesh, kArtSelected, kArtSelected);
    {
      SelectionRef sel = GetSelectionRef(mesh);
      for (int32_t k = 0; k < 4; ++k) SelectNode(mesh, sel, k == 1 || k == 2, k >= 2, true);
    }
    lb::handles::_Angle90Deg(mesh, 1, 0);
    {
      SelectionRef sel = GetSelectionRef(mesh);
      SelectNode(mesh, sel, 0, 0, false);
      SelectNode(mesh, sel, 1, 0, false);
    }
    ColorizeFromTwoPathes(mesh, p1, p2);
    sArt->DisposeArt(p1);
    sArt->DisposeArt(p2);
  } catch (int) {
  }
  return 0;
}

// ---- Report of shared path ends --------------------------------------------

struct CCommonPoint {
  struct SPathAndDir {
    AIArtHandle m_hPath;
    int m_nNumber;  // 2 x the path's index in the selection, + 1 for its last anchor
  };
  AIRealPoint m_Point{};
  std::vector<SPathAndDir> m_Entries;
};

int SearchPoint(AIRealPoint& point, std::vector<CCommonPoint>& points) {
  for (size_t k = 0; k < points.size(); ++k)
    if (sMath->AIRealPointClose(&points[k].m_Point, &point, 0.0001)) return static_cast<int>(k);
  return -1;
}

int SewPathesNew() {
  SelectedArt paths(kPathArt);
  std::vector<CCommonPoint> points;
  try {
    for (int32_t k = 0; k < paths.size(); ++k) {
      int16_t count = 0;
      ThrowIfErr(sPath->GetPathSegmentCount(paths[k], &count));
      if (count < 1) continue;
      AIPathSegment ends[2];
      ThrowIfErr(sPath->GetPathSegments(paths[k], 0, 1, &ends[0]));
      ThrowIfErr(sPath->GetPathSegments(paths[k], static_cast<int16_t>(count - 1), 1, &ends[1]));
      for (int e = 0; e < 2; ++e) {
        const CCommonPoint::SPathAndDir entry{paths[k], 2 * k + e};
        const int at = SearchPoint(ends[e].p, points);
        if (at >= 0) {
          points[static_cast<size_t>(at)].m_Entries.push_back(entry);
        } else {
          CCommonPoint cp;
          cp.m_Point = ends[e].p;
          cp.m_Entries.push_back(entry);
          points.push_back(std::move(cp));
        }
      }
    }
  } catch (int) {
    return 0;
  }
  std::string text;
  char line[128];
  for (size_t k = 0; k < points.size(); ++k) {
    std::snprintf(line, sizeof line, "%u [%f, %f] - %u\n", static_cast<unsigned>(k), points[k].m_Point.h,
                  points[k].m_Point.v, static_cast<unsigned>(points[k].m_Entries.size()));
    text += line;
    for (const auto& e : points[k].m_Entries) {
      std::snprintf(line, sizeof line, "%i ", e.m_nNumber);
      text += line;
    }
    text += "\n";
  }
  lb::debug::Alert(text.c_str());
  return 0;
}
