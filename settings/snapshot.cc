#include "settings/snapshot.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <system_error>
#include <utility>

#include "settings/error.h"
#include "settings/file_reading.h"
#include "settings/line_scanner.h"
#include "settings/name_table.h"
#include "settings/text_checks.h"

namespace quarry::settings {

using storage::dmconfig::LineFault;
using storage::dmconfig::LineKind;

namespace {

// A line adds at most one name.
std::size_t CountLines(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
}

// The options of smaller sections are not in the table: their hashes, side by side, are faster to
// search than a distant slot is to reach.
constexpr std::size_t kSmallSection = 8;

std::uint64_t HashOfOption(std::size_t section, std::string_view option) noexcept {
  return HashOfName(option, section + 1);
}

}  // namespace

struct Snapshot::Data {
  Data(std::string text_name, std::string whole_text)
      : name(std::move(text_name)), text(std::move(whole_text)), names(CountLines(text)) {}

  // The numbers of a section and of an option in `names`.
  static std::uint32_t NumberOfSection(std::size_t index) {
    return static_cast<std::uint32_t>(2 * index);
  }
  static std::uint32_t NumberOfOption(std::size_t index) {
    return static_cast<std::uint32_t>(2 * index + 1);
  }

  const Section* FindSection(std::string_view section) const noexcept;
  const Option* FindOption(const Section& section, std::string_view option) const noexcept;
  std::size_t IndexOf(const Section& section) const {
    return static_cast<std::size_t>(&section - sections.data());
  }
  std::size_t IndexOf(const Option& option) const {
    return static_cast<std::size_t>(&option - options.data());
  }

  // Searches consecutive options from `begin` on; returns null when the option is not there.
  const Option* ScanOptions(std::size_t begin, std::size_t count, std::uint64_t hash,
                            std::string_view option) const noexcept;

  // Adds an option behind the others.
  void AddOption(std::uint64_t hash, const Option& option);

  // Fills the table from the sections and options, which are grouped.
  void AddAllNames();

  const std::string name;
  const std::string text;
  std::deque<std::string> comments;  // those that are not in the text in one piece
  std::vector<Section> sections;
  std::vector<Option> options;               // those of a section side by side
  std::vector<std::uint32_t> option_hashes;  // the low halves, in the order of the options
  NameTable names;
};

const Section* Snapshot::Data::FindSection(std::string_view section) const noexcept {
  const std::uint32_t number = names.Find(HashOfName(section), [&](std::uint32_t candidate) {
    return candidate % 2 == 0 && SameName(sections[candidate / 2].name, section);
  });
  return number == NameTable::kNone ? nullptr : &sections[number / 2];
}

const Option* Snapshot::Data::FindOption(const Section& section,
                                         std::string_view option) const noexcept {
  const std::uint64_t hash = HashOfOption(IndexOf(section), option);
  if (section.options.size() <= kSmallSection) {
    const auto begin = static_cast<std::size_t>(section.options.begin() - options.data());
    return ScanOptions(begin, section.options.size(), hash, option);
  }
  const std::uint32_t number = names.Find(hash, [&](std::uint32_t candidate) {
    const std::size_t index = candidate / 2;
    return candidate % 2 == 1 && &options[index] >= section.options.begin() &&
           &options[index] < section.options.end() && SameName(options[index].name, option);
  });
  return number == NameTable::kNone ? nullptr : &options[number / 2];
}

const Option* Snapshot::Data::ScanOptions(std::size_t begin, std::size_t count, std::uint64_t hash,
                                          std::string_view option) const noexcept {
  const auto low_half = static_cast<std::uint32_t>(hash);
  for (std::size_t i = begin; i < begin + count; ++i) {
    if (option_hashes[i] == low_half && SameName(options[i].name, option)) return &options[i];
  }
  return nullptr;
}

void Snapshot::Data::AddOption(std::uint64_t hash, const Option& option) {
  options.push_back(option);
  option_hashes.push_back(static_cast<std::uint32_t>(hash));
}

void Snapshot::Data::AddAllNames() {
  names = NameTable(CountLines(text));
  for (std::size_t i = 0; i < sections.size(); ++i) {
    names.Add(HashOfName(sections[i].name), NumberOfSection(i));
    for (const Option& option : sections[i].options) {
      const std::size_t index = IndexOf(option);
      const std::uint64_t hash = HashOfOption(i, option.name);
      option_hashes[index] = static_cast<std::uint32_t>(hash);
      if (sections[i].options.size() > kSmallSection) names.Add(hash, NumberOfOption(index));
    }
  }
}

// Fills a snapshot from its text.
class Snapshot::Parser {
 public:
  explicit Parser(Data* data) : data_(data) {}

