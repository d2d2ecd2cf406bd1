// Promise: an edit changes what was asked and nothing else. Set: the option has
// the value for every reader, all else is as before, at most the line announced
// differs, the same again changes nothing, and unset takes a new option back.
// Unset: the option is gone, all else is as before, and set takes it back. What
// would not be read back is refused, and so is a text that is not valid.
#include <strings.h>

#include <algorithm>

#include "fuzz/reference_reader.h"
#include "fuzz/target.h"
#include "settings/error.h"
#include "settings/verified_edit.h"

namespace quarry::fuzz {

namespace {

using settings::Document;
using settings::Setting;

std::string Set(const std::string& text, const Setting& setting) {
  settings::RequireRoundTrip(setting);
  Document document("f", std::string(text));
  return settings::WithSettings(&document, {setting}).text;
}

std::string Unset(const std::string& text, const Setting& setting, bool with_comment) {
  Document document("f", std::string(text));
  return settings::WithoutOption(&document, setting.section, setting.option, with_comment).text;
}

// Whether a reader of the lines that the writer makes of a setting gets it. A NUL
// comes back, but programs take it for the end of a name or value.
bool ComesBack(const Setting& setting) {
  if ((setting.section + setting.option + setting.value).find('\0') != std::string::npos)
    return false;
  Sections read =
      ReadText('[' + setting.section + "]\n" + setting.option + '=' + setting.value + '\n')
          .sections;
  Section* const section = Find(&read, setting.section);
  const Option* const option =
      section == nullptr ? nullptr : Find(&section->options, setting.option);
  return option != nullptr && option->value == setting.value;
}

// The part of the old text that the edit replaced: all but what both texts begin and end with.
std::string Replaced(const std::string& before, const std::string& after) {
  const auto [old_begin, new_begin] =
      std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const std::string old_rest(old_begin, before.end()), new_rest(new_begin, after.end());
  const auto old_end =
      std::mismatch(old_rest.rbegin(), old_rest.rend(), new_rest.rbegin(), new_rest.rend()).first;
  return {old_rest.begin(), old_end.base()};
}

// Comments may change owner when a line between them goes.
Sections WithoutComments(Sections sections) {
  for (Section& section : sections) {
    section.comment.clear();
    for (Option& option : section.options) option.comment.clear();
  }
  return sections;
}

void Add(std::vector<Option>* options, const Setting& setting) {
  const auto at = std::find_if(options->begin(), options->end(), [&](const Option& option) {
    return strcasecmp(option.name.c_str(), setting.option.c_str()) > 0;
  });
  options->insert(at, {setting.option, setting.value, ""});
}

void RequireRefused(const std::string& text, const Setting& setting, settings::ErrorKind kind) {
  try {
    Set(text, setting);
    Require(false, "what cannot be read back is refused");
  } catch (const settings::Error& error) {
    Require(error.kind == kind, "a refusal says whose fault it is");
  }
}

void TrySet(const std::string& text, const Setting& setting, Sections sections) {
  const std::string edited = Set(text, setting);
  const Reading found = ReadText(edited);
  Require(found.status == 0, "an edited text is valid");

  Section* section = Find(&sections, setting.section);
  const bool is_new_section = section == nullptr;
  if (is_new_section) {  // the comment at the end of the text is above it now
    section = &sections.emplace_back(Section{setting.section, found.sections.back().comment, {}});
  }
  Option* const option = Find(&section->options, setting.option);
  if (option == nullptr) {
    Add(&section->options, setting);
  } else {
    option->value = setting.value;
  }
  Require(found.sections == sections, "set changes the option and nothing else");
  const std::string replaced = Replaced(text, edited);
  Require(replaced.find('\n') == std::string::npos, "at most the option's line differs");
  Require(option != nullptr || replaced.empty(), "a new option changes no other line");
  Require((text.empty() || text.back() == '\n') == (edited.back() == '\n'),
          "the end of the text stays as it was");
  Require(Set(edited, setting) == edited, "the same edit again changes nothing");
  Saw(is_new_section ? "new section" : option == nullptr ? "new option" : "option set");
  if (option == nullptr && !is_new_section) {
    Require(Unset(edited, setting, false) == text, "unset takes a new option back");
  }
}

void TryUnset(const std::string& text, const Setting& setting, bool with_comment,
              Sections sections) {
  // A name that begins with a NUL is the same as this to the order, but it cannot be asked for.
  if (setting.section.empty() || setting.option.empty()) return;
  Section* const section = Find(&sections, setting.section);
  Option* const option = section == nullptr ? nullptr : Find(&section->options, setting.option);
  if (option == nullptr) return;
  const Setting before = {section->name, option->name, option->value};
  const Sections all = WithoutComments(sections);

  const std::string edited = Unset(text, setting, with_comment);
  section->options.erase(section->options.begin() + (option - section->options.data()));
  const Reading found = ReadText(edited);
  Require(found.status == 0, "a text without an option is valid");
  Require(WithoutComments(found.sections) == WithoutComments(sections),
          "unset removes the option and nothing else");
  if (ComesBack(before)) {
    Require(WithoutComments(ReadText(Set(edited, before)).sections) == all, "set takes unset back");
  }
  Saw("option unset");
}

}  // namespace

// Fields: section, option, value, text.
void TryInput(const std::string& input) {
  const std::vector<std::string> fields = Fields(input, 4);
  const Setting setting = {fields[0], fields[1], fields[2]};
  const std::string& text = fields[3];
  const CerrCapture cerr;
  const Reading reading = ReadText(text);
  if (!ComesBack(setting)) {
    Saw("setting refused");
    RequireRefused(text, setting, settings::ErrorKind::kRefused);
  } else if (reading.status != 0) {
    Saw("text refused");
    RequireRefused(text, setting, settings::ErrorKind::kInvalidText);
  }
  if (reading.status != 0) return;
  try {
    TryUnset(text, setting, input.size() % 2 == 0, reading.sections);
    if (ComesBack(setting)) TrySet(text, setting, reading.sections);
  } catch (const settings::Error& error) {
    Require(false, error.what());
  }
}

}  // namespace quarry::fuzz
