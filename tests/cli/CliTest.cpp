// The program end to end, in-process: exit codes, outputs written
// atomically, message boxes on standard output.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "app/DemoTour.h"

#include "cli/Invoke.h"
#include "interchange/Pictures.h"

namespace {
namespace fs = std::filesystem;
using clitest::Invoke;
using clitest::Result;
const auto Slurp = lb::test::slurp;
const auto Write = lb::test::spit;

class Cli : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = lb::test::scratchDir(std::string("cli-") + ::testing::UnitTest::GetInstance()->current_test_info()->name());
    // A document with a path only: every command leaves it alone.
    Write(dir / "plain.lbdoc", R"({"latticebender": 1, "layers": [{"name": "Layer 1",
      "children": [{"type": "path", "closed": false, "fill": null, "stroke": null,
                    "segments": [{"p": [0, 0]}, {"p": [10, 5]}]}]}]})");
  }
  void TearDown() override { fs::remove_all(dir); }
  std::string P(const char* name) { return (dir / name).string(); }
  // Files in the directory other than the given ones (temporaries left behind).
  std::vector<std::string> Others(const std::set<std::string>& known) {
    std::vector<std::string> others;
    for (auto& e : fs::directory_iterator(dir))
      if (!known.count(e.path().filename().string())) others.push_back(e.path().filename().string());
    return others;
  }
  fs::path dir;
};

TEST_F(Cli, UsageErrorsAndBadCommandValuesExitWithTwoAndWriteNothing) {
  for (const std::vector<std::string>& args : std::vector<std::vector<std::string>>{
           {}, {"frobnicate"}, {"run"}, {"render", P("plain.lbdoc")} /* -o is required */,
           {"run", P("plain.lbdoc"), "--bogus"}, {"panel", "-o", P("p.png"), "--hover", "3"},
           {"render", P("plain.lbdoc"), "-o", P("x.png"), "--scale", "0"}})
    EXPECT_EQ(Invoke(args).status, 2) << (args.empty() ? "" : args[0]);
  EXPECT_EQ(Invoke({"--help"}).status, 0);
  for (const char* bad : {"", "abc", "+alt", "+ctrl", "138+", "138+shift", "138+alt+alt", "138++alt", "138 +alt",
                          "13 8", "99999999999", "138+ctrl+ctrl", "0x8a"}) {
    Result r = Invoke({"run", P("plain.lbdoc"), "-o", P("out.lbdoc"), "--command", bad});
    EXPECT_EQ(r.status, 2) << bad;
    const size_t at = r.err.find("--command ");
    ASSERT_NE(at, std::string::npos) << r.err;
    EXPECT_GT(r.err.find('\n', at), at + 10) << r.err;  // the option, then why it was refused
    EXPECT_TRUE(r.out.empty());
  }
  Result r = Invoke({"run", P("plain.lbdoc"), "-o", P("out.lbdoc"), "--color", "maybe",
                  "--command", "150"});
  EXPECT_EQ(r.status, 2);
  EXPECT_NE(r.err.find("maybe"), std::string::npos);
  EXPECT_FALSE(fs::exists(dir / "out.lbdoc"));
}

TEST_F(Cli, UnreadableOrInvalidInputExitsWithThreeNamingTheFile) {
  Write(dir / "broken.lbdoc", "{\"latticebender\": 1, \"layers\": [");
  Write(dir / "wrong.lbdoc", R"({"latticebender": 1, "layers": [{"name": "L",
      "children": [{"type": "path", "segments": [{"p": [0, "x"]}]}]}]})");
  for (const char* name : {"missing.lbdoc", "broken.lbdoc", "wrong.lbdoc"}) {
    Write(dir / "out.lbdoc", "previous");
    Result r = Invoke({"run", P(name), "-o", P("out.lbdoc"), "--command", "150"});
    EXPECT_EQ(r.status, 3) << name;
    EXPECT_NE(r.err.find(name), std::string::npos) << r.err;
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;  // one message
    EXPECT_TRUE(r.out.empty());
    EXPECT_EQ(Slurp(dir / "out.lbdoc"), "previous");  // untouched
    EXPECT_EQ(Invoke({"info", P(name)}).status, 3);
  }
  // The offending value's place is named.
  Result r = Invoke({"info", P("wrong.lbdoc")});
  EXPECT_NE(r.err.find("segments[0].p"), std::string::npos) << r.err;
}

