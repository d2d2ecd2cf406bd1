// quarry-config list

#include <list>
#include <optional>

#include "settings/line_scanner.h"
#include "tools/check/plain_password.h"
#include "tools/commands/command.h"
#include "tools/commands/document_json.h"
#include "tools/commands/open_document.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Document;

namespace {

struct ListRequest {
  std::string file;
  std::optional<std::string> section;
  bool origin = false;
  bool json = false;
  bool show_secrets = false;
};

std::string NamesText(const ListRequest& request, Document* document) {
  const std::list<std::string> names =
      request.section ? document->Options(*request.section) : document->Sections();
  std::string text;
  for (const std::string& name : names) text += name + '\n';
  return text;
}

std::string OriginText(const std::list<std::string>& sections, bool show_secrets,
                       Document* document) {
  const settings::OriginMap origins = settings::FindOrigins(document->text());
  const std::string file = EscapeForTerminal(InputName(document->file()));
  std::string text;
  for (const std::string& section : sections) {
    for (const auto& [name, stored] : document->Record(section).option_map) {
      const std::string value = show_secrets ? stored.value : RedactedValue(name, stored.value);
      text += file + ':' + std::to_string(origins.at(section).options.at(name).number) + ": [" +
              EscapeForTerminal(section) + "] " + EscapeForTerminal(name) + " = " +
              EscapeForTerminal(value) + '\n';
    }
  }
  return text;
}

ExitStatus RunList(const ListRequest& request) {
  Document document = OpenDocument(request.file);
  if (request.section) RequireSection(*request.section, &document);
  const std::list<std::string> sections =
      request.section ? std::list<std::string>{document.StoredName(*request.section)}
                      : document.Sections();
  if (request.json) {
    WriteStandardOutput(DocumentJson(sections, request.origin, &document));
  } else if (request.origin) {
    WriteStandardOutput(OriginText(sections, request.show_secrets, &document));
  } else {
    WriteStandardOutput(NamesText(request, &document));
  }
  return kExitDone;
}

}  // namespace

Declaration DeclareList() {
  const auto request = std::make_shared<ListRequest>();
  return {
      {
          Argument("FILE", ValueKind::kFile, &request->file, "File to read"),
          OptionalArgument("SECTION", ValueKind::kSection, &request->section,
                           "Show this section only"),
          Flag("--origin", &request->origin, "Show every option with its value and line"),
          Flag("--json", &request->json, "Print sections, options, values and comments as JSON"),
          ShowSecretsFlag(&request->show_secrets),
      },
      BindRequest(request, RunList)};
}

}  // namespace quarry::tool
