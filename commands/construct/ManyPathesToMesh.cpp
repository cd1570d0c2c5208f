// The builder of one mesh from a set of docked paths: the graph of path
// ends, its recognition as a grid (rings walked from the outside in, then
// the strip or line left in the middle), and the mesh made from it.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "HandleGeometry.h"
#include "HostRefs.h"
#include "construct/Construct.h"

using lb::s::sArt;
using lb::s::sMath;
using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sPath;

namespace {

// Two path ends closer than this (in each coordinate) dock.
constexpr double kDockTolerance = 0.5;
constexpr double kGray = 0.800000011920929;
constexpr int kAxisI = 1;
constexpr int kAxisJ = 2;

// Docking points are found through a hash of 0.5-unit cells: two points
// that dock lie in the same or neighbouring cells, so each lookup checks
// nine cells instead of every node made so far.
struct CellKey {
  int64_t h, v;
  bool operator==(const CellKey&) const = default;
};
struct CellHash {
  size_t operator()(const CellKey& k) const {
    return std::hash<int64_t>()(k.h * 0x9E3779B97F4A7C15ull) ^ std::hash<int64_t>()(k.v + 0x632BE59BD9B4E019ll);
  }
};
CellKey CellOf(const AIRealPoint& p) {
  return {static_cast<int64_t>(std::floor(p.h / kDockTolerance)), static_cast<int64_t>(std::floor(p.v / kDockTolerance))};
}

void ReadSegments(AIArtHandle path, std::vector<AIPathSegment>& segs) {
  int16_t count = 0;
  ThrowIfErr(sPath->GetPathSegmentCount(path, &count));
  segs.resize(static_cast<size_t>(count));
  if (count > 0) ThrowIfErr(sPath->GetPathSegments(path, 0, count, segs.data()));
}

}  // namespace

CManyPathesToMesh::~CManyPathesToMesh() { Destoy(); }

void CManyPathesToMesh::Destoy() {
  for (CPAPath* p : m_Paths) delete p;
  for (CPANode* n : m_Nodes) delete n;
  m_Paths.clear();
  m_Nodes.clear();
}

int CManyPathesToMesh::Init(AIArtHandle* paths, long count, AIArtHandle* result) {
  Destoy();
  m_nPathCount = static_cast<int32_t>(count);
  m_pResult = result;
  m_nUsed = m_nPathCount;
  m_nCorners = m_nBorders = m_nInners = m_nCornerToCorner = m_nCells = 0;
  m_Paths.reserve(static_cast<size_t>(count));
  for (long k = 0; k < count; ++k) {
    auto* p = new CPAPath;
    p->m_hArt = paths[k];
    m_Paths.push_back(p);
  }
  return 0;
}

int CManyPathesToMesh::Go() {
  if (int r = FillPoints()) return r;
  if (int r = FindUnusedPathesAndNodes()) return r;
  if (int r = DeleteUnused()) return r;
  if (int r = Check()) return r;
  if (int r = FillSegsDirs()) return r;
  if (int r = Check2()) return r;
  if (int r = CreateMesh()) return r;
  DeletePathes();
  DelGroups();
  ZF_MeshNodes_CheckSmooth(m_hMesh);
  return 0;
}

// ---- The graph -------------------------------------------------------------

int CManyPathesToMesh::FillPoints() {
  std::unordered_map<CellKey, std::vector<CPANode*>, CellHash> cells;
  cells.reserve(m_Paths.size() * 2);
  std::vector<AIPathSegment> segs;
  auto nodeAt = [&](const AIRealPoint& p) {
    // The earliest node within tolerance, as a search in creation order
    // would find it.
    CPANode* best = nullptr;
    const CellKey c = CellOf(p);
    for (int64_t dh = -1; dh <= 1; ++dh)
      for (int64_t dv = -1; dv <= 1; ++dv) {
        auto it = cells.find({c.h + dh, c.v + dv});
        if (it == cells.end()) continue;
        for (CPANode* n : it->second) {
          if (best && best->m_nOrder <= n->m_nOrder) continue;
          if (sMath->AIRealPointClose(&n->m_Point, &p, kDockTolerance)) best = n;
        }
      }
    if (best) return best;
    auto* n = new CPANode;
    n->m_Point = p;
    n->m_nOrder = static_cast<int32_t>(m_Nodes.size());
    m_Nodes.push_back(n);
    cells[c].push_back(n);
    return n;
  };
  for (CPAPath* path : m_Paths) {
    ReadSegments(path->m_hArt, segs);
    if (segs.empty()) {
      // No anchor to dock: the path cannot be an edge.
      path->m_bUsed = 0;
      continue;
    }
    path->m_pStart = nodeAt(segs.front().p);
    path->m_pStart->m_Paths.push_back(path);
    path->m_pEnd = nodeAt(segs.back().p);
    path->m_pEnd->m_Paths.push_back(path);
  }
  return 0;
}

