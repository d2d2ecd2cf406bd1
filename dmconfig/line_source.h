// The lines of a text, one by one. Not installed.
//
// Next of each source sets `*line` to the next line without its line feed and returns true. The
// view is valid until the next call. A text that ends in a line feed has one more, empty line; with
// the last line the source is at its end. Next returns false when reading fails before that.
#ifndef QUARRY_DMCONFIG_LINE_SOURCE_H_
#define QUARRY_DMCONFIG_LINE_SOURCE_H_

#include <array>
#include <istream>
#include <string>
#include <string_view>

namespace quarry::storage::dmconfig {

// Reads as std::getline would, but without copying a line that is entirely in the stream's buffer.
// After each call the stream's position and state flags are those after the same number of
// std::getline calls. Exceptions of the stream pass through. The view becomes invalid also when the
// stream or its buffer is used elsewhere.
class StreamLines {
 public:
  // Borrows the stream, which must outlive this object.
  explicit StreamLines(std::istream* in) : in_(in) {}

  bool AtEnd() const { return in_->eof(); }
  bool Next(std::string_view* line);

 private:
  bool ExtractFromBuffer(std::string_view* line);

  std::istream* const in_;
  std::string copied_;  // a line that was not entirely in the buffer
};

// Reads a text in memory, which must outlive the views. Never fails.
class TextLines {
 public:
  explicit TextLines(std::string_view text) : unread_(text) {}

  bool AtEnd() const { return at_end_; }
  bool Next(std::string_view* line);

 private:
  std::string_view unread_;
  bool at_end_ = false;
};

// Reads a file without a stream, whose code takes a new process longer than a small file's lines.
class FileLines {
 public:
  // Opens the file.
  explicit FileLines(const std::string& path);
  ~FileLines();
  FileLines(const FileLines&) = delete;
  FileLines& operator=(const FileLines&) = delete;

  bool IsOpen() const { return file_ != -1; }
  bool AtEnd() const { return at_end_; }
  // Memory that runs out is a failure, too.
  bool Next(std::string_view* line);

 private:
  bool FillBuffer();

  const int file_;
  bool at_end_ = false;
  std::array<char, 8192> buffer_;
  std::string_view unread_;  // of the buffer
  std::string copied_;       // a line that was not entirely in the buffer
};

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_LINE_SOURCE_H_
