// A second reader of the text format, made from the grammar in another way than
// the library's: a machine over single characters and plain lists in place of
// lines and maps. It is slow, and serves only to be compared with.
#ifndef QUARRY_FUZZ_SECOND_READER_H_
#define QUARRY_FUZZ_SECOND_READER_H_

#include <cstddef>
#include <string>
#include <vector>

#include "dmconfig/config.h"

namespace quarry::fuzz {

struct Option {
  std::string name, value, comment;
};

struct Section {
  std::string name, comment;
  std::vector<Option> options;  // in order of names
};

// In order of creation.
using Sections = std::vector<Section>;

bool operator==(const Option& left, const Option& right);
bool operator==(const Section& left, const Section& right);

// What a model holds.
Sections SectionsOf(storage::dmconfig::DMConfig* model);

// What a load of a text does.
struct Reading {
  int status = 0;
  std::string message;       // on std::cerr
  std::size_t consumed = 0;  // bytes
  bool end_seen = false;     // the stream's eofbit
  bool nothing_got = false;  // its failbit
  Sections sections;
};

Reading ReadText(const std::string& text);

// Looks for a name as the model does; null when it is missing.
Section* Find(Sections* sections, const std::string& name);
Option* Find(std::vector<Option>* options, const std::string& name);

}  // namespace quarry::fuzz

#endif  // QUARRY_FUZZ_SECOND_READER_H_
