// Joining many docked meshes (meshes lying side by side like the cells of a
// grid, their corners meeting) into one mesh, pair by pair: first the
// meshes of each row, then the rows. Also the panel command that chooses
// between this join and the mesh built from docked paths.
#include <array>
#include <vector>

#include "HostRefs.h"
#include "Operations.h"
#include "Suites.h"
#include "color/ColorOpacity.h"
#include "sew/Sew.h"

namespace {

using lb::s::sArt;
using lb::s::sMesh;

// Two corners closer than this count as one point.
constexpr double kDockTolerance = 0.5;

// One point where mesh corners meet.
struct ZS_POINTS4 {
  AIRealPoint point{};
  int32_t count = 0;
  int32_t mesh[4] = {0, 0, 0, 0};
  int32_t corner[4] = {0, 0, 0, 0};
};

class CManyMeshAdd {
 public:
  CManyMeshAdd() = default;
  ~CManyMeshAdd() { Destoy(); }
  CManyMeshAdd(const CManyMeshAdd&) = delete;
  CManyMeshAdd& operator=(const CManyMeshAdd&) = delete;

  int Init(ArtObject** meshes, long count, long mode, ArtObject** result);
  int FillPoints();
  int CheckPoints();
  int CheckCells();
  int Add();
  void DelGroupIfNeed();
  void Destoy() {
    m_Points.clear();
    m_Corners.clear();
    m_Neighbours.clear();
    m_Visited.clear();
    m_Type.clear();
    m_Dirs.clear();
  }

 private:
  int Mx1();
  int MxN();
  void FillNeibors();
  void FillDirs();
  int CountAt(int mesh, int corner) const { return m_Points[static_cast<size_t>(m_Corners[mesh][corner])].count; }
  int MeshType(int mesh) const;
  // Joins `current` (the result so far) with mesh `next`; the previous
  // intermediate result is deleted when `dropCurrent` is set.
  ArtObject* JoinPair(ArtObject* current, ArtObject* next, bool dropCurrent);
  void Finish(ArtObject* result);
  int SideOn(int mesh, int a, int b) const;

  double m_dFirstOpacity = 1.0;
  int32_t m_nFirstBlend = 0;
  int32_t m_bBlendKnown = 0;
  ArtObject** m_pMeshes = nullptr;
  int32_t m_nMeshes = 0;
  int32_t m_nMode = 0;
  ArtObject** m_pResult = nullptr;
  std::vector<ZS_POINTS4> m_Points;
  int32_t m_nStart = -1;
  int32_t m_nSingle = 0, m_nDouble = 0, m_nQuad = 0;
  int32_t m_nCells[6] = {0, 0, 0, 0, 0, 0};
  std::vector<std::array<int32_t, 4>> m_Corners;
  std::vector<std::array<int32_t, 4>> m_Neighbours;
  std::vector<int32_t> m_Visited;
  std::vector<int32_t> m_Type;
  std::vector<std::array<int32_t, 2>> m_Dirs;  // side toward the next row, side along the row
  ArtObject* m_pParentGroup = nullptr;
};

int CManyMeshAdd::Init(ArtObject** meshes, long count, long mode, ArtObject** result) {
  m_pMeshes = meshes;
  m_nMeshes = static_cast<int32_t>(count);
  m_nMode = static_cast<int32_t>(mode);
  m_pResult = result;
  const size_t n = static_cast<size_t>(count);
  m_Corners.assign(n, {-1, -1, -1, -1});
  m_Neighbours.assign(n, {-1, -1, -1, -1});
  m_Dirs.assign(n, {-1, -1});
  m_Visited.assign(n, 0);
  m_Type.assign(n, -1);
  ArtObject* parent = nullptr;
  ThrowIfErr(sArt->GetArtParent(meshes[0], &parent));
  if (parent) {
    ArtObject* grand = nullptr;
    int16_t type = kUnknownArt;
    ThrowIfErr(sArt->GetArtType(parent, &type));
    ThrowIfErr(sArt->GetArtParent(parent, &grand));
    if (type == kGroupArt && grand) m_pParentGroup = parent;
  }
  m_dFirstOpacity = lb::s::sBlendStyle->GetOpacity(meshes[0]);
  m_nFirstBlend = lb::s::sBlendStyle->GetBlendingMode(meshes[0]);
  m_bBlendKnown = 1;
  return 0;
}

int CManyMeshAdd::FillPoints() {
  for (int32_t m = 0; m < m_nMeshes; ++m) {
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(m_pMeshes[m], &I, &J));
    for (int k = 0; k < 4; ++k) {
      VertexRef v = GetNodeRef(m_pMeshes[m], (k == 1 || k == 2) ? I : 0, (k == 2 || k == 3) ? J : 0);
      AIRealPoint p{};
      ThrowIfErr(lb::s::sMeshVertexIterator->GetPoint(v, &p));
      size_t found = m_Points.size();
      for (size_t x = 0; x < m_Points.size(); ++x) {
        if (lb::s::sMath->AIRealPointClose(&m_Points[x].point, &p, kDockTolerance)) {
          found = x;
          break;
        }
      }
      if (found == m_Points.size()) m_Points.push_back(ZS_POINTS4{p, 0, {}, {}});
      ZS_POINTS4& pt = m_Points[found];
      if (pt.count == 4) return 1;
      for (int c = 0; c < pt.count; ++c)
        if (pt.mesh[c] == m) return 1;
      pt.mesh[pt.count] = m;
      pt.corner[pt.count] = k;
      ++pt.count;
      m_Corners[static_cast<size_t>(m)][static_cast<size_t>(k)] = static_cast<int32_t>(found);
    }
  }
  return 0;
}

