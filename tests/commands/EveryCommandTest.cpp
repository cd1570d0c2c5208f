// Properties every panel command shares, checked over the command ids of sdk/LBModule.h and all
// four modifier pairs: what leaves a document exactly as it was, and that meshes are done one by one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Session.h"

namespace lbtest {
namespace {

constexpr int kAlt = 1, kCtrl = 2, kAllMods = 15;  // mods: bit 0 Alt, bit 1 Ctrl; masks: bit m for mods m

std::string Trace(int id, int mods) {
  return "command " + std::to_string(id) + ((mods & kAlt) ? " Alt" : "") + ((mods & kCtrl) ? " Ctrl" : "");
}

// Runs (id, mods) on `doc` for every mods in the mask and expects the
// written document to be unchanged.
void ExpectUnchanged(const json& doc, int id, int modsMask = kAllMods) {
  for (int mods = 0; mods < 4; ++mods) {
    if (!(modsMask & (1 << mods))) continue;
    SCOPED_TRACE(Trace(id, mods));
    Session s(doc);
    const json before = s.written();
    EXPECT_EQ(s.runWritten(id, mods & kAlt, mods & kCtrl), before);
  }
}

json OpenPath(bool selected) {
  return {{"type", "path"}, {"closed", false}, {"selected", selected}, {"fill", nullptr}, {"stroke", nullptr},
          {"segments", {{{"p", {0, -10}}}, {{"p", {20, -12}}}, {{"p", {40, -10}}}}}};
}

// Nothing selected, or one open path of three anchors alone (too few for a
// mesh, no mesh or second path to work with): every command, every
// modifier pair.
TEST(EveryCommand, NothingSelectedOrALonePathChangesNothing) {
  MeshRecipe m = MeshRecipe::Varied();
  m.artSelected = false;
  const json nothing = DocJson({MeshJson(m), OpenPath(false)}), lonePath = DocJson({OpenPath(true)});
  for (int id = kCmdFirst; id <= kCmdLast; ++id) {
    ExpectUnchanged(nothing, id);
    ExpectUnchanged(lonePath, id);
  }
}

// The (id, modifiers) pairs the panel maps to no operation, on two wholly
// selected meshes.
TEST(EveryCommand, ModifierPairsWithoutAnOperationChangeNothing) {
  MeshRecipe second = MeshRecipe::Varied();
  second.x0 = 200;
  const json doc = DocJson({MeshJson(MeshRecipe::Varied()), MeshJson(second)});
  const int ctrlAlt = 1 << (kAlt | kCtrl);
  const std::pair<int, int> rows[] = {
      {kCmdKnotsToVertices, ctrlAlt}, {kCmdVerticesToKnots, ctrlAlt}, {kCmdColorRotate, ctrlAlt | 1 << kCtrl},
      {kCmdAlignHor, ctrlAlt},        {kCmdAlignVert, ctrlAlt},       {kCmdSel, ctrlAlt},
      {kCmdDensityInc, ctrlAlt},      {kCmdDensityDec, ctrlAlt},      {kCmdSew0, 1 << kAlt},
      {kCmdNone168, kAllMods},
  };
  for (const auto& [id, mask] : rows) ExpectUnchanged(doc, id, mask);
}

// A selected mesh whose selection holds no node leaves the commands that
// work on the selected nodes' region with nothing to do: no vertex at all,
// or only a vertex in the middle of a run.
TEST(EveryCommand, RegionCommandsLeaveAMeshWithoutSelectedNodesAlone) {
  MeshRecipe none = MeshRecipe::Varied();
  none.whole = false;
  const json noVertex = DocJson(none), innerOnly = DocJson(Coded(2, 2, {}, {{{0, 1, 'I'}, true}}));
  for (int id : {kCmdKnotsToVertices, kCmdColorShift, kCmdColorReflect, kCmdColorRotate, kCmdAlignHor, kCmdAlignVert,
                 kCmdColorSpread, kCmdColorPattern, kCmdSelShift, kCmdHandles90, kCmdDensityInc, kCmdDensityDec,
                 kCmdSew0}) {
    ExpectUnchanged(noVertex, id);
    ExpectUnchanged(innerOnly, id);
  }
  // These act on a selected non-node vertex; with none they have nothing.
  for (int id : {kCmdSetOfPaths, kCmdVerticesToKnots, kCmdHandlesSmooth, kCmdHandles1_3, kCmdHandles0})
    ExpectUnchanged(noVertex, id);
  // Joining or deleting vertices needs a selected vertex, not just nodes.
  MeshRecipe nodesOnly = MeshRecipe::Varied();
  nodesOnly.selected = {{0, 0}, {3, 2}};
  ExpectUnchanged(DocJson(nodesOnly), kCmdVerticesToKnots);
}

// Commands that need a second object (another mesh, a path or an image)
// leave one selected mesh alone, even with an unselected mesh docked on it.
TEST(EveryCommand, CommandsOnTwoObjectsRefuseOneSelectedMesh) {
  MeshRecipe other = Coded(1, 1, {});
  other.y0 = 10;
  other.artSelected = false;
  const json doc = DocJson({CodedWhole(1, 1), other});
  for (int id : {kCmdColorClone, kCmdSewMeshMove, kCmdSewMeshAdd, kCmdAlignPath, kCmdColorCapture, kCmdSewDocked,
                 kCmdSewPath})
    ExpectUnchanged(doc, id);
}

// Commands that work mesh by mesh: with several meshes, each selected one
// ends as it would alone (its own region, no state carried from the mesh
// before), with the art drawn for it right above it, and an unselected one
// is left as it was.
TEST(EveryCommand, EachSelectedMeshEndsAsItWouldAlone) {
  MeshRecipe a = Coded(3, 3, {{1, 0}, {2, 1}}, {{{0, 1, 'I'}, true}});
  MeshRecipe off = Coded(2, 2, {});
  off.artSelected = false;
  MeshRecipe c = Coded(3, 2, {{0, 2}, {1, 1}, {3, 0}});
  MeshRecipe noVertex = Coded(2, 1, {});
  off.x0 = 50, c.x0 = 100, noVertex.x0 = 150;
  const std::vector<MeshRecipe> meshes = {a, off, c, noVertex};
  for (int id : {kCmdSetOfPaths, kCmdAxesAndNodes, kCmdKnotsToVertices, kCmdVerticesToKnots, kCmdColorShift,
                 kCmdColorReflect, kCmdColorRotate,
                 kCmdHandlesSmooth, kCmdHandles1_3, kCmdHandles0, kCmdColorSpread, kCmdSelRegion, kCmdSelPerim,
                 kCmdColorPattern, kCmdSelCross, kCmdSelShift, kCmdHandles90, kCmdSel, kCmdDensityInc,
                 kCmdDensityDec, kCmdSew0, kCmdUvReset, kCmdDirRotate})
    for (int mods = 0; mods < 4; ++mods) {
      SCOPED_TRACE(Trace(id, mods));
      json alone = json::array();
      for (const MeshRecipe& m : meshes) {
        Session s(m);
        const json written = s.runWritten(id, mods & kAlt, mods & kCtrl);
        for (const json& art : Children(written)) alone.push_back(art);
      }
      Session s(meshes);
      EXPECT_EQ(Children(s.runWritten(id, mods & kAlt, mods & kCtrl)), alone);
    }
}

}  // namespace
}  // namespace lbtest
