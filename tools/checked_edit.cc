#include "tools/checked_edit.h"

#include <algorithm>
#include <list>
#include <utility>

#include "dmconfig/config.h"
#include "tools/errors.h"
#include "tools/files.h"

namespace quarry::tool {

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

// What stands between a fault of ours and somebody's file.
void DemandReadBack(ModelFile* wanted, const std::string& edited, Comments comments,
                    std::size_t old_sections) {
  ModelFile found(wanted->file(), edited);
  if (IsSameModel(wanted, &found, comments, old_sections)) return;
  throw ToolError(kExitFailed,
                  ErrorReport("the edit of " + DisplayName(wanted->file()) +
                                  " would change more than was asked; nothing was written",
                              "this is a fault of quarry-config; please report it"));
}

}  // namespace

bool IsSameModel(ModelFile* left, ModelFile* right, Comments comments, std::size_t old_sections) {
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

EditedText WithSettings(const std::string& file, std::string text,
                        const std::vector<Setting>& settings) {
  for (const Setting& setting : settings) DemandReadable(setting);
  ModelFile model(file, text);
  TextEdit edit = SetOptions(text, settings);
  if (edit.empty()) return {text, {}, text};
  std::string edited = Applied(text, edit);
  const std::size_t old_sections = model.Sections().size();
  for (const Setting& setting : settings) {
    model.model()->SetOptionValue(setting.section, setting.option, setting.value);
  }
  DemandReadBack(&model, edited, Comments::kCompared, old_sections);
  return {std::move(text), std::move(edit), std::move(edited)};
}

EditedText WithoutOption(const std::string& file, std::string text, const std::string& section,
                         const std::string& option, bool with_comment) {
  ModelFile model(file, text);
  (void)model.GetValue(section, option);  // refuses an absent one
  TextEdit edit = UnsetOption(text, section, option, with_comment);
  std::string edited = Applied(text, edit);
  model.model()->DelOption(section, option);
  DemandReadBack(&model, edited, Comments::kIgnored, 0);
  return {std::move(text), std::move(edit), std::move(edited)};
}

}  // namespace quarry::tool
