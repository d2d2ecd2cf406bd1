// guard OPERATION [WORKLOAD]: runs one operation on the workload (mid), so that callgrind counts
// the instructions of this operation alone.
#include <valgrind/callgrind.h>

#include <cstdio>
#include <sstream>
#include <string>

#include "benchmarks/workload.h"
#include "dmconfig/config_file.h"

namespace {

using quarry::benchmarks::Entry;
using quarry::storage::dmconfig::DMConfig;
using quarry::storage::dmconfig::DMConfigFile;

bool Load(const std::string& text, DMConfig* model) {
  std::istringstream in(text);
  return DMConfigFile("", "").LoadConfig(&in, model) == 0;
}

bool LookUpAll(const std::vector<Entry>& entries, DMConfig* model) {
  std::string value, comment;
  for (const Entry& entry : entries) {
    if (model->GetOptionValue(entry.section, entry.option, &value, &comment) != 0) {
      return false;
    }
  }
  return true;
}

bool Dump(DMConfig* model) {
  std::ostringstream out;
  return DMConfigFile("", "").DumpConfig(&out, model) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string operation = argc > 1 ? argv[1] : "";
  const auto workload = quarry::benchmarks::MakeWorkload(argc > 2 ? argv[2] : "mid");
  DMConfig model;
  bool done = operation == "load" || Load(workload.text, &model);
  CALLGRIND_TOGGLE_COLLECT;
  if (operation == "load") {
    done = Load(workload.text, &model);
  } else if (operation == "look-up") {
    done = done && LookUpAll(workload.entries, &model);
  } else if (operation == "dump") {
    done = done && Dump(&model);
  } else {
    done = false;
  }
  CALLGRIND_TOGGLE_COLLECT;
  if (!done) std::fputs("usage: guard load|look-up|dump [WORKLOAD]\n", stderr);
  return done ? 0 : 1;
}
