// quarry-config unset

#include <optional>
#include <utility>

#include "tools/commands/command.h"
#include "tools/commands/edit_target.h"
#include "tools/commands/open_document.h"
#include "tools/commands/other_words.h"

namespace quarry::tool {

using settings::EditedText;

namespace {

// An option, or a whole section.
struct UnsetRequest {
  EditTarget target;
  std::string section;
  std::optional<std::string> option;
  bool with_comment = false;
  bool if_present = false;
};

bool IsPresent(const UnsetRequest& request, const settings::Snapshot& snapshot) {
  return request.option ? snapshot.Find(request.section, *request.option) != nullptr
                        : snapshot.FindSection(request.section) != nullptr;
}

EditedText Unset(const UnsetRequest& request, const std::string& text) {
  const settings::Snapshot snapshot = OpenSnapshot(request.target.file, text);
  if (request.if_present && !IsPresent(request, snapshot)) return {{}, text};
  settings::Document document(request.target.file, std::string(text));
  if (!request.option) {
    RequireSection(request.section, snapshot,
                   HintForJoinedNames("unset", {request.target.file, request.section}, 3));
    return settings::WithoutSection(&document, request.section, request.with_comment);
  }
  RequireOption(request.section, *request.option, snapshot);
  return settings::WithoutOption(&document, request.section, *request.option, request.with_comment);
}

ExitStatus RunUnset(const UnsetRequest& request) {
  return MakeEdit(request.target, [&](const std::string& text) { return Unset(request, text); })
      .status;
}

}  // namespace

Declaration DeclareUnset() {
  const auto request = std::make_shared<UnsetRequest>();
  std::vector<Word> words = {
      Argument("FILE", ValueKind::kFile, &request->target.file, "File to edit"),
      Argument("SECTION", ValueKind::kSection, &request->section, "The section"),
      OptionalArgument("OPTION", ValueKind::kOption, &request->option,
                       "Its option; without one the whole section is removed"),
      Flag("--with-comment", &request->with_comment,
           "Remove also the comment lines directly above it"),
      Flag("--if-present", &request->if_present, "Leave a file as it is that does not have it"),
  };
  AddEditWords(&request->target, &words);
  return {std::move(words), BindRequest(request, RunUnset)};
}

}  // namespace quarry::tool
