#include "tools/version.h"

#include <dlfcn.h>
#include <sodium.h>

#include <climits>
#include <cstdlib>
#include <cstring>

#include "dmconfig/config.h"

namespace quarry::tool {

namespace {

// The file behind the SONAME; its name ends in the library's version.
std::string ConfigLibraryFile() {
  const auto member = &storage::dmconfig::DMConfig::Reset;
  void* address = nullptr;  // the first word of a pointer to a plain member
  std::memcpy(&address, &member, sizeof address);
  Dl_info info = {};
  if (dladdr(address, &info) == 0) return "unknown";
  char path[PATH_MAX];
  return realpath(info.dli_fname, path) == nullptr ? info.dli_fname : path;
}

}  // namespace

std::string VersionText() {
  return std::string("quarry-config ") + QUARRY_VERSION +
         "\nlibquarry_config: " + ConfigLibraryFile() + "\nlibsodium " +
         sodium_version_string() + '\n';
}

}  // namespace quarry::tool
