#include "tools/commands.h"
#include "tools/errors.h"
#include "tools/files.h"
#include "tools/model_file.h"
#include "tools/model_json.h"

namespace quarry::tool {

int RunDump(const DumpRequest& request) {
  ModelFile model(request.file);
  WriteStandardOutput(request.json ? ModelJson(model.Sections(), false, &model)
                                   : model.DumpText());
  return kExitDone;
}

}  // namespace quarry::tool
