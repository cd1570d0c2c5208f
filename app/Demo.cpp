// `latticebender demo`: the tour of panel commands on the demo document.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>

#include "app/DemoTour.h"
#include "app/RenderBridge.h"
#include "host/Host.h"
#include "io/Lbdoc.h"

namespace lb::app {

namespace {
std::string StepName(size_t index, const DemoStep& step) {
  char num[24];
  std::snprintf(num, sizeof num, "%02zu", index + 1);
  return std::string(num) + "-" + step.stem;
}

std::string Keys(const DemoStep& step) {
  std::string keys = std::to_string(step.id);
  if (step.alt) keys += "+alt";
  if (step.ctrl) keys += "+ctrl";
  return keys;
}
}  // namespace

int runDemo(const std::string& dir) {
  namespace fs = std::filesystem;
  try {
    fs::create_directories(dir);
  } catch (const std::exception& e) {
    std::cerr << "latticebender: cannot create " << dir << ": " << e.what() << "\n";
    return 4;
  }
  int changed = 0;
  int failed = 0;
  const auto& tour = demoTour();
  for (size_t k = 0; k < tour.size(); ++k) {
    const DemoStep& step = tour[k];
    const std::string base = (fs::path(dir) / StepName(k, step)).string();
    try {
      auto doc = demoDocument(step.selection, step.scene);
      if (step.prepareId) {
        lb::host::Host prep(std::move(doc));
        prep.loadPlugin();
        prep.runCommand(step.prepareId, false, false, true, true);
        prep.shutdownPlugin();
        doc = prep.takeDocument();
      }
      const std::string before = lb::io::writeDocument(*doc);
      lb::io::writeDocumentFileAtomic(*doc, base + "-before.lbdoc");
      renderPng(*doc, base + "-before.png", 1.0, true);

      std::vector<std::string> alerts;
      lb::host::Host host(std::move(doc));
      host.setAlertSink([&](const std::string& text) { alerts.push_back(text); });
      host.loadPlugin();
      host.runCommand(step.id, step.alt, step.ctrl, true, true);
      host.shutdownPlugin();
      auto after = host.takeDocument();

      const bool differs = lb::io::writeDocument(*after) != before;
      changed += differs;
      lb::io::writeDocumentFileAtomic(*after, base + "-after.lbdoc");
      renderPng(*after, base + "-after.png", 1.0, step.selectionAfter);

      std::cout << StepName(k, step) << "  " << step.title << " [" << Keys(step) << "]: "
                << (differs ? "changed" : "unchanged");
      // A message of several lines stays indented under its step.
      for (std::string a : alerts) {
        for (size_t at = a.find('\n'); at != std::string::npos && at + 1 < a.size(); at = a.find('\n', at + 14))
          a.replace(at, 1, "\n             ");
        std::cout << "\n    message: " << a;
      }
      std::cout << "\n";
    } catch (const std::exception& e) {
      // One failing step does not hide what the others show.
      std::cerr << "latticebender: demo step " << StepName(k, step) << ": " << e.what() << "\n";
      ++failed;
    }
  }
  std::cout << tour.size() << " steps, " << changed << " changed the document; files in " << dir << "\n";
  if (failed) std::cout << failed << " steps failed\n";
  return failed ? 4 : 0;
}

}  // namespace lb::app
