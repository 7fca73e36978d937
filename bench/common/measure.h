// One line of the table that every benchmark prints: a piece of work, its baseline, the median times of both
// and the ratio of their times or rates, taken run by run, so that a slow moment of the machine weighs on
// both sides alike. With BENCH_RESULTS in the environment each line is followed by one that programs read: a
// JSON object with the seconds of every run.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace vordane::bench {

inline constexpr int runs = 5;

template <class Work>
double seconds(Work&& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

// The time the processor worked for this process, not what others had of it meanwhile: for work that waits
// for nobody, on machines that are never quiet.
template <class Work>
double processorSeconds(Work&& work) {
  const auto now = [] {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
  };
  const double begin = now();
  work();
  return now() - begin;
}

inline double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// A number as the names of lines have it: "8,000".
inline std::string thousands(std::size_t number) {
  std::string text = std::to_string(number);
  for (std::size_t i = text.size(); i > 3; i -= 3) text.insert(i - 3, ",");
  return text;
}

// What a ratio is held to: a share of the baseline's rate, or a multiple of its time.
struct Goal {
  enum class Kind { rateAtLeast, timeAtMost, none } kind;
  double limit = 0;
  double most = 0;  // seconds that a unit may take besides; 0: as long as it wants
};
inline constexpr Goal noGoal{Goal::Kind::none};
constexpr Goal rateAtLeast(double share) {
  return {Goal::Kind::rateAtLeast, share};
}
constexpr Goal timeAtMost(double multiple, double mostSeconds = 0) {
  return {Goal::Kind::timeAtMost, multiple, mostSeconds};
}

class Comparison {
 public:
  Comparison(std::string work, std::string baseline, Goal goal)
      : work_(std::move(work)), baseline_(std::move(baseline)), goal_(goal) {}

  void add(double ours, double baseline) {
    ours_.push_back(ours);
    baselines_.push_back(baseline);
  }

  // `units` are the pieces of work in one run: the times printed are for one of them.
  void print(double units = 1) const {
    std::vector<double> ratios;
    for (std::size_t i = 0; i < ours_.size(); ++i)
      ratios.push_back(isRate() ? baselines_[i] / ours_[i] : ours_[i] / baselines_[i]);
    const double ratio = median(ratios);
    const auto [low, high] = std::minmax_element(ratios.begin(), ratios.end());
    std::printf("%-44s | %-44s | %10s | %10s | %s %5.2f (%.2f to %.2f) | %s\n", work_.c_str(),
                baseline_.c_str(), time(median(ours_) / units).c_str(),
                time(median(baselines_) / units).c_str(), isRate() ? "rate" : "time", ratio, *low, *high,
                verdict(ratio, median(ours_) / units).c_str());
    if (std::getenv("BENCH_RESULTS") != nullptr) std::printf("%s\n", result(ratios).c_str());
    std::fflush(stdout);
  }

 private:
  bool isRate() const { return goal_.kind == Goal::Kind::rateAtLeast; }

  std::string result(const std::vector<double>& ratios) const {
    return nlohmann::json{{"work", work_},    {"baseline", baseline_}, {"better", isRate() ? "more" : "less"},
                          {"ratios", ratios}, {"ours", ours_},         {"baselines", baselines_}}
        .dump();
  }

  static std::string time(double seconds) {
    char text[32];
    const double micro = seconds * 1e6;
    if (micro < 1000)
      std::snprintf(text, sizeof text, "%.2f us", micro);
    else if (micro < 1e6)
      std::snprintf(text, sizeof text, "%.2f ms", micro / 1e3);
    else
      std::snprintf(text, sizeof text, "%.2f s", seconds);
    return text;
  }

  std::string verdict(double ratio, double unit) const {
    if (goal_.kind == Goal::Kind::none) return "-";
    const bool reached =
        (isRate() ? ratio >= goal_.limit : ratio <= goal_.limit) && (goal_.most == 0 || unit < goal_.most);
    char text[48];
    std::snprintf(text, sizeof text, "%s %g", isRate() ? "at least" : "at most", goal_.limit);
    return text + (goal_.most == 0 ? std::string() : ", under " + time(goal_.most)) +
           (reached ? ": reached" : ": NOT reached");
  }

  std::string work_, baseline_;
  Goal goal_;
  std::vector<double> ours_, baselines_;
};

}  // namespace vordane::bench