int CManyPathesToMesh::FindUnusedPathesAndNodes() {
  // Decided on the graph as built: a path whose removal leaves another
  // path dangling is not looked at again.
  std::vector<CPAPath*> unused;
  for (CPAPath* p : m_Paths) {
    if (!p->m_bUsed) continue;
    if (p->m_pStart == p->m_pEnd || p->m_pStart->m_Paths.size() == 1 || p->m_pEnd->m_Paths.size() == 1)
      unused.push_back(p);
  }
  for (CPAPath* p : unused) {
    for (CPANode* n : {p->m_pStart, p->m_pEnd}) {
      auto& list = n->m_Paths;
      std::erase(list, p);
      if (list.empty()) n->m_bAlive = false;
    }
    p->m_pStart = p->m_pEnd = nullptr;
    p->m_bUsed = 0;
  }
  std::erase_if(m_Nodes, [](CPANode* n) {
    if (n->m_bAlive) return false;
    delete n;
    return true;
  });
  m_nUsed = 0;
  for (CPAPath* p : m_Paths) m_nUsed += p->m_bUsed;
  return 0;
}

// Paths are deleted from the bottom of the paint order up (the list runs
// top down): the host then removes each from the end of its container's
// list instead of moving every art below it.
int CManyPathesToMesh::DeleteUnused() {
  for (auto it = m_Paths.rbegin(); it != m_Paths.rend(); ++it)
    if (!(*it)->m_bUsed) sArt->DisposeArt((*it)->m_hArt);
  std::erase_if(m_Paths, [](CPAPath* p) {
    if (p->m_bUsed) return false;
    delete p;
    return true;
  });
  return 0;
}

int CManyPathesToMesh::Check() {
  m_nCorners = m_nBorders = m_nInners = m_nCornerToCorner = 0;
  for (CPANode* n : m_Nodes) {
    switch (n->m_Paths.size()) {
      case 2: ++m_nCorners; break;
      case 3: ++m_nBorders; break;
      case 4: ++m_nInners; break;
      default: return 1;
    }
  }
  if (m_nCorners != 4) return 2;
  if (m_nBorders % 2 != 0) return 3;
  const int32_t s = m_nInners + m_nUsed - 1;
  if (s % 3 != 0) return 5;
  m_nCells = s / 3;
  if (m_nCells != m_nUsed - static_cast<int32_t>(m_Nodes.size()) + 1) return 6;
  for (CPAPath* p : m_Paths) {
    const size_t a = p->m_pStart->m_Paths.size(), b = p->m_pEnd->m_Paths.size();
    if ((a == 2 && b == 4) || (a == 4 && b == 2)) return 7;
    if (a == 2 && b == 2) ++m_nCornerToCorner;
  }
  if (m_nCornerToCorner != 0 && m_nCornerToCorner != 2 && m_nCornerToCorner != 4) return 8;
  if (m_nCornerToCorner == 0) return 0;
  if (m_nInners != 0) return 9;
  if (m_nCornerToCorner == 4 && m_nBorders != 0) return 10;
  if (m_nCells != m_nBorders / 2 + 1) return 11;
  return 0;
}

// ---- Directions ------------------------------------------------------------

int32_t CManyPathesToMesh::Free(CPANode* node) {
  if (node->m_nEpoch != m_nEpoch) {
    node->m_nEpoch = m_nEpoch;
    node->m_nFree = node->m_nLiveFree;
  }
  return node->m_nFree;
}

void CManyPathesToMesh::Assign(CPAPath* path, int axis, CPANode* from, bool positive) {
  Free(path->m_pStart);
  Free(path->m_pEnd);
  path->m_nAxis = axis;
  const bool alongPath = path->m_pStart == from;
  path->m_nSense = alongPath == positive ? 0 : 1;
  --path->m_pStart->m_nLiveFree;
  --path->m_pEnd->m_nLiveFree;
}

CPAPath* CManyPathesToMesh::LeadsOn(CPANode* node, int axis) {
  for (CPAPath* p : node->m_Paths)
    if (p->m_nAxis == axis && ((p->m_pStart == node && p->m_nSense == 0) || (p->m_pEnd == node && p->m_nSense == 1)))
      return p;
  return nullptr;
}

