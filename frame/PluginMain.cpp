// The entry point: every host message arrives here as a caller and a
// selector string with a message record.
#include "PluginMain.h"

#include "Panel.h"
#include "Suites.h"

PluginGlobals* g = nullptr;
SPAccessRef gPluginAccess = nullptr;

namespace {
constexpr const char* kOwnerName = "LatticeBender";
constexpr const char* kMenuText = "Lattice Bender";

bool Equal(const char* a, const char* b) { return gsSPBasic->IsEqual(a, b) != 0; }

// Startup: allocate and clear the record, then add the menu item and the
// notifiers. Only the notifiers' code is kept: a missing menu item does
// not stop the plug-in from working.
AIErr Startup(SPInterfaceMessage* message) {
  AIErr result = kNoErr;
  try {
    AIErr err = gsSPBasic->AllocateBlock(sizeof(PluginGlobals), reinterpret_cast<void**>(&g));
    if (err) throw err;
  } catch (AIErr err) {
    return err;
  }
  g->appStartedNotifier = nullptr;
  g->appShutdownNotifier = nullptr;
  g->brightnessNotifier = nullptr;
  g->panel = nullptr;
  g->menuItem = nullptr;
  try {
    result = AddMenu(message);
    result = AddNotifiers(message);
  } catch (...) {
  }
  return result;
}

void Shutdown(SPInterfaceMessage* message) {
  gsSPBasic->FreeBlock(g);
  g = nullptr;
  message->d.globals = nullptr;
}
}  // namespace

extern "C" SPErr PluginMain(const char* caller, const char* selector, void* message) {
  auto* data = static_cast<SPMessageData*>(message);
  gsSPBasic = data->basic;
  gPluginRef = data->self;

  AIErr err = kNoErr;
  if (Equal(caller, kSPAccessCaller)) {
    if (Equal(selector, kSPAccessUnloadSelector)) {
      data->globals = g;
    } else if (Equal(selector, kSPAccessReloadSelector)) {
      g = static_cast<PluginGlobals*>(data->globals);
      gAcquireCount = 0;
    }
  }
  err = AcquireSuites();
  if (err) {
    ReleaseSuites();
    return err;
  }

  if (Equal(caller, kSPInterfaceCaller)) {
    auto* msg = static_cast<SPInterfaceMessage*>(message);
    if (Equal(selector, kSPInterfaceStartupSelector)) {
      err = Startup(msg);
    } else if (Equal(selector, kSPInterfaceAboutSelector)) {
      // No about box.
    } else if (Equal(selector, kSPInterfaceShutdownSelector)) {
      Shutdown(msg);
    }
  } else if (Equal(caller, kCallerAIMenu)) {
    auto* msg = static_cast<AIMenuMessage*>(message);
    if (Equal(selector, kSelectorAIGoMenuItem)) {
      err = GoMenuItem(msg);
    } else if (Equal(selector, kSelectorAIUpdateMenuItem)) {
      err = UpdateMenuItem(msg);
    }
  } else if (Equal(caller, kCallerAINotify)) {
    if (Equal(selector, kSelectorAINotify)) err = GoNotifier(static_cast<AINotifierMessage*>(message));
  }

  ReleaseSuites();
  return err;
}

AIErr AddMenu(SPInterfaceMessage*) {
  return sAIMenu->AddMenuItemZString(gPluginRef, nullptr, kToolPalettesMenuGroup, kMenuText,
                                     kMenuItemWantsUpdateOption, &g->menuItem);
}

AIErr AddNotifiers(SPInterfaceMessage* message) {
  sAINotifier->AddNotifier(gPluginRef, kOwnerName, kAIApplicationStartedNotifier,
                           &g->appStartedNotifier);
  sAINotifier->AddNotifier(gPluginRef, kOwnerName, kAIApplicationShutdownNotifier,
                           &g->appShutdownNotifier);
  return PanelSetUIThemeNotifier(message);
}

AIErr PanelSetUIThemeNotifier(SPInterfaceMessage*) {
  return sAINotifier->AddNotifier(gPluginRef, kOwnerName, kAIUIBrightnessChangedNotifier,
                                  &g->brightnessNotifier);
}

AIErr GoNotifier(AINotifierMessage* message) {
  if (!g) return kNoErr;
  AIErr err = kNoErr;
  if (message->notifier == g->appStartedNotifier) {
    err = PanelAdd();
    if (!err) sSPAccess->AcquirePlugin(gPluginRef, &gPluginAccess);
  }
  if (message->notifier == g->appShutdownNotifier) {
    err = PanelRemove();
    if (gPluginAccess) {
      sSPAccess->ReleasePlugin(gPluginAccess);
      gPluginAccess = nullptr;
    }
  }
  if (message->notifier == g->brightnessNotifier) {
    return PanelChangeUITheme();
  }
  return err;
}

AIErr GoMenuItem(AIMenuMessage* message) {
  if (g && message->menuItem == g->menuItem) PanelShowHide();
  return kNoErr;
}

AIErr UpdateMenuItem(AIMenuMessage* message) {
  if (g && message->menuItem == g->menuItem) {
    return sAIMenu->CheckItem(message->menuItem, PanelIsVisible() ? 1 : 0);
  }
  return kNoErr;
}

void PluginAlert(const char* text) {
  bool ownUser = false;
  bool ownString = false;
  if (!sAIUser) {
    if (gsSPBasic->AcquireSuite(kAIUserSuite, kAIUserSuiteVersion,
                                reinterpret_cast<const void**>(&sAIUser)) == kNoErr)
      ownUser = true;
    else
      sAIUser = nullptr;
  }
  if (!sAIUnicodeString) {
    if (gsSPBasic->AcquireSuite(kAIUnicodeStringSuite, kAIUnicodeStringSuiteVersion,
                                reinterpret_cast<const void**>(&sAIUnicodeString)) == kNoErr)
      ownString = true;
    else
      sAIUnicodeString = nullptr;
  }
  if (sAIUser && sAIUnicodeString) {
    AIUnicodeStringRef str = nullptr;
    if (sAIUnicodeString->InitializeFromPlatform(&str, text ? text : "") == kNoErr) {
      sAIUser->MessageAlert(str);
      sAIUnicodeString->Destroy(str);
    }
  }
  if (ownString) {
    gsSPBasic->ReleaseSuite(kAIUnicodeStringSuite, kAIUnicodeStringSuiteVersion);
    sAIUnicodeString = nullptr;
  }
  if (ownUser) {
    gsSPBasic->ReleaseSuite(kAIUserSuite, kAIUserSuiteVersion);
    sAIUser = nullptr;
  }
}
