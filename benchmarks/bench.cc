// Measures each operation of this library, of other libraries (peers.h), of the baselines
// (baselines.h) and of the floors (floors.h), and of the program beside git's, in rounds in random
// order, and prints the ratios. Accepts the options of Google Benchmark too.
//
//   bench WORKLOAD|scaling|processes [--quick] [--benchmark_...]
//
// A process measures one workload: the fragmented heap that a large one leaves would slow down the
// next.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/baselines.h"
#include "benchmarks/floors.h"
#include "benchmarks/measurement.h"
#include "benchmarks/peers.h"
#include "benchmarks/programs.h"
#include "benchmarks/texts.h"

namespace quarry::benchmarks {

namespace {

// Returns the model. Throws when there is none: a library that refuses a text would seem fast.
template <typename Pointer>
Pointer Loaded(Pointer model) {
  if (!model) throw std::runtime_error("a text was not loaded");
  return model;
}

template <typename Work>
void Add(const std::string& operation, const std::string& workload, const std::string& who,
         Where where, Work work) {
  const auto nothing = [] { return 0; };
  Add(operation, workload, who, where, nothing, [work](int) { return work(); });
}

template <typename Peer>
void AddParse(const std::string& operation, const std::string& workload, Where where) {
  Add(
      operation, workload, Peer::kName, where, [workload] { return TextOf(workload); },
      [](const std::string& text) { return Loaded(Peer::LoadText(text)); });
}

template <typename Peer>
void AddLoads(const std::string& workload, Where where) {
  Add(
      "load file", workload, Peer::kName, where, [workload] { return FileOf(workload); },
      [](const std::string& path) { return Loaded(Peer::LoadFile(path)); });
  AddParse<Peer>("load text", workload, where);
}

// Times the destruction of a model, not its construction.
template <typename Peer>
void AddDestroy(const std::string& workload, Where where) {
  AddMeasurement("destroy", workload, Peer::kName, where, [workload] {
    return [&text = TextOf(workload)] {
      auto model = Loaded(Peer::LoadText(text));
      const auto begin = Clock::now();
      model.reset();
      return SecondsSince(begin);
    };
  });
}

// Adds `work` on a loaded model of the workload's text; the load is not timed.
template <typename Peer, typename Work>
void AddUse(const std::string& operation, const std::string& workload, Where where, Work work) {
  Add(
      operation, workload, Peer::kName, where,
      [workload] { return Loaded(Peer::LoadText(TextOf(workload))); },
      [work](auto& model) { return work(model.get()); });
}

template <typename Peer>
void AddLook(const std::string& operation, const Sample& sample, Where where) {
  const auto prepare = [sample] {
    return std::pair(Loaded(Peer::LoadText(TextOf(sample.workload))), &EntriesOf(sample));
  };
  Add(operation, sample.workload, Peer::kName, where, prepare, [](auto& prepared) {
    std::size_t sum = 0;
    for (const Entry& entry : *prepared.second) {
      sum += Peer::Look(prepared.first.get(), entry.section, entry.option);
    }
    return sum;
  });
}

template <typename Peer>
void AddDumpToString(const std::string& workload, Where where) {
  AddUse<Peer>("dump to string", workload, where,
               [](auto* model) { return Peer::DumpString(model); });
}

template <typename Peer>
void AddWrites(const std::string& workload, Where where) {
  AddUse<Peer>("set", workload, where, [workload](auto* model) {
    for (const Entry& entry : EntriesOf(Sample{workload})) {
      Peer::Set(model, entry.section, entry.option, entry.value);
    }
    return 0;
  });
  AddUse<Peer>("list", workload, where, [](auto* model) { return Peer::List(model); });
  AddDumpToString<Peer>(workload, where);
  AddUse<Peer>("dump to file", workload, where, [](auto* model) {
    Peer::DumpFile(model, Folder() + "/dump");
    return 0;
  });
}

template <typename Peer>
void AddIndifferentLooks(const std::string& workload, Where where) {
  AddLook<Peer>("look up, other case", {workload, Spelling::kOtherCase}, where);
  AddLook<Peer>("look up all", {workload, Spelling::kAsSet, true}, where);
  AddLook<Peer>("look up all, other case", {workload, Spelling::kOtherCase, true}, where);
  AddLook<Peer>("look up all, missing", {workload, Spelling::kMissing, true}, where);
}

// The operations of a library that ignores letter case and writes, as ours does.
template <typename Peer>
void AddEqual(const std::string& workload) {
  AddLoads<Peer>(workload, Where::kBoth);
  AddLook<Peer>("look up", {workload}, Where::kBoth);
  AddIndifferentLooks<Peer>(workload, Where::kBoth);
  AddWrites<Peer>(workload, Where::kBoth);
  AddDestroy<Peer>(workload, Where::kBoth);
}

template <typename Peer>
void AddOther(const std::string& workload) {
  AddLoads<Peer>(workload, Where::kWarm);
  AddLook<Peer>("look up", {workload}, Where::kWarm);
  AddDestroy<Peer>(workload, Where::kWarm);
}

// What texts in memory take by way of a stream.
void AddStreams(const std::string& workload) {
  AddParse<OursByStream>("load text", workload, Where::kBoth);
  AddDumpToString<OursByStream>(workload, Where::kBoth);
}

// Adds the floor to the rows of the libraries.
void AddFloor(const std::string& workload) {
  AddParse<Floor>("load text", workload, Where::kBoth);
  AddLook<Floor>("look up", {workload}, Where::kWarm);
  AddIndifferentLooks<Floor>(workload, Where::kWarm);
}

template <typename Reader>
void AddReader(const std::string& workload) {
  AddParse<Reader>("parse", workload, Where::kWarm);
  for (const auto& [operation, spelling] :
       {std::pair("find", Spelling::kAsSet), std::pair("find, other case", Spelling::kOtherCase),
        std::pair("find, missing", Spelling::kMissing)}) {
    AddLook<Reader>(operation, {workload, spelling, true}, Where::kWarm);
  }
}

void AddSnapshot(const std::string& workload) {
  AddReader<SnapshotOfText>(workload);
  AddReader<LoadedModel>(workload);
  AddReader<Floor>(workload);
}

void AddBaselines(const std::string& workload) {
  Add("load file", workload, "read(2)", Where::kWarm,
      [workload] { return ReadWhole(FileOf(workload), TextOf(workload).size()); });
  Add("load file", workload, "getline", Where::kWarm,
      [workload] { return GetLines(FileOf(workload)); });
  Add("load text", workload, "memchr", Where::kWarm,
      [workload] { return ScanLines(TextOf(workload)); });
  Add("load text", workload, "maps", Where::kWarm,
      [workload] { return BuildMaps(EntriesOf(workload)); });
}

void AddWriteOfLines(const std::string& workload) {
  Add(
      "dump to file", workload, "write per line", Where::kBoth,
      [workload] { return Ours::DumpString(Ours::LoadText(TextOf(workload)).get()); },
      [](const std::string& text) {
        WriteLines(text, Folder() + "/lines");
        return 0;
      });
}

// Compares the whole start of an agent and of a client with the load alone.
void AddPrograms(const std::string& workload) {
  const auto file = [workload] {
    const std::string path = Folder() + "/agent.conf";
    std::ofstream(path) << TextOf(workload) << kAgentText;
    return path;
  };
  const auto text = [workload] { return TextOf(workload) + kAgentText; };
  Add("agent start", workload, "ours", Where::kWarm, file, StartAgent);
  Add("agent start", workload, "load alone", Where::kWarm, file, Ours::LoadFile);
  Add("client's SetCfg", workload, "ours", Where::kWarm, text, SetClient);
  Add("client's SetCfg", workload, "load alone", Where::kWarm, text, Ours::LoadText);
}

// inih refuses files-commented.
void AddInih(const std::string& workload) {
  AddOther<Inih>(workload);
  AddLook<Inih>("look up, other case", {workload, Spelling::kOtherCase}, Where::kWarm);
}

void AddWorkload(const std::string& workload) {
  AddEqual<Ours>(workload);
  AddEqual<SimpleIni>(workload);
  AddStreams(workload);
  AddFloor(workload);
  AddWriteOfLines(workload);
  AddBaselines(workload);
  AddSnapshot(workload);
  AddOther<Glib>(workload);
  AddOther<PropertyTree>(workload);
  AddWrites<Glib>(workload, Where::kWarm);
  AddWrites<PropertyTree>(workload, Where::kWarm);
  if (workload != "files-commented") AddInih(workload);
  if (workload == "typical") AddPrograms(workload);
}

// Loads of texts of increasing length.
void AddScaling() {
  for (const char* workload : {"lines-1000", "lines-10000", "lines-100000", "lines-1000000"}) {
    AddLoads<Ours>(workload, Where::kWarm);
    AddLoads<SimpleIni>(workload, Where::kWarm);
  }
}

// Runs a program to its end, without its output. Throws when it fails.
int RunProgram(std::vector<std::string> words) {
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = 0;
  int status = -1;
  if (posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ) == 0) {
    waitpid(process, &status, 0);
  }
  posix_spawn_file_actions_destroy(&actions);
  if (status != 0) throw std::runtime_error(words.front() + " failed");
  return 0;
}

// The path of the program, of which the environment may name another than the one built here.
std::string ProgramPath() {
  const char* const named = std::getenv("QUARRY_CONFIG");
  if (named != nullptr) return named;
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().parent_path() /
         "quarry-config";
}

// A typical file whose names git accepts, of WHO's own.
std::string FileForGit(const std::string& who) {
  std::string text = TextOf("typical");
  std::replace(text.begin(), text.end(), '_', '-');
  std::string path = Folder() + '/' + who + ".conf";
  std::ofstream(path) << text;
  return path;
}

// Whole processes, ours beside git's, which reads a similar format.
void AddProcesses() {
  const auto file = [](const char* who) { return [who] { return FileForGit(who); }; };
  Entry entry = MakeWorkload("typical").entries[20];
  std::replace(entry.section.begin(), entry.section.end(), '_', '-');
  std::replace(entry.option.begin(), entry.option.end(), '_', '-');
  const std::string key = entry.section + '.' + entry.option;
  // Each `set` changes the value.
  const auto value = [] {
    static int number = 0;
    return std::to_string(++number);
  };
  Add("get", "process", "ours", Where::kWarm, file("ours"), [entry](const std::string& path) {
    return RunProgram({ProgramPath(), "get", path, entry.section, entry.option});
  });
  Add("get", "process", "git", Where::kWarm, file("git"), [key](const std::string& path) {
    return RunProgram({"git", "config", "--file", path, "--get", key});
  });
  Add("set", "process", "ours", Where::kWarm, file("ours"),
      [entry, value](const std::string& path) {
        return RunProgram({ProgramPath(), "set", path, entry.section, entry.option, value()});
      });
  Add("set", "process", "git", Where::kWarm, file("git"), [key, value](const std::string& path) {
    return RunProgram({"git", "config", "--file", path, key, value()});
  });
}

void AddAll(const std::string& workload) {
  if (workload == "scaling") {
    AddScaling();
  } else if (workload == "processes") {
    AddProcesses();
  } else {
    AddWorkload(workload);
  }
}

int Measure(std::vector<std::string> words) {
  const std::string workload = words[1];
  // Our defaults come first, so that the caller's options override them.
  words[1] = "--benchmark_enable_random_interleaving=true";
  words.insert(words.begin() + 2, "--benchmark_min_time=0.05");
  const auto quick = std::find(words.begin(), words.end(), "--quick");
  const bool is_quick = quick != words.end();
  if (is_quick) *quick = "--benchmark_min_time=0.02";
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  MakeFolder();
  AddAll(workload);
  return RunMeasurements(is_quick, static_cast<int>(arguments.size()), arguments.data());
}

int Main(int argc, char** argv) {
  const std::vector<std::string> words(argv, argv + argc);
  if (words.size() < 2) {
    std::fputs("usage: bench WORKLOAD|scaling|processes [--quick] [--benchmark_...]\n", stderr);
    return 2;
  }
  if (words.size() != 5 || words[2] != "--once") return Measure(words);
  UseFolder(words[4]);
  AddAll(words[1]);
  return RunOnce(words[3]);
}

}  // namespace

}  // namespace quarry::benchmarks

int main(int argc, char** argv) { return quarry::benchmarks::Main(argc, argv); }
