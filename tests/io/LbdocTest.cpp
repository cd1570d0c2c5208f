// .lbdoc reading and writing: every art type and key round-trips, every
// malformed document names the offending value, writes are atomic.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <dirent.h>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "host/Document.h"
#include "io/Describe.h"
#include "io/Lbdoc.h"
#include "IoTest.h"
#include "support/MeshRecipe.h"

using lb::io::FormatError;
using lb::io::readDocument;
using lb::io::writeDocument;
using iotest::ReadError;
using lb::test::slurp;

namespace {

// A document with every art type and every key set to a non-default value
// (the writer's layout input: its bottom layer holds one deep chain of groups).
std::unique_ptr<lb::host::Document> full() {
  return lb::io::readDocumentFile(iotest::SourcePath("tests/io/golden/layout-input.lbdoc"));
}

// A one-layer document around one art object.
std::string withArt(const std::string& art) {
  return R"({"latticebender": 1, "layers": [{"name": "L", "children": [)" + art + "]}]}";
}

std::set<std::string> listDir(const std::string& dir) {
  std::set<std::string> names;
  if (DIR* d = opendir(dir.c_str())) {
    while (dirent* e = readdir(d)) {
      const std::string n = e->d_name;
      if (n != "." && n != "..") names.insert(n);
    }
    closedir(d);
  }
  return names;
}

}  // namespace

// The description shows each art's type, id, name, flags, opacity, blend,
// style, anchor and child counts, image format and the key art; the model
// holds the rest.
TEST(LbdocRead, EveryKeyLandsInTheModelAndItsDescription) {
  auto doc = full();
  const std::string text = lb::io::describeDocument(*doc);
  for (const char* line : {"2 layers, 2 styles", "layer \"Top\"",
                           "  group \"Group\" #g hidden locked opacity=0.1 blend=luminosity (2 children)",
                           "    path \"P\" #p selected style=\"[LB][Axis]\" 2 anchors closed, 1 selected",
                           "raster #r 2x2 gray+alpha 8-bit", "placed #pl selected 1x1 cmyk 16-bit placedType=3",
                           "mesh \"Mesh\" #m selected opacity=0.75 blend=multiply key 2x3 cells",
                           "2x3 cells, 12 vertices, 1 selected", "layer \"Bottom\" hidden locked (1 child)"})
    EXPECT_NE(text.find(line), std::string::npos) << line << "\n" << text;

  ASSERT_TRUE(doc->artboard);
  const AIRealRect& ab = *doc->artboard;
  EXPECT_EQ(std::vector<double>({ab.left, ab.bottom, ab.right, ab.top}), std::vector<double>({-10, -20, 110.5, 220.25}));
  const auto* axis = doc->styleByName("[LB][Axis]");
  ASSERT_NE(axis, nullptr);
  EXPECT_EQ(std::make_tuple(axis->paint.fillPaint, axis->paint.strokePaint, axis->paint.stroke.width),
            std::make_tuple(0, 1, 3.0));
  EXPECT_EQ(doc->styleByName("[LB][Node]")->paint.fill.color.c.f.black, 0.4);
  EXPECT_EQ(doc->styleByName("[LB][Node]")->opacity, 0.5);

  const ArtObject* top = doc->layers()[0].get();
  ASSERT_EQ(top->children.size(), 4u);
  const ArtObject* g = top->children[0].get();
  EXPECT_EQ(g->parent, top);
  ASSERT_EQ(g->children.size(), 2u);
  const ArtObject* p = g->children[0].get();
  ASSERT_EQ(p->segments.size(), 2u);
  const AIPathStyle& ps = p->style;
  EXPECT_EQ(std::make_tuple(ps.fillPaint, ps.fill.color.kind, ps.fill.color.c.g.gray, ps.strokePaint,
                            ps.stroke.color.kind, ps.stroke.width),
            std::make_tuple(1, kGrayColor, 0.3, 1, kNoneColor, 0.1));
  const AIPathSegment &s0 = p->segments[0], &s1 = p->segments[1];
  EXPECT_EQ(std::vector<double>({s0.in.h, s0.in.v, s0.out.h, double(s0.corner)}),
            std::vector<double>({0.30000000000000004, 1e-300, -5, 0}));
  // Retracted handles default to the anchor; corner defaults to true.
  EXPECT_EQ(std::vector<double>({s1.in.h, s1.out.v, double(s1.corner)}), std::vector<double>({1, 2, 1}));
  // An anchor selection selects the path.
  EXPECT_EQ(std::vector<int>({doc->anchorSelection(p, 0), doc->anchorSelection(p, 1)}),
            std::vector<int>({kSegmentInAndOutSelected, kSegmentNotSelected}));

  const ArtObject* c = g->children[1].get();
  EXPECT_EQ(std::make_tuple(c->type, c->blendMode), std::make_tuple(kCompoundPathArt, kAISoftLightBlendingMode));
  ASSERT_EQ(c->children.size(), 1u);

  const ArtObject* r = top->children[1].get();
  EXPECT_EQ(std::make_pair(r->image.matrix.b, r->image.matrix.ty), std::make_pair(0.5, 200.0));
  EXPECT_EQ(r->image.pixels, (std::vector<uint8_t>{0, 1, 2, 3, 4, 5, 6, 7}));
  EXPECT_EQ(std::make_tuple(r->style.fillPaint, r->style.fill.color.c.rgb.green), std::make_tuple(1, 0.5));
  EXPECT_EQ(top->children[2]->image.matrix.a, 1);  // identity by default
  const ArtObject* m = top->children[3].get();
  EXPECT_TRUE(doc->contains(m) && doc->contains(p) && doc->contains(c->children[0].get()));
}

