// ClientCfg holds what the storage system's client takes from a configuration
// text: whether its ingest mode is on.
//
//   storage::config::ClientCfg cfg;
//   const int status = cfg.SetCfg("[lynx]\ningest_mode = on\n");
//   if (status == 0 && cfg.ingest_mode_on_) StartIngest();
//
// Statuses are those of dmconfig/status.h. One thread at a time may use a
// ClientCfg; separate objects may be used at the same time.
#ifndef QUARRY_CONFIG_CLIENT_CONFIG_H_
#define QUARRY_CONFIG_CLIENT_CONFIG_H_

#include <string>

#include "dmconfig/config.h"
#include "platform/export.h"

namespace storage::config {

// A client's setting.
class QUARRY_EXPORT ClientCfg {
 public:
  // Takes the setting from `text`: option "ingest_mode" in section "lynx", both
  // in any letter case. The mode is on when the value is exactly "on" and off
  // when it is anything else ("ON", "on" with a carriage return behind it). A
  // text without the option leaves the mode as it was. Returns 0, or what the
  // reader says of a text that it refuses (dmconfig/config_file.h), with its
  // message on std::cerr; the mode stays as it was then. std::bad_alloc passes.
  int SetCfg(const std::string& text);

  // The first step of SetCfg: reads `text` into the caller's `*model`, which is
  // emptied first. Returns -1 when it is null, else what the reader returns.
  int ParseCfg(const std::string& text, quarry::storage::dmconfig::DMConfig* model);

  // The second step: takes the setting from a model, which must not be null,
  // and returns 0. As every look-up it may add the empty section to the model.
  int GetConfigValues(quarry::storage::dmconfig::DMConfig* model);

  // Off until a text turns it on.
  bool ingest_mode_on_ = false;
};

}  // namespace storage::config

#endif  // QUARRY_CONFIG_CLIENT_CONFIG_H_
