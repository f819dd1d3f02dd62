#pragma once

// Where the time of a build goes.

#include <array>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace TolmSDK::Graphics::sfg::host {

/// In the order in which a task takes them.
enum class BuildStep { libraries, key, cache, collapse, assemble, compile, translate, write, count };
inline constexpr const char* kStepNames[] = {"libraries", "key",     "cache",     "collapse",
                                             "assemble",  "compile", "translate", "write"};

/// Sums over all threads.
class StepTimes {
public:
  void add(BuildStep step, std::int64_t nanoseconds) { sums_[static_cast<std::size_t>(step)] += nanoseconds; }
  double seconds(BuildStep step) const {
    return static_cast<double>(sums_[static_cast<std::size_t>(step)]) * 1e-9;
  }

private:
  std::array<std::atomic<std::int64_t>, static_cast<std::size_t>(BuildStep::count)> sums_{};
};

/// Counts its own life as a step.
class StepTimer {
public:
  StepTimer(StepTimes& times, BuildStep step) : times_(times), step_(step) {}
  ~StepTimer() {
    times_.add(step_, std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - start_).count());
  }
  StepTimer(const StepTimer&) = delete;
  StepTimer& operator=(const StepTimer&) = delete;

private:
  using Clock = std::chrono::steady_clock;
  StepTimes& times_;
  BuildStep step_;
  Clock::time_point start_ = Clock::now();
};

}  // namespace TolmSDK::Graphics::sfg::host
