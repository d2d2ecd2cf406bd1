#include "settings/changes.h"

#include <utility>

#include "settings/document.h"
#include "settings/error.h"
#include "settings/file_replacement.h"
#include "settings/setting.h"
#include "settings/verified_edit.h"

namespace quarry::settings {

namespace {

// The text of a file while changes are made in it. All of it may throw Error.
class ChangedText {
 public:
  ChangedText(std::string name, std::string text)
      : name_(std::move(name)), text_(std::move(text)) {}

  void Make(const Change& change);

  std::string Finish();

 private:
  void AddSetting(const Change& change);
  void MakeSettings();
  void Remove(const Change& change);

  const std::string name_;
  std::string text_;
  std::vector<Setting> settings_;  // those that are made next, together
};

void ChangedText::Make(const Change& change) {
  if (change.kind == Change::Kind::kSet) {
    AddSetting(change);
  } else {
    MakeSettings();
    Remove(change);
  }
}

std::string ChangedText::Finish() {
  MakeSettings();
  return std::move(text_);
}

void ChangedText::AddSetting(const Change& change) {
  Setting setting = {change.section, change.option, change.value};
  RequireRoundTrip(setting);
  settings_.push_back(std::move(setting));
}

void ChangedText::MakeSettings() {
  if (settings_.empty()) return;
  Document document(name_, std::move(text_));
  text_ = WithSettings(&document, LastOfEach(settings_)).text;
  settings_.clear();
}

void ChangedText::Remove(const Change& change) {
  Document document(name_, std::string(text_));
  if (change.kind == Change::Kind::kRemoveSection) {
    if (!document.HasSection(change.section)) return;
    text_ = WithoutSection(&document, change.section, false).text;
  } else if (document.Has(change.section, change.option)) {
    text_ = WithoutOption(&document, change.section, change.option, false).text;
  }
}

// Throws Error.
std::string TextAfter(const std::string& name, const std::string& text,
                      const std::vector<Change>& changes) {
  ChangedText changed(name, text);
  for (const Change& change : changes) changed.Make(change);
  return changed.Finish();
}

constexpr char kRuleRefused[] = "change-refused";

Problem ProblemOf(const Error& error, const std::string& name) {
  Problem problem;
  if (error.kind == ErrorKind::kRefused) {  // others name the file
    problem.file = name;
    problem.rule = kRuleRefused;
  }
  problem.text = error.message;
  problem.hint = error.hint;
  return problem;
}

}  // namespace

Change Change::Set(std::string section, std::string option, std::string value) {
  return {Kind::kSet, std::move(section), std::move(option), std::move(value)};
}

Change Change::Remove(std::string section, std::string option) {
  return {Kind::kRemove, std::move(section), std::move(option), ""};
}

Change Change::RemoveSection(std::string section) {
  return {Kind::kRemoveSection, std::move(section), "", ""};
}

std::optional<Snapshot> Apply(const Snapshot& snapshot, const std::vector<Change>& changes,
                              std::vector<Problem>* problems) {
  try {
    return Snapshot::Parse(snapshot.name(), TextAfter(snapshot.name(), snapshot.text(), changes),
                           problems);
  } catch (const Error& error) {
    problems->push_back(ProblemOf(error, snapshot.name()));
    return std::nullopt;
  }
}

std::optional<Snapshot> Save(const std::string& path, const std::vector<Change>& changes,
                             std::vector<Problem>* problems, const SaveOptions& options) {
  try {
    FileReplacement::Options replacement;
    replacement.max_wait = options.max_wait;
    replacement.on_wait = options.on_wait;
    replacement.new_mode = options.new_mode;
    FileReplacement file(path, std::move(replacement));
    const auto old = Snapshot::Parse(path, file.text(), problems);
    if (!old) return std::nullopt;
    auto changed = Apply(*old, changes, problems);
    if (changed) file.Replace(changed->text());
    return changed;
  } catch (const Error& error) {
    problems->push_back(ProblemOf(error, path));
    return std::nullopt;
  }
}

}  // namespace quarry::settings
