// The stand-in host as a whole: one document, the suites it serves, the
// loaded plug-in module and the messages it sends it.
//
// Suites are tables of C function pointers with no context argument, so
// there is one current Host per process (Host::current()). Tests create a
// Host on the stack; the command line creates one per run.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "AITypes.h"
#include "SPBasic.h"
#include "host/Document.h"

namespace lb::host {

// Live-object counters. A message or a command must leave them where they
// were: a leaked iterator or selection is a bug.
struct Counters {
  long vertexIterators = 0;
  long segmentIterators = 0;
  long patchIterators = 0;
  long selections = 0;
  long suiteAcquisitions = 0;  // suites acquired through the basic suite and not released
  long memoryHandles = 0;
  long blocks = 0;          // blocks allocated through the basic or blocks suite, not freed
  long appContexts = 0;     // application contexts pushed and not popped
  long strings = 0;         // host string objects not destroyed
  long dataFilters = 0;     // resource data filters not unlinked
  long pluginAccesses = 0;  // access references to the plug-in not released
  bool operator==(const Counters&) const = default;
};

class Host {
 public:
  // Takes an existing document, or makes an empty one with one layer.
  explicit Host(std::unique_ptr<Document> doc = nullptr);
  ~Host();
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  static Host& current();
  // True while some Host exists.
  static bool exists();
  // The current Host's document, or null when no Host exists.
  static Document* currentDocument();

  Document& document();
  std::unique_ptr<Document> takeDocument();
  void setDocument(std::unique_ptr<Document> doc);

  // Loads the module (dlopen), reads its property list to find the entry
  // point, sends Startup and then fires the application-started notifier.
  // Throws std::runtime_error naming what failed. With no path, loads the
  // module this build produced.
  void loadPlugin(const std::string& modulePath = "");
  // Fires the application-shutdown notifier, sends Shutdown and unloads.
  void shutdownPlugin();
  bool pluginLoaded() const;

  // Runs a panel command exactly as a button release would: through the
  // module's scripting entry, which calls the dispatcher. Returns its code.
  AIErr runCommand(int id, bool alt, bool ctrl, bool useColor = true, bool useOpacity = true);

  // Message boxes the plug-in showed, in order.
  const std::vector<std::string>& alerts() const;
  void clearAlerts();
  // Called with the text of every message box as it is shown.
  void setAlertSink(std::function<void(const std::string&)> sink);

  Counters counters() const;

  // ---- The message protocol, one message at a time ----------------------
  // An interface or access message ("SP Interface"/"Startup", "SP Access"/
  // "Unload", ...) or any other caller/selector pair with a plain record.
  AIErr sendMessage(const char* caller, const char* selector);
  // "AI Menu" "AI Go" / "AI Update" for `item`.
  AIErr sendMenuGo(AIMenuItemHandle item);
  AIErr sendMenuUpdate(AIMenuItemHandle item);
  // "AI Notifier" "AI Notify" with `notifier` (any handle, even a foreign one).
  AIErr sendNotify(AINotifierHandle notifier, const char* type = "");
  // Notifies every subscription of `type` ("AI Application Started
  // Notifier", ...); returns the first nonzero code.
  AIErr fireNotifier(const std::string& type);
  // "SP Access" "Unload" then dlclose; dlopen again then "SP Access" "Reload".
  void unloadPlugin();
  void reloadPlugin();

  // ---- What the plug-in did --------------------------------------------
  // The plug-in's menu item (the first one it added), or null.
  AIMenuItemHandle pluginMenuItem() const;
  std::string menuItemGroup(AIMenuItemHandle item) const;
  std::string menuItemText(AIMenuItemHandle item) const;
  int32_t menuItemOptions(AIMenuItemHandle item) const;
  bool menuItemChecked(AIMenuItemHandle item) const;
  // Types of the plug-in's notifier subscriptions, in order, and their owner.
  std::vector<std::string> notifierTypes() const;
  std::string notifierOwner(size_t index) const;
  // The globals slot the host keeps for the plug-in.
  void* pluginGlobals() const;
  // The module's handle (dlopen), null while unloaded.
  void* moduleHandle() const;
  const std::string& modulePath() const;

  // ---- Failure injection -------------------------------------------------
  // The next acquisitions of suite `name` fail with kSPSuiteNotFoundError
  // until cleared with an empty name.
  void failSuiteAcquisition(const std::string& name);
  // Block allocations fail with kOutOfMemoryErr while set.
  void failBlockAllocation(bool fail);

 private:
  AIErr send(const char* caller, const char* selector, void* message);
  void openModule();
  void closeModule();

  struct Impl;
  std::unique_ptr<Impl> impl_;
};

// The entry point named by a property list (the "wx86" property's text).
// Throws std::runtime_error when the list is malformed or has none.
std::string entryPointFromPropertyList(const unsigned char* data, size_t size);

}  // namespace lb::host
