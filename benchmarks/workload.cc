#include "benchmarks/workload.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <set>
#include <stdexcept>
#include <string_view>

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

// Every twentieth of all lengths, in 10,267 options (up to 40 of a file) and 2,589 sections of 860
// files of 32 Debian packages: .conf, .ini, .cfg, .desktop, .service and others with sections. The
// last one is cut.
using Lengths = std::array<std::size_t, 20>;
constexpr Lengths kSectionLengths = {4,  4,  6,  7,  7,  8,  8,  8,  10, 10,
                                     11, 13, 13, 13, 15, 17, 20, 23, 27, 40};
constexpr Lengths kOptionLengths = {4, 4,  5,  5,  5,  6,  7,  7,  8,  9,
                                    9, 10, 11, 12, 13, 14, 15, 17, 20, 30};
constexpr Lengths kValueLengths = {1,  2,  3,  4,  5,  5,  6,  7,  7,  8,
                                   10, 12, 15, 17, 21, 26, 34, 47, 70, 120};
// Of the begin that a name has in common with the one before it.
constexpr Lengths kCommonLengths = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 4, 4, 4, 6, 7, 9, 12};

class Generator {
  using Names = std::set<std::string, storage::dmconfig::StringCaseCmp>;

 public:
  explicit Generator(bool is_like_files) : is_like_files_(is_like_files) {}

  // Adds `options` options to a new section; `comments` lines above each, and
  // above the header.
  void AddSection(std::size_t options, std::size_t comments) {
    const std::string section = SectionName();
    AddComment(comments);
    Line('[' + section + ']');
    for (std::size_t i = 0; i < options; ++i) {
      AddOption(section, OptionName(i), comments);
    }
    options_.clear();
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

  // Returns a name that no section has yet.
  std::string SectionName() {
    return is_like_files_ ? ShortName(kSectionLengths, &names_) : Words(sections_++);
  }

  // Returns a name that no option of the current section has; `number` is that of the option.
  std::string OptionName(std::size_t number) {
    return is_like_files_ ? ShortName(kOptionLengths, &options_) : Words(number);
  }

  std::size_t Below(std::size_t end) { return random_() % end; }
  std::mt19937* random() { return &random_; }

  Workload Take() { return std::move(workload_); }

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
    if (is_like_files_) {
      std::string value(kValueLengths[Below(kValueLengths.size())], '/');
      for (char& c : value) c = Character();
      return value;
    }
    std::string value = kValues[Below(std::size(kValues))];
    if (Below(2) == 0) value += std::to_string(Below(100000));
    return value;
  }

  // Returns a name of random words that is unique for each number.
  std::string Words(std::size_t number) {
    return std::string(kWords[Below(std::size(kWords))]) + '_' + kWords[Below(std::size(kWords))] +
           '_' + std::to_string(number);
  }

  // Returns a name of random letters that is none of `names`, and adds it.
  std::string ShortName(const Lengths& lengths, Names* names) {
    for (;;) {
      std::string name = last_name_.substr(0, kCommonLengths[Below(kCommonLengths.size())]);
      const std::size_t length = lengths[Below(lengths.size())];
      if (name.size() >= length) name.resize(length / 2);
      if (name.empty()) name += static_cast<char>((Below(12) < 5 ? 'A' : 'a') + Below(26));
      while (name.size() < length) name += Character();
      if (!names->insert(name).second) continue;
      last_name_ = name;
      return name;
    }
  }

  char Character() {
    const std::size_t kind = Below(100);
    if (kind < 86) return static_cast<char>('a' + Below(26));
    if (kind < 93) return static_cast<char>('A' + Below(26));
    if (kind < 96) return static_cast<char>('0' + Below(10));
    return kind < 99 ? '_' : '-';
  }

  const bool is_like_files_;
  Workload workload_;
  std::size_t sections_ = 0;
  Names names_, options_;  // of all sections, and of the options of the current one
  std::string last_name_;
  std::mt19937 random_{kSeed};
};

Workload Typical(Generator* generator) {
  for (int i = 0; i < 6; ++i) {
    generator->AddSection(7, 0);
    generator->Line("");
    generator->Line("# " + generator->OptionName(100));
  }
  for (int i = 0; i < 3; ++i) generator->Line("# end");
  return generator->Take();
}

Workload Sections(Generator* generator, std::size_t sections, std::size_t options,
                  std::size_t comments) {
  for (std::size_t i = 0; i < sections; ++i) {
    generator->AddSection(options, comments);
  }
  return generator->Take();
}

Workload OneSection(Generator* generator, bool in_order) {
  constexpr std::size_t kOptions = 1000000;
  std::vector<std::string> names(kOptions);
  for (std::size_t i = 0; i < kOptions; ++i) names[i] = generator->OptionName(i);
  if (in_order) {
    std::sort(names.begin(), names.end(), storage::dmconfig::StringCaseCmp());
  } else {
    std::shuffle(names.begin(), names.end(), *generator->random());
  }
  generator->Line("[all]");
  for (const std::string& option : names) generator->AddOption("all", option, 0);
  return generator->Take();
}

Workload Make(const std::string& name, Generator* generator) {
  if (name == "typical") return Typical(generator);
  if (name == "mid") return Sections(generator, 100, 100, 0);
  if (name == "commented") return Sections(generator, 2000, 20, 2);
  if (name == "wide") return Sections(generator, 100000, 5, 0);
  if (name == "deep" || name == "sorted") return OneSection(generator, name == "sorted");
  if (name.compare(0, 6, "lines-") == 0) {
    constexpr std::size_t kLines = 51;  // a section
    const std::size_t lines = std::strtoul(name.c_str() + 6, nullptr, 10);
    return Sections(generator, std::max<std::size_t>(lines / kLines, 1), kLines - 1, 0);
  }
  throw std::invalid_argument("no workload " + name);
}

}  // namespace

Workload MakeWorkload(const std::string& name) {
  constexpr std::string_view kLikeFiles = "files-";
  const bool is_like_files = name.compare(0, kLikeFiles.size(), kLikeFiles) == 0;
  Generator generator(is_like_files);
  return Make(is_like_files ? name.substr(kLikeFiles.size()) : name, &generator);
}

}  // namespace quarry::benchmarks
