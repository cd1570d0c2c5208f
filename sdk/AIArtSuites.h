// Host suites for art objects and geometry: art, path, path style, art
// style, blend style, matching art, MdMemory, real math, real Bezier,
// random, raster and placed.
#pragma once

#include "AITypes.h"

// ---- AI Art Suite 17 ---------------------------------------------------
constexpr const char* kAIArtSuite = "AI Art Suite";
constexpr int32_t kAIArtSuiteVersion = 17;
struct AIArtSuite {
  // New art of the given type placed relative to prep (prep may be null for
  // kPlaceAboveAll / kPlaceBelowAll: the current layer).
  AIErr (*NewArt)(int16_t type, int16_t paintOrder, AIArtHandle prep, AIArtHandle* newArt);
  AIErr (*DisposeArt)(AIArtHandle art);
  AIErr (*ReorderArt)(AIArtHandle art, int16_t paintOrder, AIArtHandle prep);
  AIErr (*DuplicateArt)(AIArtHandle art, int16_t paintOrder, AIArtHandle prep, AIArtHandle* newArt);
  AIErr (*GetArtParent)(AIArtHandle art, AIArtHandle* parent);
  AIErr (*GetArtFirstChild)(AIArtHandle art, AIArtHandle* child);
  AIErr (*GetArtSibling)(AIArtHandle art, AIArtHandle* sibling);      // next one down
  AIErr (*GetArtPriorSibling)(AIArtHandle art, AIArtHandle* sibling); // next one up
  AIErr (*GetArtType)(AIArtHandle art, int16_t* type);
  AIErr (*GetArtUserAttr)(AIArtHandle art, int32_t whichAttr, int32_t* attr);
  AIErr (*SetArtUserAttr)(AIArtHandle art, int32_t whichAttr, int32_t attr);
  AIErr (*GetArtName)(AIArtHandle art, AIUnicodeStringRef* name);  // caller destroys
  AIErr (*SetArtName)(AIArtHandle art, AIUnicodeStringRef name);
  AIErr (*GetArtBounds)(AIArtHandle art, AIRealRect* bounds);
  AIErr (*SetArtPixelPerfect)(AIArtHandle art, AIBoolean pixelPerfect);
  AIErr (*GetKeyArt)(AIArtHandle* art);  // null when there is no key object
  AIErr (*ValidArt)(AIArtHandle art, AIBoolean* valid);
  AIErr (*TransformArt)(AIArtHandle art, const AIRealMatrix* matrix);
};

// ---- AI Path Suite 11 --------------------------------------------------
constexpr const char* kAIPathSuite = "AI Path Suite";
constexpr int32_t kAIPathSuiteVersion = 11;
struct AIPathSuite {
  AIErr (*GetPathSegmentCount)(AIArtHandle path, int16_t* count);
  AIErr (*SetPathSegmentCount)(AIArtHandle path, int16_t count);
  AIErr (*GetPathSegments)(AIArtHandle path, int16_t segNumber, int16_t count, AIPathSegment* segs);
  AIErr (*SetPathSegments)(AIArtHandle path, int16_t segNumber, int16_t count, const AIPathSegment* segs);
  AIErr (*GetPathClosed)(AIArtHandle path, AIBoolean* closed);
  AIErr (*SetPathClosed)(AIArtHandle path, AIBoolean closed);
  AIErr (*GetPathSegmentSelected)(AIArtHandle path, int16_t segNumber, int16_t* selected);
  AIErr (*SetPathSegmentSelected)(AIArtHandle path, int16_t segNumber, int16_t selected);
  // Piece k runs from anchor k to anchor k+1 (or back to 0 on a closed path).
  AIErr (*GetPathBezier)(AIArtHandle path, int16_t pieceNumber, AIRealBezier* bezier);
  AIErr (*GetPathLength)(AIArtHandle path, AIReal* length, AIReal flatness);
};

// ---- AI Path Style Suite 13 --------------------------------------------
constexpr const char* kAIPathStyleSuite = "AI Path Style Suite";
constexpr int32_t kAIPathStyleSuiteVersion = 13;
struct AIPathStyleSuite {
  AIErr (*GetPathStyle)(AIArtHandle art, AIPathStyle* style, AIBoolean* hasAdvancedFill);
  AIErr (*SetPathStyle)(AIArtHandle art, const AIPathStyle* style);
};

