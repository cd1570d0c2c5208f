// The message protocol through the real module, loaded as the host loads
// it: start-up, menu item, notifiers, unload/reload, failure paths.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "AIFrameSuites.h"
#include "LBModule.h"
#include "host/Host.h"

namespace {
using lb::host::Counters;
using lb::host::Host;

// A host with the module loaded; `start` holds its counters before loading, `before` right after.
struct Loaded : ::testing::Test {
  Host host;
  const Counters start = host.counters();
  const Counters before = (host.loadPlugin(), host.counters());
};

TEST_F(Loaded, StartupAddsMenuItemAndThreeNotifiersShutdownGivesEverythingBack) {
  ASSERT_TRUE(host.pluginLoaded());
  AIMenuItemHandle item = host.pluginMenuItem();
  ASSERT_NE(item, nullptr);
  EXPECT_EQ(std::make_tuple(host.menuItemGroup(item), host.menuItemText(item), host.menuItemOptions(item)),
            std::make_tuple("Tool Palettes", "Lattice Bender", 1));
  // (Their types and order: dispatch's MessageTest, on the same start-up code.)
  EXPECT_EQ(host.notifierTypes().size(), 3u);
  for (size_t i = 0; i < 3; ++i) EXPECT_EQ(host.notifierOwner(i), "LatticeBender");
  // Every message leaves the counters where they were.
  EXPECT_EQ(before.suiteAcquisitions, 0);
  EXPECT_EQ(host.sendMessage("SP Interface", "About"), kNoErr);
  EXPECT_EQ(host.counters(), before);
  EXPECT_EQ(host.sendMenuUpdate(host.pluginMenuItem()), kNoErr);
  EXPECT_EQ(host.counters(), before);
  EXPECT_EQ(host.sendMessage("Some Caller", "Some Selector"), kNoErr);
  EXPECT_EQ(host.counters(), before);
  EXPECT_EQ(host.fireNotifier("AI UI Brightness Changed Notifier"), kNoErr);
  EXPECT_EQ(host.counters(), before);
  // Shutting down frees the global record and gives everything back.
  EXPECT_EQ(before.blocks, start.blocks + 1);
  host.shutdownPlugin();
  EXPECT_FALSE(host.pluginLoaded());
  EXPECT_EQ(host.pluginGlobals(), nullptr);
  EXPECT_EQ(host.counters(), start);
}

TEST_F(Loaded, MenuGoTogglesThePanelUpdateCheckMarksItForeignItemsDoNothing) {
  AIMenuItemHandle item = host.pluginMenuItem();
  ASSERT_EQ(host.sendMenuUpdate(item), kNoErr);
  const bool first = host.menuItemChecked(item);
  ASSERT_EQ(host.sendMenuGo(item), kNoErr);
  ASSERT_EQ(host.sendMenuUpdate(item), kNoErr);
  const bool second = host.menuItemChecked(item);
  ASSERT_EQ(host.sendMenuGo(item), kNoErr);
  ASSERT_EQ(host.sendMenuUpdate(item), kNoErr);
  EXPECT_EQ(host.menuItemChecked(item), first);
  // The application-started notification created the panel, hidden until
  // the menu item first shows it.
  EXPECT_EQ(std::make_pair(first, second), std::make_pair(false, true));

  // Foreign items and notifiers do nothing.
  const Counters now = host.counters();
  auto* foreignItem = reinterpret_cast<AIMenuItemHandle>(&host);
  EXPECT_EQ(host.sendMenuGo(foreignItem), kNoErr);
  EXPECT_EQ(host.sendMenuUpdate(foreignItem), kNoErr);
  EXPECT_EQ(host.sendMenuGo(nullptr), kNoErr);
  auto* foreignNotifier = reinterpret_cast<AINotifierHandle>(&host);
  EXPECT_EQ(host.sendNotify(foreignNotifier, "Someone Else's Notifier"), kNoErr);
  EXPECT_EQ(host.sendNotify(nullptr), kNoErr);

  host.sendMenuUpdate(item);
  EXPECT_FALSE(host.menuItemChecked(item));
  EXPECT_EQ(host.counters(), now);
}

TEST_F(Loaded, UnloadReloadKeepsTheRecordAndReallyUnloads) {
  EXPECT_EQ(host.pluginGlobals(), nullptr);  // handed over only at Unload

  host.unloadPlugin();
  void* record = host.pluginGlobals();
  EXPECT_NE(record, nullptr);
  EXPECT_FALSE(host.pluginLoaded());
#ifndef __SANITIZE_ADDRESS__
  // No other reference keeps the module mapped. (The address sanitizer's
  // runtime keeps closed modules mapped, so this only holds without it.)
  void* still = dlopen(host.modulePath().c_str(), RTLD_NOW | RTLD_NOLOAD);
  EXPECT_EQ(still, nullptr);
  if (still) dlclose(still);
#endif

  host.reloadPlugin();
  EXPECT_TRUE(host.pluginLoaded());
  EXPECT_EQ(host.pluginGlobals(), record);
  EXPECT_EQ(host.counters(), before);

  // The record still knows the menu item and the notifiers: an update for
  // the item is answered, a foreign one is not.
  AIMenuItemHandle item = host.pluginMenuItem();
  EXPECT_EQ(host.sendMenuUpdate(item), kNoErr);
  EXPECT_EQ(host.sendMessage("SP Interface", "About"), kNoErr);
  EXPECT_EQ(host.counters(), before);

  // A second round trip hands over the same record again.
  host.unloadPlugin();
  EXPECT_EQ(host.pluginGlobals(), record);
  host.reloadPlugin();
  host.shutdownPlugin();
  EXPECT_EQ(host.pluginGlobals(), nullptr);
}

TEST(Failures, StartupFailsWhenASuiteIsMissing) {
  Host host;
  host.failSuiteAcquisition("AI Menu Suite");
  EXPECT_THROW(host.loadPlugin(), std::runtime_error);
  EXPECT_FALSE(host.pluginLoaded());
  EXPECT_EQ(host.counters().suiteAcquisitions, 0);
  host.failSuiteAcquisition("");
  host.loadPlugin();
  EXPECT_TRUE(host.pluginLoaded());
}

TEST_F(Loaded, CommandsRunThroughTheScriptingEntryWithoutLeaksOrContext) {
  // Hidden id 168 and ids outside the table run nothing but still go
  // through both acquisition levels and the application context.
  for (int id : {kCmdFirst - 1, int(kCmdNone168), kCmdLast + 1, -1, 1000}) {
    for (int mods = 0; mods < 4; ++mods) {
      EXPECT_EQ(host.runCommand(id, mods & 1, mods & 2), kNoErr) << id;
      EXPECT_EQ(host.counters(), before) << id;
    }
  }
  // A context suite failure runs nothing.
  host.failSuiteAcquisition("AI Context Suite");
  EXPECT_NE(host.runCommand(kCmdSelRegion, false, false), kNoErr);
  host.failSuiteAcquisition("");
  EXPECT_EQ(host.counters(), before);
}

// The loader rejects what is not a plug-in; there is one host at a time.
TEST(Loader, RejectsWhatIsNotAPluginAndOneHostAtATime) {
  Host host;
  EXPECT_THROW(host.loadPlugin("/nonexistent/LatticeBender.so"), std::runtime_error);
  EXPECT_FALSE(host.pluginLoaded());
  EXPECT_TRUE(Host::exists());
  EXPECT_EQ(&Host::current(), &host);
  EXPECT_THROW(Host second, std::logic_error);
}

}  // namespace
