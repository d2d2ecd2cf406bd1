// Baselines: the single steps that every library for such files has to take. Reading the file,
// finding the line feeds, storing names and values in maps, writing the lines.
#ifndef QUARRY_BENCHMARKS_BASELINES_H_
#define QUARRY_BENCHMARKS_BASELINES_H_

#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "benchmarks/workload.h"
#include "dmconfig/config.h"
#include "platform/local/file_descriptor.h"

namespace quarry::benchmarks {

// Reads the whole file with read(2).
inline std::string ReadWhole(const std::string& path, std::size_t size) {
  const platform::FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  std::string text(size, '\0');
  std::size_t count = 0;
  platform::ReadUpTo(file.get(), text.data(), size, &count);
  return text;
}

// Returns the number of line feeds.
inline std::size_t ScanLines(std::string_view text) {
  std::size_t lines = 0;
  const char* const end = text.data() + text.size();
  for (const char* at = text.data();
       (at = static_cast<const char*>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)))) !=
       nullptr;
       ++at) {
    ++lines;
  }
  return lines;
}

// Reads the file with std::getline. Returns the summed length of its lines.
inline std::size_t GetLines(const std::string& path) {
  std::ifstream file(path);
  std::size_t bytes = 0;
  for (std::string line; std::getline(file, line);) bytes += line.size();
  return bytes;
}

using Records =
    std::map<std::string, storage::dmconfig::SectionOptionMap, storage::dmconfig::StringCaseCmp>;

// Builds the maps of a model from names and values that are separated already.
inline std::unique_ptr<Records> BuildMaps(const std::vector<Entry>& entries) {
  auto records = std::make_unique<Records>();
  const std::string* section = nullptr;
  storage::dmconfig::SectionOptionMap* record = nullptr;
  for (const Entry& entry : entries) {
    if (section == nullptr || *section != entry.section) {
      record = &(*records)[entry.section];
      section = &entry.section;
    }
    auto& stored = record->option_map[entry.option];
    stored.value = entry.value;
    stored.comment = entry.comment;
  }
  return records;
}

// Writes each line with a write(2) of its own.
inline void WriteLines(std::string_view text, const std::string& path) {
  const platform::FileDescriptor file(
      open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600));
  while (!text.empty()) {
    const std::size_t size = text.find('\n') + 1;
    platform::WriteAll(file.get(), text.data(), size);
    text.remove_prefix(size);
  }
}

}  // namespace quarry::benchmarks

#endif  // QUARRY_BENCHMARKS_BASELINES_H_
