// Prints what Google Benchmark measured as ratios, ours to each other one.
#ifndef QUARRY_BENCHMARKS_RATIO_REPORTER_H_
#define QUARRY_BENCHMARKS_RATIO_REPORTER_H_

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace quarry::benchmarks {

// A benchmark's name is OPERATION/WORKLOAD/WHO. Of the rounds of each the
// median counts; the spread of a ratio is that of its rounds. Where a ratio has
// a goal it stands behind.
class RatioReporter : public benchmark::BenchmarkReporter {
 public:
  // The names in the order in which they are to be shown; rounds come in any.
  explicit RatioReporter(const std::vector<std::string>& names);

  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  using Rounds = std::vector<double>;  // nanoseconds an iteration
  template <typename Value>
  using Ordered = std::vector<std::pair<std::string, Value>>;
  using Contestants = Ordered<Rounds>;
  using Workloads = Ordered<Contestants>;

  Rounds* Find(const std::string& name);
  void PrintOperation(const std::string& operation, const Workloads& workloads);
  void PrintRatio(const std::string& ratio_of, const Rounds& ours,
                  const std::pair<std::string, Rounds>& other);
  void PrintGrowth();

  Ordered<Workloads> operations_;
  int missed_ = 0;
  int measured_ = 0;
};

}  // namespace quarry::benchmarks

#endif  // QUARRY_BENCHMARKS_RATIO_REPORTER_H_
