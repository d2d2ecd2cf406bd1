// What lies below every library for such files: reading, finding the lines,
// putting ready texts into maps, writing lines.
#ifndef QUARRY_BENCHMARKS_FLOORS_H_
#define QUARRY_BENCHMARKS_FLOORS_H_

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

// read(2) of the whole file.
inline std::string ReadWhole(const std::string& path, std::size_t size) {
  const platform::FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  std::string text(size, '\0');
  std::size_t count = 0;
  platform::ReadUpTo(file.get(), text.data(), size, &count);
  return text;
}

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

inline std::size_t GetLines(const std::string& path) {
  std::ifstream file(path);
  std::size_t bytes = 0;
  for (std::string line; std::getline(file, line);) bytes += line.size();
  return bytes;
}

using Records =
    std::map<std::string, storage::dmconfig::SectionOptionMap, storage::dmconfig::StringCaseCmp>;

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

#endif  // QUARRY_BENCHMARKS_FLOORS_H_