TEST(LbdocRead, DefaultsOfOptionalKeys) {
  auto doc = readDocument(withArt(R"({"type": "path", "segments": []})"));
  EXPECT_FALSE(doc->artboard);
  EXPECT_TRUE(doc->keyArtId.empty());
  const ArtObject* p = doc->layers()[0]->children[0].get();
  EXPECT_EQ(std::make_tuple(p->id, p->name, p->userAttr, p->opacity, p->blendMode, p->closed, p->style.fillPaint,
                            p->style.strokePaint),
            std::make_tuple("", "", 0, 1.0, kAINormalBlendingMode, false, 0, 0));
  auto r = readDocument(withArt(R"({"type": "raster", "width": 1, "height": 1, "pixels": "AA=="})"));
  const ArtImage& im = r->layers()[0]->children[0]->image;
  EXPECT_EQ(std::make_tuple(im.space, im.alpha, im.bits), std::make_tuple(kGrayColorSpace, false, 8));
  // Stroke width defaults to 1.
  auto s = readDocument(withArt(R"({"type": "path", "stroke": {"color": {"gray": 1}}, "segments": []})"));
  EXPECT_EQ(s->layers()[0]->children[0]->style.stroke.width, 1);
  // A bool per anchor reads as 0 or 1.
  auto b = readDocument(withArt(R"({"type": "path", "segments": [{"p": [0, 0], "selected": true}, {"p": [1, 0], "selected": false}]})"));
  const ArtObject* q = b->layers()[0]->children[0].get();
  EXPECT_EQ(std::vector<int>({b->anchorSelection(q, 0), b->anchorSelection(q, 1)}),
            std::vector<int>({kSegmentPointSelected, kSegmentNotSelected}));
}

// A selected path without anchor states has every anchor selected, and
// that is written out per anchor (every other key of a written file: the
// writer's golden layout).
TEST(LbdocRoundTrip, ImplicitAnchorSelectionIsWrittenPerAnchor) {
  auto doc = readDocument(withArt(R"({"type": "path", "selected": true, "segments": [{"p": [0, 0]}, {"p": [1, 0]}]})"));
  const ArtObject* path = doc->layers()[0]->children[0].get();
  for (int k : {0, 1}) EXPECT_EQ(doc->anchorSelection(path, k), kSegmentPointSelected) << k;
  const auto j = nlohmann::json::parse(writeDocument(*doc));
  for (const auto& s : j["layers"][0]["children"][0]["segments"]) EXPECT_EQ(s["selected"], 1);
}

