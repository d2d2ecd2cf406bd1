// What the fuzz targets share. A target states one property: a function that is given any bytes and
// stops the process when the property does not hold. The engine searches for such bytes (./dev
// fuzz), replay.cc runs kept inputs and changes of them (./dev test).
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

// Stops the process and prints the property unless it holds.
void Require(bool holds, const char* property);

// Records that something was seen. The replay fails when what it is told to see was not, for then
// nothing was shown.
void Saw(const char* what);
bool HasSeen(const std::string& what);

// Splits the input into `count` texts at its first unit separators; later ones stay in the last
// text. Missing texts are empty.
std::vector<std::string> Fields(const std::string& input, std::size_t count);

// The library's reader and writer on texts.
int Load(const std::string& text, storage::dmconfig::DMConfig* model);
std::string Dump(storage::dmconfig::DMConfig* model);

}  // namespace quarry::fuzz

#endif  // QUARRY_FUZZ_TARGET_H_
