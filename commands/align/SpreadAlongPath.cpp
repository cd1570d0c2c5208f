// "Align segments along path": one row or column of a mesh laid onto a
// path, node by anchor, the mesh segments taking the path's exact curve
// pieces; also the adapter through which a new mesh side is laid onto a
// path when a mesh is sewn with a path.
#include <cmath>
#include <vector>

#include "HostRefs.h"
#include "HandleGeometry.h"
#include "MeshSelection.h"
#include "Operations.h"
#include "align/Align.h"
#include "handles/Handles.h"
#include "select/Select.h"

using lb::s::sArt;
using lb::s::sMath;
using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshSelection;
using lb::s::sMeshVertexIterator;
using lb::s::sPath;

namespace lb::align {
namespace {

constexpr double kPi = 3.141592653589793;

SegmentRef SegmentAlong(AIMeshVertexIterator v, AIMeshAxis axis, AIMeshAxisSense sense) {
  const int32_t k = sMeshVertexIterator->GetSegmentIndex(v, axis, sense);
  if (k < 0) throw static_cast<int>(kBadParameterErr);
  SegmentRef s;
  ThrowIfErr(sMeshVertexIterator->GetSegment(v, k, s.put()));
  return s;
}

VertexRef EndOf(AIMeshSegmentIterator seg) {
  VertexRef v;
  ThrowIfErr(sMeshSegmentIterator->GetEnd(seg, v.put()));
  return v;
}

AIRealPoint PointOf(AIMeshVertexIterator v) {
  AIRealPoint p{};
  ThrowIfErr(sMeshVertexIterator->GetPoint(v, &p));
  return p;
}

// Clears the mesh's vertex selection (the art stays selected once a vertex
// is selected again) and hands out the fresh selection object.
SelectionRef ClearedSelection(AIArtHandle mesh) {
  ThrowIfErr(sArt->SetArtUserAttr(mesh, kArtSelected, 0));
  return GetSelectionRef(mesh);
}

void SelectNode(AIArtHandle mesh, AIMeshSelection sel, int32_t i, int32_t j) {
  VertexRef v = GetNodeRef(mesh, i, j);
  sMeshSelection->SelectVertex(sel, v, true);
}

// Splits the path's pieces so that it has n anchors, n > c: each piece
// into equal parts of its parameter, the extra parts spread over the
// pieces as evenly as whole numbers allow.
void AddAnchors(std::vector<AIPathSegment>& s, int n) {
  const int c = static_cast<int>(s.size());
  std::vector<int> parts(static_cast<size_t>(c - 1), (n - 1) / (c - 1));
  const int r = (n - 1) % (c - 1);
  for (int q = 1; q <= r; ++q) ++parts[static_cast<size_t>(q * (c - 1) / (r + 1))];
  for (int k = c - 2; k >= 0; --k)
    for (int m = parts[static_cast<size_t>(k)] - 1; m >= 1; --m) {
      const AIRealBezier b{s[k].p, s[k].out, s[k + 1].in, s[k + 1].p};
      AIRealBezier b1{}, b2{};
      lb::s::sBezier->Divide(&b, static_cast<double>(m) / static_cast<double>(m + 1), &b1, &b2);
      s[k].out = b1.p1;
      s[k + 1].in = b2.p2;
      const AIPathSegment mid{b1.p3, b1.p2, b2.p1, 0};
      s.insert(s.begin() + k + 1, mid);
    }
}

void WriteAnchors(AIArtHandle path, const std::vector<AIPathSegment>& s) {
  const auto n = static_cast<int16_t>(s.size());
  ThrowIfErr(sPath->SetPathSegmentCount(path, n));
  ThrowIfErr(sPath->SetPathSegments(path, 0, n, s.data()));
}

// Sum of the distances from the node to its handles across the line.
double CrossingLength(AIMeshVertexIterator v, AIMeshAxis across) {
  const AIRealPoint p = PointOf(v);
  double sum = 0;
  for (AIMeshAxisSense sense : {kAIMeshForward, kAIMeshBackward}) {
    const int32_t k = sMeshVertexIterator->GetSegmentIndex(v, across, sense);
    if (k < 0) continue;
    AIRealPoint h{};
    ThrowIfErr(sMeshVertexIterator->GetTangent(v, k, &h));
    sum += sMath->AIRealPointLength(&p, &h);
  }
  return sum;
}

void MirrorCrossing(AIMeshVertexIterator v, AIMeshAxis across) {
  const AIRealPoint p = PointOf(v);
  for (AIMeshAxisSense sense : {kAIMeshForward, kAIMeshBackward}) {
    const int32_t k = sMeshVertexIterator->GetSegmentIndex(v, across, sense);
    if (k < 0) continue;
    AIRealPoint h{};
    ThrowIfErr(sMeshVertexIterator->GetTangent(v, k, &h));
    const AIRealPoint m{p.h + (p.h - h.h), p.v + (p.v - h.v)};
    sMeshVertexIterator->SetTangent(v, k, &m);
  }
}

// The walk's work, host errors thrown.
void Spread(AIArtHandle mesh, AIArtHandle path, long reverse, int finish, int iLow, int iHigh, int jLow, int jHigh,
            int stepI, int stepJ, int fixedI, int fixedJ, int n) {
  int32_t I = 0, J = 0;
  ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
  if (reverse) stepI = -stepI, stepJ = -stepJ;
  const bool row = stepI != 0;
  const AIMeshAxis axis = row ? kAIMeshIAxis : kAIMeshJAxis;
  const AIMeshAxisSense sense = (row ? stepI : stepJ) > 0 ? kAIMeshForward : kAIMeshBackward;
  const int32_t startI = row ? (stepI > 0 ? iLow : iHigh) : fixedI;
  const int32_t startJ = row ? fixedJ : (stepJ > 0 ? jLow : jHigh);

  // The path, with one-third handles on its straight pieces and at least
  // as many anchors as the line has nodes.
  int16_t count = 0;
  ThrowIfErr(sPath->GetPathSegmentCount(path, &count));
  std::vector<AIPathSegment> s(static_cast<size_t>(count));
  if (count < 2) throw static_cast<int>(kBadParameterErr);
  ThrowIfErr(sPath->GetPathSegments(path, 0, count, s.data()));
  ZF_AIPathSegment_0h_to_0p33h(s.data(), count, 0);
  WriteAnchors(path, s);
  if (n > static_cast<int>(s.size())) {
    AddAnchors(s, n);
    WriteAnchors(path, s);
  }
  const int c = static_cast<int>(s.size());

  // Anchor of each node: the single-precision quotient rounded up.
  std::vector<int> idx(static_cast<size_t>(n));
  for (int q = 0; q < n; ++q)
    idx[static_cast<size_t>(q)] =
        static_cast<int>(std::ceil(static_cast<float>((c - 1) * q) / static_cast<float>(n - 1)));

  // Placement: nodes onto their anchors, one plain segment between nodes.
  {
    VertexRef cur = GetNodeRef(mesh, startI, startJ);
    for (int q = 1; q < n; ++q) {
      sMeshVertexIterator->SetPoint(cur, &s[static_cast<size_t>(idx[q - 1])].p);
      SegmentRef seg = SegmentAlong(cur, axis, sense);
      for (;;) {
        VertexRef end = EndOf(seg);
        if (sMeshVertexIterator->IsNode(end)) break;
        int32_t knot = 0;
        ThrowIfErr(sMeshSegmentIterator->Join(seg, &knot));
      }
      const int32_t knots = sMeshSegmentIterator->CountKnots(seg);
      if (knots > 0) ThrowIfErr(sMeshSegmentIterator->DeleteKnots(seg, 0, knots));
      cur = EndOf(seg);
      sMeshVertexIterator->SetPoint(cur, &s[static_cast<size_t>(idx[q])].p);
    }
  }
  // Shaping: each segment takes the path's pieces between its two anchors.
  {
    VertexRef cur = GetNodeRef(mesh, startI, startJ);
    for (int q = 0; q + 1 < n; ++q) {
      const int a0 = idx[q], a1 = idx[q + 1], m = a1 - a0;
      SegmentRef seg = SegmentAlong(cur, axis, sense);
      if (m > 1) ThrowIfErr(sMeshSegmentIterator->InsertKnots(seg, 0, m - 1));
      std::vector<AIRealPoint> pts;
      pts.reserve(static_cast<size_t>(3 * m - 1));
      pts.push_back(s[a0].out);
      for (int a = a0 + 1; a < a1; ++a) {
        pts.push_back(s[a].in);
        pts.push_back(s[a].p);
        pts.push_back(s[a].out);
      }
      pts.push_back(s[a1].in);
      sMeshSegmentIterator->SetPoints(seg, 1, static_cast<int32_t>(pts.size()), pts.data());
      cur = EndOf(seg);
    }
  }

  auto selectLine = [&](AIMeshSelection sel) {
    for (int32_t i = iLow; i <= iHigh; ++i)
      for (int32_t j = jLow; j <= jHigh; ++j) SelectNode(mesh, sel, i, j);
  };
  {
    SelectionRef sel = ClearedSelection(mesh);
    selectLine(sel);
  }

  const AIMeshAxis across = row ? kAIMeshJAxis : kAIMeshIAxis;
  const int32_t first = row ? iLow : jLow, last = row ? iHigh : jHigh;
  auto lineNode = [&](int32_t k) { return row ? GetNodeRef(mesh, k, fixedJ) : GetNodeRef(mesh, fixedI, k); };
  if (finish == 1) {
    lb::handles::_Angle90Deg(mesh, row ? 1 : 0, row ? 0 : 1);
    {
      SelectionRef sel = GetSelectionRef(mesh);
      if (row) {
        if (fixedJ > 0) SelectNode(mesh, sel, iLow, fixedJ - 1);
        if (fixedJ < J) SelectNode(mesh, sel, iLow, fixedJ + 1);
      } else {
        if (fixedI > 0) SelectNode(mesh, sel, fixedI - 1, jLow);
        if (fixedI < I) SelectNode(mesh, sel, fixedI + 1, jLow);
      }
    }
    lb::sel::_Full(mesh, false);
    lb::handles::_Nodes13(mesh, 1, row ? 0 : 1, row ? 1 : 0);

    std::vector<int> flags;
    for (int32_t k = first; k <= last; ++k) flags.push_back(IsAxesAngleNegative(lineNode(k)) ? 1 : 0);
    {
      SelectionRef sel = ClearedSelection(mesh);
      if (row) {
        SelectNode(mesh, sel, iLow, fixedJ);
        SelectNode(mesh, sel, iHigh, fixedJ);
      } else {
        SelectNode(mesh, sel, fixedI, jLow);
        SelectNode(mesh, sel, fixedI, jHigh);
      }
    }
    lb::sel::_Full(mesh, false);

    int ones = 0;
    for (int f : flags) ones += f;
    const int major = ones > static_cast<int>(flags.size()) - ones ? 1 : 0;
    if (n == 2 && flags[0] != flags[1]) {
      // The node with the shorter crossing handles is the one to turn.
      const double l0 = CrossingLength(lineNode(first), across), l1 = CrossingLength(lineNode(last), across);
      const int turn = l1 < l0 ? 1 : 0;
      flags[static_cast<size_t>(turn)] = 1 - major;
      flags[static_cast<size_t>(1 - turn)] = major;
    }
    for (int32_t k = first; k <= last; ++k)
      if (flags[static_cast<size_t>(k - first)] != major) MirrorCrossing(lineNode(k), across);
  }
  for (int32_t k = first; k <= last; ++k) ZF_MeshVertex_CheckSmooth(lineNode(k), row ? 1 : 0, row ? 0 : 1);
}

double Distance(const AIRealPoint& a, const AIRealPoint& b) { return sMath->AIRealPointLength(&a, &b); }

}  // namespace

bool IsAxesAngleNegative(AIMeshVertexIterator vertex) {
  const AIRealPoint p = PointOf(vertex);
  auto axisAngle = [&](AIMeshAxis axis) {
    int32_t k = sMeshVertexIterator->GetSegmentIndex(vertex, axis, kAIMeshForward);
    double extra = 0;
    if (k < 0) {
      k = sMeshVertexIterator->GetSegmentIndex(vertex, axis, kAIMeshBackward);
      extra = kPi;
    }
    if (k < 0) return 0.0;
    AIRealPoint h{};
    ThrowIfErr(sMeshVertexIterator->GetTangent(vertex, k, &h));
    double a = sMath->AIRealPointAngle(&p, &h) + extra;
    if (a > kPi) a -= 2 * kPi;
    return a;
  };
  const double aI = axisAngle(kAIMeshIAxis), aJ = axisAngle(kAIMeshJAxis);
  double d = aJ - aI;
  if (d >= 2 * kPi) d -= 2 * kPi;
  if (d <= -2 * kPi) d += 2 * kPi;
  if (d > kPi) d -= 2 * kPi;
  if (d < -kPi) d += 2 * kPi;
  return d < 0;
}

int _NodesSpreadAlongPath(ArtObject* mesh, ArtObject* path, long reverse, int finish, int iLow, int iHigh, int jLow,
                          int jHigh, int stepI, int stepJ, int fixedI, int fixedJ, int n) {
  try {
    Spread(mesh, path, reverse, finish, iLow, iHigh, jLow, jHigh, stepI, stepJ, fixedI, fixedJ, n);
  } catch (int) {
    return 1;
  }
  return 0;
}

int _NodesSpreadAlongPathForAddRowFromPath(ArtObject* mesh, ArtObject* path, long reverse, int c1, int c2, int e1,
                                           int e2) {
  if ((e1 == 1 && e2 == 1) || (e1 != 1 && e1 == e2)) return 1;
  int32_t I = 0, J = 0;
  if (sMesh->GetSize(mesh, &I, &J) != kNoErr) return 1;
  struct Pair {
    int c1, c2;
    bool row;
    int line;  // 0: the low line, 1: the high line (I or J)
    int step;
  };
  static const Pair pairs[] = {{0, 1, true, 0, 1},  {1, 0, true, 0, -1}, {3, 2, true, 1, 1}, {2, 3, true, 1, -1},
                               {1, 2, false, 1, 1}, {2, 1, false, 1, -1}, {0, 3, false, 0, 1}, {3, 0, false, 0, -1}};
  for (const Pair& p : pairs) {
    if (p.c1 != c1 || p.c2 != c2) continue;
    const int step = e1 == 1 ? -p.step : p.step;
    if (p.row) {
      const int j = p.line ? J : 0;
      return _NodesSpreadAlongPath(mesh, path, reverse, 1, 0, I, j, j, step, 0, 0, j, I + 1);
    }
    const int i = p.line ? I : 0;
    return _NodesSpreadAlongPath(mesh, path, reverse, 1, i, i, 0, J, 0, step, i, 0, J + 1);
  }
  return 1;
}

int NodesSpreadAlongPath(long reverse, long finish, int changeSide) {
  SelectedArt paths(kPathArt);
  SelectedMeshList meshes;
  if (paths.size() != 1 || meshes.size() != 1) return 0;
  AIArtHandle path = paths[0], mesh = meshes[0];
  try {
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    int32_t i0 = 0, i1 = I, j0 = 0, j1 = J;
    {
      SelectionRef sel = GetSelectionRef(mesh);
      if (!sMeshSelection->IsFull(sel)) {
        CMeshRegion reg;
        if (reg.GetMeshReg(mesh) != 0) return 1;
        i0 = reg.m_nMinI, i1 = reg.m_nMaxI, j0 = reg.m_nMinJ, j1 = reg.m_nMaxJ;
      }
    }
    int16_t count = 0;
    ThrowIfErr(sPath->GetPathSegmentCount(path, &count));
    if (count < 2) return 1;
    AIPathSegment ends[2];
    ThrowIfErr(sPath->GetPathSegments(path, 0, 1, &ends[0]));
    ThrowIfErr(sPath->GetPathSegments(path, static_cast<int16_t>(count - 1), 1, &ends[1]));
    auto nodePoint = [&](int32_t i, int32_t j) {
      VertexRef v = GetNodeRef(mesh, i, j);
      return PointOf(v);
    };

    if (i0 < i1 && j0 < j1) {
      // A rectangle of cells: its side nearest to the path.
      const int32_t ci[4] = {i0, i1, i1, i0}, cj[4] = {j0, j0, j1, j1};
      AIRealPoint corner[4];
      for (int k = 0; k < 4; ++k) corner[k] = nodePoint(ci[k], cj[k]);
      int best = 0, matched = 0;
      double bestD = -1;
      for (int k = 0; k < 4; ++k)
        for (int e = 0; e < 2; ++e) {
          const double d = Distance(corner[k], ends[e].p);
          if (bestD < 0 || d < bestD) bestD = d, best = k, matched = e;
        }
      const int prev = (best + 3) % 4, next = (best + 1) % 4;
      const AIRealPoint& other = ends[1 - matched].p;
      const int nb = Distance(corner[next], other) < Distance(corner[prev], other) ? next : prev;
      const int side = nb == next ? best : prev;  // side k joins corners k and k + 1
      switch (side) {
        case 0: j1 = j0; break;
        case 1: i0 = i1; break;
        case 2: j0 = j1; break;
        default: i1 = i0; break;
      }
      SelectionRef sel = ClearedSelection(mesh);
      for (int32_t i = i0; i <= i1; ++i)
        for (int32_t j = j0; j <= j1; ++j) SelectNode(mesh, sel, i, j);
    }

    const bool row = j0 == j1 && i0 < i1;
    const bool column = i0 == i1 && j0 < j1;
    if (!row && !column) return 1;
    const AIRealPoint F = nodePoint(i0, j0), L = nodePoint(i1, j1);
    const AIRealPoint &S = ends[0].p, &E = ends[1].p;
    const int step = Distance(F, S) + Distance(L, E) <= Distance(F, E) + Distance(L, S) ? 1 : -1;
    const int n = row ? i1 - i0 + 1 : j1 - j0 + 1;
    if (_NodesSpreadAlongPath(mesh, path, reverse, static_cast<int>(finish), i0, i1, j0, j1, row ? step : 0,
                              row ? 0 : step, i0, j0, n) != 0)
      return 1;
    if (changeSide) Turn180();
    sArt->DisposeArt(path);
  } catch (int) {
    return 1;
  }
  return 0;
}

}  // namespace lb::align
