#include "tools/model_json.h"

#include <utility>

#include "tools/json_text.h"
#include "tools/scan.h"

namespace quarry::tool {

namespace {

nlohmann::ordered_json SectionJson(const std::string& name, const SectionOrigin* origin,
                                   ModelFile* model) {
  const auto& record = model->Record(name);
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

std::string ModelJson(const std::list<std::string>& sections, bool with_lines, ModelFile* model) {
  OriginMap origins;
  if (with_lines) origins = FindOrigins(model->text());
  nlohmann::ordered_json document;
  document["schema"] = 1;
  AddText(&document, "file", model->file());
  document["sections"] = nlohmann::ordered_json::array();
  for (const std::string& name : sections) {
    const SectionOrigin* origin = with_lines ? &origins.at(name) : nullptr;
    document["sections"].push_back(SectionJson(name, origin, model));
  }
  return JsonText(document);
}

}  // namespace quarry::tool
