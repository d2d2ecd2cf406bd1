#include "tools/commands.h"
#include "tools/errors.h"
#include "tools/files.h"
#include "tools/model_file.h"

namespace quarry::tool {

int RunGet(const GetRequest& request) {
  ModelFile model(request.file);
  const bool use_default =
      request.default_text.has_value() && !model.Has(request.section, request.option);
  const std::string value =
      use_default ? *request.default_text : model.GetValue(request.section, request.option);
  WriteStandardOutput(value + '\n');
  return kExitDone;
}

}  // namespace quarry::tool
