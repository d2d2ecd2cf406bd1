// quarry-config list

#include <unistd.h>

#include <optional>
#include <utility>

#include "settings/line_scanner.h"
#include "tools/check/plain_password.h"
#include "tools/commands/command.h"
#include "tools/commands/document_json.h"
#include "tools/commands/many_files.h"
#include "tools/commands/open_document.h"
#include "tools/terminal/json.h"
#include "tools/terminal/standard_streams.h"
#include "tools/terminal/terminal_text.h"

namespace quarry::tool {

using settings::Snapshot;

namespace {

struct ListRequest {
  std::string file;
  std::optional<std::string> section;  // or the second file
  std::vector<std::string> more_files;
  bool origin = false;
  bool json = false;
  bool show_secrets = false;
};

std::string NamesText(const ListRequest& request, const Snapshot& snapshot) {
  std::string text;
  const auto add = [&text](std::string_view name) { text.append(name).append(1, '\n'); };
  if (request.section) {
    for (const auto* option : SortedOptions(*snapshot.FindSection(*request.section))) {
      add(option->name);
    }
  } else {
    for (const settings::Section& section : snapshot.sections()) add(section.name);
  }
  return text;
}

// Every option of the file with its line, or those of one section.
std::string OriginText(const ListRequest& request, const Snapshot& snapshot,
                       const std::optional<std::string>& section_name) {
  const std::string file = EscapeForTerminal(InputName(snapshot.name()));
  std::string text;
  for (const settings::Section& section : snapshot.sections()) {
    if (section_name && !settings::SameName(section.name, *section_name)) continue;
    const std::string header = ": [" + EscapeForTerminal(section.name) + "] ";
    for (const settings::Option* option : SortedOptions(section)) {
      const std::string name(option->name), value(option->value);
      text.append(file).append(1, ':').append(std::to_string(option->line)).append(header);
      text.append(EscapeForTerminal(name)).append(" = ");
      text.append(EscapeForTerminal(request.show_secrets ? value : RedactedValue(name, value)));
      text += '\n';
    }
  }
  return text;
}

ExitStatus ListFile(const ListRequest& request, const Snapshot& snapshot) {
  if (request.section) RequireSection(*request.section, snapshot);
  if (request.json) {
    WriteStandardOutput(DocumentJson(snapshot, request.origin, request.section));
  } else {
    WriteStandardOutput(request.origin ? OriginText(request, snapshot, request.section)
                                       : NamesText(request, snapshot));
  }
  return kExitDone;
}

// `first_text` is that of the first file if it has been read.
ExitStatus ListFiles(const ListRequest& request, std::optional<std::string> first_text) {
  std::vector<std::string> files = {request.file, *request.section};
  files.insert(files.end(), request.more_files.begin(), request.more_files.end());
  RequireOneStandardInput(files);
  std::string text;
  nlohmann::ordered_json json = {{"schema", 1}, {"files", nlohmann::ordered_json::array()}};
  Progress progress("files read", files.size());
  const std::size_t failed = ForEachFile(
      files, &progress,
      [&](const std::string& file) {
        const auto read_before = std::exchange(first_text, std::nullopt);
        const Snapshot snapshot = OpenSnapshot(file, read_before ? *read_before : ReadInput(file));
        if (request.json) {
          json["files"].push_back(DocumentEntry(snapshot, true));
        } else {
          text += OriginText(request, snapshot, std::nullopt);
        }
      },
      [&](const std::string& file, const settings::Error& error) {
        if (request.json) json["files"].push_back(FailedFileJson(file, error));
      });
  WriteStandardOutput(request.json ? JsonText(json) : text);
  return failed > 0 ? kExitFailed : kExitDone;
}

bool HasHeader(const std::string& text, const std::string& section) {
  settings::LineScanner scanner(text);
  for (settings::ScannedLine line; scanner.Next(&line);) {
    if (line.kind == storage::dmconfig::LineKind::kHeader &&
        settings::SameName(line.header.name, section)) {
      return true;
    }
  }
  return false;
}

// Whether the second word names a file, and no section of the first. The text of the first is kept,
// for a pipe can be read only once.
bool IsSecondFile(const ListRequest& request, std::optional<std::string>* first_text) {
  const std::string& word = *request.section;
  if (word != "-" && access(word.c_str(), F_OK) != 0) return false;
  try {
    *first_text = ReadInput(request.file);
  } catch (const settings::Error&) {
    return true;  // the failure is reported when the file's turn comes
  }
  return !HasHeader(**first_text, word);
}

ExitStatus RunList(const ListRequest& request) {
  std::optional<std::string> text;
  const bool has_second_word = request.origin && request.section;
  if (!request.more_files.empty() || (has_second_word && IsSecondFile(request, &text))) {
    return ListFiles(request, std::move(text));
  }
  return ListFile(request, OpenSnapshot(request.file, text ? *text : ReadInput(request.file)));
}

Word MoreFiles(std::vector<std::string>* files) {
  Word word = RepeatedArgument("FILES", ValueKind::kFile, files,
                               "More files, with --origin; SECTION may be one then");
  word.required = false;
  word.needs = "--origin";
  return word;
}

}  // namespace

Declaration DeclareList() {
  const auto request = std::make_shared<ListRequest>();
  return {
      {
          Argument("FILE", ValueKind::kFile, &request->file, "File to read"),
          OptionalArgument("SECTION", ValueKind::kSection, &request->section,
                           "Show this section only"),
          MoreFiles(&request->more_files),
          Flag("--origin", &request->origin, "Show every option with its value and line"),
          Flag("--json", &request->json, "Print sections, options, values and comments as JSON"),
          ShowSecretsFlag(&request->show_secrets),
      },
      BindRequest(request, RunList)};
}

}  // namespace quarry::tool
