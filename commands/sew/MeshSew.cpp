// Sewing two meshes into one: the docking analysis that picks the sides,
// the equalisation of their cell counts and knots, the alignment of the
// sides onto their middle line, and the merge into a new mesh (sharing the
// seam line, or with an added row of cells between the sides).
#include <cmath>
#include <vector>

#include "HandleGeometry.h"
#include "HostRefs.h"
#include "MeshPartCopy.h"
#include "MeshSelection.h"
#include "Operations.h"
#include "Suites.h"
#include "color/ColorOpacity.h"
#include "sew/Sew.h"

namespace {

using lb::s::sMesh;

const AIMeshVertexIteratorSuite* Vs() { return lb::s::sMeshVertexIterator; }
const AIMeshSegmentIteratorSuite* Ss() { return lb::s::sMeshSegmentIterator; }

// Raises the switch that lets copies carry colour and opacity together, and
// lowers it again on every way out.
struct UseAllPaint {
  UseAllPaint() { CColorOpacity::sm_bUseAll = 1; }
  ~UseAllPaint() { CColorOpacity::sm_bUseAll = 0; }
};

void CornerIndex(int32_t I, int32_t J, int k, int32_t* i, int32_t* j) {
  *i = (k == 1 || k == 2) ? I : 0;
  *j = (k == 2 || k == 3) ? J : 0;
}

AIRealPoint CornerPoint(ArtObject* mesh, int32_t I, int32_t J, int k) {
  int32_t i = 0, j = 0;
  CornerIndex(I, J, k, &i, &j);
  VertexRef v = GetNodeRef(mesh, i, j);
  AIRealPoint p{};
  ThrowIfErr(Vs()->GetPoint(v, &p));
  return p;
}

}  // namespace

void CandidateFlags(ArtObject* mesh, int* S, int* C) {
  bool all = true;
  SelectionRef sel = GetSelectionRef(mesh);
  const auto* ms = lb::s::sMeshSelection;
  if (!ms->IsEmpty(sel) && !ms->IsFull(sel)) {
    for (int k = 0; k < 4; ++k) S[k] = C[k] = 0;
    if (ZF_GetSelSidesAndNodes(mesh, S, C) != 0) throw static_cast<int>(kCantHappenErr);
    bool anySide = false;
    for (int k = 0; k < 4; ++k) anySide = anySide || S[k];
    if (anySide) {
      bool anyCorner = false;
      for (int k = 0; k < 4; ++k) {
        if (C[k] && !S[(k + 3) % 4] && !S[k]) C[k] = 0;
        anyCorner = anyCorner || C[k];
      }
      if (!anyCorner)
        for (int k = 0; k < 4; ++k)
          if (S[k]) C[k] = C[(k + 1) % 4] = 1;
    }
    for (int k = 0; k < 4; ++k) all = all && !S[k] && !C[k];
  }
  if (all)
    for (int k = 0; k < 4; ++k) S[k] = C[k] = 1;
}

