// Tests: the recording fakes of operations, panel and host suites.
#include "Fakes.h"

// The fake suites fill in only the members the frame calls.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

#include <cstdlib>
#include <cstring>
#include <sstream>

#include "AIFrameSuites.h"
#include "Operations.h"
#include "Panel.h"
#include "Suites.h"
#include "color/ColorOpacity.h"

namespace fake {
std::vector<Call> calls;
HostState host;
PanelState panel;

void resetHost() { host = HostState{}; }
}  // namespace fake

int CColorOpacity::sm_bUseColor = 1;
int CColorOpacity::sm_bUseOpacity = 0;
int CColorOpacity::sm_bUseAll = 0;

namespace {
template <class... A>
int Record(const char* name, A... args) {
  std::ostringstream s;
  s << name << '(';
  [[maybe_unused]] const char* sep = "";
  ((s << sep << static_cast<long>(args), sep = ","), ...);
  s << ')';
  fake::calls.push_back({s.str(), CColorOpacity::sm_bUseColor, CColorOpacity::sm_bUseOpacity,
                         lb::s::gAcquireCount});
  return 0;
}
}  // namespace

int MakeMeshGrid(int a, int b) { return Record("MakeMeshGrid", a, b); }
int MakeMeshDotsGroup() { return Record("MakeMeshDotsGroup"); }
int MakeMeshCornerNodesAndCoords(long m) { return Record("MakeMeshCornerNodesAndCoords", m); }
int MeshSwapCornerNodeAndVertex() { return Record("MeshSwapCornerNodeAndVertex"); }
int KnotsSplit() { return Record("KnotsSplit"); }
int KnotsDel(int c) { return Record("KnotsDel", c); }
int MeshSegmentsJoin() { return Record("MeshSegmentsJoin"); }
int VerticesDel(int c) { return Record("VerticesDel", c); }
int MeshCutter() { return Record("MeshCutter"); }
int MakeMeshFromPath(int a) { return Record("MakeMeshFromPath", a); }
int MakeMeshGridForBrush(long a) { return Record("MakeMeshGridForBrush", a); }
int MakeMeshFromBrushGrid(long a) { return Record("MakeMeshFromBrushGrid", a); }
int SewPathesNew() { return Record("SewPathesNew"); }
int MeshAddTwo(int a, int b, int c) { return Record("MeshAddTwo", a, b, c); }
int MeshAddMany(int m) { return Record("MeshAddMany", m); }
int AddRowFromPath(long a, int b) { return Record("AddRowFromPath", a, b); }
int AddZeroRow() { return Record("AddZeroRow"); }
int DelZeroRow(int a) { return Record("DelZeroRow", a); }

int lb::sel::Nodes(long m) { return Record("sel::Nodes", m); }
int lb::sel::Full(bool n) { return Record("sel::Full", n); }
int lb::sel::Perim(long a, long b, long c) { return Record("sel::Perim", a, b, c); }
int lb::sel::Cross(long a, long b, long c) { return Record("sel::Cross", a, b, c); }
int lb::sel::Shift(long a, long b) { return Record("sel::Shift", a, b); }
int lb::color::Flip(AIMeshAxis a) { return Record("color::Flip", a); }
int lb::color::Rotate(long c) { return Record("color::Rotate", c); }
int lb::color::Shift(AIMeshAxis a, AIMeshAxisSense s) { return Record("color::Shift", a, s); }
int lb::color::Spread(AIMeshAxis a, AIMeshAxisSense s) { return Record("color::Spread", a, s); }
int lb::color::Copy(long a, long b) { return Record("color::Copy", a, b); }
int lb::color::Pattern(long a, long b) { return Record("color::Pattern", a, b); }
int lb::color::CatchFromRaster(int e) { return Record("color::CatchFromRaster", e); }
int lb::color::CatchFromMeshSurface(int e) { return Record("color::CatchFromMeshSurface", e); }
int lb::handles::SmoothNodes(long a, long b, long c) { return Record("handles::SmoothNodes", a, b, c); }
int lb::handles::Nodes13or0(long a, long b, long c, long d) { return Record("handles::Nodes13or0", a, b, c, d); }
int lb::handles::Angle90Deg(long a, long b) { return Record("handles::Angle90Deg", a, b); }
int lb::align::NodesAlign(long a, long b) { return Record("align::NodesAlign", a, b); }
int lb::align::NodesSpreadAlongPath(long a, long b, int c) { return Record("align::NodesSpreadAlongPath", a, b, c); }
int lb::align::Turn180() { return Record("align::Turn180"); }
int lb::dens::Mul(long a, long b) { return Record("dens::Mul", a, b); }
int lb::dens::Div(long a, long b) { return Record("dens::Div", a, b); }
int lb::dir::Rotate(int c) { return Record("dir::Rotate", c); }
int lb::dir::Flip(AIMeshAxis a) { return Record("dir::Flip", a); }
int lb::uv::ResetLinear() { return Record("uv::ResetLinear"); }
int lb::uv::ResetRelative() { return Record("uv::ResetRelative"); }
int lb::debug::AlertUVs() { return Record("debug::AlertUVs"); }

