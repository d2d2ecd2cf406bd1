// The measurements of a process, each in rounds in random order, and as the first operation of a
// new process.
#ifndef QUARRY_BENCHMARKS_MEASUREMENT_H_
#define QUARRY_BENCHMARKS_MEASUREMENT_H_

#include <benchmark/benchmark.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace quarry::benchmarks {

// Does the work once and returns its seconds.
using Once = std::function<double()>;

// Prepares what the work needs.
using Prepare = std::function<Once()>;

// In which processes the work is measured.
enum class Where {
  kWarm,  // again and again in one process, whose heap has its pages already
  kBoth   // in new processes, too: what a program pays when it starts
};

// Adds a measurement with the name OPERATION/WORKLOAD/WHO; the one in new processes is "first
// OPERATION".
void AddMeasurement(const std::string& operation, const std::string& workload,
                    const std::string& who, Where where, Prepare prepare);

// Runs all of them that `argc` and `argv`, the options of Google Benchmark, choose, and prints
// their ratios. Children are started as "bench WORKLOAD --once NAME FOLDER". Returns the exit
// status.
int RunMeasurements(bool is_quick, int argc, char** argv);

// Runs the one with that name once and prints its seconds, in a child. Returns the exit status.
int RunOnce(const std::string& name);

using Clock = std::chrono::steady_clock;

inline double SecondsSince(Clock::time_point begin) {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

// Adds `work`, which receives what `prepare` returned. Only `work` is timed: its result is
// destroyed after the clock has stopped.
template <typename Make, typename Work>
void Add(const std::string& operation, const std::string& workload, const std::string& who,
         Where where, Make make, Work work) {
  AddMeasurement(operation, workload, who, where, [make, work]() -> Once {
    using Prepared = decltype(make());
    return [work, prepared = std::make_shared<Prepared>(make())] {
      const auto begin = Clock::now();
      auto result = work(*prepared);
      const double seconds = SecondsSince(begin);
      benchmark::DoNotOptimize(result);
      return seconds;
    };
  });
}

}  // namespace quarry::benchmarks

#endif  // QUARRY_BENCHMARKS_MEASUREMENT_H_
