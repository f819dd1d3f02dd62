#pragma once

// How processor time grows with the size of what is worked on.

#include <algorithm>
#include <cstddef>
#include <ctime>

namespace TolmSDK::test {

/// Bound of `costGrowth` for work in proportion to the size; a square has 256.
constexpr double kLinearGrowth = 48.0;

/// Processor time of `work(16 * size)` by that of `work(size)`, the best of several runs each.
template <class Work>
double costGrowth(std::size_t size, Work&& work) {
  const auto best = [&](std::size_t count) {
    std::clock_t time = 0;
    for (int run = 0; run < 3; ++run) {
      const std::clock_t start = std::clock();
      work(count);
      const std::clock_t spent = std::max<std::clock_t>(std::clock() - start, 1);
      time = run == 0 ? spent : std::min(time, spent);
    }
    return static_cast<double>(time);
  };
  const double few = best(size);
  return best(16 * size) / few;
}

}  // namespace TolmSDK::test
