// The streaming writer: the file layout as it has always been written,
// number spelling, and streamed output equal to the in-memory text.
#include <gtest/gtest.h>

#include <unistd.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>

#include "host/Document.h"
#include "io/JsonWriter.h"
#include "io/Lbdoc.h"
#include "IoTest.h"

namespace {

using lb::test::slurp;
using iotest::SourcePath;

std::string spell(double d) {
  std::string out;
  lb::io::appendJsonNumber(out, d);
  return out;
}

}  // namespace

// Deep nesting (past 50 levels a container has no room left on its line),
// escapes, empty arrays, every art type and key: byte for byte the
// established text, which reads back to itself (doubles exactly).
TEST(JsonWriter, LayoutMatchesTheEstablishedFilesAndIsStable) {
  const auto doc = lb::io::readDocumentFile(SourcePath("tests/io/golden/layout-input.lbdoc"));
  const std::string expected = slurp(SourcePath("tests/io/golden/layout-expected.lbdoc"));
  EXPECT_EQ(lb::io::writeDocument(*doc), expected);
  EXPECT_EQ(lb::io::writeDocument(*lb::io::readDocument(expected)), expected);
}

TEST(JsonWriter, NumbersAreSpelledAsTheJsonLibrarySpellsThem) {
  const struct { double value; const char* text; } cases[] = {
      {0.0, "0.0"}, {-0.0, "-0.0"}, {1, "1.0"}, {-25, "-25.0"}, {0.5, "0.5"}, {0.1 + 0.2, "0.30000000000000004"},
      {1.0 / 3, "0.3333333333333333"}, {0.0001, "0.0001"}, {0.00001, "1e-05"}, {1.5e-7, "1.5e-07"},
      {1e14, "100000000000000.0"}, {123456789012345.0, "123456789012345.0"}, {1e15, "1e+15"}, {1.5e15, "1.5e+15"},
      {1e16, "1e+16"}, {1.25e17, "1.25e+17"}, {1e100, "1e+100"}, {1e-300, "1e-300"}, {5e-324, "5e-324"},
      {std::numeric_limits<double>::max(), "1.7976931348623157e+308"}, {std::nan(""), "null"}, {INFINITY, "null"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(spell(c.value), c.text) << c.text;
    if (std::isfinite(c.value)) {
      EXPECT_EQ(spell(c.value), nlohmann::json(c.value).dump()) << c.text;
    }
  }
}

TEST(JsonWriter, RandomDoublesReadBackExactly) {
  std::mt19937_64 rng(7);
  int differ = 0;
  const int n = 20000;
  for (int k = 0; k < n; ++k) {
    uint64_t bits = rng();
    double d;
    std::memcpy(&d, &bits, sizeof d);
    if (!std::isfinite(d)) continue;
    const std::string s = spell(d);
    double back = 0;
    const auto r = std::from_chars(s.data(), s.data() + s.size(), back);
    ASSERT_EQ(r.ptr, s.data() + s.size()) << s;
    ASSERT_EQ(std::memcmp(&back, &d, sizeof d), 0) << s;
    // The library's digits are not always the shortest nor the closest;
    // ours are, and otherwise laid out the same.
    const std::string lib = nlohmann::json(d).dump();
    if (s != lib) {
      ++differ;
      EXPECT_LE(s.size(), lib.size()) << s << " vs " << lib;
    }
  }
  EXPECT_LT(differ, n / 20) << differ << " of " << n;
}

TEST(JsonWriter, StreamedOutputEqualsTheText) {
  // Large enough to be flushed several times.
  lb::host::Document doc;
  doc.addLayer("L");
  ArtObject* art = nullptr;
  ASSERT_EQ(doc.newArt(kMeshArt, kPlaceAboveAll, nullptr, &art), kNoErr);
  art->mesh->initCartesian(60, 60);
  char name[] = "/tmp/lb-writer-XXXXXX";
  const int fd = mkstemp(name);
  ASSERT_GE(fd, 0);
  lb::io::writeDocumentTo(fd, doc);
  ::close(fd);
  const std::string streamed = slurp(name);
  std::remove(name);
  const std::string text = lb::io::writeDocument(doc);
  EXPECT_GT(text.size(), 3u << 20);
  EXPECT_EQ(streamed, text);
}

TEST(JsonWriter, StringsAreEscapedAndInvalidUtf8Refused) {
  std::string out;
  lb::io::appendJsonString(out, "a\"b\\c\n\t\x01\x1f caf\xc3\xa9");
  EXPECT_EQ(out, R"("a\"b\\c\n\t\u0001\u001f café")");
  for (const char* bad : {"\xff", "\xc3", "\xe2\x98", "\xc0\x80", "\xed\xa0\x80"}) {
    std::string o;
    EXPECT_THROW(lb::io::appendJsonString(o, bad), std::runtime_error) << bad;
  }
}
