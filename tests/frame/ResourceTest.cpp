// The resources embedded in the module, read as the panel reads them:
// through the data-filter suite, in pieces.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "AIFrameSuites.h"
#include "host/Host.h"
#include "host/suites/FrameState.h"

namespace {
using lb::host::Host;

// Reads a whole resource through the data-filter suite in `chunk`-byte pieces.
std::vector<unsigned char> ReadResource(int32_t type, int32_t id, const char* name,
                                        size_t chunk, AIErr* openErr = nullptr) {
  SPBasicSuite* basic = lb::host::basicSuite();
  const void* p = nullptr;
  EXPECT_EQ(basic->AcquireSuite(kAIDataFilterSuite, kAIDataFilterSuiteVersion, &p), kNoErr);
  auto* filters = static_cast<const AIDataFilterSuite*>(p);
  std::vector<unsigned char> bytes;
  AIDataFilter* filter = nullptr;
  SPPluginRef plugin = reinterpret_cast<SPPluginRef>(&bytes);  // any plug-in reference
  AIErr err = filters->NewResourceDataFilter(plugin, type, id, name, &filter);
  if (openErr) *openErr = err;
  if (!err) {
    std::vector<char> buf(chunk);
    for (;;) {
      size_t count = chunk;
      EXPECT_EQ(filters->ReadDataFilter(filter, buf.data(), &count), kNoErr);
      EXPECT_LE(count, chunk);
      bytes.insert(bytes.end(), buf.begin(), buf.begin() + static_cast<long>(count));
      if (count < chunk) break;
    }
    AIDataFilter* next = nullptr;
    EXPECT_EQ(filters->UnlinkDataFilter(filter, &next), kNoErr);
  }
  basic->ReleaseSuite(kAIDataFilterSuite, kAIDataFilterSuiteVersion);
  return bytes;
}

std::vector<unsigned char> ExpectedPropertyList() {
  std::vector<unsigned char> b;
  auto u16 = [&](int v) { b.push_back(v & 0xFF), b.push_back((v >> 8) & 0xFF); };
  auto u32 = [&](uint32_t v) {
    for (int i = 0; i < 4; ++i) b.push_back((v >> (8 * i)) & 0xFF);
  };
  auto code = [&](const char* c) {  // stored byte-reversed
    for (int i = 3; i >= 0; --i) b.push_back(static_cast<unsigned char>(c[i]));
  };
  auto text = [&](const char* s, size_t n) {
    for (size_t i = 0; i < n; ++i) b.push_back(static_cast<unsigned char>(s[i]));
  };
  u16(1);
  u32(0);
  u32(4);
  code("ADBE"), code("kind"), u32(0), u32(4), code("SPEA");
  code("ADBE"), code("ivrs"), u32(0), u32(4), u32(2);
  code("ADBE"), code("wx86"), u32(0), u32(12), text("PluginMain\0\0", 12);
  code("ADBE"), code("pinm"), u32(0), u32(12), text("LatticeBender\0\0", 15);
  return b;
}

TEST(Resources, PropertyListIsExactlyTheExpected109Bytes) {
  Host host;
  host.loadPlugin();
  for (size_t chunk : {1u, 7u, 1024u}) {
    SCOPED_TRACE(chunk);
    auto bytes = ReadResource(AIFourCC("PiPL"), 16000, nullptr, chunk);
    ASSERT_EQ(bytes.size(), 109u);
    auto expected = ExpectedPropertyList();
    for (size_t i = 0; i < 109; ++i) EXPECT_EQ(bytes[i], expected[i]) << "byte " << i;
  }
  EXPECT_EQ(host.counters().dataFilters, 0);
}

// The icon name text has no terminator; missing resources are reported.
TEST(Resources, IconNameTextAndMissingResources) {
  Host host;
  host.loadPlugin();
  auto bytes = ReadResource(AIFourCC("TXT "), 0, "IDTOFILE", 16);
  EXPECT_EQ(std::string(bytes.begin(), bytes.end()), std::string("220.png\tLBLogoW.png\r\n240.png\tLBLogoD.png"));
  AIErr err = kNoErr;
  ReadResource(AIFourCC("PiPL"), 16001, nullptr, 8, &err);
  EXPECT_EQ(err, kNoSuchResourceErr);
  ReadResource(AIFourCC("BMPP"), 0, "NO_SUCH_PICTURE", 8, &err);
  EXPECT_EQ(err, kNoSuchResourceErr);
  // A named resource is not found by id, nor under another type.
  ReadResource(AIFourCC("PiPL"), 0, "IDTOFILE", 8, &err);
  EXPECT_EQ(err, kNoSuchResourceErr);
}

TEST(PropertyList, EntryPointIsFoundAndDamageIsRejected) {
  auto good = ExpectedPropertyList();
  EXPECT_EQ(lb::host::entryPointFromPropertyList(good.data(), good.size()), "PluginMain");

  auto truncated = good, wrongKind = good, noEntry = good;
  truncated.resize(60);  // inside the entry point property's header
  wrongKind[0] = 2;
  noEntry[6] = 2;  // only "kind" and "ivrs" are read
  for (const auto& bad : {truncated, wrongKind, noEntry})
    EXPECT_THROW(lb::host::entryPointFromPropertyList(bad.data(), bad.size()), std::runtime_error);
  EXPECT_THROW(lb::host::entryPointFromPropertyList(nullptr, 0), std::runtime_error);
}

TEST(HostServices, MessageAlertsAreRecordedAndPassedToTheSink) {
  Host host;
  std::vector<std::string> seen;
  host.setAlertSink([&](const std::string& text) { seen.push_back(text); });
  SPBasicSuite* basic = lb::host::basicSuite();
  const void* u = nullptr;
  const void* s = nullptr;
  ASSERT_EQ(basic->AcquireSuite(kAIUserSuite, kAIUserSuiteVersion, &u), kNoErr);
  ASSERT_EQ(basic->AcquireSuite(kAIUnicodeStringSuite, kAIUnicodeStringSuiteVersion, &s), kNoErr);
  auto* user = static_cast<const AIUserSuite*>(u);
  auto* strings = static_cast<const AIUnicodeStringSuite*>(s);
  AIUnicodeStringRef text = nullptr;
  ASSERT_EQ(strings->InitializeFromWide(&text, L"UV: 0.5 \u00e9\nline two"), kNoErr);
  size_t length = 0;
  strings->Length(text, &length);
  EXPECT_EQ(length, 18u);  // code points, not bytes
  EXPECT_EQ(user->MessageAlert(text), kNoErr);
  strings->Destroy(text);
  EXPECT_EQ(host.alerts(), std::vector<std::string>{"UV: 0.5 \xc3\xa9\nline two"});
  EXPECT_EQ(seen, host.alerts());
  EXPECT_EQ(host.counters().strings, 0);
  basic->ReleaseSuite(kAIUserSuite, kAIUserSuiteVersion);
  basic->ReleaseSuite(kAIUnicodeStringSuite, kAIUnicodeStringSuiteVersion);
  // Releasing more than was acquired is refused.
  EXPECT_NE(basic->ReleaseSuite(kAIUserSuite, kAIUserSuiteVersion), kNoErr);
  EXPECT_EQ(host.counters().suiteAcquisitions, 0);
}

TEST(HostServices, SuitesAreServedByNameAndVersion) {
  Host host;
  SPBasicSuite* basic = lb::host::basicSuite();
  const void* p = nullptr;
  EXPECT_EQ(basic->AcquireSuite(kAIMenuSuite, kAIMenuSuiteVersion + 1, &p), kSPSuiteNotFoundError);
  EXPECT_EQ(basic->AcquireSuite("AI Nonexistent Suite", 1, &p), kSPSuiteNotFoundError);
  EXPECT_EQ(host.counters().suiteAcquisitions, 0);
  EXPECT_TRUE(basic->IsEqual("Startup", "Startup"));
  EXPECT_FALSE(basic->IsEqual("Startup", "startup"));
  void* block = nullptr;
  ASSERT_EQ(basic->AllocateBlock(24, &block), kNoErr);
  static_cast<char*>(block)[23] = 'x';
  void* bigger = nullptr;
  ASSERT_EQ(basic->ReallocateBlock(block, 4096, &bigger), kNoErr);
  EXPECT_EQ(static_cast<char*>(bigger)[23], 'x');
  EXPECT_EQ(host.counters().blocks, 1);
  basic->FreeBlock(bigger);
  EXPECT_EQ(host.counters().blocks, 0);
}

}  // namespace
