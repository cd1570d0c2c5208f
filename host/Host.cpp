// The Host: its document, the suites it registers and the plug-in loader.
#include "host/Host.h"

#include <dlfcn.h>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <cstring>
#include <stdexcept>

#include "LBModule.h"
#include "host/Document.h"
#include "host/SuiteRegistry.h"
#include "host/suites/FrameState.h"

namespace lb::host {
namespace {
Host* gCurrent = nullptr;

constexpr int32_t kPropertyListType = AIFourCC("PiPL");
constexpr int32_t kPropertyListId = 16000;

// A rebuild of a large mesh frees one copy of it and allocates the next:
// tens of megabytes a command. By default the allocator hands freed memory
// at the top of the heap back to the system at once, so the next edit
// takes every page again through a page fault. Keeping up to 256 MB of
// freed memory, and growing the heap 16 MB beyond a request, makes
// repeated edits reuse their pages. (Set once per process.)
void KeepFreedMemory() {
#if defined(__GLIBC__)
  static const bool done = [] {
    mallopt(M_TRIM_THRESHOLD, 256 << 20);
    mallopt(M_TOP_PAD, 16 << 20);
    return true;
  }();
  (void)done;
#endif
}

std::unique_ptr<Document> EmptyDocument() {
  auto doc = std::make_unique<Document>();
  doc->addLayer("Layer 1");
  return doc;
}

uint32_t ReadU32(const unsigned char* p) {
  return static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
         static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24;
}

std::string CodeText(AIErr err) {
  std::string text = std::to_string(err);
  char c[4];
  bool printable = true;
  for (int i = 0; i < 4; ++i) {
    c[i] = static_cast<char>((static_cast<uint32_t>(err) >> (24 - 8 * i)) & 0xFF);
    if (c[i] < 32 || c[i] > 126) printable = false;
  }
  if (printable) text += " '" + std::string(c, 4) + "'";
  return text;
}
}  // namespace

std::string entryPointFromPropertyList(const unsigned char* data, size_t size) {
  if (!data || size < 10) throw std::runtime_error("property list: too short");
  const int16_t kind = static_cast<int16_t>(data[0] | data[1] << 8);
  if (kind != 1) throw std::runtime_error("property list: unknown kind " + std::to_string(kind));
  const uint32_t count = ReadU32(data + 6);
  size_t offset = 10;
  for (uint32_t i = 0; i < count; ++i) {
    if (offset + 16 > size) throw std::runtime_error("property list: truncated property");
    // Four-character codes are stored byte-reversed, as little-endian numbers.
    const uint32_t key = ReadU32(data + offset + 4);
    const uint32_t length = ReadU32(data + offset + 12);
    const unsigned char* body = data + offset + 16;
    const size_t available = size - (offset + 16);
    // The last property may announce fewer bytes than follow it.
    const size_t len = length < available ? length : available;
    if (key == static_cast<uint32_t>(AIFourCC("wx86"))) {
      size_t n = 0;
      while (n < len && body[n]) ++n;
      if (n == 0) throw std::runtime_error("property list: empty entry point name");
      return std::string(reinterpret_cast<const char*>(body), n);
    }
    offset += 16 + ((static_cast<size_t>(length) + 3) & ~static_cast<size_t>(3));
  }
  throw std::runtime_error("property list: no entry point");
}

struct Host::Impl {
  std::unique_ptr<Document> doc;
  std::string path;
  void* module = nullptr;
  PluginMainProc main = nullptr;
  LBScriptRunCommandProc script = nullptr;
  bool started = false;  // Startup sent and Shutdown not yet
};

Host::Host(std::unique_ptr<Document> doc) : impl_(std::make_unique<Impl>()) {
  if (gCurrent) throw std::logic_error("only one Host may exist at a time");
  gCurrent = this;
  KeepFreedMemory();
  resetFrameState();
  frameState().plugin.name = "LatticeBender";
  registerFrameSuites();
  registerDocumentSuites();
  registerMeshSuites();
  impl_->doc = doc ? std::move(doc) : EmptyDocument();
}

Host::~Host() {
  // A plug-in still started is shut down properly, reloading it first if
  // it was left unloaded, so that it frees what it holds.
  try {
    if (impl_->started && !impl_->module && !impl_->path.empty()) reloadPlugin();
    if (impl_->started && impl_->module) shutdownPlugin();
  } catch (...) {
  }
  closeModule();
  resetFrameState();
  gCurrent = nullptr;
}

Host& Host::current() {
  if (!gCurrent) throw std::logic_error("no Host");
  return *gCurrent;
}

bool Host::exists() { return gCurrent != nullptr; }
Document* Host::currentDocument() { return gCurrent ? gCurrent->impl_->doc.get() : nullptr; }

Document& Host::document() { return *impl_->doc; }

std::unique_ptr<Document> Host::takeDocument() {
  auto doc = std::move(impl_->doc);
  impl_->doc = EmptyDocument();
  return doc;
}

void Host::setDocument(std::unique_ptr<Document> doc) {
  impl_->doc = doc ? std::move(doc) : EmptyDocument();
}

void Host::openModule() {
  dlerror();
  void* handle = dlopen(impl_->path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char* why = dlerror();
    throw std::runtime_error("cannot load plug-in " + impl_->path + ": " + (why ? why : "?"));
  }
  auto table = reinterpret_cast<LBGetResourceTableProc>(dlsym(handle, kLBGetResourceTableSymbol));
  if (!table) {
    dlclose(handle);
    throw std::runtime_error("plug-in " + impl_->path + " has no resource table");
  }
  const LBResourceTable* resources = table();
  const LBResourceEntry* pipl = nullptr;
  for (uint32_t i = 0; resources && i < resources->count; ++i) {
    const LBResourceEntry& e = resources->entries[i];
    if (e.type == kPropertyListType && e.id == kPropertyListId && e.name[0] == '\0') pipl = &e;
  }
  if (!pipl) {
    dlclose(handle);
    throw std::runtime_error("plug-in " + impl_->path + " has no property list");
  }
  std::string entry;
  try {
    entry = entryPointFromPropertyList(pipl->data, pipl->size);
  } catch (const std::exception& e) {
    dlclose(handle);
    throw std::runtime_error("plug-in " + impl_->path + ": " + e.what());
  }
  auto main = reinterpret_cast<PluginMainProc>(dlsym(handle, entry.c_str()));
  if (!main) {
    dlclose(handle);
    throw std::runtime_error("plug-in " + impl_->path + " does not export " + entry);
  }
  impl_->module = handle;
  impl_->main = main;
  impl_->script = reinterpret_cast<LBScriptRunCommandProc>(dlsym(handle, kLBScriptRunCommandSymbol));
  frameState().resources = resources;
}

void Host::closeModule() {
  if (!impl_->module) return;
  frameState().resources = nullptr;
  dlclose(impl_->module);
  impl_->module = nullptr;
  impl_->main = nullptr;
  impl_->script = nullptr;
}

void Host::loadPlugin(const std::string& modulePath) {
  if (impl_->module) throw std::runtime_error("a plug-in is already loaded");
#ifdef LB_PLUGIN_PATH
  impl_->path = modulePath.empty() ? std::string(LB_PLUGIN_PATH) : modulePath;
#else
  impl_->path = modulePath;
#endif
  openModule();
  AIErr err = sendMessage(kSPInterfaceCaller, kSPInterfaceStartupSelector);
  if (err) {
    closeModule();
    throw std::runtime_error("plug-in Startup failed with code " + CodeText(err));
  }
  impl_->started = true;
  fireNotifier(kAIApplicationStartedNotifier);
}

void Host::shutdownPlugin() {
  if (!impl_->module) return;
  fireNotifier(kAIApplicationShutdownNotifier);
  sendMessage(kSPInterfaceCaller, kSPInterfaceShutdownSelector);
  impl_->started = false;
  closeModule();
}

bool Host::pluginLoaded() const { return impl_->module != nullptr; }

AIErr Host::runCommand(int id, bool alt, bool ctrl, bool useColor, bool useOpacity) {
  if (!impl_->module) throw std::runtime_error("no plug-in loaded");
  if (!impl_->script) throw std::runtime_error("the plug-in has no scripting entry");
  return impl_->script(id, alt, ctrl, useColor, useOpacity);
}

const std::vector<std::string>& Host::alerts() const { return frameState().alerts; }
void Host::clearAlerts() { frameState().alerts.clear(); }
void Host::setAlertSink(std::function<void(const std::string&)> sink) {
  frameState().alertSink = std::move(sink);
}

Counters Host::counters() const { return liveCounters(); }

AIErr Host::send(const char* caller, const char* selector, void* message) {
  if (!impl_->main) throw std::runtime_error("no plug-in loaded");
  auto* d = static_cast<SPMessageData*>(message);
  d->SPCheck = kSPValidSPMessageData;
  d->self = &frameState().plugin;
  d->globals = frameState().plugin.globals;
  d->basic = basicSuite();
  AIErr err = impl_->main(caller, selector, message);
  frameState().plugin.globals = d->globals;
  return err;
}

AIErr Host::sendMessage(const char* caller, const char* selector) {
  SPInterfaceMessage msg{};
  return send(caller, selector, &msg);
}

AIErr Host::sendMenuGo(AIMenuItemHandle item) {
  AIMenuMessage msg{};
  msg.menuItem = item;
  return send(kCallerAIMenu, kSelectorAIGoMenuItem, &msg);
}

AIErr Host::sendMenuUpdate(AIMenuItemHandle item) {
  AIMenuMessage msg{};
  msg.menuItem = item;
  return send(kCallerAIMenu, kSelectorAIUpdateMenuItem, &msg);
}

AIErr Host::sendNotify(AINotifierHandle notifier, const char* type) {
  AINotifierMessage msg{};
  msg.notifier = notifier;
  msg.type = type ? type : "";
  return send(kCallerAINotify, kSelectorAINotify, &msg);
}

AIErr Host::fireNotifier(const std::string& type) {
  // Copy the handles first: a notification may subscribe more.
  std::vector<AINotifierHandle> targets;
  for (auto& n : frameState().notifiers)
    if (n->type == type && n->active) targets.push_back(n.get());
  AIErr first = kNoErr;
  for (AINotifierHandle n : targets) {
    AIErr err = sendNotify(n, type.c_str());
    if (err && !first) first = err;
  }
  return first;
}

void Host::unloadPlugin() {
  if (!impl_->module) throw std::runtime_error("no plug-in loaded");
  sendMessage(kSPAccessCaller, kSPAccessUnloadSelector);
  closeModule();
}

void Host::reloadPlugin() {
  if (impl_->module) throw std::runtime_error("the plug-in is loaded");
  if (impl_->path.empty()) throw std::runtime_error("no plug-in was loaded");
  openModule();
  sendMessage(kSPAccessCaller, kSPAccessReloadSelector);
}

AIMenuItemHandle Host::pluginMenuItem() const {
  auto& items = frameState().menuItems;
  return items.empty() ? nullptr : items.front().get();
}

namespace {
const _AIMenuItem* FindItem(AIMenuItemHandle item) {
  for (auto& m : frameState().menuItems)
    if (m.get() == item) return m.get();
  return nullptr;
}
}  // namespace

std::string Host::menuItemGroup(AIMenuItemHandle item) const {
  const _AIMenuItem* m = FindItem(item);
  return m ? m->group : std::string();
}
std::string Host::menuItemText(AIMenuItemHandle item) const {
  const _AIMenuItem* m = FindItem(item);
  return m ? m->text : std::string();
}
int32_t Host::menuItemOptions(AIMenuItemHandle item) const {
  const _AIMenuItem* m = FindItem(item);
  return m ? m->options : 0;
}
bool Host::menuItemChecked(AIMenuItemHandle item) const {
  const _AIMenuItem* m = FindItem(item);
  return m && m->checked;
}

std::vector<std::string> Host::notifierTypes() const {
  std::vector<std::string> types;
  for (auto& n : frameState().notifiers) types.push_back(n->type);
  return types;
}

std::string Host::notifierOwner(size_t index) const {
  auto& ns = frameState().notifiers;
  return index < ns.size() ? ns[index]->owner : std::string();
}

void* Host::pluginGlobals() const { return frameState().plugin.globals; }
void* Host::moduleHandle() const { return impl_->module; }
const std::string& Host::modulePath() const { return impl_->path; }

void Host::failSuiteAcquisition(const std::string& name) {
  if (name.empty())
    frameState().failingSuites.clear();
  else
    frameState().failingSuites.insert(name);
}

void Host::failBlockAllocation(bool fail) { frameState().failAllocation = fail; }

}  // namespace lb::host
