// Mesh construction from paths: the one-cell mesh from a single path and the
// builder that turns a set of docked paths into one mesh.
#pragma once

#include <cstdint>
#include <vector>

#include "AIArtSuites.h"
#include "AIMeshSuites.h"

namespace lb::construct {

// Replaces one path by a one-cell mesh of the same outline. Returns 0 when
// the mesh was made (the caller then deletes the path), 1 when the path has
// fewer than four candidate corner anchors (nothing changes), 2 when a host
// error stopped it before a mesh existed.
int _MakeMeshFromPath(AIArtHandle path, int alt);

}  // namespace lb::construct

struct CPANode;

// One path of the set: an edge of the graph between two docking points.
struct CPAPath {
  int32_t m_bUsed = 1;
  AIArtHandle m_hArt = nullptr;
  CPANode* m_pStart = nullptr;  // node at the first anchor
  CPANode* m_pEnd = nullptr;    // node at the last anchor
  int32_t m_nAxis = 0;          // 0 unknown, 1 along I, 2 along J
  int32_t m_nSense = 0;         // 0: first-to-last anchor is the axis's positive direction
};

// One docking point: where path ends meet.
struct CPANode {
  int32_t m_nFree = 0;  // paths without an axis, as counted at the start of the current walk
  AIRealPoint m_Point{};
  std::vector<CPAPath*> m_Paths;  // in order of attachment
  int32_t m_nI = -1;
  int32_t m_nJ = -1;
  // Bookkeeping that keeps the builder linear: the live number of paths
  // without an axis, and the walk in which m_nFree was last taken from it.
  int32_t m_nLiveFree = 0;
  int32_t m_nEpoch = -1;
  int32_t m_nOrder = 0;  // creation index
  bool m_bAlive = true;
};

// Recognises a grid in a set of paths that meet end to end (ends closer
// than 0.5 units dock) and builds one mesh whose segments take the shapes
// of the paths. Init, then Go; the destructor frees every record.
class CManyPathesToMesh {
 public:
  CManyPathesToMesh() = default;
  ~CManyPathesToMesh();
  CManyPathesToMesh(const CManyPathesToMesh&) = delete;
  CManyPathesToMesh& operator=(const CManyPathesToMesh&) = delete;

  int Init(AIArtHandle* paths, long count, AIArtHandle* result);
  // 0 on success, else the code of the failing step. Host errors are
  // thrown as int.
  int Go();
  void Destoy();

  int32_t CellsI() const { return m_nI; }
  int32_t CellsJ() const { return m_nJ; }

 private:
  int FillPoints();
  int FindUnusedPathesAndNodes();
  int DeleteUnused();
  int Check();
  int FillSegsDirs();
  int FillPerimeter(CPANode* corner, bool outer);
  int Fill_1xN(CPANode* corner, int kind, int n);
  int Fill_0xN(CPANode* node, int axis, int n);
  int Check2();
  int CreateMesh();
  int DeletePathes();
  int DelGroups();
  bool CheckGroupChildrens(AIArtHandle group) const;

  // Free count of a node as it was when the current walk started.
  int32_t Free(CPANode* node);
  void Assign(CPAPath* path, int axis, CPANode* from, bool positive);
  // The path with the given axis that leads on from node in that axis's
  // positive direction, or null.
  static CPAPath* LeadsOn(CPANode* node, int axis);
  // Whether a path with the given axis ends at node in that axis's
  // positive direction.
  static bool Arrives(CPANode* node, int axis);
  static CPANode* Other(const CPAPath* path, const CPANode* node) {
    return path->m_pStart == node ? path->m_pEnd : path->m_pStart;
  }

  int32_t m_nPathCount = 0;
  AIArtHandle* m_pResult = nullptr;
  std::vector<CPANode*> m_Nodes;
  std::vector<CPAPath*> m_Paths;
  int32_t m_nCells = 0;
  int32_t m_nI = 0;
  int32_t m_nJ = 0;
  int32_t m_nCorners = 0;
  int32_t m_nBorders = 0;
  int32_t m_nInners = 0;
  int32_t m_nCornerToCorner = 0;
  int32_t m_nUsed = 0;

  CPANode* m_pFirstCorner = nullptr;
  int32_t m_nEpoch = 0;
  std::vector<CPANode*> m_Grid;  // node (i, j) at j * (I + 1) + i, after Check2
  AIArtHandle m_hMesh = nullptr;
};

// ---- Sewing two paths (SewPaths.cpp) ---------------------------------------

// The paint colour a path hands to mesh nodes: its stroke colour when
// stroked, else its fill colour when filled, else light gray (RGB 0.8).
AIColor PathPaintColor(AIArtHandle path);

// Which ends of the two paths go together (0 first anchor, 1 last): the
// nearest pair among the usable ends (the one selected end of a path, else
// both). Returns 1 when a path has a single anchor. Host errors are thrown
// as int.
int PairPathEnds(AIArtHandle path1, AIArtHandle path2, int* end1, int* end2);

// Nodes j = 0 take the paint of path 1, nodes j = 1 that of path 2, as the
// paint switches allow.
void ColorizeFromTwoPathes(AIArtHandle mesh, AIArtHandle path1, AIArtHandle path2);

// Replaces the first two selected paths by a one-cell mesh whose sides
// j = 0 and j = 1 take their shapes; `reverse` pairs path 1's nearer end
// with path 2's other end. Returns 0.
int Sew2Pathes(long reverse);
