// What the tests share.
#ifndef QUARRY_TESTS_SUPPORT_H_
#define QUARRY_TESTS_SUPPORT_H_

#include <algorithm>
#include <list>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>

#include "dmconfig/config.h"

// The whole model as one short text: sections in order of creation, options in
// order of names, a comment in parentheses behind what it belongs to:
// "Server(\n; x){path=/a threads=8(\n#y)} client{}". Changes nothing.
std::string Render(quarry::storage::dmconfig::DMConfig* model);

// What operations of the model write to.
struct Outputs {
  std::string value = "old", comment = "old";
  std::list<std::string> names = {"old"};
};

// An operation of the model in words, taken apart: "SetOptionValue s o v".
// "''" is an empty text; "null" at the end stands for a null output, as the
// first ("null -") or the last one ("- null" or "null").
struct Operation {
  explicit Operation(const std::string& words);

  int Run(quarry::storage::dmconfig::DMConfig* model, Outputs* outputs) const;

  std::string name, section, option, value, comment;
  bool has_comment, first_null, last_null;
};

// A folder of its own for a test, gone with all in it at the end.
class TempFolder {
 public:
  TempFolder();
  ~TempFolder();
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  // The path of `name` in the folder.
  std::string operator/(const std::string& name) const { return folder_ + '/' + name; }
  void Write(const std::string& name, const std::string& text) const;
  std::string Read(const std::string& name) const;

 private:
  std::string folder_;
};

// Catches what is written to std::cerr during its life.
class CerrCapture {
 public:
  CerrCapture();
  ~CerrCapture();
  CerrCapture(const CerrCapture&) = delete;
  CerrCapture& operator=(const CerrCapture&) = delete;
  std::string text() const { return caught_.str(); }

 private:
  std::ostringstream caught_;
  std::streambuf* const original_;
};

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

#endif  // QUARRY_TESTS_SUPPORT_H_
