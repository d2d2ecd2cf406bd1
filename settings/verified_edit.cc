#include "settings/verified_edit.h"

#include <algorithm>
#include <functional>
#include <list>
#include <new>
#include <optional>
#include <utility>

#include "dmconfig/config.h"
#include "dmconfig/status.h"
#include "settings/error.h"
#include "settings/line_scanner.h"
#include "settings/removals.h"
#include "settings/renames.h"
#include "settings/set_options.h"

namespace quarry::settings {

using storage::dmconfig::SectionOptionMap;

namespace {

bool EndsIn(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && std::equal(end.rbegin(), end.rend(), text.rbegin());
}

bool IsSameComment(const std::string& left, const std::string& right, Comments comments) {
  switch (comments) {
    case Comments::kCompared:
      return left == right;
    case Comments::kExtended:
      return EndsIn(right, left);
    case Comments::kIgnored:
      break;
  }
  return true;
}

bool IsSameRecord(const SectionOptionMap& left, const SectionOptionMap& right, Comments comments) {
  return std::equal(left.option_map.begin(), left.option_map.end(), right.option_map.begin(),
                    right.option_map.end(), [comments](const auto& one, const auto& other) {
                      return one.first == other.first && one.second.value == other.second.value &&
                             IsSameComment(one.second.comment, other.second.comment, comments);
                    });
}

// The last check before a text is written: refuses an edit that does not read back as intended.
void RequireReadBack(Document* wanted, Comments comments, std::size_t old_sections,
                     std::string* edited) {
  Document found(wanted->file(), std::move(*edited));
  if (!IsSameModel(wanted, &found, comments, old_sections)) {
    throw Error(
        ErrorKind::kFailed, wanted->file(),
        "the edit of " + wanted->file() + " would change more than was asked; nothing was written",
        "this is a fault of quarry-config; please report it");
  }
  *edited = found.TakeText();
}

EditedText ReadBack(Document* wanted, TextEdit edit, Comments comments) {
  std::string edited = ApplyEdit(wanted->text(), edit);
  RequireReadBack(wanted, comments, wanted->Sections().size(), &edited);
  return {std::move(edit), std::move(edited)};
}

// Gives each section of the model the name that `name_for` returns for it, and removes those for
// which it returns none.
void ReviseSections(const std::function<std::optional<std::string>(const std::string&)>& name_for,
                    Document* document) {
  storage::dmconfig::DMConfig* const model = document->model();
  std::vector<std::pair<std::string, SectionOptionMap>> revised;
  for (const std::string& name : document->Sections()) {
    const std::optional<std::string> new_name = name_for(name);
    if (new_name) revised.emplace_back(*new_name, std::move(*model->GetOptionMap(name)));
  }
  model->Reset();
  for (auto& [name, record] : revised) {
    SectionOptionMap* const created = model->GetOptionMap(name);
    if (created == nullptr) throw std::bad_alloc();
    *created = std::move(record);
  }
}

[[noreturn]] void RefuseName(const std::string& file, const std::string& what,
                             const ScannedLine& line) {
  throw Error(ErrorKind::kRefused, file,
              file + " has " + what + " already, in line " + std::to_string(line.number),
              "give another name, or unset one of the two", line.number);
}

}  // namespace

bool IsSameModel(Document* left, Document* right, Comments comments, std::size_t old_sections) {
  const std::list<std::string> sections = left->Sections();
  if (sections != right->Sections()) return false;
  std::size_t number = 0;
  return std::all_of(sections.begin(), sections.end(), [&](const std::string& name) {
    const SectionOptionMap& one = left->Record(name);
    const SectionOptionMap& other = right->Record(name);
    const bool same_comment =
        ++number > old_sections || IsSameComment(one.comment, other.comment, comments);
    return same_comment && IsSameRecord(one, other, comments);
  });
}

EditedText WithSettings(Document* document, const std::vector<Setting>& settings) {
  TextEdit edit = SetOptions(document->text(), settings);
  if (edit.empty()) return {{}, document->text()};
  std::string edited = ApplyEdit(document->text(), edit);
  const std::size_t old_sections = document->Sections().size();
  for (const Setting& setting : settings) {
    const int status =
        document->model()->SetOptionValue(setting.section, setting.option, setting.value);
    if (status != storage::dmconfig::kStatusOk) throw std::bad_alloc();  // names are not empty
  }
  RequireReadBack(document, Comments::kCompared, old_sections, &edited);
  return {std::move(edit), std::move(edited)};
}

EditedText WithoutOption(Document* document, const std::string& section, const std::string& option,
                         bool with_comment) {
  document->model()->DelOption(section, option);
  return ReadBack(document, UnsetOption(document->text(), section, option, with_comment),
                  Comments::kIgnored);
}

EditedText WithoutSection(Document* document, const std::string& section, bool with_comment) {
  ReviseSections(
      [&](const std::string& name) {
        return SameName(name, section) ? std::nullopt : std::optional(name);
      },
      document);
  return ReadBack(document, UnsetSection(document->text(), section, with_comment),
                  Comments::kExtended);
}

EditedText WithSectionRenamed(Document* document, const std::string& section,
                              const std::string& new_name) {
  RequireSectionName(new_name);
  if (!SameName(section, new_name) && document->HasSection(new_name)) {
    RefuseName(document->file(), "a section " + Quoted(new_name),
               FindOrigins(document->text()).at(new_name).header);
  }
  ReviseSections(
      [&](const std::string& name) {
        return std::optional(SameName(name, section) ? new_name : name);
      },
      document);
  return ReadBack(document, RenameSection(document->text(), section, new_name),
                  Comments::kCompared);
}

EditedText WithOptionRenamed(Document* document, const std::string& section,
                             const std::string& option, const std::string& new_name) {
  RequireOptionName(new_name);
  if (!SameName(option, new_name) && document->Has(section, new_name)) {
    RefuseName(document->file(), "an option " + Quoted(new_name) + " in section " + Quoted(section),
               FindOrigins(document->text()).at(section).options.at(new_name));
  }
  auto& options = document->model()->GetOptionMap(section)->option_map;
  auto renamed = options.extract(option);
  renamed.key() = new_name;
  options.insert(std::move(renamed));
  return ReadBack(document, RenameOption(document->text(), section, option, new_name),
                  Comments::kCompared);
}

}  // namespace quarry::settings
