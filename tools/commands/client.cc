// quarry-config client

#include "config/client_config.h"
#include "tools/commands/command.h"
#include "tools/commands/open_document.h"
#include "tools/terminal/json.h"
#include "tools/terminal/standard_streams.h"

namespace quarry::tool {

namespace {

struct ClientRequest {
  std::string file;
  bool json = false;
};

std::string ClientJson(const ClientRequest& request, bool ingest_mode_on) {
  nlohmann::ordered_json document;
  document["schema"] = 1;
  AddText(&document, "file", request.file);
  document["ingest_mode_on"] = ingest_mode_on;
  return JsonText(document);
}

ExitStatus RunClient(const ClientRequest& request) {
  const settings::Document document = OpenDocument(request.file);
  ::storage::config::ClientCfg cfg;
  (void)cfg.SetCfg(document.text());  // cannot fail: the text is valid
  WriteStandardOutput(request.json          ? ClientJson(request, cfg.ingest_mode_on_)
                      : cfg.ingest_mode_on_ ? "ingest_mode = on\n"
                                            : "ingest_mode = off\n");
  return kExitDone;
}

}  // namespace

Declaration DeclareClient() {
  const auto request = std::make_shared<ClientRequest>();
  return {{
              Argument("FILE", ValueKind::kFile, &request->file, "The client's file"),
              Flag("--json", &request->json, "Print it as JSON"),
          },
          BindRequest(request, RunClient)};
}

}  // namespace quarry::tool
