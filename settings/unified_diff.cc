#include "settings/unified_diff.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace quarry::settings {

namespace {

constexpr std::size_t kContext = 3;  // lines around a change

// The line after those that the edit removes.
std::size_t EndOf(const LineEdit& edit) { return edit.line + edit.removed; }

TextEdit MergeAdjacent(const TextEdit& edit) {
  TextEdit merged;
  for (const LineEdit& one : edit) {
    if (merged.empty() || EndOf(merged.back()) != one.line) {
      merged.push_back(one);
      continue;
    }
    LineEdit& last = merged.back();
    last.removed += one.removed;
    last.added.insert(last.added.end(), one.added.begin(), one.added.end());
  }
  return merged;
}

// "12,3", or "12" for one line. An empty range is named by the line before it.
std::string Range(std::size_t begin, std::size_t count) {
  if (count == 0) --begin;
  return std::to_string(begin) + (count == 1 ? "" : ',' + std::to_string(count));
}

class Differ {
 public:
  explicit Differ(std::string_view text);

  std::string Diff(const TextEdit& edit);

 private:
  using Iterator = TextEdit::const_iterator;

  std::size_t end() const { return lines_.size() + 1; }
  TextEdit NormalizeLastLine(const TextEdit& edit) const;
  void AddHunk(Iterator first, Iterator last);
  void AddEdit(const LineEdit& edit);
  void AddOld(char sign, std::size_t begin, std::size_t end);
  void AddLine(char sign, std::string_view line, bool is_last);

  std::vector<std::string_view> lines_;
  const bool unterminated_;
  std::size_t line_delta_ = 0;  // new lines minus old ones up to here; wraps
  std::string diff_;
};

Differ::Differ(std::string_view text) : unterminated_(!text.empty() && text.back() != '\n') {
  while (!text.empty()) {
    lines_.push_back(text.substr(0, text.find('\n')));
    text.remove_prefix(std::min(lines_.back().size() + 1, text.size()));
  }
}

std::string Differ::Diff(const TextEdit& edit) {
  const TextEdit normalized = NormalizeLastLine(edit);
  for (auto first = normalized.begin(); first != normalized.end();) {
    auto last = first;
    while (std::next(last) != normalized.end() &&
           std::next(last)->line - EndOf(*last) <= 2 * kContext) {
      ++last;
    }
    AddHunk(first, last);
    first = std::next(last);
  }
  return std::move(diff_);
}

// A line that becomes or stops being the last one gains or loses its line feed, so the diff must
// show it as changed.
TextEdit Differ::NormalizeLastLine(const TextEdit& edit) const {
  TextEdit normalized = MergeAdjacent(edit);
  if (!unterminated_ || normalized.empty()) return normalized;
  LineEdit& last = normalized.back();
  const bool replaces = last.removed > 0 && !last.added.empty();
  if (EndOf(last) != end() || replaces || last.line == 1) return normalized;
  if (last.added.empty() && lines_[last.line - 2].empty()) return normalized;
  --last.line;
  ++last.removed;
  last.added.insert(last.added.begin(), std::string(lines_[last.line - 1]));
  return normalized;
}

void Differ::AddHunk(Iterator first, Iterator last) {
  const std::size_t begin = first->line - std::min(kContext, first->line - 1);
  const std::size_t end = std::min(EndOf(*last) + kContext, this->end());
  const std::size_t new_begin = begin + line_delta_;
  for (auto edit = first; edit != std::next(last); ++edit) {
    line_delta_ += edit->added.size() - edit->removed;
  }
  diff_ += "@@ -" + Range(begin, end - begin) + " +" +
           Range(new_begin, end + line_delta_ - new_begin) + " @@\n";
  std::size_t line = begin;
  for (auto edit = first; edit != std::next(last); ++edit) {
    AddOld(' ', line, edit->line);
    AddEdit(*edit);
    line = EndOf(*edit);
  }
  AddOld(' ', line, end);
}

void Differ::AddEdit(const LineEdit& edit) {
  AddOld('-', edit.line, EndOf(edit));
  for (const std::string& line : edit.added) {
    AddLine('+', line, EndOf(edit) == end() && &line == &edit.added.back());
  }
}

void Differ::AddOld(char sign, std::size_t begin, std::size_t end) {
  for (std::size_t line = begin; line < end; ++line) {
    AddLine(sign, lines_[line - 1], line == lines_.size());
  }
}

void Differ::AddLine(char sign, std::string_view line, bool is_last) {
  diff_.append(1, sign).append(line).append(1, '\n');
  if (is_last && unterminated_) diff_ += "\\ No newline at end of file\n";
}

}  // namespace

std::string UnifiedDiff(const std::string& file, std::string_view text, const TextEdit& edit) {
  std::string hunks = Differ(text).Diff(edit);
  if (hunks.empty()) return hunks;
  return "--- " + file + "\n+++ " + file + '\n' + hunks;
}

}  // namespace quarry::settings
