#include "config/client_config.h"
#include "tools/commands.h"
#include "tools/errors.h"
#include "tools/files.h"
#include "tools/json_text.h"
#include "tools/model_file.h"

namespace quarry::tool {

int RunClient(const ClientRequest& request) {
  const ModelFile model(request.file);  // or throws: the text is not valid
  ::storage::config::ClientCfg cfg;
  (void)cfg.SetCfg(model.text());
  if (!request.json) {
    WriteStandardOutput(std::string("ingest_mode = ") + (cfg.ingest_mode_on_ ? "on\n" : "off\n"));
    return kExitDone;
  }
  nlohmann::ordered_json document;
  document["schema"] = 1;
  AddText(&document, "file", request.file);
  document["ingest_mode_on"] = cfg.ingest_mode_on_;
  WriteStandardOutput(JsonText(document));
  return kExitDone;
}

}  // namespace quarry::tool
