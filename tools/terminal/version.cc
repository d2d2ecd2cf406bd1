#include "tools/terminal/version.h"

#include <dlfcn.h>
#include <sodium.h>

#include <climits>
#include <cstdlib>
#include <cstring>

#include "dmconfig/config.h"
#include "platform/cr_runtime.h"
#include "settings/snapshot.h"

namespace quarry::tool {

namespace {

// The file of the library that defines `function`, with links resolved: the name of ours then ends
// in the library's version.
template <typename Function>
std::string LibraryFileOf(Function function) {
  void* address = nullptr;  // the first word of a pointer to a plain member
  std::memcpy(&address, &function, sizeof address);
  Dl_info info = {};
  if (dladdr(address, &info) == 0) return "unknown";
  char path[PATH_MAX];
  return realpath(info.dli_fname, path) == nullptr ? info.dli_fname : path;
}

}  // namespace

std::string ProgramVersion() { return QUARRY_VERSION; }

std::string VersionText() {
  return "quarry-config " + ProgramVersion() +
         "\nlibquarry_settings: " + LibraryFileOf(&settings::Snapshot::FindSection) +
         "\nlibquarry_config: " + LibraryFileOf(&storage::dmconfig::DMConfig::Reset) +
         "\nlibquarry_platform: " + LibraryFileOf(&CRStatusToStringA) + "\nlibsodium " +
         sodium_version_string() + '\n';
}

}  // namespace quarry::tool
