// Prints the times that Google Benchmark measured as ratios of ours to each other library's.
#ifndef QUARRY_BENCHMARKS_RATIO_REPORTER_H_
#define QUARRY_BENCHMARKS_RATIO_REPORTER_H_

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace quarry::benchmarks {

// A benchmark's name is OPERATION/WORKLOAD/WHO; the first WHO of an operation is ours. A ratio is
// that of the medians of all rounds, followed by the lowest and the highest ratio of a round, and
// by the goal where there is one.
class RatioReporter : public benchmark::BenchmarkReporter {
 public:
  // `names` are the benchmarks in the order in which to print them; rounds may arrive in any order.
  explicit RatioReporter(const std::vector<std::string>& names);

  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  using Rounds = std::vector<double>;  // nanoseconds per iteration
  template <typename Value>
  using Ordered = std::vector<std::pair<std::string, Value>>;
  using Contestants = Ordered<Rounds>;
  using Workloads = Ordered<Contestants>;

  Rounds* Find(const std::string& name);
  void PrintOperation(const std::string& operation, const Workloads& workloads);
  void PrintRatio(const std::string& ratio_of, const Rounds& ours,
                  const std::pair<std::string, Rounds>& other);
  void PrintScaling();

  Ordered<Workloads> operations_;
  int missed_ = 0;
  int measured_ = 0;
};

}  // namespace quarry::benchmarks

#endif  // QUARRY_BENCHMARKS_RATIO_REPORTER_H_
