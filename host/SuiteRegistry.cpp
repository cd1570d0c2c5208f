// The table of suites the host serves, by (name, version).
#include "host/SuiteRegistry.h"

#include <map>
#include <string>
#include <utility>

namespace lb::host {
namespace {
std::map<std::pair<std::string, int32_t>, const void*>& registry() {
  static std::map<std::pair<std::string, int32_t>, const void*> table;
  return table;
}
}  // namespace

void registerSuite(const char* name, int32_t version, const void* table) {
  if (!name) return;
  registry()[{name, version}] = table;
}

const void* findSuite(const char* name, int32_t version) {
  if (!name) return nullptr;
  auto it = registry().find({name, version});
  return it == registry().end() ? nullptr : it->second;
}

}  // namespace lb::host
