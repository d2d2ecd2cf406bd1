#include "fuzz/reference_reader.h"

#include <algorithm>
#include <list>
#include <utility>

namespace quarry::fuzz {

namespace {

std::string Trimmed(const std::string& text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string::npos) return text;
  return text.substr(first, text.find_last_not_of(" \t") + 1 - first);
}

bool ComesBefore(const Option& left, const Option& right) {
  return strcasecmp(left.name.c_str(), right.name.c_str()) < 0;
}

// The part of a line that the machine is in.
enum class In { kMargin, kComment, kSectionName, kHeaderEnd, kOptionName, kValue };

class Machine {
 public:
  Reading Run(const std::string& text) {
    for (const char c : text) {
      ++done_.consumed;
      if (c != '\n') {
        Step(c);
      } else if (EndLine(); done_.status != 0) {
        return done_;
      }
    }
    done_.end_seen = true;
    done_.nothing_got = text.empty() || text.back() == '\n';
    EndLine();
    return done_;
  }

 private:
  void Step(char c) {
    const bool blank = c == ' ' || c == '\t' || c == '\r';
    if (in_ == In::kMargin && blank) return;
    line_ += c;
    const In before = in_;
    if (in_ == In::kMargin) {
      in_ = c == '[' ? In::kSectionName : c == '#' || c == ';' ? In::kComment : In::kOptionName;
    }
    if (in_ == In::kSectionName && c == ']') in_ = In::kHeaderEnd;
    if (in_ == In::kOptionName && c == '=') in_ = In::kValue;
    if (in_ != before && in_ != In::kOptionName) return;  // a delimiter
    if (in_ == In::kSectionName || in_ == In::kOptionName) name_ += c;
    if (in_ == In::kValue || (in_ == In::kHeaderEnd && !blank)) value_ += c;
  }

  void EndLine() {
    if (in_ == In::kComment) comment_ += '\n' + line_;
    if (in_ == In::kSectionName) Refuse("");
    if (in_ == In::kHeaderEnd) EndHeader();
    if (in_ == In::kOptionName || in_ == In::kValue) EndOption();
    in_ = In::kMargin;
    line_ = name_ = value_ = "";
  }

  void EndHeader() {
    if (name_.empty()) return Refuse("");
    if (!value_.empty()) return Refuse("Found invalid line: ");
    Section* section = Find(&done_.sections, name_);
    if (section == nullptr) section = &done_.sections.emplace_back(Section{name_, "", {}});
    section->comment = std::exchange(comment_, "");
    section_ = name_;
  }

  void EndOption() {
    if (section_.empty()) return Refuse("Found an invalid line: ");
    if (in_ == In::kOptionName) return Refuse("");
    if (name_.empty()) return Refuse("Found an invalid key: ");
    auto& options = Find(&done_.sections, section_)->options;
    const Option read = {Trimmed(name_), Trimmed(value_), std::exchange(comment_, "")};
    Option* const present = Find(&options, read.name);
    if (present == nullptr) {
      options.insert(std::upper_bound(options.begin(), options.end(), read, ComesBefore), read);
    } else {
      present->value = read.value;
      if (!read.comment.empty()) present->comment = read.comment;
    }
  }

  void Refuse(const std::string& message) {
    done_.status = -2;
    if (!message.empty()) done_.message = message + line_ + '\n';
  }

  Reading done_;
  std::string section_, comment_;  // the current section; the comment lines since it or an option
  In in_ = In::kMargin;
  std::string line_, name_, value_;  // of this line; in a header, `value_` is what follows "]"
};

}  // namespace

Sections SectionsOf(storage::dmconfig::DMConfig* model) {
  std::list<std::string> names;
  model->GetSectionList(&names);
  Sections sections;
  for (const std::string& name : names) {
    const auto* record = model->GetOptionMap(name);
    Section& section = sections.emplace_back(Section{name, record->comment, {}});
    for (const auto& [option, stored] : record->option_map)
      section.options.push_back({option, stored.value, stored.comment});
  }
  return sections;
}

Reading ReadText(const std::string& text) { return Machine().Run(text); }

}  // namespace quarry::fuzz
