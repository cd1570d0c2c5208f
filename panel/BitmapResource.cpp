// Reading a button picture out of the plug-in's own resources.
#include <algorithm>
#include <cstring>
#include <vector>

#include "Suites.h"
#include "ZC_DIB.h"

namespace {

// Where the pixel rows of a BMP file image end, by its headers: at least the
// two headers; beyond them only for the 24- and 32-bit images we load.
size_t BmpImageEnd(const std::vector<unsigned char>& bytes) {
  constexpr size_t kHeaders = 14 + 40;
  if (bytes.size() < kHeaders) return kHeaders;
  BITMAPFILEHEADER fh;
  BITMAPINFOHEADER ih;
  std::memcpy(&fh, bytes.data(), 14);
  std::memcpy(&ih, bytes.data() + 14, 40);
  if ((ih.biBitCount != 24 && ih.biBitCount != 32) || ih.biWidth <= 0 || ih.biHeight <= 0)
    return kHeaders;
  const size_t stride = ih.biBitCount == 24 ? (3 * static_cast<size_t>(ih.biWidth) + 3) & ~size_t{3}
                                            : 4 * static_cast<size_t>(ih.biWidth);
  return std::max(kHeaders, fh.bfOffBits + stride * static_cast<size_t>(ih.biHeight));
}

}  // namespace

AIErr LoadBitmapResource(const char* name, ZC_DIB& target) {
  if (!sAIDataFilter) return kNoErr;
  AIDataFilter* filter = nullptr;
  AIErr err = sAIDataFilter->NewResourceDataFilter(gPluginRef, AIFourCC("BMPP"), 0, name, &filter);
  if (err || !filter) return sAIDataFilter->UnlinkDataFilter(filter, nullptr);

  sAIDataFilter->LinkDataFilter(nullptr, filter);
  std::vector<unsigned char> bytes;
  for (;;) {
    char chunk[1024];
    size_t count = sizeof(chunk);
    if (sAIDataFilter->ReadDataFilter(filter, chunk, &count))
      return sAIDataFilter->UnlinkDataFilter(filter, nullptr);
    bytes.insert(bytes.end(), chunk, chunk + count);
    if (count < sizeof(chunk)) break;
  }
  if (!bytes.empty()) {
    // A truncated picture is read as if its missing bytes were zero, so
    // that loading never reads past what the resource held.
    bytes.resize(std::max(bytes.size(), BmpImageEnd(bytes)), 0);
    target.LoadFromBuff(bytes.data());
  }
  return sAIDataFilter->UnlinkDataFilter(filter, nullptr);
}
