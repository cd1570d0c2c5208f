// The basic suite and the message records of the plug-in protocol.
#pragma once

#include "AITypes.h"

struct SPBasicSuite {
  SPErr (*AcquireSuite)(const char* name, int32_t version, const void** suite);
  SPErr (*ReleaseSuite)(const char* name, int32_t version);
  SPBoolean (*IsEqual)(const char* token1, const char* token2);
  SPErr (*AllocateBlock)(size_t size, void** block);
  SPErr (*FreeBlock)(void* block);
  SPErr (*ReallocateBlock)(void* block, size_t newSize, void** newBlock);
};

constexpr const char* kSPBasicSuite = "SP Basic Suite";
constexpr int32_t kSPBasicSuiteVersion = 4;

// Common part of every message.
struct SPMessageData {
  int32_t SPCheck;      // kSPValidSPMessageData
  SPPluginRef self;     // this plug-in's reference
  void* globals;        // slot the host keeps for the plug-in across unload/reload
  SPBasicSuite* basic;  // the basic suite
};

constexpr int32_t kSPValidSPMessageData = AIFourCC("SPCk");

struct SPInterfaceMessage {
  SPMessageData d;
};
using SPAccessMessage = SPInterfaceMessage;

struct _AIMenuItem;
using AIMenuItemHandle = _AIMenuItem*;
struct AIMenuMessage {
  SPMessageData d;
  AIMenuItemHandle menuItem;
};

struct _AINotifier;
using AINotifierHandle = _AINotifier*;
struct AINotifierMessage {
  SPMessageData d;
  AINotifierHandle notifier;
  const char* type;
  void* notifyData;
};

// Callers and selectors.
#define kSPInterfaceCaller "SP Interface"
#define kSPInterfaceStartupSelector "Startup"
#define kSPInterfaceShutdownSelector "Shutdown"
#define kSPInterfaceAboutSelector "About"
#define kSPAccessCaller "SP Access"
#define kSPAccessUnloadSelector "Unload"
#define kSPAccessReloadSelector "Reload"
#define kCallerAIMenu "AI Menu"
#define kSelectorAIGoMenuItem "AI Go"
#define kSelectorAIUpdateMenuItem "AI Update"
#define kCallerAINotify "AI Notifier"
#define kSelectorAINotify "AI Notify"

#define kAIApplicationStartedNotifier "AI Application Started Notifier"
#define kAIApplicationShutdownNotifier "AI Application Shutdown Notifier"
#define kAIUIBrightnessChangedNotifier "AI UI Brightness Changed Notifier"

// The module's exported entry point.
extern "C" using PluginMainProc = SPErr (*)(const char* caller, const char* selector, void* message);
