#include "tools/commands/document_json.h"

#include <utility>

#include "settings/line_scanner.h"
#include "tools/commands/open_document.h"

namespace quarry::tool {

namespace {

// As in a model.
std::string CommentText(std::string_view comment) {
  return comment.empty() ? "" : '\n' + std::string(comment);
}

nlohmann::ordered_json OptionJson(const settings::Option& option, bool with_line) {
  nlohmann::ordered_json json;
  AddText(&json, "name", std::string(option.name));
  AddText(&json, "value", std::string(option.value));
  AddText(&json, "comment", CommentText(option.comment));
  if (with_line) json["line"] = option.line;
  return json;
}

nlohmann::ordered_json SectionJson(const settings::Section& section, bool with_lines) {
  nlohmann::ordered_json json;
  AddText(&json, "name", std::string(section.name));
  AddText(&json, "comment", CommentText(section.comment));
  json["options"] = nlohmann::ordered_json::array();
  for (const settings::Option* const option : SortedOptions(section)) {
    json["options"].push_back(OptionJson(*option, with_lines));
  }
  return json;
}

}  // namespace

nlohmann::ordered_json DocumentEntry(const settings::Snapshot& snapshot, bool with_lines,
                                     const std::optional<std::string>& section) {
  nlohmann::ordered_json json;
  AddText(&json, "file", snapshot.name());
  json["sections"] = nlohmann::ordered_json::array();
  for (const settings::Section& one : snapshot.sections()) {
    if (section && !settings::SameName(one.name, *section)) continue;
    json["sections"].push_back(SectionJson(one, with_lines));
  }
  return json;
}

std::string DocumentJson(const settings::Snapshot& snapshot, bool with_lines,
                         const std::optional<std::string>& section) {
  nlohmann::ordered_json json = {{"schema", 1}};
  json.update(DocumentEntry(snapshot, with_lines, section));
  return JsonText(json);
}

}  // namespace quarry::tool
