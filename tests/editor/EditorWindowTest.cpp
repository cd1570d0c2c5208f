// The editor window under a real X server, driven by real input events
// (xdotool): open, click nodes, press a panel button with and without Alt,
// undo, redo, save; the saved files must equal what `latticebender run`
// makes of the same selection and commands. Also a screenshot of the
// window: the panel as `latticebender panel` draws it, the canvas as the
// renderer draws the document. The editor reports its geometry and history
// state through LB_EDITOR_STATE.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "ButtonDefs.h"
#include "LBModule.h"
#include "io/Lbdoc.h"
#include "render/Render.h"
#include "interchange/Pictures.h"
#include "support/Geometry.h"
#include "support/MeshRecipe.h"

// Last: Xlib's macros (None, Bool, ...) clash with names above.
#ifdef LB_HAVE_X11
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#endif

namespace {
namespace fs = std::filesystem;

const auto Slurp = lb::test::slurp;
const auto OnPath = lb::test::haveProgram;

// The exit status of `latticebender ARGS`, its output discarded.
int Cli(const std::string& args) {
  return std::system((std::string(LB_CLI_BIN) + " " + args + " > /dev/null 2>&1").c_str());
}

// Polls `done` every 50 ms until it holds or `seconds` have passed; whether it held.
bool Poll(const std::function<bool()>& done, int seconds = 10) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
  while (!done()) {
    if (std::chrono::steady_clock::now() >= end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
  }
  return true;
}

// The editor's state file, parsed: "name v1 v2 ..." lines.
using State = std::map<std::string, std::vector<std::string>>;

State ReadState(const fs::path& p) {
  State s;
  std::istringstream in(Slurp(p));
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream l(line);
    std::string key, v;
    l >> key;
    while (l >> v) s[key].push_back(v);
  }
  return s;
}

// The panel button of a command (client pixels of the panel), by the
// plug-in's own command table.
std::pair<int, int> PanelButtonCentre(int commandId) {
  for (unsigned i = 0; i < BtnsGetCount(); ++i) {
    if (BtnGetFuncID(i) != commandId) continue;
    int x, y, w, h;
    BtnGetDimentions(i, &x, &y, &w, &h);
    return {x + w / 2, y + h / 2};
  }
  ADD_FAILURE() << "no button for command " << commandId;
  return {0, 0};
}

