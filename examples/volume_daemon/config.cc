#include "config.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace volume_daemon {

using quarry::settings::Option;
using quarry::settings::Problem;
using quarry::settings::Section;
using quarry::settings::Snapshot;
using quarry::settings::ValueReader;

namespace {

constexpr std::string_view kVolumePrefix = "Volume ";

std::chrono::nanoseconds ReadInterval(ValueReader* reader) {
  using namespace std::chrono_literals;
  // After a value that is no duration, this is the fallback, which passes the check.
  const std::chrono::nanoseconds interval = reader->Duration("Monitor", "interval", 10min);
  if (interval < 1s || interval > 24h) {
    reader->Refuse("Monitor", "interval", "the interval is out of range",
                   "write a duration from 1 s to 24 h");
  }
  return interval;
}

Level ReadLevel(ValueReader* reader) {
  constexpr std::pair<std::string_view, Level> kLevels[] = {{"debug", Level::kDebug},
                                                            {"info", Level::kInfo},
                                                            {"warning", Level::kWarning},
                                                            {"error", Level::kError}};
  const std::string_view name = reader->Text("Log", "level", "info");
  for (const auto& [one, level] : kLevels) {
    if (name == one) return level;
  }
  reader->Refuse("Log", "level", "the level is not known", "write debug, info, warning or error");
  return Level::kInfo;
}

std::vector<Volume> ReadVolumes(const Snapshot& snapshot, ValueReader* reader) {
  std::vector<Volume> volumes;
  for (const Section* section : snapshot.SectionsWithPrefix(kVolumePrefix)) {
    Volume volume;
    volume.name = section->name.substr(kVolumePrefix.size());
    volume.path = reader->Text(section->name, "path");  // required
    volume.reserve_bytes = reader->Bytes(section->name, "reserve", 0);
    // An absent path is a problem already.
    const Option* const path = snapshot.Find(section->name, "path");
    if (path != nullptr && path->value.substr(0, 1) != "/") {
      reader->Refuse(section->name, "path", "the path is not absolute", "begin it with /");
    }
    volumes.push_back(std::move(volume));
  }
  if (volumes.empty()) {
    reader->Refuse("Volume", "path", "there is no volume", "add a section [Volume NAME]");
  }
  return volumes;
}

// Volumes in repair are not checked.
void RemoveSkipped(std::vector<Volume>* volumes, ValueReader* reader) {
  for (const std::string_view name :
       reader->List("Monitor", "skip", std::vector<std::string_view>())) {
    const auto volume = std::find_if(volumes->begin(), volumes->end(),
                                     [name](const Volume& one) { return one.name == name; });
    if (volume != volumes->end()) {
      volumes->erase(volume);
    } else {
      reader->Refuse("Monitor", "skip", "there is no volume \"" + std::string(name) + '"');
    }
  }
}

// A misspelled [Volum a] would pass in silence: the reader knows only sections that are read.
void LogUnknownSections(const Snapshot& snapshot, Log* log) {
  auto known = snapshot.SectionsWithPrefix(kVolumePrefix);
  known.push_back(snapshot.FindSection("Monitor"));
  known.push_back(snapshot.FindSection("Log"));
  for (const Section& section : snapshot.sections()) {
    if (std::find(known.begin(), known.end(), &section) != known.end()) continue;
    log->Write(Level::kWarning, snapshot.name() + ':' + std::to_string(section.line) +
                                    ": section \"" + std::string(section.name) + "\" is not known");
  }
}

}  // namespace

std::shared_ptr<const Config> LoadConfig(const std::string& file, Log* log) {
  std::vector<Problem> problems;
  const auto snapshot = Snapshot::Load(file, &problems, Snapshot::Warnings::kReported);
  LogProblems(problems, log);
  return snapshot ? ReadConfig(*snapshot, log) : nullptr;
}

std::shared_ptr<const Config> ReadConfig(const Snapshot& snapshot, Log* log) {
  ValueReader reader(snapshot);
  auto config = std::make_shared<Config>();
  config->threads = static_cast<std::size_t>(reader.Integer("Monitor", "threads", 2, {1, 64}));
  config->interval = ReadInterval(&reader);
  config->drain = reader.Boolean("Monitor", "drain", false);
  config->log_level = ReadLevel(&reader);
  config->volumes = ReadVolumes(snapshot, &reader);
  RemoveSkipped(&config->volumes, &reader);
  reader.ReportUnknownOptions();
  LogUnknownSections(snapshot, log);
  return LogProblems(reader.problems(), log) ? nullptr : config;
}

bool LogProblems(const std::vector<Problem>& problems, Log* log) {
  bool has_error = false;
  for (const Problem& problem : problems) {
    const std::string hint = problem.hint.empty() ? "" : " (" + problem.hint + ')';
    log->Write(problem.is_warning ? Level::kWarning : Level::kError, problem.Message() + hint);
    has_error = has_error || !problem.is_warning;
  }
  return has_error;
}

}  // namespace volume_daemon
