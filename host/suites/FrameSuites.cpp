// The frame suites: basic, access, plug-ins, blocks, context, menu,
// notifier, user, Unicode string and data filter.
#include <cstdlib>
#include <cstring>
#include <string>

#include "host/SuiteRegistry.h"
#include "host/suites/FrameState.h"

struct _SPAccess {
  SPPluginRef plugin;
};
struct _AIAppContext {
  SPPluginRef plugin;
};
struct _AIUnicodeString {
  std::string utf8;
};
struct _AIDataFilter {
  const unsigned char* data = nullptr;
  size_t size = 0;
  size_t pos = 0;
};

namespace lb::host {
namespace {

// Blocks carry their size in a header so that reallocation can copy.
struct BlockHeader {
  size_t size;
  size_t pad;  // keeps the payload 16-byte aligned
};

SPErr AllocBlock(size_t size, void** block) {
  if (!block) return kBadParameterErr;
  *block = nullptr;
  if (frameState().failAllocation) return kOutOfMemoryErr;
  auto* header = static_cast<BlockHeader*>(std::malloc(sizeof(BlockHeader) + (size ? size : 1)));
  if (!header) return kOutOfMemoryErr;
  header->size = size;
  *block = header + 1;
  ++liveCounters().blocks;
  return kNoErr;
}

SPErr FreeBlockImpl(void* block) {
  if (!block) return kBadParameterErr;
  std::free(static_cast<BlockHeader*>(block) - 1);
  --liveCounters().blocks;
  return kNoErr;
}

SPErr ReallocBlock(void* block, size_t newSize, void** newBlock) {
  if (!newBlock) return kBadParameterErr;
  if (!block) return AllocBlock(newSize, newBlock);
  void* fresh = nullptr;
  if (SPErr err = AllocBlock(newSize, &fresh)) return err;
  size_t old = (static_cast<BlockHeader*>(block) - 1)->size;
  std::memcpy(fresh, block, old < newSize ? old : newSize);
  FreeBlockImpl(block);
  *newBlock = fresh;
  return kNoErr;
}

// ---- basic ---------------------------------------------------------------
SPErr BasicAcquireSuite(const char* name, int32_t version, const void** suite) {
  if (!name || !suite) return kBadParameterErr;
  if (frameState().failingSuites.count(name)) return kSPSuiteNotFoundError;
  const void* table = findSuite(name, version);
  if (!table) return kSPSuiteNotFoundError;
  *suite = table;
  ++frameState().acquired[{name, version}];
  ++liveCounters().suiteAcquisitions;
  return kNoErr;
}

SPErr BasicReleaseSuite(const char* name, int32_t version) {
  if (!name) return kBadParameterErr;
  auto it = frameState().acquired.find({name, version});
  if (it == frameState().acquired.end() || it->second <= 0) return kBadParameterErr;
  if (--it->second == 0) frameState().acquired.erase(it);
  --liveCounters().suiteAcquisitions;
  return kNoErr;
}

SPBoolean BasicIsEqual(const char* a, const char* b) {
  if (!a || !b) return a == b;
  return std::strcmp(a, b) == 0;
}

SPBasicSuite gBasic = {
    .AcquireSuite = BasicAcquireSuite,
    .ReleaseSuite = BasicReleaseSuite,
    .IsEqual = BasicIsEqual,
    .AllocateBlock = AllocBlock,
    .FreeBlock = FreeBlockImpl,
    .ReallocateBlock = ReallocBlock,
};

// ---- access ----------------------------------------------------------------
SPErr AccessAcquirePlugin(SPPluginRef plugin, SPAccessRef* access) {
  if (!plugin || !access) return kBadParameterErr;
  *access = new _SPAccess{plugin};
  ++liveCounters().pluginAccesses;
  return kNoErr;
}
SPErr AccessReleasePlugin(SPAccessRef access) {
  if (!access) return kBadParameterErr;
  delete access;
  --liveCounters().pluginAccesses;
  return kNoErr;
}
SPErr AccessGetInfo(SPAccessRef access, void** info) {
  if (!access || !info) return kBadParameterErr;
  *info = access->plugin;
  return kNoErr;
}
const SPAccessSuite gAccess = {
    .AcquirePlugin = AccessAcquirePlugin,
    .ReleasePlugin = AccessReleasePlugin,
    .GetAccessInfo = AccessGetInfo,
};

// ---- plug-ins --------------------------------------------------------------
SPErr PluginsGetName(SPPluginRef plugin, const char** name) {
  if (!plugin || !name) return kBadParameterErr;
  *name = plugin->name.c_str();
  return kNoErr;
}
SPErr PluginsGetGlobals(SPPluginRef plugin, void** globals) {
  if (!plugin || !globals) return kBadParameterErr;
  *globals = plugin->globals;
  return kNoErr;
}
SPErr PluginsSetGlobals(SPPluginRef plugin, void* globals) {
  if (!plugin) return kBadParameterErr;
  plugin->globals = globals;
  return kNoErr;
}
const SPPluginsSuite gPlugins = {
    .GetPluginName = PluginsGetName,
    .GetPluginGlobals = PluginsGetGlobals,
    .SetPluginGlobals = PluginsSetGlobals,
};

// ---- blocks ----------------------------------------------------------------
SPErr BlocksAllocate(size_t size, const char*, void** block) { return AllocBlock(size, block); }
SPErr BlocksReallocate(void* block, size_t newSize, const char*, void** newBlock) {
  return ReallocBlock(block, newSize, newBlock);
}
const SPBlocksSuite gBlocks = {
    .AllocateBlock = BlocksAllocate,
    .FreeBlock = FreeBlockImpl,
    .ReallocateBlock = BlocksReallocate,
};

// ---- context ---------------------------------------------------------------
AIErr ContextPush(SPPluginRef plugin, AIAppContextHandle* context) {
  if (!plugin || !context) return kBadParameterErr;
  *context = new _AIAppContext{plugin};
  ++liveCounters().appContexts;
  return kNoErr;
}
AIErr ContextPop(AIAppContextHandle context) {
  if (!context) return kBadParameterErr;
  delete context;
  --liveCounters().appContexts;
  return kNoErr;
}
const AIAppContextSuite gContext = {
    .PushAppContext = ContextPush,
    .PopAppContext = ContextPop,
};

// ---- menu --------------------------------------------------------------------
bool KnownItem(AIMenuItemHandle item) {
  for (auto& m : frameState().menuItems)
    if (m.get() == item) return true;
  return false;
}
AIErr MenuAdd(SPPluginRef plugin, const char*, const char* group, const char* text,
              int32_t options, AIMenuItemHandle* item) {
  if (!plugin || !group || !text || !item) return kBadParameterErr;
  auto entry = std::make_unique<_AIMenuItem>();
  entry->group = group;
  entry->text = text;
  entry->options = options;
  *item = entry.get();
  frameState().menuItems.push_back(std::move(entry));
  return kNoErr;
}
AIErr MenuCheck(AIMenuItemHandle item, AIBoolean check) {
  if (!KnownItem(item)) return kBadParameterErr;
  item->checked = check != 0;
  return kNoErr;
}
AIErr MenuIsChecked(AIMenuItemHandle item, AIBoolean* checked) {
  if (!KnownItem(item) || !checked) return kBadParameterErr;
  *checked = item->checked ? 1 : 0;
  return kNoErr;
}
AIErr MenuGetText(AIMenuItemHandle item, const char** text) {
  if (!KnownItem(item) || !text) return kBadParameterErr;
  *text = item->text.c_str();
  return kNoErr;
}
const AIMenuSuite gMenu = {
    .AddMenuItemZString = MenuAdd,
    .CheckItem = MenuCheck,
    .IsItemChecked = MenuIsChecked,
    .GetItemText = MenuGetText,
};

// ---- notifier ----------------------------------------------------------------
bool KnownNotifier(AINotifierHandle n) {
  for (auto& x : frameState().notifiers)
    if (x.get() == n) return true;
  return false;
}
AIErr NotifierAdd(SPPluginRef plugin, const char* owner, const char* type,
                  AINotifierHandle* notifier) {
  if (!plugin || !owner || !type || !notifier) return kBadParameterErr;
  auto entry = std::make_unique<_AINotifier>();
  entry->owner = owner;
  entry->type = type;
  *notifier = entry.get();
  frameState().notifiers.push_back(std::move(entry));
  return kNoErr;
}
AIErr NotifierSetActive(AINotifierHandle n, AIBoolean active) {
  if (!KnownNotifier(n)) return kBadParameterErr;
  n->active = active != 0;
  return kNoErr;
}
AIErr NotifierGetActive(AINotifierHandle n, AIBoolean* active) {
  if (!KnownNotifier(n) || !active) return kBadParameterErr;
  *active = n->active ? 1 : 0;
  return kNoErr;
}
const AINotifierSuite gNotifier = {
    .AddNotifier = NotifierAdd,
    .SetNotifierActive = NotifierSetActive,
    .GetNotifierActive = NotifierGetActive,
};

// ---- Unicode string ------------------------------------------------------------
void AppendUtf8(std::string& out, uint32_t cp) {
  if (cp < 0x80) {
    out += static_cast<char>(cp);
  } else if (cp < 0x800) {
    out += static_cast<char>(0xC0 | (cp >> 6));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else if (cp < 0x10000) {
    out += static_cast<char>(0xE0 | (cp >> 12));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (cp >> 18));
    out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (cp & 0x3F));
  }
}
AIErr StrFromPlatform(AIUnicodeStringRef* str, const char* text) {
  if (!str || !text) return kBadParameterErr;
  *str = new _AIUnicodeString{text};
  ++liveCounters().strings;
  return kNoErr;
}
AIErr StrFromWide(AIUnicodeStringRef* str, const wchar_t* text) {
  if (!str || !text) return kBadParameterErr;
  auto* s = new _AIUnicodeString{};
  for (const wchar_t* p = text; *p; ++p) AppendUtf8(s->utf8, static_cast<uint32_t>(*p));
  *str = s;
  ++liveCounters().strings;
  return kNoErr;
}
AIErr StrDestroy(AIUnicodeStringRef str) {
  if (!str) return kBadParameterErr;
  delete str;
  --liveCounters().strings;
  return kNoErr;
}
AIErr StrGetPlatform(AIUnicodeStringRef str, const char** text) {
  if (!str || !text) return kBadParameterErr;
  *text = str->utf8.c_str();
  return kNoErr;
}
AIErr StrLength(AIUnicodeStringRef str, size_t* length) {
  if (!str || !length) return kBadParameterErr;
  size_t n = 0;  // code points: every byte that does not continue a sequence
  for (unsigned char c : str->utf8)
    if ((c & 0xC0) != 0x80) ++n;
  *length = n;
  return kNoErr;
}
const AIUnicodeStringSuite gString = {
    .InitializeFromPlatform = StrFromPlatform,
    .InitializeFromWide = StrFromWide,
    .Destroy = StrDestroy,
    .GetPlatform = StrGetPlatform,
    .Length = StrLength,
};

// ---- user --------------------------------------------------------------------
AIErr UserMessageAlert(AIUnicodeStringRef text) {
  if (!text) return kBadParameterErr;
  frameState().alerts.push_back(text->utf8);
  if (frameState().alertSink) frameState().alertSink(text->utf8);
  return kNoErr;
}
const AIUserSuite gUser = {
    .MessageAlert = UserMessageAlert,
};

// ---- data filter -------------------------------------------------------------
AIErr FilterNewResource(SPPluginRef plugin, int32_t type, int32_t id, const char* name,
                        AIDataFilter** filter) {
  if (!plugin || !filter) return kBadParameterErr;
  const LBResourceTable* table = frameState().resources;
  if (!table) return kNoSuchResourceErr;
  const bool byName = name && *name;
  for (uint32_t i = 0; i < table->count; ++i) {
    const LBResourceEntry& e = table->entries[i];
    if (e.type != type) continue;
    if (byName ? std::strcmp(e.name, name) != 0 : (e.name[0] != '\0' || e.id != id)) continue;
    *filter = new _AIDataFilter{e.data, e.size, 0};
    ++liveCounters().dataFilters;
    return kNoErr;
  }
  return kNoSuchResourceErr;
}
AIErr FilterLink(AIDataFilter* prev, AIDataFilter* next) {
  if (!next) return kBadParameterErr;
  (void)prev;  // resource filters read their bytes directly; nothing to chain
  return kNoErr;
}
AIErr FilterUnlink(AIDataFilter* filter, AIDataFilter** next) {
  if (!filter) return kBadParameterErr;
  if (next) *next = nullptr;
  delete filter;
  --liveCounters().dataFilters;
  return kNoErr;
}
AIErr FilterRead(AIDataFilter* filter, char* store, size_t* count) {
  if (!filter || !store || !count) return kBadParameterErr;
  size_t n = filter->size - filter->pos;
  if (n > *count) n = *count;
  if (n) std::memcpy(store, filter->data + filter->pos, n);
  filter->pos += n;
  *count = n;
  return kNoErr;
}
const AIDataFilterSuite gDataFilter = {
    .NewResourceDataFilter = FilterNewResource,
    .LinkDataFilter = FilterLink,
    .UnlinkDataFilter = FilterUnlink,
    .ReadDataFilter = FilterRead,
};

}  // namespace

