// The mesh part copy called directly, with the plug-in's suite pointers
// acquired from the host as a command would: windows (identity, turned,
// mirrored, shifted, invalid) and cutting a rectangle of cells into a new
// mesh with its selection.
#include <gtest/gtest.h>

#include "MeshPartCopy.h"
#include "Suites.h"
#include "dir_uv/MeshFixture.h"
#include "host/Document.h"
#include "host/Host.h"
#include "host/SuiteRegistry.h"
#include "io/Lbdoc.h"

namespace dirtest {
namespace {

// A host with a document, and the plug-in's command suites acquired from
// it for the lifetime of the fixture.
class PartCopy : public ::testing::Test {
 protected:
  void load(const json& doc) {
    host_.reset();
    host_ = std::make_unique<lb::host::Host>(lb::io::readDocument(doc.dump()));
    gsSPBasic = const_cast<SPBasicSuite*>(
        static_cast<const SPBasicSuite*>(lb::host::findSuite(kSPBasicSuite, kSPBasicSuiteVersion)));
    ASSERT_NE(gsSPBasic, nullptr);
    ASSERT_EQ(lb::s::AcquireSuites(), kNoErr);
    acquired_ = true;
    before_ = host_->counters();
  }
  void TearDown() override {
    if (acquired_) {
      EXPECT_EQ(host_->counters(), before_) << "a host object was left alive";
      lb::s::ReleaseSuites();
    }
    gsSPBasic = nullptr;
  }

  ArtObject* art(size_t k) { return host_->document().layers()[0]->children.at(k).get(); }
  size_t artCount() { return host_->document().layers()[0]->children.size(); }
  json written() { return json::parse(lb::io::writeDocument(host_->document())); }
  MeshContent content(size_t k) { return ReadMesh(written()["layers"][0]["children"][k]); }

