#include "dmconfig/line_source.h"

#include <cstring>
#include <streambuf>

namespace quarry::storage::dmconfig {

namespace {

// Gives access to the protected get area of any stream buffer; never constructed.
class GetArea : public std::streambuf {
 public:
  // Extracts the next line and its line feed from the buffered characters; returns false and
  // extracts nothing when they contain no line feed.
  static bool ExtractLine(std::streambuf* buffer, std::string_view* line) {
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
  if (ExtractFromBuffer(line)) return true;
  std::getline(*in_, copied_);
  if (in_->fail() && !in_->eof()) return false;
  *line = copied_;
  return true;
}

bool LineSource::ExtractFromBuffer(std::string_view* line) {
  // Reading must flush a tied stream first; std::getline does that.
  if (in_->tie() != nullptr) return false;
  return GetArea::ExtractLine(in_->rdbuf(), line);
}

}  // namespace quarry::storage::dmconfig
