// The daemon's configuration.
#ifndef VOLUME_DAEMON_CONFIG_H_
#define VOLUME_DAEMON_CONFIG_H_

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "log.h"
#include "settings/settings.h"

namespace volume_daemon {

// A section [Volume NAME].
struct Volume {
  std::string name;
  std::string path;                 // absolute
  std::uint64_t reserve_bytes = 0;  // that are to stay free
};

// All settings, checked. Nothing in it refers to the file's text.
struct Config {
  std::size_t threads = 0;
  std::chrono::nanoseconds interval = {};  // between two checks
  bool drain = false;                      // no new data comes: a full volume is none to report
  Level log_level = Level::kInfo;
  std::vector<Volume> volumes;  // that are checked
};

// Logs all errors and warnings of the file. Returns null when there was an error.
std::shared_ptr<const Config> LoadConfig(const std::string& file, Log* log);

// The same for a text.
std::shared_ptr<const Config> ReadConfig(const quarry::settings::Snapshot& snapshot, Log* log);

// Logs them; returns whether one is an error.
bool LogProblems(const std::vector<quarry::settings::Problem>& problems, Log* log);

}  // namespace volume_daemon

#endif  // VOLUME_DAEMON_CONFIG_H_