namespace {

// The flagged pair (k, m) with the smallest distance; a later pair wins
// only when strictly nearer.
void NearestPair(const double D[4][4], const int* C1, const int* C2, long* k1, long* k2) {
  bool found = false;
  double best = 0.0;
  for (int k = 0; k < 4; ++k) {
    if (!C1[k]) continue;
    for (int m = 0; m < 4; ++m) {
      if (!C2[m]) continue;
      if (!found || D[k][m] < best) {
        found = true;
        best = D[k][m];
        *k1 = k;
        *k2 = m;
      }
    }
  }
  if (!found) throw static_cast<int>(kCantHappenErr);
}

// Keeps only neighbours of corner k as candidates, preferring those whose
// joining side is flagged.
void NarrowToNeighbours(int k, int* S, int* C) {
  const int prev = (k + 3) % 4, next = (k + 1) % 4;
  C[k] = 0;
  C[(k + 2) % 4] = 0;
  S[(k + 1) % 4] = 0;
  S[(k + 2) % 4] = 0;
  if (S[prev] || S[k]) {
    if (!S[prev]) C[prev] = 0;
    if (!S[k]) C[next] = 0;
    if (!C[prev] && !C[next]) {
      if (S[prev]) C[prev] = 1;
      if (S[k]) C[next] = 1;
    }
  } else if (!C[prev] && !C[next]) {
    C[prev] = C[next] = 1;
  }
}

// Side and walk direction named by an ordered pair of neighbouring corners
// (direction 0: from the side's lower grid index to its higher one).
bool SideOfPair(long from, long to, int* side, int* dir) {
  struct Entry {
    int from, to, side, dir;
  };
  static constexpr Entry kPairs[8] = {{0, 1, 0, 0}, {0, 3, 3, 0}, {1, 0, 0, 1}, {1, 2, 1, 0},
                                      {2, 1, 1, 1}, {2, 3, 2, 1}, {3, 0, 3, 1}, {3, 2, 2, 0}};
  for (const Entry& e : kPairs) {
    if (e.from == from && e.to == to) {
      *side = e.side;
      *dir = e.dir;
      return true;
    }
  }
  return false;
}

int SideAxis(int side) {
  if (side < 0 || side > 3) throw static_cast<int>(kBadParameterErr);
  return side % 2 == 0 ? kAIMeshIAxis : kAIMeshJAxis;
}

// Node where the walk along a side from its lower-index end starts, and
// where a walk backward from its higher-index end starts.
void SideLowEnd(int side, int32_t I, int32_t J, int32_t* i, int32_t* j) {
  *i = side == 1 ? I : 0;
  *j = side == 2 ? J : 0;
}
void SideHighEnd(int side, int32_t I, int32_t J, int32_t* i, int32_t* j) {
  *i = side == 3 ? 0 : I;
  *j = side == 0 ? 0 : J;
}

SegmentRef SegmentFrom(AIMeshVertexIterator v, int axis, int sense) {
  const int32_t index = Vs()->GetSegmentIndex(v, axis, sense);
  if (index < 0) throw static_cast<int>(kBadParameterErr);
  SegmentRef s;
  ThrowIfErr(Vs()->GetSegment(v, index, s.put()));
  return s;
}

// Joins the segment with its followers until it ends at a node.
void JoinToNode(AIMeshSegmentIterator segment) {
  for (;;) {
    VertexRef end;
    ThrowIfErr(Ss()->GetEnd(segment, end.put()));
    if (Vs()->IsNode(end)) return;
    int32_t knot = 0;
    ThrowIfErr(Ss()->Join(segment, &knot));
  }
}

// Subdivides the pieces of a node-to-node segment until it has `knots`
// knots, spreading the new knots over its pieces.
void AddKnots(AIMeshSegmentIterator segment, int knots) {
  const int have = Ss()->CountKnots(segment);
  const int pieces = have + 1;
  std::vector<int> cnt(static_cast<size_t>(pieces));
  SplitCounts(pieces, knots + 1, cnt.data());
  std::vector<AIRealPoint> pts;
  for (int piece = pieces - 1; piece >= 0; --piece) {
    while (cnt[static_cast<size_t>(piece)] > 1) {
      const int c = cnt[static_cast<size_t>(piece)];
      const int32_t count = Ss()->CountPoints(segment);
      pts.resize(static_cast<size_t>(count));
      ThrowIfErr(Ss()->GetPoints(segment, 0, count, pts.data()));
      const AIRealPoint* p = &pts[static_cast<size_t>(3 * piece)];
      const AIRealBezier whole{p[0], p[1], p[2], p[3]};
      AIRealBezier left{}, right{};
      lb::s::sBezier->Divide(&whole, static_cast<double>(c - 1) / c, &left, &right);
      ThrowIfErr(Ss()->InsertKnots(segment, piece, 1));
      const AIRealPoint fresh[5] = {left.p1, left.p2, left.p3, right.p1, right.p2};
      ThrowIfErr(Ss()->SetPoints(segment, 3 * piece + 1, 5, fresh));
      --cnt[static_cast<size_t>(piece)];
    }
  }
}

// Walks of the two sewn sides in step: mesh 1 from its lower-index end,
// mesh 2 the same way or backward from its higher-index end.
struct SideWalk {
  VertexRef v1, v2;
  int axis1, axis2, sense2;
};

SideWalk StartWalk(ArtObject* m1, ArtObject* m2, int s1, int s2, bool sameDir) {
  int32_t I1 = 0, J1 = 0, I2 = 0, J2 = 0, i = 0, j = 0;
  ThrowIfErr(sMesh->GetSize(m1, &I1, &J1));
  ThrowIfErr(sMesh->GetSize(m2, &I2, &J2));
  SideWalk w;
  SideLowEnd(s1, I1, J1, &i, &j);
  w.v1 = GetNodeRef(m1, i, j);
  w.axis1 = SideAxis(s1);
  w.axis2 = SideAxis(s2);
  if (sameDir) {
    SideLowEnd(s2, I2, J2, &i, &j);
    w.sense2 = kAIMeshForward;
  } else {
    SideHighEnd(s2, I2, J2, &i, &j);
    w.sense2 = kAIMeshBackward;
  }
  w.v2 = GetNodeRef(m2, i, j);
  return w;
}

void StepWalk(SideWalk& w, AIMeshSegmentIterator seg1, AIMeshSegmentIterator seg2) {
  ThrowIfErr(Ss()->GetEnd(seg1, w.v1.put()));
  ThrowIfErr(Ss()->GetEnd(seg2, w.v2.put()));
}

void EqualizeKnots(ArtObject* m1, ArtObject* m2, int s1, int s2, bool sameDir, int n) {
  SideWalk w = StartWalk(m1, m2, s1, s2, sameDir);
  for (int cell = 0; cell < n; ++cell) {
    SegmentRef a = SegmentFrom(w.v1, w.axis1, kAIMeshForward);
    SegmentRef b = SegmentFrom(w.v2, w.axis2, w.sense2);
    JoinToNode(a);
    JoinToNode(b);
    const int ka = Ss()->CountKnots(a), kb = Ss()->CountKnots(b);
    if (ka < kb) AddKnots(a, kb);
    if (kb < ka) AddKnots(b, ka);
    StepWalk(w, a, b);
  }
}

void AlignSides(ArtObject* m1, ArtObject* m2, int s1, int s2, bool sameDir, int n) {
  SideWalk w = StartWalk(m1, m2, s1, s2, sameDir);
  Align2NodesPosTanAndColors(w.v1, w.v2, w.axis1 == kAIMeshJAxis, w.axis2 == kAIMeshJAxis);
  std::vector<AIRealPoint> pa, pb;
  for (int cell = 0; cell < n; ++cell) {
    SegmentRef a = SegmentFrom(w.v1, w.axis1, kAIMeshForward);
    SegmentRef b = SegmentFrom(w.v2, w.axis2, w.sense2);
    StepWalk(w, a, b);
    Align2NodesPosTanAndColors(w.v1, w.v2, w.axis1 == kAIMeshJAxis, w.axis2 == kAIMeshJAxis);
    const int32_t count = Ss()->CountPoints(a);
    if (count != Ss()->CountPoints(b)) throw static_cast<int>(kCantHappenErr);
    pa.resize(static_cast<size_t>(count));
    pb.resize(static_cast<size_t>(count));
    ThrowIfErr(Ss()->GetPoints(a, 0, count, pa.data()));
    ThrowIfErr(Ss()->GetPoints(b, 0, count, pb.data()));
    for (int32_t k = 1; k + 1 < count; ++k) {
      const size_t x = static_cast<size_t>(k);
      pa[x] = AIRealPoint{(pa[x].h + pb[x].h) * 0.5, (pa[x].v + pb[x].v) * 0.5};
    }
    if (count > 2) {
      ThrowIfErr(Ss()->SetPoints(a, 1, count - 2, &pa[1]));
      ThrowIfErr(Ss()->SetPoints(b, 1, count - 2, &pa[1]));
    }
  }
}

// Where mesh 2 goes in the new mesh: its start node as a sum of the terms
// I1, J1, I2, J2 and A (1 in add-row mode), its axes and senses.
enum Term { kI1 = 1, kJ1 = 2, kI2 = 4, kJ2 = 8, kA = 16 };
struct Placement {
  int startI, startJ, axisA, axisB, senseA, senseB;
};
// Indexed by [s1][s2][0 same direction, 1 opposite].
constexpr Placement kMesh2Placement[4][4][2] = {
    {{{0, kJ2, 0, 1, 0, 1}, {kI1, kJ2, 0, 1, 1, 1}},
     {{0, 0, 1, 0, 0, 0}, {kI1, 0, 1, 0, 0, 1}},
     {{0, 0, 0, 1, 0, 0}, {kI1, 0, 0, 1, 1, 0}},
     {{0, kI2, 1, 0, 1, 0}, {kI1, kI2, 1, 0, 1, 1}}},
    {{{kI1 | kA, 0, 1, 0, 0, 0}, {kI1 | kA, kJ1, 1, 0, 1, 0}},
     {{kI1 | kI2 | kA, 0, 0, 1, 1, 0}, {kI1 | kI2 | kA, kJ1, 0, 1, 1, 1}},
     {{kI1 | kJ2 | kA, 0, 1, 0, 0, 1}, {kI1 | kJ2 | kA, kJ1, 1, 0, 1, 1}},
     {{kI1 | kA, 0, 0, 1, 0, 0}, {kI1 | kA, kJ1, 0, 1, 0, 1}}},
    {{{0, kJ1 | kA, 0, 1, 0, 0}, {kI1, kJ1 | kA, 0, 1, 1, 0}},
     {{0, kJ1 | kI2 | kA, 1, 0, 1, 0}, {kI1, kJ1 | kI2 | kA, 1, 0, 1, 1}},
     {{0, kJ1 | kJ2 | kA, 0, 1, 0, 1}, {kI1, kJ1 | kJ2 | kA, 0, 1, 1, 1}},
     {{0, kJ1 | kA, 1, 0, 0, 0}, {kI1, kJ1 | kA, 1, 0, 0, 1}}},
    {{{kJ2, 0, 1, 0, 0, 1}, {kJ2, kJ1, 1, 0, 1, 1}},
     {{0, 0, 0, 1, 0, 0}, {0, kJ1, 0, 1, 0, 1}},
     {{0, 0, 1, 0, 0, 0}, {0, kJ1, 1, 0, 1, 0}},
     {{kI2, 0, 0, 1, 1, 0}, {kI2, kJ1, 0, 1, 1, 1}}},
};

int SumTerms(int mask, int I1, int J1, int I2, int J2, int A) {
  return ((mask & kI1) ? I1 : 0) + ((mask & kJ1) ? J1 : 0) + ((mask & kI2) ? I2 : 0) + ((mask & kJ2) ? J2 : 0) +
         ((mask & kA) ? A : 0);
}

// Gives each crossing segment of the added row handles a third of the node
// distance long that continue the lines of both meshes.
void ShapeAddedRow(ArtObject* mesh, int seamAxis, int seamLine) {
  int32_t I = 0, J = 0;
  ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
  const int across = seamAxis == kAIMeshIAxis ? kAIMeshJAxis : kAIMeshIAxis;  // axis across the seam
  const int last = across == kAIMeshIAxis ? J : I;
  const auto* m = lb::s::sMath;
  for (int k = 0; k <= last; ++k) {
    VertexRef a = across == kAIMeshIAxis ? GetNodeRef(mesh, seamLine, k) : GetNodeRef(mesh, k, seamLine);
    SegmentRef crossing = SegmentFrom(a, across, kAIMeshForward);
    VertexRef b;
    ThrowIfErr(Ss()->GetEnd(crossing, b.put()));
    AIRealPoint pA{}, pB{}, oA{}, oB{};
    ThrowIfErr(Vs()->GetPoint(a, &pA));
    ThrowIfErr(Vs()->GetPoint(b, &pB));
    const int32_t aBack = Vs()->GetSegmentIndex(a, across, kAIMeshBackward);
    const int32_t bFwd = Vs()->GetSegmentIndex(b, across, kAIMeshForward);
    if (aBack < 0 || bFwd < 0) throw static_cast<int>(kBadParameterErr);
    ThrowIfErr(Vs()->GetTangent(a, aBack, &oA));
    ThrowIfErr(Vs()->GetTangent(b, bFwd, &oB));
    const double d = m->AIRealPointLength(&pA, &pB) / 3.0;
    AIRealPoint offA{}, offB{}, hA{}, hB{};
    m->AIRealPointLengthAngle(d, m->AIRealPointAngle(&oA, &pA), &offA);
    m->AIRealPointLengthAngle(d, m->AIRealPointAngle(&oB, &pB), &offB);
    m->AIRealPointAdd(&pA, &offA, &hA);
    m->AIRealPointAdd(&pB, &offB, &hB);
    ThrowIfErr(Vs()->SetTangent(a, Vs()->GetSegmentIndex(a, across, kAIMeshForward), &hA));
    ThrowIfErr(Vs()->SetTangent(b, Vs()->GetSegmentIndex(b, across, kAIMeshBackward), &hB));
  }
}

void ReadLineOpacities(ArtObject* mesh, int axis, int line, int last, std::vector<double>& out) {
  out.assign(static_cast<size_t>(last) + 1, 1.0);
  for (int x = 0; x <= last; ++x) {
    VertexRef v = axis == kAIMeshIAxis ? GetNodeRef(mesh, line, x) : GetNodeRef(mesh, x, line);
    AIReal o = 1.0;
    Vs()->GetOpacity(v, &o);
    out[static_cast<size_t>(x)] = o;
  }
}

}  // namespace

