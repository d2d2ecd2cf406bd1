#include "settings/differences.h"

#include <list>
#include <utility>

#include "dmconfig/line.h"
#include "dmconfig/string_case_cmp.h"
#include "settings/line_scanner.h"

namespace quarry::settings {

namespace {

using OptionMap = decltype(storage::dmconfig::SectionOptionMap::option_map);

// Null when there is no such section.
const OptionMap* FindOptions(const std::string& section, Document* document) {
  return document->HasSection(section) ? &document->Record(section).option_map : nullptr;
}

std::optional<std::string> ValueIn(const OptionMap& options, const std::string& name) {
  const auto found = options.find(name);
  if (found == options.end()) return std::nullopt;
  return found->second.value;
}

void CompareOptions(const std::string& section, const OptionMap& left, const OptionMap& right,
                    std::vector<Difference>* differences) {
  for (const auto& [name, stored] : left) {
    const auto other = ValueIn(right, name);
    if (stored.value != other) differences->push_back({section, name, stored.value, other});
  }
  for (const auto& [name, stored] : right) {
    if (left.count(name) == 0) differences->push_back({section, name, {}, stored.value});
  }
}

void CompareSection(const std::string& section, Document* left, Document* right,
                    std::vector<Difference>* differences) {
  static const OptionMap kNone;
  const OptionMap* const left_options = FindOptions(section, left);
  const OptionMap* const right_options = FindOptions(section, right);
  const auto side = [](const OptionMap* options) {
    return options == nullptr ? std::nullopt : std::optional<std::string>("");
  };
  if (left_options == nullptr || right_options == nullptr) {
    differences->push_back({section, {}, side(left_options), side(right_options)});
  }
  CompareOptions(section, left_options == nullptr ? kNone : *left_options,
                 right_options == nullptr ? kNone : *right_options, differences);
}

std::string CanonicalName(const std::string& name) {
  return Folded(name.substr(0, name.find('\0')));
}

// A header with no name would not be valid.
std::string CanonicalHeader(const std::string& section) {
  const std::string name = CanonicalName(section);
  return '[' + (name.empty() ? std::string(1, '\0') : name) + "]\n";
}

// Neither would an option without a name, and blanks at its end would not be part of it. Only a NUL
// after them made them so.
std::string CanonicalOption(const std::string& option, const std::string& value) {
  std::string name = CanonicalName(option);
  if (name.empty() || storage::dmconfig::Trimmed(name).size() < name.size()) name += '\0';
  return name + '=' + value + '\n';
}

}  // namespace

std::vector<Difference> FindDifferences(Document* left, Document* right) {
  std::vector<Difference> differences;
  for (const std::string& name : left->Sections()) {
    CompareSection(name, left, right, &differences);
  }
  for (const std::string& name : right->Sections()) {
    if (!left->HasSection(name)) CompareSection(name, left, right, &differences);
  }
  return differences;
}

std::string CanonicalText(Document* document) {
  std::list<std::string> sections = document->Sections();
  sections.sort(storage::dmconfig::StringCaseCmp());
  std::string text;
  for (const std::string& section : sections) {
    text += CanonicalHeader(section);
    for (const auto& [option, stored] : document->Record(section).option_map) {
      text += CanonicalOption(option, stored.value);
    }
  }
  return text;
}

}  // namespace quarry::settings
