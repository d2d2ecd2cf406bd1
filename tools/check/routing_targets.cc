#include "tools/check/routing_targets.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "config/agent_settings.h"
#include "settings/error.h"
#include "tools/check/ownership.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Quoted;
using ::storage::config::kRoutingTableCPath;
using ::storage::config::kRoutingTableRPath;

namespace {

constexpr const char* kTargets[] = {kRoutingTableRPath, kRoutingTableCPath};

// Of the entry itself: a start replaces a link, it does not follow it.
std::optional<struct stat> StatusOf(const std::string& path) {
  struct stat status {};
  if (lstat(path.c_str(), &status) != 0) return std::nullopt;
  return status;
}

std::optional<Advice> AdviceForTarget(const std::string& path) {
  const std::string folder = path.substr(0, path.rfind('/'));
  const std::string shown = "routing table " + Quoted(path);
  if (faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
    return Advice{shown + " cannot be written: " + folder + " is not writable",
                  "agents put their tables there: let this user write to it"};
  }
  const auto table = StatusOf(path);
  if (!table) return std::nullopt;
  if (S_ISDIR(table->st_mode)) {
    return Advice{shown + " is a folder", "remove it: rmdir " + path};
  }
  struct stat parent {};
  const uid_t caller = geteuid();
  const bool replaceable = caller == 0 || caller == table->st_uid ||
                           stat(folder.c_str(), &parent) != 0 || caller == parent.st_uid ||
                           (parent.st_mode & S_ISVTX) == 0;
  if (replaceable) return std::nullopt;
  return Advice{
      shown + " belongs to " + UserText(table->st_uid) + ": only that user can replace it",
      "run agents as that user, or remove it as root: rm " + path};
}

}  // namespace

std::optional<ForeignTable> FindForeignTable() {
  for (const char* path : kTargets) {
    const auto table = StatusOf(path);
    if (table && table->st_uid != geteuid()) return ForeignTable{path, table->st_uid};
  }
  return std::nullopt;
}

std::vector<Advice> AdviceForRoutingTargets() {
  std::vector<Advice> all;
  for (const char* path : kTargets) {
    if (const auto advice = AdviceForTarget(path)) all.push_back(*advice);
  }
  return all;
}

}  // namespace quarry::tool
