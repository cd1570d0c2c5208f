// LoadBitmapResource against a scripted data-filter suite: the request
// sizes, the stop rule, the unlinking on every path and the codes.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "AIFrameSuites.h"
#include "BmpBytes.h"
#include "ZC_DIB.h"

// The plug-in globals the loader reads; the real ones live in the module.
const AIDataFilterSuite* sAIDataFilter = nullptr;
SPPluginRef gPluginRef = reinterpret_cast<SPPluginRef>(0x1234);

struct _AIDataFilter { std::vector<unsigned char> data; size_t pos = 0; };

namespace {

struct Script {
  std::map<std::string, std::vector<unsigned char>> resources;
  std::vector<size_t> requests;  // sizes asked for
  std::vector<size_t> returned;  // sizes given
  int32_t lastType = 0;
  SPPluginRef lastPlugin = nullptr;
  int links = 0;
  int unlinks = 0;
  int failReadAt = -1;  // index of the read that fails
  AIErr unlinkCode = kNoErr;
  bool returnNullFilter = false;
};
Script* gScript = nullptr;

AIErr New(SPPluginRef plugin, int32_t type, int32_t, const char* name, AIDataFilter** filter) {
  gScript->lastType = type;
  gScript->lastPlugin = plugin;
  *filter = nullptr;
  if (gScript->returnNullFilter) return kNoErr;
  auto it = gScript->resources.find(name ? name : "");
  if (it == gScript->resources.end()) return kNoSuchResourceErr;
  *filter = new _AIDataFilter{it->second, 0};
  return kNoErr;
}
AIErr Link(AIDataFilter*, AIDataFilter*) {
  ++gScript->links;
  return kNoErr;
}
AIErr Unlink(AIDataFilter* f, AIDataFilter**) {
  ++gScript->unlinks;
  delete f;
  return gScript->unlinkCode;
}
AIErr Read(AIDataFilter* f, char* store, size_t* count) {
  gScript->requests.push_back(*count);
  if (static_cast<int>(gScript->requests.size()) - 1 == gScript->failReadAt) return AIFourCC("READ");
  size_t n = std::min(*count, f->data.size() - f->pos);
  if (n) std::memcpy(store, f->data.data() + f->pos, n);
  f->pos += n;
  *count = n;
  gScript->returned.push_back(n);
  return kNoErr;
}
const AIDataFilterSuite kSuite = {
    .NewResourceDataFilter = New, .LinkDataFilter = Link, .UnlinkDataFilter = Unlink, .ReadDataFilter = Read};

// A 32-bit BMP of w x h pixels, all (b, g, r, a) = (1, 2, 3, 4), padded
// with zero bytes to `total` when given.
std::vector<unsigned char> Bmp32(int w, int h, size_t total = 0) {
  std::vector<unsigned char> px;
  for (int i = 0; i < w * h; ++i) px.insert(px.end(), {1, 2, 3, 4});
  auto buf = Bmp(w, h, 32, 54, px);
  if (buf.size() < total) buf.resize(total, 0);
  return buf;
}

class LoadBitmap : public ::testing::Test {
 protected:
  void SetUp() override {
    gScript = &script;
    sAIDataFilter = &kSuite;
  }
  void TearDown() override {
    sAIDataFilter = nullptr;
    gScript = nullptr;
  }
  Script script;
};

TEST_F(LoadBitmap, ReadsInKilobytePiecesUntilAShortRead) {
  const struct { std::vector<unsigned char> bytes; std::vector<size_t> returned; int width; } cases[] = {
      {Bmp32(32, 32), {1024, 1024, 1024, 1024, 54}, 32},  // 4150 bytes: 1024 x 4 + 54
      {Bmp32(15, 16, 1024), {1024, 0}, 15},               // 54 + 960 bytes, padded to 1024: a second, empty read
      {{}, {0}, 5},                                       // empty: the target is left
  };
  for (const auto& c : cases) {
    script = Script{};
    script.resources["PIC"] = c.bytes;
    ZC_DIB d(5, 5, 24);
    EXPECT_EQ(LoadBitmapResource("PIC", d), kNoErr);
    EXPECT_EQ(script.requests, std::vector<size_t>(c.returned.size(), 1024));
    EXPECT_EQ(script.returned, c.returned);
    EXPECT_EQ(std::make_pair(script.lastType, script.lastPlugin), std::make_pair(AIFourCC("BMPP"), gPluginRef));
    EXPECT_EQ(std::make_pair(script.links, script.unlinks), std::make_pair(1, 1));
    EXPECT_EQ(d.GetW(), c.width);
    if (c.width != 32) continue;
    ASSERT_EQ(d.GetH(), 32);
    const unsigned char* p = d.PixelAt(31, 31);
    EXPECT_EQ(std::vector<int>(p, p + 4), (std::vector<int>{1, 2, 3, 4}));
  }
}

// A missing resource, a null filter and a failed third read: the filter is
// unlinked, the target kept and the unlink code returned.
TEST_F(LoadBitmap, FailuresUnlinkKeepTheTargetAndReturnTheUnlinkCode) {
  const struct { const char* name; bool nullFilter; int failReadAt; size_t requests; int links; } cases[] = {
      {"NOPE", false, -1, 0, 0}, {"NOPE", true, -1, 0, 0}, {"PIC", false, 2, 3, 1}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.name << " " << c.nullFilter);
    script = Script{};
    script.resources["PIC"] = Bmp32(32, 32);
    script.returnNullFilter = c.nullFilter;
    script.failReadAt = c.failReadAt;
    script.unlinkCode = AIFourCC("UNLK");
    ZC_DIB d(5, 5, 24);
    EXPECT_EQ(LoadBitmapResource(c.name, d), AIFourCC("UNLK"));
    EXPECT_EQ(d.GetW(), 5);
    EXPECT_EQ(script.requests.size(), c.requests);
    EXPECT_EQ(std::make_pair(script.links, script.unlinks), std::make_pair(c.links, 1));
  }
}

TEST_F(LoadBitmap, TruncatedPictureLoadsWithoutReadingPastItsEnd) {
  auto bytes = Bmp32(4, 4);
  bytes.resize(54 + 4 * 4 * 2);  // the top two rows are missing
  script.resources["CUT"] = bytes;
  ZC_DIB d;
  EXPECT_EQ(LoadBitmapResource("CUT", d), kNoErr);
  ASSERT_EQ(d.GetH(), 4);
  const unsigned char* bottom = d.PixelAt(0, 3);
  const unsigned char* top = d.PixelAt(0, 0);
  EXPECT_EQ(std::vector<int>(bottom, bottom + 4), (std::vector<int>{1, 2, 3, 4}));
  EXPECT_EQ(std::vector<int>(top, top + 4), (std::vector<int>{0, 0, 0, 0}));

  script.resources["TINY"] = {'B', 'M', 0, 0};
  ZC_DIB e(2, 2, 24);
  EXPECT_EQ(LoadBitmapResource("TINY", e), kNoErr);
  EXPECT_TRUE(e.IsEmpty());  // no bit count: nothing to load
}

TEST(LoadBitmapWithoutSuite, DoesNothing) {
  ASSERT_EQ(sAIDataFilter, nullptr);
  ZC_DIB d(2, 2, 24);
  EXPECT_EQ(LoadBitmapResource("PIC", d), kNoErr);
  EXPECT_EQ(d.GetW(), 2);
}

}  // namespace
