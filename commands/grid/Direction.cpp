// Grid direction and UV reset: rebuild each selected mesh with its grid
// turned a quarter, mirrored along one axis, or with its grid lines'
// relative (UV) positions redistributed, keeping shape, colours and
// handles.
//
// The host cannot move a grid line's relative position in place, so every
// command builds a new mesh directly above the old one with the wanted
// line positions, copies every node and run into it through a window,
// hands it the old mesh's opacity and blending mode, disposes of the old
// mesh and selects the new one.
#include <vector>

#include "HostRefs.h"
#include "MeshPartCopy.h"
#include "MeshSelection.h"
#include "Operations.h"
#include "Suites.h"

namespace lb::uv {
int CalcLinePositions(ArtObject* mesh, int axis, std::vector<double>& positions);
}

namespace lb::dir {
int _MeshDirectionFlip(ArtObject* mesh, AIMeshAxis axis);
int _MeshDirectionRotate(ArtObject* mesh, int clockwise);
}  // namespace lb::dir

namespace {

using lb::s::sMesh;

// 1e-5 as single precision, widened: the least share a cell keeps.
constexpr double kMinShare = 9.999999747378752e-06;

// Interior line positions of the old mesh: u(1)..u(I-1) or v(1)..v(J-1),
// indexed by line, with u(0) = 0 and u(n) = 1 at the ends.
std::vector<double> ReadLinePositions(ArtObject* mesh, int axis, int cells) {
  std::vector<double> t(static_cast<size_t>(cells) + 1, 0.0);
  t[static_cast<size_t>(cells)] = 1.0;
  for (int k = 1; k < cells; ++k) {
    AIReal value = 0;
    ThrowIfErr(axis == kAIMeshIAxis ? sMesh->GetRelativeU(mesh, k, &value) : sMesh->GetRelativeV(mesh, k, &value));
    t[static_cast<size_t>(k)] = value;
  }
  return t;
}

// The same positions seen from the other end: entry k is 1 - t(n - k).
std::vector<double> Mirrored(const std::vector<double>& t) {
  std::vector<double> m(t.size());
  const size_t n = t.size() - 1;
  for (size_t k = 0; k <= n; ++k) m[k] = 1.0 - t[n - k];
  m[0] = 0.0;
  m[n] = 1.0;
  return m;
}

// Adds the interior lines t(1)..t(n-1) to a mesh whose grid spans one cell
// along the axis. Each new line splits the last cell, which always spans
// t(k-1) to 1, so the split fraction is relative to that cell.
void InsertLines(ArtObject* mesh, int axis, const std::vector<double>& t) {
  for (size_t k = 1; k + 1 < t.size(); ++k) {
    const double at = static_cast<double>(k - 1) + (t[k] - t[k - 1]) / (1.0 - t[k - 1]);
    int32_t index = 0;
    ThrowIfErr(axis == kAIMeshIAxis ? sMesh->InsertU(mesh, at, &index) : sMesh->InsertV(mesh, at, &index));
  }
}

ArtObject* NewMeshAbove(ArtObject* old) {
  ArtObject* mesh = nullptr;
  ThrowIfErr(lb::s::sArt->NewArt(kMeshArt, kPlaceAbove, old, &mesh));
  return mesh;
}

// Copies the old mesh into the new one through the window, hands over
// opacity and blending mode, disposes of the old mesh and selects the new
// one as a whole.
void FinishRebuild(ArtObject* old, ArtObject* mesh, ZS_RestoreMeshData dstWindow) {
  int32_t cellsI = 0, cellsJ = 0;
  ThrowIfErr(sMesh->GetSize(old, &cellsI, &cellsJ));
  ZS_RestoreMeshData srcWindow{0, 0, 0, 1, 0, 0, cellsI, cellsJ};
  if (RestoreMeshPart(old, mesh, &srcWindow, &dstWindow) != 0) throw static_cast<int>(kCantHappenErr);
  ThrowIfErr(lb::s::sBlendStyle->SetOpacity(mesh, lb::s::sBlendStyle->GetOpacity(old)));
  ThrowIfErr(lb::s::sBlendStyle->SetBlendingMode(mesh, lb::s::sBlendStyle->GetBlendingMode(old)));
  ThrowIfErr(lb::s::sArt->DisposeArt(old));
  ThrowIfErr(lb::s::sArt->SetArtUserAttr(mesh, kArtSelected, 0));
  ThrowIfErr(lb::s::sArt->SetArtUserAttr(mesh, kArtSelected, kArtSelected));
}

// Length of the curve of line `line` between its nodes `cell` and
// `cell + 1` along the axis, through every segment and knot piece.
double CellLength(ArtObject* mesh, int axis, int line, int cell) {
  const auto* vs = lb::s::sMeshVertexIterator;
  const auto* ss = lb::s::sMeshSegmentIterator;
  VertexRef vertex = axis == kAIMeshIAxis ? GetNodeRef(mesh, cell, line) : GetNodeRef(mesh, line, cell);
  static std::vector<AIRealPoint> points;  // reused: called once per cell of every line (one thread)
  double length = 0.0;
  for (;;) {
    const int32_t index = vs->GetSegmentIndex(vertex, axis, kAIMeshForward);
    if (index < 0) throw static_cast<int>(kBadParameterErr);
    SegmentRef segment;
    ThrowIfErr(vs->GetSegment(vertex, index, segment.put()));
    const int32_t knots = ss->CountKnots(segment);
    const int32_t count = 3 * knots + 4;
    points.resize(static_cast<size_t>(count));
    ThrowIfErr(ss->GetPoints(segment, 0, count, points.data()));
    for (int32_t q = 0; q <= knots; ++q) {
      const AIRealPoint* p = &points[static_cast<size_t>(3 * q)];
      const AIRealBezier piece{p[0], p[1], p[2], p[3]};
      length += lb::s::sBezier->Length(&piece, 1.0);
    }
    ThrowIfErr(ss->GetEnd(segment, vertex.put()));
    if (vs->IsNode(vertex)) return length;
  }
}

}  // namespace

