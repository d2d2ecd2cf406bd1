#include "benchmarks/measurement.h"

#include <malloc.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <vector>

#include "benchmarks/ratio_reporter.h"
#include "benchmarks/texts.h"

namespace quarry::benchmarks {

namespace {

struct Measurement {
  std::string name;
  std::string workload;
  Where where = Where::kWarm;
  Prepare prepare;
};

std::vector<Measurement>& All() {
  static std::vector<Measurement> all;
  return all;
}

// Called before each warm measurement of every library. Joins the free blocks of the heap and keeps
// its pages. The C library joins them no earlier than at the next large allocation, so a load would
// pay for the destruction of the model before it.
void TidyHeap() {
  constexpr int kNever = 1 << 30;
  // mallopt joins them, whatever it sets.
  if (mallopt(M_MMAP_MAX, 0) == 0 || mallopt(M_TRIM_THRESHOLD, kNever) == 0) {
    std::abort();
  }
}

void MeasureWarm(const Measurement& measurement, benchmark::State* state) {
  const Once once = measurement.prepare();
  for (auto _ : *state) {
    TidyHeap();
    state->SetIterationTime(once());
  }
}

// Throws when the child fails.
double RunChild(const Measurement& measurement) {
  const std::string command = "exec /proc/" + std::to_string(getpid()) + "/exe " +
                              measurement.workload + " --once '" + measurement.name + "' " +
                              Folder();
  std::FILE* const child = popen(command.c_str(), "r");
  double seconds = 0;
  const bool has_read = child != nullptr && std::fscanf(child, "%lf", &seconds) == 1;
  if (child == nullptr || pclose(child) != 0 || !has_read) {
    throw std::runtime_error("a new process failed: " + command);
  }
  return seconds;
}

void MeasureFirst(const Measurement& measurement, benchmark::State* state) {
  for (auto _ : *state) state->SetIterationTime(RunChild(measurement));
}

bool IsLarge(const std::string& workload) {
  for (const char* name : {"wide", "deep", "sorted", "1000000"}) {
    if (workload.find(name) != std::string::npos) return true;
  }
  return false;
}

void Register(const Measurement& measurement, int rounds, std::vector<std::string>* names) {
  names->push_back(measurement.name);
  benchmark::RegisterBenchmark(names->back().c_str(),
                               [&measurement](auto& state) { MeasureWarm(measurement, &state); })
      ->UseManualTime()
      ->Repetitions(rounds);
  if (measurement.where == Where::kWarm) return;
  names->push_back("first " + measurement.name);
  benchmark::RegisterBenchmark(names->back().c_str(),
                               [&measurement](auto& state) { MeasureFirst(measurement, &state); })
      ->UseManualTime()
      ->Iterations(1)
      ->Repetitions(2 * rounds + 1);
}

}  // namespace

void AddMeasurement(const std::string& operation, const std::string& workload,
                    const std::string& who, Where where, Prepare prepare) {
  All().push_back({operation + '/' + workload + '/' + who, workload, where, std::move(prepare)});
}

int RunMeasurements(bool is_quick, int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  std::vector<std::string> names;
  for (const Measurement& measurement : All()) {
    // The large texts take long.
    const int rounds = is_quick ? 3 : IsLarge(measurement.workload) ? 5 : 9;
    Register(measurement, rounds, &names);
  }
  RatioReporter reporter(names);
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}

int RunOnce(const std::string& name) {
  for (const Measurement& measurement : All()) {
    if (measurement.name != name) continue;
    const Once once = measurement.prepare();
    std::printf("%.12g\n", once());
    return 0;
  }
  return 2;
}

}  // namespace quarry::benchmarks