void SplitCounts(int small, int big, int* counts) {
  const int q = big / small, r = big % small;
  for (int k = 0; k < small; ++k) counts[k] = q;
  for (int t = 1; t <= r; ++t) ++counts[(t * small) / (r + 1)];
}

int EqualizeSewSides(ArtObject** mesh1, ArtObject** mesh2, int side1, int side2) {
  const int axis1 = SideAxis(side1), axis2 = SideAxis(side2);
  int32_t I1 = 0, J1 = 0, I2 = 0, J2 = 0;
  ThrowIfErr(sMesh->GetSize(*mesh1, &I1, &J1));
  ThrowIfErr(sMesh->GetSize(*mesh2, &I2, &J2));
  const int n1 = axis1 == kAIMeshIAxis ? I1 : J1;
  const int n2 = axis2 == kAIMeshIAxis ? I2 : J2;
  if (n1 == n2) return 0;
  ArtObject* mesh = n1 < n2 ? *mesh1 : *mesh2;
  const int axis = n1 < n2 ? axis1 : axis2;
  const int small = n1 < n2 ? n1 : n2, big = n1 < n2 ? n2 : n1;
  // Nodes across the changed axis on each of its lines.
  const int across = n1 < n2 ? (axis1 == kAIMeshIAxis ? J1 : I1) : (axis2 == kAIMeshIAxis ? J2 : I2);
  std::vector<int> cnt(static_cast<size_t>(small));
  SplitCounts(small, big, cnt.data());
  std::vector<double> A, B;
  for (int k = small - 1; k >= 0; --k) {
    ReadLineOpacities(mesh, axis, k, across, A);
    ReadLineOpacities(mesh, axis, k + 1, across, B);
    while (cnt[static_cast<size_t>(k)] > 1) {
      const int r = cnt[static_cast<size_t>(k)];
      const double t = static_cast<double>(r - 1) / r;
      int32_t index = 0;
      ThrowIfErr(axis == kAIMeshIAxis ? sMesh->InsertU(mesh, k + t, &index) : sMesh->InsertV(mesh, k + t, &index));
      for (int x = 0; x <= across; ++x) {
        VertexRef v = axis == kAIMeshIAxis ? GetNodeRef(mesh, k + 1, x) : GetNodeRef(mesh, x, k + 1);
        const size_t s = static_cast<size_t>(x);
        Vs()->SetOpacity(v, A[s] + (B[s] - A[s]) * t);
      }
      --cnt[static_cast<size_t>(k)];
    }
  }
  return 0;
}

