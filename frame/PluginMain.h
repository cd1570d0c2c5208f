// The plug-in's entry point, its global record and the handlers of the
// host's messages.
#pragma once

#include "AIFrameSuites.h"

// The record that survives the host's unload and reload of the module:
// six 64-bit fields, allocated through the basic suite at Startup.
struct PluginGlobals {
  AINotifierHandle appStartedNotifier;
  AINotifierHandle appShutdownNotifier;
  AINotifierHandle brightnessNotifier;
  AIPanelRef panel;
  AIMenuItemHandle menuItem;
  void* oldWindowProc;  // the panel window's procedure before subclassing
};
static_assert(sizeof(PluginGlobals) == 6 * 8, "the global record is six 64-bit fields");

extern PluginGlobals* g;
extern SPAccessRef gPluginAccess;

extern "C" __attribute__((visibility("default"))) SPErr PluginMain(const char* caller,
                                                                    const char* selector,
                                                                    void* message);

AIErr AddMenu(SPInterfaceMessage* message);
AIErr AddNotifiers(SPInterfaceMessage* message);
AIErr PanelSetUIThemeNotifier(SPInterfaceMessage* message);
AIErr GoMenuItem(AIMenuMessage* message);
AIErr UpdateMenuItem(AIMenuMessage* message);
AIErr GoNotifier(AINotifierMessage* message);

// Shows a modal message box with `text` (UTF-8).
void PluginAlert(const char* text);
