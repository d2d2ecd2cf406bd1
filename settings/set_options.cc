#include "settings/set_options.h"

#include <algorithm>
#include <map>
#include <string>
#include <utility>

#include "dmconfig/string_case_cmp.h"
#include "settings/line_scanner.h"

namespace quarry::settings {

using storage::dmconfig::LineKind;
using storage::dmconfig::StringCaseCmp;

namespace {

constexpr std::string_view kBlanks = " \t";

bool IsBlankOnly(std::string_view text) {
  return text.find_first_not_of(kBlanks) == std::string_view::npos;
}

// The blanks of an option line around its name and its "=".
struct LineStyle {
  std::string indentation;
  std::string before_equals = " ";
  std::string after_equals = " ";
};

LineStyle StyleOf(const ScannedLine& line) {
  const auto name_begin = static_cast<std::size_t>(line.option.name.data() - line.raw.data());
  const std::size_t equals = line.raw.find('=', name_begin);
  const std::size_t name_end = name_begin + line.option.name.size();
  LineStyle style = {std::string(line.raw.substr(0, name_begin)),
                     std::string(line.raw.substr(name_end, equals - name_end)), ""};
  if (IsBlankOnly(line.option.value)) {
    if (!style.before_equals.empty()) style.after_equals = " ";
  } else {
    const auto value_begin = static_cast<std::size_t>(line.option.value.data() - line.raw.data());
    style.after_equals = line.raw.substr(equals + 1, value_begin - equals - 1);
  }
  if (!IsBlankOnly(style.indentation)) style.indentation.clear();
  return style;
}

// The rest of an option line from "=" on. A blank without a value after it would be the value.
std::string EqualsAndValue(const LineStyle& style, const std::string& value) {
  return '=' + (IsBlankOnly(value) ? "" : style.after_equals) + value;
}

std::string OptionText(const Setting& setting, const LineStyle& style) {
  return style.indentation + setting.option + style.before_equals +
         EqualsAndValue(style, setting.value);
}

// The option line with another value and otherwise unchanged.
std::string WithValue(const ScannedLine& line, const std::string& value) {
  const std::string_view old = line.option.value;
  const auto begin = static_cast<std::size_t>(old.data() - line.raw.data());
  if (!IsBlankOnly(old) && !IsBlankOnly(value)) {
    return std::string(line.raw.substr(0, begin)) + value +
           std::string(line.raw.substr(begin + old.size()));
  }
  const std::size_t equals = line.raw.rfind('=', begin - 1);
  return std::string(line.raw.substr(0, equals)) + EqualsAndValue(StyleOf(line), value);
}

// A section that settings name.
struct EditedSection {
  std::string name;  // as the first setting spells it
  // The last option of its last part, else the header of that part; number 0 when the text has no
  // such section.
  ScannedLine last;
  std::map<std::string, ScannedLine, StringCaseCmp> options;  // that are set
  std::vector<std::string> added;
};

class SettingEditor {
 public:
  explicit SettingEditor(const std::vector<Setting>& settings);

  TextEdit Edit(std::string_view text);

 private:
  void Scan(std::string_view text);
  void ScanOption(const ScannedLine& line);
  void Set(const Setting& setting);
  void AddLines();
  void AddSection(const EditedSection& section, std::vector<std::string>* end) const;

  const std::vector<Setting>& settings_;
  std::map<std::string, EditedSection, StringCaseCmp> sections_;
  std::vector<EditedSection*> order_;  // of the sections, as they are set
  EditedSection* current_ = nullptr;
  ScannedLine first_option_;  // of the whole text
  ScannedLine last_line_;
  TextEdit edit_;
};

SettingEditor::SettingEditor(const std::vector<Setting>& settings) : settings_(settings) {
  for (const Setting& setting : settings) {
    EditedSection& section = sections_[setting.section];
    section.options[setting.option];
    if (!section.name.empty()) continue;
    section.name = setting.section;
    order_.push_back(&section);
  }
}

TextEdit SettingEditor::Edit(std::string_view text) {
  Scan(text);
  for (const Setting& setting : settings_) Set(setting);
  AddLines();
  std::stable_sort(edit_.begin(), edit_.end(), [](const LineEdit& left, const LineEdit& right) {
    return left.line < right.line;
  });
  return std::move(edit_);
}

void SettingEditor::Scan(std::string_view text) {
  LineScanner scanner(text);
  for (ScannedLine line; scanner.Next(&line); last_line_ = line) {
    if (line.kind == LineKind::kHeader) {
      const auto section = sections_.find(std::string(line.header.name));
      current_ = section == sections_.end() ? nullptr : &section->second;
      if (current_ != nullptr) current_->last = line;
    }
    if (line.kind == LineKind::kOption) ScanOption(line);
  }
}

void SettingEditor::ScanOption(const ScannedLine& line) {
  if (first_option_.number == 0) first_option_ = line;
  if (current_ == nullptr) return;
  current_->last = line;
  const auto option = current_->options.find(std::string(line.option.name));
  if (option != current_->options.end()) option->second = line;
}

void SettingEditor::Set(const Setting& setting) {
  EditedSection& section = sections_[setting.section];
  const ScannedLine& line = section.options[setting.option];
  if (line.number == 0) {
    const bool after_option = section.last.kind == LineKind::kOption;
    const ScannedLine& like = after_option ? section.last : first_option_;
    section.added.push_back(OptionText(setting, like.number == 0 ? LineStyle() : StyleOf(like)));
  } else if (line.option.value != setting.value) {
    edit_.push_back({line.number, 1, {WithValue(line, setting.value)}});
  }
}

void SettingEditor::AddLines() {
  std::vector<std::string> end;  // what comes after the last line
  for (const EditedSection* section : order_) {
    if (section->last.number == 0) {
      AddSection(*section, &end);
    } else if (!section->added.empty()) {
      edit_.push_back({section->last.number + 1, 0, section->added});
    }
  }
  if (!end.empty()) edit_.push_back({last_line_.number + 1, 0, end});
}

void SettingEditor::AddSection(const EditedSection& section, std::vector<std::string>* end) const {
  const bool is_separated =  // by a blank line, or first of all
      end->empty() && last_line_.kind == LineKind::kBlank;
  if (!is_separated) end->emplace_back();
  end->push_back('[' + section.name + ']');
  end->insert(end->end(), section.added.begin(), section.added.end());
}

}  // namespace

TextEdit SetOptions(std::string_view text, const std::vector<Setting>& settings) {
  return SettingEditor(settings).Edit(text);
}

}  // namespace quarry::settings
