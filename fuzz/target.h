// What the fuzz targets share. A target is one promise: a function that is
// given any bytes and stops the process when the promise is broken. The engine
// finds bytes (./dev fuzz), replay.cc runs kept ones and changes of them (./dev
// test).
#ifndef QUARRY_FUZZ_TARGET_H_
#define QUARRY_FUZZ_TARGET_H_

#include <cstddef>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "dmconfig/config.h"

namespace quarry::fuzz {

// Defined by each target.
void TryInput(const std::string& input);

// Stops the process, with the reason, unless the promise is kept.
void Demand(bool kept, const char* promise);

// Counts that something was met. The replay is red when what it is told to meet
// was not, for then nothing was shown.
void Saw(const char* what);
std::size_t TimesSeen(const std::string& what);

// The input as `count` texts, cut at the first unit separators; later ones stay
// in the last text. Missing texts are empty.
std::vector<std::string> Fields(const std::string& input, std::size_t count);

// The library's reader and writer on texts.
int Load(const std::string& text, storage::dmconfig::DMConfig* model);
std::string Dump(storage::dmconfig::DMConfig* model);

// Catches std::cerr during its life.
class CerrText {
 public:
  CerrText() : usual_(std::cerr.rdbuf(text_.rdbuf())) {}
  ~CerrText() { std::cerr.rdbuf(usual_); }
  CerrText(const CerrText&) = delete;
  CerrText& operator=(const CerrText&) = delete;
  std::string str() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::streambuf* const usual_;
};

}  // namespace quarry::fuzz

#endif  // QUARRY_FUZZ_TARGET_H_