int Align2NodesPosTanAndColors(_AIMeshVertexIterator* v1, _AIMeshVertexIterator* v2, int alongJ1, int alongJ2) {
  AIRealPoint p1{}, p2{};
  ThrowIfErr(Vs()->GetPoint(v1, &p1));
  ThrowIfErr(Vs()->GetPoint(v2, &p2));
  const AIRealPoint m{(p1.h + p2.h) * 0.5, (p1.v + p2.v) * 0.5};
  auto moveAcross = [&](AIMeshVertexIterator v, int alongJ, const AIRealPoint& own) {
    const int across = alongJ ? kAIMeshIAxis : kAIMeshJAxis;
    for (int sense = 0; sense < 2; ++sense) {
      const int32_t index = Vs()->GetSegmentIndex(v, across, sense);
      if (index < 0) continue;
      AIRealPoint h{};
      ThrowIfErr(Vs()->GetTangent(v, index, &h));
      h.h += m.h - own.h;
      h.v += m.v - own.v;
      ThrowIfErr(Vs()->SetTangent(v, index, &h));
    }
  };
  moveAcross(v1, alongJ1, p1);
  moveAcross(v2, alongJ2, p2);
  ThrowIfErr(Vs()->SetPoint(v1, &m));
  ThrowIfErr(Vs()->SetPoint(v2, &m));

  AIColor c1{}, c2{};
  AIReal o1 = 1.0, o2 = 1.0;
  Vs()->GetColor(v1, &c1);
  Vs()->GetColor(v2, &c2);
  Vs()->GetOpacity(v1, &o1);
  Vs()->GetOpacity(v2, &o2);
  // A gray node takes the other node's kind first; other kind pairs are
  // averaged component by component in the first node's kind.
  auto fromGray = [](AIColor& gray, AIColorTag kind) {
    const AIReal g = gray.c.g.gray;
    gray.kind = kind;  // other kinds: only the tag changes
    if (kind == kThreeColor) gray.c.rgb = {g, g, g};
    if (kind == kFourColor) gray.c.f = {0, 0, 0, g};
  };
  if (c1.kind != c2.kind) {
    if (c1.kind == kGrayColor)
      fromGray(c1, c2.kind);
    else if (c2.kind == kGrayColor)
      fromGray(c2, c1.kind);
  }
  AIColor avg = c1;
  switch (c1.kind) {
    case kGrayColor:
      avg.c.g.gray = (c1.c.g.gray + c2.c.g.gray) * 0.5;
      break;
    case kThreeColor:
      avg.c.rgb = {(c1.c.rgb.red + c2.c.rgb.red) * 0.5, (c1.c.rgb.green + c2.c.rgb.green) * 0.5,
                   (c1.c.rgb.blue + c2.c.rgb.blue) * 0.5};
      break;
    case kFourColor:
      avg.c.f = {(c1.c.f.cyan + c2.c.f.cyan) * 0.5, (c1.c.f.magenta + c2.c.f.magenta) * 0.5,
                 (c1.c.f.yellow + c2.c.f.yellow) * 0.5, (c1.c.f.black + c2.c.f.black) * 0.5};
      break;
    default:
      break;
  }
  const AIReal o = (o1 + o2) * 0.5;
  Vs()->SetColor(v1, &avg);
  Vs()->SetColor(v2, &avg);
  Vs()->SetOpacity(v1, o);
  Vs()->SetOpacity(v2, o);
  return 0;
}

