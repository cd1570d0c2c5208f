// Helpers of the .lbdoc tests: the error a text gives, files of the source tree.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "interchange/Pictures.h"
#include "io/Lbdoc.h"

namespace iotest {

// The error reading text (or, with file set, the file named text) gives; fails the test when it reads fine.
inline lb::io::FormatError ReadError(const std::string& text, bool file = false) {
  try {
    file ? lb::io::readDocumentFile(text) : lb::io::readDocument(text);
  } catch (const lb::io::FormatError& e) {
    return e;
  }
  ADD_FAILURE() << "read without error: " << text.substr(0, 200);
  return lb::io::FormatError("", "");
}

inline std::string SourcePath(const std::string& rel) { return (lb::test::source() / rel).string(); }

}  // namespace iotest
