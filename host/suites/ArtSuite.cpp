// The art suite (tree edits, walks, attributes, names, bounds), the art
// style suite (named graphic styles) and the blend style suite.
#include <cmath>
#include <string>

#include "AIFrameSuites.h"
#include "host/Geometry.h"
#include "host/SuiteRegistry.h"
#include "host/suites/ArtSuiteCommon.h"

namespace lb::host::suites {
namespace {

const AIUnicodeStringSuite* unicodeSuite() {
  return static_cast<const AIUnicodeStringSuite*>(findSuite(kAIUnicodeStringSuite, kAIUnicodeStringSuiteVersion));
}

// ---- AI Art Suite ----------------------------------------------------------

AIErr NewArt(int16_t type, int16_t paintOrder, AIArtHandle prep, AIArtHandle* newArt) {
  if (!newArt) return kBadParameterErr;
  *newArt = nullptr;
  return doc().newArt(type, paintOrder, prep, newArt);
}

AIErr DisposeArt(AIArtHandle art) {
  if (AIErr err = checkArt(art)) return err;
  return doc().disposeArt(art);
}

AIErr ReorderArt(AIArtHandle art, int16_t paintOrder, AIArtHandle prep) {
  if (AIErr err = checkArt(art)) return err;
  return doc().reorderArt(art, paintOrder, prep);
}

AIErr DuplicateArt(AIArtHandle art, int16_t paintOrder, AIArtHandle prep, AIArtHandle* newArt) {
  if (!newArt) return kBadParameterErr;
  *newArt = nullptr;
  if (AIErr err = checkArt(art)) return err;
  return doc().duplicateArt(art, paintOrder, prep, newArt);
}

AIErr GetArtParent(AIArtHandle art, AIArtHandle* parent) {
  if (!parent) return kBadParameterErr;
  *parent = nullptr;
  if (AIErr err = checkArt(art)) return err;
  *parent = Document::parentOf(art);
  return kNoErr;
}

AIErr GetArtFirstChild(AIArtHandle art, AIArtHandle* child) {
  if (!child) return kBadParameterErr;
  *child = nullptr;
  if (AIErr err = checkArt(art)) return err;
  *child = Document::firstChild(art);
  return kNoErr;
}

AIErr GetArtSibling(AIArtHandle art, AIArtHandle* sibling) {
  if (!sibling) return kBadParameterErr;
  *sibling = nullptr;
  if (AIErr err = checkArt(art)) return err;
  *sibling = doc().nextSibling(art);
  return kNoErr;
}

AIErr GetArtPriorSibling(AIArtHandle art, AIArtHandle* sibling) {
  if (!sibling) return kBadParameterErr;
  *sibling = nullptr;
  if (AIErr err = checkArt(art)) return err;
  *sibling = doc().priorSibling(art);
  return kNoErr;
}

AIErr GetArtType(AIArtHandle art, int16_t* type) {
  if (!type) return kBadParameterErr;
  if (AIErr err = checkArt(art)) return err;
  *type = art->type;
  return kNoErr;
}

AIErr GetArtUserAttr(AIArtHandle art, int32_t whichAttr, int32_t* attr) {
  if (!attr) return kBadParameterErr;
  if (AIErr err = checkArt(art)) return err;
  *attr = art->userAttr & whichAttr;
  return kNoErr;
}

AIErr SetArtUserAttr(AIArtHandle art, int32_t whichAttr, int32_t attr) {
  if (AIErr err = checkArt(art)) return err;
  const int32_t known = kArtSelected | kArtLocked | kArtHidden;
  if (whichAttr & ~known) return kBadParameterErr;
  const int32_t others = whichAttr & (kArtLocked | kArtHidden);
  art->userAttr = (art->userAttr & ~others) | (attr & others);
  if (whichAttr & kArtSelected) doc().setSelected(art, (attr & kArtSelected) != 0);
  return kNoErr;
}

AIErr GetArtName(AIArtHandle art, AIUnicodeStringRef* name) {
  if (!name) return kBadParameterErr;
  *name = nullptr;
  if (AIErr err = checkArt(art)) return err;
  const AIUnicodeStringSuite* us = unicodeSuite();
  if (!us) return kNotImplementedErr;
  return us->InitializeFromPlatform(name, art->name.c_str());
}

AIErr SetArtName(AIArtHandle art, AIUnicodeStringRef name) {
  if (!name) return kBadParameterErr;
  if (AIErr err = checkArt(art)) return err;
  const AIUnicodeStringSuite* us = unicodeSuite();
  if (!us) return kNotImplementedErr;
  const char* text = nullptr;
  if (AIErr err = us->GetPlatform(name, &text)) return err;
  art->name = text ? text : "";
  return kNoErr;
}

AIErr GetArtBounds(AIArtHandle art, AIRealRect* bounds) {
  if (!bounds) return kBadParameterErr;
  if (AIErr err = checkArt(art)) return err;
  // Art without geometry (an empty group) has an empty rectangle at 0.
  *bounds = doc().bounds(art).value_or(AIRealRect{0, 0, 0, 0});
  return kNoErr;
}

AIErr SetArtPixelPerfect(AIArtHandle art, AIBoolean pixelPerfect) {
  if (AIErr err = checkArt(art)) return err;
  art->pixelPerfect = pixelPerfect != 0;
  return kNoErr;
}

AIErr GetKeyArt(AIArtHandle* art) {
  if (!art) return kBadParameterErr;
  *art = doc().keyArt();
  return kNoErr;
}

AIErr ValidArt(AIArtHandle art, AIBoolean* valid) {
  if (!valid) return kBadParameterErr;
  *valid = doc().contains(art) ? 1 : 0;
  return kNoErr;
}

AIErr TransformArt(AIArtHandle art, const AIRealMatrix* matrix) {
  if (!matrix) return kBadParameterErr;
  if (AIErr err = checkArt(art)) return err;
  doc().transformArt(art, *matrix);
  return kNoErr;
}

const AIArtSuite kArtSuite = {
    .NewArt = NewArt,
    .DisposeArt = DisposeArt,
    .ReorderArt = ReorderArt,
    .DuplicateArt = DuplicateArt,
    .GetArtParent = GetArtParent,
    .GetArtFirstChild = GetArtFirstChild,
    .GetArtSibling = GetArtSibling,
    .GetArtPriorSibling = GetArtPriorSibling,
    .GetArtType = GetArtType,
    .GetArtUserAttr = GetArtUserAttr,
    .SetArtUserAttr = SetArtUserAttr,
    .GetArtName = GetArtName,
    .SetArtName = SetArtName,
    .GetArtBounds = GetArtBounds,
    .SetArtPixelPerfect = SetArtPixelPerfect,
    .GetKeyArt = GetKeyArt,
    .ValidArt = ValidArt,
    .TransformArt = TransformArt,
};

// ---- AI Art Style Suite ----------------------------------------------------
// A style handle is the address of the document's GraphicStyle record.

GraphicStyle* fromHandle(AIArtStyleHandle h) { return reinterpret_cast<GraphicStyle*>(h); }
AIArtStyleHandle toHandle(GraphicStyle* s) { return reinterpret_cast<AIArtStyleHandle>(s); }

AIErr GetArtStyleByName(AIArtStyleHandle* style, const char* name) {
  if (!style || !name) return kBadParameterErr;
  *style = toHandle(doc().styleByName(name));
  return kNoErr;
}

AIErr GetArtStyle(AIArtHandle art, AIArtStyleHandle* style) {
  if (!style) return kBadParameterErr;
  *style = nullptr;
  if (AIErr err = checkArt(art)) return err;
  *style = toHandle(doc().styleByName(art->graphicStyle));
  return kNoErr;
}

// Applying a style names it on the art and replaces the art's look: fill,
// stroke and opacity. A null style removes the name and keeps the look.
AIErr SetArtStyle(AIArtHandle art, AIArtStyleHandle style) {
  if (AIErr err = checkArt(art)) return err;
  if (!style) {
    art->graphicStyle.clear();
    return kNoErr;
  }
  GraphicStyle* s = fromHandle(style);
  if (!doc().ownsStyle(s)) return kBadParameterErr;
  art->graphicStyle = s->name;
  art->opacity = s->opacity;
  art->style = s->paint;
  if (art->type == kCompoundPathArt)
    for (auto& c : art->children) c->style = s->paint;
  return kNoErr;
}

AIErr GetArtStyleName(AIArtStyleHandle style, const char** name) {
  if (!style || !name) return kBadParameterErr;
  GraphicStyle* s = fromHandle(style);
  if (!doc().ownsStyle(s)) return kBadParameterErr;
  *name = s->name.c_str();
  return kNoErr;
}

const AIArtStyleSuite kArtStyleSuite = {
    .GetArtStyleByName = GetArtStyleByName,
    .GetArtStyle = GetArtStyle,
    .SetArtStyle = SetArtStyle,
    .GetArtStyleName = GetArtStyleName,
};

// ---- AI Blend Style Suite --------------------------------------------------
// The getters have no error channel: an invalid handle reads as opaque
// normal art.

AIReal GetOpacity(AIArtHandle art) { return checkArt(art) == kNoErr ? art->opacity : 1.0; }

AIErr SetOpacity(AIArtHandle art, AIReal opacity) {
  if (AIErr err = checkArt(art)) return err;
  if (!(opacity >= 0 && opacity <= 1)) return kBadParameterErr;
  art->opacity = opacity;
  return kNoErr;
}

int32_t GetBlendingMode(AIArtHandle art) {
  return checkArt(art) == kNoErr ? art->blendMode : int32_t(kAINormalBlendingMode);
}

AIErr SetBlendingMode(AIArtHandle art, int32_t mode) {
  if (AIErr err = checkArt(art)) return err;
  if (mode < kAINormalBlendingMode || mode > kAILuminosityBlendingMode) return kBadParameterErr;
  art->blendMode = mode;
  return kNoErr;
}

const AIBlendStyleSuite kBlendStyleSuite = {
    .GetOpacity = GetOpacity,
    .SetOpacity = SetOpacity,
    .GetBlendingMode = GetBlendingMode,
    .SetBlendingMode = SetBlendingMode,
};

}  // namespace

void registerArtSuite() {
  registerSuite(kAIArtSuite, kAIArtSuiteVersion, &kArtSuite);
  registerSuite(kAIArtStyleSuite, kAIArtStyleSuiteVersion, &kArtStyleSuite);
  registerSuite(kAIBlendStyleSuite, kAIBlendStyleSuiteVersion, &kBlendStyleSuite);
}

}  // namespace lb::host::suites
