// Colour transforms: reflect, rotate, shift and spread the paint of the
// nodes inside the region of a mesh's selected nodes. Geometry is never
// touched; which half of the paint moves is up to CColorOpacity's switches.
#include "color/ColorTransforms.h"

#include <utility>

#include "MeshSelection.h"
#include "Operations.h"
#include "color/ColorOpacity.h"

using lb::s::sMesh;
using lb::s::sMeshSelection;

namespace lb::color {
namespace {

// What every worker starts with: the selection, the size and the region
// of the selected nodes. Node access afterwards is by grid position; the
// results of those per-node calls are not checked, but a node that cannot
// be fetched is left alone rather than handed on as a null iterator.
class Worker {
 public:
  explicit Worker(AIArtHandle mesh) : m_mesh(mesh) {
    m_sel = GetSelectionRef(mesh);
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));
    if (reg.GetMeshReg(mesh) != 0) throw static_cast<int>(kCantHappenErr);
  }

  VertexRef Node(int32_t i, int32_t j) const {
    VertexRef v;
    if (sMesh->GetNode(m_mesh, i, j, v.put()) != kNoErr) v.reset();
    return v;
  }
  bool IsSelected(AIMeshVertexIterator v) const { return v && sMeshSelection->ContainsVertex(m_sel, v); }
  void Select(AIMeshVertexIterator v, bool on = true) const {
    if (v) sMeshSelection->SelectVertex(m_sel, v, on);
  }
  static CColorOpacity Read(AIMeshVertexIterator v) {
    CColorOpacity p;
    if (v) p.Read(v);
    return p;
  }
  static void Write(AIMeshVertexIterator v, const CColorOpacity& p) {
    if (v) p.Write(v);
  }

  // Exchanges the paint of two nodes when either is selected, and leaves
  // both selected.
  void SwapPair(int32_t ai, int32_t aj, int32_t bi, int32_t bj) const {
    VertexRef a = Node(ai, aj);
    VertexRef b = Node(bi, bj);
    if (!IsSelected(a) && !IsSelected(b)) return;
    const CColorOpacity pa = Read(a);
    const CColorOpacity pb = Read(b);
    Write(a, pb);
    Write(b, pa);
    Select(a);
    Select(b);
  }

  int32_t I = 0, J = 0;
  CMeshRegion reg;

 private:
  AIArtHandle m_mesh;
  SelectionRef m_sel;
};

}  // namespace

int _Flip(AIArtHandle mesh, AIMeshAxis axis) {
  try {
    Worker w(mesh);
    const CMeshRegion& r = w.reg;
    if (r.IsEmpty()) return 0;
    if (axis == kAIMeshIAxis) {
      const int32_t last = (r.m_nMaxI - r.m_nMinI - 1) / 2;
      for (int32_t j = r.m_nMinJ; j <= r.m_nMaxJ; ++j)
        for (int32_t k = 0; k <= last; ++k) w.SwapPair(r.m_nMinI + k, j, r.m_nMaxI - k, j);
    } else {
      const int32_t last = (r.m_nMaxJ - r.m_nMinJ - 1) / 2;
      for (int32_t i = r.m_nMinI; i <= r.m_nMaxI; ++i)
        for (int32_t k = 0; k <= last; ++k) w.SwapPair(i, r.m_nMinJ + k, i, r.m_nMaxJ - k);
    }
    return 0;
  } catch (int) {
    return 1;
  }
}

