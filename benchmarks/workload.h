// The texts that the benchmarks work on, generated from a fixed seed.
#ifndef QUARRY_BENCHMARKS_WORKLOAD_H_
#define QUARRY_BENCHMARKS_WORKLOAD_H_

#include <cstddef>
#include <string>
#include <vector>

namespace quarry::benchmarks {

struct Entry {
  std::string section, option, value, comment;
};

struct Workload {
  std::string text;
  std::size_t lines = 0;
  std::vector<Entry> entries;  // the options, in the order of the text
};

// Returns the text with that name. Throws std::invalid_argument for any other name. Names are made
// of few words, such as "retry_Limit_17", and share long prefixes; with "files-" before its name, a
// text has names and values as short, and as often alike, as those of real files.
//
// typical    63 lines: 6 sections, some comments, like an agent's file
// mid        100 sections of 100 options
// commented  2,000 sections of 20 options with two comment lines each
// wide       100,000 sections of 5 options
// deep       one section of 1,000,000 options in random order
// sorted     the same in the order in which the writer saves them
// lines-N    N lines in sections of 50 options
Workload MakeWorkload(const std::string& name);

}  // namespace quarry::benchmarks

#endif  // QUARRY_BENCHMARKS_WORKLOAD_H_