TEST(LbdocRoundTrip, ModelEditsSurvive) {
  lb::host::Document d;
  d.addLayer("A");
  ArtObject* p = nullptr;
  ASSERT_EQ(d.newArt(kPathArt, kPlaceAboveAll, nullptr, &p), kNoErr);
  p->segments = {AIPathSegment{{1.0 / 3, 2.0 / 3}, {0.1, 0.2}, {M_PI, -M_E}, 0}};
  p->segmentSelection = {3};
  p->userAttr = kArtSelected;
  p->opacity = 0.123456789012345678;
  p->blendMode = kAIColorDodgeBlendingMode;
  ArtObject* m = nullptr;
  ASSERT_EQ(d.newArt(kMeshArt, kPlaceBelowAll, nullptr, &m), kNoErr);
  m->mesh->initCartesian(4, 1);
  auto back = readDocument(writeDocument(d));
  const ArtObject* p2 = back->layers()[0]->children[0].get();
  EXPECT_EQ(std::make_tuple(p2->segments[0].p.h, p2->segments[0].out.v, back->anchorSelection(p2, 0), p2->opacity,
                            p2->blendMode),
            std::make_tuple(1.0 / 3, -M_E, kSegmentOutSelected, 0.123456789012345678, kAIColorDodgeBlendingMode));
  // A new path's look (stroked black) is written and read back.
  EXPECT_EQ(std::make_tuple(p2->style.strokePaint, p2->style.stroke.color.c.g.gray), std::make_tuple(1, 1.0));
  const ArtObject* m2 = back->layers()[0]->children[1].get();
  EXPECT_EQ(std::make_pair(m2->mesh->sizeI(), m2->mesh->sizeJ()), std::make_pair(4, 1));
  EXPECT_EQ(writeDocument(*back), writeDocument(d));
}