int _Analize2MeshesBeforeAdd(ArtObject** mesh1, ArtObject** mesh2, long* c1a, long* c2a, long* c1b, long* c2b,
                             long* c1c, long* c2c) {
  int32_t I1 = 0, J1 = 0, I2 = 0, J2 = 0;
  ThrowIfErr(sMesh->GetSize(*mesh1, &I1, &J1));
  ThrowIfErr(sMesh->GetSize(*mesh2, &I2, &J2));
  AIRealPoint a[4], b[4];
  for (int k = 0; k < 4; ++k) {
    a[k] = CornerPoint(*mesh1, I1, J1, k);
    b[k] = CornerPoint(*mesh2, I2, J2, k);
  }
  double D[4][4];
  for (int k = 0; k < 4; ++k)
    for (int m = 0; m < 4; ++m) D[k][m] = lb::s::sMath->AIRealPointLength(&a[k], &b[m]);
  int S1[4], C1[4], S2[4], C2[4];
  CandidateFlags(*mesh1, S1, C1);
  CandidateFlags(*mesh2, S2, C2);
  NearestPair(D, C1, C2, c1a, c2a);
  NarrowToNeighbours(static_cast<int>(*c1a), S1, C1);
  NarrowToNeighbours(static_cast<int>(*c2a), S2, C2);
  NearestPair(D, C1, C2, c1b, c2b);
  *c1c = (*c1a + 1) % 4 == *c1b ? (*c1a + 3) % 4 : (*c1a + 1) % 4;
  *c2c = (*c2a + 1) % 4 == *c2b ? (*c2a + 3) % 4 : (*c2a + 1) % 4;
  return 0;
}