// (The reader's refusals of each hostile file: HostileTest; how run and info
// report them: UnreadableOrInvalidInputExitsWithThreeNamingTheFile.)
TEST_F(Cli, HostileInputIsRefusedWithThreeAndEmptyOutputNameWithTwo) {
  const char* src = std::getenv("LB_SOURCE_DIR");
  const fs::path hostile = fs::path(src ? src : ".") / "tests/io/hostile";
  struct Case {
    std::vector<std::string> args;
    int status;
    const char* words;  // in the message on standard error
  };
  const Case cases[] = {
      {{"render", (hostile / "singular-matrix.lbdoc").string(), "-o", P("x.png")}, 3, "matrix is singular"},
      {{"run", P("plain.lbdoc"), "-o", ""}, 2, "-o needs a file name"},
      {{"render", P("plain.lbdoc"), "-o", ""}, 2, "-o needs a file name"},
  };
  for (const Case& c : cases) {
    Result r = Invoke(c.args);
    EXPECT_EQ(r.status, c.status) << c.args[1];
    EXPECT_NE(r.err.find(c.words), std::string::npos) << r.err;
    EXPECT_TRUE(r.out.empty()) << r.out.substr(0, 200);
  }
  EXPECT_TRUE(Others({"plain.lbdoc"}).empty());
}

TEST_F(Cli, RunWritesTheOutputAtomicallyAndNothingElseToStdout) {
  Write(dir / "out.lbdoc", "previous");
  Result r = Invoke({"run", P("plain.lbdoc"), "-o", P("out.lbdoc"), "--command", "168",
                  "--opacity", "off", "--command", "150+alt+ctrl"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(r.out.empty()) << r.out;
  const std::string written = Slurp(dir / "out.lbdoc");
  EXPECT_NE(written, "previous");
  EXPECT_NE(written.find("\"latticebender\""), std::string::npos);
  EXPECT_TRUE(Others({"plain.lbdoc", "out.lbdoc"}).empty());

  // Without -o the document goes to standard output.
  Result toStdout = Invoke({"run", P("plain.lbdoc"), "--command", "168"});
  ASSERT_EQ(toStdout.status, 0) << toStdout.err;
  EXPECT_EQ(toStdout.out, written + (written.back() == '\n' ? "" : "\n"));
}

TEST_F(Cli, AnOutputThatCannotBeWrittenFailsWithFourAndLeavesNoFile) {
  Result r = Invoke({"run", P("plain.lbdoc"), "-o", P("no-such-dir/out.lbdoc"), "--command", "150"});
  EXPECT_EQ(r.status, 4);
  EXPECT_FALSE(r.err.empty());
  EXPECT_FALSE(fs::exists(dir / "no-such-dir"));
}

TEST_F(Cli, MessageBoxesGoToStdoutOneLineEach) {
  // Vertex UVs of a selected mesh are shown in a message box.
  Write(dir / "mesh.lbdoc", lb::app::demoDocumentText({false, {{0, 0}, {6, 5}}}));
  Result r = Invoke({"run", P("mesh.lbdoc"), "-o", P("out.lbdoc"), "--command", "169"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_TRUE(fs::exists(dir / "out.lbdoc"));
  EXPECT_EQ(r.out,
            "U: 0.000000, 0.166667, 0.333333, 0.500000, 0.666667, 0.833333, 1.000000, \n"
            "V: 0.000000, 0.200000, 0.400000, 0.600000, 0.800000, 1.000000, \n---------\n\n");

  // With no mesh selected the box is empty: one empty line.
  r = Invoke({"run", P("plain.lbdoc"), "-o", P("out2.lbdoc"), "--command", "169"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.out, "\n");
}

TEST_F(Cli, DemoWritesBeforeAndAfterForEveryStep) {
  Result r = Invoke({"demo", "-o", P("tour")});
  EXPECT_EQ(r.status, 0) << r.err;
  const auto& tour = lb::app::demoTour();
  ASSERT_FALSE(tour.empty());
  for (size_t k = 0; k < tour.size(); ++k) {
    char prefix[24];
    std::snprintf(prefix, sizeof prefix, "%02zu-", k + 1);
    const std::string base = std::string(prefix) + tour[k].stem;
    EXPECT_TRUE(fs::exists(dir / "tour" / (base + "-before.lbdoc"))) << base;
    EXPECT_TRUE(fs::exists(dir / "tour" / (base + "-after.lbdoc"))) << base;
  }
  // One line per step and a closing summary.
  EXPECT_GE(std::count(r.out.begin(), r.out.end(), '\n'), static_cast<long>(tour.size() + 1));
  EXPECT_NE(r.out.find(std::to_string(tour.size()) + " steps"), std::string::npos);
  // The demo document is valid and described.
  Write(dir / "demo.lbdoc", lb::app::demoDocumentText({true, {}}));
  r = Invoke({"info", P("demo.lbdoc")});
  EXPECT_EQ(r.status, 0) << r.err;
  EXPECT_FALSE(r.out.empty());
}

}  // namespace