bool CManyPathesToMesh::Arrives(CPANode* node, int axis) {
  for (CPAPath* p : node->m_Paths)
    if (p->m_nAxis == axis && ((p->m_pEnd == node && p->m_nSense == 0) || (p->m_pStart == node && p->m_nSense == 1)))
      return true;
  return false;
}

int CManyPathesToMesh::FillSegsDirs() {
  for (CPANode* n : m_Nodes) n->m_nLiveFree = static_cast<int32_t>(n->m_Paths.size());
  m_pFirstCorner = nullptr;
  for (CPANode* n : m_Nodes)
    if (n->m_Paths.size() == 2) {
      m_pFirstCorner = n;
      break;
    }
  if (!m_pFirstCorner) return 1;

  if (m_nCornerToCorner != 0) {
    m_nJ = 1;
    m_nI = m_nCells;
    return Fill_1xN(m_pFirstCorner, 0, m_nCells);
  }

  if (int r = FillPerimeter(m_pFirstCorner, true)) return r;
  if (m_nI * m_nJ != m_nCells) return 10;
  CPANode* ring = m_pFirstCorner;
  const int32_t m = std::min(m_nI, m_nJ);
  auto inward = [&](CPANode* from, int codeI, int codeJ, CPANode** to) {
    CPAPath* p = LeadsOn(from, kAxisI);
    if (!p) return codeI;
    CPANode* n = Other(p, from);
    p = LeadsOn(n, kAxisJ);
    if (!p) return codeJ;
    *to = Other(p, n);
    return 0;
  };
  for (int32_t k = 0; k < (m - 2) / 2; ++k) {
    if (int r = inward(ring, 20, 21, &ring)) return r;
    if (int r = FillPerimeter(ring, false)) return r;
  }

  if (m_nI == m_nJ && m_nI % 2 == 0) return 0;
  CPANode* core = nullptr;
  if (m_nI == m_nJ) {
    if (int r = inward(ring, 50, 51, &core)) return r;
    return Fill_1xN(core, 0, 1);
  }
  const bool longI = m_nI > m_nJ;
  const int32_t shortSide = longI ? m_nJ : m_nI, longSide = longI ? m_nI : m_nJ;
  if (shortSide % 2 == 1) {
    if (int r = inward(ring, 50, 51, &core)) return r;
    return Fill_1xN(core, longI ? 0 : 2, longSide - shortSide + 1);
  }
  if (int r = inward(ring, 40, 41, &core)) return r;
  return Fill_0xN(core, longI ? kAxisI : kAxisJ, longSide - shortSide);
}

int CManyPathesToMesh::FillPerimeter(CPANode* corner, bool outer) {
  ++m_nEpoch;
  // Walking direction and the axis of each side, and of the paths that
  // lead further inside from its nodes.
  static constexpr int kSideAxis[4] = {kAxisI, kAxisJ, kAxisI, kAxisJ};
  static constexpr bool kSidePositive[4] = {true, true, false, false};
  static constexpr bool kInwardPositive[4] = {true, false, false, true};
  int32_t counts[4] = {0, 0, 0, 0};
  CPANode* cur = corner;
  for (int side = 0; side < 4; ++side) {
    const int axis = kSideAxis[side];
    const int inAxis = axis == kAxisI ? kAxisJ : kAxisI;
    for (;;) {
      CPAPath* next = nullptr;
      for (CPAPath* p : cur->m_Paths) {
        if (p->m_nAxis != 0 || Free(Other(p, cur)) > 3) continue;
        if (!next) next = p;
        // At an inner ring's start corner both free paths stay on the ring;
        // side 0 is the one whose far node an outer ring's J path already
        // arrives at, so the ring keeps the outer rings' I and J.
        if (side == 0 && counts[0] == 0 && !outer && Arrives(Other(p, cur), kAxisJ)) {
          next = p;
          break;
        }
      }
      if (!next) return side + 2;
      Assign(next, axis, cur, kSidePositive[side]);
      cur = Other(next, cur);
      ++counts[side];
      if (Free(cur) == 2) break;
      for (CPAPath* p : cur->m_Paths)
        if (p->m_nAxis == 0 && Free(Other(p, cur)) == 4) {
          Assign(p, inAxis, cur, kInwardPositive[side]);
          break;
        }
    }
  }
  if (counts[0] != counts[2]) return 10;
  if (counts[1] != counts[3]) return 11;
  if (outer) {
    m_nI = counts[0];
    m_nJ = counts[1];
  }
  return 0;
}

