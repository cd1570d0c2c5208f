// The `latticebender` command line: run, info, render, panel, demo, edit.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "app/CommandArg.h"
#include "app/DemoTour.h"
#include "app/Interchange.h"
#include "app/PanelSnapshot.h"
#include "app/RenderBridge.h"
#include "host/Host.h"
#include "io/Describe.h"
#include "io/Lbdoc.h"

namespace {
using lb::app::CommandArg;

constexpr int kDone = 0;
constexpr int kUsage = 2;
constexpr int kBadInput = 3;
constexpr int kFailure = 4;

// A usage error found after CLI11's own checks.
struct UsageError {
  std::string message;
};

void Error(const std::string& message) { std::cerr << "latticebender: " << message << "\n"; }

// Reads a document; a bad or unreadable file is reported once, naming it.
std::unique_ptr<lb::host::Document> ReadInput(const std::string& path, int* status,
                                              const std::vector<std::string>& select = {}) {
  try {
    return lb::app::readAnyDocument(path, select);
  } catch (const lb::io::FormatError& e) {
    const std::string what = e.what();
    Error(what.find(path) == std::string::npos ? path + ": " + what : what);
  } catch (const std::exception& e) {
    Error(path + ": " + e.what());
  }
  *status = kBadInput;
  return nullptr;
}

// The run's options in the order given, as (name, value) pairs.
std::vector<std::pair<std::string, std::string>> OptionsInOrder(const CLI::App& run,
                                                                const CLI::Option* command,
                                                                const CLI::Option* color,
                                                                const CLI::Option* opacity) {
  std::vector<std::pair<std::string, std::string>> options;
  size_t next[3] = {0, 0, 0};
  const CLI::Option* opts[3] = {command, color, opacity};
  const char* names[3] = {"command", "color", "opacity"};
  for (const CLI::Option* opt : run.parse_order()) {
    for (int k = 0; k < 3; ++k) {
      if (opt != opts[k]) continue;
      const auto& values = opts[k]->results();
      if (next[k] < values.size()) options.emplace_back(names[k], values[next[k]++]);
    }
  }
  return options;
}

int RunDocument(const std::string& docPath, const std::string& outPath,
                const std::vector<CommandArg>& cmds, const std::string& select) {
  int status = kDone;
  auto doc = ReadInput(docPath, &status, lb::app::splitIds(select));
  if (!doc) return status;
  const bool toStdout = outPath.empty() || outPath == "-";
  try {
    lb::host::Host host(std::move(doc));
    host.setAlertSink([](const std::string& text) {
      std::fwrite(text.data(), 1, text.size(), stdout);
      std::fputc('\n', stdout);
      std::fflush(stdout);
    });
    host.loadPlugin();
    for (const CommandArg& c : cmds) {
      AIErr err = host.runCommand(c.id, c.alt, c.ctrl, c.useColor, c.useOpacity);
      if (err) throw std::runtime_error("command " + std::to_string(c.id) + " failed with code " +
                                        std::to_string(err));
    }
    host.shutdownPlugin();
    auto result = host.takeDocument();
    if (toStdout) {
      // SVG as text; .lbdoc streamed straight to the descriptor, after any
      // message text.
      if (lb::app::isSvgPath(docPath)) {
        const std::string text = lb::app::svgText(*result);
        std::fwrite(text.data(), 1, text.size(), stdout);
        if (text.empty() || text.back() != '\n') std::fputc('\n', stdout);
      }
      std::fflush(stdout);
      if (!lb::app::isSvgPath(docPath)) lb::io::writeDocumentTo(STDOUT_FILENO, *result);
    } else {
      lb::app::writeAnyDocument(*result, outPath);
    }
  } catch (const std::exception& e) {
    Error(e.what());
    return kFailure;
  }
  return kDone;
}

int Info(const std::string& docPath) {
  int status = kDone;
  auto doc = ReadInput(docPath, &status);
  if (!doc) return status;
  std::cout << lb::io::describeDocument(*doc);
  return kDone;
}

int Render(const std::string& docPath, const std::string& outPath, double scale, bool selection) {
  if (!(scale > 0) || scale > 64) {
    Error("--scale must be above 0 and at most 64");
    return kUsage;
  }
  int status = kDone;
  auto doc = ReadInput(docPath, &status);
  if (!doc) return status;
  try {
    lb::app::renderPng(*doc, outPath, scale, selection);
  } catch (const std::exception& e) {
    Error(e.what());
    return kFailure;
  }
  return kDone;
}

// The editor is its own program (it needs GTK 4, the command line does
// not): latticebender-edit beside this executable. Replaces this process.
int Edit(const std::vector<std::string>& files) {
  std::error_code ec;
  const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ec);
  const std::filesystem::path editor = self.parent_path() / "latticebender-edit";
  if (ec || !std::filesystem::exists(editor)) {
    Error("the editor (latticebender-edit) is not installed beside this program; build with GTK 4 "
          "(libgtk-4-dev) to get it");
    return kFailure;
  }
  std::vector<std::string> args{editor.string()};
  args.insert(args.end(), files.begin(), files.end());
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  std::fflush(stdout);
  execv(argv[0], argv.data());
  Error("cannot start " + editor.string() + ": " + std::strerror(errno));
  return kFailure;
}

}  // namespace

