#include "config/client_config.h"

#include "dmconfig/config_file.h"
#include "dmconfig/status.h"

namespace storage::config {

using quarry::storage::dmconfig::DMConfig;
using quarry::storage::dmconfig::DMConfigFile;
using quarry::storage::dmconfig::kStatusOk;

namespace {

// NOLINTBEGIN(cert-err58-cpp): constructed when the library is loaded, in this order.
const std::string CFG_LYNX("lynx");
const std::string CFG_LYNX_INGEST_MODE("ingest_mode");
const std::string CFG_LYNX_INGEST_MODE_ON("on");
// Never compared: every value other than "on" means off.
[[maybe_unused]] const std::string CFG_LYNX_INGEST_MODE_OFF("off");
// NOLINTEND(cert-err58-cpp)

}  // namespace

int ClientCfg::SetCfg(const std::string& text) {
  DMConfig model;
  const int status = ParseCfg(text, &model);
  return status == kStatusOk ? GetConfigValues(&model) : status;
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static)
int ClientCfg::ParseCfg(const std::string& text, DMConfig* model) {
  return DMConfigFile::LoadText(text, model);
}

int ClientCfg::GetConfigValues(DMConfig* model) {
  std::string value, comment;
  const int status = model->GetOptionValue(CFG_LYNX, CFG_LYNX_INGEST_MODE, &value, &comment);
  if (status == kStatusOk) ingest_mode_on_ = value == CFG_LYNX_INGEST_MODE_ON;
  return kStatusOk;
}

}  // namespace storage::config