class EditorWindow : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!std::getenv("DISPLAY")) GTEST_SKIP() << "no X display (xvfb-run missing)";
    if (!OnPath("xdotool")) GTEST_SKIP() << "xdotool missing";
    if (!fs::exists(LB_EDITOR_BIN)) GTEST_SKIP() << "the editor was not built (GTK 4 missing)";
    dir = fs::temp_directory_path() / ("lb-editor-" + std::to_string(::getpid()) + "-" +
                                       ::testing::UnitTest::GetInstance()->current_test_info()->name());
    fs::remove_all(dir);
    fs::create_directories(dir);
    // A 2 x 1 mesh of 100-unit cells, each node's paint naming it, nothing
    // selected.
    lbtest::MeshRecipe m = lbtest::Coded(2, 1);
    m.artSelected = false;
    m.dx = m.dy = 100;
    mesh = m;
    std::ofstream(dir / "work.lbdoc") << lbtest::DocJson(m).dump(2);
  }

  void TearDown() override {
    if (pid > 0) {
      ::kill(pid, SIGTERM);
      int status = 0;
      ::waitpid(pid, &status, 0);
    }
    if (!HasFailure() && !dir.empty()) fs::remove_all(dir);
  }

  void Start() {
    statePath = dir / "state";
    pid = ::fork();
    ASSERT_GE(pid, 0);
    if (pid == 0) {
      ::setenv("LB_EDITOR_STATE", statePath.c_str(), 1);
      ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
      ::setenv("GTK_A11Y", "none", 1);
      const std::string out = (dir / "editor.out").string();
      std::freopen(out.c_str(), "w", stdout);
      std::freopen(out.c_str(), "a", stderr);
      // Through the command line, as a person starts it.
      ::execl(LB_CLI_BIN, LB_CLI_BIN, "edit", (dir / "work.lbdoc").c_str(), nullptr);
      std::_Exit(127);
    }
    WaitFor([](const State& s) { return s.count("canvas") && s.count("xid") && s.at("xid")[0] != "0"; });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    state = ReadState(statePath);
    xid = state["xid"][0];
  }

  // Polls the state file until `ok` holds (10 s at most).
  void WaitFor(const std::function<bool(const State&)>& ok, const char* what = "the editor") {
    bool exited = false;
    const bool held = Poll([&] {
      if (fs::exists(statePath)) {
        State s = ReadState(statePath);
        if (ok(s)) {
          state = s;
          return true;
        }
      }
      int status;
      return exited = ::waitpid(pid, &status, WNOHANG) == pid;
    });
    if (exited) pid = -1;
    ASSERT_FALSE(exited) << "the editor exited: " << Slurp(dir / "editor.out");
    ASSERT_TRUE(held) << "timed out waiting for " << what << "; state:\n" << Slurp(statePath);
  }

  void WaitHistory(int undo, int redo, bool modified) {
    const std::string want = std::to_string(undo) + " " + std::to_string(redo) + " " + (modified ? "1" : "0");
    WaitFor(
        [&](const State& s) {
          auto it = s.find("undo");
          return it != s.end() && it->second.size() == 5 && it->second[0] + " " + it->second[2] + " " + it->second[4] == want;
        },
        ("undo/redo/modified " + want).c_str());
  }

  void Xdo(const std::string& args) { ASSERT_EQ(std::system(("xdotool " + args).c_str()), 0) << args; }

  // Window pixel of a document point.
  std::pair<int, int> DocToWindow(AIRealPoint p) {
    const auto& c = state["canvas"];
    const auto& v = state["view"];
    const double x = std::stod(c[0]) + std::round(std::stod(v[0])) + (p.h - std::stod(v[2])) * std::stod(v[4]);
    const double y = std::stod(c[1]) + std::round(std::stod(v[1])) + (std::stod(v[3]) - p.v) * std::stod(v[4]);
    return {static_cast<int>(std::lround(x)), static_cast<int>(std::lround(y))};
  }

  std::pair<int, int> PanelToWindow(std::pair<int, int> p) {
    const auto& c = state["panel"];
    return {std::stoi(c[0]) + p.first, std::stoi(c[1]) + p.second};
  }

  // The xdotool step moving the pointer to a pixel of the editor's window (or of window `win`).
  std::string MoveTo(std::pair<int, int> p, const std::string& win = "") {
    return "mousemove --window " + (win.empty() ? xid : win) + " " + std::to_string(p.first) + " " +
           std::to_string(p.second);
  }

  // Clicks at a window pixel with the named modifier keys held.
  void ClickAt(std::pair<int, int> p, const std::string& keys = "") {
    const std::string click = MoveTo(p) + " sleep 0.1 click 1";
    Xdo(keys.empty() ? click : "keydown " + keys + " " + click + " keyup " + keys);
  }

  void Key(const std::string& k) { Xdo("key " + k); }

  // Presses at one window pixel, moves through the midpoint and releases at another.
  void Drag(std::pair<int, int> a, std::pair<int, int> b) {
    Xdo(MoveTo(a) + " mousedown 1 sleep 0.1 " + MoveTo({(a.first + b.first) / 2, (a.second + b.second) / 2}) +
        " sleep 0.1 " + MoveTo(b) + " sleep 0.1 mouseup 1");
  }

  // Once the history shows the change (undo and redo counts, modified),
  // Ctrl+S, then the saved file.
  std::string Save(int undo, int redo) {
    WaitHistory(undo, redo, true);
    Key("ctrl+s");
    WaitHistory(undo, redo, false);
    return Slurp(dir / "work.lbdoc");
  }

  // The opened document as the editor saves it unchanged.
  std::string Original() { return lb::io::writeDocument(*lb::io::readDocument(lbtest::DocJson(mesh).dump())); }

  // What the command line makes of `input` with the commands.
  std::string Run(const fs::path& input, const std::vector<std::string>& commands) {
    std::string args = "run " + input.string() + " -o " + (dir / "run.lbdoc").string();
    for (const auto& c : commands) args += " --command " + c;
    EXPECT_EQ(Cli(args), 0) << args;
    return Slurp(dir / "run.lbdoc");
  }

  fs::path dir, statePath;
  pid_t pid = -1;
  State state;
  std::string xid;
  lbtest::MeshRecipe mesh;
};

