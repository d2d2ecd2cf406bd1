#include "fuzz/second_reader.h"

#include <strings.h>

#include <algorithm>
#include <list>

namespace quarry::fuzz {

namespace {

constexpr int kInvalid = -2;

template <typename Named>
Named* FindNamed(std::vector<Named>* all, const std::string& name) {
  for (Named& one : *all) {
    if (strcasecmp(one.name.c_str(), name.c_str()) == 0) return &one;
  }
  return nullptr;
}

// Where the machine is in a line.
enum class In { kMargin, kComment, kName, kBehindName, kKey, kValue };

class Machine {
 public:
  explicit Machine(const std::string& text) : text_(text) {}

  Reading Run() {
    while (!done_.end_seen && done_.status == 0) TakeLine();
    for (Section& section : done_.sections) SortOptions(&section.options);
    return std::move(done_);
  }

 private:
  void TakeLine() {
    line_ = name_ = key_ = value_ = "";
    in_ = In::kMargin;
    has_tail_ = false;
    const std::size_t begin = done_.consumed;
    while (done_.consumed < text_.size()) {
      const char c = text_[done_.consumed++];
      if (c == '\n') return EndLine();
      Take(c);
    }
    done_.end_seen = true;
    done_.nothing_got = begin == text_.size();
    EndLine();
  }

  void Take(char c) {
    const bool blank = c == ' ' || c == '\t' || c == '\r';
    if (in_ == In::kMargin && blank) return;
    line_ += c;
    switch (in_) {
      case In::kMargin:
        in_ = c == '['               ? In::kName
              : c == '#' || c == ';' ? In::kComment
              : c == '='             ? In::kValue
                                     : In::kKey;
        if (in_ == In::kKey) key_ += c;
        break;
      case In::kComment:
        break;
      case In::kName:
        if (c == ']') {
          in_ = In::kBehindName;
        } else {
          name_ += c;
        }
        break;
      case In::kBehindName:
        has_tail_ = has_tail_ || !blank;
        break;
      case In::kKey:
        if (c == '=') {
          in_ = In::kValue;
        } else {
          key_ += c;
        }
        break;
      case In::kValue:
        value_ += c;
        break;
    }
  }

  void EndLine() {
    switch (in_) {
      case In::kMargin:
        return;
      case In::kComment:
        comment_ += "\n" + line_;
        return;
      case In::kName:
        done_.status = kInvalid;
        return;
      case In::kBehindName:
        return EndHeader();
      case In::kKey:
      case In::kValue:
        return EndOption();
    }
  }

  void EndHeader() {
    if (name_.empty()) return Refuse("");
    if (has_tail_) return Refuse("Found invalid line: ");
    current_ = name_;
    SectionAt(name_)->comment = comment_;
    comment_.clear();
  }

  void EndOption() {
    if (current_.empty()) return Refuse("Found an invalid line: ");
    if (in_ == In::kKey) return Refuse("");
    if (key_.empty()) return Refuse("Found an invalid key: ");
    Trim(&key_);
    Trim(&value_);
    std::vector<Option>& options = SectionAt(current_)->options;
    Option* option = Find(&options, key_);
    if (option == nullptr) option = &options.emplace_back(Option{key_, "", ""});
    option->value = value_;
    if (!comment_.empty()) option->comment = comment_;
    comment_.clear();
  }

  void Refuse(const std::string& message) {
    done_.status = kInvalid;
    if (!message.empty()) done_.message = message + line_ + '\n';
  }

  Section* SectionAt(const std::string& name) {
    Section* const section = Find(&done_.sections, name);
    return section != nullptr ? section : &done_.sections.emplace_back(Section{name, "", {}});
  }

  static void Trim(std::string* text) {
    const auto ink = [](char c) { return c != ' ' && c != '\t'; };
    const auto first = std::find_if(text->begin(), text->end(), ink);
    if (first == text->end()) return;
    const auto last = std::find_if(text->rbegin(), text->rend(), ink).base();
    *text = std::string(first, last);
  }

  static void SortOptions(std::vector<Option>* options) {
    std::sort(options->begin(), options->end(), [](const Option& left, const Option& right) {
      return strcasecmp(left.name.c_str(), right.name.c_str()) < 0;
    });
  }

  const std::string& text_;
  Reading done_;
  In in_ = In::kMargin;
  std::string line_, name_, key_, value_;  // of the line at hand
  bool has_tail_ = false;                  // something stands behind the "]"
  std::string current_, comment_;
};

}  // namespace

bool operator==(const Option& left, const Option& right) {
  return left.name == right.name && left.value == right.value && left.comment == right.comment;
}

bool operator==(const Section& left, const Section& right) {
  return left.name == right.name && left.comment == right.comment && left.options == right.options;
}

Sections SectionsOf(storage::dmconfig::DMConfig* model) {
  std::list<std::string> names;
  model->GetSectionList(&names);
  Sections sections;
  for (const std::string& name : names) {
    const auto* record = model->GetOptionMap(name);
    Section& section = sections.emplace_back(Section{name, record->comment, {}});
    for (const auto& [option, stored] : record->option_map) {
      section.options.push_back({option, stored.value, stored.comment});
    }
  }
  return sections;
}

Reading ReadText(const std::string& text) { return Machine(text).Run(); }

Section* Find(Sections* sections, const std::string& name) { return FindNamed(sections, name); }
Option* Find(std::vector<Option>* options, const std::string& name) {
  return FindNamed(options, name);
}

}  // namespace quarry::fuzz
