// The stand-in host as a whole: one document, the suites it serves, the
// loaded plug-in module and the messages it sends it.
//
// Suites are tables of C function pointers with no context argument, so
// there is one current Host per process (Host::current()). Tests create a
// Host on the stack; the command line creates one per run.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "AITypes.h"

namespace lb::host {

class Document;

// Live-object counters. A message or a command must leave them where they
// were: a leaked iterator or selection is a bug.
struct Counters {
  long vertexIterators = 0;
  long segmentIterators = 0;
  long patchIterators = 0;
  long selections = 0;
  long suiteAcquisitions = 0;  // suites acquired through the basic suite and not released
  long memoryHandles = 0;
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

  Counters counters() const;

 private:
  struct Impl;
  std::unique_ptr<Impl> impl_;
};

}  // namespace lb::host
