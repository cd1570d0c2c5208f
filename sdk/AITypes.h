// Basic value types shared by the host and the plug-in.
//
// These are our own declarations of the host interface. They are plain C
// layouts (the suites are tables of C function pointers) so that the plug-in
// module and the host agree on them across the dlopen boundary.
#pragma once

#include <cstddef>
#include <cstdint>

using AIErr = int32_t;
using ASErr = AIErr;
using SPErr = AIErr;
using AIBoolean = uint8_t;
using ASBoolean = AIBoolean;
using SPBoolean = AIBoolean;
using AIReal = double;

// A four-character code as a 32-bit value, first character in the high byte.
constexpr int32_t AIFourCC(const char (&s)[5]) {
  return static_cast<int32_t>((static_cast<uint32_t>(static_cast<unsigned char>(s[0])) << 24) |
                              (static_cast<uint32_t>(static_cast<unsigned char>(s[1])) << 16) |
                              (static_cast<uint32_t>(static_cast<unsigned char>(s[2])) << 8) |
                              static_cast<uint32_t>(static_cast<unsigned char>(s[3])));
}

// Error codes. Zero is success; everything else is a host error. Codes are
// four-character constants, as the host publishes them.
constexpr AIErr kNoErr = 0;
constexpr AIErr kSPNoError = 0;
constexpr AIErr kBadParameterErr = AIFourCC("PARM");
constexpr AIErr kOutOfMemoryErr = AIFourCC("!MEM");
constexpr AIErr kSPSuiteNotFoundError = AIFourCC("S!Fd");
constexpr AIErr kNotImplementedErr = AIFourCC("!IMP");
constexpr AIErr kCantHappenErr = AIFourCC("CANT");
constexpr AIErr kNoSuchArtErr = AIFourCC("!ART");
constexpr AIErr kWrongArtTypeErr = AIFourCC("TYPE");
constexpr AIErr kIterAtEndErr = AIFourCC("IEND");
constexpr AIErr kNoSuchResourceErr = AIFourCC("!RES");
constexpr AIErr kNoPanelErr = AIFourCC("!PNL");

struct AIRealPoint {
  AIReal h;
  AIReal v;
};

// Document rectangle: v grows upwards, so top >= bottom for a normal rect.
struct AIRealRect {
  AIReal left;
  AIReal top;
  AIReal right;
  AIReal bottom;
};

// Affine matrix: (h, v) -> (a h + c v + tx, b h + d v + ty).
struct AIRealMatrix {
  AIReal a, b, c, d, tx, ty;
};

// One cubic piece: p0 anchor, p1 out handle, p2 in handle, p3 anchor.
struct AIRealBezier {
  AIRealPoint p0, p1, p2, p3;
};

struct ArtObject;  // defined by the host, opaque to the plug-in
using AIArtHandle = ArtObject*;

struct SPPlugin;  // opaque
using SPPluginRef = SPPlugin*;

// A "memory handle": a pointer to a host-owned block pointer. Disposed
// through the MdMemory suite.
using AIMdMemoryHandle = void**;

// Colours. Components are 0..1. Gray is a tint (0 white, 1 black).
enum AIColorTag : int32_t {
  kGrayColor = 0,
  kFourColor = 1,   // CMYK
  kThreeColor = 5,  // RGB
  kNoneColor = 6,
};

struct AIGrayColorStyle {
  AIReal gray;
};
struct AIFourColorStyle {
  AIReal cyan, magenta, yellow, black;
};
struct AIThreeColorStyle {
  AIReal red, green, blue;
};

union AIColorUnion {
  AIGrayColorStyle g;
  AIFourColorStyle f;
  AIThreeColorStyle rgb;
};

struct AIColor {
  AIColorTag kind;
  AIColorUnion c;
};

// Art types (host codes).
enum AIArtType : int16_t {
  kUnknownArt = 0,
  kGroupArt = 1,
  kPathArt = 2,
  kCompoundPathArt = 3,
  kPlacedArt = 7,
  kRasterArt = 9,
  kMeshArt = 11,
  kAnyArt = -1,
};

// Paint orders for NewArt / ReorderArt / DuplicateArt.
enum AIPaintOrder : int16_t {
  kPlaceAbove = 1,
  kPlaceBelow = 2,
  kPlaceInsideOnTop = 3,
  kPlaceInsideOnBottom = 4,
  kPlaceAboveAll = 5,
  kPlaceBelowAll = 6,
};

// User attribute bits.
enum AIArtUserAttr : int32_t {
  kArtSelected = 0x00000001,
  kArtLocked = 0x00000002,
  kArtHidden = 0x00000004,
};

// Blending modes, in the order the document format lists them.
enum AIBlendingMode : int32_t {
  kAINormalBlendingMode = 0,
  kAIMultiplyBlendingMode,
  kAIScreenBlendingMode,
  kAIOverlayBlendingMode,
  kAISoftLightBlendingMode,
  kAIHardLightBlendingMode,
  kAIColorDodgeBlendingMode,
  kAIColorBurnBlendingMode,
  kAIDarkenBlendingMode,
  kAILightenBlendingMode,
  kAIDifferenceBlendingMode,
  kAIExclusionBlendingMode,
  kAIHueBlendingMode,
  kAISaturationBlendingMode,
  kAIColorBlendingMode,
  kAILuminosityBlendingMode,
};

// Path segment: anchor, in handle, out handle, corner flag.
struct AIPathSegment {
  AIRealPoint p;
  AIRealPoint in;
  AIRealPoint out;
  AIBoolean corner;
};

// Anchor selection state of a path segment.
enum AIPathSegmentSelectionState : int16_t {
  kSegmentNotSelected = 0,
  kSegmentPointSelected = 1,
  kSegmentInSelected = 2,
  kSegmentOutSelected = 3,
  kSegmentInAndOutSelected = 4,
};

struct AIFillStyle {
  AIColor color;
};

struct AIStrokeStyle {
  AIColor color;
  AIReal width;
};

struct AIPathStyle {
  AIBoolean fillPaint;
  AIFillStyle fill;
  AIBoolean strokePaint;
  AIStrokeStyle stroke;
};

// Graphic style handle (named styles of the document).
struct _AIArtStyle;
using AIArtStyleHandle = _AIArtStyle*;

// Host string object (see the Unicode string suite).
struct _AIUnicodeString;
using AIUnicodeStringRef = _AIUnicodeString*;