int CManyPathesToMesh::Fill_0xN(CPANode* node, int axis, int n) {
  for (int step = 0; step < n; ++step) {
    if (step > 0 && node->m_nLiveFree != 1) return 1;
    CPAPath* p = nullptr;
    for (CPAPath* q : node->m_Paths)
      if (q->m_nAxis == 0) {
        p = q;
        break;
      }
    if (!p) return 1;
    Assign(p, axis, node, true);
    node = Other(p, node);
  }
  return 0;
}

int CManyPathesToMesh::Fill_1xN(CPANode* corner, int kind, int n) {
  const int longAxis = kind == 2 ? kAxisJ : kAxisI;
  const int crossAxis = longAxis == kAxisI ? kAxisJ : kAxisI;
  if (corner->m_nLiveFree != 2) return 1;
  // The end rung: a free path to a node that also has two free paths. In a
  // core left by the rings, it is the one to the node that a ring's path
  // along the long axis arrives at, which keeps the rings' I and J.
  CPAPath* rung = nullptr;
  for (CPAPath* p : corner->m_Paths) {
    if (p->m_nAxis != 0 || Other(p, corner)->m_nLiveFree != 2) continue;
    if (!rung) rung = p;
    if (Arrives(Other(p, corner), longAxis)) {
      rung = p;
      break;
    }
  }
  if (!rung) return 2;
  Assign(rung, crossAxis, corner, true);
  CPANode* a = corner;
  CPANode* b = Other(rung, corner);
  auto freePath = [](CPANode* node) -> CPAPath* {
    for (CPAPath* p : node->m_Paths)
      if (p->m_nAxis == 0) return p;
    return nullptr;
  };
  for (int k = 0; k < n; ++k) {
    if (a->m_nLiveFree != 1 || b->m_nLiveFree != 1) return 3;
    CPAPath* pa = freePath(a);
    Assign(pa, longAxis, a, true);
    a = Other(pa, a);
    CPAPath* pb = freePath(b);
    Assign(pb, longAxis, b, true);
    b = Other(pb, b);
    rung = nullptr;
    for (CPAPath* p : a->m_Paths)
      if (p->m_nAxis == 0 && Other(p, a) == b) {
        rung = p;
        break;
      }
    if (!rung) return 4;
    Assign(rung, crossAxis, a, true);
  }
  return 0;
}

// ---- Grid indices ----------------------------------------------------------

int CManyPathesToMesh::Check2() {
  for (CPAPath* p : m_Paths)
    if (p->m_nAxis == 0) return 1;
  const size_t rowLen = static_cast<size_t>(m_nI) + 1;
  m_Grid.assign(rowLen * (static_cast<size_t>(m_nJ) + 1), nullptr);
  CPANode* rowStart = m_pFirstCorner;
  for (int32_t j = 0; j <= m_nJ; ++j) {
    if (j > 0) {
      CPAPath* up = LeadsOn(rowStart, kAxisJ);
      if (!up) return 2;
      rowStart = Other(up, rowStart);
    }
    CPANode* n = rowStart;
    for (int32_t i = 0;; ++i) {
      // A node met twice means the rows cross: not a grid.
      if (n->m_nI >= 0) return 3;
      n->m_nI = i;
      n->m_nJ = j;
      m_Grid[static_cast<size_t>(j) * rowLen + static_cast<size_t>(i)] = n;
      if (i == m_nI) break;
      CPAPath* p = LeadsOn(n, kAxisI);
      if (!p) return 3;
      n = Other(p, n);
    }
  }
  for (int32_t i = 0; i <= m_nI; ++i) {
    CPANode* n = m_Grid[static_cast<size_t>(i)];
    if (!n) return 4;
    for (int32_t j = 0;; ++j) {
      if (n->m_nI != i) return 6;
      if (n->m_nJ != j) return 7;
      if (j == m_nJ) break;
      CPAPath* p = LeadsOn(n, kAxisJ);
      if (!p) return 5;
      n = Other(p, n);
    }
  }
  for (CPANode* n : m_Nodes)
    if (n->m_nI < 0) return 2;
  return 0;
}

// ---- The mesh --------------------------------------------------------------

