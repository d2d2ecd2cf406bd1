#include "settings/changes.h"

#include <map>
#include <utility>

#include "dmconfig/string_case_cmp.h"
#include "settings/document.h"
#include "settings/error.h"
#include "settings/file_replacement.h"
#include "settings/setting.h"
#include "settings/verified_edit.h"

namespace quarry::settings {

using storage::dmconfig::StringCaseCmp;

namespace {

// The last change of each option, in order of the first ones.
std::vector<const Change*> LastChanges(const std::vector<Change>& changes) {
  std::map<std::string, std::map<std::string, std::size_t, StringCaseCmp>, StringCaseCmp> places;
  std::vector<const Change*> last;
  for (const Change& change : changes) {
    const auto [place, is_new] = places[change.section].emplace(change.option, last.size());
    if (is_new) {
      last.push_back(&change);
    } else {
      last[place->second] = &change;
    }
  }
  return last;
}

// Throws Error.
std::string TextAfter(const std::string& name, const std::string& text,
                      const std::vector<Change>& changes) {
  std::vector<Setting> settings;
  std::vector<const Change*> removals;
  for (const Change* const change : LastChanges(changes)) {
    if (!change->value) {
      removals.push_back(change);
      continue;
    }
    settings.push_back({change->section, change->option, *change->value});
    RequireRoundTrip(settings.back());
  }
  Document document(name, std::string(text));
  std::string edited = WithSettings(&document, settings).text;
  for (const Change* const change : removals) {
    Document with_option(name, std::string(edited));
    if (!with_option.Has(change->section, change->option)) continue;
    edited = WithoutOption(&with_option, change->section, change->option, false).text;
  }
  return edited;
}

Problem ProblemOf(const Error& error, const std::string& name) {
  Problem problem;
  if (error.kind == ErrorKind::kRefused) problem.file = name;  // others name it
  problem.text = error.message;
  problem.hint = error.hint;
  return problem;
}

}  // namespace

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
