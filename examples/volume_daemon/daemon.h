// The daemon without its process: main.cc adds signals and a log, the unit test fakes both.
#ifndef VOLUME_DAEMON_DAEMON_H_
#define VOLUME_DAEMON_DAEMON_H_

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "config.h"
#include "log.h"

namespace volume_daemon {

// Returns how many bytes are free at `path`, or sets the error. Any thread may call it.
using FreeBytes = std::function<std::uint64_t(const std::string& path, std::error_code* error)>;

// Threads check the volumes at every interval, and at once after a change of the configuration.
// One thread may call Start, Reload and ToggleDrain; config is for any thread.
class Daemon {
 public:
  // `log` must outlive the daemon.
  Daemon(std::string config_file, Log* log, FreeBytes free_bytes);
  // Ends the threads.
  ~Daemon();
  Daemon(const Daemon&) = delete;
  Daemon& operator=(const Daemon&) = delete;

  // Loads the configuration and starts the threads. Returns false when the log says why not.
  bool Start();

  // Loads the configuration again. A bad one is logged, and the old one stays.
  void Reload();

  // Saves the opposite of [Monitor] drain into the file. What else has changed there waits for
  // Reload.
  void ToggleDrain();

  // What is in effect. It never changes: a reload replaces it, and the last user frees it.
  std::shared_ptr<const Config> config() const { return std::atomic_load(&config_); }

 private:
  void Apply(std::shared_ptr<const Config> config);
  void Work(std::size_t first, std::size_t step);
  void Check(const Volume& volume, bool drain);

  const std::string config_file_;
  Log* const log_;
  const FreeBytes free_bytes_;
  std::shared_ptr<const Config> config_;  // only with std::atomic_load and std::atomic_store
  std::mutex mutex_;
  std::condition_variable wake_;
  bool is_stopping_ = false;  // guarded by mutex_
  std::vector<std::thread> threads_;
};

}  // namespace volume_daemon

#endif  // VOLUME_DAEMON_DAEMON_H_
