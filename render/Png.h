// PNG output of a rendered picture through libpng, with fast compression.
#pragma once

#include <cstdint>
#include <string>

namespace lb::render {

// Writes `width` x `height` pixels in cairo's ARGB32 layout (premultiplied,
// one uint32 per pixel, rows of `stride` pixels) to `path` as 8-bit PNG:
// RGB when every pixel is opaque, RGBA otherwise. Fast zlib level with the
// Up filter: large pictures write several times faster than at the default
// level and stay within a few percent of its size for smooth art. Returns
// an empty string on success, else what went wrong; a failed write may
// leave a partial file at `path` for the caller to remove.
std::string writePng(const std::string& path, const uint32_t* pixels, int width, int height, int stride);

}  // namespace lb::render
