// Helper art makers and the shared group, name and style chores.
#include "ArtBuild.h"

#include <cstdio>

#include "HandleGeometry.h"
#include "HostRefs.h"

using lb::s::sArt;
using lb::s::sArtStyle;
using lb::s::sPath;
using lb::s::sPathStyle;

namespace {

// The steps every maker shares; host failures of creation, segments and
// style are thrown and end the maker.
void MakePath(const AIPathSegment* segs, int16_t count, bool closed, AIArtHandle group, const char* name,
              AIArtStyleHandle style, double red, double green, double blue, double width) {
  try {
    AIArtHandle path = nullptr;
    if (group)
      ThrowIfErr(sArt->NewArt(kPathArt, kPlaceInsideOnBottom, group, &path));
    else
      ThrowIfErr(sArt->NewArt(kPathArt, kPlaceAboveAll, nullptr, &path));
    ZF_SetPixelPerfect(&path, 0);
    ThrowIfErr(sPath->SetPathSegmentCount(path, count));
    ThrowIfErr(sPath->SetPathSegments(path, 0, count, segs));
    sPath->SetPathClosed(path, closed ? 1 : 0);
    ThrowIfErr(ZF_SetStrokeLook(path, red, green, blue, width));
    if (style) sArtStyle->SetArtStyle(path, style);
    if (name) ZF_SetArtName(path, name);
  } catch (int) {
  }
}

AIPathSegment Corner(double h, double v) {
  const AIRealPoint p{h, v};
  return AIPathSegment{p, p, p, 1};
}

}  // namespace

void MakeLine(const AIRealPoint* a, const AIRealPoint* b, AIArtHandle group, const char* name,
              AIArtStyleHandle style, double red, double green, double blue, double width) {
  const AIPathSegment segs[2] = {Corner(a->h, a->v), Corner(b->h, b->v)};
  MakePath(segs, 2, false, group, name, style, red, green, blue, width);
}

void MakePoint(const AIRealPoint* p, AIArtHandle group, const char* name, AIArtStyleHandle style) {
  const AIPathSegment seg = Corner(p->h, p->v);
  MakePath(&seg, 1, false, group, name, style, 0.0, 0.0, 0.0, 1.0);
}

void MakeSquare(const AIRealPoint* centre, double half, AIArtHandle group, const char* name, double red,
                double green, double blue, double width) {
  const double x = centre->h, y = centre->v, h = half;
  const AIPathSegment segs[4] = {Corner(x - h, y - h), Corner(x - h, y + h), Corner(x + h, y + h),
                                 Corner(x + h, y - h)};
  MakePath(segs, 4, true, group, name, nullptr, red, green, blue, width);
}

void MakeSquareMark(const AIRealPoint* centre, int half, const char* name, AIArtHandle group) {
  const double x = centre->h, y = centre->v, d = static_cast<double>(half);
  const AIPathSegment segs[4] = {Corner(x + d, y + d), Corner(x + d, y - d), Corner(x - d, y - d),
                                 Corner(x - d, y + d)};
  MakePath(segs, 4, true, group, name, nullptr, 0.0, 0.0, 0.0, 1.0);
}

void MakeNodeName(int i, int j, char* out) { std::snprintf(out, 23, "%d,%d", i, j); }

void MakeAxisName(int axis, int n, char* out) { std::snprintf(out, 14, "%c=%d", axis == 0 ? 'I' : 'J', n); }

AIErr ZF_SetArtName(AIArtHandle art, const char* name) {
  if (!sAIUnicodeString) return kNotImplementedErr;
  AIUnicodeStringRef str = nullptr;
  AIErr err = sAIUnicodeString->InitializeFromPlatform(&str, name ? name : "");
  if (err != kNoErr) return err;
  err = sArt->SetArtName(art, str);
  sAIUnicodeString->Destroy(str);
  return err;
}

AIArtHandle ZF_NewGroup(int16_t order, AIArtHandle prep, const char* name) {
  AIArtHandle group = nullptr;
  if (sArt->NewArt(kGroupArt, order, prep, &group) != kNoErr) return nullptr;
  if (name) ZF_SetArtName(group, name);
  return group;
}

bool ZF_DeleteIfEmpty(AIArtHandle* group) {
  if (!group || !*group) return false;
  AIArtHandle child = nullptr;
  if (sArt->GetArtFirstChild(*group, &child) != kNoErr || child) return false;
  if (sArt->DisposeArt(*group) != kNoErr) return false;
  *group = nullptr;
  return true;
}

AIArtStyleHandle ZF_FindStyle(const char* name) {
  AIArtStyleHandle style = nullptr;
  if (sArtStyle->GetArtStyleByName(&style, name) != kNoErr) return nullptr;
  return style;
}

AIArtStyleHandle ZF_FindStyleOr(const char* name, AIArtStyleHandle fallback) {
  AIArtStyleHandle style = ZF_FindStyle(name);
  return style ? style : fallback;
}

AIErr ZF_SetStrokeLook(AIArtHandle path, double red, double green, double blue, double width) {
  AIPathStyle st{};
  AIBoolean advanced = 0;
  if (AIErr err = sPathStyle->GetPathStyle(path, &st, &advanced)) return err;
  st.fillPaint = 0;
  st.strokePaint = 1;
  st.stroke.color.kind = kThreeColor;
  st.stroke.color.c.rgb = {red, green, blue};
  st.stroke.width = width;
  return sPathStyle->SetPathStyle(path, &st);
}

void ZF_PointsToSegments(const AIRealPoint* pts, int n, AIPathSegment* segs) {
  const int count = (n + 2) / 3;
  for (int m = 0; m < count; ++m) {
    AIPathSegment& s = segs[m];
    s.p = pts[3 * m];
    s.in = m == 0 ? s.p : pts[3 * m - 1];
    s.out = m == count - 1 ? s.p : pts[3 * m + 1];
    s.corner = 1;
  }
}
