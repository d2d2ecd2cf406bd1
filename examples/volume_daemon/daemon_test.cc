#include "daemon.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <sstream>
#include <utility>
#include <vector>

#include "config.h"
#include "log.h"

namespace volume_daemon {
namespace {

using namespace std::chrono_literals;
using quarry::settings::Problem;
using quarry::settings::Snapshot;

// Keeps the lines, and lets a test wait for one.
class FakeLog : public Log {
 public:
  // Returns all lines so far once there is one with this text, or after ten seconds; a line that
  // was returned is not waited for again.
  std::string TextUpTo(const std::string& text) {
    std::unique_lock<std::mutex> lock(mutex_);
    written_.wait_for(lock, 10s, [&] { return lines_.find(text) != std::string::npos; });
    return std::exchange(lines_, "");
  }

  std::string Text() {
    const std::lock_guard<std::mutex> lock(mutex_);
    return lines_;
  }

 private:
  void WriteLine(Level level, const std::string& text) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    lines_ += (level == Level::kError     ? "error: "
               : level == Level::kWarning ? "warning: "
                                          : "") +
              text + '\n';
    written_.notify_all();
  }

  std::mutex mutex_;
  std::condition_variable written_;
  std::string lines_;
};

TEST(StreamLog, WritesALineForEachEvent) {
  std::ostringstream out;
  StreamLog log(&out);
  log.SetMinLevel(Level::kWarning);
  log.Write(Level::kInfo, "dropped");
  log.Write(Level::kWarning, "name\r\n\x1b[2J\xc3\xa9");
  const std::string line = out.str();
  EXPECT_EQ(line.substr(std::min(line.find(' '), line.size())), " warning name???[2J\xc3\xa9\n");
}

std::shared_ptr<const Config> ConfigOf(const std::string& text, Log* log) {
  std::vector<Problem> problems;
  return ReadConfig(Snapshot::Parse("f", text, &problems).value(), log);
}

TEST(ReadConfig, ReadsEverySetting) {
  FakeLog log;
  const auto config = ConfigOf(
      "[monitor]\nthreads=8\ninterval=90 s\nskip=b\ndrain=on\n[log]\nlevel=error\n"
      "[Volume a]\npath=/a\nreserve=4KiB\n[Volume b]\npath=/b\n",
      &log);
  EXPECT_EQ(log.Text(), "");
  ASSERT_NE(config, nullptr);
  EXPECT_EQ(config->threads, 8U);
  EXPECT_EQ(config->interval, 90s);
  EXPECT_TRUE(config->drain);
  EXPECT_EQ(config->log_level, Level::kError);
  ASSERT_EQ(config->volumes.size(), 1U);
  EXPECT_EQ(config->volumes[0].name, "a");
  EXPECT_EQ(config->volumes[0].path, "/a");
  EXPECT_EQ(config->volumes[0].reserve_bytes, 4096U);
}

TEST(ReadConfig, LogsEveryProblem) {
  struct Case {
    const char* text;
    const char* log;
    bool is_read;
  };
  const Case cases[] = {
      {"[Volume a]\npath=/a\n", "", true},
      {"[Volume a]\npath=/a\nreserv=1\n[Volum b]\npath=/b\n",
       "warning: f:4: section \"Volum b\" is not known\n"
       "warning: f:3:1: option \"reserv\" in section \"Volume a\" is not known (did you mean "
       "\"reserve\"?)\n",
       true},
      {"", "error: f: there is no volume (add a section [Volume NAME])\n", false},
      {"[Monitor]\nthreads=65\ninterval=2d\nskip=b\n[Log]\nlevel=loud\n[Volume a]\npath=a\n"
       "[Volume c]\n",
       "error: f:2:9: the number is out of range (write a number from 1 to 64)\n"
       "error: f:3:10: the interval is out of range (write a duration from 1 s to 24 h)\n"
       "error: f:6:7: the level is not known (write debug, info, warning or error)\n"
       "error: f:8:6: the path is not absolute (begin it with /)\n"
       "error: f:9:2: there is no option \"path\" in section \"Volume c\" (add \"path = ...\" to "
       "section [Volume c])\n"
       "error: f:4:6: there is no volume \"b\"\n",
       false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    FakeLog log;
    EXPECT_EQ(ConfigOf(c.text, &log) != nullptr, c.is_read);
    EXPECT_EQ(log.Text(), c.log);
  }
}

class DaemonTest : public testing::Test {
 protected:
  void Write(const std::string& text) const { std::ofstream(file_) << text; }
  std::string Read() const {
    std::ostringstream text;
    text << std::ifstream(file_).rdbuf();
    return text.str();
  }
  ~DaemonTest() override { std::filesystem::remove(file_); }

  const std::string file_ = testing::TempDir() + "volume_daemon_test.conf";
  FakeLog log_;
  // Volumes without a bad path have a thousand free bytes.
  Daemon daemon_{file_, &log_, [](const std::string& path, std::error_code* error) {
                   if (path == "/bad") *error = std::make_error_code(std::errc::io_error);
                   return std::uint64_t{1000};
                 }};
};

TEST_F(DaemonTest, ChecksVolumesAtItsStartAndAfterReloads) {
  const std::string one_thread = "[Monitor]\nthreads=1\n";
  Write(one_thread + "[Volume a]\npath=/a\nreserve=1001\n[Volume z]\npath=/z\nreserve=1 MB\n");
  ASSERT_TRUE(daemon_.Start());
  EXPECT_EQ(log_.TextUpTo("volume z"), "started with " + file_ +
                                           "\nwarning: volume a: less than its reserve is free\n"
                                           "warning: volume z: less than its reserve is free\n");

  Write(one_thread + "[Volume b]\npath=/bad\n");
  daemon_.Reload();
  EXPECT_EQ(log_.TextUpTo("volume b"),
            "reloaded " + file_ + "\nerror: volume b: Input/output error\n");

  Write("[Volume c]\npath=/c\nreserve=1000\n[Monitor]\nthreads=3\n[Log]\nlevel=debug\n");
  daemon_.Reload();
  EXPECT_EQ(log_.TextUpTo("volume c"),
            "warning: a new number of threads takes effect at the next start\nreloaded " + file_ +
                "\nvolume c: 1000 bytes are free\n");
}

TEST_F(DaemonTest, KeepsItsConfigurationWhenTheNewOneIsBad) {
  EXPECT_FALSE(daemon_.Start());
  EXPECT_EQ(log_.TextUpTo("error"), "error: " + file_ + ": No such file or directory\n");
  Write("[Volume a]\npath=/a\n");
  ASSERT_TRUE(daemon_.Start());
  log_.TextUpTo("started");
  const auto config = daemon_.config();

  Write("[Volume a\n[Volume b]\n");
  daemon_.Reload();
  EXPECT_EQ(log_.TextUpTo("stays"),
            "error: " + file_ +
                ":1:1: section header without \"]\" (add \"]\" after the section name)\n"
                "error: not reloaded: the old configuration stays in effect\n");
  daemon_.ToggleDrain();
  EXPECT_EQ(log_.TextUpTo("drain").find("error: "), 0U);
  EXPECT_EQ(daemon_.config(), config);
  EXPECT_EQ(Read(), "[Volume a\n[Volume b]\n");
}

TEST_F(DaemonTest, SavesWhetherItDrains) {
  const std::string text =
      "# st-07\n[Monitor]\n  drain =  no\n\n[Volume a]\npath=/a\nreserve=1001\n";
  Write(text);
  ASSERT_TRUE(daemon_.Start());
  log_.TextUpTo("less");

  Write(text + "[Volume b]\npath=/b\n");  // waits for Reload
  daemon_.ToggleDrain();
  EXPECT_EQ(Read(),
            "# st-07\n[Monitor]\n  drain =  yes\n\n[Volume a]\npath=/a\nreserve=1001\n"
            "[Volume b]\npath=/b\n");
  EXPECT_TRUE(daemon_.config()->drain);
  EXPECT_EQ(daemon_.config()->volumes.size(), 1U);

  daemon_.ToggleDrain();
  EXPECT_FALSE(daemon_.config()->drain);
  EXPECT_EQ(Read(), text + "[Volume b]\npath=/b\n");
  EXPECT_EQ(log_.TextUpTo("less"),
            "saved: drain = yes\nsaved: drain = no\n"
            "warning: volume a: less than its reserve is free\n");
}

}  // namespace
}  // namespace volume_daemon
