// Hostile documents: each file under tests/io/hostile/ is refused with a
// message naming the offending value, and nesting or size claims cannot
// exhaust the stack or memory.
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "io/JsonDom.h"
#include "io/Lbdoc.h"
#include "io/Limits.h"
#include "IoTest.h"

using lb::io::FormatError;

namespace {

using iotest::ReadError;
const std::string kHostile = iotest::SourcePath("tests/io/hostile/");

std::string nestedGroups(int depth) {
  std::string text = R"({"latticebender": 1, "layers": [{"name": "L", "children": [)";
  for (int k = 0; k < depth; ++k) text += R"({"type": "group", "children": [)";
  for (int k = 0; k < depth; ++k) text += "]}";
  return text + "]}]}";
}

}  // namespace

TEST(Hostile, EachFileIsRefusedNamingTheValue) {
  struct Case {
    const char* file;
    const char* path;  // "" when the place is a line and column
    const char* words;
  };
  const Case cases[] = {
      {"coordinate-point.lbdoc", "layers[0].children[0].segments[0].p[0]", "outside +-1e7"},
      {"coordinate-handle.lbdoc", "layers[0].children[0].segments[0].in[1]", "outside +-1e7"},
      {"coordinate-mesh-node.lbdoc", "layers[0].children[0].nodes[1].p[0]", "outside +-1e7"},
      {"coordinate-mesh-run.lbdoc", "layers[0].children[0].runs[0].points[1][0]", "outside +-1e7"},
      {"coordinate-matrix.lbdoc", "layers[0].children[0].matrix[5]", "outside +-1e7"},
      {"coordinate-artboard.lbdoc", "artboard[2]", "outside +-1e7"},
      {"mesh-size-lie.lbdoc", "layers[0].children[0].nodes", "expected (I+1)(J+1) = 8000002 nodes, found 4"},
      {"non-finite.lbdoc", "layers[0].children[0].nodes[1].opacity", "not finite"},
      {"trailing-garbage.lbdoc", "", "after the document"},
      {"trailing-nul.lbdoc", "", "after the document"},
      {"second-document.lbdoc", "", "after the document"},
      {"duplicate-key.lbdoc", "layers[0].name", "duplicate key \"name\""},
      {"duplicate-key-node.lbdoc", "layers[0].children[0].nodes[2].p", "duplicate key \"p\""},
      {"singular-matrix.lbdoc", "layers[0].children[0].matrix", "singular"},
      {"degenerate-matrix.lbdoc", "layers[0].children[0].matrix", "singular"},
      {"overflowing-matrix.lbdoc", "layers[0].children[0].matrix", "not finite"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    const std::string file = kHostile + c.file;
    const FormatError e = ReadError(file, true);
    const std::string what = e.what();
    if (*c.path)
      EXPECT_EQ(e.path(), c.path) << what;
    else
      EXPECT_EQ(e.path().rfind("line ", 0), 0u) << what;
    EXPECT_NE(what.find(c.words), std::string::npos) << what;
    EXPECT_NE(what.find(file), std::string::npos) << "names the file: " << what;
  }
  const std::string dir = ReadError(kHostile, true).what();
  EXPECT_NE(dir.find("is a directory"), std::string::npos) << dir;
}

TEST(Hostile, CoordinatesUpToTheLimitRead) {
  const std::string ok = R"({"latticebender": 1, "artboard": [-1e7, -1e7, 1e7, 1e7], "layers": [{"name": "L",
    "children": [{"type": "path", "segments": [{"p": [10000000, -10000000]}]}]}]})";
  EXPECT_NO_THROW(lb::io::readDocument(ok));
}

TEST(Hostile, ArtNestingIsLimitedWithoutExhaustingTheStack) {
  EXPECT_NO_THROW(lb::io::readDocument(nestedGroups(lb::io::kMaxArtDepth)));
  const FormatError over = ReadError(nestedGroups(lb::io::kMaxArtDepth + 1));
  EXPECT_NE(std::string(over.what()).find("nested deeper than 256"), std::string::npos) << over.what();
  // Far past the limit the parser stops at its own depth limit, iteratively.
  for (int depth : {20000, 200000}) {
    const FormatError deep = ReadError(nestedGroups(depth));
    EXPECT_NE(std::string(deep.what()).find("nested deeper than"), std::string::npos);
  }
  std::string arrays = R"({"latticebender": 1, "layers": )" + std::string(100000, '[') + std::string(100000, ']') + "}";
  EXPECT_NE(std::string(ReadError(arrays).what()).find("nested deeper than 1000"), std::string::npos);
}