  // Returns false when a line is not valid.
  bool Parse();

 private:
  void ReadComment(const ScannedLine& line);
  void ReadHeader(const ScannedLine& line);
  void ReadOption(const ScannedLine& line);
  void AddOption(std::uint64_t hash, const ScannedLine& line);
  Option* FindOption(std::uint64_t hash, std::string_view name);
  bool IsScanned() const { return is_grouped_ && counts_[section_] <= kSmallSection; }
  void AddOptionNames(std::size_t begin);
  void ContinueSections();
  void GroupOptions();
  void AssignOptions();

  Data* const data_;
  std::string_view pending_comment_;
  std::size_t section_ = 0;            // the current one
  std::vector<std::uint32_t> owners_;  // the section of each option
  std::vector<std::size_t> counts_;    // of each section's options
  bool is_grouped_ = true;             // no section before the last was continued
};

bool Snapshot::Parser::Parse() {
  LineScanner scanner(data_->text);
  for (ScannedLine line; scanner.Next(&line);) {
    if (line.fault() != LineFault::kNone) return false;
    switch (line.kind) {
      case LineKind::kBlank:
        break;
      case LineKind::kComment:
        ReadComment(line);
        break;
      case LineKind::kHeader:
        ReadHeader(line);
        break;
      case LineKind::kOption:
        ReadOption(line);
        break;
    }
  }
  if (!is_grouped_) GroupOptions();
  AssignOptions();
  if (!is_grouped_) data_->AddAllNames();
  return true;
}

// Lines without indentation and blank lines between them are one view into the text.
void Snapshot::Parser::ReadComment(const ScannedLine& line) {
  std::deque<std::string>& own = data_->comments;
  if (pending_comment_.empty()) {
    pending_comment_ = line.text;
  } else if (pending_comment_.data() + pending_comment_.size() + 1 == line.text.data()) {
    pending_comment_ = {pending_comment_.data(), pending_comment_.size() + 1 + line.text.size()};
  } else {
    if (own.empty() || pending_comment_.data() != own.back().data()) {
      own.emplace_back(pending_comment_);
    }
    own.back().append(1, '\n').append(line.text);
    pending_comment_ = own.back();
  }
}

void Snapshot::Parser::ReadHeader(const ScannedLine& line) {
  const std::string_view name = line.header.name;
  const Section* const found = data_->FindSection(name);
  section_ = found == nullptr ? data_->sections.size() : data_->IndexOf(*found);
  if (found == nullptr) {
    data_->sections.push_back({name, {}, line.number, {}});
    counts_.push_back(0);
    data_->names.Add(HashOfName(name), Data::NumberOfSection(section_));
  } else if (is_grouped_ && section_ + 1 != data_->sections.size()) {
    ContinueSections();
  }
  data_->sections[section_].comment = std::exchange(pending_comment_, {});
}

void Snapshot::Parser::ReadOption(const ScannedLine& line) {
  const std::uint64_t hash = HashOfOption(section_, line.option.name);
  Option* const found = FindOption(hash, line.option.name);
  if (found == nullptr) return AddOption(hash, line);
  found->value = line.option.value;
  found->line = line.number;
  if (!pending_comment_.empty()) found->comment = std::exchange(pending_comment_, {});
}

void Snapshot::Parser::AddOption(std::uint64_t hash, const ScannedLine& line) {
  const std::size_t index = data_->options.size();
  data_->AddOption(hash, {line.option.name, line.option.value, std::exchange(pending_comment_, {}),
                          line.number});
  owners_.push_back(static_cast<std::uint32_t>(section_));
  const std::size_t count = ++counts_[section_];
  if (IsScanned()) return;
  const bool was_scanned = is_grouped_ && count == kSmallSection + 1;
  AddOptionNames(was_scanned ? index - kSmallSection : index);
}

Option* Snapshot::Parser::FindOption(std::uint64_t hash, std::string_view name) {
  const std::size_t count = counts_[section_];
  if (IsScanned()) {
    const Option* const found =
        data_->ScanOptions(data_->options.size() - count, count, hash, name);
    return found == nullptr ? nullptr : &data_->options[data_->IndexOf(*found)];
  }
  const std::uint32_t number = data_->names.Find(hash, [&](std::uint32_t candidate) {
    const std::size_t index = candidate / 2;
    return candidate % 2 == 1 && owners_[index] == section_ &&
           SameName(data_->options[index].name, name);
  });
  return number == NameTable::kNone ? nullptr : &data_->options[number / 2];
}

// Adds the names of the options from that one on to the table.
void Snapshot::Parser::AddOptionNames(std::size_t begin) {
  for (std::size_t i = begin; i < data_->options.size(); ++i) {
    data_->names.Add(HashOfOption(owners_[i], data_->options[i].name), Data::NumberOfOption(i));
  }
}

// From now on options of a section may be apart, so that all of them are found by the table.
void Snapshot::Parser::ContinueSections() {
  is_grouped_ = false;
  data_->names = NameTable(CountLines(data_->text));
  for (std::size_t i = 0; i < data_->sections.size(); ++i) {
    data_->names.Add(HashOfName(data_->sections[i].name), Data::NumberOfSection(i));
  }
  AddOptionNames(0);
}

// A section that has several parts got its options at several places.
void Snapshot::Parser::GroupOptions() {
  std::size_t begin = 0;
  std::vector<std::size_t> next;  // the place of each section's next option
  for (const std::size_t count : counts_) {
    next.push_back(begin);
    begin += count;
  }
  std::vector<Option> grouped(data_->options.size());
  for (std::size_t i = 0; i < owners_.size(); ++i) grouped[next[owners_[i]]++] = data_->options[i];
  data_->options = std::move(grouped);
}

void Snapshot::Parser::AssignOptions() {
  const Option* begin = data_->options.data();
  for (std::size_t i = 0; i < counts_.size(); ++i) {
    data_->sections[i].options = {begin, begin + counts_[i]};
    begin += counts_[i];
  }
}

namespace {

Problem ProblemOf(const Finding& finding, const std::string& file) {
  return {file,           finding.line,       finding.column,
          finding.length, finding.rule->name, finding.message,
          finding.hint,   !finding.IsError()};
}

// No problem may quote a text that may hold secrets.
void AddFindings(const std::string& name, std::string_view text, bool with_warnings,
                 std::vector<Problem>* problems) {
  CheckOptions options;
  options.holds_secret = [](const ScannedLine&) { return true; };
  for (const Finding& finding : CheckText(text, options)) {
    if (finding.IsError() || with_warnings) problems->push_back(ProblemOf(finding, name));
  }
}

}  // namespace

Snapshot::Snapshot(std::shared_ptr<const Data> data) noexcept : data_(std::move(data)) {}

std::optional<Snapshot> Snapshot::Load(const std::string& path, std::vector<Problem>* problems,
                                       Warnings warnings) {
  try {
    return Parse(path, ReadFile(path), problems, warnings);
  } catch (const Error& error) {
    Problem problem;
    problem.file = path;
    problem.text = std::generic_category().message(error.error_number);
    problem.hint = error.hint;
    problems->push_back(std::move(problem));
    return std::nullopt;
  }
}

std::optional<Snapshot> Snapshot::Parse(std::string name, std::string text,
                                        std::vector<Problem>* problems, Warnings warnings) {
  const auto data = std::make_shared<Data>(std::move(name), std::move(text));
  const bool is_valid = Parser(data.get()).Parse();
  if (!is_valid || warnings == Warnings::kReported) {
    AddFindings(data->name, data->text, warnings == Warnings::kReported, problems);
  }
  if (!is_valid) return std::nullopt;
  return Snapshot(data);
}

const std::string& Snapshot::name() const noexcept { return data_->name; }
const std::string& Snapshot::text() const noexcept { return data_->text; }

Range<Section> Snapshot::sections() const noexcept {
  return {data_->sections.data(), data_->sections.data() + data_->sections.size()};
}

std::vector<const Section*> Snapshot::SectionsWithPrefix(std::string_view prefix) const {
  std::vector<const Section*> found;
  for (const Section& section : data_->sections) {
    if (SameName(section.name.substr(0, prefix.size()), prefix)) found.push_back(&section);
  }
  return found;
}

Range<Option> Snapshot::options(std::string_view section) const noexcept {
  const Section* const found = FindSection(section);
  return found == nullptr ? Range<Option>() : found->options;
}

const Section* Snapshot::FindSection(std::string_view section) const noexcept {
  return data_->FindSection(section);
}

const Option* Snapshot::Find(std::string_view section, std::string_view option) const noexcept {
  const Section* const found = data_->FindSection(section);
  return found == nullptr ? nullptr : data_->FindOption(*found, option);
}

}  // namespace quarry::settings
