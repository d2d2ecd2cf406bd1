#include "daemon.h"

#include <utility>

#include "settings/settings.h"

namespace volume_daemon {

using quarry::settings::Change;
using quarry::settings::Problem;

Daemon::Daemon(std::string config_file, Log* log, FreeBytes free_bytes)
    : config_file_(std::move(config_file)), log_(log), free_bytes_(std::move(free_bytes)) {}

Daemon::~Daemon() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    is_stopping_ = true;
  }
  wake_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

bool Daemon::Start() {
  auto config = LoadConfig(config_file_, log_);
  if (config == nullptr) return false;
  const std::size_t threads = config->threads;
  Apply(std::move(config));
  log_->Write(Level::kInfo, "started with " + config_file_);
  for (std::size_t n = 0; n < threads; ++n) {
    threads_.emplace_back([this, n, threads] { Work(n, threads); });
  }
  return true;
}

void Daemon::Reload() {
  auto config = LoadConfig(config_file_, log_);
  if (config == nullptr) {
    return log_->Write(Level::kError, "not reloaded: the old configuration stays in effect");
  }
  if (config->threads != threads_.size()) {
    log_->Write(Level::kWarning, "a new number of threads takes effect at the next start");
  }
  log_->Write(Level::kInfo, "reloaded " + config_file_);
  Apply(std::move(config));
}

void Daemon::ToggleDrain() {
  auto config = std::make_shared<Config>(*this->config());
  config->drain = !config->drain;
  const std::string value = config->drain ? "yes" : "no";
  std::vector<Problem> problems;
  const auto saved = Save(config_file_, {Change::Set("Monitor", "drain", value)}, &problems);
  LogProblems(problems, log_);
  if (!saved) return log_->Write(Level::kError, "drain stays as it was");
  log_->Write(Level::kInfo, "saved: drain = " + value);
  Apply(std::move(config));
}

void Daemon::Apply(std::shared_ptr<const Config> config) {
  log_->SetMinLevel(config->log_level);
  {
    // A thread that has just found nothing new would else miss the call and sleep on.
    const std::lock_guard<std::mutex> lock(mutex_);
    std::atomic_store(&config_, std::move(config));
  }
  wake_.notify_all();
}

// Checks every `step`th volume, from `first` on.
void Daemon::Work(std::size_t first, std::size_t step) {
  for (;;) {
    const auto config = this->config();
    for (std::size_t n = first; n < config->volumes.size(); n += step) {
      Check(config->volumes[n], config->drain);
    }
    std::unique_lock<std::mutex> lock(mutex_);
    wake_.wait_for(lock, config->interval,
                   [&] { return is_stopping_ || this->config() != config; });
    if (is_stopping_) return;
  }
}

void Daemon::Check(const Volume& volume, bool drain) {
  std::error_code error;
  const std::uint64_t free_bytes = free_bytes_(volume.path, &error);
  if (error) {
    log_->Write(Level::kError, "volume " + volume.name + ": " + error.message());
  } else if (free_bytes < volume.reserve_bytes && !drain) {
    log_->Write(Level::kWarning, "volume " + volume.name + ": less than its reserve is free");
  } else {
    log_->Write(Level::kDebug,
                "volume " + volume.name + ": " + std::to_string(free_bytes) + " bytes are free");
  }
}

}  // namespace volume_daemon