int lbMain(int argc, char** argv) {
  CLI::App app{"LatticeBender: gradient-mesh commands on .lbdoc documents", "latticebender"};
  app.require_subcommand(1);

  std::string docPath, outPath;
  std::vector<std::string> commandTexts, colorTexts, opacityTexts;
  auto* run = app.add_subcommand("run", "Run panel commands on a document");
  run->add_option("DOC", docPath, "Input document (.lbdoc)")->required();
  auto* runOutput = run->add_option("-o,--output", outPath, "Output document (default: standard output)");
  auto* command = run->add_option("--command", commandTexts,
                                  "Command ID[+alt][+ctrl]; repeat for more commands");
  auto* color = run->add_option("--color", colorTexts,
                                "on|off: the colour checkbox for the commands that follow");
  auto* opacity = run->add_option("--opacity", opacityTexts,
                                  "on|off: the opacity checkbox for the commands that follow");
  for (CLI::Option* o : {command, color, opacity}) o->allow_extra_args(false);
  std::string select;
  run->add_option("--select", select, "Ids of the elements to select, ID,...");

  auto* info = app.add_subcommand("info", "Summarise a document");
  info->add_option("DOC", docPath, "Input document (.lbdoc)")->required();

  double scale = 1.0;
  bool selection = false;
  auto* render = app.add_subcommand("render", "Draw a document to PNG");
  render->add_option("DOC", docPath, "Input document (.lbdoc)")->required();
  auto* renderOutput = render->add_option("-o,--output", outPath, "Output picture (.png)")->required();
  render->add_option("--scale", scale, "Pixels per document unit");
  render->add_flag("--selection", selection, "Overlay the selected mesh points");

  std::string hoverText, pressText;
  auto* panel = app.add_subcommand("panel", "Draw the command panel to PNG");
  auto* panelOutput = panel->add_option("-o,--output", outPath, "Output picture (.png)")->required();
  panel->add_option("--hover", hoverText, "Cursor position X,Y");
  panel->add_option("--press", pressText, "Left button pressed at X,Y");

  std::string demoDir = "demo-out";
  auto* demo = app.add_subcommand("demo", "Run the demo tour");
  auto* demoOutput = demo->add_option("-o,--output", demoDir, "Output directory");

  lb::app::InterchangeCommands interchange(app);

  std::vector<std::string> editFiles;
  auto* edit = app.add_subcommand("edit", "Open the editor window (GTK 4)");
  edit->add_option("FILE", editFiles, "Document to open (.lbdoc)")->expected(0, 1);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int code = app.exit(e);
    return code == 0 ? kDone : kUsage;
  }

  try {
    // An empty output name is a mistake (an unset variable, say), not a
    // request for standard output.
    for (const CLI::Option* o : {runOutput, renderOutput, panelOutput, demoOutput})
      if (o->count() > 0 && o->as<std::string>().empty()) throw UsageError{"-o needs a file name, not ''"};
    if (run->parsed()) {
      std::vector<CommandArg> cmds;
      try {
        cmds = lb::app::commandsInOrder(OptionsInOrder(*run, command, color, opacity));
      } catch (const std::invalid_argument& e) {
        throw UsageError{e.what()};
      }
      return RunDocument(docPath, outPath, cmds, select);
    }
    if (int rc; interchange.run(&rc)) return rc;
    if (info->parsed()) return Info(docPath);
    if (render->parsed()) return Render(docPath, outPath, scale, selection);
    if (panel->parsed()) {
      std::optional<std::pair<int, int>> hover, press;
      if (!hoverText.empty() && !(hover = lb::app::parsePoint(hoverText)))
        throw UsageError{"--hover takes X,Y, not '" + hoverText + "'"};
      if (!pressText.empty() && !(press = lb::app::parsePoint(pressText)))
        throw UsageError{"--press takes X,Y, not '" + pressText + "'"};
      return lb::app::panelSnapshot(outPath, hover, press);
    }
    if (demo->parsed()) return lb::app::runDemo(demoDir);
    if (edit->parsed()) return Edit(editFiles);
  } catch (const UsageError& e) {
    Error(e.message);
    return kUsage;
  } catch (const std::exception& e) {
    Error(e.what());
    return kFailure;
  }
  return kUsage;
}
