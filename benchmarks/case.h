#pragma once

// What is measured: the table of cases.

#include <cstddef>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tolmsdk/types.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

/// Measured numbers by name: seconds, counts, ratios.
using Figures = std::map<std::string, double>;

/// What one size of a case does. Made before anything is measured.
struct Work {
  /// The measured round, which also frees all that it makes.
  std::function<void()> round;
  /// The text that a round writes, for the yardstick and the emitter. Empty: none.
  std::function<WString()> text = {};
  /// What the round is compared with when it writes no text. Empty: nothing.
  std::function<void()> reference = {};
  /// Characters written or read by a round; 0: as many as the text has.
  double characters = 0;
  std::size_t fragments = 0;
  /// What counts is the gain of a second thread, for the round and for the reference: both are called by one
  /// thread and by two at a time.
  bool inTwoThreads = false;
  /// The round works in threads of its own: the processor time of all counts.
  bool usesThreads = false;
};

struct Case {
  std::string name;
  std::vector<std::size_t> sizes;  ///< ascending; {0} for a case without sizes
  std::function<Work(std::size_t)> make;
  /// Needs gigabytes and a minute: runs when asked for, without bounds.
  bool isLarge = false;
};

/// Every case, in the order of the report. The example materials are there when the working folder is the
/// repository's root.
const std::vector<Case>& allCases();

}  // namespace TolmSDK::Graphics::sfg::benchmarks
