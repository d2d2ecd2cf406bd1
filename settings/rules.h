// The rules that a text is checked against. Their names are stable: scripts and other programs tell
// findings apart by them.
#ifndef QUARRY_SETTINGS_RULES_H_
#define QUARRY_SETTINGS_RULES_H_

namespace quarry::settings {

enum class Severity { kError, kWarning };

struct Rule {
  Severity severity;
  const char* name;
  const char* meaning;  // of all findings by the rule, without their details
};

constexpr Rule ErrorRule(const char* name, const char* meaning) {
  return {Severity::kError, name, meaning};
}
constexpr Rule WarningRule(const char* name, const char* meaning) {
  return {Severity::kWarning, name, meaning};
}

namespace rules {

// What makes a text invalid.
inline constexpr Rule kHeaderNotClosed =
    ErrorRule("header-not-closed", "section header without \"]\"");
inline constexpr Rule kSectionNameEmpty = ErrorRule("section-name-empty", "section name is empty");
inline constexpr Rule kTextAfterHeader =
    ErrorRule("text-after-header", "text after the section header");
inline constexpr Rule kByteOrderMark = ErrorRule("byte-order-mark", "byte-order mark");
inline constexpr Rule kWideCharacters = ErrorRule("wide-characters", "the text is in UTF-16");
inline constexpr Rule kNoSection = ErrorRule("no-section", "option line before any section");
inline constexpr Rule kNoEquals = ErrorRule("no-equals", "option line without \"=\"");
inline constexpr Rule kOptionNameEmpty = ErrorRule("option-name-empty", "option name is empty");

// What is valid but probably not meant.
inline constexpr Rule kBlanksInSectionName =
    WarningRule("blanks-in-section-name", "blanks belong to the section name");
inline constexpr Rule kColonInName =
    WarningRule("colon-in-name", "this colon is part of the option's name");
inline constexpr Rule kNoContinuation = WarningRule(
    "no-continuation", "this is an option of its own and does not continue the value above");
inline constexpr Rule kRepeatedSection = WarningRule(
    "section-again",
    "repeated section: its comment above the earlier line is dropped when a program saves "
    "this file");
inline constexpr Rule kRepeatedOption =
    WarningRule("option-again", "repeated option: overrides the earlier line");
inline constexpr Rule kBlankValue =
    WarningRule("blank-value", "blanks are the value of this option");
inline constexpr Rule kQuotesInValue =
    WarningRule("quotes-in-value", "the quotes are part of the value");
inline constexpr Rule kCommentInValue =
    WarningRule("comment-in-value", "this is part of the value");
inline constexpr Rule kCarriageReturn =
    WarningRule("carriage-return", "value ends in a carriage return, which is part of it");
inline constexpr Rule kCommentAtEnd = WarningRule(
    "comment-at-end", "comment after the last option is dropped when a program saves this file");

// All of the above.
inline constexpr const Rule* kTextRules[] = {
    &kHeaderNotClosed,     &kSectionNameEmpty, &kTextAfterHeader, &kByteOrderMark,
    &kWideCharacters,      &kNoSection,        &kNoEquals,        &kOptionNameEmpty,
    &kBlanksInSectionName, &kColonInName,      &kNoContinuation,  &kRepeatedSection,
    &kRepeatedOption,      &kBlankValue,       &kQuotesInValue,   &kCommentInValue,
    &kCarriageReturn,      &kCommentAtEnd};

}  // namespace rules

}  // namespace quarry::settings

#endif  // QUARRY_SETTINGS_RULES_H_
