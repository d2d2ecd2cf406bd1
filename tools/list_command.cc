#include <list>

#include "tools/commands.h"
#include "tools/display.h"
#include "tools/errors.h"
#include "tools/files.h"
#include "tools/model_file.h"
#include "tools/model_json.h"
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

std::string OriginText(const std::list<std::string>& sections, ModelFile* model) {
  const OriginMap origins = FindOrigins(model->text());
  std::string text;
  for (const std::string& section : sections) {
    for (const auto& [name, stored] : model->Record(section).option_map) {
      text += DisplayName(model->file()) + ':' +
              std::to_string(origins.at(section).options.at(name).number) + ": [" + Shown(section) +
              "] " + Shown(name) + " = " + Shown(stored.value) + '\n';
    }
  }
  return text;
}

}  // namespace

int RunList(const ListRequest& request) {
  ModelFile model(request.file);
  const std::list<std::string> sections =
      request.section ? std::list<std::string>{model.StoredName(*request.section)}
                      : model.Sections();
  if (request.json) {
    WriteStandardOutput(ModelJson(sections, request.origin, &model));
  } else if (request.origin) {
    WriteStandardOutput(OriginText(sections, &model));
  } else {
    WriteStandardOutput(NamesText(request, &model));
  }
  return kExitDone;
}

}  // namespace quarry::tool