namespace lb::uv {

// Relative positions for the lines across `axis` that make every cell's
// share of the axis the average, over all lines that cross it, of its
// share of its line's length. Entry k is the position of line k; there is
// one entry per cell (the last line, at 1, is left out).
int CalcLinePositions(ArtObject* mesh, int axis, std::vector<double>& positions) {
  int32_t cellsI = 0, cellsJ = 0;
  ThrowIfErr(sMesh->GetSize(mesh, &cellsI, &cellsJ));
  const int n = axis == kAIMeshIAxis ? cellsI : cellsJ;
  const int m = axis == kAIMeshIAxis ? cellsJ : cellsI;

  std::vector<double> share(static_cast<size_t>(n), 0.0);
  std::vector<double> lengths(static_cast<size_t>(n));
  for (int line = 0; line <= m; ++line) {
    double sum = 0.0;
    for (int k = 0; k < n; ++k) sum += lengths[static_cast<size_t>(k)] = CellLength(mesh, axis, line, k);
    if (sum < kMinShare) sum = kMinShare;
    for (int k = 0; k < n; ++k) share[static_cast<size_t>(k)] += lengths[static_cast<size_t>(k)] / sum;
  }
  double total = 0.0;
  for (double& a : share) {
    a /= static_cast<double>(m + 1);
    if (a < kMinShare) a = kMinShare;
    total += a;
  }
  positions.assign(static_cast<size_t>(n), 0.0);
  for (int k = 1; k < n; ++k)
    positions[static_cast<size_t>(k)] = positions[static_cast<size_t>(k - 1)] + share[static_cast<size_t>(k - 1)] / total;
  return 0;
}

int ResetLinear() {
  return ForEachMesh([](AIArtHandle old) {
    try {
      int32_t cellsI = 0, cellsJ = 0;
      ThrowIfErr(sMesh->GetSize(old, &cellsI, &cellsJ));
      ArtObject* mesh = NewMeshAbove(old);
      ThrowIfErr(sMesh->InitCartesian(mesh, cellsI, cellsJ));
      FinishRebuild(old, mesh, {0, 0, 0, 1, 0, 0, cellsI, cellsJ});
    } catch (int) {
      // This mesh stays as far as it got; go on with the next one.
    }
  });
}

int ResetRelative() {
  return ForEachMesh([](AIArtHandle old) {
    try {
      int32_t cellsI = 0, cellsJ = 0;
      ThrowIfErr(sMesh->GetSize(old, &cellsI, &cellsJ));
      ArtObject* mesh = NewMeshAbove(old);
      ThrowIfErr(sMesh->InitCartesian(mesh, 1, 1));
      std::vector<double> alongI, alongJ;
      CalcLinePositions(old, kAIMeshIAxis, alongI);
      CalcLinePositions(old, kAIMeshJAxis, alongJ);
      alongI.push_back(1.0);
      alongJ.push_back(1.0);
      InsertLines(mesh, kAIMeshIAxis, alongI);
      InsertLines(mesh, kAIMeshJAxis, alongJ);
      FinishRebuild(old, mesh, {0, 0, 0, 1, 0, 0, cellsI, cellsJ});
    } catch (int) {
    }
  });
}

}  // namespace lb::uv

