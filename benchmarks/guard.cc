// guard OPERATION WORKLOAD: runs one operation on the workload, so that callgrind counts the
// instructions of this operation alone.
#include <valgrind/callgrind.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

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

std::vector<Entry> InUpperCase(std::vector<Entry> entries) {
  const auto upper = [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; };
  for (Entry& entry : entries) {
    for (std::string* name : {&entry.section, &entry.option}) {
      std::transform(name->begin(), name->end(), name->begin(), upper);
    }
  }
  return entries;
}

bool Dump(DMConfig* model) {
  std::ostringstream out;
  return DMConfigFile("", "").DumpConfig(&out, model) == 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string operation = argc == 3 ? argv[1] : "";
  const auto workload = quarry::benchmarks::MakeWorkload(argc == 3 ? argv[2] : "mid");
  const std::vector<Entry> upper = InUpperCase(workload.entries);
  auto model = std::make_unique<DMConfig>();
  bool done = operation == "load" || Load(workload.text, model.get());
  CALLGRIND_TOGGLE_COLLECT;
  if (operation == "load") {
    done = Load(workload.text, model.get());
  } else if (operation == "look-up") {
    done = done && LookUpAll(workload.entries, model.get());
  } else if (operation == "look-up-other-case") {
    done = done && LookUpAll(upper, model.get());
  } else if (operation == "dump") {
    done = done && Dump(model.get());
  } else if (operation == "destroy") {
    model.reset();
  } else {
    done = false;
  }
  CALLGRIND_TOGGLE_COLLECT;
  if (!done) {
    std::fputs("usage: guard load|look-up|look-up-other-case|dump|destroy WORKLOAD\n", stderr);
  }
  return done ? 0 : 1;
}
