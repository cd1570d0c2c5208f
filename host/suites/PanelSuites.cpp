// The host panel and user-interface theme suites. A panel is a record with
// a native lbwin window; the window appears at the panel's size and the
// plug-in may subclass it, paint it and destroy it itself.
#include <map>
#include <memory>

#include "AIFrameSuites.h"
#include "host/PanelHost.h"
#include "host/SuiteRegistry.h"

struct _AIPanel {
  lb::host::PanelInfo info;
};

namespace lb::host {
namespace {

std::vector<std::unique_ptr<_AIPanel>> gPanels;
int32_t gBrightness = 1;

_AIPanel* Find(AIPanelRef panel) {
  for (auto& p : gPanels)
    if (p.get() == panel) return p.get();
  return nullptr;
}

std::string Text(AIUnicodeStringRef s) {
  // Strings come from the host's own string suite.
  const auto* suite = static_cast<const AIUnicodeStringSuite*>(
      findSuite(kAIUnicodeStringSuite, kAIUnicodeStringSuiteVersion));
  const char* text = nullptr;
  if (s && suite && suite->GetPlatform && !suite->GetPlatform(s, &text) && text) return text;
  return {};
}

AIErr Create(SPPluginRef, AIUnicodeStringRef id, AIUnicodeStringRef title, int32_t, AISize minSize,
             AIBoolean, void*, void*, AIPanelRef* panel) {
  if (!panel) return kBadParameterErr;
  auto p = std::make_unique<_AIPanel>();
  p->info.id = Text(id);
  p->info.title = Text(title);
  p->info.minWidth = minSize.width;
  p->info.minHeight = minSize.height;
  p->info.width = minSize.width;
  p->info.height = minSize.height;
  p->info.window = lbwinCreateWindow(static_cast<int>(minSize.width), static_cast<int>(minSize.height));
  *panel = p.get();
  gPanels.push_back(std::move(p));
  return kNoErr;
}

AIErr Destroy(AIPanelRef panel) {
  for (auto it = gPanels.begin(); it != gPanels.end(); ++it) {
    if (it->get() != panel) continue;
    if (IsWindow((*it)->info.window)) DestroyWindow((*it)->info.window);
    gPanels.erase(it);
    return kNoErr;
  }
  return kNoPanelErr;
}

AIErr Show(AIPanelRef panel, AIBoolean show) {
  _AIPanel* p = Find(panel);
  if (!p) return kNoPanelErr;
  p->info.shown = show != 0;
  // A shown window needs painting; the host paints when it next updates
  // its windows, never from inside the plug-in's call.
  if (p->info.shown && IsWindow(p->info.window)) InvalidateRect(p->info.window, nullptr, TRUE);
  return kNoErr;
}

AIErr IsShown(AIPanelRef panel, AIBoolean* shown) {
  _AIPanel* p = Find(panel);
  if (!p || !shown) return kNoPanelErr;
  *shown = p->info.shown ? 1 : 0;
  return kNoErr;
}

AIErr GetPlatformWindow(AIPanelRef panel, AIPanelPlatformWindow* window) {
  _AIPanel* p = Find(panel);
  if (!window) return kBadParameterErr;
  *window = nullptr;
  if (!p) return kNoPanelErr;
  if (!IsWindow(p->info.window)) {
    p->info.window = nullptr;
    return kNoPanelErr;
  }
  *window = reinterpret_cast<AIPanelPlatformWindow>(p->info.window);
  return kNoErr;
}

// Applies the requested size as it is (never below the minimum size) and
// reports what was applied.
AIErr SetSize(AIPanelRef panel, AISize* size) {
  _AIPanel* p = Find(panel);
  if (!p || !size) return kNoPanelErr;
  if (size->width < p->info.minWidth) size->width = p->info.minWidth;
  if (size->height < p->info.minHeight) size->height = p->info.minHeight;
  p->info.width = size->width;
  p->info.height = size->height;
  if (IsWindow(p->info.window))
    lbwinSetWindowSize(p->info.window, static_cast<int>(size->width), static_cast<int>(size->height));
  return kNoErr;
}

AIErr GetSize(AIPanelRef panel, AISize* size) {
  _AIPanel* p = Find(panel);
  if (!p || !size) return kNoPanelErr;
  size->width = p->info.width;
  size->height = p->info.height;
  return kNoErr;
}

AIErr SetIcon(AIPanelRef panel, void* normalIcon, void* darkIcon) {
  _AIPanel* p = Find(panel);
  if (!p || !normalIcon || !darkIcon) return kNoPanelErr;
  p->info.icons.emplace_back(*static_cast<const int32_t*>(normalIcon),
                             *static_cast<const int32_t*>(darkIcon));
  return kNoErr;
}

AIErr GetUIBrightness(int32_t* brightness) {
  if (!brightness) return kBadParameterErr;
  *brightness = gBrightness;
  return kNoErr;
}

const AIPanelSuite kPanelSuite = {
    .Create = Create,
    .Destroy = Destroy,
    .Show = Show,
    .IsShown = IsShown,
    .GetPlatformWindow = GetPlatformWindow,
    .SetSize = SetSize,
    .GetSize = GetSize,
    .SetIcon = SetIcon,
};

const AIUIThemeSuite kThemeSuite = {
    .GetUIBrightness = GetUIBrightness,
};

}  // namespace

const PanelInfo* currentPanel() { return gPanels.empty() ? nullptr : &gPanels.back()->info; }

HWND currentPanelWindow() {
  const PanelInfo* p = currentPanel();
  return p && IsWindow(p->window) ? p->window : nullptr;
}

int livePanels() { return static_cast<int>(gPanels.size()); }

void setUIBrightness(int32_t value) { gBrightness = value; }
int32_t uiBrightness() { return gBrightness; }

void resetPanels() {
  for (auto& p : gPanels) {
    if (!IsWindow(p->info.window)) continue;
    // The window's procedure may belong to a module that is gone by now.
    SetWindowLongPtr(p->info.window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&DefWindowProc));
    DestroyWindow(p->info.window);
  }
  gPanels.clear();
  gBrightness = 1;
}

void registerPanelSuites() {
  resetPanels();
  registerSuite(kAIPanelSuite, kAIPanelSuiteVersion, &kPanelSuite);
  registerSuite(kAIUIThemeSuite, kAIUIThemeSuiteVersion, &kThemeSuite);
}

}  // namespace lb::host
