// The rules that check knows. Their names are part of what the program
// promises: scripts and other programs tell findings apart by them.
#ifndef QUARRY_TOOLS_RULES_H_
#define QUARRY_TOOLS_RULES_H_

namespace quarry::tool {

enum class Severity { kError, kWarning };

struct Rule {
  Severity severity;
  const char* name;
  const char* meaning;  // of all findings by the rule, without their details
};

namespace rules {

// What makes a text invalid.
inline constexpr Rule kHeaderNotClosed = {Severity::kError, "header-not-closed",
                                          "section header without \"]\""};
inline constexpr Rule kSectionNameEmpty = {Severity::kError, "section-name-empty",
                                           "section name is empty"};
inline constexpr Rule kTextAfterHeader = {Severity::kError, "text-after-header",
                                          "text after the section header"};
inline constexpr Rule kByteOrderMark = {Severity::kError, "byte-order-mark", "byte-order mark"};
inline constexpr Rule kNoSection = {Severity::kError, "no-section",
                                    "option line before any section"};
inline constexpr Rule kNoEquals = {Severity::kError, "no-equals", "option line without \"=\""};
inline constexpr Rule kOptionNameEmpty = {Severity::kError, "option-name-empty",
                                          "option name is empty"};

// What is valid but probably not meant.
inline constexpr Rule kBlanksInSectionName = {Severity::kWarning, "blanks-in-section-name",
                                              "blanks belong to the section name"};
inline constexpr Rule kSectionAgain = {
    Severity::kWarning, "section-again",
    "section again: its comment above the earlier line is dropped when a "
    "program saves this file"};
inline constexpr Rule kOptionAgain = {Severity::kWarning, "option-again",
                                      "option again: overrides the earlier line"};
inline constexpr Rule kBlankValue = {Severity::kWarning, "blank-value",
                                     "blanks are the value of this option"};
inline constexpr Rule kCommentInValue = {Severity::kWarning, "comment-in-value",
                                         "this is part of the value"};
inline constexpr Rule kCarriageReturn = {Severity::kWarning, "carriage-return",
                                         "value ends in a carriage return, which the agent sees"};
inline constexpr Rule kCommentAtEnd = {
    Severity::kWarning, "comment-at-end",
    "comment after the last option is dropped when a program saves this file"};

// What an agent or a client would not take as it is written.
inline constexpr Rule kSettingAbsent = {Severity::kError, "setting-absent",
                                        "an agent start fails without this setting"};
inline constexpr Rule kPassword = {Severity::kError, "stored-password",
                                   "an agent cannot open its stored password"};
inline constexpr Rule kKeyFile = {Severity::kError, "key-file", "an agent cannot use its key file"};
inline constexpr Rule kUnknownSetting = {Severity::kWarning, "unknown-setting",
                                         "an agent start does not take this option"};
inline constexpr Rule kNumber = {Severity::kWarning, "numeric-option",
                                 "an agent takes another number than is written here"};
inline constexpr Rule kIngestMode = {Severity::kWarning, "ingest-mode",
                                     "value is neither \"on\" nor \"off\": a client takes off"};

}  // namespace rules

}  // namespace quarry::tool

#endif  // QUARRY_TOOLS_RULES_H_
