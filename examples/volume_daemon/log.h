// The daemon's log.
#ifndef VOLUME_DAEMON_LOG_H_
#define VOLUME_DAEMON_LOG_H_

#include <atomic>
#include <mutex>
#include <ostream>
#include <string>

namespace volume_daemon {

enum class Level { kDebug, kInfo, kWarning, kError };

// Any thread may call the operations.
class Log {
 public:
  Log() = default;
  virtual ~Log() = default;
  Log(const Log&) = delete;
  Log& operator=(const Log&) = delete;

  // Lower levels are dropped from now on.
  void SetMinLevel(Level level) { min_level_ = level; }

  void Write(Level level, const std::string& text);

 private:
  virtual void WriteLine(Level level, const std::string& text) = 0;

  std::atomic<Level> min_level_ = Level::kInfo;
};

// Writes lines "2026-01-31T23:59:59Z warning TEXT" to a stream, which must outlive it.
class StreamLog : public Log {
 public:
  explicit StreamLog(std::ostream* out) : out_(out) {}

 private:
  void WriteLine(Level level, const std::string& text) override;

  std::mutex mutex_;  // guards *out_
  std::ostream* const out_;
};

}  // namespace volume_daemon

#endif  // VOLUME_DAEMON_LOG_H_
