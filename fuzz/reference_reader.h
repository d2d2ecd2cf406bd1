// A reference reader of the text format, written from the grammar in another way than the
// library's: a state machine over single characters, and lists in place of maps. It is slow, and
// only serves to be compared with.
#ifndef QUARRY_FUZZ_REFERENCE_READER_H_
#define QUARRY_FUZZ_REFERENCE_READER_H_

#include <strings.h>

#include <cstddef>
#include <string>
#include <vector>

#include "dmconfig/config.h"

namespace quarry::fuzz {

struct Option {
  std::string name, value, comment;
  bool operator==(const Option& other) const {
    return name == other.name && value == other.value && comment == other.comment;
  }
};

struct Section {
  std::string name, comment;
  std::vector<Option> options;  // in order of names
  bool operator==(const Section& other) const {
    return name == other.name && comment == other.comment && options == other.options;
  }
};

// In order of creation.
using Sections = std::vector<Section>;

// The contents of a model.
Sections SectionsOf(storage::dmconfig::DMConfig* model);

// What loading a text does.
struct Reading {
  int status = 0;
  std::string message;       // on std::cerr
  std::size_t consumed = 0;  // bytes
  bool end_seen = false;     // the stream's eofbit
  bool nothing_got = false;  // its failbit
  Sections sections;
};

Reading ReadText(const std::string& text);

// Finds a section or option by its name, compared as the model does; null when it is missing.
template <typename Named>
Named* Find(std::vector<Named>* all, const std::string& name) {
  for (Named& one : *all) {
    if (strcasecmp(one.name.c_str(), name.c_str()) == 0) return &one;
  }
  return nullptr;
}

}  // namespace quarry::fuzz

#endif  // QUARRY_FUZZ_REFERENCE_READER_H_
