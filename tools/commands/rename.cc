// quarry-config rename

#include <optional>
#include <utility>

#include "tools/commands/command.h"
#include "tools/commands/edit_target.h"
#include "tools/commands/open_document.h"

namespace quarry::tool {

using settings::Document;
using settings::EditedText;

namespace {

// An option, or a section.
struct RenameRequest {
  EditTarget target;
  std::string section;
  std::optional<std::string> option;
  std::string new_name;
};

EditedText Rename(const RenameRequest& request, const std::string& text) {
  const settings::Snapshot snapshot = OpenSnapshot(request.target.file, text);
  Document document(request.target.file, std::string(text));
  if (!request.option) {
    RequireSection(request.section, snapshot);
    return settings::WithSectionRenamed(&document, request.section, request.new_name);
  }
  RequireOption(request.section, *request.option, snapshot);
  return settings::WithOptionRenamed(&document, request.section, *request.option, request.new_name);
}

ExitStatus RunRename(const RenameRequest& request) {
  return MakeEdit(request.target, [&](const std::string& text) { return Rename(request, text); })
      .status;
}

}  // namespace

Declaration DeclareRename() {
  const auto request = std::make_shared<RenameRequest>();
  std::vector<Word> words = {
      Argument("FILE", ValueKind::kFile, &request->target.file, "File to edit"),
      Argument("SECTION", ValueKind::kSection, &request->section, "The section"),
      OptionalArgument("OPTION", ValueKind::kOption, &request->option,
                       "Its option; without one the section is renamed"),
      Argument("NEW", ValueKind::kText, &request->new_name, "The new name"),
  };
  AddEditWords(&request->target, &words);
  return {std::move(words), BindRequest(request, RunRename)};
}

}  // namespace quarry::tool