  std::unique_ptr<lb::host::Host> host_;
  lb::host::Counters before_;
  bool acquired_ = false;
};

// The content of the cells i0..i1 x j0..j1 of a mesh, renumbered from 0.
MeshContent SubMesh(const MeshContent& m, int i0, int i1, int j0, int j1) {
  MeshContent s;
  s.I = i1 - i0;
  s.J = j1 - j0;
  for (int j = j0; j <= j1; ++j) {
    for (int i = i0; i <= i1; ++i) {
      NodeContent n = m.nodes.at({i, j});
      // Border nodes of the part have no segment outward.
      if (i == i0) n.smooth.erase("I-");
      if (i == i1) n.smooth.erase("I+");
      if (j == j0) n.smooth.erase("J-");
      if (j == j1) n.smooth.erase("J+");
      s.nodes[{i - i0, j - j0}] = n;
      if (i < i1) s.runs[{i - i0, j - j0, 0}] = m.runs.at({i, j, 0});
      if (j < j1) s.runs[{i - i0, j - j0, 1}] = m.runs.at({i, j, 1});
    }
  }
  return s;
}

MeshSpec Plain(int I, int J, double originH) {
  MeshSpec layout;
  layout.I = I;
  layout.J = J;
  layout.structured = false;
  layout.originH = originH;
  layout.selected = false;
  return layout;
}

TEST_F(PartCopy, InvalidWindowsChangeNothing) {
  MeshSpec layout;
  load(MakeDoc({MakeMeshArt(layout), MakeMeshArt(Plain(3, 2, 300))}));
  const json before = written();
  ZS_RestoreMeshData good{0, 0, 0, 1, 0, 0, 3, 2};
  const ZS_RestoreMeshData bad[] = {
      {0, 0, 0, 0, 0, 0, 3, 2},   // both coordinates along I
      {0, 0, 1, 1, 0, 0, 3, 2},   // both along J
      {4, 0, 0, 1, 0, 0, 3, 2},   // start beyond the last line i
      {0, 3, 0, 1, 0, 0, 3, 2},   // start beyond the last line j
      {-1, 0, 0, 1, 0, 0, 3, 2},  // start before the first line
      {0, 0, 0, 1, 0, 0, -1, 2},  // negative extent
      {0, 0, 0, 1, 0, 0, 3, -2},
  };
  for (const ZS_RestoreMeshData& b : bad) {
    ZS_RestoreMeshData w = b;
    EXPECT_EQ(RestoreMeshPart(art(0), art(1), &w, &good), 1);
    EXPECT_EQ(RestoreMeshPart(art(0), art(1), &good, &w), 1);
    EXPECT_EQ(written(), before);
  }
}

// A window reaching past the destination's grid is a host error half-way:
// the copy stops, keeps what it wrote and leaves no iterator behind (the
// fixture checks the counters).
TEST_F(PartCopy, WindowPastTheGridStopsWithoutLeaking) {
  MeshSpec layout;  // 3 x 2
  load(MakeDoc({MakeMeshArt(layout), MakeMeshArt(Plain(2, 2, 300))}));
  const MeshContent src = content(0);
  ZS_RestoreMeshData w{0, 0, 0, 1, 0, 0, 3, 2};
  ZS_RestoreMeshData d = w;
  EXPECT_EQ(RestoreMeshPart(art(0), art(1), &w, &d), 1);
  const MeshContent got = content(1);
  for (int j = 0; j <= 2; ++j)
    for (int i = 0; i <= 1; ++i) EXPECT_EQ(got.nodes.at({i, j}).color, src.nodes.at({i, j}).color) << i << "," << j;
}

TEST_F(PartCopy, IdentityWindowCopiesEverythingButSelectionExactly) {
  MeshSpec layout;
  layout.I = 4;
  layout.J = 3;
  load(MakeDoc({MakeMeshArt(layout), MakeMeshArt(Plain(4, 3, 500))}));
  const MeshContent src = content(0);
  const MeshContent dstBefore = content(1);
  ZS_RestoreMeshData w{0, 0, 0, 1, 0, 0, 4, 3};
  ZS_RestoreMeshData d = w;
  ASSERT_EQ(RestoreMeshPart(art(0), art(1), &w, &d), 0);
  const MeshContent got = content(1);
  EXPECT_TRUE(SameContent(got, src, 0.0));
  // Line positions and selection belong to the destination.
  EXPECT_EQ(got.u, dstBefore.u);
  EXPECT_EQ(got.v, dstBefore.v);
  for (const auto& [key, n] : got.nodes) EXPECT_FALSE(n.selected);
  // The source is only read.
  EXPECT_TRUE(SameContent(content(0), src, 0.0, true));
}

TEST_F(PartCopy, ExchangedAxesTransposeAndSensesMirror) {
  struct Case {
    const char* name;
    int dstI, dstJ;
    ZS_RestoreMeshData dst;
    Node (*map)(int, int);
  };
  const Case cases[] = {
      {"transpose", 2, 3, {0, 0, 1, 0, 0, 0, 2, 3}, [](int i, int j) { return Node{j, i}; }},
      {"mirror I", 3, 2, {3, 0, 0, 1, 1, 0, 3, 2}, [](int i, int j) { return Node{3 - i, j}; }},
      {"mirror both", 3, 2, {3, 2, 0, 1, 1, 1, 3, 2}, [](int i, int j) { return Node{3 - i, 2 - j}; }},
      {"turn", 2, 3, {2, 0, 1, 0, 0, 1, 2, 3}, [](int i, int j) { return Node{2 - j, i}; }},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    MeshSpec layout;  // 3 x 2
    load(MakeDoc({MakeMeshArt(layout), MakeMeshArt(Plain(c.dstI, c.dstJ, 300))}));
    const MeshContent src = content(0);
    ZS_RestoreMeshData s{0, 0, 0, 1, 0, 0, 3, 2};
    ZS_RestoreMeshData d = c.dst;
    ASSERT_EQ(RestoreMeshPart(art(0), art(1), &s, &d), 0);
    EXPECT_TRUE(SameContent(content(1), MapMesh(src, c.dstI, c.dstJ, c.map), 0.0));
    TearDown();
    acquired_ = false;
  }
}

TEST_F(PartCopy, ShiftedWindowCopiesPartOfTheSource) {
  MeshSpec layout;
  layout.I = 4;
  layout.J = 3;
  load(MakeDoc({MakeMeshArt(layout), MakeMeshArt(Plain(2, 1, 400))}));
  const MeshContent src = content(0);
  ZS_RestoreMeshData s{1, 1, 0, 1, 0, 0, 2, 1};
  ZS_RestoreMeshData d{0, 0, 0, 1, 0, 0, 2, 1};
  ASSERT_EQ(RestoreMeshPart(art(0), art(1), &s, &d), 0);
  EXPECT_TRUE(SameContent(content(1), SubMesh(src, 1, 3, 1, 2), 0.0));
}

// A selection with single nodes and single non-node vertices, some on runs
// whose start node is not selected.
json SelectedPartly(json mesh) {
  for (json& n : mesh["nodes"]) n["selected"] = false;
  for (int k : {0, 6, 7, 13}) mesh["nodes"][k]["selected"] = true;
  int vertexNo = 0;
  for (json& r : mesh["runs"])
    for (json& e : r["inner"])
      if (e["kind"] == "vertex") e["selected"] = (vertexNo++ % 3) != 1;
  return mesh;
}

TEST_F(PartCopy, CuttingTheWholeGridGivesTheSameMeshAndSelection) {
  MeshSpec layout;
  layout.I = 4;
  layout.J = 2;
  layout.opacity = 0.75;
  layout.blend = "overlay";
  load(MakeDoc({SelectedPartly(MakeMeshArt(layout))}));
  const MeshContent src = content(0);
  ArtObject* part = nullptr;
  ASSERT_EQ(MakeMeshPart(art(0), &part, 0, 4, 0, 2), 0);
  ASSERT_EQ(artCount(), 2u);
  EXPECT_EQ(art(0), part) << "the part is placed directly above the source";
  EXPECT_TRUE(SameContent(content(0), src, 0.0, true));
  EXPECT_TRUE(SameContent(content(1), src, 0.0, true));
  const json doc = written();
  EXPECT_EQ(doc["layers"][0]["children"][0].value("opacity", 1.0), 0.75);
  EXPECT_EQ(doc["layers"][0]["children"][0].value("blend", std::string("normal")), "overlay");
}

TEST_F(PartCopy, CuttingARectangleRenumbersFromItsCorner) {
  MeshSpec layout;
  layout.I = 4;
  layout.J = 2;
  load(MakeDoc({SelectedPartly(MakeMeshArt(layout))}));
  const MeshContent src = content(0);
  ArtObject* part = nullptr;
  ASSERT_EQ(MakeMeshPart(art(0), &part, 1, 3, 1, 2), 0);
  MeshContent want = SubMesh(src, 1, 3, 1, 2);
  EXPECT_TRUE(SameContent(content(0), want, 0.0, true));
}

TEST_F(PartCopy, RectangleWithoutACellOrOutsideTheGridIsRefused) {
  MeshSpec layout;  // 3 x 2
  load(MakeDoc({MakeMeshArt(layout)}));
  const json before = written();
  const int bad[][4] = {{1, 1, 0, 2}, {0, 3, 2, 2}, {-1, 2, 0, 1}, {0, 4, 0, 1}, {0, 3, 0, 3}, {2, 1, 0, 2}};
  for (const auto& r : bad) {
    ArtObject* part = nullptr;
    EXPECT_EQ(MakeMeshPart(art(0), &part, r[0], r[1], r[2], r[3]), 1);
    EXPECT_EQ(part, nullptr);
    EXPECT_EQ(artCount(), 1u);
  }
  EXPECT_EQ(written(), before);
}

}  // namespace
}  // namespace dirtest
