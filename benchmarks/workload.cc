#include "benchmarks/workload.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <stdexcept>

#include "dmconfig/config.h"

namespace quarry::benchmarks {

namespace {

constexpr std::uint32_t kSeed = 20261124;

const char* const kWords[] = {"cache", "Limit", "path",    "retry",   "volume",   "Mode", "timeout",
                              "log",   "level", "address", "Threads", "interval", "url",  "zone",
                              "quota", "queue", "Depth",   "flush",   "replica",  "port"};
const char* const kValues[] = {"on",
                               "4096",
                               "/var/lib/quarry/volumes/data-0",
                               "https://ledger.hall-b.example:7443/?zone=b",
                               "noatime,nodiratime",
                               "192.0.2.17:9600",
                               "5%",
                               "notice"};

class Generator {
 public:
  // Adds `options` options to a new section; `comments` lines above each, and
  // above the header.
  void AddSection(std::size_t options, std::size_t comments) {
    const std::string section = Name(sections_++);
    AddComment(comments);
    Line('[' + section + ']');
    for (std::size_t i = 0; i < options; ++i) {
      AddOption(section, Name(i), comments);
    }
  }

  void AddOption(const std::string& section, const std::string& option, std::size_t comments) {
    const std::string comment = AddComment(comments);
    const std::string value = Value();
    Line(option + " = " + value);
    workload_.entries.push_back({section, option, value, comment});
  }

  void Line(const std::string& line) {
    workload_.text += line + '\n';
    ++workload_.lines;
  }

  // Returns a name of random words that is unique for each number.
  std::string Name(std::size_t number) {
    return std::string(kWords[Below(std::size(kWords))]) + '_' + kWords[Below(std::size(kWords))] +
           '_' + std::to_string(number);
  }

  std::size_t Below(std::size_t end) { return random_() % end; }
  std::mt19937* random() { return &random_; }

  Workload Take(const std::string& name) {
    workload_.name = name;
    return std::move(workload_);
  }

 private:
  std::string AddComment(std::size_t lines) {
    std::string comment;
    for (std::size_t i = 0; i < lines; ++i) {
      const std::string line = "# " + Value() + " and " + Value();
      comment += '\n' + line;
      Line(line);
    }
    return comment;
  }

  std::string Value() {
    std::string value = kValues[Below(std::size(kValues))];
    if (Below(2) == 0) value += std::to_string(Below(100000));
    return value;
  }

  Workload workload_;
  std::size_t sections_ = 0;
  std::mt19937 random_{kSeed};
};

Workload Typical() {
  Generator generator;
  for (int i = 0; i < 6; ++i) {
    generator.AddSection(7, 0);
    generator.Line("");
    generator.Line("# " + generator.Name(100));
  }
  for (int i = 0; i < 3; ++i) generator.Line("# end");
  return generator.Take("typical");
}

Workload Sections(const std::string& name, std::size_t sections, std::size_t options,
                  std::size_t comments) {
  Generator generator;
  for (std::size_t i = 0; i < sections; ++i) {
    generator.AddSection(options, comments);
  }
  return generator.Take(name);
}

Workload OneSection(const std::string& name, bool in_order) {
  constexpr std::size_t kOptions = 1000000;
  Generator generator;
  std::vector<std::string> names(kOptions);
  for (std::size_t i = 0; i < kOptions; ++i) names[i] = generator.Name(i);
  if (in_order) {
    std::sort(names.begin(), names.end(), storage::dmconfig::StringCaseCmp());
  } else {
    std::shuffle(names.begin(), names.end(), *generator.random());
  }
  generator.Line("[all]");
  for (const std::string& option : names) generator.AddOption("all", option, 0);
  return generator.Take(name);
}

}  // namespace

Workload MakeWorkload(const std::string& name) {
  if (name == "typical") return Typical();
  if (name == "mid") return Sections(name, 100, 100, 0);
  if (name == "commented") return Sections(name, 2000, 20, 2);
  if (name == "wide") return Sections(name, 100000, 5, 0);
  if (name == "deep" || name == "sorted") {
    return OneSection(name, name == "sorted");
  }
  if (name.compare(0, 6, "lines-") == 0) {
    constexpr std::size_t kLines = 51;  // a section
    const std::size_t lines = std::strtoul(name.c_str() + 6, nullptr, 10);
    return Sections(name, std::max<std::size_t>(lines / kLines, 1), kLines - 1, 0);
  }
  throw std::invalid_argument("no workload " + name);
}

}  // namespace quarry::benchmarks
