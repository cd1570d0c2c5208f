// libFuzzer target for the document reader: any input either reads or is
// refused with a FormatError; a document that reads writes back to text
// that reads again and writes the same.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "io/Lbdoc.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  std::unique_ptr<lb::host::Document> doc;
  try {
    doc = lb::io::readDocument(text);
  } catch (const lb::io::FormatError&) {
    return 0;
  }
  const std::string once = lb::io::writeDocument(*doc);
  std::unique_ptr<lb::host::Document> again;
  try {
    again = lb::io::readDocument(once);
  } catch (const lb::io::FormatError& e) {
    std::fprintf(stderr, "written document does not read back: %s\n", e.what());
    std::abort();
  }
  if (lb::io::writeDocument(*again) != once) {
    std::fprintf(stderr, "second write differs from the first\n");
    std::abort();
  }
  return 0;
}
