#include <sys/stat.h>

#include <optional>
#include <string>

#include "tools/commands.h"
#include "tools/errors.h"
#include "tools/file_edit.h"
#include "tools/files.h"
#include "tools/model_file.h"
#include "tools/model_json.h"

namespace quarry::tool {

namespace {

std::string DumpOf(const DumpRequest& request) {
  ModelFile model(request.file);
  return request.json ? ModelJson(model.Sections(), false, &model) : model.DumpText();
}

// A copy of what others may not read they may not read either.
mode_t ModeLike(const std::string& file) {
  struct stat status {};
  const bool found = file != "-" && stat(file.c_str(), &status) == 0;
  return found ? status.st_mode & kUsualMode : kUsualMode;
}

}  // namespace

int RunDump(const DumpRequest& request) {
  if (!request.output || *request.output == "-") {
    WriteStandardOutput(DumpOf(request));
    return kExitDone;
  }
  // A pipe may take its time; a file may be the output, which is held before it
  // is read.
  std::optional<std::string> text;
  if (request.file == "-") text = DumpOf(request);
  FileEdit output(*request.output, ModeLike(request.file));
  output.Replace(text ? *text : DumpOf(request));
  return kExitDone;
}

}  // namespace quarry::tool
