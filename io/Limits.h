// Limits the document reader enforces; a real document never meets them.
#pragma once

namespace lb::io {

// Every coordinate (points, handles, image translations, the artboard) lies
// within +-kMaxCoordinate.
constexpr double kMaxCoordinate = 1e7;
// Groups and compound paths nest at most this deep below a layer.
constexpr int kMaxArtDepth = 256;
// Arrays and objects open at once in the JSON text (art nesting at the
// limit needs about two levels per art object).
constexpr int kMaxJsonDepth = 1000;

}  // namespace lb::io