int CManyPathesToMesh::CreateMesh() {
  ThrowIfErr(sArt->NewArt(kMeshArt, kPlaceAbove, m_Paths.front()->m_hArt, &m_hMesh));
  if (m_pResult) *m_pResult = m_hMesh;
  ThrowIfErr(sMesh->InitCartesian(m_hMesh, m_nI, m_nJ));

  const size_t rowLen = static_cast<size_t>(m_nI) + 1;
  auto at = [&](int32_t i, int32_t j) { return m_Grid[static_cast<size_t>(j) * rowLen + static_cast<size_t>(i)]; };
  std::vector<AIPathSegment> segs;
  std::vector<AIRealPoint> pts;
  SegmentRef seg;
  ThrowIfErr(sMesh->GetStartSegment(m_hMesh, seg.put()));
  auto shape = [&](CPAPath* path) {
    if (sMeshSegmentIterator->AtEnd(seg)) throw static_cast<int>(kIterAtEndErr);
    ReadSegments(path->m_hArt, segs);
    const int n = static_cast<int>(segs.size());
    ZF_AIPathSegment_0h_to_0p33h(segs.data(), n, 0);
    if (path->m_nSense == 1) {
      std::reverse(segs.begin(), segs.end());
      for (AIPathSegment& s : segs) std::swap(s.in, s.out);
    }
    if (n > 2) sMeshSegmentIterator->InsertKnots(seg, 0, n - 2);
    pts.clear();
    pts.push_back(segs[0].p);
    pts.push_back(segs[0].out);
    for (int k = 1; k + 1 < n; ++k) {
      pts.push_back(segs[k].in);
      pts.push_back(segs[k].p);
      pts.push_back(segs[k].out);
    }
    pts.push_back(segs[n - 1].in);
    pts.push_back(segs[n - 1].p);
    sMeshSegmentIterator->SetPoints(seg, 0, static_cast<int32_t>(pts.size()), pts.data());
    ThrowIfErr(sMeshSegmentIterator->Next(seg));
  };
  for (int32_t j = 0; j <= m_nJ; ++j)
    for (int32_t i = 1; i <= m_nI; ++i) shape(LeadsOn(at(i - 1, j), kAxisI));
  for (int32_t i = 0; i <= m_nI; ++i)
    for (int32_t j = 1; j <= m_nJ; ++j) shape(LeadsOn(at(i, j - 1), kAxisJ));
  seg.reset();

  AIColor gray{};
  gray.kind = kThreeColor;
  gray.c.rgb = {kGray, kGray, kGray};
  VertexRef node;
  for (int32_t j = 0; j <= m_nJ; ++j)
    for (int32_t i = 0; i <= m_nI; ++i) {
      ThrowIfErr(sMesh->GetNode(m_hMesh, i, j, node.put()));
      lb::s::sMeshVertexIterator->SetColor(node, &gray);
    }
  sArt->SetArtUserAttr(m_hMesh, kArtSelected, kArtSelected);
  return 0;
}

int CManyPathesToMesh::DeletePathes() {
  for (auto it = m_Paths.rbegin(); it != m_Paths.rend(); ++it) {
    sArt->DisposeArt((*it)->m_hArt);
    (*it)->m_hArt = nullptr;
  }
  return 0;
}

bool CManyPathesToMesh::CheckGroupChildrens(AIArtHandle group) const {
  AIArtHandle child = nullptr;
  if (sArt->GetArtFirstChild(group, &child) != kNoErr) return false;
  for (; child; sArt->GetArtSibling(child, &child)) {
    if (child == m_hMesh) continue;
    int16_t type = kUnknownArt;
    if (sArt->GetArtType(child, &type) != kNoErr || type != kGroupArt) return false;
    if (!CheckGroupChildrens(child)) return false;
  }
  return true;
}

int CManyPathesToMesh::DelGroups() {
  for (;;) {
    AIArtHandle parent = nullptr, grand = nullptr;
    int16_t type = kUnknownArt;
    int32_t attr = 0;
    if (sArt->GetArtParent(m_hMesh, &parent) != kNoErr || !parent) return 0;
    // A layer is a group with no parent.
    if (sArt->GetArtParent(parent, &grand) != kNoErr || !grand) return 0;
    if (sArt->GetArtType(parent, &type) != kNoErr || type != kGroupArt) return 0;
    if (sArt->GetArtUserAttr(parent, kArtSelected, &attr) != kNoErr || !(attr & kArtSelected)) return 0;
    if (!CheckGroupChildrens(parent)) return 0;
    if (sArt->ReorderArt(m_hMesh, kPlaceAbove, parent) != kNoErr) return 0;
  }
}
