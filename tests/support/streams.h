// Streams that the tests and the fuzz targets share.
#ifndef QUARRY_TESTS_SUPPORT_STREAMS_H_
#define QUARRY_TESTS_SUPPORT_STREAMS_H_

#include <algorithm>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>

// A stream buffer that makes at most `chunk` bytes of its text available at a time.
class ChunkBuffer : public std::streambuf {
 public:
  ChunkBuffer(std::string text, std::size_t chunk) : text_(std::move(text)), chunk_(chunk) {}

 private:
  int_type underflow() override {
    char* const begin = text_.data() + used_;
    const std::size_t count = std::min(chunk_, text_.size() - used_);
    used_ += count;
    setg(begin, begin, begin + count);
    return count == 0 ? traits_type::eof() : traits_type::to_int_type(*begin);
  }

  std::string text_;
  const std::size_t chunk_;
  std::size_t used_ = 0;
};

// Counts how often it is flushed.
struct FlushCounter : std::stringbuf {
  int sync() override { return ++flushes, 0; }
  int flushes = 0;
};

// Captures what is written to std::cerr during its lifetime.
class CerrCapture {
 public:
  CerrCapture() : original_(std::cerr.rdbuf(captured_.rdbuf())) {}
  ~CerrCapture() { std::cerr.rdbuf(original_); }
  CerrCapture(CerrCapture&&) = delete;
  std::string text() const { return captured_.str(); }

 private:
  std::ostringstream captured_;
  std::streambuf* const original_;
};

#endif  // QUARRY_TESTS_SUPPORT_STREAMS_H_
