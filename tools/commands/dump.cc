// quarry-config dump

#include <sys/stat.h>

#include <optional>

#include "tools/commands/command.h"
#include "tools/commands/document_json.h"
#include "tools/commands/edit_target.h"
#include "tools/commands/open_document.h"
#include "tools/terminal/standard_streams.h"

namespace quarry::tool {

namespace {

struct DumpRequest {
  std::string file;
  bool json = false;
  std::optional<std::string> output;  // standard output when there is none
};

std::string DumpOf(const DumpRequest& request) {
  settings::Document document = OpenDocument(request.file);
  return request.json ? DocumentJson(document.Sections(), false, &document) : document.DumpText();
}

// Whoever may not read the file may not read a copy of it, either.
mode_t ModeLike(const std::string& file) {
  struct stat status {};
  const bool found = file != "-" && stat(file.c_str(), &status) == 0;
  return found ? status.st_mode & settings::kUsualMode : settings::kUsualMode;
}

ExitStatus RunDump(const DumpRequest& request) {
  if (!request.output || *request.output == "-") {
    WriteStandardOutput(DumpOf(request));
    return kExitDone;
  }
  // Reading a pipe may block, so it is done before the output is locked. A file may be the output
  // itself, so it is read after that.
  std::optional<std::string> text;
  if (request.file == "-") text = DumpOf(request);
  settings::FileReplacement::Options options;
  options.new_mode = ModeLike(request.file);
  settings::FileReplacement output = OpenForEdit(*request.output, std::move(options));
  output.Replace(text ? *text : DumpOf(request));
  return kExitDone;
}

}  // namespace

Declaration DeclareDump() {
  const auto request = std::make_shared<DumpRequest>();
  return {{
              Argument("FILE", ValueKind::kFile, &request->file, "File to read"),
              Flag("--json", &request->json, "Print it as JSON"),
              Option("-o", "OUT", ValueKind::kFile, &request->output, "Write it to this file"),
          },
          BindRequest(request, RunDump)};
}

}  // namespace quarry::tool
