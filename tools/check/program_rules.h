// The rules for what an agent or a client reads from a text. Their names are as stable as those of
// settings/rules.h.
#ifndef QUARRY_TOOLS_CHECK_PROGRAM_RULES_H_
#define QUARRY_TOOLS_CHECK_PROGRAM_RULES_H_

#include "settings/rules.h"

namespace quarry::tool::rules {

inline constexpr settings::Rule kSettingAbsent =
    settings::ErrorRule("setting-absent", "an agent start fails without this setting");
inline constexpr settings::Rule kPassword =
    settings::ErrorRule("stored-password", "an agent cannot open its stored password");
inline constexpr settings::Rule kKeyFile =
    settings::ErrorRule("key-file", "an agent cannot use its key file");
inline constexpr settings::Rule kKeyFolder =
    settings::WarningRule("key-folder", "another user could exchange the key file of an agent");
inline constexpr settings::Rule kRoutingTable =
    settings::ErrorRule("routing-table", "an agent cannot replace a routing table");
inline constexpr settings::Rule kUnknownSetting =
    settings::WarningRule("unknown-setting", "the program does not use this option");
inline constexpr settings::Rule kSettingEmpty =
    settings::WarningRule("setting-empty", "an agent start uses an empty value here");
inline constexpr settings::Rule kNumber =
    settings::WarningRule("numeric-option", "an agent reads another number than is written here");
inline constexpr settings::Rule kUnknownSection =
    settings::WarningRule("unknown-section", "a client does not use this section");
inline constexpr settings::Rule kSettingOmitted = settings::WarningRule(
    "setting-omitted", "this text does not say whether a client's ingest mode is on");
inline constexpr settings::Rule kIngestMode = settings::WarningRule(
    "ingest-mode", "value is neither \"on\" nor \"off\": a client reads it as off");

// All of the above.
inline constexpr const settings::Rule* kProgramRules[] = {
    &kSettingAbsent,  &kPassword,       &kKeyFile,      &kKeyFolder,
    &kRoutingTable,   &kUnknownSetting, &kSettingEmpty, &kNumber,
    &kUnknownSection, &kSettingOmitted, &kIngestMode};

}  // namespace quarry::tool::rules

#endif  // QUARRY_TOOLS_CHECK_PROGRAM_RULES_H_
