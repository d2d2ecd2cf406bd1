// LineSource returns the lines of a stream one by one as std::getline would, but without copying a
// line that is entirely in the stream's buffer. After each call the stream's position and state
// flags are those after the same number of std::getline calls. Not installed.
#ifndef QUARRY_DMCONFIG_LINE_SOURCE_H_
#define QUARRY_DMCONFIG_LINE_SOURCE_H_

#include <istream>
#include <string>
#include <string_view>

namespace quarry::storage::dmconfig {

class LineSource {
 public:
  // Borrows the stream, which must outlive this object.
  explicit LineSource(std::istream* in) : in_(in) {}

  // Sets `*line` to the next line without its line feed and returns true. As with std::getline, a
  // text that ends in a line feed has one more, empty line; the stream is at its end then. Returns
  // false when the stream fails before its end. Exceptions of the stream pass through.
  //
  // The view is valid until the next call, or until the stream or its buffer is used elsewhere.
  bool Next(std::string_view* line);

 private:
  bool ExtractFromBuffer(std::string_view* line);

  std::istream* const in_;
  std::string copied_;  // a line that was not entirely in the buffer
};

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_LINE_SOURCE_H_
