#include "dmconfig/config.h"

#include "dmconfig/option_store.h"
#include "dmconfig/status.h"

namespace quarry::storage::dmconfig {

DMConfig::~DMConfig() { Reset(); }

void DMConfig::Reset() {
  records_.clear();
  section_map_.clear();
  section_list_.clear();
}

SectionOptionMap* DMConfig::GetOptionMap(const std::string& section) {
  const auto at = section_map_.lower_bound(section);
  if (at != section_map_.end() && !StringCaseCmp()(section, at->first)) {
    return at->second;
  }
  try {
    std::forward_list<SectionOptionMap> record(1);
    std::list<std::string> name(1, section);
    section_map_.emplace_hint(at, section, &record.front());
    // Cannot throw, so all three always have the same sections.
    section_list_.splice(section_list_.end(), name);
    records_.splice_after(records_.before_begin(), record);
    return &records_.front();
  } catch (...) {
    return nullptr;
  }
}

int DMConfig::HasSection(const std::string& section) {
  if (section.empty()) return kStatusInvalidArgument;
  const bool found = section_map_.find(section) != section_map_.end();
  return found ? kStatusOk : kStatusNoSuchSection;
}

int DMConfig::GetSectionList(std::list<std::string>* sections) {
  if (sections == nullptr) return kStatusInvalidArgument;
  *sections = section_list_;
  return kStatusOk;
}

int DMConfig::GetSectionComment(const std::string& section, std::string* comment) {
  if (section.empty() || comment == nullptr) return kStatusInvalidArgument;
  const SectionOptionMap* record = GetOptionMap(section);
  if (record == nullptr) return kStatusOutOfMemory;
  *comment = record->comment;
  return kStatusOk;
}

int DMConfig::SetSectionComment(const std::string& section, const std::string& comment) {
  if (section.empty()) return kStatusInvalidArgument;
  SectionOptionMap* record = GetOptionMap(section);
  if (record == nullptr) return kStatusOutOfMemory;
  record->comment = comment;
  return kStatusOk;
}

int DMConfig::DelSectionComment(const std::string& section) {
  if (section.empty()) return kStatusInvalidArgument;
  SectionOptionMap* record = GetOptionMap(section);
  if (record != nullptr) record->comment.clear();
  return kStatusOk;
}

int DMConfig::SetOptionValue(const std::string& section, const std::string& option,
                             const std::string& value) {
  if (section.empty() || option.empty()) return kStatusInvalidArgument;
  SectionOptionMap* record = GetOptionMap(section);
  if (record == nullptr) return kStatusOutOfMemory;
  FindOrAddOption(record, option).value = value;
  return kStatusOk;
}

int DMConfig::SetOptionValue(const std::string& section, const std::string& option,
                             const std::string& value, const std::string& comment) {
  if (section.empty() || option.empty()) return kStatusInvalidArgument;
  SectionOptionMap* record = GetOptionMap(section);
  if (record == nullptr) return kStatusOutOfMemory;
  StoreValueAndComment(&FindOrAddOption(record, option), value, comment);
  return kStatusOk;
}

int DMConfig::SetOptionComment(const std::string& section, const std::string& option,
                               const std::string& comment) {
  if (section.empty() || option.empty()) return kStatusInvalidArgument;
  SectionOptionMap* record = GetOptionMap(section);
  if (record == nullptr) return kStatusOutOfMemory;
  FindOrAddOption(record, option).comment = comment;
  return kStatusOk;
}

int DMConfig::GetOptionValue(const std::string& section, const std::string& option,
                             std::string* value, std::string* comment) {
  if (section.empty() || option.empty()) return kStatusInvalidArgument;
  if (value == nullptr || comment == nullptr) return kStatusInvalidArgument;
  const SectionOptionMap* record = GetOptionMap(section);
  if (record == nullptr) return kStatusOutOfMemory;

  const auto found = record->option_map.find(option);
  if (found == record->option_map.end()) return kStatusNoSuchOption;
  *value = found->second.value;
  *comment = found->second.comment;
  return kStatusOk;
}

int DMConfig::GetSectionOptionList(const std::string& section, std::string* comment,
                                   std::list<std::string>* options) {
  if (section.empty()) return kStatusInvalidArgument;
  if (comment == nullptr || options == nullptr) return kStatusInvalidArgument;
  const SectionOptionMap* record = GetOptionMap(section);
  if (record == nullptr) return kStatusOutOfMemory;

  *comment = record->comment;
  // What the list has is reused.
  auto next = options->begin();
  for (const auto& [name, stored] : record->option_map) {
    if (next != options->end()) {
      *next++ = name;
    } else {
      options->push_back(name);
    }
  }
  options->erase(next, options->end());
  return kStatusOk;
}

int DMConfig::DelOption(const std::string& section, const std::string& option) {
  if (section.empty() || option.empty()) return kStatusInvalidArgument;
  SectionOptionMap* record = GetOptionMap(section);
  if (record != nullptr) record->option_map.erase(option);
  return kStatusOk;
}

int DMConfig::DelOptionComment(const std::string& section, const std::string& option) {
  if (section.empty() || option.empty()) return kStatusInvalidArgument;
  SectionOptionMap* record = GetOptionMap(section);
  if (record == nullptr) return kStatusOk;

  const auto found = record->option_map.find(option);
  if (found != record->option_map.end()) found->second.comment.clear();
  return kStatusOk;
}

}  // namespace quarry::storage::dmconfig
