// PluginMain against a fake host: the order of acquisition and dispatch,
// the nesting counter across unload/reload, the notifier and menu rules.
#include <gtest/gtest.h>

#include "Fakes.h"
#include "PluginMain.h"
#include "Suites.h"

namespace {

class Messages : public ::testing::Test {
 protected:
  void SetUp() override {
    fake::resetHost();
    fake::panel = fake::PanelState{};
    g = nullptr;
    gPluginAccess = nullptr;
    gAcquireCount = 0;
  }
  void TearDown() override {
    if (g) Send("SP Interface", "Shutdown");
    EXPECT_EQ(fake::host.blocks, 0);
    EXPECT_EQ(fake::host.strings, 0);
  }

  SPMessageData Data() {
    SPMessageData d{};
    d.SPCheck = kSPValidSPMessageData;
    d.self = reinterpret_cast<SPPluginRef>(0x77);
    d.globals = globals;
    d.basic = fake::basic();
    return d;
  }
  AIErr Send(const char* caller, const char* selector) {
    SPInterfaceMessage m{Data()};
    AIErr err = PluginMain(caller, selector, &m);
    globals = m.d.globals;
    return err;
  }
  AIErr Menu(const char* selector, AIMenuItemHandle item) {
    AIMenuMessage m{Data(), item};
    return PluginMain("AI Menu", selector, &m);
  }
  AIErr Notify(AINotifierHandle n) {
    AINotifierMessage m{Data(), n, "", nullptr};
    return PluginMain("AI Notifier", "AI Notify", &m);
  }
  void ExpectNothingHeld() {
    EXPECT_EQ(gAcquireCount, 0);
    EXPECT_TRUE(fake::host.acquired.empty());
    EXPECT_EQ(sAIMenu, nullptr);
    EXPECT_EQ(sAIPanel, nullptr);
  }

