// What the fuzz targets share. A target is one promise: a function that is
// given any bytes and stops the process when the promise is broken. The engine
// finds bytes (./dev fuzz), replay.cc runs kept ones and changes of them (./dev
// test).
#ifndef QUARRY_FUZZ_TARGET_H_
#define QUARRY_FUZZ_TARGET_H_

#include <cstddef>
#include <string>
#include <vector>

#include "dmconfig/config.h"
#include "tests/support/streams.h"

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

}  // namespace quarry::fuzz

#endif  // QUARRY_FUZZ_TARGET_H_
