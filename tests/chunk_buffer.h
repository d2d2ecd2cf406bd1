// A stream that comes in pieces.
#ifndef QUARRY_TESTS_CHUNK_BUFFER_H_
#define QUARRY_TESTS_CHUNK_BUFFER_H_

#include <algorithm>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <utility>

// A stream buffer that shows `chunk` bytes of its text at a time and, when
// `fails` is set, throws at the end instead of ending.
class ChunkBuffer : public std::streambuf {
 public:
  ChunkBuffer(std::string text, std::size_t chunk, bool fails = false)
      : text_(std::move(text)), chunk_(chunk), fails_(fails) {}

 protected:
  int_type underflow() override {
    const std::size_t count = std::min(chunk_, text_.size() - shown_);
    if (count == 0 && fails_) throw std::runtime_error("read error");
    if (count == 0) return traits_type::eof();
    char* const begin = text_.data() + shown_;
    setg(begin, begin, begin + count);
    shown_ += count;
    return traits_type::to_int_type(*begin);
  }

 private:
  std::string text_;
  const std::size_t chunk_;
  const bool fails_;
  std::size_t shown_ = 0;
};

#endif  // QUARRY_TESTS_CHUNK_BUFFER_H_
