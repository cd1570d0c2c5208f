// The error a document reader throws for a bad file: the JSON path of the
// offending value (for example "layers[0].children[2].nodes[5].p") and
// what is wrong with it.
#pragma once

#include <stdexcept>
#include <string>

namespace lb::io {

class FormatError : public std::runtime_error {
 public:
  FormatError(std::string path, const std::string& what)
      : std::runtime_error(path + ": " + what), path_(std::move(path)) {}
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

}  // namespace lb::io