int CManyMeshAdd::CheckPoints() {
  for (const ZS_POINTS4& pt : m_Points) {
    if (pt.count == 1) ++m_nSingle;
    else if (pt.count == 2) ++m_nDouble;
    else if (pt.count == 4) ++m_nQuad;
    else return 1;
  }
  const int32_t P = static_cast<int32_t>(m_Points.size()), M = m_nMeshes;
  if (m_nSingle != 4 || m_nDouble % 2 != 0) return 1;
  if (P - M != M - m_nQuad + 2 || P - M != m_nDouble / 2 + 3) return 1;
  return 0;
}

int CManyMeshAdd::MeshType(int mesh) const {
  static constexpr int kTypes[6][4] = {{1, 1, 1, 1}, {1, 1, 2, 2}, {1, 2, 4, 2},
                                       {2, 2, 2, 2}, {2, 2, 4, 4}, {4, 4, 4, 4}};
  for (int t = 0; t < 6; ++t)
    for (int start = 0; start < 4; ++start) {
      bool same = true;
      for (int k = 0; k < 4 && same; ++k) same = CountAt(mesh, (start + k) % 4) == kTypes[t][k];
      if (same) return t;
    }
  return -1;
}

int CManyMeshAdd::CheckCells() {
  for (int32_t m = 0; m < m_nMeshes; ++m) {
    const int t = MeshType(m);
    m_Type[static_cast<size_t>(m)] = t;
    if (t <= 0) return 1;
    ++m_nCells[t];
    if (t == 1 || t == 2) m_nStart = m;
  }
  if (m_nCells[1] == 2) return (m_nCells[4] == 0 && m_nCells[5] == 0 && m_nCells[2] != 4) ? 0 : 1;
  if (m_nCells[2] != 4 || m_nCells[1] != 0 || m_nCells[3] != 0) return 1;
  return 0;
}

int CManyMeshAdd::Add() { return m_nCells[1] == 2 ? Mx1() : MxN(); }

// The side of `mesh` whose corner points are a and b (either order), or -1.
int CManyMeshAdd::SideOn(int mesh, int a, int b) const {
  const auto& c = m_Corners[static_cast<size_t>(mesh)];
  for (int k = 0; k < 4; ++k) {
    const int x = c[static_cast<size_t>(k)], y = c[static_cast<size_t>((k + 1) % 4)];
    if ((x == a && y == b) || (x == b && y == a)) return k;
  }
  return -1;
}

