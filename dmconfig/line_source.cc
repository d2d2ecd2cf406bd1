#include "dmconfig/line_source.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
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

bool StreamLines::Next(std::string_view* line) {
  if (ExtractFromBuffer(line)) return true;
  std::getline(*in_, copied_);
  if (in_->fail() && !in_->eof()) return false;
  *line = copied_;
  return true;
}

bool StreamLines::ExtractFromBuffer(std::string_view* line) {
  // Reading must flush a tied stream first; std::getline does that.
  if (in_->tie() != nullptr) return false;
  return GetArea::ExtractLine(in_->rdbuf(), line);
}

bool TextLines::Next(std::string_view* line) {
  const std::size_t feed = unread_.find('\n');
  at_end_ = feed == std::string_view::npos;
  *line = unread_.substr(0, feed);
  unread_.remove_prefix(at_end_ ? unread_.size() : feed + 1);
  return true;
}

FileLines::FileLines(const std::string& path) : file_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}

FileLines::~FileLines() {
  if (IsOpen()) close(file_);
}

bool FileLines::Next(std::string_view* line) try {
  copied_.clear();
  std::size_t feed;
  while ((feed = unread_.find('\n')) == std::string_view::npos) {
    copied_ += unread_;
    if (!FillBuffer()) return false;
    if (at_end_) {
      *line = copied_;
      return true;
    }
  }
  *line = unread_.substr(0, feed);
  unread_.remove_prefix(feed + 1);
  if (!copied_.empty()) *line = copied_ += *line;
  return true;
} catch (const std::bad_alloc&) {
  return false;
}

bool FileLines::FillBuffer() {
  ssize_t count;
  do {
    count = read(file_, buffer_.data(), buffer_.size());
  } while (count == -1 && errno == EINTR);
  if (count == -1) return false;
  unread_ = {buffer_.data(), static_cast<std::size_t>(count)};
  at_end_ = count == 0;
  return true;
}

}  // namespace quarry::storage::dmconfig
