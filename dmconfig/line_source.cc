#include "dmconfig/line_source.h"

#include <cstring>
#include <streambuf>

namespace quarry::storage::dmconfig {

namespace {

// Reaches the protected get area of any stream buffer; never constructed.
class GetArea : public std::streambuf {
 public:
  // Takes the next line and its line feed out of what the buffer already holds;
  // false, and nothing taken, when no line feed is there yet.
  static bool TakeLine(std::streambuf* buffer, std::string_view* line) {
    char* const begin = (buffer->*(&GetArea::gptr))();
    char* const end = (buffer->*(&GetArea::egptr))();
    if (begin == end) return false;

    const auto available = static_cast<std::size_t>(end - begin);
    auto* const feed = static_cast<char*>(std::memchr(begin, '\n', available));
    if (feed == nullptr) return false;

    *line = {begin, static_cast<std::size_t>(feed - begin)};
    // gbump takes an int, too small for the longest lines.
    (buffer->*(&GetArea::setg))((buffer->*(&GetArea::eback))(), feed + 1, end);
    return true;
  }
};

}  // namespace

bool LineSource::Next(std::string_view* line) {
  if (TakeFromBuffer(line)) return true;
  std::getline(*in_, copied_);
  if (in_->fail() && !in_->eof()) return false;
  *line = copied_;
  return true;
}

bool LineSource::TakeFromBuffer(std::string_view* line) {
  // Reading flushes a tied stream first, which std::getline sees to.
  if (in_->tie() != nullptr) return false;
  return GetArea::TakeLine(in_->rdbuf(), line);
}

}  // namespace quarry::storage::dmconfig
