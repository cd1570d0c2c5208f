// The pictures embedded in the module: every button picture and checkbox
// icon is a BMP with exactly the header the panel's loader expects, and
// the logos are RGBA PNGs of the three sizes.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>

#include "BmpBytes.h"
#include "LBModule.h"

namespace {

uint32_t BigU32(const unsigned char* p) {
  return (uint32_t(p[0]) << 24) | (p[1] << 16) | (p[2] << 8) | p[3];
}

class ModuleResources : public ::testing::Test {
 protected:
  void SetUp() override {
    handle = dlopen(LB_PLUGIN_PATH, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    auto get = reinterpret_cast<LBGetResourceTableProc>(dlsym(handle, kLBGetResourceTableSymbol));
    ASSERT_NE(get, nullptr);
    const LBResourceTable* table = get();
    for (uint32_t i = 0; i < table->count; ++i) {
      const LBResourceEntry& e = table->entries[i];
      if (e.type == AIFourCC("BMPP")) bmpp[e.name] = &e;
      if (e.type == AIFourCC("PNGI")) png[e.name] = &e;
    }
  }
  void TearDown() override {
    if (handle) dlclose(handle);
  }
  void* handle = nullptr;
  std::map<std::string, const LBResourceEntry*> bmpp;
  std::map<std::string, const LBResourceEntry*> png;
};

// The 37 picture names of the command table, and the spare one.
const char* const kButtonPictures[] = {
    "IMG_SET_OF_PATHS", "IMG_AXES_AND_NODES", "IMG_MOVE_CORNER_NODE", "IMG_KNOTS_TO_VERTICES",
    "IMG_VERTICES_TO_KNOTS", "IMG_COLOR_SHIFT", "IMG_COLOR_REFLECT", "IMG_COLOR_ROTATE",
    "IMG_COLOR_CLONE", "IMG_SPLIT", "IMG_ONE_CELL_MESH", "IMG_BMG_CREATE", "IMG_BMG_TO_MESH",
    "IMG_HANDLES_SMOOTH", "IMG_HANDLES_1_3", "IMG_HANDLES_0", "IMG_ALIGN_HOR", "IMG_ALIGN_VERT",
    "IMG_COLOR_SPREAD", "IMG_SEL_REGION", "IMG_SEL_PERIM", "IMG_SEW_MESH_MOVE", "IMG_SEW_MESH_ADD",
    "IMG_COLOR_PATTERN", "IMG_SEL_CROSS", "IMG_SEL_SHIFT", "IMG_ALIGN_PATH", "IMG_COLOR_CAPTURE",
    "IMG_HANDLES_90", "IMG_SEL", "IMG_SEW_DOCKED", "IMG_DENSITY_INC", "IMG_DENSITY_DEC",
    "IMG_SEW_PATH", "IMG_SEW_0", "IMG_UV_RESET", "IMG_DIR_ROTATE", "IMG_000"};

// 54 header bytes: 'BM', file size, pixels at 54, bottom-up size x size,
// one plane, 32 bits, no compression, image size filled in, 3780 pixels
// per metre, no palette; US English.
void ExpectBmpHeader(const LBResourceEntry& e, int size) {
  SCOPED_TRACE(e.name);
  const uint32_t image = uint32_t(size) * size * 4;
  ASSERT_EQ(e.size, 54 + image);
  const auto want = Bmp(size, size, 32, 54, std::vector<unsigned char>(image), image, 3780);
  EXPECT_EQ(std::vector<unsigned char>(e.data, e.data + 54), std::vector<unsigned char>(want.begin(), want.begin() + 54));
  EXPECT_EQ(e.language, 1033);
}

// Each picture has the exact header. A button picture leaves some of its
// cell transparent and draws something opaque (a fully transparent or fully
// opaque picture is a drawing bug); the two checkbox icons are 16 x 16 and
// wholly opaque.
TEST_F(ModuleResources, PicturesHaveTheExactBmpHeaderAndUseTheirAlpha) {
  std::vector<std::string> names(std::begin(kButtonPictures), std::end(kButtonPictures));
  names.insert(names.end(), {"IMG_CB_COLOR", "IMG_CB_OPACITY"});
  for (const std::string& name : names) {
    auto it = bmpp.find(name);
    ASSERT_NE(it, bmpp.end()) << name << " is missing";
    const bool checkbox = name.starts_with("IMG_CB_");
    ExpectBmpHeader(*it->second, checkbox ? 16 : 32);
    int transparent = 0, opaque = 0;
    for (uint32_t k = 54 + 3; k < it->second->size; k += 4) {
      transparent += it->second->data[k] == 0;
      opaque += it->second->data[k] == 255;
    }
    if (checkbox)
      EXPECT_EQ(opaque, 16 * 16) << name;
    else
      EXPECT_TRUE(transparent > 0 && opaque > 20) << name << ": " << transparent << " transparent, " << opaque << " opaque";
  }
  EXPECT_EQ(bmpp.size(), 40u);
}

TEST_F(ModuleResources, LogosAreRgbaPngsOfThreeSizes) {
  const std::map<std::string, uint32_t> sizes = {
      {"LBLOGOW", 23}, {"LBLOGOW_AT_2X", 46}, {"LBLOGOW_AT_3TO2X", 35},
      {"LBLOGOD", 23}, {"LBLOGOD_AT_2X", 46}, {"LBLOGOD_AT_3TO2X", 35}};
  for (const auto& [name, size] : sizes) {
    auto it = png.find(name);
    ASSERT_NE(it, png.end()) << name << " is missing";
    const unsigned char* p = it->second->data;
    ASSERT_GT(it->second->size, 33u);
    EXPECT_EQ(std::memcmp(p, "\x89PNG\r\n\x1a\n", 8), 0) << name;
    EXPECT_EQ(std::memcmp(p + 12, "IHDR", 4), 0) << name;
    // Width, height, 8 bits per channel, RGBA.
    EXPECT_EQ(std::vector<uint32_t>({BigU32(p + 16), BigU32(p + 20), p[24], p[25]}),
              std::vector<uint32_t>({size, size, 8, 6})) << name;
  }
}

}  // namespace
