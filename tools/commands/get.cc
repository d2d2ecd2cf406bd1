// quarry-config get

#include <optional>

#include "tools/commands/command.h"
#include "tools/commands/open_document.h"
#include "tools/terminal/standard_streams.h"

namespace quarry::tool {

namespace {

struct GetRequest {
  std::string file;
  std::string section;
  std::string option;
  std::optional<std::string> default_text;
};

ExitStatus RunGet(const GetRequest& request) {
  const settings::Snapshot snapshot = OpenSnapshot(request.file);
  const bool use_default =
      request.default_text.has_value() && snapshot.Find(request.section, request.option) == nullptr;
  const std::string_view value =
      use_default ? *request.default_text
                  : RequireOption(request.section, request.option, snapshot).value;
  WriteStandardOutput(std::string(value) + '\n');
  return kExitDone;
}

}  // namespace

Declaration DeclareGet() {
  const auto request = std::make_shared<GetRequest>();
  return {{
              Argument("FILE", ValueKind::kFile, &request->file, "File to read"),
              Argument("SECTION", ValueKind::kSection, &request->section, "Its section"),
              Argument("OPTION", ValueKind::kOption, &request->option, "Its option"),
              Option("--default", "VALUE", ValueKind::kText, &request->default_text,
                     "Show this text when the option is absent"),
          },
          BindRequest(request, RunGet)};
}

}  // namespace quarry::tool
