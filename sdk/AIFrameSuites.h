// Host suites used by the plug-in frame and its panel: access, plug-ins,
// blocks, context, menu, notifier, user, Unicode string, data filter, panel
// and user-interface theme.
#pragma once

#include "SPBasic.h"

// ---- SP Access Suite 3 -------------------------------------------------
struct _SPAccess;
using SPAccessRef = _SPAccess*;
constexpr const char* kSPAccessSuite = "SP Access Suite";
constexpr int32_t kSPAccessSuiteVersion = 3;
struct SPAccessSuite {
  SPErr (*AcquirePlugin)(SPPluginRef plugin, SPAccessRef* access);
  SPErr (*ReleasePlugin)(SPAccessRef access);
  SPErr (*GetAccessInfo)(SPAccessRef access, void** info);
};

// ---- SP Plug-ins Suite 6 -----------------------------------------------
constexpr const char* kSPPluginsSuite = "SP Plug-ins Suite";
constexpr int32_t kSPPluginsSuiteVersion = 6;
struct SPPluginsSuite {
  SPErr (*GetPluginName)(SPPluginRef plugin, const char** name);
  SPErr (*GetPluginGlobals)(SPPluginRef plugin, void** globals);
  SPErr (*SetPluginGlobals)(SPPluginRef plugin, void* globals);
};

// ---- SP Blocks Suite 2 -------------------------------------------------
constexpr const char* kSPBlocksSuite = "SP Blocks Suite";
constexpr int32_t kSPBlocksSuiteVersion = 2;
struct SPBlocksSuite {
  SPErr (*AllocateBlock)(size_t size, const char* debug, void** block);
  SPErr (*FreeBlock)(void* block);
  SPErr (*ReallocateBlock)(void* block, size_t newSize, const char* debug, void** newBlock);
};

// ---- AI Context Suite 7 ------------------------------------------------
struct _AIAppContext;
using AIAppContextHandle = _AIAppContext*;
constexpr const char* kAIAppContextSuite = "AI Context Suite";
constexpr int32_t kAIAppContextSuiteVersion = 7;
struct AIAppContextSuite {
  AIErr (*PushAppContext)(SPPluginRef plugin, AIAppContextHandle* context);
  AIErr (*PopAppContext)(AIAppContextHandle context);
};

// ---- AI Menu Suite 11 --------------------------------------------------
constexpr const char* kAIMenuSuite = "AI Menu Suite";
constexpr int32_t kAIMenuSuiteVersion = 11;
constexpr const char* kToolPalettesMenuGroup = "Tool Palettes";
constexpr int32_t kMenuItemWantsUpdateOption = 1;
struct AIMenuSuite {
  // keyName may be null; text is in the platform encoding.
  AIErr (*AddMenuItemZString)(SPPluginRef plugin, const char* keyName, const char* group,
                              const char* text, int32_t options, AIMenuItemHandle* item);
  AIErr (*CheckItem)(AIMenuItemHandle item, AIBoolean check);
  AIErr (*IsItemChecked)(AIMenuItemHandle item, AIBoolean* checked);
  AIErr (*GetItemText)(AIMenuItemHandle item, const char** text);
};

// ---- AI Notifier Suite 4 -----------------------------------------------
constexpr const char* kAINotifierSuite = "AI Notifier Suite";
constexpr int32_t kAINotifierSuiteVersion = 4;
struct AINotifierSuite {
  AIErr (*AddNotifier)(SPPluginRef plugin, const char* ownerName, const char* type,
                       AINotifierHandle* notifier);
  AIErr (*SetNotifierActive)(AINotifierHandle notifier, AIBoolean active);
  AIErr (*GetNotifierActive)(AINotifierHandle notifier, AIBoolean* active);
};

// ---- AI Unicode String Suite 8 -----------------------------------------
constexpr const char* kAIUnicodeStringSuite = "AI Unicode String Suite";
constexpr int32_t kAIUnicodeStringSuiteVersion = 8;
struct AIUnicodeStringSuite {
  // Builds a string from text in the platform's character encoding (UTF-8 here).
  AIErr (*InitializeFromPlatform)(AIUnicodeStringRef* str, const char* text);
  // Builds a string from UTF-32 wide text.
  AIErr (*InitializeFromWide)(AIUnicodeStringRef* str, const wchar_t* text);
  AIErr (*Destroy)(AIUnicodeStringRef str);
  // The text in the platform encoding; valid until the string is destroyed.
  AIErr (*GetPlatform)(AIUnicodeStringRef str, const char** text);
  AIErr (*Length)(AIUnicodeStringRef str, size_t* length);
};

// ---- AI User Suite 12 --------------------------------------------------
constexpr const char* kAIUserSuite = "AI User Suite";
constexpr int32_t kAIUserSuiteVersion = 12;
struct AIUserSuite {
  AIErr (*MessageAlert)(AIUnicodeStringRef text);
};

// ---- AI Data Filter Suite 8 --------------------------------------------
struct _AIDataFilter;
using AIDataFilter = _AIDataFilter;
constexpr const char* kAIDataFilterSuite = "AI Data Filter Suite";
constexpr int32_t kAIDataFilterSuiteVersion = 8;
struct AIDataFilterSuite {
  // A filter reading the plug-in's resource of the given type and id or name
  // (a null or empty name selects by id).
  AIErr (*NewResourceDataFilter)(SPPluginRef plugin, int32_t type, int32_t id, const char* name,
                                 AIDataFilter** filter);
  AIErr (*LinkDataFilter)(AIDataFilter* prev, AIDataFilter* next);
  AIErr (*UnlinkDataFilter)(AIDataFilter* filter, AIDataFilter** next);
  // Reads up to *count bytes; *count receives the number actually read.
  AIErr (*ReadDataFilter)(AIDataFilter* filter, char* store, size_t* count);
};

// ---- AI Panel Suite 2 --------------------------------------------------
struct _AIPanel;
using AIPanelRef = _AIPanel*;
struct _AIPanelPlatformWindow;
using AIPanelPlatformWindow = _AIPanelPlatformWindow*;
struct AISize {
  AIReal width;
  AIReal height;
};
constexpr const char* kAIPanelSuite = "AI Panel Suite";
constexpr int32_t kAIPanelSuiteVersion = 2;
struct AIPanelSuite {
  AIErr (*Create)(SPPluginRef plugin, AIUnicodeStringRef id, AIUnicodeStringRef title,
                  int32_t stateCount, AISize minSize, AIBoolean resizable, void* flyoutMenu,
                  void* userData, AIPanelRef* panel);
  AIErr (*Destroy)(AIPanelRef panel);
  AIErr (*Show)(AIPanelRef panel, AIBoolean show);
  AIErr (*IsShown)(AIPanelRef panel, AIBoolean* shown);
  AIErr (*GetPlatformWindow)(AIPanelRef panel, AIPanelPlatformWindow* window);
  // The host may adjust the requested size; *size receives what it applied.
  AIErr (*SetSize)(AIPanelRef panel, AISize* size);
  AIErr (*GetSize)(AIPanelRef panel, AISize* size);
  // Each icon argument points to a host-allocated 32-bit resource id.
  AIErr (*SetIcon)(AIPanelRef panel, void* normalIcon, void* darkIcon);
};

// ---- AI User Interface Theme Suite 2 -----------------------------------
constexpr const char* kAIUIThemeSuite = "AI User Interface Theme Suite";
constexpr int32_t kAIUIThemeSuiteVersion = 2;
struct AIUIThemeSuite {
  // Nonzero for a light interface, zero for a dark one.
  AIErr (*GetUIBrightness)(int32_t* brightness);
};
