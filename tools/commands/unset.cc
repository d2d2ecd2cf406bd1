// quarry-config unset

#include "tools/commands/command.h"
#include "tools/commands/edit_target.h"
#include "tools/commands/open_document.h"

namespace quarry::tool {

namespace {

struct UnsetRequest {
  std::string file;
  std::string section;
  std::string option;
  bool with_comment = false;
  bool dry_run = false;
};

ExitStatus RunUnset(const UnsetRequest& request) {
  MakeEdit({request.file, false, request.dry_run}, [&](const std::string& text) {
    settings::Document document = OpenDocument(request.file, text);
    RequireOption(request.section, request.option, &document);
    return settings::WithoutOption(&document, request.section, request.option,
                                   request.with_comment);
  });
  return kExitDone;
}

}  // namespace

Action DeclareUnset(CLI::App* app) {
  const auto request = std::make_shared<UnsetRequest>();
  app->add_option("FILE", request->file, "File to edit")->required();
  app->add_option("SECTION", request->section, "Its section")->required();
  app->add_option("OPTION", request->option, "The option")->required();
  app->add_flag("--with-comment", request->with_comment,
                "Remove also the comment lines directly above it");
  AddDryRun(app, &request->dry_run);
  return BindRequest(request, RunUnset);
}

}  // namespace quarry::tool