// ---- AI Art Style Suite 7 ----------------------------------------------
constexpr const char* kAIArtStyleSuite = "AI Art Style Suite";
constexpr int32_t kAIArtStyleSuiteVersion = 7;
struct AIArtStyleSuite {
  // *style is null (and the result kNoErr) when no style has that name.
  AIErr (*GetArtStyleByName)(AIArtStyleHandle* style, const char* name);
  AIErr (*GetArtStyle)(AIArtHandle art, AIArtStyleHandle* style);
  AIErr (*SetArtStyle)(AIArtHandle art, AIArtStyleHandle style);
  AIErr (*GetArtStyleName)(AIArtStyleHandle style, const char** name);
};

// ---- AI Blend Style Suite 5 --------------------------------------------
constexpr const char* kAIBlendStyleSuite = "AI Blend Style Suite";
constexpr int32_t kAIBlendStyleSuiteVersion = 5;
struct AIBlendStyleSuite {
  AIReal (*GetOpacity)(AIArtHandle art);
  AIErr (*SetOpacity)(AIArtHandle art, AIReal opacity);
  int32_t (*GetBlendingMode)(AIArtHandle art);
  AIErr (*SetBlendingMode)(AIArtHandle art, int32_t mode);
};

// ---- AI Matching Art Suite 7 -------------------------------------------
struct AIMatchingArtSpec {
  int16_t type;       // AIArtType, or kAnyArt
  int32_t whichAttr;  // user attribute mask
  int32_t attr;       // wanted values of the masked bits
};
constexpr const char* kAIMatchingArtSuite = "AI Matching Art Suite";
constexpr int32_t kAIMatchingArtSuiteVersion = 7;
struct AIMatchingArtSuite {
  // All art matching any of the patterns, topmost first, as a memory handle
  // to an array of AIArtHandle (dispose with MdMemoryDisposeHandle). With
  // no match, *matches is null and *numMatches 0.
  AIErr (*GetMatchingArt)(const AIMatchingArtSpec* patterns, int16_t numPatterns, AIArtHandle*** matches,
                          int32_t* numMatches);
  AIErr (*GetSelectedArt)(AIArtHandle*** matches, int32_t* numMatches);
};

// ---- AI MdMemory Suite 3 -----------------------------------------------
constexpr const char* kAIMdMemorySuite = "AI MdMemory Suite";
constexpr int32_t kAIMdMemorySuiteVersion = 3;
struct AIMdMemorySuite {
  AIErr (*MdMemoryNewHandle)(size_t size, AIMdMemoryHandle* handle);
  AIErr (*MdMemoryDisposeHandle)(AIMdMemoryHandle handle);
  AIErr (*MdMemoryGetSize)(AIMdMemoryHandle handle, size_t* size);
  AIErr (*MdMemoryResize)(AIMdMemoryHandle handle, size_t newSize);
};

// ---- AI Real Math Suite 3 ----------------------------------------------
constexpr const char* kAIRealMathSuite = "AI Real Math Suite";
constexpr int32_t kAIRealMathSuiteVersion = 3;
struct AIRealMathSuite {
  AIReal (*AIRealPointAngle)(const AIRealPoint* a, const AIRealPoint* b);   // angle of b - a
  AIReal (*AIRealPointLength)(const AIRealPoint* a, const AIRealPoint* b);  // |b - a|
  void (*AIRealPointAdd)(const AIRealPoint* a, const AIRealPoint* b, AIRealPoint* result);
  void (*AIRealPointSubtract)(const AIRealPoint* a, const AIRealPoint* b, AIRealPoint* result);
  void (*AIRealPointLengthAngle)(AIReal length, AIReal angle, AIRealPoint* result);
  AIBoolean (*AIRealPointEqual)(const AIRealPoint* a, const AIRealPoint* b);
  AIBoolean (*AIRealPointClose)(const AIRealPoint* a, const AIRealPoint* b, AIReal tolerance);
  // Two-point interpolation; see the host documentation for which end t is
  // measured from.
  void (*AIRealPointInterpolate)(const AIRealPoint* a, const AIRealPoint* b, AIReal t, AIRealPoint* result);
  void (*AIRealMatrixSetIdentity)(AIRealMatrix* m);
  void (*AIRealMatrixSetTranslate)(AIRealMatrix* m, AIReal tx, AIReal ty);
  void (*AIRealMatrixSetScale)(AIRealMatrix* m, AIReal sh, AIReal sv);
  void (*AIRealMatrixSetRotate)(AIRealMatrix* m, AIReal angle);
  void (*AIRealMatrixConcat)(const AIRealMatrix* a, const AIRealMatrix* b, AIRealMatrix* result);
  AIErr (*AIRealMatrixInvert)(AIRealMatrix* m);
  void (*AIRealMatrixXformPoint)(const AIRealMatrix* m, const AIRealPoint* in, AIRealPoint* out);
  AIBoolean (*AIDoubleEqual)(double a, double b);
  AIBoolean (*AIDoubleClose)(double a, double b, double tolerance);
};