int _Rotate(AIArtHandle mesh, long clockwise) {
  try {
    Worker w(mesh);
    const CMeshRegion& r = w.reg;
    if (r.IsEmpty()) return 0;
    const int32_t dI = r.m_nMaxI - r.m_nMinI;
    const int32_t dJ = r.m_nMaxJ - r.m_nMinJ;
    const int32_t i0 = r.m_nMinI, j0 = r.m_nMinJ;
    if (dI != dJ) {
      // Half turn: (x, y) <-> (dI - x, dJ - y). In the middle column of an
      // even width only the lower half is paired, so no pair swaps twice.
      for (int32_t y = 0; y <= dJ; ++y)
        for (int32_t x = 0; x <= dI / 2; ++x) {
          if (dI % 2 == 0 && x == dI / 2 && y > dJ / 2) continue;
          w.SwapPair(i0 + x, j0 + y, i0 + dI - x, j0 + dJ - y);
        }
      return 0;
    }
    // Quarter turn of a square, one four-node cycle at a time.
    const int32_t n = dI;
    for (int32_t y = 0; y <= (n - 1) / 2; ++y)
      for (int32_t x = 0; x <= n / 2; ++x) {
        const int32_t px[4] = {x, n - y, n - x, y};
        const int32_t py[4] = {y, x, n - y, n - x};
        VertexRef p[4];
        for (int k = 0; k < 4; ++k) p[k] = w.Node(i0 + px[k], j0 + py[k]);
        if (!(w.IsSelected(p[0]) || w.IsSelected(p[1]) || w.IsSelected(p[2]) || w.IsSelected(p[3])))
          continue;
        CColorOpacity c[4];
        for (int k = 0; k < 4; ++k) c[k] = Worker::Read(p[k]);
        // Clockwise, the paint at (a, b) moves to (b, n - a): each P(k)
        // takes the paint of P(k + 1). Counterclockwise, of P(k - 1).
        for (int k = 0; k < 4; ++k) Worker::Write(p[k], c[clockwise ? (k + 1) % 4 : (k + 3) % 4]);
        for (int k = 0; k < 4; ++k) w.Select(p[k]);
      }
    return 0;
  } catch (int) {
    return 1;
  }
}

namespace {
// The lines of the region along an axis: for axis I, one line per j
// running over i in [m_nMinI, m_nMaxI]; for axis J, one line per i.
struct Lines {
  const Worker& w;
  AIMeshAxis axis;
  int32_t count() const {
    const CMeshRegion& r = w.reg;
    return axis == kAIMeshIAxis ? r.m_nMaxJ - r.m_nMinJ + 1 : r.m_nMaxI - r.m_nMinI + 1;
  }
  int32_t length() const {  // nodes per line minus one
    const CMeshRegion& r = w.reg;
    return axis == kAIMeshIAxis ? r.m_nMaxI - r.m_nMinI : r.m_nMaxJ - r.m_nMinJ;
  }
  // Node k (0 = low end) of line n.
  VertexRef Node(int32_t n, int32_t k) const {
    const CMeshRegion& r = w.reg;
    return axis == kAIMeshIAxis ? w.Node(r.m_nMinI + k, r.m_nMinJ + n) : w.Node(r.m_nMinI + n, r.m_nMinJ + k);
  }
};
}  // namespace

int _Shift(AIArtHandle mesh, AIMeshAxis axis, AIMeshAxisSense sense) {
  try {
    Worker w(mesh);
    if (w.reg.IsEmpty()) return 0;
    const Lines lines{w, axis == kAIMeshIAxis ? kAIMeshIAxis : kAIMeshJAxis};
    const int32_t len = lines.length();
    // A line with any selected node gets both its ends selected: that is
    // what marks it for the shift below.
    for (int32_t n = 0; n < lines.count(); ++n)
      for (int32_t k = 0; k <= len; ++k) {
        if (!w.IsSelected(lines.Node(n, k))) continue;
        w.Select(lines.Node(n, 0));
        w.Select(lines.Node(n, len));
        break;
      }
    if (sense != kAIMeshForward && sense != kAIMeshBackward) return 0;
    const bool forward = sense == kAIMeshForward;
    for (int32_t n = 0; n < lines.count(); ++n) {
      const int32_t start = forward ? 0 : len;
      const int32_t wrap = forward ? len : 0;
      const int step = forward ? 1 : -1;
      if (!w.IsSelected(lines.Node(n, start))) continue;
      CColorOpacity carry = Worker::Read(lines.Node(n, wrap));
      for (int32_t k = 0, pos = start; k <= len; ++k, pos += step) {
        VertexRef v = lines.Node(n, pos);
        w.Select(v);
        CColorOpacity old = Worker::Read(v);
        Worker::Write(v, carry);
        carry = old;
      }
    }
    return 0;
  } catch (int) {
    return 1;
  }
}