// The selected art ("art") and mesh nodes ("i,j") of a saved document.
std::string Selected(const std::string& lbdoc) {
  auto doc = lb::io::readDocument(lbdoc);
  std::string out;
  for (ArtObject* a : doc->allArt()) {
    if (a->selected()) out += "art ";
    if (a->type != kMeshArt) continue;
    for (int j = 0; j <= a->mesh->sizeJ(); ++j)
      for (int i = 0; i <= a->mesh->sizeI(); ++i)
        if (a->mesh->selected(a->mesh->node(i, j))) out += std::to_string(i) + "," + std::to_string(j) + " ";
  }
  return out;
}

// Node clicks select; "Reflect colors" pressed on the panel moved into its
// own window (Ctrl+Shift+P), then "Shift colors" with Alt on the panel
// docked again; undo, redo and save give what the command line gives.
TEST_F(EditorWindow, ClicksPanelButtonsUndoRedoAndSaveMatchTheCommandLine) {
  Start();
  for (int i = 0; i < 3; ++i) {
    ClickAt(DocToWindow(mesh.P(i, 0)), i > 0 ? "shift" : "");
    WaitHistory(i + 1, 0, true);
  }
  const std::string selected = Save(3, 0);
  fs::copy_file(dir / "work.lbdoc", dir / "selected.lbdoc");
  EXPECT_EQ(Selected(selected), "art 0,0 1,0 2,0 ");

  Key("ctrl+shift+p");
  WaitFor([&](const State& s) { return s.count("panelxid") && s.at("panelxid")[0] != xid && s.at("panel").size() == 4; },
          "the panel in its own window");
  const std::string panelXid = state["panelxid"][0];
  const auto at = PanelToWindow(PanelButtonCentre(kCmdColorReflect));
  // Without a window manager the panel's window lies over the editor's
  // corner once raised.
  Xdo("sleep 0.3 windowraise " + panelXid + " sleep 0.2 " + MoveTo(at, panelXid) + " sleep 0.1 click 1");
  WaitHistory(4, 0, true);
  Key("ctrl+shift+p");
  WaitFor([&](const State& s) { return s.count("panelxid") && s.at("panelxid")[0] == xid && s.at("panel").size() == 4; },
          "the panel docked");
  ClickAt(PanelToWindow(PanelButtonCentre(kCmdColorShift)), "alt");
  const std::string both = Save(5, 0);
  EXPECT_NE(both, selected);
  EXPECT_EQ(both, Run(dir / "selected.lbdoc", {"137", "136+alt"}));

  Key("ctrl+z");
  const std::string one = Save(4, 1);
  EXPECT_EQ(one, Run(dir / "selected.lbdoc", {"137"}));
  EXPECT_NE(one, both);
  EXPECT_NE(one, selected);

  Key("ctrl+shift+z");
  EXPECT_EQ(Save(5, 0), both);

  // Undo back to the opened document.
  for (int k = 0; k < 5; ++k) Key("ctrl+z");
  EXPECT_EQ(Save(0, 5), Original());
}

// A rectangle selects, a click away from every vertex deselects, dragging a
// node selects and moves it with its handles in one step; quitting with
// unsaved changes asks first (Escape cancels), once saved Ctrl+Q ends the
// program cleanly.
TEST_F(EditorWindow, RectangleClickDragAndQuit) {
  Start();
  Drag(DocToWindow(AIRealPoint{mesh.P(0, 1).h - 4, mesh.P(0, 1).v + 4}),
       DocToWindow(AIRealPoint{mesh.P(2, 1).h + 4, mesh.P(2, 1).v - 20}));
  EXPECT_EQ(Selected(Save(1, 0)), "art 0,1 1,1 2,1 ");
  ClickAt(DocToWindow(AIRealPoint{50, 50}));
  EXPECT_EQ(Selected(Save(2, 0)), "");

  const auto from = DocToWindow(mesh.P(1, 1));
  Drag(from, {from.first + 40, from.second + 20});
  auto doc = lb::io::readDocument(Save(3, 0));  // selecting and moving are one change
  const double zoom = std::stod(state["view"][4]);
  for (ArtObject* art : doc->allArt()) {
    if (art->type != kMeshArt) continue;
    const auto& m = *art->mesh;
    const auto v = m.node(1, 1);
    EXPECT_TRUE(m.selected(v));
    EXPECT_PT_NEAR(m.point(v), (AIRealPoint{100 + 40 / zoom, 100 - 20 / zoom}), 1.01 / zoom);
    // The handle along I keeps its offset from the node.
    EXPECT_PT_NEAR(m.tangent(v, lb::host::kDirIFwd), (AIRealPoint{m.point(v).h + 100 / 3.0, m.point(v).v}), 1e-6);
  }
  Key("ctrl+z");
  WaitHistory(2, 1, true);  // differs from what was saved

  Key("ctrl+q");
  std::this_thread::sleep_for(std::chrono::milliseconds(800));
  int status = 0;
  ASSERT_EQ(::waitpid(pid, &status, WNOHANG), 0) << "closed without asking";
  Key("Escape");
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  Xdo(MoveTo({5, 200}));
  Save(2, 1);
  Key("ctrl+q");
  ASSERT_TRUE(Poll([&] { return ::waitpid(pid, &status, WNOHANG) == pid; })) << "still open after Ctrl+Q";
  pid = -1;
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << Slurp(dir / "editor.out");
}