TEST(LbdocErrors, EachNamesTheOffendingValue) {
  struct Case {
    std::string text;
    std::string path;
    std::string words;  // part of the message
  };
  const std::string seg2 = R"("segments": [{"p": [0, 0]}, {"p": [1, 0]}])";
  const std::string A = "layers[0].children[0]";  // the one art of withArt
  const std::vector<Case> cases = {
      {R"({"layers": []})", "latticebender", "missing"},
      {R"({"latticebender": 2, "layers": []})", "latticebender", "version"},
      {R"({"latticebender": "1", "layers": []})", "latticebender", "integer"},
      {R"({"latticebender": 1})", "layers", "missing"},
      {R"({"latticebender": 1, "layers": [], "extra": 0})", "extra", "unknown key"},
      {R"({"latticebender": 1, "layers": {}})", "layers", "array"},
      {R"({"latticebender": 1, "artboard": [0, 0, 1], "layers": []})", "artboard", ""},
      {R"({"latticebender": 1, "artboard": [0, 0, 1, "x"], "layers": []})", "artboard[3]", "number"},
      {R"({"latticebender": 1, "artboard": [5, 0, 1, 1], "layers": []})", "artboard", "empty"},
      {R"({"latticebender": 1, "key": "nobody", "layers": []})", "key", "nobody"},
      {R"({"latticebender": 1, "styles": [{"name": "a"}, {"name": "a"}], "layers": []})", "styles[1].name",
       "duplicate"},
      {R"({"latticebender": 1, "styles": [{"fill": null}], "layers": []})", "styles[0].name", "missing"},
      {R"({"latticebender": 1, "styles": [{"name": "s", "opacity": 2}], "layers": []})", "styles[0].opacity", "0..1"},
      {R"({"latticebender": 1, "styles": [{"name": "s", "fill": {"color": {"gray": 0.5}, "width": 2}}], "layers": []})",
       "styles[0].fill.width", "unknown key"},
      {R"({"latticebender": 1, "layers": [{"name": 3}]})", "layers[0].name", "string"},
      {R"({"latticebender": 1, "layers": [{"name": "L", "visible": true}]})", "layers[0].visible", "unknown key"},
      {withArt(R"({"segments": []})"), A + ".type", "missing"},
      {withArt(R"({"type": "circle"})"), A + ".type", "circle"},
      {withArt(R"({"type": "path", "segments": [], "colour": 1})"), A + ".colour", "unknown key"},
      {withArt(R"({"type": "path"})"), A + ".segments", "missing"},
      {withArt(R"({"type": "path", "segments": [{"p": [0, 0]}, {"p": [0]}]})"), A + ".segments[1].p", ""},
      {withArt(R"({"type": "path", "segments": [{"in": [0, 0]}]})"), A + ".segments[0].p", "missing"},
      {withArt(R"({"type": "path", "segments": [{"p": [0, 0], "selected": 5}]})"), A + ".segments[0].selected", "0..4"},
      {withArt(R"({"type": "path", "segments": [{"p": [0, 0], "corner": 1}]})"),
       A + ".segments[0].corner", "true or false"},
      {withArt(R"({"type": "path", "fill": {"color": {"rgb": [0, 1.5, 0]}}, "segments": []})"),
       A + ".fill.color.rgb[1]", "0..1"},
      {withArt(R"({"type": "path", "fill": {"color": {"cmyk": [0, 0, 0, -0.1]}}, "segments": []})"),
       A + ".fill.color.cmyk[3]", "0..1"},
      {withArt(R"({"type": "path", "stroke": {"color": {"gray": 0.5, "rgb": [0, 0, 0]}}, "segments": []})"),
       A + ".stroke.color", "exactly one"},
      {withArt(R"({"type": "path", "stroke": {"color": "red"}, "segments": []})"), A + ".stroke.color", "red"},
      {withArt(R"({"type": "path", "stroke": {"width": 1}, "segments": []})"), A + ".stroke.color", "missing"},
      {withArt(R"({"type": "path", "opacity": 1.01, )" + seg2 + "}"), A + ".opacity", "0..1"},
      {withArt(R"({"type": "path", "blend": "add", )" + seg2 + "}"), A + ".blend", "add"},
      {withArt(R"({"type": "path", "graphicStyle": "[LB][Nope]", )" + seg2 + "}"),
       A + ".graphicStyle", "unknown style"},
      {withArt(R"({"type": "path", "selected": "yes", )" + seg2 + "}"), A + ".selected", "true or false"},
      {withArt(R"({"type": "path", "id": "a", "segments": []}, {"type": "group", "children": [{"type": "path", "id": "a", "segments": []}]})"),
       "layers[0].children[1].children[0].id", "duplicate id"},
      {withArt(R"({"type": "compound", "children": [{"type": "group", "children": []}]})"),
       A + ".children[0].type", "only paths"},
      {withArt(R"({"type": "group", "children": [{"type": "path", "segments": [{"p": [0, 1e999]}]}]})"), "", ""},
      {withArt(R"({"type": "raster", "width": 2, "height": 1, "pixels": "AA=="})"), A + ".pixels", "expected 2"},
      {withArt(R"({"type": "raster", "width": 1, "height": 1, "space": "rgb", "alpha": true, "pixels": "AAAA"})"),
       A + ".pixels", "expected 4"},
      {withArt(R"({"type": "raster", "width": 1, "height": 1, "pixels": "A*=="})"), A + ".pixels", "base64"},
      {withArt(R"({"type": "raster", "width": 0, "height": 1, "pixels": ""})"), A + ".width", "at least 1"},
      {withArt(R"({"type": "raster", "width": 1.5, "height": 1, "pixels": "AA=="})"), A + ".width", "integer"},
      {withArt(R"({"type": "raster", "width": 1, "height": 1, "bits": 12, "pixels": "AA=="})"), A + ".bits", "8 or 16"},
      {withArt(R"({"type": "raster", "width": 1, "height": 1, "space": "lab", "pixels": "AA=="})"),
       A + ".space", "lab"},
      {withArt(R"({"type": "raster", "width": 1, "height": 1, "pixels": "AA==", "matrix": [1, 0, 0, 1, 0]})"),
       A + ".matrix", ""},
      {withArt(R"({"type": "raster", "width": 1, "height": 1, "pixels": "AA==", "placedType": 1})"),
       A + ".placedType", "unknown key"},
      {withArt(R"({"type": "placed", "width": 1, "height": 1, "pixels": "AA==", "placedType": "image"})"),
       A + ".placedType", "integer"},
      {withArt(R"({"type": "mesh", "size": [1, 1], "segments": []})"), A + ".segments", "unknown key"},
      {withArt(R"({"type": "group", "children": [{"type": "mesh", "size": [1, 1], "nodes": []}]})"),
       A + ".children[0].nodes", ""},
      {"{\n  \"latticebender\": 1,\n  \"layers\": [,]\n}", "line 3, column 14", "malformed JSON"},
      {"[1, 2]", "document", ""},
  };
  for (const Case& c : cases) {
    const FormatError e = ReadError(c.text);
    if (c.path.empty()) continue;  // only that it fails
    EXPECT_EQ(e.path(), c.path) << c.text << "\n" << e.what();
    EXPECT_NE(std::string(e.what()).find(c.words), std::string::npos) << e.what();
  }
}