ArtObject* CManyMeshAdd::JoinPair(ArtObject* current, ArtObject* next, bool dropCurrent) {
  long c1a = 0, c2a = 0, c1b = 0, c2b = 0, c1c = 0, c2c = 0;
  _Analize2MeshesBeforeAdd(&current, &next, &c1a, &c2a, &c1b, &c2b, &c1c, &c2c);
  ArtObject* joined = nullptr;
  _MeshAdd(&current, &next, c1a, c2a, c1b, c2b, m_nMode, &joined);
  if (dropCurrent) ThrowIfErr(sArt->DisposeArt(current));
  return joined;
}

void CManyMeshAdd::Finish(ArtObject* result) {
  ThrowIfErr(sArt->SetArtUserAttr(result, kArtSelected, kArtSelected));
  if (m_bBlendKnown) {
    ThrowIfErr(lb::s::sBlendStyle->SetOpacity(result, m_dFirstOpacity));
    ThrowIfErr(lb::s::sBlendStyle->SetBlendingMode(result, m_nFirstBlend));
  }
  *m_pResult = result;
}

int CManyMeshAdd::Mx1() {
  int current = m_nStart;
  m_Visited[static_cast<size_t>(current)] = 1;
  int a = -1, b = -1;
  for (int k = 0; k < 4; ++k)
    if (CountAt(current, k) == 2 && CountAt(current, (k + 1) % 4) == 2) {
      a = m_Corners[static_cast<size_t>(current)][static_cast<size_t>(k)];
      b = m_Corners[static_cast<size_t>(current)][static_cast<size_t>((k + 1) % 4)];
    }
  ArtObject* result = m_pMeshes[current];
  bool intermediate = false;
  for (;;) {
    int found = -1, side = -1;
    for (int32_t m = 0; m < m_nMeshes && found < 0; ++m) {
      if (m_Visited[static_cast<size_t>(m)]) continue;
      side = SideOn(m, a, b);
      if (side >= 0) found = m;
    }
    if (found < 0) return 1;
    result = JoinPair(result, m_pMeshes[found], intermediate);
    intermediate = true;
    m_Visited[static_cast<size_t>(found)] = 1;
    const auto& c = m_Corners[static_cast<size_t>(found)];
    a = c[static_cast<size_t>((side + 2) % 4)];
    b = c[static_cast<size_t>((side + 3) % 4)];
    if (CountAt(found, 0) == 1 || CountAt(found, 2) == 1) {
      Finish(result);
      return 0;
    }
  }
}

void CManyMeshAdd::FillNeibors() {
  for (int32_t m = 0; m < m_nMeshes; ++m) {
    for (int k = 0; k < 4; ++k) {
      if (CountAt(m, k) == 1 || CountAt(m, (k + 1) % 4) == 1) continue;
      const int a = m_Corners[static_cast<size_t>(m)][static_cast<size_t>(k)];
      const int b = m_Corners[static_cast<size_t>(m)][static_cast<size_t>((k + 1) % 4)];
      for (int32_t o = 0; o < m_nMeshes; ++o) {
        if (o != m && SideOn(o, a, b) >= 0) {
          m_Neighbours[static_cast<size_t>(m)][static_cast<size_t>(k)] = o;
          break;
        }
      }
    }
  }
}