// A PDF without its dates (cairo stamps the time of writing).
std::string WithoutDates(const std::string& pdf) {
  std::istringstream in(pdf);
  std::string line, out;
  while (std::getline(in, line))
    if (line.find("CreationDate") == std::string::npos && line.find("ModDate") == std::string::npos) out += line + "\n";
  return out;
}

// File > Export (Ctrl+E) by extension and File > Import SVG (Ctrl+I),
// typed into the real file dialogs, give what `latticebender export` and
// `import` give; the import is one undoable change.
TEST_F(EditorWindow, ExportAndImportMatchTheCommandLine) {
  Start();
  for (const std::string ext : {"svg", "pdf", "png"}) {
    SCOPED_TRACE(ext);
    const fs::path out = dir / ("menu." + ext), ref = dir / ("cli." + ext);
    Key("ctrl+e");
    Xdo("search --sync --name '^Export' sleep 0.5 key ctrl+a type --delay 5 '" + out.string() + "'");
    Xdo("sleep 0.2 key Return");
    ASSERT_TRUE(Poll([&] { return fs::exists(out); })) << Slurp(dir / "editor.out");
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    ASSERT_EQ(Cli("export " + (dir / "work.lbdoc").string() + " -o " + ref.string()), 0);
    if (ext == "pdf")
      EXPECT_EQ(WithoutDates(Slurp(out)), WithoutDates(Slurp(ref)));
    else
      EXPECT_EQ(Slurp(out), Slurp(ref));
  }
  WaitHistory(0, 0, false);  // exporting changes nothing

  // An SVG of another mesh, imported through the menu and saved.
  std::ofstream(dir / "other.lbdoc") << lbtest::DocJson(lbtest::Coded(1, 2)).dump(2);
  const fs::path svg = dir / "other.svg";
  ASSERT_EQ(Cli("export " + (dir / "other.lbdoc").string() + " -o " + svg.string()), 0);
  ASSERT_EQ(Cli("import " + svg.string() + " -o " + (dir / "imported.lbdoc").string()), 0);
  Key("ctrl+i");
  Xdo("search --sync --name '^Import' sleep 0.5 key ctrl+l type --delay 5 '" + svg.string() + "'");
  Xdo("sleep 0.3 key Return");
  WaitHistory(1, 0, true);
  // The import lands before the dialog has closed; keys typed meanwhile go to the dialog.
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  EXPECT_EQ(Save(1, 0), Slurp(dir / "imported.lbdoc"));
  Key("ctrl+z");
  EXPECT_EQ(Save(0, 1), Original());
}

// `latticebender edit` refuses bad input before it opens a window: exit
// status and a part of standard error.
TEST(EditArgs, RefusedWithAMessage) {
  if (!fs::exists(LB_EDITOR_BIN)) GTEST_SKIP() << "the editor was not built (GTK 4 missing)";
  const struct { const char* args; int status; const char* message; } cases[] = {
      {"/nonexistent/doc.lbdoc", 3, "/nonexistent/doc.lbdoc"}, {"/etc/hostname", 3, "/etc/hostname"},
      {"a.lbdoc b.lbdoc", 2, "FILE"}};
  const fs::path err = fs::temp_directory_path() / ("lb-edit-args-" + std::to_string(::getpid()));
  for (const auto& c : cases) {
    const int raw = std::system((std::string(LB_CLI_BIN) + " edit " + c.args + " > /dev/null 2> " + err.string()).c_str());
    const std::string text = Slurp(err);
    ASSERT_TRUE(WIFEXITED(raw)) << c.args;
    EXPECT_EQ(WEXITSTATUS(raw), c.status) << c.args << ": " << text;
    EXPECT_NE(text.find(c.message), std::string::npos) << text;
  }
  fs::remove(err);
}

