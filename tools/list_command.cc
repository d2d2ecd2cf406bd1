#include <list>

#include "tools/commands.h"
#include "tools/display.h"
#include "tools/errors.h"
#include "tools/files.h"
#include "tools/json_text.h"
#include "tools/model_file.h"
#include "tools/scan.h"

namespace quarry::tool {

namespace {

std::string NamesText(const ListRequest& request, ModelFile* model) {
  const std::list<std::string> names =
      request.section ? model->Options(*request.section) : model->Sections();
  std::string text;
  for (const std::string& name : names) text += name + '\n';
  return text;
}

std::string OriginText(const std::list<std::string>& sections,
                       ModelFile* model) {
  const OriginMap origins = FindOrigins(model->text());
  std::string text;
  for (const std::string& section : sections) {
    for (const auto& [name, stored] : model->Record(section).option_map) {
      text += DisplayName(model->file()) + ':' +
              std::to_string(origins.at(section).options.at(name).number) +
              ": [" + Shown(section) + "] " + Shown(name) + " = " +
              Shown(stored.value) + '\n';
    }
  }
  return text;
}

nlohmann::ordered_json SectionJson(const std::string& name,
                                   const SectionOrigin* origin,
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

std::string ModelJson(const ListRequest& request,
                      const std::list<std::string>& sections,
                      ModelFile* model) {
  OriginMap origins;
  if (request.origin) origins = FindOrigins(model->text());
  nlohmann::ordered_json document;
  document["schema"] = 1;
  AddText(&document, "file", model->file());
  document["sections"] = nlohmann::ordered_json::array();
  for (const std::string& name : sections) {
    const SectionOrigin* origin = request.origin ? &origins.at(name) : nullptr;
    document["sections"].push_back(SectionJson(name, origin, model));
  }
  return JsonText(document);
}

}  // namespace

int RunList(const ListRequest& request) {
  ModelFile model(request.file);
  const std::list<std::string> sections =
      request.section
          ? std::list<std::string>{model.StoredName(*request.section)}
          : model.Sections();
  if (request.json) {
    WriteStandardOutput(ModelJson(request, sections, &model));
  } else if (request.origin) {
    WriteStandardOutput(OriginText(sections, &model));
  } else {
    WriteStandardOutput(NamesText(request, &model));
  }
  return kExitDone;
}

}  // namespace quarry::tool
