#include "settings/verified_edit.h"

#include <algorithm>
#include <list>
#include <utility>

#include "dmconfig/config.h"
#include "settings/error.h"
#include "settings/removals.h"
#include "settings/set_options.h"

namespace quarry::settings {

using storage::dmconfig::SectionOptionMap;

namespace {

bool IsSameRecord(const SectionOptionMap& left, const SectionOptionMap& right, Comments comments) {
  return std::equal(
      left.option_map.begin(), left.option_map.end(), right.option_map.begin(),
      right.option_map.end(), [comments](const auto& one, const auto& other) {
        return one.first == other.first && one.second.value == other.second.value &&
               (comments == Comments::kIgnored || one.second.comment == other.second.comment);
      });
}

// The last check before a text is written: refuses an edit that does not read back as intended.
void RequireReadBack(Document* wanted, const std::string& edited, Comments comments,
                     std::size_t old_sections) {
  Document found(wanted->file(), std::string(edited));
  if (IsSameModel(wanted, &found, comments, old_sections)) return;
  throw Error(
      ErrorKind::kFailed, wanted->file(),
      "the edit of " + wanted->file() + " would change more than was asked; nothing was written",
      "this is a fault of quarry-config; please report it");
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
        comments == Comments::kIgnored || ++number > old_sections || one.comment == other.comment;
    return same_comment && IsSameRecord(one, other, comments);
  });
}

EditedText WithSettings(Document* document, const std::vector<Setting>& settings) {
  TextEdit edit = SetOptions(document->text(), settings);
  if (edit.empty()) return {{}, document->text()};
  std::string edited = ApplyEdit(document->text(), edit);
  const std::size_t old_sections = document->Sections().size();
  for (const Setting& setting : settings) {
    document->model()->SetOptionValue(setting.section, setting.option, setting.value);
  }
  RequireReadBack(document, edited, Comments::kCompared, old_sections);
  return {std::move(edit), std::move(edited)};
}

EditedText WithoutOption(Document* document, const std::string& section, const std::string& option,
                         bool with_comment) {
  TextEdit edit = UnsetOption(document->text(), section, option, with_comment);
  std::string edited = ApplyEdit(document->text(), edit);
  document->model()->DelOption(section, option);
  RequireReadBack(document, edited, Comments::kIgnored, 0);
  return {std::move(edit), std::move(edited)};
}

}  // namespace quarry::settings