// ---- panel -----------------------------------------------------------------
const AIPanelSuite* sAIPanel = nullptr;
const AIUIThemeSuite* sAIUITheme = nullptr;
static const SSuiteInit gPanelSuites[] = {
    {kAIPanelSuite, kAIPanelSuiteVersion, reinterpret_cast<const void**>(&sAIPanel)},
    {kAIUIThemeSuite, kAIUIThemeSuiteVersion, reinterpret_cast<const void**>(&sAIUITheme)},
};
void PanelGetSuites(const SSuiteInit** table, unsigned* count) { *table = gPanelSuites; *count = 2; }
AIErr PanelAdd() {
  ++fake::panel.adds;
  if (!fake::panel.addResult) fake::panel.visible = true;
  return fake::panel.addResult;
}
AIErr PanelRemove() { ++fake::panel.removes; return kNoErr; }
void PanelShowHide() { fake::panel.visible = !fake::panel.visible; }
bool PanelIsVisible() { return fake::panel.visible; }
AIErr PanelChangeUITheme() { ++fake::panel.themeChanges; return AIFourCC("THME"); }

// ---- host suites -------------------------------------------------------------
struct _AIUnicodeString {
  std::string text;
};

namespace {
using fake::host;

AIErr AddItem(SPPluginRef, const char*, const char*, const char*, int32_t, AIMenuItemHandle* item) {
  if (host.addMenuError) return host.addMenuError;
  ++host.menuItems;
  *item = reinterpret_cast<AIMenuItemHandle>(0x1000 + host.menuItems);
  return kNoErr;
}
AIErr Check(AIMenuItemHandle, AIBoolean) {
  ++host.checkCalls;
  return kNoErr;
}
const AIMenuSuite kMenu = {.AddMenuItemZString = AddItem, .CheckItem = Check};

AIErr AddNotifier(SPPluginRef, const char*, const char* type, AINotifierHandle* n) {
  host.notifierTypes.push_back(type);
  *n = reinterpret_cast<AINotifierHandle>(0x2000 + host.notifierTypes.size());
  return host.notifierTypes.size() == 3 ? host.addNotifierError : kNoErr;
}
const AINotifierSuite kNotifier = {.AddNotifier = AddNotifier};

AIErr Push(SPPluginRef, AIAppContextHandle* c) {
  ++host.pushes;
  if (host.pushError) return host.pushError;
  ++host.contexts;
  *c = reinterpret_cast<AIAppContextHandle>(0x3000);
  return kNoErr;
}
AIErr Pop(AIAppContextHandle) {
  --host.contexts;
  return AIFourCC("POP!");  // a distinctive code: BtnsRunLbFunc returns the pop's
}
const AIAppContextSuite kContext = {.PushAppContext = Push, .PopAppContext = Pop};

AIErr AcquirePlugin(SPPluginRef, SPAccessRef* a) {
  ++host.accesses;
  *a = reinterpret_cast<SPAccessRef>(0x4000);
  return kNoErr;
}
AIErr ReleasePlugin(SPAccessRef) { --host.accesses; return kNoErr; }
const SPAccessSuite kAccess = {.AcquirePlugin = AcquirePlugin, .ReleasePlugin = ReleasePlugin};

AIErr StrInit(AIUnicodeStringRef* s, const char* t) {
  ++host.strings;
  *s = new _AIUnicodeString{t};
  return kNoErr;
}
AIErr StrDestroy(AIUnicodeStringRef s) {
  --host.strings;
  delete s;
  return kNoErr;
}
const AIUnicodeStringSuite kString = {.InitializeFromPlatform = StrInit, .Destroy = StrDestroy};

AIErr Alert(AIUnicodeStringRef s) { host.alerts.push_back(s->text); return kNoErr; }
const AIUserSuite kUser = {.MessageAlert = Alert};

// Any other suite: a table nobody calls into.
const char kOpaque[512] = {};

SPErr Acquire(const char* name, int32_t, const void** suite) {
  std::string n = name;
  if (n == host.failSuite) return kSPSuiteNotFoundError;
  if (n == kAIMenuSuite) *suite = &kMenu;
  else if (n == kAINotifierSuite) *suite = &kNotifier;
  else if (n == kAIAppContextSuite) *suite = &kContext;
  else if (n == kSPAccessSuite) *suite = &kAccess;
  else if (n == kAIUnicodeStringSuite) *suite = &kString;
  else if (n == kAIUserSuite) *suite = &kUser;
  else *suite = kOpaque;
  ++host.acquired[n];
  host.acquireLog.push_back(n);
  return kNoErr;
}
SPErr Release(const char* name, int32_t) { if (--host.acquired[name] == 0) host.acquired.erase(name); return kNoErr; }
SPBoolean IsEqual(const char* a, const char* b) { return std::strcmp(a, b) == 0; }
SPErr Allocate(size_t size, void** block) {
  if (host.failAllocation) return kOutOfMemoryErr;
  *block = std::malloc(size);
  ++host.blocks;
  return kNoErr;
}
SPErr Free(void* block) {
  std::free(block);
  --host.blocks;
  return kNoErr;
}
SPBasicSuite kBasic = {.AcquireSuite = Acquire, .ReleaseSuite = Release, .IsEqual = IsEqual,
                       .AllocateBlock = Allocate, .FreeBlock = Free, .ReallocateBlock = nullptr};
}  // namespace

SPBasicSuite* fake::basic() { return &kBasic; }
