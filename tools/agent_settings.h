// The settings that an agent start takes, and what to do when it fails.
#ifndef QUARRY_TOOLS_AGENT_SETTINGS_H_
#define QUARRY_TOOLS_AGENT_SETTINGS_H_

#include <string>
#include <vector>

#include "platform/cr_runtime.h"
#include "tools/model_file.h"

namespace quarry::tool {

struct AgentSetting {
  const char* accessor;  // the name of AgentCfg's accessor
  std::string section;
  std::string option;
  bool required;
};

// All of them, in the order in which a start looks for them.
const std::vector<AgentSetting>& AgentSettings();
const AgentSetting& AgentSettingOf(const std::string& accessor);

// A problem in one sentence and the remedy.
struct Advice {
  std::string message;
  std::string hint;
};

// About a required setting that the file lacks: where to add it, and the name
// that is there and may have been meant.
Advice AbsentSettingAdvice(const AgentSetting& setting, ModelFile* model);

// Decrypts the file's password as an agent start does; the result is
// DecryptPasswdWithKey's. The settings must be there.
int TryPassword(ModelFile* model);

// Whether the file's key file is one that can be used.
DecryptResult TryKey(ModelFile* model);

// About the result of a failed TryPassword.
Advice PasswordAdvice(int result, ModelFile* model);

// About a failed DecryptResult of our own code, as TryKey's.
Advice AdviceOn(int result, ModelFile* model);

// What to do about a key file that others may read.
std::string OpenKeyHint(const std::string& key_file);

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_AGENT_SETTINGS_H_
