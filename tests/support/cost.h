#pragma once

// How processor time grows with the size of what is worked on.

#include <algorithm>
#include <cstddef>
#include <ctime>

namespace TolmSDK::test {

/// Bound of `costGrowth` for work in proportion to the size; a square has 256.
constexpr double kLinearGrowth = 48.0;

/// Processor time of `work(16 * size)` by that of `work(size)`, each the best of several runs that take
/// turns: other work on the machine then slows both.
template <class Work>
double costGrowth(std::size_t size, Work&& work) {
  const auto timeOf = [&](std::size_t count) {
    const std::clock_t start = std::clock();
    work(count);
    return std::max<std::clock_t>(std::clock() - start, 1);
  };
  std::clock_t few = timeOf(size);
  std::clock_t many = timeOf(16 * size);
  for (int run = 1; run < 5; ++run) {
    few = std::min(few, timeOf(size));
    many = std::min(many, timeOf(16 * size));
  }
  return static_cast<double>(many) / static_cast<double>(few);
}

}  // namespace TolmSDK::test