TEST(Hostile, DuplicateKeysAreFoundInLargeObjects) {
  // Past the linear scan the check switches to a set; both must catch it.
  for (int members : {3, 15, 16, 17, 40}) {
    std::string obj = "{";
    for (int k = 0; k < members; ++k) obj += "\"k" + std::to_string(k) + "\": 0, ";
    obj += "\"k" + std::to_string(members / 2) + "\": 1}";
    try {
      lb::io::JsonTree::parse(obj);
      ADD_FAILURE() << members << " members: no error";
    } catch (const FormatError& e) {
      EXPECT_EQ(e.path(), "k" + std::to_string(members / 2)) << e.what();
    }
    // Without the repeat it parses and keeps every member.
    obj = "{";
    for (int k = 0; k < members; ++k) obj += (k ? ", \"k" : "\"k") + std::to_string(k) + "\": " + std::to_string(k);
    obj += "}";
    const auto tree = lb::io::JsonTree::parse(obj);
    ASSERT_EQ(tree.root().size(), static_cast<size_t>(members));
    EXPECT_EQ(tree.root().find("k" + std::to_string(members - 1))->asInteger(), members - 1);
  }
}

TEST(Hostile, DeclaredMeshSizeIsCheckedBeforeAllocating) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "address-space limits do not mix with the address sanitizer";
#else
  // 7000 x 7000 cells would take gigabytes; the file holds four nodes. In a
  // child limited to 256 MB of address space the read must fail cleanly.
  const std::string text = R"({"latticebender": 1, "layers": [{"name": "L", "children": [{"type": "mesh",
    "size": [7000, 7000], "nodes": [{"p": [0, 0]}, {"p": [1, 0]}, {"p": [0, 1]}, {"p": [1, 1]}]}]}]})";
  const pid_t pid = fork();
  ASSERT_GE(pid, 0);
  if (pid == 0) {
    rlimit limit{256u << 20, 256u << 20};
    setrlimit(RLIMIT_AS, &limit);
    try {
      lb::io::readDocument(text);
    } catch (const FormatError& e) {
      _exit(std::string(e.path()) == "layers[0].children[0].nodes" ? 0 : 1);
    } catch (...) {
      _exit(2);
    }
    _exit(3);
  }
  int status = 0;
  waitpid(pid, &status, 0);
  ASSERT_TRUE(WIFEXITED(status)) << "child died";
  EXPECT_EQ(WEXITSTATUS(status), 0);
#endif
}

TEST(Hostile, MalformedJsonIsPlacedByLineAndColumn) {
  struct Case { const char* text; const char* place; const char* words; };
  const Case cases[] = {
      {"", "line 1, column 1", "unexpected end of input"}, {"{\"a\": 1,}", "line 1, column 9", "expected a string key"},
      {"[1, 2,]", "line 1, column 7", "unexpected ']'"}, {"{\"a\" 1}", "line 1, column 6", "expected ':'"},
      {"[1 2]", "line 1, column 4", "expected ',' or ']'"}, {"[01]", "line 1, column 3", "expected ',' or ']'"},
      {"[1.]", "line 1, column 4", "digit after '.'"}, {"[1e+]", "line 1, column 5", "exponent"},
      {"[-]", "line 1, column 3", "expected a digit"}, {"[tru]", "line 1, column 2", "invalid literal"},
      {"[\"a\nb\"]", "line 1, column 4", "control character"}, {"[\"\\x\"]", "line 1, column 4", "invalid escape"},
      {"[\"\\u12\"]", "line 1, column 7", "four hex digits"},
      {"[\"\\ud800\"]", "line 1, column 9", "unpaired surrogate"},
      {"[\"\\udc00\"]", "line 1, column 9", "unpaired surrogate"},
      {"[\"\xff\"]", "line 1, column 3", "invalid UTF-8"}, {"[\"\xc0\xaf\"]", "line 1, column 3", "invalid UTF-8"},
      {"[\"abc", "line 1, column 6", "end of input in a string"},
      {"{}\n\n  x", "line 3, column 3", "after the document"}, {"[1]\0", "line 1, column 4", "after the document"},
  };
  for (const Case& c : cases) {
    // The NUL case needs its length: the text ends after the NUL byte.
    const std::string text = std::string(c.text) == "[1]" ? std::string("[1]\0", 4) : std::string(c.text);
    try {
      lb::io::JsonTree::parse(text);
      ADD_FAILURE() << "parsed: " << c.text;
    } catch (const FormatError& e) {
      EXPECT_EQ(e.path(), c.place) << c.text << " -> " << e.what();
      EXPECT_NE(std::string(e.what()).find(c.words), std::string::npos) << c.text << " -> " << e.what();
      EXPECT_NE(std::string(e.what()).find("malformed JSON"), std::string::npos) << e.what();
    }
  }
  // Escapes decode to UTF-8, surrogate pairs included.
  const auto tree = lb::io::JsonTree::parse(R"(["a\"\\\/\b\f\n\r\t\u00e9\u2603\ud83d\ude00"])");
  EXPECT_EQ(tree.root()[0].asString(), "a\"\\/\b\f\n\r\t\xc3\xa9\xe2\x98\x83\xf0\x9f\x98\x80");
}
