// Promise: an edit changes what was asked and nothing else. Set: the option has
// the value for every reader, all else is as before, at most the line announced
// differs, the same again changes nothing, and unset takes a new option back.
// Unset: the option or section is gone, all else is as before, no line changes,
// and set takes an option back. Rename: the name is another one, all else is as
// before, and the old name takes it back. What would not be read back is refused,
// and so are a name that is in use and a text that is not valid.
#include <strings.h>

#include <algorithm>
#include <sstream>

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

std::string UnsetSection(const std::string& text, const std::string& section, bool with_comment) {
  Document document("f", std::string(text));
  return settings::WithoutSection(&document, section, with_comment).text;
}

std::string RenameSection(const std::string& text, const std::string& section,
                          const std::string& wanted) {
  Document document("f", std::string(text));
  return settings::WithSectionRenamed(&document, section, wanted).text;
}

std::string RenameOption(const std::string& text, const Setting& setting,
                         const std::string& wanted) {
  Document document("f", std::string(text));
  return settings::WithOptionRenamed(&document, setting.section, setting.option, wanted).text;
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

void Add(std::vector<Option>* options, const Option& added) {
  const auto at = std::find_if(options->begin(), options->end(), [&](const Option& option) {
    return strcasecmp(option.name.c_str(), added.name.c_str()) > 0;
  });
  options->insert(at, added);
}

template <typename Edit>
void RequireRefused(Edit edit, settings::ErrorKind kind) {
  try {
    edit();
    Require(false, "what cannot be read back is refused");
  } catch (const settings::Error& error) {
    Require(error.kind == kind, "a refusal says whose fault it is");
  }
}

bool EndsIn(const std::string& text, const std::string& end) {
  return text.size() >= end.size() && std::equal(end.rbegin(), end.rend(), text.rbegin());
}

// Requires that the edited text has lines of the other one only, in their order.
void RequireFewerLines(const std::string& text, const std::string& edited) {
  std::istringstream before(text), after(edited);
  for (std::string line, other; std::getline(after, line);) {
    do {
      Require(static_cast<bool>(std::getline(before, other)), "unset changes no other line");
    } while (line != other);
  }
}

bool EndsInBlankLine(std::string text) {
  if (!text.empty() && text.back() == '\n') text.pop_back();
  return text.find_first_not_of(" \t\r", text.rfind('\n') + 1) == std::string::npos;
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
    Add(&section->options, {setting.option, setting.value, ""});
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
  if (is_new_section && !EndsInBlankLine(text)) {
    Require(UnsetSection(edited, setting.section, false) == text, "unset takes a new section back");
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
  RequireFewerLines(text, edited);
  if (ComesBack(before)) {
    Require(WithoutComments(ReadText(Set(edited, before)).sections) == all, "set takes unset back");
  }
  Saw("option unset");
}

void TryUnsetSection(const std::string& text, const std::string& name, bool with_comment,
                     Sections sections) {
  Section* const section = name.empty() ? nullptr : Find(&sections, name);
  if (section == nullptr) return;
  sections.erase(sections.begin() + (section - sections.data()));

  const std::string edited = UnsetSection(text, name, with_comment);
  const Reading found = ReadText(edited);
  Require(found.status == 0, "a text without a section is valid");
  // Comments above the section that stay are now above the next one.
  for (std::size_t i = 0; i < std::min(sections.size(), found.sections.size()); ++i) {
    Require(EndsIn(found.sections[i].comment, sections[i].comment), "sections keep their comments");
    sections[i].comment = found.sections[i].comment;
  }
  Require(found.sections == sections, "unset removes the section and nothing else");
  RequireFewerLines(text, edited);
  Saw("section unset");
}

void TryRenameSection(const std::string& text, const std::string& section_name,
                      const std::string& new_name, Sections sections) {
  Section* const section = section_name.empty() ? nullptr : Find(&sections, section_name);
  if (section == nullptr) return;
  const Section* const namesake = Find(&sections, new_name);
  if (!ComesBack({new_name, "o", ""}) || (namesake != nullptr && namesake != section)) {
    RequireRefused([&] { RenameSection(text, section_name, new_name); },
                   settings::ErrorKind::kRefused);
    return;
  }
  const std::string edited = RenameSection(text, section_name, new_name);
  const std::string old_name = section->name;
  section->name = new_name;
  Require(ReadText(edited).sections == sections, "rename changes the section's name alone");
  if (!ComesBack({old_name, "o", ""})) return;
  Require(RenameSection(edited, new_name, old_name) == RenameSection(text, section_name, old_name),
          "the section's old name takes a rename back");
  Saw("section renamed");
}

void TryRenameOption(const std::string& text, const Setting& setting, const std::string& new_name,
                     Sections sections) {
  if (setting.section.empty() || setting.option.empty()) return;
  Section* const section = Find(&sections, setting.section);
  Option* const option = section == nullptr ? nullptr : Find(&section->options, setting.option);
  if (option == nullptr) return;
  const Option* const namesake = Find(&section->options, new_name);
  if (!ComesBack({"s", new_name, ""}) || (namesake != nullptr && namesake != option)) {
    RequireRefused([&] { RenameOption(text, setting, new_name); }, settings::ErrorKind::kRefused);
    return;
  }
  const std::string edited = RenameOption(text, setting, new_name);
  const Option renamed = {new_name, option->value, option->comment};
  const Setting old = {section->name, option->name, ""}, current = {section->name, new_name, ""};
  section->options.erase(section->options.begin() + (option - section->options.data()));
  Add(&section->options, renamed);
  Require(ReadText(edited).sections == sections, "rename changes the option's name alone");
  if (!ComesBack({"s", old.option, ""})) return;
  Require(RenameOption(edited, current, old.option) == RenameOption(text, setting, old.option),
          "the option's old name takes a rename back");
  Saw("option renamed");
}

}  // namespace

// Fields: section, option, value or new name, text.
void TryInput(const std::string& input) {
  const std::vector<std::string> fields = Fields(input, 4);
  const Setting setting = {fields[0], fields[1], fields[2]};
  const std::string& text = fields[3];
  const CerrCapture cerr;
  const Reading reading = ReadText(text);
  if (!ComesBack(setting)) {
    Saw("setting refused");
    RequireRefused([&] { Set(text, setting); }, settings::ErrorKind::kRefused);
  } else if (reading.status != 0) {
    Saw("text refused");
    RequireRefused([&] { Set(text, setting); }, settings::ErrorKind::kInvalidText);
  }
  if (reading.status != 0) return;
  try {
    const bool with_comment = input.size() % 2 == 0;
    TryUnset(text, setting, with_comment, reading.sections);
    TryUnsetSection(text, setting.section, with_comment, reading.sections);
    TryRenameSection(text, setting.section, setting.value, reading.sections);
    TryRenameOption(text, setting, setting.value, reading.sections);
    if (ComesBack(setting)) TrySet(text, setting, reading.sections);
  } catch (const settings::Error& error) {
    Require(false, error.what());
  }
}

}  // namespace quarry::fuzz
