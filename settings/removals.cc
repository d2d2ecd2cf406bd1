#include "settings/removals.h"

#include <cstddef>
#include <vector>

#include "settings/line_scanner.h"

namespace quarry::settings {

using storage::dmconfig::LineKind;

namespace {

// Knows where the comment directly above a line begins.
class CommentFinder {
 public:
  // Each line of a text is passed once, in order. Returns the number of the first of the comment
  // lines directly above it; its own number when there are none.
  std::size_t BeginAbove(const ScannedLine& line);

 private:
  std::size_t begin_ = 0;  // 0: the line above is no comment
};

std::size_t CommentFinder::BeginAbove(const ScannedLine& line) {
  const std::size_t begin = begin_ == 0 ? line.number : begin_;
  begin_ = line.kind == LineKind::kComment ? begin : 0;
  return begin;
}

// Lines that are removed, by the numbers of the first and the last one.
struct Part {
  std::size_t begin, end;
};

class SectionRemoval {
 public:
  SectionRemoval(std::string_view text, const std::string& section, bool with_comment);

  TextEdit Edit() const;

 private:
  bool IsBetweenBlanks(const Part& part) const {
    return is_blank_[part.begin - 1] && is_blank_[part.end + 1];
  }
  // Extends the part by one blank line next to it, if there is one.
  void TakeBlankLine(Part* part) const;

  std::vector<bool> is_blank_ = {true};  // by line numbers; so are both ends of the text
  std::vector<Part> parts_;
};

SectionRemoval::SectionRemoval(std::string_view text, const std::string& section,
                               bool with_comment) {
  CommentFinder comments;
  bool in_section = false;
  LineScanner scanner(text);
  for (ScannedLine line; scanner.Next(&line);) {
    is_blank_.push_back(line.kind == LineKind::kBlank);
    const std::size_t begin = comments.BeginAbove(line);
    if (line.kind == LineKind::kHeader) {
      in_section = SameName(section, line.header.name);
      if (in_section) parts_.push_back({with_comment ? begin : line.number, line.number});
    }
    if (line.kind == LineKind::kOption && in_section) parts_.back().end = line.number;
  }
  is_blank_.push_back(true);
}

// From the last part to the first, so that it is known what follows each afterwards.
TextEdit SectionRemoval::Edit() const {
  std::vector<Part> removed;  // in reverse order
  for (auto next = parts_.rbegin(); next != parts_.rend(); ++next) {
    Part part = *next;
    if (!removed.empty() && removed.back().begin == part.end + 1) {
      part.end = removed.back().end;
      removed.pop_back();
    }
    if (IsBetweenBlanks(part)) TakeBlankLine(&part);
    removed.push_back(part);
  }
  TextEdit edit;
  for (auto part = removed.rbegin(); part != removed.rend(); ++part) {
    edit.push_back({part->begin, part->end - part->begin + 1, {}});
  }
  return edit;
}

void SectionRemoval::TakeBlankLine(Part* part) const {
  const std::size_t last_line = is_blank_.size() - 2;
  if (part->begin > 1) {
    --part->begin;
  } else if (part->end < last_line) {
    ++part->end;
  }
}

}  // namespace

TextEdit UnsetOption(std::string_view text, const std::string& section, const std::string& option,
                     bool with_comment) {
  TextEdit edit;
  CommentFinder comments;
  bool in_section = false;
  LineScanner scanner(text);
  for (ScannedLine line; scanner.Next(&line);) {
    const std::size_t comment = comments.BeginAbove(line);
    if (line.kind == LineKind::kHeader) {
      in_section = SameName(section, line.header.name);
    }
    if (line.kind == LineKind::kOption && in_section && SameName(option, line.option.name)) {
      const std::size_t begin = with_comment ? comment : line.number;
      edit.push_back({begin, line.number - begin + 1, {}});
    }
  }
  return edit;
}

TextEdit UnsetSection(std::string_view text, const std::string& section, bool with_comment) {
  return SectionRemoval(text, section, with_comment).Edit();
}

}  // namespace quarry::settings