int _Spread(AIArtHandle mesh, AIMeshAxis axis, AIMeshAxisSense sense) {
  try {
    Worker w(mesh);
    const CMeshRegion& r = w.reg;
    if (r.IsEmpty()) return 0;
    const bool alongI = axis == kAIMeshIAxis;
    const bool singleNode = r.m_nMinI == r.m_nMaxI && r.m_nMinJ == r.m_nMaxJ;
    if (r.m_nMinI != r.m_nMaxI && r.m_nMinJ != r.m_nMaxJ) {
      // Each line of the region takes the paint of its first node in the
      // chosen sense, or, when that node is not selected, drops out of the
      // selection unchanged.
      const Lines lines{w, alongI ? kAIMeshIAxis : kAIMeshJAxis};
      const int32_t len = lines.length();
      const bool forward = sense == kAIMeshForward;
      for (int32_t n = 0; n < lines.count(); ++n) {
        const int32_t start = forward ? 0 : len;
        const int step = forward ? 1 : -1;
        VertexRef src = lines.Node(n, start);
        const CColorOpacity paint = Worker::Read(src);
        const bool on = w.IsSelected(src);
        src.reset();
        for (int32_t k = 0, pos = start; k <= len; ++k, pos += step) {
          VertexRef v = lines.Node(n, pos);
          w.Select(v, on);
          if (on) Worker::Write(v, paint);
        }
      }
    } else if ((r.m_nMinJ == r.m_nMaxJ && !singleNode) || (singleNode && !alongI)) {
      // One row of nodes: each selected node's paint runs down its whole
      // line i, across the entire grid.
      for (int32_t i = r.m_nMinI; i <= r.m_nMaxI; ++i) {
        VertexRef src = w.Node(i, r.m_nMaxJ);
        if (!w.IsSelected(src)) continue;
        const CColorOpacity paint = Worker::Read(src);
        src.reset();
        for (int32_t j = 0; j <= w.J; ++j) {
          VertexRef v = w.Node(i, j);
          w.Select(v);
          Worker::Write(v, paint);
        }
      }
    } else {
      // One column of nodes (or a single node spread along I).
      for (int32_t j = r.m_nMinJ; j <= r.m_nMaxJ; ++j) {
        VertexRef src = w.Node(r.m_nMinI, j);
        if (!w.IsSelected(src)) continue;
        const CColorOpacity paint = Worker::Read(src);
        src.reset();
        for (int32_t i = 0; i <= w.I; ++i) {
          VertexRef v = w.Node(i, j);
          w.Select(v);
          Worker::Write(v, paint);
        }
      }
    }
    return 0;
  } catch (int) {
    return 1;
  }
}

int Flip(AIMeshAxis axis) {
  const AIMeshAxis a = axis == kAIMeshIAxis ? kAIMeshIAxis : kAIMeshJAxis;
  return ForEachMesh([&](AIArtHandle m) { _Flip(m, a); });
}
int Rotate(long clockwise) {
  return ForEachMesh([&](AIArtHandle m) { _Rotate(m, clockwise); });
}
int Shift(AIMeshAxis axis, AIMeshAxisSense sense) {
  return ForEachMesh([&](AIArtHandle m) { _Shift(m, axis, sense); });
}
int Spread(AIMeshAxis axis, AIMeshAxisSense sense) {
  return ForEachMesh([&](AIArtHandle m) { _Spread(m, axis, sense); });
}

}  // namespace lb::color
