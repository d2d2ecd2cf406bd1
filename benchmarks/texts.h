// What the benchmarks read and look up: texts, their files, and names in random order.
//
// The first process generates them and keeps them in a folder. Its children read them from there,
// so that their heaps have held nothing else.
#ifndef QUARRY_BENCHMARKS_TEXTS_H_
#define QUARRY_BENCHMARKS_TEXTS_H_

#include <cstddef>
#include <string>
#include <tuple>
#include <vector>

#include "benchmarks/workload.h"

namespace quarry::benchmarks {

enum class Spelling { kAsSet, kOtherCase, kMissing };

// Which options of a workload to look up or set, in random order. Only options are missing: a model
// would create a section.
struct Sample {
  std::string workload;
  Spelling spelling = Spelling::kAsSet;
  bool has_all = false;  // each once; else 1,000, some of them repeatedly
};

// Makes the folder of a first process, which is removed at its end.
void MakeFolder();

// Reads from the folder of another process.
void UseFolder(const std::string& path);

const std::string& Folder();

// The path of a file with the workload's text.
std::string FileOf(const std::string& workload);

// The following are made, and kept in the folder, when they are first asked for.
const std::string& TextOf(const std::string& workload);
const std::vector<Entry>& EntriesOf(const Sample& sample);

// All options in the order of the text; of a first process alone.
const std::vector<Entry>& EntriesOf(const std::string& workload);

}  // namespace quarry::benchmarks

#endif  // QUARRY_BENCHMARKS_TEXTS_H_
