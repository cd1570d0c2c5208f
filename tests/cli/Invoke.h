// The program run in-process as `latticebender args...`, with its exit status and both output streams.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

int lbMain(int argc, char** argv);

namespace clitest {

struct Result {
  int status;
  std::string out, err;
};

inline Result Invoke(std::vector<std::string> args) {
  args.insert(args.begin(), "latticebender");
  std::vector<char*> argv;
  for (auto& a : args) argv.push_back(a.data());
  argv.push_back(nullptr);
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int status = lbMain(static_cast<int>(args.size()), argv.data());
  Result r{status, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
  return r;
}

}  // namespace clitest