namespace lb::dir {

int _MeshDirectionFlip(ArtObject* old, AIMeshAxis axis) {
  try {
    int32_t cellsI = 0, cellsJ = 0;
    ThrowIfErr(sMesh->GetSize(old, &cellsI, &cellsJ));
    ArtObject* mesh = NewMeshAbove(old);
    std::vector<double> u = ReadLinePositions(old, kAIMeshIAxis, cellsI);
    std::vector<double> v = ReadLinePositions(old, kAIMeshJAxis, cellsJ);
    ThrowIfErr(sMesh->InitCartesian(mesh, 1, 1));
    if (axis == kAIMeshIAxis) {
      InsertLines(mesh, kAIMeshIAxis, Mirrored(u));
      InsertLines(mesh, kAIMeshJAxis, v);
      // New node (I - i, j) receives old node (i, j).
      FinishRebuild(old, mesh, {cellsI, 0, 0, 1, 1, 0, cellsI, cellsJ});
    } else {
      InsertLines(mesh, kAIMeshIAxis, u);
      InsertLines(mesh, kAIMeshJAxis, Mirrored(v));
      // New node (i, J - j) receives old node (i, j).
      FinishRebuild(old, mesh, {0, cellsJ, 0, 1, 0, 1, cellsI, cellsJ});
    }
  } catch (int) {
    return 1;
  }
  return 0;
}

int _MeshDirectionRotate(ArtObject* old, int clockwise) {
  try {
    int32_t cellsI = 0, cellsJ = 0;
    ThrowIfErr(sMesh->GetSize(old, &cellsI, &cellsJ));
    ArtObject* mesh = NewMeshAbove(old);
    std::vector<double> u = ReadLinePositions(old, kAIMeshIAxis, cellsI);
    std::vector<double> v = ReadLinePositions(old, kAIMeshJAxis, cellsJ);
    ThrowIfErr(sMesh->InitCartesian(mesh, 1, 1));
    // The new mesh has J x I cells: its lines of constant j come from the
    // old lines of constant i, and the other way round.
    if (clockwise) {
      InsertLines(mesh, kAIMeshJAxis, u);
      InsertLines(mesh, kAIMeshIAxis, Mirrored(v));
      // New node (J - j, i) receives old node (i, j).
      FinishRebuild(old, mesh, {cellsJ, 0, 1, 0, 0, 1, cellsJ, cellsI});
    } else {
      InsertLines(mesh, kAIMeshJAxis, Mirrored(u));
      InsertLines(mesh, kAIMeshIAxis, v);
      // New node (j, I - i) receives old node (i, j).
      FinishRebuild(old, mesh, {0, cellsI, 1, 0, 1, 0, cellsJ, cellsI});
    }
  } catch (int) {
    return 1;
  }
  return 0;
}

int Flip(AIMeshAxis axis) {
  return ForEachMesh([&](AIArtHandle mesh) { _MeshDirectionFlip(mesh, axis); });
}

int Rotate(int clockwise) {
  return ForEachMesh([&](AIArtHandle mesh) { _MeshDirectionRotate(mesh, clockwise); });
}

}  // namespace lb::dir
