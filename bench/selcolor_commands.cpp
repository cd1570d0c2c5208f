// Selection and colour commands on one square mesh selected as a whole,
// run through the loaded module as the panel runs them. Reports the time
// per node, which must stay flat from 64 x 64 to 256 x 256 cells.
#include <benchmark/benchmark.h>

#include "LBModule.h"
#include "host/Document.h"
#include "host/Host.h"
#include "io/Lbdoc.h"
#include "support/MeshRecipe.h"

namespace {

struct Cmd {
  const char* name;
  int id;
  bool alt, ctrl;
};

const Cmd kCommands[] = {
    {"SelectNodesOnly", kCmdSel, false, false},
    {"SelectRegion", kCmdSelRegion, false, false},
    {"SelectPerimeter", kCmdSelPerim, false, false},
    {"SelectRowsColumns", kCmdSelCross, false, false},
    {"ShiftSelection", kCmdSelShift, false, false},
    {"ReflectColors", kCmdColorReflect, false, false},
    {"RotateColors", kCmdColorRotate, false, false},
    {"ShiftColors", kCmdColorShift, false, false},
    {"SpreadColors", kCmdColorSpread, false, false},
};

void RunCommand(benchmark::State& state, Cmd cmd) {
  const int n = static_cast<int>(state.range(0));
  lb::host::Host host(lb::io::readDocument(lbtest::DocJson(lbtest::CodedWhole(n, n)).dump()));
  host.loadPlugin();
  ArtObject* mesh = host.document().layers()[0]->children[0].get();
  for (auto _ : state) {
    // Every run starts from the whole mesh selected (the region commands
    // rebuild the selection, and leave it to the host whether the art
    // itself still counts as selected).
    state.PauseTiming();
    if (!mesh->selected()) host.document().setSelected(mesh, true);
    state.ResumeTiming();
    host.runCommand(cmd.id, cmd.alt, cmd.ctrl, true, true);
  }
  const double nodes = double(n + 1) * double(n + 1);
  state.counters["nodes"] = nodes;
  state.counters["per_node"] =
      benchmark::Counter(nodes, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

const bool kRegistered = [] {
  for (const Cmd& c : kCommands)
    benchmark::RegisterBenchmark(c.name, RunCommand, c)->Arg(64)->Arg(256)->Unit(benchmark::kMillisecond);
  return true;
}();

}  // namespace

BENCHMARK_MAIN();