  void* globals = nullptr;
};

TEST_F(Messages, StartupAllocatesTheRecordAddsMenuAndNotifiers) {
  EXPECT_EQ(Send("SP Interface", "Startup"), kNoErr);
  ASSERT_NE(g, nullptr);
  EXPECT_EQ(std::make_pair(fake::host.blocks, long(fake::host.menuItems)), std::make_pair(1L, 1L));
  EXPECT_NE(g->menuItem, nullptr);
  EXPECT_EQ(fake::host.notifierTypes,
            (std::vector<std::string>{"AI Application Started Notifier",
                                      "AI Application Shutdown Notifier",
                                      "AI UI Brightness Changed Notifier"}));
  EXPECT_NE(g->appStartedNotifier, g->appShutdownNotifier);
  EXPECT_EQ(g->panel, nullptr);
  // The frame table and then the panel table, each in its order.
  const std::vector<std::string> first(fake::host.acquireLog.begin(),
                                       fake::host.acquireLog.begin() + 11);
  EXPECT_EQ(first, (std::vector<std::string>{
                       "AI Notifier Suite", "SP Blocks Suite", "AI Unicode String Suite",
                       "AI Menu Suite", "AI User Suite", "SP Plug-ins Suite", "AI Context Suite",
                       "SP Access Suite", "AI Data Filter Suite", "AI Panel Suite",
                       "AI User Interface Theme Suite"}));
  ExpectNothingHeld();
  Send("SP Interface", "Shutdown");
  EXPECT_EQ(g, nullptr);
  EXPECT_EQ(globals, nullptr);
  ExpectNothingHeld();
}

TEST_F(Messages, StartupResultIsTheNotifiersCodeNotTheMenus) {
  fake::host.addMenuError = AIFourCC("MENU");
  EXPECT_EQ(Send("SP Interface", "Startup"), kNoErr);
  EXPECT_EQ(fake::host.notifierTypes.size(), 3u);  // still subscribed
  Send("SP Interface", "Shutdown");

  fake::resetHost();
  fake::host.addNotifierError = AIFourCC("NOTE");
  EXPECT_EQ(Send("SP Interface", "Startup"), AIFourCC("NOTE"));
}

TEST_F(Messages, FailedAllocationReturnsItsCodeAndAddsNothing) {
  fake::host.failAllocation = true;
  EXPECT_EQ(Send("SP Interface", "Startup"), kOutOfMemoryErr);
  EXPECT_EQ(fake::host.menuItems, 0);
  EXPECT_TRUE(fake::host.notifierTypes.empty());
  ExpectNothingHeld();
}

// The first row, middle rows and the last of the frame and panel tables.
TEST_F(Messages, AcquisitionFailureReleasesAndReturnsAtOnce) {
  Send("SP Interface", "Startup");
  for (const char* suite : {"AI Notifier Suite", "AI User Suite", "AI Context Suite", "AI Data Filter Suite",
                            "AI Panel Suite", "AI User Interface Theme Suite"}) {
    SCOPED_TRACE(suite);
    fake::host.failSuite = suite;
    EXPECT_EQ(Send("SP Interface", "About"), kSPSuiteNotFoundError);
    ExpectNothingHeld();
    // The menu handler did not run.
    EXPECT_EQ(Menu("AI Update", g->menuItem), kSPSuiteNotFoundError);
    EXPECT_EQ(fake::host.checkCalls, 0);
    ExpectNothingHeld();
  }
  // The plug-in still works afterwards.
  fake::host.failSuite.clear();
  EXPECT_EQ(Send("SP Interface", "About"), kNoErr);
  ExpectNothingHeld();
}

TEST_F(Messages, UnloadHandsOverTheRecordAndReloadResetsTheCount) {
  Send("SP Interface", "Startup");
  PluginGlobals* record = g;
  EXPECT_EQ(Send("SP Access", "Unload"), kNoErr);
  EXPECT_EQ(globals, record);

  // A fresh module: nothing set, and a stale nesting count.
  g = nullptr;
  gAcquireCount = 7;
  fake::host.acquireLog.clear();
  EXPECT_EQ(Send("SP Access", "Reload"), kNoErr);
  EXPECT_EQ(g, record);
  EXPECT_EQ(gAcquireCount, 0);
  // The count was reset before acquiring: the table was really walked and
  // everything was given back.
  EXPECT_EQ(fake::host.acquireLog.size(), 11u);
  ExpectNothingHeld();
}

TEST_F(Messages, ApplicationStartedCreatesThePanelAndTakesAccessUnlessThePanelFails) {
  Send("SP Interface", "Startup");
  EXPECT_EQ(Notify(g->appStartedNotifier), kNoErr);
  EXPECT_EQ(std::make_pair(fake::panel.adds, fake::host.accesses), std::make_pair(1, 1));
  EXPECT_EQ(Notify(g->appShutdownNotifier), kNoErr);
  EXPECT_EQ(std::make_pair(fake::panel.removes, fake::host.accesses), std::make_pair(1, 0));
  ExpectNothingHeld();
  // A panel that fails takes no access.
  fake::panel.addResult = kNoPanelErr;
  EXPECT_EQ(Notify(g->appStartedNotifier), kNoPanelErr);
  EXPECT_EQ(fake::host.accesses, 0);
  EXPECT_EQ(Notify(g->appShutdownNotifier), kNoErr);
  EXPECT_EQ(fake::host.accesses, 0);
}

TEST_F(Messages, BrightnessReturnsTheThemeCodeAndForeignNotifiersDoNothing) {
  Send("SP Interface", "Startup");
  EXPECT_EQ(Notify(g->brightnessNotifier), AIFourCC("THME"));
  EXPECT_EQ(fake::panel.themeChanges, 1);
  EXPECT_EQ(Notify(reinterpret_cast<AINotifierHandle>(0xBAD)), kNoErr);
  EXPECT_EQ(fake::panel.adds + fake::panel.removes + fake::panel.themeChanges, 1);
}

TEST_F(Messages, AlertAcquiresOnlyWhatIsMissing) {
  gsSPBasic = fake::basic();
  // Outside any message: both suites are taken for the call and given back.
  PluginAlert("first");
  EXPECT_EQ(fake::host.alerts, std::vector<std::string>{"first"});
  EXPECT_EQ(std::make_tuple(sAIUser, sAIUnicodeString), std::make_tuple(nullptr, nullptr));
  EXPECT_TRUE(fake::host.acquired.empty());

  // Inside an acquisition the frame's pointers are used and kept.
  AcquireSuites();
  const auto* user = sAIUser;
  PluginAlert("second");
  EXPECT_EQ(sAIUser, user);
  EXPECT_EQ(fake::host.acquired["AI User Suite"], 1);
  ReleaseSuites();
  EXPECT_EQ(fake::host.alerts.size(), 2u);
  EXPECT_TRUE(fake::host.acquired.empty());
}

}  // namespace