int _MeshAdd(ArtObject** mesh1, ArtObject** mesh2, long p, long q, long p1, long q1, long addRow,
             ArtObject** result) {
  int s1 = 0, d1 = 0, s2 = 0, d2 = 0;
  if (!SideOfPair(p, p1, &s1, &d1) || !SideOfPair(q, q1, &s2, &d2)) throw 0;
  UseAllPaint paint;
  EqualizeSewSides(mesh1, mesh2, s1, s2);
  int32_t I1 = 0, J1 = 0, I2 = 0, J2 = 0;
  ThrowIfErr(sMesh->GetSize(*mesh1, &I1, &J1));
  ThrowIfErr(sMesh->GetSize(*mesh2, &I2, &J2));
  const int n = s1 % 2 == 0 ? I1 : J1;
  const bool sameDir = d1 == d2;
  const int A = addRow ? 1 : 0;
  if (!addRow) {
    EqualizeKnots(*mesh1, *mesh2, s1, s2, sameDir, n);
    AlignSides(*mesh1, *mesh2, s1, s2, sameDir, n);
  }
  const int depth2 = s2 % 2 == 0 ? J2 : I2;
  const int newI = s1 % 2 == 0 ? I1 : I1 + depth2 + A;
  const int newJ = s1 % 2 == 0 ? J1 + depth2 + A : J1;

  ArtObject* mesh = nullptr;
  ThrowIfErr(lb::s::sArt->NewArt(kMeshArt, kPlaceAbove, *mesh1, &mesh));
  *result = mesh;
  ThrowIfErr(sMesh->InitCartesian(mesh, newI, newJ));

  ZS_RestoreMeshData src1{0, 0, 0, 1, 0, 0, I1, J1};
  ZS_RestoreMeshData dst1{s1 == 3 ? newI - I1 : 0, s1 == 0 ? newJ - J1 : 0, 0, 1, 0, 0, I1, J1};
  RestoreMeshPart(*mesh1, mesh, &src1, &dst1);

  const Placement& pl = kMesh2Placement[s1][s2][sameDir ? 0 : 1];
  const bool crossAxes = s1 % 2 != s2 % 2;
  ZS_RestoreMeshData src2{0, 0, 0, 1, 0, 0, I2, J2};
  ZS_RestoreMeshData dst2{SumTerms(pl.startI, I1, J1, I2, J2, A),
                          SumTerms(pl.startJ, I1, J1, I2, J2, A),
                          pl.axisA,
                          pl.axisB,
                          pl.senseA,
                          pl.senseB,
                          crossAxes ? J2 : I2,
                          crossAxes ? I2 : J2};
  RestoreMeshPart(*mesh2, mesh, &src2, &dst2);

  // The seam: the shared line, or the lower-index line bounding the added row.
  const int seamAxis = s1 % 2 == 0 ? kAIMeshIAxis : kAIMeshJAxis;  // the seam runs along this axis
  const int seam = s1 == 0 ? depth2 : s1 == 2 ? J1 : s1 == 1 ? I1 : depth2;
  if (!addRow) {
    const int last = seamAxis == kAIMeshIAxis ? newI : newJ;
    for (int x = 0; x <= last; ++x) {
      VertexRef v = seamAxis == kAIMeshIAxis ? GetNodeRef(mesh, x, seam) : GetNodeRef(mesh, seam, x);
      ZF_MeshVertex_CheckSmooth(v, 1, 1);
    }
  } else {
    ShapeAddedRow(mesh, seamAxis, seam);
  }
  ThrowIfErr(lb::s::sBlendStyle->SetOpacity(mesh, lb::s::sBlendStyle->GetOpacity(*mesh1)));
  ThrowIfErr(lb::s::sBlendStyle->SetBlendingMode(mesh, lb::s::sBlendStyle->GetBlendingMode(*mesh1)));
  return 0;
}

