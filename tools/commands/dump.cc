// quarry-config dump

#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <utility>

#include "settings/differences.h"
#include "settings/file_reading.h"
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
  bool canonical = false;
  std::optional<std::string> output;  // standard output when there is none
};

std::string DumpOf(const DumpRequest& request, std::string text) {
  if (request.json) return DocumentJson(OpenSnapshot(request.file, text), false);
  settings::Document document = OpenDocument(request.file, std::move(text));
  return request.canonical ? settings::CanonicalText(&document) : document.DumpText();
}

mode_t Umask() {
  const mode_t mask = umask(S_IRWXG | S_IRWXO);
  umask(mask);
  return mask;
}

settings::FileReplacement OpenOutput(const DumpRequest& request, mode_t new_mode) {
  settings::FileReplacement::Options options;
  options.new_mode = new_mode;
  return OpenForEdit(*request.output, std::move(options));
}

// Reading a pipe may block, so it is done before the output is locked. A pipe says nothing about
// who may read its text.
void DumpStandardInput(const DumpRequest& request) {
  const std::string dump = DumpOf(request, ReadInput(request.file));
  struct stat status {};
  const bool is_file = fstat(STDIN_FILENO, &status) == 0 && S_ISREG(status.st_mode);
  auto output = OpenOutput(request, is_file ? settings::kPrivateMode : settings::kUsualMode);
  if (is_file) output.CopyAccessOf(STDIN_FILENO, Umask());
  output.Replace(dump);
}

// A file may be the output itself, so it is opened after the output is locked.
void DumpFile(const DumpRequest& request) {
  auto output = OpenOutput(request, settings::kPrivateMode);
  RequireName(request.file);
  platform::FileDescriptor input(-1);
  settings::OpenInput(request.file, &input);
  const std::string dump = DumpOf(request, settings::ReadAll(input.get(), request.file));
  output.CopyAccessOf(input.get(), Umask());
  output.Replace(dump);
}

ExitStatus RunDump(const DumpRequest& request) {
  if (!request.output || *request.output == "-") {
    WriteStandardOutput(DumpOf(request, ReadInput(request.file)));
  } else if (request.file == "-") {
    DumpStandardInput(request);
  } else {
    DumpFile(request);
  }
  return kExitDone;
}

Word CanonicalFlag(bool* canonical) {
  Word word = Flag("--canonical", canonical, "Print what counts for programs, always the same way");
  word.excludes = "--json";
  return word;
}

}  // namespace

Declaration DeclareDump() {
  const auto request = std::make_shared<DumpRequest>();
  return {{
              Argument("FILE", ValueKind::kFile, &request->file, "File to read"),
              Flag("--json", &request->json, "Print it as JSON"),
              CanonicalFlag(&request->canonical),
              Option("-o", "OUT", ValueKind::kFile, &request->output, "Write it to this file"),
          },
          BindRequest(request, RunDump)};
}

}  // namespace quarry::tool