FrameState& frameState() {
  static FrameState state;
  return state;
}

void resetFrameState() {
  FrameState& s = frameState();
  s = FrameState{};
}

SPBasicSuite* basicSuite() { return &gBasic; }

void registerFrameSuites() {
  registerSuite(kSPBasicSuite, kSPBasicSuiteVersion, &gBasic);
  registerSuite(kSPAccessSuite, kSPAccessSuiteVersion, &gAccess);
  registerSuite(kSPPluginsSuite, kSPPluginsSuiteVersion, &gPlugins);
  registerSuite(kSPBlocksSuite, kSPBlocksSuiteVersion, &gBlocks);
  registerSuite(kAIAppContextSuite, kAIAppContextSuiteVersion, &gContext);
  registerSuite(kAIMenuSuite, kAIMenuSuiteVersion, &gMenu);
  registerSuite(kAINotifierSuite, kAINotifierSuiteVersion, &gNotifier);
  registerSuite(kAIUserSuite, kAIUserSuiteVersion, &gUser);
  registerSuite(kAIUnicodeStringSuite, kAIUnicodeStringSuiteVersion, &gString);
  registerSuite(kAIDataFilterSuite, kAIDataFilterSuiteVersion, &gDataFilter);
  registerPanelSuites();
}

}  // namespace lb::host
