// Streams that the tests and the fuzz targets share.
#ifndef QUARRY_TESTS_SUPPORT_STREAMS_H_
#define QUARRY_TESTS_SUPPORT_STREAMS_H_

#include <algorithm>
#include <iostream>
#include <limits>
#include <sstream>
#include <streambuf>
#include <string>
#include <utility>

// A stream buffer that shows `chunk` bytes of its text at a time.
class ChunkBuffer : public std::streambuf {
 public:
  ChunkBuffer(std::string text, std::size_t chunk) : text_(std::move(text)), chunk_(chunk) {}

 protected:
  int_type underflow() override {
    const std::size_t count = std::min(chunk_, text_.size() - shown_);
    if (count == 0) return traits_type::eof();
    char* const begin = text_.data() + shown_;
    setg(begin, begin, begin + count);
    shown_ += count;
    return traits_type::to_int_type(*begin);
  }

 private:
  std::string text_;
  const std::size_t chunk_;
  std::size_t shown_ = 0;
};

// Counts flushes and takes no more than `room` bytes.
class LimitedBuffer : public std::stringbuf {
 public:
  explicit LimitedBuffer(std::streamsize room = std::numeric_limits<std::streamsize>::max())
      : room_(room) {}
  int flushes() const { return flushes_; }

 protected:
  int sync() override { return ++flushes_, 0; }
  std::streamsize xsputn(const char* text, std::streamsize count) override {
    const std::streamsize taken = std::min(count, room_);
    room_ -= taken;
    return std::stringbuf::xsputn(text, taken);
  }

 private:
  std::streamsize room_;
  int flushes_ = 0;
};

// Catches what is written to std::cerr during its life.
class CerrCapture {
 public:
  CerrCapture() : usual_(std::cerr.rdbuf(caught_.rdbuf())) {}
  ~CerrCapture() { std::cerr.rdbuf(usual_); }
  CerrCapture(const CerrCapture&) = delete;
  CerrCapture& operator=(const CerrCapture&) = delete;
  std::string text() const { return caught_.str(); }

 private:
  std::ostringstream caught_;
  std::streambuf* const usual_;
};

#endif  // QUARRY_TESTS_SUPPORT_STREAMS_H_
