#include "benchmarks/ratio_reporter.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <optional>
#include <sstream>

namespace quarry::benchmarks {

namespace {

// Returns the value of `key`, added when it is missing. Keys keep the order of their addition.
template <typename Value>
Value& At(std::vector<std::pair<std::string, Value>>* list, const std::string& key) {
  for (auto& entry : *list) {
    if (entry.first == key) return entry.second;
  }
  list->emplace_back(key, Value());
  return list->back().second;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// The highest ratio that meets the goal, for each workload.
struct Goal {
  const char* operation;
  const char* who;
  std::map<std::string, double> by_workload;
};

std::map<std::string, double> ForAll(double ratio) {
  std::map<std::string, double> by_workload;
  for (const char* name : {"typical", "mid", "commented", "wide", "deep", "sorted", "process"}) {
    by_workload[name] = ratio;
  }
  return by_workload;
}

const std::vector<Goal>& Goals() {
  static const std::map<std::string, double> kFind = {{"mid", 0.70}, {"wide", 0.70}};
  static const std::vector<Goal> kGoals = {
      {"load file",
       "SimpleIni",
       {{"typical", 0.80},
        {"mid", 0.65},
        {"commented", 0.60},
        {"wide", 0.70},
        {"deep", 0.65},
        {"sorted", 0.35}}},
      {"load text",
       "SimpleIni",
       {{"typical", 0.75},
        {"mid", 0.60},
        {"commented", 0.65},
        {"wide", 0.80},
        {"deep", 0.60},
        {"sorted", 0.35}}},
      {"look up",
       "SimpleIni",
       {{"typical", 0.70},
        {"mid", 0.75},
        {"commented", 0.60},
        {"wide", 0.65},
        {"deep", 0.90},
        {"sorted", 0.90}}},
      {"dump to string",
       "SimpleIni",
       {{"typical", 0.40},
        {"mid", 0.17},
        {"commented", 0.60},
        {"wide", 0.35},
        {"deep", 0.20},
        {"sorted", 0.40}}},
      {"dump to file",
       "write per line",
       {{"typical", 1.10},
        {"mid", 1.20},
        {"commented", 1.30},
        {"wide", 1.20},
        {"deep", 1.35},
        {"sorted", 1.30}}},
      {"destroy", "SimpleIni", ForAll(1.5)},
      {"list", "SimpleIni", ForAll(0.9)},
      {"get", "git", ForAll(1.1)},
      {"set", "git", ForAll(1.2)},
      {"parse", "DMConfig", {{"mid", 0.60}, {"wide", 0.60}}},
      {"find", "DMConfig", kFind},
  };
  return kGoals;
}

void RemovePrefix(const std::string& prefix, std::string* text) {
  if (text->compare(0, prefix.size(), prefix) == 0) text->erase(0, prefix.size());
}

// A goal holds in new processes, with either kind of names and for look-ups of every kind.
std::optional<double> GoalOf(std::string operation, std::string workload, const std::string& who) {
  RemovePrefix("first ", &operation);
  RemovePrefix("files-", &workload);
  for (const char* kind : {"look up", "find"}) {
    if (operation.compare(0, std::strlen(kind), kind) == 0) operation = kind;
  }
  for (const Goal& goal : Goals()) {
    if (goal.operation != operation || goal.who != who) continue;
    const auto found = goal.by_workload.find(workload);
    if (found != goal.by_workload.end()) return found->second;
  }
  const bool does_less = who == "ptree" || who == "inih";
  if (does_less && operation.compare(0, 5, "load ") == 0) return 1.0;
  return std::nullopt;
}

std::string TimeText(double nanoseconds) {
  static const std::array<const char*, 4> kUnits = {"ns", "us", "ms", "s"};
  std::size_t unit = 0;
  while (nanoseconds >= 1000 && unit + 1 < kUnits.size()) {
    nanoseconds /= 1000;
    ++unit;
  }
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.3g %s", nanoseconds, kUnits[unit]);
  return text.data();
}

}  // namespace

RatioReporter::RatioReporter(const std::vector<std::string>& names) {
  for (const std::string& name : names) Find(name);
}

bool RatioReporter::ReportContext(const Context& context) {
  (void)context;
  return true;
}

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
  std::fprintf(stderr, "\r%d measured ", ++measured_);
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration) continue;
    Find(run.run_name.function_name)->push_back(run.GetAdjustedRealTime());
  }
}

RatioReporter::Rounds* RatioReporter::Find(const std::string& name) {
  std::istringstream parts(name);
  std::string operation, workload, who;
  std::getline(parts, operation, '/');
  std::getline(parts, workload, '/');
  std::getline(parts, who);
  return &At(&At(&At(&operations_, operation), workload), who);
}

void RatioReporter::Finalize() {
  std::fputs("\r", stderr);
  for (const auto& [operation, workloads] : operations_) {
    PrintOperation(operation, workloads);
  }
  PrintScaling();
  if (missed_ > 0) std::printf("  goals missed: %d\n", missed_);
}

void RatioReporter::PrintOperation(const std::string& operation, const Workloads& workloads) {
  for (const auto& [workload, contestants] : workloads) {
    const Rounds& ours = contestants.front().second;
    if (ours.empty()) continue;  // not among those that were chosen to run
    std::printf("%-15s %-29s %8s", workload.c_str(), operation.c_str(),
                TimeText(Median(ours)).c_str());
    for (std::size_t i = 1; i < contestants.size(); ++i) {
      if (contestants[i].second.empty()) continue;
      PrintRatio(operation + '/' + workload, ours, contestants[i]);
    }
    std::printf("\n");
  }
}

void RatioReporter::PrintRatio(const std::string& ratio_of, const Rounds& ours,
                               const std::pair<std::string, Rounds>& other) {
  const auto& [who, rounds] = other;
  Rounds ratios;
  for (std::size_t i = 0; i < std::min(rounds.size(), ours.size()); ++i) {
    ratios.push_back(ours[i] / rounds[i]);
  }
  const double ratio = Median(ours) / Median(rounds);
  const auto [low, high] = std::minmax_element(ratios.begin(), ratios.end());
  std::printf("  %s %.2f (%.2f-%.2f)", who.c_str(), ratio, *low, *high);
  const std::size_t slash = ratio_of.find('/');
  const auto goal = GoalOf(ratio_of.substr(0, slash), ratio_of.substr(slash + 1), who);
  if (!goal) return;
  std::printf(ratio <= *goal ? " <=%.2f" : " MISSES %.2f", *goal);
  if (ratio > *goal) ++missed_;
}

// Compares the time a line in a text of 1,000,000 lines with that in one of 10,000.
void RatioReporter::PrintScaling() {
  constexpr double kGoal = 2.6;
  constexpr double kMoreLines = 100;
  const Rounds* const small = Find("load text/lines-10000/ours");
  const Rounds* const large = Find("load text/lines-1000000/ours");
  if (small->empty() || large->empty()) return;
  const double ratio = Median(*large) / Median(*small) / kMoreLines;
  std::printf("time a line, in 1,000,000 lines to 10,000: %.2f %s %.1f\n", ratio,
              ratio <= kGoal ? "<=" : "MISSES", kGoal);
  if (ratio > kGoal) ++missed_;
}

}  // namespace quarry::benchmarks
