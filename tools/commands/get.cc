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
  settings::Document document = OpenDocument(request.file);
  const bool use_default =
      request.default_text.has_value() && !document.Has(request.section, request.option);
  WriteStandardOutput((use_default ? *request.default_text
                                   : RequireOption(request.section, request.option, &document)) +
                      '\n');
  return kExitDone;
}

}  // namespace

Action DeclareGet(CLI::App* app) {
  const auto request = std::make_shared<GetRequest>();
  app->add_option("FILE", request->file, "File to read")->required();
  app->add_option("SECTION", request->section, "Its section")->required();
  app->add_option("OPTION", request->option, "Its option")->required();
  app->add_option("--default", request->default_text, "Show this text when the option is absent")
      ->type_name("VALUE");
  return BindRequest(request, RunGet);
}

}  // namespace quarry::tool