#ifdef LB_HAVE_X11
// Pixels of the panel's area in the window (state "panel": x y w h) that
// differ from a PNG; -1 when the PNG is unreadable or of another size.
int PanelDiffs(Display* display, Window win, const std::vector<std::string>& panel, const fs::path& png) {
  int w, h;
  const std::vector<uint32_t> px = lb::test::readArgb(png, &w, &h);
  if (px.empty() || w != std::stoi(panel[2]) || h != std::stoi(panel[3])) return -1;
  XImage* shot = XGetImage(display, win, std::stoi(panel[0]), std::stoi(panel[1]), w, h, AllPlanes, ZPixmap);
  int diffs = 0;
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x)
      diffs += (px[y * w + x] & 0xFFFFFF) != (static_cast<uint32_t>(XGetPixel(shot, x, y)) & 0xFFFFFF);
  XDestroyImage(shot);
  return diffs;
}

// The window as the X server shows it: the panel pixel for pixel as
// `latticebender panel` draws it (also while a button is hovered, as with
// --hover at the same pixel), the canvas as the renderer draws the document
// at the view's zoom.
TEST_F(EditorWindow, ScreenshotShowsPanelCanvasAndHover) {
  Start();
  Xdo(MoveTo({2, 40}));  // away from the panel
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  const fs::path plain = dir / "panel.png", hover = dir / "hover.png";
  const auto button = PanelButtonCentre(kCmdColorShift);
  ASSERT_EQ(Cli("panel -o " + plain.string()), 0);
  ASSERT_EQ(Cli("panel -o " + hover.string() + " --hover " + std::to_string(button.first) + "," +
                std::to_string(button.second)),
            0);

  Display* display = XOpenDisplay(nullptr);
  ASSERT_NE(display, nullptr);
  XWindowAttributes attrs;
  const Window win = std::stoul(xid);
  ASSERT_TRUE(XGetWindowAttributes(display, win, &attrs));
  EXPECT_EQ(PanelDiffs(display, win, state["panel"], plain), 0);

  auto doc = lb::io::readDocument(lbtest::DocJson(mesh).dump());
  const lb::render::Image picture = lb::render::renderDocument(*doc, {std::stod(state["view"][4]), true});
  const auto [cx, cy] = DocToWindow(AIRealPoint{std::stod(state["view"][2]), std::stod(state["view"][3])});
  XImage* shot = XGetImage(display, win, 0, 0, attrs.width, attrs.height, AllPlanes, ZPixmap);
  ASSERT_NE(shot, nullptr);
  int canvasDiffs = 0, compared = 0;
  for (int y = 0; y < picture.height; y += 3)
    for (int x = 0; x < picture.width; x += 3) {
      if (cx + x >= attrs.width || cy + y >= attrs.height) continue;
      int r, g, b, a;
      picture.rgba(x, y, &r, &g, &b, &a);
      ++compared;
      canvasDiffs += ((static_cast<uint32_t>(r) << 16) | (g << 8) | b) !=
                     (static_cast<uint32_t>(XGetPixel(shot, cx + x, cy + y)) & 0xFFFFFF);
    }
  XDestroyImage(shot);
  EXPECT_GT(compared, 1000);
  EXPECT_EQ(canvasDiffs, 0);

  const auto at = PanelToWindow(button);
  Xdo(MoveTo({at.first - 1, at.second}) + " sleep 0.05 " + MoveTo(at));
  int diffs = -1;
  Poll([&] { return (diffs = PanelDiffs(display, win, state["panel"], hover)) == 0; }, 5);
  XCloseDisplay(display);
  EXPECT_EQ(diffs, 0);
}
#endif

}  // namespace

// Without a display, the tests run again under xvfb-run (when there is one).
int main(int argc, char** argv) {
  if (!std::getenv("DISPLAY") && !std::getenv("LB_EDITOR_UNDER_XVFB") && OnPath("xvfb-run")) {
    ::setenv("LB_EDITOR_UNDER_XVFB", "1", 1);
    std::vector<char*> args{const_cast<char*>("xvfb-run"), const_cast<char*>("-a"), const_cast<char*>("-s"),
                            const_cast<char*>("-screen 0 1280x1024x24")};
    for (int i = 0; i < argc; ++i) args.push_back(argv[i]);
    args.push_back(nullptr);
    ::execvp("xvfb-run", args.data());
  }
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
