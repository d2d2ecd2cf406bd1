#include "settings/document.h"

#include <new>
#include <utility>

#include "dmconfig/config_file.h"
#include "dmconfig/status.h"
#include "settings/error.h"
#include "settings/text_checks.h"

namespace quarry::settings {

using storage::dmconfig::DMConfigFile;
using storage::dmconfig::kStatusOk;
using storage::dmconfig::LineFault;
using storage::dmconfig::OptionValue;
using storage::dmconfig::SectionOptionMap;

namespace {

// Before the load, which would write the invalid line to std::cerr.
void RequireValid(const std::string& file, const std::string& text) {
  LineScanner scanner(text);
  for (ScannedLine line; scanner.Next(&line);) {
    if (line.fault() == LineFault::kNone) continue;
    for (const Finding& finding : CheckText(text)) {
      if (!finding.IsError()) continue;
      throw Error(ErrorKind::kInvalidText, file, file + " is not valid: " + finding.message, "",
                  finding.line);
    }
  }
}

}  // namespace

Document::Document(std::string file, std::string&& text)
    : file_(std::move(file)), text_((RequireValid(file_, text), std::move(text))) {
  // Nothing but memory is left that a load of a valid text in memory can lack.
  if (DMConfigFile::LoadText(text_, &model_) != kStatusOk) throw std::bad_alloc();
}

std::list<std::string> Document::Sections() {
  std::list<std::string> sections;
  model_.GetSectionList(&sections);
  return sections;
}

std::string Document::StoredName(const std::string& section) {
  if (!HasSection(section)) return "";
  for (const std::string& name : Sections()) {
    if (&Record(name) == &Record(section)) return name;
  }
  return section;
}

std::list<std::string> Document::Options(const std::string& section) {
  std::list<std::string> options;
  if (!HasSection(section)) return options;
  for (const auto& [name, stored] : Record(section).option_map) options.push_back(name);
  return options;
}

bool Document::HasSection(const std::string& section) {
  return model_.HasSection(section) == kStatusOk;
}

bool Document::Has(const std::string& section, const std::string& option) {
  return Find(section, option) != nullptr;
}

const OptionValue* Document::Find(const std::string& section, const std::string& option) {
  if (!HasSection(section) || option.empty()) return nullptr;
  const SectionOptionMap& record = Record(section);
  const auto found = record.option_map.find(option);
  return found == record.option_map.end() ? nullptr : &found->second;
}

const SectionOptionMap& Document::Record(const std::string& section) {
  return *model_.GetOptionMap(section);
}

std::string Document::DumpText() {
  std::string text;
  if (DMConfigFile::DumpText(&model_, &text) != kStatusOk) throw std::bad_alloc();
  return text;
}

}  // namespace quarry::settings
