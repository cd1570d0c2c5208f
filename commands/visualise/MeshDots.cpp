// Vertices, knots and handles of the selected meshes drawn as one-point
// paths and lines, sorted into a fixed tree of named groups ("MeshPoints").
#include <vector>

#include "ArtBuild.h"
#include "MeshSelection.h"
#include "Operations.h"

using lb::s::sArt;
using lb::s::sMesh;
using lb::s::sMeshSegmentIterator;
using lb::s::sMeshSelection;
using lb::s::sMeshVertexIterator;

namespace {

// Handle directions, in the order the vertex's segment indices are tested.
enum Dir { kPlusI = 0, kMinusI, kPlusJ, kMinusJ, kDirCount };
const char* const kDirName[kDirCount] = {"+I", "-I", "+J", "-J"};

struct Styles {
  AIArtStyleHandle node = nullptr, vertex = nullptr, knot = nullptr;
  AIArtStyleHandle control[kDirCount] = {};
  AIArtStyleHandle line[kDirCount] = {};

  void Load() {
    node = ZF_FindStyle("[LB][Node]");
    vertex = ZF_FindStyle("[LB][Vertex]");
    knot = ZF_FindStyle("[LB][Knot]");
    AIArtStyleHandle controlBase = ZF_FindStyle("[LB][Control]");
    AIArtStyleHandle lineBase = ZF_FindStyle("[LB][LineToControl]");
    AIArtStyleHandle controlI = ZF_FindStyleOr("[LB][Control][I]", controlBase);
    AIArtStyleHandle controlJ = ZF_FindStyleOr("[LB][Control][J]", controlBase);
    AIArtStyleHandle lineI = ZF_FindStyleOr("[LB][LineToControl][I]", lineBase);
    AIArtStyleHandle lineJ = ZF_FindStyleOr("[LB][LineToControl][J]", lineBase);
    control[kPlusI] = ZF_FindStyleOr("[LB][Control][I][+]", controlI);
    control[kMinusI] = ZF_FindStyleOr("[LB][Control][I][-]", controlI);
    control[kPlusJ] = ZF_FindStyleOr("[LB][Control][J][+]", controlJ);
    control[kMinusJ] = ZF_FindStyleOr("[LB][Control][J][-]", controlJ);
    line[kPlusI] = ZF_FindStyleOr("[LB][LineToControl][I][+]", lineI);
    line[kMinusI] = ZF_FindStyleOr("[LB][LineToControl][I][-]", lineI);
    line[kPlusJ] = ZF_FindStyleOr("[LB][LineToControl][J][+]", lineJ);
    line[kMinusJ] = ZF_FindStyleOr("[LB][LineToControl][J][-]", lineJ);
  }
};

// The group tree; a handle is nulled once its group is deleted.
struct Tree {
  AIArtHandle top = nullptr;
  AIArtHandle nodes = nullptr, vertices = nullptr;
  AIArtHandle withTrue = nullptr, trueKnots = nullptr;
  AIArtHandle trueCtl = nullptr, trueCtlNodes = nullptr, trueCtlVertices = nullptr, trueCtlKnots = nullptr;
  AIArtHandle trueLines = nullptr, trueLinesNodes = nullptr, trueLinesVertices = nullptr, trueLinesKnots = nullptr;
  AIArtHandle with = nullptr;
  AIArtHandle ctl = nullptr, ctlNodes = nullptr, ctlVertices = nullptr;
  AIArtHandle lines = nullptr, linesNodes = nullptr, linesVertices = nullptr;

  // Creates every group first and names them afterwards.
  void Build(AIArtHandle mesh) {
    auto in = [](AIArtHandle parent) { return ZF_NewGroup(kPlaceInsideOnBottom, parent, nullptr); };
    top = ZF_NewGroup(kPlaceAbove, mesh, nullptr);
    nodes = in(top);
    vertices = in(top);
    withTrue = in(top);
    trueKnots = in(withTrue);
    trueCtl = in(withTrue);
    trueCtlNodes = in(trueCtl);
    trueCtlVertices = in(trueCtl);
    trueCtlKnots = in(trueCtl);
    trueLines = in(withTrue);
    trueLinesNodes = in(trueLines);
    trueLinesVertices = in(trueLines);
    trueLinesKnots = in(trueLines);
    with = in(top);
    ctl = in(with);
    ctlNodes = in(ctl);
    ctlVertices = in(ctl);
    lines = in(with);
    linesNodes = in(lines);
    linesVertices = in(lines);
    const std::pair<AIArtHandle, const char*> names[] = {
        {top, "MeshPoints"},         {nodes, "Nodes"},           {vertices, "Vertices"},
        {withTrue, "WithTrueControls"}, {trueKnots, "Knots"},    {trueCtl, "Concrols"},
        {trueCtlNodes, "Nodes"},     {trueCtlVertices, "Vertices"}, {trueCtlKnots, "Knots"},
        {trueLines, "LinesToControls"}, {trueLinesNodes, "Nodes"}, {trueLinesVertices, "Vertices"},
        {trueLinesKnots, "Knots"},   {with, "WithControls"},     {ctl, "Controls"},
        {ctlNodes, "Nodes"},         {ctlVertices, "Vertices"},  {lines, "LinesToControls"},
        {linesNodes, "Nodes"},       {linesVertices, "Vertices"},
    };
    for (const auto& [group, name] : names)
      if (group) ZF_SetArtName(group, name);
  }