int MeshAddTwo(int reverse, int secondPair, int addRow) {
  UseAllPaint paint;
  try {
    SelectedMeshList meshes;
    if (meshes.size() < 2) return 1;
    ArtObject* m1 = meshes[0];
    ArtObject* m2 = meshes[1];
    long c1a = 0, c2a = 0, c1b = 0, c2b = 0, c1c = 0, c2c = 0;
    _Analize2MeshesBeforeAdd(&m1, &m2, &c1a, &c2a, &c1b, &c2b, &c1c, &c2c);
    const long p1 = secondPair ? c1c : c1b;
    const long q1 = secondPair ? c2c : c2b;
    const long q = reverse ? q1 : c2a;
    const long qEnd = reverse ? c2a : q1;
    ArtObject* mesh = nullptr;
    if (_MeshAdd(&m1, &m2, c1a, q, p1, qEnd, addRow, &mesh) != 0) return 1;
    ThrowIfErr(lb::s::sArt->SetArtUserAttr(m1, kArtSelected, 0));
    ThrowIfErr(lb::s::sArt->SetArtUserAttr(m2, kArtSelected, 0));
    ThrowIfErr(lb::s::sArt->SetArtUserAttr(mesh, kArtSelected, kArtSelected));
    ThrowIfErr(lb::s::sArt->DisposeArt(m1));
    ThrowIfErr(lb::s::sArt->DisposeArt(m2));
  } catch (int) {
    return 1;
  }
  return 0;
}
