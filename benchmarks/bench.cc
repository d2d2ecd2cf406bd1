// Measures each operation of this library, of other libraries (peers.h), of the baselines
// (baselines.h) and of the floors (floors.h) in rounds in random order, and prints the ratios.
// Accepts the options of Google Benchmark too.
//
//   bench WORKLOAD|scaling [--quick] [--benchmark_...]
//
// A process measures one workload: the fragmented heap that a large one leaves would slow down the
// next.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/baselines.h"
#include "benchmarks/floors.h"
#include "benchmarks/peers.h"
#include "benchmarks/programs.h"
#include "benchmarks/ratio_reporter.h"
#include "benchmarks/workload.h"

namespace quarry::benchmarks {

namespace {

// A temporary folder, removed by the destructor.
class Folder {
 public:
  Folder() {
    if (mkdtemp(path_.data()) == nullptr) std::abort();
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  std::string operator/(const std::string& name) const { return path_ + '/' + name; }

 private:
  std::string path_ = "/tmp/quarry-bench-XXXXXX";
};

const Folder& TheFolder() {
  static const Folder folder;
  return folder;
}

const Workload& WorkloadOf(const std::string& name) {
  static std::map<std::string, Workload> workloads;
  const auto [place, is_new] = workloads.try_emplace(name);
  if (is_new) place->second = MakeWorkload(name);
  return place->second;
}

// Returns the path of a file with the workload's text and `more` after it.
std::string FileOf(const std::string& name, const std::string& more = "") {
  const std::string path = TheFolder() / (name + (more.empty() ? "" : "+"));
  if (!std::filesystem::exists(path)) {
    std::ofstream(path) << WorkloadOf(name).text << more;
  }
  return path;
}

// Returns the model. Throws when there is none: a library that refuses a text would seem fast.
template <typename Pointer>
Pointer Loaded(Pointer model) {
  if (!model) throw std::runtime_error("a text was not loaded");
  return model;
}

enum class Spelling { kAsSet, kOtherCase, kMissing };

void SwapCase(std::string* text) {
  const auto turn = [](char c) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    constexpr int kCaseBit = 0x20;
    return letter ? static_cast<char>(c ^ kCaseBit) : c;
  };
  std::transform(text->begin(), text->end(), text->begin(), turn);
}

// So many entries of the workload, in random order.
std::vector<Entry> MakeSample(const std::string& name, Spelling spelling, std::size_t size) {
  std::vector<Entry> sample;
  std::mt19937 random(7);
  const auto& entries = WorkloadOf(name).entries;
  while (sample.size() < size) {
    sample.push_back(entries[random() % entries.size()]);
    Entry* const entry = &sample.back();
    if (spelling == Spelling::kAsSet) continue;
    SwapCase(&entry->section);
    SwapCase(&entry->option);
    // Only options are missing: a model would create a section.
    if (spelling == Spelling::kMissing) entry->option += "_none";
  }
  return sample;
}

// What one iteration looks up or sets.
const std::vector<Entry>& SampleOf(const std::string& name, Spelling spelling) {
  constexpr std::size_t kSize = 1000;
  static std::map<std::pair<std::string, Spelling>, std::vector<Entry>> samples;
  auto& sample = samples[{name, spelling}];
  if (sample.empty()) sample = MakeSample(name, spelling, kSize);
  return sample;
}

// The same, but more than the caches of a processor hold in the large workloads.
const std::vector<Entry>& LargeSampleOf(const std::string& name, Spelling spelling) {
  constexpr std::size_t kSize = 100000;
  static std::map<std::pair<std::string, Spelling>, std::vector<Entry>> samples;
  auto& sample = samples[{name, spelling}];
  if (sample.empty()) sample = MakeSample(name, spelling, kSize);
  return sample;
}

// Called before each measurement of every library. Joins the free blocks of the heap and keeps its
// pages. The C library joins them no earlier than at the next large allocation, so a load would pay
// for the destruction of the model before it.
void TidyHeap() {
  constexpr int kNever = 1 << 30;
  // mallopt joins them, whatever it sets.
  if (mallopt(M_MMAP_MAX, 0) == 0 || mallopt(M_TRIM_THRESHOLD, kNever) == 0) {
    std::abort();
  }
}

// The names of all benchmarks, in the order in which they are printed.
std::vector<std::string>& Names() {
  static std::vector<std::string> names;
  return names;
}

bool is_quick = false;

// The large workloads, which take long, get fewer rounds.
int RoundsOf(const std::string& workload) {
  if (is_quick) return 3;
  const bool is_large = workload == "wide" || workload == "deep" || workload == "sorted" ||
                        workload == "lines-1000000";
  return is_large ? 5 : 9;
}

// Registers `work`, which receives what `prepare` returned for this round. Only `work` is timed:
// its result is destroyed after the clock has stopped.
template <typename Prepare, typename Work>
void Register(const std::string& operation, const std::string& workload, const std::string& who,
              Prepare prepare, Work work) {
  const std::string name = operation + '/' + workload + '/' + who;
  Names().push_back(name);
  const auto run = [prepare, work](benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    auto prepared = prepare();
    for (auto _ : state) {
      TidyHeap();
      const auto begin = Clock::now();
      auto result = work(prepared);
      const std::chrono::duration<double> time = Clock::now() - begin;
      benchmark::DoNotOptimize(result);
      state.SetIterationTime(time.count());
    }
  };
  benchmark::RegisterBenchmark(name.c_str(), run)->UseManualTime()->Repetitions(RoundsOf(workload));
}

template <typename Work>
void Register(const std::string& operation, const std::string& workload, const std::string& who,
              Work work) {
  const auto nothing = [] { return 0; };
  Register(operation, workload, who, nothing, [work](int) { return work(); });
}

template <typename Peer>
void RegisterParse(const std::string& operation, const std::string& workload) {
  const std::string& text = WorkloadOf(workload).text;
  Register(operation, workload, Peer::kName, [&text] { return Loaded(Peer::LoadText(text)); });
}

template <typename Peer>
void RegisterLoads(const std::string& workload) {
  const std::string path = FileOf(workload);
  Register("load file", workload, Peer::kName, [path] { return Loaded(Peer::LoadFile(path)); });
  RegisterParse<Peer>("load text", workload);
}

// Times the destruction of a model, not its construction.
template <typename Peer>
void RegisterDestroy(const std::string& workload) {
  const std::string name = "destroy/" + workload + '/' + Peer::kName;
  Names().push_back(name);
  const std::string& text = WorkloadOf(workload).text;
  const auto run = [&text](benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    for (auto _ : state) {
      auto model = Loaded(Peer::LoadText(text));
      const auto begin = Clock::now();
      model.reset();
      const std::chrono::duration<double> time = Clock::now() - begin;
      state.SetIterationTime(time.count());
    }
  };
  benchmark::RegisterBenchmark(name.c_str(), run)->UseManualTime()->Repetitions(RoundsOf(workload));
}

// Registers `work` on a loaded model of the workload's text; the load is not timed.
template <typename Peer, typename Work>
void RegisterUse(const std::string& operation, const std::string& workload, Work work) {
  const std::string& text = WorkloadOf(workload).text;
  Register(
      operation, workload, Peer::kName, [&text] { return Loaded(Peer::LoadText(text)); },
      [work](auto& model) { return work(model.get()); });
}

template <typename Peer>
void RegisterLook(const std::string& operation, const std::string& workload,
                  const std::vector<Entry>& sample) {
  RegisterUse<Peer>(operation, workload, [&sample](auto* model) {
    std::size_t sum = 0;
    for (const Entry& entry : sample) {
      sum += Peer::Look(model, entry.section, entry.option);
    }
    return sum;
  });
}

template <typename Peer>
void RegisterWrites(const std::string& workload) {
  const auto& sample = SampleOf(workload, Spelling::kAsSet);
  RegisterUse<Peer>("set", workload, [&sample](auto* model) {
    for (const Entry& entry : sample) {
      Peer::Set(model, entry.section, entry.option, entry.value);
    }
    return 0;
  });
  RegisterUse<Peer>("list", workload, [](auto* model) { return Peer::List(model); });
  RegisterUse<Peer>("dump to string", workload,
                    [](auto* model) { return Peer::DumpString(model); });
  RegisterUse<Peer>("dump to file", workload, [path = TheFolder() / "dump"](auto* model) {
    Peer::DumpFile(model, path);
    return 0;
  });
}

template <typename Peer>
void RegisterPeer(const std::string& workload) {
  RegisterLoads<Peer>(workload);
  RegisterLook<Peer>("look up", workload, SampleOf(workload, Spelling::kAsSet));
  RegisterDestroy<Peer>(workload);
}

// Adds the floor to the rows of the libraries.
void RegisterFloor(const std::string& workload) {
  RegisterParse<Floor>("load text", workload);
  RegisterLook<Floor>("look up", workload, SampleOf(workload, Spelling::kAsSet));
}

template <typename Reader>
void RegisterReader(const std::string& workload) {
  RegisterParse<Reader>("parse", workload);
  for (const auto& [operation, spelling] :
       {std::pair("find", Spelling::kAsSet), std::pair("find, other case", Spelling::kOtherCase),
        std::pair("find, missing", Spelling::kMissing)}) {
    RegisterLook<Reader>(operation, workload, LargeSampleOf(workload, spelling));
  }
}

void RegisterSnapshot(const std::string& workload) {
  RegisterReader<SnapshotOfText>(workload);
  RegisterReader<LoadedModel>(workload);
  RegisterReader<Floor>(workload);
}

void RegisterBaselines(const std::string& workload) {
  const Workload& made = WorkloadOf(workload);
  const std::string path = FileOf(workload);
  Register("load file", workload, "read(2)",
           [&made, path] { return ReadWhole(path, made.text.size()); });
  Register("load file", workload, "getline", [path] { return GetLines(path); });
  Register("load text", workload, "memchr", [&made] { return ScanLines(made.text); });
  Register("load text", workload, "maps", [&made] { return BuildMaps(made.entries); });
  Register(
      "dump to file", workload, "write per line",
      [&made] { return Ours::DumpString(Ours::LoadText(made.text).get()); },
      [to = TheFolder() / "lines"](const std::string& text) {
        WriteLines(text, to);
        return 0;
      });
}

// Compares the whole start of an agent and of a client with the load alone.
void RegisterPrograms(const std::string& workload) {
  const std::string path = FileOf(workload, kAgentText);
  const std::string text = WorkloadOf(workload).text + kAgentText;
  Register("agent start", workload, "ours", [path] { return StartAgent(path); });
  Register("agent start", workload, "load alone", [path] { return Ours::LoadFile(path); });
  Register("client's SetCfg", workload, "ours", [text] { return SetClient(text); });
  Register("client's SetCfg", workload, "load alone", [text] { return Ours::LoadText(text); });
}

void RegisterWorkload(const std::string& workload) {
  RegisterPeer<Ours>(workload);
  RegisterPeer<SimpleIni>(workload);
  RegisterPeer<Glib>(workload);
  RegisterPeer<PropertyTree>(workload);
  RegisterPeer<Inih>(workload);
  const auto& other_case = SampleOf(workload, Spelling::kOtherCase);
  RegisterLook<Ours>("look up, other case", workload, other_case);
  RegisterLook<SimpleIni>("look up, other case", workload, other_case);
  RegisterLook<Inih>("look up, other case", workload, other_case);
  RegisterWrites<Ours>(workload);
  RegisterWrites<SimpleIni>(workload);
  RegisterWrites<Glib>(workload);
  RegisterWrites<PropertyTree>(workload);
  RegisterBaselines(workload);
  RegisterFloor(workload);
  RegisterSnapshot(workload);
  if (workload == "typical") RegisterPrograms(workload);
}

// Loads of texts of increasing length.
void RegisterScaling() {
  for (const char* workload : {"lines-1000", "lines-10000", "lines-100000", "lines-1000000"}) {
    RegisterLoads<Ours>(workload);
    RegisterLoads<SimpleIni>(workload);
  }
}

int Main(int argc, char** argv) {
  std::vector<std::string> words(argv, argv + argc);
  if (words.size() < 2) {
    std::fputs("usage: bench WORKLOAD|scaling [--quick] [--benchmark_...]\n", stderr);
    return 2;
  }
  const std::string workload = words[1];
  // Our defaults come first, so that the caller's options override them.
  words[1] = "--benchmark_enable_random_interleaving=true";
  words.insert(words.begin() + 2, "--benchmark_min_time=0.05");
  const auto quick = std::find(words.begin(), words.end(), "--quick");
  is_quick = quick != words.end();
  if (is_quick) *quick = "--benchmark_min_time=0.02";
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  if (workload == "scaling") {
    RegisterScaling();
  } else {
    RegisterWorkload(workload);
  }
  RatioReporter reporter(Names());
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}

}  // namespace

}  // namespace quarry::benchmarks

int main(int argc, char** argv) { return quarry::benchmarks::Main(argc, argv); }