// ---- AI Real Bezier Suite 4 --------------------------------------------
constexpr const char* kAIRealBezierSuite = "AI Real Bezier Suite";
constexpr int32_t kAIRealBezierSuiteVersion = 4;
struct AIRealBezierSuite {
  void (*Evaluate)(const AIRealBezier* b, AIReal t, AIRealPoint* p);
  void (*Tangent)(const AIRealBezier* b, AIReal t, AIRealPoint* v);
  void (*Divide)(const AIRealBezier* b, AIReal t, AIRealBezier* b1, AIRealBezier* b2);
  AIReal (*Length)(const AIRealBezier* b, AIReal flatness);
  void (*Bounds)(const AIRealBezier* b, AIRealRect* r);
};

// ---- AI Random Suite 5 -------------------------------------------------
constexpr const char* kAIRandomSuite = "AI Random Suite";
constexpr int32_t kAIRandomSuiteVersion = 5;
struct AIRandomSuite {
  AIReal (*FloatRnd)();  // uniform in [0, 1)
  void (*SetRndSeed)(int32_t seed);
};

// ---- AI Raster Suite 10 ------------------------------------------------
enum AIRasterColorSpace : int16_t {
  kGrayColorSpace = 0,
  kRGBColorSpace = 1,
  kCMYKColorSpace = 2,
};
struct AIRasterRecord {
  int32_t width;
  int32_t height;
  int16_t colorSpace;  // AIRasterColorSpace
  int16_t bitsPerPixel;
  AIBoolean hasAlpha;
};
constexpr const char* kAIRasterSuite = "AI Raster Suite";
constexpr int32_t kAIRasterSuiteVersion = 10;
struct AIRasterSuite {
  AIErr (*GetRasterInfo)(AIArtHandle raster, AIRasterRecord* info);
  AIErr (*GetRasterMatrix)(AIArtHandle raster, AIRealMatrix* matrix);
  // Channel values 0..1 of pixel (x, row), row 0 at the top, in the
  // colour space's order, alpha last when present.
  AIErr (*GetRasterPixel)(AIArtHandle raster, int32_t x, int32_t row, AIReal* channels);
};

// ---- AI Placed Suite 8 -------------------------------------------------
constexpr const char* kAIPlacedSuite = "AI Placed Suite";
constexpr int32_t kAIPlacedSuiteVersion = 8;
constexpr int16_t kPlacedImageType = 1;
struct AIPlacedSuite {
  AIErr (*GetPlacedType)(AIArtHandle placed, int16_t* type);
  AIErr (*GetPlacedMatrix)(AIArtHandle placed, AIRealMatrix* matrix);
  AIErr (*GetPlacedInfo)(AIArtHandle placed, AIRasterRecord* info);
  AIErr (*GetPlacedPixel)(AIArtHandle placed, int32_t x, int32_t row, AIReal* channels);
  // Replaces a placed image (placed type 1) by native raster art with the
  // same pixels, matrix and place in the paint order; *native is the new
  // raster and the placed handle is no longer valid.
  AIErr (*ConvertToNative)(AIArtHandle placed, AIArtHandle* native);
};
