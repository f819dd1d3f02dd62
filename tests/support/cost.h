#pragma once

// How processor time grows with the size of what is worked on.

#include <algorithm>
#include <cstddef>
#include <ctime>

namespace TolmSDK::test {

/// Bound of the growth for work in proportion to the size, which would be 16. A square has 256; memory that
/// no longer fits a cache, and other work on the machine, have their share.
constexpr double kLinearGrowth = 96.0;

/// `timeOf(16 * size)` by `timeOf(size)`, where timeOf() answers processor time. The two take turns, so that
/// other work on the machine slows both; the best time of each counts. Measures on while the answer is bad,
/// up to a number of turns: noise goes away, a square does not.
template <class TimeOf>
double timeGrowth(std::size_t size, TimeOf&& timeOf) {
  constexpr int kLeastTurns = 3;
  constexpr int kMostTurns = 12;
  double few = 1e30;
  double many = 1e30;
  for (int turn = 0; turn < kMostTurns; ++turn) {
    if (turn >= kLeastTurns && many < kLinearGrowth * few) break;
    few = std::min(few, std::max(static_cast<double>(timeOf(size)), 1.0));
    many = std::min(many, static_cast<double>(timeOf(16 * size)));
  }
  return many / few;
}

/// The processor time of a piece of work.
template <class Work>
std::clock_t processorTime(Work&& work) {
  const std::clock_t start = std::clock();
  work();
  return std::clock() - start;
}

/// timeGrowth() of all that `work(size)` does.
template <class Work>
double costGrowth(std::size_t size, Work&& work) {
  return timeGrowth(size, [&](std::size_t count) { return processorTime([&] { work(count); }); });
}

}  // namespace TolmSDK::test
