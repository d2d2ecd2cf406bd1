#include "tools/commands/document_json.h"

#include <utility>

#include "settings/line_scanner.h"

namespace quarry::tool {

namespace {

nlohmann::ordered_json SectionJson(const std::string& name, const settings::SectionOrigin* origin,
                                   settings::Document* document) {
  const auto& record = document->Record(name);
  nlohmann::ordered_json section;
  AddText(&section, "name", name);
  AddText(&section, "comment", record.comment);
  section["options"] = nlohmann::ordered_json::array();
  for (const auto& [option_name, stored] : record.option_map) {
    nlohmann::ordered_json option;
    AddText(&option, "name", option_name);
    AddText(&option, "value", stored.value);
    AddText(&option, "comment", stored.comment);
    if (origin != nullptr) {
      option["line"] = origin->options.at(option_name).number;
    }
    section["options"].push_back(std::move(option));
  }
  return section;
}

}  // namespace

nlohmann::ordered_json DocumentEntry(const std::list<std::string>& sections, bool with_lines,
                                     settings::Document* document) {
  settings::OriginMap origins;
  if (with_lines) origins = settings::FindOrigins(document->text());
  nlohmann::ordered_json json;
  AddText(&json, "file", document->file());
  json["sections"] = nlohmann::ordered_json::array();
  for (const std::string& name : sections) {
    const settings::SectionOrigin* origin = with_lines ? &origins.at(name) : nullptr;
    json["sections"].push_back(SectionJson(name, origin, document));
  }
  return json;
}

std::string DocumentJson(const std::list<std::string>& sections, bool with_lines,
                         settings::Document* document) {
  nlohmann::ordered_json json = {{"schema", 1}};
  json.update(DocumentEntry(sections, with_lines, document));
  return JsonText(json);
}

}  // namespace quarry::tool
