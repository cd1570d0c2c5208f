// The `latticebender` command line (placeholder until the subcommands land).
#include <cstdio>

int lbMain(int, char**) {
  std::puts("latticebender");
  return 0;
}
