// ClientCfg holds what the storage system's client reads from a configuration text: whether its
// ingest mode is on.
//
//   storage::config::ClientCfg cfg;
//   const int status = cfg.SetCfg("[lynx]\ningest_mode = on\n");
//   if (status == 0 && cfg.ingest_mode_on_) StartIngest();
//
// Statuses are those of dmconfig/status.h. One thread at a time may use a ClientCfg; separate
// objects may be used at the same time.
#ifndef QUARRY_CONFIG_CLIENT_CONFIG_H_
#define QUARRY_CONFIG_CLIENT_CONFIG_H_

#include <string>

#include "../dmconfig/config.h"
#include "../platform/export.h"

namespace storage::config {

// A client's configuration.
class QUARRY_EXPORT ClientCfg {
 public:
  // Reads the setting from `text`: option "ingest_mode" in section "lynx", both in any letter case.
  // The mode is on when the value is exactly "on" and off when it is anything else ("ON", "on"
  // followed by a carriage return). A text without the option leaves the mode unchanged. Returns 0,
  // or the reader's status for a text that it rejects, some with a message on std::cerr
  // (dmconfig/config_file.h); the mode is unchanged then. std::bad_alloc passes through.
  int SetCfg(const std::string& text);

  // The first step of SetCfg: parses `text` into the caller's `*model`, which is emptied first.
  // Returns -1 when it is null, else what the reader returns.
  int ParseCfg(const std::string& text, quarry::storage::dmconfig::DMConfig* model);

  // The second step: reads the setting from a model, which must not be null, and returns 0. Like
  // every look-up it may add the empty section to the model.
  int GetConfigValues(quarry::storage::dmconfig::DMConfig* model);

  // Off until SetCfg or GetConfigValues reads "on".
  bool ingest_mode_on_ = false;
};

}  // namespace storage::config

#endif  // QUARRY_CONFIG_CLIENT_CONFIG_H_