  // Empty groups go, inner ones first so that a parent they empty goes too.
  void Prune() {
    AIArtHandle* order[] = {&nodes,          &vertices,          &trueKnots,      &trueCtlNodes,
                            &trueCtlVertices, &trueCtlKnots,     &trueCtl,        &ctlNodes,
                            &ctlVertices,    &ctl,               &trueLinesNodes, &trueLinesVertices,
                            &trueLinesKnots, &trueLines,         &linesNodes,     &linesVertices,
                            &lines,          &withTrue,          &with,           &top};
    for (AIArtHandle* g : order) ZF_DeleteIfEmpty(g);
  }
};

// Node numbering by counting in the host's vertex order (nodes in row
// order, i fastest).
struct NodeCounter {
  int32_t I, i = -1, j = 0;
  explicit NodeCounter(int32_t gridI) : I(gridI) {}
  void Step() {
    if (++i > I) {
      ++j;
      i = 0;
    }
  }
};

// Calls f(v, p, isNode, name) for every selected vertex of the mesh in walk
// order, with its point and its name: the node's name, or "lbVertex".
template <class F>
void ForEachSelectedVertex(AIArtHandle mesh, AIMeshSelection sel, int32_t I, F f) {
  char nodeName[24];
  VertexRef v;
  ThrowIfErr(sMesh->GetStartVertex(mesh, v.put()));
  NodeCounter at(I);
  for (; !sMeshVertexIterator->AtEnd(v); ThrowIfErr(sMeshVertexIterator->Next(v))) {
    const bool isNode = sMeshVertexIterator->IsNode(v);
    if (isNode) at.Step();
    if (!sMeshSelection->ContainsVertex(sel, v)) continue;
    AIRealPoint p{};
    sMeshVertexIterator->GetPoint(v, &p);
    const char* name = "lbVertex";
    if (isNode) {
      MakeNodeName(at.i, at.j, nodeName);
      name = nodeName;
    }
    f(v.get(), p, isNode, name);
  }
}

// Direction of segment k of a vertex; a later match wins.
int DirOf(AIMeshVertexIterator v, int32_t k) {
  int dir = -1;
  if (sMeshVertexIterator->GetSegmentIndex(v, kAIMeshIAxis, kAIMeshForward) == k) dir = kPlusI;
  if (sMeshVertexIterator->GetSegmentIndex(v, kAIMeshIAxis, kAIMeshBackward) == k) dir = kMinusI;
  if (sMeshVertexIterator->GetSegmentIndex(v, kAIMeshJAxis, kAIMeshForward) == k) dir = kPlusJ;
  if (sMeshVertexIterator->GetSegmentIndex(v, kAIMeshJAxis, kAIMeshBackward) == k) dir = kMinusJ;
  return dir;
}

// A handle point and the line from its vertex (or knot) to it.
void HandleMark(const AIRealPoint& from, const AIRealPoint& h, int dir, AIArtHandle ctlGroup,
                AIArtHandle lineGroup, const Styles& st, bool lineFirst) {
  const char* name = dir >= 0 ? kDirName[dir] : nullptr;
  AIArtStyleHandle ctlStyle = dir >= 0 ? st.control[dir] : nullptr;
  AIArtStyleHandle lineStyle = dir >= 0 ? st.line[dir] : nullptr;
  if (lineFirst) MakeLine(&from, &h, lineGroup, name, lineStyle);
  MakePoint(&h, ctlGroup, name, ctlStyle);
  if (!lineFirst) MakeLine(&from, &h, lineGroup, name, lineStyle);
}

// Knots of the segment leaving v along `axis`, with their true controls,
// when its far end is selected too.
void DrawKnots(AIMeshVertexIterator v, AIMeshSelection sel, AIMeshAxis axis, const Tree& t, const Styles& st) {
  const int32_t index = sMeshVertexIterator->GetSegmentIndex(v, axis, kAIMeshForward);
  if (index < 0) return;
  SegmentRef seg;
  ThrowIfErr(sMeshVertexIterator->GetSegment(v, index, seg.put()));
  VertexRef end;
  ThrowIfErr(sMeshSegmentIterator->GetEnd(seg, end.put()));
  if (!sMeshSelection->ContainsVertex(sel, end) || sMeshSegmentIterator->CountKnots(seg) <= 0) return;
  const int32_t n = sMeshSegmentIterator->CountPoints(seg);
  std::vector<AIRealPoint> pts(n);
  ThrowIfErr(sMeshSegmentIterator->GetPoints(seg, 0, n, pts.data()));
  const int forward = axis == kAIMeshIAxis ? kPlusI : kPlusJ;
  const int backward = axis == kAIMeshIAxis ? kMinusI : kMinusJ;
  AIArtHandle knotCtl = nullptr, knotLines = nullptr;
  for (int32_t k = 3; k <= n - 2; ++k) {
    switch ((k - 1) % 3) {
      case 2:  // a knot begins: its groups and the control before it
        knotCtl = ZF_NewGroup(kPlaceInsideOnBottom, t.trueCtlKnots, "knot");
        knotLines = ZF_NewGroup(kPlaceInsideOnBottom, t.trueLinesKnots, "knot");
        HandleMark(pts[k], pts[k - 1], backward, knotCtl, knotLines, st, true);
        break;
      case 0:  // the knot itself
        MakePoint(&pts[k - 1], t.trueKnots, "knot", st.knot);
        break;
      default:  // the control after the knot
        HandleMark(pts[k - 2], pts[k - 1], forward, knotCtl, knotLines, st, true);
        break;
    }
  }
}

}  // namespace

