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
  return request.json ? ModelJson(model.Sections(), false, &model)
                      : model.DumpText();
}

}  // namespace

int RunDump(const DumpRequest& request) {
  if (!request.output || *request.output == "-") {
    WriteStandardOutput(DumpOf(request));
    return kExitDone;
  }
  // Held before the file is read, for it may be the same one.
  FileEdit output(*request.output, WhenAbsent::kCreate);
  output.Replace(DumpOf(request));
  return kExitDone;
}

}  // namespace quarry::tool
