#pragma once

// Measures one case of one size in a process of its own, so that no measurement finds the heap as another one
// left it, and none runs for ever.

#include <string>

#include "benchmarks/case.h"

namespace TolmSDK::Graphics::sfg::benchmarks {

struct MeasureSettings {
  double seconds = 0.1;      ///< about what the measured repetitions take together; see measureWork()
  unsigned limit = 10;       ///< seconds of processor time after which a process stops
  bool keepsMemory = false;  ///< see keepFreedMemory()
};

/// What came of one process.
struct Outcome {
  Figures figures;      ///< empty when it did not come to an end
  std::string stopped;  ///< why it stopped at a bound: of time, of memory, or the size limit of a text
  std::string failed;   ///< why it failed
};

/// Has a benchmark program measure a case. `program` is the file of this program, or of one built of another
/// state.
Outcome measureInProcess(const std::string& program, const std::string& caseName, std::size_t size,
                         const MeasureSettings& settings);

/// The other side: measures in this process and writes the outcome to the standard output.
void measureHere(const std::string& caseName, std::size_t size, const MeasureSettings& settings);

}  // namespace TolmSDK::Graphics::sfg::benchmarks