TEST(LbdocFiles, AtomicWriteReplacesWholeFileAndLeavesNoTemporaries) {
  char tmpl[] = "/tmp/lbdoc-test-XXXXXX";
  ASSERT_NE(mkdtemp(tmpl), nullptr);
  const std::string dir = tmpl;
  const std::string path = dir + "/doc.lbdoc";
  auto doc = full();
  {
    std::ofstream out(path);
    out << "old contents";
  }
  lb::io::writeDocumentFileAtomic(*doc, path);
  EXPECT_EQ(slurp(path), writeDocument(*doc));
  EXPECT_EQ(listDir(dir), (std::set<std::string>{"doc.lbdoc"}));
  auto back = lb::io::readDocumentFile(path);
  EXPECT_EQ(writeDocument(*back), writeDocument(*doc));
  // A file that is not there is named (files with bad values: HostileTest).
  const std::string missing = ReadError(dir + "/missing.lbdoc", true).what();
  EXPECT_NE(missing.find("missing.lbdoc"), std::string::npos) << missing;

  // A failed write (the target is a directory, so the rename fails) leaves
  // the directory as it was: no partial file, no temporary.
  const std::string blocked = dir + "/blocked";
  ASSERT_EQ(mkdir(blocked.c_str(), 0755), 0);
  EXPECT_THROW(lb::io::writeDocumentFileAtomic(*doc, blocked), std::runtime_error);
  EXPECT_EQ(listDir(dir), (std::set<std::string>{"doc.lbdoc", "blocked"}));
  // A directory that does not exist: nothing is created.
  EXPECT_THROW(lb::io::writeDocumentFileAtomic(*doc, dir + "/no/such/dir/x.lbdoc"), std::runtime_error);
  EXPECT_EQ(listDir(dir), (std::set<std::string>{"doc.lbdoc", "blocked"}));
  EXPECT_EQ(slurp(path), writeDocument(*doc));
  rmdir(blocked.c_str());
  std::remove(path.c_str());
  rmdir(dir.c_str());
}

TEST(LbdocMesh, SelectionRulesBetweenArtAndVertices) {
  // Unselected art with a selected node: selected art, that node only.
  lbtest::MeshRecipe r;
  r.I = 2, r.J = 1, r.selected = {{1, 1}}, r.artSelected = false;
  auto partial = readDocument(lbtest::DocJson(r).dump());
  const ArtObject* p = partial->layers()[0]->children[0].get();
  EXPECT_EQ(std::make_pair(p->selected(), p->mesh->selectedCount()), std::make_pair(true, size_t(1)));
  // A selected mesh whose vertices were all deselected stays that way
  // through a write and a read.
  auto again = readDocument(writeDocument(*partial));
  EXPECT_EQ(writeDocument(*again), writeDocument(*partial));
  partial->layers()[0]->children[0]->mesh->clearSelection();
  auto empty = readDocument(writeDocument(*partial));
  EXPECT_TRUE(empty->layers()[0]->children[0]->selected());
  EXPECT_TRUE(empty->layers()[0]->children[0]->mesh->isSelectionEmpty());
}
