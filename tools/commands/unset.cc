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
  bool show_secrets = false;
};

ExitStatus RunUnset(const UnsetRequest& request) {
  const EditTarget target = {request.file, false, request.dry_run, request.show_secrets};
  MakeEdit(target, [&](const std::string& text) {
    settings::Document document = OpenDocument(request.file, text);
    RequireOption(request.section, request.option, &document);
    return settings::WithoutOption(&document, request.section, request.option,
                                   request.with_comment);
  });
  return kExitDone;
}

}  // namespace

Declaration DeclareUnset() {
  const auto request = std::make_shared<UnsetRequest>();
  return {{
              Argument("FILE", ValueKind::kFile, &request->file, "File to edit"),
              Argument("SECTION", ValueKind::kSection, &request->section, "Its section"),
              Argument("OPTION", ValueKind::kOption, &request->option, "The option"),
              Flag("--with-comment", &request->with_comment,
                   "Remove also the comment lines directly above it"),
              DryRunFlag(&request->dry_run),
              ShowSecretsFlag(&request->show_secrets),
          },
          BindRequest(request, RunUnset)};
}

}  // namespace quarry::tool