// Carries the start mesh's two directions across the arrangement: a mesh
// entered through side e continues through side e + 2, and its other
// direction is the side next to e at the corner both meshes share with the
// side of the other direction.
void CManyMeshAdd::FillDirs() {
  int free = 0;
  for (int k = 0; k < 4; ++k)
    if (CountAt(m_nStart, k) == 1) free = k;
  m_Dirs[static_cast<size_t>(m_nStart)] = {(free + 1) % 4, (free + 2) % 4};
  std::vector<int> queue{m_nStart};
  std::vector<int> seen(static_cast<size_t>(m_nMeshes), 0);
  seen[static_cast<size_t>(m_nStart)] = 1;
  for (size_t x = 0; x < queue.size(); ++x) {
    const int m = queue[x];
    for (int d = 0; d < 2; ++d) {
      const int out = m_Dirs[static_cast<size_t>(m)][static_cast<size_t>(d)];
      const int other = m_Dirs[static_cast<size_t>(m)][static_cast<size_t>(1 - d)];
      const int n = m_Neighbours[static_cast<size_t>(m)][static_cast<size_t>(out)];
      if (n < 0 || seen[static_cast<size_t>(n)]) continue;
      const auto& cm = m_Corners[static_cast<size_t>(m)];
      const int e = SideOn(n, cm[static_cast<size_t>(out)], cm[static_cast<size_t>((out + 1) % 4)]);
      // The corner of m shared by sides `out` and `other`.
      const int shared = (out + 1) % 4 == other ? other : out;
      const int point = cm[static_cast<size_t>(shared)];
      const auto& cn = m_Corners[static_cast<size_t>(n)];
      int corner = 0;
      for (int k = 0; k < 4; ++k)
        if (cn[static_cast<size_t>(k)] == point) corner = k;
      // Of the two sides at that corner, the one that is not e.
      const int side = corner == e ? (corner + 3) % 4 : corner;
      std::array<int32_t, 2> dirs{};
      dirs[static_cast<size_t>(d)] = (e + 2) % 4;
      dirs[static_cast<size_t>(1 - d)] = side;
      m_Dirs[static_cast<size_t>(n)] = dirs;
      seen[static_cast<size_t>(n)] = 1;
      queue.push_back(n);
    }
  }
}

int CManyMeshAdd::MxN() {
  FillNeibors();
  FillDirs();
  auto step = [&](int m, int d) {
    const int side = m_Dirs[static_cast<size_t>(m)][static_cast<size_t>(d)];
    return side < 0 ? -1 : m_Neighbours[static_cast<size_t>(m)][static_cast<size_t>(side)];
  };
  std::vector<ArtObject*> rows;
  {
    for (int first = m_nStart; first >= 0; first = step(first, 0)) {
      if (m_Visited[static_cast<size_t>(first)]) return 1;
      m_Visited[static_cast<size_t>(first)] = 1;
      ArtObject* row = m_pMeshes[first];
      bool intermediate = false;
      for (int m = step(first, 1); m >= 0; m = step(m, 1)) {
        if (m_Visited[static_cast<size_t>(m)]) return 1;
        m_Visited[static_cast<size_t>(m)] = 1;
        row = JoinPair(row, m_pMeshes[m], intermediate);
        intermediate = true;
      }
      if (!intermediate) return 1;
      rows.push_back(row);
    }
    for (int32_t m = 0; m < m_nMeshes; ++m)
      if (!m_Visited[static_cast<size_t>(m)]) return 1;
    if (rows.size() < 2) return 1;
    ArtObject* result = rows[0];
    for (size_t r = 1; r < rows.size(); ++r) result = JoinPair(result, rows[r], r > 1);
    Finish(result);
  }
  for (ArtObject* row : rows) ThrowIfErr(sArt->DisposeArt(row));
  return 0;
}

void CManyMeshAdd::DelGroupIfNeed() {
  if (!m_pParentGroup) return;
  ArtObject* child = nullptr;
  ThrowIfErr(sArt->GetArtFirstChild(m_pParentGroup, &child));
  if (!child) return;
  ArtObject* sibling = nullptr;
  ThrowIfErr(sArt->GetArtSibling(child, &sibling));
  if (sibling) return;
  ThrowIfErr(sArt->ReorderArt(child, kPlaceAbove, m_pParentGroup));
  // The group is empty now.
  ThrowIfErr(sArt->DisposeArt(m_pParentGroup));
}

int _ManyMeshAdd(ArtObject** meshes, long count, long mode, ArtObject** result) {
  CManyMeshAdd join;
  int err = join.Init(meshes, count, mode, result);
  if (!err) err = join.FillPoints();
  if (!err) err = join.CheckPoints();
  if (!err) err = join.CheckCells();
  if (!err) err = join.Add();
  if (err) return err;
  for (long m = 0; m < count; ++m) ThrowIfErr(sArt->DisposeArt(meshes[m]));
  join.DelGroupIfNeed();
  return 0;
}

}  // namespace

int JoinDockedMeshes(ArtObject** meshes, long count, long mode) {
  ArtObject* result = nullptr;
  return _ManyMeshAdd(meshes, count, mode, &result);
}