int _MakeMeshDotsGroup(AIArtHandle mesh) {
  Styles st;
  st.Load();
  Tree t;
  t.Build(mesh);
  try {
    SelectionRef sel = GetSelectionRef(mesh);
    int32_t I = 0, J = 0;
    ThrowIfErr(sMesh->GetSize(mesh, &I, &J));

    // First pass: vertex points and the handles the host reports.
    ForEachSelectedVertex(mesh, sel, I, [&](AIMeshVertexIterator v, AIRealPoint p, bool isNode, const char* name) {
      MakePoint(&p, isNode ? t.nodes : t.vertices, name, isNode ? st.node : st.vertex);
      AIArtHandle ctlGroup = ZF_NewGroup(kPlaceInsideOnBottom, isNode ? t.ctlNodes : t.ctlVertices, name);
      AIArtHandle lineGroup = ZF_NewGroup(kPlaceInsideOnBottom, isNode ? t.linesNodes : t.linesVertices, name);
      const int32_t count = sMeshVertexIterator->CountSegments(v);
      for (int32_t k = 0; k < count; ++k) {
        AIRealPoint h{};
        sMeshVertexIterator->GetTangent(v, k, &h);
        HandleMark(p, h, DirOf(v, k), ctlGroup, lineGroup, st, false);
      }
    });

    // Knot test: a segment with both ends selected that carries knots.
    bool knots = false;
    {
      SegmentRef seg;
      ThrowIfErr(sMesh->GetStartSegment(mesh, seg.put()));
      for (; !knots && !sMeshSegmentIterator->AtEnd(seg); ThrowIfErr(sMeshSegmentIterator->Next(seg))) {
        if (sMeshSegmentIterator->CountKnots(seg) <= 0) continue;
        VertexRef a, b;
        ThrowIfErr(sMeshSegmentIterator->GetStart(seg, a.put()));
        ThrowIfErr(sMeshSegmentIterator->GetEnd(seg, b.put()));
        knots = sMeshSelection->ContainsVertex(sel, a) && sMeshSelection->ContainsVertex(sel, b);
      }
    }

    // Second pass: the true Bezier controls and the knots.
    if (knots) {
      ForEachSelectedVertex(mesh, sel, I, [&](AIMeshVertexIterator v, AIRealPoint p, bool isNode, const char* name) {
        AIArtHandle ctlGroup = ZF_NewGroup(kPlaceInsideOnBottom, isNode ? t.trueCtlNodes : t.trueCtlVertices, name);
        AIArtHandle lineGroup =
            ZF_NewGroup(kPlaceInsideOnBottom, isNode ? t.trueLinesNodes : t.trueLinesVertices, name);
        const int32_t count = sMeshVertexIterator->CountSegments(v);
        for (int32_t k = 0; k < count; ++k) {
          SegmentRef seg;
          ThrowIfErr(sMeshVertexIterator->GetSegment(v, k, seg.put()));
          AIRealPoint h{};
          ThrowIfErr(sMeshSegmentIterator->GetPoints(seg, 1, 1, &h));
          HandleMark(p, h, DirOf(v, k), ctlGroup, lineGroup, st, false);
        }
        DrawKnots(v, sel, kAIMeshIAxis, t, st);
        DrawKnots(v, sel, kAIMeshJAxis, t, st);
      });
    }
  } catch (int) {
    return 1;
  }
  t.Prune();
  if (t.withTrue && t.with) sArt->SetArtUserAttr(t.with, kArtHidden, kArtHidden);
  return 0;
}

int MakeMeshDotsGroup() {
  SelectedMeshList meshes;
  for (AIArtHandle mesh : meshes) _MakeMeshDotsGroup(mesh);
  return 0;
}
