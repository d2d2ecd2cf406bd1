// LineSource hands out the lines of a stream one by one as std::getline would,
// but in place where it can: a line that lies whole in the stream's buffer is
// not copied. In every moment the stream stands, and has the state flags, as
// after the same number of std::getline calls. Not installed.
#ifndef QUARRY_DMCONFIG_LINE_SOURCE_H_
#define QUARRY_DMCONFIG_LINE_SOURCE_H_

#include <istream>
#include <string>
#include <string_view>

namespace quarry::storage::dmconfig {

class LineSource {
 public:
  // Borrows the stream.
  explicit LineSource(std::istream* in) : in_(in) {}

  // Sets `*line` to the next line without its line feed and returns true. As
  // with std::getline, a text that ends in a line feed has one more, empty
  // line; the stream is at its end then. Returns false when the stream fails
  // before its end. Exceptions of the stream pass through.
  //
  // The view is good until the next call, or until anybody else uses the
  // stream or its buffer.
  bool Next(std::string_view* line);

 private:
  bool TakeFromBuffer(std::string_view* line);

  std::istream* const in_;
  std::string copied_;  // a line that did not lie whole in the buffer
};

}  // namespace quarry::storage::dmconfig

#endif  // QUARRY_DMCONFIG_LINE_SOURCE_H_
