// The raster and placed suites: image record, matrix and pixel values, and
// the conversion of a placed image into native raster art.
#include "host/SuiteRegistry.h"
#include "host/suites/ArtSuiteCommon.h"

namespace lb::host::suites {
namespace {

void fillInfo(const ArtImage& im, AIRasterRecord* info) {
  info->width = im.width;
  info->height = im.height;
  info->colorSpace = im.space;
  info->bitsPerPixel = static_cast<int16_t>(im.bits * im.channels());
  info->hasAlpha = im.alpha ? 1 : 0;
}

AIErr readPixel(const ArtImage& im, int32_t x, int32_t row, AIReal* channels) {
  if (!channels) return kBadParameterErr;
  if (x < 0 || row < 0 || x >= im.width || row >= im.height) return kBadParameterErr;
  if (im.pixels.size() != im.expectedBytes()) return kCantHappenErr;
  for (int c = 0; c < im.channels(); ++c) channels[c] = im.channel(x, row, c);
  return kNoErr;
}

AIErr GetRasterInfo(AIArtHandle raster, AIRasterRecord* info) {
  if (!info) return kBadParameterErr;
  if (AIErr err = checkArt(raster, kRasterArt)) return err;
  fillInfo(raster->image, info);
  return kNoErr;
}

AIErr GetRasterMatrix(AIArtHandle raster, AIRealMatrix* matrix) {
  if (!matrix) return kBadParameterErr;
  if (AIErr err = checkArt(raster, kRasterArt)) return err;
  *matrix = raster->image.matrix;
  return kNoErr;
}

AIErr GetRasterPixel(AIArtHandle raster, int32_t x, int32_t row, AIReal* channels) {
  if (AIErr err = checkArt(raster, kRasterArt)) return err;
  return readPixel(raster->image, x, row, channels);
}

const AIRasterSuite kRasterSuite = {
    .GetRasterInfo = GetRasterInfo,
    .GetRasterMatrix = GetRasterMatrix,
    .GetRasterPixel = GetRasterPixel,
};

AIErr GetPlacedType(AIArtHandle placed, int16_t* type) {
  if (!type) return kBadParameterErr;
  if (AIErr err = checkArt(placed, kPlacedArt)) return err;
  *type = placed->image.placedType;
  return kNoErr;
}

AIErr GetPlacedMatrix(AIArtHandle placed, AIRealMatrix* matrix) {
  if (!matrix) return kBadParameterErr;
  if (AIErr err = checkArt(placed, kPlacedArt)) return err;
  *matrix = placed->image.matrix;
  return kNoErr;
}

AIErr GetPlacedInfo(AIArtHandle placed, AIRasterRecord* info) {
  if (!info) return kBadParameterErr;
  if (AIErr err = checkArt(placed, kPlacedArt)) return err;
  fillInfo(placed->image, info);
  return kNoErr;
}

AIErr GetPlacedPixel(AIArtHandle placed, int32_t x, int32_t row, AIReal* channels) {
  if (AIErr err = checkArt(placed, kPlacedArt)) return err;
  return readPixel(placed->image, x, row, channels);
}

// The raster takes the placed art's place in the paint order, its image,
// matrix, attributes, name, opacity and blending mode.
AIErr ConvertToNative(AIArtHandle placed, AIArtHandle* native) {
  if (!native) return kBadParameterErr;
  *native = nullptr;
  if (AIErr err = checkArt(placed, kPlacedArt)) return err;
  if (placed->image.placedType != kPlacedImageType) return kWrongArtTypeErr;
  Document& d = doc();
  AIArtHandle raster = nullptr;
  if (AIErr err = d.duplicateArt(placed, kPlaceAbove, placed, &raster)) return err;
  raster->type = kRasterArt;
  raster->image.placedType = kPlacedImageType;
  if (AIErr err = d.disposeArt(placed)) return err;
  *native = raster;
  return kNoErr;
}

const AIPlacedSuite kPlacedSuite = {
    .GetPlacedType = GetPlacedType,
    .GetPlacedMatrix = GetPlacedMatrix,
    .GetPlacedInfo = GetPlacedInfo,
    .GetPlacedPixel = GetPlacedPixel,
    .ConvertToNative = ConvertToNative,
};

}  // namespace

void registerRasterSuites() {
  registerSuite(kAIRasterSuite, kAIRasterSuiteVersion, &kRasterSuite);
  registerSuite(kAIPlacedSuite, kAIPlacedSuiteVersion, &kPlacedSuite);
}

}  // namespace lb::host::suites
